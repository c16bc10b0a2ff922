// Dividing an object's tags, and their values.
#include "host/dxf/object_tags.h"

#include "host/dxf/load_context.h"

#include <algorithm>
#include <limits>

namespace dxf {
namespace {

/// The index of the first tag that satisfies the predicate, from `from` on.
template <class Test>
std::size_t first_index(std::span<const Tag> tags, std::size_t from, Test test) {
    while (from < tags.size() && !test(tags[from])) {
        ++from;
    }
    return from;
}

bool is_marker(const Tag& tag) { return tag.code == 100; }

/// The group codes whose coordinates belong together: x, then code + 10 and + 20.
bool is_point_code(int code) {
    return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) || code == 210 ||
           code == 211 || (code >= 1010 && code <= 1013);
}

} // namespace

ObjectTags::ObjectTags(std::span<const Tag> tags, LoadContext& context)
  : all_(tags)
  , context_(context) {
    const std::size_t end =
        first_index(tags, 1, [](const Tag& t) { return t.code >= 1000 || t.code == 0; });
    const std::size_t data = first_index(tags, end, [](const Tag& t) { return t.code >= 1000; });
    const std::size_t data_end = first_index(tags, data, [](const Tag& t) { return t.code == 0; });
    xdata_ = tags.subspan(data, data_end - data);
    const std::size_t embedded =
        first_index(tags.first(end), 1, [](const Tag& t) { return t.code == 101; });
    std::size_t marker = first_index(tags.first(end), 1, is_marker);
    subclasses_ = marker < end;
    if (!subclasses_) {
        common_ = own_ = tags.subspan(1, embedded - 1);
        return;
    }
    if (tags[marker].trimmed() == "AcDbEntity") {
        marker = first_index(tags.first(end), marker + 1, is_marker);
    }
    common_ = tags.subspan(1, marker - 1);
    own_ = tags.subspan(marker, marker <= embedded ? embedded - marker : end - marker);
}

std::span<const Tag> ObjectTags::subclass(std::string_view name) const {
    if (!subclasses_) {
        return own_;
    }
    const std::size_t begin = first_index(own_, 0, [&](const Tag& t) { return t.is(100, name); });
    if (begin == own_.size()) {
        return {};
    }
    const std::size_t stop = first_index(own_, begin + 1, is_marker);
    return own_.subspan(begin, stop - begin);
}

const Tag* ObjectTags::find(int code) const {
    const auto at =
        std::find_if(own_.begin(), own_.end(), [&](const Tag& tag) { return tag.code == code; });
    return at != own_.end() ? &*at : nullptr;
}

std::uint64_t ObjectTags::handle() const {
    const int code = type() == "DIMSTYLE" ? 105 : 5;
    for (const Tag& tag : common_) {
        std::uint64_t value = 0;
        if (tag.code == code && parse_handle(tag, value)) {
            return value;
        }
    }
    return 0;
}

std::uint64_t ObjectTags::owner() const {
    bool in_group = false;
    for (const Tag& tag : common_) {
        if (tag.code == 102) {
            in_group = !tag.trimmed().starts_with('}');
        }
        std::uint64_t value = 0;
        if (!in_group && tag.code == 330 && parse_handle(tag, value)) {
            return value;
        }
    }
    return 0;
}

std::uint64_t ObjectTags::extension_dictionary() const {
    bool in_group = false;
    for (const Tag& tag : common_) {
        if (tag.code == 102) {
            in_group = tag.trimmed() == "{ACAD_XDICTIONARY";
        }
        std::uint64_t value = 0;
        if (in_group && tag.code == 360 && parse_handle(tag, value)) {
            return value;
        }
    }
    return 0;
}

double ObjectTags::real(const Tag& tag) const {
    double value = 0;
    if (!parse_real(tag, value)) {
        context_.repaired("dxf-bad-number",
                          "group " + std::to_string(tag.code) + " is no number; 0 is taken",
                          tag.begin);
    }
    return value;
}

std::int64_t ObjectTags::integer(const Tag& tag) const {
    std::int64_t value = 0;
    if (!parse_integer(tag, value)) {
        context_.repaired("dxf-bad-number",
                          "group " + std::to_string(tag.code) + " is no whole number; 0 is taken",
                          tag.begin);
    }
    return value;
}

std::int32_t ObjectTags::int32(const Tag& tag) const {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t value = integer(tag);
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

std::string ObjectTags::text(const Tag& tag) const {
    return tag.binary ? std::string() : context_.encoding().decode(tag.raw());
}

AcDbObjectId ObjectTags::id(const Tag& tag) const {
    std::uint64_t handle = 0;
    return parse_handle(tag, handle) ? context_.object(handle) : AcDbObjectId();
}

AcDbValues to_values(std::span<const Tag> tags, const ObjectTags& object) {
    AcDbValues values;
    for (std::size_t i = 0; i < tags.size(); ++i) {
        const Tag& tag = tags[i];
        switch (value_type(tag.code)) {
        case ValueType::kText:
        case ValueType::kHandle:
            values.emplace_back(tag.code, object.text(tag));
            break;
        case ValueType::kReal: {
            const bool second = i + 1 < tags.size() && tags[i + 1].code == tag.code + 10;
            if (!is_point_code(tag.code) || !second) {
                values.emplace_back(tag.code, object.real(tag));
                break;
            }
            AcGePoint3d p{object.real(tag), object.real(tags[i + 1]), 0};
            i += 1;
            if (i + 1 < tags.size() && tags[i + 1].code == tag.code + 20) {
                p.z = object.real(tags[++i]);
            }
            values.emplace_back(tag.code, p);
            break;
        }
        case ValueType::kChunk: {
            const std::string bytes = parse_chunk(tag);
            AcDbValue value;
            value.code = tag.code;
            value.value = std::vector<std::uint8_t>(bytes.begin(), bytes.end());
            values.push_back(std::move(value));
            break;
        }
        default:
            values.emplace_back(tag.code, object.integer(tag));
        }
    }
    return values;
}

bool fits_code(const AcDbValue& value) {
    const auto& held = value.value;
    if (value.code < 0 || value.code > kHighestCode) {
        return false;
    }
    switch (value_type(value.code)) {
    case ValueType::kText:
    case ValueType::kHandle:
        return std::holds_alternative<std::string>(held);
    case ValueType::kReal:
        return std::holds_alternative<double>(held) || std::holds_alternative<std::int64_t>(held) ||
               (std::holds_alternative<AcGePoint3d>(held) && is_point_code(value.code));
    case ValueType::kChunk:
        return std::holds_alternative<std::vector<std::uint8_t>>(held);
    default:
        return std::holds_alternative<std::int64_t>(held);
    }
}

} // namespace dxf
