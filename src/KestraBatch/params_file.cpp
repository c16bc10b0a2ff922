// Reads the parameter file by a table of its keys.
#include "KestraBatch/params_file.h"

#include "KestraBatch/record_fields.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>

namespace KestraBatch {

namespace {

constexpr std::string_view key_mark = "*@KEY:";

struct KeyRow {
    std::string_view key;
    std::string Parameters::*member;
    bool required = false;
};

constexpr std::array<KeyRow, 21> key_rows{{
    {"APPLICATION_NAME", &Parameters::application_name},
    {"CALLING_APP", &Parameters::calling_app},
    {"VERSION", &Parameters::version},
    {"APPLICATION_FOLDER", &Parameters::application_folder},
    {"MATERIAL_MAPS", &Parameters::material_maps},
    {"VERSION_INFO", &Parameters::version_info},
    {"MODEL_NAME", &Parameters::model_name},
    {"MODEL_PATH", &Parameters::model_path},
    {"UUID", &Parameters::uuid},
    {"BATCH_GEOM_FILE", &Parameters::geometry_file, true},
    {"VIEW_FILE", &Parameters::view_file, true},
    {"LIGHT_FOLDER", &Parameters::light_folder},
    {"MATERIAL_FOLDER", &Parameters::material_folder},
    {"GLOBALS_FILE", &Parameters::globals_file},
    {"DOC_FILE", &Parameters::doc_file},
    {"PROPS_FILE", &Parameters::props_file},
    {"TS3MATS_FILE", &Parameters::ts3mats_file},
    {"RPC_FOLDER", &Parameters::rpc_folder},
    {"DBUNIT", &Parameters::database_unit},
    {"HWND", &Parameters::window_handle},
    {"WTITLE", &Parameters::window_title},
}};

class ParamsParser {
public:
    ParamsParser(const std::string& file, WarningList& warnings)
      : warnings_(warnings) {
        params_.file = file;
        params_.folder = std::filesystem::path(file).parent_path();
    }

    Parameters run(std::string_view text) {
        LineCursor lines(text);
        std::string_view line;
        while (lines.next(line)) {
            take_line(line, lines.number());
        }
        check(lines.number());
        return std::move(params_);
    }

private:
    void take_line(std::string_view line, std::size_t number) {
        if (trim_blanks(line).empty() || line.substr(0, 2) == "#;") {
            return;
        }
        const std::size_t semicolon = line.find(';');
        if (line.substr(0, key_mark.size()) != key_mark || semicolon == line.npos) {
            warn("params-line", number, "not a key and not a comment; the line is skipped");
            return;
        }
        ++keys_;
        const auto key = line.substr(key_mark.size(), semicolon - key_mark.size());
        take_key(key, line.substr(semicolon + 1), number);
    }

    void take_key(std::string_view key, std::string_view value, std::size_t number) {
        if (key == "SupportFolder") {
            params_.support_folders.emplace_back(value);
            return;
        }
        if (key == "GLOBAL") {
            take_global(value, number);
            return;
        }
        for (std::size_t i = 0; i < key_rows.size(); ++i) {
            if (key_rows[i].key == key) {
                if (seen_[i]) {
                    warn("params-key-twice", number,
                         std::string(key) + " stands here again; the last one counts");
                }
                seen_[i] = true;
                params_.*key_rows[i].member = std::string(value);
                return;
            }
        }
        warn("params-key-unknown", number, "unknown key '" + std::string(key) + "'");
        params_.unknown.emplace_back(key, value);
    }

    void take_global(std::string_view value, std::size_t number) {
        const std::size_t semicolon = value.find(';');
        if (semicolon == value.npos || semicolon == 0) {
            warn("params-global", number, "a GLOBAL key needs a name, a semicolon and a value");
            return;
        }
        params_.globals.emplace_back(value.substr(0, semicolon), value.substr(semicolon + 1));
    }

    void check(std::size_t last_line) const {
        if (keys_ == 0) {
            throw ReadError(ExitCode::input_unreadable, params_.file, 0,
                            "no '*@KEY:' line in it; this is no parameter file");
        }
        for (const KeyRow& row : key_rows) {
            if (row.required && (params_.*row.member).empty()) {
                throw ReadError(ExitCode::input_unreadable, params_.file, last_line,
                                "the file ends without a value for key '" + std::string(row.key) +
                                    "'");
            }
        }
    }

    void warn(const char* code, std::size_t line, const std::string& text) {
        warnings_.add(code, ReadError::where(params_.file, line) + text);
    }

    Parameters params_;
    WarningList& warnings_;
    std::array<bool, key_rows.size()> seen_{};
    std::size_t keys_ = 0;
};

} // namespace

std::filesystem::path Parameters::resolve(std::string_view name) const {
    std::error_code ignored;
    const std::filesystem::path as_it_stands{std::string(name)};
    if (as_it_stands.is_absolute() && std::filesystem::exists(as_it_stands, ignored)) {
        return as_it_stands; // a back-slash may be part of a name here
    }
    std::string text(name);
    std::replace(text.begin(), text.end(), '\\', '/');
    return (folder / text).lexically_normal(); // an absolute text replaces the folder
}

Parameters parse_params(std::string_view text, const std::string& file, WarningList& warnings) {
    return ParamsParser(file, warnings).run(text);
}

std::string read_small_file(const std::filesystem::path& path, ExitCode absent, std::size_t limit) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        throw ReadError(absent, path.string(), 0, "no such file");
    }
    if (std::filesystem::is_directory(status)) {
        throw ReadError(ExitCode::input_unreadable, path.string(), 0, "this is a folder");
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw ReadError(ExitCode::input_unreadable, path.string(), 0, "cannot be opened");
    }
    // Piece by piece: the limit is far above what such files hold, and memory costs time.
    constexpr std::size_t piece = std::size_t{1} << 16;
    std::string text;
    while (in && text.size() <= limit) {
        const std::size_t before = text.size();
        text.resize(before + piece);
        in.read(text.data() + before, static_cast<std::streamsize>(piece));
        text.resize(before + static_cast<std::size_t>(in.gcount()));
    }
    if (text.size() > limit) {
        throw ReadError(ExitCode::limit, path.string(), 0,
                        "longer than " + std::to_string(limit) + " bytes");
    }
    return text;
}

} // namespace KestraBatch
