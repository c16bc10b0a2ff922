// Marks triangles that lie in one plane with, and over, triangles of meshes that look different.
#include "renderer/face_tree.h"
#include "renderer/shared_places.h"

#include "renderer/box_tree.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <atomic>
#include <optional>

namespace renderer {

namespace {

/// The triangle that stands at `index` when the lists are one behind the other.
SoupTriangle& triangle_at(TriangleSoup& soup, std::size_t index) {
    std::size_t kind = 0;
    while (index >= soup.lists[kind].size())
        index -= soup.lists[kind++].size();
    return soup.lists[kind][index];
}

} // namespace

void mark_coplanar_triangles(TriangleSoup& soup, std::size_t materials) {
    std::vector<Face> faces;
    faces.reserve(soup.triangle_count());
    for (const auto& list : soup.lists)
        for (const SoupTriangle& t : list)
            faces.push_back(make_face(soup, t, materials));
    const bool one_look = std::all_of(faces.begin(), faces.end(),
                                      [&](const Face& f) { return f.look == faces.front().look; });
    if (one_look)
        return;
    const FaceTree tree(faces);
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, faces.size(), 256),
                      [&](const auto& range) {
                          for (std::size_t i = range.begin(); i < range.end(); ++i) {
                              triangle_at(soup, i).coplanar = tree.is_shared(faces[i]) ? 1 : 0;
                          }
                      });
}

namespace {

/// Faces of one prototype and their tree; the tree refers to the faces.
struct PrototypeFaces {
    std::vector<Face> faces;
    std::optional<FaceTree> tree;
};

std::vector<PrototypeFaces> gather_faces(const std::vector<const TriangleSoup*>& prototypes,
                                         std::size_t materials) {
    std::vector<PrototypeFaces> all(prototypes.size());
    for (std::size_t i = 0; i < prototypes.size(); ++i) {
        const TriangleSoup& soup = *prototypes[i];
        for (const auto& list : soup.lists)
            for (const SoupTriangle& t : list)
                if (soup.meshes[t.mesh].order != Mesh::no_order)
                    all[i].faces.push_back(make_face(soup, t, materials));
        if (!all[i].faces.empty())
            all[i].tree.emplace(all[i].faces);
    }
    return all;
}

/// Room for the roundings of a box's corners.
AlignedBox with_slack(AlignedBox box) {
    float largest = 0;
    for (const Vec3 p : {box.low, box.high})
        largest = std::max({largest, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
    const float slack = 4e-6f * largest;
    const Vec3 all{slack, slack, slack};
    return {box.low - all, box.high + all};
}

/// A face of the world as a prototype's faces see it.
Face face_in_prototype(const Face& face, const Placing& placing) {
    Face moved = face;
    moved.box = {};
    for (Vec3& p : moved.corners) {
        p = placing.point_to_prototype(p);
        moved.box.add(p);
    }
    moved.normal = placing.to_prototype(face.normal);
    moved.plane = dot(moved.normal, moved.corners[0]);
    moved.slack = face.slack / placing.scale();
    return moved;
}

} // namespace

std::vector<std::uint8_t>
mark_coplanar_instances(TriangleSoup& world, const std::vector<const TriangleSoup*>& prototypes,
                        const std::vector<Placing>& placings, std::size_t materials) {
    std::vector<std::uint8_t> marked(placings.size(), 0);
    const std::vector<PrototypeFaces> faces = gather_faces(prototypes, materials);
    std::vector<std::uint32_t> taking_part;
    std::vector<AlignedBox> boxes;
    for (std::uint32_t i = 0; i < placings.size(); ++i) {
        if (!faces[placings[i].prototype()].tree)
            continue;
        SceneBounds bounds;
        placings[i].add_bounds(*prototypes[placings[i].prototype()], bounds);
        taking_part.push_back(i);
        boxes.push_back(with_slack({bounds.low, bounds.high}));
    }
    if (taking_part.empty())
        return marked;
    const BoxTree tree(boxes);
    const auto faces_of = [&](std::uint32_t box) -> const PrototypeFaces& {
        return faces[placings[taking_part[box]].prototype()];
    };
    const auto mark = [&](std::uint32_t box) {
        std::atomic_ref(marked[taking_part[box]]).store(1, std::memory_order_relaxed);
    };
    // Two instances whose boxes meet may have faces in one plane; looking closer is not worth it.
    tbb::parallel_for(std::uint32_t{0}, static_cast<std::uint32_t>(boxes.size()),
                      [&](std::uint32_t i) {
                          const std::uint32_t look = faces_of(i).tree->look();
                          tree.visit(boxes[i], [&](std::uint32_t other) {
                              if (other != i && (look == mixed_looks || look >= materials ||
                                                 faces_of(other).tree->look() != look))
                                  mark(i);
                          });
                      });
    tbb::parallel_for(
        tbb::blocked_range<std::size_t>(0, world.triangle_count(), 256), [&](const auto& range) {
            for (std::size_t i = range.begin(); i < range.end(); ++i) {
                SoupTriangle& t = triangle_at(world, i);
                Face face = make_face(world, t, materials);
                if (face.look >= materials)
                    face.look += 0x40000000u; // no mesh of a prototype has that look
                tree.visit({face.box.low, face.box.high}, [&](std::uint32_t box) {
                    const Placing& placing = placings[taking_part[box]];
                    if (faces_of(box).tree->is_shared(face_in_prototype(face, placing))) {
                        t.coplanar = 1;
                        mark(box);
                    }
                });
            }
        });
    return marked;
}

} // namespace renderer
