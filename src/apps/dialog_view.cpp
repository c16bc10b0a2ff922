// Reports and trees of dialogs, see dialog_view.h.
#include "apps/dialog_view.h"

#include "omb/dialog/dcl_keywords.h"
#include "omb/dialog/dialog_dump.h"
#include "omb/dialog/dialog_layout.h"

#include <algorithm>
#include <fstream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace apps {
namespace {

using nlohmann::ordered_json;

constexpr std::size_t kLongestLine = 400; ///< of a source line that is shown, bytes

/// The text of a line of a file, "" when it cannot be had.
std::string line_of_file(const std::string& path, int number) {
    std::ifstream in(path, std::ios::binary);
    std::string line;
    for (int i = 0; i < number; ++i) {
        if (!std::getline(in, line)) {
            return {};
        }
    }
    return line;
}

/// What stands ahead of the caret: as wide as the text, tabs kept.
std::string padding(std::string_view text) {
    std::string blanks;
    for (const char c : text) {
        if ((static_cast<unsigned char>(c) & 0xc0U) != 0x80U) { // one for each UTF-8 character
            blanks += c == '\t' ? '\t' : ' ';
        }
    }
    return blanks;
}

struct Colors {
    std::string_view strong, error, warning, caret, off;
};
constexpr Colors kPlain{};
constexpr Colors kColors{"\x1b[1m", "\x1b[1;31m", "\x1b[1;35m", "\x1b[1;32m", "\x1b[0m"};

std::string error_text(const cl_dcl_error& error, const Colors& colors) {
    std::string text =
        fmt::format("{}{}:{}:{}{} {}error:{} {}\n", colors.strong, error.file, error.line,
                    error.column > 0 ? fmt::format("{}:", error.column) : std::string(), colors.off,
                    colors.error, colors.off, error.message);
    std::string line =
        error.source_line.empty() ? line_of_file(error.file, error.line) : error.source_line;
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) {
        line.pop_back();
    }
    if (line.empty() || line.size() > kLongestLine) {
        return text;
    }
    std::ranges::replace_if(
        line, [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; }, '?');
    text += fmt::format("{:>5} | {}\n", error.line, line);
    if (error.column > 0) {
        const std::size_t ahead = std::min(static_cast<std::size_t>(error.column - 1), line.size());
        text += fmt::format("      | {}{}^{}\n", padding(std::string_view(line).substr(0, ahead)),
                            colors.caret, colors.off);
    }
    return text;
}

std::string_view kind_name(int kind) {
    const auto rows = dcl_keywords();
    const auto row = std::ranges::find_if(
        rows, [&](const cl_dcl_keyword& r) { return r.token == DCL_CONTROL && r.kind == kind; });
    return row != rows.end() ? row->keyword : std::string_view("control");
}

/// A line for each control in `parent`, behind it those in it, indented by their depth.
void add_children(const cl_dialog_item& parent, std::size_t depth, std::string& text) {
    for (const cl_dialog_item* item = parent.first_child; item != nullptr;
         item = item->next_sibling) {
        const cl_dialog_rect& place = item->position;
        const std::string name =
            std::string(2 * depth, ' ') + std::string(kind_name(item->kind)) + " " + item->sid;
        text += item->skip
                    ? fmt::format("{:<48} skipped\n", name)
                    : fmt::format("{:<48} at {:>4} {:>4}  size {:>4} x {:<4} id {}\n", name,
                                  place.x, place.y, place.width, place.height, item->window_id);
        add_children(*item, depth + 1, text);
    }
}

bool has_text(const cl_dcl_token& token) { return token.tag == dlg_token_value::text_tag; }
bool has_number(const cl_dcl_token& token) { return token.tag == dlg_token_value::int_tag; }

} // namespace

