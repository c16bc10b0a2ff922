// Transforms, units, and the document's file.
#include "toolkit/ts_doc.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::string text_of(const CTsDoc& document) {
    CTsXmlWriter writer;
    writer.Init("", 0, -1);
    document.Write(writer);
    return writer.Text();
}

bool read_text(CTsDoc& document, const std::string& text) {
    CTsXmlReader reader;
    return reader.InitFromText(text, "test") && document.Read(reader);
}

void expect_near(const CTsPoint& a, const CTsPoint& b) {
    EXPECT_NEAR(a.x, b.x, 1e-9);
    EXPECT_NEAR(a.y, b.y, 1e-9);
    EXPECT_NEAR(a.z, b.z, 1e-9);
}

} // namespace

TEST(Doc, TransformsNest) {
    CTsDoc doc;
    doc.SetScale(0.0254);
    EXPECT_EQ(doc.ToTs(CTsPoint{100, 0, 0}), (CTsPoint{2.54, 0, 0}));
    doc.PushTransform(CTsMatrix::Translation({10, 0, 0}));
    doc.PushTransform(CTsMatrix::RotationZ(std::acos(-1) / 2) * CTsMatrix::Scaling(2, 2, -2));
    EXPECT_EQ(doc.TransformDepth(), 2u);
    expect_near(doc.ToTs(CTsPoint{1, 0, 1}), {10 * 0.0254, 2 * 0.0254, -2 * 0.0254});
    const CTsVector v = doc.ToTs(CTsVector{1, 0, 0});
    EXPECT_NEAR(v.Length(), 2 * 0.0254, 1e-12) << "a vector has no translation";
    expect_near(doc.FromTs(doc.ToTs(CTsPoint{3, -4, 5})), {3, -4, 5});
    EXPECT_LT(doc.ModelToWorld().Determinant3(), 0);
    doc.PopTransform();
    expect_near(doc.ToTs(CTsPoint{1, 0, 0}), {11 * 0.0254, 0, 0});
    doc.PopTransform();
    EXPECT_THROW(doc.PopTransform(), std::invalid_argument);
    doc.PushTransform(CTsMatrix::Scaling(1, 1, 0));
    EXPECT_EQ(doc.WorldToModel(), CTsMatrix()) << "a flattened block has no way back";
    doc.ClearTransforms();
    EXPECT_EQ(doc.ModelToWorld(), CTsMatrix());
}

TEST(Doc, InverseKeepsSurveyCoordinates) {
    const CTsMatrix m = CTsMatrix::Translation({512345.678, 5412345.678, 120}) *
                        CTsMatrix::RotationZ(0.3) * CTsMatrix::Scaling(0.001, 0.001, 0.001);
    bool ok = false;
    const CTsPoint p = m.Inverse(&ok) * (m * CTsPoint{1234.5, -987.6, 1});
    EXPECT_TRUE(ok);
    EXPECT_NEAR(p.x, 1234.5, 1e-5);
    EXPECT_NEAR(p.y, -987.6, 1e-5);
    CTsMatrix::Scaling(0, 1, 1).Inverse(&ok);
    EXPECT_FALSE(ok);
}

TEST(Doc, NotifyAsksItsListener) {
    CTsDoc doc;
    EXPECT_TRUE(doc.Notify(4));
    doc.SetNotify([](int code) { return code != 3; });
    EXPECT_TRUE(doc.Notify(2));
    EXPECT_FALSE(doc.Notify(3));
}

TEST(Doc, SlotsAreChecked) {
    CTsDoc doc;
    EXPECT_THROW(doc.SetSkyColor(3, {}), std::invalid_argument);
    EXPECT_THROW(doc.SetEnvironmentMode(4, 0, 1), std::invalid_argument);
    EXPECT_THROW(doc.GetEnvironmentMode(0, 2), std::invalid_argument);
    EXPECT_THROW(doc.SetEnvironmentFile(-1, ""), std::invalid_argument);
}

TEST(DocXml, RoundTrip) {
    CTsDoc doc;
    doc.SetScale(0.0254);
    doc.m_UnitsValue = 4;
    doc.m_View = {
        "Südost <&\">", {1e6 + 0.1, -2, 3}, {0.1, 0.2, 0.3}, {0, 0, 1}, 12.5, 7, false, {}};
    doc.SetSunOn(true);
    doc.m_Sun.SetAzimuth(1.0 / 3), doc.m_Sun.SetAltitude(0.7), doc.m_Sun.SetIntensity(0.8);
    doc.m_Sun.Init();
    doc.SetSkyType(1), doc.SetSkyVisible(true), doc.SetHdrFile("C:\\sky\nname.hdr");
    doc.SetEnvironmentColor(3, 2, {0.1, 0.2, 0.3}), doc.SetEnvironmentMode(3, 1, 2);
    doc.SetGroundPlane(true), doc.SetGroundPlaneElevation(-0.1);
    doc.SetEngine(4), doc.SetNumChannels(7), doc.SetLightBalance(0.25);
    doc.m_Materials.emplace_back().m_Name = "Oak [1]";
    doc.m_Materials.emplace_back().m_Color = {1, 0.5, 0};
    const std::string text = text_of(doc);
    EXPECT_NE(text.find("<TsDoc version=\"1\""), std::string::npos);

    CTsDoc back;
    ASSERT_TRUE(read_text(back, text));
    EXPECT_EQ(back.m_View, doc.m_View);
    EXPECT_EQ(back.m_Sun, doc.m_Sun);
    EXPECT_EQ(back.m_Sky, doc.m_Sky);
    EXPECT_EQ(back.m_Ground, doc.m_Ground);
    EXPECT_EQ(back.m_Render, doc.m_Render);
    EXPECT_EQ(back.m_Environments, doc.m_Environments);
    EXPECT_EQ(back.m_Materials, doc.m_Materials);
    EXPECT_EQ(back.FindMaterial("Oak [1]"), 0);
    EXPECT_EQ(back.m_Scale, 0.0254);
    EXPECT_EQ(text_of(back), text);
}

