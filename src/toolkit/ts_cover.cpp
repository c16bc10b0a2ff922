// Places of a ground cover's plants, see TsScatterCover in ts_plant.h.
#include "toolkit/ts_grow.h"

#include <algorithm>
#include <cmath>
#include <limits>

// The places are the points of a shaken hexagonal grid that lies over the whole world, so that
// faces side by side continue each other: which points there are follows from the cell alone, and a
// face takes those that lie in its ground plan. A point on a common edge belongs to one face only,
// by the rule that rasterisers use for pixels.

namespace {

using grow::Random;

/// The face's ground plan, counter-clockwise.
struct Plan {
    CTsPoint corners[3];
    double area = 0;

    /// Whether a point lies inside or on an edge that counts as inside.
    bool Holds(double x, double y) const {
        for (int i = 0; i < 3; ++i) {
            const CTsPoint &from = corners[i], &to = corners[(i + 1) % 3];
            // Both faces at an edge must come to opposite results, so it is always taken from the
            // same of its ends.
            const bool swap = to.x < from.x || (to.x == from.x && to.y < from.y);
            const CTsPoint &a = swap ? to : from, &b = swap ? from : to;
            const double side = (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x);
            const double inward = swap ? -side : side;
            if (inward < 0 || (side == 0 && swap)) {
                return false;
            }
        }
        return true;
    }
};

double PlanArea(const CTsPoint& a, const CTsPoint& b, const CTsPoint& c) {
    return ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x)) / 2;
}

/// Cosine of the face's slope.
double Levelness(const CTsPoint& a, const CTsPoint& b, const CTsPoint& c) {
    const grow::Vec ab{b.x - a.x, b.y - a.y, b.z - a.z}, ac{c.x - a.x, c.y - a.y, c.z - a.z};
    const grow::Vec normal = Cross(ab, ac);
    const double length = Length(normal);
    return length > 0 ? std::abs(normal.z) / length : 0;
}

class Scatter {
public:
    /// `density`: plants a square metre.
    Scatter(const CTsPlant& all_cover, const Plan& ground, std::uint32_t start, double density)
      : cover(all_cover)
      , plan(ground)
      , seed(start)
      , spacing(std::sqrt(2 / (std::sqrt(3.0) * density)))
      , row_height(spacing * std::sqrt(3.0) / 2) {}

    /// Points of the grid within the face, row by row.
    std::vector<CTsCoverPlace> Places(std::size_t most) const {
        std::vector<CTsCoverPlace> places;
        const auto [left, right] =
            std::minmax({plan.corners[0].x, plan.corners[1].x, plan.corners[2].x});
        const auto [low, high] =
            std::minmax({plan.corners[0].y, plan.corners[1].y, plan.corners[2].y});
        const double first_row = std::floor(low / row_height) - 2;
        const double last_row = std::min(std::ceil(high / row_height) + 2, first_row + row_limit);
        std::size_t visits = 0;
        for (double row = first_row; row <= last_row; ++row) {
            double from = 0, to = 0;
            if (!RowWithin(row * row_height, left, right, from, to)) {
                continue;
            }
            const double shift = std::fmod(std::abs(row), 2) == 1 ? 0.5 : 0;
            const double first = std::floor(from / spacing - shift) - 2;
            const double last = std::ceil(to / spacing - shift) + 2;
            for (double column = first; column <= last; ++column) {
                if (places.size() >= most || visits++ > visit_limit + 4 * most) {
                    return places;
                }
                AddPlace(row, column, shift, places);
            }
        }
        return places;
    }

private:
    // No lawn, but a needle of a face has more rows or columns.
    static constexpr double row_limit = 2e6;
    static constexpr std::size_t visit_limit = 2'000'000;

    /// The stretch of the ground plan that points of a row may fall on.
    bool RowWithin(double y, double left, double right, double& from, double& to) const {
        from = right, to = left;
        const double below = y - 2 * row_height, above = y + 2 * row_height;
        for (int i = 0; i < 3; ++i) {
            const CTsPoint &a = plan.corners[i], &b = plan.corners[(i + 1) % 3];
            const double bottom = std::max(below, std::min(a.y, b.y));
            const double top = std::min(above, std::max(a.y, b.y));
            if (bottom > top) {
                continue;
            }
            for (const double at : {bottom, top}) {
                const double share =
                    a.y == b.y ? 0 : std::clamp((at - a.y) / (b.y - a.y), 0.0, 1.0);
                const double x = a.x + share * (b.x - a.x);
                const double other = a.y == b.y ? b.x : x;
                from = std::min({from, x, other}), to = std::max({to, x, other});
            }
        }
        return from <= to;
    }

    void AddPlace(double row, double column, double shift,
                  std::vector<CTsCoverPlace>& places) const {
        const auto cell = grow::Hash(static_cast<std::uint64_t>(static_cast<std::int64_t>(row)) *
                                         0x9E3779B97F4A7C15U +
                                     static_cast<std::uint64_t>(static_cast<std::int64_t>(column)));
        Random random(seed, static_cast<std::uint32_t>(cell ^ (cell >> 32)));
        // Shaken within a disc that keeps neighbours apart.
        const double turn = random.In(0, 2 * grow::pi);
        const double away = 0.36 * cover.m_CoverSpread * spacing * std::sqrt(random.Unit());
        // The grid itself is bent in slow waves, or else its rows would show along kerbs.
        const double grid_x = (column + shift) * spacing, grid_y = row * row_height;
        const grow::Vec wave{grid_x / (8 * spacing), grid_y / (8 * spacing), 0.5};
        const double bend = 0.9 * cover.m_CoverSpread * spacing;
        const double x = grid_x + away * std::cos(turn) + bend * grow::Noise(wave, seed + 1);
        const double y = grid_y + away * std::sin(turn) + bend * grow::Noise(wave, seed + 2);
        if (!plan.Holds(x, y)) {
            return;
        }
        CTsCoverPlace place;
        const CTsPoint &a = plan.corners[0], &b = plan.corners[1], &c = plan.corners[2];
        const double v = PlanArea(a, {x, y, 0}, c) / plan.area;
        const double w = PlanArea(a, b, {x, y, 0}) / plan.area;
        place.location = {x, y, a.z + v * (b.z - a.z) + w * (c.z - a.z)};
        place.rotation = random.In(0, 2 * grow::pi);
        place.scale = 1 + cover.m_CoverVariation * random.In(-1, 1);
        places.push_back(place);
    }

    const CTsPlant& cover;
    const Plan& plan;
    std::uint32_t seed;
    double spacing, row_height;
};

} // namespace

std::vector<CTsCoverPlace> TsScatterCover(const CTsPlant& cover, const CTsPoint& a,
                                          const CTsPoint& b, const CTsPoint& c, std::uint32_t seed,
                                          std::size_t most) {
    Plan plan{{a, b, c}, PlanArea(a, b, c)};
    const bool usable = std::isfinite(plan.area) && plan.area != 0 && cover.m_CoverDensity > 0 &&
                        Levelness(a, b, c) >= std::cos(cover.m_CoverSlope) - 1e-12;
    if (!usable || most == 0) {
        return {};
    }
    if (plan.area < 0) {
        std::swap(plan.corners[1], plan.corners[2]);
        plan.area = -plan.area;
    }
    // Too many are set wider apart rather than cut off.
    const double density = std::min(cover.m_CoverDensity, 0.97 * double(most) / plan.area);
    return Scatter(cover, plan, seed, density).Places(most);
}
