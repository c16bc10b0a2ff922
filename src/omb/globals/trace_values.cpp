// The trace's switches out of the settings store, see trace_values.h.
#include "omb/globals/trace_values.h"

#include "omb/base/folders.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"

namespace {

/// The log file that was opened here; "" when none was.
std::string& own_log_file() {
    static std::string path;
    return path;
}

bool is_set(const char* name) {
    const cl_variable_base* variable = globals.lookup(name);
    return variable != nullptr && variable->get_int_value() != 0;
}

bool open_own_log_file() {
    const std::string folder = get_state_folder();
    if (folder.empty() || !open_debug_file(join_path(folder, "trace.log"))) {
        return false;
    }
    own_log_file() = debug_file_name();
    return true;
}

} // namespace

void dc_set_trace_values() {
    trace_switches& switches = trace_settings();
    const bool in_use = debug_file_is_open();
    const bool own = in_use && debug_file_name() == own_log_file();
    const bool foreign = in_use && !own && switches.use_debug_file;
    const bool asked = is_set("bcomm_use_debug_file");
    switches.show_trace_time = is_set("bcomm_show_trace_time") || log_file_is_from_environment();
    switches.show_trace_memory = is_set("bcomm_show_trace_memory");
    switches.show_traces_in_ruby = is_set("bshow_traces_in_ruby");
    switches.show_traces_in_release = is_set("bcomm_show_traces_in_release");
    switches.use_debug_file = foreign || (asked && (in_use || open_own_log_file()));
    if (own && !asked) {
        close_debug_file();
        own_log_file().clear();
    }
}
