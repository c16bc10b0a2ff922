// Lights, plants, covers, decals and pictures, and the files that they name.
#include "apps/make_samples/everything.h"

#include "host/db/dictionary.h"
#include "host/db/faces.h"
#include "host/db/image.h"
#include "host/db/light.h"
#include "host/db/polylines.h"
#include "omb/base/png_file.h"
#include "omb_qorvane/ts_ac_binary_data.h"
#include "omb_qorvane/ts_ac_decals.h"
#include "omb_qorvane/ts_ac_light.h"
#include "omb_qorvane/ts_ac_object_props.h"
#include "omb_qorvane/ts_ac_plant.h"
#include "toolkit/ts_material.h"

#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace make_samples {

namespace {

constexpr const char* kPicture = "everything_picture.png";
constexpr const char* kPhotometry = "everything_downlight.ies";

AcGePoint3d mm(const Point& p) { return {1000 * p.x, 1000 * p.y, 1000 * p.z}; }

void require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(what);
    }
}

AcDbLight& light(Drawing& drawing, const char* name, AcDbLight::LightType type, const Point& at,
                 const Point& target) {
    auto& made = drawing.model().make<AcDbLight>(Look{"0"});
    made.setName(name);
    made.setLightType(type);
    made.setPosition(mm(at));
    made.setTargetLocation(mm(target));
    return made;
}

void draw_host_lights(Drawing& drawing) {
    light(drawing, "Bulb", AcDbLight::kPointLight, {4.6, 1.2, 2.4}, {4.6, 1.2, 0})
        .setLightColor(AcCmEntityColor::trueColor(0xffd8a8));
    AcDbLight& spot =
        light(drawing, "Spot", AcDbLight::kSpotLight, {3.6, 3.6, 3.2}, {3.6, 4.8, 0.4});
    spot.setHotspotAndFalloff(radians(30), radians(50));
    light(drawing, "Moon", AcDbLight::kDistantLight, {-10, -20, 30}, {0, 0, 0}).setIntensity(0.002);
    AcDbLight& web =
        light(drawing, "Downlight", AcDbLight::kWebLight, {11.4, 8.3, 2.3}, {11.4, 8.3, 0});
    web.setWebFile(kPhotometry);
    light(drawing, "Switched off", AcDbLight::kPointLight, {0, 0, 2}, {0, 0, 0}).setOn(false);
}

/// A floor lamp: a block with a light record, whose shade is the lamp's geometry.
void draw_lamp(Drawing& drawing) {
    Space lamp = drawing.block("Floor lamp");
    lamp.circle({0, 0, 0}, 0.02, 1.3, {"0"});
    lamp.mesh(turned({{0.14, 0}, {0.14, 0.03}}, 24), {"0"});
    lamp.circle({0, 0, 1.1}, 0.16, 0.25, {"0"});
    AcDbBlockReference& stands =
        drawing.model().insert("Floor lamp", Placement({-0.9, 7.6, 0}), {"Exhibits"});
    CTsAcLight record;
    record.m_Name = "Floor lamp";
    record.m_Color = {1, 0.86, 0.66};
    record.m_Flux = 1400;
    record.m_Placing = {0, 0, 550, 0, 0, -500, 1, 0, 0, 0};
    record.m_ImplicitSource = std::make_shared<CTsLight>();
    record.m_ImplicitSource->m_Flux = 200;
    require(record.save_to_entity(stands), "light record");
}

void draw_plant(Drawing& drawing, const char* name, int season, const Point& at, double size) {
    const std::string block_name = std::string("Plant ") + name;
    if (!drawing.has_block(block_name)) {
        drawing.block(block_name).circle({0, 0, 0}, 0.5, 0, {"0"}); // its sign in the plan
    }
    AcDbBlockReference& stands = drawing.model().insert(block_name, Placement(at, 35, size), {"0"});
    CTsAcPlant plant;
    plant.m_Definition = CTsPlantDefinition::Named(name);
    plant.m_Season = season;
    require(plant.save_to_entity(stands), "plant record");
}

void draw_plants(Drawing& drawing) {
    draw_plant(drawing, "birch", 1, {1.0, 7.6, 0}, 0.38);
    draw_plant(drawing, "maple", 2, {4.2, 7.6, 0}, 0.34);
    draw_plant(drawing, "pine", 3, {13.0, 6.6, 0}, 0.3);
    draw_plant(drawing, "box ball", 1, {9.4, 8.0, 0}, 1);
    draw_plant(drawing, "lavender", 1, {9.6, 7.2, 0}, 1);
    drawing.block("Plant by a later hand").insert("Plant lavender", Placement(), {"0"});
    AcDbBlockReference& old =
        drawing.model().insert("Plant by a later hand", Placement({9.6, 8.1, 0}), {"0"});
    old.setXData({{1001, std::string(ts_data::old_application)},
                  {1070, std::int64_t{3199}},
                  {1070, std::int64_t{0}},
                  {1070, std::int64_t{3201}},
                  {1000, std::string("Thuja")}});
}

