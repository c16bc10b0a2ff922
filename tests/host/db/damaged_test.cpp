// Damaged files: what is found, where, and that the rest is read.
#include "support.h"

#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"

#include <algorithm>

using namespace test_dxf;

namespace {

const std::string kHead = "0\nSECTION\n2\nENTITIES\n";
const std::string kTail = "0\nENDSEC\n0\nEOF\n";

struct DamagedCase {
    const char* what;
    std::string bytes;
    const char* code;
    std::uint64_t line;
    std::size_t entities; ///< that model space has all the same
};

class Damaged : public testing::TestWithParam<DamagedCase> {};

TEST_P(Damaged, IsReadAsFarAsItGoesAndReported) {
    const auto db = load(GetParam().bytes);
    const AcDbLoadReport& report = db->loadReport();
    std::vector<AcDbLoadFinding> all = report.repaired;
    all.insert(all.end(), report.lost.begin(), report.lost.end());
    const auto found = std::find_if(all.begin(), all.end(), [](const AcDbLoadFinding& f) {
        return f.code == GetParam().code && f.line == GetParam().line;
    });
    std::string told;
    for (const AcDbLoadFinding& finding : all) {
        told += finding.code + " line " + std::to_string(finding.line) + "\n";
    }
    EXPECT_NE(found, all.end()) << GetParam().what << "\n" << told;
    const auto* space = AcDbBlockTableRecord::cast(db->modelSpaceId().stub()->object);
    EXPECT_EQ(space->entities().size(), GetParam().entities) << GetParam().what;
    EXPECT_EQ(save(*db), GetParam().bytes) << "written back as it was";
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Damaged,
    testing::Values(
        DamagedCase{"cut in a value", kHead + "0\nLINE\n8\n0\n10\n1\n20", "dxf-truncated", 11, 1},
        DamagedCase{"no end", kHead + "0\nPOINT\n8\n0\n", "dxf-missing-eof", 9, 1},
        DamagedCase{"no ENDSEC", kHead + "0\nPOINT\n8\n0\n0\nEOF\n", "dxf-missing-endsec", 9, 1},
        DamagedCase{"wrong code", kHead + "0\nPOINT\n8\n0\nxyz\n10\n1\n" + kTail,
                    "dxf-bad-group-code", 9, 1},
        DamagedCase{"no number", kHead + "0\nPOINT\n8\n0\n10\nabc\n" + kTail, "dxf-bad-number", 9,
                    1},
        DamagedCase{"NaN", kHead + "0\nPOINT\n10\nnan\n20\n1\n" + kTail, "dxf-bad-number", 7, 1},
        DamagedCase{"handle twice", kHead + "0\nPOINT\n5\nA1\n0\nPOINT\n5\nA1\n" + kTail,
                    "dxf-duplicate-handle", 9, 2},
        DamagedCase{"no SEQEND",
                    kHead + "0\nPOLYLINE\n66\n1\n0\nVERTEX\n10\n1\n0\nPOINT\n8\n0\n" + kTail,
                    "dxf-missing-seqend", 13, 2},
        DamagedCase{"section twice",
                    kHead + "0\nPOINT\n8\n0\n0\nENDSEC\n" + kHead + "0\nPOINT\n8\n0\n" + kTail,
                    "dxf-section-twice", 11, 2},
        DamagedCase{"no block of that name", kHead + "0\nINSERT\n2\nGONE\n" + kTail,
                    "dxf-missing-block", 8, 1},
        DamagedCase{"extrusion of no length", kHead + "0\nLINE\n210\n0\n220\n0\n230\n0\n" + kTail,
                    "dxf-zero-normal", 5, 1},
        DamagedCase{
            "block without record",
            "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n"
            "0\nBLOCK\n2\nA\n0\nENDBLK\n0\nENDSEC\n0\nEOF\n",
            "dxf-block-without-record", 15, 0},
        DamagedCase{"no ENDBLK", "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nA\n0\nPOINT\n8\n0\n" + kTail,
                    "dxf-missing-endblk", 13, 0},
        DamagedCase{"no ENDTAB",
                    "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n0\nLAYER\n2\nA\n" + kTail,
                    "dxf-missing-endtab", 13, 0},
        DamagedCase{"outside of sections", kHead + "0\nENDSEC\n0\nLINE\n8\n0\n0\nEOF\n",
                    "dxf-outside-section", 7, 0},
        DamagedCase{"degree out of range", kHead + "0\nSPLINE\n71\n9999\n" + kTail,
                    "dxf-bad-degree", 5, 1},
        DamagedCase{"array of no columns", kHead + "0\nINSERT\n2\nA\n70\n-5\n71\n7\n" + kTail,
                    "dxf-bad-count", 5, 1},
        DamagedCase{"mesh with missing corners",
                    kHead +
                        "0\nMESH\n92\n1\n10\n0\n20\n0\n30\n0\n93\n4\n90\n3\n90\n0\n90\n1\n90\n2\n" +
                        kTail,
                    "dxf-bad-mesh", 5, 1}));

TEST(DamagedFiles, AreRefusedInWordsOnlyWhenTheyAreNoDxf) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "is empty"},
        {"hello\nworld\n", "is not a DXF file"},
        {std::string(100000, '\0'), "is not a DXF file"},
        {std::string("AC1027\0\0\0", 9), "is a DWG file; only DXF files are read"},
        {"the word SECTION alone", "is not a DXF file"}};
    for (const auto& [bytes, words] : cases) {
        AcDbDatabase db(false);
        std::string error;
        EXPECT_EQ(db.dxfInMemory(bytes, error), Acad::eBadDxfFile);
        EXPECT_EQ(error, words);
    }
    AcDbDatabase db(false);
    std::string error;
    EXPECT_EQ(db.dxfIn("/no/such/file.dxf", error), Acad::eFileNotFound);
    EXPECT_EQ(error, "does not exist");
    EXPECT_EQ(db.dxfIn(std::filesystem::temp_directory_path(), error), Acad::eFileAccessErr);
    EXPECT_EQ(error, "is a directory");
}

