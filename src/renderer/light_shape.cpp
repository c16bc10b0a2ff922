// One placed light by itself.
#include "renderer/light_shape.h"

#include "renderer/sampling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace renderer {

namespace {

using Kind = Light::Kind;

bool is_size(float x) { return std::isfinite(x) && x > 0; }

/// Area of the shining surface; 0 for kinds without one, nothing for a surface without size.
std::optional<float> surface_area(const Light& light) {
    const float r = light.radius;
    switch (light.kind) {
    case Kind::disc:
        return is_size(r) ? std::optional(pi * r * r) : std::nullopt;
    case Kind::rectangle:
        return is_size(light.length) && is_size(light.width)
                   ? std::optional(light.length * light.width)
                   : std::nullopt;
    case Kind::sphere:
        return is_size(r) ? std::optional(4 * pi * r * r) : std::nullopt;
    case Kind::tube:
        return is_size(r) && is_size(light.length) ? std::optional(2 * pi * r * light.length)
                                                   : std::nullopt;
    default:
        return 0.0f;
    }
}

/// Density over the solid angle of one over an area, for a direction that meets it at `cosine`.
float area_to_angle(float density, float square_distance, float cosine) {
    return cosine > 0 ? density * square_distance / cosine : 0;
}

// ---- rectangles ----

/// Below it the rectangle is drawn from by area: nothing is gained by the angle, and digits lost.
constexpr double least_solid_angle = 1e-5;

/// A rectangle as a point sees it, after Urena, Fajardo and King, "An Area-Preserving
/// Parametrization for Spherical Rectangles", EGSR 2013.
struct SphericalRectangle {
    double x0, x1, y0, y1, z0; ///< edges about the point; z0 is below 0
    double b0, b1, k;
    double solid_angle;

    SphericalRectangle(const LightShape& shape, Vec3 from) {
        const Light& light = shape.light;
        const Vec3 d = light.position - from;
        const double x = dot(d, light.x_axis), y = dot(d, shape.y_axis);
        x0 = x - 0.5 * light.length, x1 = x + 0.5 * light.length;
        y0 = y - 0.5 * light.width, y1 = y + 0.5 * light.width;
        z0 = -std::fabs(double{dot(d, light.direction)});
        // normals of the planes through the edges, of which only these parts are not 0
        const auto part = [this](double edge) { return edge / std::hypot(edge, z0); };
        const double n0 = part(y0), n1 = -part(x1), n2 = -part(y1), n3 = part(x0);
        const auto angle = [](double a, double b) {
            return std::acos(std::clamp(-a * b, -1., 1.));
        };
        b0 = -n0, b1 = -n2;
        k = 2 * std::numbers::pi - angle(n2, n3) - angle(n3, n0);
        solid_angle = angle(n0, n1) + angle(n1, n2) - k;
    }
    bool is_small() const { return !(solid_angle > least_solid_angle); }

