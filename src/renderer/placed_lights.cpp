// All light that somebody placed, and glowing faces.
#include "renderer/placed_lights.h"

#include "renderer/sampling.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace renderer {

namespace {

using Kind = Light::Kind;

void check(const Scene& scene) {
    for (const PhotometricWeb& web : scene.webs)
        if (!is_usable(web))
            throw std::invalid_argument("photometric web: angles must ascend, and values number "
                                        "one for each pair of them");
    const auto webs = static_cast<int>(scene.webs.size());
    for (const Light& light : scene.lights)
        if (light.web >= webs)
            throw std::invalid_argument("light: its photometric web is out of range");
}

float largest_value(const PhotometricWeb& web) {
    return *std::max_element(web.values.begin(), web.values.end());
}

/// Half angle of the cone about the direction beyond which a web gives nothing.
float web_cone(const PhotometricWeb& web) {
    const std::size_t columns = web.horizontal.size();
    for (std::size_t row = web.vertical.size(); row-- > 0;)
        for (std::size_t i = 0; i < columns; ++i)
            if (web.values[row * columns + i] > 0)
                return row + 1 < web.vertical.size() ? web.vertical[row + 1] : web.vertical[row];
    return 0;
}

/// Half the size of the box about what a light's surface takes up.
Vec3 half_box(const LightShape& shape) {
    const Light& light = shape.light;
    const Vec3 d = light.direction, x = light.x_axis, y = shape.y_axis;
    const auto reach = [&](float dc, float xc, float yc) {
        const float r = light.radius, half = 0.5f * light.length;
        switch (light.kind) {
        case Kind::disc:
            return r * std::sqrt(std::max(0.0f, 1 - dc * dc));
        case Kind::rectangle:
            return half * std::fabs(xc) + 0.5f * light.width * std::fabs(yc);
        case Kind::tube:
            return half * std::fabs(xc) + r * std::sqrt(std::max(0.0f, 1 - xc * xc));
        default:
            return r;
        }
    };
    return {reach(d.x, x.x, y.x), reach(d.y, x.y, y.y), reach(d.z, x.z, y.z)};
}

} // namespace

PlacedLights::PlacedLights(const Scene& scene, const Accel& accel)
  : webs_(scene.webs) {
    check(scene);
    add_shapes(scene);
    add_faces(scene, accel);
    emitters_ = static_cast<int>(shapes_.size() + faces_.size());
    build_tree();
}

void PlacedLights::add_shapes(const Scene& scene) {
    for (const Light& light : scene.lights) {
        const auto shape = make_light_shape(light);
        if (!shape ||
            (light.web >= 0 && !(largest_value(webs_[static_cast<std::size_t>(light.web)]) > 0)))
            continue;
        (shape->is_distant() ? distant_ : shapes_).push_back(*shape);
        has_surfaces_ = has_surfaces_ || shape->has_surface();
    }
}

void PlacedLights::add_faces(const Scene& scene, const Accel& accel) {
    std::vector<bool> wanted(scene.materials.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const Material& m = scene.materials[i];
        // what a picture cuts out of a face is not known here
        wanted[i] = max_component(m.emission) > 0 && !m.is_lamp && !m.cut_out;
    }
    for (const HeldTriangle& t : accel.triangles_of(wanted, most_faces)) {
        Face face;
        face.corner = t.corners[0];
        face.edge1 = t.corners[1] - t.corners[0];
        face.edge2 = t.corners[2] - t.corners[0];
        const Vec3 normal = cross(face.edge1, face.edge2);
        face.area = 0.5f * length(normal);
        face.normal = normalize(normal);
        face.radiance = scene.materials[t.material].emission;
        face.channel = scene.materials[t.material].light_channel;
        face.mesh = t.mesh;
        face.triangle = t.triangle;
        face.contested = t.coplanar || !scene.decals.empty();
        if (first_face_.size() <= t.mesh)
            first_face_.resize(t.mesh + 1, -1);
        if (first_face_[t.mesh] < 0)
            first_face_[t.mesh] = static_cast<std::int32_t>(faces_.size());
        faces_.push_back(face);
    }
}

