// Crowns and branches, see ts_grow_skeleton.h.
#include "toolkit/ts_grow_skeleton.h"

#include <algorithm>
#include <limits>

namespace grow {

// ---- crowns ----

Crown::Crown(const CTsPlantDefinition& plant)
  : base(std::min(plant.m_TrunkHeight, 0.9 * plant.m_Height))
  , top(plant.m_Height)
  , radius(plant.m_Diameter / 2)
  , prune(plant.m_Prune)
  , seed(plant.m_Seed)
  , shrub(plant.m_Kind == CTsPlantKind::shrub)
  , needles(plant.m_Kind == CTsPlantKind::conifer) {
    if (prune == 0 && shrub) {
        base = std::min(base, 0.25 * top);
    }
    const bool slender = Height() > 3.5 * radius;
    const double low = shrub ? 0.7 : 0.74 + 0.2 * plant.m_Droop;
    const double full = shrub ? 0.42 : slender ? 0.5 : 0.52;
    for (std::size_t i = 0; i < profile_steps; ++i) {
        const double t = static_cast<double>(i) / (profile_steps - 1);
        profile[i] = std::pow(std::max(0.0, std::sin(pi * std::pow(t, low))), full);
    }
}

/// Share of the radius at a height; the widest place is in the lower half.
double Crown::Profile(double t) const {
    const double place = t * (profile_steps - 1);
    const auto i = std::min(static_cast<std::size_t>(std::max(place, 0.0)), profile_steps - 2);
    return Lerp(profile[i], profile[i + 1], place - static_cast<double>(i));
}

double Crown::Reach(Vec p) const {
    const double t = (p.z - base) / Height(), r = std::hypot(p.x, p.y) / radius;
    const double mid = std::abs(2 * t - 1);
    switch (prune) {
    case 1:
        return std::hypot(r, mid);
    case 2:
        return std::max({std::abs(p.x) / radius, std::abs(p.y) / radius, mid});
    case 3:
        return t < 0 || t >= 1 ? 2 : std::max(r / (1 - t), mid);
    default:
        break;
    }
    return FreeReach(p);
}

/// How far a place is on the way from the crown's heart to its surface.
double Crown::FreeReach(Vec p) const {
    const Vec heart{0, 0, base + 0.42 * Height()};
    const double way = Length(p - heart);
    if (way < 1e-9) {
        return 0;
    }
    const Vec out = (p - heart) * (1 / way);
    double inside = 0, outside = std::max(2 * radius, Height());
    for (int i = 0; i < 11; ++i) {
        const double middle = (inside + outside) / 2;
        const Vec at = heart + out * middle;
        const double t = (at.z - base) / Height();
        const bool within = t > 0 && t < 1 && std::hypot(at.x, at.y) <= radius * Profile(t);
        (within ? inside : outside) = middle;
    }
    // Lobes: no crown is a body of revolution.
    const double lobes =
        0.93 + (needles ? 0.3 : 0.2) * Noise(out * 1.9, seed) + 0.09 * Noise(out * 4.3, seed + 1);
    return way / std::max(inside * std::min(1.0, lobes), 1e-6);
}

Vec Crown::Outward(Vec p) const {
    const double h = 1e-3 * radius;
    const Vec slope{Reach(p + Vec{h, 0, 0}) - Reach(p - Vec{h, 0, 0}),
                    Reach(p + Vec{0, h, 0}) - Reach(p - Vec{0, h, 0}),
                    Reach(p + Vec{0, 0, h}) - Reach(p - Vec{0, 0, h})};
    const Vec middle{0, 0, base + 0.4 * Height()};
    return Unit(Unit(slope, {0, 0, 0}) + Unit(p - middle, {0, 0, 1}));
}

Vec Crown::Place(Random& random, double from, double to) const {
    const double lump = std::max(0.28 * std::min(radius, Height()), 0.05);
    const double flat = needles ? 2.6 : 1.25; // foliage lies in tiers, those of pines most of all
    Vec p;
    for (int attempt = 0; attempt < 400; ++attempt) {
        p = {random.In(-radius, radius), random.In(-radius, radius), random.In(base, top)};
        const double reach = Reach(p);
        const double here = (reach - from) / std::max(to - from, 1e-6);
        if (here < 0 || here > 1 || !random.Chance(0.3 + 0.7 * here)) {
            continue;
        }
        // Foliage stands in lumps with gaps between them.
        if (prune != 0 ||
            Noise(Vec{p.x, p.y, flat * p.z} * (1 / lump), seed + 7) > (shrub     ? -0.6
                                                                       : needles ? -0.08
                                                                                 : -0.34)) {
            return p;
        }
    }
    const double z = base + 0.5 * Height();
    return {0.3 * to * p.x, 0.3 * to * p.y, z + 0.3 * to * (p.z - z)};
}

double Crown::Volume() const {
    const double box = 4 * radius * radius * Height();
    constexpr double shares[4] = {0.42, pi / 6, 1, pi / 12};
    return box * shares[prune];
}

double Crown::Surface() const {
    const double across = pi * radius * radius, around = 2 * pi * radius * Height();
    switch (prune) {
    case 2:
        return 8 * radius * radius + 8 * radius * Height();
    case 3:
        return across + 0.5 * around;
    default:
        return 0.7 * across + 0.75 * around;
    }
}

double TwigSpacing(const CTsPlantDefinition& plant, const Crown& crown, int detail) {
    constexpr double ends[4] = {40, 1300, 2000, 3000};
    const double count = ends[detail] * std::clamp(plant.m_BranchDensity, 0.1, 2.0);
    return std::cbrt(crown.Volume() / count);
}

// ---- branches ----

namespace {

/// A place that calls for a branch.
struct Call {
    Vec at;
    int nearest = -1;
    double distance = std::numeric_limits<double>::max(); ///< squared
};

class Colony {
public:
    Colony(std::vector<BranchNode>& all_nodes, std::vector<Call> all_calls, double step_length,
           double kill_distance, Vec pull, Random& chance)
      : nodes(all_nodes)
      , calls(std::move(all_calls))
      , step(step_length)
      , kill(kill_distance * kill_distance)
      , tropism(pull)
      , random(chance) {
        Serve(0);
    }

