// What stands beside the geometry: lights, plants, covers, decals, their files and their records.
#include "extraction_fixture.h"

#include "host/db/dictionary.h"
#include "host/db/group.h"
#include "host/db/image.h"
#include "host/db/light.h"
#include "omb/base/message_box.h"
#include "omb/base/png_file.h"
#include "omb_qorvane/the_app.h"
#include "omb_qorvane/ts_ac_binary_data.h"
#include "omb_qorvane/ts_ac_decals.h"
#include "omb_qorvane/ts_ac_light.h"
#include "omb_qorvane/ts_ac_object_props.h"
#include "omb_qorvane/ts_ac_plant.h"
#include "toolkit/ts_material.h"

#include <fstream>
#include <numbers>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class Things : public ExtractionTest {
protected:
    AcDbLight& light(AcDbLight::LightType type, const AcGePoint3d& at) {
        AcDbLight& made = make<AcDbLight>({});
        made.setLightType(type);
        made.setPosition(at);
        made.setTargetLocation(at - AcGeVector3d{0, 0, 5});
        return made;
    }
    std::unique_ptr<CTsLight> light_file(int number) {
        std::string error;
        auto read = CTsLight::ReadFile(
            (folder / "QorBatch_Lights" / ("light_" + std::to_string(number) + ".xml")).string(),
            error);
        EXPECT_NE(read, nullptr) << error;
        return read != nullptr ? std::move(read) : std::make_unique<CTsLight>();
    }
    AcDbBlockReference& plant(const std::string& name, const AcGePoint3d& at) {
        const AcDbObjectId sign = block("Sign of " + name);
        make<AcDbLine>(sign, AcGePoint3d{0, 0, 0}, AcGePoint3d{1, 0, 0});
        AcDbBlockReference& reference = insert(sign, {}, at);
        CTsAcPlant record;
        record.m_Definition.m_Name = name;
        record.m_Definition.m_Diameter = 4;
        record.m_Season = 2;
        EXPECT_TRUE(record.save_to_entity(reference));
        return reference;
    }
    AcDbRasterImage& picture(const std::string& source) {
        AcDbObjectId id;
        AcDbObjectPointer<AcDbDictionary> named(db().namedObjectsDictionaryId(), AcDb::kForWrite);
        auto definition = std::make_unique<AcDbRasterImageDef>();
        definition->setSourceFileName(source);
        definition->setSize({200, 100});
        named->setAt("picture " + std::to_string(named->numEntries()), std::move(definition), id);
        AcDbRasterImage& image = make<AcDbRasterImage>({});
        image.setImageSize({200, 100});
        image.setImageDefId(id);
        EXPECT_EQ(image.setOrientation({1, 2, 3}, {4, 0, 0}, {0, 0, 2}), Acad::eOk);
        return image;
    }
    void save_drawing_as(const fs::path& path) {
        fs::create_directories(path.parent_path());
        db().setFilename(path.string());
    }
    static void write_picture(const fs::path& path) {
        std::string error;
        const std::vector<std::uint8_t> pixels(16, 200);
        ASSERT_TRUE(write_png_file(path.string(), 2, 2, pixels, error)) << error;
    }
};

