// Programs that we start, and those that run.
#pragma once

#include <cstdint>
#include <filesystem>
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
/// True while the system lists the process and it has not ended.
bool is_process_running(std::int64_t process_id);
/// Waits at most `seconds` for a process that we started; its exit status when it has ended
/// (128 + the signal's number when a signal ended it).
std::optional<int> wait_process(std::int64_t process_id, double seconds);
/// Asks a process to close: the termination signal on POSIX. False when it is not there.
bool close_process(std::int64_t process_id);
/// Sends an interrupt, as the interrupt key does.
bool interrupt_process(std::int64_t process_id);
std::int64_t own_process_id();

} // namespace platform
