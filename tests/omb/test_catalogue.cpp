// The catalogue's tables and the two modes of presetting.
#include "omb/globals/catalogue.h"
#include "tests/omb/fixture.h"

#include <chrono>
#include <map>

using Catalogue = StoreTest;

namespace {

std::vector<catalogue_row> rows_of(std::span<const catalogue_group> groups) {
    std::vector<catalogue_row> rows;
    for (const catalogue_group& group : groups) {
        rows.insert(rows.end(), group.rows.begin(), group.rows.end());
    }
    return rows;
}

} // namespace

TEST_F(Catalogue, RowsInOrder) {
    const auto main = rows_of(main_catalogue()), application = rows_of(application_catalogue());
    EXPECT_EQ(main.size(), 583u);
    EXPECT_EQ(application.size(), 157u);
    EXPECT_EQ(main.front().name, "bks_lowend_render_mode");
    EXPECT_EQ(main.back().name, "bom_use_locale_formatting");
    EXPECT_EQ(application.front().name, "bks_toolbar_render_farm");
    EXPECT_EQ(application.back().name, "iks_new_auto_room_type");
    std::map<std::string_view, int> count;
    for (const catalogue_row& row : main) {
        ++count[row.name];
    }
    for (const char* twice : {"sks_last_jpeg_file", "sks_last_texture_filter", "iks_edge_lines"}) {
        EXPECT_EQ(count[twice], 2) << twice;
    }
}

TEST_F(Catalogue, EveryRowIsWellFormed) {
    int zero_defaults = 0;
    for (const auto& groups : {main_catalogue(), application_catalogue(), report_catalogue()}) {
        for (const catalogue_row& row : rows_of(groups)) {
            ASSERT_NE(std::string_view("birspc").find(row.name.front()), std::string_view::npos)
                << row.name;
            EXPECT_TRUE((row.save_type >= 1 && row.save_type <= 5) || row.save_type == 8)
                << row.name;
            auto variable = make_variable(row.name, SAVE_NONE);
            variable->set_string_value(std::string(row.default_text));
            if (row.name.front() == 'b' || row.name.front() == 'i') {
                EXPECT_EQ(variable->value_text(), row.default_text) << row.name;
            } else if (row.name.front() == 'r') {
                EXPECT_NE(row.default_text.find_first_of("0123456789"), std::string_view::npos);
            } else if (row.name.front() == 'c') {
                EXPECT_EQ(variable->value_text(), row.default_text) << row.name;
            }
            zero_defaults += row.zero_is_default ? 1 : 0;
        }
    }
    EXPECT_EQ(zero_defaults, 10) << "the lighting channels and nine font sizes";
}

TEST_F(Catalogue, PresetMakesEverythingQuietly) {
    preset_globals(0);
    EXPECT_TRUE(lines.empty()) << lines.front();
    preset_application_globals(0);
    EXPECT_EQ(lines.size(), 1u) << "one name stands in both blocks with different types";
    EXPECT_EQ(traced(4, "Setting save type to SAVE_DATABASE: iks_anim_frames_per_key"), 1);
    EXPECT_EQ(get_global_int("iks_max_render_passes"), 20);
    EXPECT_EQ(get_global_string("sks_sky_hdr"), "rnl_probe.hdr");
    EXPECT_EQ(get_global_COLORREF("cks_bkgnd_fill_color"), 0x333333u);
    EXPECT_EQ(get_global_double("rqor_sun_timezone"), -6.0);
    EXPECT_EQ(get_global_string("sks_last_texture_filter"), "not set");
    EXPECT_EQ(find_global("sks_last_texture_filter")->default_text(), "");
    EXPECT_FALSE(find_global("iks_max_render_passes")->changed);
    EXPECT_FALSE(profile().read("Globals", "iks_max_render_passes"));
    const std::size_t size = globals.size();
    set_global_int("iks_max_render_passes", 3);
    preset_application_globals(0);
    EXPECT_EQ(globals.size(), size);
    EXPECT_EQ(get_global_int("iks_max_render_passes"), 3) << "mode 0 leaves values alone";
}

