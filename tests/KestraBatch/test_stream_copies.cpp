// Which blocks count as copies of earlier ones, and what is kept of them.
#include "tests/KestraBatch/copies_stream.h"

#include "KestraBatch/scene_copies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace KestraBatch;
using namespace batch_test;
using testing::SizeIs;

/// How far the place of the first copy is from the right one, at the corners of the lump.
double error_of(const StreamModel& model, const Similarity& right) {
    double most = 0;
    for (const Triple& p : Lump().points()) {
        const Triple a = model.copies.at(0).place.point(p), b = right.point(p);
        most = std::max(most, std::hypot(a.x - b.x, a.y - b.y, a.z - b.z));
    }
    return most;
}

TEST(StreamCopies, ABlockMovedTurnedScaledOrMirroredIsACopy) {
    struct Case {
        const char* what;
        Similarity place;
        double error;
    };
    const Case cases[] = {
        {"the same place", moved(0, 0, 0), 0},
        {"moved", moved(3, -2, 0.5), 1e-8},
        {"turned", moved(3, -2, 0.5, 77), 1e-8},
        {"smaller", moved(3, -2, 0.5, 77, 0.01), 1e-8},
        {"larger", moved(3, -2, 0.5, 77, 250), 1e-6},
        {"mirrored", moved(3, -2, 0.5, 131, 1.5, true), 1e-8},
        {"far away", moved(1e6, -2e6, 30, 45), 0.02},
        {"far away and mirrored", moved(5e5, 1e6, 0, 45, 1, true), 0.02},
    };
    for (const Case& c : cases) {
        for (const bool late : {false, true}) {
            const auto write = late ? late_block : block;
            const StreamModel model =
                model_of(write("lump", Lump().mesh(moved(0, 0, 0))) +
                         write("lump", Lump().mesh(c.place)) + Lump().mesh(moved(9, 9, 9)));
            ASSERT_THAT(model.copies, SizeIs(1)) << c.what;
            EXPECT_LE(error_of(model, c.place), c.error) << c.what;
            EXPECT_NEAR(model.copies[0].place.scale, c.place.scale,
                        std::max(0.1, c.place.scale) * (c.error > 1e-3 ? 0.1 : 1e-6));
            EXPECT_THAT(model.blocks, SizeIs(1));
            EXPECT_THAT(model.meshes, SizeIs(2)) << "the copy's arrays go, what follows stays";
            EXPECT_THAT(model.positions, SizeIs(50));
            EXPECT_THAT(model.normals, SizeIs(50));
            EXPECT_THAT(model.triangles, SizeIs(64));
            EXPECT_EQ(model.meshes[1].first_vertex, 25u);
            EXPECT_EQ(model.meshes[1].block, no_name);
            EXPECT_GE(model.high.x, 9);
            EXPECT_GE(model.high.x, c.place.shift.x) << "the box has the copies in it";
        }
    }
}

TEST(StreamCopies, WhatDiffersIsNoCopy) {
    const auto with = [](auto change) {
        Lump lump;
        change(lump);
        return lump;
    };
    struct Case {
        const char* what;
        Lump lump;
        const char* name = "lump";
    };
    const Case cases[] = {
        {"a vertex off by some steps of the ninth digit", with([](Lump& l) { l.bump = 3e-7; })},
        {"a vertex off by far", with([](Lump& l) { l.bump = 0.1; })},
        {"another colour", with([](Lump& l) { l.head = "COLR;8041\nMATL;0\n"; })},
        {"another material", with([](Lump& l) { l.head = "COLR;8040\nMATL;10\n"; })},
        {"another key", with([](Lump& l) { l.head += "LAYR;LAY:Glass\n"; })},
        {"a shell", with([](Lump& l) { l.head += "CULL;0\n"; })},
        {"no normals", with([](Lump& l) { l.normals = false; })},
        {"a face less", with([](Lump& l) { l.drop_face = 3; })},
        {"another name", Lump(), "bump"},
    };
    const Similarity place = moved(3, 2, 1, 20);
    const std::string first = block("lump", Lump().mesh(moved(0, 0, 0)));
    for (const Case& c : cases) {
        const StreamModel model = model_of(first + block(c.name, c.lump.mesh(place)));
        EXPECT_THAT(model.copies, SizeIs(0)) << c.what;
        EXPECT_THAT(model.meshes, SizeIs(2)) << c.what;
    }
    std::string turned_normals = Lump().mesh(place);
    const std::size_t at = turned_normals.find("NORM;(");
    turned_normals.replace(at, turned_normals.find('\n', at) - at, "NORM;(1,0,0)");
    EXPECT_THAT(model_of(first + block("lump", turned_normals)).copies, SizeIs(0));
    // two meshes against one, and the other way round
    const std::string two = block("lump", Lump().mesh(place) + Lump().mesh(place));
    EXPECT_THAT(model_of(first + two).copies, SizeIs(0));
    EXPECT_THAT(model_of(two + first).copies, SizeIs(0));
    EXPECT_THAT(model_of(two + two).copies, SizeIs(1));
}

