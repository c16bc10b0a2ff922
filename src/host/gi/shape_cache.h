// Shapes that are costly to compute, kept while blocks are drawn again and again: a solid in a
// block is cut into faces once and replayed for each insert.
#pragma once

#include "host/db/object_id.h"
#include "host/ge/ge.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class AcGiWorldDraw;

namespace gi {

/// One shell as AcGiGeometry::shell takes it, in the entity's own coordinates.
struct ShapeShell {
    std::vector<AcGePoint3d> points;
    std::vector<std::int32_t> face_list; ///< count and indices, face after face; < 0 for a hole
    std::vector<AcGeVector3d> normals;   ///< empty, or one a point
    std::vector<AcGePoint3d> mapping;    ///< texture coordinates: empty, or one a point
    /// What tells the shell from others of its shape, as the maker likes: a colour index, a face.
    std::intptr_t tag = 0;
};

/// What was computed for one entity at one chord error.
struct ShapeData {
    std::vector<ShapeShell> shells;
    std::vector<std::vector<AcGePoint3d>> lines; ///< for what draws itself in lines
    /// Memory that the shape takes.
    std::size_t bytes() const;
};

/// What a shape depends on. Two deviations are the same when they are as 32-bit floats.
struct ShapeKey {
    AcDbObjectId entity;  ///< null: not kept
    double deviation = 0; ///< chord error; 0 for a shape that does not depend on one
    int kind = 0;         ///< what of the entity, for makers of several shapes
};

/// The shapes of the extraction that runs on this thread. They are kept only while there is a
/// ShapeCacheScope and a block is being drawn, as nothing else is drawn twice. When they take more
/// than kMostBytes, those that were asked for longest ago go; whoever holds a shape keeps it.
class ShapeCache {
public:
    static constexpr std::size_t kMostBytes = std::size_t{128} << 20;

    /// Null when it is not there.
    static std::shared_ptr<const ShapeData> find(const ShapeKey& key);
    /// Keeps the shape if it may, and gives it back in any case.
    static std::shared_ptr<const ShapeData> put(const ShapeKey& key, ShapeData shape);
    /// The shape of the key, made by `make` (() -> ShapeData) when it is not there.
    template <class Make>
    static std::shared_ptr<const ShapeData> get(const ShapeKey& key, const Make& make) {
        auto shape = find(key);
        return shape ? shape : put(key, make());
    }

    static std::size_t size();  ///< number of shapes kept
    static std::size_t bytes(); ///< memory that they take
};

/// While one lives on a thread its shapes are kept; entities must not change meanwhile. Scopes may
/// nest; with the outermost one the shapes go. `most_bytes` of the outermost one counts.
class ShapeCacheScope {
public:
    explicit ShapeCacheScope(std::size_t most_bytes = ShapeCache::kMostBytes);
    ~ShapeCacheScope();
    ShapeCacheScope(const ShapeCacheScope&) = delete;
    ShapeCacheScope& operator=(const ShapeCacheScope&) = delete;
};

/// Lives while a block reference draws its block.
class ShapeReplayScope {
public:
    ShapeReplayScope();
    ~ShapeReplayScope();
    ShapeReplayScope(const ShapeReplayScope&) = delete;
    ShapeReplayScope& operator=(const ShapeReplayScope&) = delete;
};

/// Draws all shells of a shape, and its lines as polylines without a normal.
void drawShape(AcGiWorldDraw* draw, const ShapeData& shape);

} // namespace gi
