// Ray queries over a scene: the only door to Embree.
#include "renderer/accel.h"

#include "renderer/bsdf.h"
#include "renderer/placing.h"
#include "renderer/sampling.h"
#include "renderer/shared_places.h"
#include "renderer/texture.h"
#include "renderer/triangle_soup.h"

#include <embree3/rtcore.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

namespace renderer {

namespace {

struct DeviceRelease {
    void operator()(RTCDevice device) const { rtcReleaseDevice(device); }
};
struct SceneRelease {
    void operator()(RTCScene scene) const { rtcReleaseScene(scene); }
};
using DeviceHandle = std::unique_ptr<std::remove_pointer_t<RTCDevice>, DeviceRelease>;
using SceneHandle = std::unique_ptr<std::remove_pointer_t<RTCScene>, SceneRelease>;

constexpr unsigned first_instance = triangle_kinds; // geometry numbers below it are kinds

/// What a shadow ray gathers on its way through thin glass.
struct ShadowContext {
    RTCIntersectContext embree; // first, so that the callback may cast
    Rgb transmittance{1, 1, 1};
    std::uint64_t passed[8]; // triangles already counted; Embree may report one twice
    int passed_count = 0;
};

struct RawHit {
    unsigned geometry, triangle;
    float u, v, distance;
    unsigned instance; // number of its geometry, or RTC_INVALID_GEOMETRY_ID
};

/// Triangles with their tree: those of the scene, or of a prototype.
struct Shape {
    TriangleSoup soup;
    SceneHandle scene;
    const std::vector<Material>* materials = nullptr;
    const TextureSet* textures = nullptr;

    const SoupTriangle& triangle(unsigned kind, unsigned index) const {
        return soup.lists[kind][index];
    }
};

/// What the queries go through.
struct Shapes {
    Shape world;
    std::vector<Shape> prototypes;
    std::vector<Placing> placings;     ///< by the number of their geometry, from first_instance on
    std::vector<std::uint8_t> sharing; ///< placings some of whose faces may share their place

