// What stands ahead of the vertices of a mesh, and what ends it.
#include "host/db/dictionary.h"
#include "omb_qorvane/ac_material.h"
#include "omb_qorvane/entity_functions.h"
#include "omb_qorvane/omb_export.h"
#include "omb_qorvane/record_text.h"
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include <algorithm>
#include <fmt/printf.h>

const cl_stream_transform& CTsAcGiGeometry::transform() {
    if (!transform_valid_) {
        transform_ =
            cl_stream_transform::make(common_.tsdoc.ModelToWorldTransform(), common_.tsdoc.m_Scale);
        transform_valid_ = true;
    }
    return transform_;
}

void CTsAcGiGeometry::write_point(const AcGePoint3d& p) {
    const double f = transform_.vert_factor;
    out_.vertex(p.x * f, p.y * f, p.z * f);
}

void CTsAcGiGeometry::drop_bad() { ++common_.report.bad_primitives; }

bool CTsAcGiGeometry::drop_if_bad(std::span<const AcGePoint3d> points) {
    const cl_stream_transform& t = transform();
    const bool good = std::all_of(points.begin(), points.end(), [&t](const AcGePoint3d& p) {
        return is_finite(p) && is_finite(t.to_ts(p));
    });
    if (!good) {
        drop_bad();
    }
    return !good;
}

std::string_view CTsAcGiGeometry::mapping_key() {
    const CTsAcSubEntityTraits& traits = *common_.traits;
    if (traits.has_own_color()) {
        key_text_ = traits.true_color.isByColor() ? true_color_key(traits.true_color.word())
                                                  : color_index_key(traits.color_index);
        return key_text_;
    }
    const cl_layer_facts& layer = common_.layers.find(traits.layer_id);
    return layer.readable ? std::string_view(layer.key) : std::string_view();
}

void CTsAcGiGeometry::find_effective_material() {
    const AcDbObjectId id = common_.resolution.effective_material(*common_.traits);
    if (!last_material_valid_ || id.stub() != last_material_) {
        last_material_ = id.stub();
        last_material_valid_ = true;
        material_name_.clear();
        if (const CTsMaterial* toolkit = common_.tsdoc.ToolkitMaterial(id)) {
            material_name_ = toolkit_material_name(*toolkit);
        } else if (id.isValid()) {
            const AcDbObjectPointer<AcDbMaterial> material(id);
            material_name_ = material ? material->name() : std::string();
        }
        material_lines_ = fmt::sprintf("#;MATL: %s\n", record_name(material_name_));
        material_index_ = common_.exporter.material_names.index_of(material_name_);
    }
}

void CTsAcGiGeometry::write_key_lines() {
    const CTsAcSubEntityTraits& traits = *common_.traits;
    cl_layer_facts& layer = common_.layers.find(traits.layer_id);
    if (layer.has_light_tag) {
        out_.text("LLIT;");
        out_.text(layer.light_tag);
        out_.text("\n");
    }
    const std::string_view key = mapping_key();
    if (key.empty()) {
        out_.text("NOLY;0\n");
        return;
    }
    out_.text("LAYR;");
    out_.text(key);
    out_.text("\n");
}

void CTsAcGiGeometry::note_host_materials() {
    const CTsAcSubEntityTraits& traits = *common_.traits;
    const AcDbObjectId own = common_.resolution.material(traits);
    const AcDbObjectId of_layer = common_.resolution.layer_material(traits);
    if (own == of_layer || !own.isValid() || !of_layer.isValid()) {
        return;
    }
    const auto name_of = [](AcDbObjectId id) {
        const AcDbObjectPointer<AcDbMaterial> material(id);
        return material ? material->name() : std::string();
    };
    const std::string& layer = common_.layers.find(traits.layer_id).name;
    common_.exporter.add_entry_to_material_map_file("LYR", layer, "", name_of(of_layer));
    common_.exporter.add_entry_to_material_map_file(
        "HNDL", "", std::to_string(common_.entity_handle), name_of(own));
}

