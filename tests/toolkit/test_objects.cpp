// Files of lights, plants and decals: what is written comes back, what is damaged is brought into
// range, what is not known stays.
#include "toolkit/ts_decal.h"
#include "toolkit/ts_light.h"
#include "toolkit/ts_plant.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <numbers>
#include <typeinfo>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::string text_of(const std::function<void(CTsXmlWriter&)>& write) {
    CTsXmlWriter writer;
    writer.Init("", 0, -1);
    write(writer);
    return writer.Text();
}

std::string text_of(const CTsLight& light) {
    return text_of([&](CTsXmlWriter& writer) { light.Write(writer); });
}

std::unique_ptr<CTsLight> light_from(const std::string& text) {
    CTsXmlReader reader;
    std::string error;
    EXPECT_TRUE(reader.InitFromText(text, "test")) << reader.Error();
    return CTsLight::ReadXml(reader, error);
}

CTsPhotometricWeb small_web() {
    CTsPhotometricWeb web;
    web.m_Horizontal = {0, 1.5707964F};
    web.m_Vertical = {0, 0.5F, 1.1F};
    web.m_Candela = {100, 100, 71.3F, 0.1F, 0, 3e-5F};
    web.m_Multiplier = 0.1F;
    web.m_Symmetry = 3;
    web.m_Name = "Strahler \"groß\".ies";
    return web;
}

} // namespace

TEST(LightXml, EveryKindComesBack) {
    for (int type = 1; type <= 6; ++type) {
        const std::unique_ptr<CTsLight> light = CTsLight::Make(type);
        EXPECT_EQ(light->Type(), type);
        light->m_Name = "Lampe <1>";
        light->m_Location = {1.0 / 3, -2e5, 0.1F};
        light->m_Direction = {0, 0.6, -0.8}, light->m_XAxis = {1, 0, 0};
        light->m_Beam = 0.1, light->m_Field = 0.2;
        light->SetFlux(1700.0F * 20.799999999999997), light->SetColor({1, 0.5, 0.25});
        light->SetChannel(4);
        light->m_On = false, light->m_CastsShadows = false;
        light->m_Visible = true, light->m_HostUnits = true;
        light->m_Web = small_web();
        const std::string text = text_of(*light);
        const std::unique_ptr<CTsLight> back = light_from(text);
        ASSERT_TRUE(back);
        const CTsLight &first = *light, &read = *back;
        EXPECT_TRUE(typeid(read) == typeid(first)) << type;
        EXPECT_EQ(*back, *light);
        EXPECT_EQ(text_of(*back), text);
        const std::unique_ptr<CTsLight> copy = back->Clone();
        const CTsLight& cloned = *copy;
        EXPECT_TRUE(typeid(cloned) == typeid(first)) << type;
    }
}

TEST(LightXml, WhatTheFileTellsDecidesTheKind) {
    // A spot is written with distribution and geometry and may lack the type; a type alone gives
    // the values of its kind.
    EXPECT_NE(dynamic_cast<CTsSpotLight*>(light_from(R"(<TsLight Distribution="2"/>)").get()),
              nullptr);
    const auto linear = light_from(R"(<TsLight Type="4" Length="1.5"/>)");
    EXPECT_NE(dynamic_cast<CTsLinearLight*>(linear.get()), nullptr);
    EXPECT_EQ(linear->m_Length, 1.5);
    EXPECT_EQ(linear->m_Radius, CTsLinearLight().m_Radius);
    const auto distant = light_from(R"(<TsLight Type="2" Distribution="4" Geometry="5"/>)");
    EXPECT_NE(dynamic_cast<CTsPointLight*>(distant.get()), nullptr);
    EXPECT_EQ(distant->m_Geometry, CTsGeometry::infinite);
}

