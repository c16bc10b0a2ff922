// The stream reader: lines to records by the record table, with the order of records checked.
#include "KestraBatch/stream_reader.h"

#include "KestraBatch/stream_records.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <system_error>

namespace KestraBatch {

namespace {

constexpr std::size_t block_bytes = std::size_t{4} << 20;

/// The start of a line for a message: printable, and not long.
std::string quoted(std::string_view text) {
    std::string out = "'";
    for (const char c : text.substr(0, 60)) {
        const auto byte = static_cast<unsigned char>(c);
        out += byte < 32 || byte == 127 ? '?' : c;
    }
    return out + (text.size() > 60 ? "...'" : "'");
}

constexpr std::uint32_t highest_corner = 0x7fffffff;

/// A corner below 0 comes out beyond `highest_corner`.
bool parse_triangle(std::string_view text, std::array<std::uint32_t, 3>& triangle) {
    const char* at = text.data();
    const char* end = at + text.size();
    for (int i = 0; i < 3; ++i) {
        std::int32_t corner = 0;
        const auto [stop, error] = std::from_chars(at, end, corner);
        triangle[static_cast<std::size_t>(i)] = static_cast<std::uint32_t>(corner);
        if (error != std::errc() || (i < 2 && (stop == end || *stop != ','))) {
            return false;
        }
        at = i < 2 ? stop + 1 : stop;
    }
    return trim_blanks({at, static_cast<std::size_t>(end - at)}).empty();
}

bool parse_fields(FieldForm form, std::string_view text, RecordValue& value) {
    switch (form) {
    case FieldForm::none:
        return true;
    case FieldForm::text:
        value.text = text;
        return true;
    case FieldForm::integer:
        return parse_integer(text, value.integer);
    case FieldForm::handle:
        return parse_integer(text, value.handle);
    case FieldForm::color:
        return parse_integer(text, value.color, 16) && value.color <= 0xffffff;
    case FieldForm::number:
        return parse_number(text, value.number);
    case FieldForm::triple:
        return parse_triple(text, value.triple);
    case FieldForm::triangle:
        return parse_triangle(text, value.triangle);
    }
    return false;
}

const char* form_name(FieldForm form) {
    constexpr std::array<const char*, 8> names{
        "nothing",
        "a text",
        "a whole number",
        "a handle (whole number, 64 bits)",
        "a colour (hexadecimal, at most ffffff)",
        "a number",
        "three numbers '(x,y,z)'",
        "three vertex indices 'a,b,c'",
    };
    return names[static_cast<std::size_t>(form)];
}

bool is_keyword(std::string_view text) {
    return !text.empty() && text.size() <= 8 && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    });
}

class StreamParser {
public:
    StreamParser(const std::string& file, StreamTarget& target, WarningList& warnings,
                 const StreamLimits& limits)
      : file_(file)
      , target_(target)
      , warnings_(warnings)
      , limits_(limits)
      , rows_(record_rows()) {
        summary_.counts.assign(rows_.size(), 0);
    }

    /// Takes a run of whole lines; the last run of a stream may lack its line end.
    void feed(std::string_view text) {
        LineCursor lines(text);
        std::string_view line;
        summary_.bytes += text.size();
        while (lines.next(line)) {
            ++summary_.lines;
            target_.line = summary_.lines;
            take_line(line);
        }
    }

    StreamSummary finish() {
        if (!ended_) {
            fail("the stream ends without 'END;': it was cut, or its writing did not finish");
        }
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (rows_[i].not_rendered && summary_.counts[i] > 0) {
                warnings_.add("not-rendered", file_ + ": " + std::to_string(summary_.counts[i]) +
                                                  " x " + rows_[i].not_rendered + " (" +
                                                  std::string(rows_[i].keyword) +
                                                  "): not rendered yet");
            }
        }
        if (faces_over_holes_ > 0) {
            warnings_.add("stream-face-over-hole",
                          file_ + ": " + std::to_string(faces_over_holes_) +
                              " faces run over a hole's count of corners; they are left out");
        }
        return std::move(summary_);
    }

