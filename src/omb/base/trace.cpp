// The trace: lines, error store and error list, see trace.h.
#include "omb/base/trace.h"

#include "omb/base/files.h"
#include "omb/base/message_box.h"
#include "platform/files.h"

#include <chrono>
#include <ctime>
#include <vector>

namespace trace_detail {

state current;

std::string six_digits(const char* format) {
    std::string text(format);
    for (std::size_t at = text.find("%g"); at != text.npos; at = text.find("%g", at + 4)) {
        const bool escaped = at > 0 && text[at - 1] == '%' && (at < 2 || text[at - 2] != '%');
        if (!escaped) {
            text.replace(at, 2, "%.6g");
        }
    }
    return text;
}

} // namespace trace_detail

namespace {

using steady = std::chrono::steady_clock;

constexpr double delay_seconds = 2.0; ///< from which on a line notes the delay before it

struct error_entry {
    std::string message, location;
};

/// Everything behind the trace that is not on the fast path.
struct trace_store {
    trace_sink sink;
    std::function<void(const std::string&)> console;
    cl_output_file debug_file;
    std::string debug_file_path;
    std::string error_file_path, program_name;
    bool error_file_written = false;
    bool errors_quiet = false;
    std::function<std::string()> dialog_command;
    std::array<error_entry, 3> errors;
    steady::time_point last_line = steady::now();
    std::vector<std::string> sections;
    std::size_t section_depth = 0;
};

trace_store& store() {
    static trace_store instance;
    return instance;
}

std::string clock_text(const char* format) {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    char text[64];
    return {text, std::strftime(text, sizeof(text), format, &parts)};
}

/// " (%.1fM)" of the resident memory.
std::string memory_note() {
    return fmt::sprintf(" (%.1fM)",
                        static_cast<double>(platform::resident_bytes()) / (1024.0 * 1024.0));
}

std::string time_note(double seconds) {
    std::string note = fmt::sprintf(" (T: %s: %7.2f)", clock_text("%H:%M:%S"), seconds);
    if (seconds > delay_seconds) {
        note += fmt::sprintf(" (DELAY: %6.1f secs: %s)", seconds, clock_text("%H:%M:%S"));
    }
    return note;
}

/// The source's path from the product folder on; a script's from its ruby folder on.
std::string product_path(std::string path) {
    for (char& c : path) {
        c = c == '\\' ? '/' : c;
    }
    for (const char* folder : {"/src/", "/ruby/"}) {
        const std::size_t at = path.rfind(folder);
        if (at != path.npos) {
            path.erase(0, at + std::char_traits<char>::length(folder));
        }
    }
    return path;
}

std::string source_label(const char* file, int line, const char* function) {
    const std::string path = product_path(file);
    if (function != nullptr && *function != 0) {
        return fmt::sprintf("%s(%d): %s():", path, line, function);
    }
    return line > 0 ? fmt::sprintf("%s(%d):", path, line) : fmt::sprintf("%s:", path);
}

void add_to_error_list(const std::string& text) {
    trace_store& all = store();
    if (all.error_file_path.empty()) {
        return;
    }
    cl_output_file file;
    if (all.error_file_written) {
        file.open_for_append(all.error_file_path);
    } else if (file.open(all.error_file_path)) {
        file.write_fmt("ERROR LIST: %s: %s\n", all.program_name, clock_text("%Y-%m-%d"));
        all.error_file_written = true;
    }
    file.write_fmt("%s\n", text);
    if (!file.close()) {
        all.error_file_path.clear(); // the list is dropped, the trace goes on
    }
}

} // namespace

void set_trace_sink(trace_sink sink) { store().sink = std::move(sink); }

void set_trace_console(std::function<void(const std::string& line)> console) {
    store().console = std::move(console);
}

bool open_debug_file(const std::string& path) {
    trace_store& all = store();
    all.debug_file_path = all.debug_file.open_for_append(path) ? path : "";
    return all.debug_file.is_open();
}

void close_debug_file() { store().debug_file.close(); }

void start_trace_from_environment() {
    set_trace_started(true);
    const std::string path = platform::environment("QORVANE_LOG_FILE");
    if (!path.empty() && open_debug_file(path)) {
        trace_settings().use_debug_file = true;
        trace_settings().show_trace_time = true;
    }
}

void set_error_file(const std::string& path, const std::string& program_name) {
    store().error_file_path = path;
    store().program_name = program_name;
    store().error_file_written = false;
}

void set_dialog_command_description(std::function<std::string()> describe) {
    store().dialog_command = std::move(describe);
}

