// Changing drawings: only what was changed differs in the file; new objects go where they belong.
#include "support.h"

#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"
#include "host/dxf/facts.h"

#include <gmock/gmock.h>

#include <set>
#include <sstream>

using namespace test_dxf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// "-old" and "+new" lines between two texts: common lines at both ends are left out.
std::vector<std::string> changed_lines(const std::string& before, const std::string& after) {
    const auto split = [](const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) {
            lines.push_back(line);
        }
        return lines;
    };
    std::vector<std::string> a = split(before), b = split(after), result;
    while (!a.empty() && !b.empty() && a.back() == b.back()) {
        a.pop_back();
        b.pop_back();
    }
    std::size_t head = 0;
    while (head < a.size() && head < b.size() && a[head] == b[head]) {
        ++head;
    }
    for (std::size_t i = head; i < a.size(); ++i) {
        result.push_back("-" + a[i]);
    }
    for (std::size_t i = head; i < b.size(); ++i) {
        result.push_back("+" + b[i]);
    }
    return result;
}

const std::string kCircle =
    "  0\nCIRCLE\n  5\nAB\n102\n{ACAD_REACTORS\n330\nFF\n102\n}\n330\n1F\n100\n"
    "AcDbEntity\n  8\nWalls\n 48\n0.5\n100\nAcDbCircle\n999\na comment\n 10\n"
    "1.000\n 20\n2.000\n 30\n0.0\n 40\n  4.50\n1001\nOTHER\n1070\n     7\n";

template <class T>
T& open_first(AcDbDatabase& db) {
    T* object = first_entity<T>(db);
    object->assertWriteEnabled();
    return *object;
}

TEST(Change, OneNumberIsOneLine) {
    const std::string source = with_entities(kCircle);
    const auto db = load(source);
    open_first<AcDbCircle>(*db).setRadius(6.25);
    EXPECT_THAT(changed_lines(source, save(*db)), ElementsAre("-  4.50", "+6.25"));
}

TEST(Change, ATagThatWasADefaultComesBehindItsNeighbours) {
    const std::string source = with_entities(kCircle);
    const auto db = load(source);
    open_first<AcDbCircle>(*db).setNormal(AcGeVector3d{0, 0, -1});
    const auto again = load(save(*db));
    EXPECT_EQ(first_entity<AcDbCircle>(*again)->normal(), (AcGeVector3d{0, 0, -1}));
    EXPECT_NEAR(first_entity<AcDbCircle>(*again)->center().x, 1, 1e-12) << "the same world point";
    EXPECT_THAT(save(*db), HasSubstr("999\na comment\n"));
    EXPECT_THAT(save(*db), HasSubstr("{ACAD_REACTORS\n330\nFF\n"));
    EXPECT_THAT(save(*db), HasSubstr("1001\nOTHER\n1070\n     7\n"));
}

TEST(Change, ColourAndLayerOfAnEntity) {
    const std::string source = with_entities(kCircle);
    const auto db = load(source);
    auto layer = std::make_unique<AcDbLayerTableRecord>();
    layer->setName("Dächer");
    AcDbObjectId id;
    ASSERT_EQ(db->layerTable().add(std::move(layer), id), Acad::eOk);
    auto& circle = open_first<AcDbCircle>(*db);
    circle.setLayer(id);
    circle.setColor(AcCmEntityColor::index(1));
    const std::string written = save(*db);
    EXPECT_THAT(written, HasSubstr("  8\nD\xe4"
                                   "cher\n 62\n1\n"))
        << "in the file's code page";
    const auto again = load(written);
    EXPECT_EQ(first_entity<AcDbCircle>(*again)->layer(), "Dächer");
    EXPECT_EQ(first_entity<AcDbCircle>(*again)->colorIndex(), 1);
    EXPECT_TRUE(again->layerTable().has("DÄCHER")) << "names are found without case";
    EXPECT_TRUE(again->loadReport().repaired.empty());
}

TEST(Change, AnIndexTakesThePlaceOfATrueColourAndItsIndex) {
    const auto db = load(
        with_entities("0\nPOINT\n5\nA\n100\nAcDbEntity\n8\n0\n62\n5\n420\n255\n100\nAcDbPoint\n"
                      "10\n1.0\n20\n2.0\n30\n3.0\n",
                      "AC1018"));
    open_first<AcDbPoint>(*db).setColor(AcCmEntityColor::index(2));
    const std::string written = save(*db);
    EXPECT_THAT(written, HasSubstr("62\n2\n100\n")) << written;
    EXPECT_EQ(first_entity<AcDbPoint>(*load(written))->colorIndex(), 2);
    const auto old = load(with_entities("0\nPOINT\n8\n0\n", "AC1009"));
    open_first<AcDbPoint>(*old).setColor(AcCmEntityColor::trueColor(0xfe0101));
    EXPECT_EQ(first_entity<AcDbPoint>(*load(save(*old)))->colorIndex(), 1)
        << "the nearest index, where there are no true colours";
}