    void Grow() {
        for (int round = 0; round < 400 && !calls.empty() && nodes.size() < 30'000; ++round) {
            const std::size_t before = nodes.size();
            Sprout();
            if (nodes.size() == before) {
                return;
            }
            Serve(before);
        }
    }

private:
    /// Tells the calls of the nodes from `first` on; those that are reached fall silent.
    void Serve(std::size_t first) {
        for (Call& call : calls) {
            for (std::size_t i = first; i < nodes.size(); ++i) {
                const Vec way = call.at - nodes[i].at;
                const double distance = Dot(way, way);
                if (nodes[i].sprouts && distance < call.distance) {
                    call.distance = distance, call.nearest = static_cast<int>(i);
                }
            }
        }
        std::erase_if(calls, [&](const Call& call) { return call.distance < kill; });
    }

    void Sprout() {
        std::vector<Vec> pull(nodes.size());
        std::vector<int> heard;
        for (const Call& call : calls) {
            if (call.nearest < 0) {
                continue;
            }
            const auto i = static_cast<std::size_t>(call.nearest);
            if (Dot(pull[i], pull[i]) == 0) {
                heard.push_back(call.nearest);
            }
            pull[i] = pull[i] + Unit(call.at - nodes[i].at);
        }
        children.resize(nodes.size());
        for (const int parent : heard) {
            const auto i = static_cast<std::size_t>(parent);
            const Vec way = Unit(Unit(pull[i]) + tropism + random.Ball() * 0.18);
            const Vec at = nodes[i].at + way * step;
            // Two calls in balance would raise the same branch for ever.
            const bool again = std::any_of(children[i].begin(), children[i].end(), [&](int child) {
                return Length(nodes[static_cast<std::size_t>(child)].at - at) < 0.35 * step;
            });
            if (again || children[i].size() >= 4) {
                nodes[i].sprouts = false;
                Forget(parent);
                continue;
            }
            children[i].push_back(static_cast<int>(nodes.size()));
            nodes.push_back({at, parent});
        }
    }

    /// Calls that heard a node which sprouts no more look for another.
    void Forget(int node) {
        for (Call& call : calls) {
            if (call.nearest != node) {
                continue;
            }
            call.nearest = -1, call.distance = std::numeric_limits<double>::max();
            for (std::size_t i = 0; i < nodes.size(); ++i) {
                const double distance = Dot(call.at - nodes[i].at, call.at - nodes[i].at);
                if (nodes[i].sprouts && distance < call.distance) {
                    call.distance = distance, call.nearest = static_cast<int>(i);
                }
            }
        }
    }

