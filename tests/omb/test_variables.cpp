// Conversions of the variable classes, colour texts, and the stand-ins for profile and registry.
#include "tests/omb/fixture.h"

using Variables = StoreTest;

TEST_F(Variables, IntegerConversions) {
    cl_variable_int v("iks_x", SAVE_NONE, 7);
    EXPECT_EQ(v.get_string_value(), "7");
    EXPECT_EQ(v.get_double_value(), 7.0);
    EXPECT_EQ(v.get_COLORREF_value(), 0u);
    EXPECT_EQ(v.get_fpt_value(), fpt{});
    v.set_string_value(" -5 apples");
    EXPECT_EQ(v.get_int_value(), -5);
    v.set_string_value("4294967295");
    EXPECT_EQ(v.get_int_value(), -1);
    v.set_string_value("99999999999");
    EXPECT_EQ(v.get_int_value(), -1);
    v.set_double_value(-3.9);
    EXPECT_EQ(v.get_int_value(), -3);
    v.set_double_value(1e30);
    EXPECT_EQ(v.get_int_value(), std::numeric_limits<std::int32_t>::min());
    v.set_fpt_value({1, 2, 3});
    v.set_COLORREF_value(5);
    EXPECT_EQ(v.get_int_value(), std::numeric_limits<std::int32_t>::min());
    v.restore_default();
    EXPECT_EQ(v.get_int_value(), 7) << "the constructor sets the default too";
}

TEST_F(Variables, StringConversions) {
    cl_variable_string v("sks_x", SAVE_NONE, "12.75 units");
    EXPECT_EQ(v.get_int_value(), 12);
    EXPECT_EQ(v.get_double_value(), 12.75);
    v.set_int_value(-4);
    EXPECT_EQ(v.get_string_value(), "-4");
    v.set_double_value(-5e-8);
    EXPECT_EQ(v.get_string_value(), "0");
    v.set_double_value(1.0 / 3);
    EXPECT_EQ(v.get_string_value(), "0.333333333");
    v.set_string_value("1,5");
    EXPECT_EQ(v.get_double_value(), 1.0) << "a comma never is a decimal point";
    v.restore_default();
    EXPECT_EQ(v.get_string_value(), "") << "the constructor leaves the default empty";
}

TEST_F(Variables, DoubleConversions) {
    cl_variable_double v("rks_x", SAVE_NONE);
    const std::pair<double, int> rounded[] = {{2.5, 2},   {2.500005, 2}, {2.50002, 3},
                                              {-2.5, -3}, {-2.4, -2},    {0.99, 1}};
    for (const auto& [value, expected] : rounded) {
        v.set_double_value(value);
        EXPECT_EQ(v.get_int_value(), expected) << value;
    }
    v.set_double_value(5e-8);
    EXPECT_EQ(v.get_string_value(), "0");
    EXPECT_EQ(v.get_double_value(), 5e-8);
    v.set_string_value("1e3xyz");
    EXPECT_EQ(v.get_double_value(), 1000.0);
    v.set_string_value("none");
    EXPECT_EQ(v.get_double_value(), 0.0);
}

TEST_F(Variables, PointsAndColours) {
    cl_variable_fpt p("pks_x", SAVE_NONE, {1, 2, 3});
    p.set_string_value("(0.5,-0.00000001, 1e3)");
    EXPECT_EQ(p.get_string_value(), "(0.5, 0, 1000)");
    p.set_string_value("0.5,1,2");
    EXPECT_EQ(p.get_fpt_value(), fpt{}) << "no bracket, no point";
    EXPECT_EQ(p.get_int_value(), 0);

    cl_variable_COLORREF c("cks_x", SAVE_NONE);
    c.set_COLORREF_value(0xff123456);
    EXPECT_EQ(c.get_int_value(), 0x123456);
    c.set_int_value(static_cast<std::int32_t>(0xff123456));
    EXPECT_EQ(c.get_int_value(), static_cast<std::int32_t>(0xff123456));
    EXPECT_EQ(c.get_COLORREF_value(), 0x123456u);
    EXPECT_EQ(c.get_string_value(), "");
    EXPECT_EQ(c.value_text(), "#563412");
}

TEST_F(Variables, ColourTexts) {
    const std::pair<const char*, COLORREF> cases[] = {{"#ff0000", 0x0000ff},
                                                      {"#0000FF", 0xff0000},
                                                      {"rgb(1,2)", 0x000201},
                                                      {"rgb(12)", 0},
                                                      {"rgb(1, 2, 3)", 0x030201},
                                                      {"rgb(257,0,0)", 1},
                                                      {"255", 0xff},
                                                      {"", 0},
                                                      {"#12", 0x12},
                                                      {"rgb(", 0},
                                                      {"4294967295", 0xffffffff},
                                                      {"blue", 0}};
    for (const auto& [text, color] : cases) {
        EXPECT_EQ(parse_colorref(text), color) << text;
    }
    EXPECT_EQ(colorref_to_text(0x00ff8001), "#0180ff");
}

