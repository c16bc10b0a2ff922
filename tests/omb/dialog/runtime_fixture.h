// What tests of live dialogs start from: the window system without a display, a settings folder and
// a support folder of their own, and commands that report, fail, throw and close.
#pragma once

#include "../fixture.h"
#include "omb/base/application_files.h"
#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dynamic_dialog.h"
#include "platform/window/headless.h"

#include <fmt/format.h>

class DialogTest : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        setenv("QORVANE_HOME", folder.c_str(), 1);
        set_support_folder((folder / "support").string());
        put_dialog_file("comm", "comm_tvgn_common.dcl", "");
        set_window_system(&system);
        add_test_commands();
        system.clear_log();
    }
    void TearDown() override {
        dialog_table().clear();
        EXPECT_EQ(system.live_controls(), 0U);
        EXPECT_TRUE(system.windows().empty());
        EXPECT_EQ(active_dialog().dialog, nullptr);
        set_window_system(nullptr);
        set_support_folder("");
        unsetenv("QORVANE_HOME");
        StoreTest::TearDown();
    }

    void put_dialog_file(const std::string& application, const std::string& name,
                         const std::string& text) const {
        const auto where = folder / "support" / "appl" / application / "dcl";
        std::filesystem::create_directories(where);
        std::ofstream(where / name, std::ios::binary) << text;
    }
    /// Writes the dialog "test_NAME" with this content.
    void put_dialog(const std::string& name, const std::string& content) const {
        put_dialog_file("test", "test_" + name + ".dcl",
                        "test_" + name + " : dialog {\n" + content + "\n}\n");
    }
    /// Opens a modeless dialog of this content; null when it did not open.
    cl_dynamic_dialog* open(const std::string& content, const std::string& name = "a",
                            cl_dynamic_dialog* parent = nullptr) {
        put_dialog(name, "modeless = true;\n" + content);
        cl_dialog_request request;
        request.name = "test_" + name;
        request.parent = parent;
        cl_dynamic_dialog* opened = nullptr;
        dlg_load_dialog_or_sub(request, &opened);
        return opened;
    }
    /// Runs a modal dialog of this content with these events.
    int run(const std::string& content, std::vector<std::string> script,
            const std::string& name = "a") {
        put_dialog(name, content);
        system.set_script(std::move(script));
        return dlg_load_dialog("test_" + name);
    }
    static cl_dialog_item& item(const cl_dynamic_dialog& dialog, const std::string& sid) {
        cl_dialog_item* found = dialog.find_control(sid);
        if (found == nullptr) {
            throw std::runtime_error("no control " + sid);
        }
        return *found;
    }
    bool play(const std::string& line) { return system.play(line); }

    /// The log's lines that begin with one of these words, with line feeds behind each.
    std::string log_of(const std::vector<std::string>& words) const {
        std::string text;
        for (const std::string& line : system.log()) {
            for (const std::string& word : words) {
                if (line.starts_with(word + " ")) {
                    text += line + "\n";
                }
            }
        }
        return text;
    }
    std::string notes() const { return log_of({"*"}); }

    platform::HeadlessWindowSystem system;

private:
    static void add_test_commands() {
        const auto add = [](const char* name, dialog_command_handler handler) {
            add_dialog_command(2, name, 0, "s", std::move(handler));
        };
        add("dc_test_note", [](cl_dialog_command& command) {
            window_system().note(command.get_string_argument(1));
            return 0;
        });
        add("dc_test_show", [](cl_dialog_command& command) {
            const std::string name = command.get_string_argument(1);
            window_system().note(name + " = " +
                                 globals.find_global(name, SAVE_ANY, false)->value_text());
            return 0;
        });
        add("dc_test_status", [](cl_dialog_command& command) {
            return globals.get_global_int(command.get_string_argument(1), false);
        });
        add("dc_test_ok", [](cl_dialog_command& command) {
            command.dialog->on_ok();
            return 0;
        });
        add("dc_test_cancel", [](cl_dialog_command& command) {
            command.dialog->on_cancel();
            return 0;
        });
        add("dc_test_destroy", [](cl_dialog_command& command) {
            command.dialog->destroy();
            return 0;
        });
        add("dc_test_close_other", [](cl_dialog_command& command) {
            if (auto* other = dialog_table().find_dialog(command.get_string_argument(1))) {
                other->on_cancel();
            }
            return 0;
        });
        add("dc_test_throw",
            [](cl_dialog_command&) -> int { throw std::runtime_error("thrown by a command"); });
        add("dc_test_open", [](cl_dialog_command& command) {
            return dlg_load_dialog(command.get_string_argument(1));
        });
        add("dc_test_sub", [](cl_dialog_command& command) {
            dlg_load_sub_dialog(command.get_string_argument(1), *command.dialog, {10, 20});
            return 0;
        });
        add("dc_test_forget_globals", [](cl_dialog_command&) {
            globals.clear();
            return 0;
        });
        add("dc_test_disable", [](cl_dialog_command&) {
            dialog_table().disable_dialogs("test");
            return 0;
        });
        add("dc_test_enable", [](cl_dialog_command&) {
            dialog_table().enable_dialogs("test");
            return 0;
        });
    }
};
