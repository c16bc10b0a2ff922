// External references: found, loaded once, fitted in, and told when they cannot be shown.
#include "tests/host/references/files.h"

using namespace refs;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct References : Folder {
    std::vector<std::string> statuses(const AcDbDatabase& db) const {
        std::vector<std::string> words;
        for (const AcDbXref* xref : acdbXrefs(db)) {
            words.push_back(fmt::format("{}{} {}", std::string(xref->level, '>'), xref->name,
                                        static_cast<int>(xref->status)));
        }
        return words;
    }
    std::string word(const std::string& name, AcDbXrefStatus status, int level = 0) const {
        return fmt::format("{}{} {}", std::string(level, '>'), name, static_cast<int>(status));
    }
};

TEST_F(References, PathsOfAllKindsLeadToTheFile) {
    const Text child{"", "", "", face(7)};
    write("sub/child.dxf", child);
    write("beside.dxf", child);
    write("elsewhere/far.dxf", child);
    acdbSetSupportFolders({folder / "elsewhere"});
    const std::string absolute = (folder / "sub/child.dxf").string();
    for (const std::string& path :
         {std::string("sub/child.dxf"), std::string("sub\\child.dxf"), std::string(".\\beside.dxf"),
          std::string("Z:\\jobs\\2011\\beside.dxf"), std::string("\\\\server\\x\\beside.dxf"),
          std::string("/gone/beside.dxf"), std::string("far.dxf"), std::string("D:\\old\\far.dxf"),
          std::string("sub/child.dwg"), std::string("..\\x\\beside.DWG"), absolute}) {
        write("host.dxf", Text{"", "", xref("A", path), insert("A", 100)});
        EXPECT_THAT(corners(*open("host.dxf")), ElementsAre(107)) << path;
    }
}

TEST_F(References, BaseUnitsAndTheInsertsOwnTransformCount) {
    write("child.dxf",
          Text{units(4) + "9\n$INSBASE\n10\n1000\n20\n0\n30\n0\n", "", "", face(3000)});
    const std::string turned = insert("A", 10, "41\n2\n42\n2\n43\n2\n50\n180\n");
    const struct {
        int unit;
        double x;
    } kRows[] = {
        {6, 10 - 2 * 2.0}, {4, 10 - 2 * 2000.0}, {0, 10 - 2 * 2000.0}, {1, 10 - 2 * 2000 / 25.4}};
    for (const auto& row : kRows) {
        write("host.dxf", Text{units(row.unit), "", xref("A", "child.dxf"), turned});
        const auto db = open("host.dxf");
        ASSERT_THAT(corners(*db), testing::SizeIs(1));
        EXPECT_NEAR(corners(*db)[0], row.x, 1e-9) << row.unit;
        const AcDbObjectPointer<AcDbEntity> reference(model_entities(*db)[0]);
        AcDbExtents box;
        ASSERT_EQ(reference->getGeomExtents(box), Acad::eOk);
        EXPECT_NEAR(box.maxPoint().x, row.x, 1e-9) << "the box is that of what is drawn";
    }
}

TEST_F(References, LayersAreNamedAfterTheBlockAndTakeTheHostsLooks) {
    write("child.dxf",
          Text{"",
               layers({"0\n70\n1\n62\n3\n", "Wall\n70\n0\n62\n1\n", "Door\n70\n0\n62\n-2\n",
                       "Roof\n70\n0\n62\n5\n"}),
               "", face(0, "Wall") + face(1, "Door") + face(2, "0") + face(3, "Roof")});
    const std::string own =
        layers({"0\n70\n0\n62\n7\n", "a|wall\n70\n49\n62\n6\n", "A|Roof\n70\n48\n62\n-4\n"});
    write("host.dxf", Text{"", own, xref("A", "child.dxf", 36), insert("A", 0)});
    auto db = open("host.dxf");
    auto drawn = shells(*db);
    ASSERT_EQ(drawn.size(), 4u);
    const auto looks = [&](std::size_t i) {
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(drawn[i].traits.layer);
        return fmt::format("{} {} {}{}", layer->getName(), layer->colorIndex(),
                           layer->isOff() ? "off" : "", layer->isFrozen() ? "frozen" : "");
    };
    EXPECT_EQ(looks(0), "A|Wall 6 frozen");
    EXPECT_EQ(looks(1), "A|Door 2 off");
    EXPECT_EQ(drawn[2].traits.layer, db->layerZero());
    EXPECT_EQ(looks(3), "A|Roof 4 off");
    const auto name_within = [&](std::size_t i) {
        const AcDbDatabase& child = *acdbXrefs(*db).front()->database;
        return AcDbObjectPointer<AcDbEntity>(model_entities(child)[i])->layer();
    };
    EXPECT_EQ(name_within(0), "A|Wall");
    EXPECT_EQ(name_within(2), "0");
    EXPECT_EQ(acdbCollectDrawReport(*db).hidden, 3u) << "layer 0 is the host's, and thawed";

    write("host.dxf",
          Text{"9\n$VISRETAIN\n70\n0\n", own, xref("A", "child.dxf", 36), insert("A", 0)});
    db = open("host.dxf");
    drawn = shells(*db);
    EXPECT_EQ(looks(0), "A|Wall 1 ") << "changes are not kept: the reference's own looks";
}