TEST(StreamCopies, StretchedAlongOneAxisIsNoCopy) {
    const auto stretched = [](double factor) {
        std::string text = "MESH;\n";
        int index = 0;
        for (const Triple& p : Lump().points()) {
            text += fmt::format("VERT;({:.9g},{:.9g}, {:.9g})\nADDV;{}\n", p.x * factor, p.y, p.z,
                                index++);
        }
        return text + "FACE;0,1,6\nFACE;3,9,17\nEMSH;\n";
    };
    EXPECT_THAT(model_of(block("b", stretched(1)) + block("b", stretched(1.0001))).copies,
                SizeIs(0));
    EXPECT_THAT(model_of(block("b", stretched(1)) + block("b", stretched(1))).copies, SizeIs(1));
}

TEST(StreamCopies, BlocksWithWhatDependsOnItsPlaceStay) {
    const std::string plain = Lump().mesh(moved(0, 0, 0));
    const auto with_head = [](const char* head) {
        Lump lump;
        lump.head += head;
        return lump.mesh(moved(0, 0, 0));
    };
    for (const std::string& content :
         {with_head("LITE;3\n"), with_head("DYLT;3\n"), with_head("INVS;1\n"),
          with_head("GCOR;1\nGNDC;lawn.TsPlant\n"),
          batch_test::Lump().mesh(moved(std::nan(""), 0, 0))}) {
        const std::string text = block("lamp", plain + content);
        const StreamModel model = model_of(text + text + block("outer", text));
        EXPECT_THAT(model.copies, SizeIs(0)) << content.substr(0, 60);
        EXPECT_THAT(model.meshes, SizeIs(6));
    }
    // an inner block without them is a copy all the same
    const std::string inner = block("shade", plain);
    const std::string outer = block("lamp", inner + with_head("LITE;3\n"));
    EXPECT_THAT(model_of(outer + outer).copies, SizeIs(1));
}

TEST(StreamCopies, PlantsLightsAndDecalsInsideStayWhereTheyAre) {
    const std::string things = "PLLB;TsPlant\nPLNM;oak.TsPlant\nPLLC;(1,2,3)\nPLSC;1\nPLNT;1\n"
                               "LTYP;1\nLORG;(1, 2, 3)\nLGHT;7\n"
                               "DECO;(0,0,0)\nDECX;(1,0,0)\nDECY;(0,1,0)\nDECZ;(0,0,1)\n"
                               "DECS;(1,1,1)\nDECL;logo.TsDecal\n";
    const StreamModel model = model_of(block("room", things + Lump().mesh(moved(0, 0, 0))) +
                                       block("room", Lump().mesh(moved(4, 0, 0, 9)) + things));
    EXPECT_THAT(model.copies, SizeIs(1));
    EXPECT_THAT(model.plants, SizeIs(2));
    EXPECT_THAT(model.lights, SizeIs(2));
    EXPECT_THAT(model.decals, SizeIs(2));
}

/// A room with its own mesh and three lumps, the whole at a place.
std::string room(const Similarity& place, double off = 0) {
    std::string text = Lump().mesh(place * moved(0, 0, 0, 0, 10));
    for (int i = 0; i < 3; ++i) {
        text += block("lump", Lump().mesh(place * moved(1 + i + (i == 1 ? off : 0), 1, 0, 30 * i)));
    }
    return block("room", text);
}

TEST(StreamCopies, OuterBlocksAreComparedByTheInnerOnes) {
    const Similarity there = moved(20, 5, 1, 40);
    const StreamModel model = model_of(room(moved(0, 0, 0)) + room(there) + room(there, 0.01));
    // two of three lumps in the first room, the second room, three lumps in the third
    ASSERT_THAT(model.copies, SizeIs(2 + 1 + 3));
    EXPECT_THAT(model.meshes, SizeIs(3));
    EXPECT_THAT(model.blocks, SizeIs(3));
    EXPECT_EQ(model.names[model.blocks[model.copies[2].original].name], "room");
    EXPECT_EQ(model.copies[2].block, no_name);
    EXPECT_EQ(model.copies[3].block, 2u) << "in the third room";
    EXPECT_EQ(model.names[model.blocks[model.copies[3].original].name], "lump");
}

TEST(StreamCopies, ABlockOfBlocksOnlyIsACopyToo) {
    const auto row = [](const Similarity& place) {
        return block("row", block("lump", Lump().mesh(place)) +
                                block("lump", Lump().mesh(place * moved(1, 0, 0, 10))));
    };
    const Similarity there = moved(8, 8, 2, 70, 2);
    const StreamModel model = model_of(row(moved(0, 0, 0)) + row(there));
    ASSERT_THAT(model.copies, SizeIs(2));
    EXPECT_EQ(model.names[model.blocks[model.copies[1].original].name], "row");
    EXPECT_NEAR(model.copies[1].place.scale, 2, 1e-6);
    EXPECT_NEAR(model.copies[1].place.shift.x, 8, 1e-6);
}

