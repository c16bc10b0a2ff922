// The GGX microfacet distribution and tables of its directional albedo.
#include "renderer/ggx.h"

#include "renderer/sampler.h"
#include "renderer/sampling.h"

#include <array>

namespace renderer {

float Ggx::density(Vec3 half) const {
    const float a2 = alpha * alpha;
    // 1 + cos^2 (a2 - 1), written so that nothing cancels near the peak
    const float d = half.x * half.x + half.y * half.y + a2 * half.z * half.z;
    return a2 / (pi * d * d);
}

float Ggx::lambda(float cosine) const {
    const float c2 = cosine * cosine;
    if (c2 <= 0)
        return 1e10f;
    return 0.5f * (std::sqrt(1 + alpha * alpha * std::max(0.0f, 1 - c2) / c2) - 1);
}

Vec3 Ggx::sample_visible_normal(Vec3 view, Vec2 u) const {
    const Vec3 v = normalize({alpha * view.x, alpha * view.y, view.z});
    const float square = v.x * v.x + v.y * v.y;
    const Vec3 t1 = square > 0 ? Vec3{-v.y, v.x, 0} / std::sqrt(square) : Vec3{1, 0, 0};
    const Vec3 t2 = cross(v, t1);
    const float r = std::sqrt(u.x), phi = 2 * pi * u.y;
    const float p1 = r * std::cos(phi);
    const float s = 0.5f * (1 + v.z);
    const float p2 = (1 - s) * std::sqrt(std::max(0.0f, 1 - p1 * p1)) + s * r * std::sin(phi);
    const Vec3 n = t1 * p1 + t2 * p2 + v * std::sqrt(std::max(0.0f, 1 - p1 * p1 - p2 * p2));
    return normalize({alpha * n.x, alpha * n.y, std::max(1e-6f, n.z)});
}

namespace {

constexpr int table_size = 32;

/// Rows by sqrt(alpha), columns by cosine, both from 0 to 1.
struct AlbedoTable {
    std::array<std::array<GgxAlbedo, table_size>, table_size> directional;
    std::array<GgxAlbedo, table_size> mean;
};

GgxAlbedo integrate(float cosine, float alpha) {
    constexpr int samples = 256;
    const Ggx ggx{alpha};
    const Vec3 view{std::sqrt(std::max(0.0f, 1 - cosine * cosine)), 0, cosine};
    double scale = 0, bias = 0;
    for (std::uint32_t i = 0; i < samples; ++i) {
        const Vec2 u{(static_cast<float>(i) + 0.5f) / samples, to_unit_float(reverse_bits(i))};
        const Vec3 half = ggx.sample_visible_normal(view, u);
        const float view_half = dot(view, half);
        const Vec3 light = half * (2 * view_half) - view;
        if (light.z <= 0)
            continue;
        const float weight = ggx.masking_shadowing(view.z, light.z) / ggx.masking(view.z);
        const float base = 1 - clamp01(view_half);
        const float schlick = base * base * base * base * base;
        scale += weight * (1 - schlick);
        bias += weight * schlick;
    }
    return {static_cast<float>(scale / samples), static_cast<float>(bias / samples)};
}

AlbedoTable make_table() {
    AlbedoTable table;
    for (int row = 0; row < table_size; ++row) {
        const float root = static_cast<float>(row) / (table_size - 1);
        const float alpha = std::max(root * root, 1e-3f);
        double scale = 0, bias = 0, total = 0;
        for (int column = 0; column < table_size; ++column) {
            const float cosine = std::max(static_cast<float>(column) / (table_size - 1), 1e-3f);
            const GgxAlbedo a = integrate(cosine, alpha);
            table.directional[row][column] = a;
            const double weight = cosine * (column == table_size - 1 ? 0.5 : 1.0);
            scale += weight * a.scale, bias += weight * a.bias, total += weight;
        }
        table.mean[row] = {static_cast<float>(scale / total), static_cast<float>(bias / total)};
    }
    return table;
}

const AlbedoTable& table() {
    static const AlbedoTable made = make_table();
    return made;
}

GgxAlbedo mix(GgxAlbedo a, GgxAlbedo b, float t) {
    return {a.scale + (b.scale - a.scale) * t, a.bias + (b.bias - a.bias) * t};
}

/// Cell and place in it of a value from 0 to 1.
std::pair<int, float> locate(float value) {
    const float at = clamp01(value) * (table_size - 1);
    const int cell = std::min(static_cast<int>(at), table_size - 2);
    return {cell, at - static_cast<float>(cell)};
}

} // namespace

GgxAlbedo ggx_albedo(float cosine, float alpha) {
    const auto [row, down] = locate(std::sqrt(alpha));
    const auto [column, along] = locate(cosine);
    const auto& rows = table().directional;
    return mix(mix(rows[row][column], rows[row][column + 1], along),
               mix(rows[row + 1][column], rows[row + 1][column + 1], along), down);
}

GgxAlbedo ggx_mean_albedo(float alpha) {
    const auto [row, down] = locate(std::sqrt(alpha));
    return mix(table().mean[row], table().mean[row + 1], down);
}

} // namespace renderer