void CTsAcGiGeometry::write_material_lines(bool shell) {
    const CTsAcSubEntityTraits& traits = *common_.traits;
    find_effective_material();
    note_host_materials();
    cl_layer_facts& layer = common_.layers.find(traits.layer_id);
    if (traits.has_own_color()) {
        (void)mapping_key();
        common_.exporter.add_material_layer(key_text_);
    } else if (layer.readable && !layer.in_material_layers) {
        common_.exporter.add_material_layer(layer.name);
        layer.in_material_layers = true;
    }
    out_.text(material_lines_);
    if (shell) {
        // A shell has no colour and no key of its own; these comments carry them.
        out_.hex("#;COLOR: ", colr_value(common_.resolution.color(traits)));
        const std::string_view key = mapping_key();
        if (!key.empty()) {
            out_.text("#;KEY: ");
            out_.text(key);
            out_.text("\n");
        }
    }
    out_.integer("MATL;", material_index_);
}

void CTsAcGiGeometry::add_object_properties() {
    CTsAcSubEntityTraits& traits = *common_.traits; // its decals have been written
    std::uint32_t flags = 0; // nothing sets a flag; the renderer would accept the five below
    traits.m_Flags = 0;
    if (traits.light_number >= 0) {
        const bool dynamic = traits.light_number == common_.exporter.dynamic_light_index;
        out_.integer(dynamic ? "DYLT;" : "LITE;", traits.light_number);
    }
    out_.text("THICK;1\nSHDW;1\n");
    static constexpr std::array<std::string_view, 5> flag_words{"CAUS;", "ALPH;", "FCTD;", "MNCR;",
                                                                "GATHER;"};
    for (std::size_t bit = 0; bit < flag_words.size(); ++bit) {
        if ((flags >> bit & 1U) != 0) {
            out_.integer(flag_words[bit], 1);
        }
    }
    if (traits.ground_cover != nullptr) {
        write_ground_cover(*traits.ground_cover, common_);
    }
}

bool CTsAcGiGeometry::begin_mesh(std::string_view comment, bool own_texture_coordinates) {
    if (common_.scan_only) {
        return false;
    }
    transform();
    write_object_decals(common_); // ahead of the whole preamble
    out_.text(comment);
    out_.text("\nMESH;\n");
    out_.text(own_texture_coordinates ? "MPUV;1\n" : "MPUV;0\n");
    add_object_properties();
    write_key_lines();
    const CTsAcSubEntityTraits& traits = *common_.traits;
    out_.hex("COLR;", colr_value(common_.resolution.color(traits)));
    out_.integer("COLN;", traits.color_index);
    write_material_lines(false);
    out_.handle("HNDL;", common_.entity_handle);
    out_.text(transform_.rotation_line);
    if (traits.light_number != -1) {
        out_.integer("LITE;", traits.light_number);
    }
    common_.stack.start_new_block_if_nec(out_);
    return true;
}

bool CTsAcGiGeometry::begin_shell(bool own_texture_coordinates) {
    if (common_.scan_only) {
        return false;
    }
    transform();
    common_.stack.start_new_block_if_nec(out_);
    out_.text("#;NEW MESH;\nMESH;\n#;ACAD SHELL;\nCULL;0\n");
    out_.text(own_texture_coordinates ? "MPUV;1\n" : "MPUV;0\n");
    write_object_decals(common_);
    add_object_properties();
    write_material_lines(true);
    if (common_.entity_handle != 0) {
        out_.handle("HNDL;", common_.entity_handle);
    }
    out_.text(transform_.rotation_line);
    return true;
}

void CTsAcGiGeometry::end_mesh() { out_.text("EMSH;\n#;\n"); }

void CTsAcGiGeometry::write_built_mesh(const cl_mesh_builder& mesh) {
    std::int32_t index = 0;
    for (const cl_mesh_vert& vertex : mesh.vertices()) {
        write_normal(vertex.normal);
        write_point(vertex.position);
        out_.add_vertex(index++);
    }
    for (const cl_mesh_face& f : mesh.faces()) {
        if (f.a != f.b && f.b != f.c && f.a != f.c) {
            out_.face(f.a, f.b, f.c);
        }
        if (f.c != f.d && f.d != f.a && f.c != f.a) {
            out_.face(f.c, f.d, f.a);
        }
    }
    end_mesh();
}
