// Lines, arcs and other single curves. Coordinates are world coordinates except where told;
// angles are radians.
#pragma once

#include "host/db/entity.h"

#include <vector>

class AcDbLine : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbLine)
public:
    AcDbLine() = default;
    AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end)
      : start_(start)
      , end_(end) {}
    AcGePoint3d startPoint() const { return start_; }
    AcGePoint3d endPoint() const { return end_; }
    AcGeVector3d normal() const { return normal_; }
    double thickness() const { return thickness_; }
    void setStartPoint(const AcGePoint3d& p) { start_ = p; }
    void setEndPoint(const AcGePoint3d& p) { end_ = p; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }
    void setThickness(double t) { thickness_ = t; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcGePoint3d start_, end_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double thickness_ = 0;
};

class AcDbPoint : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbPoint)
public:
    AcGePoint3d position() const { return position_; }
    void setPosition(const AcGePoint3d& p) { position_ = p; }
    double thickness() const { return thickness_; }
    void setThickness(double t) { thickness_ = t; }
    AcGeVector3d normal() const { return normal_; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcGePoint3d position_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double thickness_ = 0;
};

class AcDbCircle : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbCircle)
public:
    AcDbCircle() = default;
    AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius)
      : center_(center)
      , normal_(normal)
      , radius_(radius) {}
    AcGePoint3d center() const { return center_; } ///< world; stored in the object's system
    AcGeVector3d normal() const { return normal_; }
    double radius() const { return radius_; }
    double thickness() const { return thickness_; }
    void setCenter(const AcGePoint3d& p) { center_ = p; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }
    void setRadius(double r) { radius_ = r; }
    void setThickness(double t) { thickness_ = t; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcGePoint3d center_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double radius_ = 1;
    double thickness_ = 0;
};

class AcDbArc : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbArc)
public:
    AcDbArc() = default;
    AcDbArc(const AcGePoint3d& center, double radius, double start_angle, double end_angle)
      : center_(center)
      , radius_(radius)
      , start_angle_(start_angle)
      , end_angle_(end_angle) {}
    AcGePoint3d center() const { return center_; }
    AcGeVector3d normal() const { return normal_; }
    double radius() const { return radius_; }
    double startAngle() const { return start_angle_; } ///< from the object system's X axis
    double endAngle() const { return end_angle_; }
    /// Counter-clockwise angle from start to end, in (0, 2 pi].
    double sweep() const;
    AcGePoint3d pointAt(double angle) const;
    double thickness() const { return thickness_; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }
    void setThickness(double t) { thickness_ = t; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcGePoint3d center_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double radius_ = 1;
    double start_angle_ = 0, end_angle_ = 1;
    double thickness_ = 0;
};

class AcDbEllipse : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbEllipse)
public:
    AcGePoint3d center() const { return center_; }
    AcGeVector3d normal() const { return normal_; }
    AcGeVector3d majorAxis() const { return major_; } ///< with the length of the half axis
    double radiusRatio() const { return ratio_; }
    double startParam() const { return start_; } ///< parameter, not angle
    double endParam() const { return end_; }
    void set(const AcGePoint3d& center, const AcGeVector3d& normal, const AcGeVector3d& major,
             double ratio, double start, double end);
    AcGePoint3d pointAt(double parameter) const;
    double thickness() const { return thickness_; } ///< few programs write one
    void setThickness(double t) { thickness_ = t; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcGePoint3d center_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    AcGeVector3d major_ = AcGeVector3d::kXAxis;
    double ratio_ = 1, thickness_ = 0;
    double start_ = 0, end_ = 6.283185307179586;
};

/// A NURBS curve. Without control points it is interpolated through its fit points.
class AcDbSpline : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbSpline)
public:
    int degree() const { return degree_; }
    bool isClosed() const { return (flags_ & 1) != 0; }
    const std::vector<double>& knots() const { return knots_; }
    const std::vector<double>& weights() const { return weights_; } ///< empty when not rational
    const std::vector<AcGePoint3d>& controlPoints() const { return control_points_; }
    const std::vector<AcGePoint3d>& fitPoints() const { return fit_points_; }
    void set(int degree, std::vector<double> knots, std::vector<AcGePoint3d> control_points,
             std::vector<double> weights = {}, bool closed = false);
    /// A curve of degree 3 through these points instead of control points.
    void setFitPoints(std::vector<AcGePoint3d> points, bool closed = false);
    double thickness() const { return thickness_; } ///< few programs write one
    void setThickness(double t) { thickness_ = t; }
    /// Points along the curve, chords no farther from it than `deviation`.
    std::vector<AcGePoint3d> sample(double deviation) const;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    int degree_ = 3;
    std::uint32_t flags_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double thickness_ = 0;
    std::vector<double> knots_, weights_;
    std::vector<AcGePoint3d> control_points_, fit_points_;
};
