// Chooses among many lights: a tree of what its parts can send to a place. After Conty Estevez and
// Kulla, "Importance Sampling of Many Lights with Adaptive Tree Splitting", HPG 2018.
#pragma once

#include "renderer/ray.h"
#include "renderer/vec.h"

#include <cstdint>
#include <vector>

namespace renderer {

/// What is known of a light, or of several: where they are and where they can send how much.
struct LightBound {
    Vec3 low{0, 0, 0}, high{0, 0, 0};
    Vec3 axis{0, 0, 1};       ///< unit; of the directions that light is sent in
    float full = 3.2f;        ///< radians from the axis within which it may be as strong as it gets
    float fall = 1.6f;        ///< radians beyond that in which it falls to nothing
    float strength = 0;       ///< largest radiant intensity, luminance
    bool both_ways = false;   ///< the same along the axis reversed
    bool has_surface = false; ///< rays may meet one of the lights in it
};

/// A place that light may come to. With a zero normal it may come from any side.
struct LitPoint {
    Vec3 position{0, 0, 0};
    Vec3 normal{0, 0, 0};
};

class LightTree {
public:
    /// Lights of no strength are never chosen. Equal input gives equal trees.
    explicit LightTree(const std::vector<LightBound>& lights);

    bool empty() const { return nodes_.empty(); }
    std::size_t node_count() const { return nodes_.size(); }
    /// What may come from all lights together: an estimate of the irradiance, 0 for certainly none.
    float importance(const LitPoint& at) const;

    struct Choice {
        int light = -1; ///< index into the lights; -1 when none can reach the place
        float probability = 0;
    };
    /// Draws a light with a number from [0, 1).
    Choice choose(const LitPoint& at, float u) const;
    /// The probability with which choose() draws a light.
    float probability(const LitPoint& at, int light) const;

    /// Calls `visit(light)` for the lights with a surface whose box the ray meets.
    template <typename Visit>
    void for_each_met(const Ray& ray, Visit visit) const;

private:
    struct Node {
        Vec3 low, high, axis;
        float cos_full, sin_full, cos_end; ///< the end is where light has fallen to nothing
        float strength;
        std::int32_t second = 0; ///< of an inner node, whose first child follows it; else 0
        std::int32_t parent = -1;
        std::int32_t light = -1; ///< of a leaf
        bool both_ways = false, has_surface = false;
    };
    struct Building;
    std::int32_t build(Building& work, std::size_t begin, std::size_t end, std::int32_t parent,
                       int depth);
    static Node make_node(const LightBound& bound);
    static float importance(const Node& node, const LitPoint& at);
    static bool meets(const Node& node, const Ray& ray, Vec3 inverse);

    std::vector<Node> nodes_;
    std::vector<std::int32_t> leaf_of_; ///< node of each light, -1 for none
};

template <typename Visit>
void LightTree::for_each_met(const Ray& ray, Visit visit) const {
    if (nodes_.empty() || !nodes_[0].has_surface)
        return;
    const auto inverted = [](float x) { return 1 / (x == 0 ? 1e-20f : x); };
    const Vec3 inverse{inverted(ray.direction.x), inverted(ray.direction.y),
                       inverted(ray.direction.z)};
    std::int32_t stack[64];
    int depth = 0;
    stack[depth++] = 0;
    while (depth > 0) {
        const std::int32_t index = stack[--depth];
        const Node& node = nodes_[static_cast<std::size_t>(index)];
        if (!node.has_surface || !meets(node, ray, inverse))
            continue;
        if (node.second == 0) {
            visit(static_cast<int>(node.light));
        } else {
            stack[depth++] = node.second;
            stack[depth++] = index + 1;
        }
    }
}

} // namespace renderer