TEST(DocXml, UnknownThingsSurvive) {
    CTsDoc doc;
    ASSERT_TRUE(read_text(doc, R"(<?xml version="1.0"?>
<TsDoc version="9" Scale="0.5" flavour="sweet">
  <Sun Azimuth="1.25" corona="wide"><Spots count="3">dark</Spots></Sun>
  <Materials kind="all"><Material Name="Oak" grain="fine"><Bump/></Material><Other/></Materials>
  <Clouds><Cloud x="1"/><!-- kept? --></Clouds>
</TsDoc>)"));
    EXPECT_EQ(doc.m_Scale, 0.5);
    EXPECT_EQ(doc.m_Sun.GetAzimuth(), 1.25);
    std::string text = text_of(doc);
    for (const char* kept :
         {"flavour=\"sweet\"", "corona=\"wide\"", "<Spots count=\"3\">dark</Spots>", "kind=\"all\"",
          "grain=\"fine\"", "<Bump />", "<Other />", "<Cloud x=\"1\" />"}) {
        EXPECT_NE(text.find(kept), std::string::npos) << kept;
    }
    EXPECT_NE(text.find("version=\"1\""), std::string::npos) << "our own version";
    CTsDoc again;
    ASSERT_TRUE(read_text(again, text));
    EXPECT_EQ(text_of(again), text) << "nothing doubles, nothing is lost";
}

TEST(DocXml, DamagedValuesKeepTheirDefaults) {
    CTsDoc doc;
    ASSERT_TRUE(read_text(doc, R"(<TsDoc><View Eye="1 2" FieldWidth="nan" perspective="false"/>
<Sun Altitude="inf" Date="99999999999" TimeZone="abc"/><Render Channels=""/></TsDoc>)"));
    EXPECT_EQ(doc.m_View.m_Eye, CTsView().m_Eye);
    EXPECT_EQ(doc.m_View.m_FieldWidth, CTsView().m_FieldWidth);
    EXPECT_FALSE(doc.m_View.m_Perspective);
    EXPECT_EQ(doc.m_Sun.GetAltitude(), CTsSun().GetAltitude());
    EXPECT_EQ(doc.m_Sun.GetDate(), 366);
    EXPECT_EQ(doc.m_Sun.GetTimeZone(), CTsSun().GetTimeZone());
}

TEST(DocXml, WhatIsNoDocumentIsRefused) {
    CTsXmlReader reader;
    EXPECT_FALSE(reader.InitFromText("<a>\n<b>\n</a>", "f.xml"));
    EXPECT_TRUE(reader.Error().starts_with("f.xml: ")) << reader.Error();
    EXPECT_TRUE(reader.Error().ends_with("(line 3)")) << reader.Error();
    EXPECT_FALSE(reader.InitFromText("", "f.xml"));
    EXPECT_FALSE(reader.InitFromText("   just text", "f.xml"));
    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "<a>";
    }
    for (int i = 0; i < 100000; ++i) {
        deep += "</a>";
    }
    EXPECT_FALSE(reader.InitFromText(deep, "f.xml"));
    EXPECT_EQ(reader.Error(), "f.xml: elements are nested too deeply");
    EXPECT_FALSE(reader.Init("/nowhere/f.xml"));
    EXPECT_FALSE(reader.Init("/"));
    CTsDoc doc;
    EXPECT_FALSE(read_text(doc, "<Other/>"));
}

TEST(DocXml, Files) {
    const fs::path folder = fs::temp_directory_path() / ("qorvane_xml_" + std::to_string(getpid()));
    fs::create_directories(folder);
    CTsMaterial material;
    material.m_Name = "Glas grün";
    material.m_Transparency = 0.9;
    std::string error;
    const std::string path = (folder / "m.TsMaterial").string();
    ASSERT_TRUE(material.WriteFile(path, error)) << error;
    CTsMaterial back;
    ASSERT_TRUE(back.ReadFile(path, error)) << error;
    EXPECT_EQ(back, material);
    ASSERT_TRUE(back.WriteFile(path, error));
    ASSERT_TRUE(back.ReadFile(path, error));
    EXPECT_EQ(back, material) << "the version attribute is not carried along";
    EXPECT_FALSE(material.WriteFile((folder / "no/m.TsMaterial").string(), error));
    EXPECT_NE(error.find("No such file"), std::string::npos);
    std::ofstream(folder / "doc.xml") << "<TsDoc/>";
    EXPECT_FALSE(back.ReadFile((folder / "doc.xml").string(), error));
    fs::remove_all(folder);
}