TEST_F(Things, HostLightsOfEachType) {
    db().setInsunits(4); // the drawing's unit has no part in it
    light(AcDbLight::kPointLight, {10, 20, 30}).setIntensity(2);
    AcDbLight& spot = light(AcDbLight::kSpotLight, {1, 2, 3});
    spot.setHotspotAndFalloff(std::numbers::pi / 3, std::numbers::pi / 2);
    spot.setLightColor(AcCmEntityColor::trueColor(0xff8000));
    light(AcDbLight::kDistantLight, {0, 0, 100});
    light(AcDbLight::kPointLight, {5, 5, 5}).setOn(false);
    extract();
    EXPECT_EQ(body(), "#;\nLTYP;1\nLORG;(3.048000, 6.096000, 9.144000)\nLGHT;1\n"
                      "#;\nLTYP;2\nLORG;(0.304800, 0.609600, 0.914400)\nLGHT;2\n"
                      "#;\nLTYP;4\nLORG;(0.000000, 0.000000, 30.480000)\nLGHT;3\n");
    const auto point = light_file(1), cone = light_file(2), distant = light_file(3);
    EXPECT_EQ(point->m_Distribution, CTsDistribution::uniform);
    EXPECT_EQ(point->m_Geometry, CTsGeometry::point);
    EXPECT_TRUE(point->m_HostUnits);
    EXPECT_DOUBLE_EQ(point->m_Flux, 3400 * 20.799999999999997);
    EXPECT_EQ(point->m_Location.x, static_cast<double>(static_cast<float>(10 * 0.3048)));
    EXPECT_EQ(cone->m_Distribution, CTsDistribution::spot);
    EXPECT_EQ(cone->m_Geometry, CTsGeometry::disc);
    EXPECT_NEAR(cone->m_Beam, std::numbers::pi / 6, 1e-12);
    EXPECT_NEAR(cone->m_Field, std::numbers::pi / 4, 1e-12);
    EXPECT_EQ(cone->m_Color, (CTsColor{1, 128 / 255.0, 0}));
    EXPECT_EQ(cone->m_Direction, (CTsVector{0, 0, -1}));
    EXPECT_EQ(distant->m_Distribution, CTsDistribution::parallel);
    EXPECT_EQ(distant->m_Geometry, CTsGeometry::infinite);
    EXPECT_FALSE(fs::exists(folder / "QorBatch_Lights" / "light_4.xml"));
}

TEST_F(Things, LightsInBlocksShineWhereTheyStand) {
    const AcDbObjectId lamp = block("lamp");
    add(std::make_unique<AcDbLight>(), lamp).setPosition({1, 0, 0});
    insert(lamp, {}, {10, 0, 0}).setRotation(std::numbers::pi / 2);
    extract();
    EXPECT_THAT(body(), HasSubstr("LORG;(3.048000, 0.304800, 0.000000)"));
}

TEST_F(Things, AWebLightKeepsItsDistribution) {
    save_drawing_as(home / "drawings" / "house.dxf");
    std::ofstream(home / "drawings" / "lamp.ies")
        << "IESNA:LM-63-2002\nTILT=NONE\n1 -1 1 2 1 1 2 0 0 0\n1 1 10\n0 90\n0\n100 50\n";
    light(AcDbLight::kWebLight, {0, 0, 3}).setWebFile("C:\\lamps\\lamp.ies");
    light(AcDbLight::kWebLight, {0, 0, 4}).setWebFile("lost.ies");
    extract();
    EXPECT_THAT(body(), HasSubstr("LTYP;4\nLORG;(0.000000, 0.000000, 0.914400)\nLGHT;1\n"));
    EXPECT_EQ(light_file(1)->m_Web.m_Candela, (std::vector<float>{100, 50}));
    const std::vector<float> bulb = light_file(2)->m_Web.m_Candela;
    ASSERT_EQ(bulb.size(), 2U);
    EXPECT_EQ(bulb[0], bulb[1]) << "the same all round";
    EXPECT_NEAR(bulb[0], 1700 * 20.8 / (4 * std::numbers::pi), 0.1);
}

TEST_F(Things, ALightFileThatWillNotGoIsToldAndLeftOut) {
    light(AcDbLight::kPointLight, {0, 0, 0});
    light(AcDbLight::kPointLight, {1, 0, 0});
    square();
    first_use();
    ASSERT_EQ(plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY), 1);
    // The starts delete the folder of lights; the extraction alone meets what stands there.
    const fs::path taken = folder / "QorBatch_Lights" / "light_1.xml";
    fs::remove(taken);
    fs::create_directories(taken / "full");
    theApp().omb_export.next_light_number = 0;
    theApp().omb_export.OMB_ExtractGeometryandRender(EXTRACT_FOLDER_ONLY, nullptr, nullptr, "");
    EXPECT_THAT(port.written,
                HasSubstr("\nRender Error: Cannot save light file: " + taken.string()));
    EXPECT_THAT(body(), Not(HasSubstr("LGHT;1\n")));
    EXPECT_THAT(body(), HasSubstr("LGHT;2\n"));
    EXPECT_THAT(checker::check_stream(file("batch_file.txt")).faults,
                testing::Contains(HasSubstr("LGHT")))
        << "the checker wants numbers without gaps, which this folder cannot have";
}

