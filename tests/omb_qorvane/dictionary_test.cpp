// The drawing's own settings: every kind through a DXF file and back, and what else may stand in
// that dictionary.
#include "extraction_fixture.h"

#include "host/db/dictionary.h"
#include "omb/base/file_profile.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/dictionary.h"

namespace {

using testing::HasSubstr;

class Dictionary : public ExtractionTest {
protected:
    void SetUp() override {
        ExtractionTest::SetUp();
        first_use();
    }
    static void set_every_kind() {
        set_global_int("iks_resx", -2);
        set_global_bool("bks_sun_on", true);
        set_global_double("rks_gamma_factor", 1.0 / 3);
        set_global_string("sks_image_filters", "Grüße; \"x\"\n^J \\U+00E4 end");
        set_global_fpt("pqor_sun_date", {2026, 6.5, -1e-9});
        set_global_COLORREF("cskp_sky_color", 0x0102fe);
        set_global_string("sks_trial_long", std::string(3000, 'w'), SAVE_DATABASE);
    }
    static void expect_every_kind() {
        EXPECT_EQ(get_global_int("iks_resx"), -2);
        EXPECT_TRUE(get_global_bool("bks_sun_on"));
        EXPECT_EQ(get_global_double("rks_gamma_factor"), 1.0 / 3);
        EXPECT_EQ(get_global_string("sks_image_filters"), "Grüße; \"x\"\n^J \\U+00E4 end");
        EXPECT_EQ(get_global_fpt("pqor_sun_date"), (fpt{2026, 6.5, -1e-9}));
        EXPECT_EQ(get_global_COLORREF("cskp_sky_color"), 0x0102feU);
        EXPECT_EQ(get_global_string("sks_trial_long"), std::string(3000, 'w'));
    }
    /// Stores one record of our dictionary as another program might have written it.
    void put(const std::string& key, AcDbValues chain) {
        write_global_to_OMB_QorvaneDictionary(db(), "bks_sun_on"); // makes the dictionary
        const AcDbObjectId id =
            theApp().omb_export.OMB_QorvaneDictionary(AcDb::kForWrite, &db(), true);
        const AcDbObjectPointer<AcDbDictionary> dictionary(id, AcDb::kForWrite);
        auto record = std::make_unique<AcDbXrecord>();
        record->setFromRbChain(std::move(chain));
        AcDbObjectId made;
        dictionary->setAt(key, std::move(record), made);
    }
};

class EveryForm : public Dictionary, public testing::WithParamInterface<AcDbDxfForm> {};

TEST_P(EveryForm, EveryKindSurvivesTheFile) {
    set_every_kind();
    write_globals_to_OMB_QorvaneDictionary(db(), "house");
    const auto file = home / "saved.dxf";
    std::string error;
    ASSERT_EQ(db().dxfOut(file, error, GetParam()), Acad::eOk) << error;
    AcDbDatabase elsewhere(false);
    ASSERT_EQ(elsewhere.dxfIn(file, error), Acad::eOk) << error;
    EXPECT_TRUE(elsewhere.loadReport().lost.empty());
    globals.clear();
    set_profile(nullptr); // another user's
    preset_globals(0);
    EXPECT_NE(get_global_int("iks_resx"), -2);
    read_globals_from_OMB_QorvaneDictionary(elsewhere);
    expect_every_kind();
    EXPECT_EQ(get_global_string("somb_acad_database_name"), "house");
}
INSTANTIATE_TEST_SUITE_P(Dictionary, EveryForm,
                         testing::Values(AcDbDxfForm::kAscii, AcDbDxfForm::kBinary));

TEST_F(Dictionary, RecordsOfOthersAreReadByTheirLetterOrSkipped) {
    put("iks_resx", {{70, std::int64_t{40000}}, {2, std::string("iks_resx")}});
    put("no name", {{1, std::string("x")}});
    put("xks_odd", {{2, std::string("xks_odd")}, {40, 3.0}});
    put("sks_sky_hdr", {{2, std::string("sks_sky_hdr")}});
    put("cskp_sky_color",
        {{2, std::string("cskp_sky_color")}, {10, AcGePoint3d{254.6, -1, 1e300}}});
    put("rks_gamma_factor", {{2, std::string("rks_gamma_factor")}, {70, std::int64_t{1}}});
    put("bks_new", {{2, std::string("bks_new_here")}, {70, std::int64_t{1}}});
    set_global_string("sks_sky_hdr", "x.hdr");
    read_globals_from_OMB_QorvaneDictionary(db());
    EXPECT_EQ(get_global_int("iks_resx"), 40000 - 65536) << "16 bits with their sign";
    EXPECT_EQ(get_global_string("sks_sky_hdr"), "") << "no text is the empty text";
    EXPECT_EQ(get_global_COLORREF("cskp_sky_color") & 0xff, 255u);
    EXPECT_EQ(get_global_double("rks_gamma_factor"), 0.0);
    EXPECT_TRUE(get_global_bool("bks_new_here", false)) << "the record tells the name, not the key";
    EXPECT_EQ(globals.lookup("xks_odd"), nullptr);
}

TEST_F(Dictionary, OnlyKeptSettingsAreStored) {
    set_global_int("iks_trial_session", 1, SAVE_SESSION);
    set_global_int("iks_trial_none", 1, SAVE_NONE);
    set_global_int("iks_trial_six", 1, 6);
    set_global_int("iks_trial_profile", 1, SAVE_PROFILE);
    set_global_int("iks_trial_render", 1, OPTION_NON_DATABASE_GLOBAL);
    write_globals_to_OMB_QorvaneDictionary(db(), "house");
    const std::set<std::string> names = names_in_OMB_QorvaneDictionary(db());
    for (const char* name : {"iks_trial_session", "iks_trial_none", "iks_trial_six"}) {
        EXPECT_FALSE(names.contains(name)) << name;
    }
    EXPECT_TRUE(names.contains("iks_trial_profile"));
    EXPECT_TRUE(names.contains("iks_trial_render"));
    remove_from_OMB_QorvaneDictionary(db(), "iks_trial_profile");
    EXPECT_FALSE(names_in_OMB_QorvaneDictionary(db()).contains("iks_trial_profile"));
}

TEST_F(Dictionary, ReadingCostsOneWriteOfTheProfile) {
    auto store = std::make_unique<cl_file_profile>((home / "profile.ini").string());
    const cl_file_profile& counted = *store;
    set_every_kind();
    write_globals_to_OMB_QorvaneDictionary(db(), "house");
    set_profile(std::move(store));
    read_globals_from_OMB_QorvaneDictionary(db());
    EXPECT_EQ(counted.writes(), 1);
    expect_every_kind();
    set_profile(nullptr);
}

} // namespace
