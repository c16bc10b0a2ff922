// Showing a dialog: in a window, to a script, or to a picture file.
#include "apps/dialog_show.h"

#include "apps/exit_codes.h"
#include "apps/host_session.h"
#include "apps/window_choice.h"
#include "omb/base/png_file.h"
#include "omb/dialog/dynamic_dialog.h"
#include "platform/window/event_script.h"
#include "platform/window/headless.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include <fmt/format.h>

namespace apps {
namespace {

using namespace platform;

std::vector<std::string> script_lines(const Options& options) {
    std::vector<std::string> lines;
    if (!options.script.empty() && !read_event_script(options.script, lines)) {
        throw Failure{kUnreadable, fmt::format("{}: cannot be read", options.script)};
    }
    return lines;
}

/// The dialog opened last that is a window of its own, or null.
cl_dynamic_dialog* front_dialog() {
    const auto& dialogs = dialog_table().dialogs();
    for (std::size_t i = dialogs.size(); i-- > 0;) {
        if (dialogs[i]->is_open() && !dialogs[i]->is_sub) {
            return dialogs[i].get();
        }
    }
    return nullptr;
}

/// Plays a script's line on the dialogs, as a user would; false when it cannot be done.
bool play_line(const std::string& line) {
    ScriptEvent event;
    if (!parse_script_line(line, event)) {
        return true;
    }
    const auto& dialogs = dialog_table().dialogs();
    for (std::size_t i = dialogs.size(); i-- > 0;) {
        cl_dynamic_dialog& dialog = *dialogs[i];
        if (!dialog.is_open() || (!event.window.empty() && event.window != dialog.name)) {
            continue;
        }
        if (event.target == "window") {
            if (event.window.empty() && dialog.is_sub) {
                continue;
            }
            return dialog.window->play(event.action, event.argument);
        }
        const cl_dialog_item* item = dialog.find_control(event.target);
        if (item != nullptr && item->control != nullptr) {
            return item->control->play(event.action, event.argument);
        }
    }
    return false;
}

/// Works between the events of open dialogs: plays a script, takes a picture, closes all.
class PictureTaker {
public:
    PictureTaker(WindowSystem& system, const Options& options, std::vector<std::string> lines)
      : system_(system)
      , options_(options)
      , lines_(std::move(lines)) {
        timer_ = system_.start_timer(kInterval, [this] { work(); });
    }
    ~PictureTaker() { system_.stop_timer(timer_); }
    PictureTaker(const PictureTaker&) = delete;
    PictureTaker& operator=(const PictureTaker&) = delete;

    /// Throws Failure when there is no picture file.
    void check() const {
        if (!error_.empty() || !done_) {
            throw Failure{exit_code_, error_.empty() ? "the dialog was closed before its picture "
                                                       "could be taken"
                                                     : error_};
        }
    }

private:
    static constexpr int kInterval = 40;  // milliseconds
    static constexpr int kSettling = 3;   // intervals from an event to the picture
    static constexpr int kPatience = 500; // intervals until a dialog must be there

    void work() {
        if (done_) {
            return;
        }
        const cl_dynamic_dialog* dialog = front_dialog();
        if (dialog == nullptr || !dialog->window->is_visible()) {
            waited_ = 0;
            if (++patience_ > kPatience) {
                finish("the dialog does not appear", kFailed);
            }
            return;
        }
        if (++waited_ < kSettling) {
            return;
        }
        if (next_ < lines_.size()) {
            waited_ = 0;
            const std::string line = lines_[next_++];
            if (!play_line(line)) {
                finish(fmt::format("{}:{}: cannot be done: {}", options_.script, next_, line),
                       kFailed);
            }
            return;
        }
        std::string error;
        const WindowPicture picture = dialog->window->grab(options_.scale);
        if (picture.rgba.empty()) {
            finish("the window gives no picture", kFailed);
        } else if (!write_png_file(options_.grab, picture.width, picture.height, picture.rgba,
                                   error)) {
            finish(error, kUnwritable);
        } else {
            finish({}, kDone);
        }
    }

