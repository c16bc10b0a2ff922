// Lights: what their tags mean, what stands in where they are missing or unusable, and that a
// change leaves the rest of them alone.
#include "support.h"

#include "host/db/draw_report.h"
#include "host/db/light.h"
#include "host/dxf/facts.h"
#include "host/gi/recorder.h"

#include <cmath>
#include <limits>
#include <numbers>

using namespace test_dxf;

namespace {

constexpr double kDegree = std::numbers::pi / 180;

std::string light(const std::string& tags) {
    return "0\nLIGHT\n5\nA1\n100\nAcDbEntity\n8\n0\n100\nAcDbLight\n90\n1\n" + tags;
}

AcDbLight& only_light(AcDbDatabase& db) {
    auto* found = first_entity<AcDbLight>(db);
    EXPECT_NE(found, nullptr);
    return *found;
}

TEST(Lights, OfEachType) {
    const struct {
        const char* code;
        AcDbLight::LightType type;
    } kTypes[] = {{"1", AcDbLight::kDistantLight}, {"2", AcDbLight::kPointLight},
                  {"3", AcDbLight::kSpotLight},    {"4", AcDbLight::kWebLight},
                  {"9", AcDbLight::kPointLight},   {"-1", AcDbLight::kPointLight}};
    for (const auto& row : kTypes) {
        const auto db = load(with_entities(light(std::string("70\n") + row.code + "\n"), "AC1021"));
        EXPECT_EQ(only_light(*db).lightType(), row.type) << row.code;
        EXPECT_STREQ(only_light(*db).isA()->name(), "AcDbLight");
        EXPECT_EQ(save(*db), with_entities(light(std::string("70\n") + row.code + "\n"), "AC1021"));
    }
}

TEST(Lights, ValuesOfASpotlight) {
    const auto db = load(with_entities(
        light(
            "1\nLampe\n70\n3\n290\n0\n63\n5\n421\n16711935\n291\n1\n40\n2.5\n10\n1\n20\n2\n30\n3\n"
            "11\n1\n21\n2\n31\n-7\n72\n2\n292\n1\n41\n3\n42\n30\n50\n45\n51\n50\n293\n0\n73\n1\n"
            "91\n512\n280\n4\n"),
        "AC1032"));
    const AcDbLight& read = only_light(*db);
    EXPECT_EQ(read.name(), "Lampe");
    EXPECT_FALSE(read.isOn());
    EXPECT_TRUE(read.isPlottable());
    EXPECT_EQ(read.lightRgb(), 0xff00ffU) << "the true colour stands above the index";
    EXPECT_EQ(read.intensity(), 2.5);
    EXPECT_EQ(read.position(), (AcGePoint3d{1, 2, 3}));
    EXPECT_EQ(read.lightDirection(), (AcGeVector3d{0, 0, -1}));
    EXPECT_DOUBLE_EQ(read.hotspotAngle(), 45 * kDegree);
    EXPECT_DOUBLE_EQ(read.falloffAngle(), 50 * kDegree);
    EXPECT_EQ(read.attenuationType(), AcDbLight::kInverseSquare);
    EXPECT_TRUE(read.useAttenuationLimits());
    EXPECT_EQ(read.attenuationEndLimit(), 30);
    EXPECT_FALSE(read.castShadows());
    EXPECT_EQ(read.shadowType(), AcDbLight::kShadowMap);
    EXPECT_EQ(read.shadowMapSize(), 512);
    EXPECT_EQ(read.shadowMapSoftness(), 4);
    EXPECT_FALSE(read.photometrics().has_value());
}

TEST(Lights, WithoutTagsAreWhitePointLightsThatAreOn) {
    const auto db = load(with_entities(light(""), "AC1021"));
    const AcDbLight& read = only_light(*db);
    EXPECT_TRUE(read.isOn());
    EXPECT_EQ(read.lightType(), AcDbLight::kPointLight);
    EXPECT_EQ(read.lightRgb(), 0xffffffU);
    EXPECT_EQ(read.intensity(), 1);
    EXPECT_EQ(read.lightDirection(), (AcGeVector3d{0, 0, -1})) << "position and target are one";
    EXPECT_DOUBLE_EQ(read.hotspotAngle(), 45 * kDegree);
    EXPECT_DOUBLE_EQ(read.falloffAngle(), 50 * kDegree);
    EXPECT_TRUE(read.castShadows());
}

/// Drawings of R2000 keep a light's colour in one word, under the code of the version.
TEST(Lights, ColourOfOldDrawings) {
    const auto rgb = [](const char* word) {
        const auto db = load(with_entities(light(std::string("1\nL\n90\n") + word + "\n")));
        return only_light(*db).lightRgb();
    };
    EXPECT_EQ(rgb("-1023410171"), 0x0000ffU) << "index 5";
    EXPECT_EQ(rgb("-1040121288"), 0x010238U) << "a true colour";
    EXPECT_EQ(rgb("-1073741824"), 0xffffffU) << "by layer";
}

TEST(Lights, NumbersOutOfRangeAreHeldThere) {
    const auto db = load(with_entities(
        light("10\nnan\n20\n1e308\n11\n-1e308\n21\n-1e308\n31\n0\n50\n400\n51\n-20\n40\ninf\n"),
        "AC1021"));
    AcDbLight& read = only_light(*db);
    EXPECT_EQ(read.position().x, 0);
    EXPECT_NEAR(read.lightDirection().length(), 1, 1e-12);
    EXPECT_DOUBLE_EQ(read.hotspotAngle(), std::numbers::pi);
    EXPECT_DOUBLE_EQ(read.falloffAngle(), std::numbers::pi) << "not inside the hot spot";
    read.setIntensity(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(read.intensity(), 0) << "what was no number";
    read.setHotspotAndFalloff(std::numeric_limits<double>::infinity(), 1);
    EXPECT_DOUBLE_EQ(read.hotspotAngle(), std::numbers::pi);
}

TEST(Lights, AChangeTouchesOneTag) {
    const std::string tags =
        light("1\nL\n70\n3\n290\n1\n63\n5\n291\n0\n40\n5.4\n10\n1\n20\n2\n30\n"
              "3\n11\n1\n21\n2\n31\n-7\n50\n45.0\n51\n50.0\n299\n1\n301\nunknown\n");
    const std::string source = with_entities(tags, "AC1032");
    const auto db = load(source);
    {
        AcDbObjectPointer<AcDbLight> open(only_light(*db).objectId(), AcDb::kForWrite);
        open->setIntensity(7.25);
    }
    std::string wanted = source;
    wanted.replace(wanted.find("5.4"), 3, "7.25");
    EXPECT_EQ(save(*db), wanted);
}

TEST(Lights, MadeByAProgramComeBack) {
    AcDbDatabase db;
    auto made = std::make_unique<AcDbLight>();
    made->setName("Sonne");
    made->setLightType(AcDbLight::kDistantLight);
    made->setPosition({1, 2, 3});
    made->setTargetLocation({1, 5, 7});
    made->setLightColor(AcCmEntityColor::trueColor(0x102030));
    made->setHotspotAndFalloff(0.5, 0.75);
    made->setOn(false);
    AcDbObjectId id;
    AcDbObjectPointer<AcDbBlockTableRecord>(db.modelSpaceId(), AcDb::kForWrite)
        ->appendAcDbEntity(std::move(made), id);
    const auto again = load(save(db));
    const AcDbLight& read = only_light(*again);
    EXPECT_EQ(read.name(), "Sonne");
    EXPECT_EQ(read.lightType(), AcDbLight::kDistantLight);
    EXPECT_FALSE(read.isOn());
    EXPECT_EQ(read.lightRgb(), 0x102030U);
    EXPECT_NEAR(read.lightDirection().y, 0.6, 1e-12);
    EXPECT_NEAR(read.lightDirection().z, 0.8, 1e-12);
    EXPECT_NEAR(read.hotspotAngle(), 0.5, 1e-12);
    EXPECT_NEAR(read.falloffAngle(), 0.75, 1e-12);
}

TEST(Lights, AreCountedAndDrawNothing) {
    const auto db = load(with_entities(light("") + light(""), "AC1021"));
    const dxf::DrawingFacts facts = dxf::collect_facts(*db);
    EXPECT_EQ(facts.lights, 2u);
    EXPECT_EQ(facts.modelspace.at("LIGHT"), 2u);
    EXPECT_TRUE(acdbCollectDrawReport(*db).not_drawn.empty()) << "a light has no faces by nature";
    gi::Recorder recorder(db.get());
    recorder.record(&only_light(*db));
    EXPECT_TRUE(recorder.calls.empty());
    AcDbExtents box;
    EXPECT_EQ(only_light(*db).getGeomExtents(box), Acad::eNullExtents);
}

TEST(Lights, PhysicalValuesOfARealOne) {
    const auto path = shared_drawings() / "example_2018.dxf";
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "no " << path;
    }
    for (const char* name : {"example_2000.dxf", "example_2007.dxf", "example_2018.dxf"}) {
        AcDbDatabase db(false);
        std::string error;
        ASSERT_EQ(db.dxfIn(shared_drawings() / name, error), Acad::eOk) << error;
        const AcDbLight& read = only_light(db);
        EXPECT_EQ(read.name(), "Spotlight1");
        EXPECT_EQ(read.lightType(), AcDbLight::kSpotLight);
        EXPECT_EQ(read.lightRgb(), 0x0000ffU) << name;
        EXPECT_EQ(read.intensity(), 5.4);
        const auto info = read.photometrics();
        ASSERT_TRUE(info.has_value()) << name;
        EXPECT_EQ(info->method, AcDbLightPhotometrics::kPeakIntensity);
        EXPECT_EQ(info->physicalIntensity, 1500);
        EXPECT_EQ(info->lampTemperature, 3600);
        EXPECT_EQ(info->lampColorType, AcDbLightPhotometrics::kPreset);
        EXPECT_FALSE(info->hasWebFile);
        EXPECT_EQ(read.webFile(), "");
    }
}

} // namespace
