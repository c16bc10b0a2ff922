// Groups of entities.
#pragma once

#include "host/db/object.h"

#include <string>
#include <vector>

/// DXF GROUP. Its name is its key in the drawing's dictionary ACAD_GROUP; which group an entity
/// belongs to is asked of the database (groupOf).
class AcDbGroup : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbGroup)
public:
    std::string name() const; ///< empty while no dictionary holds it
    const std::string& description() const { return description_; }
    void setDescription(std::string text) { description_ = std::move(text); }
    bool isAnonymous() const { return unnamed_ != 0; }
    void setAnonymous(bool unnamed) { unnamed_ = unnamed ? 1 : 0; }
    bool isSelectable() const { return selectable_ != 0; }
    void setSelectable(bool selectable) { selectable_ = selectable ? 1 : 0; }

    /// As stored: an id may lead to nothing, or to what is no entity.
    const std::vector<AcDbObjectId>& members() const { return members_; }
    bool has(AcDbObjectId entity) const;
    void append(AcDbObjectId entity); ///< one that is a member already is not added again
    Acad::ErrorStatus remove(AcDbObjectId entity);

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    void members_changed();
    std::string description_;
    std::int32_t unnamed_ = 0, selectable_ = 1;
    std::vector<AcDbObjectId> members_;
};
