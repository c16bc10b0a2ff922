// Looking for the files that drawings refer to.
#include "host/db/support_files.h"

#include "host/db/database.h"

#include <algorithm>
#include <mutex>

namespace {

namespace fs = std::filesystem;

struct Folders {
    std::mutex mutex;
    std::vector<fs::path> list;
};

Folders& folders() {
    static Folders instance;
    return instance;
}

bool is_file(const fs::path& path) {
    std::error_code code;
    return fs::is_regular_file(path, code);
}

/// A file with a drive letter: only its last part can be of use here.
bool has_drive(const std::string& name) { return name.size() > 1 && name[1] == ':'; }

} // namespace

void acdbSetSupportFolders(std::vector<fs::path> list) {
    const std::lock_guard lock(folders().mutex);
    folders().list = std::move(list);
}

std::vector<fs::path> acdbSupportFolders() {
    const std::lock_guard lock(folders().mutex);
    return folders().list;
}

fs::path acdbFindFile(const AcDbDatabase* database, const std::string& name) {
    if (name.empty() || name.find('\0') != std::string::npos) {
        return {};
    }
    if (const fs::path as_stored(name); as_stored.is_absolute() && is_file(as_stored)) {
        return as_stored;
    }
    std::string slashed = name;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    const fs::path whole(slashed);
    if (whole.is_absolute() && is_file(whole)) {
        return whole;
    }
    std::vector<fs::path> places;
    if (database != nullptr && !database->filename().empty()) {
        places.push_back(fs::path(database->filename()).parent_path());
    }
    const std::vector<fs::path> support = acdbSupportFolders();
    places.insert(places.end(), support.begin(), support.end());
    const bool relative = whole.is_relative() && !has_drive(slashed);
    for (const fs::path& place : places) {
        if (relative && is_file(place / whole)) {
            return place / whole;
        }
        if (const fs::path bare = whole.filename(); !bare.empty() && is_file(place / bare)) {
            return place / bare;
        }
    }
    return {};
}
