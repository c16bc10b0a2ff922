// Block references draw the contents of their blocks.
#include "host/db/block_reference.h"

#include "host/db/block_extents.h"
#include "host/db/draw_util.h"
#include "host/db/symbol_tables.h"
#include "host/ed/ed.h"

#include <fmt/format.h>

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, "INSERT")
ACRX_DXF_DEFINE_MEMBERS(AcDbMInsertBlock, AcDbBlockReference, "INSERT")

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

bool isFinite(const AcGeMatrix3d& m) {
    return std::all_of(m.entry.begin(), m.entry.end(), [](const auto& row) {
        return std::all_of(row.begin(), row.end(), [](double v) { return gi::isFinite(v); });
    });
}

/// Draws the block once under the transform.
void drawMember(AcGiWorldDraw* draw, const AcDbBlockTableRecord& block,
                const AcGeMatrix3d& transform) {
    if (!isFinite(transform)) {
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

/// Opens the block and draws its members; `transform_of` gives the transform of each.
template <class TransformOf>
void drawBlock(AcGiWorldDraw* draw, AcDbObjectId id, std::uint64_t members,
               const TransformOf& transform_of) {
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

} // namespace

// ---- AcDbBlockReference

std::string AcDbBlockReference::blockName() const {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(block_);
    return block ? block->getName() : block_name_;
}

AcGeMatrix3d AcDbBlockReference::transformWith(const AcGeVector3d& shift) const {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(block_);
    const AcGePoint3d base = block ? block->origin() : AcGePoint3d::kOrigin;
    return AcGeMatrix3d::planeToWorld(normal_) * AcGeMatrix3d::translation(position_.asVector()) *
           AcGeMatrix3d::rotation(rotation_, AcGeVector3d::kZAxis) *
           AcGeMatrix3d::translation(shift) * AcGeMatrix3d::scaling(scale_) *
           AcGeMatrix3d::translation(-base.asVector());
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const { return transformWith({}); }

Acad::ErrorStatus AcDbBlockReference::getGeomExtents(AcDbExtents& extents) const {
    const AcGeMatrix3d transform = blockTransform();
    AcDbExtents box;
    const Acad::ErrorStatus status = acdbGetBlockExtents(block_, box);
    if (status != Acad::eOk) {
        return status;
    }
    if (!isFinite(transform)) {
        return Acad::eInvalidExtents;
    }
    box.transformBy(transform);
    return draw::giveExtents(box, extents);
}

const char* AcDbBlockReference::notRenderedReason() const {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(block_);
    if (!block) {
        return "missing-block";
    }
    if (block->isFromExternalReference() && block->entities().empty()) {
        return "external-reference";
    }
    return isFinite(blockTransform()) ? nullptr : "damaged";
}

bool AcDbBlockReference::worldDraw(AcGiWorldDraw* draw) {
    drawBlock(draw, block_, 1, [&](std::uint64_t) { return blockTransform(); });
    return true;
}

// ---- AcDbMInsertBlock

void AcDbMInsertBlock::setArray(int columns, int rows, double column_spacing, double row_spacing) {
    columns_ = std::max(columns, 1);
    rows_ = std::max(rows, 1);
    column_spacing_ = column_spacing;
    row_spacing_ = row_spacing;
}

AcGeMatrix3d AcDbMInsertBlock::memberTransform(int row, int column) const {
    return transformWith({column * column_spacing_, row * row_spacing_, 0});
}

Acad::ErrorStatus AcDbMInsertBlock::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents block;
    const Acad::ErrorStatus status = acdbGetBlockExtents(block_, block);
    if (status != Acad::eOk) {
        return status;
    }
    AcDbExtents all;
    for (const int row : {0, std::max(rows_, 1) - 1}) {
        for (const int column : {0, std::max(columns_, 1) - 1}) {
            const AcGeMatrix3d transform = memberTransform(row, column);
            if (!isFinite(transform)) {
                return Acad::eInvalidExtents;
            }
            AcDbExtents member = block;
            member.transformBy(transform);
            all.addExt(member);
        }
    }
    return draw::giveExtents(all, extents);
}

bool AcDbMInsertBlock::worldDraw(AcGiWorldDraw* draw) {
    const auto columns = static_cast<std::uint64_t>(std::max(columns_, 1));
    const auto rows = static_cast<std::uint64_t>(std::max(rows_, 1));
    drawBlock(draw, block_, columns * rows, [&](std::uint64_t i) {
        return memberTransform(static_cast<int>(i / columns), static_cast<int>(i % columns));
    });
    return true;
}