TEST(Change, ValuesThatTheFileGaveAlthoughTheyAreDefaults) {
    const auto db = load(with_entities(
        "0\nLWPOLYLINE\n5\nA\n100\nAcDbEntity\n8\n0\n100\nAcDbPolyline\n90\n2\n"
        "70\n0\n10\n0\n20\n0\n40\n0\n41\n0\n42\n0\n10\n1\n20\n0\n40\n0\n41\n0\n42\n0\n"));
    open_first<AcDbPolyline>(*db).addVertex({5, 5}, 0.5, 0.25, 0.75);
    const auto again = load(save(*db));
    const auto& vertices = first_entity<AcDbPolyline>(*again)->vertices();
    ASSERT_EQ(vertices.size(), 3u);
    EXPECT_EQ(vertices[1].bulge, 0);
    EXPECT_EQ(vertices[2].bulge, 0.5);
    EXPECT_EQ(vertices[2].end_width, 0.75);
}

TEST(Change, VerticesOfAPolyline) {
    const std::string source = with_entities("  0\nLWPOLYLINE\n  5\nA\n100\nAcDbEntity\n  "
                                             "8\n0\n100\nAcDbPolyline\n 90\n2\n 70\n0\n 10\n0.0\n"
                                             " 20\n0.0\n 91\n0\n 10\n1.0\n 20\n0.0\n 91\n0\n");
    const auto db = load(source);
    open_first<AcDbPolyline>(*db).addVertex({2, 3});
    const std::string written = save(*db);
    EXPECT_EQ(first_entity<AcDbPolyline>(*load(written))->numVerts(), 3u);
    EXPECT_THAT(written, HasSubstr(" 90\n3\n"));
    open_first<AcDbPolyline>(*db).setClosed(true);
    EXPECT_TRUE(first_entity<AcDbPolyline>(*load(save(*db)))->isClosed());
}

TEST(Change, OneVertexOfAHeavyPolyline) {
    std::string tags = "  0\nPOLYLINE\n  5\nA\n  8\n0\n 66\n     1\n 70\n     8\n";
    for (int i = 0; i < 3; ++i) {
        tags += "  0\nVERTEX\n  5\nB" + std::to_string(i) + "\n  8\n0\n 10\n" + std::to_string(i) +
                ".00\n 20\n0.0\n 30\n0.0\n 70\n    32\n";
    }
    const std::string source = with_entities(tags + "  0\nSEQEND\n  5\nC\n  8\n0\n", "AC1009");
    const auto db = load(source);
    open_first<AcDb3dPolyline>(*db).vertices()[1].point.x = 7;
    EXPECT_THAT(changed_lines(source, save(*db)), ElementsAre("-1.00", "+7.0"));
    open_first<AcDb3dPolyline>(*db).vertices().pop_back();
    EXPECT_EQ(first_entity<AcDb3dPolyline>(*load(save(*db)))->vertices().size(), 2u);
}

TEST(Change, ErasedObjectsGoWithTheirParts) {
    const auto db =
        load(with_entities("0\nINSERT\n66\n1\n2\n*Model_Space\n0\nATTRIB\n2\nT\n0\nSEQEND\n"
                           "0\nPOINT\n8\n0\n"));
    first_entity<AcDbBlockReference>(*db)->erase();
    const std::string written = save(*db);
    EXPECT_EQ(written, with_entities("0\nPOINT\n8\n0\n"));
}

TEST(Change, TheBasePointOfABlock) {
    const std::string source =
        "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nA\n10\n1.00\n20\n2.00\n0\nENDBLK\n"
        "0\nENDSEC\n0\nEOF\n";
    const auto db = load(source);
    AcDbObjectId id;
    ASSERT_EQ(db->blockTable().getAt("A", id), Acad::eOk);
    AcDbObjectPointer<AcDbBlockTableRecord>(id, AcDb::kForWrite)->setOrigin({1, 5, 0});
    EXPECT_THAT(changed_lines(source, save(*db)), ElementsAre("-2.00", "+5.0"));
}

