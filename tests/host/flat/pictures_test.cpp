// What draws itself through blocks or stored pictures: dimensions, tables, leaders, multilines.
#include "tests/host/flat/support.h"

#include "host/db/annotation.h"
#include "host/db/block_extents.h"
#include "host/db/dimension.h"
#include "host/db/frames.h"
#include "host/db/helix.h"
#include "host/db/leader.h"
#include "host/db/mleader.h"
#include "host/db/mline.h"
#include "host/db/table.h"

#include <numbers>

using namespace test_flat;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr double kPi = std::numbers::pi;

/// A block with a filled unit square, its corner at (2, 0).
std::string block(const std::string& name, const std::string& extra = {}) {
    return " 0 BLOCK 8 0 2 " + name +
           " 70 1 10 0 20 0 30 0 0 SOLID 8 0 10 2 20 0 30 0 11 3 21 0 31 0 12 2 22 1 32 0 13 3 23 "
           "1 "
           "33 0" +
           extra + " 0 ENDBLK 8 0";
}

AcDbEntity* onlyEntity(AcDbDatabase& db) {
    const auto* space = AcDbBlockTableRecord::cast(db.modelSpaceId().stub()->object);
    EXPECT_EQ(space->entities().size(), 1U);
    return AcDbEntity::cast(space->entities().at(0).stub()->object);
}

/// A drawing of one entity, which comes back byte for byte, changed colour or not.
struct One {
    std::unique_ptr<AcDbDatabase> db;
    AcDbEntity* entity = nullptr;
    One(const std::string& blocks, const std::string& tags, const std::string& objects = {},
        const std::string& tables = {}) {
        const std::string source = drawing(blocks, tags, objects, tables);
        db = test_dxf::load(source);
        if (blocks.empty()) { // these blocks have no records, which is found
            EXPECT_EQ(test_dxf::findings(*db), "");
        }
        entity = onlyEntity(*db);
        EXPECT_EQ(test_dxf::save(*db), source);
        entity->assertWriteEnabled();
        EXPECT_EQ(test_dxf::save(*db), source) << "opened to be written, not changed";
    }
    AcDbExtents box() const {
        AcDbExtents extents;
        EXPECT_EQ(entity->getGeomExtents(extents), Acad::eOk);
        return extents;
    }
};

TEST(Dimensions, EachKindHasItsClass) {
    const char* const classes[] = {"AcDbRotatedDimension",      "AcDbAlignedDimension",
                                   "AcDb2LineAngularDimension", "AcDbDiametricDimension",
                                   "AcDbRadialDimension",       "AcDb3PointAngularDimension",
                                   "AcDbOrdinateDimension"};
    for (int kind = 0; kind < 7; ++kind) {
        const One one(block("*D1"),
                      " 0 DIMENSION 100 AcDbEntity 8 0 100 AcDbDimension 2 *D1 10 0 20 "
                      "0 30 0 70 " +
                          std::to_string(kind + 32 + (kind == 6 ? 64 : 0)) + " 3 Standard");
        EXPECT_STREQ(one.entity->isA()->name(), classes[kind]);
        EXPECT_TRUE(one.entity->isKindOf(AcDbDimension::desc()));
        EXPECT_EQ(one.entity->dxfName(), "DIMENSION");
        EXPECT_NEAR(surfaceOf(drawn(*one.entity)), 1, 1e-12);
        EXPECT_THAT(codes(*one.entity), IsEmpty());
    }
}

