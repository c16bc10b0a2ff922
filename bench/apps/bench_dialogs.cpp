// Dialogs in widgets, offscreen: opening one of 300 controls and switching to a page that was shown
// before. The counters tell the time as a part of its limit: below 1 is kept.
#include "omb/base/application_files.h"
#include "omb/base/folders.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/tabs_box.h"
#include "omb/globals/globals.h"
#include "platform/module.h"
#include "platform/process.h"

#include <array>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

namespace fs = std::filesystem;

/// A home of its own, removed at the end.
const fs::path& home() {
    static const struct Home {
        fs::path path = fs::temp_directory_path() /
                        fmt::format("qorvane_bench_dialogs_{}", platform::own_process_id());
        Home() { fs::create_directories(path); }
        ~Home() {
            std::error_code ignored;
            fs::remove_all(path, ignored);
        }
    } folder;
    return folder.path;
}

/// The widgets' window system, loaded as a program loads it.
platform::WindowSystem& widgets() {
    static platform::Module module; // both stay to the end of the program
    static platform::WindowSystem* system = [] {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        setenv("QORVANE_HOME", home().c_str(), 1);
        set_support_folder(QORVANE_SUPPORT);
        std::string error;
        const fs::path path = fs::path(QORVANE_BIN) / "qorvane_qt_windows.so";
        if (!module.open(path, error)) {
            throw std::runtime_error(error);
        }
        const auto make = reinterpret_cast<platform::make_window_system_function>(
            module.symbol(platform::make_window_system_name));
        const char* why = "";
        platform::WindowSystem* made =
            make != nullptr ? make(platform::window_system_version, &why) : nullptr;
        if (made == nullptr) {
            throw std::runtime_error(why);
        }
        set_window_system(made);
        return made;
    }();
    return *system;
}

/// A dialog file with `count` controls of the kinds that dialogs mostly have, in columns.
class DialogFile {
public:
    DialogFile(const std::string& name, int count, const std::string& more = {})
      : path_(fs::path(get_settings_folder()) / (name + ".dcl")) {
        std::string text =
            fmt::format("{} : dialog {{ label = \"Bench\"; modeless = 1;\nrow {{", name);
        constexpr std::array<const char*, 6> kinds = {
            "check_box { label = \"Check it\"; global = bbench_%; }\n",
            "value_box { label = \"Value\"; format = \"I\"; global = ibench_%; }\n",
            "edit_box { label = \"Text\"; global = sbench_%; }\n",
            "push_button { label = \"Push\"; command = dc_test_command(a); }\n",
            "text { label = \"A line of text\"; }\n",
            "combo_box { label = \"Choice\"; global = ibench_c%; value_table one = 1; "
            "value_table two = 2; }\n"};
        for (int i = 0; i < count; ++i) {
            if (i % 30 == 0) {
                text += i == 0 ? "column {\n" : "}\ncolumn {\n";
            }
            std::string control = kinds[static_cast<std::size_t>(i) % kinds.size()];
            if (const std::size_t at = control.find('%'); at != std::string::npos) {
                control.replace(at, 1, std::to_string(i));
            }
            text += control;
        }
        text += "} }\n" + more + "}\n";
        std::ofstream(path_) << text;
    }
    ~DialogFile() { fs::remove(path_); }
    DialogFile(const DialogFile&) = delete;
    DialogFile& operator=(const DialogFile&) = delete;
    std::string path() const { return path_.string(); }

private:
    fs::path path_;
};

void tell_limit(benchmark::State& state, double seconds) {
    using benchmark::Counter;
    state.counters["of_limit"] =
        Counter(seconds, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void open_300_controls(benchmark::State& state) {
    platform::WindowSystem& system = widgets();
    const DialogFile file("bench_open", 300);
    for (auto step : state) {
        cl_dialog_request request;
        request.name = "bench_open";
        request.file = file.path();
        cl_dynamic_dialog* dialog = nullptr;
        if (dlg_load_dialog_or_sub(request, &dialog) == 0 || dialog == nullptr) {
            state.SkipWithError("the dialog does not open");
            return;
        }
        system.process_events(); // shown and painted
        state.PauseTiming();
        dialog->destroy();
        system.process_events();
        state.ResumeTiming();
    }
    tell_limit(state, 60e-3);
}
BENCHMARK(open_300_controls)->Unit(benchmark::kMillisecond);

void switch_to_a_page_shown_before(benchmark::State& state) {
    platform::WindowSystem& system = widgets();
    // Generated files, whose names begin with tmp_, are looked for in the settings folder.
    const DialogFile first("tmp_bench_page_a", 60), second("tmp_bench_page_b", 60);
    const DialogFile file("bench_tabs", 6,
                          "tab_ctrl { id = pages; width = 100; height = 40; "
                          "init_command { dc_add_tab(A, tmp_bench_page_a); "
                          "dc_add_tab(B, tmp_bench_page_b); dc_start_tab(); } "
                          "tab_command = dc_do_tab(); }\n");
    cl_dialog_request request;
    request.name = "bench_tabs";
    request.file = file.path();
    cl_dynamic_dialog* dialog = nullptr;
    if (dlg_load_dialog_or_sub(request, &dialog) == 0 || dialog == nullptr) {
        state.SkipWithError("the dialog does not open");
        return;
    }
    platform::Control* tabs = dialog->find_control("pages")->control;
    tabs->play("tab", "1");
    tabs->play("tab", "0");
    system.process_events();
    int page = 0;
    for (auto step : state) {
        page = 1 - page;
        tabs->play("tab", std::to_string(page));
        system.process_events();
    }
    dialog->destroy();
    system.process_events();
    tell_limit(state, 10e-3);
}
BENCHMARK(switch_to_a_page_shown_before)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
