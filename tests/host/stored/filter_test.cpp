// Clips of block references, as drawings store them.
#include "bodies.h"

#include "../db/support.h"
#include "host/db/block_reference.h"
#include "host/db/spatial_filter.h"
#include "host/gi/recorder.h"

#include <gmock/gmock.h>

using namespace test_dxf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Twelve numbers of a transform that moves and scales.
std::string matrix(double x, double y, double scale = 1) {
    const double m[] = {scale, 0, 0, x, 0, scale, 0, y, 0, 0, scale, 0};
    std::string text;
    for (const double v : m) {
        text += "40\n" + std::to_string(v) + "\n";
    }
    return text;
}

std::string points(std::initializer_list<AcGePoint2d> list) {
    std::string text = "70\n" + std::to_string(list.size()) + "\n";
    for (const AcGePoint2d& p : list) {
        text += "10\n" + std::to_string(p.x) + "\n20\n" + std::to_string(p.y) + "\n";
    }
    return text;
}

/// A block with a square of 10 on the ground, inserted at (100, 0) twice as large; `filter` are the
/// tags of the clip, `more` further objects.
std::string drawing(const std::string& filter, const std::string& more = "",
                    const std::string& insert = "10\n100\n20\n0\n30\n0\n41\n2\n42\n2\n43\n2\n") {
    return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n"
           "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n5\nB1\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\n"
           "part\n70\n0\n10\n0\n20\n0\n30\n0\n"
           "0\n3DFACE\n5\nB2\n100\nAcDbEntity\n8\n0\n100\nAcDbFace\n10\n0\n20\n0\n30\n0\n11\n10\n"
           "21\n0\n31\n0\n12\n10\n22\n10\n32\n0\n13\n0\n23\n10\n33\n0\n0\nENDBLK\n5\nB3\n0\nENDSEC"
           "\n"
           "0\nSECTION\n2\nENTITIES\n0\nINSERT\n5\nA1\n102\n{ACAD_XDICTIONARY\n360\nD1\n102\n}\n"
           "100\nAcDbEntity\n8\n0\n100\nAcDbBlockReference\n2\npart\n" +
           insert +
           "0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n"
           "0\nDICTIONARY\n5\nC\n330\n0\n100\nAcDbDictionary\n"
           "0\nDICTIONARY\n5\nD1\n330\nA1\n100\nAcDbDictionary\n3\nACAD_FILTER\n360\nD2\n"
           "0\nDICTIONARY\n5\nD2\n330\nD1\n100\nAcDbDictionary\n3\nSPATIAL\n360\nD3\n"
           "0\nSPATIAL_FILTER\n5\nD3\n" +
           (more.empty() ? "" : "102\n{ACAD_XDICTIONARY\n360\nD4\n102\n}\n") +
           "330\nD2\n100\nAcDbFilter\n100\nAcDbSpatialFilter\n" + filter + more +
           "0\nENDSEC\n0\nEOF\n";
}

const std::string kPlane = "210\n0\n220\n0\n230\n1\n11\n0\n21\n0\n31\n0\n";
const std::string kNoDepth = "71\n1\n72\n0\n73\n0\n";
/// The block lay where it lies: the inverse of its transform, and clip coordinates are the world's.
const std::string kHere = matrix(-50, 0, 0.5) + matrix(0, 0);

struct Result {
    double area = 0;
    std::vector<std::string> codes;
    AcDbExtents box;
};

Result draw(const std::string& bytes) {
    Result result;
    const auto db = load(bytes);
    const AcDbObjectPointer<AcDbBlockTableRecord> space(db->modelSpaceId());
    for (const AcDbObjectId id : space->entities()) {
        const AcDbObjectPointer<AcDbBlockReference> reference(id);
        gi::Recorder recorder(db.get());
        recorder.record(reference.object());
        result.area += bodies::area(recorder);
        std::vector<AcDbDrawFinding> findings;
        reference->drawFindings(findings);
        for (const AcDbDrawFinding& finding : findings) {
            result.codes.emplace_back(finding.code);
        }
        reference->getGeomExtents(result.box);
    }
    return result;
}

TEST(ReferenceClip, CutsByARectangleInTheWorld) {
    const Result result = draw(drawing(points({{105, 5}, {110, 50}}) + kPlane + kNoDepth + kHere));
    EXPECT_NEAR(result.area, 5 * 15, 1e-9);
    EXPECT_THAT(result.codes, IsEmpty());
    EXPECT_NEAR(result.box.minPoint().x, 105, 1e-9);
    EXPECT_NEAR(result.box.maxPoint().x, 110, 1e-9);
    EXPECT_NEAR(result.box.maxPoint().y, 20, 1e-9);
}