TEST_F(Things, LampsCarryTheirLight) {
    const AcDbObjectId lamp = block("lamp");
    square(lamp);
    AcDbBlockReference& stands = insert(lamp, {}, {10, 20, 0});
    CTsAcLight record;
    record.m_Flux = 800;
    record.m_Channel = 4;
    record.m_Placing = {0, 0, 2, 0, 0, 0, 1, 0, 0, 0};
    record.m_ImplicitSource = std::make_shared<CTsLight>();
    ASSERT_TRUE(record.save_to_entity(stands));
    const checker::stream stream = extract();
    EXPECT_THAT(body(), HasSubstr("LTYP;1\nLORG;(0.010500, 0.020500, 0.002000)\nLGHT;1\n"));
    EXPECT_THAT(body(), HasSubstr("LGHT;2\n")) << "the lamp's own glow";
    ASSERT_EQ(stream.meshes.size(), 1U);
    EXPECT_EQ(stream.meshes[0].light, 1);
    EXPECT_EQ(light_file(1)->m_Flux, 800);
    EXPECT_FALSE(light_file(1)->m_HostUnits);
    EXPECT_EQ(theApp().omb_export.num_lighting_channels, 4);
}

TEST_F(Things, ALightRecordComesBackFromItsEntity) {
    AcDbBlockReference& lamp = insert(block("lamp"));
    CTsAcLight record;
    record.m_Name = "Web & <lamp>";
    record.m_Flags = -3;
    record.m_Placing[9] = 0.1;
    record.m_Web.m_Horizontal = {0};
    record.m_Web.m_Vertical = {0, 1};
    record.m_Web.m_Candela = {5, 7};
    ASSERT_TRUE(record.save_to_entity(lamp));
    CTsAcLight read;
    ASSERT_TRUE(read.load_from_entity(lamp, false));
    EXPECT_EQ(read.m_Name, record.m_Name);
    EXPECT_EQ(read.m_Flags, -3);
    EXPECT_EQ(read.m_Placing, record.m_Placing);
    EXPECT_EQ(read.m_Web.m_Candela, record.m_Web.m_Candela);
    EXPECT_NE(Ts3AcReadBinaryDataFromEntity(lamp, "TS3_IES", nullptr, 0), 0U);
    const AcDbValues list = lamp.xData("TessaraLighting");
    ASSERT_EQ(list.size(), 6U);
    EXPECT_EQ(list[2].code, 1013);
    Ts3AcWriteBinaryDataToEntity(lamp, "TessaraLighting", std::string_view("<nothing"));
    EXPECT_FALSE(CTsAcLight().load_from_entity(lamp, false));
    EXPECT_FALSE(CTsAcLight().load_from_entity(insert(block("plain")), true));
}

TEST_F(Things, LightsOfOlderDrawings) {
    const AcDbObjectId lamp = block("lamp");
    square(lamp);
    AcDbBlockReference& stands = insert(lamp);
    const auto old = [](int type) {
        return AcDbValues{{1001, std::string("Tessara3")},
                          {1070, std::int64_t{2021}},
                          {1070, std::int64_t{type}},
                          {1070, std::int64_t{2022}},
                          {1010, AcGePoint3d{0, 0, 3}},
                          {1070, std::int64_t{2015}},
                          {1040, 640.0}};
    };
    const std::pair<int, int> types[] = {{1, 1}, {2, 3}, {3, 4}, {6, 2}};
    for (const auto& [stored, type] : types) {
        stands.setXData(old(stored));
        CTsAcLight light;
        ASSERT_TRUE(light.load_from_entity(stands, true)) << stored;
        EXPECT_EQ(light.Type(), type) << stored;
        EXPECT_EQ(light.m_Flux, 640);
        EXPECT_EQ(light.m_Placing[2], 3);
    }
    stands.setXData(old(4));
    EXPECT_FALSE(CTsAcLight().load_from_entity(stands, true));
    EXPECT_FALSE(TsAcIsOldLight(stands));
}