TEST(DamagedFiles, AbsurdCountsReserveNothing) {
    const auto db =
        load(with_entities("0\nLWPOLYLINE\n90\n2000000000\n10\n1\n20\n2\n"
                           "0\nHATCH\n91\n2000000000\n92\n2\n93\n2000000000\n10\n1\n20\n1\n"
                           "0\nMESH\n92\n2000000000\n93\n2000000000\n"
                           "0\nPOLYLINE\n70\n16\n71\n32767\n72\n32767\n0\nSEQEND\n"));
    EXPECT_EQ(first_entity<AcDbPolyline>(*db)->numVerts(), 1u);
    EXPECT_TRUE(first_entity<AcDbPolygonMesh>(*db)->vertices().empty());
    EXPECT_LT(db->memoryInUse(), 1u << 20);
}

TEST(DamagedFiles, FindingsAreBounded) {
    std::string tags;
    for (int i = 0; i < 5000; ++i) {
        tags += "0\nPOINT\n10\nabc\n";
    }
    const auto db = load(with_entities(tags));
    EXPECT_EQ(db->loadReport().repaired.size(), 100u);
    EXPECT_EQ(db->loadReport().suppressed, 4900u);
}

TEST(DamagedFiles, BlocksThatInsertThemselvesLoad) {
    const auto db =
        load("0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nA\n0\nINSERT\n2\nA\n0\nINSERT\n2\nB\n0\nENDBLK\n"
             "0\nBLOCK\n2\nB\n0\nINSERT\n2\na\n0\nENDBLK\n0\nENDSEC\n" +
             kHead + "0\nINSERT\n2\nA\n" + kTail);
    const auto* reference = first_entity<AcDbBlockReference>(*db);
    AcDbObjectId a, b;
    ASSERT_EQ(db->blockTable().getAt("A", a), Acad::eOk);
    ASSERT_EQ(db->blockTable().getAt("B", b), Acad::eOk);
    EXPECT_EQ(reference->blockTableRecord(), a);
    const auto& inside = AcDbBlockTableRecord::cast(a.stub()->object)->entities();
    ASSERT_EQ(inside.size(), 2u);
    EXPECT_EQ(AcDbBlockReference::cast(inside[1].stub()->object)->blockTableRecord(), b)
        << "a block that comes later in the file";
    EXPECT_TRUE(db->loadReport().lost.empty());
}

/// A sound file of many kinds, cut at every byte: reading ends, and what was read is written back.
TEST(DamagedFiles, CutAnywhereTheyLoadAndComeBackUnchanged) {
    const AcDbDatabase sound;
    std::string whole = save(sound);
    whole.resize(whole.size() - whole.size() % 2);
    for (std::size_t length = 30; length < whole.size(); length += 37) {
        const std::string cut = whole.substr(0, length);
        const auto db = load(cut);
        ASSERT_EQ(save(*db), cut) << "cut at " << length;
        save(*db, AcDbDxfForm::kBinary);
    }
}

TEST(DamagedFiles, ReadingCanBeCancelled) {
    const auto path =
        std::filesystem::temp_directory_path() /
        ("cancel_" + std::to_string(reinterpret_cast<std::uintptr_t>(&kHead)) + ".dxf");
    std::string tags;
    while (tags.size() < 3u << 20) {
        tags += "  0\nPOINT\n  8\n0\n 10\n1.0\n 20\n2.0\n 30\n3.0\n";
    }
    std::ofstream(path) << with_entities(tags);
    AcDbDatabase db(false);
    std::string error;
    int calls = 0;
    EXPECT_EQ(db.dxfIn(path, error, [&](std::uint64_t, std::uint64_t) { return ++calls < 2; }),
              Acad::eUserBreak);
    EXPECT_EQ(calls, 2);
    std::filesystem::remove(path);
}

} // namespace
