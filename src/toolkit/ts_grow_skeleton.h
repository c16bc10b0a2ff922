// Within the toolkit: crowns and the branches that fill them.
#pragma once

#include "toolkit/ts_grow.h"

#include <array>
#include <vector>

namespace grow {

/// The space that foliage fills, free or pruned to a shape.
class Crown {
public:
    explicit Crown(const CTsPlantDefinition& plant);
    /// 0 in the middle to 1 at the surface, more outside.
    double Reach(Vec p) const;
    /// Outward at a place.
    Vec Outward(Vec p) const;
    /// An even place in the crown with a reach between the two values; most lie further out. The
    /// gaps of a free crown stay empty.
    Vec Place(Random& random, double from, double to) const;

    double base, top, radius;
    double Height() const { return top - base; }
    double Volume() const;  ///< cubic metres, roughly
    double Surface() const; ///< square metres, roughly

private:
    double Profile(double share_of_height) const;
    double FreeReach(Vec p) const;
    int prune;
    std::uint32_t seed;
    bool shrub, needles;
    static constexpr std::size_t profile_steps = 65;
    std::array<double, profile_steps> profile{};
};

struct BranchNode {
    Vec at;
    int parent = -1;
    int main_child = -1; ///< the thickest
    double radius = 0;
    std::size_t tips = 0; ///< ends of branches beyond
    bool sprouts = true;  ///< takes part in the search for free space
};

/// Branches that grow into the free space of a crown: A. Runions, B. Lane, P. Prusinkiewicz,
/// "Modeling Trees with a Space Colonization Algorithm", Eurographics Workshop on Natural Phenomena
/// 2007. Radii add up by the pipe model of Shinozaki et al., 1964, with exponent 2.3. Parents come
/// ahead of their children.
std::vector<BranchNode> GrowBranches(const CTsPlantDefinition& plant, const Crown& crown,
                                     int detail, double margin, Random& random);

/// Draws branches, the thickest first, within `most` triangles. Returns the triangles drawn.
std::size_t DrawBranches(Task& task, const std::vector<BranchNode>& nodes, std::size_t most);

/// Distance between the ends of twigs in a crown with this detail.
double TwigSpacing(const CTsPlantDefinition& plant, const Crown& crown, int detail);

} // namespace grow