TEST_F(Things, LibraryPlants) {
    AcDbBlockReference& oak = plant("oak", {7, 8, 0.5});
    oak.setRotation(std::numbers::pi / 4);
    oak.setScaleFactors({1, 1, 1.5});
    plant("elm", {1, 1, 0});
    extract();
    EXPECT_THAT(body(),
                HasSubstr("#;TsPlant\n#;PLANT\nPLLB;TsPlant\nPLNM;TsPlant_0_def.TsPlant\n"
                          "PLLC;(7,8,0.5)\nPLDM;6\nPLSN;2\nPLRT;45\nPLSC;1.5\nPLNT;1\n"
                          "#;TsPlant\n#;PLANT\nPLLB;TsPlant\nPLNM;TsPlant_1_def.TsPlant\n"));
    EXPECT_THAT(body(), Not(HasSubstr("MESH;"))) << "its sign in the plan is not drawn";
    CTsXmlReader placing, definition;
    ASSERT_TRUE(placing.Init((folder / "Plants" / "TsPlant_0.TsPlant").string()));
    ASSERT_TRUE(definition.Init((folder / "Plants" / "TsPlant_0_def.TsPlant").string()));
    CTsPlant read;
    EXPECT_TRUE(read.Read(placing));
    EXPECT_TRUE(read.ReadPlantDef(definition));
    EXPECT_EQ(read.m_Definition.m_Name, "oak");
    EXPECT_EQ(read.m_DefinitionFile, "TsPlant_0_def.TsPlant");
}

TEST_F(Things, PlantsInGroupsAndOlderPlants) {
    AcDbBlockReference& grouped = plant("oak", {});
    AcDbObjectId id;
    AcDbObjectPointer<AcDbDictionary> named(db().namedObjectsDictionaryId(), AcDb::kForWrite);
    if (named->getAt("ACAD_GROUP", id) != Acad::eOk) {
        named->setAt("ACAD_GROUP", std::make_unique<AcDbDictionary>(), id);
    }
    AcDbObjectPointer<AcDbDictionary> groups(id, AcDb::kForWrite);
    auto group = std::make_unique<AcDbGroup>();
    group->append(grouped.objectId());
    AcDbObjectId made;
    ASSERT_EQ(groups->setAt("grove", std::move(group), made), Acad::eOk);
    AcDbBlockReference& old = insert(block("old plant"));
    old.setXData(
        {{1001, std::string("Tessara3")}, {1070, std::int64_t{3199}}, {1070, std::int64_t{0}}});
    AcDbBlockReference& none = insert(block("no plant"));
    none.setXData(
        {{1001, std::string("Tessara3")}, {1070, std::int64_t{3199}}, {1070, std::int64_t{-1}}});
    extract();
    EXPECT_EQ(body(), "#;Old TS3 TsPlant\n");
}

TEST_F(Things, GroundCoversAndDecalsShareACounter) {
    AcDbFace &lawn = square(), &wall = square(), &meadow = square();
    CTsAcPlant cover;
    cover.m_Definition.m_Name = "lawn";
    cover.m_CoverNumber = 3;
    ASSERT_TRUE(cover.save_cover(lawn));
    CTsAcDecalList decals;
    decals.resize(2);
    ASSERT_TRUE(decals.Save(wall));
    cover.m_IsCover = true;
    ASSERT_TRUE(cover.save_to_entity(meadow));
    extract();
    const std::string text = body();
    EXPECT_THAT(text,
                HasSubstr("THICK;1\nSHDW;1\nGCOR;3\nGNDC;AGroundCover_0_def.TsGroundCover\n"));
    EXPECT_THAT(text, HasSubstr("DECL;OMB_Decal_1.TsDecal\n"));
    EXPECT_THAT(text, HasSubstr("DECL;OMB_Decal_2.TsDecal\n"));
    EXPECT_THAT(text, HasSubstr("GNDC;AGroundCover_3_def.TsGroundCover\n"));
    for (const char* name : {"Plants/AGroundCover_0.TsGroundCover", "Decals/OMB_Decal_2.TsDecal",
                             "Plants/AGroundCover_3_def.TsGroundCover"}) {
        EXPECT_TRUE(fs::exists(folder / name)) << name;
    }
}

TEST_F(Things, ACoverMayBeThatOfAnotherEntity) {
    AcDbFace &lawn = square(), &patch = square();
    CTsAcPlant cover;
    cover.m_Definition.m_Name = "lawn";
    ASSERT_TRUE(cover.save_cover(lawn));
    ASSERT_EQ(patch.createExtensionDictionary(), Acad::eOk);
    {
        AcDbObjectPointer<AcDbDictionary> dictionary(patch.extensionDictionary(), AcDb::kForWrite);
        auto record = std::make_unique<AcDbXrecord>();
        const std::string handle = fmt::format("{:X}", lawn.getAcDbHandle().value());
        record->setFromRbChain({{340, handle}});
        AcDbObjectId id;
        dictionary->setAt("TsAcGroundcoverInstance", std::move(record), id);
    }
    EXPECT_EQ(TsAcCoverOf(patch), lawn.objectId());
    extract();
    EXPECT_THAT(body(), HasSubstr("GNDC;AGroundCover_1_def.TsGroundCover\n"));
}