TEST(Change, HeaderVariables) {
    const std::string source = with_entities("");
    const auto db = load(source);
    EXPECT_EQ(db->insunits(), 0);
    db->setInsunits(4);
    EXPECT_THAT(changed_lines(source, save(*db)), ElementsAre("+  9", "+$INSUNITS", "+ 70", "+4"));
    EXPECT_EQ(load(save(*db))->insunits(), 4);
}

TEST(Change, ExtendedDataByApplication) {
    const auto db = load(with_entities(kCircle));
    auto& circle = open_first<AcDbCircle>(*db);
    ASSERT_EQ(circle.xData("other").size(), 2u);
    EXPECT_EQ(circle.setXData({AcDbValue(1070, std::int64_t{1})}), Acad::eInvalidInput);
    const AcDbValues mine{AcDbValue(1001, std::string("MINE")),
                          AcDbValue(1000, std::string("text")),
                          AcDbValue(1010, AcGePoint3d{1, 2, 3}), AcDbValue(1040, 0.5)};
    EXPECT_EQ(circle.setXData(mine), Acad::eOk);
    const auto again = load(save(*db));
    const auto* read = first_entity<AcDbCircle>(*again);
    const AcDbValues back = read->xData("MINE");
    ASSERT_EQ(back.size(), 4u);
    EXPECT_EQ(back[1].text(), "text");
    EXPECT_EQ(back[2].point(), (AcGePoint3d{1, 2, 3}));
    EXPECT_EQ(read->xData().size(), 6u) << "the other application's data is still there";
    EXPECT_THAT(save(*db), HasSubstr("APPID")) << "the name is registered";
    EXPECT_EQ(circle.setXData({AcDbValue(1001, std::string("OTHER"))}), Acad::eOk);
    EXPECT_THAT(first_entity<AcDbCircle>(*load(save(*db)))->xData("OTHER"), IsEmpty());
}

// ---- dictionaries ----

std::unique_ptr<AcDbXrecord> record_of(std::int64_t number) {
    auto record = std::make_unique<AcDbXrecord>();
    record->setFromRbChain({AcDbValue(1, std::string("Glas ≥ 3")), AcDbValue(90, number),
                            AcDbValue(10, AcGePoint3d{1, 2, 3})});
    return record;
}

std::int64_t number_in(AcDbDatabase& db, const char* key) {
    AcDbObjectPointer<AcDbDictionary> root(db.namedObjectsDictionaryId());
    AcDbObjectId id;
    if (root->getAt(key, id) != Acad::eOk) {
        return -1;
    }
    const AcDbObjectPointer<AcDbXrecord> record(id);
    return record && record->rbChain().size() == 3 ? record->rbChain()[1].integer() : -2;
}

class DictionariesOf : public testing::TestWithParam<const char*> {};

