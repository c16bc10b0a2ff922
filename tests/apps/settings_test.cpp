// `qorvane settings` as a user runs it, with a settings folder of its own for each test.
#include "tests/apps/program_fixture.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include <unistd.h>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

/// A drawing whose own dictionary holds some settings.
std::string drawing_with_settings() {
    std::string text = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n"
                       "0\nSECTION\n2\nOBJECTS\n"
                       "0\nDICTIONARY\n5\nC\n330\n0\n100\nAcDbDictionary\n3\nOMB_Qorvane\n350\n1D\n"
                       "0\nDICTIONARY\n5\n1D\n330\nC\n100\nAcDbDictionary\n";
    const std::vector<std::pair<std::string, std::string>> records{
        {"iks_resx", "70\n1234\n"},
        {"bks_sun_on", "70\n0\n"},
        {"pqor_sun_date", "10\n1.0\n20\n2.0\n30\n3.5\n"},
        {"cskp_sky_color", "10\n255.0\n20\n128.0\n30\n0.0\n"},
        {"xks_not_ours", "40\n1.0\n"}};
    std::string bodies;
    int handle = 0x20;
    for (const auto& [name, value] : records) {
        std::ostringstream hex;
        hex << std::hex << std::uppercase << handle++;
        text.append("3\n").append(name).append("\n350\n").append(hex.str()).append("\n");
        bodies.append("0\nXRECORD\n5\n").append(hex.str()).append("\n330\n1D\n100\nAcDbXrecord\n");
        bodies.append("280\n1\n2\n").append(name).append("\n").append(value);
    }
    return text + bodies + "0\nENDSEC\n0\nEOF\n";
}

class Settings : public ProgramTest {
protected:
    void TearDown() override {
        unsetenv("LC_ALL");
        unsetenv("LOCPATH");
        std::error_code ignored;
        fs::permissions(settings_folder(), fs::perms::owner_all, ignored);
        ProgramTest::TearDown();
    }
    fs::path settings_folder() const { return folder_ / "home" / "config" / "qorvane"; }
    Outcome run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "settings");
        return run_program(std::move(arguments));
    }
    /// The output of a call that must go well.
    std::string out(std::vector<std::string> arguments) {
        const Outcome r = run(std::move(arguments));
        EXPECT_EQ(r.code, 0) << r.err;
        return r.out;
    }
    json all(std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        return json::parse(out(std::move(arguments)), nullptr, false);
    }
    json one(const std::string& name, std::vector<std::string> flags = {}) {
        flags.insert(flags.begin(), {"get", name});
        return all(std::move(flags));
    }
    std::map<std::string, std::string> tree() const {
        std::map<std::string, std::string> files;
        if (fs::exists(folder_ / "home")) {
            for (const auto& entry : fs::recursive_directory_iterator(folder_ / "home")) {
                files[entry.path().string()] = entry.is_regular_file() ? read(entry.path()) : "";
            }
        }
        return files;
    }
};

// ---- list and get ----

TEST_F(Settings, ListAsJsonHasEachSettingOnceInCatalogueOrder) {
    const json list = all({"list"});
    ASSERT_TRUE(list.is_array());
    ASSERT_GT(list.size(), 700U);
    EXPECT_EQ(list.front()["name"], "bks_lowend_render_mode");
    EXPECT_EQ(list.back()["name"], "irpt_footer_font_size");
    std::set<std::string> names;
    for (const json& row : list) {
        EXPECT_TRUE(names.insert(row["name"]).second) << row["name"] << " stands twice";
        EXPECT_TRUE(row["save_type"].is_number_integer());
        EXPECT_EQ(row["source"], "default") << row["name"];
        for (const char* key : {"value", "default", "title", "group", "save_type_name", "kind"}) {
            EXPECT_TRUE(row[key].is_string()) << row["name"] << " " << key;
        }
    }
    const json width = one("iks_resx");
    EXPECT_EQ(width["save_type"], 4);
    EXPECT_EQ(width["save_type_name"], "OPTION_GLOBAL");
    EXPECT_EQ(width["kind"], "int");
    EXPECT_EQ(width["title"], "Resx");
    EXPECT_EQ(width["value"], width["default"]);
    EXPECT_EQ(one("cskp_sky_color")["value"].get<std::string>().substr(0, 1), "#");
    EXPECT_EQ(one("pqor_sun_date")["value"], "(0, 0, 0)");
    // A later mention replaces the default alone, and that is no change of the user's.
    EXPECT_EQ(one("sks_last_texture_filter")["value"], "not set");
    EXPECT_EQ(one("sks_last_texture_filter")["default"], "");
    EXPECT_EQ(out({"diff"}), "Nothing differs from the factory values.\n");
}