/// A patch of ground as a mesh of its own.
AcDbEntity& patch(Drawing& drawing, double x0, double x1, double y0, double y1) {
    auto& mesh = drawing.model().make<AcDbPolygonMesh>(Look{"Soil"});
    mesh.setFlags(16);
    mesh.setSize(5, 9);
    for (int row = 0; row < 5; ++row) {
        for (int column = 0; column < 9; ++column) {
            AcDbHeavyVertex vertex;
            const double rise = 0.03 + 0.05 * std::sin(row * 0.8) * std::sin(column * 0.4);
            vertex.point = mm({x0 + (x1 - x0) * column / 8, y0 + (y1 - y0) * row / 4, rise});
            vertex.flags = 64;
            mesh.vertices().push_back(vertex);
        }
    }
    return mesh;
}

void draw_covers(Drawing& drawing) {
    CTsAcPlant lawn;
    lawn.m_Definition = CTsPlantDefinition::Named("lawn");
    lawn.m_IsCover = true;
    lawn.m_CoverDensity = 420;
    AcDbEntity& whole = patch(drawing, -1.4, 6.6, 5.8, 8.4);
    require(lawn.save_cover(whole), "ground cover");
    CTsAcPlant meadow;
    meadow.m_Definition = CTsPlantDefinition::Named("meadow");
    meadow.m_IsCover = true;
    meadow.m_CoverNumber = 2;
    meadow.m_CoverDensity = 60;
    require(meadow.save_to_entity(patch(drawing, 10.4, 13.8, 5.8, 8.4)), "plant as a cover");
    AcDbEntity& shared = patch(drawing, 6.7, 7.4, 6.0, 6.8);
    require(shared.createExtensionDictionary() == Acad::eOk, "extension dictionary");
    AcDbObjectPointer<AcDbDictionary> dictionary(shared.extensionDictionary(), AcDb::kForWrite);
    auto record = std::make_unique<AcDbXrecord>();
    char handle[20];
    const auto end =
        std::to_chars(handle, handle + sizeof handle, whole.getAcDbHandle().value(), 16);
    record->setFromRbChain({{340, std::string(handle, end.ptr)}});
    AcDbObjectId id;
    require(dictionary->setAt(ts_data::cover_instance, std::move(record), id) == Acad::eOk,
            "cover id");
}

void draw_decals(Drawing& drawing) {
    auto& sign =
        drawing.model().make<AcDbFace>(Look{"Plinths"}, mm({7.9, 5.2, 0.3}), mm({9.1, 5.2, 0.3}),
                                       mm({9.1, 5.2, 1.5}), mm({7.9, 5.2, 1.5}));
    CTsAcDecalList decals;
    CTsDecal& decal = decals.emplace_back();
    decal.m_Name = "Sign";
    decal.m_Image = kPicture;
    decal.m_Location = {8000, 5200, 550};
    decal.m_XAxis = {1, 0, 0};
    decal.m_YAxis = {0, 0, 1};
    decal.m_ZAxis = {0, -1, 0};
    decal.m_XScale = 1000;
    decal.m_YScale = 700;
    decal.m_ZScale = 20;
    decals.push_back(decal);
    decals.back().m_Name = "Small sign without a picture";
    decals.back().m_Image = "not there.png";
    require(decals.Save(sign), "decals");
    CTsAcObjectProps{1 | 2 | 0x400, 2}.Save(sign);
    sign.setXData({{1001, std::string(ts_data::old_application)},
                   {1070, std::int64_t{3050}},
                   {1070, std::int64_t{4}},
                   {1070, std::int64_t{3053}},
                   {1040, 0.5}});
}

AcDbObjectId picture_definition(Drawing& drawing, const std::string& name,
                                const std::string& file) {
    AcDbDatabase& database = drawing.database();
    AcDbObjectId id;
    AcDbObjectPointer<AcDbDictionary> named(database.namedObjectsDictionaryId(), AcDb::kForWrite);
    if (named->getAt("ACAD_IMAGE_DICT", id) != Acad::eOk) {
        named->setAt("ACAD_IMAGE_DICT", std::make_unique<AcDbDictionary>(), id);
    }
    AcDbObjectPointer<AcDbDictionary> pictures(id, AcDb::kForWrite);
    auto definition = std::make_unique<AcDbRasterImageDef>();
    definition->setSourceFileName(file);
    definition->setSize({300, 200});
    AcDbObjectId made;
    require(pictures->setAt(name, std::move(definition), made) == Acad::eOk, "picture");
    return made;
}