TEST_F(Things, DecalsStandAheadOfAPreambleAndInsideAShells) {
    CTsAcDecalList decals;
    decals.resize(1);
    decals[0].m_Location = {1, 2, 3};
    decals[0].m_XScale = 2;
    AcDbLine& line = make<AcDbLine>({}, AcGePoint3d{0, 0, 0}, AcGePoint3d{1, 0, 0});
    line.setThickness(1);
    ASSERT_TRUE(decals.Save(line));
    ASSERT_TRUE(decals.Save(square()));
    extract();
    const std::string block = "#;\nDECO;(0.001000,0.002000,0.003000)\n"
                              "DECX;(1.000000,0.000000,0.000000)\n"
                              "DECY;(0.000000,1.000000,0.000000)\n"
                              "DECZ;(0.000000,0.000000,1.000000)\n"
                              "DECS;(0.002000,0.001000,0.000050)\n";
    EXPECT_THAT(body(), HasSubstr(block + "DECL;OMB_Decal_0.TsDecal\n#;\n#;ACAD LINE;\nMESH;\n"));
    EXPECT_THAT(body(),
                HasSubstr("CULL;0\nMPUV;0\n" + block + "DECL;OMB_Decal_1.TsDecal\n#;\nTHICK;1\n"));
}

TEST_F(Things, DecalsThatCannotBeWritten) {
    CTsAcDecalList decals;
    decals.resize(1);
    ASSERT_TRUE(decals.Save(square()));
    first_use();
    theApp().omb_export.get_batch_folder();
    const fs::path taken = folder / "Decals" / "OMB_Decal_0.TsDecal";
    fs::create_directories(taken / "full");
    extract();
    EXPECT_THAT(body(), HasSubstr("MPUV;0\n#;DECAL not written\nTHICK;1\n"));
}

TEST_F(Things, PicturesOfTheDrawing) {
    save_drawing_as(home / "drawings" / "house.dxf");
    fs::create_directories(home / "drawings" / "img");
    write_picture(home / "drawings" / "img" / "sign.png");
    write_picture(home / "elsewhere.png");
    picture(".\\img\\sign.png");
    picture((home / "elsewhere.png").string());
    picture("Z:\\lost\\lost.tif");
    picture(".\\lost.png");
    extract();
    const std::string text = body(), decals = (folder / "Decals").string();
    const std::string places = "#;\nDEC1;(0.001000,0.002000,0.003000)\n"
                               "DEC2;(0.005000,0.002000,0.003000)\nDECW;0.004000\nDECH;0.002000\n"
                               "DECN;(0.000000,-1.000000,0.000000)\n";
    EXPECT_THAT(text, HasSubstr("#;DECAL, sourceFileName: .\\img\\sign.png\n"
                                "#;Found relative image: "));
    EXPECT_THAT(text, HasSubstr(" -> " + decals + "/sign.png\n" + places + "DECL;sign.png\n#;\n"));
    EXPECT_THAT(text, HasSubstr("#;CopyFile: " + (home / "elsewhere.png").string() + " -> " +
                                decals + "/elsewhere.png\n" + places + "DECL;elsewhere.png\n#;\n"));
    EXPECT_THAT(text, HasSubstr("#;DECAL, sourceFileName: Z:\\lost\\lost.tif\n"
                                "#;Could not get ATIL Image; Z:\\lost\\lost.tif\n"
                                "#;DECL; Not Found: Z:\\lost\\lost.tif\n"));
    EXPECT_THAT(text, HasSubstr("#;Relative image not found: "));
    EXPECT_TRUE(fs::exists(folder / "Decals" / "sign.png"));
    EXPECT_THAT(port.written, HasSubstr("2 x raster image without a picture"));
}