TEST(Dimensions, CopiesAreMovedAndMissingBlocksTold) {
    // The offset is given in the object's system, where X leads to -X here.
    const One copy(
        block("*D1"),
        " 0 DIMENSION 100 AcDbEntity 8 0 100 AcDbDimension 2 *D1 70 1 210 0 220 0 230 -1 "
        "100 AcDbAlignedDimension 12 10 22 4 32 0 13 0 23 0 33 0");
    EXPECT_NEAR(copy.box().minPoint().x, 2 - 10, 1e-12);
    EXPECT_NEAR(copy.box().maxPoint().y, 1 + 4, 1e-12);
    EXPECT_NEAR(drawn(*copy.entity).at(0).points.at(0).x, -8, 1e-12);
    const One missing("", " 0 DIMENSION 8 0 2 *D7 70 1");
    EXPECT_THAT(codes(*missing.entity), ElementsAre("dimension"));
    EXPECT_THAT(drawn(*missing.entity), IsEmpty());
    const One arc(block("*D1"), " 0 ARC_DIMENSION 8 0 2 *D1 70 5");
    EXPECT_STREQ(arc.entity->isA()->name(), "AcDbArcDimension");
    EXPECT_NEAR(surfaceOf(drawn(*arc.entity)), 1, 1e-12);
}

TEST(Dimensions, OneWithinItsOwnBlockEnds) {
    const One one(block("*D1", " 0 DIMENSION 8 0 2 *D1 70 1"), " 0 DIMENSION 8 0 2 *D1 70 1");
    EXPECT_NEAR(surfaceOf(drawn(*one.entity)), 1, 1e-12);
    EXPECT_NEAR(one.box().maxPoint().x, 3, 1e-12);
}

TEST(Tables, DrawTheirBlockAlongTheirDirection) {
    const std::string tags =
        " 0 ACAD_TABLE 100 AcDbEntity 8 0 100 AcDbBlockReference 2 *T1 10 10 20 "
        "0 30 0 100 AcDbTable 11 0 21 1 31 0 91 1 92 1 41 7 40 9 11 5 21 5";
    const One table(block("*T1"), tags);
    ASSERT_NE(AcDbTable::cast(table.entity), nullptr);
    EXPECT_NEAR(surfaceOf(drawn(*table.entity)), 1, 1e-12);
    EXPECT_NEAR(table.box().minPoint().x, 9, 1e-9) << "rows run up, so the square lies left";
    EXPECT_NEAR(table.box().minPoint().y, 2, 1e-9);
    EXPECT_THAT(codes(*table.entity), IsEmpty());
    const One bare("", " 0 ACAD_TABLE 100 AcDbEntity 8 0 100 AcDbBlockReference 10 0 20 0 30 0");
    EXPECT_THAT(codes(*bare.entity), ElementsAre("table"));
}

constexpr const char* kStyles =
    " 0 TABLE 2 DIMSTYLE 70 1 0 DIMSTYLE 105 27 100 AcDbSymbolTableRecord 100 "
    "AcDbDimStyleTableRecord 2 Standard 70 0 40 2 41 0.5 0 ENDTAB";

TEST(Leaders, HaveTheArrowOfTheirStyle) {
    const One leader(
        "",
        " 0 LEADER 100 AcDbEntity 8 0 100 AcDbLeader 3 Standard 71 1 72 0 76 3 10 0 20 "
        "0 30 0 10 0 20 8 30 0 10 5 20 8 30 0",
        "", kStyles);
    // A head of length 2 x 0.5 that points down, a third as wide as long.
    const auto calls = drawn(*leader.entity);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_NEAR(surfaceOf({calls[1]}), 1.0 / 3 / 2, 1e-12);
    EXPECT_NEAR(calls[1].points.at(0).y, 0, 1e-12);
    EXPECT_NEAR(calls[1].points.at(1).y, 1, 1e-12);
    EXPECT_THAT(codes(*leader.entity), ElementsAre("curve-without-thickness"));
    EXPECT_EQ(leader.entity->notRenderedReason(), nullptr);
    // Its own values: a scale of 1 and an arrow of 3; the first segment is then too short.
    const One own("",
                  " 0 LEADER 100 AcDbEntity 8 0 100 AcDbLeader 3 Standard 76 2 10 0 20 0 30 0 10 0 "
                  "20 5 30 0 1001 ACAD 1000 DSTYLE 1002 { 1070 41 1040 3 1070 40 1040 1 1002 }",
                  "", kStyles);
    EXPECT_EQ(drawn(*own.entity).size(), 1U);
    EXPECT_STREQ(own.entity->notRenderedReason(), "curve-without-thickness");
}

