// Dialog language in tests: tokens as one line of text, loads from memory.
#pragma once

#include "omb/dialog/dcl_dump.h"
#include "omb/dialog/dcl_keywords.h"

#include <array>
#include <string>
#include <vector>

namespace dcl_test {

inline std::string show(const cl_dcl_token& token) {
    static constexpr std::array<const char*, 14> names{
        "call",   "list",  "control", "dialog",     "const",      "ivar",  "dvar",
        "double", "local", "str",     "translated", "string_var", "table", "dotted"};
    if (token.code < DCL_COMMAND) {
        return token.code < 128 ? std::string(1, static_cast<char>(token.code))
                                : std::to_string(token.code);
    }
    const std::string name = names.at(static_cast<std::size_t>(token.code - DCL_COMMAND));
    return token.tag == dlg_token_value::int_tag ? name + "#" + std::to_string(token.number)
                                                 : name + "<" + token.text + ">";
}

/// "str<a> = const<1>", and behind a bar the errors with their lines.
inline std::string show(const cl_dcl_token_list& list) {
    std::string line;
    for (const cl_dcl_token& token : list.tokens) {
        line += (line.empty() ? "" : " ") + show(token);
    }
    for (const cl_dcl_error& error : list.errors) {
        line += " | " + std::to_string(error.line) + ": " + error.message;
    }
    return line;
}

inline std::string tokens(const std::string& text) { return show(list_dcl_tokens_of_text(text)); }

/// A load from memory without other files.
inline cl_dcl_load_result load(cl_dcl_data& store, const std::string& dialog,
                               const std::string& text, bool every_dialog = false) {
    cl_dcl_load_options options;
    options.every_dialog = every_dialog;
    options.with_includes = options.with_common_file = options.report = false;
    return load_dcl_text(store, dialog, text, "memory", options);
}

/// Errors as "line: message".
inline std::vector<std::string> errors_of(const cl_dcl_load_result& result) {
    std::vector<std::string> lines;
    for (const cl_dcl_error& error : result.errors) {
        lines.push_back(std::to_string(error.line) + ": " + error.message);
    }
    return lines;
}

} // namespace dcl_test
