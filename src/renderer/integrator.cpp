// Unidirectional path tracing with explicit light of sun, sky and placed lights.
#include "renderer/integrator.h"

#include "renderer/bsdf.h"
#include "renderer/sampling.h"

#include <stdexcept>

namespace renderer {

namespace {

constexpr std::uint32_t camera_pairs = 1, pairs_per_bounce = 4;
/// Placed lights have pairs of their own, so that they change nothing for scenes without any.
constexpr std::uint32_t light_pairs = 1u << 16,
                        light_pairs_per_bounce = 1 + PlacedLights::most_samples;
constexpr int roulette_from = 2; // bounces that always go on
constexpr int most_panes = 32;
constexpr float light_gap = 1e-4f; // share of the way to a light that is not looked at

/// With a clamp, paths that have left a rough surface see mirrors blurred by this: what they
/// would show of the sun is found by chance only, and would come as fireflies.
constexpr float blurred_roughness = 0.35f;

/// A sample of a pixel stands for less than the pixel: its neighbours fill up the rest.
constexpr float sample_share = 0.5f;
/// How wide a ray gets when it leaves a surface with density 1 per solid angle: the radius of the
/// cone which that density fills, halved, since many such rays are averaged.
constexpr float spread_of_unit_density = 0.28f;
/// Directions that a surface sends light to in a denser lobe than this are a mirror's.
constexpr float mirror_density = 10;

/// How much of a mirror a surface is in a direction that it draws with a density: from 0, where
/// it may see lights that are not to be seen, to 1, where it sees the lamps that are.
float mirror_share(float pdf) { return pdf > mirror_density ? 1 - mirror_density / pdf : 0; }

bool is_black(Rgb c) { return max_component(c) <= 0; }

void check_channels(const ChannelSettings& light, const Scene& scene) {
    if (light.channels.empty())
        return;
    const auto count = static_cast<int>(light.channels.size());
    const auto there = [count](int channel) { return channel >= 0 && channel < count; };
    bool good = count <= most_channels && there(light.sun) && there(light.sky);
    for (const Material& material : scene.materials)
        good = good && there(material.light_channel);
    for (const Decal& decal : scene.decals)
        good = good && there(decal.light_channel);
    for (const Light& placed : scene.lights)
        good = good && there(placed.channel);
    if (!good)
        throw std::invalid_argument("render: a light's channel is not among the channels");
}

} // namespace

/// A path under way.
struct Integrator::PathState {
    Ray ray;
    Rgb throughput{1, 1, 1};
    Rgb direct{0, 0, 0}, indirect{0, 0, 0};
    PathChannels* channels = nullptr; ///< the same by channel, when somebody asks
    PathResult result;
    int depth = 0;              ///< scattering vertices behind us, panes of glass not counted
    int panes = 0;              ///< panes of glass passed straight
    bool seen_by_camera = true; ///< only straight passes behind us
    float pdf = 0;              ///< density of the direction of `ray`
    float width = 0;            ///< metres; diameter of what `ray` stands for at its start,
    float spread = 0;           ///< and how it grows by metre (Akenine-Moeller et al., "Texture
                                ///< Level of Detail Strategies", Ray Tracing Gems, ch. 20, 2019)
    LitPoint left;              ///< the vertex that drew that direction
    bool left_first = false;    ///< it was the first
    float roughness_floor = 0;
};

/// A surface point that scatters.
struct Integrator::Vertex {
    const Hit& hit;
    const Bsdf& bsdf;
    LitPoint lit; ///< the same as placed lights see it
};

Integrator::Integrator(const Accel& accel, const Scene& scene, const RenderSettings& settings)
  : accel_(accel)
  , looks_(scene, accel.textures())
  , light_(scene.environment, scene.ground.has_value())
  , placed_(scene, accel)
  , camera_(scene.camera, settings.width, settings.height)
  , filter_(settings.filter_radius)
  , settings_(settings)
  , fade_distance_(std::max(1500.0f, 40 * accel.bounds().radius())) {
    check_channels(settings.light, scene);
    const SceneBounds& bounds = accel.bounds();
    const float radius = 1.01f * bounds.radius() + 0.01f;
    const float elevation = scene.ground ? scene.ground->elevation : bounds.low.z;
    stepped_back_ =
        camera_.step_back((bounds.low + bounds.high) * 0.5f, radius, elevation + 0.01f * radius);
    if (settings.clamp_factor > 0) {
        const float relative = settings.clamp_factor * light_.white_radiance();
        settings_.clamp = settings.clamp > 0 ? std::min(settings.clamp, relative) : relative;
    }
}

PathResult Integrator::trace_sample(int x, int y, std::uint32_t sample,
                                    PathChannels* channels) const {
    Sampler sampler(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), sample,
                    settings_.seed);
    const Vec2 offset = filter_.sample(sampler.next_2d());
    return trace_path(camera_.generate(static_cast<float>(x) + 0.5f + offset.x,
                                       static_cast<float>(y) + 0.5f + offset.y),
                      sampler, channels);
}

