// What the tests of dialog commands and pages start from: an empty store, a window system without a
// display, and a support folder of their own for dialog files.
#pragma once

#include "omb/base/application_files.h"
#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dialog_services.h"
#include "omb/dialog/dynamic_dialog.h"
#include "platform/window/headless.h"
#include "tests/omb/fixture.h"

class DialogCommandTest : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        set_support_folder(folder.string());
        set_window_system(&system);
        put_dialogs("comm", "comm_tvgn_common", "");
    }
    void TearDown() override {
        for (const std::string& name : test_commands) {
            dialog_command_table().remove(name);
        }
        dialog_table().clear();
        system.process_events();
        set_window_system(nullptr);
        set_support_folder("");
        dialog_services() = {};
        StoreTest::TearDown();
    }

    /// A dialog file of an application.
    void put_dialogs(const std::string& application, const std::string& name,
                     const std::string& text) const {
        const auto at = folder / "appl" / application / "dcl";
        std::filesystem::create_directories(at);
        std::ofstream(at / (name + ".dcl"), std::ios::binary) << text;
    }
    /// Writes the modeless dialog test_NAME with these statements.
    void put_dialog(const std::string& name, const std::string& statements) const {
        put_dialogs("test", "test_" + name,
                    "test_" + name + " : dialog { modeless = true; label = \"%\";\n" + statements +
                        "\n}\n");
    }
    /// The same, and opens it; null, with a failure of the test, when it does not open.
    cl_dynamic_dialog* open(const std::string& name, const std::string& statements) {
        put_dialog(name, statements);
        return open(name);
    }
    cl_dynamic_dialog* open(const std::string& name) {
        EXPECT_EQ(dlg_load_dialog("test_" + name), 1) << all_lines();
        return dialog_table().find_dialog("test_" + name);
    }

    /// Enters a command that lives as long as the test.
    void add_command(const std::string& name, dialog_command_handler handler) {
        add_dialog_command(2, name.c_str(), 0, "", std::move(handler));
        test_commands.push_back(name);
    }
    /// A command that notes its first argument in `calls` and returns its second.
    void add_noting_command() {
        add_command("dc_note", [this](cl_dialog_command& command) {
            calls += command.get_string_argument(1) + " ";
            return command.get_int_argument(2);
        });
    }
    static cl_dialog_command_line call(const std::string& name,
                                       const std::vector<std::string>& arguments = {}) {
        cl_dialog_command_line line{name, {}};
        for (const std::string& argument : arguments) {
            line.parameters.push_back({argument, 1});
        }
        return line;
    }
    /// Runs a command on a control of a dialog, by default on its root.
    static int run(cl_dynamic_dialog& dialog, const std::string& name,
                   const std::vector<std::string>& arguments = {}, const std::string& sid = {}) {
        cl_dialog_item* item = sid.empty() ? &dialog.root : dialog.find_control(sid);
        const cl_dialog_command_line line = call(name, arguments);
        return cl_dialog_command(&line, &dialog, item).run_command();
    }
    bool has_logged(const std::string& line) const {
        return std::find(system.log().begin(), system.log().end(), line) != system.log().end();
    }
    std::string all_lines() const {
        std::string text;
        for (const std::string& line : lines) {
            text += line + "\n";
        }
        return text;
    }

    platform::HeadlessWindowSystem system;
    std::vector<std::string> test_commands;
    std::string calls;
};
