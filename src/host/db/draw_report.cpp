// Collects the draw findings of a drawing: each block once, inner ones first, by a stack of our
// own, so that time is linear in what the file holds.
#include "host/db/draw_report.h"

#include "host/db/block_extents.h"
#include "host/db/block_reference.h"
#include "host/db/references.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <unordered_map>

namespace {

constexpr std::uint64_t kAskEvery = 4096;

std::uint64_t add(std::uint64_t a, std::uint64_t b) {
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    return a > kMost - b ? kMost : a + b;
}
std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    return b != 0 && a > kMost / b ? kMost : a * b;
}

/// Appends what is not there yet, as long as there is room.
void note(std::vector<std::string>& list, const std::string& text) {
    if (list.size() < kAcDbReportHandles &&
        std::find(list.begin(), list.end(), text) == list.end()) {
        list.push_back(text);
    }
}

/// The things of one code within one block, in the block's coordinates.
struct Found {
    std::size_t code = 0; ///< row of the code list
    std::uint64_t count = 0, parts = 0;
    std::vector<std::string> handles, details;
    AcDbExtents box;
};

struct Summary {
    std::vector<Found> found;
    std::uint64_t hidden = 0, drawn = 0;
    AcDbExtents box; ///< of all that is not hidden

    Found& of(std::size_t code) {
        for (Found& row : found) {
            if (row.code == code) {
                return row;
            }
        }
        found.push_back({code, 0, 0, {}, {}, {}});
        return found.back();
    }
};

/// Codes by number: those of the table, then any others that entities name.
class Codes {
public:
    Codes() {
        for (const AcDbDrawCode& row : acdbDrawCodes()) {
            names_.emplace_back(row.code);
        }
    }
    std::size_t number(const char* code) {
        if (code == last_) { // entities give literals, and neighbours mostly the same
            return last_number_;
        }
        auto at = std::find(names_.begin(), names_.end(), code);
        if (at == names_.end()) {
            at = names_.insert(names_.end(), code);
        }
        last_ = code;
        last_number_ = static_cast<std::size_t>(at - names_.begin());
        return last_number_;
    }
    const std::string& name(std::size_t number) const { return names_[number]; }

private:
    std::vector<std::string> names_;
    const char* last_ = nullptr;
    std::size_t last_number_ = 0;
};

/// Whether layers are on and thawed.
class Layers {
public:
    bool shown(AcDbObjectId id) {
        if (id.stub() == last_) {
            return last_shown_;
        }
        const auto [at, is_new] = shown_.try_emplace(id.stub(), true);
        if (is_new) {
            const AcDbObjectPointer<AcDbLayerTableRecord> layer(id);
            at->second = !layer || (!layer->isOff() && !layer->isFrozen());
        }
        last_ = id.stub();
        last_shown_ = at->second;
        return last_shown_;
    }

private:
    std::unordered_map<const AcDbStub*, bool> shown_;
    const AcDbStub* last_ = nullptr;
    bool last_shown_ = true;
};

/// A block whose entities are being gone through.
struct Visit {
    AcDbObjectId block;
    std::unique_ptr<AcDbObjectPointer<AcDbBlockTableRecord>> record;
    std::size_t next = 0;
    Summary summary;
};

class Collector {
public:
    Collector(AcDbDatabase& database, const std::function<bool()>& go_on)
      : database_(database)
      , go_on_(go_on) {}

    AcDbDrawReport run() {
        enter(database_.modelSpaceId());
        while (!stack_.empty() && !stopped_) {
            advance();
        }
        return report();
    }

private:
    void enter(AcDbObjectId block);
    void advance();
    bool known(const AcDbEntity& entity);
    void take(const AcDbEntity& entity, Summary& to);
    void take_reference(const AcDbBlockReference& reference, Summary& to);
    using Moved = std::function<AcDbExtents(const AcDbExtents&)>;
    /// Adds what a block holds, drawn `times` times; `moved` gives boxes where they are drawn.
    void take_contents(const Summary& contents, std::uint64_t times, const Moved& moved,
                       Summary& to);
    bool is_hidden(const AcDbEntity& entity);
    /// Adds the entity's findings; true when one of them says that it is not drawn.
    bool take_findings(const AcDbEntity& entity, std::uint64_t times, const AcDbExtents& box,
                       Summary& to);
    AcDbDrawReport report();

    AcDbDatabase& database_;
    const std::function<bool()>& go_on_;
    Codes codes_;
    Layers layers_;
    std::unordered_map<AcDbObjectId, std::unique_ptr<Summary>> done_; ///< null: being gone through
    std::vector<Visit> stack_;
    std::vector<AcDbDrawFinding> findings_;
    std::vector<AcDbObjectId> nested_; ///< blocks that the entity at hand draws
    std::uint64_t asked_ = 0;
    bool stopped_ = false;
    Summary all_;
};