    std::vector<BranchNode>& nodes;
    std::vector<Call> calls;
    std::vector<std::vector<int>> children;
    double step, kill;
    Vec tropism;
    Random& random;
};

/// A bent stem from the ground; only its part above `bare` sprouts.
void AddStem(std::vector<BranchNode>& nodes, Vec foot, Vec way, double length, double step,
             double bare, double bend, Random& random) {
    const int count = std::max(3, static_cast<int>(length / step));
    const double turn = random.In(0, 2 * pi), waves = random.In(0.7, 1.3);
    int parent = -1;
    for (int i = 0; i <= count; ++i) {
        const double t = static_cast<double>(i) / count;
        const double off = bend * std::sin(waves * 2 * pi * t) * t + 0.5 * bend * t;
        const Vec at = foot + way * (length * t) + Toward(turn, 0) * off;
        nodes.push_back({at, parent});
        nodes.back().sprouts = at.z >= bare;
        parent = static_cast<int>(nodes.size()) - 1;
    }
}

void AddStems(std::vector<BranchNode>& nodes, const CTsPlantDefinition& plant, const Crown& crown,
              double step, Random& random) {
    if (plant.m_Kind != CTsPlantKind::shrub || plant.m_TrunkHeight > 0.2 * plant.m_Height) {
        const bool slender = crown.Height() > 3.5 * crown.radius;
        const bool pine = plant.m_Kind == CTsPlantKind::conifer;
        const double share = slender ? 0.86 : pine ? 0.8 : 0.38;
        const double leader = crown.base + share * crown.Height();
        const double bend = std::min(0.022 * plant.m_Height, 0.5 * plant.m_Diameter);
        AddStem(nodes, {}, Unit({random.In(-0.03, 0.03), random.In(-0.03, 0.03), 1}), leader, step,
                0.92 * crown.base, bend, random);
        return;
    }
    const int stems = 5 + static_cast<int>(5 * std::clamp(plant.m_BranchDensity, 0.0, 2.0));
    for (int i = 0; i < stems; ++i) {
        const double turn = i * golden_angle + random.In(-0.3, 0.3);
        const double out = crown.radius * 0.13 * std::sqrt((i + 0.5) / stems);
        const double lean = random.In(0.75, 1.45);
        AddStem(nodes, Toward(turn, 0) * out, Toward(turn, lean),
                0.4 * plant.m_Height * random.In(0.8, 1.1), step, 0.15 * plant.m_Height,
                0.02 * plant.m_Height, random);
    }
}

/// Brings the branches' ends to the crown's height and width.
void FitToCrown(std::vector<BranchNode>& nodes, const Crown& crown, double margin) {
    double highest = 0, widest = 0;
    for (const BranchNode& node : nodes) {
        highest = std::max(highest, node.at.z);
        widest = std::max(widest, std::hypot(node.at.x, node.at.y));
    }
    const double up = std::clamp((crown.top - 0.8 * margin) / std::max(highest, 1e-6), 0.6, 1.5);
    const double out = std::clamp((crown.radius - margin) / std::max(widest, 1e-6), 0.6, 1.5);
    for (BranchNode& node : nodes) {
        node.at = {node.at.x * out, node.at.y * out, node.at.z * up};
    }
}

void AddRadii(std::vector<BranchNode>& nodes, const CTsPlantDefinition& plant) {
    for (std::size_t i = nodes.size(); i-- > 0;) {
        BranchNode& node = nodes[i];
        node.tips = std::max<std::size_t>(node.tips, 1);
        if (node.parent >= 0) {
            BranchNode& parent = nodes[static_cast<std::size_t>(node.parent)];
            parent.tips += node.tips;
            const int best = parent.main_child;
            if (best < 0 || nodes[static_cast<std::size_t>(best)].tips < node.tips) {
                parent.main_child = static_cast<int>(i);
            }
        }
    }
    constexpr double exponent = 1 / 2.3;
    double roots = 0, thickest = 0;
    for (const BranchNode& node : nodes) {
        if (node.parent < 0) {
            roots += 1;
            thickest = std::max(thickest, std::pow(static_cast<double>(node.tips), exponent));
        }
    }
    const double foot =
        std::max(plant.m_TrunkDiameter / 2, 0.002) * std::min(1.0, 1.3 / std::sqrt(roots));
    const double tip = std::min(foot / thickest, 0.012);
    for (BranchNode& node : nodes) {
        const double pipes = std::pow(static_cast<double>(node.tips), exponent);
        node.radius = Lerp(tip * pipes, foot * pipes / thickest, pipes / thickest);
        node.radius *= 1 + 0.55 * std::exp(-node.at.z / (1.1 * foot)); // the roots' flare
    }
}

void Smooth(std::vector<BranchNode>& nodes) {
    for (int round = 0; round < 3; ++round) {
        std::vector<Vec> smooth(nodes.size());
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const BranchNode& node = nodes[i];
            const bool inner = node.parent >= 0 && node.main_child >= 0;
            smooth[i] =
                inner ? node.at * 0.5 + (nodes[static_cast<std::size_t>(node.parent)].at +
                                         nodes[static_cast<std::size_t>(node.main_child)].at) *
                                            0.25
                      : node.at;
        }
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            nodes[i].at = smooth[i];
        }
    }
}

} // namespace

