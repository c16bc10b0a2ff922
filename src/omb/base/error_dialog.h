// The error dialog and its way to support by mail. What is shown is data; the window port
// (message_box.h) shows it.
#pragma once

#include "omb/base/trace_source.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>

/// What a program is, for the dialogs' titles and texts.
struct cl_version_data {
    std::string program = "qorvane";
    std::string version = "unknown";
    std::string build = "unknown";
    std::string platform; ///< "" means the one that this was built for
};
void set_version_data(cl_version_data data);
const cl_version_data& version_data();

/// An error as it is shown: title, text with the version data, the place, and what its "More"
/// button does.
struct cl_error_dialog {
    static constexpr const char* more_button = "More";

    std::string title;
    std::string text;
    std::string location;
    cl_trace_source source;
    std::function<void()> on_more; ///< the port calls it when the button is pressed
};

/// The dialog's data for a message; `word` stands behind the program's name in the title.
cl_error_dialog make_error_dialog(const std::string& message, const std::string& location,
                                  const cl_trace_source& source, std::string_view word = "Error");
/// Shows it through the window port; a message box when that cannot show it.
void show_error_dialog(const std::string& message, const std::string& location,
                       const cl_trace_source& source, std::string_view word = "Error");

/// The questions that are asked before an error goes to support.
struct cl_email_error_dialog {
    static constexpr const char* title = "Send Error Email to Support";
    static constexpr const char* heading = "Please complete the following entries:\n\n";
    static constexpr std::array<const char*, 3> questions = {"Is model large?\n",
                                                             "Does error occur all the time?\n",
                                                             "Does error occur in all models?\n"};
    std::array<std::string, 3> answers;

    /// The heading and the questions that have no answer yet; "" when all have one.
    std::string open_entries() const;
};

/// Sends a mail to support; false when it could not.
using mail_transport = std::function<bool(const std::string& subject, const std::string& body)>;
/// Sets the mail path of the program; without one no mail is sent and the user is told.
void set_mail_transport(mail_transport transport);

/// Asks the questions, until each has an answer or the user gives up, and sends the error with the
/// last errors. True when it was sent; otherwise a box tells why, unless the user gave up.
bool send_error_email(const cl_error_dialog& error);

/// A mailto: address (RFC 6068) that a mail program opens; line feeds become CR LF.
std::string mailto_address(std::string_view recipient, std::string_view subject,
                           std::string_view body);
