// Copies of blocks: equal structure by hash, equal shape by comparing every number.
#include "KestraBatch/stream_copies.h"

#include "KestraBatch/stream_model.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace KestraBatch {

namespace {

constexpr double normal_tolerance = 1e-4;
constexpr double most_normal_tolerance = 0.02;

std::uint64_t mixed(std::uint64_t hash, std::uint64_t value) {
    hash = (hash ^ value) * 0xff51afd7ed558ccdu;
    return hash ^ (hash >> 32);
}

/// A colour that no mesh can have says that there is none.
std::uint64_t color_key(const MeshRecord& mesh) {
    const auto color = [](bool there, std::uint32_t value) {
        return there ? std::uint64_t{value} : std::uint64_t{0xff000000};
    };
    return color(mesh.has_color, mesh.color) << 32 |
           color(mesh.has_comment_color, mesh.comment_color);
}

bool look_alike(const MeshRecord& a, const MeshRecord& b) {
    return a.vertex_count == b.vertex_count && a.triangle_count == b.triangle_count &&
           a.material == b.material && a.mapping_key == b.mapping_key &&
           color_key(a) == color_key(b) && a.has_normals == b.has_normals &&
           a.is_shell == b.is_shell;
}

std::uint64_t structure_of(const StreamModel& model, const MeshRecord& mesh) {
    std::uint64_t hash = mixed(mesh.vertex_count, mesh.triangle_count);
    hash = mixed(hash,
                 std::uint64_t{static_cast<std::uint32_t>(mesh.material)} << 32 | mesh.mapping_key);
    hash = mixed(hash, color_key(mesh));
    hash = mixed(hash, (mesh.has_normals ? 2u : 0u) | (mesh.is_shell ? 1u : 0u));
    for (std::size_t i = 0; i < mesh.triangle_count; ++i) {
        const auto& t = model.triangles[mesh.first_triangle + i];
        hash = mixed(hash, (std::uint64_t{t[0]} << 42) ^ (std::uint64_t{t[1]} << 21) ^ t[2]);
    }
    return hash;
}

bool equal_faces(const StreamModel& model, const MeshRecord& a, const MeshRecord& b) {
    const auto first = model.triangles.begin() + static_cast<std::ptrdiff_t>(a.first_triangle);
    return std::equal(first, first + static_cast<std::ptrdiff_t>(a.triangle_count),
                      model.triangles.begin() + static_cast<std::ptrdiff_t>(b.first_triangle));
}

bool is_finite_mesh(const StreamModel& model, const MeshRecord& mesh) {
    const auto first = model.positions.begin() + static_cast<std::ptrdiff_t>(mesh.first_vertex);
    return std::all_of(first, first + static_cast<std::ptrdiff_t>(mesh.vertex_count),
                       [](const Triple& p) {
                           return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
                       });
}

Triple unit_of(const std::array<float, 3>& n) {
    const Triple v{n[0], n[1], n[2]};
    const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    return length > 1e-6 && std::isfinite(length) ? Triple{v.x / length, v.y / length, v.z / length}
                                                  : Triple{};
}

/// Normals of a mesh may all look the other way: surfaces have two sides.
bool equal_normals(const StreamModel& model, const MeshRecord& a, const MeshRecord& b,
                   const Similarity& place, double tolerance) {
    double sign = 0;
    for (std::size_t i = 0; i < a.vertex_count; ++i) {
        const Triple n = place.direction(unit_of(model.normals[a.first_normal + i]));
        const Triple m = unit_of(model.normals[b.first_normal + i]);
        const double cosine = n.x * m.x + n.y * m.y + n.z * m.z;
        if (sign == 0 && cosine != 0) {
            sign = cosine < 0 ? -1 : 1;
        }
        const Triple off{n.x - sign * m.x, n.y - sign * m.y, n.z - sign * m.z};
        if (!(off.x * off.x + off.y * off.y + off.z * off.z <= tolerance * tolerance)) {
            return false;
        }
    }
    return true;
}

Triple corner(const Triple& low, const Triple& high, int which) {
    return {which & 1 ? high.x : low.x, which & 2 ? high.y : low.y, which & 4 ? high.z : low.z};
}

Triple twice(const Triple& t) { return {2 * t.x, 2 * t.y, 2 * t.z}; }

struct GrowingBox {
    bool empty = true;
    Triple low, high;
    void add(const Triple& p) {
        if (empty) {
            low = high = p;
            empty = false;
        }
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
};

} // namespace

void CopyFinder::begin_block(const StreamModel& model) {
    Open open;
    open.block = static_cast<std::uint32_t>(model.blocks.size() - 1);
    open.first_mesh = model.meshes.size();
    open.first_vertex = model.positions.size();
    open.first_normal = model.normals.size();
    open.first_triangle = model.triangles.size();
    if (model.is_in_mesh()) { // brackets open late, behind a mesh's preamble
        const MeshRecord& mesh = model.meshes.back();
        --open.first_mesh;
        open.first_vertex = mesh.first_vertex;
        open.first_normal = mesh.has_normals ? mesh.first_normal : open.first_normal;
        open.first_triangle = mesh.first_triangle;
    }
    open.first_copy = model.copies.size();
    open.structure = mixed(0x9e3779b97f4a7c15u, model.blocks.back().name);
    open_.push_back(std::move(open));
}

void CopyFinder::end_mesh(const StreamModel& model) {
    const MeshRecord& mesh = model.meshes.back();
    if (open_.empty()) {
        return;
    }
    Open& open = open_.back();
    if (mesh.invisible || mesh.lamp >= 0 || mesh.cover_file != no_name ||
        mesh.block != open.block || !is_finite_mesh(model, mesh)) {
        open.plain = true;
        return;
    }
    open.meshes.push_back(static_cast<std::uint32_t>(model.meshes.size() - 1));
    open.structure = mixed(open.structure, structure_of(model, mesh));
}

void CopyFinder::keep_open_blocks() {
    for (Open& open : open_) {
        open.plain = true;
    }
}

void CopyFinder::enter(Open& parent, std::uint32_t block, const Similarity& place) {
    parent.inner.push_back({block, place});
    parent.structure = mixed(parent.structure, block + 1);
}

void CopyFinder::end_block(StreamModel& model) {
    Open open = std::move(open_.back());
    open_.pop_back();
    model.blocks[open.block].closing = closed_++;
    Open* const parent = open_.empty() ? nullptr : &open_.back();
    if (open.plain) {
        if (parent != nullptr) {
            parent->plain = true;
        }
        return;
    }
    if (open.meshes.empty() && open.inner.empty()) {
        drop(model, open);
        return;
    }
    Shape shape = shape_of(model, open);
    auto& candidates = candidates_[open.structure];
    for (auto at = candidates.begin(); at != candidates.end(); ++at) {
        if (const auto place = match(model, shapes_[*at], shape)) {
            const std::uint32_t original = shapes_[*at].block;
            std::rotate(candidates.begin(), at, at + 1);
            drop(model, open);
            model.copies.push_back({original, parent != nullptr ? parent->block : no_name, *place});
            if (parent != nullptr) {
                enter(*parent, original, *place);
            }
            return;
        }
    }
    shape.anchors = find_anchors(shape.points, shape.steps);
    if (parent != nullptr) {
        enter(*parent, shape.block, {});
    }
    if (candidates.size() == most_candidates) {
        candidates.pop_back();
    }
    candidates.insert(candidates.begin(), static_cast<std::uint32_t>(shapes_.size()));
    shape_of_block_[shape.block] = static_cast<std::uint32_t>(shapes_.size());
    shapes_.push_back(std::move(shape));
}

/// The arrays go back to where the block began.
void CopyFinder::drop(StreamModel& model, const Open& open) const {
    model.meshes.resize(open.first_mesh);
    model.positions.resize(open.first_vertex);
    model.normals.resize(open.first_normal);
    model.triangles.resize(open.first_triangle);
    model.copies.resize(open.first_copy);
    model.blocks.resize(open.block);
}

CopyFinder::Shape CopyFinder::shape_of(const StreamModel& model, Open& open) const {
    Shape shape;
    shape.block = open.block;
    shape.meshes = std::move(open.meshes);
    shape.inner = std::move(open.inner);
    shape.points.points = &model.positions;
    GrowingBox box;
    for (const std::uint32_t index : shape.meshes) {
        const MeshRecord& mesh = model.meshes[index];
        shape.points.add(mesh.first_vertex, mesh.vertex_count);
        for (std::size_t i = 0; i < mesh.vertex_count; ++i) {
            box.add(model.positions[mesh.first_vertex + i]);
        }
    }
    for (const NestedBlock& inner : shape.inner) {
        const Shape& original = shapes_[shape_of_block_.at(inner.block)];
        for (int i = 0; i < 8; ++i) {
            box.add(inner.place.point(corner(original.low, original.high, i)));
        }
    }
    shape.low = box.low;
    shape.high = box.high;
    shape.steps = digit_steps(box.low, box.high);
    return shape;
}

std::optional<Similarity> CopyFinder::match(const StreamModel& model, const Shape& shape,
                                            const Shape& copy) const {
    if (shape.meshes.size() != copy.meshes.size() || shape.inner.size() != copy.inner.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < shape.meshes.size(); ++i) {
        const MeshRecord &a = model.meshes[shape.meshes[i]], &b = model.meshes[copy.meshes[i]];
        if (!look_alike(a, b) || !equal_faces(model, a, b)) {
            return std::nullopt;
        }
    }
    if (!shape.anchors) { // no points that could tell: the inner blocks do
        if (shape.inner.empty()) {
            return std::nullopt;
        }
        const Similarity place = copy.inner.front().place * inverse(shape.inner.front().place);
        return fits(model, shape, copy, place) ? std::optional(place) : std::nullopt;
    }
    for (const bool mirrored : {false, true}) {
        const auto place = find_similarity(shape.points, *shape.anchors, shape.steps, copy.points,
                                           copy.steps, mirrored);
        if (place && fits(model, shape, copy, *place)) {
            return place;
        }
    }
    return std::nullopt;
}

/// What the points do not tell: normals and inner blocks; and the points, when others told.
bool CopyFinder::fits(const StreamModel& model, const Shape& shape, const Shape& copy,
                      const Similarity& place) const {
    const Triple tolerance = twice(tolerance_of(place, shape.steps, copy.steps));
    double turned = most_normal_tolerance;
    if (shape.anchors) {
        turned = std::min(turned, std::max({tolerance.x, tolerance.y, tolerance.z}) /
                                      (shape.anchors->width * place.scale));
    } else if (!leads(place, shape.points, copy.points, tolerance)) {
        return false;
    }
    for (std::size_t i = 0; i < shape.meshes.size(); ++i) {
        const MeshRecord &a = model.meshes[shape.meshes[i]], &b = model.meshes[copy.meshes[i]];
        if (a.has_normals && !equal_normals(model, a, b, place, normal_tolerance + turned)) {
            return false;
        }
    }
    return inner_blocks_fit(shape, copy, place);
}

bool CopyFinder::inner_blocks_fit(const Shape& shape, const Shape& copy,
                                  const Similarity& place) const {
    const Triple tolerance = twice(tolerance_of(place, shape.steps, copy.steps));
    for (std::size_t i = 0; i < shape.inner.size(); ++i) {
        const NestedBlock &a = shape.inner[i], &b = copy.inner[i];
        if (a.block != b.block) {
            return false;
        }
        const Shape& original = shapes_[shape_of_block_.at(a.block)];
        const Similarity moved = place * a.place;
        for (int k = 0; k < 8; ++k) {
            const Triple at = corner(original.low, original.high, k);
            const Triple p = moved.point(at), q = b.place.point(at);
            if (!(std::abs(p.x - q.x) <= tolerance.x && std::abs(p.y - q.y) <= tolerance.y &&
                  std::abs(p.z - q.z) <= tolerance.z)) {
                return false;
            }
        }
    }
    return true;
}

} // namespace KestraBatch
