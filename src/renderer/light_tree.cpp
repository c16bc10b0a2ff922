// Chooses among many lights.
#include "renderer/light_tree.h"

#include "renderer/sampling.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace renderer {

namespace {

/// Cosines that are this little out of reach still count: rounding must not hide a light.
constexpr float slack = 1e-3f;
/// Shares of what is nearly turned away, so that no light that can be seen is all but forgotten.
constexpr float least_share = 0.02f;
constexpr int deepest_by_cost = 40; // below it nodes are halved, so that a tree ends

float half_angle(Vec3 a, Vec3 b) { return std::acos(std::clamp(dot(a, b), -1.0f, 1.0f)); }

Vec3 lower(Vec3 a, Vec3 b) { return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)}; }
Vec3 upper(Vec3 a, Vec3 b) { return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)}; }

/// The smallest cone about two cones of directions.
void unite_cones(LightBound& a, const LightBound& b) {
    const float between = half_angle(a.axis, b.axis);
    if (std::min(between + b.full, pi) <= a.full)
        return;
    if (std::min(between + a.full, pi) <= b.full) {
        a.axis = b.axis;
        a.full = b.full;
        return;
    }
    const float whole = 0.5f * (a.full + between + b.full);
    const Vec3 about = cross(a.axis, b.axis);
    if (whole >= pi || dot(about, about) < 1e-12f) {
        a.full = pi;
        return;
    }
    const float turn = whole - a.full; // from a's axis towards b's
    const Vec3 aside = cross(normalize(about), a.axis);
    a.axis = normalize(a.axis * std::cos(turn) + aside * std::sin(turn));
    a.full = whole;
}

LightBound united(LightBound a, const LightBound& b) {
    if (a.strength <= 0)
        return b;
    if (b.strength <= 0)
        return a;
    unite_cones(a, b);
    a.low = lower(a.low, b.low);
    a.high = upper(a.high, b.high);
    a.fall = std::max(a.fall, b.fall);
    a.strength += b.strength;
    a.both_ways = a.both_ways || b.both_ways;
    a.has_surface = a.has_surface || b.has_surface;
    return a;
}

float surface(const LightBound& b) {
    const Vec3 d = b.high - b.low;
    return 2 * (d.x * d.y + d.y * d.z + d.z * d.x);
}

/// What a node costs those who look for its lights: more for what is large and shines all round.
float node_cost(const LightBound& b, float stretch) {
    const float full = std::min(b.full, pi), end = std::min(full + b.fall, pi);
    const float wide =
        2 * pi * (1 - std::cos(full)) + pi / 2 *
                                            (2 * end * std::sin(full) - std::cos(full - 2 * end) -
                                             2 * full * std::sin(full) + std::cos(full));
    return b.strength * wide * stretch * surface(b);
}

float part(Vec3 v, int axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

/// Cosine and sine of the larger of 0 and the first angle less the second.
struct Angle {
    float cosine, sine;
    Angle less(float other_cosine, float other_sine) const {
        if (cosine > other_cosine)
            return {1, 0};
        return {cosine * other_cosine + sine * other_sine,
                sine * other_cosine - cosine * other_sine};
    }
};

/// What stands for the square of the distance to lights in a box: between that to the middle and
/// that to the nearest side. Of what was tried on grids, rows and clouds of lights, this geometric
/// mean gave the least noise, half to a fifth of what the middle alone does.
float mean_square_distance(Vec3 away, Vec3 half) {
    const Vec3 out =
        upper({std::fabs(away.x) - half.x, std::fabs(away.y) - half.y, std::fabs(away.z) - half.z},
              {0, 0, 0});
    const float r2 = dot(half, half);
    const float near = dot(out, out) + 0.01f * r2, middle = dot(away, away) + 0.25f * r2;
    return std::max(std::sqrt(near * middle), 1e-12f);
}

float sine_of(float cosine) { return std::sqrt(std::max(0.0f, 1 - cosine * cosine)); }

} // namespace

/// What the build works on: the lights in the order of the tree.
struct LightTree::Building {
    const std::vector<LightBound>& lights;
    std::vector<std::int32_t> order;

