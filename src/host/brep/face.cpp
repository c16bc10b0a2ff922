// Faces: loops into the chart, the domain filled, triangles checked against their normals; a plane
// through the loops where that fails.
#include "host/brep/face.h"

#include "host/brep/inner.h"
#include "host/brep/repair.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace brep {
namespace {

using Ring = std::vector<LoopPoint>;
using Triangle = std::array<std::uint32_t, 3>;

/// Where a corner's normal is taken. At a pole towards the triangle: a tip has a normal of its own
/// in each.
Param normal_place(const Domain& domain, const Triangle& triangle, std::size_t i) {
    const FlatPoint& p = domain.points[triangle[i]];
    const double s =
        (domain.points[triangle[(i + 1) % 3]].p.s + domain.points[triangle[(i + 2) % 3]].p.s) / 2;
    return p.pole ? Param{s, p.p.t} : p.p;
}

/// Triangles with three points of their own; the copies of a pole become one. Two that stand on the
/// same points, once each way round (between copies of one pole), are a fold of no use; both go.
std::vector<Triangle> without_folds(const Domain& domain, const std::vector<Triangle>& triangles) {
    struct Key {
        std::array<std::uint32_t, 3> ids;
        std::size_t triangle;
    };
    std::vector<Triangle> result;
    std::vector<Key> at_pole;
    std::map<std::uint32_t, std::uint32_t> first_copy;
    for (Triangle triangle : triangles) {
        Key key{{}, result.size()};
        bool pole = false;
        for (std::size_t i = 0; i < 3; ++i) {
            const FlatPoint& p = domain.points[triangle[i]];
            key.ids[i] = p.id;
            if (p.pole) {
                pole = true;
                triangle[i] = first_copy.emplace(p.id, triangle[i]).first->second;
            }
        }
        std::sort(key.ids.begin(), key.ids.end());
        if (key.ids[0] == key.ids[1] || key.ids[1] == key.ids[2]) {
            continue;
        }
        result.push_back(triangle);
        if (pole) {
            at_pole.push_back(key);
        }
    }
    std::sort(at_pole.begin(), at_pole.end(), [](const Key& a, const Key& b) {
        return a.ids != b.ids ? a.ids < b.ids : a.triangle < b.triangle;
    });
    std::vector<bool> gone(result.size(), false);
    for (std::size_t i = 0; i + 1 < at_pole.size(); ++i) {
        if (at_pole[i].ids == at_pole[i + 1].ids && !gone[at_pole[i].triangle]) {
            gone[at_pole[i].triangle] = gone[at_pole[i + 1].triangle] = true;
        }
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < result.size(); ++i) {
        if (!gone[i]) {
            result[kept++] = result[i];
        }
    }
    result.resize(kept);
    return result;
}

class FaceMesher {
public:
    FaceMesher(const FaceContext& context, const Face& face)
      : context_(context)
      , face_(face)
      , fineness_(context.fineness) {}
    std::optional<FaceTriangles> mesh();

private:
    std::uint32_t add(const AcGePoint3d& p) const {
        context_.points.push_back(p);
        return static_cast<std::uint32_t>(context_.points.size() - 1);
    }
    const AcGePoint3d& point(std::uint32_t id) const { return context_.points[id]; }
    void read_loops();
    std::optional<Chart> make_chart() const;
    bool flatten_all(const Chart& chart, std::vector<FlatLoop>& flat) const;
    std::optional<std::uint32_t> vertex_at_pole(const Chart& chart, bool high) const;
    std::optional<FaceTriangles> on_surface() const;
    void mend_triangles(const Domain& domain, const Chart& chart,
                        std::vector<Triangle>& triangles) const;
    FaceTriangles finish(const Domain& domain, const Chart& chart,
                         const std::vector<std::array<std::uint32_t, 3>>& triangles) const;
    bool plausible(const FaceTriangles& face) const;
    std::optional<FaceTriangles> on_best_plane() const;