TEST(LightXml, DamagedValuesAreBroughtIntoRange) {
    const auto light = light_from(R"(<TsLight Type="99" Distribution="7" Geometry="-1"
        Location="1e300 nan 0" Direction="0 0 -20" XAxis="0 0 1" Radius="-1" Beam="9" Field="0.1"
        Flux="-5" Color="2 -1 0.5" Channel="-3"><Web Multiplier="1e300"><Horizontal>0</Horizontal>
        <Vertical>0 1</Vertical><Candela>1 2</Candela></Web></TsLight>)");
    EXPECT_EQ(light->m_Distribution, CTsDistribution::uniform);
    EXPECT_EQ(light->m_Geometry, CTsGeometry::point);
    EXPECT_EQ(light->m_Location, CTsPoint()) << "a point with a number missing is no point";
    EXPECT_EQ(light->m_Direction, (CTsVector{0, 0, -1}));
    EXPECT_EQ(light->m_XAxis.z, 0) << "the x axis lies across the direction";
    EXPECT_NEAR(light->m_XAxis.Length(), 1, 1e-12);
    EXPECT_EQ(light->m_Radius, 0);
    EXPECT_GE(light->m_Field, light->m_Beam);
    EXPECT_LE(light->m_Beam, std::numbers::pi);
    EXPECT_EQ(light->m_Flux, 0);
    EXPECT_EQ(light->m_Color, (CTsColor{1, 0, 0.5}));
    EXPECT_GE(light->m_Channel, 0);
    EXPECT_TRUE(std::isfinite(light->m_Web.m_Multiplier));
}

TEST(LightXml, DamagedWebsAreNone) {
    const auto web_of = [](const std::string& lists) {
        return light_from("<TsLight><Web>" + lists + "</Web></TsLight>")->m_Web;
    };
    const std::string h = "<Horizontal>0</Horizontal>", v = "<Vertical>0 1 2</Vertical>";
    EXPECT_FALSE(web_of(h + v + "<Candela>1\n2\t3</Candela>").Empty());
    EXPECT_EQ(web_of(h + v + "<Candela>1 -2 3</Candela>").m_Candela[1], 0) << "no light below none";
    EXPECT_TRUE(web_of(h + v + "<Candela>1 2</Candela>").Empty());
    EXPECT_TRUE(web_of(h + v + "<Candela>1 nan 3</Candela>").Empty());
    EXPECT_TRUE(web_of(h + v + "<Candela>1 x 3</Candela>").Empty());
    EXPECT_TRUE(web_of(h + "<Vertical>0 2 1</Vertical><Candela>1 2 3</Candela>").Empty());
    EXPECT_TRUE(web_of(h + "<Vertical>0 1 9</Vertical><Candela>1 2 3</Candela>").Empty());
    EXPECT_TRUE(web_of("<Horizontal>1</Horizontal>" + v + "<Candela>1 2 3</Candela>").Empty());
    EXPECT_TRUE(web_of("").Empty());
}

TEST(LightXml, UnknownThingsSurvive) {
    const auto light = light_from(R"(<TsLight version="9" glare="high"><Lens k="2"/>
<Web maker="x"><Horizontal>0</Horizontal><Vertical>0 1</Vertical><Candela>5 6</Candela>
<Lamp/></Web></TsLight>)");
    const std::string text = text_of(*light);
    for (const char* kept : {"glare=\"high\"", "<Lens k=\"2\" />", "maker=\"x\"", "<Lamp />"}) {
        EXPECT_NE(text.find(kept), std::string::npos) << kept;
    }
    EXPECT_NE(text.find("version=\"1\""), std::string::npos);
    EXPECT_EQ(text_of(*light_from(text)), text);
}

TEST(LightXml, Files) {
    const fs::path folder =
        fs::temp_directory_path() / ("qorvane_light_" + std::to_string(getpid()));
    fs::create_directories(folder);
    const std::string path = (folder / "light_1.xml").string();
    CTsXmlWriter writer;
    writer.Init(path, 0, -1);
    CTsSpotLight().Write(writer);
    ASSERT_TRUE(writer.Close()) << writer.Error();
    std::string error;
    const auto back = CTsLight::ReadFile(path, error);
    ASSERT_TRUE(back) << error;
    EXPECT_EQ(*back, CTsSpotLight());
    std::ofstream(path) << "<TsDecal/>";
    EXPECT_EQ(CTsLight::ReadFile(path, error), nullptr);
    EXPECT_EQ(error, path + ": is no light file");
    CTsDecal decal;
    EXPECT_TRUE(decal.ReadFile(path, error)) << error;
    std::ofstream(path) << "<TsLight/>";
    EXPECT_FALSE(decal.ReadFile(path, error));
    EXPECT_FALSE(decal.ReadFile((folder / "none").string(), error));
    EXPECT_NE(error.find("No such file"), std::string::npos);
    fs::remove_all(folder);
}

