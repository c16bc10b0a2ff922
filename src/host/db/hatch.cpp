// Hatches: their boundary loops as chains of points.
#include "host/db/hatch.h"

#include "host/dxf/fields.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, "HATCH")

namespace {

enum EdgeKind { kLineEdge = 1, kArcEdge = 2, kEllipseEdge = 3, kSplineEdge = 4 };
constexpr double kTurn = 2 * std::numbers::pi;
/// Curves are sampled in steps of about this angle.
constexpr double kStep = std::numbers::pi / 24;

/// Walks the boundary part of a hatch, tag by tag, in the order that the format gives.
class LoopReader {
public:
    LoopReader(std::span<const dxf::Tag> range, const dxf::ObjectTags& tags)
      : range_(range)
      , tags_(tags) {}

    std::vector<AcDbHatchLoop> read();

private:
    bool at(int code) const { return at_ < range_.size() && range_[at_].code == code; }
    /// The value when the next tag has that code; otherwise the fallback, and nothing is passed.
    double take(int code, double fallback = 0) {
        return at(code) ? tags_.real(range_[at_++]) : fallback;
    }
    std::int64_t take_integer(int code, std::int64_t fallback = 0) {
        return at(code) ? tags_.integer(range_[at_++]) : fallback;
    }
    AcGePoint2d take_point(int code) {
        const double x = take(code), y = take(code + 10);
        return {x, y};
    }
    /// Counts of the file are believed as far as there are tags.
    std::size_t take_count(int code) {
        const std::int64_t count = take_integer(code);
        const auto left = static_cast<std::int64_t>(range_.size() - at_);
        return static_cast<std::size_t>(std::clamp<std::int64_t>(count, 0, left));
    }
    void polyline(AcDbHatchLoop& loop);
    void edge(AcDbHatchLoop& loop);
    void line(AcDbHatchLoop& loop);
    void arc(AcDbHatchLoop& loop);
    void ellipse(AcDbHatchLoop& loop);
    void spline(AcDbHatchLoop& loop);
    std::span<const dxf::Tag> range_;
    const dxf::ObjectTags& tags_;
    std::size_t at_ = 0;
};

/// Adds points of a curve given by a function of its parameter.
template <class Curve>
void sample(AcDbHatchLoop& loop, double from, double to, Curve curve) {
    const double sweep = std::clamp(to - from, -kTurn, kTurn);
    const int steps = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kStep)));
    for (int i = 0; i <= steps; ++i) {
        loop.points.push_back(curve(from + sweep * i / steps));
    }
}

/// The points between two polyline vertices that a bulge arches over.
void add_bulge(AcDbHatchLoop& loop, AcGePoint2d a, AcGePoint2d b, double bulge) {
    loop.points.push_back(a);
    const double chord = a.distanceTo(b);
    if (bulge == 0 || chord == 0) {
        return;
    }
    const double angle = 4 * std::atan(bulge);
    const double radius = chord / (2 * std::sin(angle / 2));
    const double away = radius * std::cos(angle / 2);
    const AcGePoint2d center{(a.x + b.x) / 2 - (b.y - a.y) / chord * away,
                             (a.y + b.y) / 2 + (b.x - a.x) / chord * away};
    const double first = std::atan2(a.y - center.y, a.x - center.x);
    const double size = std::abs(radius);
    const int steps = std::max(2, static_cast<int>(std::ceil(std::abs(angle) / kStep)));
    for (int i = 1; i < steps; ++i) {
        const double t = first + angle * i / steps;
        loop.points.push_back({center.x + size * std::cos(t), center.y + size * std::sin(t)});
    }
}

void LoopReader::polyline(AcDbHatchLoop& loop) {
    take_integer(72);
    const bool closed = take_integer(73) != 0;
    const std::size_t count = take_count(93);
    std::vector<std::pair<AcGePoint2d, double>> corners;
    for (std::size_t i = 0; i < count && at(10); ++i) {
        const AcGePoint2d p = take_point(10);
        corners.emplace_back(p, take(42));
    }
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const bool last = i + 1 == corners.size();
        const auto& [point, bulge] = corners[i];
        add_bulge(loop, point, corners[last ? 0 : i + 1].first, last && !closed ? 0 : bulge);
    }
}

void LoopReader::line(AcDbHatchLoop& loop) {
    const AcGePoint2d from = take_point(10);
    loop.points.push_back(from);
    loop.points.push_back(take_point(11));
}

