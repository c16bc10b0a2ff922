// Mapping of loops: point after point, each near the one before; poles get a side of copies.
#include "host/brep/loops.h"

#include <algorithm>
#include <cmath>

namespace brep {
namespace {

enum class Pole { kNone, kLow, kHigh };

class Walker {
public:
    explicit Walker(const Mapping& mapping)
      : map_(mapping) {}
    std::optional<FlatLoop> walk(const std::vector<LoopPoint>& loop);

private:
    Pole pole_at(const AcGePoint3d& point) const;
    bool add(const LoopPoint& point);
    void add_poles(double to);
    double behind_pole(double s) const;

    const Mapping& map_;
    FlatLoop result_;
    std::vector<std::uint32_t> waiting_; ///< points at a pole, whose s follows from what comes
    Pole pole_ = Pole::kNone;
};

Pole Walker::pole_at(const AcGePoint3d& point) const {
    for (const bool high : {false, true}) {
        if (map_.chart.pole(high) &&
            map_.chart.pole_point(high).distanceTo(point) <= map_.tolerance) {
            return high ? Pole::kHigh : Pole::kLow;
        }
    }
    return Pole::kNone;
}

/// With the face to the left, the side at a high pole runs down in s and the one at a low pole up.
double Walker::behind_pole(double s) const {
    const double turn = map_.chart.period_s();
    if (!(turn > 0)) {
        return s;
    }
    const double before = result_.points.back().p.s;
    double gone = s - before;
    gone -= turn * std::floor(gone / turn);
    if (gone < 1e-6 * turn || gone > (1 - 1e-6) * turn) {
        gone = 0; // there and back along one line: all the way round
    }
    return pole_ == Pole::kLow ? before + (gone > 0 ? gone : turn) : before + gone - turn;
}

void Walker::add_poles(double to) {
    const double from = result_.points.back().p.s;
    const double t = *map_.chart.pole(pole_ == Pole::kHigh);
    const double length = std::abs(to - from);
    const double unit =
        map_.chart.period_s() > 0 ? map_.pole_step : map_.chart.s_range().length() / 4;
    const auto count = static_cast<int>(std::clamp(std::ceil(length / unit), 1.0, 1000.0));
    for (int i = 0; i <= count; ++i) {
        const auto k =
            waiting_.size() * static_cast<std::size_t>(i) / (static_cast<std::size_t>(count) + 1);
        result_.points.push_back({{from + (to - from) * i / count, t}, waiting_[k], true});
    }
    waiting_.clear();
}

bool Walker::add(const LoopPoint& point) {
    const AcGePoint3d& place = map_.points[point.id];
    if (const Pole pole = pole_at(place); pole != Pole::kNone && !result_.points.empty()) {
        pole_ = pole;
        waiting_.push_back(point.id);
        return true;
    }
    const Param* near = result_.points.empty() ? nullptr : &result_.points.back().p;
    Param hint;
    if (point.hint) {
        hint = {(*point.hint)[0], (*point.hint)[1]};
        if (map_.chart.swapped()) {
            std::swap(hint.s, hint.t);
        }
        if (map_.chart.at(hint).point.distanceTo(place) > map_.most_off) {
            hint = near != nullptr ? *near : hint;
        } else if (near != nullptr) {
            hint = map_.chart.unwrap(hint, *near);
        }
        near = near != nullptr || map_.chart.at(hint).point.distanceTo(place) <= map_.most_off
                   ? &hint
                   : nullptr;
    }
    Param p = map_.chart.project(place, near);
    if (!std::isfinite(p.s) || !std::isfinite(p.t) ||
        !(map_.chart.at(p).point.distanceTo(place) <= map_.most_off)) {
        return false;
    }
    if (!result_.points.empty()) {
        p = map_.chart.unwrap(p, result_.points.back().p);
    }
    if (!waiting_.empty()) {
        p.s = behind_pole(p.s);
        add_poles(p.s);
    }
    result_.points.push_back({p, point.id, false});
    return true;
}

std::optional<FlatLoop> Walker::walk(const std::vector<LoopPoint>& loop) {
    const auto off_pole = std::find_if(loop.begin(), loop.end(), [&](const LoopPoint& p) {
        return pole_at(map_.points[p.id]) == Pole::kNone;
    });
    if (off_pole == loop.end()) {
        return result_;
    }
    const auto first = static_cast<std::size_t>(off_pole - loop.begin());
    for (std::size_t i = 0; i <= loop.size(); ++i) {
        if (!add(loop[(first + i) % loop.size()])) {
            return std::nullopt;
        }
    }
    const Param moved = result_.points.back().p, start = result_.points.front().p;
    result_.points.pop_back();
    const auto turns = [](double gone, double period) {
        return period > 0 ? static_cast<int>(std::lround(gone / period)) : 0;
    };
    result_.turns_s = turns(moved.s - start.s, map_.chart.period_s());
    result_.turns_t = turns(moved.t - start.t, map_.chart.period_t());
    return result_;
}

} // namespace

std::vector<LoopPoint> loop_points(const Loop& loop, const std::vector<EdgePoints>& edges) {
    std::vector<LoopPoint> result;
    const auto known = [&](const Coedge& coedge) {
        return coedge.edge >= 0 && static_cast<std::size_t>(coedge.edge) < edges.size() &&
               !edges[static_cast<std::size_t>(coedge.edge)].ids.empty();
    };
    for (const Coedge& coedge : loop.coedges) {
        if (!known(coedge)) {
            continue;
        }
        const EdgePoints& edge = edges[static_cast<std::size_t>(coedge.edge)];
        const std::size_t count = edge.ids.size();
        bool reversed = coedge.reversed;
        if (!result.empty()) {
            const std::uint32_t last = result.back().id;
            const bool fits = last == (reversed ? edge.ids.back() : edge.ids.front());
            const bool turned = last == (reversed ? edge.ids.front() : edge.ids.back());
            reversed = !fits && turned ? !reversed : reversed;
        }
        const bool with_hint = coedge.pcurve && usable(coedge.pcurve->curve);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t k = reversed ? count - 1 - i : i;
            if (!result.empty() && result.back().id == edge.ids[k]) {
                continue;
            }
            LoopPoint point{edge.ids[k], std::nullopt};
            if (with_hint) {
                const AcGePoint3d at = evaluate(coedge.pcurve->curve, edge.at[k]).point;
                point.hint = {at.x, at.y};
            }
            result.push_back(point);
        }
    }
    while (result.size() > 1 && result.back().id == result.front().id) {
        result.pop_back();
    }
    return result;
}

std::optional<FlatLoop> flatten(const Mapping& mapping, const std::vector<LoopPoint>& loop) {
    return Walker(mapping).walk(loop);
}

double doubled_area(const std::vector<FlatPoint>& points) {
    double sum = 0;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        const Param &o = points[0].p, &a = points[i].p, &b = points[i + 1].p;
        sum += (a.s - o.s) * (b.t - o.t) - (a.t - o.t) * (b.s - o.s);
    }
    return sum;
}

bool inside(const std::vector<FlatPoint>& ring, const Param& p) {
    bool in = false;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Param &a = ring[i].p, &b = ring[(i + 1) % ring.size()].p;
        if ((a.t <= p.t) != (b.t <= p.t) && a.s + (b.s - a.s) * (p.t - a.t) / (b.t - a.t) > p.s) {
            in = !in;
        }
    }
    return in;
}

} // namespace brep
