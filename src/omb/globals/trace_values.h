// The trace's switches out of the settings store.
#pragma once

/// Reads bcomm_use_debug_file, bcomm_show_trace_time, bcomm_show_trace_memory, bshow_traces_in_ruby
/// and bcomm_show_traces_in_release into the trace's switches; a missing one counts as off and is
/// not made. With bcomm_use_debug_file the log file is trace.log in the state folder, which is
/// closed when the setting goes off. A log file that a program or its environment has opened is in
/// use already and stays so; one that the environment asked for keeps the time on its lines.
void dc_set_trace_values();