TEST(Leaders, MayHaveABlockForAnArrow) {
    const One leader(
        " 0 BLOCK 5 30 8 0 2 _Dot 10 0 20 0 30 0 0 SOLID 8 0 10 -1 20 0 30 0 11 0 21 0 "
        "31 0 12 -1 22 1 32 0 13 0 23 1 33 0 0 ENDBLK 8 0",
        " 0 LEADER 100 AcDbEntity 8 0 100 AcDbLeader 3 Standard 76 2 10 0 20 0 30 0 10 "
        "10 20 0 30 0 1001 ACAD 1000 DSTYLE 1002 { 1070 341 1005 31 1002 }",
        "",
        std::string(kStyles) + " 0 TABLE 2 BLOCK_RECORD 70 1 0 BLOCK_RECORD 5 31 2 _Dot "
                               "0 ENDTAB");
    const auto calls = drawn(*leader.entity);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_NEAR(surfaceOf({calls[1]}), 1, 1e-9) << "a unit square times two halves";
    EXPECT_NEAR(leader.box().minPoint().y, -1, 1e-9) << "it points to -X, so up is down";
}

TEST(MultiLeaders, DrawArrowsLandingsAndBlocks) {
    const One leader(
        block("Tag"),
        " 0 MULTILEADER 100 AcDbEntity 8 0 100 AcDbMLeader 270 2 300 CONTEXT_DATA{ 40 1 10 0 20 0 "
        "30 "
        "0 140 0.6 290 0 296 1 341 31 14 0 24 0 34 1 15 20 25 0 35 0 16 2 26 2 36 2 46 0 110 0 120 "
        "0 "
        "130 0 111 1 121 0 131 0 112 0 122 1 132 0 297 0 302 LEADER{ 290 1 291 1 10 8 20 0 30 0 11 "
        "1 21 0 31 0 90 0 40 0.5 304 LEADER_LINE{ 10 0 20 0 30 0 91 0 305 } 304 LEADER_LINE{ 10 0 "
        "20 "
        "6 30 0 91 1 305 } 303 } 301 } 340 2A 170 1 42 0.18 172 1",
        "", " 0 TABLE 2 BLOCK_RECORD 70 1 0 BLOCK_RECORD 5 31 2 Tag 0 ENDTAB");
    const auto* mleader = AcDbMLeader::cast(leader.entity);
    ASSERT_NE(mleader, nullptr);
    ASSERT_EQ(mleader->branches().size(), 1U);
    EXPECT_EQ(mleader->branches()[0].lines.size(), 2U);
    const auto calls = drawn(*leader.entity);
    ASSERT_EQ(calls.size(), 5U) << "two lines with heads, one block";
    EXPECT_THAT(calls[0].points.back().x, testing::DoubleNear(8.5, 1e-12)) << "over the landing";
    EXPECT_NEAR(surfaceOf(calls), 2 * 0.6 * 0.2 / 2 + 4, 1e-9);
    EXPECT_NEAR(leader.box().maxPoint().x, 20 + 6, 1e-9);
    EXPECT_THAT(codes(*leader.entity), ElementsAre("curve-without-thickness"));
    const One text("",
                   " 0 MULTILEADER 100 AcDbEntity 8 0 100 AcDbMLeader 300 CONTEXT_DATA{ 290 1 304 "
                   "Words 301 } 170 0");
    EXPECT_EQ(AcDbMLeader::cast(text.entity)->contentText(), "Words");
    EXPECT_THAT(codes(*text.entity), ElementsAre("annotation", "text"));
}

