// Solids of drawings: their data in the entity or in the data section, drawn as closed shells of
// their colours, replayed for each insert, and told of when they cannot be read.
#include "host/db/solids.h"

#include "host/gi/shape_cache.h"
#include "tests/host/acis/part_maker.h"
#include "tests/host/draw/drawing.h"

#include <fmt/format.h>

#include <map>

namespace {

using gi::Primitive;

std::string boxPart(test_acis::Release release, double size = 2) {
    test_acis::PartMaker maker(release);
    maker.solid(test_acis::addBox(maker, {size, size, size}, {10, 0, 0}));
    return maker.write();
}

std::string hex(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        text += fmt::format("{:02X}", static_cast<unsigned char>(c));
    }
    return text;
}

/// A drawing with one solid; `own` stands in the entity, `section` behind the entities.
std::string drawingOf(const std::string& version, const std::string& own,
                      const std::string& section = {}) {
    return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n" + version +
           "\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\n3DSOLID\n5\n99\n100\nAcDbEntity\n8\n0\n100\n"
           "AcDbModelerGeometry\n" +
           own + "100\nAcDb3dSolid\n0\nENDSEC\n" + section + "0\nEOF\n";
}

/// Lines of text data; the second piece of a long line stands in a group 3.
std::string scrambledLines(const std::string& text) {
    std::string tags = "70\n1\n";
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = acis::scramble(text.substr(begin, end - begin));
        tags += "1\n" + line.substr(0, 40) + "\n";
        if (line.size() > 40) {
            tags += "3\n" + line.substr(40) + "\n";
        }
        begin = end + 1;
    }
    return tags;
}

/// A data section with a thumbnail of another object, then the data of 99 in chunks.
std::string dataSection(const std::string& bytes) {
    std::string text =
        "0\nSECTION\n2\nACDSDATA\n70\n2\n71\n2\n0\nACDSRECORD\n90\n1\n2\nAcDbDs::ID\n"
        "280\n10\n320\n99\n2\nThumbnail_Data\n280\n15\n94\n2\n310\nFFFF\n"
        "0\nACDSRECORD\n90\n1\n2\nAcDbDs::ID\n280\n10\n320\n99\n2\nASM_Data\n280\n15\n"
        "94\n" +
        std::to_string(bytes.size()) + "\n";
    for (std::size_t at = 0; at < bytes.size(); at += 50) {
        text += "310\n" + hex(std::string_view(bytes).substr(at, 50)) + "\n";
    }
    return text + "0\nENDSEC\n";
}

struct Loaded {
    AcDbDatabase db{false};
    explicit Loaded(const std::string& bytes) {
        std::string error;
        EXPECT_EQ(db.dxfInMemory(bytes, error), Acad::eOk) << error;
    }
    AcDbModelerGeometry* solid() {
        AcDbObject* object = nullptr;
        acdbOpenAcDbObject(object, db.getAcDbObjectId(AcDbHandle(0x99)), AcDb::kForRead);
        return AcDbModelerGeometry::cast(object);
    }
};

/// Every edge of the shells' triangles stands once in each direction, by the places of its ends.
bool isClosed(const std::vector<gi::RecordedCall>& shells) {
    using Place = std::array<double, 3>;
    std::map<std::pair<Place, Place>, int> edges;
    for (const gi::RecordedCall& shell : shells) {
        for (std::size_t i = 0; i + 3 < shell.faces.size(); i += 4) {
            for (std::size_t k = 0; k < 3; ++k) {
                const auto place = [&](std::size_t corner) {
                    const AcGePoint3d& p =
                        shell.points[static_cast<std::size_t>(shell.faces[i + 1 + corner % 3])];
                    return Place{p.x, p.y, p.z};
                };
                ++edges[{place(k), place(k + 1)}];
            }
        }
    }
    return !edges.empty() && std::all_of(edges.begin(), edges.end(), [&](const auto& entry) {
        const auto back = edges.find({entry.first.second, entry.first.first});
        return entry.second == 1 && back != edges.end() && back->second == 1;
    });
}

void expectBox(const std::string& bytes, const std::string& what) {
    SCOPED_TRACE(what);
    Loaded drawing(bytes);
    AcDbModelerGeometry* solid = drawing.solid();
    ASSERT_NE(solid, nullptr);
    EXPECT_NEAR(brep::volume(solid->mesh(0.1)), 8, 1e-9);
    AcDbExtents box;
    ASSERT_EQ(solid->getGeomExtents(box), Acad::eOk);
    EXPECT_THAT(box.minPoint(), IsNear(AcGePoint3d{10, 0, 0}));
    EXPECT_THAT(box.maxPoint(), IsNear(AcGePoint3d{12, 2, 2}));
    gi::Recorder recorder(&drawing.db);
    recorder.record(solid);
    const auto shells = recorder.callsOf(Primitive::kShell);
    EXPECT_EQ(shells.size(), 1U);
    EXPECT_TRUE(isClosed(shells));
    EXPECT_EQ(solid->notRenderedReason(), nullptr);
    std::vector<AcDbDrawFinding> findings;
    solid->drawFindings(findings);
    EXPECT_TRUE(findings.empty());
    solid->close();
}

TEST(SolidEntities, ReadTheirDataFromWhereTheReleaseKeepsThem) {
    using test_acis::Form;
    const std::string text = boxPart({400, Form::kText});
    expectBox(drawingOf("AC1015", scrambledLines(text)), "text in the entity");
    std::string plain = "70\n1\n";
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        plain += "1\n" + text.substr(begin, end - begin) + "\n";
        begin = end + 1;
    }
    expectBox(drawingOf("AC1015", plain), "text that was never scrambled");
    const std::string binary = boxPart({21800, Form::kBinary4});
    expectBox(drawingOf("AC1027", "290\n1\n", dataSection(binary)), "in the data section");
}