    const Placing* placing(unsigned instance) const {
        return instance == RTC_INVALID_GEOMETRY_ID ? nullptr : &placings[instance - first_instance];
    }
    const Shape& shape(const Placing* placing) const {
        return placing == nullptr ? world : prototypes[placing->prototype()];
    }
    /// Whether the triangle may have others in its place.
    bool is_shared(unsigned instance, const Shape& shape, const SoupTriangle& t) const {
        return t.coplanar ||
               (instance != RTC_INVALID_GEOMETRY_ID && sharing[instance - first_instance] != 0 &&
                shape.soup.meshes[t.mesh].order != Mesh::no_order);
    }
};

/// Which of the faces that share a place is seen: the lowest.
struct PlaceKey {
    std::uint64_t look, number;
    auto operator<=>(const PlaceKey&) const = default; // NOLINT(modernize-use-nullptr)
};

PlaceKey key_of(const Shape& shape, unsigned kind, unsigned triangle, unsigned instance) {
    const std::uint32_t order = shape.soup.meshes[shape.triangle(kind, triangle).mesh].order;
    return {std::uint64_t{kind} << 32 | order,
            std::uint64_t{instance + 1} << 32 | triangle}; // the scene's own have instance + 1 == 0
}

/// The second query at a hit on coplanar faces: finds the earliest triangle of the place.
struct CoplanarContext {
    RTCIntersectContext embree;
    const Shapes* shapes;
    Vec3 normal;
    PlaceKey best;
    RawHit hit;
};

Vec2 uv_at(const TriangleSoup& soup, const SoupTriangle& t, float u, float v) {
    const Vec2 a = soup.uvs[t.vertices[0]], b = soup.uvs[t.vertices[1]],
               c = soup.uvs[t.vertices[2]];
    const float w = 1 - u - v;
    return {w * a.x + u * b.x + v * c.x, w * a.y + u * b.y + v * c.y};
}

Vec3 raw_normal(const TriangleSoup& soup, const SoupTriangle& t) {
    const Vec3 a = soup.positions[t.vertices[0]];
    return normalize(cross(soup.positions[t.vertices[1]] - a, soup.positions[t.vertices[2]] - a));
}

RTCRayHit make_ray_hit(const Ray& ray, float t_min) {
    RTCRayHit r;
    r.ray.org_x = ray.origin.x, r.ray.org_y = ray.origin.y, r.ray.org_z = ray.origin.z;
    r.ray.dir_x = ray.direction.x, r.ray.dir_y = ray.direction.y, r.ray.dir_z = ray.direction.z;
    r.ray.tnear = t_min, r.ray.tfar = ray.t_max;
    r.ray.time = 0, r.ray.mask = 0xffffffffu, r.ray.id = 0, r.ray.flags = 0;
    r.hit.geomID = r.hit.primID = RTC_INVALID_GEOMETRY_ID;
    r.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    return r;
}

Vec3 normal_in_scene(const Shape& shape, const Placing* placing, const SoupTriangle& t) {
    const Vec3 normal = raw_normal(shape.soup, t);
    return placing == nullptr ? normal : placing->normal_to_scene(normal);
}

void find_earliest_coplanar(const RTCFilterFunctionNArguments* args) {
    auto& context = *reinterpret_cast<CoplanarContext*>(args->context);
    const unsigned geometry = RTCHitN_geomID(args->hit, args->N, 0);
    const unsigned triangle = RTCHitN_primID(args->hit, args->N, 0);
    args->valid[0] = 0; // go on: all faces of the place are wanted
    const unsigned instance = RTCHitN_instID(args->hit, args->N, 0, 0);
    const Placing* placing = context.shapes->placing(instance);
    const Shape& shape = context.shapes->shape(placing);
    const SoupTriangle& t = shape.triangle(geometry, triangle);
    if (!context.shapes->is_shared(instance, shape, t))
        return;
    const PlaceKey key = key_of(shape, geometry, triangle, instance);
    if (key >= context.best ||
        std::fabs(dot(normal_in_scene(shape, placing, t), context.normal)) < 0.999f)
        return;
    context.best = key;
    context.hit.geometry = geometry, context.hit.triangle = triangle;
    context.hit.instance = instance;
    context.hit.u = RTCHitN_u(args->hit, args->N, 0);
    context.hit.v = RTCHitN_v(args->hit, args->N, 0);
}

/// A number from 0 to 1 that depends on the ray and the triangle alone: what is cut out by chance
/// is the same for the same ray, whoever asks and how often.
float chance_of(const RTCFilterFunctionNArguments* args) {
    const float numbers[] = {RTCRayN_org_x(args->ray, 1, 0), RTCRayN_org_y(args->ray, 1, 0),
                             RTCRayN_org_z(args->ray, 1, 0), RTCRayN_dir_x(args->ray, 1, 0),
                             RTCRayN_dir_y(args->ray, 1, 0), RTCRayN_dir_z(args->ray, 1, 0)};
    std::uint64_t h = RTCHitN_primID(args->hit, 1, 0) + 0x9e3779b97f4a7c15u;
    for (const float number : numbers) {
        h = (h ^ std::bit_cast<std::uint32_t>(number)) * 0xff51afd7ed558ccdu;
        h ^= h >> 33;
    }
    return static_cast<float>(h >> 40) * 0x1p-24f;
}

/// Lets rays through where the picture on a face is transparent.
void pass_cut_out(const RTCFilterFunctionNArguments* args) {
    const auto& shape = *static_cast<const Shape*>(args->geometryUserPtr);
    const SoupTriangle& t = shape.triangle(cut_out_kind, RTCHitN_primID(args->hit, args->N, 0));
    const Material& material = (*shape.materials)[shape.soup.meshes[t.mesh].material];
    const Vec2 uv =
        uv_at(shape.soup, t, RTCHitN_u(args->hit, args->N, 0), RTCHitN_v(args->hit, args->N, 0));
    const float alpha = (*shape.textures)[static_cast<std::size_t>(material.texture)].alpha(uv);
    if (alpha < 1 && (alpha <= 0 || chance_of(args) >= alpha))
        args->valid[0] = 0;
}

/// Lets a shadow ray through a pane and notes what the pane takes from it.
void pass_glass(const RTCFilterFunctionNArguments* args) {
    const auto& shape = *static_cast<const Shape*>(args->geometryUserPtr);
    auto& context = *reinterpret_cast<ShadowContext*>(args->context);
    const unsigned kind = RTCHitN_geomID(args->hit, args->N, 0);
    const unsigned triangle = RTCHitN_primID(args->hit, args->N, 0);
    const SoupTriangle& t = shape.triangle(kind, triangle);
    const Material& material = (*shape.materials)[shape.soup.meshes[t.mesh].material];
    if (material.transmission <= 0 && !material.is_lamp)
        return; // a face with cut-outs that lets no light through
    const std::uint64_t name =
        (std::uint64_t{RTCHitN_instID(args->hit, args->N, 0, 0)} << 32 | triangle) ^
        std::uint64_t{kind} << 31;
    const std::uint64_t* const begin = context.passed;
    const std::uint64_t* const end = begin + context.passed_count;
    if (std::find(begin, end, name) == end) {
        const Vec3 direction =
            normalize({RTCRayN_dir_x(args->ray, args->N, 0), RTCRayN_dir_y(args->ray, args->N, 0),
                       RTCRayN_dir_z(args->ray, args->N, 0)});
        const float cosine = std::fabs(dot(raw_normal(shape.soup, t), direction));
        context.transmittance *= thin_glass_transmittance(material, cosine);
        context.passed[context.passed_count % 8] = name;
        context.passed_count = std::min(context.passed_count + 1, 7);
    }
    if (max_component(context.transmittance) > 1e-4f)
        args->valid[0] = 0;
    else
        context.transmittance = {0, 0, 0};
}

void shade_cut_out(const RTCFilterFunctionNArguments* args) {
    pass_cut_out(args);
    if (args->valid[0] != 0)
        pass_glass(args);
}

} // namespace

struct Accel::Impl {
    DeviceHandle device; // before what is made by it, so that it goes last
    Shapes shapes;
    std::vector<Material> materials;
    std::shared_ptr<const TextureSet> textures;
    std::optional<GroundPlane> ground;
    SceneBounds bounds;
    float ground_tolerance = 0; ///< metres; faces this near to the plane hide it
    std::size_t coplanar = 0;