TEST_F(Variables, FirstLetterChoosesTheClass) {
    const std::pair<const char*, int> kinds[] = {{"bks_a", 1}, {"iks_a", 1}, {"sks_a", 2},
                                                 {"rks_a", 3}, {"pks_a", 4}, {"cks_a", 5},
                                                 {"xks_a", 3}, {"", 3}};
    for (const auto& [name, kind] : kinds) {
        EXPECT_EQ(make_variable(name, SAVE_NONE)->kind, kind) << name;
    }
}

TEST_F(Variables, ProfileRoundTrip) {
    cl_variable_fpt p("pqor_p", SAVE_PROFILE, {1.5, -2, 1e-9});
    p.save_to_profile();
    EXPECT_EQ(profile().read("Globals", "pqor_p_z"), "1e-09");
    cl_variable_fpt q("pqor_p", SAVE_PROFILE);
    q.load_from_profile();
    EXPECT_EQ(q.get_fpt_value(), (fpt{1.5, -2, 1e-9}));
    cl_variable_COLORREF c("cks_c", OPTION_GLOBAL, 0x0000ff);
    c.save_to_profile();
    EXPECT_EQ(profile().read("Globals", "cks_c"), "#ff0000");
    for (const int unsaved : {SAVE_NONE, SAVE_LOCAL, SAVE_SESSION}) {
        cl_variable_int("iks_u", unsaved, 3).save_to_profile();
        EXPECT_FALSE(profile().read("Globals", "iks_u")) << unsaved;
    }
}

TEST_F(Variables, SaveTypeChangesSayWhatTheyAlwaysSaid) {
    cl_variable_int v("iks_x", SAVE_PROFILE);
    v.set_save_type(OPTION_NON_DATABASE_GLOBAL);
    EXPECT_EQ(v.save_type, 5);
    EXPECT_EQ(traced(4, "Setting save type to SAVE_DATABASE: iks_x"), 1);
    v.set_save_type(SAVE_PROFILE);
    EXPECT_EQ(traced(4, "Setting save type to SAVE_PROFILE from (5): iks_x"), 1);
    const std::size_t before = lines.size();
    for (const int other : {SAVE_PROFILE, SAVE_NONE, SAVE_ANY, SAVE_LOCAL, SAVE_SESSION}) {
        v.set_save_type(other);
    }
    EXPECT_EQ(v.save_type, SAVE_PROFILE);
    EXPECT_EQ(lines.size(), before);
    EXPECT_TRUE(boxes.empty()) << "level 4 shows no dialog";
}

TEST_F(Variables, RegistryHasTwoRoundsForTheMachineOnly) {
    const std::string machine = "HKEY_LOCAL_MACHINE\\", user = "HKEY_CURRENT_USER\\";
    write_registry_entry(machine + "SOFTWARE\\WOW6432Node\\Halden\\Dir", {std::string("there")});
    write_registry_entry(user + "SOFTWARE\\WOW6432Node\\Halden\\Dir", {std::string("there")});
    std::string text = "unset";
    EXPECT_TRUE(get_text_from_registry(machine + "Software\\halden\\DIR", text));
    EXPECT_EQ(text, "there");
    EXPECT_FALSE(get_text_from_registry(user + "SOFTWARE\\Halden\\Dir", text));
    EXPECT_EQ(traced(1, "Cannot locate registry entry: HKEY_CURRENT_USER\\SOFTWARE\\Halden\\Dir"),
              1);
    std::uint32_t number = 0;
    EXPECT_FALSE(get_int_from_registry(machine + "SOFTWARE\\Halden\\Dir", number));
    EXPECT_EQ(traced(1, "Value is not a number: HKEY_LOCAL_MACHINE\\SOFTWARE\\Halden\\Dir (1)"), 1);
    cl_registry_result result;
    EXPECT_FALSE(read_registry_entry("HKCU\\a\\b", result));
    EXPECT_EQ(traced(1, "Registry key must start with HKEY: HKCU\\a\\b"), 1);
    EXPECT_FALSE(read_registry_entry("HKEY_CURRENT_USER\\a", result));
    EXPECT_EQ(traced(1, "Key must contain a backslash"), 1);
}