LightBound PlacedLights::bound_of(const LightShape& shape) const {
    const Light& light = shape.light;
    LightBound bound;
    const Vec3 half = half_box(shape);
    bound.low = light.position - half;
    bound.high = light.position + half;
    bound.axis = light.direction;
    bound.full = pi;
    bound.fall = pi / 2;
    bound.has_surface = shape.has_surface();
    bound.strength = luminance(light.intensity);
    switch (light.kind) {
    case Kind::disc:
    case Kind::rectangle:
        bound.strength *= shape.area;
        bound.full = 0;
        break;
    case Kind::sphere:
        bound.strength *= shape.area / 4;
        break;
    case Kind::tube:
        bound.strength *= shape.area / pi;
        break;
    case Kind::spot:
        bound.full = light.beam;
        bound.fall = std::min(light.field - light.beam + 1e-3f, pi);
        break;
    default:
        break;
    }
    if (light.web >= 0) {
        const PhotometricWeb& web = webs_[static_cast<std::size_t>(light.web)];
        bound.strength *= largest_value(web);
        if (light.kind == Kind::point) {
            bound.full = web_cone(web);
            bound.fall = 0.02f;
        }
    }
    return bound;
}

void PlacedLights::build_tree() {
    std::vector<LightBound> bounds;
    for (const LightShape& shape : shapes_)
        bounds.push_back(bound_of(shape));
    for (const Face& face : faces_) {
        LightBound bound;
        bound.low = bound.high = face.corner;
        for (const Vec3 p : {face.corner + face.edge1, face.corner + face.edge2}) {
            bound.low = {std::min(bound.low.x, p.x), std::min(bound.low.y, p.y),
                         std::min(bound.low.z, p.z)};
            bound.high = {std::max(bound.high.x, p.x), std::max(bound.high.y, p.y),
                          std::max(bound.high.z, p.z)};
        }
        bound.axis = face.normal;
        bound.full = 0;
        bound.both_ways = true;
        bound.strength = face.area * luminance(face.radiance);
        bounds.push_back(bound);
    }
    tree_ = LightTree(bounds);
}

int PlacedLights::sample_count(bool first) const {
    return samples_all(first) ? total() : first ? most_samples : empty() ? 0 : 1;
}

float PlacedLights::distant_weight(const LitPoint& at, std::size_t light) const {
    const Light& l = distant_[light].light;
    const bool any_side = !(dot(at.normal, at.normal) > 0);
    const float cosine = any_side ? 1 : -dot(at.normal, l.direction);
    return luminance(l.intensity) * std::max(cosine, 0.0f);
}

/// Probability that a choice falls on the tree and not on a distant light.
float PlacedLights::tree_share(const LitPoint& at) const {
    if (distant_.empty())
        return 1;
    const float near = tree_.importance(at);
    float sum = near;
    for (std::size_t i = 0; i < distant_.size(); ++i)
        sum += distant_weight(at, i);
    return sum > 0 ? near / sum : 0;
}

/// Chooses a light. Distant ones are counted down from -2.
PlacedLights::Drawn PlacedLights::draw(const LitPoint& at, bool first, int number,
                                       float choice) const {
    const auto as_distant = [](std::size_t i) { return -2 - static_cast<int>(i); };
    if (samples_all(first))
        return {number < emitters_ ? number
                                   : as_distant(static_cast<std::size_t>(number - emitters_)),
                1};
    const int count = sample_count(first);
    float u = (static_cast<float>(number) + choice) / static_cast<float>(count);
    u = std::min(u, 0x1.fffffep-1f);
    const auto times = static_cast<float>(count);
    const float share = tree_share(at);
    if (u < share) {
        const LightTree::Choice c = tree_.choose(at, std::min(u / share, 0x1.fffffep-1f));
        return {c.light, share * c.probability * times};
    }
    float sum = 0;
    for (std::size_t i = 0; i < distant_.size(); ++i)
        sum += distant_weight(at, i);
    float rest = (u - share) / (1 - share) * sum;
    for (std::size_t i = 0; i < distant_.size() && sum > 0; ++i) {
        const float weight = distant_weight(at, i);
        if (weight > 0 && (rest < weight || i + 1 == distant_.size()))
            return {as_distant(i), (1 - share) * weight / sum * times};
        rest -= weight;
    }
    return {};
}

float PlacedLights::rate(const LitPoint& at, bool first, int emitter) const {
    if (samples_all(first))
        return 1;
    return tree_share(at) * tree_.probability(at, emitter) *
           static_cast<float>(sample_count(first));
}

PlacedSample PlacedLights::sample(const LitPoint& at, bool first, int number, float choice,
                                  Vec2 u) const {
    const Drawn drawn = draw(at, first, number, choice);
    if (drawn.emitter == -1 || !(drawn.rate > 0))
        return {};
    if (drawn.emitter < -1)
        return sample_distant(distant_[static_cast<std::size_t>(-2 - drawn.emitter)], drawn.rate);
    const auto index = static_cast<std::size_t>(drawn.emitter);
    return index < shapes_.size() ? sample_shape_of(shapes_[index], at, drawn.rate, u)
                                  : sample_face(faces_[index - shapes_.size()], at, drawn.rate, u);
}