    /// Place on the rectangle's plane, in its axes about the point.
    std::array<double, 2> sample(Vec2 u) const {
        const double a = u.x * solid_angle + k;
        const double f = (std::cos(a) * b0 - b1) / std::sin(a);
        const double c =
            std::clamp(std::copysign(1 / std::sqrt(f * f + b0 * b0), f), -1 + 1e-12, 1 - 1e-12);
        const double x = std::clamp(-c * z0 / std::sqrt(1 - c * c), x0, x1);
        const double d = std::hypot(x, z0);
        const double h0 = y0 / std::hypot(d, y0), h1 = y1 / std::hypot(d, y1);
        const double h = h0 + u.y * (h1 - h0);
        const double y = h * h < 1 - 1e-12 ? h * d / std::sqrt(1 - h * h) : y1;
        return {x, std::clamp(y, y0, y1)};
    }
};

/// Height of a point over the side of a flat light that shines.
float height_over(const LightShape& shape, Vec3 from) {
    return dot(from - shape.light.position, shape.light.direction);
}

float flat_area_pdf(const LightShape& shape, Vec3 from, Vec3 point) {
    const Vec3 to = point - from;
    const float square = dot(to, to);
    return area_to_angle(1 / shape.area, square,
                         -dot(to, shape.light.direction) / std::sqrt(square));
}

ShapeSample sample_rectangle(const LightShape& shape, Vec3 from, Vec2 u) {
    if (height_over(shape, from) <= 0)
        return {};
    const Light& light = shape.light;
    const SphericalRectangle seen(shape, from);
    if (seen.is_small()) {
        const Vec3 point = light.position + light.x_axis * (light.length * (u.x - 0.5f)) +
                           shape.y_axis * (light.width * (u.y - 0.5f));
        return {point, flat_area_pdf(shape, from, point)};
    }
    const auto [x, y] = seen.sample(u);
    // from the light's own centre, which keeps the digits of a far one
    const auto across = static_cast<float>(x - 0.5 * (seen.x0 + seen.x1));
    const auto along = static_cast<float>(y - 0.5 * (seen.y0 + seen.y1));
    return {light.position + light.x_axis * across + shape.y_axis * along,
            static_cast<float>(1 / seen.solid_angle)};
}

float rectangle_pdf(const LightShape& shape, Vec3 from, Vec3 point) {
    if (height_over(shape, from) <= 0)
        return 0;
    const SphericalRectangle seen(shape, from);
    return seen.is_small() ? flat_area_pdf(shape, from, point)
                           : static_cast<float>(1 / seen.solid_angle);
}

// ---- discs ----

ShapeSample sample_flat_disc(const LightShape& shape, Vec3 from, Vec2 u) {
    if (height_over(shape, from) <= 0)
        return {};
    const Light& light = shape.light;
    const Vec2 d = sample_disc(u);
    const Vec3 point = light.position + (light.x_axis * d.x + shape.y_axis * d.y) * light.radius;
    return {point, flat_area_pdf(shape, from, point)};
}

// ---- spheres ----

/// 1 - cosine of the angular radius of a sphere; 0 from inside it.
float sphere_cone(const LightShape& shape, Vec3 from) {
    const Vec3 to = shape.light.position - from;
    const float square = dot(to, to), r = shape.light.radius;
    if (!(square > r * r * 1.00001f))
        return 0;
    const float s2 = r * r / square;
    return s2 / (1 + std::sqrt(1 - s2));
}

ShapeSample sample_sphere(const LightShape& shape, Vec3 from, Vec2 u) {
    const float cone = sphere_cone(shape, from);
    if (cone <= 0)
        return {};
    const Vec3 to = shape.light.position - from;
    const float distance = length(to), r = shape.light.radius;
    const Vec3 local = sample_cone(u, cone);
    // the nearer of the two points in that direction
    const float across2 = distance * distance * (local.x * local.x + local.y * local.y);
    const float t = distance * local.z - std::sqrt(std::max(0.0f, r * r - across2));
    return {from + Frame(to / distance).to_world(local) * t, 1 / (2 * pi * cone)};
}

// ---- tubes ----

/// What a point outside a tube sees of it: a stretch of its axis and an arc round that.
struct SeenTube {
    Vec3 across;                  ///< unit, from the axis towards the point
    float away = 0;               ///< metres from the axis to the point
    float foot = 0;               ///< of the point on the axis, metres from the tube's middle
    float angle0 = 0, angle1 = 0; ///< of the tube's ends, seen from the point
    float widest = 0;             ///< sine of half the arc that is seen
    bool seen = false;

