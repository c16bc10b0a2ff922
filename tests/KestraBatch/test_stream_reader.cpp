// The stream reader: every record reaches its target, and every damage is told with its line.
#include "KestraBatch/stream_reader.h"

#include "KestraBatch/stream_model.h"
#include "KestraBatch/stream_records.h"
#include "tests/KestraBatch/batch_texts.h"
#include "tests/test_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

namespace {

using namespace KestraBatch;
using batch_test::good_stream;
using batch_test::message_of;
using batch_test::with;

std::string stream_message(const std::string& text, const StreamLimits& limits = {}) {
    return message_of([&] {
        WarningList warnings;
        StreamModel model;
        read_stream(text, "s", model, warnings, limits);
    });
}

TEST(StreamReader, KeepsWhatASceneIsMadeOf) {
    WarningList warnings;
    StreamModel model;
    const StreamSummary summary = read_stream(good_stream, "s", model, warnings);
    EXPECT_TRUE(warnings.items().empty());
    EXPECT_EQ(summary.triangles, 2u);
    EXPECT_EQ(summary.count("VERT"), 6u);
    EXPECT_EQ(summary.count("MATF"), 1u);
    ASSERT_EQ(model.meshes.size(), 2u);

    const MeshRecord& mesh = model.meshes[0];
    EXPECT_EQ(mesh.line, 8u);
    EXPECT_EQ(mesh.handle, 18446744073709551615u);
    EXPECT_TRUE(mesh.has_color);
    EXPECT_EQ(mesh.color, 0xffu);
    EXPECT_FALSE(mesh.has_normals);
    EXPECT_EQ(model.names[mesh.mapping_key], "LAY:Walls; old") << "only the first semicolon splits";
    ASSERT_NE(mesh.block, no_name) << "a bracket that opens inside a mesh holds that mesh";
    EXPECT_EQ(model.names[model.blocks[mesh.block].name], "door");
    EXPECT_EQ(model.names[model.blocks[mesh.block].layer], "Doors");
    EXPECT_EQ(model.positions[2].y, 1e-3);
    EXPECT_EQ(model.positions[2].z, -0.5);

    const MeshRecord& shell = model.meshes[1];
    EXPECT_TRUE(shell.is_shell);
    EXPECT_FALSE(shell.has_color);
    EXPECT_TRUE(shell.has_comment_color);
    EXPECT_EQ(shell.comment_color, 0x8040ffu);
    EXPECT_EQ(shell.material, 10);
    EXPECT_EQ(model.material_files.at(10), "Tessara-Oak.TsMaterial");
    EXPECT_EQ(shell.block, no_name);
    ASSERT_TRUE(shell.has_normals);
    EXPECT_EQ(model.normals[shell.first_normal][2], 1.0f);
    EXPECT_EQ(model.normals[shell.first_normal + 1][2], 0.0f) << "a normal is for one vertex only";
}

TEST(StreamReader, BlocksNestAndMeshesWithoutFacesLeaveNothing) {
    const std::string text = "BLOK;outer\nBLYR;A\nMESH;\nBLOK;  inner\nBLYR;  B\nNORM;(0,0,1)\n"
                             "VERT;(0,0, 0)\nADDV;0\nEMSH;\nMESH;\nVERT;(0,0, 0)\nADDV;0\n"
                             "FACE;0,0,0\nEMSH;\nEBLK;  inner\nEBLK;outer\nEND;";
    WarningList warnings;
    StreamModel model;
    read_stream(text, "s", model, warnings);
    ASSERT_EQ(model.meshes.size(), 1u);
    EXPECT_EQ(model.positions.size(), 1u);
    EXPECT_TRUE(model.normals.empty());
    const BlockRecord& inner = model.blocks[model.meshes[0].block];
    EXPECT_EQ(model.names[inner.name], "inner");
    EXPECT_EQ(model.names[inner.layer], "B");
    EXPECT_EQ(model.names[model.blocks[inner.parent].name], "outer");
}

TEST(StreamReader, NumbersMayBeLeftOut) {
    const std::string text = "MESH;\nVERT;(0,0, 0)\nADDV;0\nNORM;(0,0,1)\nVERT;(1,0, 0)\nADDV;1\n"
                             "NORM;(0,1,0)\nVERT;(1,1, 0)\nADDV;3\nFACE;0,1,3\nEMSH;\nEND;\n";
    WarningList warnings;
    StreamModel model;
    const StreamSummary summary = read_stream(text, "s", model, warnings);
    EXPECT_EQ(summary.vertices, 4u);
    EXPECT_EQ(model.non_finite_vertices, 0u);
    ASSERT_EQ(model.positions.size(), 4u);
    ASSERT_EQ(model.normals.size(), 4u);
    EXPECT_EQ(model.positions[3].y, 1);
    EXPECT_EQ(model.normals[1][2], 1);
    EXPECT_EQ(model.normals[3][1], 1);
}

TEST(StreamReader, FacesThatRunOverAHolesCountAreLeftOutAndTold) {
    StreamCounter counter;
    WarningList warnings;
    const StreamSummary summary =
        read_stream(with(good_stream, "FACE;0,1,2", "FACE;0,1,2\nFACE;0,1,-2\nFACE;0,-2,2"), "s",
                    counter, warnings);
    StreamCounter whole;
    WarningList none;
    read_stream(good_stream, "s", whole, none);
    EXPECT_EQ(counter.triangles, whole.triangles);
    EXPECT_EQ(summary.triangles, whole.triangles + 2) << "they count for the limits";
    ASSERT_EQ(warnings.items().size(), none.items().size() + 1);
    EXPECT_EQ(warnings.items().back().code, "stream-face-over-hole");
}

TEST(StreamReader, DamageIsAnErrorWithItsLine) {
    struct Case {
        const char* from;
        const char* to;
        const char* message;
    };
    const Case cases[] = {
        {"END;\n", "",
         "s(49): the stream ends without 'END;': it was cut, or its writing did not finish"},
        {"VERT;(1,0, 0)", "VERT;(1,0 0)",
         "s(21): VERT needs three numbers '(x,y,z)', not '(1,0 0)'"},
        {"VERT;(1,0, 0)", "VERT;(1,0, 0) x",
         "s(21): VERT needs three numbers '(x,y,z)', not '(1,0, 0) x'"},
        {"VERT;(1,0, 0)", "VERT;(1,0", "s(21): VERT needs three numbers '(x,y,z)', not '(1,0'"},
        {"FACE;0,1,2", "FACE;0,1,3", "s(25): FACE uses vertex 3, but the mesh has 3"},
        {"FACE;0,1,2", "FACE;0,1", "s(25): FACE needs three vertex indices 'a,b,c', not '0,1'"},
        {"FACE;0,1,2", "FACE;-7,1,3", "s(25): FACE uses vertex 3, but the mesh has 3"},
        {"FACE;0,1,2", "FACE;0,1,4294967296",
         "s(25): FACE needs three vertex indices 'a,b,c', not '0,1,4294967296'"},
        {"ADDV;1", "ADDV;4", "s(22): ADDV;4 is out of order; the next is 1"},
        {"ADDV;1", "ADDV;0", "s(22): ADDV;0 is out of order; the next is 1"},
        {"ADDV;2", "ADDV;3", "s(25): FACE uses vertex 2, which no ADDV gave"},
        {"ADDV;1", "ADDV;-1", "s(22): ADDV;-1 is out of order; the next is 1"},
        {"VERT;(1,0, 0)\n", "", "s(21): ADDV without a VERT before it"},
        {"ADDV;1\n", "", "s(22): VERT again before the ADDV of line 21"},
        {"ADDV;2\nFACE;0,1,2\n", "", "s(24): EMSH before the ADDV that the VERT of line 23 needs"},
        {"EMSH;\n", "", "s(30): MESH inside the mesh that began at line 8"},
        {"MESH;\n", "", "s(8): MPUV outside of a mesh"},
        {"COLR;ff", "COLR;1ffffff",
         "s(11): COLR needs a colour (hexadecimal, at most ffffff), not '1ffffff'"},
        {"HNDL;18446744073709551615", "HNDL;18446744073709551616",
         "s(15): HNDL needs a handle (whole number, 64 bits), not '18446744073709551616'"},
        {"BLOK;door\n", "", "s(17): BLYR without a BLOK that is open"},
        {"BLOK;door\nBLYR;Doors\n", "", "s(26): EBLK without a BLOK that is open"},
        {"BROT;0", "BROT 0", "s(16): this is no record: 'BROT 0'"},
        {"BROT;0", "\x01\x02;", "s(16): this is no record: '??;'"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(stream_message(with(good_stream, c.from, c.to)), c.message);
    }
}

TEST(StreamReader, CutAnywhereItIsRefusedAndNeverCrashes) {
    for (std::size_t length = 0; length + 5 < good_stream.size(); ++length) {
        EXPECT_NE(stream_message(good_stream.substr(0, length)), "") << length;
    }
    EXPECT_EQ(stream_message(good_stream.substr(0, good_stream.size() - 1)), "")
        << "the last line end may be missing";
}

TEST(StreamReader, LimitsAreRefusedByName) {
    StreamLimits limits;
    limits.vertices = 5;
    EXPECT_EQ(stream_message(good_stream, limits), "s(46): more than 5 vertices in the stream");
    limits = {};
    limits.meshes = 1;
    EXPECT_EQ(stream_message(good_stream, limits), "s(31): more than 1 meshes in the stream");
    limits = {};
    limits.line_bytes = 30;
    EXPECT_EQ(stream_message(good_stream, limits), "s(1): a line of more than 30 bytes");
    limits = {};
    limits.block_depth = 3;
    EXPECT_EQ(stream_message("BLOK;a\nBLOK;a\nBLOK;a\nBLOK;a\n", limits),
              "s(4): blocks nested deeper than 3");
}

TEST(StreamReader, WhatCanBeSurvivedIsAWarning) {
    struct Case {
        const char* from;
        const char* to;
        const char* code;
        const char* text;
    };
    const Case cases[] = {
        {"END;\n", "WIND;3\nEND;\n", "stream-record-unknown",
         "s(50): unknown record 'WIND' is skipped"},
        {"END;\n", "END;\nMESH;\nx\n", "stream-after-end",
         "s(51): there is more behind 'END;'; it is not read"},
        {"END;\n", "BLOK;a\nEND;\n", "stream-block-open",
         "s(51): 1 blocks are still open at the end"},
        {"MATL;10\n", "MATL;10\nLLIT;Lamps\n", "not-rendered",
         "s: 1 x mesh on a light layer (LLIT): not rendered yet"},
    };
    for (const Case& c : cases) {
        WarningList warnings;
        StreamModel model;
        read_stream(with(good_stream, c.from, c.to), "s", model, warnings);
        ASSERT_EQ(warnings.items().size(), 1u) << c.to;
        EXPECT_EQ(warnings.items()[0].code, c.code);
        EXPECT_EQ(warnings.items()[0].text, c.text);
        EXPECT_EQ(model.meshes.size(), 2u);
    }
}

TEST(StreamReader, NumbersThatAreNoneAreCountedAndKept) {
    WarningList warnings;
    StreamModel model;
    read_stream(
        with(with(good_stream, "(1,0, 0)", "(-nan,0, 0)"), "(5,0, 0)", "(1e999,1e-999, +0)"), "s",
        model, warnings);
    EXPECT_EQ(model.non_finite_vertices, 2u);
    EXPECT_TRUE(std::isnan(model.positions[1].x));
    EXPECT_EQ(model.positions[3].y, 0.0);
}

TEST(StreamReader, EveryRowIsReachedByItsKeyword) {
    const auto rows = record_rows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(find_record(rows[i].keyword), static_cast<int>(i));
    }
    EXPECT_EQ(find_record("VERTS"), -1);
    EXPECT_EQ(find_record(""), -1);
}

TEST(StreamReader, AFileReadsAsItsTextDoesAcrossBlockEnds) {
    std::string text = "MESH;\r\n";
    for (int i = 0; i < 300'000; ++i) {
        const std::string n = std::to_string(i);
        text += "VERT;(" + n + "," + n + ", 0.5)\r\nADDV;" + n + "\r\n";
    }
    text += "FACE;0,1,299999\r\nEMSH;\r\nEND;\r\n";
    ASSERT_GT(text.size(), std::size_t{9} << 20);
    const auto path = unique_test_path("long_stream.txt");
    std::ofstream(path, std::ios::binary) << text;

    WarningList warnings;
    StreamModel model;
    std::uint64_t calls = 0;
    const StreamSummary summary = read_stream_file(path, model, warnings, {}, [&](std::uint64_t) {
        ++calls;
        return true;
    });
    EXPECT_EQ(summary.bytes, text.size());
    EXPECT_EQ(summary.lines, 600'004u);
    EXPECT_GE(calls, 2u);
    ASSERT_EQ(model.positions.size(), 300'000u);
    for (std::size_t i = 0; i < model.positions.size(); ++i) {
        ASSERT_EQ(model.positions[i].x, static_cast<double>(i));
    }
    EXPECT_THROW(read_stream_file(path, model, warnings, {}, [](std::uint64_t) { return false; }),
                 StreamCancelled);
    std::filesystem::remove(path);
    EXPECT_EQ(message_of([&] { read_stream_file(path, model, warnings); }),
              path.string() + ": no such file");
}

TEST(StreamReader, TheCounterMeasures) {
    WarningList warnings;
    StreamCounter counter;
    read_stream(good_stream, "s", counter, warnings);
    EXPECT_EQ(counter.vertices, 6u);
    EXPECT_EQ(counter.triangles, 2u);
    EXPECT_EQ(counter.normals, 1u);
    EXPECT_EQ(counter.low.z, -0.5);
    EXPECT_EQ(counter.high.x, 6);
}

} // namespace
