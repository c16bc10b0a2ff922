// The trace: lines, sinks, log file and sections, see trace.h.
#include "omb/base/trace.h"

#include "omb/base/error_list.h"
#include "omb/base/errors.h"
#include "omb/base/files.h"
#include "platform/files.h"

#include <chrono>

namespace trace_detail {
state current;
} // namespace trace_detail

namespace {

using steady = std::chrono::steady_clock;

/// Everything behind the trace that is not on the fast path.
struct trace_store {
    trace_sink debugger, console;
    cl_output_file debug_file;
    std::string debug_file_name;
    std::string environment_log; ///< the log file that the environment asks for
    steady::time_point last_line = steady::now();
    bool handing_over = false; ///< a sink runs
    std::vector<cl_trace_entry> entries;
    std::size_t section_depth = 0;
};

trace_store& store() {
    static trace_store instance;
    return instance;
}

const char* prefix_of(int level) { return level == 1 ? "REPORT: " : level == 10 ? "LOG: " : ""; }

/// A sink that traces would call itself for ever: meanwhile lines go to the log file only.
void hand_over(int level, const std::string& line, bool to_debugger, bool to_console) {
    trace_store& all = store();
    if (all.handing_over) {
        return;
    }
    struct mark {
        mark() { store().handing_over = true; }
        ~mark() { store().handing_over = false; }
        mark(const mark&) = delete;
        mark& operator=(const mark&) = delete;
    } const handing_over;
    if (to_debugger && all.debugger) {
        all.debugger(level, line);
    }
    if (to_console && all.console) {
        all.console(level, line);
    }
}

/// Every line is handed to the system at once: it must be there after a crash, and other processes
/// append to the same file.
void write_to_debug_file(const std::string& line) {
    trace_store& all = store();
    all.debug_file.write_data(line);
    if (!all.debug_file.flush()) {
        all.debug_file.close();
        all.debug_file_name.clear();
        trace_settings().use_debug_file = false;
    }
}

} // namespace

void set_trace_sink(trace_sink sink) { store().debugger = std::move(sink); }
void set_trace_console(trace_sink console) { store().console = std::move(console); }

bool open_debug_file(const std::string& path) {
    trace_store& all = store();
    all.debug_file_name = all.debug_file.open_for_append(path) ? path : "";
    return all.debug_file.is_open();
}

void close_debug_file() { store().debug_file.close(); }
bool debug_file_is_open() { return store().debug_file.is_open(); }
const std::string& debug_file_name() { return store().debug_file_name; }

bool log_file_is_from_environment() {
    return debug_file_is_open() && debug_file_name() == store().environment_log;
}

void start_trace_from_environment(const std::string& program) {
    set_trace_started(true);
    use_error_list(program);
    trace_settings().error_list = true;
    const std::string path = platform::environment("QORVANE_LOG_FILE");
    store().environment_log = path;
    if (!path.empty() && (log_file_is_from_environment() || open_debug_file(path))) {
        trace_settings().use_debug_file = true;
        trace_settings().show_trace_time = true;
    }
}

void cl_trace::do_error_out(const std::string& message) const {
    set_error_source(source());
    ::do_error_out(message, level);
}

void cl_trace::pass_on() {
    const bool error = level >= 2 && level <= 8;
    try {
        // What is of use to developers only is listed while they look on.
        const bool listed = level == 4 ? wanted(0) : !(level == 10 && error_is_being_shown());
        if (trace_settings().error_list && listed) {
            add_to_error_list(text);
        }
        const bool log_in_use = trace_settings().use_debug_file && debug_file_is_open();
        if (!error && (level != 9 || log_in_use)) {
            write_line();
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): the trace itself never fails visibly
    }
    if (error) {
        do_error_out(text);
    }
}

void cl_trace::write_line() {
    trace_store& all = store();
    const trace_switches wanted = trace_settings();
    const steady::time_point now = steady::now();
    const double seconds = std::chrono::duration<double>(now - all.last_line).count();
    std::string line = fmt::sprintf(
        "%s:%s%s %s%s", trace_text::source_label(source()), prefix_of(level),
        wanted.show_trace_memory ? trace_text::memory_note(platform::resident_bytes()) : "",
        wanted.show_trace_time ? trace_text::time_note(trace_text::clock_now(), seconds) : "",
        text);
    line += line.ends_with('\n') ? "" : "\n";
    text.clear();
    all.last_line = now;
    if (all.debug_file.is_open() && (wanted.use_debug_file || level == 10)) {
        write_to_debug_file(line);
    }
    hand_over(level, line, wanted.show_traces_in_release || level == 10,
              wanted.show_traces_in_ruby);
}

cl_do_trace::cl_do_trace(const cl_trace_source& source)
  : depth(store().section_depth) {
    trace_store& all = store();
    all.entries.resize(depth);
    all.entries.push_back({source, "(START) " + trace_text::source_label(source)});
    all.section_depth = depth + 1;
}

cl_do_trace::~cl_do_trace() {
    trace_store& all = store();
    all.section_depth = depth;
    if (depth < all.entries.size()) {
        all.entries[depth].text += " (CLOSED)";
    }
}

const std::vector<cl_trace_entry>& trace_entries() { return store().entries; }
std::size_t trace_section_depth() { return store().section_depth; }

std::string open_trace_sections() {
    std::string text;
    for (const cl_trace_entry& entry : store().entries) {
        text += entry.text + "\n";
    }
    return text;
}