/// A multiline of two elements 1 above and 1 below: two segments of 10 with a mitred corner.
std::string mline(int flags, const std::string& fill = " 75 0") {
    const auto vertex = [&](const char* point, const char* direction, const char* miter,
                            const char* away) {
        return std::string(" 11 ") + point + " 12 " + direction + " 13 " + miter + " 74 1 41 " +
               away + " 74 1 41 -" + away + fill;
    };
    return " 0 MLINE 100 AcDbEntity 8 0 100 AcDbMline 2 Wall 340 40 40 2 70 1 71 " +
           std::to_string(flags) + " 72 3 73 2 10 0 20 0 30 0 210 0 220 0 230 1" +
           vertex("0 21 0 31 0", "1 22 0 32 0", "0 23 1 33 0", "1") +
           vertex("10 21 0 31 0", "0 22 1 32 0", "-0.70710678118 23 0.70710678118 33 0",
                  "1.41421356237") +
           vertex("10 21 10 31 0", "0 22 1 32 0", "-1 23 0 33 0", "1");
}

std::string mlineStyle(int flags) {
    return " 0 MLINESTYLE 5 40 100 AcDbMlineStyle 2 Wall 70 " + std::to_string(flags) +
           " 3 x 62 5 51 90 52 90 71 2 49 0.5 62 256 6 BYLAYER 49 -0.5 62 256 6 BYLAYER";
}

TEST(Multilines, FillBetweenTheOuterElements) {
    const One plain("", mline(1), mlineStyle(0));
    EXPECT_EQ(drawn(*plain.entity).size(), 2U) << "lines only";
    EXPECT_THAT(codes(*plain.entity), ElementsAre("curve-without-thickness"));
    const One filled("", mline(1), mlineStyle(1));
    const auto calls = drawn(*filled.entity);
    ASSERT_EQ(calls.size(), 3U);
    EXPECT_NEAR(surfaceOf(calls), 2 * 20, 1e-8) << "the corner keeps the width";
    EXPECT_NEAR(areaOf(calls).z, 40, 1e-8);
    EXPECT_EQ(calls[2].traits.color, AcCmEntityColor::index(5));
    EXPECT_THAT(codes(*filled.entity), IsEmpty());
    EXPECT_NEAR(filled.box().maxPoint().x, 11, 1e-9);
    const One capped("", mline(1), mlineStyle(1 + 64 + 1024));
    EXPECT_NEAR(surfaceOf(drawn(*capped.entity)), 40 + kPi, 1e-3);
    EXPECT_NEAR(areaOf(drawn(*capped.entity)).z, 40 + kPi, 1e-3) << "caps look the same way";
    const One bare("", mline(1 + 4 + 8), mlineStyle(1 + 64 + 1024));
    EXPECT_NEAR(surfaceOf(drawn(*bare.entity)), 40, 1e-8) << "caps are suppressed";
    const One cut("", mline(1, " 75 4 42 0 42 2 42 5 42 10"), mlineStyle(1));
    EXPECT_NEAR(surfaceOf(drawn(*cut.entity)), 2 * 20 - 2 * 2 * 3, 0.7) << "a gap of 3 each";
}