    const FaceContext& context_;
    const Face& face_;
    const Fineness& fineness_;
    std::vector<Ring> rings_;
    std::vector<std::uint32_t> lone_; ///< loops of one vertex
    double size_ = 0;
};

void FaceMesher::read_loops() {
    AcGePoint3d low, high;
    bool first = true;
    for (const Loop& loop : face_.loops) {
        Ring ring = loop_points(loop, context_.edges);
        for (const LoopPoint& p : ring) {
            const AcGePoint3d& at = point(p.id);
            low = first ? at
                        : AcGePoint3d{std::min(low.x, at.x), std::min(low.y, at.y),
                                      std::min(low.z, at.z)};
            high = first ? at
                         : AcGePoint3d{std::max(high.x, at.x), std::max(high.y, at.y),
                                       std::max(high.z, at.z)};
            first = false;
        }
        if (ring.size() == 1) {
            lone_.push_back(ring[0].id);
        } else if (!ring.empty()) {
            rings_.push_back(std::move(ring));
        }
    }
    size_ = low.distanceTo(high);
}

std::optional<Chart> FaceMesher::make_chart() const {
    const auto& surfaces = context_.body.surfaces;
    if (face_.surface < 0 || static_cast<std::size_t>(face_.surface) >= surfaces.size()) {
        return std::nullopt;
    }
    std::optional<Chart> chart =
        Chart::make(surfaces[static_cast<std::size_t>(face_.surface)],
                    {context_.center, context_.radius}, 10 * fineness_.tolerance);
    if (chart) {
        std::vector<AcGePoint3d> all;
        for (const Ring& ring : rings_) {
            for (const LoopPoint& p : ring) {
                all.push_back(point(p.id));
            }
        }
        chart->turn_poles_away(all);
    }
    return chart;
}

bool FaceMesher::flatten_all(const Chart& chart, std::vector<FlatLoop>& flat) const {
    const double most_off = std::max({100 * fineness_.tolerance, fineness_.chord, 1e-3 * size_});
    const Mapping mapping{chart, context_.points, 10 * fineness_.tolerance, most_off,
                          std::min(fineness_.angle, 0.5)};
    for (Ring ring : rings_) {
        if (face_.reversed != chart.swapped()) {
            std::reverse(ring.begin(), ring.end());
        }
        const std::optional<FlatLoop> loop = flatten(mapping, ring);
        if (!loop) {
            return false;
        }
        if (loop->points.size() > 1) {
            flat.push_back(*loop);
        }
    }
    return true;
}

std::optional<std::uint32_t> FaceMesher::vertex_at_pole(const Chart& chart, bool high) const {
    for (const std::uint32_t id : lone_) {
        if (chart.pole(high) &&
            chart.pole_point(high).distanceTo(point(id)) <= 100 * fineness_.tolerance) {
            return id;
        }
    }
    return std::nullopt;
}

std::optional<FaceTriangles> FaceMesher::on_surface() const {
    std::optional<Chart> chart = make_chart();
    std::vector<FlatLoop> loops;
    if (!chart || !flatten_all(*chart, loops) || (loops.empty() && !rings_.empty())) {
        return std::nullopt;
    }
    const auto add_point = [this](const AcGePoint3d& p) { return add(p); };
    std::optional<Spacing> spacing;
    std::optional<Domain> domain =
        make_domain({*chart, loops, fineness_, vertex_at_pole(*chart, false),
                     vertex_at_pole(*chart, true), add_point},
                    spacing);
    if (!domain || !spacing) {
        return std::nullopt;
    }
    if (const double count = count_grid_points(*domain, *spacing);
        count > static_cast<double>(fineness_.most_points)) {
        FaceTriangles none;
        none.excess = count / static_cast<double>(fineness_.most_points);
        return none;
    }
    bool crossed = false;
    std::vector<Triangle> triangles =
        without_folds(*domain, fill(*domain, *chart, *spacing, fineness_, add_point, crossed));
    if (!chart->flat()) {
        mend_triangles(*domain, *chart, triangles);
    }
    FaceTriangles result = finish(*domain, *chart, triangles);
    result.approximate = crossed;
    if (!plausible(result)) {
        return std::nullopt;
    }
    return result;
}

void FaceMesher::mend_triangles(const Domain& domain, const Chart& chart,
                                std::vector<Triangle>& triangles) const {
    std::vector<AcGeVector3d> normals(domain.points.size());
    std::vector<bool> known(domain.points.size(), false);
    const auto quality = [&](const Triangle& triangle) {
        const auto id = [&](std::size_t i) { return domain.points[triangle[i]].id; };
        if (id(0) == id(1) || id(1) == id(2) || id(2) == id(0)) {
            return -1.0;
        }
        const AcGePoint3d& a = point(id(0));
        AcGeVector3d n = (point(id(1)) - a).crossProduct(point(id(2)) - a);
        const double length = n.length();
        double least = length > 0 ? 1 : -1;
        for (std::size_t i = 0; i < 3; ++i) {
            AcGeVector3d normal;
            const std::uint32_t k = triangle[i];
            if (domain.points[k].pole) {
                normal = chart.normal(normal_place(domain, triangle, i));
            } else {
                normals[k] = known[k] ? normals[k] : chart.normal(domain.points[k].p);
                known[k] = true;
                normal = normals[k];
            }
            least = length > 0 ? std::min(least, n.dotProduct(normal) / length) : least;
        }
        return least;
    };
    mend(triangles, quality);
}

FaceTriangles FaceMesher::finish(const Domain& domain, const Chart& chart,
                                 const std::vector<std::array<std::uint32_t, 3>>& triangles) const {
    const bool turned = face_.reversed != chart.swapped();
    FaceTriangles result;
    const auto add_normal = [&](const Param& p) {
        const AcGeVector3d n = chart.normal(p);
        result.normals.push_back(turned ? -n : n);
        return static_cast<std::uint32_t>(result.normals.size() - 1);
    };
    constexpr std::uint32_t kNone = ~0U;
    std::vector<std::uint32_t> normal_of(domain.points.size(), kNone);
    const std::uint32_t one = chart.flat() ? add_normal({}) : kNone;
    const auto normal = [&](const std::array<std::uint32_t, 3>& triangle, std::size_t i) {
        const FlatPoint& p = domain.points[triangle[i]];
        if (one != kNone) {
            return one;
        }
        if (p.pole) {
            return add_normal(normal_place(domain, triangle, i));
        }
        std::uint32_t& known = normal_of[triangle[i]];
        known = known == kNone ? add_normal(p.p) : known;
        return known;
    };
    for (const Triangle& triangle : triangles) {
        const auto id = [&](std::size_t i) { return domain.points[triangle[i]].id; };
        std::array<FaceTriangles::Corner, 3> corners;
        for (std::size_t i = 0; i < 3; ++i) {
            corners[turned ? 2 - i : i] = {id(i), normal(triangle, i)};
        }
        result.triangles.push_back(corners);
    }
    return result;
}

/// There are triangles, with finite points and normals, and hardly any of their area looks against
/// its normals.
bool FaceMesher::plausible(const FaceTriangles& face) const {
    double all = 0, wrong = 0;
    for (const auto& triangle : face.triangles) {
        const AcGePoint3d& a = point(triangle[0].point);
        const AcGeVector3d n =
            (point(triangle[1].point) - a).crossProduct(point(triangle[2].point) - a);
        const AcGeVector3d sum = face.normals[triangle[0].normal] +
                                 face.normals[triangle[1].normal] +
                                 face.normals[triangle[2].normal];
        all += n.length();
        wrong += n.dotProduct(sum) < 0 ? n.length() : 0;
    }
    return all > 0 && std::isfinite(all) && wrong < 0.02 * all;
}

/// The loops seen along the normal of what they go round.
std::optional<FaceTriangles> FaceMesher::on_best_plane() const {
    if (rings_.empty()) {
        return std::nullopt;
    }
    AcGeVector3d normal;
    const AcGePoint3d origin = point(rings_[0][0].id);
    for (const Ring& ring : rings_) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            normal = normal + (point(ring[i].id) - origin)
                                  .crossProduct(point(ring[(i + 1) % ring.size()].id) - origin);
        }
    }
    const double length = normal.length();
    if (!(length > fineness_.tolerance * fineness_.tolerance) || !std::isfinite(length)) {
        return std::nullopt;
    }
    normal = normal / length;
    const AcGeVector3d x = normal.perpVector(), y = normal.crossProduct(x);
    std::vector<AcGePoint2d> plane;
    std::vector<std::uint32_t> ids;
    std::vector<std::array<std::uint32_t, 2>> segments;
    for (const Ring& ring : rings_) {
        const auto first = static_cast<std::uint32_t>(plane.size());
        const auto count = static_cast<std::uint32_t>(ring.size());
        for (std::uint32_t i = 0; i < count; ++i) {
            const AcGeVector3d off = point(ring[i].id) - origin;
            plane.push_back({off.dotProduct(x), off.dotProduct(y)});
            ids.push_back(ring[i].id);
            segments.push_back({first + i, first + (i + 1) % count});
        }
    }
    const ge::Triangulation flat = ge::triangulate(plane, segments);
    for (std::size_t i = ids.size(); i < flat.points.size(); ++i) {
        ids.push_back(add(origin + x * flat.points[i].x + y * flat.points[i].y));
    }
    FaceTriangles result;
    result.approximate = true;
    result.normals = {normal};
    for (const auto& [a, b, c] : flat.triangles) {
        if (ids[a] != ids[b] && ids[b] != ids[c] && ids[c] != ids[a]) {
            result.triangles.push_back({{{ids[a], 0}, {ids[b], 0}, {ids[c], 0}}});
        }
    }
    if (result.triangles.empty()) {
        return std::nullopt;
    }
    return result;
}

std::optional<FaceTriangles> FaceMesher::mesh() {
    read_loops();
    if (std::optional<FaceTriangles> result = on_surface()) {
        return result;
    }
    return on_best_plane();
}

} // namespace

std::optional<FaceTriangles> mesh_face(const FaceContext& context, const Face& face) {
    return FaceMesher(context, face).mesh();
}

} // namespace brep
