// Rings of points along the boundary loops of hatches.
#include "host/db/hatch_loop.h"

#include "host/db/curves.h"
#include "host/gi/fallback.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kTurn = 2 * std::numbers::pi;
/// Ends of edges that are nearer than this part of the loop's size are one point.
constexpr double kJoined = 1e-6;

bool isFinite(const AcGePoint2d& p) { return gi::isFinite(p.x) && gi::isFinite(p.y); }

/// The way from one angle to another, counter-clockwise, in (0, 2 pi].
double turnBetween(double from, double to) {
    const double way = std::fmod(to - from, kTurn);
    return way > 1e-9 ? way : way + kTurn;
}

double sizeOf(const std::vector<AcDbHatchRing>& pieces) {
    AcGePoint2d low{1e300, 1e300}, high{-1e300, -1e300};
    for (const AcDbHatchRing& piece : pieces) {
        for (const AcGePoint2d& p : piece) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
    }
    return low.x <= high.x ? low.distanceTo(high) : 0;
}

/// Samples curves as finely as asked, coarsely once many points have been made.
class Sampler {
public:
    Sampler(double deviation, std::size_t& budget)
      : deviation_(deviation)
      , budget_(budget) {}

    /// The points of an ellipse: centre + cos(t) major + sin(t) minor, both ends included.
    AcDbHatchRing ellipse(const AcGePoint2d& center, const AcGePoint2d& major,
                          const AcGePoint2d& minor, double from, double sweep) {
        const double size = std::max(std::hypot(major.x, major.y), std::hypot(minor.x, minor.y));
        const int fine = std::max(2, gi::arcSteps(size, sweep, deviation_));
        const int steps = spend(static_cast<std::size_t>(fine)) ? fine : 4;
        AcDbHatchRing points;
        points.reserve(static_cast<std::size_t>(steps) + 1);
        for (int i = 0; i <= steps; ++i) {
            const double t = from + sweep * i / steps;
            const double u = std::cos(t), v = std::sin(t);
            points.push_back(
                {center.x + major.x * u + minor.x * v, center.y + major.y * u + minor.y * v});
        }
        return points;
    }

    AcDbHatchRing spline(const AcDbHatchSpline& spline) {
        const auto lift = [](const std::vector<AcGePoint2d>& flat) {
            std::vector<AcGePoint3d> points;
            points.reserve(flat.size());
            for (const AcGePoint2d& p : flat) {
                points.push_back({p.x, p.y, 0});
            }
            return points;
        };
        AcDbHatchRing flat;
        const bool by_fit = spline.control_points.size() < 2;
        if (!spend(0)) {
            return by_fit ? spline.fit_points : spline.control_points;
        }
        AcDbSpline curve;
        if (by_fit) {
            curve.setFitPoints(lift(spline.fit_points));
        } else {
            curve.set(spline.degree, spline.knots, lift(spline.control_points), spline.weights);
        }
        const double coarse = sizeOf({by_fit ? spline.fit_points : spline.control_points}) * 1e-3;
        for (const AcGePoint3d& p : curve.sample(deviation_ > 0 ? deviation_ : coarse)) {
            flat.push_back({p.x, p.y});
        }
        spend(flat.size());
        return flat;
    }

    /// The points from one vertex of a polyline towards the next, which is left out.
    void bulge(AcDbHatchRing& ring, const AcGePoint2d& a, const AcGePoint2d& b, double bulge) {
        ring.push_back(a);
        const double chord = a.distanceTo(b);
        if (std::abs(bulge) < 1e-10 || !(chord > 0) || !gi::isFinite(bulge)) {
            return;
        }
        // The centre stands left of the chord by c (1 - b^2) / (4 b).
        const double away = (1 - bulge * bulge) / (4 * bulge);
        const AcGePoint2d center{(a.x + b.x) / 2 - (b.y - a.y) * away,
                                 (a.y + b.y) / 2 + (b.x - a.x) * away};
        const AcGePoint2d start{a.x - center.x, a.y - center.y};
        const AcDbHatchRing arc =
            ellipse(center, start, {-start.y, start.x}, 0, 4 * std::atan(bulge));
        ring.insert(ring.end(), arc.begin() + 1, arc.end() - 1);
    }

private:
    bool spend(std::size_t points) {
        const bool enough = budget_ > points;
        budget_ = enough ? budget_ - points : 0;
        return enough;
    }
    double deviation_;
    std::size_t& budget_;
};

/// What the angles of a part of an ellipse mean. Programs differ; the neighbours of the edge tell.
enum class EllipseAngles { kParameters, kDirections };

double parameterOf(double angle, double ratio, EllipseAngles meaning) {
    if (meaning == EllipseAngles::kParameters || !(ratio > 0)) {
        return angle;
    }
    const double turned = std::atan2(std::sin(angle), std::cos(angle) * ratio);
    return turned + kTurn * std::round((angle - turned) / kTurn);
}