TEST(ReferenceClip, GoesWithABlockThatIsMovedAndTurned) {
    const std::string filter = points({{105, 5}, {110, 50}}) + kPlane + kNoDepth + kHere;
    const Result moved =
        draw(drawing(filter, "", "10\n-7\n20\n3\n30\n0\n41\n2\n42\n2\n43\n2\n50\n30\n"));
    EXPECT_NEAR(moved.area, 5 * 15, 1e-9);
    const Result larger = draw(drawing(filter, "", "10\n100\n20\n0\n30\n0\n41\n4\n42\n4\n43\n4\n"));
    EXPECT_NEAR(larger.area, 4 * 5 * 15, 1e-9);
}

TEST(ReferenceClip, SecondTransformLeadsToTheBoundary) {
    const Result result = draw(drawing(points({{0, 0}, {5, 0}, {0, 5}}) + kPlane + kNoDepth +
                                       matrix(-50, 0, 0.5) + matrix(-100, 0)));
    EXPECT_NEAR(result.area, 12.5, 1e-9);
}

TEST(ReferenceClip, FrontAndBackPlanes) {
    const std::string ring = points({{0, -1000}, {1000, 1000}}) + kPlane;
    const auto depth = [&](const char* tags) {
        return draw(drawing(ring + "71\n1\n" + tags + kHere)).area;
    };
    EXPECT_NEAR(depth("72\n1\n40\n1\n73\n1\n41\n-1\n"), 400, 1e-9); // the face lies at 0
    EXPECT_EQ(depth("72\n1\n40\n-1\n73\n0\n"), 0);
    EXPECT_EQ(depth("72\n0\n73\n1\n41\n1\n"), 0);
    EXPECT_NEAR(depth("72\n0\n40\n-1\n73\n0\n41\n1\n"), 400, 1e-9); // distances that are off
}

TEST(ReferenceClip, InvertedOnesAreHoles) {
    const std::string kept =
        "0\nDICTIONARY\n5\nD4\n330\nD3\n100\nAcDbDictionary\n3\nACAD_XREC_ROUNDTRIP\n360\nD5\n"
        "0\nXRECORD\n5\nD5\n330\nD4\n100\nAcDbXrecord\n280\n1\n102\nACAD_INVERTEDCLIP_ROUNDTRIP\n"
        "10\n105\n20\n5\n30\n0\n10\n110\n20\n15\n30\n0\n102\nACAD_INVERTEDCLIP_ROUNDTRIP_COMPARE\n"
        "10\n1\n20\n1\n30\n0\n";
    const Result result =
        draw(drawing(points({{0, 0}, {200, 200}}) + kPlane + kNoDepth + kHere, kept));
    EXPECT_NEAR(result.area, 400 - 50, 1e-9);
    EXPECT_NEAR(result.box.maxPoint().x, 120, 1e-9);
}

TEST(ReferenceClip, WhatIsOffOrDamagedIsDrawnWhole) {
    const std::string ring = points({{105, 5}, {110, 50}}) + kPlane;
    const Result off = draw(drawing(ring + "71\n0\n72\n0\n73\n0\n" + kHere));
    EXPECT_NEAR(off.area, 400, 1e-9);
    EXPECT_THAT(off.codes, IsEmpty());
    for (const std::string& bad :
         {ring + kNoDepth + matrix(0, 0), ring + kNoDepth + matrix(0, 0, 0) + matrix(0, 0),
          points({{1, 1}}) + kPlane + kNoDepth + kHere, std::string("70\n0\n"),
          ring + kNoDepth + matrix(0, 0) + matrix(0, 0, 0)}) {
        const Result result = draw(drawing(bad));
        EXPECT_NEAR(result.area, 400, 1e-9);
        EXPECT_THAT(result.codes, ElementsAre("clip-ignored"));
    }
}

TEST(ReferenceClip, FiltersComeBackAsTheyWere) {
    const std::string bytes = drawing(points({{105, 5}, {110, 50}}) + kPlane +
                                      "71\n1\n72\n1\n40\n3.5\n73\n1\n41\n-2\n" + kHere);
    const auto db = load(bytes);
    EXPECT_EQ(save(*db), bytes);
    const AcDbObjectPointer<AcDbSpatialFilter> filter(db->getAcDbObjectId(AcDbHandle(0xd3)),
                                                      AcDb::kForWrite);
    ASSERT_TRUE(filter);
    filter->setBoundary({{1, 2}, {3, 4}});
    const auto again = load(save(*db));
    const AcDbObjectPointer<AcDbSpatialFilter> changed(again->getAcDbObjectId(AcDbHandle(0xd3)));
    ASSERT_TRUE(changed);
    EXPECT_EQ(changed->boundary()[1].y, 4);
    const auto volume = changed->volume(AcGeMatrix3d());
    ASSERT_TRUE(volume);
    EXPECT_EQ(volume->front, 3.5);
    EXPECT_EQ(volume->back, -2);
}

} // namespace
