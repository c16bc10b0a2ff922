// The frame of a stream: header, material list, block brackets, order of the body.
#include "stream_parser.h"

#include <algorithm>
#include <charconv>
#include <chrono>

namespace checker {
namespace {

constexpr const char* months[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};
constexpr const char* weekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};

/// A number of so many digits, within the bounds; -1 otherwise. Takes it from the text.
int digits(std::string_view& text, std::size_t count, int low, int high) {
    const std::string_view word = text.substr(0, count);
    if (word.size() != count || word.find_first_not_of("0123456789") != word.npos) {
        return -1;
    }
    const int value = std::stoi(std::string(word));
    text.remove_prefix(count);
    return value >= low && value <= high ? value : -1;
}

bool take(std::string_view& text, std::string_view word) {
    if (!text.starts_with(word)) {
        return false;
    }
    text.remove_prefix(word.size());
    return true;
}

/// "Monday, January 05, 2026, 03:04:05 PM", the day of the week being that of the date.
bool is_time(std::string_view text) {
    using namespace std::chrono;
    const auto* const week = std::find_if(std::begin(weekdays), std::end(weekdays),
                                          [&](const char* name) { return take(text, name); });
    if (week == std::end(weekdays) || !take(text, ", ")) {
        return false;
    }
    const auto* const month = std::find_if(std::begin(months), std::end(months),
                                           [&](const char* name) { return take(text, name); });
    if (month == std::end(months) || !take(text, " ")) {
        return false;
    }
    const int day = digits(text, 2, 1, 31);
    const bool comma = take(text, ", ");
    const int year = digits(text, 4, 1, 9999);
    if (day < 0 || !comma || year < 0 || !take(text, ", ") || digits(text, 2, 1, 12) < 0 ||
        !take(text, ":") || digits(text, 2, 0, 59) < 0 || !take(text, ":") ||
        digits(text, 2, 0, 60) < 0 || (text != " AM" && text != " PM")) {
        return false;
    }
    const year_month_day date{std::chrono::year(year),
                              std::chrono::month(static_cast<unsigned>(month - months) + 1),
                              std::chrono::day(static_cast<unsigned>(day))};
    return date.ok() && weekday(sys_days(date)).c_encoding() == week - weekdays;
}

/// The records that never stand in a mesh although they have a keyword, with the reason.
struct never_written {
    std::string_view keyword, reason;
};
constexpr never_written never[] = {
    {"CAUS;", "the flag CAUS is never written"},     {"ALPH;", "the flag ALPH is never written"},
    {"FCTD;", "the flag FCTD is never written"},     {"MNCR;", "the flag MNCR is never written"},
    {"GATHER;", "the flag GATHER is never written"}, {"INVS;", "INVS is never written"},
    {"MATF;", "MATF stands at file level only"},     {"MATI;", "MATI stands at file level only"},
};
constexpr std::string_view keywords[] = {
    "#;",    "DFFC;", "DFEC;", "BLOK;", "BLYR;", "EBLK;", "MESH;", "CULL;", "MPUV;",
    "LLIT;", "LAYR;", "NOLY;", "COLR;", "COLN;", "MATL;", "HNDL;", "BROT;", "LITE;",
    "DYLT;", "SHDW;", "GCOR;", "GNDC;", "NORM;", "UVQ;",  "VERT;", "ADDV;", "FACE;",
    "EMSH;", "PLLB;", "PLNM;", "PLLC;", "PLDM;", "PLSN;", "PLRT;", "PLSC;", "PLNT;",
    "LTYP;", "LORG;", "LGHT;", "DECO;", "DECX;", "DECY;", "DECZ;", "DECS;", "DEC1;",
    "DEC2;", "DECW;", "DECH;", "DECN;", "DECL;", "END;",  "THICK;"};

/// What the comment of a block has to be, with the handle that it tells.
std::string block_comment(const std::string& indented_name, const std::string& comment) {
    constexpr std::string_view word = "  HNDL: 0x";
    const std::size_t at = comment.rfind(word);
    std::uint32_t handle = 0;
    if (at != std::string::npos) {
        const char* const digits_begin = comment.data() + at + word.size();
        std::from_chars(digits_begin, comment.data() + comment.size(), handle, 16);
    }
    char hex[16];
    const auto written = std::to_chars(hex, hex + sizeof hex, handle, 16);
    return indented_name + std::string(word) + std::string(hex, written.ptr) + "  " +
           std::to_string(static_cast<std::int32_t>(handle));
}

} // namespace

std::string keyword_remark(std::string_view line) {
    for (const auto& [keyword, reason] : never) {
        if (line.starts_with(keyword)) {
            return " (" + std::string(reason) + ")";
        }
    }
    const bool known = std::any_of(std::begin(keywords), std::end(keywords),
                                   [&](std::string_view word) { return line.starts_with(word); });
    const std::size_t semicolon = line.find(';');
    return known || semicolon == line.npos || semicolon > 6 || semicolon == 0
               ? ""
               : " (no record has this keyword)";
}

stream check_stream(std::string_view text) { return stream_parser(text).parse(); }

stream stream_parser::parse() {
    try {
        header();
        material_list();
    } catch (const lost_place&) {
        go_on_behind_fault(in_.position());
    }
    body();
    return std::move(out_);
}

