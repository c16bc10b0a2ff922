// Other programs: whether they run, opening a file in the program for its kind, and closing one of
// ours.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// True when a snapshot of the system's processes lists the id.
bool is_thread_running(std::int64_t process_id);

/// Opens a file, a folder or a web address in the desktop's program for it. `wait` waits for the
/// opener in slices of half a second, each with a line in the trace. `action` names the attempt in
/// the trace when it fails. False when there is no such file or no desktop, or when the opener that
/// was waited for reports a failure.
bool launch_file(const std::string& file, bool wait = false,
                 const std::string& action = "open file");

/// The batch program's file in the batch folder that belongs to `program_folder`; by default the
/// folder of this library. Empty, with a trace, when it is not there.
std::string get_KestraBatch_exe(const std::string& program_folder = {});

/// Closes another program of ours: a close message first, and the termination signal when nobody
/// listens or the process is still there after `grace_seconds`. A process whose name does not begin
/// with `program` has taken over the id of one that has ended, and is left alone. True when the
/// program is gone; false when it was sent the signal and may still be saving.
bool close_program(std::int64_t process_id, double grace_seconds, std::string_view program = {});