    void check_error(const char* step) const;
    void build(const Scene& scene);
    void mark_coplanar(std::size_t material_count);
    void measure_ground();
    void prepare(Shape& shape);
    void attach(Shape& shape, unsigned kind);
    void attach_instances();
    void commit(const Shape& shape) const;
    bool trace(const Ray& ray, RawHit& raw) const;
    void choose_coplanar(const Ray& ray, RawHit& raw) const;
    float ground_distance(const Ray& ray) const;
    void fill(const Ray& ray, const RawHit& raw, Hit& hit) const;
    void fill_ground(const Ray& ray, float distance, Hit& hit) const;
};

void Accel::Impl::check_error(const char* step) const {
    const RTCError code = rtcGetDeviceError(device.get());
    if (code == RTC_ERROR_OUT_OF_MEMORY)
        throw std::bad_alloc();
    if (code != RTC_ERROR_NONE)
        throw std::runtime_error(std::string("Embree: error ") + std::to_string(code) + " on " +
                                 step);
}

void Accel::Impl::attach(Shape& shape, unsigned kind) {
    const auto& list = shape.soup.lists[kind];
    if (list.empty())
        return;
    RTCGeometry geometry = rtcNewGeometry(device.get(), RTC_GEOMETRY_TYPE_TRIANGLE);
    check_error("making a geometry");
    // Vertices are shared; Embree reads 16 bytes at the last one, hence the padding in prepare().
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                               shape.soup.positions.data(), 0, sizeof(Vec3),
                               shape.soup.positions.size() - 1);
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, list.data(), 0,
                               sizeof(SoupTriangle), list.size());
    rtcSetGeometryUserData(geometry, &shape);
    if (kind == glass_kind) {
        rtcSetGeometryOccludedFilterFunction(geometry, pass_glass);
    } else if (kind == cut_out_kind) {
        rtcSetGeometryIntersectFilterFunction(geometry, pass_cut_out);
        rtcSetGeometryOccludedFilterFunction(geometry, shade_cut_out);
    }
    rtcCommitGeometry(geometry);
    rtcAttachGeometryByID(shape.scene.get(), geometry, kind);
    rtcReleaseGeometry(geometry);
    check_error("attaching a geometry");
}

