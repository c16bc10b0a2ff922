// Inserts as files have them: attributes, arrays, anonymous blocks, scales and planes.
#include "tests/host/references/files.h"

using namespace refs;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct Inserts : Folder {
    AcDbDatabase& drawing(const Text& text) {
        write("a.dxf", text);
        db = open("a.dxf");
        return *db;
    }
    std::unique_ptr<AcDbDatabase> db;
};

std::string attribute(const std::string& text, double x, int flags, const std::string& more = "") {
    return fmt::format(
        "0\nATTRIB\n8\n0\n39\n1\n{}10\n{}\n20\n0\n30\n0\n40\n1\n1\n{}\n2\nTAG\n70\n{}\n", more, x,
        text, flags);
}

/// Where nested drawables other than the contents of blocks are drawn.
std::vector<double> attribute_places(AcDbDatabase& db) {
    gi::Recorder recorder(&db);
    for (const AcDbObjectId id : model_entities(db)) {
        const AcDbObjectPointer<AcDbEntity> entity(id);
        recorder.record(entity.object());
    }
    std::vector<double> places;
    for (const gi::RecordedCall& call : recorder.callsOf(gi::Primitive::kDraw)) {
        places.push_back(call.transform.entry[0][3]);
    }
    return places;
}

TEST_F(Inserts, VisibleAttributesAreDrawnWithEveryMember) {
    const std::string attributes =
        attribute("shown", 1, 0) + attribute("hidden", 2, 1) + "0\nSEQEND\n8\n0\n";
    AcDbDatabase& db = drawing(
        {"", "", block("A", ""), insert("A", 50, "66\n1\n70\n3\n71\n1\n44\n10\n") + attributes});
    EXPECT_THAT(attribute_places(db), ElementsAre(0, 10, 20));
    const AcDbDrawReport r = acdbCollectDrawReport(db);
    std::uint64_t told = r.drawn; // what the fonts of the machine make of them
    for (const auto* rows : {&r.not_drawn, &r.approximate}) {
        for (const AcDbDrawReportRow& row : *rows) {
            told += row.count;
        }
    }
    EXPECT_EQ(told, 3u);
    EXPECT_EQ(r.hidden, 3u);
}

TEST_F(Inserts, AnonymousBlocksAreBlocks) {
    for (const char* name : {"*U1", "*E7", "*X12", "*D3", "*T1", "*A9"}) {
        AcDbDatabase& db = drawing({"", "", block(name, face(3), 1), insert(name, 10)});
        EXPECT_THAT(corners(db), ElementsAre(13)) << name;
    }
}

TEST_F(Inserts, ScalesOfZero) {
    const auto scaled = [&](const char* scales) -> AcDbDatabase& {
        return drawing({"", "", block("A", face(3)), insert("A", 10, scales)});
    };
    EXPECT_THAT(corners(scaled("41\n2\n42\n2\n43\n0\n")), ElementsAre(16))
        << "programs for plans write a height of 0";
    for (const char* scales : {"41\n0\n", "42\n0\n", "41\n0\n42\n0\n43\n0\n"}) {
        EXPECT_THAT(corners(scaled(scales)), IsEmpty());
        const AcDbDrawReport r = acdbCollectDrawReport(*db);
        ASSERT_THAT(r.not_drawn, SizeIs(1));
        EXPECT_EQ(r.not_drawn[0].code, "zero-scale");
        EXPECT_EQ(r.drawn, 0u);
    }
}

TEST_F(Inserts, MirroredAndUnevenOnes) {
    AcDbDatabase& db =
        drawing({"", "", block("A", face(3)),
                 insert("A", 0, "41\n-1\n42\n1\n43\n1\n") +
                     insert("A", 0, "41\n2\n42\n3\n43\n4\n210\n0\n220\n0\n230\n-1\n")});
    const auto drawn = shells(db);
    ASSERT_THAT(drawn, SizeIs(2));
    EXPECT_LT(drawn[0].transform.det(), 0);
    EXPECT_EQ(drawn[0].points.front().x, -3);
    EXPECT_GT(drawn[1].transform.det(), 0) << "a plane seen from below is turned, not mirrored";
    EXPECT_NEAR(drawn[1].points.front().x, -6, 1e-12);
}

TEST_F(Inserts, PlanesThatAreNone) {
    for (const char* plane : {"210\n0\n220\n0\n230\n0\n", "210\nnan\n220\n0\n230\n1\n",
                              "210\n1e-200\n220\n0\n230\n0\n", "210\n1e200\n220\n0\n230\n0\n"}) {
        AcDbDatabase& db = drawing({"", "", block("A", face(3)), insert("A", 10, plane)});
        for (const gi::RecordedCall& call : shells(db)) {
            EXPECT_TRUE(std::isfinite(call.points.front().x)) << plane;
        }
        const AcDbDrawReport r = acdbCollectDrawReport(db);
        EXPECT_EQ(shells(db).size(), r.drawn) << plane;
        EXPECT_EQ(r.drawn + r.not_drawn.size(), 1u) << "drawn or told: " << plane;
    }
}

} // namespace
