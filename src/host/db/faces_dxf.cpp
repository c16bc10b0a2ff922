// Faces, solids and meshes in DXF.
#include "host/db/faces.h"
#include "host/dxf/fields.h"

#include <algorithm>

namespace {

/// Reads corner coordinates 10 to 33 into four points. Returns a bit for each corner that came.
unsigned read_corner(const dxf::Tag& tag, const dxf::ObjectTags& tags,
                     std::array<AcGePoint3d, 4>& points) {
    const int corner = tag.code % 10, axis = tag.code / 10 - 1;
    if (corner > 3 || axis < 0 || axis > 2) {
        return 0;
    }
    dxf::set_coordinate(points[static_cast<std::size_t>(corner)], axis, tags.real(tag));
    return 1U << corner;
}

void complete_corners(unsigned given, std::array<AcGePoint3d, 4>& points) {
    if ((given & 8) == 0) { // some programs leave the fourth corner of a triangle out
        points[3] = points[2];
    }
}

} // namespace

void AcDbFace::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    unsigned given = 0;
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code < 40) {
            given |= read_corner(tag, tags, points_);
        } else if (tag.code == 70) {
            edges_ = static_cast<std::uint8_t>(tags.integer(tag) & 15);
        }
    }
    complete_corners(given, points_);
}

void AcDbFace::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbFace");
    for (int i = 0; i < 4; ++i) {
        writer.point(10 + i, points_[static_cast<std::size_t>(i)]);
    }
    if (edges_ != 0) {
        writer.integer(70, edges_);
    }
}

void AcDbSolid::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    unsigned given = 0;
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 39) {
            thickness_ = tags.real(tag);
        } else if (tag.code < 40) {
            given |= read_corner(tag, tags, points_);
        } else if (tag.code == 210 || tag.code == 220 || tag.code == 230) {
            dxf::set_coordinate(normal_, tag.code / 10 - 21, tags.real(tag));
        }
    }
    complete_corners(given, points_);
    dxf::repair_normal(normal_, tags);
}

void AcDbSolid::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbTrace"); // solids and traces share the marker
    for (int i = 0; i < 4; ++i) {
        writer.point(10 + i, points_[static_cast<std::size_t>(i)]);
    }
    writer.thickness(thickness_);
    writer.extrusion(normal_);
}

namespace {

/// The lists of a MESH follow each other: a count, then values of a code that lists share.
enum class MeshList { kNone, kVertices, kFaces, kEdges, kCreases, kOverrides };

struct MeshListCode {
    int code;
    MeshList list;
};
constexpr MeshListCode kMeshLists[] = {{92, MeshList::kVertices},
                                       {93, MeshList::kFaces},
                                       {94, MeshList::kEdges},
                                       {95, MeshList::kCreases}};

MeshList list_of(int code) {
    for (const MeshListCode& row : kMeshLists) {
        if (row.code == code) {
            return row.list;
        }
    }
    return MeshList::kNone;
}

/// Faces that name corners which are not there, or counts beyond the list, are cut off.
bool trim_faces(std::vector<std::int32_t>& faces, std::size_t vertices) {
    std::vector<std::int32_t> kept;
    bool good = true;
    std::size_t i = 0;
    while (i < faces.size()) {
        const std::int32_t count = faces[i];
        if (count < 0 || static_cast<std::size_t>(count) > faces.size() - i - 1) {
            good = false;
            break;
        }
        const auto begin = faces.begin() + static_cast<std::ptrdiff_t>(i);
        const bool inside = count >= 3 && std::all_of(begin + 1, begin + 1 + count, [&](int v) {
                                return v >= 0 && static_cast<std::size_t>(v) < vertices;
                            });
        if (inside) {
            kept.insert(kept.end(), begin, begin + 1 + count);
        }
        good = good && inside;
        i += static_cast<std::size_t>(count) + 1;
    }
    if (!good) {
        faces = std::move(kept);
    }
    return good;
}

} // namespace

void AcDbSubDMesh::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    MeshList list = MeshList::kNone;
    for (const dxf::Tag& tag : tags.own()) {
        if (tag.code == 91 && list != MeshList::kOverrides) {
            level_ = std::clamp(tags.int32(tag), 0, 255);
        } else if (list_of(tag.code) != MeshList::kNone && list != MeshList::kOverrides) {
            list = list_of(tag.code);
        } else if (tag.code == 90) {
            if (list == MeshList::kFaces) {
                face_list_.push_back(tags.int32(tag));
            } else if (list == MeshList::kEdges) {
                edges_.push_back(tags.int32(tag));
            } else if (list == MeshList::kCreases) {
                list = MeshList::kOverrides; // the count of property overrides: no geometry
            }
        } else if (tag.code == 140 && list == MeshList::kCreases) {
            creases_.push_back(tags.real(tag));
        } else if (list == MeshList::kVertices && tag.code % 10 == 0 && tag.code <= 30) {
            if (tag.code == 10) {
                vertices_.emplace_back();
            }
            if (!vertices_.empty()) {
                dxf::set_coordinate(vertices_.back(), tag.code / 10 - 1, tags.real(tag));
            }
        }
    }
    const std::size_t given_edges = edges_.size() / 2;
    std::erase_if(creases_, [&, i = std::size_t{0}](double) mutable { return i++ >= given_edges; });
    const bool edges_good = std::all_of(edges_.begin(), edges_.end(), [&](int v) {
        return v >= 0 && static_cast<std::size_t>(v) < vertices_.size();
    });
    if (!edges_good || edges_.size() % 2 != 0) {
        edges_.clear();
        creases_.clear();
    }
    if (!trim_faces(face_list_, vertices_.size()) || !edges_good) {
        tags.context().lost("dxf-bad-mesh", "a mesh names corners that it does not have",
                            tags.all().front().begin);
    }
}

void AcDbSubDMesh::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbSubDMesh");
    writer.integer(71, 2); // version
    writer.integer(72, 0); // creases are not blended
    writer.integer(91, level_);
    writer.integer(92, static_cast<std::int64_t>(vertices_.size()));
    for (const AcGePoint3d& p : vertices_) {
        writer.point(10, p);
    }
    const auto write_list = [&](int code, const std::vector<std::int32_t>& values,
                                std::size_t count) {
        writer.integer(code, static_cast<std::int64_t>(count));
        for (const std::int32_t value : values) {
            writer.integer(90, value);
        }
    };
    write_list(93, face_list_, face_list_.size());
    write_list(94, edges_, edges_.size() / 2);
    writer.integer(95, static_cast<std::int64_t>(creases_.size()));
    for (const double crease : creases_) {
        writer.real(140, crease);
    }
    writer.integer(90, 0); // no property overrides
}
