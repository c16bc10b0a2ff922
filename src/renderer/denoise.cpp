// Takes grain out of a film, guided by its feature buffers.
#include "renderer/denoise.h"

#include "renderer/sampling.h"

#include <tbb/parallel_for.h>

#include <array>
#include <stdexcept>

namespace renderer {

namespace {

constexpr int tile = 32, patch = 1; // a patch is 3 by 3 pixels
constexpr float least_albedo = 0.02f;
constexpr float normal_tolerance = 0.1f, albedo_tolerance = 0.03f;
constexpr float cut_off = 4; // distances from here on weigh nothing

/// A pixel as the filter compares it.
struct Pixel {
    Rgb light;      ///< radiance over albedo
    float variance; ///< of the mean of `light`, relative to its squared luminance
    Rgb albedo;
    Vec3 normal;
    float depth;
    Vec2 depth_slope; ///< metres a pixel
    bool surface;
};

float square(float x) { return x * x; }

class Guide {
public:
    explicit Guide(const Film& film)
      : width_(film.width)
      , height_(film.height) {
        pixels_.resize(film.radiance.size());
        std::vector<float> variance(pixels_.size());
        const float samples = static_cast<float>(std::max(film.samples, 2));
        for (std::size_t i = 0; i < pixels_.size(); ++i) {
            Pixel& p = pixels_[i];
            p.albedo = usable_albedo(film.albedo[i]);
            const Rgb c = film.radiance[i];
            p.light = {c.x / p.albedo.x, c.y / p.albedo.y, c.z / p.albedo.z};
            p.normal = film.normal[i];
            p.depth = film.depth[i];
            p.surface = film.alpha[i] > 0.5f && is_finite(c);
            variance[i] = film.variance[i] / ((samples - 1) * square(luminance(p.albedo)));
        }
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x) {
                Pixel& p = at(x, y);
                p.depth_slope = {slope(x, y, 1, 0), slope(x, y, 0, 1)};
                p.variance =
                    steady_variance(variance, x, y) / std::max(square(luminance(p.light)), 1e-24f);
            }
    }

    static Rgb usable_albedo(Rgb a) {
        return {std::max(a.x, least_albedo), std::max(a.y, least_albedo),
                std::max(a.z, least_albedo)};
    }
    Pixel& at(int x, int y) { return pixels_[index(x, y)]; }
    const Pixel& at(int x, int y) const { return pixels_[index(x, y)]; }
    bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < width_ && y < height_; }
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x);
    }

private:
    /// A pixel that no rare bright path has met yet believes itself free of noise; its neighbours
    /// know better.
    float steady_variance(const std::vector<float>& variance, int x, int y) const {
        float sum = 0;
        int count = 0;
        for (int v = y - 1; v <= y + 1; ++v)
            for (int u = x - 1; u <= x + 1; ++u)
                if (holds(u, v) && at(u, v).surface) {
                    sum += variance[index(u, v)];
                    ++count;
                }
        return count > 0 ? std::max(variance[index(x, y)], sum / static_cast<float>(count)) : 0;
    }

    /// Change of depth a pixel along a direction, the smaller of both sides: no leap at an edge.
    float slope(int x, int y, int dx, int dy) const {
        const float here = at(x, y).depth;
        const bool ahead = holds(x + dx, y + dy), behind = holds(x - dx, y - dy);
        const float a = ahead ? at(x + dx, y + dy).depth - here : infinity;
        const float b = behind ? here - at(x - dx, y - dy).depth : infinity;
        const float least = std::fabs(a) < std::fabs(b) ? a : b;
        return std::isfinite(least) ? least : 0;
    }

    int width_, height_;
    std::vector<Pixel> pixels_;
};

/// How little two pixels have in common as surfaces; from `cut_off` on they are strangers.
float feature_distance(const Pixel& p, const Pixel& q, int dx, int dy) {
    const Vec3 n = p.normal - q.normal;
    const Vec3 a = p.albedo - q.albedo;
    const float by_shape = dot(n, n) / square(normal_tolerance);
    const float by_paint = dot(a, a) / square(albedo_tolerance);
    const float expected = p.depth + p.depth_slope.x * static_cast<float>(dx) +
                           p.depth_slope.y * static_cast<float>(dy);
    const float give = 0.01f * p.depth + std::fabs(p.depth_slope.x) + std::fabs(p.depth_slope.y);
    const float by_depth = square((q.depth - expected) / std::max(give, 1e-6f));
    return std::max({by_shape, by_paint, by_depth});
}

