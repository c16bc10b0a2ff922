// Rows of points, and more where the triangles are still too far from the surface.
#include "host/brep/inner.h"

#include <algorithm>
#include <cmath>

namespace brep {
namespace {

using Triangle = std::array<std::uint32_t, 3>;
using Triangles = std::vector<Triangle>;
/// An edge's points in one number, the lower one first: quick to compare.
using EdgeKey = std::uint64_t;

EdgeKey key_of(std::uint32_t a, std::uint32_t b) {
    return (EdgeKey{std::min(a, b)} << 32) | std::max(a, b);
}

struct Row {
    std::vector<double> crossings;
    std::vector<Range> taken; ///< too close to a bound
};

/// The part of a segment within half a row of a row, widened by half a step.
void take(Row& row, const Param& a, const Param& b, double row_a, double row_b, double place,
          double half, double step) {
    double from = 0, to = 1;
    if (std::abs(row_b - row_a) > 1e-12) {
        const double p = (place - half - row_a) / (row_b - row_a);
        const double q = (place + half - row_a) / (row_b - row_a);
        from = std::max(0.0, std::min(p, q));
        to = std::min(1.0, std::max(p, q));
    }
    const double s = a.s + (b.s - a.s) * from, e = a.s + (b.s - a.s) * to;
    row.taken.push_back({std::min(s, e) - 0.5 * step, std::max(s, e) + 0.5 * step});
}

/// The points of a row: between each second crossing, apart from what is taken.
void place(Row& row, double t, double step, std::vector<Param>& result) {
    std::sort(row.crossings.begin(), row.crossings.end());
    std::sort(row.taken.begin(), row.taken.end(),
              [](const Range& a, const Range& b) { return a.low < b.low; });
    std::size_t next = 0;
    double taken_to = -1e300;
    for (std::size_t i = 0; i + 1 < row.crossings.size(); i += 2) {
        const double from = row.crossings[i], length = row.crossings[i + 1] - from;
        const double count = std::ceil(length / step - 0.05);
        for (double k = 1; k < count; ++k) {
            const double s = from + length * k / count;
            while (next < row.taken.size() && row.taken[next].low <= s) {
                taken_to = std::max(taken_to, row.taken[next++].high);
            }
            if (s > taken_to) {
                result.push_back({s, t});
            }
        }
    }
}

/// Refines a triangulation.
class Filler {
public:
    Filler(Domain& domain, const Chart& chart, const Spacing& spacing, const Fineness& fineness)
      : domain_(domain)
      , chart_(chart)
      , spacing_(spacing)
      , fineness_(fineness) {}
    Triangles fill(const std::function<std::uint32_t(const AcGePoint3d&)>& add_point,
                   bool& crossed);

private:
    struct Sample {
        Param p;
        AcGePoint3d point;
        AcGeVector3d normal;
        bool pole = false;
    };
    std::size_t refine(const ge::Triangulation& flat);
    const Sample& sample(std::uint32_t i);
    void check_edge(EdgeKey edge, const Triangle& left, const Triangle& right);
    void add_inside(const Param& p, std::initializer_list<const Triangle*> around);
    void check_triangle(const std::array<std::uint32_t, 3>& triangle);
    Param between(std::span<const std::uint32_t> corners);

