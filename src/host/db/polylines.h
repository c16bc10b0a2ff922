// Light-weight and heavy polylines. The points of plane polylines lie in the object's coordinate
// system: its plane is given by normal and elevation.
#pragma once

#include "host/db/entity.h"

#include <vector>

/// A circular arc segment in space.
struct AcGeCircArc3d {
    AcGePoint3d center;
    AcGeVector3d normal; ///< unit; the arc turns counter-clockwise about it
    AcGeVector3d start;  ///< unit vector from the centre to the start point
    double radius = 0;
    double sweep = 0; ///< radians, positive
    AcGePoint3d evalPoint(double angle) const;
};
struct AcGeLineSeg3d {
    AcGePoint3d start, end;
};

class AcDbPolyline : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbPolyline)
public:
    enum SegType { kLine, kArc, kCoincident, kPoint, kEmpty };
    struct Vertex {
        AcGePoint2d point;
        double bulge = 0; ///< tangent of a quarter of the segment's angle, positive to the left
        double start_width = 0, end_width = 0;
    };

    std::uint32_t numVerts() const { return static_cast<std::uint32_t>(vertices_.size()); }
    const std::vector<Vertex>& vertices() const { return vertices_; }
    void addVertex(const AcGePoint2d& point, double bulge = 0, double start_width = 0,
                   double end_width = 0);
    bool isClosed() const { return closed_; }
    void setClosed(bool closed) { closed_ = closed; }
    double elevation() const { return elevation_; }
    void setElevation(double e) { elevation_ = e; }
    double thickness() const { return thickness_; }
    void setThickness(double t) { thickness_ = t; }
    AcGeVector3d normal() const { return normal_; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }

    /// Vertex `index` in world coordinates; eInvalidIndex past the end.
    Acad::ErrorStatus getPointAt(std::uint32_t index, AcGePoint3d& point) const;
    Acad::ErrorStatus getWidthsAt(std::uint32_t index, double& start, double& end) const;
    /// The kind of the segment that begins at `index` (the last one of a closed polyline leads to
    /// vertex 0).
    SegType segType(std::uint32_t index) const;
    /// World geometry of a segment; eNotApplicable when it is of another kind.
    Acad::ErrorStatus getLineSegAt(std::uint32_t index, AcGeLineSeg3d& segment) const;
    Acad::ErrorStatus getArcSegAt(std::uint32_t index, AcGeCircArc3d& arc) const;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::vector<Vertex> vertices_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double elevation_ = 0, thickness_ = 0;
    bool closed_ = false;
};

/// A heavy polyline as files of all releases hold it: POLYLINE, its VERTEX entities, SEQEND.
/// The classes below tell by its flags what it stands for.
struct AcDbHeavyVertex {
    AcGePoint3d point; ///< object system for 2D polylines, world otherwise
    double bulge = 0, start_width = 0, end_width = 0;
    std::int32_t flags = 0;                       ///< group code 70 of the vertex
    std::array<std::int32_t, 4> face{0, 0, 0, 0}; ///< 71 to 74 of polyface face records
    std::uint32_t color_word = 0; ///< entity colour of a face record, AcCmEntityColor::word
};

class AcDbHeavyPolyline : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbHeavyPolyline)
public:
    std::int32_t flags() const { return flags_; } ///< group code 70
    void setFlags(std::int32_t flags) { flags_ = flags; }
    bool isClosed() const { return (flags_ & 1) != 0; }
    std::int32_t smoothType() const { return smooth_; } ///< 75: 0, 5, 6 or 8
    double thickness() const { return thickness_; }
    AcGeVector3d normal() const { return normal_; }
    void setThickness(double t) { thickness_ = t; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }
    double elevation() const { return elevation_; }
    void setElevation(double e) { elevation_ = e; }
    const std::vector<AcDbHeavyVertex>& vertices() const { return vertices_; }
    std::vector<AcDbHeavyVertex>& vertices() { return vertices_; }

    /// The box of the points that are drawn: those of the frame of a smoothed one left out.
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

protected:
    /// A point that is drawn: no face record, no frame point of a smoothed polyline.
    bool isDrawn(const AcDbHeavyVertex& vertex) const;
    std::vector<AcDbHeavyVertex> vertices_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double elevation_ = 0, thickness_ = 0;
    double start_width_ = 0, end_width_ = 0;
    std::int32_t flags_ = 0;
    std::int32_t m_ = 0, n_ = 0, m_density_ = 0, n_density_ = 0, smooth_ = 0; ///< 71 to 75
};

/// A plane polyline; curve-fit and spline-fit ones draw their fit vertices, not the frame.
class AcDb2dPolyline : public AcDbHeavyPolyline {
    ACRX_DECLARE_MEMBERS(AcDb2dPolyline)
public:
    /// Puts what is drawn, without the frame, into an empty light-weight polyline.
    void convertTo(AcDbPolyline& polyline) const;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
};

class AcDb3dPolyline : public AcDbHeavyPolyline {
    ACRX_DECLARE_MEMBERS(AcDb3dPolyline)
public:
    const char* notRenderedReason() const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
};

/// A grid of M by N points, closed in either direction by flags 1 and 32; smoothed ones (flag 4)
/// draw their smooth vertices with the densities as sizes.
class AcDbPolygonMesh : public AcDbHeavyPolyline {
    ACRX_DECLARE_MEMBERS(AcDbPolygonMesh)
public:
    std::int32_t mSize() const { return m_; }
    std::int32_t nSize() const { return n_; }
    void setSize(std::int32_t m, std::int32_t n) {
        m_ = m;
        n_ = n;
    }
    /// Sizes of the smoothed grid.
    void setDensity(std::int32_t m, std::int32_t n) {
        m_density_ = m;
        n_density_ = n;
    }
    const char* notRenderedReason() const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
};

class AcDbPolyFaceMesh : public AcDbHeavyPolyline {
    ACRX_DECLARE_MEMBERS(AcDbPolyFaceMesh)
public:
    /// Appends a point, or a face of one-based indices (0 for none, negative: invisible edge).
    void appendVertex(const AcGePoint3d& point);
    void appendFace(const std::array<std::int32_t, 4>& face);
    const char* notRenderedReason() const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
};