TEST(DecalXml, ComesBackAndIsBroughtIntoRange) {
    CTsDecal decal;
    decal.m_Name = "Schild", decal.m_Image = "bild ä.png";
    decal.m_Location = {1, 2, 3};
    decal.m_XAxis = {0.6, 0.8, 0}, decal.m_YAxis = {0, 0, 1}, decal.m_ZAxis = {0.8, -0.6, 0};
    decal.m_XScale = 2.5, decal.m_YScale = 1.0 / 3, decal.m_ZScale = 0.01;
    decal.m_Opacity = 0.5, decal.m_Glow = 200, decal.m_BothSides = true;
    const auto reread = [](const std::string& text) {
        CTsXmlReader reader;
        CTsDecal back;
        EXPECT_TRUE(reader.InitFromText(text, "test")) << reader.Error();
        back.Read(reader.Root());
        return back;
    };
    const std::string text = text_of([&](CTsXmlWriter& writer) { decal.Write(writer); });
    EXPECT_EQ(reread(text), decal);
    const CTsDecal damaged = reread(R"(<TsDecal XAxis="3 0 0" YAxis="1 0 0" ZAxis="0 0 0"
        XScale="0" YScale="-4" Opacity="7" Glow="inf" frame="gold"/>)");
    EXPECT_EQ(damaged.m_YAxis, CTsDecal().m_YAxis) << "axes in one plane have no way back";
    EXPECT_GT(damaged.m_XScale, 0);
    EXPECT_GT(damaged.m_YScale, 0);
    EXPECT_EQ(damaged.m_Opacity, 1);
    EXPECT_EQ(damaged.m_Glow, 0);
    EXPECT_NE(text_of([&](CTsXmlWriter& writer) { damaged.Write(writer); }).find("frame=\"gold\""),
              std::string::npos);
}

namespace {

CTsPlant odd_plant() {
    CTsPlant plant;
    CTsPlantDefinition& d = plant.m_Definition;
    d.m_Name = "Bergahorn", d.m_Library = "Bäume", d.m_Kind = CTsPlantKind::palm;
    d.m_Height = 12.5, d.m_Diameter = 7, d.m_TrunkHeight = 2, d.m_TrunkDiameter = 0.3;
    d.m_FoliageDensity = 0.5, d.m_BranchDensity = 1.5, d.m_LeafSize = 0.01, d.m_Droop = 0.75;
    d.m_Seed = 4294967295U, d.m_Prune = 2, d.m_Evergreen = true;
    d.m_BarkColor = {0.1, 0.2, 0.3}, d.m_LeafColor[3] = {0.4, 0.5, 0.6};
    d.m_FlowerColor = {0.7, 0.8, 0.9};
    plant.m_DefinitionFile = "TsPlant_3_def.TsPlant";
    plant.m_Location = {5e5, 5e6, 100}, plant.m_Rotation = 1.25, plant.m_Scale = 0.9;
    plant.m_Diameter = 6, plant.m_Season = 3;
    plant.m_CoverNumber = 17, plant.m_CoverDensity = 200, plant.m_CoverSpread = 0.25;
    plant.m_CoverVariation = 0.1, plant.m_CoverSlope = 0.5;
    return plant;
}

void expect_place(const CTsPlant& a, const CTsPlant& b) {
    EXPECT_EQ(a.m_DefinitionFile, b.m_DefinitionFile);
    EXPECT_EQ(a.m_Location, b.m_Location);
    EXPECT_EQ(a.m_Rotation, b.m_Rotation);
    EXPECT_EQ(a.m_Scale, b.m_Scale);
    EXPECT_EQ(a.m_Diameter, b.m_Diameter);
    EXPECT_EQ(a.m_Season, b.m_Season);
}

void expect_cover(const CTsPlant& a, const CTsPlant& b) {
    EXPECT_EQ(a.m_CoverNumber, b.m_CoverNumber);
    EXPECT_EQ(a.m_CoverDensity, b.m_CoverDensity);
    EXPECT_EQ(a.m_CoverSpread, b.m_CoverSpread);
    EXPECT_EQ(a.m_CoverVariation, b.m_CoverVariation);
    EXPECT_EQ(a.m_CoverSlope, b.m_CoverSlope);
}

} // namespace

