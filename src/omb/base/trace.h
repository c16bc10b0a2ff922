// The trace: every message of the system, from a note to a fatal error, goes through a short-lived
// `cl_trace`. Nothing is written before `set_trace_started(true)`; the line goes to the sink (the
// debugger's output in the system's terms) and, when one is open, to the log file.
//
// Levels: 0 note, 1 report ("REPORT: "), 2 to 8 errors (kept, passed to do_error_out; 4 marks a
// debug-only error, 5 one that goes on as an exception), 9 log file only, 10 always ("LOG: ").
#pragma once

#include <array>
#include <fmt/printf.h>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// The output switches. `error_list` also appends every formatted text to the error list file.
struct trace_switches {
    bool use_debug_file = false;         ///< bcomm_use_debug_file
    bool show_trace_time = false;        ///< bcomm_show_trace_time
    bool show_trace_memory = false;      ///< bcomm_show_trace_memory
    bool show_traces_in_ruby = false;    ///< bshow_traces_in_ruby: hand lines to `console`
    bool show_traces_in_release = false; ///< bcomm_show_traces_in_release: hand lines to the sink
    bool error_list = false;
};

/// Thrown by an error of level 5, and by code whose message a command boundary is to show.
class cl_text_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

namespace trace_detail {
struct state {
    trace_switches switches;
    bool started = false;
    int depth = 0; ///< live cl_trace objects
};
extern state current;
std::string six_digits(const char* format); ///< each "%g" becomes "%.6g"
} // namespace trace_detail

inline trace_switches& trace_settings() { return trace_detail::current.switches; }
inline void set_trace_started(bool started) { trace_detail::current.started = started; }

/// Receives (level, text) of every line written, and of errors (2 to 8) as they are formatted. A
/// written line is complete with prefix, label and notes, without line feed.
using trace_sink = std::function<void(int level, const std::string& text)>;
void set_trace_sink(trace_sink sink);
void set_trace_console(std::function<void(const std::string& line)> console);

/// Log file of `bcomm_use_debug_file`; appended to. False when it cannot be opened.
bool open_debug_file(const std::string& path);
void close_debug_file();
/// Starts the trace; when the environment variable QORVANE_LOG_FILE names a file, all lines go
/// there too.
void start_trace_from_environment();

/// Path of the error list file, made new at the first error of a run ("" means none).
void set_error_file(const std::string& path, const std::string& program_name);
/// Describes the dialog command that runs, for error locations; "" when none does.
void set_dialog_command_description(std::function<std::string()> describe);
/// Errors are stored but not shown.
void set_errors_quiet(bool quiet);

class cl_trace {
public:
    cl_trace(const char* file, int line, const char* function, int level = 0, int mode = 0)
      : source_file(file)
      , function(function)
      , source_line(line)
      , level(level)
      , mode(mode) {
        ++trace_detail::current.depth;
    }
    ~cl_trace() { --trace_detail::current.depth; }
    cl_trace(const cl_trace&) = delete;
    cl_trace& operator=(const cl_trace&) = delete;

    /// Formats printf-like (std::string arguments match %s) and passes the text on by level.
    template <typename... Args>
    void out(const char* format, const Args&... args) {
        if (idle()) {
            return;
        }
        busy = true;
        try {
            text = fmt::sprintf(trace_detail::six_digits(format), args...);
        } catch (const std::exception&) {
            text = format; // a bad format must not cost the message
        }
        finish();
    }

    const std::string& formatted() const { return text; }

private:
    bool idle() const {
        const trace_switches& s = trace_detail::current.switches;
        const bool wanted = level == 10 || (level >= 2 && level <= 7) || s.use_debug_file ||
                            s.show_traces_in_ruby || s.show_traces_in_release || s.error_list;
        return !wanted || busy || !trace_detail::current.started;
    }
    void finish();
    void write_line();

    bool busy = false;
    const char* source_file;
    const char* function;
    std::string text;
    int source_line;
    int level;
    int mode;
};

#define OMB_TRACE(level, ...) cl_trace(__FILE__, __LINE__, __func__, level).out(__VA_ARGS__)

/// Marks a section from construction to the end of its scope; see open_trace_sections.
class cl_do_trace {
public:
    cl_do_trace(const char* file, int line, const char* function);
    ~cl_do_trace();
    cl_do_trace(const cl_do_trace&) = delete;
    cl_do_trace& operator=(const cl_do_trace&) = delete;
};

/// Entries by depth: "(START) name", with " (CLOSED)" behind those that ended.
std::string open_trace_sections();

/// The error path: stores the error, shows it through the window port (not level 4), and throws
/// cl_text_error for level 5.
void do_error_out(const std::string& message, int level, const char* file, int line,
                  const char* function);

/// The last three errors, newest first, each with its location; "No errors encountered." if none.
std::string last_errors_text();
const std::array<std::string, 3>& last_errors(); ///< messages, newest first
void clear_last_errors();
/// Shows the three in a message box.
void show_last_errors();
/// Shows the error list file, or says that there is none unless `quiet`.
void show_error_file(bool quiet);
void show_debug_file();