void set_errors_quiet(bool quiet) { store().errors_quiet = quiet; }

void cl_trace::finish() {
    if (trace_settings().error_list) {
        add_to_error_list(text);
    }
    if (level >= 2 && level <= 8) {
        busy = false;
        if (store().sink) {
            store().sink(level, text);
        }
        do_error_out(text, level, source_file, source_line, function);
        return;
    }
    if (level != 9 || (trace_settings().use_debug_file && store().debug_file.is_open())) {
        write_line();
    }
    busy = false;
}

void cl_trace::write_line() {
    trace_store& all = store();
    const trace_switches& wanted = trace_settings();
    const steady::time_point now = steady::now();
    const double seconds = std::chrono::duration<double>(now - all.last_line).count();
    const std::string prefix = level == 1 ? "REPORT: " : level == 10 ? "LOG: " : "";
    const std::string line =
        fmt::sprintf("%s:%s%s %s%s", source_label(source_file, source_line, function), prefix,
                     wanted.show_trace_memory ? memory_note() : "",
                     wanted.show_trace_time ? time_note(seconds) : "", text);
    if (all.sink && (wanted.show_traces_in_release || level == 10)) {
        all.sink(level, line);
    }
    if (all.console && wanted.show_traces_in_ruby) {
        all.console(line);
    }
    if (all.debug_file.is_open() && (wanted.use_debug_file || level == 10)) {
        all.debug_file.write_data(line);
        all.debug_file.write_data(line.ends_with('\n') ? "" : "\n");
        if (all.debug_file.failed()) {
            all.debug_file.close(); // a log that cannot be written is dropped
        }
    }
    all.last_line = now;
}

cl_do_trace::cl_do_trace(const char* file, int line, const char* function) {
    trace_store& all = store();
    all.sections.resize(all.section_depth);
    all.sections.push_back(fmt::sprintf("(START) %s", source_label(file, line, function)));
    ++all.section_depth;
}

cl_do_trace::~cl_do_trace() {
    trace_store& all = store();
    --all.section_depth;
    if (all.section_depth < all.sections.size()) {
        all.sections[all.section_depth] += " (CLOSED)";
    }
}

std::string open_trace_sections() {
    std::string text;
    for (const std::string& entry : store().sections) {
        text += entry + "\n";
    }
    return text;
}

void do_error_out(const std::string& message, int level, const char* file, int line,
                  const char* function) {
    trace_store& all = store();
    all.errors[2] = std::move(all.errors[1]);
    all.errors[1] = std::move(all.errors[0]);
    std::string location =
        fmt::sprintf("     (Error occurred in %s line: %d)", product_path(file), line);
    if (function != nullptr && *function != 0) {
        location += fmt::sprintf(" %s()", function);
    }
    if (all.dialog_command) {
        location += all.dialog_command();
    }
    const bool debug_only = level == 4;
    all.errors[0] = {debug_only ? message + "\n*** This error only appears in DEBUG mode ***"
                                : message,
                     location};
    if (!debug_only && !all.errors_quiet) {
        window_port().error_dialog(message, location);
    }
    if (level == 5) {
        throw cl_text_error("Fatal Error encountered\n\r" + message + "\n\r\n\r" + location);
    }
}

const std::array<std::string, 3>& last_errors() {
    static std::array<std::string, 3> messages;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        messages[i] = store().errors[i].message;
    }
    return messages;
}

std::string last_errors_text() {
    std::string text;
    for (const error_entry& entry : store().errors) {
        if (!entry.message.empty()) {
            text += (text.empty() ? "" : "\n\n") + entry.message + "\n" + entry.location;
        }
    }
    return text.empty() ? "No errors encountered." : text;
}

void clear_last_errors() { store().errors = {}; }

void show_last_errors() { do_message_box(last_errors_text(), "Last Errors"); }

void show_error_file(bool quiet) {
    const trace_store& all = store();
    std::string content;
    if (all.error_file_written && read_whole_file(all.error_file_path, content)) {
        do_message_box(content, "Error File");
    } else if (!quiet) {
        do_message_box("No error file saved", "Error File");
    }
}

void show_debug_file() {
    trace_store& all = store();
    std::string content;
    if (!all.debug_file_path.empty() && all.debug_file.flush() &&
        read_whole_file(all.debug_file_path, content)) {
        do_message_box(content, "Log File");
    } else {
        do_message_box("No log file saved. Please Check \"Write Traces to Log File\" on the "
                       "Support dialog, and run the process again to get",
                       "Log File");
    }
}