PathResult Integrator::trace_path(Ray ray, Sampler& sampler, PathChannels* channels) const {
    PathState state;
    state.ray = ray;
    state.width = sample_share * camera_.pixel_width();
    state.spread = sample_share * camera_.pixel_spread();
    if (channels && !settings_.light.channels.empty()) {
        *channels = {};
        state.channels = channels;
    }
    while (step(state, sampler)) {
    }
    PathResult& result = state.result;
    const float most = max_component(state.indirect);
    const bool clamped = settings_.clamp > 0 && most > settings_.clamp;
    const float scale = clamped ? settings_.clamp / most : 1;
    if (clamped)
        state.indirect = state.indirect * scale;
    result.radiance = state.direct + state.indirect;
    const bool usable = is_finite(result.radiance);
    if (!usable)
        result.radiance = {0, 0, 0};
    if (state.channels)
        finish_channels(state, usable ? scale : 0);
    return result;
}

/// Books light that reaches the camera over `depth` scattering vertices.
void Integrator::add(PathState& state, Rgb light, int depth) const {
    (depth <= 1 ? state.direct : state.indirect) += light;
}

/// Tells whose light it was that `add` has booked.
void Integrator::add_to_channel(PathState& state, int channel, Rgb light, int depth) const {
    if (!state.channels)
        return;
    PathChannels& channels = *state.channels;
    (depth <= 1 ? channels.radiance : channels.indirect)[static_cast<std::size_t>(channel)] +=
        light;
}

/// Takes the clamp into the channels; scale 0 drops a path that came to no number.
void Integrator::finish_channels(PathState& state, float indirect_scale) const {
    PathChannels& channels = *state.channels;
    for (std::size_t i = 0; i < settings_.light.channels.size(); ++i) {
        channels.radiance[i] += channels.indirect[i] * indirect_scale;
        if (indirect_scale == 0 || !is_finite(channels.radiance[i]))
            channels.radiance[i] = {0, 0, 0};
    }
}

/// Follows the ray to the next surface; false when the path has ended.
bool Integrator::step(PathState& state, Sampler& sampler) const {
    Hit hit;
    const bool found = accel_.intersect(state.ray, hit);
    if (placed_.has_surfaces() && !meet_lights(state, found ? hit.distance : infinity))
        return false;
    if (!found) {
        add_escaped(state);
        return false;
    }
    if (hit.mesh == Hit::ground_mesh && !fade_ground(state, hit))
        return false;
    sampler.set_dimension(camera_pairs +
                          static_cast<std::uint32_t>(state.depth + state.panes) * pairs_per_bounce);
    state.width += state.spread * hit.distance;
    Material with_pictures;
    DecalGlow glow;
    const Material& material =
        looks_.at(hit, state.ray.direction, state.width, with_pictures, glow);
    const Vec3 outgoing = -state.ray.direction;
    const Bsdf bsdf(material, hit.shading_normal, outgoing, state.roughness_floor);
    if (state.depth == 0 && state.panes == 0) {
        PathResult& r = state.result;
        if (hit.mesh != Hit::ground_mesh)
            r.alpha = 1;
        r.albedo = bsdf.albedo();
        r.normal = hit.shading_normal;
        r.depth = hit.distance - stepped_back_;
    }
    if (!is_black(material.emission))
        add_emission(state, hit, material);
    add_decal_light(state, glow);
    if (material.is_lamp && !state.seen_by_camera && mirror_share(state.pdf) == 0) {
        state.ray = {accel_.leave(hit, state.ray.direction), state.ray.direction};
        return ++state.panes <= most_panes;
    }
    if (state.depth >= settings_.max_bounces)
        return false;
    const bool both_sides = material.translucency > 0;
    const Vertex vertex{hit, bsdf, {hit.position, both_sides ? Vec3{0, 0, 0} : hit.shading_normal}};
    add_direct_light(state, vertex, sampler);
    if (!placed_.empty())
        add_placed_lights(state, vertex, sampler);
    return scatter(state, vertex, sampler);
}