TEST(PlantXml, FilesComeBack) {
    const CTsPlant plant = odd_plant();
    CTsXmlReader reader;
    CTsPlant back;
    ASSERT_TRUE(reader.InitFromText(text_of([&](auto& writer) { plant.Write(writer); }), "p"));
    EXPECT_STREQ(reader.Root().name(), "TsPlant");
    EXPECT_FALSE(back.ReadPlantDef(reader)) << "a placing is no definition";
    ASSERT_TRUE(back.Read(reader));
    expect_place(back, plant);
    EXPECT_FALSE(back.m_IsCover);
    EXPECT_EQ(back.m_Definition, CTsPlantDefinition());

    ASSERT_TRUE(
        reader.InitFromText(text_of([&](auto& writer) { plant.WritePlantDef(writer); }), "p"));
    EXPECT_FALSE(back.Read(reader));
    ASSERT_TRUE(back.ReadPlantDef(reader));
    EXPECT_EQ(back.m_Definition, plant.m_Definition);
    EXPECT_FALSE(back.m_IsCover);
}

TEST(PlantXml, CoversComeBack) {
    const CTsPlant plant = odd_plant();
    CTsXmlReader reader;
    CTsPlant placed, defined;
    ASSERT_TRUE(reader.InitFromText(text_of([&](auto& writer) { plant.WriteCover(writer); }), "p"));
    ASSERT_TRUE(placed.Read(reader));
    EXPECT_TRUE(placed.m_IsCover);
    expect_place(placed, plant);
    expect_cover(placed, plant);

    const std::string text = text_of([&](auto& writer) { plant.WriteCoverDef(writer); });
    ASSERT_TRUE(reader.InitFromText(text, "p"));
    ASSERT_TRUE(defined.ReadPlantDef(reader));
    EXPECT_TRUE(defined.m_IsCover);
    EXPECT_EQ(defined.m_Definition, plant.m_Definition);
    expect_cover(defined, plant);
    EXPECT_EQ(text_of([&](auto& writer) { defined.WriteCoverDef(writer); }), text)
        << "cover values are not taken for unknown ones";
}

TEST(PlantXml, DamagedValuesAreBroughtIntoRange) {
    CTsXmlReader reader;
    CTsPlant plant;
    ASSERT_TRUE(reader.InitFromText(R"(<TsGroundCoverDef Kind="12" Height="1e9" Diameter="0"
        TrunkHeight="nan" TrunkDiameter="900" FoliageDensity="-1" LeafSize="0" Droop="3"
        Seed="-7" Prune="9" SummerColor="9 9 9" CoverDensity="1e12" CoverVariation="5"
        CoverSlope="-1" mower="red"><Frog/></TsGroundCoverDef>)",
                                    "p"));
    ASSERT_TRUE(plant.ReadPlantDef(reader));
    const CTsPlantDefinition& d = plant.m_Definition;
    EXPECT_EQ(d.m_Kind, CTsPlantKind::broadleaf);
    EXPECT_LE(d.m_Height, 150);
    EXPECT_GT(d.m_Diameter, 0);
    EXPECT_LE(d.m_TrunkDiameter, d.m_Diameter);
    EXPECT_EQ(d.m_FoliageDensity, 0);
    EXPECT_GT(d.m_LeafSize, 0);
    EXPECT_EQ(d.m_Droop, 1);
    EXPECT_EQ(d.m_Seed, 0U);
    EXPECT_EQ(d.m_Prune, 0);
    EXPECT_EQ(d.m_LeafColor[1], (CTsColor{1, 1, 1}));
    EXPECT_LE(plant.m_CoverDensity, 1e5);
    EXPECT_LT(plant.m_CoverVariation, 1);
    EXPECT_EQ(plant.m_CoverSlope, 0);
    const std::string text = text_of([&](auto& writer) { plant.WriteCoverDef(writer); });
    EXPECT_NE(text.find("mower=\"red\""), std::string::npos);
    EXPECT_NE(text.find("<Frog />"), std::string::npos);
    ASSERT_TRUE(reader.InitFromText("<TsPlant Scale=\"0\" Season=\"-2\" Diameter=\"-1\"/>", "p"));
    ASSERT_TRUE(plant.Read(reader));
    EXPECT_GT(plant.m_Scale, 0);
    EXPECT_EQ(plant.m_Season, 1);
    EXPECT_EQ(plant.m_Diameter, 0);
}
