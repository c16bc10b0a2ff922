// Whole films for tests, and what is asked of them.
#pragma once

#include "renderer/renderer.h"

#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace renderer {

/// Without any gloss.
inline Material matt(float reflectance) {
    Material m;
    m.base_color = {reflectance, reflectance, reflectance};
    m.specular = 0;
    return m;
}

inline Film render(const Scene& scene, const RenderSettings& settings) {
    Film film;
    EXPECT_EQ(Renderer(scene).render(settings, film), Outcome::finished);
    return film;
}

inline Rgb mean_radiance(const Film& film) {
    Rgb sum{0, 0, 0};
    for (const Rgb c : film.radiance)
        sum += c / float(film.radiance.size());
    return sum;
}

template <typename T>
bool same_bytes(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

/// Passes, light and features, to the last bit.
inline bool same(const Film& a, const Film& b) {
    return a.passes == b.passes && same_bytes(a.radiance, b.radiance) &&
           same_bytes(a.alpha, b.alpha) && same_bytes(a.albedo, b.albedo) &&
           same_bytes(a.normal, b.normal) && same_bytes(a.depth, b.depth);
}

} // namespace renderer
