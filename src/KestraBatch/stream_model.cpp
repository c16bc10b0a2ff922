// The target that keeps a stream's geometry.
#include "KestraBatch/stream_model.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace KestraBatch {

namespace {

// Shells carry no colour and no mapping key of their own; a writer may tell them in comments.
constexpr std::string_view color_comment = "COLOR: ";
constexpr std::string_view key_comment = "KEY: ";

bool finite(const Triple& t) {
    return std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.z);
}

} // namespace

void StreamModel::expect(std::uint64_t bytes) {
    constexpr std::uint64_t bytes_a_vertex = 100, bytes_a_triangle = 200, bytes_a_mesh = 400;
    constexpr std::uint64_t most = std::uint64_t{4} << 30;
    const auto expected = static_cast<std::size_t>(std::min(bytes, most));
    positions.reserve(expected / bytes_a_vertex);
    triangles.reserve(expected / bytes_a_triangle);
    meshes.reserve(expected / bytes_a_mesh);
}

std::uint32_t StreamModel::intern(std::string_view text) {
    const auto [at, added] =
        name_index_.try_emplace(std::string(text), static_cast<std::uint32_t>(names.size()));
    if (added) {
        names.emplace_back(text);
    }
    return at->second;
}

void StreamModel::comment(std::string_view text) {
    if (!in_mesh_) {
        return;
    }
    if (text.starts_with(color_comment)) {
        std::uint32_t value = 0;
        if (parse_integer(text.substr(color_comment.size()), value, 16) && value <= 0xffffff) {
            mesh().has_comment_color = true;
            mesh().comment_color = value;
        }
    } else if (text.starts_with(key_comment) && mesh().mapping_key == no_name) {
        mesh().mapping_key = intern(text.substr(key_comment.size()));
    }
}

void StreamModel::material_file(std::string_view name) { pending_material_ = name; }

void StreamModel::material_index(int index) {
    material_files[index] = pending_material_;
    if (in_mesh_) {
        mesh().material = index;
    }
}

void StreamModel::begin_block(std::string_view name) {
    const std::uint32_t parent = open_blocks_.empty() ? no_name : open_blocks_.back();
    open_blocks_.push_back(static_cast<std::uint32_t>(blocks.size()));
    blocks.push_back({intern(name), no_name, parent});
    if (copies_) {
        copies_->begin_block(*this);
    }
    if (in_mesh_) {
        mesh().block = open_blocks_.back(); // brackets open late, behind a mesh's preamble
    }
}

void StreamModel::block_layer(std::string_view name) {
    blocks[open_blocks_.back()].layer = intern(name);
}

void StreamModel::end_block(std::string_view) {
    open_blocks_.pop_back();
    if (copies_) {
        if (in_mesh_) {
            copies_->keep_open_blocks();
        }
        copies_->end_block(*this);
    }
}

void StreamModel::begin_mesh() {
    MeshRecord record;
    record.first_vertex = positions.size();
    record.first_triangle = triangles.size();
    record.block = open_blocks_.empty() ? no_name : open_blocks_.back();
    record.line = line;
    meshes.push_back(record);
    in_mesh_ = true;
    has_pending_normal_ = false;
}

void StreamModel::mesh_flag(MeshFlag flag, int value) {
    if (flag == MeshFlag::culled) {
        mesh().is_shell = true;
    } else if (flag == MeshFlag::invisible) {
        mesh().invisible = value != 0;
    }
}

void StreamModel::mapping_key(std::string_view key) { mesh().mapping_key = intern(key); }

void StreamModel::color(std::uint32_t color) {
    mesh().has_color = true;
    mesh().color = color;
}

void StreamModel::mesh_material(int index) { mesh().material = index; }

void StreamModel::handle(std::uint64_t handle) { mesh().handle = handle; }

void StreamModel::normal(const Triple& direction) {
    pending_normal_ = {static_cast<float>(direction.x), static_cast<float>(direction.y),
                       static_cast<float>(direction.z)};
    has_pending_normal_ = true;
}

void StreamModel::vertex(const Triple& point) { pending_vertex_ = point; }

/// The first normal of a mesh: the vertices before it get none.
void StreamModel::start_normals() {
    mesh().has_normals = true;
    mesh().first_normal = normals.size();
    normals.resize(normals.size() + (positions.size() - mesh().first_vertex));
}

