// Dictionaries, xrecords and materials.
#include "host/db/dictionary.h"

#include "host/db/database_impl.h"
#include "host/dxf/fields.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbDictionary, AcDbObject, "DICTIONARY")
ACRX_DXF_DEFINE_MEMBERS(AcDbXrecord, AcDbObject, "XRECORD")
ACRX_DXF_DEFINE_MEMBERS(AcDbMaterial, AcDbObject, "MATERIAL")

Acad::ErrorStatus AcDbDictionary::getAt(const std::string& key, AcDbObjectId& id) const {
    const auto at = index_.find(dxf::fold_name(key));
    if (at == index_.end()) {
        return Acad::eKeyNotFound;
    }
    id = entries_[at->second].id;
    return id.isErased() ? Acad::eWasErased : Acad::eOk;
}

bool AcDbDictionary::has(const std::string& key) const {
    AcDbObjectId id;
    return getAt(key, id) == Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::setAt(const std::string& key, std::unique_ptr<AcDbObject> object,
                                        AcDbObjectId& id) {
    if (key.empty() || object == nullptr) {
        return Acad::eInvalidInput;
    }
    AcDbDatabase* db = database();
    if (db == nullptr) {
        return Acad::eNoDatabase;
    }
    assertWriteEnabled();
    id = db->addAcDbObject(std::move(object), id_);
    const auto [at, is_new] = index_.try_emplace(dxf::fold_name(key), entries_.size());
    if (is_new) {
        entries_.push_back({key, id, entries_.empty() ? std::int16_t{350} : entries_[0].code});
        return Acad::eOk;
    }
    Entry& entry = entries_[at->second];
    if (entry.id.isValid() && !entry.id.isErased()) {
        entry.id.stub()->object->erase();
    }
    entry.id = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const std::string& key) {
    const auto at = index_.find(dxf::fold_name(key));
    if (at == index_.end()) {
        return Acad::eKeyNotFound;
    }
    assertWriteEnabled();
    const std::size_t place = at->second;
    if (const AcDbObjectId id = entries_[place].id; id.isValid()) {
        id.stub()->object->erase();
    }
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(place));
    index_.erase(at);
    for (auto& [name, position] : index_) {
        position -= position > place ? 1 : 0;
    }
    return Acad::eOk;
}

void AcDbDictionary::dxfIn(const dxf::ObjectTags& tags) {
    std::string key;
    bool keyed = false;
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 3) {
            key = tags.text(tag);
            keyed = true;
        } else if (keyed && (tag.code == 350 || tag.code == 360)) {
            index_[dxf::fold_name(key)] = entries_.size();
            entries_.push_back({std::move(key), tags.id(tag), tag.code});
            key.clear();
            keyed = false;
        }
    }
}