TEST_F(Settings, PatternsFindNamesAndTitlesWithoutCase) {
    const auto names = [&](const std::string& pattern) {
        std::set<std::string> found;
        for (const json& row : all({"list", pattern})) {
            found.insert(row["name"]);
        }
        return found;
    };
    const std::set<std::string> sizes{"iks_resx", "iks_resy"};
    EXPECT_EQ(names("iks_res?"), sizes);
    EXPECT_EQ(names("IKS_RES[x-z]"), sizes);
    EXPECT_EQ(names("iks_res[!x]"), std::set<std::string>{"iks_resy"});
    EXPECT_EQ(names("i*_res[xx]*").size(), 3U) << "two more have a word ahead";
    EXPECT_EQ(names("qor sun alt*"), std::set<std::string>()) << "that is neither name nor title";
    const std::set<std::string> altitudes{"rks_brm_sun_altitude", "rqor_sun_altitude"};
    EXPECT_EQ(names("Sun Altitude"), altitudes) << "a title";
    EXPECT_EQ(names("res"), names("*res*")) << "a pattern matches the whole name or title";
    EXPECT_TRUE(names("iks_re").size() > 2 && names("iks_re[").empty()) << "no bracket ends it";
    const Outcome none = run({"list", "no such thing"});
    EXPECT_EQ(none.code, 0);
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.err, "qorvane: no setting matches 'no such thing'\n");
}

TEST_F(Settings, TheTableFitsItsLinesAndMarksChanges) {
    ASSERT_EQ(run({"set", "iks_resx", "777"}).code, 0);
    const std::string group = one("iks_resx")["group"];
    std::istringstream lines(out({"list"}));
    std::string line, heading;
    int marked = 0, settings = 0;
    std::set<std::size_t> last_columns;
    while (std::getline(lines, line)) {
        EXPECT_LE(line.size(), 100U) << line;
        if (line.starts_with("* ")) {
            ++marked;
            EXPECT_EQ(heading, group);
            EXPECT_NE(line.find(" iks_resx "), std::string::npos) << line;
            EXPECT_NE(line.find(" 777 "), std::string::npos) << line;
        }
        if (line.starts_with("  ") && line.find('_') != std::string::npos) {
            ++settings;
            last_columns.insert(line.find_last_of(' ', line.find_last_not_of(' ')));
        } else if (!line.starts_with("*")) {
            heading = line;
        }
    }
    EXPECT_EQ(marked, 1);
    EXPECT_GT(settings, 700);
    EXPECT_EQ(last_columns.size(), 1U) << "the last column begins at one place";
}

TEST_F(Settings, UnknownNamesAndVerbsAreAnsweredWithTheNearest) {
    const Outcome name = run({"get", "iks_resq"});
    EXPECT_EQ(name.code, 4);
    EXPECT_EQ(name.err.find("qorvane: there is no setting 'iks_resq'; nearest: iks_res"), 0U)
        << name.err;
    EXPECT_EQ(run({"set", "iks_resq", "1"}).code, 4);
    EXPECT_EQ(run({"reset", "iks_resx", "iks_resq"}).code, 4);
    const Outcome verb = run({"improt", "a.dfl"});
    EXPECT_EQ(verb.code, 2);
    EXPECT_NE(verb.err.find("did you mean 'import'"), std::string::npos) << verb.err;
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{},
                                               {"get"},
                                               {"set", "iks_resx"},
                                               {"set", "iks_resx", "1", "iks_resy"},
                                               {"export"},
                                               {"import", "a.dfl", "--user"},
                                               {"diff", "a"},
                                               {"set", "iks_resx", "1", "--json"}}) {
        EXPECT_EQ(run(words).code, 2);
    }
    EXPECT_TRUE(tree().empty() || read(settings_folder() / "profile.ini").empty())
        << "nothing of it was kept";
}

// ---- set and reset ----

struct Typed {
    const char* name;
    const char* text;
    const char* value; ///< null: refused
};