/// Makes the tree's scene with all triangles of the shape, which must stay where it is.
void Accel::Impl::prepare(Shape& shape) {
    shape.materials = &materials;
    shape.textures = textures.get();
    shape.scene.reset(rtcNewScene(device.get()));
    check_error("making a scene");
    rtcSetSceneFlags(
        shape.scene.get(),
        static_cast<RTCSceneFlags>(RTC_SCENE_FLAG_ROBUST | RTC_SCENE_FLAG_CONTEXT_FILTER_FUNCTION));
    rtcSetSceneBuildQuality(shape.scene.get(), shape.soup.triangle_count() < 500000
                                                   ? RTC_BUILD_QUALITY_HIGH
                                                   : RTC_BUILD_QUALITY_MEDIUM);
    shape.soup.positions.push_back({0, 0, 0});
    for (unsigned kind = 0; kind < triangle_kinds; ++kind)
        attach(shape, kind);
}

/// One thread: parallel builds order equal triangles by chance, and ties must not depend on it.
/// The arena does it; a thread count given to the device would bind the whole process.
void Accel::Impl::commit(const Shape& shape) const {
    tbb::task_arena(1).execute([&] { rtcCommitScene(shape.scene.get()); });
    check_error("building the tree");
}

void Accel::Impl::attach_instances() {
    for (std::size_t i = 0; i < shapes.placings.size(); ++i) {
        const Placing& placing = shapes.placings[i];
        RTCGeometry geometry = rtcNewGeometry(device.get(), RTC_GEOMETRY_TYPE_INSTANCE);
        check_error("making an instance");
        rtcSetGeometryInstancedScene(geometry, shapes.prototypes[placing.prototype()].scene.get());
        rtcSetGeometryTransform(geometry, 0, RTC_FORMAT_FLOAT3X4_ROW_MAJOR, placing.rows());
        rtcCommitGeometry(geometry);
        rtcAttachGeometryByID(shapes.world.scene.get(), geometry,
                              first_instance + static_cast<unsigned>(i));
        rtcReleaseGeometry(geometry);
    }
    check_error("attaching instances");
}

void Accel::Impl::build(const Scene& scene) {
    device.reset(rtcNewDevice(nullptr));
    if (!device)
        throw std::runtime_error("Embree: no device");
    for (Shape& shape : shapes.prototypes) {
        prepare(shape);
        commit(shape);
    }
    for (std::uint32_t i = 0; i < scene.instances.size(); ++i) {
        const Placing placing(scene, i);
        const TriangleSoup& soup = shapes.prototypes[placing.prototype()].soup;
        if (soup.triangle_count() == 0)
            continue;
        placing.add_bounds(soup, bounds);
        shapes.placings.push_back(placing);
    }
    mark_coplanar(scene.materials.size());
    prepare(shapes.world);
    attach_instances();
    commit(shapes.world);
}

void Accel::Impl::mark_coplanar(std::size_t material_count) {
    std::vector<const TriangleSoup*> soups;
    mark_coplanar_triangles(shapes.world.soup, material_count);
    for (Shape& shape : shapes.prototypes) {
        const auto& meshes = shape.soup.meshes;
        if (std::any_of(meshes.begin(), meshes.end(),
                        [](const SoupMesh& m) { return m.order != Mesh::no_order; }))
            mark_coplanar_triangles(shape.soup, material_count);
        soups.push_back(&shape.soup);
    }
    shapes.sharing =
        mark_coplanar_instances(shapes.world.soup, soups, shapes.placings, material_count);
    for (const auto& list : shapes.world.soup.lists)
        coplanar += static_cast<std::size_t>(std::count_if(
            list.begin(), list.end(), [](const SoupTriangle& t) { return t.coplanar != 0; }));
}

/// Faces this near to the ground plane hide it. What is planted does not count: its size has
/// nothing to do with how the drawing rounds.
void Accel::Impl::measure_ground() {
    float size = std::max({length(shapes.world.soup.low), length(shapes.world.soup.high),
                           ground ? std::fabs(ground->elevation) : 0.0f, 1.0f});
    for (const Placing& placing : shapes.placings) {
        const TriangleSoup& soup = shapes.prototypes[placing.prototype()].soup;
        if (soup.meshes.front().order == Mesh::no_order)
            continue;
        SceneBounds box;
        placing.add_bounds(soup, box);
        size = std::max({size, length(box.low), length(box.high)});
    }
    ground_tolerance = 2e-5f * size;
}

