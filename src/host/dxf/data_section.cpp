// Records of the data section. A record names its object (320) and then its properties: each a name
// (2), a type (280), and for binary ones a length (94) and chunks (310).
#include "host/dxf/data_section.h"

#include "host/dxf/tag_reader.h"

namespace dxf {
namespace {

/// Names that solid data go by, by the release that wrote them.
bool is_solid_data(std::string_view name) {
    return name == "ASM_Data" || name == "ACIS_Data" || name == "AcDb3DSolid_ASM_Data";
}

struct RecordState {
    bool in_record = false;
    bool solid_data = false;
    std::uint64_t handle = 0;
};

} // namespace

SolidDataIndex::SolidDataIndex(const Document& document) {
    const Document::Section* section = document.section("ACDSDATA");
    if (section == nullptr) {
        return;
    }
    TagReader reader(document.bytes(section->span), document.form().form, document.form().line_end);
    RecordState state;
    Span data;
    const auto finish = [&](std::uint64_t end) {
        if (data.begin != 0) {
            data.end = end;
            records_.try_emplace(state.handle, data);
            data = {};
        }
    };
    Tag tag;
    while (reader.next(tag)) {
        const std::uint64_t begin = document.offset(tag.begin);
        if (tag.code != 310) {
            finish(begin);
        }
        if (tag.code == 0) {
            state = {tag.trimmed() == "ACDSRECORD", false, 0};
        } else if (tag.code == 320 && state.in_record) {
            parse_handle(tag, state.handle);
        } else if (tag.code == 2) {
            state.solid_data = state.in_record && is_solid_data(tag.trimmed());
        } else if (tag.code == 310 && state.solid_data && data.begin == 0) {
            data.begin = begin;
        }
    }
    finish(section->span.end);
}

std::vector<std::uint8_t> SolidDataIndex::find(const Document& document,
                                               std::uint64_t handle) const {
    std::vector<std::uint8_t> bytes;
    const auto found = records_.find(handle);
    if (found == records_.end()) {
        return bytes;
    }
    TagReader reader(document.bytes(found->second), document.form().form, document.form().line_end);
    Tag tag;
    while (reader.next(tag)) {
        const std::string chunk = parse_chunk(tag);
        bytes.insert(bytes.end(), chunk.begin(), chunk.end());
    }
    return bytes;
}

} // namespace dxf
