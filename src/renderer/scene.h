// The scene that a caller hands over: plain data, no behaviour. World frame: right-handed, Z up,
// metres, with the scene near its own origin (callers subtract a double-precision centre first).
#pragma once

#include "renderer/light.h"
#include "renderer/vec.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace renderer {

/// One indexed triangle mesh. All triangles share one material.
struct Mesh {
    std::vector<Vec3> positions;                         ///< metres
    std::vector<Vec3> normals;                           ///< empty, or one unit vector a position
    std::vector<Vec2> uvs;                               ///< empty, or one a position
    std::vector<std::array<std::uint32_t, 3>> triangles; ///< indices into positions
    std::uint32_t material = 0;                          ///< index into Scene::materials
    /// Where faces of several meshes lie in one plane, the mesh of the lowest order is seen. Meshes
    /// of the scene without one come behind all others, in their own order; those of a prototype
    /// take no part.
    static constexpr std::uint32_t no_order = 0xffffffffu;
    std::uint32_t order = no_order; ///< below 2^31
};

/// A surface: a diffuse base under a dielectric coat (GGX), or a metal, or thin/solid glass.
/// Every surface is two-sided.
struct Material {
    Rgb base_color{0.7f, 0.7f, 0.7f}; ///< linear reflectance, each channel 0 to 1
    float roughness = 0.6f;           ///< 0 mirror to 1 (perceptual; alpha is its square)
    float metallic = 0.0f;            ///< 0 dielectric, 1 metal
    float specular = 0.5f;            ///< dielectric reflectance scale, 0.5 is index 1.5
    float transmission = 0.0f;        ///< share of light that passes a thin pane, 0 to 1
    float ior = 1.5f;
    float translucency =
        0;                 ///< share of the diffuse light that leaves on the far side, as leaves do
    int texture = -1;      ///< index into Scene::textures: replaces base_color; needs uvs
    bool cut_out = false;  ///< the texture's alpha says how much of the surface is there
    Rgb emission{0, 0, 0}; ///< radiance to both sides
    /// Belongs to a Light of its own: the camera and mirrors see its emission, but it gives no
    /// light beside that light's, and takes none away.
    bool is_lamp = false;
    int light_channel = 0; ///< of the emission; index into ChannelSettings::channels
};

/// A picture file on surfaces, in display values. Its lower left corner is (0, 0) in uv, its upper
/// right one (1, 1).
struct Texture {
    std::string file;
    bool repeat = true; ///< else transparent outside 0 to 1
    float white = 1;    ///< linear reflectance of the picture's white
};

/// A picture laid onto whatever surface lies in its box: from `origin`, the picture's lower left
/// corner, along both axes, and `depth` to each side of their plane. It covers meshes, ground and
/// the instances that take decals; shadow rays through glass know nothing of it. It covers the glow
/// of what is below it.
struct Decal {
    Vec3 origin{0, 0, 0};
    Vec3 x_axis{1, 0, 0}, y_axis{0, 1, 0}; ///< metres; the whole picture
    float depth = 0.05f;
    std::uint32_t texture = 0;
    float opacity = 1;
    Rgb emission{0, 0, 0};   ///< radiance where the picture is white
    bool both_sides = false; ///< else only faces that look along x_axis cross y_axis
    int light_channel = 0;
};

/// Meshes that stand in several places, kept once.
struct Prototype {
    std::vector<Mesh> meshes;
};
struct Instance {
    std::uint32_t prototype = 0;
    /// Rows of a 3 by 4 matrix, prototype to scene: rotation with one scale for all axes, or a
    /// mirror of it.
    std::array<std::array<float, 4>, 3> transform{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    bool takes_decals = false;
};

/// The sun as a disc of uniform radiance.
struct Sun {
    Vec3 direction{0, 0, 1}; ///< unit vector from the scene towards the sun
    float angular_diameter_degrees = 0.53f;
    float intensity = 1.0f; ///< factor on the physical irradiance
};

/// A clear physical sky for the sun's position, computed once per render.
struct PhysicalSky {
    Vec3 sun_direction{0, 0, 1}; ///< unit vector towards the sun, also when the disc is off
    float turbidity = 2.5f;      ///< 1.7 very clear to 10 hazy
    float intensity = 1.0f;      ///< factor on the physical radiance
    float saturation = 1.0f;     ///< 0 grey, 1 as computed
    Rgb ground_albedo{0.25f, 0.25f, 0.25f};
};

/// The environment: a physical sky, or one constant radiance, or black.
struct Environment {
    std::optional<PhysicalSky> sky;
    std::optional<Sun> sun;
    Rgb constant{0, 0, 0};
    bool visible = true; ///< seen by camera rays; when off they see `background`
    Rgb background{0, 0, 0};
};

/// An endless horizontal plane. It receives light and shadow like any surface.
struct GroundPlane {
    float elevation = 0; ///< world z in metres
    std::uint32_t material = 0;
};

struct Camera {
    enum class Projection { perspective, parallel };
    Projection projection = Projection::perspective;
    Vec3 eye{0, -10, 2};
    Vec3 target{0, 0, 0}; ///< a parallel view also shows what lies behind the eye
    Vec3 up{0, 0, 1};
    float vertical_fov_degrees = 40; ///< perspective: full angle over the picture's height
    float view_height = 10;          ///< parallel: metres over the picture's height
    Vec2 lens_shift{0, 0};           ///< shift of the picture in heights, for upright verticals
};

struct Scene {
    std::vector<Mesh> meshes;
    std::vector<Prototype> prototypes;
    std::vector<Instance> instances;
    std::vector<Material> materials; ///< at least one
    std::vector<Texture> textures;
    std::vector<Decal> decals; ///< later ones lie over earlier ones
    std::vector<Light> lights;
    std::vector<PhotometricWeb> webs;
    Environment environment;
    std::optional<GroundPlane> ground;
    Camera camera;
};

/// A channel of light: what people call it, and its number in the settings.
struct ChannelLabel {
    std::string name;
    int number = 0;
};

/// Which light is kept apart. A light's channel is an index into `channels`.
struct ChannelSettings {
    std::vector<ChannelLabel> channels; ///< most_channels at most; none: light is not kept apart
    int sun = 0;
    int sky = 0; ///< and whatever else the environment gives
};

struct RenderSettings {
    int width = 1200;
    int height = 800;
    int passes = 20;          ///< at least 1
    int samples_per_pass = 4; ///< paths a pixel in one pass
    double max_seconds = 0;   ///< 0 means no limit; tested between tiles of a pass
    std::uint32_t seed = 1;
    int threads = 0; ///< 0 means all cores
    int max_bounces = 12;
    float clamp = 0; ///< radiance limit of an indirect sample; 0 is unbiased
    /// The same limit as a multiple of what a white wall shows in full sun and sky; the smaller of
    /// both holds. 2 to 5 stops fireflies at little loss; 0 is off.
    float clamp_factor = 0;
    float filter_radius = 1.5f; ///< pixels, Blackman-Harris
    bool resume = false;        ///< goes on from the passes that the film holds, if its size fits
    ChannelSettings light;      ///< costs nothing without channels, and a little for each
};

} // namespace renderer
