// The error store and the error path, see errors.h.
#include "omb/base/errors.h"

#include "omb/base/error_dialog.h"
#include "omb/base/message_box.h"
#include "omb/base/trace.h"
#include "platform/files.h"

#include <algorithm>
#include <new>

namespace {

struct error_entry {
    std::string message, location;
};

struct error_store {
    cl_trace_source source;
    std::array<error_entry, 3> errors; ///< newest first
    bool quiet = false;
    bool showing = false; ///< an error dialog is open
    std::function<void()> disable_dialogs, enable_dialogs;
    std::function<void(int, const std::string&)> listener;
    std::function<std::string()> dialog_command;
};

error_store& store() {
    static error_store instance;
    return instance;
}

/// Clears the source at the end of the error path, also when that throws.
struct source_clearing {
    source_clearing() = default;
    ~source_clearing() { store().source = {}; }
    source_clearing(const source_clearing&) = delete;
    source_clearing& operator=(const source_clearing&) = delete;
};

/// The time in which an error dialog is open and other dialogs are shut.
class modal_time {
public:
    modal_time() {
        store().showing = true;
        call("disable_dialogs", store().disable_dialogs);
    }
    ~modal_time() {
        call("enable_dialogs", store().enable_dialogs);
        store().showing = false;
    }
    modal_time(const modal_time&) = delete;
    modal_time& operator=(const modal_time&) = delete;

private:
    static void call(const char* name, const std::function<void()>& hook) {
        try {
            if (hook) {
                hook();
            }
        } catch (...) {
            report_exception(name, 0);
        }
    }
};

std::string location_text(const cl_trace_source& source) {
    std::string location = fmt::sprintf("     (Error occurred in %s line: %d)",
                                        trace_text::product_path(source.file), source.line);
    if (store().dialog_command) {
        location += store().dialog_command();
    }
    return location;
}

} // namespace

void set_error_source(cl_trace_source source) { store().source = std::move(source); }
const cl_trace_source& error_source() { return store().source; }

void do_error_out(const std::string& message, int level) {
    error_store& all = store();
    const source_clearing at_end;
    const cl_trace_source source = all.source; // an error inside the dialog clears the stored one
    if (all.listener) {
        all.listener(level, message);
    }
    const std::string location = location_text(source);
    const bool debug_only = level == 4;
    std::shift_right(all.errors.begin(), all.errors.end(), 1);
    all.errors[0] = {
        message + (debug_only ? "\n*** This error only appears in DEBUG mode ***" : ""), location};
    if (!debug_only && !all.quiet && !all.showing) {
        const modal_time modal;
        show_error_dialog(message, location, source);
    }
    if (level == 5) {
        throw cl_text_error("Fatal Error encountered\n\r" + message + "\n\r\n\r" + location);
    }
}

void set_errors_quiet(bool quiet) { store().quiet = quiet; }
bool error_is_being_shown() { return store().showing; }

void set_dialog_switches(std::function<void()> disable_dialogs,
                         std::function<void()> enable_dialogs) {
    store().disable_dialogs = std::move(disable_dialogs);
    store().enable_dialogs = std::move(enable_dialogs);
}

void set_error_listener(std::function<void(int level, const std::string& message)> listener) {
    store().listener = std::move(listener);
}

void set_dialog_command_description(std::function<std::string()> describe) {
    store().dialog_command = std::move(describe);
}

std::string describe_dialog_command(const std::string& dialog, const std::string& sid,
                                    const std::string& kind, const std::string& command,
                                    std::span<const std::string> arguments) {
    std::string list = "(";
    for (const std::string& argument : arguments) {
        list += (list.size() > 1 ? ", \"" : "\"") + argument + "\"";
    }
    return fmt::sprintf("    Current dialog: '%s' ('%s' %s)\n    command: %s%s", dialog, sid, kind,
                        command, list + ")");
}

std::array<std::string, 3> last_errors() {
    std::array<std::string, 3> messages;
    std::transform(store().errors.begin(), store().errors.end(), messages.begin(),
                   [](const error_entry& entry) { return entry.message; });
    return messages;
}

std::string last_errors_text() {
    std::string text;
    for (const error_entry& entry : store().errors) {
        if (!entry.location.empty()) {
            text += (text.empty() ? "" : "\n\n") + entry.message + "\n" + entry.location;
        }
    }
    return text.empty() ? "No errors encountered." : text;
}

void clear_last_errors() { store().errors = {}; }

void show_last_errors() { do_message_box(last_errors_text(), "Last Errors"); }

std::string platform_error_text(int code) {
    const auto bits = static_cast<unsigned>(code);
    const std::string words = platform::system_error_text(code);
    // For a number without a message the system answers with a phrase that ends in the number.
    if (words.empty() || words.ends_with(std::to_string(code))) {
        return fmt::sprintf("Unknown Error = 0x%08lX (%d) - No message available.", bits, code);
    }
    return fmt::sprintf("Error = 0x%08lX (%d) \n\n     %s", bits, code, words);
}

namespace {

/// What the exception in flight says.
std::string exception_text() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "out of memory";
    } catch (const std::exception& error) {
        return error.what();
    } catch (const std::string& error) {
        return error;
    } catch (...) {
        return "Unknown Error";
    }
}

} // namespace

int report_exception(const char* where, int status, std::string* text) noexcept {
    try {
        const std::string words = exception_text();
        if (text != nullptr) {
            *text = words;
        }
        OMB_TRACE(1, "%s: %s", where, words);
    } catch (...) {
        return status; // not even the memory for the words was there
    }
    return status;
}
