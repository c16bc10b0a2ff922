// A language with a decimal comma changes no byte of any file. The locale is made for the test, so
// that it does not depend on what the machine has.
#include "omb/base/file_profile.h"
#include "omb/base/matrix.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/option_globals.h"
#include "tests/omb/fixture.h"

#include <clocale>

namespace {

class DecimalComma : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        const std::string make =
            "localedef -i de_DE -f UTF-8 '" + path("de_DE.UTF-8") + "' >/dev/null 2>&1";
        if (std::system(make.c_str()) != 0) {
            GTEST_SKIP() << "localedef cannot make de_DE.UTF-8 here";
        }
        setenv("LOCPATH", folder.c_str(), 1);
    }
    void TearDown() override {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
        StoreTest::TearDown();
    }
    /// Everything that is written, under the locale that is set.
    std::string everything(const std::string& name) {
        globals.clear();
        set_profile(std::make_unique<cl_file_profile>(path(name + ".ini")));
        preset_application_globals(0);
        set_global_double("rks_gamma_factor", 1234567.5);
        set_global_fpt("pqor_sun_date", {0.5, -1.25, 1e-5});
        set_global_string("sks_sky_hdr", "1,5.hdr");
        write_option_globals_to_settings_file(path(name + ".txt"));
        find_global("sks_image_filters")->set_double_value(2.5);
        cl_matrix matrix;
        matrix.at(0, 3) = 0.5;
        return get(name + ".ini") + get(name + ".txt") + matrix.to_text() +
               get_global_string("sks_image_filters") +
               find_global("pqor_sun_date")->get_string_value();
    }
};

TEST_F(DecimalComma, ChangesNoByte) {
    const std::string plain = everything("plain");
    ASSERT_STREQ(std::setlocale(LC_ALL, "de_DE.UTF-8"), "de_DE.UTF-8");
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(everything("german"), plain);
    EXPECT_NE(plain.find("rks_gamma_factor; 1234567.5\n"), std::string::npos);
    globals.clear();
    preset_application_globals(0);
    EXPECT_EQ(get_global_double("rks_gamma_factor"), 1234567.5) << "read back from the profile";
    EXPECT_EQ(get_global_fpt("pqor_sun_date"), (fpt{0.5, -1.25, 1e-5}));
    EXPECT_FALSE(read_option_globals_from_settings_file(path("plain.txt")));
    cl_matrix matrix;
    EXPECT_TRUE(matrix.from_text("1.5 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"));
    EXPECT_EQ(matrix.at(0, 0), 1.5);
}

} // namespace