TEST(SolidEntities, SurviveEditingAndBinaryFiles) {
    const std::string binary = boxPart({21800, test_acis::Form::kBinary4});
    for (const std::string& bytes :
         {drawingOf("AC1027", "290\n1\n", dataSection(binary)),
          drawingOf("AC1018", scrambledLines(boxPart({400, test_acis::Form::kText})))}) {
        Loaded drawing(bytes);
        AcDbModelerGeometry* solid = drawing.solid();
        ASSERT_NE(solid, nullptr);
        solid->upgradeOpen();
        solid->setColor(AcCmEntityColor::index(3));
        solid->close();
        const auto path = std::filesystem::path(QORVANE_BUILD_DIR) / "solid_entities_test.dxf";
        std::string error;
        for (const AcDbDxfForm form : {AcDbDxfForm::kAscii, AcDbDxfForm::kBinary}) {
            ASSERT_EQ(drawing.db.dxfOut(path, error, form), Acad::eOk) << error;
            AcDbDatabase again(false);
            ASSERT_EQ(again.dxfIn(path, error), Acad::eOk) << error;
            AcDbObjectPointer<AcDb3dSolid> copy(again.getAcDbObjectId(AcDbHandle(0x99)));
            ASSERT_TRUE(copy);
            EXPECT_EQ(copy->colorIndex(), 3);
            EXPECT_NEAR(brep::volume(copy->mesh(0.1)), 8, 1e-9);
        }
        std::filesystem::remove(path);
    }
}

TEST(SolidEntities, NewOnesAreWrittenWithTheirText) {
    Drawing drawing;
    drawing.make<AcDb3dSolid>(drawing.model())->setText(boxPart({400, test_acis::Form::kText}, 1));
    const auto path = std::filesystem::path(QORVANE_BUILD_DIR) / "new_solid_test.dxf";
    std::string error;
    ASSERT_EQ(drawing.db.dxfOut(path, error), Acad::eOk) << error;
    AcDbDatabase again(false);
    ASSERT_EQ(again.dxfIn(path, error), Acad::eOk) << error;
    std::filesystem::remove(path);
    const AcDbObjectPointer<AcDbBlockTableRecord> space(again.modelSpaceId());
    ASSERT_EQ(space->entities().size(), 1U);
    const AcDbObjectPointer<AcDb3dSolid> solid(space->entities().front());
    ASSERT_TRUE(solid);
    EXPECT_NEAR(brep::volume(solid->mesh(0.1)), 1, 1e-9);
}

TEST(SolidEntities, WithoutUsableDataAreToldOf) {
    const struct {
        std::string bytes;
        const char* code;
    } rows[] = {
        {drawingOf("AC1027", "290\n1\n"), "solid-empty"},
        {drawingOf("AC1015", "70\n1\n1\nrubbish\n"), "solid-unreadable"},
        {drawingOf("AC1027", "290\n1\n", dataSection("ASM BinaryFile4 and nothing")),
         "solid-unreadable"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        Loaded drawing(row.bytes);
        AcDbModelerGeometry* solid = drawing.solid();
        ASSERT_NE(solid, nullptr);
        EXPECT_STREQ(solid->notRenderedReason(), row.code);
        std::vector<AcDbDrawFinding> findings;
        solid->drawFindings(findings);
        ASSERT_EQ(findings.size(), 1U);
        EXPECT_STREQ(findings[0].code, row.code);
        EXPECT_FALSE(findings[0].detail.empty());
        gi::Recorder recorder(&drawing.db);
        recorder.record(solid);
        EXPECT_TRUE(recorder.callsOf(Primitive::kShell).empty());
        solid->close();
    }
}

TEST(SolidEntities, HaveExactBoxesWhereThereIsAClosedForm) {
    test_acis::PartMaker maker({400, test_acis::Form::kText});
    maker.solid(test_acis::addCylinder(maker, 3, 5));
    AcDb3dSolid solid;
    solid.setText(maker.write());
    AcDbExtents box;
    ASSERT_EQ(solid.getGeomExtents(box), Acad::eOk);
    EXPECT_THAT(box.minPoint(), IsNear(AcGePoint3d{-3, -3, 0}));
    EXPECT_THAT(box.maxPoint(), IsNear(AcGePoint3d{3, 3, 5}));
}

TEST(SolidEntities, AreMeshedOnceForAllInsertsOfTheirBlock) {
    Drawing drawing;
    const AcDbObjectId chair = drawing.block("Chair");
    drawing.make<AcDb3dSolid>(chair)->setText(boxPart({400, test_acis::Form::kText}));
    for (int i = 0; i < 3; ++i) {
        drawing.insert(drawing.model(), chair, {i * 10.0, 0, 0});
    }
    const gi::ShapeCacheScope scope;
    gi::Recorder recorder(&drawing.db);
    const AcDbObjectPointer<AcDbBlockTableRecord> space(drawing.model());
    for (const AcDbObjectId id : space->entities()) {
        const AcDbObjectPointer<AcDbEntity> entity(id);
        recorder.record(entity.object());
    }
    EXPECT_EQ(recorder.callsOf(Primitive::kShell).size(), 3U);
    EXPECT_EQ(gi::ShapeCache::size(), 1U);
}

} // namespace