TEST(Kinds, WithoutABodyAreClassesThatTellSo) {
    struct Case {
        const char *tags, *class_name, *code;
        bool boxed;
    };
    const Case cases[] = {
        {" 0 RAY 8 0 10 1 20 2 30 3 11 1 21 0 31 0", "AcDbRay", "curve-without-thickness", false},
        {" 0 XLINE 8 0 10 1 20 2 30 3 11 1 21 0 31 0", "AcDbXline", "curve-without-thickness",
         false},
        {" 0 SHAPE 8 0 10 1 20 2 30 3 40 2 2 BOX 41 1", "AcDbShape", "curve-without-thickness",
         true},
        {" 0 SHAPE 8 0 39 2 10 1 20 2 30 3 40 2 2 BOX", "AcDbShape", "font-missing", true},
        {" 0 TOLERANCE 8 0 3 Standard 10 1 20 2 30 3 1 {x} 11 1 21 0 31 0", "AcDbFcf", "annotation",
         true},
        {" 0 OLE2FRAME 8 0 70 2 3 Paint 10 0 20 2 30 0 11 2 21 0 31 0 71 2 72 1 73 3 90 1 310 00 1 "
         "OLE",
         "AcDbOle2Frame", "ole-object", true},
        {" 0 OLEFRAME 8 0 70 1", "AcDbOleFrame", "ole-object", false},
        {" 0 WIPEOUT 100 AcDbEntity 8 0 100 AcDbWipeout 90 0 10 1 20 1 30 0 11 4 21 0 31 0 12 0 22 "
         "2 "
         "32 0 13 1 23 1 70 7 280 1 71 1 91 2 14 -0.5 24 -0.5 14 0.5 24 0.5",
         "AcDbWipeout", "mask", true},
        {" 0 VIEWPORT 8 0 10 5 20 5 30 0 40 4 41 2 68 1 69 2", "AcDbViewport", "viewport", true},
        {" 0 CAMERA 8 0 340 0", "AcDbCamera", "view-frame", false},
        {" 0 SECTIONOBJECT 8 0 90 1 91 0 1 Cut 10 0 20 0 30 1 40 2 41 1 92 2 11 0 21 0 31 0 11 5 "
         "21 "
         "0 31 0",
         "AcDbSection", "view-frame", true},
        {" 0 GEOPOSITIONMARKER 8 0 90 1 10 1 20 2 30 3", "AcDbGeoPositionMarker", "annotation",
         true},
        {" 0 POSITIONMARKER 8 0 90 1 10 1 20 2 30 3", "AcDbGeoPositionMarker", "annotation", true},
        {" 0 MLEADER 8 0 170 1", "AcDbMLeader", "annotation", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.tags);
        const One one("", c.tags);
        EXPECT_STREQ(one.entity->isA()->name(), c.class_name);
        EXPECT_EQ(" 0 " + one.entity->dxfName(),
                  std::string(c.tags).substr(0, 3 + one.entity->dxfName().size()));
        EXPECT_THAT(codes(*one.entity), ElementsAre(c.code));
        AcDbExtents box;
        EXPECT_EQ(one.entity->getGeomExtents(box), c.boxed ? Acad::eOk : Acad::eNullExtents);
        EXPECT_NEAR(surfaceOf(drawn(*one.entity)), 0, 0);
    }
    const One mask("", cases[7].tags);
    EXPECT_NEAR(mask.box().maxPoint().x, 5, 1e-12);
    EXPECT_NEAR(mask.box().maxPoint().y, 3, 1e-12);
}

TEST(Helices, AreTheirSplineOrPointsOfTheHelix) {
    const std::string helix =
        " 100 AcDbHelix 90 29 91 63 10 0 20 0 30 0 11 2 21 0 31 0 12 0 22 0 32 "
        "1 40 1 41 3 42 1.5 290 1 280 1";
    const One stored("",
                     " 0 HELIX 100 AcDbEntity 8 0 100 AcDbSpline 70 8 71 1 72 4 73 2 40 0 40 0 40 "
                     "1 40 1 10 7 20 0 30 0 10 8 20 0 30 0" +
                         helix);
    const auto* read = AcDbHelix::cast(stored.entity);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->controlPoints().size(), 2U) << "the helix's own points are others";
    EXPECT_EQ(read->turns(), 3);
    EXPECT_NEAR(stored.box().minPoint().x, 7, 1e-12);
    const One made("", " 0 HELIX 100 AcDbEntity 8 0" + helix);
    const auto points = AcDbHelix::cast(made.entity)->sample(1e-3);
    ASSERT_GT(points.size(), 50U);
    EXPECT_NEAR(points.back().z, 4.5, 1e-9) << "three turns of 1.5";
    EXPECT_NEAR(points.back().x, 1, 1e-9);
    for (const AcGePoint3d& p : points) {
        const double part = p.z / 4.5;
        EXPECT_NEAR(std::hypot(p.x, p.y), 2 - part, 0.01);
    }
    EXPECT_THAT(codes(*made.entity), ElementsAre("curve-without-thickness"));
}

} // namespace
