// Broadleaf trees, shrubs, and conifers with bare trunks: branches, twigs and leaves.
#include "toolkit/ts_grow.h"
#include "toolkit/ts_grow_skeleton.h"

#include <algorithm>

namespace grow {

namespace {

/// Where a twig with leaves stands.
struct Site {
    Vec at, way;
    double light = 0; ///< -1 within the crown to 1 at its surface
    double radius = 0;
};

struct Twigs {
    double length = 0;
    double hang = 0; ///< how far the end sags, share of the length
};

Twigs TwigsOf(const Task& task, double spacing) {
    const double droop = task.d.m_Droop;
    Twigs twigs;
    twigs.length = spacing * 1.15;
    twigs.hang = 0.5 * droop;
    if (task.d.m_Prune != 0) {
        twigs.length = std::min(twigs.length, 2.5 * task.d.m_LeafSize);
    }
    if (droop > 0.7 && task.d.m_Kind == CTsPlantKind::broadleaf) { // curtains of a weeping tree
        twigs.length += (droop - 0.7) * 0.75 * task.d.m_Height;
        twigs.hang = 0.95;
    }
    return twigs;
}

std::vector<Site> SitesOn(const std::vector<BranchNode>& nodes, const Crown& crown,
                          Random& random) {
    double thinnest = 1e9;
    for (const BranchNode& node : nodes) {
        thinnest = std::min(thinnest, node.radius);
    }
    std::vector<Site> sites;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const BranchNode& node = nodes[i];
        if (node.parent < 0 || node.radius > 2.4 * thinnest) {
            continue;
        }
        const Vec along = Unit(node.at - nodes[static_cast<std::size_t>(node.parent)].at);
        const Vec side = Across(along), other = Cross(along, side);
        const double turn = static_cast<double>(i) * golden_angle;
        const Vec out = side * std::cos(turn) + other * std::sin(turn);
        const double reach = crown.Reach(node.at);
        Site site{node.at, along, std::clamp(3 * reach - 2.0, -1.0, 0.7), node.radius};
        if (node.main_child >= 0) {
            site.way = Unit(along * 0.6 + out * 0.8 + Vec{0, 0, 0.25});
        }
        site.way = Unit(site.way + random.Ball() * 0.2);
        sites.push_back(site);
    }
    return sites;
}

/// Shoots at the surface of what is clipped or grows densely.
void AddShell(std::vector<Site>& sites, const Crown& crown, std::size_t count, double margin,
              Random& random) {
    const double outer = std::max(0.6, 1 - 0.7 * margin / crown.radius);
    for (std::size_t i = 0; i < count; ++i) {
        const Vec at = crown.Place(random, 0.82 * outer, outer);
        const Vec way = Unit(crown.Outward(at) + random.Ball() * 0.5 + Vec{0, 0, 0.2});
        sites.push_back({at, way, random.In(-0.2, 0.9), 0});
    }
}

void DrawTwigs(Task& task, const std::vector<Site>& sites, const Twigs& twigs, std::size_t most) {
    // A twig and its side shoots: cones of three sides. First the twigs, then what fits of the
    // rest.
    constexpr std::size_t cone = 3;
    const std::size_t wanted = std::min(most / cone, (task.Bare() ? 5 : 3) * sites.size());
    Random random(task.d.m_Seed, 11);
    for (std::size_t i = 0; i < sites.size(); ++i) {
        const Site& site = sites[i];
        const std::size_t count = ShareOf(wanted, i, sites.size());
        const double thick = std::clamp(0.55 * site.radius, 0.0015, 0.012);
        for (std::size_t k = 0; k < count; ++k) {
            const double length = twigs.length * random.In(0.6, 1.0) * (k == 0 ? 1 : 0.75);
            const Vec way =
                k == 0 ? site.way : Unit(site.way + random.Ball() * 0.9 + Vec{0, 0, 0.2});
            const Vec end = site.at + way * (length * (1 - 0.6 * twigs.hang)) -
                            Vec{0, 0, 0.8 * length * twigs.hang};
            const Vec from = k == 0 ? site.at
                                    : Mix(site.at, site.at + site.way * (0.5 * length),
                                          0.25 * static_cast<double>(k));
            task.mesh.Tube(task.twig, {{from, k == 0 ? thick : 0.6 * thick}, {end, 0}}, 3);
        }
    }
}

/// Blossoms stand among the leaves; on trees a share of the leaves turns into petals.
class LeafDrawer {
public:
    LeafDrawer(Task& whole, const LeafPlan& leaf_plan, const Twigs& all_twigs, const Crown& shape)
      : task(whole)
      , plan(leaf_plan)
      , twigs(all_twigs)
      , crown(shape)
      , needles(whole.d.m_Kind == CTsPlantKind::conifer)
      , petals(whole.blossom > 0 && !whole.Bare() ? 0.55 : 0)
      , random(whole.d.m_Seed, 12) {}

