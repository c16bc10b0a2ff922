// Growing of plants: what season and detail mean, and which kind grows how. See ts_grow.h.
#include "toolkit/ts_grow.h"

#include <algorithm>

namespace grow {

namespace {

constexpr std::size_t limits[4] = {900, 58'000, 160'000, 420'000};

/// Factors of spring, summer, autumn and winter on what keeps no leaves over winter.
constexpr double amounts[4] = {0.8, 1, 0.6, 0};
constexpr double sizes[4] = {0.82, 1, 0.95, 0.9};
constexpr double evergreen_amounts[4] = {0.95, 1, 0.97, 0.9};

CTsColor Scaled(const CTsColor& c, double r, double g, double b) {
    return {c.r * r, c.g * g, c.b * b};
}
CTsColor Mixed(const CTsColor& a, const CTsColor& b, double share) {
    return {Lerp(a.r, b.r, share), Lerp(a.g, b.g, share), Lerp(a.b, b.b, share)};
}

} // namespace

Task::Task(const CTsPlantDefinition& plant, CTsSeason when, int how_fine, double density)
  : d(plant)
  , season(static_cast<CTsSeason>(std::clamp(static_cast<int>(when), 0, 3)))
  , detail(std::clamp(how_fine, 0, 3))
  , limit(limits[detail]) {
    const auto s = static_cast<std::size_t>(season);
    const bool keeps = d.m_Evergreen || d.m_Kind == CTsPlantKind::palm;
    leaf_amount = (keeps ? evergreen_amounts : amounts)[s] * d.m_FoliageDensity *
                  (density > 0 ? std::min(density, 4.0) : 0);
    leaf_scale = keeps ? 1 : sizes[s];
    blossom = (d.m_Bloom >> s & 1) != 0 ? 1 : 0;
    bark = mesh.Part(CTsPlantPart::Look::bark, d.m_BarkColor);
    twig = mesh.Part(CTsPlantPart::Look::bark, Mixed(d.m_BarkColor, {0.27, 0.20, 0.15}, 0.65));
    const CTsColor usual = d.m_LeafColor[s];
    CTsColor light = Scaled(usual, 1.22, 1.16, 0.98), dark = Scaled(usual, 0.72, 0.78, 0.76);
    if (s == 2 && !keeps) { // leaves turn one after the other
        light = Mixed(light, {0.80, 0.60, 0.13}, 0.4);
        dark = Mixed(dark, {0.50, 0.20, 0.07}, 0.35);
    }
    leaf[0] = mesh.Part(CTsPlantPart::Look::leaf, usual);
    leaf[1] = mesh.Part(CTsPlantPart::Look::leaf, light);
    leaf[2] = mesh.Part(CTsPlantPart::Look::leaf, dark);
    flower[0] = mesh.Part(CTsPlantPart::Look::flower, d.m_FlowerColor);
    flower[1] =
        mesh.Part(CTsPlantPart::Look::flower, Mixed(d.m_FlowerColor, {0.80, 0.58, 0.10}, 0.75));
}

std::size_t Task::LeafPart(Random& random, double light) const {
    const double where = light + random.In(-0.9, 0.9);
    return leaf[where > 0.45 ? 1 : where < -0.45 ? 2 : 0];
}

LeafPlan PlanLeaves(const Task& task, double area, std::size_t triangles) {
    LeafPlan plan;
    const double length = task.d.m_LeafSize * task.leaf_scale;
    const double each = length * length * task.d.m_LeafWidth;
    if (area <= 0 || triangles < 2 || each <= 0) {
        return plan;
    }
    const int finest = task.detail == 0 ? 2 : 6, coarsest = task.detail <= 1 ? 2 : 4;
    plan.triangle_count = coarsest;
    for (int count = finest; count > coarsest; count -= 2) {
        if (area / (each * LeafArea(count)) * count <= static_cast<double>(triangles)) {
            plan.triangle_count = count;
            break;
        }
    }
    const double wanted = std::max(1.0, area / (each * LeafArea(plan.triangle_count)));
    const std::size_t room = triangles / static_cast<std::size_t>(plan.triangle_count);
    const auto most = static_cast<double>(room);
    const double drawn = std::min(wanted, most);
    plan.count = static_cast<std::size_t>(drawn);
    const double larger = std::sqrt(wanted / drawn);
    // Narrow leaves that stand for several grow wider first, as the several would look together.
    const double aspect = std::min(1.0, std::max(task.d.m_LeafWidth, 0.45 * (1 - 1 / larger)));
    const double whole = each * larger * larger;
    plan.length = std::sqrt(whole / std::max(aspect, task.d.m_LeafWidth));
    plan.width = whole / plan.length;
    return plan;
}

void AddBlossom(Task& task, Random& random, Vec foot, Vec axis, double radius, int petals,
                double closed) {
    axis = Unit(axis);
    const Vec side = Across(axis), other = Cross(axis, side);
    const double start = random.In(0, 2 * pi);
    const bool herb = task.d.m_Kind == CTsPlantKind::flower;
    const int triangle_count = task.detail == 0 ? 2 : herb ? 6 : task.detail >= 2 ? 4 : 2;
    const double width = std::min(radius * 1.1, 2 * pi * radius / petals * 1.15);
    for (int i = 0; i < petals; ++i) {
        const double turn = start + 2 * pi * i / petals;
        const Vec out = side * std::cos(turn) + other * std::sin(turn);
        const double rise = Lerp(0.25, 2.6, closed) + random.In(-0.1, 0.1);
        const Vec along = Unit(out + axis * rise);
        // The upper side of a petal looks to the middle of the blossom.
        const Vec normal = Unit(axis - out * (rise * 0.9));
        const double bend = Lerp(0.12, -0.25, closed);
        task.mesh.Leaf(task.flower[0], foot + out * (radius * 0.08), along, normal, radius, width,
                       bend, triangle_count);
    }
    if (closed < 0.5 && task.detail > 0) {
        const double r = radius * 0.28;
        const std::vector<PathPoint> button{
            {foot, r * 0.6}, {foot + axis * (0.4 * r), r}, {foot + axis * (0.9 * r), 0}};
        task.mesh.Tube(task.flower[1], button, task.detail >= 2 ? 8 : 5);
    }
}

namespace {

bool IsNarrow(const CTsPlantDefinition& d) { return d.m_Height > 4.2 * d.m_Diameter; }
bool HasBareTrunk(const CTsPlantDefinition& d) { return d.m_TrunkHeight > 0.3 * d.m_Height; }

void GrowKind(Task& task) {
    const CTsPlantDefinition& d = task.d;
    switch (d.m_Kind) {
    case CTsPlantKind::conifer:
        if (d.m_Prune != 0 || HasBareTrunk(d)) {
            GrowTree(task);
        } else {
            IsNarrow(d) ? GrowColumn(task) : GrowConifer(task);
        }
        break;
    case CTsPlantKind::grass:
        GrowGrass(task);
        break;
    case CTsPlantKind::flower:
        GrowFlower(task);
        break;
    case CTsPlantKind::palm:
        GrowPalm(task);
        break;
    default:
        GrowTree(task);
        break;
    }
}

} // namespace

} // namespace grow

std::size_t CTsPlantShape::TriangleCount() const {
    std::size_t count = 0;
    for (const CTsPlantPart& part : parts) {
        count += part.triangles.size() / 3;
    }
    return count;
}

CTsPlantShape TsGrowPlant(const CTsPlantDefinition& definition, CTsSeason season, int detail,
                          double density) {
    CTsPlantDefinition plant = definition;
    plant.BringIntoRange();
    grow::Task task(plant, season, detail, density);
    grow::GrowKind(task);
    return task.mesh.Take();
}