/// Squared difference of light beyond what noise explains, in units of that noise.
float light_distance(const Pixel& p, const Pixel& q, float tolerance) {
    const Rgb d = p.light - q.light;
    const Rgb p2 = p.light * p.light, q2 = q.light * q.light;
    const auto channel = [&](float difference, float a, float b) {
        const float var_p = p.variance * a, var_q = q.variance * b;
        return (difference * difference - (var_p + std::min(var_p, var_q))) /
               (1e-10f + 1e-5f * a + square(tolerance) * (var_p + var_q));
    };
    return (channel(d.x, p2.x, q2.x) + channel(d.y, p2.y, q2.y) + channel(d.z, p2.z, q2.z)) / 3;
}

/// One tile of the picture under the filter.
class Tile {
public:
    Tile(const Guide& guide, const DenoiseSettings& settings, int x0, int y0, int x1, int y1)
      : guide_(guide)
      , tolerance_(0.5f * settings.strength)
      , radius_(settings.radius)
      , x0_(x0)
      , y0_(y0)
      , x1_(x1)
      , y1_(y1) {}

    void run(Film& film) {
        for (int dy = -radius_; dy <= radius_; ++dy)
            for (int dx = -radius_; dx <= radius_; ++dx) {
                if (dx == 0 && dy == 0)
                    continue;
                compare(dx, dy);
                gather(dx, dy);
            }
        for (int y = y0_; y < y1_; ++y)
            for (int x = x0_; x < x1_; ++x) {
                const Pixel& p = guide_.at(x, y);
                if (!p.surface)
                    continue;
                const int i = cell(x, y);
                const float own = std::max(most_[i], 1e-3f); // as its best neighbour
                film.radiance[guide_.index(x, y)] =
                    p.albedo * ((sum_[i] + p.light * own) / (weight_[i] + own));
            }
    }

private:
    static constexpr int side = tile + 2 * patch;
    int cell(int x, int y) const { return (y - y0_ + patch) * side + x - x0_ + patch; }

    /// Distances of all pixels of the tile, and one round it, to those an offset away.
    void compare(int dx, int dy) {
        for (int y = y0_ - patch; y < y1_ + patch; ++y)
            for (int x = x0_ - patch; x < x1_ + patch; ++x) {
                float& d = distance_[cell(x, y)];
                d = 0;
                if (!guide_.holds(x, y) || !guide_.holds(x + dx, y + dy))
                    continue;
                const Pixel &p = guide_.at(x, y), &q = guide_.at(x + dx, y + dy);
                if (p.surface && q.surface)
                    d = std::min(light_distance(p, q, tolerance_), 100.0f);
            }
    }

    void gather(int dx, int dy) {
        for (int y = y0_; y < y1_; ++y)
            for (int x = x0_; x < x1_; ++x) {
                if (!guide_.holds(x + dx, y + dy))
                    continue;
                const Pixel &p = guide_.at(x, y), &q = guide_.at(x + dx, y + dy);
                if (!p.surface || !q.surface)
                    continue;
                const float light = std::max(0.0f, patch_mean(cell(x, y)));
                if (light >= cut_off)
                    continue;
                const float d = std::max(light, feature_distance(p, q, dx, dy));
                if (d >= cut_off)
                    continue;
                const float w = square(1 - d / cut_off);
                const int i = cell(x, y);
                sum_[i] += q.light * w;
                weight_[i] += w;
                most_[i] = std::max(most_[i], w);
            }
    }

    float patch_mean(int i) const {
        float sum = 0;
        for (int y = -patch; y <= patch; ++y)
            for (int x = -patch; x <= patch; ++x)
                sum += distance_[i + y * side + x];
        return sum / square(2 * patch + 1);
    }

    const Guide& guide_;
    float tolerance_;
    int radius_, x0_, y0_, x1_, y1_;
    std::array<float, side * side> distance_{}, weight_{}, most_{};
    std::array<Rgb, side * side> sum_{};
};

void check(const Film& film, const DenoiseSettings& settings) {
    const auto n = static_cast<std::size_t>(std::max(film.width, 0)) *
                   static_cast<std::size_t>(std::max(film.height, 0));
    if (film.radiance.size() != n || film.alpha.size() != n || film.albedo.size() != n ||
        film.normal.size() != n || film.depth.size() != n || film.variance.size() != n)
        throw std::invalid_argument("denoise: a buffer of the film does not fit its size");
    if (!(settings.strength >= 0 && settings.strength <= 4) || settings.radius < 1 ||
        settings.radius > 20)
        throw std::invalid_argument("denoise: strength or radius is out of range");
}

} // namespace

void denoise(Film& film, const DenoiseSettings& settings) {
    check(film, settings);
    if (settings.strength == 0 || film.samples < 2)
        return;
    const Guide guide(film);
    const int across = (film.width + tile - 1) / tile, down = (film.height + tile - 1) / tile;
    tbb::parallel_for(0, across * down, [&](int i) {
        const int x = i % across * tile, y = i / across * tile;
        Tile(guide, settings, x, y, std::min(x + tile, film.width), std::min(y + tile, film.height))
            .run(film);
    });
}

} // namespace renderer