bool Accel::Impl::trace(const Ray& ray, RawHit& raw) const {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    alignas(16) RTCRayHit query = make_ray_hit(ray, 0);
    rtcIntersect1(shapes.world.scene.get(), &context, &query);
    if (query.hit.geomID == RTC_INVALID_GEOMETRY_ID)
        return false;
    raw = {query.hit.geomID, query.hit.primID, query.hit.u,
           query.hit.v,      query.ray.tfar,   query.hit.instID[0]};
    return true;
}

void Accel::Impl::choose_coplanar(const Ray& ray, RawHit& raw) const {
    const Placing* placing = shapes.placing(raw.instance);
    const Shape& shape = shapes.shape(placing);
    const SoupTriangle& hit = shape.triangle(raw.geometry, raw.triangle);
    CoplanarContext context{};
    rtcInitIntersectContext(&context.embree);
    context.embree.filter = find_earliest_coplanar;
    context.shapes = &shapes;
    context.normal = normal_in_scene(shape, placing, hit);
    context.best = key_of(shape, raw.geometry, raw.triangle, raw.instance);
    context.hit = raw;
    const Vec3 corner = shape.soup.positions[hit.vertices[0]];
    const Vec3 p = placing == nullptr ? corner : placing->point_to_scene(corner);
    const float size = std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z), raw.distance,
                                 std::fabs(ray.origin.x), std::fabs(ray.origin.y),
                                 std::fabs(ray.origin.z), 1e-3f});
    const float cosine = std::max(std::fabs(dot(context.normal, ray.direction)), 1e-3f);
    const float window = 2e-6f * size / cosine;
    Ray around = ray;
    around.t_max = raw.distance + window;
    alignas(16) RTCRayHit query = make_ray_hit(around, std::max(0.0f, raw.distance - window));
    rtcIntersect1(shapes.world.scene.get(), &context.embree, &query);
    raw = context.hit;
}

float Accel::Impl::ground_distance(const Ray& ray) const {
    if (!ground || ray.direction.z == 0)
        return infinity;
    const float height = ray.origin.z - ground->elevation;
    const float t = -height / ray.direction.z;
    // A ray that starts on the plane leaves it for good.
    return t > 0 && std::fabs(height) > ground_tolerance ? t : infinity;
}

void Accel::Impl::fill_ground(const Ray& ray, float distance, Hit& hit) const {
    hit = {};
    hit.distance = distance;
    hit.mesh = Hit::ground_mesh;
    hit.material = ground->material;
    hit.position = ray.origin + ray.direction * distance;
    hit.position.z = ground->elevation;
    hit.geometric_normal = {0, 0, ray.direction.z < 0 ? 1.0f : -1.0f};
    hit.shading_normal = hit.geometric_normal;
    hit.lifted = hit.position;
    hit.uv = {hit.position.x, hit.position.y};
    hit.uv_per_metre = 1;
}

