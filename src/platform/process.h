// Programs that we start, and those that run.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace platform {

struct StartedProcess {
    std::int64_t process_id = 0;
    std::int64_t thread_id = 0; ///< the main thread's; the process id on POSIX
};

/// Starts a program with an argument vector, never through a shell. None with `error` in words.
std::optional<StartedProcess> start_process(const std::filesystem::path& program,
                                            const std::vector<std::string>& arguments,
                                            const std::filesystem::path& working_folder,
                                            std::string& error);
/// Nobody will ask how a process that we started ends: the system is told so at a later start.
void forget_process(std::int64_t process_id);

struct ProcessInfo {
    std::int64_t process_id = 0;
    std::int64_t parent_id = 0;
    std::string name; ///< file name under which the program was started
};

/// Every process that the system lists and that has not ended, by rising id.
std::vector<ProcessInfo> process_snapshot();
/// One process; none when it is not there or has ended.
std::optional<ProcessInfo> process_info(std::int64_t process_id);
/// True while the system lists the process and it has not ended.
bool is_process_running(std::int64_t process_id);

/// Waits at most `seconds` for a process that we started; its exit status when it has ended
/// (128 + the signal's number when a signal ended it).
std::optional<int> wait_process(std::int64_t process_id, double seconds);

struct WaitOutcome {
    bool ended = false;        ///< false when the callback stopped the waiting
    std::optional<int> status; ///< as of wait_process; none for a process that we did not start
};
/// The length of a slice that callers use, in seconds.
inline constexpr double kWaitSlice = 0.5;
/// Waits for any process, ours or not. After each slice `go_on` gets the seconds that have passed
/// and may end the waiting with false; an empty one never does.
WaitOutcome wait_in_slices(std::int64_t process_id, double slice_seconds,
                           const std::function<bool(double seconds)>& go_on = {});

/// Sends the termination signal. False when the process is not there.
bool close_process(std::int64_t process_id);
/// Sends an interrupt, as the interrupt key does.
bool interrupt_process(std::int64_t process_id);
std::int64_t own_process_id();

/// The program of that file name in the first absolute folder of PATH that has it; empty when none
/// has. A name with a separator is looked up as it is.
std::filesystem::path find_on_path(const std::string& name);
/// The desktop's program that opens a file in the program for its kind; empty when there is none.
std::filesystem::path desktop_opener();

} // namespace platform