/// What decals on the surface give, found by chance only.
void Integrator::add_decal_light(PathState& state, const DecalGlow& glow) const {
    for (int i = 0; i < glow.count; ++i) {
        const DecalGlow::Part& part = glow.parts[static_cast<std::size_t>(i)];
        const Rgb light = state.throughput * part.radiance;
        add(state, light, state.depth);
        add_to_channel(state, part.channel, light, state.depth);
    }
}

/// Light of sun and sky behind the last surface, weighted against add_direct_light.
void Integrator::add_escaped(PathState& state) const {
    const Vec3 d = state.ray.direction;
    const ChannelSettings& channels = settings_.light;
    if (state.seen_by_camera) {
        add(state, state.throughput * light_.background(d), 0);
        if (state.channels) {
            const Rgb disc = light_.visible_sun(d);
            add_to_channel(state, channels.sun, state.throughput * disc, 0);
            add_to_channel(state, channels.sky, state.throughput * light_.visible_sky(d), 0);
        }
        return;
    }
    Rgb sky{0, 0, 0}, sun{0, 0, 0};
    if (light_.has_sky())
        sky = light_.sky_radiance(d) * power_heuristic(state.pdf, light_.sky_pdf(d));
    const float sun_pdf = light_.sun_pdf(d);
    if (sun_pdf > 0)
        sun = light_.sun_radiance(d) * power_heuristic(state.pdf, sun_pdf);
    add(state, state.throughput * (sky + sun), state.depth);
    add_to_channel(state, channels.sky, state.throughput * sky, state.depth);
    add_to_channel(state, channels.sun, state.throughput * sun, state.depth);
}

/// Lets far ground fade into the haze over the horizon, as air does. False when nothing is left.
bool Integrator::fade_ground(PathState& state, const Hit& hit) const {
    const float stepped_back = state.seen_by_camera ? stepped_back_ : 0;
    const float way = std::max(hit.distance - stepped_back, 0.0f) / fade_distance_;
    const float clear = std::exp(-way * way);
    const bool first = state.depth == 0 && state.panes == 0;
    if (first)
        state.result.alpha = clear;
    if (clear > 0.999f)
        return true;
    const Rgb haze = state.seen_by_camera ? light_.backdrop(state.ray.direction)
                                          : light_.haze(state.ray.direction);
    const Rgb light = state.throughput * haze * (1 - clear);
    add(state, light, state.depth);
    add_to_channel(state, settings_.light.sky, light, state.depth);
    state.throughput *= Rgb{1, 1, 1} * clear;
    return clear > 0.001f;
}

/// Light of sun and sky at the vertex. What the camera sees directly gets a shadow ray to each;
/// behind that a fair coin picks one of the two, at half the cost and hardly more noise.
void Integrator::add_direct_light(PathState& state, const Vertex& vertex, Sampler& sampler) const {
    Vec2 u_sun = sampler.next_2d();
    const Vec2 u_sky = sampler.next_2d();
    Rgb sun{0, 0, 0}, sky{0, 0, 0};
    if (state.depth == 0) {
        sun = light_from(light_.sample_sun(u_sun), vertex);
        sky = light_from(light_.sample_sky(u_sky), vertex);
    } else if (u_sun.x < 0.5f) {
        u_sun.x *= 2; // what the coin left of the number is as evenly spread as before
        sun = 2 * light_from(light_.sample_sun(u_sun), vertex);
    } else {
        sky = 2 * light_from(light_.sample_sky(u_sky), vertex);
    }
    add(state, state.throughput * (sun + sky), state.depth + 1);
    add_to_channel(state, settings_.light.sun, state.throughput * sun, state.depth + 1);
    add_to_channel(state, settings_.light.sky, state.throughput * sky, state.depth + 1);
}