TEST_F(Things, PicturesThatOnlyTheHostCanRead) {
    acdbSetImageLoader([](const fs::path& path, AcDbImageData& data) {
        data.width = data.height = 1;
        data.rgba = {1, 2, 3, 255};
        return path.filename() == "scan.tif";
    });
    save_drawing_as(home / "drawings" / "house.dxf");
    std::ofstream(home / "drawings" / "scan.tif") << "not really";
    picture("X:\\archive\\scan.tif");
    extract();
    acdbSetImageLoader({});
    EXPECT_THAT(body(), HasSubstr("#;Saved ATIL Image; " + (folder / "Decals").string() +
                                  "/DECAL - scan.png\n"));
    EXPECT_THAT(body(), HasSubstr("DECL;DECAL - scan.png\n"));
    EXPECT_TRUE(fs::exists(folder / "Decals" / "DECAL - scan.png"));
}

TEST_F(Things, NothingIsWrittenInAScan) {
    light(AcDbLight::kPointLight, {});
    plant("oak", {});
    CTsAcDecalList decals;
    decals.resize(1);
    ASSERT_TRUE(decals.Save(square()));
    first_use();
    theApp().omb_export.OMB_ExtractGeometryandRender(EXTRACT_SCAN, nullptr, nullptr, "");
    for (const char* name : {"QorBatch_Lights", "Plants", "Decals"}) {
        EXPECT_TRUE(!fs::exists(folder / name) || fs::is_empty(folder / name)) << name;
    }
}

TEST_F(Things, NumbersThatAreNoneLeaveTheThingOut) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    light(AcDbLight::kPointLight, {nan, 0, 0});
    plant("oak", {0, nan, 0});
    CTsAcDecalList decals;
    decals.resize(1);
    ASSERT_TRUE(decals.Save(make<AcDbFace>({}, AcGePoint3d{nan, 0, 0}, AcGePoint3d{1, 0, 0},
                                           AcGePoint3d{1, 1, 0}, AcGePoint3d{0, 1, 0})));
    extract();
    EXPECT_THAT(body(), Not(HasSubstr("nan")));
}

TEST_F(Things, MaterialsOfTheToolkit) {
    const AcDbObjectId brass = material("Brass", 0xffcc00), steel = material("Steel", 0x808080);
    CTsMaterial attached;
    attached.m_Name = "Polished brass";
    CTsXmlWriter writer;
    writer.Init("", 1, -1);
    attached.Write(writer);
    {
        const AcDbObjectPointer<AcDbMaterial> holder(brass, AcDb::kForWrite);
        ASSERT_TRUE(Ts3AcWriteBinaryDataToEntity(*holder, "TsAcMaterial", writer.Text()));
    }
    square().setMaterial(brass);
    square().setMaterial(steel);
    for (AcDbFace* face : {&square(), &square()}) {
        face->setColor(AcCmEntityColor::index(1));
        face->setMaterial(brass);
    }
    const checker::stream stream = extract();
    ASSERT_EQ(stream.meshes.size(), 4U);
    EXPECT_EQ(stream.meshes[2].material, "Tessara-Polished brass");
    EXPECT_EQ(stream.materials.at(stream.meshes[2].material_index),
              "Tessara-Polished%20brass.TsMaterial");
    EXPECT_TRUE(fs::exists(folder / "Materials" / "Tessara-Polished%20brass.TsMaterial"));
    EXPECT_FALSE(fs::exists(folder / "Materials" / "Brass.TsMaterial"));
}

TEST_F(Things, TheAsuniCodeWritesThirteenMaterialsOfTheToolkit) {
    constexpr int all = 15, most = 13;
    for (int i = 0; i < all; ++i) {
        const std::string name = "Holder " + std::to_string(i);
        const AcDbObjectPointer<AcDbMaterial> holder(material(name, 0x808080), AcDb::kForWrite);
        CTsMaterial attached;
        attached.m_Name = "Own " + std::to_string(i);
        CTsXmlWriter writer;
        writer.Init("", 1, -1);
        attached.Write(writer);
        ASSERT_TRUE(Ts3AcWriteBinaryDataToEntity(*holder, "TsAcMaterial", writer.Text()));
    }
    square();
    first_use();
    cl_omb_export& exporter = theApp().omb_export;
    const auto written = [&exporter](const std::string& beginning) {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(exporter.materials_folder)) {
            count += entry.path().filename().string().starts_with(beginning) ? 1 : 0;
        }
        return count;
    };
    exporter.green_button_app = GREEN_BUTTON_NONE;
    ASSERT_NE(exporter.write_params_files(), "");
    EXPECT_EQ(written("Tessara-Own"), all);
    EXPECT_EQ(written("Holder"), 0);
    exporter.green_button_app = GREEN_BUTTON_ASUNI;
    ASSERT_NE(exporter.write_params_files(), "");
    EXPECT_EQ(written("Tessara-Own"), most);
    EXPECT_EQ(written("Holder"), all - most);
    exporter.green_button_app = GREEN_BUTTON_NONE;
}

