// The batch program started, awaited, and ended with the host's window.
#include "omb_qorvane/batch_calls.h"

#include "omb/base/trace.h"
#include "omb_qorvane/the_app.h"
#include "platform/process.h"

#include <fmt/format.h>

bool start_batch_program(cl_omb_export& exporter, const std::vector<std::string>& arguments,
                         const std::string& tail, const char* failure, std::int64_t& process_id,
                         std::int64_t& thread_id) {
    const std::string exe = exporter.get_renderbatch_exe();
    std::string error;
    const auto started =
        platform::start_process(exe, arguments, exporter.application_folder, error);
    if (!started) {
        exporter.last_error = fmt::format("{}\n\nSEXEC: \"{}\" {}", failure, exe, tail);
        OMB_TRACE(1, "%s: %s", exporter.last_error, error);
        process_id = thread_id = 0;
        return false;
    }
    process_id = started->process_id;
    thread_id = started->thread_id;
    return true;
}

namespace {

/// Ends a program that nobody waits for any longer, without leaving it on the system's list.
void end_program(std::int64_t process_id) {
    platform::close_process(process_id);
    if (!platform::wait_process(process_id, platform::kWaitSlice)) {
        platform::forget_process(process_id);
    }
}

} // namespace

batch_call_end run_batch_program(cl_omb_export& exporter, const std::vector<std::string>& arguments,
                                 const std::string& tail, const char* failure,
                                 const std::function<void(int seconds)>& on_slice) {
    batch_call_end end;
    std::int64_t process = 0, thread = 0;
    end.started = start_batch_program(exporter, arguments, tail, failure, process, thread);
    if (!end.started) {
        return end;
    }
    const std::uintptr_t window = adsw_acadMainWnd(); // 0: there is none that could go
    const auto outcome =
        platform::wait_in_slices(process, platform::kWaitSlice, [&](double seconds) {
            if (on_slice) {
                on_slice(static_cast<int>(seconds));
            }
            return adsw_acadMainWnd() == window && !acedUsrBrk();
        });
    end.given_up = !outcome.ended;
    end.status = outcome.status;
    if (end.given_up) {
        end_program(process);
    }
    return end;
}