void Collector::enter(AcDbObjectId block) {
    auto record = std::make_unique<AcDbObjectPointer<AcDbBlockTableRecord>>(block);
    if (!*record) {
        done_[block] = std::make_unique<Summary>();
        return;
    }
    done_[block] = nullptr;
    stack_.push_back({block, std::move(record), 0, {}});
}

void Collector::advance() {
    Visit& visit = stack_.back();
    const std::vector<AcDbObjectId>& entities = (*visit.record)->entities();
    for (; visit.next < entities.size(); ++visit.next) {
        if (asked_++ % kAskEvery == 0 && go_on_ && !go_on_()) {
            stopped_ = true;
            all_ = std::move(stack_.front().summary);
            return;
        }
        const AcDbObjectPointer<AcDbEntity> entity(entities[visit.next]);
        if (!entity) {
            continue;
        }
        if (is_hidden(*entity)) {
            ++visit.summary.hidden;
            continue;
        }
        if (!known(*entity)) {
            return; // this entity again when its block is known
        }
        if (const auto* reference = AcDbBlockReference::cast(entity.object())) {
            take_reference(*reference, visit.summary);
        } else {
            take(*entity, visit.summary);
        }
    }
    if (stack_.size() == 1) {
        all_ = std::move(visit.summary);
    } else {
        done_[visit.block] = std::make_unique<Summary>(std::move(visit.summary));
    }
    stack_.pop_back();
}

bool Collector::is_hidden(const AcDbEntity& entity) {
    if (entity.visibility() != AcDb::kVisible) {
        return true;
    }
    return !layers_.shown(entity.layerId().isNull() ? entity.database()->layerZero()
                                                    : entity.layerId());
}

/// False when a block that the entity draws has not been gone through, and has been entered.
bool Collector::known(const AcDbEntity& entity) {
    nested_.clear();
    entity.drawnBlocks(nested_);
    for (const AcDbObjectId block : nested_) {
        if (!block.isNull() && !done_.contains(block)) {
            enter(block);
            return false;
        }
    }
    return true;
}

bool Collector::take_findings(const AcDbEntity& entity, std::uint64_t times, const AcDbExtents& box,
                              Summary& to) {
    findings_.clear();
    entity.drawFindings(findings_);
    bool left_out = false;
    for (std::size_t i = 0; i < findings_.size(); ++i) {
        const AcDbDrawFinding& finding = findings_[i];
        const std::size_t code = codes_.number(finding.code);
        const AcDbDrawCode* row = acdbFindDrawCode(codes_.name(code));
        left_out = left_out || row == nullptr || !row->approximate;
        Found& found = to.of(code);
        const bool again =
            std::any_of(findings_.begin(), findings_.begin() + static_cast<std::ptrdiff_t>(i),
                        [&](const AcDbDrawFinding& f) { return codes_.number(f.code) == code; });
        found.count = again ? found.count : add(found.count, times);
        found.parts = add(found.parts, multiply(finding.count, times));
        if (found.handles.size() < kAcDbReportHandles) {
            const AcDbDatabase* db = entity.database();
            const bool outside = db != nullptr && db->xrefHost() != nullptr;
            note(found.handles, fmt::format("{}{}{:X}", outside ? db->xrefName() : "",
                                            outside ? "|" : "", entity.getAcDbHandle().value()));
        }
        if (!finding.detail.empty()) {
            note(found.details, finding.detail);
        }
        found.box.addExt(box);
    }
    if (findings_.empty() && nested_.empty()) { // else its contents count
        to.drawn = add(to.drawn, times);
    }
    return left_out;
}

void Collector::take(const AcDbEntity& entity, Summary& to) {
    AcDbExtents box;
    if (entity.getGeomExtents(box) != Acad::eOk) {
        box = {};
    }
    to.box.addExt(box);
    take_findings(entity, 1, box, to);
    if (nested_.empty() || entity.notRenderedReason() != nullptr) {
        return;
    }
    for (const AcDbObjectId block : nested_) { // pictures of dimensions, arrow heads
        if (const auto at = done_.find(block); at != done_.end() && at->second != nullptr) {
            take_contents(
                *at->second, 1,
                [&](const AcDbExtents& inner) { return inner.isEmpty() ? AcDbExtents() : box; },
                to);
        }
    }
}

std::uint64_t members_of(const AcDbBlockReference& reference) {
    const auto* array = AcDbMInsertBlock::cast(&reference);
    return array == nullptr ? 1
                            : static_cast<std::uint64_t>(std::max(array->columns(), 1)) *
                                  static_cast<std::uint64_t>(std::max(array->rows(), 1));
}

