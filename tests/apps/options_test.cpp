#include "apps/options.h"

#include "apps/exit_codes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using namespace apps;

namespace {

ParseResult parse(std::vector<std::string> words) { return parse_command_line(words); }

TEST(Options, FlagsStandInAnyOrderAndAttachTheirValues) {
    const ParseResult r = parse({"-o", "a.png", "-s640x480", "render", "--passes=7", "house.dxf",
                                 "--view", "top", "--view", "Garden", "-j2", "--time", "1h30m",
                                 "-Diks_plant_season=2", "-D", "sks_auto_image_name=a=b", "-vv"});
    ASSERT_TRUE(r.proceed) << r.message;
    EXPECT_EQ(r.options.verb, kRender);
    EXPECT_EQ(r.options.operands, std::vector<std::string>{"house.dxf"});
    EXPECT_EQ(r.options.output, "a.png");
    EXPECT_EQ(r.options.width, 640);
    EXPECT_EQ(r.options.height, 480);
    EXPECT_EQ(r.options.passes, 7);
    EXPECT_EQ(r.options.views, (std::vector<std::string>{"top", "Garden"}));
    EXPECT_EQ(r.options.threads, 2);
    EXPECT_DOUBLE_EQ(r.options.time_seconds, 5400);
    EXPECT_EQ(r.options.verbosity, 2);
    ASSERT_EQ(r.options.globals.size(), 2U);
    EXPECT_EQ(r.options.globals[1].second, "a=b") << "only the first equals sign splits";
}

TEST(Options, TwoDashesEndTheFlags) {
    const ParseResult r = parse({"render", "--quiet", "--", "--house.dxf"});
    ASSERT_TRUE(r.proceed) << r.message;
    EXPECT_EQ(r.options.operands, std::vector<std::string>{"--house.dxf"});
    EXPECT_TRUE(r.options.quiet);
}

TEST(Options, OperandsOfSettingsStandAsTheyAre) {
    const ParseResult r = parse({"settings", "set", "iks_resx", "-1", "pqor_sun_date", "-.5,2,3",
                                 "sks_auto_image_name", "[a,b]", "--quiet"});
    ASSERT_TRUE(r.proceed) << r.message;
    EXPECT_EQ(r.options.operands,
              (std::vector<std::string>{"set", "iks_resx", "-1", "pqor_sun_date", "-.5,2,3",
                                        "sks_auto_image_name", "[a,b]"}));
    const ParseResult list = parse({"settings", "list", "--json", "--drawing", "a.dxf"});
    ASSERT_TRUE(list.proceed) << list.message;
    EXPECT_TRUE(list.options.json);
    EXPECT_EQ(list.options.drawing, "a.dxf");
}

struct WrongUse {
    std::vector<std::string> words;
    const char* part; ///< of the message
};

class WrongUsage : public ::testing::TestWithParam<WrongUse> {};

TEST_P(WrongUsage, EndsWithCodeTwoAndSaysWhy) {
    const ParseResult r = parse(GetParam().words);
    EXPECT_FALSE(r.proceed);
    EXPECT_EQ(r.exit_code, kUsage);
    EXPECT_NE(r.message.find(GetParam().part), std::string::npos) << r.message;
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongUsage,
    ::testing::Values(
        WrongUse{{}, "nothing to do"}, WrongUse{{"house.dxf"}, "the window is not there yet"},
        WrongUse{{"render"}, "usage: qorvane render DRAWING"},
        WrongUse{{"convert", "a.dxf"}, "usage: qorvane convert IN OUT"},
        WrongUse{{"render", "a.dxf", "--bogus"}, "--bogus"},
        WrongUse{{"render", "a.dxf", "-s", "800"}, "a size is WIDTHxHEIGHT"},
        WrongUse{{"render", "a.dxf", "-s", "800x600x"}, "a size is WIDTHxHEIGHT"},
        WrongUse{{"render", "a.dxf", "-s", "40000x600"}, "a size is WIDTHxHEIGHT"},
        WrongUse{{"render", "a.dxf", "--passes", "0"}, "passes are a number"},
        WrongUse{{"render", "a.dxf", "--time", "10q"}, "a time is"},
        WrongUse{{"render", "a.dxf", "--preset", "disco"}, "presets are"},
        WrongUse{{"render", "a.dxf", "-D", "iks_resq=1"}, "nearest: iks_resx"},
        WrongUse{{"render", "a.dxf", "-D", "iks_resx=wide"}, "takes a whole number"},
        WrongUse{{"render", "a.dxf", "-D", "=1"}, "a setting is NAME=VALUE"},
        WrongUse{{"render", "a.dxf", "-o", ""}, "the value is empty"},
        WrongUse{{"render", "a.dxf", "-x"}, "there is no flag -x"},
        WrongUse{{"inspect", "a.dxf", "--passes", "3"}, "inspect has no flag --passes"},
        WrongUse{{"render", "a.dxf", "--user"}, "render has no flag --user"},
        WrongUse{{"settings"}, "usage: qorvane settings VERB"},
        WrongUse{{"settings", "lits"}, "did you mean 'list'?"},
        WrongUse{{"settings", "set", "iks_resx"}, "settings set NAME VALUE"},
        WrongUse{{"settings", "list", "--user"}, "settings list has no flag --user"},
        WrongUse{{"dialog", "chekc", "a.dcl"}, "did you mean 'check'?"},
        WrongUse{{"dialog", "tree", "a_b", "--grab", "x.png"}, "dialog tree has no flag --grab"},
        WrongUse{{"dialog", "show", "a_b", "--scale", "3"}, "scales are 1 and 2"},
        WrongUse{{"dialog", "show", "a_b", "--theme", "pink"}, "themes are"},
        WrongUse{{"dialog", "show", "a_b", "--set", "iown=wide"}, "takes a whole number"},
        WrongUse{{"dialog", "show", "a_b", "--set", "xown=1"}, "begins with its kind"}));

TEST(Options, HelpManualAndCompletionNameEveryFlag) {
    const std::string help = help_text();
    const std::string completion = bash_completion();
    std::set<std::string> seen;
    for (const FlagRow& row : flag_rows()) {
        const std::string names = row.names;
        EXPECT_TRUE(seen.insert(names).second) << names << " stands twice";
        EXPECT_NE(help.find(names), std::string::npos) << names;
        const std::string longest = names.substr(names.rfind(',') + 1);
        EXPECT_NE(completion.find(longest), std::string::npos) << longest;
    }
    for (const VerbRow& row : verb_rows()) {
        EXPECT_NE(manual_page().find(std::string(".B ") + row.name), std::string::npos);
    }
    for (const SubVerbRow& row : sub_verb_rows()) {
        EXPECT_NE(help.find(std::string("\n  ") + row.name + " "), std::string::npos) << row.name;
        const auto verb = std::ranges::find(verb_rows(), row.verb, &VerbRow::verb);
        EXPECT_NE(manual_page().find(std::string(".B ") + verb->name + " " + row.name),
                  std::string::npos);
        EXPECT_NE(completion.find(std::string(row.name) + " "), std::string::npos);
    }
    EXPECT_EQ(parse({"--help"}).message, help);
    EXPECT_EQ(parse({"render", "-h"}).exit_code, kDone);
}

TEST(Options, Durations) {
    EXPECT_DOUBLE_EQ(parse_duration("45"), 45);
    EXPECT_DOUBLE_EQ(parse_duration("1.5m"), 90);
    EXPECT_DOUBLE_EQ(parse_duration("1h2m3s"), 3723);
    EXPECT_LT(parse_duration(""), 0);
    EXPECT_LT(parse_duration("m"), 0);
    EXPECT_LT(parse_duration("-5"), 0);
}

} // namespace