    SeenTube(const LightShape& shape, Vec3 from) {
        const Light& light = shape.light;
        const Vec3 d = from - light.position;
        foot = dot(d, light.x_axis);
        across = d - light.x_axis * foot;
        away = length(across);
        if (!(away > light.radius * 1.00001f))
            return;
        across = across / away;
        angle0 = std::atan((-0.5f * light.length - foot) / away);
        angle1 = std::atan((0.5f * light.length - foot) / away);
        const float c = light.radius / away;
        widest = std::sqrt(1 - c * c);
        seen = angle1 > angle0;
    }
    /// Density over the tube's area, at a place along it and the cosine of its place on the arc.
    float density(float along, float cosine, float radius) const {
        const float s = along - foot;
        return away / ((angle1 - angle0) * (away * away + s * s)) * cosine / (2 * widest * radius);
    }
};

ShapeSample sample_tube(const LightShape& shape, Vec3 from, Vec2 u) {
    const SeenTube tube(shape, from);
    if (!tube.seen)
        return {};
    const Light& light = shape.light;
    const float angle = tube.angle0 + u.x * (tube.angle1 - tube.angle0);
    const float half = 0.5f * light.length;
    const float along = std::clamp(tube.foot + tube.away * std::tan(angle), -half, half);
    const float sine = tube.widest * (2 * u.y - 1), cosine = std::sqrt(1 - sine * sine);
    const Vec3 side = cross(light.x_axis, tube.across);
    const Vec3 normal = tube.across * cosine + side * sine;
    const Vec3 point = light.position + light.x_axis * along + normal * light.radius;
    const Vec3 to = from - point;
    const float square = dot(to, to);
    return {point, area_to_angle(tube.density(along, cosine, light.radius), square,
                                 dot(to, normal) / std::sqrt(square))};
}

float tube_pdf(const LightShape& shape, Vec3 from, Vec3 point) {
    const SeenTube tube(shape, from);
    if (!tube.seen)
        return 0;
    const Light& light = shape.light;
    const Vec3 d = point - light.position;
    const float along = dot(d, light.x_axis);
    const Vec3 normal = normalize(d - light.x_axis * along);
    const float cosine = dot(normal, tube.across);
    const Vec3 to = from - point;
    const float square = dot(to, to);
    return cosine > 0 ? area_to_angle(tube.density(along, cosine, light.radius), square,
                                      dot(to, normal) / std::sqrt(square))
                      : 0;
}

bool hit_tube(const LightShape& shape, const Ray& ray, float& distance) {
    const Light& light = shape.light;
    const Vec3 o = ray.origin - light.position;
    const Vec3 d = ray.direction - light.x_axis * dot(ray.direction, light.x_axis);
    const Vec3 p = o - light.x_axis * dot(o, light.x_axis);
    const float a = dot(d, d), b = dot(p, d);
    if (!(a > 1e-12f))
        return false;
    // the point of the line nearest to the axis, which keeps the digits of a far tube
    const Vec3 nearest = p - d * (b / a);
    const float rest = light.radius * light.radius - dot(nearest, nearest);
    if (rest <= 0)
        return false;
    distance = -b / a - std::sqrt(rest / a);
    const float along = dot(o + ray.direction * distance, light.x_axis);
    return distance > 0 && distance < ray.t_max && std::fabs(along) <= 0.5f * light.length;
}

bool hit_sphere(const LightShape& shape, const Ray& ray, float& distance) {
    const Vec3 o = ray.origin - shape.light.position;
    const float b = dot(o, ray.direction), r = shape.light.radius;
    const Vec3 nearest = o - ray.direction * b;
    const float rest = r * r - dot(nearest, nearest);
    if (rest <= 0)
        return false;
    distance = -b - std::sqrt(rest);
    return distance > 0 && distance < ray.t_max;
}

bool hit_flat(const LightShape& shape, const Ray& ray, float& distance) {
    const Light& light = shape.light;
    const float against = -dot(ray.direction, light.direction);
    const float height = height_over(shape, ray.origin);
    if (!(against > 0 && height > 0))
        return false;
    distance = height / against;
    if (!(distance < ray.t_max))
        return false;
    const Vec3 at = ray.origin + ray.direction * distance - light.position;
    if (light.kind == Kind::disc)
        return dot(at, at) <= light.radius * light.radius;
    return std::fabs(dot(at, light.x_axis)) <= 0.5f * light.length &&
           std::fabs(dot(at, shape.y_axis)) <= 0.5f * light.width;
}

// ---- webs ----

/// Between which of the ascending angles, and how far.
struct Place {
    std::size_t below = 0, above = 0;
    float part = 0;
};

Place place_among(const std::vector<float>& angles, float angle) {
    const auto above = std::upper_bound(angles.begin(), angles.end(), angle);
    if (above == angles.begin())
        return {};
    const auto below = static_cast<std::size_t>(above - angles.begin()) - 1;
    if (above == angles.end())
        return {below, below, 0};
    const float wide = *above - angles[below];
    return {below, below + 1, wide > 0 ? (angle - angles[below]) / wide : 0};
}

/// The same about the direction: from the last angle on towards the first.
Place place_about(const std::vector<float>& angles, float angle) {
    constexpr float turn = 2 * pi;
    if (angles.size() < 2)
        return {};
    float in_turn = std::fmod(angle - angles.front(), turn);
    in_turn = angles.front() + (in_turn < 0 ? in_turn + turn : in_turn);
    if (in_turn < angles.back())
        return place_among(angles, in_turn);
    const float wide = angles.front() + turn - angles.back();
    const std::size_t last = angles.size() - 1;
    return {last, 0, wide > 1e-6f ? clamp01((in_turn - angles.back()) / wide) : 0};
}

bool is_ascending(const std::vector<float>& angles) {
    return !angles.empty() &&
           std::all_of(angles.begin(), angles.end(), [](float a) { return std::isfinite(a); }) &&
           std::is_sorted(angles.begin(), angles.end());
}

} // namespace

