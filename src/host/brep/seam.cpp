// Seams: the shortest way along the edges of a triangulation of three turns of the strip.
#include "host/brep/seam.h"

#include "host/ge/triangulate.h"

#include <algorithm>
#include <limits>
#include <queue>

namespace brep {
namespace {

enum class Kind { kLow, kHigh, kHole };

struct Node {
    FlatPoint point;
    Kind kind = Kind::kHole;
    std::size_t index = 0; ///< in its side
    int turn = 0;
};

using Segment = std::array<std::uint32_t, 2>;

class Plan {
public:
    Plan(const Strip& strip, const std::vector<FlatLoop>& holes, double period,
         const Spacing& spacing)
      : period_(period)
      , spacing_(spacing) {
        const auto [low, low_end] = add_side(strip.low, Kind::kLow);
        const auto [high, high_end] = add_side(strip.high, Kind::kHigh);
        segments_.push_back({low, high});
        segments_.push_back({low_end, high_end});
        for (const FlatLoop& hole : holes) {
            for (int turn = -2; turn <= 2; ++turn) {
                add_hole(hole.points, turn);
            }
        }
    }
    std::optional<Seam> find();

private:
    std::uint32_t add(const FlatPoint& point, Kind kind, std::size_t index, int turn) {
        Node node{point, kind, index, turn};
        node.point.p.s += turn * period_;
        nodes_.push_back(node);
        return static_cast<std::uint32_t>(nodes_.size() - 1);
    }
    std::array<std::uint32_t, 2> add_side(const std::vector<FlatPoint>& side, Kind kind) {
        const auto first = static_cast<std::uint32_t>(nodes_.size());
        for (int turn = -1; turn <= 1; ++turn) {
            for (std::size_t i = 0; i < side.size(); ++i) {
                const std::uint32_t id = add(side[i], kind, i, turn);
                if (id > first) {
                    segments_.push_back({id - 1, id});
                }
            }
        }
        return {first, static_cast<std::uint32_t>(nodes_.size() - 1)};
    }
    void add_hole(const std::vector<FlatPoint>& hole, int turn) {
        const auto first = static_cast<std::uint32_t>(nodes_.size());
        for (std::size_t i = 0; i < hole.size(); ++i) {
            const std::uint32_t id = add(hole[i], Kind::kHole, i, turn);
            segments_.push_back({id, i + 1 < hole.size() ? id + 1 : first});
        }
    }
    std::vector<std::vector<std::uint32_t>> neighbours() const;
    std::optional<Seam> trace(const std::vector<std::uint32_t>& from, std::uint32_t end) const;
    bool on_loop(std::uint32_t a, std::uint32_t b) const;

    double period_;
    const Spacing& spacing_;
    std::vector<Node> nodes_;
    std::vector<Segment> segments_;
};

std::vector<std::vector<std::uint32_t>> Plan::neighbours() const {
    std::vector<AcGePoint2d> flat;
    for (const Node& node : nodes_) {
        flat.push_back(spacing_.plane(node.point.p));
    }
    std::vector<std::vector<std::uint32_t>> result(nodes_.size());
    const ge::Triangulation all = ge::triangulate(flat, segments_);
    for (const auto& triangle : all.triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            const std::uint32_t a = triangle[i], b = triangle[(i + 1) % 3];
            if (a < nodes_.size() && b < nodes_.size()) {
                result[a].push_back(b);
                result[b].push_back(a);
            }
        }
    }
    return result;
}

bool Plan::on_loop(std::uint32_t a, std::uint32_t b) const {
    return std::any_of(segments_.begin(), segments_.end(), [&](const Segment& s) {
        return (s[0] == a && s[1] == b) || (s[0] == b && s[1] == a);
    });
}

std::optional<Seam> Plan::trace(const std::vector<std::uint32_t>& from, std::uint32_t end) const {
    std::vector<std::uint32_t> way{end};
    while (from[way.back()] != way.back()) {
        way.push_back(from[way.back()]);
    }
    std::reverse(way.begin(), way.end());
    Seam seam;
    seam.low = nodes_[way.front()].index;
    seam.high = nodes_[end].index;
    for (std::size_t i = 0; i < way.size(); ++i) {
        seam.nodes.push_back({nodes_[way[i]].point, i > 0 && on_loop(way[i - 1], way[i])});
    }
    return seam;
}

/// Dijkstra's, from all points of the middle turn of the low side.
std::optional<Seam> Plan::find() {
    const auto next = neighbours();
    const std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
    std::vector<std::uint32_t> from(nodes_.size(), none);
    std::vector<double> length(nodes_.size(), std::numeric_limits<double>::max());
    using Entry = std::pair<double, std::uint32_t>;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
    for (std::uint32_t i = 0; i < nodes_.size(); ++i) {
        if (nodes_[i].kind == Kind::kLow && nodes_[i].turn == 0) {
            from[i] = i;
            length[i] = 0;
            open.emplace(0, i);
        }
    }
    while (!open.empty()) {
        const auto [far, i] = open.top();
        open.pop();
        if (far > length[i]) {
            continue;
        }
        if (nodes_[i].kind == Kind::kHigh) {
            return trace(from, i);
        }
        for (const std::uint32_t k : next[i]) {
            const AcGePoint2d a = spacing_.plane(nodes_[i].point.p);
            const double through = far + a.distanceTo(spacing_.plane(nodes_[k].point.p));
            if (nodes_[k].kind != Kind::kLow && through < length[k]) {
                length[k] = through;
                from[k] = i;
                open.emplace(through, k);
            }
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Seam> find_seam(const Strip& strip, const std::vector<FlatLoop>& holes, double period,
                              const Spacing& spacing) {
    return Plan(strip, holes, period, spacing).find();
}

} // namespace brep
