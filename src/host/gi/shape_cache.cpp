// The cache of shapes: a list in order of use and an index into it, one a thread.
#include "host/gi/shape_cache.h"

#include "host/gi/fallback.h"

#include <bit>
#include <list>
#include <unordered_map>

namespace gi {

namespace {

struct Entry {
    const AcDbStub* entity = nullptr;
    std::uint32_t deviation = 0; ///< bits of the float
    int kind = 0;
    bool operator==(const Entry&) const = default;
};

struct EntryHash {
    std::size_t operator()(const Entry& entry) const {
        const auto rest =
            (std::uint64_t{entry.deviation} << 32) ^ static_cast<std::uint32_t>(entry.kind);
        return std::hash<const AcDbStub*>()(entry.entity) ^ (rest * 0x9e3779b97f4a7c15u);
    }
};

struct Kept {
    Entry key;
    std::shared_ptr<const ShapeData> shape;
    std::size_t bytes = 0;
};

struct Shapes {
    std::list<Kept> by_use; ///< the last one asked for first
    std::unordered_map<Entry, std::list<Kept>::iterator, EntryHash> index;
    std::size_t bytes = 0;
    std::size_t most_bytes = 0;
    int scopes = 0;
    int replays = 0;

    bool keeps(const ShapeKey& key) const {
        return scopes > 0 && replays > 0 && !key.entity.isNull();
    }
    void dropLast() {
        bytes -= by_use.back().bytes;
        index.erase(by_use.back().key);
        by_use.pop_back();
    }
    void clear() {
        index.clear();
        by_use.clear();
        bytes = 0;
    }
};

Shapes& shapes() {
    thread_local Shapes only;
    return only;
}

Entry entryOf(const ShapeKey& key) {
    const auto deviation = static_cast<float>(key.deviation) + 0.0F; // -0 is 0
    return {key.entity.stub(), std::bit_cast<std::uint32_t>(deviation), key.kind};
}

} // namespace

std::size_t ShapeData::bytes() const {
    std::size_t sum = sizeof(ShapeData) + shells.capacity() * sizeof(ShapeShell);
    for (const ShapeShell& shell : shells) {
        sum += shell.points.capacity() * sizeof(AcGePoint3d) +
               shell.face_list.capacity() * sizeof(std::int32_t) +
               shell.normals.capacity() * sizeof(AcGeVector3d) +
               shell.mapping.capacity() * sizeof(AcGePoint3d);
    }
    for (const auto& line : lines) {
        sum += sizeof(std::vector<AcGePoint3d>) + line.capacity() * sizeof(AcGePoint3d);
    }
    return sum;
}

std::shared_ptr<const ShapeData> ShapeCache::find(const ShapeKey& key) {
    Shapes& all = shapes();
    const auto at = all.index.find(entryOf(key));
    if (at == all.index.end()) {
        return nullptr;
    }
    all.by_use.splice(all.by_use.begin(), all.by_use, at->second);
    return at->second->shape;
}

std::shared_ptr<const ShapeData> ShapeCache::put(const ShapeKey& key, ShapeData shape) {
    auto shared = std::make_shared<const ShapeData>(std::move(shape));
    Shapes& all = shapes();
    const std::size_t bytes = shared->bytes() + sizeof(Kept) + sizeof(Entry);
    if (!all.keeps(key) || bytes > all.most_bytes) {
        return shared;
    }
    const Entry entry = entryOf(key);
    if (const auto at = all.index.find(entry); at != all.index.end()) {
        all.by_use.splice(all.by_use.end(), all.by_use, at->second);
        all.dropLast();
    }
    while (all.bytes + bytes > all.most_bytes) {
        all.dropLast();
    }
    all.by_use.push_front({entry, shared, bytes});
    all.index[entry] = all.by_use.begin();
    all.bytes += bytes;
    return shared;
}

std::size_t ShapeCache::size() { return shapes().by_use.size(); }

std::size_t ShapeCache::bytes() { return shapes().bytes; }

ShapeCacheScope::ShapeCacheScope(std::size_t most_bytes) {
    if (shapes().scopes++ == 0) {
        shapes().most_bytes = most_bytes;
    }
}

ShapeCacheScope::~ShapeCacheScope() {
    if (--shapes().scopes == 0) {
        shapes().clear();
    }
}

ShapeReplayScope::ShapeReplayScope() { ++shapes().replays; }

ShapeReplayScope::~ShapeReplayScope() { --shapes().replays; }

void drawShape(AcGiWorldDraw* draw, const ShapeData& shape) {
    for (const ShapeShell& shell : shape.shells) {
        const AcGeVector3d* normals = shell.normals.empty() ? nullptr : shell.normals.data();
        if (!shell.mapping.empty() && shell.points.size() >= 3) {
            const AcGiVertexData vertices{normals, nullptr, shell.mapping.data()};
            if (draw->geometry().shell(static_cast<std::uint32_t>(shell.points.size()),
                                       shell.points.data(),
                                       static_cast<std::uint32_t>(shell.face_list.size()),
                                       shell.face_list.data(), nullptr, nullptr, &vertices)) {
                continue;
            }
        }
        gi::shell(draw, shell.points, shell.face_list, nullptr, normals);
    }
    for (const auto& line : shape.lines) {
        if (line.size() > 1) {
            gi::polyline(draw, line, nullptr);
        }
    }
}

} // namespace gi
