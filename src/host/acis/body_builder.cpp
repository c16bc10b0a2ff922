#include "host/acis/body_builder.h"

#include "host/acis/acis.h"

#include <algorithm>
#include <array>

namespace acis {

namespace {

constexpr std::size_t kMostProblems = 64;

/// A name of the part as it may stand in a report.
std::string forReport(std::string_view name) {
    std::string text(name.substr(0, 60));
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return text;
}

} // namespace

BodyBuilder::BodyBuilder(const Part& part)
  : part_(part)
  , geometry_(part)
  , used_(part.records.size())
  , vertices_(part.records.size())
  , edges_(part.records.size()) {}

brep::Body BodyBuilder::build() {
    for (const Record& record : part_.records) {
        if (record.leaf == "body") {
            addBody(record);
        }
    }
    if (body_.lumps.empty()) {
        addStray();
    }
    countUnreached();
    if (body_.lumps.empty() && body_.problems.empty()) {
        report("solid-empty", "the part has no faces", 0);
    }
    return std::move(body_);
}

const Record* BodyBuilder::recordOf(std::int64_t number, std::string_view base) const {
    const Record* record = part_.record(number);
    return record != nullptr && record->base == base ? record : nullptr;
}

std::vector<std::int64_t> BodyBuilder::references(const Record& record) const {
    std::vector<std::int64_t> found;
    Cursor cursor = fieldsOf(part_, record);
    std::int64_t number = -1;
    while (found.size() < 8 && cursor.takeReference(number)) {
        found.push_back(number);
    }
    return found;
}

std::size_t BodyBuilder::placeOf(const Record& record) const {
    return static_cast<std::size_t>(&record - part_.records.data());
}

bool BodyBuilder::use(const Record& record) {
    const std::size_t place = placeOf(record);
    if (used_[place]) {
        return false;
    }
    used_[place] = true;
    return true;
}

void BodyBuilder::report(const std::string& code, const std::string& text, std::uint32_t record) {
    const bool many = problems_.size() >= kMostProblems;
    const std::string key = code + (many ? "" : text);
    const auto [found, made] = problems_.try_emplace(key, body_.problems.size());
    if (!made) {
        ++body_.problems[found->second].count;
        return;
    }
    const std::string what = many ? "other reasons" : text;
    body_.problems.push_back({code, what + " (record " + std::to_string(record) + ")", 1});
}

void BodyBuilder::addBody(const Record& body) {
    AcGeMatrix3d matrix;
    const auto refs = references(body);
    for (const std::int64_t number : refs) {
        const Record* transform = recordOf(number, "transform");
        if (transform != nullptr && !readTransform(*transform, matrix)) {
            report("solid-unreadable", "the transform of a body", transform->number);
        }
    }
    if (has_transform_ && !(matrix == body_.transform)) {
        report("solid-unreadable", "a second body with a place of its own", body.number);
        return;
    }
    body_.transform = matrix;
    has_transform_ = true;
    std::int64_t next = refs.empty() ? -1 : refs[0];
    while (const Record* lump = recordOf(next, "lump")) {
        if (!use(*lump)) {
            break;
        }
        addLump(*lump);
        const auto fields = references(*lump);
        next = fields.empty() ? -1 : fields[0];
    }
}

/// Parts without a body: what is there of the highest order.
void BodyBuilder::addStray() {
    for (const Record& record : part_.records) {
        if (record.leaf == "lump" && use(record)) {
            addLump(record);
        }
    }
    brep::Lump lump;
    for (const Record& record : part_.records) {
        if (record.leaf == "shell" && use(record)) {
            addShell(record, lump);
        }
    }
    brep::Shell shell;
    for (const Record& record : part_.records) {
        if (lump.shells.empty() && record.leaf == "face" && !used_[placeOf(record)]) {
            addFaces(record.number, shell);
        }
    }
    if (!shell.faces.empty()) {
        lump.shells.push_back(std::move(shell));
    }
    if (!lump.shells.empty()) {
        body_.lumps.push_back(std::move(lump));
    }
}

void BodyBuilder::addLump(const Record& record) {
    brep::Lump lump;
    const auto refs = references(record);
    std::int64_t next = refs.size() > 1 ? refs[1] : -1;
    while (const Record* shell = recordOf(next, "shell")) {
        if (!use(*shell)) {
            break;
        }
        addShell(*shell, lump);
        const auto fields = references(*shell);
        next = fields.empty() ? -1 : fields[0];
    }
    if (!lump.shells.empty()) {
        body_.lumps.push_back(std::move(lump));
    }
}

/// A shell has its faces at its own and in subshells within subshells.
void BodyBuilder::addShell(const Record& record, brep::Lump& lump) {
    brep::Shell shell;
    const auto refs = references(record);
    std::vector<std::int64_t> subshells;
    if (refs.size() > 2) {
        subshells.push_back(refs[1]);
        addFaces(refs[2], shell);
    }
    while (!subshells.empty()) {
        const Record* subshell = recordOf(subshells.back(), "subshell");
        subshells.pop_back();
        if (subshell == nullptr || !use(*subshell)) {
            continue;
        }
        const auto fields = references(*subshell); // owner, next, child, face, wire
        if (fields.size() > 3) {
            subshells.push_back(fields[1]);
            subshells.push_back(fields[2]);
            addFaces(fields[3], shell);
        }
    }
    if (!shell.faces.empty()) {
        lump.shells.push_back(std::move(shell));
    }
}

void BodyBuilder::addFaces(std::int64_t first, brep::Shell& shell) {
    std::int64_t next = first;
    while (const Record* record = recordOf(next, "face")) {
        if (!use(*record)) {
            break;
        }
        brep::Face face;
        reason_ = "a face without a surface";
        if (makeFace(*record, face)) {
            shell.faces.push_back(std::move(face));
        } else {
            report("solid-face-missing", reason_, record->number);
        }
        const auto fields = references(*record);
        next = fields.empty() ? -1 : fields[0];
    }
}

/// next face, first loop, shell, subshell, surface, sense, sides
bool BodyBuilder::makeFace(const Record& record, brep::Face& face) {
    Cursor cursor = fieldsOf(part_, record);
    const auto refs = references(record);
    const Record* surface = nullptr;
    for (std::size_t i = 2; i < refs.size() && surface == nullptr; ++i) {
        surface = recordOf(refs[i], "surface");
    }
    if (surface == nullptr) {
        return false;
    }
    const SurfaceEntry& entry = surfaceOf(*surface);
    face.kind = entry.kind;
    if (entry.index < 0) {
        reason_ = "a surface of the kind " + forReport(entry.kind) + " that cannot be made";
        return false;
    }
    face.surface = entry.index;
    cursor.moveTo(cursor.position() + static_cast<std::uint32_t>(refs.size()));
    bool reversed = false;
    cursor.takeBool(reversed);
    cursor.takeBool(face.double_sided);
    face.reversed = reversed != entry.flip;
    face.color = colorOf(record);
    if (!addLoops(refs[1], face)) {
        return false;
    }
    const brep::Surface& made = body_.surfaces[static_cast<std::size_t>(face.surface)];
    if (face.loops.empty() && !std::holds_alternative<brep::Sphere>(made) &&
        !std::holds_alternative<brep::Torus>(made) &&
        !std::holds_alternative<brep::BSplineSurface>(made)) {
        reason_ = "a face without a boundary on a surface that has no end (" +
                  forReport(entry.kind) + ")";
        return false;
    }
    return true;
}

bool BodyBuilder::addLoops(std::int64_t first, brep::Face& face) {
    std::int64_t next = first;
    while (next >= 0) {
        const Record* record = recordOf(next, "loop");
        if (record == nullptr || !use(*record)) {
            reason_ = "a broken list of loops";
            return false;
        }
        if (!addLoop(*record, face)) {
            return false;
        }
        const auto refs = references(*record);
        next = refs.empty() ? -1 : refs[0];
    }
    return true;
}

bool BodyBuilder::addLoop(const Record& record, brep::Face& face) {
    reason_ = "a broken loop";
    const auto refs = references(record);
    const std::int64_t first = refs.size() > 1 ? refs[1] : -1;
    std::int64_t next = first;
    brep::Loop loop;
    do {
        const Record* coedge = recordOf(next, "coedge");
        if (coedge == nullptr || !use(*coedge) || !addCoedge(*coedge, face, loop, next)) {
            return false;
        }
    } while (next != first && next >= 0);
    if (next != first && !isClosed(loop)) {
        return false;
    }
    face.loops.push_back(std::move(loop));
    return true;
}

/// next, previous, partner, edge, sense, owner, pcurve
bool BodyBuilder::addCoedge(const Record& record, const brep::Face& face, brep::Loop& loop,
                            std::int64_t& next) {
    Cursor cursor = fieldsOf(part_, record);
    std::array<std::int64_t, 4> refs{};
    for (std::int64_t& ref : refs) {
        if (!cursor.takeReference(ref)) {
            return false;
        }
    }
    next = refs[0];
    brep::Coedge coedge;
    if (!cursor.takeBool(coedge.reversed) || !edgeAt(refs[3], coedge.edge)) {
        return false;
    }
    std::int64_t number = 0;
    while (cursor.more() && !coedge.pcurve) {
        if (!cursor.takeReference(number)) {
            cursor.skip();
        } else if (recordOf(number, "pcurve") != nullptr) {
            fitPCurve(number, face, coedge);
            break;
        }
    }
    loop.coedges.push_back(std::move(coedge));
    return true;
}

bool BodyBuilder::isClosed(const brep::Loop& loop) const {
    const auto end = [&](const brep::Coedge& coedge, bool last) {
        const brep::Edge& edge = body_.edges[static_cast<std::size_t>(coedge.edge)];
        return last != coedge.reversed ? edge.end : edge.start;
    };
    return end(loop.coedges.back(), true) == end(loop.coedges.front(), false);
}

void BodyBuilder::countUnreached() {
    for (const Record& record : part_.records) {
        if (record.leaf == "face" && !used_[placeOf(record)]) {
            report("solid-face-missing", "a face that no shell leads to", record.number);
        }
    }
}

static brep::Body readPart(const Part& part, bool read) {
    if (!read) {
        brep::Body body;
        body.problems.push_back({"solid-unreadable", "no solid data", 1});
        return body;
    }
    return BodyBuilder(part).build();
}

brep::Body readText(std::string_view text) {
    Part part;
    const bool read = readTextPart(text, part);
    return readPart(part, read);
}

brep::Body readBinary(std::span<const std::uint8_t> data) {
    Part part;
    const bool read = readBinaryPart(data, part);
    return readPart(part, read);
}

} // namespace acis