std::string tokens_json(const std::vector<cl_dcl_token>& tokens) {
    ordered_json rows = ordered_json::array();
    for (const cl_dcl_token& token : tokens) {
        rows.push_back({{"code", token.code},
                        {"text", has_text(token) ? ordered_json(token.text) : ordered_json()},
                        {"int", has_number(token) ? ordered_json(token.number) : ordered_json()},
                        {"line", token.line}});
    }
    return rows.dump(1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

namespace {

/// The name of a code; a plain character is its own name.
std::string token_name(int code) {
    constexpr std::string_view names[] = {"DCL_COMMAND",
                                          "DCL_COMMAND_VARIABLE",
                                          "DCL_CONTROL",
                                          "DCL_DIALOG",
                                          "DCL_CONSTANT",
                                          "DCL_INT_VARIABLE",
                                          "DCL_DOUBLE_VARIABLE",
                                          "DCL_DOUBLE_CONSTANT",
                                          "DCL_LOCAL_VARIABLE",
                                          "DCL_STRING_CONSTANT",
                                          "DCL_STRING_CONSTANT_SINGLE",
                                          "DCL_STRING_VARIABLE",
                                          "DCL_VALUE_TABLE",
                                          "DCL_DOTTED_NAME"};
    if (code >= DCL_COMMAND && code <= DCL_DOTTED_NAME) {
        return std::string(names[code - DCL_COMMAND]);
    }
    return code > 0x20 && code < 0x7f ? fmt::format("'{}'", static_cast<char>(code))
                                      : fmt::format("{}", code);
}

} // namespace

std::string tokens_text(const std::vector<cl_dcl_token>& tokens) {
    const auto keywords = dcl_keywords();
    std::string text;
    for (const cl_dcl_token& token : tokens) {
        std::string value = has_text(token) ? token.text : std::string();
        if (has_number(token)) {
            const bool is_keyword = token.code != DCL_CONSTANT && token.code != DCL_VALUE_TABLE &&
                                    token.number >= 0 &&
                                    static_cast<std::size_t>(token.number) < keywords.size();
            value = is_keyword
                        ? std::string(keywords[static_cast<std::size_t>(token.number)].keyword)
                        : std::to_string(token.number);
        }
        std::string line =
            fmt::format("{:>5}  {:<26} {}", token.line, token_name(token.code), value);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

std::string report_json(const DialogReport& report) {
    ordered_json errors = ordered_json::array();
    for (const cl_dcl_error& error : report.errors) {
        ordered_json row = {{"file", error.file}, {"line", error.line}, {"message", error.message}};
        if (error.column > 0) {
            row["column"] = error.column;
        }
        errors.push_back(std::move(row));
    }
    const ordered_json all = {{"ok", report.ok()},
                              {"errors", std::move(errors)},
                              {"trace", report.trace},
                              {"warnings", report.warnings},
                              {"dialogs", report.dialogs}};
    return all.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::string report_text(const DialogReport& report, bool with_color) {
    const Colors& colors = with_color ? kColors : kPlain;
    std::string text;
    for (const cl_dcl_error& error : report.errors) {
        text += error_text(error, colors);
    }
    for (const std::string& warning : report.warnings) {
        text += fmt::format("{}warning:{} {}\n", colors.warning, colors.off, warning);
    }
    return text;
}

std::string tree_json(const cl_dcl_data& data) {
    const cl_dialog_dump dump = dump_dialog(data);
    ordered_json controls = ordered_json::array();
    for (const cl_dialog_dump_row& row : dump.controls) {
        controls.push_back({{"number", row.number},
                            {"window_id", row.window_id},
                            {"sid", row.sid},
                            {"kind", row.kind},
                            {"parent", row.parent},
                            {"skip", row.skip},
                            {"x", row.position.x},
                            {"y", row.position.y},
                            {"width", row.position.width},
                            {"height", row.position.height}});
    }
    const ordered_json all = {{"title", dump.title},
                              {"width", dump.width},
                              {"height", dump.height},
                              {"controls", std::move(controls)}};
    return all.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::string tree_text(const cl_dcl_data& data) {
    std::string text =
        fmt::format("{}  \"{}\"  {} x {}\n", data.name, expanded_title(data.root.label),
                    data.root.position.width, data.root.position.height);
    add_children(data.root, 1, text);
    return text;
}

} // namespace apps
