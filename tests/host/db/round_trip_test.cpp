// Every kind of object: its members as read, and that a copy written from members alone has the
// same ones.
#include "support.h"

#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/hatch.h"
#include "host/db/polylines.h"
#include "host/db/unknown.h"
#include "host/dxf/load_context.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/tag_writer.h"

#include <numbers>

using namespace test_dxf;

namespace {

struct Kind {
    const char* name;
    const char* class_name;
    const char* tags; ///< behind type, 100 AcDbEntity and 8
};

class EveryKind : public testing::TestWithParam<Kind> {};

/// What the object's class writes of it.
std::string written(const AcDbObject& object) {
    std::string out;
    dxf::WriteStyle style;
    dxf::TagWriter writer(out, style);
    object.dxfOut(writer);
    return out;
}

AcDbObject* only_entity(AcDbDatabase& db) {
    const auto* space = AcDbBlockTableRecord::cast(db.modelSpaceId().stub()->object);
    return space->entities().size() == 1 ? space->entities()[0].stub()->object : nullptr;
}

TEST_P(EveryKind, IsWrittenAsItWasRead) {
    const std::string source =
        with_entities(std::string("  0\n") + GetParam().name +
                      "\n  5\nAB\n100\nAcDbEntity\n  8\nWalls\n 62\n3\n" + GetParam().tags);
    const auto db = load(source);
    EXPECT_EQ(findings(*db), "");
    AcDbObject* object = only_entity(*db);
    ASSERT_NE(object, nullptr);
    EXPECT_STREQ(object->isA()->name(), GetParam().class_name);
    EXPECT_EQ(object->dxfName(), GetParam().name);
    EXPECT_EQ(AcDbEntity::cast(object)->layer(), "Walls");
    EXPECT_EQ(AcDbEntity::cast(object)->colorIndex(), 3);
    EXPECT_EQ(save(*db), source);
    // Opened to be written but not changed: not a byte differs either.
    object->assertWriteEnabled();
    EXPECT_EQ(save(*db), source);
    // Written from members and read again, the members are the same.
    const std::string own = written(*object);
    const auto again =
        load(with_entities(std::string("  0\n") + GetParam().name + "\n" + own, "AC1027"));
    AcDbObject* copy = only_entity(*again);
    ASSERT_NE(copy, nullptr) << own;
    EXPECT_EQ(written(*copy), own);
    // In an old file there are no subclass markers.
    std::string bare = GetParam().tags;
    for (std::size_t at = 0; (at = bare.find("100\nAcDb", at)) != std::string::npos;) {
        bare.erase(at, bare.find('\n', at + 4) + 1 - at);
    }
    const auto old = load(with_entities(
        std::string("  0\n") + GetParam().name + "\n  8\nWalls\n 62\n3\n" + bare, "AC1009"));
    ASSERT_NE(only_entity(*old), nullptr);
    EXPECT_EQ(written(*only_entity(*old)), own);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, EveryKind,
    testing::Values(
        Kind{"LINE", "AcDbLine",
             "100\nAcDbLine\n 39\n2.5\n 10\n1.0\n 20\n2.0\n 30\n3.0\n 11\n4.0\n 21\n5.0\n 31\n6.0\n"
             "210\n0.0\n220\n1.0\n230\n0.0\n"},
        Kind{"POINT", "AcDbPoint", "100\nAcDbPoint\n 10\n1.0\n 20\n2.0\n 30\n3.0\n"},
        Kind{"CIRCLE", "AcDbCircle",
             "100\nAcDbCircle\n 10\n1.0\n 20\n2.0\n 30\n3.0\n "
             "40\n4.0\n210\n0.0\n220\n0.0\n230\n-1.0\n"},
        Kind{"ARC", "AcDbArc",
             "100\nAcDbCircle\n 10\n1.0\n 20\n2.0\n 30\n0.0\n 40\n4.0\n100\nAcDbArc\n 50\n30.0\n "
             "51\n120.0\n"},
        Kind{"ELLIPSE", "AcDbEllipse",
             "100\nAcDbEllipse\n 10\n1.0\n 20\n2.0\n 30\n0.0\n 11\n3.0\n 21\n0.0\n 31\n0.0\n "
             "40\n0.5\n"
             " 41\n0.25\n 42\n3.5\n"},
        Kind{"SPLINE", "AcDbSpline",
             "100\nAcDbSpline\n 70\n12\n 71\n1\n 72\n4\n 73\n2\n 74\n1\n 40\n0.0\n 40\n0.0\n "
             "40\n1.0\n"
             " 40\n1.0\n 41\n1.0\n 41\n2.0\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 10\n1.0\n 20\n1.0\n "
             "30\n1.0\n"
             " 11\n0.5\n 21\n0.5\n 31\n0.5\n"},
        Kind{"LWPOLYLINE", "AcDbPolyline",
             "100\nAcDbPolyline\n 90\n2\n 70\n1\n 38\n1.5\n 39\n2.0\n 10\n0.0\n 20\n0.0\n 40\n0.1\n"
             " 41\n0.2\n 42\n0.5\n 10\n1.0\n 20\n0.0\n"},
        Kind{"POLYLINE", "AcDb2dPolyline",
             "100\nAcDb2dPolyline\n 66\n1\n 10\n0.0\n 20\n0.0\n 30\n7.0\n 70\n1\n  0\nVERTEX\n100\n"
             "AcDbEntity\n  8\nWalls\n100\nAcDbVertex\n100\nAcDb2dVertex\n 10\n1.0\n 20\n2.0\n "
             "30\n7.0\n"
             " 42\n0.5\n  0\nSEQEND\n100\nAcDbEntity\n  8\nWalls\n"},
        Kind{"POLYLINE", "AcDb3dPolyline",
             "100\nAcDb3dPolyline\n 66\n1\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 70\n8\n  0\nVERTEX\n100\n"
             "AcDbEntity\n  8\nWalls\n100\nAcDbVertex\n100\nAcDb3dPolylineVertex\n 10\n1.0\n "
             "20\n2.0\n"
             " 30\n3.0\n 70\n32\n  0\nSEQEND\n100\nAcDbEntity\n  8\nWalls\n"},
        Kind{"POLYLINE", "AcDbPolygonMesh",
             "100\nAcDbPolygonMesh\n 66\n1\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 70\n17\n 71\n1\n "
             "72\n1\n 73\n3\n"
             "  0\nVERTEX\n100\nAcDbEntity\n  "
             "8\nWalls\n100\nAcDbVertex\n100\nAcDbPolygonMeshVertex\n"
             " 10\n1.0\n 20\n2.0\n 30\n3.0\n 70\n64\n  0\nSEQEND\n100\nAcDbEntity\n  8\nWalls\n"},
        Kind{
            "POLYLINE", "AcDbPolyFaceMesh",
            "100\nAcDbPolyFaceMesh\n 66\n1\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 70\n64\n 71\n1\n 72\n1\n"
            "  0\nVERTEX\n100\nAcDbEntity\n  "
            "8\nWalls\n100\nAcDbVertex\n100\nAcDbPolyFaceMeshVertex\n"
            " 10\n1.0\n 20\n2.0\n 30\n3.0\n 70\n192\n  0\nVERTEX\n100\nAcDbEntity\n  8\nWalls\n "
            "62\n5\n"
            "100\nAcDbFaceRecord\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 70\n128\n 71\n1\n 72\n-1\n 73\n1\n"
            "  0\nSEQEND\n100\nAcDbEntity\n  8\nWalls\n"},
        Kind{"3DFACE", "AcDbFace",
             "100\nAcDbFace\n 10\n1.0\n 20\n2.0\n 30\n3.0\n 11\n4.0\n 21\n5.0\n 31\n6.0\n "
             "12\n7.0\n 22\n8.0\n"
             " 32\n9.0\n 13\n7.0\n 23\n8.0\n 33\n9.0\n 70\n5\n"},
        Kind{"SOLID", "AcDbSolid",
             "100\nAcDbTrace\n 10\n1.0\n 20\n2.0\n 30\n3.0\n 11\n4.0\n 21\n5.0\n 31\n6.0\n "
             "12\n7.0\n 22\n8.0\n"
             " 32\n9.0\n 13\n7.0\n 23\n8.5\n 33\n9.0\n 39\n1.0\n"},
        Kind{"TRACE", "AcDbTrace",
             "100\nAcDbTrace\n 10\n1.0\n 20\n2.0\n 30\n3.0\n 11\n4.0\n 21\n5.0\n 31\n6.0\n "
             "12\n7.0\n 22\n8.0\n"
             " 32\n9.0\n 13\n7.0\n 23\n8.5\n 33\n9.0\n"},
        Kind{"MESH", "AcDbSubDMesh",
             "100\nAcDbSubDMesh\n 71\n2\n 72\n0\n 91\n2\n 92\n3\n 10\n0.0\n 20\n0.0\n 30\n0.0\n "
             "10\n1.0\n"
             " 20\n0.0\n 30\n0.0\n 10\n0.0\n 20\n1.0\n 30\n0.0\n 93\n4\n 90\n3\n 90\n0\n 90\n1\n "
             "90\n2\n 94\n1\n"
             " 90\n0\n 90\n1\n 95\n1\n140\n2.0\n 90\n0\n"},
        Kind{"INSERT", "AcDbBlockReference",
             "100\nAcDbBlockReference\n  2\n*Model_Space\n 10\n1.0\n 20\n2.0\n 30\n3.0\n "
             "41\n-1.0\n 42\n2.0\n"
             " 43\n3.0\n 50\n45.0\n"},
        Kind{"TEXT", "AcDbText",
             "100\nAcDbText\n 10\n1.0\n 20\n2.0\n 30\n3.0\n 40\n2.5\n  1\nHello\n "
             "50\n30.0\n100\nAcDbText\n"},
        Kind{"MTEXT", "AcDbMText",
             "100\nAcDbMText\n 10\n1.0\n 20\n2.0\n 30\n3.0\n 40\n2.5\n  1\nHello\\PWorld\n "
             "50\n0.5\n"},
        Kind{"ATTDEF", "AcDbAttributeDefinition",
             "100\nAcDbText\n 10\n1.0\n 20\n2.0\n 30\n3.0\n 40\n2.5\n  "
             "1\nvalue\n100\nAcDbAttributeDefinition\n"
             "  3\nAsk\n  2\nTAG\n 70\n0\n"}),
    [](const testing::TestParamInfo<Kind>& info) { return std::string(info.param.class_name); });

TEST(Members, AnglesAndObjectSystemsAreThoseOfTheHeader) {
    const auto db = load(with_entities(
        "0\nARC\n10\n1\n20\n2\n30\n3\n40\n1\n50\n90\n51\n180\n210\n0\n220\n0\n230\n-1\n"
        "0\nINSERT\n2\n*Model_Space\n50\n90\n70\n3\n71\n2\n44\n10\n45\n20\n"));
    const auto* arc = first_entity<AcDbArc>(*db);
    EXPECT_NEAR(arc->startAngle(), std::numbers::pi / 2, 1e-15);
    EXPECT_NEAR(arc->center().x, -1, 1e-15) << "x is mirrored below a downward extrusion";
    EXPECT_NEAR(arc->center().z, -3, 1e-15);
    const auto* array = first_entity<AcDbMInsertBlock>(*db);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->columns(), 3);
    EXPECT_EQ(array->rows(), 2);
    EXPECT_EQ(array->columnSpacing(), 10);
    EXPECT_NEAR(array->rotation(), std::numbers::pi / 2, 1e-15);
}