    void finish(std::string error, int exit_code) {
        done_ = true;
        error_ = std::move(error);
        exit_code_ = exit_code;
        // The newest first: a modal loop ends when those inside it have ended.
        while (cl_dynamic_dialog* dialog = front_dialog()) {
            dialog->destroy();
        }
    }

    WindowSystem& system_;
    const Options& options_;
    std::vector<std::string> lines_;
    std::size_t next_ = 0;
    int timer_ = 0, waited_ = 0, patience_ = 0;
    bool done_ = false;
    std::string error_;
    int exit_code_ = kFailed;
};

/// Opens it and waits until it is closed; "OK", "Cancel", or "Closed" of a modeless one. Throws
/// Failure when it does not open.
std::string run_dialog_to_its_end(const Options& options, WindowSystem& system) {
    cl_dialog_request request;
    request.name = options.operands.at(1);
    request.file = options.dialog_file;
    cl_dynamic_dialog* opened = nullptr;
    const int result = dlg_load_dialog_or_sub(request, &opened);
    if (result == 0) {
        throw Failure{kFailed, fmt::format("the dialog '{}' does not open", request.name)};
    }
    if (opened != nullptr) {
        system.run_until_closed();
        return "Closed";
    }
    return result == dialog_ok ? "OK" : "Cancel";
}

int show_for_a_picture(const Options& options) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // Without a session, missing folders of the desktop are no news.
    setenv("QT_LOGGING_RULES", "default.warning=false", 0);
    std::string error;
    auto widgets = make_widgets(error);
    if (!widgets) {
        throw Failure{kFailed, error};
    }
    WindowChoice choice(without_boxes(std::move(widgets)));
    choice.system().set_theme(options.theme == "dark" ? WindowTheme::dark : WindowTheme::light);
    const PictureTaker taker(choice.system(), options, script_lines(options));
    run_dialog_to_its_end(options, choice.system());
    taker.check();
    return kDone;
}

int show_to_a_script(const Options& options) {
    auto headless = std::make_unique<HeadlessWindowSystem>();
    HeadlessWindowSystem& system = *headless;
    const WindowChoice choice(std::move(headless));
    system.is_recording = options.log;
    system.set_script(script_lines(options));
    const auto print_log = [&] {
        for (const std::string& line : system.log()) {
            fmt::print("{}\n", line);
        }
    };
    std::string result;
    try {
        result = run_dialog_to_its_end(options, system);
    } catch (const Failure&) {
        if (options.log) {
            print_log();
        }
        throw;
    }
    if (options.log) {
        print_log();
    }
    fmt::print("{}\n", result);
    return kDone;
}

int show_on_the_display(const Options& options) {
    std::string error = "there is no display; --script FILE plays a user's part without one, and "
                        "--grab FILE.png draws the dialog";
    auto widgets = has_display() ? make_widgets(error) : nullptr;
    if (!widgets) {
        throw Failure{kFailed, error};
    }
    if (options.log) {
        widgets = with_notes(std::move(widgets), [](std::string_view text) {
            fmt::print("* {}\n", text);
            std::fflush(stdout);
        });
    }
    WindowChoice choice(std::move(widgets), Boxes::in_windows);
    if (!options.theme.empty()) {
        choice.system().set_theme(options.theme == "dark" ? WindowTheme::dark : WindowTheme::light);
    }
    fmt::print("{}\n", run_dialog_to_its_end(options, choice.system()));
    return kDone;
}

} // namespace

int show_dialog(const Options& options) {
    if (!options.grab.empty()) {
        return show_for_a_picture(options);
    }
    // A log is worth having without a display too: nobody answers, and the dialog is cancelled.
    const bool is_without_user = !options.script.empty() || (options.log && !has_display());
    return is_without_user ? show_to_a_script(options) : show_on_the_display(options);
}

} // namespace apps
