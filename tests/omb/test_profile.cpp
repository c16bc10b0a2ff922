// The profile on disk: its text form, bad files, what goes to disk when, and the stores around it.
#include "omb/base/file_profile.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/option_globals.h"
#include "tests/omb/fixture.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

// ---- the text ----

TEST(IniText, ValuesOfAnyKindComeBack) {
    const std::vector<std::string> values = {"",
                                             "plain",
                                             " leading and trailing\t",
                                             "\"quoted\"",
                                             "\"",
                                             "a\nb\r\nc",
                                             "x;y#z=1 [s]",
                                             "C:\\Temp\\new",
                                             "\\",
                                             "tab\there",
                                             std::string("zero\0byte", 9),
                                             "\x01\x7f",
                                             "Größe €",
                                             "\xff\xfe no utf-8",
                                             "\"a\" b",
                                             "=",
                                             "[section]"};
    cl_ini_text ini;
    for (std::size_t i = 0; i < values.size(); ++i) {
        ini.write("Globals", "key" + std::to_string(i), values[i]);
        ini.write("Keys", values[i], "v" + std::to_string(i));
        ini.write(values[i], "of section", "s" + std::to_string(i));
    }
    cl_ini_text again;
    ASSERT_TRUE(again.parse(ini.text()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(again.read("Globals", "key" + std::to_string(i)), values[i]) << i;
        EXPECT_EQ(again.read("Keys", values[i]), "v" + std::to_string(i)) << i;
        EXPECT_EQ(again.read(values[i], "of section"), "s" + std::to_string(i)) << i;
    }
    EXPECT_EQ(again.text(), ini.text());
}

TEST(IniText, AChangeTouchesItsOwnLineOnly) {
    cl_ini_text ini;
    ASSERT_TRUE(ini.parse("\xEF\xBB\xBF; made by hand\r\n[Globals]\r\n  iks_a =  1 \r\nwhat is "
                          "this\r\niks_b=2\r\niks_a=9\r\n\r\n[Other]\r\nx=1"));
    EXPECT_EQ(ini.read("Globals", "iks_a"), "1") << "the first counts";
    ini.write("Globals", "iks_b", "3");
    ini.write("Globals", "iks_new", "4");
    ini.write("Third", "y", "5");
    EXPECT_EQ(ini.text(), "; made by hand\r\n[Globals]\r\n  iks_a =  1 \r\nwhat is "
                          "this\r\niks_b=3\r\niks_a=9\r\niks_new=4\r\n\r\n[Other]\r\nx=1\r\n\r\n"
                          "[Third]\r\ny=5\r\n");
    EXPECT_TRUE(ini.remove("Globals", "iks_a"));
    EXPECT_EQ(ini.read("Globals", "iks_a"), "9");
    EXPECT_FALSE(ini.remove("Globals", "iks_A"));
    EXPECT_EQ(ini.keys("Globals"), (std::vector<std::string>{"iks_b", "iks_a", "iks_new"}));
}

TEST(IniText, OddLinesAreNoEntries) {
    cl_ini_text ini;
    EXPECT_FALSE(ini.parse(std::string("[Globals]\nx=\0\n", 14)));
    EXPECT_EQ(ini.text(), "");
    const std::string odd = "=1\n;x=2\n#x=3\n[open\n[]\n\"x=4\n\"y\" z=5\n]\n[a]b]\nx=6\n";
    ASSERT_TRUE(ini.parse(odd));
    EXPECT_EQ(ini.text(), odd);
    EXPECT_EQ(ini.read("a]b", "x"), "6");
    EXPECT_EQ(ini.read("", "x"), std::nullopt);
    EXPECT_EQ(ini.read("", "\"x"), "4") << "a quote without its fellow is a character";
    cl_ini_text folded(true);
    folded.parse("[Key]\nName=1\n");
    folded.write("KEY", "NAME", "2");
    EXPECT_EQ(folded.text(), "[Key]\nNAME=2\n");
}

// ---- the file ----

class ProfileFile : public StoreTest {
protected:
    /// A store in the test's folder whose trouble is collected.
    std::unique_ptr<cl_file_profile> open() {
        return std::make_unique<cl_file_profile>(
            path("profile.ini"), [this](const std::string& text) { trouble.push_back(text); });
    }
    std::vector<std::string> trouble;
};

TEST_F(ProfileFile, IsWrittenAtOnceAndReadBack) {
    auto one = open(), two = open();
    EXPECT_EQ(two->read("Globals", "iks_a"), std::nullopt);
    one->write("Globals", "iks_a", "1");
    EXPECT_EQ(get("profile.ini"), "[Globals]\niks_a=1\n");
    one->write("Globals", "iks_a", "1");
    EXPECT_EQ(one->writes(), 1) << "what stands there needs no writing";
    two->write("Globals", "iks_b", "2"); // lays its change over what it has not seen yet
    EXPECT_EQ(get("profile.ini"), "[Globals]\niks_a=1\niks_b=2\n");
    two->write("Globals", "iks_a", "7");
    one->write("Globals", "iks_a", "1"); // the same value as before, chosen again
    EXPECT_EQ(open()->read("Globals", "iks_a"), "1");
    one->remove("Globals", "iks_b");
    EXPECT_EQ(get("profile.ini"), "[Globals]\niks_a=1\n");
    EXPECT_TRUE(trouble.empty());
}

TEST_F(ProfileFile, WhatIsOnlyReadWaitsAndGivesWay) {
    auto one = open(), two = open();
    one->remember("Globals", "rks_a", "1");
    one->remember("Globals", "rks_b", "1");
    EXPECT_EQ(one->read("Globals", "rks_a"), "1");
    EXPECT_FALSE(fs::exists(path("profile.ini")));
    two->write("Globals", "rks_a", "2");
    one->write("Globals", "iks_c", "3");
    EXPECT_EQ(one->read("Globals", "rks_a"), "2") << "another program knew better";
    EXPECT_EQ(open()->read("Globals", "rks_b"), "1");
    one->remember("Globals", "rks_d", "4");
    one.reset();
    EXPECT_EQ(open()->read("Globals", "rks_d"), "4") << "written at the latest at the end";
}

TEST_F(ProfileFile, ABulkIsOneWrite) {
    auto store = open();
    store->begin_bulk();
    for (int i = 0; i < 800; ++i) {
        store->write("Globals", "iks_" + std::to_string(i), "1");
        store->begin_bulk();
        store->end_bulk();
    }
    EXPECT_EQ(store->writes(), 0);
    store->end_bulk();
    EXPECT_EQ(store->writes(), 1);
    EXPECT_EQ(open()->read("Globals", "iks_799"), "1");
}

TEST_F(ProfileFile, AFileThatIsNoTextIsPutAside) {
    const std::string junk("\x7f"
                           "ELF\0\0\0",
                           7);
    put("profile.ini", junk);
    auto store = open();
    EXPECT_EQ(store->read("Globals", "iks_a"), std::nullopt);
    ASSERT_EQ(trouble.size(), 1u);
    EXPECT_EQ(trouble[0], path("profile.ini") + ": is no text file; it is put aside as "
                                                "profile.ini.damaged when settings are stored");
    EXPECT_EQ(get("profile.ini"), junk) << "reading changes nothing";
    store->write("Globals", "iks_a", "1");
    EXPECT_EQ(get("profile.ini.damaged"), junk);
    EXPECT_EQ(get("profile.ini"), "[Globals]\niks_a=1\n");
    EXPECT_EQ(trouble.size(), 1u);
}

TEST_F(ProfileFile, AnEndlessLineIsKept) {
    const std::string line(10 << 20, 'x');
    put("profile.ini", "[Globals]\niks_a=1\n" + line + "\niks_b=2\n");
    auto store = open();
    EXPECT_EQ(store->read("Globals", "iks_b"), "2");
    store->write("Globals", "iks_a", "5");
    EXPECT_EQ(get("profile.ini"), "[Globals]\niks_a=5\n" + line + "\niks_b=2\n");
    EXPECT_TRUE(trouble.empty());
}

/// The program runs on with what it has, and says so once.
TEST_F(ProfileFile, WhatCannotBeUsedIsLeftAlone) {
    fs::create_directories(path("profile.ini"));
    auto store = open();
    store->write("Globals", "iks_a", "1");
    store->write("Globals", "iks_a", "2");
    EXPECT_EQ(store->read("Globals", "iks_a"), "2");
    ASSERT_EQ(trouble.size(), 1u);
    EXPECT_EQ(trouble[0],
              path("profile.ini") + ": Is a directory; settings are kept for this run only");
    EXPECT_TRUE(fs::is_directory(path("profile.ini")));
    fs::remove_all(path("profile.ini"));

    put("profile.ini", "[Globals]\niks_a=1\n");
    fs::resize_file(path("profile.ini"), cl_file_profile::size_limit + 1);
    store = open();
    store->write("Globals", "iks_b", "1");
    EXPECT_EQ(trouble.back(),
              path("profile.ini") + ": File too large; settings are kept for this run only");
    EXPECT_EQ(fs::file_size(path("profile.ini")), cl_file_profile::size_limit + 1);
}

TEST_F(ProfileFile, AFileOrFolderThatCannotBeWritten) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "nothing is forbidden to this user";
    }
    put("profile.ini", "[Globals]\niks_a=1\n");
    fs::permissions(path("profile.ini"), fs::perms::owner_read);
    auto store = open();
    store->write("Globals", "iks_a", "2");
    EXPECT_EQ(trouble.size(), 1u);
    EXPECT_EQ(get("profile.ini"), "[Globals]\niks_a=1\n");
    EXPECT_EQ(store->read("Globals", "iks_a"), "2");
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    auto other = open();
    other->write("Globals", "iks_a", "3");
    EXPECT_EQ(trouble.size(), 2u);
    fs::permissions(folder, fs::perms::owner_all);
}

