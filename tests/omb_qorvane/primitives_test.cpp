// One of each primitive, record by record, and what each returns.
#include "extraction_fixture.h"
#include "probe_entity.h"

#include "omb_qorvane/face_fan.h"

#include <cmath>
#include <limits>
#include <regex>

ACRX_NO_CONS_DEFINE_MEMBERS(ProbeEntity, AcDbEntity)

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

class Primitives : public ExtractionTest {
protected:
    /// Draws on layer "walls", colour by layer, and gives the stream with the handle as 'H'.
    std::string drawn(ProbeEntity::Draw draw) {
        make<ProbeEntity>({}, std::move(draw)).setLayer(layer("walls", 1));
        extract();
        return std::regex_replace(body(), std::regex("HNDL;[0-9]+"), "HNDL;H");
    }
    static std::string preamble(const std::string& comment) {
        return "#;ACAD " + comment +
               ";\nMESH;\nMPUV;0\nTHICK;1\nSHDW;1\nLAYR;LAY:walls\nCOLR;ff\nCOLN;256\n"
               "#;MATL: \nMATL;0\nHNDL;H\nBROT;0\n";
    }
};

TEST_F(Primitives, LineWithThickness) {
    const AcGePoint3d points[] = {{0, 0, 0}, {100, 0, 0}};
    const std::string text = drawn([&](AcGiWorldDraw& draw) {
        EXPECT_TRUE(draw.geometry().polyline(2, points)); // no thickness: nothing
        draw.subEntityTraits().setThickness(50);
        EXPECT_TRUE(draw.geometry().polyline(2, points, &AcGeVector3d::kZAxis));
    });
    EXPECT_EQ(text, preamble("LINE") + "NORM;(0,-1,0)\nVERT;(0,0, 0)\nADDV;0\n"
                                       "NORM;(0,-1,0)\nVERT;(2.54,0, 0)\nADDV;1\n"
                                       "NORM;(0,-1,0)\nVERT;(0,0, 1.27)\nADDV;2\n"
                                       "NORM;(0,-1,0)\nVERT;(2.54,0, 1.27)\nADDV;3\n"
                                       "FACE;0,3,2\nFACE;0,1,3\nEMSH;\n#;\n");
}

TEST_F(Primitives, PlainCircleHasRingButNoFaces) {
    // Without extents the chord error is 0.01: six segments at this radius.
    const std::string text = drawn([](AcGiWorldDraw& draw) {
        EXPECT_TRUE(draw.geometry().circle({10, 0, 0}, 0.05, AcGeVector3d::kZAxis));
    });
    const checker::stream stream = checker::check_stream(file("batch_file.txt"));
    ASSERT_THAT(stream.meshes, SizeIs(1));
    const checker::mesh& mesh = stream.meshes[0];
    EXPECT_EQ(mesh.kind, "CIRCLE 1");
    EXPECT_THAT(mesh.faces, SizeIs(0));
    EXPECT_THAT(mesh.vertices, SizeIs(7));
    EXPECT_FALSE(mesh.vertices.at(0).has_normal);
    // The frame of an upright normal: first axis (nz, 0, -nx), second normal x first.
    EXPECT_THAT(text, HasSubstr("VERT;(0.254,0, 0)\nADDV;0\nNORM;(1,0,0)\n"
                                "VERT;(0.25527,0, 0)\nADDV;1\n"));
    EXPECT_NEAR(mesh.vertices.at(2).position[1], 0.05 * 0.0254 * std::sin(M_PI / 3), 1e-9);
}

