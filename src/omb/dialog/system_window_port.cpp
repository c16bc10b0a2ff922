// The window port of programs whose dialogs come from the dialog engine.
#include "omb/dialog/system_window_port.h"

#include "omb/base/error_dialog.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/globals/globals.h"

#include <fmt/format.h>

namespace {

platform::Window* owner_of(cl_window_handle parent) {
    if (parent != nullptr) {
        return static_cast<platform::Window*>(parent);
    }
    const cl_active_dialog& active = active_dialog();
    return active.dialog != nullptr && active.is_open ? active.dialog->window.get()
                                                      : window_system().main_window();
}

std::string answer_global(std::size_t question) {
    return fmt::format("serror_email_answer{}", question + 1);
}

} // namespace

cl_system_window_port::cl_system_window_port(std::unique_ptr<cl_window_port> unattended)
  : fallback(std::move(unattended)) {}

int cl_system_window_port::message_box(const std::string& text, const std::string& title,
                                       unsigned type, cl_window_handle parent) {
    if (!window_system().is_attended()) {
        return fallback->message_box(text, title, type, parent);
    }
    platform::MessageQuestion question;
    question.title = title;
    question.text = text;
    question.type = type;
    return window_system().message_box(question, owner_of(parent));
}

bool cl_system_window_port::error_dialog(const cl_error_dialog& dialog) {
    if (!window_system().is_attended()) {
        return fallback->error_dialog(dialog);
    }
    platform::MessageQuestion question;
    question.title = dialog.title;
    question.text = dialog.text;
    question.detail = dialog.location;
    question.type = message_box::ok | message_box::icon_error;
    if (dialog.on_more) {
        question.more_button = cl_error_dialog::more_button;
        question.on_more = dialog.on_more;
    }
    window_system().message_box(question, owner_of(nullptr));
    return true;
}

bool cl_system_window_port::email_error_dialog(cl_email_error_dialog& dialog) {
    if (!window_system().is_attended()) {
        return fallback->email_error_dialog(dialog);
    }
    for (std::size_t i = 0; i < dialog.answers.size(); ++i) {
        set_global_string(answer_global(i), dialog.answers[i], SAVE_NONE);
    }
    if (dlg_load_dialog("comm_error_email", "modal") != dialog_ok) {
        return false;
    }
    for (std::size_t i = 0; i < dialog.answers.size(); ++i) {
        dialog.answers[i] = get_global_string(answer_global(i), false);
    }
    return true;
}