    const LightBound& at(std::size_t i) const { return lights[static_cast<std::size_t>(order[i])]; }
    Vec3 centre(std::size_t i) const { return (at(i).low + at(i).high) * 0.5f; }
    std::size_t split(std::size_t begin, std::size_t end, const LightBound& whole);
};

/// Moves the lights of a range to both sides of the cheapest of some planes; returns where the
/// second side begins, `begin` when there is no such plane.
std::size_t LightTree::Building::split(std::size_t begin, std::size_t end,
                                       const LightBound& whole) {
    constexpr int buckets = 12;
    Vec3 low = centre(begin), high = low;
    for (std::size_t i = begin; i < end; ++i) {
        low = lower(low, centre(i));
        high = upper(high, centre(i));
    }
    const Vec3 extent = whole.high - whole.low;
    const float longest = std::max({extent.x, extent.y, extent.z});
    const auto bucket_of = [&](std::size_t i, int axis) {
        const float wide = part(high, axis) - part(low, axis);
        const float at = (part(centre(i), axis) - part(low, axis)) / wide;
        return std::clamp(static_cast<int>(at * buckets), 0, buckets - 1);
    };
    float best_cost = infinity;
    int best_axis = -1, best_bucket = 0;
    for (int axis = 0; axis < 3; ++axis) {
        if (!(part(high, axis) > part(low, axis)))
            continue;
        std::array<LightBound, buckets> bounds{};
        for (std::size_t i = begin; i < end; ++i) {
            LightBound& bound = bounds[static_cast<std::size_t>(bucket_of(i, axis))];
            bound = united(bound, at(i));
        }
        const float stretch = longest / std::max(part(extent, axis), 1e-6f * longest);
        std::array<float, buckets> above{};
        LightBound side;
        for (int b = buckets - 1; b > 0; --b) {
            side = united(side, bounds[static_cast<std::size_t>(b)]);
            above[static_cast<std::size_t>(b)] = node_cost(side, stretch);
        }
        side = {};
        for (int b = 0; b + 1 < buckets; ++b) {
            side = united(side, bounds[static_cast<std::size_t>(b)]);
            const float cost = node_cost(side, stretch) + above[static_cast<std::size_t>(b) + 1];
            if (cost < best_cost) {
                best_cost = cost;
                best_axis = axis;
                best_bucket = b;
            }
        }
    }
    if (best_axis < 0)
        return begin;
    std::vector<std::int32_t> second;
    std::size_t kept = begin;
    for (std::size_t i = begin; i < end; ++i) {
        const std::int32_t light = order[i];
        if (bucket_of(i, best_axis) <= best_bucket)
            order[kept++] = light;
        else
            second.push_back(light);
    }
    std::copy(second.begin(), second.end(), order.begin() + static_cast<std::ptrdiff_t>(kept));
    return kept == end ? begin : kept;
}

LightTree::LightTree(const std::vector<LightBound>& lights)
  : leaf_of_(lights.size(), -1) {
    Building work{lights, {}};
    for (std::size_t i = 0; i < lights.size(); ++i)
        if (lights[i].strength > 0)
            work.order.push_back(static_cast<std::int32_t>(i));
    if (work.order.empty())
        return;
    nodes_.reserve(2 * work.order.size());
    build(work, 0, work.order.size(), -1, 0);
}

LightTree::Node LightTree::make_node(const LightBound& bound) {
    Node node;
    node.low = bound.low;
    node.high = bound.high;
    node.axis = bound.axis;
    const float full = std::min(bound.full, pi);
    node.cos_full = std::cos(full);
    node.sin_full = std::sin(full);
    node.cos_end = std::cos(std::min(bound.fall, pi));
    node.strength = bound.strength;
    node.both_ways = bound.both_ways;
    node.has_surface = bound.has_surface;
    return node;
}

