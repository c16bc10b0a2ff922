// Unidirectional path tracing with explicit light of sun, sky and placed lights.
#pragma once

#include "renderer/accel.h"
#include "renderer/camera.h"
#include "renderer/environment.h"
#include "renderer/light_channels.h"
#include "renderer/pixel_filter.h"
#include "renderer/placed_lights.h"
#include "renderer/sampler.h"
#include "renderer/scene.h"
#include "renderer/surface_look.h"

#include <array>
#include <vector>

namespace renderer {

/// What one path brings home.
struct PathResult {
    Rgb radiance{0, 0, 0};
    float alpha = 0;      ///< 1 when the camera ray met geometry, less in the far haze
    Rgb albedo{0, 0, 0};  ///< of the first hit
    Vec3 normal{0, 0, 0}; ///< of the first hit, towards the viewer
    float depth = 0;      ///< metres to the first hit
};

/// The same light by channel, for those who ask.
struct PathChannels {
    std::array<Rgb, most_channels> radiance;
    std::array<Rgb, most_channels>
        indirect; ///< while the path is under way: its part that is clamped
};

/// Everything the paths of one render read. All methods may run on any number of threads.
class Integrator {
public:
    /// Throws std::invalid_argument for a scene or settings that cannot be rendered.
    Integrator(const Accel& accel, const Scene& scene, const RenderSettings& settings);

    /// One path through a pixel; a pure function of its arguments, the scene and the settings.
    /// `channels`, when given, is filled as far as there are channels.
    PathResult trace_sample(int x, int y, std::uint32_t sample,
                            PathChannels* channels = nullptr) const;

    /// One path along a given camera ray.
    PathResult trace_path(Ray ray, Sampler& sampler, PathChannels* channels = nullptr) const;

private:
    struct PathState;
    struct Vertex;
    bool step(PathState& state, Sampler& sampler) const;
    void add_escaped(PathState& state) const;
    void add_decal_light(PathState& state, const DecalGlow& glow) const;
    bool fade_ground(PathState& state, const Hit& hit) const;
    void add_direct_light(PathState& state, const Vertex& vertex, Sampler& sampler) const;
    static bool is_split(const Vertex& vertex, Vec3 direction);
    Rgb light_from(const LightSample& light, const Vertex& vertex) const;
    void add_emission(PathState& state, const Hit& hit, const Material& material) const;
    bool meet_lights(PathState& state, float distance) const;
    void add_passed_light(PathState& state, const PassedLight& light) const;
    void add_placed_lights(PathState& state, const Vertex& vertex, Sampler& sampler) const;
    Rgb light_from(const PlacedSample& light, const Vertex& vertex) const;
    Rgb way_to(const PlacedSample& light, const Vertex& vertex) const;
    bool scatter(PathState& state, const Vertex& vertex, Sampler& sampler) const;
    void add(PathState& state, Rgb light, int depth) const;
    void add_to_channel(PathState& state, int channel, Rgb light, int depth) const;
    void finish_channels(PathState& state, float indirect_scale) const;

    const Accel& accel_;
    SurfaceLooks looks_;
    DistantLight light_;
    PlacedLights placed_;
    CameraRays camera_;
    PixelFilter filter_;
    RenderSettings settings_;
    float stepped_back_ = 0; ///< metres by which a parallel camera's rays start behind its eye
    float fade_distance_;    ///< metres over which the ground plane fades into the haze
};

} // namespace renderer
