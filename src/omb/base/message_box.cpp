// The message box and its port, see message_box.h.
#include "omb/base/message_box.h"

#include "omb/base/error_dialog.h"
#include "omb/base/trace.h"
#include "platform/window/window_system.h"

namespace {

std::unique_ptr<cl_window_port>& port_holder() {
    static std::unique_ptr<cl_window_port> port = std::make_unique<cl_headless_window_port>();
    return port;
}

void to_trace(const std::string& text, const std::string& title) {
    OMB_TRACE(10, "%s: %s", title, text);
}

} // namespace

bool cl_window_port::email_error_dialog(cl_email_error_dialog&) { return false; }

cl_headless_window_port::cl_headless_window_port(message_sink sink)
  : sink(std::move(sink)) {}

int cl_headless_window_port::message_box(const std::string& text, const std::string& title,
                                         unsigned type, cl_window_handle) {
    (sink ? sink : to_trace)(text, title);
    return safe_answer(type);
}

bool cl_headless_window_port::error_dialog(const cl_error_dialog& dialog) {
    (sink ? sink : to_trace)(dialog.text + "\n\n" + dialog.location, dialog.title);
    return true;
}

int cl_headless_window_port::safe_answer(unsigned type) { return platform::safe_answer(type); }

cl_window_port& window_port() { return *port_holder(); }

std::unique_ptr<cl_window_port> set_window_port(std::unique_ptr<cl_window_port> port) {
    std::swap(port, port_holder());
    if (!port_holder()) {
        port_holder() = std::make_unique<cl_headless_window_port>();
    }
    return port;
}

void set_message_sink(message_sink sink) {
    set_window_port(std::make_unique<cl_headless_window_port>(std::move(sink)));
}

int do_message_box(const std::string& text, const std::string& title, unsigned type,
                   cl_window_handle parent) {
    return window_port().message_box(text, title,
                                     parent == nullptr ? type | message_box::on_top : type, parent);
}
