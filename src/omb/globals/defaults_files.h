// Named sets of options: the user's own `defaults.usr` and `.dfl` files, both in the form of
// option_globals.txt.
#pragma once

#include <string>

/// "Defaults" in the settings folder, made when it is missing; "" when that fails.
std::string get_defaults_folder();
std::string get_user_defaults_file(); ///< defaults.usr in it

/// Write and read the user's defaults and tell it in a message box. False, with a message, when
/// that fails.
bool save_user_defaults();
bool load_user_defaults();

/// Title and extension of the file dialog for defaults files.
inline constexpr const char* defaults_file_title = "Defaults File";
inline constexpr const char* defaults_file_extension = "dfl";
/// What that dialog proposes: the file chosen last, or the folder.
std::string get_proposed_defaults_file();
/// Keep the choice in `sks_last_defaults_file` and write or read the file.
bool save_defaults_file(const std::string& path);
bool load_defaults_file(const std::string& path);

/// Where the defaults named by `sks_green_button_defaults` lie. A name without a folder is looked
/// for as NAME.DFL in "Defaults" of the settings folder, then of `support_folder`; one with a
/// folder first as it stands with .dfl added. "" for an empty name and for "none".
std::string find_render_defaults_file(const std::string& name, const std::string& support_folder);
/// Asks whether to go on without a defaults file that is not there. False when the user declines.
bool go_on_without_defaults_file(const std::string& path);
