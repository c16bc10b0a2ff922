// option_globals.txt: what is written, how lines are read, and that a round trip changes nothing.
#include "omb/globals/catalogue.h"
#include "omb/globals/defaults_files.h"
#include "omb/globals/option_globals.h"
#include "tests/omb/fixture.h"

class OptionGlobals : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        preset_globals(0);
        set_global_int("iks_render_quality", 3);
    }
    bool read(const std::string& content) {
        put("option_globals.txt", content);
        return read_option_globals_from_settings_file(path("option_globals.txt"));
    }
};

TEST_F(OptionGlobals, WritesSortedOptionLines) {
    set_global_fpt("pqor_sun_date", {2024, 6, 21});
    set_global_double("rks_gamma_factor", 1.0 / 3);
    set_global_string("sks_sky_hdr", "C:\\sky images\\a;b.hdr");
    set_global_COLORREF("cskp_bk_color", 0x0000ff);
    set_global_int("iks_max_render_passes", -1);
    ASSERT_TRUE(write_option_globals_to_settings_file(path("o.txt")));
    const std::string text = get("o.txt");
    for (const char* line :
         {"pqor_sun_date; (2024, 6, 21)\n", "rks_gamma_factor; 0.333333333\n",
          "sks_sky_hdr; C:\\sky images\\a;b.hdr\n", "cskp_bk_color; 255\n",
          "iks_max_render_passes; -1\n", "\nsks_acad_drawing_units; \n", "\nbks_sun_on; 0\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(text.find("bks_kestra_qor_mode"), std::string::npos) << "save type 2";
    EXPECT_EQ(text.find("iks_setup_tab"), std::string::npos) << "save type 8";
    EXPECT_EQ(text.find("_image_filters"), std::string::npos);
    std::vector<std::string> names;
    cl_input_file file;
    ASSERT_TRUE(file.open(path("o.txt")));
    for (std::string line; file.read_line(line);) {
        names.push_back(line.substr(0, line.find(';')));
    }
    EXPECT_GT(names.size(), 200u);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    set_global_bool("bks_remember_filters", true);
    EXPECT_NE(option_globals_text().find("sks_image_filters; \n"), std::string::npos);
}

TEST_F(OptionGlobals, RoundTripChangesNothing) {
    set_global_fpt("pqor_sun_time", {0.1, 1e7, -3});
    set_global_string("sks_saved_camera", "Küche 厨房");
    EXPECT_FALSE(read(option_globals_text()));
    EXPECT_EQ(get_global_int("iks_render_quality"), 3);
    const std::string text = option_globals_text();
    preset_globals(1);
    EXPECT_TRUE(read(text));
    EXPECT_EQ(get_global_string("sks_saved_camera"), "Küche 厨房");
    EXPECT_EQ(get_global_int("iks_render_quality"), 0) << "a changed option is a custom quality";
}

TEST_F(OptionGlobals, LinesAsFoundInTheWild) {
    EXPECT_TRUE(read("\xEF\xBB\xBF# a comment; 1\r\n\r\n  iks_resx ;  800  \r\n"
                     "; 12\n   ; 12\nno semicolon\nxks_odd; 5\n"
                     "sks_sky_hdr; a;b\nbks_sun_on; 2\n"
                     "sks_saved_camera; C:\\\\one\\two\n"
                     "cskp_bk_color; 255\nrks_gamma_factor; 2.5\n"
                     "pqor_sun_date; (2024, 2, 3)"));
    EXPECT_EQ(get_global_int("iks_resx"), 800);
    EXPECT_EQ(get_global_string("sks_sky_hdr"), "a;b");
    EXPECT_TRUE(get_global_bool("bks_sun_on"));
    EXPECT_EQ(get_global_string("sks_saved_camera"), "C:\\one\\two");
    EXPECT_EQ(get_global_COLORREF("cskp_bk_color"), 0x0000ffu);
    EXPECT_EQ(get_global_double("rks_gamma_factor"), 2.5);
    EXPECT_EQ(get_global_fpt("pqor_sun_date"), (fpt{2024, 2, 3}));
    EXPECT_EQ(globals.lookup("xks_odd"), nullptr);
    EXPECT_EQ(globals.lookup(""), nullptr);
}

TEST_F(OptionGlobals, EqualValuesAreLeftAlone) {
    set_global_int("iks_resx", 800);
    find_global("iks_resx")->changed = false;
    EXPECT_FALSE(read("iks_resx; 800\nbks_ground_plane; 0\npqor_sun_date; (0, 0, 0.00000001)\n"));
    EXPECT_FALSE(find_global("iks_resx")->changed);
    EXPECT_EQ(get_global_int("iks_render_quality"), 3);
    find_global("bks_ground_plane")->set_int_value(7);
    EXPECT_FALSE(read("bks_ground_plane; 1\n")) << "truth is compared, not the number";
}

TEST_F(OptionGlobals, PathsThatDoNotWork) {
    EXPECT_FALSE(write_option_globals_to_settings_file(""));
    EXPECT_EQ(traced(1, "Cannot write option globals. File name not set"), 1);
    EXPECT_FALSE(write_option_globals_to_settings_file(path("missing/o.txt")));
    EXPECT_EQ(traced(1, "No such file or directory"), 1);
    cl_output_file closed;
    write_option_globals_to_open_file(closed);
    EXPECT_EQ(traced(1, "Options GLobal FIle not found"), 1);
    EXPECT_FALSE(read_option_globals_from_settings_file(""));
    EXPECT_FALSE(read_option_globals_from_settings_file(path("missing.txt")));
    EXPECT_FALSE(read_option_globals_from_settings_file(folder.string()));
}

class Defaults : public OptionGlobals {
protected:
    void SetUp() override {
        OptionGlobals::SetUp();
        setenv("QORVANE_HOME", folder.c_str(), 1);
    }
    void TearDown() override {
        unsetenv("QORVANE_HOME");
        OptionGlobals::TearDown();
    }
    std::string settings(const std::string& name) const {
        return path("config/qorvane/Defaults/" + name);
    }
};

TEST_F(Defaults, OfTheUserAreSavedAndLoaded) {
    EXPECT_FALSE(load_user_defaults());
    EXPECT_EQ(boxes.back().text, "Could not file defaults file: " + settings("defaults.usr"));
    EXPECT_EQ(boxes.back().title, "Default file error");
    set_global_int("iks_reflective_bounces", 9);
    EXPECT_TRUE(save_user_defaults());
    EXPECT_EQ(boxes.back().text, "User defaults saved");
    set_global_int("iks_reflective_bounces", 1);
    EXPECT_TRUE(load_user_defaults());
    EXPECT_EQ(boxes.back().text, "User defaults loaded");
    EXPECT_EQ(get_global_int("iks_reflective_bounces"), 9);
    EXPECT_EQ(get_global_int("iks_render_quality"), 0) << "custom from now on";
}

TEST_F(Defaults, OfAFileRememberTheChoice) {
    EXPECT_EQ(get_proposed_defaults_file(), path("config/qorvane/Defaults"));
    EXPECT_TRUE(save_defaults_file(path("mine.dfl")));
    EXPECT_EQ(get_proposed_defaults_file(), path("mine.dfl"));
    globals.clear(); // another run
    EXPECT_EQ(get_proposed_defaults_file(), path("mine.dfl"));
    EXPECT_FALSE(load_defaults_file(path("absent.dfl")));
}

TEST_F(Defaults, OfARenderAreFoundByName) {
    const std::string support = path("support");
    std::filesystem::create_directories(folder / "support/Defaults");
    std::filesystem::create_directories(folder / "config/qorvane/Defaults");
    EXPECT_EQ(find_render_defaults_file("", support), "");
    EXPECT_EQ(find_render_defaults_file("None", support), "");
    EXPECT_EQ(find_render_defaults_file("Draft", support), settings("Draft.DFL"));
    put("support/Defaults/Draft.DFL", "");
    EXPECT_EQ(find_render_defaults_file("Draft", support), path("support/Defaults/Draft.DFL"));
    put("config/qorvane/Defaults/Draft.dfl", "");
    EXPECT_EQ(find_render_defaults_file("Draft", support), settings("Draft.dfl"));
    EXPECT_EQ(find_render_defaults_file("C:\\old\\Draft", support), settings("Draft.dfl"));
    put("own.dfl", "");
    EXPECT_EQ(find_render_defaults_file(path("own"), support), path("own.dfl"));
    answers = {message_box::id_ok};
    EXPECT_TRUE(go_on_without_defaults_file("x.DFL"));
    EXPECT_FALSE(go_on_without_defaults_file("x.DFL"));
    EXPECT_EQ(boxes.back().text, "Could not file defaults file: x.DFL");
}