std::vector<BranchNode> GrowBranches(const CTsPlantDefinition& plant, const Crown& crown,
                                     int detail, double margin, Random& random) {
    constexpr double ends[4] = {40, 1300, 2000, 3000};
    const double spacing = TwigSpacing(plant, crown, detail);
    const double step = std::max(0.36 * spacing, plant.m_Height / 400);
    std::vector<BranchNode> nodes;
    AddStems(nodes, plant, crown, step, random);
    const auto count =
        static_cast<std::size_t>(ends[detail] * std::clamp(plant.m_BranchDensity, 0.1, 2.0));
    std::vector<Call> calls(count);
    const double outermost = std::max(0.5, 1 - margin / crown.radius);
    for (Call& call : calls) {
        call.at = crown.Place(random, 0, outermost);
    }
    const double hang = std::clamp(plant.m_Droop, 0.0, 1.0);
    Colony(nodes, std::move(calls), step, std::max(0.58 * spacing, 1.2 * step),
           {0, 0, 0.28 - 0.5 * hang}, random)
        .Grow();
    AddRadii(nodes, plant);
    Smooth(nodes);
    FitToCrown(nodes, crown, margin);
    return nodes;
}

// ---- drawing ----

namespace {

/// A branch from its fork to its end.
struct Chain {
    std::vector<int> nodes; ///< the first is the fork on the parent branch
    double radius = 0;
};

std::vector<Chain> Chains(const std::vector<BranchNode>& nodes) {
    std::vector<Chain> chains;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const int parent = nodes[i].parent;
        const bool begins =
            parent < 0 || nodes[static_cast<std::size_t>(parent)].main_child != static_cast<int>(i);
        if (!begins) {
            continue;
        }
        Chain& chain = chains.emplace_back();
        chain.radius = nodes[i].radius;
        if (parent >= 0) {
            chain.nodes.push_back(parent);
        }
        for (int n = static_cast<int>(i); n >= 0;
             n = nodes[static_cast<std::size_t>(n)].main_child) {
            chain.nodes.push_back(n);
        }
    }
    std::stable_sort(chains.begin(), chains.end(),
                     [](const Chain& a, const Chain& b) { return a.radius > b.radius; });
    return chains;
}

/// The chain's places without those that tell nothing new.
std::vector<PathPoint> Thinned(const Chain& chain, const std::vector<BranchNode>& nodes,
                               double tolerance, std::size_t longest) {
    const auto at = [&](std::size_t i) -> const BranchNode& {
        return nodes[static_cast<std::size_t>(chain.nodes[i])];
    };
    std::vector<PathPoint> path{{at(0).at, std::min(at(0).radius, chain.radius * 1.2)}};
    std::size_t kept = 0;
    for (std::size_t i = 1; i + 1 < chain.nodes.size(); ++i) {
        const Vec before = Unit(at(i).at - at(kept).at), behind = Unit(at(i + 1).at - at(i).at);
        if (Dot(before, behind) < tolerance || i - kept >= longest ||
            at(i).radius < 0.7 * path.back().size) {
            path.push_back({at(i).at, at(i).radius});
            kept = i;
        }
    }
    path.push_back({at(chain.nodes.size() - 1).at, 0});
    return path;
}

int Sides(double share, int detail) {
    if (detail == 0) {
        return share > 0.5 ? 5 : 3;
    }
    const int finer = 2 * (detail - 1);
    return share > 0.35 ? 10 + finer : share > 0.12 ? 6 + finer : share > 0.05 ? 4 + finer / 2 : 3;
}

} // namespace

std::size_t DrawBranches(Task& task, const std::vector<BranchNode>& nodes, std::size_t most) {
    constexpr double tolerances[4] = {0.8, 0.965, 0.985, 0.993};
    constexpr std::size_t longest[4] = {14, 8, 6, 4};
    const auto detail = static_cast<std::size_t>(task.detail);
    const std::size_t before = task.mesh.Triangles();
    const std::vector<Chain> chains = Chains(nodes);
    for (const Chain& chain : chains) {
        if (chain.nodes.size() < 2) {
            continue;
        }
        const std::vector<PathPoint> path =
            Thinned(chain, nodes, tolerances[detail], longest[detail]);
        const int sides = Sides(chain.radius / chains.front().radius, task.detail);
        const std::size_t cost = Mesh::TubeTriangles(path.size(), true, sides);
        if (task.mesh.Triangles() - before + cost > most) {
            break;
        }
        const double thin = chains.front().radius * 0.16;
        task.mesh.Tube(chain.radius < thin ? task.twig : task.bark, path, sides);
    }
    return task.mesh.Triangles() - before;
}

} // namespace grow
