// Profile stores and the two of the process, see profile.h.
#include "omb/base/profile.h"

#include "omb/base/file_profile.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/registry.h"
#include "omb/base/text.h"
#include "platform/files.h"

#include <filesystem>

void cl_profile_store::remember(std::string_view section, std::string_view key,
                                std::string_view value) {
    if (!read(section, key)) {
        write(section, key, value);
    }
}

std::string cl_profile_store::read_text(std::string_view section, std::string_view key,
                                        std::string_view fall_back) const {
    return std::string(read(section, key).value_or(fall_back));
}

int cl_profile_store::read_int(std::string_view section, std::string_view key,
                               int fall_back) const {
    const auto text = read(section, key);
    return text ? omb::parse_int(*text) : fall_back;
}

double cl_profile_store::read_double(std::string_view section, std::string_view key,
                                     double fall_back) const {
    const auto text = read(section, key);
    return text ? omb::parse_double(*text) : fall_back;
}

std::unique_ptr<cl_profile_store> make_memory_profile(bool fold_case) {
    return std::make_unique<cl_file_profile>("", nullptr, fold_case);
}

// ---- the two of the process ----

namespace {

using holder = std::unique_ptr<cl_profile_store>;

struct stores {
    holder user = make_memory_profile();
    holder initialisation = make_memory_profile();
    std::uint32_t generation = 1;
};

stores& all() {
    static stores instance;
    return instance;
}

void replace(holder& where, holder store) {
    where = store ? std::move(store) : make_memory_profile();
}

void tell(const std::string& text) { do_message_box(text, settings_trouble_title); }

holder store_in_file(const std::string& path, profile_use use, bool fold_case) {
    holder store = std::make_unique<cl_file_profile>(path, tell, fold_case);
    if (use == profile_use::read_only) {
        return std::make_unique<cl_overlay_profile>(std::move(store), fold_case);
    }
    return store;
}

/// The user's own qorvane.ini, or the first of the system's.
std::string initialisation_path(const std::string& settings_folder) {
    std::string path = join_path(settings_folder, "qorvane.ini");
    if (file_exists(path)) {
        return path;
    }
    for (const std::filesystem::path& folder : platform::system_config_folders()) {
        std::string candidate = (folder / "qorvane" / "qorvane.ini").string();
        if (file_exists(candidate)) {
            return candidate;
        }
    }
    return path;
}

} // namespace

cl_profile_store& profile() { return *all().user; }
cl_profile_store& initialisation_file() { return *all().initialisation; }
std::uint32_t profile_generation() { return all().generation; }

void set_profile(holder store) {
    replace(all().user, std::move(store));
    ++all().generation;
}

void set_initialisation_file(holder store) { replace(all().initialisation, std::move(store)); }

void open_user_profile(profile_use use) {
    const std::string folder = settings_folder_path();
    set_profile(store_in_file(join_path(folder, "profile.ini"), use, false));
    set_registry(store_in_file(join_path(folder, "registry.ini"), use, true));
    set_initialisation_file(
        std::make_unique<cl_initialisation_file>(initialisation_path(folder), tell));
    profile().read("", ""); // trouble is told now and not in the middle of the work
}
