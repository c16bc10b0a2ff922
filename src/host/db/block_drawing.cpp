// Blocks within entities draw themselves: limits against cycles and blocks that multiply.
#include "host/db/block_drawing.h"

#include "host/db/block_extents.h"
#include "host/db/database.h"
#include "host/db/symbol_tables.h"
#include "host/ed/ed.h"
#include "host/gi/fallback.h"
#include "host/gi/shape_cache.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

constexpr std::size_t kDeepestNesting = 64;
/// Entities and array members that one reference of a space may draw through its nesting: far
/// above any real drawing, reached within seconds by blocks that multiply at every level.
constexpr std::uint64_t kMostDraws = 5'000'000;
/// How often the drawer is asked whether to stop.
constexpr std::uint64_t kAskEvery = 1024;

/// What the references in progress on this thread share.
struct Nesting {
    std::vector<AcDbObjectId> blocks; ///< those being drawn, outermost first
    std::uint64_t draws = 0;
    std::uint64_t since_asked = 0; ///< goes on over references, so that many small ones ask too
    bool stopped = false;
    bool told = false; ///< that a block was not entered
};

Nesting& nesting() {
    thread_local Nesting only;
    return only;
}

/// Enters a block for the time of its life.
class BlockInProgress {
public:
    explicit BlockInProgress(AcDbObjectId block) {
        Nesting& now = nesting();
        if (now.blocks.empty()) {
            now.draws = 0;
            now.stopped = false;
            now.told = false;
        }
        now.blocks.push_back(block);
    }
    ~BlockInProgress() { nesting().blocks.pop_back(); }
    BlockInProgress(const BlockInProgress&) = delete;
    BlockInProgress& operator=(const BlockInProgress&) = delete;

private:
    gi::ShapeReplayScope replay_;
};

/// A pushed transform that is popped again.
class PushedTransform {
public:
    PushedTransform(AcGiGeometry& geometry, const AcGeMatrix3d& transform)
      : geometry_(geometry)
      , pushed_(geometry.pushModelTransform(transform)) {}
    ~PushedTransform() {
        if (pushed_) {
            geometry_.popModelTransform();
        }
    }
    PushedTransform(const PushedTransform&) = delete;
    PushedTransform& operator=(const PushedTransform&) = delete;
    bool isPushed() const { return pushed_; }

private:
    AcGiGeometry& geometry_;
    bool pushed_;
};

/// Counts one draw; false when drawing shall end here.
bool mayDraw(AcGiWorldDraw* draw, const AcDbBlockTableRecord& block) {
    Nesting& now = nesting();
    if (now.stopped) {
        return false;
    }
    if (now.since_asked++ % kAskEvery == 0 && draw->regenAbort()) {
        now.stopped = true;
    } else if (++now.draws > kMostDraws) {
        now.stopped = true;
        acedAlert(
            fmt::format("Block \"{}\": more than {} objects through nested blocks; the rest of "
                        "this reference is not drawn.",
                        block.getName(), kMostDraws));
    }
    return !now.stopped;
}

/// Draws the block once under the transform.
void drawMember(AcGiWorldDraw* draw, const AcDbBlockTableRecord& block,
                const AcGeMatrix3d& transform) {
    if (!draw::isFinite(transform)) {
        return;
    }
    const PushedTransform pushed(draw->geometry(), transform);
    if (!pushed.isPushed()) {
        return;
    }
    for (const AcDbObjectId id : block.entities()) {
        if (!mayDraw(draw, block)) {
            return;
        }
        const AcDbObjectPointer<AcDbEntity> entity(id);
        if (entity) {
            draw->geometry().draw(entity.object());
        }
    }
}

/// Tells, once for each reference of a space, that a block is not entered.
void tellLeftOut(const AcDbBlockTableRecord& block, bool inside_itself) {
    if (nesting().told) {
        return;
    }
    nesting().told = true;
    acedAlert(inside_itself
                  ? fmt::format("Block \"{}\" inserts itself; the inner one is not drawn.",
                                block.getName())
                  : fmt::format("Block \"{}\" lies more than {} levels deep and is not drawn.",
                                block.getName(), kDeepestNesting));
}

} // namespace

namespace draw {

bool isFinite(const AcGeMatrix3d& m) {
    return std::all_of(m.entry.begin(), m.entry.end(), [](const auto& row) {
        return std::all_of(row.begin(), row.end(), [](double v) { return gi::isFinite(v); });
    });
}

void block(AcGiWorldDraw* draw, AcDbObjectId id, std::uint64_t members,
           const std::function<AcGeMatrix3d(std::uint64_t)>& transform_of) {
    const std::vector<AcDbObjectId>& entered = nesting().blocks;
    const AcDbObjectPointer<AcDbBlockTableRecord> block(id);
    if (!block || block->entities().empty()) {
        return;
    }
    const bool inside_itself = std::find(entered.begin(), entered.end(), id) != entered.end();
    if (inside_itself || entered.size() >= kDeepestNesting) {
        tellLeftOut(*block, inside_itself);
        return;
    }
    const BlockInProgress progress(id);
    for (std::uint64_t i = 0; i < members && mayDraw(draw, *block); ++i) {
        drawMember(draw, *block, transform_of(i));
    }
}

void addBlockBox(AcDbExtents& box, AcDbObjectId id, const AcGeMatrix3d& transform) {
    AcDbExtents contents;
    if (isFinite(transform) && acdbGetBlockExtents(id, contents) == Acad::eOk) {
        contents.transformBy(transform);
        box.addExt(contents);
    }
}

AcDbObjectId findBlock(AcDbDatabase* database, const std::string& name) {
    AcDbObjectId id;
    if (database == nullptr || name.empty() ||
        database->blockTable().getAt(name, id) != Acad::eOk) {
        return {};
    }
    return id;
}

} // namespace draw