TEST_F(Settings, ValuesAreCheckedByKind) {
    const Typed cases[] = {
        {"bks_sun_on", "off", "0"},
        {"bks_sun_on", "YES", "1"},
        {"bks_sun_on", "2", nullptr},
        {"bks_sun_on", "", nullptr},
        {"iks_resx", "-1", "-1"},
        {"iks_resx", "2147483647", "2147483647"},
        {"iks_resx", "2147483648", nullptr},
        {"iks_resx", "12.5", nullptr},
        {"iks_resx", "12 px", nullptr},
        {"iks_resx", "-99999", nullptr}, // would read as "no value"
        {"rqor_sun_altitude", "-.5", "-0.5"},
        {"rqor_sun_altitude", "1e3", "1000"},
        {"rqor_sun_altitude", "1,5", nullptr},
        {"rqor_sun_altitude", "1e999", nullptr},
        {"rqor_sun_altitude", "nan", nullptr},
        {"rqor_sun_altitude", "0x10", nullptr},
        {"pqor_sun_date", "-1,2.5 , 3", "(-1, 2.5, 3)"},
        {"pqor_sun_date", "(4, 5 ,6)", "(4, 5, 6)"},
        {"pqor_sun_date", "1,2", nullptr},
        {"pqor_sun_date", "(1,2,3", nullptr},
        {"pqor_sun_date", "1,2,3,4", nullptr},
        {"cskp_sky_color", "#FF8000", "#ff8000"},
        {"cskp_sky_color", "rgb(1, 2, 255)", "#0102ff"},
        {"cskp_sky_color", "255", "#ff0000"}, // red lowest
        {"cskp_sky_color", "#ff800", nullptr},
        {"cskp_sky_color", "rgb(1,2,256)", nullptr},
        {"cskp_sky_color", "16777216", nullptr},
        {"sks_auto_image_name", "[a, b]; \"c\" \xc3\xa4 = #", "[a, b]; \"c\" \xc3\xa4 = #"},
        {"sks_auto_image_name", "[x]", "[x]"},
        {"sks_auto_image_name", " blanks ", " blanks "},
        {"sks_auto_image_name", "", ""},
        {"sks_auto_image_name", "two\nlines", nullptr},
        {"sks_auto_image_name", "ZZZ", nullptr}, // would read as "no value"
        {"bks_is_sorrel", "1", nullptr},         // a mode of the session
        {"rks_mirror_width", "1", nullptr},      // a temporary
    };
    for (const Typed& row : cases) {
        const std::string before = one(row.name)["value"];
        const Outcome r = run({"set", row.name, row.text});
        const std::string what = std::string(row.name) + " '" + row.text + "': " + r.err;
        EXPECT_EQ(r.code, row.value != nullptr ? 0 : 2) << what;
        EXPECT_EQ(r.err.empty(), row.value != nullptr) << what;
        const json after = one(row.name);
        EXPECT_EQ(after["value"], row.value != nullptr ? std::string(row.value) : before) << what;
        if (row.value == nullptr) {
            EXPECT_NE(r.err.find(row.name), std::string::npos) << what;
        } else {
            EXPECT_EQ(after["source"], "profile") << what;
            EXPECT_EQ(out({"get", row.name}), std::string(row.value) + "\n");
        }
    }
    const Outcome dashes = run({"set", "--", "sks_auto_image_name", "--json"});
    EXPECT_EQ(dashes.code, 0) << dashes.err;
    EXPECT_EQ(out({"get", "sks_auto_image_name"}), "--json\n");
}

TEST_F(Settings, OneWrongValueKeepsAllOthersOut) {
    ASSERT_EQ(run({"set", "iks_resx", "640", "iks_resy", "480"}).code, 0);
    const std::string profile = read(settings_folder() / "profile.ini");
    const Outcome r = run({"set", "iks_resx", "1", "iks_resy", "wide", "bks_is_sorrel", "1"});
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("iks_resy takes a whole number"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("bks_is_sorrel: never kept"), std::string::npos) << "all is told";
    EXPECT_EQ(read(settings_folder() / "profile.ini"), profile);
    EXPECT_EQ(out({"get", "iks_resx"}), "640\n");
}

