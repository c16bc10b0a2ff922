// `CTsAcGiGeometry`: the primitives that entities draw themselves with. Each lands in the geometry
// stream. What returns false was not handled; the host then draws it in simpler primitives.
#pragma once

#include "host/db/block_reference.h"
#include "omb_qorvane/mesh_builder.h"
#include "omb_qorvane/stream_transform.h"
#include "omb_qorvane/ts_ac_common_draw.h"

#include <span>
#include <string_view>
#include <vector>

struct cl_class_facts;

class CTsAcGiGeometry : public AcGiGeometry {
    ACRX_DECLARE_MEMBERS(CTsAcGiGeometry)
public:
    explicit CTsAcGiGeometry(CTsAcCommonDraw& draw);

    AcGeMatrix3d getModelToWorldTransform() const override;
    AcGeMatrix3d getWorldToModelTransform() const override;
    bool pushModelTransform(const AcGeVector3d&) override { return false; }
    bool pushModelTransform(const AcGeMatrix3d& matrix) override;
    bool popModelTransform() override;
    AcGeMatrix3d pushPositionTransform(AcGiPositionTransformBehavior, const AcGePoint3d&) override {
        return {};
    }
    AcGeMatrix3d pushPositionTransform(AcGiPositionTransformBehavior, const AcGePoint2d&) override {
        return {};
    }
    AcGeMatrix3d pushScaleTransform(AcGiScaleTransformBehavior, const AcGePoint3d&) override {
        return {};
    }
    AcGeMatrix3d pushScaleTransform(AcGiScaleTransformBehavior, const AcGePoint2d&) override {
        return {};
    }
    AcGeMatrix3d pushOrientationTransform(AcGiOrientationTransformBehavior) override { return {}; }
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override;
    bool circle(const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&) override {
        return false;
    }
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& start, double sweep, AcGiArcType type) override;
    bool circularArc(const AcGePoint3d& start, const AcGePoint3d& point, const AcGePoint3d& end,
                     AcGiArcType type) override;
    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  std::intptr_t marker) override;
    bool polyline(const AcGiPolyline&) override { return false; }
    bool polyPolyline(std::uint32_t, const AcGiPolyline*) override { return false; }
    bool polygon(std::uint32_t, const AcGePoint3d*) override { return false; }
    bool polyPolygon(std::uint32_t, const std::uint32_t*, const AcGePoint3d*) override {
        return false;
    }
    bool mesh(std::uint32_t rows, std::uint32_t columns, const AcGePoint3d* points,
              const AcGiEdgeData* edges, const AcGiFaceData* faces, const AcGiVertexData* vertices,
              bool auto_normals) override;
    bool shell(std::uint32_t count, const AcGePoint3d* points, std::uint32_t face_list_size,
               const std::int32_t* face_list, const AcGiEdgeData* edges, const AcGiFaceData* faces,
               const AcGiVertexData* vertices) override;
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, double, double, double,
              const char*) override {
        return false;
    }
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, const char*,
              std::int32_t, bool, const AcGiTextStyle&) override {
        return false;
    }
    bool xline(const AcGePoint3d&, const AcGePoint3d&) override { return false; }
    bool ray(const AcGePoint3d&, const AcGePoint3d&) override { return false; }
    bool pline(const AcDbPolyline& polyline, std::uint32_t from, std::uint32_t count) override;
    bool draw(AcGiDrawable* drawable) override;
    bool image(const AcGiImageBGRA32&, const AcGePoint3d&, const AcGeVector3d&,
               const AcGeVector3d&) override {
        return false;
    }
    bool rowOfDots(int, const AcGePoint3d&, const AcGeVector3d&) override { return false; }
    bool ellipticalArc(const AcGePoint3d&, const AcGeVector3d&, double, double, double, double,
                       double, AcGiArcType) override {
        return false;
    }
    bool pushClipBoundary(AcGiClipBoundary*) override { return false; }
    void popClipBoundary() override {}
    bool edge(const AcGiEdge2dArray&) override { return false; }

private:
    // mesh_preamble.cpp: what stands ahead of a mesh's vertices.
    /// Comment, MESH to BROT, and the brackets that must open. False in a scan.
    bool begin_mesh(std::string_view comment, bool own_texture_coordinates);
    bool begin_shell(bool own_texture_coordinates);
    void write_built_mesh(const cl_mesh_builder& mesh);
    void end_mesh();
    void add_object_properties();
    void write_material_lines(bool shell);
    void write_key_lines();
    /// Tells the exporter of a material that the object has beside its layer's.
    void note_host_materials();
    std::string_view mapping_key();
    /// Name, index and comment of the material that counts, kept until another one counts.
    void find_effective_material();
    /// True, and counted, when a coordinate is no finite number: the primitive is then dropped.
    bool drop_if_bad(std::span<const AcGePoint3d> points);
    void drop_bad();

    void write_point(const AcGePoint3d& ts_point);
    void write_normal(const AcGeVector3d& unit) { out_.normal(unit.x, unit.y, unit.z); }
    const cl_stream_transform& transform();

    // walk.cpp: the steps of draw.
    void draw_with_traits(AcGiDrawable& drawable, CTsAcSubEntityTraits& own);
    bool push_block_row(const AcDbBlockReference& reference, bool& pushed);
    void draw_entity(AcGiDrawable& drawable, const AcDbEntity* entity, const cl_class_facts& facts,
                     bool& pushed);
    void push_table_record_row(const AcDbBlockTableRecord& block, bool& pushed);
    void draw_itself(AcGiDrawable& drawable);

    CTsAcCommonDraw& common_;
    cl_stream_writer& out_;
    cl_stream_transform transform_;
    bool transform_valid_ = false;
    std::string key_text_;
    AcDbStub* last_material_ = nullptr; ///< whose name and index stand below
    bool last_material_valid_ = false;
    std::string material_name_, material_lines_;
    int material_index_ = 0;                ///< of the name, in the stream
    std::vector<AcGePoint3d> world_points_; ///< of the shell that is written
    struct ring_point {
        AcGeVector3d offset; ///< from the centre, model space
        AcGeVector3d normal; ///< world
    };
    std::vector<ring_point> ring_; ///< of the circle that is written
};