private:
    void take_line(std::string_view line) {
        if (line.size() > limits_.line_bytes) {
            fail(ExitCode::limit,
                 "a line of more than " + std::to_string(limits_.line_bytes) + " bytes");
        }
        if (line.substr(0, 2) == "#;") {
            target_.comment(line.substr(2));
            return;
        }
        if (line.empty() || (ended_ && trim_blanks(line).empty())) {
            return;
        }
        if (ended_) {
            warn_after_end();
            return;
        }
        const std::size_t semicolon = line.substr(0, 9).find(';');
        const std::string_view keyword = line.substr(0, semicolon);
        if (semicolon == line.npos || !is_keyword(keyword)) {
            fail("this is no record: " + quoted(line));
        }
        take_record(keyword, line.substr(semicolon + 1));
    }

    void take_record(std::string_view keyword, std::string_view fields) {
        const int row_index = row_of(keyword);
        if (row_index < 0) {
            warn_unknown(keyword);
            return;
        }
        const auto index = static_cast<std::size_t>(row_index);
        const RecordRow& row = rows_[index];
        if (!parse_fields(row.form, fields, value_)) {
            fail(std::string(keyword) + " needs " + form_name(row.form) + ", not " +
                 quoted(fields));
        }
        if (row.scope != RecordScope::anywhere &&
            (row.scope == RecordScope::mesh) != (mesh_line_ != 0)) {
            fail_scope(row);
        }
        check(keyword);
        ++summary_.counts[index];
        if (row.form == FieldForm::triangle && is_over_hole(value_.triangle)) {
            ++faces_over_holes_;
            return;
        }
        row.deliver(target_, value_);
    }

    /// The few keywords that make nine lines of ten are told apart without a search.
    int row_of(std::string_view keyword) {
        if (keyword.size() != 4) {
            return find_record(keyword);
        }
        std::uint32_t code = 0;
        std::memcpy(&code, keyword.data(), 4);
        auto& slot = recent_[(code * 2654435761u) >> 27];
        if (slot.code != code) {
            slot = {code, find_record(keyword)};
        }
        return slot.row;
    }

    /// What must hold between records; counts what is limited.
    void check(std::string_view keyword) {
        if (mesh_line_ != 0) {
            check_in_mesh(keyword);
        }
        if (keyword == "MESH") {
            mesh_line_ = summary_.lines;
            mesh_vertices_ = 0;
            holes_.clear();
            vertex_line_ = 0;
            count(summary_.meshes, limits_.meshes, "meshes");
        } else if (keyword == "BLOK") {
            count(summary_.blocks, limits_.meshes, "blocks");
            if (++depth_ > limits_.block_depth) {
                fail(ExitCode::limit,
                     "blocks nested deeper than " + std::to_string(limits_.block_depth));
            }
        } else if (keyword == "EBLK") {
            if (depth_ == 0) {
                fail("EBLK without a BLOK that is open");
            }
            --depth_;
        } else if (keyword == "BLYR" && depth_ == 0) {
            fail("BLYR without a BLOK that is open");
        } else if (keyword == "END") {
            ended_ = true;
            if (depth_ > 0) {
                warn("stream-block-open",
                     std::to_string(depth_) + " blocks are still open at the end");
            }
        }
    }

    /// Writers fan a face with holes over its whole list, and so over the counts of its holes.
    static bool is_over_hole(const std::array<std::uint32_t, 3>& triangle) {
        return std::any_of(triangle.begin(), triangle.end(),
                           [](std::uint32_t index) { return index > highest_corner; });
    }

    void check_in_mesh(std::string_view keyword) {
        if (keyword == "VERT") {
            if (vertex_line_ != 0) {
                fail("VERT again before the ADDV of line " + std::to_string(vertex_line_));
            }
            vertex_line_ = summary_.lines;
        } else if (keyword == "ADDV") {
            if (vertex_line_ == 0) {
                fail("ADDV without a VERT before it");
            }
            take_index(value_.integer);
        } else if (keyword == "FACE") {
            for (const std::uint32_t index : value_.triangle) {
                if (index <= highest_corner) {
                    check_used(index);
                }
            }
            count(summary_.triangles, limits_.triangles, "triangles");
        } else if (keyword == "EMSH") {
            if (vertex_line_ != 0) {
                fail("EMSH before the ADDV that the VERT of line " + std::to_string(vertex_line_) +
                     " needs");
            }
            mesh_line_ = 0;
        }
    }

    /// Numbers go up. Some may be left out, as the shifted centre of a circle with thickness is;
    /// not more than there are vertices, so that no line can ask for much memory.
    void take_index(std::int32_t number) {
        const auto index = static_cast<std::uint32_t>(number);
        if (number < 0 || index < mesh_vertices_ || index > 2 * mesh_vertices_ + 1) {
            fail("ADDV;" + std::to_string(number) + " is out of order; the next is " +
                 std::to_string(mesh_vertices_));
        }
        vertex_line_ = 0;
        for (; mesh_vertices_ < index; ++mesh_vertices_) {
            holes_.push_back(mesh_vertices_);
            count(summary_.vertices, limits_.vertices, "vertices");
        }
        ++mesh_vertices_;
        count(summary_.vertices, limits_.vertices, "vertices");
    }

    void check_used(std::uint32_t index) const {
        if (index >= mesh_vertices_) {
            fail("FACE uses vertex " + std::to_string(index) + ", but the mesh has " +
                 std::to_string(mesh_vertices_));
        }
        if (!holes_.empty() && std::binary_search(holes_.begin(), holes_.end(), index)) {
            fail("FACE uses vertex " + std::to_string(index) + ", which no ADDV gave");
        }
    }

    void count(std::uint64_t& counter, std::uint64_t limit, const char* what) {
        if (++counter > limit) {
            fail(ExitCode::limit,
                 "more than " + std::to_string(limit) + " " + what + " in the stream");
        }
    }

    [[noreturn]] void fail_scope(const RecordRow& row) const {
        const std::string keyword(row.keyword);
        if (row.scope == RecordScope::mesh) {
            fail(keyword + " outside of a mesh");
        }
        fail(keyword + " inside the mesh that began at line " + std::to_string(mesh_line_));
    }

    [[noreturn]] void fail(const std::string& text) const {
        fail(ExitCode::input_unreadable, text);
    }
    [[noreturn]] void fail(ExitCode code, const std::string& text) const {
        throw ReadError(code, file_, summary_.lines, text);
    }

    void warn(const char* code, const std::string& text) {
        warnings_.add(code, ReadError::where(file_, summary_.lines) + text);
    }
    void warn_unknown(std::string_view keyword) {
        ++summary_.unknown_records;
        warn("stream-record-unknown", "unknown record '" + std::string(keyword) + "' is skipped");
    }
    void warn_after_end() {
        if (!warned_after_end_) {
            warn("stream-after-end", "there is more behind 'END;'; it is not read");
        }
        warned_after_end_ = true;
    }

    struct Recent {
        std::uint32_t code = 0;
        int row = -1;
    };

    const std::string& file_;
    StreamTarget& target_;
    WarningList& warnings_;
    const StreamLimits& limits_;
    std::span<const RecordRow> rows_;
    StreamSummary summary_;
    RecordValue value_;
    std::array<Recent, 32> recent_{};
    std::size_t mesh_line_ = 0;   ///< line of the mesh that is open, 0 for none
    std::size_t vertex_line_ = 0; ///< line of a VERT that has no ADDV yet, 0 for none
    std::uint32_t mesh_vertices_ = 0;
    std::vector<std::uint32_t> holes_; ///< numbers of this mesh that were left out, ascending
    std::size_t depth_ = 0;
    std::uint64_t faces_over_holes_ = 0;
    bool ended_ = false;
    bool warned_after_end_ = false;
};