TEST_F(Settings, ResetTakesValuesBack) {
    ASSERT_EQ(run({"set", "iks_resx", "640", "pqor_sun_date", "1,2,3", "sks_auto_image_name", "a",
                   "cskp_sky_color", "#010203", "rqor_sun_altitude", "12"})
                  .code,
              0);
    EXPECT_EQ(all({"diff"}).size(), 5U);
    EXPECT_EQ(out({"reset", "iks_resx", "bks_sun_on"}), "1 setting reset.\n");
    EXPECT_EQ(one("iks_resx")["source"], "default");
    EXPECT_EQ(read(settings_folder() / "profile.ini").find("iks_resx"), std::string::npos);
    EXPECT_EQ(out({"reset"}), "4 settings reset.\n");
    EXPECT_EQ(all({"diff"}), json::array());
    EXPECT_EQ(read(settings_folder() / "profile.ini").find("pqor_sun_date"), std::string::npos);
    EXPECT_EQ(out({"reset"}), "0 settings reset.\n");
}

TEST_F(Settings, TheInitialisationFileStandsBetweenFactoryAndProfile) {
    write("home/config/qorvane/qorvane.ini",
          "[Globals]\niks_resx=111\nsks_auto_image_name=house\ncskp_sky_color=#010203\n"
          "rqor_sun_altitude=77\nirpt_title_font_size=0\n");
    const json width = one("iks_resx");
    EXPECT_EQ(width["value"], "111");
    EXPECT_EQ(width["source"], "file");
    EXPECT_EQ(one("sks_auto_image_name")["source"], "file");
    EXPECT_EQ(one("rqor_sun_altitude")["source"], "default") << "numbers never ask it";
    EXPECT_EQ(one("irpt_title_font_size")["source"], "default") << "zero stands for the default";
    EXPECT_EQ(all({"diff"}).size(), 3U);
    ASSERT_EQ(run({"set", "iks_resx", "222"}).code, 0);
    EXPECT_EQ(one("iks_resx")["source"], "profile");
    EXPECT_EQ(out({"reset"}), "3 settings reset.\n");
    EXPECT_EQ(one("iks_resx")["value"], width["default"]) << "the factory's, not the file's";
    EXPECT_EQ(all({"diff"}), json::array());
}

TEST_F(Settings, AProfileThatCannotBeWrittenIsAFailure) {
    write("home/config", "a file where a folder should be");
    const Outcome r = run({"set", "iks_resx", "640"});
    EXPECT_EQ(r.code, 5) << r.err;
    EXPECT_EQ(r.out, "");
    EXPECT_NE(r.err.find("qorvane: "), std::string::npos);
    EXPECT_EQ(run({"get", "iks_resx"}).code, 0) << "looking goes on";
}

// ---- files ----

TEST_F(Settings, ExportAndImportGoRound) {
    ASSERT_EQ(run({"set", "iks_resx", "640", "rqor_sun_altitude", "12.25", "pqor_sun_date", "1,2,3",
                   "cskp_sky_color", "#010203", "sks_auto_image_name", "a;b"})
                  .code,
              0);
    EXPECT_EQ(out({"export", "office"}), "office.dfl\n");
    const std::string text = read(folder_ / "office.dfl");
    EXPECT_NE(text.find("\niks_resx; 640\n"), std::string::npos);
    EXPECT_NE(text.find("\ncskp_sky_color; 197121\n"), std::string::npos);
    EXPECT_NE(text.find("\npqor_sun_date; (1, 2, 3)\n"), std::string::npos);
    EXPECT_EQ(text.find("bks_is_sorrel"), std::string::npos) << "modes are no options";
    const Outcome again = run({"export", "office.dfl"});
    EXPECT_EQ(again.code, 5);
    EXPECT_NE(again.err.find("--force replaces it"), std::string::npos);
    EXPECT_EQ(run({"export", "office.dfl", "--force"}).code, 0);
    EXPECT_EQ(run({"export", "no/such/folder/a.dfl"}).code, 5);

    const json kept = all({"diff"});
    ASSERT_EQ(run({"set", "iks_render_quality", "3"}).code, 0);
    ASSERT_EQ(run({"reset", "iks_resx", "rqor_sun_altitude", "pqor_sun_date", "cskp_sky_color",
                   "sks_auto_image_name"})
                  .code,
              0);
    const std::string said = out({"import", "office"});
    EXPECT_NE(said.find("0 lines not taken"), std::string::npos) << said;
    EXPECT_NE(said.find("iks_render_quality is 0 (custom)"), std::string::npos) << said;
    EXPECT_EQ(out({"get", "iks_render_quality"}), "0\n");
    ASSERT_EQ(run({"reset", "iks_render_quality"}).code, 0);
    EXPECT_EQ(all({"diff"}), kept);
    const std::string quiet = out({"import", "office"});
    EXPECT_EQ(quiet, "0 settings changed, 0 lines not taken.\n");
}

