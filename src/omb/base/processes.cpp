// Other programs, see processes.h.
#include "omb/base/processes.h"

#include "omb/base/folders.h"
#include "omb/base/trace.h"
#include "platform/files.h"
#include "platform/messages.h"
#include "platform/process.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

bool is_thread_running(std::int64_t process_id) {
    const auto all = platform::process_snapshot();
    return std::any_of(all.begin(), all.end(), [&](const platform::ProcessInfo& process) {
        return process.process_id == process_id;
    });
}

// ---- opening files ----

namespace {

/// "https://..." and the like: a scheme of letters, which no drive and no path has.
bool is_web_address(std::string_view text) {
    const std::size_t end = text.find("://");
    return end != text.npos && end > 1 &&
           text.substr(0, end).find_first_not_of("abcdefghijklmnopqrstuvwxyz") == text.npos;
}

/// What the opener is given: an address as it is, a file by its full path, so that no name looks
/// like an option. Empty when there is nothing to open.
std::string opener_argument(const std::string& file) {
    std::error_code error;
    if (is_web_address(file)) {
        return file;
    }
    const fs::path path = fs::absolute(file, error);
    return !error && fs::exists(path, error) ? path.string() : std::string();
}

bool run_opener(const std::string& file, bool wait, std::string& why) {
    const fs::path opener = platform::desktop_opener();
    const std::string argument = opener_argument(file);
    if (argument.empty() || opener.empty()) {
        why = argument.empty() ? "no such file" : "this desktop has no xdg-open";
        return false;
    }
    const auto started = platform::start_process(opener, {argument}, {}, why);
    if (!started) {
        return false;
    }
    if (!wait) {
        platform::forget_process(started->process_id);
        return true;
    }
    const auto outcome =
        platform::wait_in_slices(started->process_id, platform::kWaitSlice, [&](double seconds) {
            OMB_TRACE(1, "Waiting: %s - (%.1f seconds elapsed)", file, seconds);
            return true;
        });
    const int status = outcome.status.value_or(0);
    why = fmt::sprintf("the opener ended with status %d", status);
    return status == 0;
}

} // namespace

bool launch_file(const std::string& file, bool wait, const std::string& action) {
    std::string why;
    if (run_opener(file, wait, why)) {
        return true;
    }
    OMB_TRACE(0, "%s: %s", file, why);
    OMB_TRACE(1, "Unable to %s.\n\nCannot launch file: %s", action, file);
    return false;
}

// ---- our own programs ----

namespace {
constexpr char in_this_library = 0; ///< its address tells where the library lies
}

std::string get_KestraBatch_exe(const std::string& program_folder) {
    const std::string folder = program_folder.empty()
                                   ? platform::module_file(&in_this_library).parent_path().string()
                                   : program_folder;
    std::string file =
        join_path(sibling_folder(folder, "OMB_BATCH"), platform::program_name("KestraBatch.exe"));
    if (!file_exists(file)) {
        OMB_TRACE(1, "Cannot locate Batch executable:\n\t%s", file);
        return {};
    }
    return file;
}

bool close_program(std::int64_t process_id, double grace_seconds, std::string_view program) {
    const auto process = platform::process_info(process_id);
    if (!process) {
        platform::wait_process(process_id, 0); // a child of ours is taken off the system's list
        return true;
    }
    if (!process->name.starts_with(program)) {
        OMB_TRACE(1, "Process %d is another program by now: %s", process_id, process->name);
        return true;
    }
    std::string why;
    if (platform::post_message(process_id, {platform::WM_CLOSE, 0, {}, 0}, why)) {
        const double slice = std::min(grace_seconds, platform::kWaitSlice);
        const auto outcome = platform::wait_in_slices(
            process_id, slice, [&](double seconds) { return seconds < grace_seconds; });
        if (outcome.ended) {
            return true;
        }
        why = fmt::sprintf("still there after %.1f seconds", grace_seconds);
    }
    OMB_TRACE(0, "Termination signal to %s (%d): %s", process->name, process_id, why);
    platform::close_process(process_id);
    // One that does not catch the signal is gone at once.
    return platform::wait_in_slices(process_id, 0.1, [](double) { return false; }).ended;
}