namespace {

/// Shading normal, and the start of outgoing rays lifted to the rounded surface that the normals
/// mean: without it, a coarse cylinder shows the edge of its facets where light comes from the
/// side (Hanika, "Hacking the Shadow Terminator", Ray Tracing Gems II, ch. 4, 2021).
void smooth(const TriangleSoup& soup, const SoupTriangle& t, const float weights[3], Hit& hit) {
    Vec3 normal{0, 0, 0}, lift{0, 0, 0};
    for (int i = 0; i < 3; ++i) {
        Vec3 n = soup.normals[t.vertices[i]];
        if (!is_finite(n) || dot(n, n) < 1e-12f)
            return;
        n = normalize(n);
        normal += n * weights[i];
        if (dot(n, hit.geometric_normal) < 0)
            n = -n;
        const Vec3 from_vertex = hit.position - soup.positions[t.vertices[i]];
        lift += n * (-std::min(0.0f, dot(from_vertex, n)) * weights[i]);
    }
    normal = normalize(normal);
    if (dot(normal, normal) < 0.5f)
        return;
    if (dot(normal, hit.geometric_normal) < 0)
        normal = -normal;
    hit.shading_normal = normal;
    hit.lifted = hit.position + lift;
}

/// Uvs, and how many of them go on a metre.
void add_uvs(const TriangleSoup& soup, const SoupTriangle& t, const RawHit& raw, Hit& hit) {
    hit.uv = uv_at(soup, t, raw.u, raw.v);
    const Vec2 a = soup.uvs[t.vertices[0]], b = soup.uvs[t.vertices[1]],
               c = soup.uvs[t.vertices[2]];
    const float square = std::fabs((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y));
    const Vec3 p = soup.positions[t.vertices[0]];
    const float area =
        length(cross(soup.positions[t.vertices[1]] - p, soup.positions[t.vertices[2]] - p));
    hit.uv_per_metre = std::sqrt(std::max(square / area, 1e-30f));
}

/// The hit in the shape's own frame, in which the ray has `direction`.
void fill_in_frame(const Shape& shape, const RawHit& raw, Vec3 direction, Hit& hit) {
    const TriangleSoup& soup = shape.soup;
    const SoupTriangle& t = shape.triangle(raw.geometry, raw.triangle);
    const SoupMesh& mesh = soup.meshes[t.mesh];
    const float weights[3] = {1 - raw.u - raw.v, raw.u, raw.v};
    hit = {};
    hit.distance = raw.distance;
    hit.mesh = t.mesh;
    hit.triangle = raw.triangle;
    hit.material = mesh.material;
    const Vec3 a = soup.positions[t.vertices[0]];
    hit.position = a + (soup.positions[t.vertices[1]] - a) * raw.u +
                   (soup.positions[t.vertices[2]] - a) * raw.v;
    hit.geometric_normal = raw_normal(soup, t);
    if (dot(hit.geometric_normal, direction) > 0)
        hit.geometric_normal = -hit.geometric_normal;
    hit.shading_normal = hit.geometric_normal;
    hit.lifted = hit.position;
    hit.uv = {raw.u, raw.v};
    if (mesh.has_normals)
        smooth(soup, t, weights, hit);
    if (mesh.has_uvs)
        add_uvs(soup, t, raw, hit);
}

} // namespace

void Accel::Impl::fill(const Ray& ray, const RawHit& raw, Hit& hit) const {
    if (raw.instance == RTC_INVALID_GEOMETRY_ID) {
        fill_in_frame(shapes.world, raw, ray.direction, hit);
        return;
    }
    const Placing& placing = shapes.placings[raw.instance - first_instance];
    fill_in_frame(shapes.prototypes[placing.prototype()], raw, placing.to_prototype(ray.direction),
                  hit);
    placing.to_scene(hit);
}

Accel::Accel(const Scene& scene, std::shared_ptr<const TextureSet> textures)
  : impl_(std::make_unique<Impl>()) {
    if (scene.materials.empty())
        throw std::invalid_argument("scene: at least one material is needed");
    if (scene.ground && scene.ground->material >= scene.materials.size())
        throw std::invalid_argument("ground plane: its material is out of range");
    if (scene.ground && !std::isfinite(scene.ground->elevation))
        throw std::invalid_argument("ground plane: its elevation is not finite");
    Impl& impl = *impl_;
    check_materials(scene);
    TriangleSoup& soup = impl.shapes.world.soup;
    soup = make_triangle_soup(scene.meshes, scene.materials);
    impl.materials = scene.materials;
    impl.textures = textures ? std::move(textures) : std::make_shared<TextureSet>(scene.textures);
    impl.ground = scene.ground;
    impl.bounds = {soup.low, soup.high, soup.triangle_count() == 0};
    impl.shapes.prototypes.resize(scene.prototypes.size());
    for (std::size_t i = 0; i < scene.prototypes.size(); ++i)
        impl.shapes.prototypes[i].soup =
            make_triangle_soup(scene.prototypes[i].meshes, scene.materials,
                               "prototype " + std::to_string(i) + ", ", false);
    impl.build(scene);
    impl.measure_ground();
}

Accel::~Accel() = default;
Accel::Accel(Accel&&) noexcept = default;
Accel& Accel::operator=(Accel&&) noexcept = default;

