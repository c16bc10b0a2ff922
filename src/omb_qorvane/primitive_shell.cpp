// Shells: points and a list of faces of any number of corners.
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include "omb_qorvane/face_fan.h"

bool CTsAcGiGeometry::shell(std::uint32_t count, const AcGePoint3d* points,
                            std::uint32_t face_list_size, const std::int32_t* face_list,
                            const AcGiEdgeData*, const AcGiFaceData*,
                            const AcGiVertexData* vertices) {
    if (count < 3 || points == nullptr) {
        return false;
    }
    const cl_stream_transform& to_stream = transform();
    world_points_.resize(count);
    bool good = true;
    for (std::uint32_t i = 0; i < count; ++i) {
        world_points_[i] = to_stream.to_ts(points[i]);
        good = is_finite(world_points_[i]) && good; // false for a bad point or transform
    }
    if (!good) {
        drop_bad();
        return true;
    }
    const AcGeVector3d* normals = vertices != nullptr ? vertices->normals : nullptr;
    const AcGePoint3d* coordinates =
        common_.in_rpc_draw && vertices != nullptr ? vertices->mapping_coords : nullptr;
    if (!begin_shell(coordinates != nullptr)) {
        return true;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        if (normals != nullptr) {
            write_normal(transform_.direction(normals[i]));
        }
        if (coordinates != nullptr) {
            out_.texture(coordinates[i].x, coordinates[i].y);
        } else {
            out_.text("UVQ;(0,0,0)\n");
        }
        write_point(world_points_[i]);
        out_.add_vertex(static_cast<std::int32_t>(i));
    }
    const std::span<const std::int32_t> list(face_list, face_list != nullptr ? face_list_size : 0);
    for (std::size_t at = 0; at < list.size();) {
        const cl_shell_face face = take_shell_face(list, at);
        if (face.fanned) {
            out_.text("#;Need Triangulator\n");
        }
        for_each_fan_triangle(face.entries, [&](std::int32_t a, std::int32_t b, std::int32_t c) {
            // Below 0 is the count of a hole, over which a fan runs; readers know such faces.
            const auto in_range = [count](std::int32_t i) {
                return i < 0 || static_cast<std::uint32_t>(i) < count;
            };
            if (!in_range(a) || !in_range(b) || !in_range(c)) {
                ++common_.report.bad_faces;
            } else if (a != b && b != c && c != a) {
                out_.face(a, b, c);
            }
        });
    }
    end_mesh();
    return true;
}