/// The transforms of the members that span the box of all: the corners of an array.
std::vector<AcGeMatrix3d> outer_transforms(const AcDbBlockReference& reference) {
    const auto* array = AcDbMInsertBlock::cast(&reference);
    if (array == nullptr) {
        return {reference.blockTransform()};
    }
    std::vector<AcGeMatrix3d> transforms;
    for (const int row : {0, std::max(array->rows(), 1) - 1}) {
        for (const int column : {0, std::max(array->columns(), 1) - 1}) {
            transforms.push_back(array->memberTransform(row, column));
        }
    }
    return transforms;
}

AcDbExtents moved(const AcDbExtents& box, const std::vector<AcGeMatrix3d>& transforms) {
    AcDbExtents all;
    for (const AcGeMatrix3d& transform : transforms) {
        AcDbExtents one = box;
        one.transformBy(transform);
        all.addExt(one);
    }
    return all;
}

void Collector::take_reference(const AcDbBlockReference& reference, Summary& to) {
    const std::uint64_t members = members_of(reference);
    const AcDbObjectId block = reference.blockTableRecord();
    const AcDbObjectId contents = acdbBlockContents(block).block;
    const AcDbXref* xref = acdbXrefOf(block);
    if (contents.isNull() && xref != nullptr && acdbXrefDrawCode(xref->status) == nullptr) {
        ++to.hidden;
    }
    const auto at = done_.find(contents);
    const Summary* inside = at != done_.end() ? at->second.get() : nullptr;
    AcDbExtents box;
    if (inside != nullptr) {
        box = moved(inside->box, outer_transforms(reference));
    }
    if (at != done_.end() && inside == nullptr) { // within itself
        Found& found = to.of(codes_.number("damaged"));
        ++found.count;
        ++found.parts;
        note(found.handles, fmt::format("{:X}", reference.getAcDbHandle().value()));
        note(found.details, "block " + reference.blockName() + " inserts itself");
    }
    const bool left_out = take_findings(reference, 1, box, to);
    if (inside != nullptr && !left_out) {
        const std::vector<AcGeMatrix3d> transforms = outer_transforms(reference);
        take_contents(
            *inside, members, [&](const AcDbExtents& inner) { return moved(inner, transforms); },
            to);
    }
    nested_.clear(); // attributes draw none
    for (const AcDbObjectId id : reference.attributes()) {
        const AcDbObjectPointer<AcDbAttribute> attribute(id);
        if (!attribute) {
            continue;
        }
        if (attribute->isInvisible() || is_hidden(*attribute)) {
            to.hidden = add(to.hidden, members);
            continue;
        }
        AcDbExtents own;
        own = attribute->getGeomExtents(own) == Acad::eOk ? own : AcDbExtents();
        to.box.addExt(own);
        take_findings(*attribute, members, own, to);
    }
}

void Collector::take_contents(const Summary& contents, std::uint64_t times, const Moved& moved,
                              Summary& to) {
    to.box.addExt(moved(contents.box));
    to.hidden = add(to.hidden, multiply(contents.hidden, times));
    to.drawn = add(to.drawn, multiply(contents.drawn, times));
    for (const Found& inner : contents.found) {
        Found& found = to.of(inner.code);
        found.count = add(found.count, multiply(inner.count, times));
        found.parts = add(found.parts, multiply(inner.parts, times));
        for (const std::string& handle : inner.handles) {
            note(found.handles, handle);
        }
        for (const std::string& detail : inner.details) {
            note(found.details, detail);
        }
        found.box.addExt(moved(inner.box));
    }
}

double diagonal(const AcDbExtents& box) {
    return box.isEmpty() ? 0 : (box.maxPoint() - box.minPoint()).length();
}

AcDbDrawReport Collector::report() {
    AcDbDrawReport report;
    report.hidden = all_.hidden;
    report.drawn = all_.drawn;
    report.complete = !stopped_;
    std::sort(all_.found.begin(), all_.found.end(),
              [](const Found& a, const Found& b) { return a.code < b.code; });
    const double whole = diagonal(all_.box);
    for (Found& found : all_.found) {
        AcDbDrawReportRow row;
        row.code = codes_.name(found.code);
        const AcDbDrawCode* known = acdbFindDrawCode(row.code);
        row.words = known != nullptr ? known->words : row.code;
        row.approximate = known != nullptr && known->approximate;
        row.count = found.count;
        row.parts = found.parts;
        row.handles = std::move(found.handles);
        row.details = std::move(found.details);
        const double share = whole > 0 ? diagonal(found.box) / whole : 0;
        row.share = std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0;
        (row.approximate ? report.approximate : report.not_drawn).push_back(std::move(row));
    }
    return report;
}

} // namespace

AcDbDrawReport acdbCollectDrawReport(AcDbDatabase& database, const std::function<bool()>& go_on) {
    const AcDbBlockExtentsScope boxes; // each block's once
    return Collector(database, go_on).run();
}
