// The geometry of a stream as plain data: the target that keeps what a scene is made of.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/stream_copies.h"
#include "KestraBatch/stream_target.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace KestraBatch {

inline constexpr std::uint32_t no_name = 0xffffffffu;

/// One mesh of the stream. Vertices and triangles are runs of the model's arrays; the indices of a
/// triangle count from the mesh's first vertex.
struct MeshRecord {
    std::size_t first_vertex = 0, vertex_count = 0;
    std::size_t first_triangle = 0, triangle_count = 0;
    std::size_t first_normal = 0;
    bool has_normals = false;       ///< then as many normals as vertices; a zero one is missing
    bool has_color = false;         ///< COLR was there
    bool has_comment_color = false; ///< the comment form "#;COLOR: " was there
    bool is_shell = false;          ///< told by its CULL record
    bool invisible = false;
    std::uint32_t color = 0;             ///< 0x00BBGGRR
    std::uint32_t comment_color = 0;     ///< 0x00BBGGRR
    std::int32_t material = 0;           ///< index of a material file, 0 for none
    std::uint32_t mapping_key = no_name; ///< index into names: "LAY:...", "COL:..." or "RGB:...";
                                         ///< for a shell from the comment form "#;KEY: "
    std::uint32_t block = no_name;       ///< index into blocks
    std::uint64_t handle = 0;            ///< of the entity, 0 when it is not told
    std::int32_t lamp = -1;              ///< number of the light that the mesh is the lamp of
    std::uint32_t cover_file = no_name;  ///< index into names: definition of its ground cover
    std::int32_t cover_number = 0;
    std::size_t line = 0; ///< where the mesh begins in the stream
};

/// One instance of a block that holds geometry.
struct BlockRecord {
    std::uint32_t name = no_name;  ///< index into names
    std::uint32_t layer = no_name; ///< index into names
    std::uint32_t parent = no_name;
    std::uint32_t closing = no_name; ///< order in which the blocks ended
};

/// A block again, at another place. Where a StreamModel looks for copies, a block in `blocks` is
/// what one or more of them are copies of, or stands alone.
struct CopyRecord {
    std::uint32_t original = 0;    ///< index into blocks
    std::uint32_t block = no_name; ///< that it stands in; index into blocks
    Similarity place;              ///< from the original's coordinates
};

/// One plant. What its records do not tell keeps the value that says so.
struct PlantRecord {
    std::string definition; ///< file in the folder of plants
    Triple location;        ///< drawing units for a library plant, metres for any other
    bool library = false;   ///< told by its diameter
    double diameter = 0;    ///< metres; 0 when it is not told
    int season = -1;
    double rotation = 0; ///< degrees about Z
    double scale = 1;
    std::size_t line = 0;
};

/// One light; what it is stands in its file.
struct LightRecord {
    int type = 0;
    int number = 0;
    Triple origin; ///< as in its file
    std::size_t line = 0;
};

/// One decal: an object's, by its own file, or a picture that hangs in the drawing. Metres.
struct DecalRecord {
    std::string file;
    bool is_image = false; ///< then corners, normal, width and height are told
    Triple origin, x_axis, y_axis, z_axis, scale;
    Triple start, end, normal;
    double width = 0, height = 0;
    std::size_t line = 0;
};

/// Keeps geometry, colours, materials, mapping keys, handles and block membership, and plants,
/// lights and decals. Texture coordinates are not kept: no material has an image yet.
class StreamModel : public StreamTarget {
public:
    std::vector<Triple> positions; ///< drawing units times 0.0254; may hold NaN and infinity
    std::vector<std::array<float, 3>> normals;
    std::vector<std::array<std::uint32_t, 3>> triangles;
    std::vector<MeshRecord> meshes;
    std::vector<BlockRecord> blocks;
    std::vector<CopyRecord> copies; ///< none unless they are looked for
    std::vector<PlantRecord> plants;
    std::vector<LightRecord> lights;
    std::vector<DecalRecord> decals;
    std::vector<std::string> names;
    /// Material files of the drawing by index; the index stands in MeshRecord::material.
    std::unordered_map<std::int32_t, std::string> material_files;
    std::uint32_t face_color = 0xc8c8c8; ///< for meshes that nothing else colours
    std::size_t non_finite_vertices = 0;
    bool has_box = false;
    Triple low, high; ///< box of the finite vertices of all meshes, copies included

    /// From now on blocks that are copies of earlier ones are kept as such: see CopyFinder.
    void find_copies() { copies_.emplace(); }
    /// Makes room for what a stream of so many bytes may hold, so that the arrays need not move
    /// while they grow. Memory that is not used stays with the system.
    void expect(std::uint64_t bytes);
    bool is_in_mesh() const { return in_mesh_; }

    void comment(std::string_view text) override;
    void default_face_color(std::uint32_t color) override { face_color = color; }
    void material_file(std::string_view name) override;
    void material_index(int index) override;
    void begin_block(std::string_view name) override;
    void block_layer(std::string_view name) override;
    void end_block(std::string_view name) override;
    void begin_mesh() override;
    void mesh_flag(MeshFlag flag, int value) override;
    void mapping_key(std::string_view key) override;
    void color(std::uint32_t color) override;
    void mesh_material(int index) override;
    void handle(std::uint64_t handle) override;
    void normal(const Triple& direction) override;
    void vertex(const Triple& point) override;
    void add_vertex(std::uint32_t index) override;
    void face(const std::array<std::uint32_t, 3>& triangle) override;
    void end_mesh() override;
    void lamp(int number) override;
    void dynamic_lamp(int number) override { lamp(number); }
    void ground_cover(int number) override;
    void ground_cover_file(std::string_view file) override;
    void plant_text(std::string_view keyword, std::string_view text) override;
    void plant_number(std::string_view keyword, double value) override;
    void plant_location(const Triple& point) override { pending_plant_.location = point; }
    void end_plant(int count) override;
    void light_type(int type) override { pending_light_.type = type; }
    void light_origin(const Triple& point) override { pending_light_.origin = point; }
    void end_light(int number) override;
    void decal_triple(std::string_view keyword, const Triple& value) override;
    void decal_number(std::string_view keyword, double value) override;
    void end_decal(std::string_view file) override;
    void end() override { copies_.reset(); }

private:
    std::uint32_t intern(std::string_view text);
    MeshRecord& mesh() { return meshes.back(); }
    void start_normals();
    void measure_mesh();

    std::unordered_map<std::string, std::uint32_t> name_index_;
    std::string pending_material_;
    PlantRecord pending_plant_;
    LightRecord pending_light_;
    DecalRecord pending_decal_;
    std::vector<std::uint32_t> open_blocks_;
    Triple pending_vertex_;
    std::array<float, 3> pending_normal_{};
    std::optional<CopyFinder> copies_;
    bool has_pending_normal_ = false;
    bool in_mesh_ = false;
};

/// Counts only: for `inspect`, tests and benchmarks.
class StreamCounter : public StreamTarget {
public:
    std::uint64_t vertices = 0, triangles = 0, normals = 0;
    Triple low, high; ///< box of the finite vertices; meaningless when there are none

    void normal(const Triple&) override { ++normals; }
    void vertex(const Triple& point) override;
    void face(const std::array<std::uint32_t, 3>&) override { ++triangles; }
};

} // namespace KestraBatch