std::int32_t LightTree::build(Building& work, std::size_t begin, std::size_t end,
                              std::int32_t parent, int depth) {
    LightBound whole;
    for (std::size_t i = begin; i < end; ++i)
        whole = united(whole, work.at(i));
    const auto index = static_cast<std::int32_t>(nodes_.size());
    nodes_.push_back(make_node(whole));
    nodes_.back().parent = parent;
    if (end - begin == 1) {
        nodes_.back().light = work.order[begin];
        leaf_of_[static_cast<std::size_t>(work.order[begin])] = index;
        return index;
    }
    std::size_t middle = depth < deepest_by_cost ? work.split(begin, end, whole) : begin;
    if (middle == begin)
        middle = begin + (end - begin) / 2;
    build(work, begin, middle, index, depth + 1);
    const std::int32_t second = build(work, middle, end, index, depth + 1);
    nodes_[static_cast<std::size_t>(index)].second = second;
    return index;
}

float LightTree::importance(const Node& node, const LitPoint& at) {
    const Vec3 half = (node.high - node.low) * 0.5f;
    const Vec3 away = at.position - (node.low + half); // from the lights to the place
    const float r2 = dot(half, half), d2 = dot(away, away);
    const float received = node.strength / mean_square_distance(away, half);
    if (d2 <= r2 || d2 <= 0) // among them
        return received;
    const Vec3 direction = away / std::sqrt(d2);
    const float sine_b = std::sqrt(r2 / d2), cosine_b = std::sqrt(1 - r2 / d2);
    float cosine = dot(node.axis, direction);
    if (node.both_ways)
        cosine = std::fabs(cosine);
    const Angle sent =
        Angle{cosine, sine_of(cosine)}.less(node.cos_full, node.sin_full).less(cosine_b, sine_b);
    if (sent.cosine < node.cos_end - slack)
        return 0;
    const float share = (sent.cosine - node.cos_end) / (1 - node.cos_end + slack);
    float result = received * std::max(share, least_share);
    if (dot(at.normal, at.normal) > 0) {
        const float facing = -dot(at.normal, direction);
        const Angle met = Angle{facing, sine_of(facing)}.less(cosine_b, sine_b);
        if (met.cosine < -slack)
            return 0;
        result *= std::max(met.cosine, least_share);
    }
    return result;
}

float LightTree::importance(const LitPoint& at) const {
    return nodes_.empty() ? 0 : importance(nodes_[0], at);
}

LightTree::Choice LightTree::choose(const LitPoint& at, float u) const {
    if (nodes_.empty())
        return {};
    std::int32_t index = 0;
    float probability = 1;
    while (nodes_[static_cast<std::size_t>(index)].second != 0) {
        const std::int32_t second = nodes_[static_cast<std::size_t>(index)].second;
        const float a = importance(nodes_[static_cast<std::size_t>(index) + 1], at);
        const float b = importance(nodes_[static_cast<std::size_t>(second)], at);
        if (!(a + b > 0))
            return {};
        const float first = a / (a + b);
        if (u < first) {
            index = index + 1;
            u = u / first;
            probability *= first;
        } else {
            index = second;
            u = (u - first) / (1 - first);
            probability *= 1 - first;
        }
        u = std::min(u, 0x1.fffffep-1f);
    }
    return {nodes_[static_cast<std::size_t>(index)].light, probability};
}

float LightTree::probability(const LitPoint& at, int light) const {
    std::int32_t index = leaf_of_[static_cast<std::size_t>(light)];
    if (index < 0)
        return 0;
    float probability = 1;
    for (std::int32_t up = nodes_[static_cast<std::size_t>(index)].parent; up >= 0;
         index = up, up = nodes_[static_cast<std::size_t>(index)].parent) {
        const std::int32_t second = nodes_[static_cast<std::size_t>(up)].second;
        const std::int32_t other = index == second ? up + 1 : second;
        const float own = importance(nodes_[static_cast<std::size_t>(index)], at);
        const float rest = importance(nodes_[static_cast<std::size_t>(other)], at);
        if (!(own > 0))
            return 0;
        probability *= own / (own + rest);
    }
    return probability;
}

bool LightTree::meets(const Node& node, const Ray& ray, Vec3 inverse) {
    const Vec3 a = (node.low - ray.origin) * inverse, b = (node.high - ray.origin) * inverse;
    const Vec3 in = lower(a, b), out = upper(a, b);
    const float near = std::max({in.x, in.y, in.z, 0.0f});
    const float far = std::min({out.x, out.y, out.z, ray.t_max});
    return near <= far * 1.00001f + 1e-6f;
}

} // namespace renderer