/// True where a leaf's shading normal and its face disagree on which side of it a direction lies.
/// Such light would show on the wrong side; of other surfaces it stays, as they are mostly closed.
bool Integrator::is_split(const Vertex& vertex, Vec3 direction) {
    return vertex.bsdf.is_translucent() && (dot(direction, vertex.hit.geometric_normal) > 0) !=
                                               (dot(direction, vertex.hit.shading_normal) > 0);
}

/// One light sample's contribution: value, density, then the shadow ray, cheapest first.
Rgb Integrator::light_from(const LightSample& light, const Vertex& vertex) const {
    if (light.pdf <= 0)
        return {0, 0, 0};
    float bsdf_pdf = 0;
    const Rgb value = vertex.bsdf.evaluate(light.direction, bsdf_pdf);
    if (is_black(value) || is_split(vertex, light.direction))
        return {0, 0, 0};
    const Ray shadow{accel_.leave(vertex.hit, light.direction), light.direction};
    const Rgb passed = accel_.transmittance(shadow);
    return value * light.radiance * passed * (power_heuristic(light.pdf, bsdf_pdf) / light.pdf);
}

/// A glowing surface on the ray, weighted against add_placed_lights.
void Integrator::add_emission(PathState& state, const Hit& hit, const Material& material) const {
    Rgb glow = state.throughput * material.emission;
    if (!state.seen_by_camera)
        glow = glow * (material.is_lamp
                           ? mirror_share(state.pdf)
                           : power_heuristic(state.pdf,
                                             placed_.density(state.left, state.left_first, hit)));
    add(state, glow, state.depth);
    add_to_channel(state, material.light_channel, glow, state.depth);
}

/// Placed lights between the ray's start and the next surface. The camera sees the nearest that
/// is visible, and the path ends there: false. To all other rays lights are as clear as to shadow
/// rays: they give what they give, and the path goes on.
bool Integrator::meet_lights(PathState& state, float distance) const {
    Ray ray = state.ray;
    ray.t_max = std::min(ray.t_max, distance);
    if (!state.seen_by_camera) {
        placed_.for_each_passed(ray,
                                [&](const PassedLight& light) { add_passed_light(state, light); });
        return true;
    }
    PassedLight nearest;
    placed_.for_each_passed(ray, [&](const PassedLight& light) {
        const bool nearer = nearest.light < 0 || light.distance < nearest.distance ||
                            (light.distance == nearest.distance && light.light < nearest.light);
        if (light.visible && nearer)
            nearest = light;
    });
    if (nearest.light < 0)
        return true;
    if (state.panes == 0) {
        PathResult& r = state.result;
        r.alpha = 1;
        r.albedo = {1, 1, 1};
        r.normal = -ray.direction;
        r.depth = nearest.distance - stepped_back_;
    }
    const Rgb glow = state.throughput * nearest.radiance;
    add(state, glow, state.depth);
    add_to_channel(state, nearest.channel, glow, state.depth);
    return false;
}

void Integrator::add_passed_light(PathState& state, const PassedLight& light) const {
    if (!light.casts_shadows) // its samples are not stopped by what stops the ray
        return;
    const Vec3 point = state.ray.origin + state.ray.direction * light.distance;
    const float density = placed_.density(state.left, state.left_first, light, point);
    const float seen = light.visible ? 1 : 1 - mirror_share(state.pdf);
    const Rgb glow =
        state.throughput * light.radiance * (seen * power_heuristic(state.pdf, density));
    add(state, glow, state.depth);
    add_to_channel(state, light.channel, glow, state.depth);
}

