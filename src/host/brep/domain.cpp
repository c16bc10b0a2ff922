// Domains: which loops bound what, sides at poles, seams, and the outline in the plane.
#include "host/brep/domain.h"

#include "host/brep/seam.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brep {
namespace {

using Points = std::vector<FlatPoint>;

double middle_t(const Points& points) {
    double sum = 0;
    for (const FlatPoint& p : points) {
        sum += p.p.t;
    }
    return points.empty() ? 0 : sum / static_cast<double>(points.size());
}

void move(Points& points, double s, double t) {
    for (FlatPoint& p : points) {
        p.p.s += s;
        p.p.t += t;
    }
}

void widen(Range& s, Range& t, const Points& points) {
    for (const FlatPoint& p : points) {
        s = {std::min(s.low, p.p.s), std::max(s.high, p.p.s)};
        t = {std::min(t.low, p.p.t), std::max(t.high, p.p.t)};
    }
}

/// What bounds a strip on one side: a loop, a pole, or the circle at which a closed surface is cut.
struct Side {
    Points points;
    bool pole = false;
};

struct StripPlan {
    Side low, high;
};

class Maker {
public:
    Maker(const DomainInput& input, std::optional<Spacing>& spacing)
      : in_(input)
      , chart_(input.chart)
      , spacing_(spacing) {}
    std::optional<Domain> make();

private:
    bool sort_loops();
    void swap_directions();
    bool pair_up();
    bool pair_one(std::vector<Points>& lows, std::vector<Points>& highs);
    bool salvage(std::vector<Points> rings);
    bool whole();
    std::optional<double> free_t() const;
    void cut_round(double t);
    Points pole_side(bool high) const;
    void make_spacing();
    bool outline(StripPlan& plan);
    void add_way(Points& ring, const FlatPoint& from, const SeamNode& to) const;
    void align(Points& hole, const Points& ring) const;
    void align_t(Points& hole) const;
    void add_ring(const Points& ring);