/// What a drawable's traits are while it draws.
struct seen_traits {
    std::uint32_t flags = 0;
    float scale = 0;
    int mapping = 0;
    double mapping_scale = 0;
};

TEST_F(Things, ObjectProperties) {
    const auto properties = [](AcDbFace& face) {
        CTsAcSubEntityTraits traits;
        TsAcObjectProperties(face, traits);
        return seen_traits{traits.m_Flags, traits.object_scale, traits.mapping.m_Type,
                           traits.mapping.m_Scale};
    };
    const std::pair<std::uint32_t, std::uint32_t> bits[] = {{0, 64},
                                                            {1, 0},
                                                            {1 | 2, 32},
                                                            {1 | 64, 128},
                                                            {1 | 128, 0x100},
                                                            {1 | 0x100, 0x200},
                                                            {1 | 0x1000, 0x400},
                                                            {1 | 0x800, 8},
                                                            {1 | 0x400, 4},
                                                            {1 | 0x200, 16},
                                                            {1 | 0x2000, 0x800},
                                                            {1 | 0x4000, 0x1000},
                                                            {1 | 0x8000, 0x2000},
                                                            {1 | 0x10000, 0x4000}};
    for (const auto& [stored, flags] : bits) {
        AcDbFace& face = square();
        ASSERT_TRUE((CTsAcObjectProps{stored, 2.5F}.Save(face)));
        EXPECT_EQ(properties(face).flags, flags) << stored;
        EXPECT_EQ(properties(face).scale, 2.5F);
    }
    const std::pair<int, int> kinds[] = {{2, 4}, {3, 5}, {4, 3}, {1, 2}, {9, 2}};
    for (const auto& [kind, type] : kinds) {
        AcDbFace& face = square();
        face.setXData({{1001, std::string("Tessara3")},
                       {1070, std::int64_t{3000}},
                       {1071, std::int64_t{4 | 0x800 | 0x2000}},
                       {1070, std::int64_t{3050}},
                       {1070, std::int64_t{kind}},
                       {1070, std::int64_t{3053}},
                       {1040, 0.25}});
        EXPECT_EQ(properties(face).mapping, type) << kind;
        EXPECT_EQ(properties(face).flags, 32U | 4U | 8U);
        EXPECT_EQ(properties(face).mapping_scale, 0.25);
    }
    EXPECT_EQ(properties(square()).flags, 0U) << "nothing attached";
}

TEST_F(Things, AttachedBytes) {
    AcDbFace& face = square();
    std::vector<unsigned char> bytes(1000);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<unsigned char>(i * 7);
    }
    ASSERT_TRUE(Ts3AcWriteBinaryDataToEntity(face, "block", bytes));
    EXPECT_EQ(Ts3AcReadBinaryDataFromEntity(face, "block", nullptr, 0), 1000U);
    std::vector<unsigned char> some(10, 0xee);
    EXPECT_EQ(Ts3AcReadBinaryDataFromEntity(face, "BLOCK", some.data(), 9), 1000U);
    EXPECT_EQ(some[8], bytes[8]);
    EXPECT_EQ(some[9], 0xee);
    EXPECT_EQ(Ts3AcReadBinaryDataFromEntity(face, "other", nullptr, 0), 0U);
    ASSERT_TRUE(Ts3AcWriteBinaryDataToEntity(face, "block", std::vector<unsigned char>()));
    EXPECT_FALSE(CTsAcBinaryData::Has(face, "block"));
    EXPECT_FALSE(Ts3AcWriteBinaryDataToEntity(face, "block",
                                              std::vector<unsigned char>(ts_binary_limit + 1)));
}

} // namespace
