// Writer and reader of option_globals.txt and defaults files, see option_globals.h.
#include "omb/globals/option_globals.h"

#include "omb/base/folders.h"
#include "omb/base/profile.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"

// ---- writing ----

namespace {

/// The two globals that stay out of the file unless the user wants them remembered.
bool is_filter_global(std::string_view name) {
    return name == "iks_image_filters" || name == "sks_image_filters";
}

void append_line(std::string& text, const cl_variable_base& variable) {
    const std::string& name = variable.name;
    switch (name.front()) {
    case 'b':
    case 'i':
    case 'c': // the raw word, in decimal
        text += fmt::sprintf("%s; %d\n", name, variable.get_int_value());
        break;
    case 'r':
        text += fmt::sprintf("%s; %.9g\n", name, variable.get_double_value());
        break;
    case 'p': {
        const fpt point = variable.get_fpt_value();
        text += fmt::sprintf("%s; (%.9g, %.9g, %.9g)\n", name, point.x, point.y, point.z);
        break;
    }
    case 's': // as it stands: a value with a line break breaks the line
        text += name + "; " + variable.get_string_value() + "\n";
        break;
    default:
        OMB_TRACE(4, "Unknown option_global: %s", name);
    }
}

} // namespace

std::string option_globals_text() {
    std::vector<std::string> names;
    get_global_names_sorted(names);
    const bool filters = get_global_bool("bks_remember_filters", false);
    std::string text;
    for (const std::string& name : names) {
        const cl_variable_base* variable = find_global(name, SAVE_ANY);
        if (!name.empty() && is_options_file_type(variable->save_type) &&
            (filters || !is_filter_global(name))) {
            append_line(text, *variable);
        }
    }
    return text;
}

void write_option_globals_to_open_file(cl_output_file& file) {
    if (!file.is_open()) {
        OMB_TRACE(1, "Options GLobal FIle not found");
        return;
    }
    file.write_data(option_globals_text());
}

bool write_option_globals_to_settings_file(const std::string& path, bool durable) {
    if (path.empty()) {
        OMB_TRACE(1, "Cannot write option globals. File name not set");
        return false;
    }
    cl_output_file file;
    if (file.open_atomic(path, durable)) {
        write_option_globals_to_open_file(file);
    }
    if (!file.close()) {
        OMB_TRACE(1, "Cannot write option globals: %s", file.error_text());
        return false;
    }
    return true;
}

// ---- reading ----

namespace {

bool take_bool(std::string_view name, std::string_view value) {
    const bool read = omb::parse_int(value) != 0;
    if (read == get_global_bool(name, true, SAVE_ANY)) {
        return false;
    }
    set_global_bool(name, read);
    return true;
}

bool take_int(std::string_view name, std::string_view value) {
    const std::int32_t read = omb::parse_int(value);
    if (read == get_global_int(name, true, SAVE_ANY)) {
        return false;
    }
    set_global_int(name, read);
    return true;
}

bool take_color(std::string_view name, std::string_view value) {
    const auto read = static_cast<COLORREF>(omb::parse_int(value));
    if (read == get_global_COLORREF(name, true, SAVE_ANY)) {
        return false;
    }
    set_global_COLORREF(name, read);
    return true;
}

bool take_double_value(std::string_view name, std::string_view value) {
    const double read = omb::parse_double(value);
    if (read == get_global_double(name, true, SAVE_ANY)) {
        return false;
    }
    set_global_double(name, read);
    return true;
}

bool take_point(std::string_view name, std::string_view value) {
    const fpt read = parse_point(value);
    if (fpt_equal(read, get_global_fpt(name, true, SAVE_ANY))) {
        return false;
    }
    set_global_fpt(name, read);
    return true;
}

bool take_string(std::string_view name, std::string_view value) {
    const std::string read = omb::replace_all(value, "\\\\", "\\");
    if (read == get_global_string(name, true, SAVE_ANY)) {
        return false;
    }
    set_global_string(name, read);
    return true;
}

struct line_kind {
    char letter;
    bool (*take)(std::string_view name, std::string_view value);
};

constexpr line_kind line_kinds[] = {{'b', take_bool},  {'i', take_int},
                                    {'c', take_color}, {'r', take_double_value},
                                    {'p', take_point}, {'s', take_string}};

/// True when the line changed a value.
bool take_line(std::string_view line) {
    line = omb::trim(line);
    const std::size_t at = line.find(';');
    if (line.empty() || line.front() == '#' || at == line.npos || at == 0) {
        return false;
    }
    const std::string_view name = omb::trim(line.substr(0, at));
    const std::string_view value = omb::trim(line.substr(at + 1));
    for (const line_kind& kind : line_kinds) {
        if (!name.empty() && name.front() == kind.letter) {
            return kind.take(name, value);
        }
    }
    return false;
}

} // namespace

bool read_option_globals_from_open_file(cl_input_file& file) {
    const cl_profile_bulk one_write;
    bool changed = false;
    std::string_view line;
    while (file.read_line(line)) {
        changed = take_line(line) || changed;
    }
    return changed;
}

bool read_option_globals_from_settings_file(const std::string& path) {
    if (path.empty() || !file_exists(path)) {
        return false;
    }
    cl_input_file file;
    if (!file.open(path, option_globals_limit)) {
        OMB_TRACE(1, "Cannot read option globals: %s", file.error_text());
        return false;
    }
    const cl_profile_bulk one_write;
    const bool changed = read_option_globals_from_open_file(file);
    file.close();
    if (changed) { // a file that alters any option leaves the quality preset behind
        set_global_int("iks_render_quality", 0);
    }
    return changed;
}
