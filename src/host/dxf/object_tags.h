// The tags of one object as they stand in the file, with what its class needs to read them.
#pragma once

#include "host/db/resbuf.h"
#include "host/dxf/tag.h"
#include "host/gi/gi.h"

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

class AcDbObjectId;

namespace dxf {

class LoadContext;

/// What was set on an object beyond its members: extended data by application (an empty chain
/// removes it) and a new extension dictionary.
struct ObjectExtras {
    std::map<std::string, AcDbValues> xdata;
    std::uint64_t extension_dictionary = 0; ///< handle; 0 when it was not changed
    /// How the entity's material is laid on it, from its extended data as they are now.
    std::unique_ptr<AcGiMapper> mapper;
};

/// The ranges of one object's tags. Group codes mean different things in the part that all
/// entities share and in the class's own part, so readers ask for one or the other.
class ObjectTags {
public:
    /// Divides `tags`, whose first one has group code 0.
    ObjectTags(std::span<const Tag> tags, LoadContext& context);

    std::string_view type() const { return all_.front().trimmed(); }
    std::span<const Tag> all() const { return all_; }
    /// Handle, owner and, for an entity, what all entities share. All tags when there are no
    /// subclass markers (files to R12).
    std::span<const Tag> common() const { return common_; }
    /// The tags of the class itself; extended data and embedded objects are not among them.
    std::span<const Tag> own() const { return own_; }
    /// From the first extended data on.
    std::span<const Tag> xdata() const { return xdata_; }
    /// There are subclass markers.
    bool has_subclasses() const { return subclasses_; }
    /// The tags behind the named subclass marker, to the next one; all own tags without markers.
    std::span<const Tag> subclass(std::string_view name) const;

    /// The first own tag of that code, or null.
    const Tag* find(int code) const;
    std::uint64_t handle() const;
    std::uint64_t owner() const;
    /// The object that the extension dictionary group names, 0 without one.
    std::uint64_t extension_dictionary() const;

    // Values. What is no number is reported and gives 0.
    double real(const Tag& tag) const;
    std::int64_t integer(const Tag& tag) const;
    std::int32_t int32(const Tag& tag) const;
    std::string text(const Tag& tag) const; ///< UTF-8, escapes resolved
    AcDbObjectId id(const Tag& tag) const;  ///< the object of a handle; null for 0
    LoadContext& context() const { return context_; }

private:
    std::span<const Tag> all_, common_, own_, xdata_;
    LoadContext& context_;
    bool subclasses_ = false;
};

/// A range of tags as values: coordinates are joined to points.
AcDbValues to_values(std::span<const Tag> tags, const ObjectTags& object);

/// The value is of the kind that files have under its code, so that it can be written.
bool fits_code(const AcDbValue& value);

} // namespace dxf
