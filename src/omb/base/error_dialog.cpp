// The error dialog and its mail path, see error_dialog.h.
#include "omb/base/error_dialog.h"

#include "omb/base/error_list.h"
#include "omb/base/errors.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"

#include <algorithm>
#include <fmt/printf.h>

namespace {

constexpr const char* system_name =
#if defined(_WIN32)
    "Windows";
#elif defined(__APPLE__)
    "macOS";
#elif defined(__linux__)
    "Linux";
#else
    "POSIX";
#endif

struct dialog_store {
    cl_version_data version;
    mail_transport transport;
};

dialog_store& store() {
    static dialog_store instance;
    return instance;
}

std::string platform_name() {
    return store().version.platform.empty()
               ? fmt::sprintf("%s %d-bit", system_name, static_cast<int>(sizeof(void*) * 8))
               : store().version.platform;
}

std::string mail_body(const cl_error_dialog& error, const cl_email_error_dialog& entries) {
    std::string body = error.text + "\n\n" + error.location + "\n\n";
    for (std::size_t i = 0; i < entries.answers.size(); ++i) {
        body += cl_email_error_dialog::questions[i] + entries.answers[i] + "\n";
    }
    return body + "\n" + last_errors_text() + "\n";
}

void tell_not_sent() {
    const std::string& list = error_file_name();
    do_message_box("Mail cannot be sent from here.\n\n" +
                       (list.empty() ? "No error file saved" : "The error list is in: " + list),
                   cl_email_error_dialog::title);
}

} // namespace

void set_version_data(cl_version_data data) { store().version = std::move(data); }
const cl_version_data& version_data() { return store().version; }

cl_error_dialog make_error_dialog(const std::string& message, const std::string& location,
                                  const cl_trace_source& source, std::string_view word) {
    const cl_version_data& version = store().version;
    cl_error_dialog dialog;
    dialog.title = fmt::sprintf("%s - %s", version.program, word);
    dialog.text = fmt::sprintf("%s\n\n    (VER: %s - %s - %s)", message, version.version,
                               version.build, platform_name());
    dialog.location = location;
    dialog.source = source;
    return dialog;
}

void show_error_dialog(const std::string& message, const std::string& location,
                       const cl_trace_source& source, std::string_view word) {
    cl_error_dialog dialog = make_error_dialog(message, location, source, word);
    dialog.on_more = [&dialog] { send_error_email(dialog); };
    if (!window_port().error_dialog(dialog)) {
        do_message_box("Cannot load error dialog. omb_common.rc2 is probably not included.\n\n" +
                           message,
                       dialog.title);
    }
}

std::string cl_email_error_dialog::open_entries() const {
    std::string text;
    for (std::size_t i = 0; i < answers.size(); ++i) {
        text += omb::trim(answers[i]).empty() ? questions[i] : "";
    }
    return text.empty() ? text : heading + text;
}

void set_mail_transport(mail_transport transport) { store().transport = std::move(transport); }

bool send_error_email(const cl_error_dialog& error) {
    const mail_transport& transport = store().transport;
    if (!transport) {
        tell_not_sent();
        return false;
    }
    cl_email_error_dialog entries;
    for (;;) {
        if (!window_port().email_error_dialog(entries)) {
            return false;
        }
        const std::string open = entries.open_entries();
        if (open.empty()) {
            break;
        }
        do_message_box(open, cl_email_error_dialog::title);
    }
    const bool sent = transport(error.title, mail_body(error, entries));
    if (!sent) {
        tell_not_sent();
    }
    return sent;
}

namespace {

/// Percent-encoded but for RFC 3986's unreserved characters.
std::string encoded(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::string_view plain = "-._~";
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (letter || (c >= '0' && c <= '9') || plain.find(c) != plain.npos) {
            out += c;
        } else {
            out += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return out;
}

} // namespace

std::string mailto_address(std::string_view recipient, std::string_view subject,
                           std::string_view body) {
    const std::string lines = omb::replace_all(omb::replace_all(body, "\r\n", "\n"), "\n", "\r\n");
    const std::string to = omb::replace_all(encoded(recipient), "%40", "@");
    return "mailto:" + to + "?subject=" + encoded(subject) + "&body=" + encoded(lines);
}
