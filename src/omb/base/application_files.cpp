#include "omb/base/application_files.h"

#include "omb/base/folders.h"
#include "omb/base/text.h"
#include "platform/files.h"

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

std::string& set_folder() {
    static std::string folder;
    return folder;
}

/// The entry of that name in a folder, by its exact name or else without regard to case; empty
/// when there is none. Of several the first by name, so that the choice does not change.
fs::path find_entry(const fs::path& folder, const fs::path& name) {
    std::error_code error;
    if (fs::exists(folder / name, error)) {
        return folder / name;
    }
    fs::path found;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const fs::path candidate = entry->path().filename();
        if (omb::equal_no_case(candidate.string(), name.string()) &&
            (found.empty() || candidate < found.filename())) {
            found = entry->path();
        }
    }
    return found;
}

/// Only names that lead down: no root, no "..".
bool leads_down(const fs::path& path) {
    if (path.empty() || path.has_root_path()) {
        return false;
    }
    for (const fs::path& part : path) {
        if (part.empty() || part == "." || part == "..") {
            return false;
        }
    }
    return true;
}

} // namespace

std::string support_folder() {
    if (!set_folder().empty()) {
        return set_folder();
    }
    return sibling_folder(platform::program_file().parent_path().string(), "OMB_SUPPORT");
}

void set_support_folder(const std::string& folder) { set_folder() = folder; }

std::string find_application_file(std::string_view folder, std::string_view application,
                                  std::string_view name) {
    const bool text_is_sound =
        name.find('\0') == name.npos &&
        application.find_first_of(std::string_view("/\\\0", 3)) == application.npos;
    const fs::path below = fs::path("appl") / application / folder / native_separators(name);
    if (!text_is_sound || application.empty() || !leads_down(fs::path(application)) ||
        !leads_down(below)) {
        return {};
    }
    fs::path found = support_folder();
    for (const fs::path& part : below) {
        found = find_entry(found, part);
        if (found.empty()) {
            return {};
        }
    }
    std::error_code error;
    return fs::is_regular_file(found, error) ? found.string() : std::string();
}