TEST(StreamCopies, BracketsInOddPlacesAreKeptAndHarmNothing) {
    const std::string lump = Lump().mesh(moved(0, 0, 0));
    std::string ends_inside = lump; // the block ends in the middle of its mesh
    ends_inside.insert(ends_inside.find("FACE"), "EBLK;odd\n");
    std::string reopened = lump; // and another begins there
    reopened.insert(reopened.find("FACE"), "EBLK;odd\nBLOK;even\nBLYR;0\n");
    const std::string empty = block("empty", "");
    const StreamModel model =
        model_of("BLOK;odd\n" + ends_inside + "BLOK;odd\n" + ends_inside + "BLOK;odd\n" + reopened +
                 "EBLK;even\nBLOK;odd\n" + reopened + "EBLK;even\n" + empty + empty +
                 "BLOK;open\n" + lump + block("lump", lump));
    EXPECT_LE(model.meshes.size(), 6u);
    std::size_t triangles = 0;
    for (const MeshRecord& mesh : model.meshes) {
        EXPECT_LE(mesh.first_vertex + mesh.vertex_count, model.positions.size());
        EXPECT_TRUE(mesh.block == no_name || mesh.block < model.blocks.size());
        triangles += mesh.triangle_count;
    }
    EXPECT_EQ(triangles, model.triangles.size());
    const CopyPlan plan = plan_copies(model, std::vector<bool>(model.meshes.size(), false));
    EXPECT_EQ(plan.plain.size() + plan.standing.size() + plan.repeated, 6u);
}

std::size_t triangles_of(const StreamModel& model, const std::vector<PlacedMesh>& meshes) {
    std::size_t sum = 0;
    for (const PlacedMesh& mesh : meshes) {
        sum += model.meshes[mesh.mesh].triangle_count;
    }
    return sum;
}

TEST(CopyPlan, AThousandBlocksCostOne) {
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += block("lump", Lump().mesh(moved(i, 0.3 * i, 0, i)));
    }
    const StreamModel model = model_of(text);
    EXPECT_THAT(model.triangles, SizeIs(32));
    const CopyPlan plan = plan_copies(model, {false});
    EXPECT_THAT(plan.plain, SizeIs(0));
    ASSERT_THAT(plan.prototypes, SizeIs(1));
    EXPECT_THAT(plan.standing, SizeIs(1000));
    EXPECT_EQ(triangles_of(model, plan.prototypes[0]), 32u);
    // what glows stands in the scene itself, each time
    const CopyPlan glowing = plan_copies(model, {true});
    EXPECT_THAT(glowing.plain, SizeIs(1000));
    EXPECT_THAT(glowing.standing, SizeIs(0));
}

TEST(CopyPlan, InnerBlocksJoinThePrototypeOfBlocksThatStandOften) {
    std::string text;
    for (int i = 0; i < 40; ++i) {
        text += room(moved(30 * i, 0, 0, i));
    }
    const StreamModel model = model_of(text);
    const std::vector<bool> dark(model.meshes.size(), false);
    const CopyPlan plan = plan_copies(model, dark);
    ASSERT_THAT(plan.prototypes, SizeIs(1));
    EXPECT_THAT(plan.standing, SizeIs(40));
    EXPECT_THAT(plan.prototypes[0], SizeIs(4)) << "the room and three lumps";
    // in a single room the lumps are instances, and the room is not
    const StreamModel one =
        model_of(room(moved(0, 0, 0)) + block("hall", room(moved(50, 0, 0), 0.5)));
    const CopyPlan single = plan_copies(one, std::vector<bool>(one.meshes.size(), false));
    EXPECT_THAT(single.standing, SizeIs(6));
    EXPECT_EQ(triangles_of(one, single.plain), 64u);
}

TEST(CopyPlan, SmallBlocksAreNotWorthAnInstanceAndRepeatedOnesStandOnce) {
    std::string text;
    const std::string one = "MESH;\nVERT;({},0, 0)\nADDV;0\nVERT;({},0, 0)\nADDV;1\nVERT;({},1, 0)"
                            "\nADDV;2\nFACE;0,1,2\nEMSH;\n";
    for (int i = 0; i < 50; ++i) {
        text += block("flake", fmt::format(fmt::runtime(one), i, i + 0.5, i));
    }
    const std::string lump = block("lump", Lump().mesh(moved(0, 0, 5)));
    for (int i = 0; i < 20; ++i) {
        text += lump + block("lump", Lump().mesh(moved(i, 7, 5, 3)));
    }
    const StreamModel model = model_of(text);
    EXPECT_THAT(model.copies, SizeIs(49 + 39));
    const CopyPlan plan = plan_copies(model, std::vector<bool>(model.meshes.size(), false));
    EXPECT_THAT(plan.plain, SizeIs(50));
    EXPECT_THAT(plan.standing, SizeIs(21));
    EXPECT_EQ(plan.repeated, 19u);
    for (std::size_t i = 0; i < plan.plain.size(); ++i) {
        EXPECT_NEAR(plan.places[plan.plain[i].place].shift.x, static_cast<double>(i), 1e-7);
    }
}

} // namespace
