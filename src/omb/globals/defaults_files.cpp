// The user's defaults and named defaults files, see defaults_files.h.
#include "omb/globals/defaults_files.h"

#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/globals/globals.h"
#include "omb/globals/option_globals.h"

#include <fmt/printf.h>

namespace {

constexpr const char* last_file = "sks_last_defaults_file";
constexpr const char* folder_name = "Defaults";

bool has_folder(const std::string& name) { return name.find_first_of("/\\") != name.npos; }

std::string in_defaults(const std::string& folder, const std::string& name) {
    return join_path(join_path(folder, folder_name), name + ".DFL");
}

/// NAME.DFL or NAME.dfl in one of the two Defaults folders; the first name when there is none.
std::string find_in_defaults(const std::string& name, const std::string& support_folder) {
    for (const std::string& folder : {settings_folder_path(), support_folder}) {
        const std::string upper = in_defaults(folder, name);
        const std::string lower = upper.substr(0, upper.size() - 3) + defaults_file_extension;
        for (const std::string& candidate : {upper, lower}) {
            if (file_exists(candidate)) {
                return candidate;
            }
        }
    }
    return in_defaults(settings_folder_path(), name);
}

bool tell_missing(const std::string& path) {
    do_message_box(fmt::sprintf("Could not file defaults file: %s", path), "Default file error",
                   message_box::icon_error);
    return false;
}

} // namespace

std::string get_defaults_folder() {
    const std::string folder = join_path(settings_folder_path(), folder_name);
    return make_folder(folder) ? folder : std::string();
}

std::string get_user_defaults_file() { return join_path(get_defaults_folder(), "defaults.usr"); }

bool save_user_defaults() {
    if (!write_option_globals_to_settings_file(get_user_defaults_file(), true)) {
        return false;
    }
    do_message_box("User defaults saved", defaults_file_title);
    return true;
}

bool load_user_defaults() {
    const std::string path = get_user_defaults_file();
    if (!file_exists(path)) {
        return tell_missing(path);
    }
    read_option_globals_from_settings_file(path);
    do_message_box("User defaults loaded", defaults_file_title);
    return true;
}

std::string get_proposed_defaults_file() {
    find_global(last_file, SAVE_PROFILE, false); // not of the catalogue: it loads itself
    std::string last = get_global_string(last_file);
    return last.empty() ? get_defaults_folder() : last;
}

bool save_defaults_file(const std::string& path) {
    set_global_string(last_file, path, SAVE_PROFILE);
    return write_option_globals_to_settings_file(path, true);
}

bool load_defaults_file(const std::string& path) {
    set_global_string(last_file, path, SAVE_PROFILE);
    if (!file_exists(path)) {
        return tell_missing(path);
    }
    read_option_globals_from_settings_file(path);
    return true;
}

std::string find_render_defaults_file(const std::string& name, const std::string& support_folder) {
    if (name.empty() || omb::equal_no_case(name, "none")) {
        return {};
    }
    if (!has_folder(name)) {
        return find_in_defaults(name, support_folder);
    }
    std::string with_extension = name + "." + defaults_file_extension;
    return file_exists(with_extension) ? with_extension
                                       : find_in_defaults(path_name(name), support_folder);
}

bool go_on_without_defaults_file(const std::string& path) {
    return do_message_box(
               fmt::sprintf("Could not file defaults file: %s", path), "Default file error",
               message_box::ok_cancel | message_box::icon_question) == message_box::id_ok;
}
