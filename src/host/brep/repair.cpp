// Rounds over the bad triangles; each finds its neighbours in a sorted list of edges.
#include "host/brep/repair.h"

#include <algorithm>

namespace brep {
namespace {

using Triangle = std::array<std::uint32_t, 3>;

/// An edge as one triangle runs along it.
struct Run {
    std::uint32_t from, to;
    std::size_t triangle;
    bool operator<(const Run& o) const { return from != o.from ? from < o.from : to < o.to; }
};

std::vector<Run> runs_of(const std::vector<Triangle>& triangles) {
    std::vector<Run> runs;
    runs.reserve(triangles.size() * 3);
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            runs.push_back({triangles[i][k], triangles[i][(k + 1) % 3], i});
        }
    }
    std::sort(runs.begin(), runs.end());
    return runs;
}

} // namespace

void mend(std::vector<Triangle>& triangles, const std::function<double(const Triangle&)>& quality) {
    constexpr int kRounds = 4;
    for (int round = 0; round < kRounds; ++round) {
        std::vector<std::size_t> bad;
        for (std::size_t i = 0; i < triangles.size(); ++i) {
            if (!(quality(triangles[i]) > 0)) {
                bad.push_back(i);
            }
        }
        if (bad.empty() || bad.size() > triangles.size() / 4 + 8) {
            return; // nothing to do, or nothing that a few edges could mend
        }
        const std::vector<Run> runs = runs_of(triangles);
        std::vector<bool> changed(triangles.size(), false);
        for (const std::size_t i : bad) {
            double best = quality(triangles[i]);
            Triangle one{}, two{};
            std::size_t other = triangles.size();
            for (std::size_t k = 0; k < 3 && !changed[i]; ++k) {
                const std::uint32_t a = triangles[i][k], b = triangles[i][(k + 1) % 3];
                const std::uint32_t c = triangles[i][(k + 2) % 3];
                const auto run = std::lower_bound(runs.begin(), runs.end(), Run{b, a, 0});
                if (run == runs.end() || run->from != b || run->to != a || changed[run->triangle]) {
                    continue;
                }
                std::uint32_t d = a;
                for (const std::uint32_t corner : triangles[run->triangle]) {
                    d = corner != a && corner != b ? corner : d;
                }
                const Triangle p{a, d, c}, q{d, b, c};
                const double worse = std::min(quality(p), quality(q));
                if (worse > best) {
                    best = worse;
                    one = p;
                    two = q;
                    other = run->triangle;
                }
            }
            if (other < triangles.size()) {
                triangles[i] = one;
                triangles[other] = two;
                changed[i] = changed[other] = true;
            }
        }
    }
}

} // namespace brep