TEST_F(Catalogue, RememberedValues) {
    profile().write("Globals", "iks_resx", "800");
    profile().write("Globals", "iks_resy", "-99999");
    initialisation_file().write("Globals", "iks_resy", "333");
    profile().write("Globals", "iks_lighting_channels", "0");
    profile().write("Globals", "sks_sky_hdr", "ZZZ");
    initialisation_file().write("Globals", "sks_sky_hdr", "mine.hdr");
    initialisation_file().write("Globals", "cks_layer_color", "rgb(1,2,3)");
    profile().write("Globals", "cks_fog_color", "xxx");
    profile().write("Globals", "pqor_sun_date_y", "6");
    profile().write("Globals", "rks_gamma_factor", "2.5");
    initialisation_file().write("Globals", "rks_edge_lines", "9");
    profile().write("Globals", "iks_setup_tab", "5");
    preset_globals(0);
    EXPECT_EQ(get_global_int("iks_resx"), 800);
    EXPECT_EQ(get_global_int("iks_resy"), 333);
    EXPECT_EQ(get_global_int("iks_lighting_channels"), 2) << "zero is the default here";
    EXPECT_EQ(get_global_string("sks_sky_hdr"), "mine.hdr");
    EXPECT_EQ(get_global_COLORREF("cks_layer_color"), 0x030201u);
    EXPECT_EQ(get_global_COLORREF("cks_fog_color"), 0xffffffu);
    EXPECT_EQ(get_global_fpt("pqor_sun_date"), (fpt{0, 6, 0}));
    EXPECT_EQ(get_global_double("rks_gamma_factor"), 2.5);
    EXPECT_EQ(get_global_double("rks_edge_lines"), 2.0) << "doubles do not ask the file";
    EXPECT_EQ(get_global_int("iks_setup_tab"), 0) << "a session flag is not remembered";
}

TEST_F(Catalogue, PresetCorrectsTheSaveType) {
    find_global("iks_resx", SAVE_PROFILE, false);
    set_global_int("iks_resx", 5);
    preset_globals(0);
    EXPECT_EQ(get_save_type("iks_resx"), OPTION_GLOBAL);
    EXPECT_EQ(get_global_int("iks_resx"), 5);
    EXPECT_EQ(find_global("iks_resx")->default_text(), "600");
    EXPECT_EQ(traced(4, "Setting save type to OPTION_GLOBAL: iks_resx"), 1);
}

TEST_F(Catalogue, FactoryReset) {
    preset_globals(0);
    set_global_int("iks_resx", 5);
    set_global_string("sks_last_texture_filter", "x");
    set_global_int("iks_setup_tab", 4);
    preset_globals(1);
    EXPECT_EQ(get_global_int("iks_resx"), 600);
    EXPECT_EQ(get_global_string("sks_last_texture_filter"), "") << "the last mention wins";
    EXPECT_EQ(get_global_int("iks_setup_tab"), 0);
    EXPECT_EQ(profile().read("Globals", "iks_resx"), "600");
    EXPECT_FALSE(profile().read("Globals", "iks_setup_tab"));
    std::vector<std::string> names;
    get_global_names_sorted(names);
    for (const std::string& name : names) {
        EXPECT_TRUE(find_global(name)->changed) << name;
    }
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) {
        preset_globals(1);
    }
    const auto spent = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(spent, std::chrono::seconds(5)) << "a reset stands in every render";
}

TEST_F(Catalogue, KnownAndNearestNames) {
    EXPECT_TRUE(is_catalogue_global("iks_resx"));
    EXPECT_TRUE(is_catalogue_global("bks_toolbar_render"));
    EXPECT_FALSE(is_catalogue_global("iks_resz"));
    EXPECT_FALSE(is_catalogue_global(""));
    EXPECT_EQ(nearest_global_names("iks_max_render_pases", 1).front(), "iks_max_render_passes");
    EXPECT_EQ(nearest_global_names("IKS_RESX", 3).front(), "iks_resx");
    EXPECT_EQ(nearest_global_names(std::string(100000, 'x'), 2).size(), 2u);
}
