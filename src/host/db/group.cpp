// Groups, and which group an entity belongs to.
#include "host/db/group.h"

#include "host/db/database_impl.h"
#include "host/dxf/fields.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbGroup, AcDbObject, "GROUP")

namespace {

/// The entries of the drawing's dictionary of groups, in order.
std::vector<AcDbDictionary::Entry> group_entries(const AcDbDatabase& db) {
    // Not opened: someone may hold them open to write, and the answer is kept.
    const auto dictionary_of = [](AcDbObjectId id) {
        return id.isValid() ? AcDbDictionary::cast(id.stub()->object) : nullptr;
    };
    const AcDbDictionary* root = dictionary_of(db.namedObjectsDictionaryId());
    AcDbObjectId id;
    if (root == nullptr || root->getAt("ACAD_GROUP", id) != Acad::eOk) {
        return {};
    }
    const AcDbDictionary* groups = dictionary_of(id);
    return groups != nullptr ? groups->entries() : std::vector<AcDbDictionary::Entry>();
}

} // namespace

std::string AcDbGroup::name() const {
    if (const AcDbDatabase* db = database(); db != nullptr) {
        for (const AcDbDictionary::Entry& entry : group_entries(*db)) {
            if (entry.id == objectId()) {
                return entry.key;
            }
        }
    }
    return {};
}

bool AcDbGroup::has(AcDbObjectId entity) const {
    return std::find(members_.begin(), members_.end(), entity) != members_.end();
}

void AcDbGroup::append(AcDbObjectId entity) {
    if (!entity.isNull() && !has(entity)) {
        members_.push_back(entity);
        members_changed();
    }
}

Acad::ErrorStatus AcDbGroup::remove(AcDbObjectId entity) {
    if (std::erase(members_, entity) == 0) {
        return Acad::eKeyNotFound;
    }
    members_changed();
    return Acad::eOk;
}

void AcDbGroup::members_changed() {
    assertWriteEnabled();
    if (AcDbDatabase* db = database(); db != nullptr) {
        DxfAccess::impl(*db).forget_groups();
    }
}

void AcDbGroup::dxfIn(const dxf::ObjectTags& tags) {
    using F = dxf::Field<AcDbGroup>;
    static constexpr F kFields[] = {F(300, &AcDbGroup::description_), F(70, &AcDbGroup::unnamed_),
                                    F(71, &AcDbGroup::selectable_)};
    const std::span<const dxf::Tag> own = tags.subclass("AcDbGroup");
    dxf::load_fields(*this, kFields, own, tags);
    for (const dxf::Tag& tag : own) {
        if (const AcDbObjectId id = tag.code == 340 ? tags.id(tag) : AcDbObjectId(); !id.isNull()) {
            members_.push_back(id);
        }
    }
    members_.shrink_to_fit();
}

void AcDbGroup::dxfOut(dxf::TagWriter& writer) const {
    writer.subclass("AcDbGroup");
    using F = dxf::Field<AcDbGroup>;
    static constexpr F kFields[] = {F(300, &AcDbGroup::description_), F(70, &AcDbGroup::unnamed_),
                                    F(71, &AcDbGroup::selectable_)};
    dxf::write_fields(*this, kFields, writer);
    for (const AcDbObjectId id : members_) {
        writer.id(340, id);
    }
}

// ---- the database's side

namespace {

/// The group of an id, open or not; null when there is none any more.
const AcDbGroup* group_of_id(AcDbObjectId id) {
    return id.isValid() && !id.isErased() ? AcDbGroup::cast(id.stub()->object) : nullptr;
}

} // namespace

std::vector<AcDbObjectId> AcDbDatabase::groups() const {
    std::vector<AcDbObjectId> ids;
    for (const AcDbDictionary::Entry& entry : group_entries(*this)) {
        if (group_of_id(entry.id) != nullptr) {
            ids.push_back(entry.id);
        }
    }
    return ids;
}

int AcDbDatabase::groupOf(AcDbObjectId entity) const {
    if (!impl_->groups_known) {
        impl_->groups_known = true;
        int number = 0;
        for (const AcDbObjectId id : groups()) {
            for (const AcDbObjectId member : group_of_id(id)->members()) {
                if (member.isValid() && AcDbEntity::cast(member.stub()->object) != nullptr) {
                    impl_->group_of.try_emplace(member.stub(), number); // the first group counts
                }
            }
            ++number;
        }
    }
    const auto at = impl_->group_of.find(entity.stub());
    return at != impl_->group_of.end() ? at->second : -1;
}
