// Trees, shrubs, flowers and hedges as nested blocks.
#pragma once

#include "apps/make_samples/drawing.h"

#include <string>

namespace make_samples {

/// A sprig of leaves about the origin, roughly 0.5 m across, coloured by block.
std::string leaf_cluster_block(Drawing& drawing, int variant, int leaves, double leaf_length);

/// A broad-leaved tree: branching trunk and `clusters` of leaves in its crown. About 6 m high.
struct TreeForm {
    std::string name = "Tree";
    double trunk_height = 2.1, crown_radius = 2.0, crown_height = 3.4;
    int clusters = 220;
    int leaves = 24; ///< in a cluster
    std::string foliage = "Leaf", foliage_2 = "Leaf 2";
    std::uint64_t seed = 1;
};
std::string tree_block(Drawing& drawing, const TreeForm& form);
/// A tree for the distance: smooth lumps with a few leaves; about 6 m high.
std::string far_tree_block(Drawing& drawing, int variant);
/// A slender cypress, 7 m high.
std::string cypress_block(Drawing& drawing);
/// A rounded shrub, about 0.9 m across; flowers of a paint when one is given.
std::string shrub_block(Drawing& drawing, int variant, const std::string& flowers);
/// A lavender tuft, 0.5 m high.
std::string lavender_block(Drawing& drawing);
/// A tuft of grass blades, 0.25 m high.
std::string grass_block(Drawing& drawing, int variant);
/// A clipped hedge between two points.
void draw_hedge(Drawing& drawing, const Point2& from, const Point2& to, double width, double height,
                Random& random);
/// A house plant with long arching leaves, 1.2 m high, without its pot.
std::string house_plant_block(Drawing& drawing);

} // namespace make_samples
