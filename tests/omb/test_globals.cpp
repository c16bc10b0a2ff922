// The store: finding, making, messages, what is written through, titles, local variables.
#include "tests/omb/fixture.h"

using Globals = StoreTest;

TEST_F(Globals, FindReportsMakesAndLoads) {
    profile().write("Globals", "iks_a", "42");
    profile().write("Globals", "iks_b", "42");
    EXPECT_EQ(find_global("iks_a", SAVE_PROFILE, true)->get_int_value(), 42);
    EXPECT_EQ(traced(1, "Global not defined: iks_a"), 1);
    EXPECT_EQ(find_global("iks_b", SAVE_SESSION, false)->get_int_value(), 0) << "not a saved type";
    find_global("iks_c", SAVE_NONE, true);
    EXPECT_EQ(lines.size(), 1u) << "temporaries are never missed";
    EXPECT_EQ(find_global("iks_a"), find_global("iks_a", SAVE_PROFILE));
    EXPECT_NE(find_global("iks_A", SAVE_NONE), find_global("iks_a")) << "names know case";
}

TEST_F(Globals, SaveTypeMismatches) {
    struct Case {
        int stored, wanted;
        const char* message;
    };
    const Case cases[] = {{SAVE_PROFILE, OPTION_GLOBAL, "OPTION_GLOBAL NOT SET PROPERLY: "},
                          {OPTION_GLOBAL, SAVE_DATABASE, "OPTION_GLOBAL NOT SET PROPERLY: "},
                          {OPTION_GLOBAL, 5, "OPTION_GLOBAL NOT SET PROPERLY: "},
                          {5, OPTION_GLOBAL, "OPTION_GLOBAL NOT SET PROPERLY: "},
                          {SAVE_PROFILE, 5, "OPTION_NON_DATABASE_GLOBAL NOT SET PROPERLY: "},
                          {5, SAVE_NONE, "OPTION_NON_DATABASE_GLOBAL NOT SET PROPERLY: "},
                          {SAVE_PROFILE, SAVE_DATABASE, nullptr},
                          {SAVE_DATABASE, SAVE_NONE, nullptr},
                          {OPTION_GLOBAL, OPTION_GLOBAL, nullptr},
                          {OPTION_GLOBAL, SAVE_ANY, nullptr}};
    for (const Case& c : cases) {
        globals.clear();
        lines.clear();
        find_global("iks_m", c.stored, false);
        find_global("iks_m", c.wanted, true);
        EXPECT_EQ(get_save_type("iks_m"), c.stored);
        ASSERT_EQ(lines.size(), c.message ? 1u : 0u) << c.stored << " " << c.wanted;
        if (c.message) {
            EXPECT_TRUE(lines[0].ends_with(std::string(c.message) + "iks_m")) << lines[0];
        }
    }
}

TEST_F(Globals, GettersMakeWithoutTheProfile) {
    profile().write("Globals", "iks_a", "42");
    EXPECT_EQ(get_global_int("iks_a", true, SAVE_PROFILE), 0);
    EXPECT_EQ(traced(4, "Global not preset properly: iks_a"), 1);
    EXPECT_EQ(get_save_type("iks_a"), SAVE_PROFILE);
    get_global_int("iks_quiet", false, SAVE_PROFILE);
    get_global_int("iks_temporary", true, SAVE_NONE);
    EXPECT_EQ(lines.size(), 1u);
    EXPECT_EQ(get_global_string(""), "");
    EXPECT_EQ(globals.lookup(""), nullptr);
}

TEST_F(Globals, OnlySomeGettersWriteThrough) {
    for (const char* name : {"bks_a", "iks_a", "rks_a", "sks_a", "pks_a", "cks_a"}) {
        find_global(name, SAVE_PROFILE, false);
    }
    get_global_bool("bks_a"), get_global_int("iks_a"), get_global_double("rks_a");
    get_global_string("sks_a"), get_global_fpt("pks_a"), get_global_COLORREF("cks_a");
    EXPECT_FALSE(profile().read("Globals", "bks_a"));
    EXPECT_FALSE(profile().read("Globals", "iks_a"));
    EXPECT_EQ(profile().read("Globals", "rks_a"), "0");
    EXPECT_EQ(profile().read("Globals", "sks_a"), "");
    EXPECT_EQ(profile().read("Globals", "pks_a_y"), "0");
    EXPECT_EQ(profile().read("Globals", "cks_a"), "#000000");
}

