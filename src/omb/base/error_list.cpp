// The error list file, see error_list.h.
#include "omb/base/error_list.h"

#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/trace.h"

namespace {

constexpr int lines_shown = 40;

struct list_store {
    cl_output_file error_file;
    std::string error_file_name, program;
    bool in_settings_folder = false; ///< the name is found at the first text
    bool written = false;
    bool writing = false;
    text_file_opener opener;
};

list_store& store() {
    static list_store instance;
    return instance;
}

void reset(const std::string& path, const std::string& program, bool in_settings_folder) {
    list_store& all = store();
    all.error_file.close();
    all.error_file_name = path;
    all.program = program;
    all.in_settings_folder = in_settings_folder;
    all.written = false;
}

void drop() { reset("", store().program, false); }

/// Makes the file new, with its head; false when there is to be none.
bool start_file() {
    list_store& all = store();
    if (all.in_settings_folder) {
        all.in_settings_folder = false;
        const std::string folder = get_settings_folder();
        all.error_file_name = folder.empty() ? "" : join_path(folder, "error_file.txt");
    }
    if (all.error_file_name.empty()) {
        return false;
    }
    // Opened for appending, so that a second program's lines are not written over.
    if (!all.error_file.open(all.error_file_name) || !all.error_file.close() ||
        !all.error_file.open_for_append(all.error_file_name)) {
        drop();
        return false;
    }
    all.error_file.write_fmt("ERROR LIST: %s: %s\n", all.program, trace_text::date_now());
    all.written = true;
    return true;
}

std::string one_line(std::string_view text) {
    std::string line;
    bool gap = false;
    for (const char c : text) {
        if (c == '\n' || c == '\r') {
            gap = true;
            continue;
        }
        line += gap && !line.empty() ? " " : "";
        line += c;
        gap = false;
    }
    return line + "\n";
}

void show_text_file(const std::string& path, const char* title) {
    const text_file_opener& opener = store().opener;
    std::string lines;
    if (opener && opener(path)) {
        return;
    }
    trace_text::last_lines_of_file(path, lines_shown, lines);
    do_message_box(path + "\n\n" + lines, title);
}

} // namespace

void use_error_list(const std::string& program) {
    if (store().program.empty()) {
        reset("", program, true);
    }
}

void set_error_file(const std::string& path, const std::string& program) {
    reset(path, program, false);
}

const std::string& error_file_name() { return store().error_file_name; }

void add_to_error_list(std::string_view text) {
    list_store& all = store();
    if (all.writing) {
        return; // a trace of the file's own writing
    }
    all.writing = true;
    if (all.written || start_file()) {
        all.error_file.write_data(one_line(text));
        if (!all.error_file.flush()) {
            drop();
        }
    }
    all.writing = false;
}

void set_text_file_opener(text_file_opener opener) { store().opener = std::move(opener); }

void show_error_file(bool quiet) {
    if (store().written && file_exists(store().error_file_name)) {
        show_text_file(store().error_file_name, "Error File");
    } else if (!quiet) {
        do_message_box("No error file saved", "Error File");
    }
}

void show_debug_file() {
    if (!debug_file_name().empty() && file_exists(debug_file_name())) {
        show_text_file(debug_file_name(), "Log File");
    } else {
        do_message_box("No log file saved. Please Check \"Write Traces to Log File\" on the "
                       "Support dialog, and run the process again to get",
                       "Log File");
    }
}
