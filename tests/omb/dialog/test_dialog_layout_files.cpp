// Every dialog that comes with the program, laid out: nothing lies on top of something else.
#include "../fixture.h"
#include "omb/base/application_files.h"
#include "omb/dialog/dcl_loader.h"
#include "omb/dialog/dialog_layout.h"

#include <algorithm>

namespace {

/// What has a control of its own on the screen and no controls in it.
std::vector<const cl_dialog_item*> visible_leaves(const cl_dcl_data& data) {
    std::vector<const cl_dialog_item*> leaves;
    for (const auto& item : data.controls) {
        if (!item->skip && !item->is_container()) {
            leaves.push_back(item.get());
        }
    }
    return leaves;
}

bool overlap(const cl_dialog_rect& a, const cl_dialog_rect& b) {
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height &&
           b.y < a.y + a.height;
}

class ShippedDialogs : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        set_support_folder(std::string(QORVANE_SOURCE_DIR) + "/support");
    }
    void TearDown() override {
        set_support_folder("");
        StoreTest::TearDown();
    }

    void check_file(const std::filesystem::path& file) {
        cl_dcl_data whole;
        const std::string stem = file.stem().string();
        const std::string appl = stem.substr(0, stem.find('_'));
        for (const std::string& name : load_dcl_dialog(whole, appl, {}, file.string()).dialogs) {
            cl_dcl_data data;
            const cl_dcl_load_result loaded = load_dcl_dialog(data, appl, name, file.string());
            ASSERT_EQ(loaded.status, 0) << name << "\n" << loaded.error_list;
            ++dialogs;
            check_dialog(data, name);
        }
    }

    static void check_dialog(cl_dcl_data& data, const std::string& name) {
        const cl_dialog_metrics metrics{
            {6, 13}, [](std::string_view text) { return 6 * static_cast<int>(text.size()); }};
        EXPECT_EQ(lay_out_dialog(data, metrics), std::vector<std::string>{}) << name;
        const cl_dialog_rect all = data.root.position;
        EXPECT_LE(to_pixels(all, metrics.base_unit).width, 1900) << name;
        EXPECT_LE(to_pixels(all, metrics.base_unit).height, 1000) << name;
        const auto leaves = visible_leaves(data);
        for (auto one = leaves.begin(); one != leaves.end(); ++one) {
            const cl_dialog_rect& at = (*one)->position;
            EXPECT_TRUE(at.x >= 0 && at.y >= 0 && at.x + at.width <= all.width &&
                        at.y + at.height <= all.height)
                << name << ": " << (*one)->sid;
            for (auto other = one + 1; other != leaves.end(); ++other) {
                EXPECT_FALSE(overlap(at, (*other)->position))
                    << name << ": " << (*one)->sid << " and " << (*other)->sid;
            }
        }
    }

    int dialogs = 0;
};

TEST_F(ShippedDialogs, LieSideBySideInTheirWindows) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(
             std::string(QORVANE_SOURCE_DIR) + "/support/appl")) {
        if (entry.path().extension() == ".dcl") {
            check_file(entry.path());
        }
    }
    if (dialogs == 0) {
        GTEST_SKIP() << "no dialogs there";
    }
}

} // namespace
