// Finds blocks of a stream that are copies of earlier ones. The stream tells all geometry in world
// coordinates, so a thousand chairs are a thousand meshes; what is found to be a chair again is
// kept as the place of a copy.
#pragma once

#include "KestraBatch/similarity.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace KestraBatch {

class StreamModel;
struct MeshRecord;

/// A block inside another: a block that is kept, or a copy of one.
struct NestedBlock {
    std::uint32_t block = 0; ///< index into StreamModel::blocks
    Similarity place;        ///< from that block's own coordinates
};

/// Follows the blocks of a model while it is read. When a block ends that is an earlier one of the
/// same name, moved, turned, mirrored or scaled evenly, the model's arrays go back to where the
/// block began, and a CopyRecord stands for it. Inner blocks end first: an outer block is compared
/// by its own meshes and by the places of the blocks in it.
///
/// Two blocks are the same when they hold equal meshes in equal order (material, colours, mapping
/// key, faces index by index, number of vertices, whether there are normals), every vertex fits
/// within the tolerance of `find_similarity`, every normal within a ten-thousandth and what the
/// tolerance turns, and their inner blocks are copies of the same ones at the same places. Blocks
/// with invisible meshes, lamps, ground covers or vertices that are not finite are kept as they
/// are, and so are those around them.
class CopyFinder {
public:
    /// Earlier blocks of one structure that a block is compared with.
    static constexpr std::size_t most_candidates = 64;

    void begin_block(const StreamModel& model);
    void end_mesh(const StreamModel& model);
    void end_block(StreamModel& model);
    /// What is open now is no copy of anything: its records do not nest as they should.
    void keep_open_blocks();

private:
    struct Open {
        std::uint32_t block = 0;
        std::size_t first_mesh = 0, first_vertex = 0, first_normal = 0, first_triangle = 0;
        std::size_t first_copy = 0;
        bool plain = false;
        std::uint64_t structure = 0;       ///< hash of all that must be equal exactly
        std::vector<std::uint32_t> meshes; ///< its own, not those of inner blocks
        std::vector<NestedBlock> inner;
    };
    struct Shape {
        std::uint32_t block = 0;
        std::vector<std::uint32_t> meshes;
        std::vector<NestedBlock> inner;
        PointRuns points; ///< of its own meshes
        Triple low, high; ///< box with the inner blocks
        Triple steps;     ///< of nine digits at the box
        std::optional<Anchors> anchors;
    };

    Shape shape_of(const StreamModel& model, Open& open) const;
    std::optional<Similarity> match(const StreamModel& model, const Shape& shape,
                                    const Shape& copy) const;
    bool fits(const StreamModel& model, const Shape& shape, const Shape& copy,
              const Similarity& place) const;
    bool inner_blocks_fit(const Shape& shape, const Shape& copy, const Similarity& place) const;
    void drop(StreamModel& model, const Open& open) const;
    void enter(Open& parent, std::uint32_t block, const Similarity& place);

    std::vector<Open> open_;
    std::vector<Shape> shapes_;
    std::unordered_map<std::uint32_t, std::uint32_t> shape_of_block_;
    /// By structure: indices into shapes_, the one that fitted last first.
    std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> candidates_;
    std::uint32_t closed_ = 0;
};

} // namespace KestraBatch
