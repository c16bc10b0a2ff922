// Small things of annotation that have no body: shapes, tolerance frames, endless lines, markers.
#pragma once

#include "host/db/entity.h"

/// A figure of a shape file.
class AcDbShape : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbShape)
public:
    AcGePoint3d position() const { return position_; }
    const std::string& name() const { return name_; }
    double size() const { return size_; }
    double thickness() const { return thickness_; }
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override; ///< its place only
    const char* notRenderedReason() const override;
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcGePoint3d position_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    std::string name_;
    double size_ = 1, thickness_ = 0, rotation_ = 0, width_factor_ = 1, oblique_ = 0;
};

/// A feature control frame: DXF TOLERANCE.
class AcDbFcf : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbFcf)
public:
    AcGePoint3d location() const { return location_; }
    const std::string& text() const { return text_; }
    const std::string& dimensionStyleName() const { return style_; }
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override; ///< its place only
    const char* notRenderedReason() const override { return "annotation"; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcGePoint3d location_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis, direction_ = AcGeVector3d::kXAxis;
    std::string text_, style_;
};

/// A line that ends at neither side. It has no box.
class AcDbXline : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbXline)
public:
    AcGePoint3d basePoint() const { return base_; }
    AcGeVector3d unitDir() const { return direction_; }
    const char* notRenderedReason() const override { return "curve-without-thickness"; }
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;

protected:
    AcGePoint3d base_;
    AcGeVector3d direction_ = AcGeVector3d::kXAxis;
};

/// A line that ends at one side. It has no box.
class AcDbRay : public AcDbXline {
    ACRX_DECLARE_MEMBERS(AcDbRay)
public:
    bool worldDraw(AcGiWorldDraw* draw) override;
};

/// A mark of a place on earth.
class AcDbGeoPositionMarker : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbGeoPositionMarker)
public:
    AcGePoint3d position() const { return position_; }
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override; ///< its place only
    const char* notRenderedReason() const override { return "annotation"; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcGePoint3d position_;
};