/// Fills `buffer` behind its first `used` bytes from `in`; returns the bytes in it.
std::size_t fill(std::ifstream& in, char* buffer, std::size_t used, std::size_t size) {
    in.read(buffer + used, static_cast<std::streamsize>(size - used));
    return used + static_cast<std::size_t>(in.gcount());
}

} // namespace

std::uint64_t StreamSummary::count(std::string_view keyword) const {
    const int row = find_record(keyword);
    return row < 0 ? 0 : counts[static_cast<std::size_t>(row)];
}

StreamSummary read_stream(std::string_view text, const std::string& file, StreamTarget& target,
                          WarningList& warnings, const StreamLimits& limits) {
    StreamParser parser(file, target, warnings, limits);
    parser.feed(text);
    return parser.finish();
}

StreamSummary read_stream_file(const std::filesystem::path& path, StreamTarget& target,
                               WarningList& warnings, const StreamLimits& limits,
                               const StreamProgress& progress) {
    const std::string file = path.string();
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        throw ReadError(ExitCode::missing, file, 0, "no such file");
    }
    std::ifstream in(path, std::ios::binary);
    if (std::filesystem::is_directory(status) || !in) {
        throw ReadError(ExitCode::input_unreadable, file, 0, "cannot be opened as a file");
    }
    StreamParser parser(file, target, warnings, limits);
    const std::size_t size = std::max(block_bytes, limits.line_bytes + 2);
    const auto buffer = std::make_unique<char[]>(size);
    std::uint64_t read = 0;
    std::size_t used = fill(in, buffer.get(), 0, size);
    while (used > 0) {
        std::string_view block(buffer.get(), used);
        const bool last = used < size;
        std::size_t whole = last ? used : block.rfind('\n') + 1; // npos + 1 is 0
        if (whole == 0) {
            whole = used; // a line that fills the buffer: the parser refuses it
        }
        parser.feed(block.substr(0, whole));
        read += whole;
        if (read > limits.bytes) {
            throw ReadError(ExitCode::limit, file, 0,
                            "longer than " + std::to_string(limits.bytes) + " bytes");
        }
        if (progress && !progress(read)) {
            throw StreamCancelled();
        }
        std::memmove(buffer.get(), buffer.get() + whole, used - whole);
        used = last ? 0 : fill(in, buffer.get(), used - whole, size);
    }
    if (in.bad()) {
        throw ReadError(ExitCode::input_unreadable, file, 0, "an error while reading it");
    }
    return parser.finish();
}

} // namespace KestraBatch