TEST(Members, WhatEntitiesShare) {
    const auto db =
        load(with_entities("0\nPOINT\n62\n5\n420\n1193046\n60\n1\n347\nFF\n0\nPOINT\n67\n1\n"));
    const auto* point = first_entity<AcDbPoint>(*db);
    EXPECT_TRUE(point->entityColor().isByColor()) << "a true colour wins over an index";
    EXPECT_EQ(point->entityColor().word() & 0xffffff, 0x123456u);
    EXPECT_EQ(point->visibility(), AcDb::kInvisible);
    EXPECT_EQ(point->materialId().handle().value(), 0xffu);
    EXPECT_FALSE(point->materialId().isValid()) << "nothing has that handle";
    EXPECT_EQ(AcDbBlockTableRecord::cast(db->modelSpaceId().stub()->object)->entities().size(), 1u)
        << "the other one lies in paper space";
}

TEST(Members, MissingFourthCornerIsTheThird) {
    const auto db =
        load(with_entities("0\n3DFACE\n10\n1\n20\n1\n11\n2\n21\n1\n12\n2\n22\n2\n32\n5\n"));
    const auto& points = first_entity<AcDbFace>(*db)->points();
    EXPECT_EQ(points[3], points[2]);
}

TEST(Members, AttributesBelongToTheirReference) {
    const auto db =
        load(with_entities("0\nINSERT\n66\n1\n2\n*Model_Space\n0\nATTRIB\n1\nv1\n2\nT1\n"
                           "0\nATTRIB\n1\nv2\n2\nT2\n0\nSEQEND\n0\nPOINT\n8\n0\n"));
    const auto* reference = first_entity<AcDbBlockReference>(*db);
    ASSERT_EQ(reference->attributes().size(), 2u);
    const auto* second = AcDbAttribute::cast(reference->attributes()[1].stub()->object);
    EXPECT_EQ(second->tag(), "T2");
    EXPECT_EQ(second->textString(), "v2");
    EXPECT_EQ(AcDbBlockTableRecord::cast(db->modelSpaceId().stub()->object)->entities().size(), 2u);
}