PlacedSample PlacedLights::sample_distant(const LightShape& shape, float rate) const {
    PlacedSample sample;
    sample.light = shape.light.intensity / rate;
    sample.direction = -shape.light.direction;
    sample.distant = true;
    sample.casts_shadows = shape.light.casts_shadows;
    sample.channel = shape.light.channel;
    return sample;
}

PlacedSample PlacedLights::sample_shape_of(const LightShape& shape, const LitPoint& at, float rate,
                                           Vec2 u) const {
    const ShapeSample drawn = sample_shape(shape, at.position, u);
    if (!(drawn.pdf > 0) || !std::isfinite(drawn.pdf))
        return {};
    PlacedSample sample;
    const Vec3 to = drawn.point - at.position;
    const float square = dot(to, to);
    if (!(square > 0))
        return {};
    sample.point = drawn.point;
    sample.direction = to / std::sqrt(square);
    sample.casts_shadows = shape.light.casts_shadows;
    sample.visible = shape.light.visible && shape.has_surface();
    sample.channel = shape.light.channel;
    const Rgb sent = shape.light.intensity * emitted_share(shape, webs_, -sample.direction);
    if (!shape.has_surface()) {
        sample.light = sent / (square * rate);
        return sample;
    }
    sample.light = sent / (drawn.pdf * rate);
    sample.density = sample.casts_shadows ? drawn.pdf * rate : 0;
    return sample;
}

PlacedSample PlacedLights::sample_face(const Face& face, const LitPoint& at, float rate,
                                       Vec2 u) const {
    // evenly over the triangle (Osada et al., "Shape Distributions", 2002)
    const float root = std::sqrt(u.x);
    PlacedSample sample;
    sample.point = face.corner + face.edge1 * (1 - root) + face.edge2 * (u.y * root);
    const Vec3 to = sample.point - at.position;
    const float square = dot(to, to);
    const float cosine = std::fabs(dot(to, face.normal)) / std::sqrt(square);
    if (!(square > 0) || !(cosine > 1e-6f))
        return {};
    sample.direction = to / std::sqrt(square);
    sample.density = square / (cosine * face.area) * rate;
    if (!std::isfinite(sample.density) || !(sample.density > 0))
        return {};
    sample.light = face.radiance / sample.density;
    sample.visible = true;
    sample.channel = face.channel;
    sample.face = face.contested ? static_cast<int>(&face - faces_.data()) : -1;
    return sample;
}

float PlacedLights::density(const LitPoint& at, bool first, const PassedLight& met,
                            Vec3 point) const {
    const LightShape& shape = shapes_[static_cast<std::size_t>(met.light)];
    const float pdf = shape_pdf(shape, at.position, point);
    return pdf > 0 ? pdf * rate(at, first, met.light) : 0;
}

int PlacedLights::face_of(const Hit& hit) const {
    if (hit.instance != Hit::no_instance || hit.mesh >= first_face_.size() ||
        first_face_[hit.mesh] < 0)
        return -1;
    const auto first = static_cast<std::size_t>(first_face_[hit.mesh]);
    const std::size_t index = first + (hit.triangle - faces_[first].triangle);
    const bool right = index < faces_.size() && faces_[index].mesh == hit.mesh &&
                       faces_[index].triangle == hit.triangle;
    return right ? static_cast<int>(index) : -1;
}

float PlacedLights::density(const LitPoint& at, bool first, const Hit& hit) const {
    const int index = face_of(hit);
    if (index < 0)
        return 0;
    const Face& face = faces_[static_cast<std::size_t>(index)];
    const Vec3 to = hit.position - at.position;
    const float square = dot(to, to);
    const float cosine = std::fabs(dot(to, face.normal)) / std::sqrt(square);
    if (!(cosine > 1e-6f))
        return 0;
    const float pdf = square / (cosine * face.area);
    return pdf * rate(at, first, static_cast<int>(shapes_.size()) + index);
}

PassedLight PlacedLights::passed(int light, float distance, Vec3 direction) const {
    const LightShape& shape = shapes_[static_cast<std::size_t>(light)];
    return {light,
            distance,
            shape.light.intensity * emitted_share(shape, webs_, -direction),
            shape.light.visible,
            shape.light.casts_shadows,
            shape.light.channel};
}

} // namespace renderer
