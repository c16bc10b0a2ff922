// A dialog without a file: controls are made by hand in the window system without a display.
#pragma once

#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dynamic_dialog.h"
#include "platform/window/headless.h"
#include "tests/omb/fixture.h"

class CompositeTest : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        set_window_system(&system);
        dialog = &dialog_table().enter(std::make_unique<cl_dynamic_dialog>());
        dialog->name = "test_dialog";
        dialog->appl_name = "test";
        platform::WindowSpec spec;
        spec.name = dialog->name;
        spec.size = {600, 400};
        dialog->window = system.make_window(spec);
        dialog->window->show();
        add_dialog_command(0, "dc_test_mark", 0, "s", [this](cl_dialog_command& command) {
            marks.push_back(command.get_string_argument(1));
            return 0;
        });
    }
    void TearDown() override {
        dialog_command_table().remove("dc_test_mark");
        dialog_table().clear();
        system.process_events();
        set_window_system(nullptr);
        StoreTest::TearDown();
    }

    /// A control that `prepare` fills in before it is made at that place.
    template <class Item, class Prepare>
    Item& add(int kind, const std::string& sid, Prepare&& prepare,
              const platform::WindowRect& rect = {10, 10, 300, 22}) {
        std::unique_ptr<cl_dialog_item> made = make_dialog_item(kind);
        auto& item = dynamic_cast<Item&>(*made);
        item.sid = sid;
        item.number = static_cast<int>(dialog->controls.size());
        item.window_id = (item.number + 700) * 10;
        dialog->controls.push_back(std::move(made));
        prepare(item);
        item.is_created = item.create_control(*dialog, rect);
        EXPECT_TRUE(item.is_created);
        return item;
    }
    static cl_dialog_command_list mark(const std::string& text) {
        return {{{"dc_test_mark", {{text, 1}}}}};
    }

    platform::HeadlessWindowSystem system;
    cl_dynamic_dialog* dialog = nullptr;
    std::vector<std::string> marks; ///< arguments of the calls of dc_test_mark
};
