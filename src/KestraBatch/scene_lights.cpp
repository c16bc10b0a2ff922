// Placed lights and their lamps.
#include "KestraBatch/scene_lights.h"

#include "KestraBatch/color.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <utility>

namespace KestraBatch {

namespace {

using renderer::Light;
using renderer::Rgb;
using renderer::Vec3;

constexpr double pi = std::numbers::pi;
constexpr double unit = 683;         // candela and lux to the renderer's unit
constexpr double host_unit = 0.3048; // of the files of lights that a drawing's host placed
/// A spot without a size is taken for a reflector of this radius, in metres: edges of shadows that
/// no lamp gives look drawn.
constexpr float reflector_radius = 0.03f;
constexpr const char* usual_folder = ".\\QorBatch_Lights";

Vec3 vector_of(const CTsVector& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

/// Linear factors that leave the luminance as it is; black for a black colour.
Rgb tint_of(const CTsColor& color) {
    const Rgb linear{linear_from_srgb(color.r), linear_from_srgb(color.g),
                     linear_from_srgb(color.b)};
    const float light = renderer::luminance(linear);
    return light > 0 ? linear / light : Rgb{0, 0, 0};
}

double metres_of(double coordinate, const CTsLight& light, const LightFrame& frame) {
    return light.m_HostUnits ? coordinate / host_unit * frame.view_scale : coordinate;
}

Vec3 position_of(const CTsLight& light, const LightFrame& frame) {
    const auto place = [&](double coordinate, double center) {
        return static_cast<float>(metres_of(coordinate, light, frame) - center);
    };
    const CTsPoint& p = light.m_Location;
    return {place(p.x, frame.center.x), place(p.y, frame.center.y), place(p.z, frame.center.z)};
}

/// What shines, when it has a size; else a point.
Light::Kind surface_of(const CTsLight& light) {
    const bool round = light.m_Radius > 0;
    switch (light.m_Geometry) {
    case CTsGeometry::disc:
        return round ? Light::Kind::disc : Light::Kind::point;
    case CTsGeometry::rectangle:
        return light.m_Length > 0 && light.m_Width > 0 ? Light::Kind::rectangle
                                                       : Light::Kind::point;
    case CTsGeometry::tube:
        return round && light.m_Length > 0 ? Light::Kind::tube : Light::Kind::point;
    case CTsGeometry::sphere:
        return round ? Light::Kind::sphere : Light::Kind::point;
    default:
        return Light::Kind::point;
    }
}

/// Square metres of a surface.
double area_of(const CTsLight& light, Light::Kind kind) {
    const double r = light.m_Radius;
    return kind == Light::Kind::disc        ? pi * r * r
           : kind == Light::Kind::rectangle ? light.m_Length * light.m_Width
           : kind == Light::Kind::tube      ? 2 * pi * r * light.m_Length
                                            : 4 * pi * r * r;
}

/// Radius of a disc that softens shadows as the light's surface does.
float softness_of(const CTsLight& light) {
    const Light::Kind kind = surface_of(light);
    return kind == Light::Kind::rectangle ? static_cast<float>(std::sqrt(area_of(light, kind) / pi))
                                          : static_cast<float>(light.m_Radius);
}

/// The web over a whole turn. Mirrored angles are told one by one: between them nothing bends.
renderer::PhotometricWeb web_of(const CTsPhotometricWeb& from) {
    renderer::PhotometricWeb web;
    web.vertical = from.m_Vertical;
    std::vector<float> angles;
    for (const float angle : from.m_Horizontal) {
        for (const double a : {double{angle}, 2 * pi - angle, pi - angle, pi + angle}) {
            angles.push_back(static_cast<float>(a - 2 * pi * std::floor(a / (2 * pi))));
        }
    }
    if (from.m_Horizontal.size() < 2) {
        angles = {0};
    }
    std::sort(angles.begin(), angles.end());
    for (const float angle : angles) {
        const bool new_one = web.horizontal.empty() || angle - web.horizontal.back() > 1e-4f;
        if (new_one && angle < static_cast<float>(2 * pi) - 1e-4f) {
            web.horizontal.push_back(angle);
        }
    }
    for (const float v : web.vertical) {
        for (const float h : web.horizontal) {
            web.values.push_back(static_cast<float>(from.Candela(v, h)));
        }
    }
    return web;
}

/// Candela by the cosine to the direction, 1 along it: a source too small to have a surface.
renderer::PhotometricWeb cosine_web() {
    renderer::PhotometricWeb web;
    web.horizontal = {0};
    for (int i = 0; i <= 90; ++i) {
        web.vertical.push_back(static_cast<float>(i * pi / 180));
        web.values.push_back(static_cast<float>(std::max(0.0, std::cos(i * pi / 180))));
    }
    return web;
}

int add_web(std::vector<renderer::PhotometricWeb>& webs, renderer::PhotometricWeb web) {
    webs.push_back(std::move(web));
    return static_cast<int>(webs.size()) - 1;
}

/// Fills in kind and sizes; returns the luminance of the intensity in candela, candela a square
/// metre, or lux, as the kind asks.
double shape_light(const CTsLight& light, Light& out, std::vector<renderer::PhotometricWeb>& webs) {
    const double sphere = 4 * pi;
    out.radius = softness_of(light);
    // The host's measured lights are kept as parallel ones; their web tells them apart.
    const bool host_web = light.m_Distribution == CTsDistribution::parallel && !light.m_Web.Empty();
    if (host_web) {
        out.web = add_web(webs, web_of(light.m_Web));
        return 1;
    }
    const bool has_web = light.m_Distribution == CTsDistribution::web && !light.m_Web.Empty();
    if (light.m_Distribution == CTsDistribution::parallel ||
        light.m_Geometry == CTsGeometry::infinite) {
        out.kind = Light::Kind::distant;
        return light.m_Flux / sphere;
    }
    if (light.m_Distribution == CTsDistribution::spot) {
        out.kind = Light::Kind::spot;
        out.radius = std::max(out.radius, reflector_radius);
        out.beam = static_cast<float>(light.m_Beam);
        out.field = static_cast<float>(light.m_Field);
        return light.m_Flux / sphere;
    }
    if (has_web) {
        const double own = light.m_Web.Flux();
        out.web = add_web(webs, web_of(light.m_Web));
        return light.m_Flux > 0 && own > 0 ? light.m_Flux / own : 1;
    }
    out.kind = surface_of(light);
    if (out.kind == Light::Kind::point) {
        const bool cosine = light.m_Distribution == CTsDistribution::diffuse;
        out.web = cosine ? add_web(webs, cosine_web()) : -1;
        return light.m_Flux / (cosine ? pi : sphere);
    }
    out.length = static_cast<float>(light.m_Length);
    out.width = static_cast<float>(light.m_Width);
    return light.m_Flux / (pi * area_of(light, out.kind));
}

// ---- lamps ----

double length_of(const Triple& t) { return std::hypot(t.x, t.y, t.z); }

double mesh_area(const StreamModel& model, const MeshRecord& mesh, double metres) {
    double area = 0;
    for (std::size_t i = 0; i < mesh.triangle_count; ++i) {
        const auto& t = model.triangles[mesh.first_triangle + i];
        const auto at = [&](std::size_t k) { return model.positions[mesh.first_vertex + t[k]]; };
        const Triple o = at(0), p = at(1), q = at(2);
        const Triple a{p.x - o.x, p.y - o.y, p.z - o.z}, b{q.x - o.x, q.y - o.y, q.z - o.z};
        const double size =
            length_of({a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x});
        area += std::isfinite(size) ? 0.5 * size : 0;
    }
    return area * metres * metres;
}

/// What a lamp shows of its light.
struct Glow {
    double lumens = 0;
    Rgb tint{1, 1, 1};
    int channel = 0;
};

double lumens_of(const CTsLight& light) {
    return light.m_Flux > 0 || light.m_Web.Empty() ? light.m_Flux : light.m_Web.Flux();
}

/// Gives the meshes of lights that shine surfaces of their own, which glow as bright as the whole
/// of a light's lamp must to send its flux.
void light_lamps(const StreamModel& model, const std::map<int, Glow>& glows,
                 SceneDescription& scene) {
    std::map<int, double> areas;
    for (const MeshRecord& mesh : model.meshes) {
        if (!mesh.invisible && glows.contains(mesh.lamp)) {
            areas[mesh.lamp] += mesh_area(model, mesh, scene.metres_per_coordinate);
        }
    }
    std::map<std::pair<int, std::uint32_t>, std::uint32_t> surfaces;
    for (std::size_t i = 0; i < model.meshes.size(); ++i) {
        const int number = model.meshes[i].lamp;
        const auto glow = glows.find(number);
        if (glow == glows.end() || !(areas[number] > 0)) {
            continue;
        }
        const auto [at, added] = surfaces.try_emplace(
            {number, scene.mesh_surface[i]}, static_cast<std::uint32_t>(scene.surfaces.size()));
        if (added) {
            renderer::Material lamp = scene.surfaces[scene.mesh_surface[i]];
            lamp.is_lamp = true;
            lamp.emission = glow->second.tint *
                            static_cast<float>(glow->second.lumens / (pi * areas[number] * unit));
            lamp.light_channel = glow->second.channel;
            scene.surfaces.push_back(lamp);
        }
        scene.mesh_surface[i] = at->second;
    }
}

/// Largest radiant intensity of a light; irradiance of a distant one.
float strength_of(const renderer::Scene& scene, const Light& light) {
    float strength = renderer::luminance(light.intensity);
    switch (light.kind) {
    case Light::Kind::disc:
    case Light::Kind::sphere:
        strength *= static_cast<float>(pi) * light.radius * light.radius;
        break;
    case Light::Kind::rectangle:
        strength *= light.length * light.width;
        break;
    case Light::Kind::tube:
        strength *= 2 * light.radius * light.length;
        break;
    default:
        break;
    }
    if (light.web >= 0) {
        const auto& values = scene.webs[static_cast<std::size_t>(light.web)].values;
        strength *= values.empty() ? 0 : *std::max_element(values.begin(), values.end());
    }
    return strength;
}

} // namespace

std::optional<Light> make_light(const CTsLight& light, const LightFrame& frame,
                                std::vector<renderer::PhotometricWeb>& webs) {
    const Rgb tint = tint_of(light.m_Color);
    if (!light.m_On || light.m_Distribution == CTsDistribution::daylight ||
        !(renderer::max_component(tint) > 0) || !(lumens_of(light) > 0)) {
        return std::nullopt;
    }
    Light out;
    out.position = position_of(light, frame);
    out.direction = vector_of(light.m_Direction);
    out.x_axis = vector_of(light.m_XAxis);
    out.casts_shadows = light.m_CastsShadows;
    out.visible = light.m_Visible;
    out.channel = light.m_Channel;
    out.intensity = tint * static_cast<float>(shape_light(light, out, webs) / unit);
    return out;
}

void add_lights(const StreamModel& model, const Parameters& params, bool on,
                SceneDescription& scene, WarningList& warnings) {
    if (model.lights.empty()) {
        return;
    }
    if (!on) {
        warnings.add("lights-off", std::to_string(model.lights.size()) +
                                       " lights stand in the drawing, but artificial lighting is "
                                       "off (bks_artificial_lighting): they give no light");
        return;
    }
    const auto folder =
        params.resolve(params.light_folder.empty() ? usual_folder : params.light_folder);
    const std::string stream = params.resolve(params.geometry_file).string();
    const LightFrame frame{scene.center, scene.view.view_scale};
    std::map<int, Glow> glows;
    for (const LightRecord& record : model.lights) {
        const auto file = folder / ("light_" + std::to_string(record.number) + ".xml");
        std::string error;
        const auto light = CTsLight::ReadFile(file.string(), error);
        if (!light) {
            warnings.add("light-unreadable", ReadError::where(stream, record.line) + "light " +
                                                 std::to_string(record.number) +
                                                 " is left out: " + error);
            continue;
        }
        if (const auto shape = make_light(*light, frame, scene.webs)) {
            scene.lights.push_back(*shape);
            glows[record.number] = {lumens_of(*light), tint_of(light->m_Color), light->m_Channel};
        }
    }
    light_lamps(model, glows, scene);
}

float lamp_clamp(const renderer::Scene& scene, float limit) {
    constexpr float times = 8, distance = 2;
    constexpr std::size_t most_places = 64;
    const renderer::Environment& e = scene.environment;
    const bool outside = e.sky || e.sun || renderer::max_component(e.constant) > 0;
    if (outside || scene.lights.empty()) {
        return limit;
    }
    std::vector<float> strengths;
    for (const Light& light : scene.lights) {
        strengths.push_back(strength_of(scene, light));
    }
    float brightest = 0; // irradiance two metres in front of a light
    const std::size_t step = (scene.lights.size() + most_places - 1) / most_places;
    for (std::size_t i = 0; i < scene.lights.size(); i += step) {
        const Vec3 place = scene.lights[i].position + scene.lights[i].direction * distance;
        float sum = 0;
        for (std::size_t k = 0; k < strengths.size(); ++k) {
            const Vec3 to = scene.lights[k].position - place;
            const bool far = scene.lights[k].kind == Light::Kind::distant;
            sum += strengths[k] / (far ? 1 : std::max(dot(to, to), distance * distance));
        }
        brightest = std::max(brightest, sum);
    }
    return brightest > 0 ? std::min(limit, times * brightest / static_cast<float>(pi)) : limit;
}

} // namespace KestraBatch
