// Flat frames and windows: embedded objects, viewports, cameras, sections, masks.
#pragma once

#include "host/db/image.h"

/// An object of another program, of old files: it has no frame.
class AcDbOleFrame : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbOleFrame)
public:
    const char* notRenderedReason() const override { return "ole-object"; }
};

/// An object of another program in a rectangle.
class AcDbOle2Frame : public AcDbOleFrame {
    ACRX_DECLARE_MEMBERS(AcDbOle2Frame)
public:
    AcGePoint3d upperLeft() const { return upper_left_; }
    AcGePoint3d lowerRight() const { return lower_right_; }
    const std::string& description() const { return description_; }
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcGePoint3d upper_left_, lower_right_;
    std::string description_;
};

/// A window of a layout.
class AcDbViewport : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbViewport)
public:
    AcGePoint3d centerPoint() const { return center_; }
    double width() const { return width_; }
    double height() const { return height_; }
    std::int32_t number() const { return number_; }
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override { return "viewport"; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcGePoint3d center_;
    double width_ = 0, height_ = 0;
    std::int32_t number_ = 0;
};

/// The mark of a named view with a camera. It has no box.
class AcDbCamera : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbCamera)
public:
    AcDbObjectId view() const { return view_; }
    const char* notRenderedReason() const override { return "view-frame"; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcDbObjectId view_;
};

/// A section plane.
class AcDbSection : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbSection)
public:
    const std::string& name() const { return name_; }
    const std::vector<AcGePoint3d>& vertices() const { return vertices_; }
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override { return "view-frame"; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    std::string name_;
    AcGeVector3d vertical_ = AcGeVector3d::kZAxis;
    double top_ = 0, bottom_ = 0;
    std::vector<AcGePoint3d> vertices_;
};

/// An area that hides what lies below it on paper. In space there is nothing to it.
class AcDbWipeout : public AcDbImage {
    ACRX_DECLARE_MEMBERS(AcDbWipeout)
public:
    std::vector<AcGePoint3d> getVertices() const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override { return "mask"; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    AcGePoint3d origin_;
    AcGeVector3d u_{1, 0, 0}, v_{0, 1, 0};
    AcGePoint2d size_{1, 1};
    std::int32_t boundary_type_ = 1;
    std::vector<AcGePoint2d> boundary_;
};
