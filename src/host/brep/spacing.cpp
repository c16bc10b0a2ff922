// Steps from the surface's second derivatives and the turn of its normal (the bound of D. Filip,
// R. Magedson, R. Markot, "Surface algorithms using bounds on derivatives", CAGD 3, 1986).
#include "host/brep/spacing.h"

#include <algorithm>
#include <cmath>

namespace brep {
namespace {

constexpr std::size_t kRows = 65, kColumns = 17;

struct Steps {
    double s = 0, t = 0;
};

/// The largest step along one direction: `bend` is the second derivative along the normal, `turn`
/// the angle of the normals over `span`.
double step(double bend, double turn, double span, double most, double chord, double angle) {
    double result = most;
    if (bend > 0) {
        result = std::min(result, std::sqrt(chord / bend));
    }
    if (turn > 0) {
        result = std::min(result, angle * span / turn);
    }
    return result;
}

/// A chord of a line of parameters must not lie farther aside, within the surface, than a quarter
/// of a step across: else chords next to each other cross (the top circle of a torus).
double aside(const AcGeVector3d& second, const AcGeVector3d& first, const AcGeVector3d& normal,
             double across, double most) {
    const AcGeVector3d side = normal.crossProduct(first);
    const double length = side.length();
    const double bend = length > 0 ? std::abs(second.dotProduct(side)) / length : 0;
    return bend > 0 && across > 0 ? std::min(most, std::sqrt(2 * across / bend)) : most;
}

double angle_between(const AcGeVector3d& a, const AcGeVector3d& b) {
    return std::atan2(a.crossProduct(b).length(), a.dotProduct(b));
}

} // namespace

Spacing::Spacing(const Chart& chart, const Range& s, const Range& t, const Fineness& fineness)
  : t_(t) {
    const double ds = s.length() / (kColumns - 1), dt = t.length() / (kRows - 1);
    const bool round = chart.period_s() > 0;
    const double most_s = round ? chart.period_s() / 6 : std::max(s.length(), 1e-300);
    const double most_t =
        chart.period_t() > 0 ? chart.period_t() / 6 : std::max(t.length(), 1e-300);
    // Where the surface bends both ways each takes half of the chord.
    const double chord = chart.straight() ? 8 * fineness.chord : 4 * fineness.chord;
    const std::size_t columns = chart.even() ? 2 : kColumns;
    std::vector<Steps> steps(kRows, {most_s, most_t});
    std::vector<AcGeVector3d> before;
    for (std::size_t i = 0; i < kRows && !chart.flat(); ++i) {
        std::vector<AcGeVector3d> normals(columns);
        for (std::size_t k = 0; k < columns; ++k) {
            const Param p{s.low + ds * static_cast<double>(k), t.low + dt * static_cast<double>(i)};
            const SurfacePoint at = chart.at(p);
            const AcGeVector3d n = normals[k] = chart.normal(p, at);
            const double turn_s = k > 0 ? angle_between(normals[k - 1], n) : 0;
            const double by_s =
                step(std::abs(n.dotProduct(at.uu)), turn_s, ds, most_s, chord, fineness.angle);
            const double turn_t =
                !before.empty() && !chart.straight() ? angle_between(before[k], n) : 0;
            const double bend_t = chart.straight() ? 0 : std::abs(n.dotProduct(at.vv));
            const double by_t = step(bend_t, turn_t, dt, most_t, chord, fineness.angle);
            const double across_s = chart.straight() ? 0 : at.v.length() * by_t;
            const double across_t = chart.straight() ? 0 : at.u.length() * by_s;
            steps[i].s = std::min(steps[i].s, aside(at.uu, at.u, n, across_s, by_s));
            steps[i].t = std::min(steps[i].t, aside(at.vv, at.v, n, across_t, by_t));
        }
        before = std::move(normals);
    }
    row_.push_back(0);
    y_.push_back(0);
    for (std::size_t i = 0; i < kRows; ++i) {
        // Neither so small that its square is nothing nor more points than anyone can hold.
        steps[i].s = std::max(steps[i].s, most_s * 1e-4);
        steps[i].t = std::max(steps[i].t, most_t * 1e-4);
        step_s_.push_back(steps[i].s);
        if (i > 0) {
            const double t_step = (steps[i - 1].t + steps[i].t) / 2;
            const double s_step = (steps[i - 1].s + steps[i].s) / 2;
            row_.push_back(row_.back() + dt / t_step);
            y_.push_back(y_.back() + dt / t_step * s_step);
        }
    }
}

double Spacing::look_up(const std::vector<double>& table, double t) const {
    const double place = t_.length() > 0 ? (t - t_.low) / t_.length() * (kRows - 1) : 0;
    const double cell = std::clamp(std::floor(place), 0.0, kRows - 2.0);
    const auto i = static_cast<std::size_t>(cell);
    // Beyond the ends straight on, but for steps, which stay what they are.
    const double part = &table == &step_s_ ? std::clamp(place - cell, 0.0, 1.0) : place - cell;
    return table[i] + (table[i + 1] - table[i]) * part;
}

double Spacing::find(const std::vector<double>& table, double value) const {
    const auto above = std::upper_bound(table.begin() + 1, table.end() - 1, value);
    const auto i = static_cast<std::size_t>(above - table.begin()) - 1;
    const double size = table[i + 1] - table[i];
    const double part = size > 0 ? (value - table[i]) / size : 0;
    return t_.low + t_.length() / (kRows - 1) * (static_cast<double>(i) + part);
}

double Spacing::length(const Param& a, const Param& b) const {
    return std::hypot((b.s - a.s) / step_s((a.t + b.t) / 2), row(b.t) - row(a.t));
}

} // namespace brep
