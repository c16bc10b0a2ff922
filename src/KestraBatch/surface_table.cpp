// Resolves the surface of a mesh once per combination of material, colour and mapping key.
#include "KestraBatch/surface_table.h"

#include "KestraBatch/color.h"
#include "KestraBatch/surface_guess.h"
#include "omb/base/folders.h"

#include <algorithm>
#include <array>

namespace KestraBatch {

namespace {

constexpr std::uint32_t no_color = 0xffffffffu;
constexpr std::string_view toolkit_prefix = "Tessara-";
constexpr std::string_view layer_mark = "LAY:";

/// The renderer counts light in luminous units: a luminance of 1 is 683 candela a square metre.
constexpr double lumens_per_watt = 683.0;

/// Materials that a drawing always has and that let the colour of the object through.
bool is_stand_in(std::string_view name) {
    constexpr std::array<std::string_view, 3> names{"global", "bylayer", "byblock"};
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return std::find(names.begin(), names.end(), lower) != names.end();
}

float share(double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); }

renderer::Rgb linear(const CTsColor& c) {
    return {linear_from_srgb(c.r), linear_from_srgb(c.g), linear_from_srgb(c.b)};
}

/// A material that lets light through. One that is called glass is a clear pane; another keeps as
/// much of its body as it is opaque. An index of 1 is what files have that do not know it.
renderer::Material transparent_surface(const CTsMaterial& material) {
    const renderer::Rgb color = linear(material.m_Color);
    const renderer::Material pane = make_surface(SurfaceKind::glass, color);
    const float through = share(material.m_Transparency);
    const bool is_pane = through >= 0.3f && guess_surface(material.m_Name) == SurfaceKind::glass;
    renderer::Material surface = is_pane ? pane : make_surface(SurfaceKind::paint, color);
    if (!is_pane) {
        surface.base_color = surface.base_color * (1 - through) + pane.base_color * through;
        surface.transmission = through;
        surface.roughness = 1 - share(material.m_Sharpness);
    }
    surface.ior =
        material.m_Index > 1.01 ? static_cast<float>(std::min(material.m_Index, 3.0)) : pane.ior;
    return surface;
}

renderer::Material reflecting_surface(const CTsMaterial& material) {
    renderer::Material surface = make_surface(SurfaceKind::paint, linear(material.m_Color));
    const float reflection = share(material.m_Reflection);
    surface.roughness = 1 - share(material.m_Sharpness);
    surface.specular = 0.5f + 0.5f * reflection;
    surface.metallic = share((reflection - 0.6) / 0.4); // a mirror reflects its own colour
    return surface;
}

/// A material that says nothing of reflections: the kind that its name tells, as sharp as it says.
/// Glass that lets nothing through is the front of a building: it mirrors.
renderer::Material plain_surface(const CTsMaterial& material) {
    const float sharpness = share(material.m_Sharpness);
    const SurfaceKind kind = guess_surface(material.m_Name);
    const bool mirrors = kind == SurfaceKind::glass && sharpness > 0;
    renderer::Material surface =
        make_surface(mirrors ? SurfaceKind::paint : kind, linear(material.m_Color));
    if (sharpness > 0 && kind != SurfaceKind::water) {
        surface.roughness = std::max(0.03f, 1 - sharpness);
        surface.specular = mirrors ? 1.0f : surface.specular;
    }
    return surface;
}

/// A toolkit material: what it says itself rules, its name only fills in what it leaves open.
renderer::Material surface_from(const CTsMaterial& material) {
    renderer::Material surface = material.m_Transparency > 0 ? transparent_surface(material)
                                 : material.m_Reflection > 0 ? reflecting_surface(material)
                                                             : plain_surface(material);
    const auto glow = static_cast<float>(std::max(material.m_Glow, 0.0) / lumens_per_watt);
    surface.emission = linear(material.m_Color) * glow;
    return surface;
}

/// The material in the object's colour, when it takes that and there is one.
CTsMaterial in_color(CTsMaterial material, std::uint32_t color) {
    if (material.m_UsesObjectColor && color != no_color) {
        material.m_Color = {(color & 255u) / 255.0, (color >> 8 & 255u) / 255.0,
                            (color >> 16 & 255u) / 255.0};
    }
    return material;
}

bool equal(const renderer::Material& a, const renderer::Material& b) {
    const auto tie = [](const renderer::Material& m) {
        return std::make_tuple(m.base_color.x, m.base_color.y, m.base_color.z, m.roughness,
                               m.metallic, m.specular, m.transmission, m.ior, m.emission.x,
                               m.emission.y, m.emission.z);
    };
    return tie(a) == tie(b);
}

std::uint32_t color_of(const MeshRecord& mesh) {
    return mesh.has_color ? mesh.color : mesh.has_comment_color ? mesh.comment_color : no_color;
}

} // namespace

SurfaceTable::SurfaceTable(const StreamModel& model, std::filesystem::path folder,
                           WarningList& warnings)
  : model_(model)
  , folder_(std::move(folder))
  , warnings_(warnings) {}

std::uint32_t SurfaceTable::surface_of(const MeshRecord& mesh) {
    const Key key{mesh.material, color_of(mesh), mesh.mapping_key};
    const auto at = by_key_.find(key);
    if (at != by_key_.end()) {
        return at->second;
    }
    const std::uint32_t surface = add(resolve(mesh));
    by_key_.emplace(key, surface);
    return surface;
}

std::uint32_t SurfaceTable::add(const renderer::Material& surface) {
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
        if (equal(surfaces_[i], surface)) {
            return static_cast<std::uint32_t>(i);
        }
    }
    surfaces_.push_back(surface);
    return static_cast<std::uint32_t>(surfaces_.size() - 1);
}

renderer::Material SurfaceTable::resolve(const MeshRecord& mesh) {
    const std::uint32_t color = color_of(mesh);
    const FileMaterial* file = mesh.material != 0 ? file_material(mesh.material) : nullptr;
    if (file && !(file->is_stand_in && color != no_color)) {
        return surface_from(in_color(file->material, color));
    }
    SurfaceKind kind = SurfaceKind::paint;
    if (mesh.mapping_key != no_name) {
        const std::string_view key = model_.names[mesh.mapping_key];
        if (key.starts_with(layer_mark)) {
            kind = guess_surface(key.substr(layer_mark.size()));
        }
    }
    return make_surface(kind, linear_from_colorref(color == no_color ? model_.face_color : color));
}

const FileMaterial* SurfaceTable::file_material(std::int32_t index) {
    const auto [at, added] = files_.try_emplace(index);
    if (added) {
        at->second = read_material(index);
    }
    return at->second ? &*at->second : nullptr;
}

std::optional<FileMaterial> SurfaceTable::read_material(std::int32_t index) {
    const auto listed = model_.material_files.find(index);
    if (listed == model_.material_files.end()) {
        warnings_.add("material-not-listed", "the stream lists no file for material " +
                                                 std::to_string(index) + "; colours are used");
        return std::nullopt;
    }
    const std::string file = path_name(listed->second); // never leaves its folder
    const std::filesystem::path path = folder_ / file;
    CTsMaterial material;
    std::string error;
    if (!material.ReadFile(path.string(), error)) {
        warnings_.add("material-unreadable", error + "; colours are used instead");
        return std::nullopt;
    }
    std::string name =
        material.m_Name.empty() ? decode_file_name(path_stem(file)) : material.m_Name;
    if (name.starts_with(toolkit_prefix)) {
        name.erase(0, toolkit_prefix.size());
    }
    material.m_Name = name;
    return FileMaterial{material, is_stand_in(name)};
}

} // namespace KestraBatch
