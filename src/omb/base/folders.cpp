// Folders and file names, see folders.h.
#include "omb/base/folders.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "platform/files.h"

#include <filesystem>

namespace fs = std::filesystem;

bool file_exists(const std::string& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

bool folder_exists(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

bool make_folder(const std::string& path) {
    std::error_code ignored;
    fs::create_directories(path, ignored);
    return folder_exists(path);
}

// ---- names ----

std::string join_path(std::string_view folder, std::string_view name) {
    while (folder.size() > 1 && (folder.ends_with('/') || folder.ends_with('\\'))) {
        folder.remove_suffix(1);
    }
    while (name.starts_with('/') || name.starts_with('\\')) {
        name.remove_prefix(1);
    }
    const bool bare = folder.empty() || folder == "/";
    return std::string(folder) + (bare ? "" : "/") + std::string(name);
}

std::string path_name(std::string_view path) {
    const std::size_t at = path.find_last_of("/\\");
    return std::string(at == path.npos ? path : path.substr(at + 1));
}

std::string path_folder(std::string_view path) {
    const std::size_t at = path.find_last_of("/\\");
    return std::string(at == path.npos ? std::string_view() : path.substr(0, at == 0 ? 1 : at));
}

std::string path_extension(std::string_view path) {
    const std::string name = path_name(path);
    const std::size_t at = name.rfind('.');
    return at == name.npos || at == 0 ? std::string() : name.substr(at + 1);
}

std::string path_stem(std::string_view path) {
    const std::string name = path_name(path);
    const std::size_t at = name.rfind('.');
    return at == name.npos || at == 0 ? name : name.substr(0, at);
}

std::string sibling_folder(const std::string& program_folder, const std::string& name) {
    static constexpr std::string_view bin = "omb_bin";
    if (!omb::ends_with_no_case(program_folder, bin)) {
        return program_folder;
    }
    return program_folder.substr(0, program_folder.size() - bin.size()) + name;
}

std::string native_separators(std::string_view path) { return omb::replace_all(path, "\\", "/"); }

// ---- clearing, deleting, copying ----

namespace {

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// Where the names of a full Windows path begin, behind X:\ or \\; 0 for another form.
std::size_t windows_names_begin(std::string_view folder) {
    if (folder.size() > 2 && is_letter(folder[0]) && folder[1] == ':' &&
        (folder[2] == '\\' || folder[2] == '/')) {
        return 3;
    }
    return folder.starts_with("\\\\") ? 2 : 0;
}

/// X:\name, \\name, or an absolute path with at least one name below the root.
bool has_safe_form(const std::string& folder) {
    if (const std::size_t begin = windows_names_begin(folder); begin > 0) {
        // More separators are still the whole drive, and a step up may lead to it.
        const std::string names = "/" + native_separators(folder.substr(begin)) + "/";
        return names.find_first_not_of("/.") != names.npos && names.find("/../") == names.npos;
    }
    const fs::path path = fs::path(folder).lexically_normal();
    const fs::path below = path.relative_path();
    return path.is_absolute() && !below.empty() && below != "." && *below.begin() != "..";
}

/// Traces why a folder may not be cleared; true when it may.
bool check_folder_to_remove(const std::string& folder) {
    if (folder.empty()) {
        OMB_TRACE(1, "File to remove not set properly");
        return false;
    }
    if (folder.find_first_of("\\/") == std::string::npos) {
        OMB_TRACE(1, "Cannot remove folder: '%s'\n\nName must contain a backslash", folder);
        return false;
    }
    if (!has_safe_form(folder)) {
        OMB_TRACE(1,
                  "Cannot remove folder: '%s'\n\nName must contain a backslash, and a Drive "
                  "letter, and must not be the entire drive.",
                  folder);
        return false;
    }
    return true;
}

bool clear_entries(const fs::path& folder, bool recursive, std::string_view suffix) {
    bool all = true;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code why;
        if (entry->is_directory(why) && !entry->is_symlink(why)) {
            all = (!recursive || clear_entries(entry->path(), true, suffix)) && all;
        } else if (omb::ends_with_no_case(entry->path().filename().string(), suffix)) {
            all = fs::remove(entry->path(), why) && all;
        }
    }
    return all && !error;
}

} // namespace

bool clear_folder(const std::string& folder, bool recursive, std::string_view suffix) {
    if (!check_folder_to_remove(folder)) {
        return false;
    }
    return !folder_exists(folder) || clear_entries(folder, recursive, suffix);
}

namespace {

bool delete_tree(const fs::path& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code why;
        const bool real_folder = entry->is_directory(why) && !entry->is_symlink(why);
        if (real_folder ? !delete_tree(entry->path()) : !fs::remove(entry->path(), why)) {
            return false;
        }
    }
    return !error && fs::remove(folder, error);
}

} // namespace

