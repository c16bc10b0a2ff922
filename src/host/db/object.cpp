// Identity, opening and closing, extended data.
#include "host/db/object.h"

#include "host/db/database_impl.h"
#include "host/db/group.h"
#include "host/db/material_mapper.h"
#include "host/dxf/load_context.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/source_tags.h"

#include <algorithm>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcGiDrawable)

AcDbObject::AcDbObject() = default;
AcDbObject::~AcDbObject() = default;

std::string AcDbObject::dxfName() const {
    const char* name = isA()->dxfName();
    return name != nullptr ? name : "";
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
    AcDbStub* row = id_.stub();
    if (row == nullptr) {
        return Acad::eNotInDatabase;
    }
    if (row->open_for_write) {
        return Acad::eOk;
    }
    if (row->readers > 1) {
        return Acad::eWasOpenForRead;
    }
    row->readers = 0;
    row->open_for_write = true;
    modified_ = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::close() {
    AcDbStub* row = id_.stub();
    if (row == nullptr) {
        return Acad::eNotInDatabase;
    }
    if (row->open_for_write) {
        row->open_for_write = false;
    } else if (row->readers > 0) {
        --row->readers;
    }
    return Acad::eOk;
}

void AcDbObject::assertWriteEnabled() { modified_ = true; }

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
    if (id_.isNull()) {
        return Acad::eNotInDatabase;
    }
    id_.stub()->erased = erasing;
    modified_ = true;
    if (AcDbGroup::cast(this) != nullptr) {
        DxfAccess::impl(*database()).forget_groups();
    }
    return Acad::eOk;
}

bool AcDbObject::mayHaveAttachments() const {
    return extras_ != nullptr ||
           (entity_flags_ & (DxfAccess::kExtended | DxfAccess::kAttached)) != 0;
}

AcDbObjectId AcDbObject::extensionDictionary() const {
    AcDbDatabase* db = database();
    if (db == nullptr) {
        return {};
    }
    if (extras_ != nullptr && extras_->extension_dictionary != 0) {
        return db->getAcDbObjectId(AcDbHandle(extras_->extension_dictionary));
    }
    if ((entity_flags_ & DxfAccess::kExtended) == 0) {
        return {};
    }
    const std::vector<dxf::Tag> tags = dxf::source_tags(*this);
    if (tags.empty()) {
        return {};
    }
    dxf::LoadContext context(*db, *DxfAccess::impl(*db).document, nullptr);
    return db->getAcDbObjectId(AcDbHandle(dxf::ObjectTags(tags, context).extension_dictionary()));
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
    AcDbDatabase* db = database();
    if (db == nullptr) {
        return Acad::eNoDatabase;
    }
    const AcDbObjectId present = extensionDictionary();
    if (!present.isNull()) {
        if (present.isErased()) {
            AcDbObjectPointer<AcDbDictionary> dictionary(present, AcDb::kForWrite, true);
            return dictionary ? dictionary->erase(false) : dictionary.openStatus();
        }
        return Acad::eOk;
    }
    const AcDbObjectId id = db->addAcDbObject(std::make_unique<AcDbDictionary>(), id_);
    if (extras_ == nullptr) {
        extras_ = std::make_unique<dxf::ObjectExtras>();
    }
    extras_->extension_dictionary = id.handle().value();
    assertWriteEnabled();
    return Acad::eOk;
}

namespace {

constexpr int kApplicationCode = 1001;

/// The groups of extended data in order, each with its application name first.
std::vector<AcDbValues> source_groups(const AcDbObject& object) {
    std::vector<AcDbValues> groups;
    if (!DxfAccess::attached(object)) {
        return groups;
    }
    const std::vector<dxf::Tag> tags = dxf::source_tags(object);
    if (tags.empty()) {
        return groups;
    }
    AcDbDatabase& db = *object.database();
    dxf::LoadContext context(db, *DxfAccess::impl(db).document, nullptr);
    const dxf::ObjectTags divided(tags, context);
    for (AcDbValue& value : dxf::to_values(divided.xdata(), divided)) {
        if (value.code == kApplicationCode) {
            groups.emplace_back();
        }
        if (!groups.empty()) {
            groups.back().push_back(std::move(value));
        }
    }
    return groups;
}

void append(AcDbValues& all, const AcDbValues& group) {
    all.insert(all.end(), group.begin(), group.end());
}

} // namespace

AcDbValues AcDbObject::xData(const char* application) const {
    AcDbValues result;
    const auto wanted = [&](const std::string& name) {
        return application == nullptr || dxf::fold_name(name) == dxf::fold_name(application);
    };
    const auto* changed = extras_ != nullptr ? &extras_->xdata : nullptr;
    for (const AcDbValues& group : source_groups(*this)) {
        const std::string name = group.front().text();
        const bool replaced = changed != nullptr && changed->contains(dxf::fold_name(name));
        if (!replaced && wanted(name)) {
            append(result, group);
        }
    }
    if (changed != nullptr) {
        for (const auto& [key, group] : *changed) {
            if (!group.empty() && wanted(group.front().text())) {
                append(result, group);
            }
        }
    }
    return result;
}

Acad::ErrorStatus AcDbObject::setXData(const AcDbValues& values) {
    if (values.empty() || values.front().code != kApplicationCode) {
        return Acad::eInvalidInput;
    }
    const std::string name = values.front().text();
    const bool plain = std::all_of(values.begin() + 1, values.end(), [](const AcDbValue& v) {
        return v.code >= 1000 && v.code != kApplicationCode && dxf::fits_code(v);
    });
    if (name.empty() || !plain) {
        return Acad::eInvalidInput;
    }
    if (extras_ == nullptr) {
        extras_ = std::make_unique<dxf::ObjectExtras>();
    }
    // The name alone takes the application's data away.
    AcDbValues& kept = extras_->xdata[dxf::fold_name(name)];
    kept = values.size() > 1 ? values : AcDbValues();
    if (dxf::fold_name(name) == dxf::fold_name(kAcDbMapperApplication)) {
        extras_->mapper = acdbMapperOf(kept);
    }
    assertWriteEnabled();
    register_applications();
    return Acad::eOk;
}

/// The names of all applications whose data were set stand in the table of applications.
void AcDbObject::register_applications() {
    AcDbDatabase* db = database();
    if (db == nullptr || extras_ == nullptr) {
        return;
    }
    for (const auto& [key, group] : extras_->xdata) {
        AcDbSymbolTable& applications = DxfAccess::table(*db, "APPID");
        if (!group.empty() && !applications.has(group.front().text())) {
            auto record = std::make_unique<AcDbNamedRecord>("APPID");
            record->setName(group.front().text());
            AcDbObjectId id;
            applications.add(std::move(record), id);
        }
    }
}

void AcDbObject::dxfIn(const dxf::ObjectTags&) {}
void AcDbObject::dxfOut(dxf::TagWriter&) const {}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool open_erased) {
    object = nullptr;
    AcDbStub* row = id.stub();
    if (row == nullptr || row->object == nullptr) {
        return Acad::eNullObjectId;
    }
    if (row->erased && !open_erased) {
        return Acad::eWasErased;
    }
    if (row->open_for_write) {
        return Acad::eWasOpenForWrite;
    }
    if (mode == AcDb::kForWrite) {
        if (row->readers > 0) {
            return Acad::eWasOpenForRead;
        }
        row->open_for_write = true;
        row->object->assertWriteEnabled(); // setters are plain: whoever opens to write may change
    } else if (mode == AcDb::kForRead) {
        ++row->readers;
    }
    object = row->object;
    return Acad::eOk;
}