/// In every version, with an objects section or without.
TEST_P(DictionariesOf, EntriesAreSetReplacedAndRemoved) {
    const std::string source = with_entities("  0\nPOINT\n  8\n0\n", GetParam());
    const auto db = load(source);
    EXPECT_EQ(save(*db), source) << "what was made in memory only is not written";
    {
        AcDbObjectPointer<AcDbDictionary> root(db->namedObjectsDictionaryId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(root->setAt("One", record_of(1), id), Acad::eOk);
        EXPECT_EQ(root->setAt("Two", record_of(2), id), Acad::eOk);
    }
    const auto second = load(save(*db));
    EXPECT_EQ(number_in(*second, "ONE"), 1);
    EXPECT_EQ(number_in(*second, "Two"), 2);
    EXPECT_TRUE(second->loadReport().lost.empty());
    {
        AcDbObjectPointer<AcDbDictionary> root(second->namedObjectsDictionaryId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(root->setAt("two", record_of(22), id), Acad::eOk);
        EXPECT_EQ(root->remove("One"), Acad::eOk);
        EXPECT_EQ(root->remove("One"), Acad::eKeyNotFound);
    }
    const std::string written = save(*second);
    const auto third = load(written);
    EXPECT_EQ(number_in(*third, "One"), -1);
    EXPECT_EQ(number_in(*third, "Two"), 22);
    EXPECT_EQ(third->materials().size(), 3u);
    EXPECT_EQ(save(*third), written);
}
INSTANTIATE_TEST_SUITE_P(Versions, DictionariesOf,
                         testing::Values("AC1006", "AC1009", "AC1015", "AC1032"));

TEST(Dictionaries, OfAnEntityItself) {
    const auto db = load(with_entities(kCircle));
    auto& circle = open_first<AcDbCircle>(*db);
    EXPECT_TRUE(circle.extensionDictionary().isNull());
    ASSERT_EQ(circle.createExtensionDictionary(), Acad::eOk);
    {
        AcDbObjectPointer<AcDbDictionary> own(circle.extensionDictionary(), AcDb::kForWrite);
        AcDbObjectId id;
        ASSERT_EQ(own->setAt("MAT", record_of(5), id), Acad::eOk);
    }
    const auto again = load(save(*db));
    const AcDbObjectPointer<AcDbDictionary> own(
        first_entity<AcDbCircle>(*again)->extensionDictionary());
    ASSERT_TRUE(own);
    EXPECT_TRUE(own->has("mat"));
    EXPECT_EQ(own->ownerId(), first_entity<AcDbCircle>(*again)->objectId());
}

// ---- new drawings ----

TEST(NewDrawing, IsCompleteAndComesBackEqual) {
    const AcDbDatabase db;
    EXPECT_EQ(findings(db), "");
    EXPECT_EQ(db.versionCode(), "AC1027");
    EXPECT_EQ(db.materials().size(), 3u);
    for (const AcDbObjectId id :
         {db.layerZero(), db.modelSpaceId(), db.activeViewportId(), db.byLayerMaterial(),
          db.byBlockMaterial(), db.globalMaterial()}) {
        EXPECT_TRUE(id.isValid());
    }
    const std::string written = save(db);
    EXPECT_EQ(save(*load(written)), written);
}

/// Every handle that a drawing names is given once, and every reference leads somewhere.
void check_handles(const std::string& bytes) {
    std::set<std::string> given;
    std::vector<std::pair<int, std::string>> referred;
    for (const PlainTag& tag : plain_tags(bytes)) {
        if (tag.code == 5 || tag.code == 105) {
            EXPECT_TRUE(given.insert(tag.text).second) << "handle " << tag.text << " twice";
        } else if (tag.code >= 330 && tag.code < 370 && tag.text != "0") {
            referred.emplace_back(tag.code, tag.text);
        } else if (tag.code == 390) {
            referred.emplace_back(tag.code, tag.text);
        }
    }
    for (const auto& [code, handle] : referred) {
        EXPECT_TRUE(given.contains(handle)) << code << " names " << handle;
    }
}

TEST(NewDrawing, HandlesAreSoundAndBelowTheSeed) {
    AcDbDatabase db;
    auto block = std::make_unique<AcDbBlockTableRecord>();
    block->setName("TREE");
    block->setOrigin({1, 2, 3});
    AcDbObjectId block_id, id;
    ASSERT_EQ(db.blockTable().add(std::move(block), block_id), Acad::eOk);
    auto mesh = std::make_unique<AcDbPolyFaceMesh>();
    mesh->setFlags(64);
    mesh->appendVertex({0, 0, 0});
    mesh->appendVertex({1, 0, 0});
    mesh->appendVertex({0, 1, 0});
    mesh->appendFace({1, 2, 3, 0});
    {
        AcDbObjectPointer<AcDbBlockTableRecord> tree(block_id, AcDb::kForWrite);
        ASSERT_EQ(tree->appendAcDbEntity(std::move(mesh), id), Acad::eOk);
        AcDbObjectPointer<AcDbBlockTableRecord> space(db.modelSpaceId(), AcDb::kForWrite);
        auto reference = std::make_unique<AcDbBlockReference>();
        reference->setBlockTableRecord(block_id);
        ASSERT_EQ(space->appendAcDbEntity(std::move(reference), id), Acad::eOk);
        ASSERT_EQ(space->appendAcDbEntity(
                      std::make_unique<AcDbFace>(AcGePoint3d{0, 0, 0}, AcGePoint3d{1, 0, 0},
                                                 AcGePoint3d{1, 1, 0}, AcGePoint3d{0, 1, 0}),
                      id),
                  Acad::eOk);
        AcDbObjectPointer<AcDbFace> face(id, AcDb::kForWrite);
        face->setMaterial(db.globalMaterial());
    }
    const std::string written = save(db);
    check_handles(written);
    const auto again = load(written);
    EXPECT_EQ(findings(*again), "");
    const dxf::DrawingFacts facts = dxf::collect_facts(*again);
    EXPECT_EQ(facts.modelspace,
              (std::map<std::string, std::uint64_t>{{"3DFACE", 1}, {"INSERT", 1}}));
    EXPECT_EQ(facts.in_blocks, (std::map<std::string, std::uint64_t>{{"POLYLINE", 1}}));
    ASSERT_TRUE(again->blockTable().has("tree"));
    const auto* reference = first_entity<AcDbBlockReference>(*again);
    const AcDbObjectPointer<AcDbBlockTableRecord> tree(reference->blockTableRecord());
    ASSERT_TRUE(tree);
    EXPECT_EQ(tree->origin(), (AcGePoint3d{1, 2, 3}));
    EXPECT_EQ(first_entity<AcDbFace>(*again)->materialId(), again->globalMaterial());
    std::uint64_t seed = 0;
    ASSERT_TRUE(dxf::parse_handle(again->headerVar("$HANDSEED").front().text(), seed));
    for (const PlainTag& tag : plain_tags(written)) {
        std::uint64_t handle = 0;
        if (tag.code == 5 && dxf::parse_handle(tag.text, handle) && handle != seed) {
            EXPECT_LT(handle, seed);
        }
    }
    check_handles(save(*load(save(*again, AcDbDxfForm::kBinary)), AcDbDxfForm::kAscii));
}

class NewObjects : public testing::TestWithParam<const char*> {};

TEST_P(NewObjects, InAFileOfEntitiesOnlyStandOnceAndTakeFreeHandles) {
    const auto db =
        load(with_entities("  0\nPOINT\n  8\n0\n  0\nPOINT\n  5\n10\n  8\n0\n", GetParam()));
    AcDbObjectId id;
    {
        AcDbObjectPointer<AcDbBlockTableRecord> space(db->modelSpaceId(), AcDb::kForWrite);
        space->appendAcDbEntity(std::make_unique<AcDbLine>(), id);
    }
    EXPECT_GT(id.handle().value(), 0x10u);
    const std::string written = save(*db);
    const auto again = load(written);
    EXPECT_EQ(findings(*again), "");
    const dxf::DrawingFacts facts = dxf::collect_facts(*again);
    EXPECT_EQ(facts.modelspace, (std::map<std::string, std::uint64_t>{{"LINE", 1}, {"POINT", 2}}));
    EXPECT_EQ(facts.blocks, 0u);
    const bool old = std::string(GetParam()) <= "AC1009";
    EXPECT_EQ(written.find("AcDb") == std::string::npos, old) << "no markers in old files";
}
INSTANTIATE_TEST_SUITE_P(Versions, NewObjects,
                         testing::Values("AC1006", "AC1009", "AC1015", "AC1032"));

TEST(NewDrawing, IsOpenedByOneWriterOrManyReaders) {
    AcDbDatabase db;
    const AcDbObjectId id = db.layerZero();
    AcDbLayerTableRecord *first = nullptr, *second = nullptr;
    ASSERT_EQ(acdbOpenObject(first, id), Acad::eOk);
    EXPECT_EQ(acdbOpenObject(second, id), Acad::eOk);
    EXPECT_EQ(first->upgradeOpen(), Acad::eWasOpenForRead);
    second->close();
    EXPECT_EQ(first->upgradeOpen(), Acad::eOk);
    EXPECT_EQ(acdbOpenObject(second, id), Acad::eWasOpenForWrite);
    first->close();
    AcDbLine* wrong = nullptr;
    EXPECT_EQ(acdbOpenObject(wrong, id), Acad::eWrongObjectType);
    ASSERT_EQ(acdbOpenObject(first, id, AcDb::kForWrite), Acad::eOk)
        << "the failed try left it closed";
    first->erase();
    first->close();
    EXPECT_EQ(acdbOpenObject(first, id), Acad::eWasErased);
    EXPECT_EQ(acdbOpenObject(first, AcDbObjectId::kNull), Acad::eNullObjectId);
}

TEST(NewDrawing, IsWrittenToAFileOrTellsWhyNot) {
    const AcDbDatabase db;
    std::string error;
    EXPECT_EQ(db.dxfOut("/no/such/folder/x.dxf", error), Acad::eFileAccessErr);
    EXPECT_THAT(error, HasSubstr("No such file or directory"));
}

TEST(Units, ConvertThroughMetres) {
    double factor = 0;
    EXPECT_TRUE(acdbGetUnitsConversion(1, kAcDbUnitMeters, factor));
    EXPECT_EQ(factor, 0.0254);
    EXPECT_TRUE(acdbGetUnitsConversion(4, 2, factor));
    EXPECT_NEAR(factor, 0.001 / 0.3048, 1e-15);
    EXPECT_FALSE(acdbGetUnitsConversion(0, 6, factor));
    EXPECT_FALSE(acdbGetUnitsConversion(6, 99, factor));
}

} // namespace