    const DomainInput& in_;
    Chart& chart_;
    std::optional<Spacing>& spacing_;
    std::vector<Points> rising_, falling_; ///< loops that run round along and against s
    std::vector<FlatLoop> flat_;           ///< loops that close in the plane
    std::vector<StripPlan> strips_;
    std::optional<double> cut_t_; ///< where a surface that closes both ways is cut
    std::vector<Points> outlines_;
    Domain domain_;
};

void Maker::swap_directions() {
    chart_.swap();
    for (FlatLoop& loop : in_.loops) {
        for (FlatPoint& p : loop.points) {
            std::swap(p.p.s, p.p.t);
        }
        // The plane is mirrored, so that left becomes right.
        std::reverse(loop.points.begin(), loop.points.end());
        std::swap(loop.turns_s, loop.turns_t);
        loop.turns_s = -loop.turns_s;
        loop.turns_t = -loop.turns_t;
    }
}

bool Maker::sort_loops() {
    const auto runs_along_t = [](const FlatLoop& loop) { return loop.turns_t != 0; };
    if (std::any_of(in_.loops.begin(), in_.loops.end(), runs_along_t)) {
        swap_directions();
    }
    for (FlatLoop& loop : in_.loops) {
        if (loop.turns_t != 0 || std::abs(loop.turns_s) > 1) {
            return false;
        }
        if (loop.turns_s == 0) {
            flat_.push_back(loop);
        } else if (loop.turns_s > 0) {
            rising_.push_back(loop.points);
        } else {
            falling_.push_back(loop.points);
            std::reverse(falling_.back().begin(), falling_.back().end());
        }
    }
    return true;
}

/// The lowest of the rising loops with the next falling one above it, or with the pole.
bool Maker::pair_one(std::vector<Points>& lows, std::vector<Points>& highs) {
    const auto lower = [](const Points& a, const Points& b) { return middle_t(a) < middle_t(b); };
    const double turn = chart_.period_t();
    StripPlan plan;
    if (lows.empty()) {
        if (!chart_.pole(false)) {
            return false;
        }
        plan.low.pole = true;
        const auto lowest = std::min_element(highs.begin(), highs.end(), lower);
        plan.high.points = std::move(*lowest);
        highs.erase(lowest);
        strips_.push_back(std::move(plan));
        return true;
    }
    const auto highest = std::max_element(lows.begin(), lows.end(), lower);
    plan.low.points = std::move(*highest);
    lows.erase(highest);
    const double from = middle_t(plan.low.points);
    auto best = highs.end();
    double nearest = std::numeric_limits<double>::max(), moved = 0;
    for (auto it = highs.begin(); it != highs.end(); ++it) {
        double gap = middle_t(*it) - from;
        const double shift = turn > 0 ? -turn * std::floor(gap / turn) : 0;
        gap += shift;
        if (gap > 0 && gap < nearest) {
            nearest = gap;
            moved = shift;
            best = it;
        }
    }
    if (best != highs.end()) {
        plan.high.points = std::move(*best);
        move(plan.high.points, 0, moved);
        highs.erase(best);
    } else if (chart_.pole(true)) {
        plan.high.pole = true;
    } else {
        return false;
    }
    strips_.push_back(std::move(plan));
    return true;
}

bool Maker::pair_up() {
    std::vector<Points> lows = rising_, highs = falling_;
    while (!lows.empty() || !highs.empty()) {
        if (!pair_one(lows, highs)) {
            strips_.clear();
            std::vector<Points> rings = rising_;
            rings.insert(rings.end(), falling_.begin(), falling_.end());
            return salvage(std::move(rings));
        }
    }
    return true;
}

/// Loops that run the wrong way round: what lies between two of them, or between one and the pole
/// that there is.
bool Maker::salvage(std::vector<Points> rings) {
    std::sort(rings.begin(), rings.end(),
              [](const Points& a, const Points& b) { return middle_t(a) < middle_t(b); });
    StripPlan plan;
    if (rings.size() == 2) {
        plan.low.points = rings[0];
        plan.high.points = rings[1];
    } else if (rings.size() == 1 && chart_.pole(true)) {
        plan.low.points = rings[0];
        plan.high.pole = true;
    } else if (rings.size() == 1 && chart_.pole(false)) {
        plan.high.points = rings[0];
        plan.low.pole = true;
    } else {
        return false;
    }
    strips_.push_back(std::move(plan));
    return true;
}

/// A t that no loop crosses, as far from them as can be.
std::optional<double> Maker::free_t() const {
    constexpr int kTries = 64;
    const double turn = chart_.period_t();
    std::optional<double> best;
    double widest = 0;
    for (int i = 0; i < kTries; ++i) {
        const double t = chart_.t_range().low + turn * i / kTries;
        double room = flat_.empty() ? turn : turn / 2;
        for (const FlatLoop& loop : flat_) {
            Range s{1e300, -1e300}, used = s;
            widen(s, used, loop.points);
            const double start = used.low - turn * std::floor((used.low - t) / turn);
            room = std::min({room, start - t, t + turn - (start + used.length())});
        }
        if (room > widest + 1e-9 * turn) {
            widest = room;
            best = t;
        }
    }
    return best;
}

/// The whole surface, but for the loops.
bool Maker::whole() {
    if (!(chart_.period_s() > 0)) {
        return false;
    }
    StripPlan plan;
    if (chart_.period_t() > 0) {
        cut_t_ = free_t();
        if (!cut_t_) {
            const std::vector<FlatLoop> before = flat_;
            swap_directions();
            flat_ = in_.loops;
            cut_t_ = free_t();
        }
        if (!cut_t_) {
            return false;
        }
    } else if (chart_.pole(false) && chart_.pole(true)) {
        plan.low.pole = plan.high.pole = true;
    } else {
        return false;
    }
    strips_.push_back(std::move(plan));
    return true;
}

void Maker::make_spacing() {
    Range s{1e300, -1e300}, t{1e300, -1e300};
    for (const FlatLoop& loop : flat_) {
        widen(s, t, loop.points);
    }
    for (const StripPlan& plan : strips_) {
        for (const Side* side : {&plan.low, &plan.high}) {
            widen(s, t, side->points);
            if (side->pole) {
                const double pole = *chart_.pole(side == &plan.high);
                t = {std::min(t.low, pole), std::max(t.high, pole)};
            }
        }
    }
    if (cut_t_) {
        t = {*cut_t_, *cut_t_ + chart_.period_t()};
    }
    if (!strips_.empty()) {
        const double from = s.low < 1e299 ? s.low : chart_.s_range().low;
        s = {from, from + chart_.period_s()};
    }
    spacing_.emplace(chart_, s, t, in_.fineness);
}

Points Maker::pole_side(bool high) const {
    const double t = *chart_.pole(high), turn = chart_.period_s();
    const std::optional<std::uint32_t> known = high ? in_.high_vertex : in_.low_vertex;
    const std::uint32_t id = known ? *known : in_.add_point(chart_.pole_point(high));
    constexpr int count = 12; // all one point, but each is seen from its own part of the turn
    Points side;
    for (int i = 0; i < count; ++i) {
        side.push_back({{chart_.s_range().low + turn * i / count, t}, id, true});
    }
    return side;
}

/// The circle at which a surface that closes both ways is cut stands on both sides of the strip.
void Maker::cut_round(double t) {
    const double turn = chart_.period_s();
    const int count = std::max(6, static_cast<int>(std::ceil(turn / spacing_->step_s(t) - 1e-6)));
    Points side;
    for (int i = 0; i < count; ++i) {
        const Param p{chart_.s_range().low + turn * i / count, t};
        side.push_back({p, in_.add_point(chart_.at(p).point), false});
    }
    strips_[0].low.points = side;
    move(side, 0, chart_.period_t());
    strips_[0].high.points = std::move(side);
}

/// The points of a seam between two of its nodes, and the second node.
void Maker::add_way(Points& ring, const FlatPoint& from, const SeamNode& to) const {
    const Param a = from.p, b = to.point.p;
    const double length = to.stays_on_loop ? 1 : spacing_->length(a, b);
    const int count = std::clamp(static_cast<int>(std::ceil(length - 0.05)), 1, 10000);
    const double row_a = spacing_->row(a.t), row_b = spacing_->row(b.t);
    const double y_a = spacing_->plane(a).y, y_b = spacing_->plane(b).y;
    for (int i = 1; i < count; ++i) {
        // Even in rows, and straight in the plane.
        double part = static_cast<double>(i) / count;
        Param p{a.s, spacing_->t_of_row(row_a + (row_b - row_a) * part)};
        if (std::abs(y_b - y_a) > 1e-3 * std::abs(b.s - a.s)) {
            part = (spacing_->plane(p).y - y_a) / (y_b - y_a);
        } else {
            p.t = a.t + (b.t - a.t) * part;
        }
        p.s = a.s + (b.s - a.s) * part;
        ring.push_back({p, in_.add_point(chart_.at(p).point), false});
    }
    ring.push_back(to.point);
}

bool Maker::outline(StripPlan& plan) {
    const double turn = chart_.period_s();
    for (const bool high : {false, true}) {
        Side& side = high ? plan.high : plan.low;
        if (side.pole) {
            side.points = pole_side(high);
        }
    }
    const double low_start = plan.low.points[0].p.s;
    const double gap = plan.high.points[0].p.s - low_start;
    move(plan.high.points, -turn * std::round(gap / turn), 0);
    std::vector<FlatLoop> holes = flat_;
    for (FlatLoop& hole : holes) {
        align_t(hole.points);
    }
    const Strip strip{plan.low.points, plan.high.points};
    const std::optional<Seam> seam = find_seam(strip, holes, turn, *spacing_);
    if (!seam) {
        return false;
    }
    Points way{seam->nodes[0].point};
    for (std::size_t i = 1; i < seam->nodes.size(); ++i) {
        add_way(way, seam->nodes[i - 1].point, seam->nodes[i]);
    }
    Points ring;
    const auto add_side = [&](const Points& side, std::size_t first, double start) {
        // From the seam's end once round; without the last point, which is the way's.
        Points run;
        for (std::size_t i = 0; i < side.size(); ++i) {
            FlatPoint p = side[(first + i) % side.size()];
            p.p.s += (first + i >= side.size() ? turn : 0) + start - side[first].p.s;
            run.push_back(p);
        }
        return run;
    };
    ring = add_side(strip.low, seam->low, way.front().p.s);
    Points right = way;
    move(right, turn, 0);
    ring.insert(ring.end(), right.begin(), right.end());
    Points top = add_side(strip.high, seam->high, way.back().p.s);
    std::reverse(top.begin(), top.end());
    ring.insert(ring.end(), top.begin(), top.end());
    // The top ended with the left end of the seam; the bottom began with the other.
    for (std::size_t i = way.size() - 2; i > 0 && i < way.size(); --i) {
        ring.push_back(way[i]);
    }
    add_ring(ring);
    outlines_.push_back(std::move(ring));
    return true;
}

/// Brings a hole between the sides of the strip on a surface that closes both ways.
void Maker::align_t(Points& hole) const {
    if (!(chart_.period_t() > 0)) {
        return;
    }
    const double low = spacing_->t_of_row(0);
    Range s{1e300, -1e300}, t = s;
    widen(s, t, hole);
    const double middle = (t.low + t.high) / 2;
    move(hole, 0, -chart_.period_t() * std::floor((middle - low) / chart_.period_t()));
}

/// Moves a hole by periods into the ring. Points that the ring has too say nothing.
void Maker::align(Points& hole, const Points& ring) const {
    const int far_s = chart_.period_s() > 0 ? 3 : 0, far_t = chart_.period_t() > 0 ? 2 : 0;
    std::vector<std::uint32_t> shared;
    for (const FlatPoint& p : ring) {
        shared.push_back(p.id);
    }
    std::sort(shared.begin(), shared.end());
    std::vector<Param> probes;
    for (const FlatPoint& p : hole) {
        if (probes.size() < 16 && !std::binary_search(shared.begin(), shared.end(), p.id)) {
            probes.push_back(p.p);
        }
    }
    std::ptrdiff_t most = 0;
    double best_s = 0, best_t = 0;
    for (int i = -far_s; i <= far_s; ++i) {
        for (int k = -far_t; k <= far_t; ++k) {
            const double s = i * chart_.period_s(), t = k * chart_.period_t();
            const auto hits = std::count_if(probes.begin(), probes.end(), [&](const Param& p) {
                return inside(ring, {p.s + s, p.t + t});
            });
            if (hits > most) {
                most = hits;
                best_s = s;
                best_t = t;
            }
        }
    }
    move(hole, best_s, best_t);
}

void Maker::add_ring(const Points& ring) {
    const auto first = static_cast<std::uint32_t>(domain_.points.size());
    const auto count = static_cast<std::uint32_t>(ring.size());
    domain_.points.insert(domain_.points.end(), ring.begin(), ring.end());
    for (std::uint32_t i = 0; i < count; ++i) {
        domain_.segments.push_back({first + i, first + (i + 1) % count});
    }
}

std::optional<Domain> Maker::make() {
    if (!sort_loops()) {
        return std::nullopt;
    }
    const auto size = [](const FlatLoop& loop) { return std::abs(doubled_area(loop.points)); };
    const auto largest =
        std::max_element(flat_.begin(), flat_.end(),
                         [&](const FlatLoop& a, const FlatLoop& b) { return size(a) < size(b); });
    const bool winding = !rising_.empty() || !falling_.empty();
    if (winding) {
        if (!pair_up()) {
            return std::nullopt;
        }
    } else if (flat_.empty() || doubled_area(largest->points) < 0) {
        if (!whole() && flat_.empty()) {
            return std::nullopt;
        }
    }
    if (strips_.empty()) {
        // The largest loop bounds the face; the others are holes in it.
        std::iter_swap(flat_.begin(), std::max_element(flat_.begin(), flat_.end(),
                                                       [&](const FlatLoop& a, const FlatLoop& b) {
                                                           return size(a) < size(b);
                                                       }));
        for (std::size_t i = 1; i < flat_.size(); ++i) {
            align(flat_[i].points, flat_[0].points);
        }
        make_spacing();
    } else {
        make_spacing();
        if (cut_t_) {
            cut_round(*cut_t_);
        }
        for (StripPlan& plan : strips_) {
            if (!outline(plan)) {
                return std::nullopt;
            }
        }
        for (FlatLoop& hole : flat_) {
            for (const Points& ring : outlines_) {
                align(hole.points, ring);
            }
        }
    }
    for (const FlatLoop& loop : flat_) {
        add_ring(loop.points);
    }
    domain_.s = domain_.t = {1e300, -1e300};
    widen(domain_.s, domain_.t, domain_.points);
    return std::move(domain_);
}

} // namespace

std::optional<Domain> make_domain(const DomainInput& input, std::optional<Spacing>& spacing) {
    return Maker(input, spacing).make();
}

} // namespace brep
