// Folders: clearing with guards, tree delete and copy, the user's folders, temporary folder, and
// the encoding of material names as file stems. Paths are UTF-8.
#pragma once

#include <string>
#include <string_view>

bool file_exists(const std::string& path);   ///< a regular file
bool folder_exists(const std::string& path); ///< a folder
/// Makes the folder with all its parents; true when it stands afterwards.
bool make_folder(const std::string& path);

/// Both parts joined by one separator of the platform.
std::string join_path(std::string_view folder, std::string_view name);
/// Name without folder; both separators count. Extension without its point, "" when none.
std::string path_name(std::string_view path);
std::string path_stem(std::string_view path);
std::string path_extension(std::string_view path);
std::string path_folder(std::string_view path);
/// The folder beside a program folder: when that is "omb_bin" (the last seven characters, compared
/// without case), its place is taken by `name`; otherwise the program folder stands for it.
std::string sibling_folder(const std::string& program_folder, const std::string& name);
/// Contract files hold relative names like ".\Materials\a.csv": back-slashes become the platform's.
std::string native_separators(std::string_view path);

/// Removes the files of a folder (and of its sub-folders when `recursive`) whose name ends with
/// `suffix`, compared without case; empty means all. The folders stay. A name that is empty, has
/// no separator, or is a drive, the root or relative is traced and removes nothing. True when every
/// file that was to go went.
bool clear_folder(const std::string& folder, bool recursive, std::string_view suffix = {});

/// Removes every file and sub-folder and the folder, with clear_folder's guards. Stops with false
/// at the first that will not go. A link is removed, not followed.
bool delete_folder_tree(const std::string& folder);

/// Copies a folder's content into another, which is made and does not lie in it; files that stand
/// there are replaced. False, with a trace, at the first failure.
bool copy_folder(const std::string& from, const std::string& to);

/// The temporary folder ($TMPDIR, $TEMP or /tmp), made if missing, ending in a separator. When it
/// cannot be made that is traced, and /tmp stands in.
std::string get_temporary_directory();

/// The user's folders, made if missing; "" when that fails. `QORVANE_HOME` replaces all of them.
std::string get_application_data_folder(); ///< $XDG_DATA_HOME or ~/.local/share
std::string get_settings_folder();         ///< $XDG_CONFIG_HOME/qorvane or ~/.config/qorvane
std::string settings_folder_path();        ///< the same, which need not be there
std::string get_state_folder();            ///< $XDG_STATE_HOME/qorvane or ~/.local/state/qorvane
/// Documents (see platform::documents_folder); falls back on application data, then on the
/// temporary folder.
std::string get_documents_folder();

/// A material name as a file stem: characters (UTF-16 code units) other than a-z, A-Z, 0-9, "-",
/// "_" become "%" and the low byte in two columns of hexadecimal, blank-padded as "%%%2x" does. A
/// name whose text behind its first "%" sorts between "0" and "9" counts as encoded already.
std::string encode_file_name(std::string_view name);
/// Each "%" and the two characters behind it become the character with that value.
std::string decode_file_name(std::string_view name);