TEST_F(Globals, WrongPrefixes) {
    find_global("rks_gamma_factor", SAVE_NONE)->set_double_value(1.5);
    EXPECT_EQ(get_global_int("rks_gamma_factor"), 0);
    set_global_int("rks_gamma_factor", 9);
    EXPECT_EQ(traced(4, "Integer globals should start with 'i': 'rks_gamma_factor'"), 2);
    EXPECT_EQ(get_global_double("rks_gamma_factor"), 1.5);
    EXPECT_FALSE(find_global("rks_gamma_factor")->changed);
    set_global_int("iks_resx", 600, SAVE_NONE);
    EXPECT_EQ(get_global_double("iks_resx"), 600.0) << "reported, and read all the same";
    EXPECT_EQ(traced(4, "Double globals should start with 'r': iks_resx"), 1);
    set_global_string("iks_resx", "77");
    EXPECT_EQ(get_global_int("iks_resx"), 77);
    EXPECT_EQ(traced(4, "CString globals should start with 's': iks_resx"), 1);
    EXPECT_EQ(get_global_int("bks_flag", false), 0);
    EXPECT_EQ(traced(4, "'bks_flag'"), 0) << "b passes the integer check";
    set_global_bool("iks_resx", true);
    EXPECT_EQ(traced(4, "bool globals should start with 'b': 'iks_resx'"), 1);
    get_global_fpt("iks_resx"), get_global_COLORREF("iks_resx");
    EXPECT_EQ(traced(4, "Floating Point globals should start with 'p': iks_resx"), 1);
    EXPECT_EQ(traced(4, "COLORREF globals should start with 'c': iks_resx"), 1);
}

TEST_F(Globals, SettersMarkAndWriteThrough) {
    set_global_int("iks_a", 0, SAVE_PROFILE);
    EXPECT_TRUE(find_global("iks_a")->changed) << "no comparison with the old value";
    EXPECT_EQ(profile().read("Globals", "iks_a"), "0");
    EXPECT_TRUE(lines.empty()) << "setters make quietly";
    set_global_double("rks_a", 0.1, SAVE_SESSION);
    EXPECT_FALSE(profile().read("Globals", "rks_a"));
    profile().write("Globals", "iks_a", "9");
    save_all_changed();
    EXPECT_EQ(profile().read("Globals", "iks_a"), "0");
    EXPECT_TRUE(find_global("iks_a")->changed);
}

TEST_F(Globals, TitlesAndNames) {
    for (const char* name : {"iks_render_size", "plain", "iks__double"}) {
        find_global(name, SAVE_NONE, false);
    }
    EXPECT_EQ(get_global_title("iks_render_size"), "Render size");
    EXPECT_EQ(get_global_title("plain"), "Plain");
    EXPECT_EQ(get_global_title("iks__double"), " double");
    EXPECT_EQ(get_global_title("iks_unknown_name"), "iks_unknown_name");
    find_global("plain")->title = "Set by hand";
    EXPECT_EQ(get_global_title("plain"), "Set by hand");
    set_global_comment("plain", "a note");
    EXPECT_EQ(find_global("plain")->comment, "a note");
    std::vector<std::string> names{"left over"};
    get_global_names_sorted(names);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(names.size(), globals.size());
    EXPECT_EQ(get_save_type("never_named"), 0);
    EXPECT_EQ(globals.lookup("never_named"), nullptr);
}

TEST_F(Globals, SkyRotationMoves) {
    set_global_double("rks_sky_rotation", 0.0, OPTION_GLOBAL);
    set_global_int("iks_sky_rotation", 45, OPTION_GLOBAL);
    EXPECT_EQ(get_sky_rotation("iks_sky_rotation"), 0.0);
    EXPECT_EQ(get_sky_rotation("rks_sky_rotation"), 45.0);
    EXPECT_EQ(get_global_int("iks_sky_rotation"), 0);
    set_global_int("iks_sky_rotation", 30);
    EXPECT_EQ(get_sky_rotation("rks_sky_rotation"), 45.0) << "only a zero gives way";
    EXPECT_EQ(get_global_int("iks_sky_rotation"), 30);
}

TEST_F(Globals, LocalVariables) {
    cl_local_variable_array locals;
    EXPECT_EQ(locals.find_local("iks_l", false), nullptr);
    EXPECT_EQ(locals.find_local("iks_l", true)->save_type, SAVE_LOCAL);
    EXPECT_EQ(locals.find_local("iks_l", false), nullptr) << "made, not entered";
    locals.set_local_string("iks_l", "12");
    EXPECT_EQ(locals.find_local("iks_l", false)->kind, 2) << "the setter's own kind";
    std::int32_t number = 0;
    locals.get_local_int("iks_l", number);
    EXPECT_EQ(number, 12);
    EXPECT_EQ(globals.lookup("iks_l"), nullptr);
}