std::optional<LightShape> make_light_shape(const Light& light) {
    LightShape shape;
    shape.light = light;
    Light& own = shape.light;
    const std::optional<float> area = surface_area(light);
    const float across = length(light.direction);
    if (!area || !is_finite(light.position) || !is_finite(light.intensity) ||
        !std::isfinite(across) || !(across > 0) || !std::isfinite(light.radius) ||
        !is_finite(light.x_axis))
        return std::nullopt;
    own.intensity = {std::max(light.intensity.x, 0.0f), std::max(light.intensity.y, 0.0f),
                     std::max(light.intensity.z, 0.0f)};
    own.radius = std::max(light.radius, 0.0f);
    if (!(max_component(own.intensity) > 0) || !std::isfinite(*area))
        return std::nullopt;
    own.direction = light.direction / across;
    const Vec3 x = light.x_axis - own.direction * dot(light.x_axis, own.direction);
    own.x_axis = dot(x, x) > 1e-8f ? normalize(x) : Frame(own.direction).tangent;
    shape.y_axis = cross(own.direction, own.x_axis);
    shape.area = *area;
    if (light.kind == Kind::spot) {
        if (!std::isfinite(light.beam) || !std::isfinite(light.field))
            return std::nullopt;
        own.beam = std::clamp(light.beam, 0.0f, pi);
        own.field = std::clamp(light.field, own.beam, pi);
        shape.cos_beam = std::cos(own.beam);
        shape.cos_field = std::cos(own.field);
        if (own.field <= 0)
            return std::nullopt;
    }
    return shape;
}

ShapeSample sample_shape(const LightShape& shape, Vec3 from, Vec2 u) {
    const Light& light = shape.light;
    switch (light.kind) {
    case Kind::disc:
        return sample_flat_disc(shape, from, u);
    case Kind::rectangle:
        return sample_rectangle(shape, from, u);
    case Kind::sphere:
        return sample_sphere(shape, from, u);
    case Kind::tube:
        return sample_tube(shape, from, u);
    default:
        break;
    }
    const Vec3 to = from - light.position;
    const float distance = length(to);
    if (!(distance > 0))
        return {};
    if (light.radius <= 0)
        return {light.position, 1};
    const Vec2 d = sample_disc(u);
    if (light.kind == Kind::spot || light.web >= 0) // it opens across its direction
        return {light.position + (light.x_axis * d.x + shape.y_axis * d.y) * light.radius, 1};
    return {light.position + Frame(to / distance).to_world({d.x, d.y, 0}) * light.radius, 1};
}

float shape_pdf(const LightShape& shape, Vec3 from, Vec3 point) {
    switch (shape.light.kind) {
    case Kind::disc:
        return height_over(shape, from) > 0 ? flat_area_pdf(shape, from, point) : 0;
    case Kind::rectangle:
        return rectangle_pdf(shape, from, point);
    case Kind::sphere: {
        const float cone = sphere_cone(shape, from);
        return cone > 0 ? 1 / (2 * pi * cone) : 0;
    }
    case Kind::tube:
        return tube_pdf(shape, from, point);
    default:
        return 0;
    }
}

bool hit_shape(const LightShape& shape, const Ray& ray, float& distance) {
    switch (shape.light.kind) {
    case Kind::disc:
    case Kind::rectangle:
        return hit_flat(shape, ray, distance);
    case Kind::sphere:
        return hit_sphere(shape, ray, distance);
    case Kind::tube:
        return hit_tube(shape, ray, distance);
    default:
        return false;
    }
}

float emitted_share(const LightShape& shape, const std::vector<PhotometricWeb>& webs,
                    Vec3 direction) {
    const Light& light = shape.light;
    const float cosine = dot(direction, light.direction);
    if (light.kind == Kind::spot) {
        if (cosine >= shape.cos_beam)
            return 1;
        const float wide = shape.cos_beam - shape.cos_field;
        const float t = wide > 0 ? (cosine - shape.cos_field) / wide : 0;
        return t > 0 ? t * t * (3 - 2 * t) : 0;
    }
    if (light.web < 0)
        return 1;
    const float horizontal = std::atan2(dot(direction, shape.y_axis), dot(direction, light.x_axis));
    return web_value(webs[static_cast<std::size_t>(light.web)],
                     std::acos(std::clamp(cosine, -1.0f, 1.0f)), horizontal);
}

float web_value(const PhotometricWeb& web, float vertical, float horizontal) {
    constexpr float slack = 1e-5f; // pi as others write it
    if (vertical > web.vertical.back() + slack || vertical < web.vertical.front() - slack)
        return 0;
    const Place v = place_among(web.vertical, vertical);
    const Place h = place_about(web.horizontal, horizontal);
    const auto value = [&](std::size_t row, std::size_t column) {
        return web.values[row * web.horizontal.size() + column];
    };
    const float low = value(v.below, h.below) * (1 - h.part) + value(v.below, h.above) * h.part;
    const float high = value(v.above, h.below) * (1 - h.part) + value(v.above, h.above) * h.part;
    return std::max(0.0f, low * (1 - v.part) + high * v.part);
}

bool is_usable(const PhotometricWeb& web) {
    return is_ascending(web.vertical) && is_ascending(web.horizontal) &&
           web.values.size() == web.vertical.size() * web.horizontal.size() &&
           std::all_of(web.values.begin(), web.values.end(),
                       [](float x) { return std::isfinite(x); });
}

} // namespace renderer