TEST_F(ProfileFile, AFullDiskLeavesTheOldFile) {
    put("profile.ini", "[Globals]\niks_a=1\n");
    auto store = open();
    const auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old_limit{};
    getrlimit(RLIMIT_FSIZE, &old_limit);
    rlimit small = old_limit;
    small.rlim_cur = 30; // bytes: as a disk that fills up while writing
    setrlimit(RLIMIT_FSIZE, &small);
    store->write("Globals", "sks_long", std::string(100, 'x'));
    setrlimit(RLIMIT_FSIZE, &old_limit);
    std::signal(SIGXFSZ, old_handler);
    EXPECT_EQ(get("profile.ini"), "[Globals]\niks_a=1\n");
    EXPECT_FALSE(fs::exists(path("profile.ini.new")));
    ASSERT_EQ(trouble.size(), 1u);
    EXPECT_EQ(store->read("Globals", "iks_a"), "1");
    store->write("Globals", "iks_b", "2"); // there is room again: nothing is lost
    EXPECT_EQ(open()->read("Globals", "sks_long"), std::string(100, 'x'));
    EXPECT_EQ(trouble.size(), 1u);
}

TEST_F(ProfileFile, LinksAndPermissionsStay) {
    put("real.ini", "[Globals]\niks_a=1\n");
    fs::permissions(path("real.ini"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real.ini", path("profile.ini"));
    open()->write("Globals", "iks_a", "2");
    EXPECT_TRUE(fs::is_symlink(path("profile.ini")));
    EXPECT_EQ(get("real.ini"), "[Globals]\niks_a=2\n");
    EXPECT_EQ(fs::status(path("real.ini")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(ProfileFile, AnOverlayChangesNothingBelow) {
    put("profile.ini", "[Globals]\niks_a=1\niks_b=2\n");
    cl_overlay_profile overlay(open());
    overlay.write("Globals", "iks_a", "5");
    overlay.remember("Globals", "iks_b", "6");
    overlay.remember("Globals", "iks_c", "7");
    EXPECT_EQ(overlay.read("Globals", "iks_a"), "5");
    EXPECT_EQ(overlay.read("Globals", "iks_b"), "2");
    EXPECT_EQ(overlay.read("Globals", "iks_c"), "7");
    overlay.remove("Globals", "iks_a");
    EXPECT_EQ(overlay.read("Globals", "iks_a"), std::nullopt);
    overlay.write("Globals", "iks_a", "8");
    EXPECT_EQ(overlay.read("Globals", "iks_a"), "8");
    EXPECT_EQ(get("profile.ini"), "[Globals]\niks_a=1\niks_b=2\n");
}

TEST_F(ProfileFile, TheInitialisationFileCutsLongValues) {
    std::string units; // 2 bytes each in UTF-8
    for (int i = 0; i < 9000; ++i) {
        units += "ä";
    }
    put("qorvane.ini", "[Globals]\nsks_a=" + units + "\nsks_b=" + std::string(8191, 'b') + "\n");
    cl_initialisation_file file(path("qorvane.ini"));
    EXPECT_EQ(file.read("Globals", "sks_a")->size(), 2 * 8191u);
    EXPECT_EQ(file.read("Globals", "sks_b")->size(), 8191u);
    file.write("Globals", "sks_b", "x");
    EXPECT_EQ(file.read("Globals", "sks_b")->size(), 8191u);
}

// ---- the store on it ----

TEST_F(ProfileFile, TwoStepsLeadToAValue) {
    put("profile.ini", "[Globals]\niks_reflective_bounces=-99999\nsks_sky_hdr=ZZZ\n"
                       "cks_fog_color=xxx\nrqor_sun_latitude=7.5\niks_lighting_channels=0\n"
                       "pqor_sun_date_x=1\npqor_sun_date_z=3\n");
    put("qorvane.ini", "[Globals]\niks_reflective_bounces=9\nsks_sky_hdr=other.hdr\n"
                       "cks_fog_color=#010203\nrqor_sun_longitude=5\niks_refractive_bounces=8\n");
    set_profile(open());
    set_initialisation_file(std::make_unique<cl_initialisation_file>(path("qorvane.ini")));
    preset_globals(0);
    EXPECT_EQ(get_global_int("iks_reflective_bounces"), 9) << "the sentinel reads as missing";
    EXPECT_EQ(get_global_int("iks_refractive_bounces"), 8);
    EXPECT_EQ(get_global_string("sks_sky_hdr"), "other.hdr");
    EXPECT_EQ(get_global_COLORREF("cks_fog_color"), 0x030201u);
    EXPECT_EQ(get_global_double("rqor_sun_latitude"), 7.5);
    EXPECT_EQ(get_global_double("rqor_sun_longitude"), 105.0) << "doubles do not ask that file";
    EXPECT_EQ(get_global_int("iks_lighting_channels"), 2) << "a remembered zero is the default";
    EXPECT_EQ(get_global_fpt("pqor_sun_date"), (fpt{1, 0, 3}));
    set_initialisation_file(nullptr);
    put("qorvane.ini", "[Globals]\ncks_fog_color=ZZZ\n");
    set_initialisation_file(std::make_unique<cl_initialisation_file>(path("qorvane.ini")));
    globals.clear();
    preset_globals(0);
    EXPECT_EQ(get_global_COLORREF("cks_fog_color"), 0xffffffu);
}

TEST_F(ProfileFile, ReadingNeverTakesBackWhatAnotherProgramSet) {
    put("profile.ini", "[Globals]\nrqor_sun_latitude=1\n");
    set_profile(open());
    preset_globals(0);
    open()->write("Globals", "rqor_sun_latitude", "2");
    EXPECT_EQ(get_global_double("rqor_sun_latitude"), 1.0);
    EXPECT_EQ(get_global_double("rqor_sun_longitude"), 105.0);
    set_global_int("iks_reflective_bounces", 4); // takes along what was only read
    const auto after = open();
    EXPECT_EQ(after->read("Globals", "rqor_sun_latitude"), "2");
    EXPECT_EQ(after->read("Globals", "rqor_sun_longitude"), "105");
    EXPECT_EQ(after->read("Globals", "iks_reflective_bounces"), "4");
    find_global("rqor_sun_latitude")->set_double_value(3); // changed here, so a reading writes it
    get_global_double("rqor_sun_latitude");
    EXPECT_EQ(open()->read("Globals", "rqor_sun_latitude"), "3");
}

TEST_F(ProfileFile, AFileOfManyChangesCostsOneWrite) {
    auto store = open();
    const cl_file_profile& counted = *store;
    set_profile(std::move(store));
    preset_application_globals(0);
    std::string text;
    int changed = 0;
    for (const auto& groups : {main_catalogue(), application_catalogue()}) {
        for (const catalogue_group& group : groups) {
            for (const catalogue_row& row : group.rows) {
                const bool number = row.name.front() == 'i' || row.name.front() == 'r';
                text += std::string(row.name) + (number ? "; 77\n" : "; (7, 7, 7)\n");
                ++changed;
            }
        }
    }
    ASSERT_GT(changed, 700);
    const std::int64_t before = counted.writes();
    put("all.dfl", text);
    EXPECT_TRUE(read_option_globals_from_settings_file(path("all.dfl")));
    EXPECT_EQ(counted.writes(), before + 1);
    EXPECT_EQ(open()->read("Globals", "iks_render_quality"), "0");
    preset_globals(1);
    EXPECT_EQ(counted.writes(), before + 2);
}

TEST_F(ProfileFile, RegistryValuesComeBackWithTheirTypes) {
    const auto store_in_file = [this] {
        set_registry(std::make_unique<cl_file_profile>(path("registry.ini"), nullptr, true));
    };
    const std::string key = "HKEY_CURRENT_USER\\Software\\Halden\\Tessara Qor\\";
    const std::vector<std::string> texts = {"C:\\Program Files", "", "dword:7", "hex:", "sz:x"};
    store_in_file();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_TRUE(write_registry_entry(key + "t" + std::to_string(i), {texts[i]}));
    }
    write_registry_entry(key + "Number", {std::uint32_t{0xfffffffe}});
    write_registry_entry(key + "Bytes", {std::vector<std::uint8_t>{0, 255, 16}});
    EXPECT_NE(get("registry.ini")
                  .find("[HKEY_CURRENT_USER\\Software\\Halden\\Tessara Qor]\nt0="
                        "C:\\Program Files\n"),
              std::string::npos);
    store_in_file(); // as another program
    for (std::size_t i = 0; i < texts.size(); ++i) {
        std::string text = "?";
        EXPECT_TRUE(get_text_from_registry(key + "T" + std::to_string(i), text));
        EXPECT_EQ(text, texts[i]);
    }
    std::uint32_t number = 0;
    std::vector<std::uint8_t> bytes;
    EXPECT_TRUE(get_int_from_registry(key + "number", number));
    EXPECT_EQ(number, 0xfffffffeu);
    EXPECT_TRUE(get_binary_from_registry(key + "bytes", bytes));
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{0, 255, 16}));
    EXPECT_FALSE(get_binary_from_registry(key + "number", bytes));
}

TEST_F(ProfileFile, TheRegistryShowsTheProfile) {
    const std::string root = "HKEY_CURRENT_USER\\Software\\Ombrel Systems\\Profile\\Globals\\";
    set_global_bool("bks_show_about_dialog_before_rendering", true, SAVE_PROFILE);
    set_global_string("sks_trial", "words", SAVE_PROFILE);
    std::uint32_t number = 0;
    EXPECT_TRUE(get_int_from_registry(root + "bks_show_about_dialog_before_rendering", number));
    EXPECT_EQ(number, 1u);
    std::string text;
    EXPECT_TRUE(get_text_from_registry(root + "sks_trial", text));
    EXPECT_EQ(text, "words");
    EXPECT_FALSE(get_text_from_registry(root + "sks_absent", text));
}

} // namespace
