// Opens dialogs in random order and plays random events on them:
//   dialog_trials headless|widgets COUNT [SEED]
// Every dialog of the support folder takes part, modal and modeless, closed by OK, by Cancel, by
// code or by chance. Ends with 1 when a dialog or a control is left at the end, and under the
// sanitizers with what they find. The widgets are shown offscreen unless QT_QPA_PLATFORM says else.
#include "omb/base/application_files.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "platform/module.h"
#include "platform/process.h"
#include "platform/window/headless.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int most_open = 6;        ///< modeless dialogs at a time
constexpr int events_of_modal = 60; ///< at most; many cannot be done
constexpr int most_attempts = 12;   ///< to find an event that can be done

class Trials {
public:
    Trials(platform::WindowSystem& system, unsigned seed)
      : system_(system)
      , random_(seed) {
        for (const auto& entry : fs::recursive_directory_iterator(support_folder())) {
            if (entry.path().extension() == ".dcl") {
                names_.push_back(entry.path().stem().string());
            }
        }
        std::sort(names_.begin(), names_.end());
    }

    void run(int count) {
        leave_alone();
        for (int i = 0; i < count; ++i) {
            if (pick(3) == 0 || open_dialogs().size() >= most_open) {
                close_one();
            } else {
                open_one();
            }
            for (int event = pick(6); event > 0; --event) {
                play_one();
            }
            system_.process_events();
        }
        dialog_table().clear();
        system_.process_events();
    }

    /// What was done, in words.
    std::string account() const {
        return fmt::format("{} dialogs opened, {} events outside of modal ones", opened_, events_);
    }

private:
    /// A script in which nothing stands: boxes are answered safely, modal dialogs are cancelled.
    void leave_alone() { system_.set_script({"# nobody is there"}); }

    int pick(int below) {
        return below <= 0 ? 0 : static_cast<int>(random_() % static_cast<unsigned>(below));
    }

    static std::vector<cl_dynamic_dialog*> open_dialogs() {
        std::vector<cl_dynamic_dialog*> open;
        for (const auto& dialog : dialog_table().dialogs()) {
            open.push_back(dialog.get());
        }
        return open;
    }

    std::string random_event() {
        static constexpr std::array<const char*, 16> words = {
            "click",   "click",     "click",        "check",       "type", "enter",
            "select",  "tab",       "double_click", "right_click", "step", "slide",
            "release", "check_row", "hover",        "key"};
        static constexpr std::array<const char*, 10> arguments = {
            "", "0", "1", "2", "-5", "1e9", "(3,000)", "some text", "LEFT", "1 1"};
        return fmt::format("{} {}", words[static_cast<std::size_t>(pick(words.size()))],
                           arguments[static_cast<std::size_t>(pick(arguments.size()))]);
    }

    /// Lines for a dialog whose controls are not there yet: names come from its records.
    std::vector<std::string> random_script(const std::string& name) {
        cl_dcl_data records;
        load_dialog_records(records, name, {});
        std::vector<std::string> lines;
        for (int i = pick(events_of_modal); i > 0 && !records.controls.empty(); --i) {
            const auto& item =
                records.controls[static_cast<std::size_t>(pick(int(records.controls.size())))];
            lines.push_back(fmt::format("{} {}", item->sid, random_event()));
        }
        static constexpr std::array<const char*, 5> ends = {
            "IDOK click", "IDCANCEL click", "window escape", "window enter", "window close"};
        lines.emplace_back(ends[static_cast<std::size_t>(pick(ends.size()))]);
        return lines;
    }

    void open_one() {
        const std::string& name = names_[static_cast<std::size_t>(pick(int(names_.size())))];
        if (pick(2) == 0) {
            system_.set_script(random_script(name));
            opened_ += dlg_load_dialog(name, "modal") != 0 ? 1 : 0;
            leave_alone();
            return;
        }
        cl_dialog_request request;
        request.name = name;
        if (const auto open = open_dialogs(); !open.empty() && pick(3) == 0) {
            request.parent = open[static_cast<std::size_t>(pick(int(open.size())))];
        }
        request.is_sub = request.parent != nullptr || pick(2) == 0; // a sub dialog is modeless
        opened_ += dlg_load_dialog_or_sub(request) != 0 ? 1 : 0;
    }