void LoopReader::arc(AcDbHatchLoop& loop) {
    const AcGePoint2d c = take_point(10);
    const double radius = take(40);
    double from = take(50) * dxf::kRadians, to = take(51) * dxf::kRadians;
    if (take_integer(73, 1) == 0) { // clockwise: the angles are mirrored
        from = -from;
        to = -to;
    }
    sample(loop, from, to, [&](double t) {
        return AcGePoint2d{c.x + radius * std::cos(t), c.y + radius * std::sin(t)};
    });
}

void LoopReader::ellipse(AcDbHatchLoop& loop) {
    const AcGePoint2d c = take_point(10), major = take_point(11);
    const double ratio = take(40);
    double from = take(50) * dxf::kRadians, to = take(51) * dxf::kRadians;
    if (take_integer(73, 1) == 0) {
        from = -from;
        to = -to;
    }
    sample(loop, from, to, [&](double t) {
        const double u = std::cos(t), v = std::sin(t) * ratio;
        return AcGePoint2d{c.x + major.x * u - major.y * v, c.y + major.y * u + major.x * v};
    });
}

/// A spline's control points stand for it: near enough for a boundary that is data.
void LoopReader::spline(AcDbHatchLoop& loop) {
    take_integer(94);
    take_integer(73);
    take_integer(74);
    const std::size_t knots = take_count(95), points = take_count(96);
    for (std::size_t i = 0; i < knots && at(40); ++i) {
        take(40);
    }
    for (std::size_t i = 0; i < points && at(10); ++i) {
        loop.points.push_back(take_point(10));
        take(42);
    }
    const std::size_t fits = take_count(97);
    for (std::size_t i = 0; i < fits && at(11); ++i) {
        take_point(11);
    }
    take_point(12);
    take_point(13);
}

void LoopReader::edge(AcDbHatchLoop& loop) {
    switch (take_integer(72)) {
    case kLineEdge:
        line(loop);
        break;
    case kArcEdge:
        arc(loop);
        break;
    case kEllipseEdge:
        ellipse(loop);
        break;
    case kSplineEdge:
        spline(loop);
        break;
    default:
        break;
    }
}

std::vector<AcDbHatchLoop> LoopReader::read() {
    std::vector<AcDbHatchLoop> loops;
    const std::size_t count = take_count(91);
    for (std::size_t i = 0; i < count && at_ < range_.size(); ++i) {
        while (at_ < range_.size() && !at(92) && !at(75)) {
            ++at_; // boundary objects, and what is not expected
        }
        if (!at(92)) {
            break;
        }
        AcDbHatchLoop& loop = loops.emplace_back();
        loop.flags = static_cast<std::int32_t>(take_integer(92));
        if ((loop.flags & 2) != 0) {
            polyline(loop);
        } else {
            const std::size_t edges = take_count(93);
            for (std::size_t e = 0; e < edges && at(72); ++e) {
                edge(loop);
            }
        }
        loop.points.shrink_to_fit();
    }
    return loops;
}

} // namespace

void AcDbHatch::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    const std::span<const dxf::Tag> own = tags.own();
    for (std::size_t i = 0; i < own.size(); ++i) {
        const dxf::Tag& tag = own[i];
        switch (tag.code) {
        case 30:
            elevation_ = tags.real(tag);
            break;
        case 2:
            pattern_ = tags.text(tag);
            break;
        case 70:
            solid_ = tags.integer(tag) != 0;
            break;
        case 210:
        case 220:
        case 230:
            dxf::set_coordinate(normal_, tag.code / 10 - 21, tags.real(tag));
            break;
        case 91:
            loops_ = LoopReader(own.subspan(i), tags).read();
            i = own.size(); // pattern and gradient behind it stay in the file
            break;
        default:
            break;
        }
    }
    dxf::repair_normal(normal_, tags);
}

Acad::ErrorStatus AcDbHatch::getGeomExtents(AcDbExtents& extents) const {
    const AcGeMatrix3d to_world = AcGeMatrix3d::planeToWorld(normal_);
    AcDbExtents box;
    for (const AcDbHatchLoop& loop : loops_) {
        for (const AcGePoint2d& p : loop.points) {
            box.addPoint(AcGePoint3d{p.x, p.y, elevation_}.transformedBy(to_world));
        }
    }
    if (box.isEmpty()) {
        return Acad::eNullExtents;
    }
    extents = box;
    return Acad::eOk;
}