void picture(Drawing& drawing, AcDbObjectId definition, const Point& origin, const Vector& u,
             const Vector& v) {
    auto& image = drawing.model().make<AcDbRasterImage>(Look{"0"});
    image.setImageSize({300, 200});
    image.setImageDefId(definition);
    require(image.setOrientation(mm(origin), u * 1000, v * 1000) == Acad::eOk, "place of picture");
}

void draw_pictures(Drawing& drawing) {
    const AcDbObjectId own = picture_definition(drawing, "Sign", std::string(".\\") + kPicture);
    const AcDbObjectId missing = picture_definition(drawing, "Lost", ".\\not there.png");
    picture(drawing, own, {5.6, 8.6, 1.0}, {1.8, 0, 0}, {0, 0, 1.2});    // on the wall
    picture(drawing, own, {7.7, 6.6, 0.02}, {1.2, 0.3, 0}, {0, 0, 0.8}); // stands freely
    picture(drawing, missing, {9.6, 8.6, 1.0}, {1, 0, 0}, {0, 0, 1});
}

/// One material of the toolkit's, which only hangs on the host's.
void draw_toolkit_material(Drawing& drawing) {
    drawing.paint("Brass", 0xc8a45c, 0.8, 0.6);
    drawing.layer("Brass", "Brass");
    Mesh ball = turned({{0, 0}, {0.2, 0.06}, {0.3, 0.3}, {0.2, 0.54}, {0, 0.6}}, 32);
    drawing.model().mesh(ball.move(7.2, 2.4 * 2, 1.0), {"Brass"}, 1);
    CTsMaterial brass;
    brass.m_Name = "Brass";
    brass.m_Color = {0.78, 0.64, 0.36};
    brass.m_Reflection = 0.7;
    brass.m_Sharpness = 0.85;
    CTsXmlWriter writer;
    writer.Init("", 1, -1);
    brass.Write(writer);
    AcDbObjectPointer<AcDbMaterial> holder(drawing.material_id("Brass"), AcDb::kForWrite);
    require(Ts3AcWriteBinaryDataToEntity(*holder, ts_data::material, writer.Text()),
            "toolkit material");
}

/// A picture that shows if it is turned or mirrored: an arrow up, a red and a blue corner.
bool write_picture(const std::filesystem::path& path, std::string& error) {
    constexpr int width = 300, height = 200;
    std::vector<std::uint8_t> rgba;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int from_middle = std::abs(x - width / 2);
            const bool head = y > 20 && y < 90 && from_middle < y - 20;
            const bool shaft = y >= 90 && y < 180 && from_middle < 22;
            const bool frame = x < 6 || y < 6 || x >= width - 6 || y >= height - 6;
            const bool red = x < 60 && y < 50, blue = x >= 240 && y >= 150;
            std::array<std::uint8_t, 4> color{245, 240, 225, 255};
            if (frame || head || shaft) {
                color = {30, 40, 60, 255};
            } else if (red) {
                color = {200, 30, 30, 255};
            } else if (blue) {
                color = {30, 60, 200, 255};
            }
            rgba.insert(rgba.end(), color.begin(), color.end());
        }
    }
    return write_png_file(path.string(), width, height, rgba, error);
}

/// A downlight of our own: intensity falls from the axis to nothing at 60 degrees.
bool write_photometry(const std::filesystem::path& path, std::string& error) {
    std::ofstream file(path, std::ios::binary);
    file << "IESNA:LM-63-2002\r\n[TEST] a downlight of the samples' own\r\n[MANUFAC] none\r\n"
            "TILT=NONE\r\n1 1200 1 13 1 1 2 -0.1 0 0\r\n1 1 15\r\n";
    for (int angle = 0; angle <= 90; angle += 15) {
        file << angle << (angle < 90 ? " " : "");
    }
    for (int angle = 105; angle <= 180; angle += 15) {
        file << " " << angle;
    }
    file << "\r\n0\r\n900 860 700 380 90 10 0 0 0 0 0 0 0\r\n";
    if (!file.flush()) {
        error = "cannot be written";
    }
    return error.empty();
}

} // namespace

void draw_furnishings(Drawing& drawing) {
    drawing.paint("Soil", 0x4a3a28);
    drawing.layer("Soil", "Soil");
    drawing.layer("OMB-LIGHT-Lanterns", "Exhibit");
    drawing.model().circle({8.4, 0.6, 0}, 0.15, 0.5, {"OMB-LIGHT-Lanterns"});
    draw_host_lights(drawing);
    draw_lamp(drawing);
    draw_plants(drawing);
    draw_covers(drawing);
    draw_decals(drawing);
    draw_pictures(drawing);
    draw_toolkit_material(drawing);
}

bool write_everything_files(const std::filesystem::path& folder, std::string& error) {
    return write_picture(folder / kPicture, error) && write_photometry(folder / kPhotometry, error);
}

} // namespace make_samples
