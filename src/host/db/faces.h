// Faces, solids and subdivision meshes.
#pragma once

#include "host/db/entity.h"

#include <array>
#include <vector>

/// A 3DFACE: a triangle (third and fourth corner equal) or a quadrilateral, world coordinates.
class AcDbFace : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbFace)
public:
    AcDbFace() = default;
    AcDbFace(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c, const AcGePoint3d& d)
      : points_{a, b, c, d} {}
    const std::array<AcGePoint3d, 4>& points() const { return points_; }
    /// Bit i set: the edge from corner i is invisible. It hides lines only, never the face.
    std::uint8_t invisibleEdges() const { return edges_; }
    void setInvisibleEdges(std::uint8_t edges) { edges_ = edges; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::array<AcGePoint3d, 4> points_;
    std::uint8_t edges_ = 0;
};

/// A SOLID or TRACE: a filled quadrilateral in its object's plane, corners in the order 1 2 4 3,
/// extruded by its thickness.
class AcDbSolid : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbSolid)
public:
    const std::array<AcGePoint3d, 4>& points() const { return points_; } ///< object system
    void setPoints(const std::array<AcGePoint3d, 4>& points) { points_ = points; }
    AcGeVector3d normal() const { return normal_; }
    void setNormal(const AcGeVector3d& n) { normal_ = n; }
    double thickness() const { return thickness_; }
    void setThickness(double t) { thickness_ = t; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    std::uint32_t setAttributes(AcGiDrawableTraits* traits) override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::array<AcGePoint3d, 4> points_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double thickness_ = 0;
};

class AcDbTrace : public AcDbSolid {
    ACRX_DECLARE_MEMBERS(AcDbTrace)
};

/// A MESH: faces of any number of corners with creases, smoothed by Catmull-Clark as often as its
/// level says. What is drawn is the smoothed surface with its normals.
class AcDbSubDMesh : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbSubDMesh)
public:
    const std::vector<AcGePoint3d>& vertices() const { return vertices_; }
    /// A count of corners, then that many indices, face after face.
    const std::vector<std::int32_t>& faceList() const { return face_list_; }
    const std::vector<std::int32_t>& edges() const { return edges_; } ///< pairs of indices
    const std::vector<double>& creases() const { return creases_; }   ///< one an edge
    std::int32_t subdivisionLevel() const { return level_; }
    void set(std::vector<AcGePoint3d> vertices, std::vector<std::int32_t> face_list,
             std::int32_t level);
    /// Edges as pairs of vertex indices, and a crease for each: negative for always, n for the
    /// first n rounds of smoothing.
    void setCreases(std::vector<std::int32_t> edges, std::vector<double> creases);

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::vector<AcGePoint3d> vertices_;
    std::vector<std::int32_t> face_list_, edges_;
    std::vector<double> creases_;
    std::int32_t level_ = 0;
};
