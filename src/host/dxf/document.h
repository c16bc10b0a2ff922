// A drawing's file as it was read: its bytes, its form, and where its parts lie.
#pragma once

#include "host/dxf/encoding.h"
#include "host/dxf/tag_reader.h"
#include "host/dxf/tag_writer.h"
#include "platform/files.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace dxf {

/// Byte offsets in the file, the end exclusive.
struct Span {
    std::uint64_t begin = 0, end = 0;
    bool empty() const { return begin == end; }
};

class Document {
public:
    struct Section {
        std::string name;
        Span span; ///< from its 0 SECTION to before its 0 ENDSEC
    };
    struct Table {
        std::string name;
        Span span; ///< from its 0 TABLE to before its 0 ENDTAB
    };
    struct HeaderVariable {
        std::string name;
        Span span; ///< from its 9 to before the next one
    };

    void take(platform::MappedFile file);
    void take(std::string bytes);
    std::string_view bytes() const { return bytes_; }
    std::string_view bytes(Span span) const {
        return bytes_.substr(span.begin, span.end - span.begin);
    }
    std::uint64_t offset(const char* where) const {
        return static_cast<std::uint64_t>(where - bytes_.data());
    }
    const FileForm& form() const { return form_; }
    /// Line of a place in a text file, from 1; its byte offset in a binary one.
    std::uint64_t line_of(const char* where) const;
    /// New tags are written the way the file's own are.
    WriteStyle style() const;
    std::string version_code() const; ///< "AC1015"; "AC1009" when the file tells none
    const Section* section(std::string_view name) const;
    const Table* table(std::string_view name) const;
    const HeaderVariable* header_variable(std::string_view name) const;

    std::vector<Section> sections;
    std::vector<Table> tables;
    std::vector<HeaderVariable> header;
    /// BLOCK to before ENDBLK, and behind ENDBLK, by block record.
    struct BlockSpans {
        Span head;                                ///< the BLOCK object
        std::uint64_t end_begin = 0, end_end = 0; ///< the ENDBLK object
    };
    std::unordered_map<const AcDbStub*, BlockSpans> blocks;
    /// The SEQEND behind the attributes of a block reference (empty, at its place, when missing).
    std::unordered_map<const AcDbStub*, Span> reference_ends;
    std::uint64_t end_of_file = 0; ///< where 0 EOF begins, or the size
    int version = 1009;
    bool version_told = false;
    std::string version_text;
    Encoding encoding;

private:
    void detect();
    platform::MappedFile file_;
    std::string own_;
    std::string_view bytes_;
    FileForm form_;
    mutable const char* counted_to_ = nullptr; ///< lines up to here are counted
    mutable std::uint64_t counted_lines_ = 0;
};

} // namespace dxf
