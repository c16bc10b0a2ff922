// Triangulation of areas: the grid, the order of insertion along a space-filling curve, and what of
// the triangulation lies inside.
#include "host/ge/delaunay.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace ge {
namespace {

/// Place of a cell on Hilbert's curve over the grid.
std::uint64_t hilbert(Cell cell) {
    std::uint64_t place = 0;
    for (std::int64_t s = kGrid; s > 0; s /= 2) {
        const bool right = (cell.x & s) != 0;
        const bool up = (cell.y & s) != 0;
        place = place * 4 + ((right ? 3U : 0U) ^ (up ? 1U : 0U));
        if (!up) {
            if (right) {
                cell = {2 * kGrid - 1 - cell.x, 2 * kGrid - 1 - cell.y};
            }
            std::swap(cell.x, cell.y);
        }
    }
    return place;
}

/// The grid over the finite points.
class Grid {
public:
    explicit Grid(std::span<const AcGePoint2d> points) {
        bool first = true;
        AcGePoint2d high;
        for (const AcGePoint2d& p : points) {
            if (!finite(p)) {
                continue;
            }
            low_ = first ? p : AcGePoint2d{std::min(low_.x, p.x), std::min(low_.y, p.y)};
            high = first ? p : AcGePoint2d{std::max(high.x, p.x), std::max(high.y, p.y)};
            first = false;
        }
        // Halves, since the whole width of the numbers themselves is no number.
        half_ = std::max(high.x / 2 - low_.x / 2, high.y / 2 - low_.y / 2);
    }
    static bool finite(const AcGePoint2d& p) { return std::isfinite(p.x) && std::isfinite(p.y); }
    bool empty() const { return !(half_ > 0); }
    Cell cell(const AcGePoint2d& p) const { return {step(p.x, low_.x), step(p.y, low_.y)}; }
    AcGePoint2d point(const Cell& cell) const {
        const double part = 2 * half_ / static_cast<double>(kGrid);
        return {low_.x + static_cast<double>(cell.x) * part,
                low_.y + static_cast<double>(cell.y) * part};
    }

private:
    std::int64_t step(double value, double low) const {
        const double place = (value / 2 - low / 2) / half_ * static_cast<double>(kGrid);
        return std::llround(std::clamp(place, 0.0, static_cast<double>(kGrid)));
    }
    AcGePoint2d low_;
    double half_ = 0;
};

/// The order of insertion: rounds, each about twice as large as the one before, along Hilbert's
/// curve within each (N. Amenta, S. Choi, G. Rote, "Incremental constructions con BRIO", 2003).
std::vector<std::int32_t> insertion_order(std::span<const AcGePoint2d> points,
                                          const std::vector<Cell>& cells) {
    struct Key {
        int round;
        std::uint64_t place;
        std::int32_t point;
    };
    std::vector<Key> keys;
    keys.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (Grid::finite(points[i])) {
            const std::uint64_t mixed = (i + 1) * 0x9e3779b97f4a7c15ULL;
            keys.push_back({std::min(std::countl_zero(mixed ^ (mixed << 29)), 12),
                            hilbert(cells[i]), static_cast<std::int32_t>(i)});
        }
    }
    std::sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
        return a.round != b.round   ? a.round > b.round
               : a.place != b.place ? a.place < b.place
                                    : a.point < b.point;
    });
    std::vector<std::int32_t> order(keys.size());
    std::transform(keys.begin(), keys.end(), order.begin(), [](const Key& k) { return k.point; });
    return order;
}

/// For each point the first one in its cell, -1 for what is not finite.
std::vector<std::int32_t> merge_equal(const std::vector<Cell>& cells,
                                      std::vector<std::int32_t> order) {
    std::vector<std::int32_t> same(cells.size(), -1);
    std::sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
        const Cell& p = cells[static_cast<std::size_t>(a)];
        const Cell& q = cells[static_cast<std::size_t>(b)];
        return p.x != q.x ? p.x < q.x : p.y != q.y ? p.y < q.y : a < b;
    });
    for (std::size_t i = 0; i < order.size(); ++i) {
        const auto point = static_cast<std::size_t>(order[i]);
        const bool equal = i > 0 && cells[static_cast<std::size_t>(order[i - 1])] == cells[point];
        same[point] = equal ? same[static_cast<std::size_t>(order[i - 1])] : order[i];
    }
    return same;
}

} // namespace

Triangulation triangulate(std::span<const AcGePoint2d> points,
                          std::span<const std::array<std::uint32_t, 2>> segments, FillRule rule) {
    Triangulation result;
    result.points.assign(points.begin(), points.end());
    const Grid grid(points);
    constexpr std::size_t kMostPoints = std::size_t{1} << 28;
    if (grid.empty() || segments.empty() || points.size() > kMostPoints) {
        return result;
    }
    std::vector<Cell> cells(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        cells[i] = Grid::finite(points[i]) ? grid.cell(points[i]) : Cell{};
    }
    const std::vector<std::int32_t> order = insertion_order(points, cells);
    const std::vector<std::int32_t> same = merge_equal(cells, order);
    const auto frame = static_cast<std::int32_t>(points.size());
    cells.insert(
        cells.end(),
        {{-kGrid, -kGrid}, {2 * kGrid, -kGrid}, {2 * kGrid, 2 * kGrid}, {-kGrid, 2 * kGrid}});
    Builder builder(std::move(cells), frame);
    for (const std::int32_t point : order) {
        if (same[static_cast<std::size_t>(point)] == point) {
            builder.insert(point);
        }
    }
    for (const auto& [from, to] : segments) {
        const std::int32_t a = from < points.size() ? same[from] : -1;
        const std::int32_t b = to < points.size() ? same[to] : -1;
        if (a >= 0 && b >= 0) {
            builder.constrain({a, b, {1, 1}});
        }
    }
    result.crossed = builder.crossed();
    const std::vector<Cell>& all = builder.cells();
    for (std::size_t i = points.size() + 4; i < all.size(); ++i) {
        result.points.push_back(grid.point(all[i]));
    }
    const std::vector<bool> inside = builder.inside(rule);
    for (std::size_t i = 0; i < inside.size(); ++i) {
        if (!inside[i]) {
            continue;
        }
        std::array<std::uint32_t, 3> triangle{};
        std::transform(builder.triangles()[i].corner.begin(), builder.triangles()[i].corner.end(),
                       triangle.begin(), [&](std::int32_t corner) {
                           return static_cast<std::uint32_t>(corner < frame ? corner : corner - 4);
                       });
        result.triangles.push_back(triangle);
    }
    return result;
}

Triangulation triangulateRings(std::span<const std::vector<AcGePoint2d>> rings, FillRule rule) {
    std::vector<AcGePoint2d> points;
    std::vector<std::array<std::uint32_t, 2>> segments;
    for (const std::vector<AcGePoint2d>& ring : rings) {
        const auto first = static_cast<std::uint32_t>(points.size());
        const auto count = static_cast<std::uint32_t>(ring.size());
        points.insert(points.end(), ring.begin(), ring.end());
        for (std::uint32_t i = 0; i < count; ++i) {
            segments.push_back({first + i, first + (i + 1) % count});
        }
    }
    return triangulate(points, segments, rule);
}

} // namespace ge