    Domain& domain_;
    const Chart& chart_;
    const Spacing& spacing_;
    const Fineness& fineness_;
    std::vector<AcGePoint2d> plane_;
    std::vector<Sample> samples_;
    std::vector<AcGePoint2d> more_;
    std::vector<EdgeKey> bounds_; ///< sorted: edges with one triangle
};

const Filler::Sample& Filler::sample(std::uint32_t i) {
    while (samples_.size() <= i) {
        const std::size_t k = samples_.size();
        const bool own = k < domain_.points.size();
        const Param p = own ? domain_.points[k].p : spacing_.param(plane_[k]);
        samples_.push_back(
            {p, chart_.at(p).point, chart_.normal(p), own && domain_.points[k].pole});
    }
    return samples_[i];
}

/// The middle in the plane; copies of a pole have no s of their own.
Param Filler::between(std::span<const std::uint32_t> corners) {
    AcGePoint2d sum;
    double s = 0;
    int with_s = 0;
    for (const std::uint32_t i : corners) {
        sum.x += plane_[i].x;
        sum.y += plane_[i].y;
        if (!sample(i).pole) {
            s += plane_[i].x;
            ++with_s;
        }
    }
    const auto count = static_cast<double>(corners.size());
    return spacing_.param({with_s > 0 ? s / with_s : sum.x / count, sum.y / count});
}

void Filler::check_edge(EdgeKey edge, const Triangle& left, const Triangle& right) {
    const auto a = static_cast<std::uint32_t>(edge >> 32);
    const auto b = static_cast<std::uint32_t>(edge);
    const Sample p = sample(a), q = sample(b);
    const Param middle = between(std::array{a, b});
    const AcGePoint3d on = chart_.at(middle).point;
    const AcGeVector3d chord = p.point + (q.point - p.point) / 2 - on;
    const double off = std::abs(chord.dotProduct(chart_.normal(middle)));
    const bool poles = p.pole || q.pole;
    const bool turned =
        !poles && p.normal.dotProduct(q.normal) < std::cos(std::min(1.6 * fineness_.angle, 3.0));
    if (off > 1.05 * fineness_.chord || turned) {
        add_inside(middle, {&left, &right});
    }
}

/// Adds a point unless it is so close to the bounds of the triangles that it lies in, which are
/// chords, that it could lie beyond them.
void Filler::add_inside(const Param& p, std::initializer_list<const Triangle*> around) {
    const AcGePoint3d on = chart_.at(p).point;
    for (const Triangle* triangle : around) {
        for (std::size_t i = 0; i < 3; ++i) {
            const std::uint32_t a = (*triangle)[i], b = (*triangle)[(i + 1) % 3];
            if (!std::binary_search(bounds_.begin(), bounds_.end(), key_of(a, b))) {
                continue;
            }
            const AcGePoint3d from = sample(a).point;
            const AcGeVector3d along = sample(b).point - from, out = on - from;
            const double square = along.lengthSqrd();
            const double part =
                square > 0 ? std::clamp(out.dotProduct(along) / square, 0.0, 1.0) : 0;
            if ((out - along * part).length() < 2 * fineness_.chord) {
                return;
            }
        }
    }
    more_.push_back(spacing_.plane(p));
}

void Filler::check_triangle(const std::array<std::uint32_t, 3>& triangle) {
    const AcGePoint3d a = sample(triangle[0]).point;
    const AcGeVector3d n =
        (sample(triangle[1]).point - a).crossProduct(sample(triangle[2]).point - a);
    const Param middle = between(triangle);
    const double off = std::abs((chart_.at(middle).point - a).dotProduct(n));
    if (off > 1.2 * fineness_.chord * n.length() && n.length() > 0) {
        add_inside(middle, {&triangle});
    }
}

/// Adds points for what is too far off; returns how many.
std::size_t Filler::refine(const ge::Triangulation& flat) {
    struct Use {
        EdgeKey edge;
        const Triangle* triangle;
    };
    std::vector<Use> uses;
    for (const Triangle& triangle : flat.triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            const std::uint32_t a = triangle[i], b = triangle[(i + 1) % 3];
            uses.push_back({key_of(a, b), &triangle});
        }
    }
    std::sort(uses.begin(), uses.end(), [](const Use& a, const Use& b) {
        return a.edge != b.edge ? a.edge < b.edge : a.triangle < b.triangle;
    });
    more_.clear();
    bounds_.clear();
    const auto shared = [&](std::size_t i) {
        return i + 1 < uses.size() && uses[i].edge == uses[i + 1].edge;
    };
    for (std::size_t i = 0; i < uses.size(); i += shared(i) ? 2 : 1) {
        if (!shared(i)) {
            bounds_.push_back(uses[i].edge);
        }
    }
    for (std::size_t i = 0; i < uses.size(); ++i) {
        if (shared(i)) {
            check_edge(uses[i].edge, *uses[i].triangle, *uses[i + 1].triangle);
        }
    }
    if (more_.empty()) {
        for (const auto& triangle : flat.triangles) {
            check_triangle(triangle);
        }
    }
    return more_.size();
}

Triangles Filler::fill(const std::function<std::uint32_t(const AcGePoint3d&)>& add_point,
                       bool& crossed) {
    constexpr int kRounds = 7;
    for (const FlatPoint& p : domain_.points) {
        plane_.push_back(spacing_.plane(p.p));
    }
    if (!chart_.flat()) {
        for (const Param& p : grid_points(domain_, spacing_)) {
            plane_.push_back(spacing_.plane(p));
        }
    }
    ge::Triangulation flat = ge::triangulate(plane_, domain_.segments);
    for (int round = 0; round < kRounds && !chart_.flat(); ++round) {
        if (flat.points.size() > plane_.size() || refine(flat) == 0 ||
            plane_.size() + more_.size() > fineness_.most_points) {
            break;
        }
        plane_.insert(plane_.end(), more_.begin(), more_.end());
        flat = ge::triangulate(plane_, domain_.segments);
    }
    crossed = flat.points.size() > plane_.size();
    std::vector<std::uint32_t> index(flat.points.size(), 0);
    for (std::uint32_t i = 0; i < domain_.points.size(); ++i) {
        index[i] = i;
    }
    const std::size_t own = domain_.points.size();
    for (auto& triangle : flat.triangles) {
        for (std::uint32_t& corner : triangle) {
            if (corner >= own && index[corner] == 0) {
                const Param p = spacing_.param(flat.points[corner]);
                index[corner] = static_cast<std::uint32_t>(domain_.points.size());
                domain_.points.push_back({p, add_point(chart_.at(p).point), false});
            }
            corner = index[corner];
        }
    }
    return std::move(flat.triangles);
}

} // namespace