TEST_F(Settings, TheUsersOwnDefaultsFile) {
    EXPECT_EQ(run({"import", "--user"}).code, 3) << "there is none yet";
    ASSERT_EQ(run({"set", "iks_resx", "640"}).code, 0);
    EXPECT_EQ(out({"export", "--user"}), "User defaults saved\n");
    EXPECT_EQ(out({"export", "--user"}), "User defaults saved\n") << "it may be replaced";
    EXPECT_NE(read(settings_folder() / "Defaults" / "defaults.usr").find("iks_resx; 640\n"),
              std::string::npos);
    ASSERT_EQ(run({"reset"}).code, 0);
    EXPECT_EQ(out({"import", "--user"}).find("User defaults loaded\n"), 0U);
    EXPECT_EQ(out({"get", "iks_resx"}), "640\n");
}

TEST_F(Settings, ImportTakesWhatIsValidAndTellsTheRest) {
    write("bad.dfl", "\xef\xbb\xbf"
                     "iks_resx; 641\r\n" // 1
                     "# a comment; no line\r\n"
                     "\r\n"
                     "iks_resz; 5\r\n"             // 4
                     "iks_resy; wide\r\n"          // 5
                     "no semicolon here\r\n"       // 6
                     "; 12\r\n"                    // 7
                     "bks_is_sorrel; 1\r\n"        // 8
                     "cskp_sky_color; #010203\r\n" // 9
                     "pqor_sun_date; 1,2,3\r\n"    // 10
                     "  sks_auto_image_name ;  C:\\\\a;b  \r\n"
                     "rqor_sun_altitude; 33.5"); // no end of the line
    const Outcome r = run({"import", "bad.dfl"});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(out({"get", "iks_resx"}), "641\n");
    EXPECT_EQ(out({"get", "sks_auto_image_name"}), "C:\\a;b\n");
    EXPECT_EQ(out({"get", "rqor_sun_altitude"}), "33.5\n");
    EXPECT_EQ(r.out.find("3 settings changed, 7 lines not taken.\n"), 0U) << r.out;
    std::istringstream lines(r.err);
    std::string line;
    const std::pair<int, const char*> expected[] = {
        {4, "there is no setting 'iks_resz'; nearest: iks_res"},
        {5, "iks_resy takes a whole number"},
        {6, "no semicolon"},
        {7, "no name"},
        {8, "bks_is_sorrel is never kept"},
        {9, "cskp_sky_color takes a colour as one decimal number, not '#010203'"},
        {10, "pqor_sun_date takes a point: (x, y, z), not '1,2,3'"}};
    for (const auto& [number, words] : expected) {
        std::getline(lines, line);
        EXPECT_EQ(line.find("qorvane: bad.dfl:" + std::to_string(number) + ": "), 0U) << line;
        EXPECT_NE(line.find(words), std::string::npos) << line;
    }
    EXPECT_FALSE(std::getline(lines, line)) << line;
}

TEST_F(Settings, ImportOfWhatIsNoDefaultsFile) {
    EXPECT_EQ(run({"import", "none.dfl"}).code, 3);
    fs::create_directory(folder_ / "folder.dfl");
    EXPECT_EQ(run({"import", "folder.dfl"}).code, 3);
    write("empty.dfl", "");
    EXPECT_EQ(out({"import", "empty.dfl"}), "0 settings changed, 0 lines not taken.\n");
    std::string picture("\x89PNG\r\n\x1a\n\0\0;\x1b[31m", 16);
    for (int i = 0; i < 1000; ++i) {
        picture += "line " + std::to_string(i) + "; \x01\xff\n";
    }
    write("picture.dfl", picture);
    const Outcome r = run({"import", "picture.dfl"});
    EXPECT_EQ(r.code, 3);
    EXPECT_EQ(r.err.find('\x1b'), std::string::npos) << "nothing reaches the terminal as it stands";
    EXPECT_LT(std::count(r.err.begin(), r.err.end(), '\n'), 300);
    EXPECT_NE(r.err.find("more lines"), std::string::npos);
    EXPECT_EQ(all({"diff"}), json::array());
}