    void Draw(const Site& site, std::size_t count) {
        const double turn = random.In(0, 2 * pi);
        const Vec side = Across(site.way), other = Cross(site.way, side);
        const double length = twigs.length * random.In(0.65, 1.0);
        for (std::size_t k = 0; k < count; ++k) {
            const double u =
                (static_cast<double>(k) + random.In(0.3, 0.9)) / static_cast<double>(count);
            const double azimuth = turn + static_cast<double>(k) * golden_angle;
            const Vec out = side * std::cos(azimuth) + other * std::sin(azimuth);
            Vec at = site.at + site.way * (length * u * (1 - 0.55 * twigs.hang * u));
            at.z -= length * twigs.hang * u * u;
            needles ? Needle(site, at, out, u) : Leaf(site, at, out);
        }
    }

private:
    /// Clipped plants end where the shears went.
    bool Clipped(Vec tip) {
        return task.d.m_Prune != 0 && crown.Reach(tip) > random.In(0.97, 1.02);
    }

    void Leaf(const Site& site, Vec at, Vec out) {
        const double hang = 0.25 + 0.9 * task.d.m_Droop;
        Vec axis = Unit(site.way * 0.4 + out * 0.8 - Vec{0, 0, 0.55 * hang} + random.Ball() * 0.35);
        const Vec outward = Unit(at - Vec{0, 0, crown.base + 0.35 * crown.Height()});
        const Vec normal = Unit(Vec{0, 0, 0.75} + outward * 0.6 + random.Ball() * 0.75);
        const double size = random.In(0.72, 1.18);
        const Vec foot = at + out * (0.12 * plan.length);
        if (Clipped(foot + axis * (size * plan.length))) {
            return;
        }
        if (task.detail == 0 && crown.Reach(foot + axis * (size * plan.length)) > 1) {
            axis = axis * -1; // leaves that stand for hundreds must not widen the crown
        }
        const bool petal = petals > 0 && random.Chance(petals);
        const std::size_t part = petal ? task.flower[0] : task.LeafPart(random, site.light);
        const double wide = petal ? std::max(plan.width, 0.7 * plan.length) : plan.width;
        task.mesh.Leaf(part, foot, axis, normal, size * plan.length, size * wide,
                       random.In(0.05, 0.3), plan.triangle_count);
    }

    /// Needles stand in brushes about the end of the twig.
    void Needle(const Site& site, Vec at, Vec out, double u) {
        const Vec axis =
            Unit(site.way * (0.25 + 0.9 * u) + out * 0.9 + Vec{0, 0, 0.25} + random.Ball() * 0.2);
        const double size = random.In(0.75, 1.1);
        if (Clipped(at + axis * (size * plan.length))) {
            return;
        }
        const Vec normal = Unit(Cross(axis, random.Ball()) + Vec{0, 0, 0.5});
        task.mesh.Leaf(task.LeafPart(random, site.light), at, axis, normal, size * plan.length,
                       size * plan.width, 0.02, 1);
    }

