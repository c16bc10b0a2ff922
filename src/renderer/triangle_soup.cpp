// Gathers and checks the triangles of a scene.
#include "renderer/triangle_soup.h"

#include "renderer/sampling.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>

namespace renderer {

namespace {

constexpr float largest_coordinate = 1e9f; // the square of an area still fits a float

bool is_usable(Vec3 p) {
    return std::fabs(p.x) <= largest_coordinate && std::fabs(p.y) <= largest_coordinate &&
           std::fabs(p.z) <= largest_coordinate; // false for NaN as well
}

void check_material(const Material& m, std::size_t index, std::size_t textures) {
    const std::string name = "material " + std::to_string(index) + ": ";
    for (const float value :
         {m.base_color.x, m.base_color.y, m.base_color.z, m.roughness, m.metallic, m.specular,
          m.transmission, m.ior, m.translucency, m.emission.x, m.emission.y, m.emission.z})
        if (!std::isfinite(value))
            throw std::invalid_argument(name + "a number is not finite");
    if (m.texture >= 0 && static_cast<std::size_t>(m.texture) >= textures)
        throw std::invalid_argument(name + "its texture is out of range");
}

void check_mesh(const Mesh& mesh, std::size_t materials, const std::string& name) {
    const auto reject = [&](const std::string& what) {
        throw std::invalid_argument(name + ": " + what);
    };
    if (mesh.material >= materials)
        reject("material " + std::to_string(mesh.material) + " is out of range");
    if (!mesh.normals.empty() && mesh.normals.size() != mesh.positions.size())
        reject("normals must number one a position");
    if (!mesh.uvs.empty() && mesh.uvs.size() != mesh.positions.size())
        reject("uvs must number one a position");
    for (const auto& triangle : mesh.triangles)
        for (const std::uint32_t v : triangle)
            if (v >= mesh.positions.size())
                reject("vertex " + std::to_string(v) + " is out of range");
}

TriangleKind kind_of(const Material& material, const Mesh& mesh) {
    if (material.cut_out && material.texture >= 0 && !mesh.uvs.empty())
        return cut_out_kind;
    return material.transmission > 0 || material.is_lamp ? glass_kind : opaque_kind;
}

bool has_area(Vec3 a, Vec3 b, Vec3 c) {
    const Vec3 n = cross(b - a, c - a);
    const float square = dot(n, n);
    return square > std::numeric_limits<float>::min() && std::isfinite(square);
}

void add_mesh(TriangleSoup& soup, const Mesh& mesh, const Material& material, std::uint32_t index) {
    const auto first = static_cast<std::uint32_t>(soup.positions.size());
    soup.meshes.push_back(
        {mesh.material, first, !mesh.normals.empty(), !mesh.uvs.empty(), Mesh::no_order});
    auto& list = soup.lists[kind_of(material, mesh)];
    for (const auto& t : mesh.triangles) {
        const Vec3 corners[] = {mesh.positions[t[0]], mesh.positions[t[1]], mesh.positions[t[2]]};
        if (!std::all_of(corners, corners + 3, is_usable) ||
            !has_area(corners[0], corners[1], corners[2])) {
            ++soup.skipped;
            continue;
        }
        for (const Vec3 p : corners) {
            soup.low = {std::min(soup.low.x, p.x), std::min(soup.low.y, p.y),
                        std::min(soup.low.z, p.z)};
            soup.high = {std::max(soup.high.x, p.x), std::max(soup.high.y, p.y),
                         std::max(soup.high.z, p.z)};
        }
        list.push_back({{first + t[0], first + t[1], first + t[2]}, index, 0});
    }
    for (const Vec3 p : mesh.positions) // unused ones must not reach Embree either
        soup.positions.push_back(is_usable(p) ? p : Vec3{});
}

template <typename T>
void add_attribute(std::vector<T>& all, const std::vector<T>& own, std::size_t first) {
    std::copy(own.begin(), own.end(), all.begin() + static_cast<std::ptrdiff_t>(first));
}

void add_attributes(TriangleSoup& soup, const std::vector<Mesh>& meshes) {
    for (std::size_t i = 0; i < soup.meshes.size(); ++i) {
        if (soup.meshes[i].has_normals) {
            soup.normals.resize(soup.positions.size());
            add_attribute(soup.normals, meshes[i].normals, soup.meshes[i].first_vertex);
        }
        if (soup.meshes[i].has_uvs) {
            soup.uvs.resize(soup.positions.size());
            add_attribute(soup.uvs, meshes[i].uvs, soup.meshes[i].first_vertex);
        }
    }
}

} // namespace

std::size_t TriangleSoup::triangle_count() const {
    std::size_t count = 0;
    for (const auto& list : lists)
        count += list.size();
    return count;
}

void check_materials(const Scene& scene) {
    for (std::size_t i = 0; i < scene.materials.size(); ++i)
        check_material(scene.materials[i], i, scene.textures.size());
}

TriangleSoup make_triangle_soup(const std::vector<Mesh>& meshes,
                                const std::vector<Material>& materials, const std::string& owner,
                                bool all_have_order) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    std::size_t vertices = 0;
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        check_mesh(meshes[i], materials.size(), owner + "mesh " + std::to_string(i));
        vertices += meshes[i].positions.size();
    }
    if (vertices > most || meshes.size() > most)
        throw std::invalid_argument("scene: more than 2147483647 vertices or meshes");
    TriangleSoup soup;
    soup.positions.reserve(vertices + 1); // one more for the padding, see Accel
    std::array<std::size_t, triangle_kinds> triangles{};
    for (const Mesh& mesh : meshes)
        triangles[kind_of(materials[mesh.material], mesh)] += mesh.triangles.size();
    for (std::size_t kind = 0; kind < triangles.size(); ++kind)
        soup.lists[kind].reserve(triangles[kind]);
    soup.low = Vec3{1, 1, 1} * infinity;
    soup.high = Vec3{1, 1, 1} * -infinity;
    for (std::uint32_t i = 0; i < meshes.size(); ++i)
        add_mesh(soup, meshes[i], materials[meshes[i].material], i);
    for (std::uint32_t i = 0; i < meshes.size(); ++i)
        soup.meshes[i].order =
            meshes[i].order == Mesh::no_order && all_have_order ? 0x80000000u + i : meshes[i].order;
    add_attributes(soup, meshes);
    if (soup.triangle_count() == 0)
        soup.low = soup.high = {0, 0, 0};
    return soup;
}

} // namespace renderer