bool Accel::intersect(const Ray& ray, Hit& hit) const {
    RawHit raw;
    const bool found = impl_->trace(ray, raw);
    const float plane = impl_->ground_distance(ray);
    if (!found) {
        if (plane >= ray.t_max)
            return false;
        impl_->fill_ground(ray, plane, hit);
        return true;
    }
    const Shape& shape = impl_->shapes.shape(impl_->shapes.placing(raw.instance));
    if (impl_->shapes.is_shared(raw.instance, shape, shape.triangle(raw.geometry, raw.triangle)))
        impl_->choose_coplanar(ray, raw);
    impl_->fill(ray, raw, hit);
    // Floors that lie in the ground plane are seen, not the plane.
    if (plane < raw.distance &&
        std::fabs(hit.position.z - impl_->ground->elevation) > impl_->ground_tolerance)
        impl_->fill_ground(ray, plane, hit);
    return true;
}

Rgb Accel::transmittance(const Ray& ray) const {
    if (impl_->ground_distance(ray) < ray.t_max)
        return {0, 0, 0};
    ShadowContext context;
    rtcInitIntersectContext(&context.embree);
    alignas(16) RTCRay query = make_ray_hit(ray, 0).ray;
    rtcOccluded1(impl_->shapes.world.scene.get(), &context.embree, &query);
    return query.tfar < 0 ? Rgb{0, 0, 0} : context.transmittance;
}

namespace {

/// Moves a coordinate by a number of its own smallest steps, or by a fixed length near zero, so
/// that the new point surely lies on the side of n (Waechter and Binder, "A Fast and Robust
/// Method for Avoiding Self-Intersection", Ray Tracing Gems, ch. 6, 2019).
float offset_coordinate(float p, float n) {
    constexpr float near_zero = 1.0f / 32.0f, fixed = 1.0f / 65536.0f;
    if (std::fabs(p) < near_zero)
        return p + fixed * n;
    const int steps = static_cast<int>(256.0f * n);
    const int bits = std::bit_cast<int>(p);
    return std::bit_cast<float>(bits + (p < 0 ? -steps : steps));
}

} // namespace

Vec3 Accel::leave(const Hit& hit, Vec3 direction) const {
    const bool outside = dot(direction, hit.geometric_normal) >= 0;
    const Vec3 n = outside ? hit.geometric_normal : -hit.geometric_normal;
    const Vec3 p = outside ? hit.lifted : hit.position;
    const Vec3 start{offset_coordinate(p.x, n.x), offset_coordinate(p.y, n.y),
                     offset_coordinate(p.z, n.z)};
    return hit.margin > 0 ? start + n * hit.margin : start;
}

std::vector<HeldTriangle> Accel::triangles_of(const std::vector<bool>& wanted,
                                              std::size_t most) const {
    std::vector<HeldTriangle> held;
    const TriangleSoup& soup = impl_->shapes.world.soup;
    for (const auto* list : {&soup.lists[opaque_kind], &soup.lists[glass_kind]})
        for (std::size_t i = 0; i < list->size(); ++i) {
            const SoupTriangle& t = (*list)[i];
            const std::uint32_t material = soup.meshes[t.mesh].material;
            if (!wanted[material])
                continue;
            if (held.size() == most)
                return {};
            held.push_back({{soup.positions[t.vertices[0]], soup.positions[t.vertices[1]],
                             soup.positions[t.vertices[2]]},
                            t.mesh,
                            static_cast<std::uint32_t>(i),
                            material,
                            t.coplanar != 0});
        }
    return held;
}

const SceneBounds& Accel::bounds() const { return impl_->bounds; }
const TextureSet& Accel::textures() const { return *impl_->textures; }
std::size_t Accel::triangle_count() const {
    std::size_t count = impl_->shapes.world.soup.triangle_count();
    for (const Shape& shape : impl_->shapes.prototypes)
        count += shape.soup.triangle_count();
    return count;
}
std::size_t Accel::skipped_triangle_count() const {
    std::size_t count = impl_->shapes.world.soup.skipped;
    for (const Shape& shape : impl_->shapes.prototypes)
        count += shape.soup.skipped;
    return count;
}
std::size_t Accel::coplanar_triangle_count() const { return impl_->coplanar; }

bool Accel::bare_intersect(const Ray& ray) const {
    RawHit raw;
    return impl_->trace(ray, raw);
}

bool Accel::bare_occluded(const Ray& ray) const {
    ShadowContext context; // filters of glass write into it
    rtcInitIntersectContext(&context.embree);
    alignas(16) RTCRay query = make_ray_hit(ray, 0).ray;
    rtcOccluded1(impl_->shapes.world.scene.get(), &context.embree, &query);
    return query.tfar < 0;
}

} // namespace renderer