TEST(Members, LongTextsAreJoinedAndCutWithinNoCharacter) {
    std::string text;
    while (text.size() < 600) {
        text += "Wände ";
    }
    const auto db = load(with_entities(
        "0\nMTEXT\n3\n" + text.substr(0, 251) + "\n1\n" + text.substr(251) + "\n", "AC1027"));
    EXPECT_EQ(first_entity<AcDbMText>(*db)->textString(), text);
    const auto again =
        load(with_entities("0\nMTEXT\n" + written(*first_entity<AcDbMText>(*db)), "AC1027"));
    EXPECT_EQ(first_entity<AcDbMText>(*again)->textString(), text);
}

TEST(Members, HatchLoopsOfAllKinds) {
    const auto db = load(with_entities(
        "0\nHATCH\n100\nAcDbEntity\n8\n0\n100\nAcDbHatch\n10\n0\n20\n0\n30\n2\n2\nSOLID\n70\n1\n71"
        "\n0\n91\n2\n"
        "92\n7\n72\n1\n73\n1\n93\n2\n10\n0\n20\n0\n42\n1\n10\n2\n20\n0\n42\n1\n97\n0\n"
        "92\n1\n93\n2\n72\n1\n10\n0\n20\n0\n11\n1\n21\n0\n72\n2\n10\n0\n20\n0\n40\n1\n50\n0\n51\n90"
        "\n73\n1\n"
        "97\n0\n75\n0\n76\n1\n"));
    const auto* hatch = first_entity<AcDbHatch>(*db);
    EXPECT_TRUE(hatch->isSolidFill());
    ASSERT_EQ(hatch->loops().size(), 2u);
    AcDbExtents box;
    ASSERT_EQ(hatch->getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.minPoint().y, -1, 0.01) << "the half circles of the bulges";
    EXPECT_NEAR(box.maxPoint().y, 1, 0.01);
    EXPECT_EQ(box.maxPoint().z, 2);
    std::vector<AcDbHatchRing> rings;
    std::size_t budget = 1000;
    hatch->loops()[1].addRings(rings, 0.01, budget);
    ASSERT_EQ(rings.size(), 1u);
    EXPECT_NEAR(rings[0].back().y, 1, 1e-12) << "the arc ends at 90 degrees";
}

TEST(Members, UnknownKindsKeepEverything) {
    const std::string source =
        with_entities("  0\nACME_THING\n  5\nA\n  8\nWalls\n  1\nno such data\n1070\n7\n");
    const auto db = load(source);
    const auto* thing = first_entity<AcDbUnknownEntity>(*db);
    EXPECT_EQ(thing->dxfName(), "ACME_THING");
    EXPECT_STREQ(thing->notRenderedReason(), "unknown-kind");
    EXPECT_EQ(thing->layer(), "Walls");
    EXPECT_EQ(save(*db), source);
}

TEST(Members, BigCoordinatesStayExact) {
    const auto db = load(with_entities("0\nPOINT\n10\n512345678.1234567\n20\n-4.2e9\n30\n1e-9\n"));
    const AcGePoint3d p = first_entity<AcDbPoint>(*db)->position();
    EXPECT_EQ(p.x, 512345678.1234567);
    EXPECT_EQ(p.y, -4.2e9);
    EXPECT_EQ(p.z, 1e-9);
}

} // namespace
