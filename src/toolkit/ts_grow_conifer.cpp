// Conifers: whorls of branches about a straight trunk, and narrow columns.
#include "toolkit/ts_grow.h"

#include <algorithm>

namespace grow {

namespace {

/// A piece of a branch that bears needles.
struct Shoot {
    Vec from, to;
    double light = 0; ///< -1 near the trunk to 1 at the end of the branch
};

/// The branch at share `u` of its length: out and down, its end rising again.
Vec OnBranch(Vec foot, double azimuth, double rise, double length, double droop, double u) {
    const double sag = 0.42 * droop * u * u - 0.24 * std::max(0.0, u - 0.45) * u;
    return foot + Toward(azimuth, rise) * (length * u) - Vec{0, 0, sag * length};
}

/// Shoots along one branch: its own end and a flat fan of side twigs, the longest in the middle.
void AddShoots(std::vector<Shoot>& shoots, Vec foot, double azimuth, double rise, double length,
               double droop, int twigs, Random& random) {
    const auto at = [&](double u) { return OnBranch(foot, azimuth, rise, length, droop, u); };
    shoots.push_back({at(0.35), at(0.7), 0.1});
    shoots.push_back({at(0.7), at(1), 0.9});
    for (int i = 0; i < twigs; ++i) {
        const double u = 0.14 + 0.8 * (i + random.In(0.2, 0.8)) / twigs;
        const double sign = i % 2 == 0 ? 1 : -1;
        const double turn = azimuth + sign * random.In(0.75, 1.1);
        const double reach =
            length * (0.18 + 0.40 * std::sin(pi * std::pow(1 - u, 0.8))) * random.In(0.75, 1.05);
        const Vec from = at(u);
        const Vec way = Unit(Toward(turn, rise * 0.5) - Vec{0, 0, 0.12 + 0.75 * droop * u});
        shoots.push_back(
            {from, from + way * std::min(reach, 1.02 * length * (1 - 0.6 * u)), 1.6 * u - 0.7});
    }
}

struct WhorlCounts {
    int whorls, branches, twigs;
};

WhorlCounts CountsOf(const Task& task) {
    constexpr int most[4] = {14, 44, 54, 70}, branches[4] = {5, 6, 7, 8},
                  twigs[4] = {2, 12, 17, 26};
    const double crown = task.d.m_Height - task.d.m_TrunkHeight;
    const double dense = std::clamp(task.d.m_BranchDensity, 0.2, 2.0);
    const auto detail = static_cast<std::size_t>(task.detail);
    const int whorls = static_cast<int>(std::sqrt(dense) * (6 + 2.9 * crown));
    return {std::clamp(whorls, std::min(6, most[detail]), most[detail]),
            branches[detail] + (dense > 1.4   ? 1
                                : dense < 0.6 ? -1
                                              : 0),
            twigs[detail]};
}

/// Needles along all shoots, in proportion to their lengths; they stand off to all sides but
/// mostly lie flat, as on a fir. `cover` is their area in square metres.
void DrawNeedles(Task& task, const std::vector<Shoot>& shoots, double cover, std::size_t most) {
    double total = 0;
    for (const Shoot& shoot : shoots) {
        total += Length(shoot.to - shoot.from);
    }
    if (total <= 0 || most == 0) {
        return;
    }
    Random random(task.d.m_Seed, 22);
    // Each spike stands for a run of needles; more of them are finer.
    const double spikes = static_cast<double>(most);
    const double area = cover * std::min(2.0, task.leaf_amount);
    const double wanted = std::max(task.d.m_LeafSize * 1.6, std::sqrt(area / spikes * 2 / 0.34));
    const double length = std::min(wanted, 0.18 * task.d.m_Diameter);
    const double width = std::min(2 * area / spikes / length, 0.8 * length);
    double owed = 0;
    for (const Shoot& shoot : shoots) {
        const Vec way = Unit(shoot.to - shoot.from);
        const double share = Length(shoot.to - shoot.from) / total * spikes + owed;
        const auto count = static_cast<std::size_t>(share);
        owed = share - static_cast<double>(count);
        const Vec side = Off(Cross({0, 0, 1}, way), way, {1, 0, 0}), up = Cross(way, side);
        for (std::size_t k = 0; k < count; ++k) {
            const double u = (static_cast<double>(k) + random.Unit()) / static_cast<double>(count);
            const double sign = k % 2 == 0 ? 1 : -1;
            const double lift = random.In(-0.35, 0.55);
            const Vec out = Unit(side * sign + up * lift);
            const Vec axis = Unit(way * random.In(0.7, 1.2) + out);
            const Vec normal = Unit(up - out * (lift * 0.8) + random.Ball() * 0.45);
            const double size = random.In(0.7, 1.15) * (1 - 0.35 * u);
            task.mesh.Leaf(task.LeafPart(random, shoot.light), Mix(shoot.from, shoot.to, u), axis,
                           normal, size * length, size * width, 0.05, 1);
        }
    }
}

void DrawTrunk(Task& task, double bend) {
    const CTsPlantDefinition& d = task.d;
    const int points = task.detail == 0 ? 3 : 12,
              sides = task.detail == 0 ? 4 : 8 + 2 * task.detail;
    const double foot = std::max(d.m_TrunkDiameter / 2, 0.004);
    Random random(d.m_Seed, 20);
    const double turn = random.In(0, 2 * pi);
    std::vector<PathPoint> path;
    for (int i = 0; i <= points; ++i) {
        const double t = static_cast<double>(i) / points, z = t * 0.99 * d.m_Height;
        const Vec off = Toward(turn, 0) * (bend * d.m_Height * std::sin(pi * t));
        const double flare = 1 + 0.5 * std::exp(-z / (2 * foot));
        path.push_back({off + Vec{0, 0, z}, i == points ? 0 : foot * (1 - 0.93 * t) * flare});
    }
    task.mesh.Tube(task.bark, path, sides);
}

} // namespace

void GrowConifer(Task& task) {
    const CTsPlantDefinition& d = task.d;
    const WhorlCounts counts = CountsOf(task);
    const double radius = d.m_Diameter / 2, crown = d.m_Height - d.m_TrunkHeight;
    const double foot = std::max(d.m_TrunkDiameter / 2, 0.004);
    DrawTrunk(task, 0.004);
    Random random(d.m_Seed, 21);
    std::vector<Shoot> shoots;
    shoots.push_back({{0, 0, d.m_Height - 0.05 * crown}, {0, 0, d.m_Height}, 1});
    const int steps = task.detail == 0 ? 1 : task.detail == 1 ? 3 : 5;
    for (int w = 0; w < counts.whorls; ++w) {
        const double t = std::pow((w + 0.3) / counts.whorls, 0.92);
        const double start = w * golden_angle;
        const double skirt = 1 - 0.25 * std::exp(-14 * t); // the lowest are shaded out
        const double wide = std::pow(1 - t, 0.86) * skirt + 0.008;
        for (int b = 0; b < counts.branches; ++b) {
            const double azimuth = start + 2 * pi * (b + random.In(-0.18, 0.18)) / counts.branches;
            const double length = radius * wide * random.In(0.8, 1.0);
            const double rise =
                Lerp(0.12 - 0.5 * d.m_Droop, 0.85, std::pow(t, 1.4)) + random.In(-0.08, 0.08);
            const double z = d.m_TrunkHeight + crown * (t + random.In(-0.3, 0.3) / counts.whorls);
            const Vec at{0, 0, std::clamp(z, 0.02 * d.m_Height, 0.985 * d.m_Height)};
            // Branches that rise reach less far out.
            const double reach =
                std::min(length / std::max(0.5, std::cos(rise)), (d.m_Height - at.z) * 1.4 + 0.02);
            const double thick = std::max(0.003, 0.32 * foot * (1 - 0.8 * t));
            std::vector<PathPoint> path;
            for (int i = 0; i <= steps; ++i) {
                const double u = static_cast<double>(i) / steps;
                path.push_back({OnBranch(at, azimuth, rise, reach, d.m_Droop, u),
                                i == steps ? 0 : thick * (1 - 0.85 * u)});
            }
            task.mesh.Tube(task.bark, path, 3);
            const int twigs = static_cast<int>(std::lround(counts.twigs * (0.45 + 0.75 * wide)));
            AddShoots(shoots, at, azimuth, rise, reach, d.m_Droop, twigs, random);
        }
    }
    if (!task.Bare()) {
        if (task.detail == 0) { // what the few needles leave open
            const double low = d.m_TrunkHeight + 0.06 * crown;
            task.mesh.Tube(task.leaf[2],
                           {{{0, 0, low}, 0.5 * radius}, {{0, 0, 0.97 * d.m_Height}, 0}}, 7);
        }
        const double cone = pi * radius * std::hypot(radius, crown);
        DrawNeedles(task, shoots, 2.5 * cone, task.Left());
    }
}

void GrowColumn(Task& task) {
    const CTsPlantDefinition& d = task.d;
    DrawTrunk(task, 0.002);
    if (task.Bare()) {
        return;
    }
    // Upright sprays in flames about the column, from its heart to its surface.
    constexpr int counts[4] = {60, 900, 2000, 4000};
    Random random(d.m_Seed, 23);
    const double radius = d.m_Diameter / 2, crown = d.m_Height - d.m_TrunkHeight;
    const double spray = std::min(0.09 * crown, 0.9 * d.m_Diameter);
    std::vector<Shoot> shoots;
    for (int i = 0; i < counts[task.detail]; ++i) {
        const double t = (i + random.Unit()) / counts[task.detail];
        const double turn = i * golden_angle;
        const double reach = spray * (1 - 0.65 * t * t);
        const double profile = std::pow(std::sin(pi * std::pow(0.03 + 0.97 * t, 0.6)), 0.75);
        const double lobe =
            0.9 + 0.16 * Noise({2.2 * std::cos(turn), 2.2 * std::sin(turn), 5 * t}, d.m_Seed);
        const double depth = 1 - 0.5 * std::pow(random.Unit(), 2);
        const double out = 0.78 * radius * std::min(1.0, profile * lobe) * depth;
        const Vec from{out * std::cos(turn), out * std::sin(turn),
                       d.m_TrunkHeight + t * (crown - reach)};
        const Vec way = Unit(Toward(turn, 1.4) + random.Ball() * 0.12);
        shoots.push_back({from, from + way * (reach * random.In(0.75, 1.0)), 2.6 * depth - 1.9});
    }
    const double surface = pi * d.m_Diameter * crown * 0.75;
    DrawNeedles(task, shoots, 3.2 * surface, task.Left());
}

} // namespace grow
