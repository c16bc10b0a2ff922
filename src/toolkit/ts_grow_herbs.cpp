// Grasses and flowers.
#include "toolkit/ts_grow.h"

#include <algorithm>

namespace grow {

namespace {

/// A blade or stem that leans further the higher it is, `lean` radians at its end.
std::vector<PathPoint> Bent(Vec foot, double azimuth, double start, double lean, double length,
                            double half_width, int steps, bool pointed) {
    std::vector<PathPoint> path;
    Vec at = foot;
    for (int i = 0; i <= steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        const double shape =
            pointed ? std::min(1.0, 0.55 + 1.6 * t) * std::pow(1 - t, 0.6) : 1 - 0.4 * t;
        path.push_back({at, i == steps && pointed ? 0 : half_width * shape});
        const double angle = start + lean * std::pow((i + 0.5) / steps, 1.5);
        at = at + Toward(azimuth, pi / 2 - angle) * (length / steps);
    }
    return path;
}

/// The blade's upper side, which faces away from where it leans.
Vec UpperSide(double azimuth) { return Unit(Toward(azimuth + pi, 0.25)); }

/// Keeps ends at the plant's width: what stands further out leans less far.
double ReachLeft(const CTsPlantDefinition& d, double out) {
    return std::max(0.15 * d.m_Diameter, d.m_Diameter / 2 - out);
}

double SeasonHeight(const Task& task) {
    constexpr double heights[4] = {0.85, 1, 1, 0.8};
    return task.d.m_Evergreen ? 1 : heights[static_cast<int>(task.season)];
}

/// Ears and plumes: spikes of small leaves of the flower's colour about the end of a stem.
void AddSpike(Task& task, Random& random, Vec foot, Vec axis, double length, double radius,
              int count) {
    axis = Unit(axis);
    const Vec side = Across(axis), other = Cross(axis, side);
    const int triangle_count = task.detail >= 2 ? 4 : 2;
    for (int i = 0; i < count; ++i) {
        const double u = (i + 0.5) / count, turn = i * golden_angle;
        const Vec out = side * std::cos(turn) + other * std::sin(turn);
        const double size = radius * (1.15 - 0.6 * u) * random.In(0.85, 1.15);
        task.mesh.Leaf(task.flower[0], foot + axis * (length * u), Unit(out + axis * 0.8),
                       Unit(axis - out * 0.4), 1.5 * size, size, -0.1, triangle_count);
    }
}

struct Culm {
    Vec end, way;
};

/// A thin stem; returns its end.
Culm AddStem(Task& task, std::size_t part, Vec foot, double azimuth, double start, double lean,
             double length, double radius) {
    const int steps = task.detail == 0 ? 1 : task.detail + 1;
    std::vector<PathPoint> path = Bent(foot, azimuth, start, lean, length, radius, steps, false);
    const Vec way = Unit(path.back().at - path[path.size() - 2].at);
    task.mesh.Tube(part, path, 3);
    return {path.back().at, way};
}

} // namespace

void GrowGrass(Task& task) {
    const CTsPlantDefinition& d = task.d;
    constexpr double most[4] = {7, 30, 60, 110};
    constexpr int steps[4] = {2, 3, 4, 5};
    const double amount =
        std::clamp(task.d.m_FoliageDensity, 0.1, 2.0) *
        std::clamp(task.leaf_amount / std::max(task.d.m_FoliageDensity, 1e-9), 0.6, 2.0);
    const bool turf = d.m_Height < 0.15; // stands evenly, without a heart
    const double size = turf ? 4.4 : d.m_Height > 0.6 ? 2.2 : 1.3;
    const int count = std::max(4, static_cast<int>(most[task.detail] * amount * size));
    Random random(d.m_Seed, 31);
    const double height = d.m_Height * SeasonHeight(task);
    // Fewer blades are broader, within reason.
    const double broad = std::min(2.4, std::sqrt(most[2] / most[task.detail]));
    const double half = std::max(0.0012, 0.5 * d.m_LeafSize * d.m_LeafWidth) * broad;
    const bool dry = task.season == CTsSeason::winter && !d.m_Evergreen;
    for (int i = 0; i < count; ++i) {
        const double azimuth = i * golden_angle + random.In(-0.4, 0.4);
        const double out =
            (turf ? 0.47 : 0.2) * d.m_Diameter * std::sqrt((i + 0.5) / count) * random.In(0.6, 1.0);
        const double length = height * random.In(0.55, 1.0);
        const double start = 0.05 + (turf ? 0.2 : 0.9) * out / d.m_Diameter;
        const double lean = (0.25 + 1.5 * d.m_Droop + (dry ? 0.35 : 0)) * random.In(0.4, 1.2);
        const double reach =
            ReachLeft(d, out) / std::max(1e-3, std::sin(std::min(1.5, start + 0.6 * lean)));
        const Vec foot = Toward(azimuth, 0) * out;
        const double lean_way = azimuth + (turf ? random.In(-pi, pi) : random.In(-0.9, 0.9));
        task.mesh.Blade(task.LeafPart(random, random.In(-0.5, 0.5)),
                        Bent(foot, lean_way, start, lean, std::min(length, reach),
                             half * random.In(0.7, 1.1), steps[task.detail], true),
                        UpperSide(lean_way), task.detail >= 2 ? 0.35 : 0);
    }
    const int ears = task.blossom > 0 ? std::max(1, count / 7) : 0;
    for (int i = 0; i < ears; ++i) {
        const double azimuth = i * golden_angle + 1;
        const double out = 0.2 * d.m_Diameter * std::sqrt((i + 0.5) / ears);
        const double length = 0.84 * height * random.In(0.85, 1.0);
        const Culm culm = AddStem(task, task.leaf[0], Toward(azimuth, 0) * out, azimuth, 0.05,
                                  0.3 * d.m_Droop + 0.05, length, 0.35 * half);
        AddSpike(task, random, culm.end, culm.way, 0.15 * d.m_Height,
                 std::max(0.006, 0.02 * d.m_Height), task.detail == 0 ? 2 : 6 + 4 * task.detail);
    }
}

namespace {

/// What the head of a flower is, by the width of its leaves.
enum class Head { spike, cup, disc };

Head HeadOf(const CTsPlantDefinition& d) {
    return d.m_LeafWidth < 0.13 ? Head::spike : d.m_LeafWidth < 0.32 ? Head::cup : Head::disc;
}

void AddHead(Task& task, Random& random, Head head, const Culm& culm, double length) {
    const double size = random.In(0.85, 1.12);
    switch (head) {
    case Head::spike:
        AddSpike(task, random, culm.end - culm.way * (0.22 * length), culm.way, 0.24 * length,
                 0.022 * size * std::sqrt(task.d.m_Height),
                 task.detail == 0 ? 2 : 5 + 4 * task.detail);
        break;
    case Head::cup:
        AddBlossom(task, random, culm.end, culm.way, 0.16 * task.d.m_Height * size,
                   task.detail == 0 ? 3 : 6, random.In(0.82, 1.0));
        break;
    case Head::disc: {
        const double radius = std::min(0.09 * task.d.m_Height, 0.16 * task.d.m_Diameter) * size;
        const Vec open = Unit(culm.way + Vec{random.In(-0.4, 0.4), random.In(-0.4, 0.4), 0});
        AddBlossom(task, random, culm.end, open, radius, task.detail == 0 ? 4 : 9 + 2 * task.detail,
                   0.1);
        break;
    }
    }
}

/// Leaves up the stem in a spiral, or from the ground for flowers with cups.
void AddStemLeaves(Task& task, Random& random, Head head, Vec foot, const Culm& culm, int count) {
    const CTsPlantDefinition& d = task.d;
    for (int i = 0; i < count; ++i) {
        const double azimuth = i * golden_angle + random.In(0, 0.5);
        const double size = task.leaf_scale * random.In(0.75, 1.1);
        const std::size_t part = task.LeafPart(random, random.In(-0.4, 0.6));
        if (head != Head::disc) { // from the ground; those of spikes make a cushion
            const bool cup = head == Head::cup;
            const double length = cup ? std::min(d.m_LeafSize, 0.8 * d.m_Height) * size
                                      : 0.5 * d.m_Height * size * random.In(0.6, 1.0);
            const double start = cup ? 0.2 : random.In(0.1, 0.9);
            task.mesh.Blade(part,
                            Bent(foot, azimuth, start, 0.5 + d.m_Droop, length,
                                 0.5 * d.m_LeafWidth * std::min(length, 1.4 * d.m_LeafSize),
                                 (cup ? 2 : 1) + task.detail, true),
                            UpperSide(azimuth), cup ? 0.3 : 0);
            continue;
        }
        const double u = 0.08 + 0.72 * (i + random.Unit()) / count;
        const double rise = 0.55 - 0.9 * d.m_Droop;
        const Vec axis = Toward(azimuth, rise + random.In(-0.2, 0.2));
        task.mesh.Leaf(part, Mix(foot, culm.end, u), axis, Unit(Vec{0, 0, 1} + random.Ball() * 0.3),
                       d.m_LeafSize * size * (1.2 - 0.6 * u),
                       d.m_LeafSize * d.m_LeafWidth * size * (1.2 - 0.6 * u), 0.25,
                       task.detail == 0 ? 2 : 6);
    }
}

} // namespace

void GrowFlower(Task& task) {
    const CTsPlantDefinition& d = task.d;
    const Head head = HeadOf(d);
    constexpr double stems_of[3] = {30, 1, 9};
    constexpr double parts_of[4] = {0.3, 1, 1.5, 2};
    const double stems_wanted = stems_of[static_cast<int>(head)] * d.m_BranchDensity;
    const int stems = std::max(
        1, static_cast<int>(stems_wanted * (head == Head::cup ? 1 : parts_of[task.detail])));
    Random random(d.m_Seed, 41), bloom(d.m_Seed, 42);
    const bool dry = task.Bare();
    const double height = d.m_Height * (dry ? 0.45 : SeasonHeight(task));
    const double head_height = head == Head::cup ? 0.16 * d.m_Height : 0.02 * d.m_Height;
    const double leaves = (head == Head::cup ? 4 : head == Head::spike ? 5 : 9) * task.leaf_amount;
    for (int i = 0; i < stems; ++i) {
        const double azimuth = i * golden_angle + random.In(-0.3, 0.3);
        const double share = std::sqrt((i + 0.5) / stems);
        const double out =
            stems == 1 ? 0 : (head == Head::spike ? 0.1 : 0.19) * d.m_Diameter * share;
        const Vec foot = Toward(azimuth, 0) * out;
        const double lean = stems == 1 ? 0.06
                                       : std::atan((head == Head::spike ? 0.7 : 0.55) * 0.5 *
                                                   d.m_Diameter * share / d.m_Height);
        const double length =
            (height - head_height) * random.In(stems == 1 ? 0.97 : 0.8, 1.0) / (1 - 0.12 * share);
        const double bent = 0.15 + 0.5 * d.m_Droop;
        const double thick = std::max(0.001, (head == Head::spike ? 0.003 : 0.006) * d.m_Height);
        // Cups stand on a stem that goes with them.
        const bool stemless = head == Head::cup && task.blossom <= 0 && !dry;
        const double tall = std::min(length, d.m_Height - head_height);
        const Culm culm = stemless ? Culm{foot + Vec{0, 0, tall}, {0, 0, 1}}
                                   : AddStem(task, dry ? task.bark : task.leaf[0], foot, azimuth,
                                             lean, bent * lean, tall, thick);
        if (dry) {
            continue;
        }
        AddStemLeaves(task, random, head, foot, culm,
                      static_cast<int>(std::lround(leaves * (task.detail == 0 ? 0.5 : 1))));
        if (task.blossom > 0 && (task.season != CTsSeason::autumn || bloom.Chance(0.45))) {
            AddHead(task, bloom, head, culm, length);
        }
    }
}

} // namespace grow
