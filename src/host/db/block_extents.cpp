// Boxes of blocks, inner ones first, by a stack of our own: nesting may be of any depth.
#include "host/db/block_extents.h"

#include "host/db/database.h"
#include "host/db/draw_util.h"
#include "host/db/references.h"
#include "host/db/symbol_tables.h"

#include <memory>
#include <unordered_map>

namespace {

struct BoxCache {
    std::unordered_map<AcDbObjectId, AcDbExtents> boxes; ///< empty boxes of empty blocks included
    int users = 0;
};

BoxCache& cache() {
    thread_local BoxCache only;
    return only;
}

/// A block whose entities are being gone through.
struct Visit {
    AcDbObjectId block;
    std::unique_ptr<AcDbObjectPointer<AcDbBlockTableRecord>> record;
    std::size_t next = 0;
    AcDbExtents box;
};

/// Computes boxes until `root` has one. A block that is met again while it is being gone through
/// inserts itself: that reference adds nothing.
class BlockWalk {
public:
    explicit BlockWalk(AcDbObjectId root) {
        enter(root);
        while (!stack_.empty()) {
            advance();
        }
    }

private:
    void enter(AcDbObjectId block) {
        auto record = std::make_unique<AcDbObjectPointer<AcDbBlockTableRecord>>(block);
        cache().boxes[block] = AcDbExtents(); // what a reference within sees
        if (*record) {
            stack_.push_back({block, std::move(record), 0, AcDbExtents()});
        }
    }

    /// Enters a block that the entity draws and that is not known yet; false when all are.
    bool enterNested(const AcDbEntity& entity) {
        nested_.clear();
        entity.drawnBlocks(nested_);
        for (const AcDbObjectId id : nested_) {
            const AcDbObjectId contents = acdbBlockContents(id).block;
            if (!contents.isNull() && !cache().boxes.contains(contents)) {
                enter(contents);
                return true;
            }
        }
        return false;
    }

    void advance() {
        Visit& visit = stack_.back();
        const auto& entities = (*visit.record)->entities();
        while (visit.next < entities.size()) {
            const AcDbObjectPointer<AcDbEntity> entity(entities[visit.next]);
            if (entity && entity->visibility() == AcDb::kVisible) {
                if (enterNested(*entity)) {
                    return; // this entity again when it is known
                }
                AcDbExtents box;
                if (entity->getGeomExtents(box) == Acad::eOk) {
                    visit.box.addExt(box);
                }
            }
            ++visit.next;
        }
        cache().boxes[visit.block] = visit.box;
        stack_.pop_back();
    }

    std::vector<Visit> stack_;
    std::vector<AcDbObjectId> nested_;
};

} // namespace

AcDbBlockExtentsScope::AcDbBlockExtentsScope() { ++cache().users; }

AcDbBlockExtentsScope::~AcDbBlockExtentsScope() {
    if (--cache().users == 0) {
        cache().boxes.clear();
    }
}

Acad::ErrorStatus acdbGetBlockExtents(AcDbObjectId block, AcDbExtents& extents) {
    const AcDbBlockExtentsScope scope;
    const AcDbObjectId contents = acdbBlockContents(block).block;
    if (!contents.isNull() && !cache().boxes.contains(contents)) {
        const BlockWalk walk(contents);
    }
    return draw::giveExtents(cache().boxes[contents], extents);
}