TEST_F(References, ColoursAndMaterialsOfTheChild) {
    const std::string materials =
        "0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n3\nACAD_MATERIAL\n350\nD\n"
        "0\nDICTIONARY\n5\nD\n330\nC\n3\nByBlock\n350\nE1\n3\nByLayer\n350\nE2\n3\nGlobal\n350\nE3"
        "\n"
        "3\nBrick\n350\nE4\n0\nMATERIAL\n5\nE1\n1\nByBlock\n0\nMATERIAL\n5\nE2\n1\nByLayer\n"
        "0\nMATERIAL\n5\nE3\n1\nGlobal\n0\nMATERIAL\n5\nE4\n1\nBrick\n";
    write("child.dxf", Text{"", layers({"Wall\n70\n0\n62\n1\n"}), "",
                            face(0, "Wall", 0, "347\nE4\n") + face(1, "Wall", 0, "347\nE1\n") +
                                face(2, "Wall") + materials});
    write("host.dxf", Text{"", "", xref("A", "child.dxf"), insert("A", 0)});
    const auto db = open("host.dxf");
    const auto drawn = shells(*db);
    ASSERT_EQ(drawn.size(), 3u);
    const AcDbObjectPointer<AcDbMaterial> brick(drawn[0].traits.material);
    ASSERT_TRUE(brick);
    EXPECT_EQ(brick->name(), "A|Brick");
    EXPECT_EQ(drawn[1].traits.material, db->byBlockMaterial());
    EXPECT_EQ(drawn[2].traits.material, db->byLayerMaterial());
    std::vector<std::string> names;
    for (const AcDbObjectId id : acdbDrawnMaterials(*db)) {
        names.push_back(AcDbObjectPointer<AcDbMaterial>(id)->name());
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre("ByBlock", "ByLayer", "Global", "A|Brick"));
}

TEST_F(References, OverlaysNestedOnesAndUnloadedOnes) {
    write("c.dxf", Text{"", layers({"L\n70\n0\n62\n1\n"}), "", face(1, "L")});
    write("b.dxf", Text{"", "", xref("C", "c.dxf") + xref("O", "c.dxf", 8),
                        insert("C", 10) + insert("O", 20)});
    write("a.dxf", Text{"", "",
                        xref("B", "b.dxf", 12) + xref("U", "c.dxf", 4 | 32) +
                            block("V", "", 4, "c.dxf\n71\n1"),
                        insert("B", 100) + insert("U", 200) + insert("V", 300)});
    const auto db = open("a.dxf");
    EXPECT_THAT(statuses(*db), ElementsAre(word("B", AcDbXrefStatus::kResolved),
                                           word("C", AcDbXrefStatus::kResolved, 1),
                                           word("O", AcDbXrefStatus::kLeftOut, 1),
                                           word("U", AcDbXrefStatus::kResolved),
                                           word("V", AcDbXrefStatus::kUnloaded)));
    EXPECT_THAT(corners(*db), ElementsAre(111, 201));
    EXPECT_EQ(layer_name(shells(*db)[0].traits.layer), "C|L");
    const AcDbDrawReport report = acdbCollectDrawReport(*db);
    EXPECT_EQ(report.hidden, 2u) << "the overlay within and the unloaded one";
    EXPECT_THAT(report.not_drawn, IsEmpty());
    EXPECT_EQ(report.drawn, 2u);
}

TEST_F(References, AFileUnderOneNameIsLoadedOnce) {
    write("c.dxf", Text{"", "", "", face(1)});
    write("b.dxf", Text{"", "", xref("C", "c.dxf"), insert("C", 10)});
    write("a.dxf", Text{"", "", xref("B", "b.dxf") + xref("C", "./c.dxf"),
                        insert("B", 100) + insert("C", 200) + insert("C", 300)});
    const auto db = open("a.dxf");
    const auto all = acdbXrefs(*db);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[1]->database, all[2]->database);
    EXPECT_NE(all[0]->database, all[1]->database);
    EXPECT_THAT(corners(*db), ElementsAre(111, 201, 301));
    EXPECT_EQ(acdbResolveXrefs(*db), Acad::eOk);
    EXPECT_EQ(acdbXrefs(*db)[1]->database, all[1]->database) << "a second call does nothing";
}

