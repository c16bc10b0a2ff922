// Profiles in files, see file_profile.h.
#include "omb/base/file_profile.h"

#include "omb/base/folders.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr double lock_seconds = 10;            ///< how long another program may hold the file
constexpr double impatient_lock_seconds = 0.1; ///< the same when there was trouble before
constexpr const char* kept_for_this_run = "; settings are kept for this run only";
constexpr const char* damaged_suffix = ".damaged";

/// The file that a link leads to, so that a replaced profile stays linked.
std::string real_path(const std::string& path) {
    std::error_code error;
    if (path.empty() || !fs::is_symlink(path, error)) {
        return path;
    }
    const fs::path target = fs::weakly_canonical(path, error);
    return error ? path : target.string();
}

} // namespace

cl_file_profile::cl_file_profile(const std::string& path, profile_trouble trouble, bool fold_case)
  : path(real_path(path))
  , trouble(std::move(trouble))
  , content(fold_case) {}

cl_file_profile::~cl_file_profile() {
    told = true; // nobody is left to hear it
    flush();
}

bool cl_file_profile::report(const std::string& why) const {
    if (!told) {
        told = true;
        if (trouble) {
            trouble(path + ": " + why);
        }
    }
    return false;
}

// ---- reading ----

void cl_file_profile::apply(const change& made) const {
    switch (made.kind) {
    case change_kind::set:
        content.write(made.section, made.key, made.value);
        break;
    case change_kind::set_if_absent:
        if (!content.read(made.section, made.key)) {
            content.write(made.section, made.key, made.value);
        }
        break;
    case change_kind::remove:
        content.remove(made.section, made.key);
        break;
    }
}

/// Reads the file if it is another than the one known. With `stamp_counts` an equal stamp will do:
/// good enough for reading ahead, but two changes within one tick of the clock may share a stamp.
/// False when the file must be left alone.
bool cl_file_profile::refresh(bool stamp_counts) const {
    if (path.empty() || (stamp_counts && loaded && platform::stamp_of(path) == stamp)) {
        return !unreadable;
    }
    std::string text, why;
    unreadable = !platform::read_shared_file(path, size_limit, text, stamp, why);
    if (unreadable) {
        loaded = true;
        return report(why + kept_for_this_run);
    }
    if (loaded && text == known_text) {
        return true;
    }
    loaded = true;
    no_text = !content.parse(text);
    known_text = std::move(text);
    if (no_text) {
        report("is no text file; it is put aside as " + path_name(path) + damaged_suffix +
               " when settings are stored");
    }
    for (const auto& [key, made] : waiting) {
        apply(made);
    }
    return true;
}

std::optional<std::string_view> cl_file_profile::read(std::string_view section,
                                                      std::string_view key) const {
    load();
    return content.read(section, key);
}

// ---- changing ----

void cl_file_profile::make_change(change_kind kind, std::string_view section, std::string_view key,
                                  std::string_view value) {
    load();
    std::string name(section);
    name.append(1, '\0').append(key);
    change& made = waiting[std::move(name)];
    if (made.kind == change_kind::remove && kind == change_kind::set_if_absent) {
        kind = change_kind::set; // what was taken away in this run is to stand there again
    }
    made = {kind, std::string(section), std::string(key), std::string(value)};
    apply(made);
    if (path.empty()) {
        waiting.clear();
    } else if (bulk_depth == 0 && kind != change_kind::set_if_absent) {
        flush();
    }
}

void cl_file_profile::write(std::string_view section, std::string_view key,
                            std::string_view value) {
    make_change(change_kind::set, section, key, value);
}

void cl_file_profile::remember(std::string_view section, std::string_view key,
                               std::string_view value) {
    load();
    if (!content.read(section, key)) {
        make_change(change_kind::set_if_absent, section, key, value);
    }
}

void cl_file_profile::remove(std::string_view section, std::string_view key) {
    make_change(change_kind::remove, section, key, {});
}

void cl_file_profile::begin_bulk() {
    ++bulk_depth;
    if (bulk_depth == 1) {
        refresh(true);
    }
}

void cl_file_profile::end_bulk() {
    if (--bulk_depth == 0) {
        flush();
    }
}

// ---- writing ----

/// Moves a file that is no text out of the way, so that its bytes are not lost.
bool cl_file_profile::set_aside(std::string& why) {
    std::error_code error;
    fs::rename(path, path + damaged_suffix, error);
    why = error.message();
    no_text = static_cast<bool>(error);
    return !error;
}

bool cl_file_profile::flush_locked(std::string& why) {
    if (!make_folder(path_folder(path))) {
        why = "the folder cannot be made";
        return false;
    }
    platform::FileLock lock;
    if (!lock.lock(path, told ? impatient_lock_seconds : lock_seconds, why) || !refresh(false)) {
        return false;
    }
    std::string text = content.text();
    if (text == known_text) {
        return true; // every key holds its value already
    }
    if ((no_text && !set_aside(why)) || !platform::replace_shared_file(path, text, why)) {
        return false;
    }
    known_text = std::move(text);
    stamp = platform::stamp_of(path);
    ++write_count;
    return true;
}

bool cl_file_profile::flush() {
    if (waiting.empty() || path.empty()) {
        return true;
    }
    std::string why;
    if (!flush_locked(why)) {
        return report(why + kept_for_this_run);
    }
    waiting.clear();
    return true;
}

// ---- the overlay and the initialisation file ----

std::optional<std::string_view> cl_overlay_profile::read(std::string_view section,
                                                         std::string_view key) const {
    if (const auto value = own.read(section, key)) {
        return value;
    }
    return removed.read(section, key) ? std::nullopt : below->read(section, key);
}

void cl_overlay_profile::write(std::string_view section, std::string_view key,
                               std::string_view value) {
    own.write(section, key, value);
}

void cl_overlay_profile::remember(std::string_view section, std::string_view key,
                                  std::string_view value) {
    if (!read(section, key)) {
        own.write(section, key, value);
    }
}

void cl_overlay_profile::remove(std::string_view section, std::string_view key) {
    own.remove(section, key);
    removed.write(section, key, "");
}

std::optional<std::string_view> cl_initialisation_file::read(std::string_view section,
                                                             std::string_view key) const {
    constexpr std::size_t buffer_units = 8192; // with the closing zero
    const auto value = file.read(section, key);
    if (!value || value->size() < buffer_units) {
        return value;
    }
    const std::u16string units = omb::to_utf16(*value);
    cut = omb::to_utf8(std::u16string_view(units).substr(0, buffer_units - 1));
    return cut;
}