void AcDbDictionary::dxfOut(dxf::TagWriter& writer) const {
    writer.subclass("AcDbDictionary");
    writer.integer(281, 1);
    for (const Entry& entry : entries_) {
        writer.text(3, entry.key);
        writer.id(entry.code, entry.id);
    }
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(AcDbValues values) {
    const bool good = std::all_of(values.begin(), values.end(), [](const AcDbValue& value) {
        return value.code > 0 && value.code < 1000 && dxf::fits_code(value);
    });
    if (!good) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    values_ = std::move(values);
    return Acad::eOk;
}

void AcDbXrecord::dxfIn(const dxf::ObjectTags& tags) {
    // All behind the marker is data, whatever its codes: extended data apart.
    std::span<const dxf::Tag> range = tags.all();
    const auto marker = std::find_if(
        range.begin(), range.end(), [](const dxf::Tag& tag) { return tag.is(100, "AcDbXrecord"); });
    if (marker == range.end()) {
        return;
    }
    range = range.subspan(static_cast<std::size_t>(marker - range.begin()) + 1);
    range = range.first(range.size() - std::min(range.size(), tags.xdata().size()));
    if (!range.empty() && range.front().code == 280) {
        range = range.subspan(1); // how the record is cloned
    }
    values_ = dxf::to_values(range, tags);
}

void AcDbXrecord::dxfOut(dxf::TagWriter& writer) const {
    writer.raw(100, "AcDbXrecord"); // in every version: it tells where the data begins
    writer.integer(280, 1);
    for (const AcDbValue& value : values_) {
        writer.value(value);
    }
}

namespace {

constexpr std::uint32_t kRgb = 0xffffff;

/// One finish of a material: how its colour and its strength are stored.
enum class Inherit { kCurrentColor = 0, kOwnColor = 1 };

} // namespace

void AcDbMaterial::dxfIn(const dxf::ObjectTags& tags) {
    // Codes come twice (the map of one finish and of the next); the first of each counts, except
    // that 3 is the diffuse map's file only while no other map was begun.
    bool other_map = false, color_given = false;
    for (const dxf::Tag& tag : tags.own()) {
        switch (tag.code) {
        case 1:
            name_ = tags.text(tag);
            break;
        case 2:
            description_ = tags.text(tag);
            break;
        case 70:
            diffuse_inherits_ = tags.integer(tag) == static_cast<int>(Inherit::kCurrentColor);
            break;
        case 40:
            diffuse_factor_ = std::clamp(tags.real(tag), 0.0, 1.0);
            break;
        case 90:
            diffuse_ = static_cast<std::uint32_t>(tags.integer(tag)) & kRgb;
            color_given = true;
            break;
        case 3:
            if (!other_map && diffuse_map_.empty()) {
                diffuse_map_ = tags.text(tag);
            }
            break;
        case 76: // the specular finish begins
        case 4:
            other_map = true;
            break;
        case 44:
            gloss_ = std::clamp(tags.real(tag), 0.0, 1.0);
            break;
        case 92:
            specular_ = static_cast<std::uint32_t>(tags.integer(tag)) & kRgb;
            break;
        case 140:
            opacity_ = std::clamp(tags.real(tag), 0.0, 1.0);
            break;
        case 145:
            refraction_ = std::max(tags.real(tag), 0.0);
            break;
        case 468:
            reflectivity_ = std::clamp(tags.real(tag), 0.0, 1.0);
            break;
        case 464:
        case 146:
            self_illumination_ = std::max(tags.real(tag), 0.0);
            break;
        default:
            break;
        }
    }
    diffuse_inherits_ = diffuse_inherits_ || !color_given;
}

void AcDbMaterial::dxfOut(dxf::TagWriter& writer) const {
    constexpr std::int64_t kTrueColor = 0xc2000000; // method byte of a true colour
    const auto color = [](std::uint32_t rgb) {
        return static_cast<std::int64_t>(static_cast<std::int32_t>(kTrueColor | rgb));
    };
    writer.subclass("AcDbMaterial");
    writer.text(1, name_);
    if (!description_.empty()) {
        writer.text(2, description_);
    }
    if (!diffuse_inherits_) {
        writer.integer(70, static_cast<int>(Inherit::kOwnColor));
    }
    if (diffuse_factor_ != 1) {
        writer.real(40, diffuse_factor_);
    }
    if (!diffuse_inherits_) {
        writer.integer(90, color(diffuse_));
    }
    if (!diffuse_map_.empty()) {
        writer.text(3, diffuse_map_);
    }
    if (gloss_ != 0.5) {
        writer.real(44, gloss_);
    }
    if (specular_ != kRgb) {
        writer.integer(92, color(specular_));
    }
    if (opacity_ != 1) {
        writer.real(140, opacity_);
    }
    if (refraction_ != 1) {
        writer.real(145, refraction_);
    }
    if (reflectivity_ != 0) {
        writer.real(468, reflectivity_);
    }
    if (self_illumination_ != 0) {
        writer.real(464, self_illumination_);
    }
}