AcDbHatchRing pieceOf(const AcDbHatchLoop& loop, const AcDbHatchEdge& edge, EllipseAngles meaning,
                      Sampler& sampler) {
    if (edge.kind == AcDbHatchEdge::kLine) {
        return {edge.start, edge.end};
    }
    if (edge.kind == AcDbHatchEdge::kSpline) {
        return edge.spline < loop.splines.size() ? sampler.spline(loop.splines[edge.spline])
                                                 : AcDbHatchRing();
    }
    const bool arc = edge.kind == AcDbHatchEdge::kArc;
    const AcGePoint2d major = arc ? AcGePoint2d{edge.radius, 0} : edge.end;
    const double ratio = arc ? 1 : edge.radius;
    double from = edge.from;
    double sweep = turnBetween(edge.from, edge.to);
    if (!arc && sweep < kTurn - 1e-9) {
        from = parameterOf(edge.from, ratio, meaning);
        sweep = turnBetween(from, parameterOf(edge.to, ratio, meaning));
    }
    if (!edge.counter_clockwise) { // the angles are mirrored
        from = -from;
        sweep = -sweep;
    }
    if (!gi::isFinite(from) || !gi::isFinite(sweep)) {
        return {};
    }
    return sampler.ellipse(edge.start, major, {-major.y * ratio, major.x * ratio}, from, sweep);
}

/// The sum of the gaps from piece to piece and back to the first.
double gapsOf(const std::vector<AcDbHatchRing>& pieces) {
    double gaps = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        gaps += pieces[i].back().distanceTo(pieces[(i + 1) % pieces.size()].front());
    }
    return gaps;
}

/// The edges as chains of finite points, those without any left out.
std::vector<AcDbHatchRing> piecesOf(const AcDbHatchLoop& loop, EllipseAngles meaning,
                                    Sampler& sampler) {
    std::vector<AcDbHatchRing> pieces;
    for (const AcDbHatchEdge& edge : loop.edges) {
        AcDbHatchRing piece = pieceOf(loop, edge, meaning, sampler);
        std::erase_if(piece, [](const AcGePoint2d& p) { return !isFinite(p); });
        if (!piece.empty()) {
            pieces.push_back(std::move(piece));
        }
    }
    return pieces;
}

/// Joins pieces to rings.
class Chain {
public:
    Chain(std::vector<AcDbHatchRing>& rings, double tolerance)
      : rings_(rings)
      , tolerance_(tolerance) {}
    ~Chain() { finish(); }
    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;

    void add(AcDbHatchRing piece) {
        if (!ring_.empty() && isClosed() && !meets(piece)) {
            finish();
        }
        if (ring_.empty()) {
            ring_ = std::move(piece);
            pieces_ = 1;
            return;
        }
        turn(piece);
        const bool joined = ring_.back().distanceTo(piece.front()) <= tolerance_;
        ring_.insert(ring_.end(), piece.begin() + (joined ? 1 : 0), piece.end());
        ++pieces_;
    }

private:
    bool isClosed() const {
        return ring_.size() > 2 && ring_.front().distanceTo(ring_.back()) <= tolerance_;
    }
    bool meets(const AcDbHatchRing& piece) const {
        return ring_.back().distanceTo(piece.front()) <= tolerance_ ||
               ring_.back().distanceTo(piece.back()) <= tolerance_;
    }
    /// Turns the piece, or the only piece before it, when their other ends lie nearer.
    void turn(AcDbHatchRing& piece) {
        const auto away = [&](const AcGePoint2d& from) {
            return std::min(from.distanceTo(piece.front()), from.distanceTo(piece.back()));
        };
        if (pieces_ == 1 && away(ring_.front()) + tolerance_ < away(ring_.back())) {
            std::reverse(ring_.begin(), ring_.end());
        }
        if (ring_.back().distanceTo(piece.back()) + tolerance_ <
            ring_.back().distanceTo(piece.front())) {
            std::reverse(piece.begin(), piece.end());
        }
    }
    void finish() {
        if (isClosed()) {
            ring_.pop_back();
        }
        if (ring_.size() >= 3) {
            rings_.push_back(std::move(ring_));
        }
        ring_.clear();
        pieces_ = 0;
    }

    std::vector<AcDbHatchRing>& rings_;
    double tolerance_;
    AcDbHatchRing ring_;
    std::size_t pieces_ = 0;
};

} // namespace

void AcDbHatchLoop::addRings(std::vector<AcDbHatchRing>& rings, double deviation,
                             std::size_t& budget) const {
    Sampler sampler(deviation, budget);
    if ((flags & kPolyline) != 0) {
        AcDbHatchRing ring;
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            const bool last = i + 1 == vertices.size();
            sampler.bulge(ring, vertices[i].point, vertices[last ? 0 : i + 1].point,
                          last && !closed ? 0 : vertices[i].bulge);
        }
        std::erase_if(ring, [](const AcGePoint2d& p) { return !isFinite(p); });
        if (ring.size() >= 3) {
            rings.push_back(std::move(ring));
        }
        return;
    }
    std::vector<AcDbHatchRing> pieces = piecesOf(*this, EllipseAngles::kParameters, sampler);
    const double tolerance = sizeOf(pieces) * kJoined;
    const bool ellipses = std::any_of(edges.begin(), edges.end(), [](const AcDbHatchEdge& e) {
        return e.kind == AcDbHatchEdge::kEllipse;
    });
    if (ellipses && pieces.size() > 1 && gapsOf(pieces) > tolerance) {
        std::vector<AcDbHatchRing> others = piecesOf(*this, EllipseAngles::kDirections, sampler);
        if (!others.empty() && gapsOf(others) < gapsOf(pieces) / 2) {
            pieces = std::move(others);
        }
    }
    Chain chain(rings, tolerance);
    for (AcDbHatchRing& piece : pieces) {
        chain.add(std::move(piece));
    }
}