void stream_parser::header() {
    in_.context("the header");
    in_.exact("#;Qor Batch Geometry from AutoCad");
    const std::string time = in_.rest("#;");
    in_.require(is_time(time), "no time of the form %A, %B %d, %Y, %I:%M:%S %p");
    in_.exact("DFFC;c8c8c8");
    in_.exact("DFEC;000000");
}

void stream_parser::material_list() {
    in_.context("the material list");
    int last = 9;
    while (in_.at("MATF;")) {
        const std::string file = in_.rest("MATF;");
        constexpr std::string_view suffix = ".TsMaterial";
        constexpr const char* file_characters =
            "-_% 0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
        const std::string stem = file.substr(0, file.size() - std::min(file.size(), suffix.size()));
        in_.require(file.ends_with(suffix) && !stem.empty() &&
                        stem.find_first_not_of(file_characters) == stem.npos,
                    "no encoded name of a material file");
        const int index = in_.integer("MATI;");
        in_.require(index >= 10, "the indices 1 to 9 are never given");
        in_.require(index >= last, "material indices do not ascend");
        if (const auto before = out_.materials.find(index); before != out_.materials.end()) {
            in_.require(before->second.starts_with("Tessara-") &&
                            !out_.toolkit_materials.contains(index),
                        "a row has two files only when its first is a toolkit material's");
            out_.toolkit_materials[index] = before->second;
        }
        out_.materials[index] = file;
        last = std::max(last, index);
    }
}

void stream_parser::body() {
    while (!in_.at_end() && !in_.at_line("END;")) {
        const std::size_t start = in_.position();
        try {
            body_item();
        } catch (const lost_place&) {
            go_on_behind_fault(start);
        }
    }
    if (in_.at_end()) {
        in_.require(false, "the stream does not end with END;");
        return;
    }
    in_.skip();
    in_.require(stack_.empty(), "END; with an open block");
    if (!in_.at_end()) {
        in_.skip();
        in_.require(false, "lines behind END;");
    }
}

void stream_parser::body_item() {
    in_.context("the body");
    if (in_.at("EBLK;")) {
        close_bracket();
    } else if (in_.at("#;NEW MESH;") || in_.at("#;BLOK: ")) {
        shell();
    } else if (in_.at("#;ACAD ") || in_.at_line("#;DECAL not written") || in_.at("DECO;", 1)) {
        plain_mesh();
    } else if (in_.at("#;DECAL, sourceFileName: ")) {
        image_decal();
    } else if (in_.at_line("#;") && in_.at("LTYP;", 1)) {
        light_block();
    } else if (in_.take("#;TsPlant")) {
        plant_block(true);
    } else if (in_.at_line("#;PLANT")) {
        plant_block(false);
    } else if (!in_.take("#;Old TS3 TsPlant")) {
        const std::string line(in_.peek());
        in_.skip();
        in_.lose("has no place in the body" + keyword_remark(line));
    }
}

void stream_parser::go_on_behind_fault(std::size_t item_start) {
    const auto begins_something = [this] {
        return in_.at_end() || in_.at_line("END;") || in_.at("EBLK;") || in_.at("#;NEW MESH;") ||
               (in_.at("#;ACAD ") && !in_.at_line("#;ACAD SHELL;")) || in_.at_line("#;PLANT") ||
               in_.at_line("#;TsPlant") || in_.at("#;DECAL, source") ||
               (in_.at_line("#;") && in_.at("LTYP;", 1));
    };
    if (in_.position() <= item_start) {
        in_.skip();
    }
    while (!begins_something()) {
        if (in_.at("BLOK;")) { // not lost, so that what closes it finds it
            const std::string_view name = in_.peek().substr(5);
            stack_.emplace_back(name.substr(std::min(name.find_first_not_of(' '), name.size())));
        }
        in_.skip();
    }
    bracket_is_empty_ = false;
}

void stream_parser::brackets() {
    while (in_.at("#;BLOK: ")) {
        in_.context("a block bracket");
        const std::string comment = in_.rest("#;BLOK: ");
        const std::string indent(2 * stack_.size(), ' ');
        const std::string name = in_.rest("BLOK;" + indent);
        in_.require(!name.empty(), "a block without a name");
        in_.require(!name.starts_with("  "), "a block is not indented by two blanks a level");
        in_.require(comment == block_comment(indent + name, comment),
                    "the comment above is not '#;BLOK: %s%s  HNDL: 0x%x  %d' with indent, name and "
                    "the handle twice");
        in_.rest("BLYR;" + indent);
        stack_.push_back(name);
        ++out_.brackets;
        bracket_is_empty_ = true;
    }
}

void stream_parser::close_bracket() {
    in_.context("the end of a block");
    if (stack_.empty()) {
        in_.skip();
        in_.lose("EBLK without an open block");
    }
    const std::string line = "EBLK;" + std::string(2 * (stack_.size() - 1), ' ') + stack_.back();
    const bool empty = std::exchange(bracket_is_empty_, false);
    stack_.pop_back();
    in_.exact(line);
    in_.require(!empty, "a block without geometry");
    in_.exact("#;#;");
}

} // namespace checker