/// Light of placed lights and glowing faces at the vertex.
void Integrator::add_placed_lights(PathState& state, const Vertex& vertex, Sampler& sampler) const {
    Sampler numbers = sampler;
    numbers.set_dimension(light_pairs + static_cast<std::uint32_t>(state.depth + state.panes) *
                                            light_pairs_per_bounce);
    const bool first = state.depth == 0;
    const float choice = numbers.next_1d();
    const int count = placed_.sample_count(first);
    for (int i = 0; i < count; ++i) {
        const PlacedSample light = placed_.sample(vertex.lit, first, i, choice, numbers.next_2d());
        if (is_black(light.light))
            continue;
        const Rgb got = state.throughput * light_from(light, vertex);
        add(state, got, state.depth + 1);
        add_to_channel(state, light.channel, got, state.depth + 1);
    }
}

Rgb Integrator::light_from(const PlacedSample& light, const Vertex& vertex) const {
    float bsdf_pdf = 0;
    const Rgb value = vertex.bsdf.evaluate(light.direction, bsdf_pdf);
    if (is_black(value) || is_split(vertex, light.direction))
        return {0, 0, 0};
    float weight = light.density > 0 ? power_heuristic(light.density, bsdf_pdf) : 1;
    if (!light.visible || light.density <= 0)
        weight *= 1 - mirror_share(bsdf_pdf);
    const Rgb got = value * light.light * weight;
    return light.casts_shadows ? got * way_to(light, vertex) : got;
}

/// The share of a light that comes through to a vertex.
Rgb Integrator::way_to(const PlacedSample& light, const Vertex& vertex) const {
    Ray shadow{accel_.leave(vertex.hit, light.direction), light.direction};
    if (light.distant)
        return accel_.transmittance(shadow);
    const Vec3 to = light.point - shadow.origin;
    const float distance = length(to);
    if (!(distance > 0))
        return {1, 1, 1};
    shadow.direction = to / distance;
    shadow.t_max = distance * (1 - light_gap);
    const Rgb passed = accel_.transmittance(shadow);
    if (light.face < 0 || is_black(passed))
        return passed;
    // of faces in one plane only one is seen, and shines; decals cover part of its light
    Hit seen;
    const Ray rest{shadow.origin + shadow.direction * shadow.t_max, shadow.direction,
                   4 * light_gap * distance};
    if (!accel_.intersect(rest, seen) || !placed_.is_face(light.face, seen))
        return {0, 0, 0};
    Material with_pictures;
    DecalGlow glow;
    const Rgb emission = looks_.at(seen, rest.direction, 0, with_pictures, glow).emission;
    return passed * (max_component(emission) / max_component(placed_.face_radiance(light.face)));
}

/// Draws the next direction and plays Russian roulette; false when the path has ended.
bool Integrator::scatter(PathState& state, const Vertex& vertex, Sampler& sampler) const {
    const Vec2 choice = sampler.next_2d(), u = sampler.next_2d();
    const BsdfSample sample = vertex.bsdf.sample(choice.x, u);
    if (sample.pdf <= 0 || is_black(sample.weight))
        return false;
    const bool inwards = dot(sample.direction, vertex.hit.geometric_normal) <= 0;
    if (inwards != sample.beyond && !sample.straight)
        return false;
    state.throughput *= sample.weight;
    if (sample.straight) {
        if (++state.panes > most_panes)
            return false;
    } else {
        state.left = vertex.lit;
        state.left_first = state.depth == 0;
        ++state.depth;
        state.seen_by_camera = false;
        state.pdf = sample.pdf;
        state.spread += spread_of_unit_density / std::sqrt(std::max(sample.pdf, 0.05f));
        if (settings_.clamp > 0 && sample.pdf < 10)
            state.roughness_floor = blurred_roughness;
    }
    if (state.depth >= roulette_from) {
        const float survive = std::clamp(max_component(state.throughput), 0.05f, 0.95f);
        if (choice.y >= survive)
            return false;
        state.throughput = state.throughput / survive;
    }
    state.ray = {accel_.leave(vertex.hit, sample.direction), sample.direction};
    return true;
}

} // namespace renderer