TEST_F(References, CyclesAndWhatCannotBeReadAreToldOnceEach) {
    write("a.dxf",
          Text{"", "",
               xref("B", "b.dxf") + xref("Gone", "x\\gone.dwg") + xref("Bad", "bad.dxf") +
                   xref("Old", "old.dwg") + xref("Dir", "."),
               face(0) + insert("B", 10) + insert("Gone", 20, "5\n77\n") + insert("Gone", 30) +
                   insert("Bad", 40) + insert("Old", 50) + insert("Dir", 60)});
    write("b.dxf", Text{"", "", xref("A", "a.dxf") + xref("B", "b.dxf"),
                        face(1) + insert("A", 1000, "5\n1C\n") + insert("B", 2000)});
    write("bad.dxf", "no drawing at all");
    write("old.dwg", std::string("AC1018\0\0\0\0", 10));
    const auto db = open("a.dxf");
    EXPECT_THAT(corners(*db), ElementsAre(0, 11));
    const AcDbDrawReport report = acdbCollectDrawReport(*db);
    const auto* cycle = row_of(report, "external-reference-cycle");
    const auto* missing = row_of(report, "external-reference-missing");
    const auto* unreadable = row_of(report, "external-reference-unreadable");
    ASSERT_TRUE(cycle != nullptr && missing != nullptr && unreadable != nullptr);
    EXPECT_EQ(cycle->count, 2u);
    EXPECT_EQ(cycle->handles.front(), "B|1C");
    EXPECT_THAT(cycle->details, ElementsAre("a.dxf", "b.dxf"));
    EXPECT_EQ(missing->count, 3u) << "two references of one file, and a folder";
    EXPECT_EQ(missing->handles.front(), "77");
    EXPECT_THAT(missing->details, ElementsAre("x\\gone.dwg", "."));
    EXPECT_EQ(unreadable->count, 2u);
    EXPECT_THAT(unreadable->details, ElementsAre("bad.dxf is not a DXF file",
                                                 "old.dwg is a DWG file; only DXF files are read"));
}

TEST_F(References, WhatAFileKeepsOfALostReferenceIsDrawn) {
    write("a.dxf", Text{"", "", block("B", face(2), 4, "gone.dxf", 1), insert("B", 10)});
    const auto db = open("a.dxf");
    EXPECT_THAT(corners(*db), ElementsAre(11));
    EXPECT_THAT(acdbCollectDrawReport(*db).not_drawn, IsEmpty());
}

TEST_F(References, ConvertingWritesNothingOfThem) {
    write("c.dxf", Text{"", layers({"L\n70\n0\n62\n1\n"}), "", face(1, "L")});
    write("a.dxf", Text{"", "", xref("C", "c.dxf"), insert("C", 10)});
    const auto plain = open("a.dxf", false);
    const auto resolved = open("a.dxf");
    EXPECT_THAT(corners(*plain), IsEmpty());
    EXPECT_THAT(corners(*resolved), ElementsAre(11));
    for (const AcDbDxfForm form : {AcDbDxfForm::kAscii, AcDbDxfForm::kBinary}) {
        std::string error;
        ASSERT_EQ(plain->dxfOut(folder / "plain.out", error, form), Acad::eOk);
        ASSERT_EQ(resolved->dxfOut(folder / "resolved.out", error, form), Acad::eOk);
        const auto read = [&](const char* name) {
            std::ifstream in(folder / name, std::ios::binary);
            return std::string(std::istreambuf_iterator<char>(in), {});
        };
        EXPECT_EQ(read("plain.out"), read("resolved.out"));
    }
    EXPECT_EQ(resolved->layerTable().records().size(), plain->layerTable().records().size());
}

TEST_F(References, LoadingCanBeStopped) {
    std::string many;
    for (int i = 0; i < 20000; ++i) {
        many += face(i, "0");
    }
    write("c.dxf", Text{"", "", "", many});
    write("a.dxf", Text{"", "", xref("C", "c.dxf") + xref("D", "c.dxf"),
                        face(0) + insert("C", 10) + insert("D", 10)});
    const auto db = open("a.dxf", false);
    int asked = 0;
    EXPECT_EQ(acdbResolveXrefs(*db, [&](auto, auto) { return ++asked < 1; }), Acad::eUserBreak);
    EXPECT_EQ(asked, 1) << "nothing more is loaded";
    EXPECT_THAT(corners(*db), ElementsAre(0));
    EXPECT_EQ(acdbResolveXrefs(*db), Acad::eOk);
    EXPECT_EQ(corners(*db).size(), 40001u) << "the next call loads them";
}

TEST_F(References, ReferencesThatMultiplyEnd) {
    // Each names the next one twice: 2^40 faces.
    for (int i = 0; i < 40; ++i) {
        write(fmt::format("f{}.dxf", i), Text{"", "", xref("N", fmt::format("f{}.dxf", i + 1)),
                                              insert("N", 0) + insert("N", 1)});
    }
    write("f40.dxf", Text{"", "", "", face(0) + line(0, 1, 0x99)});
    const auto db = open("f0.dxf");
    const AcDbDrawReport report = acdbCollectDrawReport(*db);
    EXPECT_EQ(report.drawn, std::uint64_t{1} << 40);
    ASSERT_EQ(report.not_drawn.size(), 1u);
    EXPECT_EQ(report.not_drawn[0].count, std::uint64_t{1} << 40);
    EXPECT_THAT(report.not_drawn[0].handles, ElementsAre("N|99"));
}

} // namespace
