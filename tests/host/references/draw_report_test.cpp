// The report of what is not drawn: how many, which, and how large a share.
#include "tests/host/references/files.h"

#include "host/db/curves.h"

#include <chrono>

using namespace refs;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct DrawReport : Folder {
    AcDbDrawReport report(const Text& text) {
        write("a.dxf", text);
        db = open("a.dxf");
        return acdbCollectDrawReport(*db);
    }
    std::unique_ptr<AcDbDatabase> db;
};

TEST_F(DrawReport, CountsHandlesAndShares) {
    std::string entities = line(0, 1, 0xA0);
    for (int i = 1; i < 12; ++i) {
        entities += line(i, 1, 0xA0 + i);
    }
    entities += "0\nPOINT\n5\nB0\n8\n0\n10\n24\n20\n0\n30\n0\n"; // the drawing: 24 by 1
    entities += face(23) + "0\nTHING\n5\nC0\n8\n0\n";
    const AcDbDrawReport r = report({"", "", "", entities});
    ASSERT_EQ(r.not_drawn.size(), 3u);
    const AcDbDrawReportRow& lines = r.not_drawn[0];
    EXPECT_EQ(lines.code, "curve-without-thickness");
    EXPECT_EQ(lines.words, "lines and curves without thickness have no body");
    EXPECT_EQ(lines.count, 12u);
    EXPECT_THAT(lines.handles,
                ElementsAre("A0", "A1", "A2", "A3", "A4", "A5", "A6", "A7", "A8", "A9"));
    EXPECT_NEAR(lines.share, 12 / std::hypot(24, 1), 1e-12);
    EXPECT_EQ(r.not_drawn[1].code, "point");
    EXPECT_EQ(r.not_drawn[1].share, 0);
    EXPECT_EQ(r.not_drawn[2].code, "unknown-kind");
    EXPECT_THAT(r.not_drawn[2].handles, ElementsAre("C0"));
    EXPECT_EQ(r.drawn, 1u);
    EXPECT_EQ(r.hidden, 0u);
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.approximate, IsEmpty());
}

TEST_F(DrawReport, BlocksCountAsOftenAsTheyAreDrawn) {
    // inner: a line and a face; outer: inner twice, and an array of 3 by 2.
    const std::string blocks =
        block("inner", line(0, 1, 0x11) + face(0)) +
        block("outer", insert("inner", 0) + insert("inner", 5) +
                           insert("inner", 10, "70\n3\n71\n2\n44\n10\n45\n0\n"));
    const AcDbDrawReport r = report(
        {"", "", blocks, insert("outer", 0) + insert("outer", 100, "41\n2\n42\n2\n43\n2\n")});
    ASSERT_EQ(r.not_drawn.size(), 1u);
    EXPECT_EQ(r.not_drawn[0].count, 16u);
    EXPECT_THAT(r.not_drawn[0].handles, ElementsAre("11"));
    EXPECT_EQ(r.drawn, 16u);
    // Lines from 0 to 31 and, twice as large, from 100 to 162; faces as high as 2.
    EXPECT_NEAR(r.not_drawn[0].share, 162 / std::hypot(162, 2), 1e-12);
}

TEST_F(DrawReport, HiddenThingsAreNotMissing) {
    const std::string table =
        layers({"0\n70\n0\n62\n7\n", "Off\n70\n0\n62\n-7\n", "Frozen\n70\n1\n62\n7\n"});
    const std::string blocks = block("B", line(0, 1, 0x11, "8\nOff\n") + line(0, 1, 0x12)) +
                               block("C", line(0, 1, 0x13) + line(0, 1, 0x14));
    std::string on_frozen = insert("C", 0);
    on_frozen.replace(on_frozen.find("8\n0\n"), 4, "8\nFrozen\n");
    const AcDbDrawReport r =
        report({"", table, blocks,
                insert("B", 0) + insert("B", 1) + on_frozen + line(0, 1, 0x15, "8\nFrozen\n") +
                    line(0, 1, 0x16, "8\n0\n60\n1\n")});
    ASSERT_EQ(r.not_drawn.size(), 1u);
    EXPECT_EQ(r.not_drawn[0].count, 2u);
    EXPECT_THAT(r.not_drawn[0].handles, ElementsAre("12"));
    EXPECT_EQ(r.hidden, 2u + 1u + 1u + 1u);
}

