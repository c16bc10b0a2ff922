// Modal forms: what a value may be, and what becomes of a form that is not confirmed.
#include "omb/base/form_dialog.h"
#include "tests/omb/fixture.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

class FillingPort : public cl_headless_window_port {
public:
    explicit FillingPort(std::function<bool(cl_form_dialog&)> fill)
      : fill(std::move(fill)) {}
    bool form_dialog(cl_form_dialog& dialog) override { return fill(dialog); }
    std::function<bool(cl_form_dialog&)> fill;
};

TEST(FormDialog, ValuesAreCheckedByKind) {
    const auto problem = [](cl_form_row row, const std::string& value) {
        row.value = value;
        return row.problem();
    };
    const cl_form_row whole = cl_form_row::whole("Width", 600, 1, 1000);
    EXPECT_EQ(whole.value, "600");
    EXPECT_EQ(problem(whole, " 1000 "), "");
    EXPECT_EQ(problem(whole, "1001"), "lies outside 1 to 1000");
    for (const char* wrong : {"", "1.5", "12 px", "99999999999", "abc"}) {
        EXPECT_EQ(problem(whole, wrong), "wants a whole number") << wrong;
    }
    const cl_form_row real = cl_form_row::real("Angle", -0.5, -90, 90);
    EXPECT_EQ(real.value, "-0.5");
    EXPECT_EQ(problem(real, "89.5"), "");
    EXPECT_EQ(problem(real, "nan"), "lies outside -90 to 90");
    EXPECT_EQ(problem(real, "1,5"), "wants a number");
    const cl_form_row free = cl_form_row::real("Free", 0, 0, 0);
    EXPECT_EQ(problem(free, "1e9"), "") << "no bounds";
    const cl_form_row choice{"Size", cl_form_row::choice, "small", {"small", "large"}};
    EXPECT_EQ(problem(choice, "large"), "");
    EXPECT_EQ(problem(choice, "huge"), "is none of the choices");
    EXPECT_EQ(problem({"Name", cl_form_row::text}, "anything"), "");
}

TEST(FormDialog, OnlyAConfirmedAndSoundFormChanges) {
    cl_form_dialog form{"Title", "", {cl_form_row::whole("Width", 600, 1, 1000)}};
    EXPECT_FALSE(do_form_dialog(form)) << "without a display";
    const auto answer = [&](const char* value, bool confirmed) {
        set_window_port(std::make_unique<FillingPort>([=](cl_form_dialog& shown) {
            shown.rows[0].value = value;
            return confirmed;
        }));
        return do_form_dialog(form);
    };
    EXPECT_FALSE(answer("7", false));
    EXPECT_FALSE(answer("0", true));
    EXPECT_EQ(form.rows[0].int_value(), 600);
    EXPECT_TRUE(answer("7", true));
    EXPECT_EQ(form.rows[0].int_value(), 7);
    set_window_port(nullptr);
}

} // namespace
