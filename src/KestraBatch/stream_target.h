// What reads a geometry stream calls: one method per record, in file order.
#pragma once

#include "KestraBatch/record_fields.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace KestraBatch {

/// Flags of a mesh that are a number each.
enum class MeshFlag {
    culled,
    own_texture_coordinates,
    invisible,
    thick,
    shadow,
    caustics,
    alpha,
    faceted,
    mirror,
    gather,
};

/// Receives the records of one stream. The reader has checked their form and their order: mesh
/// records come between begin_mesh and end_mesh, add_vertex counts up from 0 behind a vertex (and
/// may leave numbers out), and faces use added vertices only. Views into text are valid during the
/// call. Colours are 0x00BBGGRR. All methods do nothing unless overridden.
class StreamTarget {
public:
    virtual ~StreamTarget() = default;

    std::size_t line = 0; ///< number of the line that is being delivered, set by the reader

    virtual void comment(std::string_view) {} ///< the text behind "#;"
    virtual void default_face_color(std::uint32_t) {}
    virtual void default_edge_color(std::uint32_t) {}
    virtual void material_file(std::string_view) {} ///< file level, or inside a mesh
    virtual void material_index(int) {}             ///< of the material file above
    virtual void begin_block(std::string_view) {}   ///< name without its indent
    virtual void block_layer(std::string_view) {}   ///< of the block that was begun last
    virtual void end_block(std::string_view) {}

    virtual void begin_mesh() {}
    virtual void mesh_flag(MeshFlag, int) {}
    virtual void light_tag(std::string_view) {}
    virtual void mapping_key(std::string_view) {} ///< "LAY:name", "COL:index" or "RGB:(r,g,b)"
    virtual void no_layer() {}
    virtual void color(std::uint32_t) {}
    virtual void color_index(int) {}
    virtual void mesh_material(int) {} ///< index of a material file, 0 for none
    virtual void handle(std::uint64_t) {}
    virtual void rotation(double) {} ///< degrees about Z
    virtual void lamp(int) {}
    virtual void dynamic_lamp(int) {}
    virtual void ground_cover(int) {}
    virtual void ground_cover_file(std::string_view) {}
    virtual void normal(const Triple&) {}  ///< of the next vertex
    virtual void texture(const Triple&) {} ///< u and v of the next vertex
    virtual void vertex(const Triple&) {}  ///< drawing units times 0.0254
    virtual void add_vertex(std::uint32_t) {}
    virtual void face(const std::array<std::uint32_t, 3>&) {}
    virtual void end_mesh() {}

    virtual void plant_text(std::string_view /*keyword*/, std::string_view) {}
    virtual void plant_number(std::string_view /*keyword*/, double) {}
    virtual void plant_location(const Triple&) {}
    virtual void end_plant(int) {}
    virtual void light_type(int) {}
    virtual void light_origin(const Triple&) {}
    virtual void end_light(int) {}
    virtual void decal_triple(std::string_view /*keyword*/, const Triple&) {}
    virtual void decal_number(std::string_view /*keyword*/, double) {}
    virtual void end_decal(std::string_view /*file*/) {}

    virtual void end() {}
};

} // namespace KestraBatch
