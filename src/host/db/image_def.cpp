// Definitions of pictures, and their loading.
#include "host/db/image.h"

#include "host/db/database.h"
#include "host/db/support_files.h"
#include "host/dxf/fields.h"

#include <mutex>

ACRX_DXF_DEFINE_MEMBERS(AcDbRasterImageDef, AcDbObject, "IMAGEDEF")
ACRX_DXF_DEFINE_MEMBERS(AcDbRasterVariables, AcDbObject, "RASTERVARIABLES")

// ---- the loader

namespace {

struct Loader {
    std::mutex mutex;
    AcDbImageLoader function;
};

Loader& loader() {
    static Loader instance;
    return instance;
}

} // namespace

bool AcDbImageData::isValid() const {
    const std::uint64_t bytes = std::uint64_t{4} * width * height;
    return width > 0 && height > 0 && width <= kMostSide && height <= kMostSide &&
           bytes <= kMostBytes && rgba.size() == bytes;
}

void acdbSetImageLoader(AcDbImageLoader function) {
    const std::lock_guard lock(loader().mutex);
    loader().function = std::move(function);
}

bool acdbLoadImage(const std::filesystem::path& file, AcDbImageData& data) {
    AcDbImageLoader function;
    {
        const std::lock_guard lock(loader().mutex);
        function = loader().function;
    }
    data = {};
    try {
        if (function && function(file, data) && data.isValid()) {
            return true;
        }
    } catch (const std::exception&) { // a picture that can't be read is no reason to stop
    }
    data = {};
    return false;
}

// ---- AcDbRasterImageDef

std::string AcDbRasterImageDef::activeFileName() const {
    return acdbFindFile(database(), source_).string();
}

AcDbRasterImageDef::Units AcDbRasterImageDef::resolutionUnits() const {
    return units_ == kCentimeters || units_ == kInches ? static_cast<Units>(units_) : kNone;
}

bool AcDbRasterImageDef::imageData(AcDbImageData& data) const {
    data = {};
    const std::filesystem::path file = acdbFindFile(database(), source_);
    return !file.empty() && acdbLoadImage(file, data);
}

void AcDbRasterImageDef::dxfIn(const dxf::ObjectTags& tags) {
    using F = dxf::Field<AcDbRasterImageDef>;
    static constexpr F kFields[] = {
        F(90, &AcDbRasterImageDef::version_), F(1, &AcDbRasterImageDef::source_),
        F(10, &AcDbRasterImageDef::size_),    F(11, &AcDbRasterImageDef::pixel_size_),
        F(280, &AcDbRasterImageDef::loaded_), F(281, &AcDbRasterImageDef::units_)};
    dxf::load_fields(*this, kFields, tags.subclass("AcDbRasterImageDef"), tags);
}

void AcDbRasterImageDef::dxfOut(dxf::TagWriter& writer) const {
    writer.subclass("AcDbRasterImageDef");
    using F = dxf::Field<AcDbRasterImageDef>;
    static constexpr F kFields[] = {
        F(90, &AcDbRasterImageDef::version_), F(1, &AcDbRasterImageDef::source_),
        F(10, &AcDbRasterImageDef::size_),    F(11, &AcDbRasterImageDef::pixel_size_),
        F(280, &AcDbRasterImageDef::loaded_), F(281, &AcDbRasterImageDef::units_)};
    dxf::write_fields(*this, kFields, writer);
}

// ---- AcDbRasterVariables

bool AcDbRasterVariables::areFramesShown(const AcDbDatabase* database) {
    if (database == nullptr) {
        return true;
    }
    const AcDbObjectPointer<AcDbDictionary> root(database->namedObjectsDictionaryId());
    AcDbObjectId id;
    if (!root || root->getAt("ACAD_IMAGE_VARS", id) != Acad::eOk) {
        return true;
    }
    const AcDbObjectPointer<AcDbRasterVariables> variables(id);
    return !variables || variables->imageFrame() != 0;
}

void AcDbRasterVariables::dxfIn(const dxf::ObjectTags& tags) {
    using F = dxf::Field<AcDbRasterVariables>;
    static constexpr F kFields[] = {
        F(90, &AcDbRasterVariables::version_), F(70, &AcDbRasterVariables::frame_),
        F(71, &AcDbRasterVariables::quality_), F(72, &AcDbRasterVariables::units_)};
    dxf::load_fields(*this, kFields, tags.subclass("AcDbRasterVariables"), tags);
}

void AcDbRasterVariables::dxfOut(dxf::TagWriter& writer) const {
    writer.subclass("AcDbRasterVariables");
    using F = dxf::Field<AcDbRasterVariables>;
    static constexpr F kFields[] = {
        F(90, &AcDbRasterVariables::version_), F(70, &AcDbRasterVariables::frame_),
        F(71, &AcDbRasterVariables::quality_), F(72, &AcDbRasterVariables::units_)};
    dxf::write_fields(*this, kFields, writer);
}