// ---- sources ----

TEST_F(Settings, DefaultsFileAndDrawingWinInTheirOrder) {
    write("house.dxf", drawing_with_settings());
    write("office.dfl", "iks_resx; 50\niks_resy; 60\niks_render_quality; 2\n");
    ASSERT_EQ(run({"set", "iks_resx", "640", "iks_resy", "480", "rqor_sun_altitude", "12"}).code,
              0);
    const auto before = tree();
    const std::vector<std::string> both{"--defaults", "office.dfl", "--drawing", "house.dxf"};
    const std::pair<const char*, std::pair<const char*, const char*>> expected[] = {
        {"iks_resx", {"1234", "drawing"}},
        {"bks_sun_on", {"0", "drawing"}},
        {"pqor_sun_date", {"(1, 2, 3.5)", "drawing"}},
        {"cskp_sky_color", {"#ff8000", "drawing"}},
        {"iks_resy", {"60", "file"}},
        {"iks_render_quality", {"0", "file"}},
        {"rqor_sun_altitude", {"12", "profile"}}};
    for (const auto& [name, want] : expected) {
        const json row = one(name, both);
        EXPECT_EQ(row["value"], want.first) << name;
        EXPECT_EQ(row["source"], want.second) << name;
    }
    const json diff = all({"diff", "--drawing", "house.dxf"});
    std::set<std::string> names;
    for (const json& row : diff) {
        names.insert(row["name"]);
    }
    EXPECT_TRUE(names.contains("iks_resx") && names.contains("cskp_sky_color"));
    const std::string table = out({"diff"});
    EXPECT_NE(table.find("rqor_sun_altitude  12 "), std::string::npos) << table;
    out({"list"});
    out({"export", "drawing.dfl", "--drawing", "house.dxf"});
    EXPECT_NE(read(folder_ / "drawing.dfl").find("\niks_resx; 1234\n"), std::string::npos);
    EXPECT_EQ(tree(), before) << "looking keeps nothing";
    EXPECT_EQ(read(folder_ / "house.dxf"), drawing_with_settings());
    EXPECT_EQ(run({"list", "--drawing", "none.dxf"}).code, 3);
    EXPECT_EQ(run({"list", "--defaults", "none.dfl"}).code, 3);
}

TEST_F(Settings, AFreshLookMakesNoFiles) {
    out({"list"});
    out({"get", "rqor_sun_altitude"});
    out({"diff"});
    for (const auto& [path, text] : tree()) {
        EXPECT_TRUE(fs::is_directory(path)) << path;
    }
}

TEST_F(Settings, TheLocaleChangesNothing) {
    const char* german = "de_DE.UTF-8"; // made here: not every machine has it
    const std::string make = "localedef -i de_DE -f UTF-8 '" + (folder_ / german).string() + "'";
    if (std::system((make + " > /dev/null 2>&1").c_str()) != 0) {
        GTEST_SKIP() << "localedef cannot make " << german;
    }
    ASSERT_EQ(run({"set", "rqor_sun_altitude", "12.5"}).code, 0);
    const std::string plain = out({"list"});
    const std::string file = read(settings_folder() / "profile.ini");
    setenv("LOCPATH", folder_.c_str(), 1);
    setenv("LC_ALL", german, 1);
    ASSERT_EQ(run({"set", "rqor_sun_altitude", "12.5"}).code, 0);
    EXPECT_EQ(run({"set", "rqor_sun_altitude", "12,5"}).code, 2);
    EXPECT_EQ(out({"list"}), plain);
    EXPECT_EQ(read(settings_folder() / "profile.ini"), file);
}

TEST_F(Settings, TheManualsPageIsWhatTheProgramPrints) {
    const Outcome r = run_program({"--settings-page"});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(r.out == read(fs::path(QORVANE_SOURCE_DIR) / "docs" / "user" / "settings.md"))
        << "make it again: qorvane --settings-page > docs/user/settings.md";
    for (const json& row : all({"list"})) {
        EXPECT_NE(r.out.find("| `" + row["name"].get<std::string>() + "` |"), std::string::npos);
    }
}

} // namespace