TEST_F(Primitives, TubeLeavesOutItsUpperCentre) {
    drawn([](AcGiWorldDraw& draw) {
        draw.subEntityTraits().setThickness(2);
        draw.geometry().circle({0, 0, 0}, 0.05, AcGeVector3d::kZAxis);
    });
    const checker::mesh mesh = checker::check_stream(file("batch_file.txt")).meshes.at(0);
    // Centre 0, ring 1 to 6, no 7, ring 8 to 14 whose last repeats its first.
    EXPECT_EQ(mesh.vertices.size(), 14U);
    EXPECT_FALSE(mesh.vertices.contains(7));
    EXPECT_NEAR(mesh.vertices.at(8).position[2], 2 * 0.0254, 1e-9);
    EXPECT_NEAR(mesh.vertices.at(14).position[0], mesh.vertices.at(8).position[0], 1e-9);
    ASSERT_THAT(mesh.faces, SizeIs(12));
    EXPECT_THAT(mesh.faces[0], ElementsAre(1, 2, 9));
    EXPECT_THAT(mesh.faces[1], ElementsAre(1, 9, 8));
    EXPECT_THAT(mesh.faces[10], ElementsAre(6, 1, 8));
    EXPECT_THAT(mesh.faces[11], ElementsAre(6, 8, 13));
}

TEST_F(Primitives, CircleSegmentsFollowTheChordError) {
    drawn([](AcGiWorldDraw& draw) {
        EXPECT_DOUBLE_EQ(draw.deviation(kAcGiMaxDevForCircle, {}), 0.01);
        for (const double radius : {100.0, 0.004, 0.0}) {
            draw.geometry().circle({}, radius, {0, 1, 0});
        }
    });
    const checker::stream stream = checker::check_stream(file("batch_file.txt"));
    ASSERT_THAT(stream.meshes, SizeIs(3));
    EXPECT_EQ(stream.meshes[0].vertices.size(), 223U); // 222 segments and the centre
    EXPECT_EQ(stream.meshes[1].vertices.size(), 1U);   // an error above twice the radius
    EXPECT_EQ(stream.meshes[2].vertices.size(), 1U);
}

TEST_F(Primitives, ArcIsTwelveQuadsWithInwardNormals) {
    drawn([](AcGiWorldDraw& draw) {
        const AcGeVector3d start{10, 0, 0};
        EXPECT_TRUE(draw.geometry().circularArc({}, 10, AcGeVector3d::kZAxis, start, 1));
        draw.subEntityTraits().setThickness(5);
        EXPECT_TRUE(draw.geometry().circularArc({}, 10, AcGeVector3d::kZAxis, start, 2 * M_PI));
        EXPECT_FALSE(draw.geometry().circularArc({}, {1, 0, 0}, {1, 1, 0}));
    });
    EXPECT_THAT(port.written, HasSubstr("\nTODO: CustomWorldGeometry::circularArc"));
    const checker::stream stream = checker::check_stream(file("batch_file.txt"));
    ASSERT_THAT(stream.meshes, SizeIs(1));
    const checker::mesh& mesh = stream.meshes[0];
    EXPECT_EQ(mesh.kind, "ARC - Rad");
    EXPECT_EQ(mesh.vertices.size(), 24U); // the ends of a full turn are shared
    ASSERT_THAT(mesh.faces, SizeIs(24));
    EXPECT_THAT(mesh.faces[0], ElementsAre(0, 1, 2)); // base, top, next top
    EXPECT_THAT(mesh.faces[1], ElementsAre(2, 3, 0));
    EXPECT_NEAR(mesh.vertices.at(0).normal[0], -1, 1e-9);
    EXPECT_NEAR(mesh.vertices.at(1).position[2], 5 * 0.0254, 1e-9);
    EXPECT_NEAR(mesh.vertices.at(3).position[0], 0.254 * std::cos(M_PI / 6), 1e-9);
}

