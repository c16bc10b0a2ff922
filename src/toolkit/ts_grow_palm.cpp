// Palms: a ringed trunk under a head of feathered or fan-shaped fronds.
#include "toolkit/ts_grow.h"

#include <algorithm>

namespace grow {

namespace {

Vec DrawTrunk(Task& task, double height) {
    const CTsPlantDefinition& d = task.d;
    constexpr int rings_most[4] = {2, 26, 40, 60}, sides[4] = {5, 10, 14, 20};
    Random random(d.m_Seed, 51);
    const double turn = random.In(0, 2 * pi), bend = 0.03 * height * random.In(0.5, 1.5);
    const double foot = std::max(d.m_TrunkDiameter / 2, 0.02);
    const int rings = task.detail == 0
                          ? 2
                          : std::clamp(static_cast<int>(height / 0.11), 6, rings_most[task.detail]);
    const int points = task.detail == 0 ? rings : 2 * rings;
    std::vector<PathPoint> path;
    for (int i = 0; i <= points; ++i) {
        const double t = static_cast<double>(i) / points, z = t * height;
        const Vec off = Toward(turn, 0) * (bend * (1 - std::cos(pi * t)) / 2);
        // Scars of old fronds: each ring stands out at its upper edge.
        const double ring = task.detail > 0 && i % 2 == 1 ? 1.07 : 0.97;
        const double flare = 1 + 0.4 * std::exp(-z / (1.2 * foot));
        path.push_back({off + Vec{0, 0, z}, foot * (1 - 0.22 * t) * ring * flare});
    }
    const Vec top = path.back().at;
    path.push_back({top + Vec{0, 0, 0.6 * foot}, 0});
    task.mesh.Tube(task.bark, path, sides[task.detail]);
    return top;
}

/// The middle rib of a frond: rises, then hangs over.
std::vector<PathPoint> Rib(Vec foot, double azimuth, double rise, double fall, double length,
                           double thick, int steps) {
    std::vector<PathPoint> path;
    Vec at = foot;
    for (int i = 0; i <= steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        path.push_back({at, i == steps ? 0 : thick * (1 - 0.85 * t)});
        at =
            at + Toward(azimuth, rise - fall * std::pow((i + 0.5) / steps, 1.2)) * (length / steps);
    }
    return path;
}

Vec AtShare(const std::vector<PathPoint>& path, double u, Vec& way) {
    const double place = u * static_cast<double>(path.size() - 1);
    const auto i = std::min(static_cast<std::size_t>(place), path.size() - 2);
    way = Unit(path[i + 1].at - path[i].at);
    return Mix(path[i].at, path[i + 1].at, place - static_cast<double>(i));
}

struct Frond {
    double azimuth, rise, fall, length;
    std::size_t part;
};

void DrawFeather(Task& task, const Frond& frond, Vec foot, int pairs, Random& random) {
    const int steps = task.detail == 0 ? 2 : 5 + 2 * task.detail;
    const std::vector<PathPoint> rib =
        Rib(foot, frond.azimuth, frond.rise, frond.fall, frond.length, 0.006 * frond.length, steps);
    task.mesh.Tube(task.leaf[1], rib, 3);
    const int triangle_count = task.detail >= 2 ? 4 : 2;
    for (int i = 0; i < pairs; ++i) {
        const double u = 0.16 + 0.82 * (i + 0.5) / pairs;
        Vec way;
        const Vec at = AtShare(rib, u, way);
        const Vec side = Off(Cross(way, {0, 0, 1}), way, Toward(frond.azimuth + pi / 2, 0));
        const Vec up = Cross(side, way);
        const double shape = std::pow(std::sin(pi * (0.12 + 0.8 * u)), 0.7);
        for (const double sign : {-1.0, 1.0}) {
            const double length = 0.24 * frond.length * shape * random.In(0.9, 1.08);
            const double width = std::max(0.022 * frond.length, 1.15 * frond.length / pairs * 0.55);
            const Vec axis = Unit(side * sign + way * (0.45 + 0.7 * u) + up * 0.35 -
                                  Vec{0, 0, 0.45} + random.Ball() * 0.07);
            task.mesh.Leaf(frond.part, at, axis, Unit(up + side * (0.3 * sign)), length, width,
                           0.28, triangle_count);
        }
    }
}

void DrawFan(Task& task, const Frond& frond, Vec foot, int rays, Random& random) {
    const double stalk = 0.5 * frond.length, radius = 0.56 * frond.length;
    const std::vector<PathPoint> rib = Rib(foot, frond.azimuth, frond.rise, 0.5 * frond.fall, stalk,
                                           0.012 * frond.length, task.detail == 0 ? 1 : 4);
    task.mesh.Tube(task.leaf[1], rib, 3);
    Vec way;
    const Vec hub = AtShare(rib, 0.98, way);
    const Vec side = Off(Cross(way, {0, 0, 1}), way, Toward(frond.azimuth + pi / 2, 0));
    const Vec up = Cross(side, way);
    const Vec plane = Unit(way - up * (0.25 + 0.5 * task.d.m_Droop));
    const Vec normal = Cross(side, plane);
    const double spread = 2.2;
    for (int i = 0; i < rays; ++i) {
        const double turn = spread * (2 * (i + 0.5) / rays - 1);
        const Vec along = plane * std::cos(turn) + side * std::sin(turn);
        const double length = radius * (0.82 + 0.18 * std::cos(turn)) * random.In(0.92, 1.04);
        const double half = length * spread / rays * 0.62;
        // Pleats: every ray is folded, and its end hangs.
        const Vec across = Cross(along, normal);
        const std::vector<PathPoint> ray{
            {hub, 0.15 * half},
            {hub + along * (0.62 * length) - normal * (0.03 * length), half},
            {hub + along * (0.9 * length) - normal * (0.12 * length) + across * (0.01 * length),
             0.45 * half},
            {hub + along * length - normal * (0.24 * length), 0}};
        task.mesh.Blade(frond.part, ray, normal, task.detail >= 1 ? 0.45 : 0);
    }
}

} // namespace

void GrowPalm(Task& task) {
    const CTsPlantDefinition& d = task.d;
    constexpr int most[4] = {9, 26, 34, 44}, pairs[4] = {4, 44, 60, 90}, rays[4] = {5, 26, 34, 44};
    const double length = std::min(d.m_LeafSize, 0.6 * d.m_Diameter);
    const double trunk = std::max(0.0, std::min(d.m_TrunkHeight, d.m_Height - 0.5 * length));
    const Vec head = DrawTrunk(task, trunk);
    const double room = d.m_Height - trunk;     // the youngest fronds end at the height
    const bool grounded = trunk < 0.6 * length; // ferns and young palms: nothing below the ground
    const bool fan = d.m_LeafWidth > 0.5;
    const int count = std::clamp(
        static_cast<int>(most[task.detail] * std::sqrt(std::max(0.05, task.leaf_amount))), 5,
        2 * most[task.detail]);
    Random random(d.m_Seed, 52);
    for (int i = 0; i < count; ++i) {
        // From the youngest, upright, to the oldest, hanging.
        const double age = (i + 0.5) / count;
        Frond frond{};
        frond.azimuth = i * golden_angle + random.In(-0.15, 0.15);
        frond.rise =
            Lerp(1.38, -0.15 - 0.7 * d.m_Droop, std::pow(age, 0.85)) + random.In(-0.08, 0.08);
        frond.fall = Lerp(0.75, 1.5, age) * (0.65 + 0.7 * d.m_Droop) + random.In(-0.1, 0.1);
        if (grounded) {
            frond.rise = Lerp(1.32, 0.5, std::pow(age, 0.85)) + random.In(-0.08, 0.08);
            frond.fall = Lerp(0.5, 0.85, age) * (0.75 + 0.5 * d.m_Droop);
        }
        frond.length = length * Lerp(0.78, 1.0, std::min(1.0, 3 * age)) * random.In(0.92, 1.0);
        const double high = frond.length * std::sin(std::max(0.2, frond.rise - 0.28 * frond.fall));
        frond.length *= std::min(1.0, room / std::max(high * 0.92, 1e-6));
        frond.part = age > 0.88 ? task.leaf[2] : task.leaf[random.Chance(0.35) ? 1 : 0];
        const Vec foot = head + Toward(frond.azimuth, 0.6) * (0.3 * d.m_TrunkDiameter);
        fan ? DrawFan(task, frond, foot, rays[task.detail], random)
            : DrawFeather(task, frond, foot, pairs[task.detail], random);
    }
}

} // namespace grow