TEST_F(DrawReport, BlocksWithinThemselvesAndMissingOnes) {
    const AcDbDrawReport r =
        report({"", "", block("A", face(0) + insert("A", 3, "5\n1A\n")),
                insert("A", 0) + insert("A", 9) + insert("None", 0, "5\n1B\n")});
    ASSERT_NE(row_of(r, "damaged"), nullptr);
    EXPECT_EQ(row_of(r, "damaged")->count, 2u);
    EXPECT_THAT(row_of(r, "damaged")->handles, ElementsAre("1A"));
    EXPECT_THAT(row_of(r, "damaged")->details, ElementsAre("block A inserts itself"));
    ASSERT_NE(row_of(r, "missing-block"), nullptr);
    EXPECT_THAT(row_of(r, "missing-block")->details, ElementsAre("None"));
    EXPECT_EQ(r.drawn, 2u);
}

TEST_F(DrawReport, CountsThatDoNotFitStayAtTheMost) {
    std::string blocks = block("b0", line(0, 1, 0x11));
    for (int i = 1; i <= 5; ++i) { // each an array of 32767 by 32767 of the one before
        blocks += block(fmt::format("b{}", i), insert(fmt::format("b{}", i - 1), 0,
                                                      "70\n32767\n71\n32767\n44\n1\n45\n1\n"));
    }
    const AcDbDrawReport r = report({"", "", blocks, insert("b5", 0)});
    ASSERT_EQ(r.not_drawn.size(), 1u);
    EXPECT_EQ(r.not_drawn[0].count, ~std::uint64_t{0});
}

/// Things that are drawn in parts.
class Patchy : public AcDbLine {
public:
    using AcDbLine::AcDbLine;
    const char* notRenderedReason() const override { return nullptr; }
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override {
        findings.push_back({"solid-face-missing", "torus", 2});
        findings.push_back({"solid-face-missing", "spline", 3});
        findings.push_back({"mesh-limit", "", 1});
    }
};

TEST_F(DrawReport, ThingsDrawnInPartsAreApproximate) {
    AcDbDatabase drawing;
    {
        AcDbObjectPointer<AcDbBlockTableRecord> space(drawing.modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        for (int i = 0; i < 2; ++i) {
            space->appendAcDbEntity(
                std::make_unique<Patchy>(AcGePoint3d{0, 0, 0}, AcGePoint3d{1.0 + i, 0, 0}), id);
        }
    }
    const AcDbDrawReport r = acdbCollectDrawReport(drawing);
    EXPECT_THAT(r.not_drawn, IsEmpty());
    ASSERT_EQ(r.approximate.size(), 2u);
    EXPECT_EQ(r.approximate[0].code, "solid-face-missing");
    EXPECT_EQ(r.approximate[0].count, 2u) << "things";
    EXPECT_EQ(r.approximate[0].parts, 10u) << "faces";
    EXPECT_THAT(r.approximate[0].details, ElementsAre("torus", "spline"));
    EXPECT_EQ(r.approximate[0].share, 1);
    EXPECT_EQ(r.approximate[1].code, "mesh-limit");
}

TEST_F(DrawReport, CanBeStopped) {
    std::string entities;
    for (int i = 0; i < 10000; ++i) {
        entities += line(i, 1, 0x1000 + i);
    }
    write("a.dxf", Text{"", "", "", entities});
    db = open("a.dxf");
    int asked = 0;
    const AcDbDrawReport r = acdbCollectDrawReport(*db, [&] { return ++asked < 2; });
    EXPECT_FALSE(r.complete);
    ASSERT_EQ(r.not_drawn.size(), 1u) << "what was found so far";
    EXPECT_LT(r.not_drawn[0].count, 10000u);
}

TEST_F(DrawReport, EveryCodeOfUnknownKindsIsInTheTable) {
    for (const char* kind : {"3DSOLID",       "BODY",        "REGION",
                             "SURFACE",       "NURBSURFACE", "DIMENSION",
                             "ARC_DIMENSION", "LEADER",      "MULTILEADER",
                             "TOLERANCE",     "ACAD_TABLE",  "MLINE",
                             "RAY",           "SHAPE",       "PDFUNDERLAY",
                             "OLE2FRAME",     "VIEWPORT",    "ACAD_PROXY_ENTITY",
                             "WIPEOUT",       "NONSENSE"}) {
        const AcDbDrawReport r =
            report({"", "", "", std::string("0\n") + kind + "\n5\nA1\n8\n0\n"});
        for (const AcDbDrawReportRow& row : r.not_drawn) {
            EXPECT_NE(acdbFindDrawCode(row.code), nullptr) << kind << " " << row.code;
        }
        EXPECT_EQ(r.not_drawn.size() + r.hidden + r.drawn, 1u) << kind;
    }
}

} // namespace