TEST_F(Primitives, MeshWeldsAndSharesOneNormal) {
    // Two rows of three; the last column repeats the first, as a closed strip does.
    const AcGePoint3d points[] = {{0, 0, 0}, {10, 0, 0}, {0, 0, 0},
                                  {0, 0, 5}, {10, 0, 5}, {0, 0, 5}};
    const std::string text = drawn([&](AcGiWorldDraw& draw) {
        EXPECT_TRUE(draw.geometry().mesh(2, 3, points));
        EXPECT_TRUE(draw.geometry().mesh(1, 1, points));
    });
    const checker::stream stream = checker::check_stream(file("batch_file.txt"));
    ASSERT_THAT(stream.meshes, SizeIs(2));
    // (third - first) x (second - first) of the first three that differ.
    EXPECT_THAT(text, HasSubstr("BROT;0\nNORM;(0,1,0)\nUVQ;(0,0,0)\nVERT;(0,0, 0)\nADDV;0\n"));
    // Going round, column 0 takes the number of column 2.
    EXPECT_THAT(stream.meshes[0].faces, ElementsAre(ElementsAre(2, 1, 4), ElementsAre(2, 4, 5),
                                                    ElementsAre(1, 2, 5), ElementsAre(1, 5, 4)));
    EXPECT_THAT(stream.meshes[1].vertices, SizeIs(1));
    EXPECT_THAT(stream.meshes[1].faces, SizeIs(0));
}

TEST_F(Primitives, MeshWithNormalsOfItsOwnAndWithNone) {
    const AcGePoint3d points[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}};
    const AcGeVector3d normals[] = {{0, 0, 2}, {0, 0, 1}, {0, 3, 0}, {0, 0, 1}};
    AcGiVertexData data;
    data.normals = normals;
    drawn([&](AcGiWorldDraw& draw) {
        draw.geometry().mesh(2, 2, points, nullptr, nullptr, &data);
        draw.geometry().mesh(2, 2, points, nullptr, nullptr, nullptr, false);
    });
    const checker::stream stream = checker::check_stream(file("batch_file.txt"));
    EXPECT_EQ(stream.meshes.at(0).vertices.at(2).normal, (checker::triple{0, 1, 0}));
    EXPECT_FALSE(stream.meshes.at(1).vertices.at(0).has_normal);
}

TEST_F(Primitives, ShellHasNoKeyOfItsOwnButTellsItInComments) {
    const AcGePoint3d points[] = {{0, 0, 0}, {100, 0, 0}, {100, 100, 0}, {0, 100, 0}};
    const std::int32_t list[] = {4, 0, 1, 2, 3, 3, 0, 1, 1};
    const std::string text = drawn([&](AcGiWorldDraw& draw) {
        EXPECT_FALSE(draw.geometry().shell(2, points, 5, list));
        EXPECT_TRUE(draw.geometry().shell(4, points, 9, list));
    });
    EXPECT_EQ(text,
              "#;NEW MESH;\nMESH;\n#;ACAD SHELL;\nCULL;0\nMPUV;0\nTHICK;1\nSHDW;1\n#;MATL: \n"
              "#;COLOR: ff\n#;KEY: LAY:walls\nMATL;0\nHNDL;H\nBROT;0\n"
              "UVQ;(0,0,0)\nVERT;(0,0, 0)\nADDV;0\nUVQ;(0,0,0)\nVERT;(2.54,0, 0)\nADDV;1\n"
              "UVQ;(0,0,0)\nVERT;(2.54,2.54, 0)\nADDV;2\nUVQ;(0,0,0)\nVERT;(0,2.54, 0)\nADDV;3\n"
              "#;Need Triangulator\nFACE;0,1,2\nFACE;0,2,3\nEMSH;\n#;\n");
}

TEST_F(Primitives, ShellFanRunsOverHolesAndTheirCounts) {
    AcGePoint3d points[8];
    for (int i = 0; i < 8; ++i) {
        points[i] = {std::cos(i * 0.7), std::sin(i * 0.7), 0};
    }
    // Four corners and a hole of three: seven entries from the first corner, the count among them.
    const std::int32_t list[] = {4, 0, 1, 2, 3, -3, 4, 5, 6, 3, 5, 6, 7};
    const std::string text =
        drawn([&](AcGiWorldDraw& draw) { draw.geometry().shell(8, points, 13, list); });
    EXPECT_THAT(text,
                HasSubstr("#;Need Triangulator\nFACE;0,1,2\nFACE;0,2,3\nFACE;0,3,-3\nFACE;0,-3,4\n"
                          "FACE;0,4,5\nFACE;5,6,7\nEMSH;\n"));
}

