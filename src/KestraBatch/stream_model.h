// The geometry of a stream as plain data: the target that keeps what a scene is made of.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/stream_target.h"

#include <array>
#include <cstdint>
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
    std::size_t line = 0;                ///< where the mesh begins in the stream
};

/// One instance of a block that holds geometry.
struct BlockRecord {
    std::uint32_t name = no_name;  ///< index into names
    std::uint32_t layer = no_name; ///< index into names
    std::uint32_t parent = no_name;
};

/// Keeps geometry, colours, materials, mapping keys, handles and block membership. Texture
/// coordinates are not kept: nothing is rendered with an image yet.
class StreamModel : public StreamTarget {
public:
    std::vector<Triple> positions; ///< drawing units times 0.0254; may hold NaN and infinity
    std::vector<std::array<float, 3>> normals;
    std::vector<std::array<std::uint32_t, 3>> triangles;
    std::vector<MeshRecord> meshes;
    std::vector<BlockRecord> blocks;
    std::vector<std::string> names;
    /// Material files of the drawing by index; the index stands in MeshRecord::material.
    std::unordered_map<std::int32_t, std::string> material_files;
    std::uint32_t face_color = 0xc8c8c8; ///< for meshes that nothing else colours
    std::size_t non_finite_vertices = 0;

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

private:
    std::uint32_t intern(std::string_view text);
    MeshRecord& mesh() { return meshes.back(); }
    void start_normals();

    std::unordered_map<std::string, std::uint32_t> name_index_;
    std::string pending_material_;
    std::vector<std::uint32_t> open_blocks_;
    Triple pending_vertex_;
    std::array<float, 3> pending_normal_{};
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