void StreamModel::add_vertex(std::uint32_t index) {
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    positions.resize(mesh().first_vertex + index, {nothing, nothing, nothing}); // left-out numbers
    non_finite_vertices += finite(pending_vertex_) ? 0 : 1;
    if (has_pending_normal_ && !mesh().has_normals) {
        start_normals();
    }
    if (mesh().has_normals) {
        normals.resize(mesh().first_normal + index);
        normals.push_back(has_pending_normal_ ? pending_normal_ : std::array<float, 3>{});
    }
    positions.push_back(pending_vertex_);
    has_pending_normal_ = false;
}

void StreamModel::face(const std::array<std::uint32_t, 3>& triangle) {
    triangles.push_back(triangle);
}

void StreamModel::end_mesh() {
    in_mesh_ = false;
    mesh().vertex_count = positions.size() - mesh().first_vertex;
    mesh().triangle_count = triangles.size() - mesh().first_triangle;
    if (mesh().triangle_count == 0) { // outlines and the like: nothing to see
        positions.resize(mesh().first_vertex);
        if (mesh().has_normals) {
            normals.resize(mesh().first_normal);
        }
        meshes.pop_back();
        return;
    }
    measure_mesh();
    if (copies_) {
        copies_->end_mesh(*this);
    }
}

void StreamModel::measure_mesh() {
    for (std::size_t i = mesh().first_vertex; i < positions.size(); ++i) {
        const Triple& p = positions[i];
        if (!finite(p)) {
            continue;
        }
        if (!has_box) {
            low = high = p;
            has_box = true;
        }
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
}

void StreamModel::lamp(int number) { mesh().lamp = number; }

void StreamModel::ground_cover(int number) { mesh().cover_number = number; }

void StreamModel::ground_cover_file(std::string_view file) { mesh().cover_file = intern(file); }

void StreamModel::plant_text(std::string_view keyword, std::string_view text) {
    if (keyword == "PLNM") {
        pending_plant_.definition = text;
    }
}

void StreamModel::plant_number(std::string_view keyword, double value) {
    if (keyword == "PLDM") {
        pending_plant_.diameter = value;
        pending_plant_.library = true;
    } else if (keyword == "PLSN") {
        pending_plant_.season = static_cast<int>(value);
    } else if (keyword == "PLRT") {
        pending_plant_.rotation = value;
    } else if (keyword == "PLSC") {
        pending_plant_.scale = value;
    }
}

void StreamModel::end_plant(int) {
    pending_plant_.line = line;
    plants.push_back(std::exchange(pending_plant_, {}));
}

void StreamModel::end_light(int number) {
    pending_light_.number = number;
    pending_light_.line = line;
    lights.push_back(std::exchange(pending_light_, {}));
}

void StreamModel::decal_triple(std::string_view keyword, const Triple& value) {
    static constexpr std::pair<std::string_view, Triple DecalRecord::*> places[] = {
        {"DECO", &DecalRecord::origin}, {"DECX", &DecalRecord::x_axis},
        {"DECY", &DecalRecord::y_axis}, {"DECZ", &DecalRecord::z_axis},
        {"DECS", &DecalRecord::scale},  {"DEC1", &DecalRecord::start},
        {"DEC2", &DecalRecord::end},    {"DECN", &DecalRecord::normal},
    };
    for (const auto& [name, place] : places) {
        if (name == keyword) {
            pending_decal_.*place = value;
        }
    }
    pending_decal_.is_image = pending_decal_.is_image || keyword == "DEC1";
}

void StreamModel::decal_number(std::string_view keyword, double value) {
    (keyword == "DECW" ? pending_decal_.width : pending_decal_.height) = value;
}

void StreamModel::end_decal(std::string_view file) {
    pending_decal_.file = file;
    pending_decal_.line = line;
    decals.push_back(std::exchange(pending_decal_, {}));
}

void StreamCounter::vertex(const Triple& point) {
    if (!finite(point)) {
        return;
    }
    if (vertices++ == 0) {
        low = high = point;
    }
    low = {std::min(low.x, point.x), std::min(low.y, point.y), std::min(low.z, point.z)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y), std::max(high.z, point.z)};
}

} // namespace KestraBatch