    Task& task;
    const LeafPlan& plan;
    const Twigs& twigs;
    const Crown& crown;
    bool needles;
    double petals;
    Random random;
};

/// Square metres of leaves: what covers the crown, seen from outside, and fills its inside.
double LeafAreaOf(const Task& task, const Crown& crown) {
    if (task.d.m_Prune != 0) {
        return 2.6 * task.leaf_amount * crown.Surface();
    }
    const double across = pi * crown.radius * crown.radius;
    const double around = 2 * crown.radius * crown.Height();
    const double kind = task.d.m_Kind == CTsPlantKind::shrub     ? 1.4
                        : task.d.m_Kind == CTsPlantKind::conifer ? 1.35
                                                                 : 1;
    return task.leaf_amount * kind * (1.9 * across + 2.4 * around);
}

/// Blossoms of shrubs: whole ones at the surface; those of large leaves stand together in domes.
void AddShrubBlossoms(Task& task, const std::vector<Site>& sites, const Crown& crown,
                      double margin) {
    Random random(task.d.m_Seed, 13);
    const bool dome = task.d.m_LeafSize > 0.08;
    const double radius = (dome ? 0.075 : 0.05) * std::sqrt(std::max(0.3, crown.radius));
    const int petals = task.detail == 0 ? 3 : dome ? 4 : 7;
    const std::size_t together = dome && task.detail > 0 ? 9 : 1;
    const std::size_t each =
        together * (static_cast<std::size_t>(petals) * (task.detail >= 2 ? 4 : 2) + 25);
    const auto wanted =
        static_cast<std::size_t>((dome ? 0.2 : 0.13) * crown.Surface() / (pi * radius * radius));
    const std::size_t count = std::min({wanted, task.limit / 5 / each, sites.size()});
    for (std::size_t i = 0, drawn = 0; i < sites.size() && drawn < count; ++i) {
        const Site& site = sites[sites.size() - 1 - i]; // those of the shell come last
        if (site.light < 0.1) {
            continue;
        }
        const Vec out = crown.Outward(site.at);
        const Vec at = site.at + out * (0.75 * margin);
        const double size = radius * random.In(0.75, 1.2);
        for (std::size_t k = 0; k < together; ++k) {
            const Vec way = Unit(out + (together > 1 ? random.Ball() * 1.1 : Vec{0, 0, 0.3}));
            const Vec foot = together > 1 ? at + way * (0.75 * size) : at;
            AddBlossom(task, random, foot, way, together > 1 ? 0.5 * size : size, petals, 0.2);
        }
        ++drawn;
    }
}

std::size_t WoodLimit(const Task& task) {
    constexpr std::size_t leafy[4] = {260, 13'000, 45'000, 120'000};
    constexpr std::size_t bare[4] = {500, 34'000, 100'000, 260'000};
    return (task.Bare() ? bare : leafy)[task.detail];
}

} // namespace

void GrowTree(Task& task) {
    const CTsPlantDefinition& d = task.d;
    const Crown crown(d);
    const double spacing = TwigSpacing(d, crown, task.detail);
    const Twigs twigs = TwigsOf(task, std::min(spacing, 0.4 * crown.radius));
    const double shoot = std::min(0.75 * spacing, twigs.length);
    const double margin = std::min(0.5 * crown.radius, shoot + 0.5 * d.m_LeafSize);
    Random wood(d.m_Seed, 1);
    const std::vector<BranchNode> nodes = GrowBranches(d, crown, task.detail, margin, wood);
    DrawBranches(task, nodes, WoodLimit(task));
    Random places(d.m_Seed, 2);
    std::vector<Site> sites = SitesOn(nodes, crown, places);
    if (task.Bare()) {
        DrawTwigs(task, sites, twigs, task.Left());
        return;
    }
    if (task.detail >= 2) {
        DrawTwigs(task, sites, twigs, std::min(task.Left() / 5, 3 * sites.size()));
    }
    if (task.detail == 0) { // too few branches to tell the crown's form
        sites.clear();
        for (int i = 0; i < 120; ++i) {
            const Vec at = crown.Place(places, 0.2, 0.8);
            sites.push_back({at, crown.Outward(at), places.In(-0.4, 0.8), 0});
        }
    } else if (d.m_Prune != 0 || d.m_Kind == CTsPlantKind::shrub) {
        AddShell(sites, crown, 2 * sites.size(), margin, places);
    }
    if (task.blossom > 0 && d.m_Kind == CTsPlantKind::shrub) {
        AddShrubBlossoms(task, sites, crown, margin);
        task.blossom = 0;
    }
    LeafPlan plan = PlanLeaves(task, LeafAreaOf(task, crown), task.Left());
    const double largest = std::max(0.3 * std::min(crown.radius, crown.Height()), d.m_LeafSize);
    if (plan.length > largest) {
        plan.width *= largest / plan.length;
        plan.length = largest;
    }
    if (d.m_Kind == CTsPlantKind::conifer &&
        plan.count > 0) { // one triangle each, so twice as many
        plan.count *= static_cast<std::size_t>(plan.triangle_count);
        plan.width *= LeafArea(plan.triangle_count) / LeafArea(1) / plan.triangle_count;
    }
    LeafDrawer drawer(task, plan, twigs, crown);
    for (std::size_t i = 0; i < sites.size(); ++i) {
        drawer.Draw(sites[i], ShareOf(plan.count, i, sites.size()));
    }
}

} // namespace grow