    void close_one() {
        const auto open = open_dialogs();
        if (open.empty()) {
            return;
        }
        cl_dynamic_dialog& dialog = *open[static_cast<std::size_t>(pick(int(open.size())))];
        switch (pick(3)) {
        case 0:
            dialog.on_ok();
            break;
        case 1:
            dialog.on_cancel();
            break;
        default:
            dialog.destroy();
        }
    }

    /// An event that some control takes: most words suit a few kinds only.
    void play_one() {
        for (int attempt = 0; attempt < most_attempts; ++attempt) {
            const auto open = open_dialogs();
            if (open.empty()) {
                return;
            }
            cl_dynamic_dialog& dialog = *open[static_cast<std::size_t>(pick(int(open.size())))];
            if (!dialog.is_open() || dialog.controls.empty()) {
                continue;
            }
            cl_dialog_item& item =
                *dialog.controls[static_cast<std::size_t>(pick(int(dialog.controls.size())))];
            const std::string event = random_event();
            const std::size_t blank = event.find(' ');
            if (item.control != nullptr &&
                item.control->play(event.substr(0, blank), event.substr(blank + 1))) {
                ++events_;
                return;
            }
        }
    }

    platform::WindowSystem& system_;
    std::mt19937 random_;
    std::vector<std::string> names_;
    int opened_ = 0, events_ = 0;
};

std::unique_ptr<platform::WindowSystem> load_widgets() {
    static platform::Module module;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    std::string error;
    if (!module.open(fs::path(QORVANE_BIN) / "qorvane_qt_windows.so", error)) {
        throw std::runtime_error(error);
    }
    const auto make = reinterpret_cast<platform::make_window_system_function>(
        module.symbol(platform::make_window_system_name));
    const char* why = "no window system in the module";
    std::unique_ptr<platform::WindowSystem> system(
        make != nullptr ? make(platform::window_system_version, &why) : nullptr);
    if (!system) {
        throw std::runtime_error(why);
    }
    return system;
}

int number_of(std::string_view text, int fall_back) {
    std::from_chars(text.data(), text.data() + text.size(), fall_back);
    return fall_back;
}

} // namespace

int main(int argc, char** argv) {
    const std::string which = argc > 1 ? argv[1] : "headless";
    const int count = number_of(argc > 2 ? argv[2] : "", 100);
    const int seed = number_of(argc > 3 ? argv[3] : "", 1);
    const fs::path home = fs::temp_directory_path() /
                          fmt::format("qorvane_dialog_trials_{}", platform::own_process_id());
    fs::create_directories(home);
    setenv("QORVANE_HOME", home.c_str(), 1);
    set_support_folder(QORVANE_SUPPORT);
    set_message_sink([](const std::string&, const std::string&) {});
    preset_application_globals(0);
    std::size_t left = 0;
    try {
        platform::HeadlessWindowSystem headless;
        const auto widgets = which == "widgets" ? load_widgets() : nullptr;
        platform::WindowSystem& system = widgets ? *widgets : headless;
        set_window_system(&system);
        Trials trials(system, static_cast<unsigned>(seed));
        trials.run(count);
        fmt::print("{}\n", trials.account());
        left =
            dialog_table().dialogs().size() + headless.live_controls() + headless.windows().size();
        set_window_system(nullptr);
    } catch (const std::exception& error) {
        fmt::print(stderr, "dialog_trials: {}\n", error.what());
        left = 1;
    }
    fs::remove_all(home);
    fmt::print("{} openings and closings on {}, seed {}: {} left\n", count, which, seed, left);
    return left == 0 ? 0 : 1;
}
