// Clip volumes as convex pieces, and cutting by them.
#include "host/gi/clip_cut.h"

#include "host/ge/triangulate.h"
#include "host/gi/clip_draw.h"

#include <algorithm>
#include <cmath>

namespace gi {

namespace clip {
constinit thread_local const PreparedClip* innermost = nullptr;
}

namespace {

double cross(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

double area(const std::vector<AcGePoint2d>& ring) {
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        sum += cross(ring[0], ring[i], ring[(i + 1) % ring.size()]);
    }
    return sum / 2;
}

/// Turns left at every corner, and only once round.
bool isConvex(const std::vector<AcGePoint2d>& ring) {
    double turn = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const AcGePoint2d& a = ring[i];
        const AcGePoint2d& b = ring[(i + 1) % ring.size()];
        const AcGePoint2d& c = ring[(i + 2) % ring.size()];
        const double sine = cross(a, b, c);
        if (sine < 0) {
            return false;
        }
        turn += std::atan2(sine, (b.x - a.x) * (c.x - b.x) + (b.y - a.y) * (c.y - b.y));
    }
    return turn < 6.5; // one full turn, a little more for rounding
}

/// The ring without repeated points; a rectangle's two corners become four.
std::vector<AcGePoint2d> cleaned(std::vector<AcGePoint2d> ring) {
    if (ring.size() == 2) {
        const AcGePoint2d a = ring[0], b = ring[1];
        ring = {a, {b.x, a.y}, b, {a.x, b.y}};
    }
    ring.erase(std::unique(ring.begin(), ring.end(),
                           [](const auto& p, const auto& q) { return p.x == q.x && p.y == q.y; }),
               ring.end());
    while (ring.size() > 1 && ring.front().x == ring.back().x && ring.front().y == ring.back().y) {
        ring.pop_back();
    }
    return ring;
}

std::vector<std::vector<AcGePoint2d>> convexPieces(std::vector<AcGePoint2d> ring) {
    if (area(ring) < 0) {
        std::reverse(ring.begin(), ring.end());
    }
    if (isConvex(ring)) {
        return {ring};
    }
    const ge::Triangulation cut = ge::triangulateRings(std::span(&ring, 1));
    std::vector<std::vector<AcGePoint2d>> pieces;
    for (const auto& t : cut.triangles) {
        pieces.push_back({cut.points[t[0]], cut.points[t[1]], cut.points[t[2]]});
    }
    return pieces;
}

} // namespace

std::unique_ptr<PreparedClip> prepare(const ClipVolume& volume) {
    const bool finite = std::all_of(volume.boundary.begin(), volume.boundary.end(), [](auto& p) {
        return std::isfinite(p.x) && std::isfinite(p.y);
    });
    const auto& m = volume.from_world.entry;
    const bool sound = std::all_of(m.begin(), m.end(), [](const auto& row) {
        return std::all_of(row.begin(), row.end(), [](double v) { return std::isfinite(v); });
    });
    if (!finite || !sound || volume.from_world.det() == 0 || !std::isfinite(volume.front) ||
        !std::isfinite(volume.back) || volume.boundary.size() < 2) {
        return nullptr;
    }
    auto clip = std::make_unique<PreparedClip>();
    clip->volume = volume;
    clip->volume.boundary = cleaned(volume.boundary);
    if (clip->volume.boundary.size() < 3) {
        return nullptr;
    }
    clip->pieces = convexPieces(clip->volume.boundary);
    std::erase_if(clip->pieces, [](const auto& piece) { return !(area(piece) > 0); });
    if (clip->pieces.empty()) {
        return nullptr;
    }
    return clip;
}

ClipScope::ClipScope(const ClipVolume& volume)
  : clip_(prepare(volume)) {
    if (clip_ != nullptr) {
        clip_->outer = clip::innermost;
        clip::innermost = clip_.get();
    }
}

ClipScope::~ClipScope() {
    if (clip_ != nullptr) {
        clip::innermost = clip_->outer;
    }
}

