// The trace: every message of the system, from a note to a fatal error, goes through a short-lived
// `cl_trace`. Nothing is written before `set_trace_started(true)`. A line goes to the debugger's
// output, to the scripting console and to the log file, as the switches say; errors go to the error
// store (errors.h), and what passes is collected in the error list (error_list.h).
//
// Levels: 0 note, 1 report ("REPORT: "), 2 to 8 errors (kept, passed to do_error_out; 4 marks a
// debug-only error, 5 one that goes on as an exception), 9 note for which a log file must be in
// use, 10 always ("LOG: ").
#pragma once

#include "omb/base/trace_source.h"

#include <exception>
#include <fmt/printf.h>
#include <functional>
#include <string>
#include <vector>

struct trace_switches {
    bool use_debug_file = false;         ///< bcomm_use_debug_file: write lines to the log file
    bool show_trace_time = false;        ///< bcomm_show_trace_time: each line tells the time
    bool show_trace_memory = false;      ///< bcomm_show_trace_memory: each line tells the memory
    bool show_traces_in_ruby = false;    ///< bshow_traces_in_ruby: lines to the console
    bool show_traces_in_release = false; ///< bcomm_show_traces_in_release: debugger's output
    /// Texts that pass are collected in the error list. Lets nothing pass by itself, so programs
    /// may leave it on.
    bool error_list = false;
};

namespace trace_detail {
struct state {
    trace_switches switches;
    bool started = false;
    int depth = 0; ///< live cl_trace objects
};
extern state current;
} // namespace trace_detail

inline trace_switches& trace_settings() { return trace_detail::current.switches; }
inline void set_trace_started(bool started) { trace_detail::current.started = started; }

/// The debugger's output and the scripting console: each receives the level and the line as the log
/// file has it, with a line feed at its end. What they trace themselves reaches the log file only.
using trace_sink = std::function<void(int level, const std::string& line)>;
void set_trace_sink(trace_sink sink);
void set_trace_console(trace_sink console);

/// Opens the log file of `use_debug_file`, to be appended to. False when it cannot be opened.
bool open_debug_file(const std::string& path);
void close_debug_file();
bool debug_file_is_open();
/// The log file of this run, also after it has been closed; "" when there is none or it was dropped
/// because it could not be written.
const std::string& debug_file_name();

/// Starts the trace of a program and its error list; a second call keeps the list's first program.
/// When the environment variable QORVANE_LOG_FILE names a file, all lines go there too.
void start_trace_from_environment(const std::string& program = "qorvane");
bool log_file_is_from_environment(); ///< the log file in use is that one

class cl_trace {
public:
    /// The texts must outlive the trace. `mode` is kept for the caller and changes nothing.
    cl_trace(const char* file, int line, const char* function, int level = 0, int mode = 0)
      : source_file(file != nullptr ? file : "")
      , function(function != nullptr ? function : "")
      , source_line(line)
      , level(level)
      , mode(mode) {
        ++trace_detail::current.depth;
    }
    ~cl_trace() { --trace_detail::current.depth; }
    cl_trace(const cl_trace&) = delete;
    cl_trace& operator=(const cl_trace&) = delete;

    /// The fast path: false when a message of this level would go nowhere.
    static bool wanted(int level) {
        const trace_switches& on = trace_detail::current.switches;
        return trace_detail::current.started &&
               (level == 10 || (level >= 2 && level <= 7) || on.use_debug_file ||
                on.show_traces_in_ruby || on.show_traces_in_release);
    }

    /// Formats printf-like (std::string arguments match %s) and passes the text on by level. An
    /// error of level 5 throws cl_text_error; nothing else is ever thrown from here.
    template <typename... Args>
    void out(const char* format, const Args&... args) {
        if (busy || !wanted(level)) {
            return;
        }
        const busy_mark mark(busy);
        text = format_text(format, args...);
        pass_on();
    }

    /// As `out`, for narrow text of the system's code page in the format and the arguments.
    template <typename... Args>
    void out_narrow(const char* format, const Args&... args) {
        if (busy || !wanted(level)) {
            return;
        }
        const busy_mark mark(busy);
        const std::string wide = trace_text::from_code_page(format);
        text = trace_text::from_code_page(format_text(wide.c_str(), args...));
        pass_on();
    }

    /// The error path with this trace's place and level, see errors.h.
    void do_error_out(const std::string& message) const;

    /// The formatted message; empty again once a line has been written.
    const std::string& formatted() const { return text; }
    int trace_mode() const { return mode; }

private:
    /// Marks the trace as busy for its life.
    struct busy_mark {
        explicit busy_mark(bool& flag)
          : flag(flag) {
            flag = true;
        }
        ~busy_mark() { flag = false; }
        busy_mark(const busy_mark&) = delete;
        busy_mark& operator=(const busy_mark&) = delete;
        bool& flag;
    };

    template <typename... Args>
    static std::string format_text(const char* format, const Args&... args) {
        try {
            return fmt::sprintf(trace_text::six_digits(format), args...);
        } catch (const std::exception&) {
            return format; // a bad format must not cost the message
        }
    }
    cl_trace_source source() const { return {source_file, source_line, function}; }
    void pass_on();
    void write_line();

    bool busy = false; ///< guards against a message inside a message
    const char* source_file;
    const char* function;
    std::string text;
    int source_line;
    int level;
    int mode;
};

/// Traces from here. The arguments are not evaluated when the message would go nowhere.
#define OMB_TRACE(level, ...)                                                                      \
    (cl_trace::wanted(level) ? cl_trace(__FILE__, __LINE__, __func__, level).out(__VA_ARGS__)      \
                             : static_cast<void>(0))

/// Marks a section from construction to the end of its scope.
class cl_do_trace {
public:
    explicit cl_do_trace(const cl_trace_source& source);
    cl_do_trace(const char* file, int line, const char* function)
      : cl_do_trace(cl_trace_source{file, line, function}) {}
    ~cl_do_trace();
    cl_do_trace(const cl_do_trace&) = delete;
    cl_do_trace& operator=(const cl_do_trace&) = delete;

private:
    std::size_t depth; ///< of the sections around this one
};

/// The sections by depth: those that are open, and behind them those that the innermost of them
/// entered last.
const std::vector<cl_trace_entry>& trace_entries();
std::size_t trace_section_depth(); ///< how many are open
std::string open_trace_sections(); ///< the entries' texts, a line each
