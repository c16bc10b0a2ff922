// Objects and entities of kinds that the host does not know: kept with all their tags.
#pragma once

#include "host/db/entity.h"

/// An entity of an unknown kind. Its tags stay in the drawing's file and are written back.
class AcDbUnknownEntity : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbUnknownEntity)
public:
    std::string dxfName() const override { return dxf_name_; }
    const char* notRenderedReason() const override;
    void setDxfName(std::string name) { dxf_name_ = std::move(name); }

private:
    std::string dxf_name_;
};

class AcDbUnknownObject : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbUnknownObject)
public:
    std::string dxfName() const override { return dxf_name_; }
    void setDxfName(std::string name) { dxf_name_ = std::move(name); }

private:
    std::string dxf_name_;
};