TEST_F(Primitives, FaceListsThatEndEarly) {
    const std::vector<std::vector<std::int32_t>> lists{
        {5, 0, 1}, {3}, {0, 0, 0}, {-4, 1, 2}, {2000000000, 0, 1, 2}, {3, 0, 1, 2, -2147483647}};
    for (const auto& list : lists) {
        std::size_t at = 0, triangles = 0;
        while (at < list.size()) {
            const cl_shell_face face = take_shell_face(list, at);
            for_each_fan_triangle(face.entries, [&](int, int, int) { ++triangles; });
        }
        EXPECT_LE(triangles, list.size());
    }
}

TEST_F(Primitives, WhatIsNotHandledSaysSo) {
    const std::string text = drawn([](AcGiWorldDraw& draw) {
        AcGiWorldGeometry& g = draw.geometry();
        const AcGePoint3d p[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
        const AcGeVector3d z = AcGeVector3d::kZAxis;
        const std::uint32_t counts[] = {3};
        EXPECT_FALSE(g.circle(p[0], p[1], p[2]));
        EXPECT_FALSE(g.polyline(AcGiPolyline{3, p, &z, -1}));
        EXPECT_FALSE(g.polyPolyline(0, nullptr));
        EXPECT_FALSE(g.polygon(3, p));
        EXPECT_FALSE(g.polyPolygon(1, counts, p));
        EXPECT_FALSE(g.text(p[0], z, z, 1, 1, 0, "text"));
        EXPECT_FALSE(g.xline(p[0], p[1]));
        EXPECT_FALSE(g.ray(p[0], p[1]));
        EXPECT_FALSE(g.rowOfDots(3, p[0], z));
        EXPECT_FALSE(g.ellipticalArc(p[0], z, 2, 1, 0, 1, 0));
        EXPECT_FALSE(g.pushClipBoundary(nullptr));
        EXPECT_FALSE(g.pushModelTransform(z));
        EXPECT_EQ(g.pushPositionTransform(kAcGiScreenPosition, p[1]), AcGeMatrix3d::kIdentity);
        EXPECT_EQ(g.pushScaleTransform(kAcGiScreenScale, p[1]), AcGeMatrix3d::kIdentity);
        EXPECT_EQ(g.pushOrientationTransform(kAcGiScreenOrientation), AcGeMatrix3d::kIdentity);
        EXPECT_EQ(g.getModelToWorldTransform(), AcGeMatrix3d::kIdentity);
        EXPECT_EQ(draw.regenType(), kAcGiRenderCommand);
        EXPECT_FALSE(draw.isDragging());
        EXPECT_EQ(draw.numberOfIsolines(), 4U);
        EXPECT_EQ(draw.context()->database(), acdbCurDwg());
    });
    EXPECT_EQ(text, "");
}

TEST_F(Primitives, NumbersThatAreNoneDropThePrimitiveWhole) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const std::string text = drawn([&](AcGiWorldDraw& draw) {
        const AcGePoint3d p[4] = {{0, 0, 0}, {1, 0, nan}, {1, 1, 0}, {0, inf, 0}};
        const std::int32_t list[] = {4, 0, 1, 2, 3};
        draw.subEntityTraits().setThickness(1);
        EXPECT_TRUE(draw.geometry().shell(4, p, 5, list));
        EXPECT_TRUE(draw.geometry().mesh(2, 2, p));
        EXPECT_TRUE(draw.geometry().polyline(4, p));
        EXPECT_TRUE(draw.geometry().circle(p[1], 1, AcGeVector3d::kZAxis));
        EXPECT_TRUE(draw.geometry().circle(p[0], nan, AcGeVector3d::kZAxis));
        EXPECT_TRUE(draw.geometry().circularArc(p[3], 1, AcGeVector3d::kZAxis, {1, 0, 0}, 1));
    });
    EXPECT_EQ(text, "");
    EXPECT_THAT(port.written, HasSubstr("6 x primitive with coordinates that are no numbers"));
}

} // namespace