bool delete_folder_tree(const std::string& folder) {
    if (!check_folder_to_remove(folder)) {
        return false;
    }
    std::error_code ignored;
    if (fs::is_symlink(folder, ignored)) {
        return fs::remove(folder, ignored);
    }
    return !fs::exists(folder, ignored) || delete_tree(folder);
}

namespace {

/// Whether `inner` is `outer` or lies below it; neither need exist.
bool is_within(const fs::path& inner, const fs::path& outer) {
    const auto full = [](const fs::path& path) {
        std::error_code error;
        std::string text = fs::weakly_canonical(fs::absolute(path, error), error).string();
        return text.ends_with('/') ? text : text + "/";
    };
    return full(inner).starts_with(full(outer));
}

} // namespace

bool copy_folder(const std::string& from, const std::string& to) {
    if (is_within(to, from)) {
        OMB_TRACE(1, "Cannot copy folder: %s to %s (it would copy itself)", from, to);
        return false;
    }
    std::error_code error;
    fs::create_directories(to, error);
    fs::copy(from, to,
             fs::copy_options::recursive | fs::copy_options::overwrite_existing |
                 fs::copy_options::copy_symlinks,
             error);
    if (error) {
        OMB_TRACE(1, "Cannot copy folder: %s to %s (%s)", from, to, error.message());
    }
    return !error;
}

// ---- the user's folders ----

namespace {

std::string made(const fs::path& path) {
    const std::string folder = path.string();
    return make_folder(folder) ? folder : std::string();
}

} // namespace

std::string get_temporary_directory() {
    std::string folder = platform::temporary_folder().string();
    if (!make_folder(folder)) {
        OMB_TRACE(1, "Cannot create temporary folder: %s", folder);
        folder = "/tmp";
    }
    return folder.ends_with('/') ? folder : folder + "/";
}

std::string get_application_data_folder() { return made(platform::data_folder()); }
std::string settings_folder_path() { return (platform::config_folder() / "qorvane").string(); }
std::string get_settings_folder() { return made(settings_folder_path()); }
std::string get_state_folder() { return made(platform::state_folder() / "qorvane"); }

std::string get_documents_folder() {
    std::string documents = platform::documents_folder().string();
    if (folder_exists(documents)) {
        return documents;
    }
    std::string data = get_application_data_folder();
    return data.empty() ? get_temporary_directory() : data;
}

// ---- material names as file stems ----

namespace {

bool is_plain(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           c == u'-' || c == u'_';
}

bool looks_encoded(std::string_view name) {
    const std::size_t at = name.find('%');
    if (at == name.npos) {
        return false;
    }
    const std::string_view behind = name.substr(at + 1);
    return behind >= "0" && behind <= "9";
}

int hex_digit(char16_t c) {
    if (c >= u'0' && c <= u'9') {
        return c - u'0';
    }
    const char16_t lower = c | 0x20;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

/// Value of two columns; a blank in the first stands for 0. -1 when they hold no number.
int hex_pair(char16_t first, char16_t second) {
    const int high = first == u' ' ? 0 : hex_digit(first);
    const int low = hex_digit(second);
    return high < 0 || low < 0 ? -1 : 16 * high + low;
}

} // namespace

std::string encode_file_name(std::string_view name) {
    if (looks_encoded(name)) {
        return std::string(name);
    }
    std::string result;
    for (const char16_t c : omb::to_utf16(name)) {
        if (is_plain(c)) {
            result += static_cast<char>(c);
        } else {
            result += fmt::sprintf("%%%2x", static_cast<unsigned>(c & 0xff));
        }
    }
    return result;
}

std::string decode_file_name(std::string_view name) {
    const std::u16string text = omb::to_utf16(name);
    std::u16string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int value =
            text[i] == u'%' && i + 2 < text.size() ? hex_pair(text[i + 1], text[i + 2]) : -1;
        if (value < 0) {
            result += text[i];
        } else {
            result += static_cast<char16_t>(value);
            i += 2;
        }
    }
    return omb::to_utf8(result);
}
