// Reads the files of a batch folder in the order in which they rule each other.
#include "KestraBatch/batch_folder.h"

#include "Kestra_Qor/tsdoc.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb/globals/option_globals.h"
#include "omb/globals/trace_values.h"
#include "toolkit/ts_xml.h"

#include <algorithm>
#include <array>
#include <set>
#include <system_error>

namespace KestraBatch {

namespace {

/// A setting that asks for something that is not rendered yet when it has another value than 0.
struct NotRenderedRow {
    const char* global;
    const char* what;
};

constexpr std::array<NotRenderedRow, 6> not_rendered{{
    {"bks_enable_fog", "fog"},
    {"bks_make_panorama", "a panorama projection"},
    {"bsr_camera_use_dof", "depth of field"},
    {"bks_alpha_ground_plane", "a ground plane of shadows only; it is drawn as a surface"},
    {"iks_image_filters", "image filters"},
    {"iks_edge_lines", "edge lines"},
}};

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    LineCursor cursor(text);
    std::string_view line;
    while (cursor.next(line)) {
        lines.emplace_back(line);
    }
    return lines;
}

/// True when the file is there; a folder or a file that cannot be read is an error.
bool is_readable(const std::filesystem::path& path) {
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) {
        return false;
    }
    read_small_file(path, ExitCode::missing, option_globals_limit);
    return true;
}

void read_settings(const Parameters& params, WarningList& warnings) {
    const auto path = params.resolve(params.globals_file);
    if (params.globals_file.empty() || !is_readable(path)) {
        warnings.add("settings-missing",
                     path.string() + ": no such file; the user's own settings are used");
    } else {
        read_option_globals_from_settings_file(path.string());
    }
    for (const auto& [name, value] : params.globals) {
        find_global(name, SAVE_ANY, false)->set_string_value(value);
    }
}

/// The user's settings, then the folder's; returns the lines that differ from the factory values.
std::vector<std::string> load_globals(const Parameters& params, WarningList& warnings) {
    globals.clear();
    preset_application_globals(0);
    preset_report_globals(0);
    read_settings(params, warnings);
    dc_set_trace_values();
    std::vector<std::string> changed;
    for (std::string& line : lines_of(option_globals_text())) {
        const cl_variable_base* variable = globals.lookup(line.substr(0, line.find(';')));
        if (variable != nullptr && variable->value_text() != variable->default_text()) {
            changed.push_back(std::move(line));
        }
    }
    return changed;
}

void warn_not_rendered(WarningList& warnings) {
    for (const NotRenderedRow& row : not_rendered) {
        if (get_global_int(row.global, false) != 0) {
            warnings.add("setting-not-rendered",
                         std::string(row.global) + " asks for " + row.what + ": not rendered yet");
        }
    }
    const bool background = get_global_bool("bqor_use_background_image", false) &&
                            !get_global_string("sqor_background_image", false).empty();
    if (background) {
        warnings.add("setting-not-rendered",
                     "sqor_background_image names a background image: not rendered yet");
    }
}

void read_document(const Parameters& params, CTsDoc& document, WarningList& warnings) {
    const auto path = params.resolve(params.doc_file);
    std::error_code ignored;
    if (params.doc_file.empty() || !std::filesystem::exists(path, ignored)) {
        warnings.add("document-missing",
                     path.string() + ": no such file; a perspective view is taken");
        return;
    }
    CTsXmlReader reader;
    if (!reader.Init(path.string())) {
        throw ReadError(ExitCode::input_unreadable, reader.Error());
    }
    if (!document.Read(reader)) {
        throw ReadError(ExitCode::input_unreadable, path.string(), 1,
                        std::string("the root element is '") + reader.Root().name() +
                            "', not 'TsDoc'");
    }
}

/// Fog's question to the user is settled by a warning; the setting stays.
void write_globals(CTsDoc& document) {
    const bool fog = get_global_bool("bks_enable_fog", false);
    if (fog) {
        set_global_bool("bks_enable_fog", false);
    }
    cl_tsdoc::write_globals_into_tsdoc2(document);
    if (fog) {
        set_global_bool("bks_enable_fog", true);
    }
}

/// The path that a key of the parameter file names, or the usual name beside it.
std::filesystem::path named_file(const Parameters& params, const std::string& name,
                                 const char* usual) {
    return params.resolve(name.empty() ? usual : name);
}

} // namespace

BatchFolder read_batch_folder(const std::filesystem::path& params_file, WarningList& warnings) {
    BatchFolder folder;
    const std::string file = std::filesystem::absolute(params_file).lexically_normal().string();
    folder.params = parse_params(read_small_file(file, ExitCode::input_unreadable), file, warnings);
    const auto view = folder.params.resolve(folder.params.view_file);
    folder.view = parse_view(read_small_file(view, ExitCode::missing), view.string(), warnings);
    folder.changed_settings = load_globals(folder.params, warnings);
    warn_not_rendered(warnings);
    read_document(folder.params, folder.document, warnings);
    write_globals(folder.document);
    return folder;
}

bool hand_settings_back(const Parameters& params, std::string& error) {
    try {
        Parameters named = params;
        const auto options = named_file(params, params.globals_file, "option_globals.txt");
        const auto path = named_file(params, params.doc_file, "qor_doc.xml");
        named.doc_file = path.string();
        CTsDoc document;
        WarningList no_document_before;
        read_document(named, document, no_document_before);
        write_globals(document); // may change globals, and so comes before they are written
        CTsXmlWriter writer;
        writer.Init(path.string());
        document.Write(writer);
        if (!writer.Close()) {
            error = writer.Error();
            return false;
        }
        if (!write_option_globals_to_settings_file(options.string(), true)) {
            error = options.string() + ": the settings cannot be written";
            return false;
        }
        return true;
    } catch (const std::exception& problem) {
        error = problem.what();
        return false;
    }
}

} // namespace KestraBatch
