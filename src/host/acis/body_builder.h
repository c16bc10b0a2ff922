// From the records of a part to a boundary representation.
#pragma once

#include "host/acis/geometry.h"
#include "host/acis/part.h"
#include "host/brep/brep.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace acis {

/// Builds the body of a part. Each record is used once in its place, so that wrong references
/// cannot make the work endless.
class BodyBuilder {
public:
    explicit BodyBuilder(const Part& part);
    brep::Body build();

private:
    enum class State : std::uint8_t { kUnseen, kSound, kBroken };
    /// What became of a record: its place in the body's list, -1 for none.
    struct Entry {
        State state = State::kUnseen;
        int index = -1;
    };
    struct SurfaceEntry {
        int index = -1; ///< -1: could not be read
        bool flip = false;
        std::string kind;
    };

    // body_builder.cpp: bodies down to loops
    const Record* recordOf(std::int64_t number, std::string_view base) const;
    /// The references of a record from its fields on, up to the first value of another sort.
    std::vector<std::int64_t> references(const Record& record) const;
    std::size_t placeOf(const Record& record) const;
    /// Marks a record as used; false when it was before.
    bool use(const Record& record);
    void report(const std::string& code, const std::string& text, std::uint32_t record);
    void addBody(const Record& body);
    void addStray();
    void addLump(const Record& record);
    void addShell(const Record& record, brep::Lump& lump);
    void addFaces(std::int64_t first, brep::Shell& shell);
    bool makeFace(const Record& record, brep::Face& face);
    bool addLoops(std::int64_t first, brep::Face& face);
    bool addLoop(const Record& record, brep::Face& face);
    bool addCoedge(const Record& record, const brep::Face& face, brep::Loop& loop,
                   std::int64_t& next);
    bool isClosed(const brep::Loop& loop) const;
    void countUnreached();

    // body_parts.cpp: what faces are made of
    int vertexAt(std::int64_t number);
    bool edgeAt(std::int64_t number, int& index);
    bool makeEdge(const Record& record, brep::Edge& edge);
    bool curveAt(std::int64_t number, int& index);
    const SurfaceEntry& surfaceOf(const Record& record);
    void fitPCurve(std::int64_t number, const brep::Face& face, brep::Coedge& coedge);
    std::optional<std::uint32_t> colorOf(const Record& record) const;
    bool readTransform(const Record& record, AcGeMatrix3d& matrix) const;

    const Part& part_;
    GeometryReader geometry_;
    brep::Body body_;
    std::string reason_; ///< why the face at hand cannot be made
    std::vector<bool> used_;
    std::vector<Entry> vertices_, edges_;             ///< by the record's place
    std::unordered_map<std::uint64_t, Entry> curves_; ///< by their shape, as `surfaces_`
    std::unordered_map<std::uint64_t, SurfaceEntry> surfaces_;
    std::unordered_map<std::string, std::size_t> problems_;
    bool has_transform_ = false;
};

} // namespace acis