namespace clip {
namespace {

/// A plane of the clip's frame, in model coordinates: `row` is (a, b, c, d) there.
Plane toModel(const std::array<double, 4>& row, const AcGeMatrix3d& to_clip) {
    std::array<double, 4> moved{};
    for (std::size_t column = 0; column < 4; ++column) {
        for (std::size_t i = 0; i < 3; ++i) {
            moved[column] += row[i] * to_clip.entry[i][column];
        }
    }
    moved[3] += row[3];
    const AcGeVector3d normal{moved[0], moved[1], moved[2]};
    const double length = normal.length();
    return {normal / length, moved[3] / length};
}

} // namespace

Cutter::Cutter(AcGiWorldDraw* draw, const PreparedClip* innermost) {
    const AcGeMatrix3d to_world = draw->geometry().getModelToWorldTransform();
    for (const PreparedClip* clip = innermost; clip != nullptr; clip = clip->outer) {
        const AcGeMatrix3d to_clip = clip->volume.from_world * to_world;
        Volume volume;
        volume.clip = clip;
        volume.to_clip = to_clip;
        volume.inverted = clip->volume.inverted;
        for (const auto& piece : clip->pieces) {
            std::vector<Plane>& planes = volume.pieces.emplace_back();
            for (std::size_t i = 0; i < piece.size(); ++i) {
                const AcGePoint2d& a = piece[i];
                const AcGePoint2d& b = piece[(i + 1) % piece.size()];
                const double x = a.y - b.y, y = b.x - a.x; // points inside, to the left
                planes.push_back(toModel({x, y, 0, -(x * a.x + y * a.y)}, to_clip));
            }
        }
        if (clip->volume.front_on) {
            volume.slab.push_back(toModel({0, 0, -1, clip->volume.front}, to_clip));
        }
        if (clip->volume.back_on) {
            volume.slab.push_back(toModel({0, 0, 1, -clip->volume.back}, to_clip));
        }
        volumes_.push_back(std::move(volume));
    }
}

namespace {

/// Distances below this are taken for zero, so that what touches a plane is not cut in slivers.
double tolerance(const Face& face) {
    double size = 0;
    for (const Corner& corner : face) {
        const AcGePoint3d& p = corner.point;
        size = std::max({size, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
    }
    return 1e-10 * size;
}

Corner between(const Corner& a, const Corner& b, double t) {
    return {a.point + (b.point - a.point) * t, a.normal + (b.normal - a.normal) * t};
}

/// Parts a convex face: what lies on the plane counts as inside.
void split(const Face& face, const Plane& plane, Face& inside, Face& outside) {
    const double near = tolerance(face);
    std::vector<double> distances;
    distances.reserve(face.size());
    bool any_inside = false, any_outside = false;
    for (const Corner& corner : face) {
        double d = plane.at(corner.point);
        d = std::abs(d) <= near ? 0 : d;
        any_inside = any_inside || d > 0;
        any_outside = any_outside || d < 0;
        distances.push_back(d);
    }
    if (!any_outside || !any_inside) {
        (any_outside ? outside : inside) = face;
        return;
    }
    for (std::size_t i = 0; i < face.size(); ++i) {
        const std::size_t j = (i + 1) % face.size();
        const double a = distances[i], b = distances[j];
        if (a >= 0) {
            inside.push_back(face[i]);
        }
        if (a <= 0) {
            outside.push_back(face[i]);
        }
        if ((a > 0 && b < 0) || (a < 0 && b > 0)) {
            const Corner cut = between(face[i], face[j], a / (a - b));
            inside.push_back(cut);
            outside.push_back(cut);
        }
    }
}

/// All of the face lies behind one of the planes.
bool isBehindOne(const Face& face, const std::vector<Plane>& planes) {
    const double near = tolerance(face);
    return std::any_of(planes.begin(), planes.end(), [&](const Plane& plane) {
        bool behind = false;
        for (const Corner& corner : face) {
            const double d = plane.at(corner.point);
            if (d > near) {
                return false;
            }
            behind = behind || d < -near;
        }
        return behind;
    });
}

/// Cuts a convex piece out of the face: `inside` is the part in it, the rest goes to `outside`.
Face carve(const Face& face, const std::vector<Plane>& planes, std::vector<Face>& outside) {
    if (isBehindOne(face, planes)) {
        outside.push_back(face);
        return {};
    }
    Face left = face;
    for (const Plane& plane : planes) {
        Face inside, beyond;
        split(left, plane, inside, beyond);
        if (beyond.size() >= 3) {
            outside.push_back(std::move(beyond));
        }
        left = std::move(inside);
        if (left.size() < 3) {
            return {};
        }
    }
    return left;
}

} // namespace

std::vector<Face> Cutter::cut(Face face) const {
    std::vector<Face> kept{std::move(face)};
    for (const Volume& volume : volumes_) {
        std::vector<Face> inside, rest;
        for (Face& f : kept) {
            std::vector<Face> beyond;
            f = volume.slab.empty() ? std::move(f) : carve(f, volume.slab, beyond);
            if (!f.empty()) {
                rest.push_back(std::move(f));
            }
        }
        for (const std::vector<Plane>& piece : volume.pieces) {
            std::vector<Face> outside;
            for (const Face& f : rest) {
                Face part = carve(f, piece, outside);
                if (!part.empty()) {
                    inside.push_back(std::move(part));
                }
            }
            rest = std::move(outside);
        }
        kept = volume.inverted ? std::move(rest) : std::move(inside);
    }
    return kept;
}

namespace {

using Span = std::pair<double, double>; ///< of the parameter of a segment

/// The part of a span inside the piece; the rest goes to `outside`.
bool carve(const AcGePoint3d& a, const AcGePoint3d& b, Span span, const std::vector<Plane>& planes,
           Span& inside, std::vector<Span>& outside) {
    const double near = 1e-10 * std::max(a.asVector().length(), b.asVector().length());
    Span part = span;
    for (const Plane& plane : planes) {
        const double from = plane.at(a) + near, to = plane.at(b) + near;
        const double step = to - from;
        if (from >= 0 && to >= 0) {
            continue;
        }
        if (step == 0 || (from < 0 && to < 0)) {
            outside.push_back(span);
            return false;
        }
        const double t = -from / step;
        (step > 0 ? part.first : part.second) =
            step > 0 ? std::max(part.first, t) : std::min(part.second, t);
    }
    if (part.first >= part.second) {
        outside.push_back(span);
        return false;
    }
    if (part.first > span.first) {
        outside.emplace_back(span.first, part.first);
    }
    if (part.second < span.second) {
        outside.emplace_back(part.second, span.second);
    }
    inside = part;
    return true;
}

} // namespace

std::vector<Span> Cutter::cut(const AcGePoint3d& a, const AcGePoint3d& b) const {
    std::vector<Span> kept{{0, 1}};
    for (const Volume& volume : volumes_) {
        std::vector<Span> inside, rest;
        for (const Span& span : kept) {
            std::vector<Span> beyond;
            Span part;
            if (carve(a, b, span, volume.slab, part, beyond)) {
                rest.push_back(part);
            }
        }
        for (const std::vector<Plane>& piece : volume.pieces) {
            std::vector<Span> outside;
            for (const Span& span : rest) {
                Span part;
                if (carve(a, b, span, piece, part, outside)) {
                    inside.push_back(part);
                }
            }
            rest = std::move(outside);
        }
        kept = volume.inverted ? std::move(rest) : std::move(inside);
        std::sort(kept.begin(), kept.end());
    }
    return kept;
}

namespace {

bool isInsidePolygon(const std::vector<AcGePoint2d>& ring, double x, double y) {
    bool inside = false;
    for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
        const AcGePoint2d &a = ring[i], &b = ring[j];
        if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

/// The segment meets the box.
bool meets(AcGePoint2d a, AcGePoint2d b, const AcGePoint3d& low, const AcGePoint3d& high) {
    double from = 0, to = 1;
    const double starts[] = {a.x, a.y}, steps[] = {b.x - a.x, b.y - a.y};
    const double lows[] = {low.x, low.y}, highs[] = {high.x, high.y};
    for (int axis = 0; axis < 2; ++axis) {
        if (steps[axis] == 0) {
            if (starts[axis] < lows[axis] || starts[axis] > highs[axis]) {
                return false;
            }
            continue;
        }
        const double t = (lows[axis] - starts[axis]) / steps[axis];
        const double u = (highs[axis] - starts[axis]) / steps[axis];
        from = std::max(from, std::min(t, u));
        to = std::min(to, std::max(t, u));
    }
    return from <= to;
}

/// By the box around the points in the frame of the clip.
Where whereIn(const Volume& volume, std::span<const AcGePoint3d> points) {
    AcDbExtents box;
    for (const AcGePoint3d& p : points) {
        box.addPoint(p.transformedBy(volume.to_clip));
    }
    const AcGePoint3d &low = box.minPoint(), &high = box.maxPoint();
    const ClipVolume& clip = volume.clip->volume;
    if ((clip.front_on && low.z >= clip.front) || (clip.back_on && high.z <= clip.back)) {
        return Where::kOutside;
    }
    const auto& ring = clip.boundary;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        if (meets(ring[i], ring[(i + 1) % ring.size()], low, high)) {
            return Where::kCrosses;
        }
    }
    if (isInsidePolygon(ring, (low.x + high.x) / 2, (low.y + high.y) / 2) == clip.inverted) {
        return Where::kOutside;
    }
    const bool crosses =
        (clip.front_on && high.z > clip.front) || (clip.back_on && low.z < clip.back);
    return crosses ? Where::kCrosses : Where::kInside;
}

/// All points are in front of all planes of the one piece.
bool isInsideOnly(const Volume& volume, std::span<const AcGePoint3d> points) {
    if (volume.inverted || volume.pieces.size() != 1) {
        return false;
    }
    const auto inside = [&](const Plane& plane) {
        return std::all_of(points.begin(), points.end(),
                           [&](const AcGePoint3d& p) { return plane.at(p) >= 0; });
    };
    return std::all_of(volume.pieces[0].begin(), volume.pieces[0].end(), inside) &&
           std::all_of(volume.slab.begin(), volume.slab.end(), inside);
}

} // namespace

Where Cutter::classify(std::span<const AcGePoint3d> points) const {
    Where all = Where::kInside;
    for (const Volume& volume : volumes_) {
        if (isInsideOnly(volume, points)) {
            continue;
        }
        const Where here = whereIn(volume, points);
        if (here == Where::kOutside) {
            return here;
        }
        all = here == Where::kCrosses ? here : all;
    }
    return all;
}

} // namespace clip
} // namespace gi