double count_grid_points(const Domain& domain, const Spacing& spacing) {
    constexpr int kSlices = 64;
    double doubled = 0, width = 0;
    const AcGePoint2d origin = spacing.plane({domain.s.low, domain.t.low});
    for (const auto& [from, to] : domain.segments) {
        const AcGePoint2d p = spacing.plane(domain.points[from].p);
        const AcGePoint2d q = spacing.plane(domain.points[to].p);
        doubled += (p.x - origin.x) * (q.y - origin.y) - (p.y - origin.y) * (q.x - origin.x);
    }
    const double box = domain.s.length() * (spacing.plane({0, domain.t.high}).y - origin.y);
    for (int i = 0; i < kSlices; ++i) {
        const double t = spacing.t_of_row(spacing.rows() * (i + 0.5) / kSlices);
        width += domain.s.length() / spacing.step_s(t) / kSlices;
    }
    const double part = box > 0 ? std::min(1.0, std::abs(doubled) / 2 / box) : 0;
    return spacing.rows() > 1 ? part * width * spacing.rows() : 0;
}

std::vector<Param> grid_points(const Domain& domain, const Spacing& spacing) {
    const double count = std::ceil(spacing.rows() - 0.05);
    std::vector<Param> result;
    if (!(count > 1) || count > 1e6) {
        return result;
    }
    const double unit = spacing.rows() / count;
    std::vector<Row> rows(static_cast<std::size_t>(count));
    for (const auto& [from, to] : domain.segments) {
        const Param &a = domain.points[from].p, &b = domain.points[to].p;
        const double row_a = spacing.row(a.t) / unit, row_b = spacing.row(b.t) / unit;
        const AcGePoint2d p = spacing.plane(a), q = spacing.plane(b);
        const double first = std::max(1.0, std::ceil(std::min(row_a, row_b) - 0.5));
        const double last = std::min(count - 1, std::floor(std::max(row_a, row_b) + 0.5));
        for (double k = first; k <= last; ++k) {
            Row& row = rows[static_cast<std::size_t>(k)];
            const double t = spacing.t_of_row(k * unit);
            const double y = spacing.plane({0, t}).y;
            if ((p.y <= y) != (q.y <= y)) {
                row.crossings.push_back(p.x + (q.x - p.x) * (y - p.y) / (q.y - p.y));
            }
            take(row, a, b, row_a, row_b, k, 0.5, spacing.step_s(t));
        }
    }
    for (std::size_t k = 1; k < rows.size(); ++k) {
        const double t = spacing.t_of_row(static_cast<double>(k) * unit);
        place(rows[k], t, spacing.step_s(t), result);
    }
    return result;
}

std::vector<std::array<std::uint32_t, 3>>
fill(Domain& domain, const Chart& chart, const Spacing& spacing, const Fineness& fineness,
     const std::function<std::uint32_t(const AcGePoint3d&)>& add_point, bool& crossed) {
    return Filler(domain, chart, spacing, fineness).fill(add_point, crossed);
}

} // namespace brep
