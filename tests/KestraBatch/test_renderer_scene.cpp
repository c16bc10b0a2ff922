// From records to the renderer's meshes: units, precision, what is dropped, normals.
#include "KestraBatch/renderer_scene.h"

#include "KestraBatch/stream_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fmt/format.h>

namespace {

using namespace KestraBatch;

/// A model read from the body of a stream.
StreamModel model_of(const std::string& body) {
    WarningList warnings;
    StreamModel model;
    read_stream(body + "END;\n", "s", model, warnings);
    return model;
}

/// One mesh: vertices as "x,y, z" each, optionally with a normal, and faces.
struct MeshText {
    std::string head, vertices, faces;
    int count = 0;
    MeshText& vertex(double x, double y, double z, const std::string& normal = {}) {
        vertices += normal.empty() ? "" : "NORM;" + normal + "\n";
        vertices += fmt::format("VERT;({:.9g},{:.9g}, {:.9g})\nADDV;{}\n", x, y, z, count++);
        return *this;
    }
    MeshText& face(int a, int b, int c) {
        faces += fmt::format("FACE;{},{},{}\n", a, b, c);
        return *this;
    }
    std::string text() const { return "MESH;\n" + head + vertices + faces + "EMSH;\n"; }
};

SceneDescription description_of(const StreamModel& model, double view_scale = stream_unit) {
    SceneDescription description;
    description.metres_per_coordinate = view_scale / stream_unit;
    description.surfaces.resize(2);
    description.mesh_surface.assign(model.meshes.size(), 0);
    description.view.direction = {0, 1, 0};
    description.view.field_width = description.view.field_height = 1;
    return description;
}

renderer::Scene build(const StreamModel& model, const SceneDescription& description,
                      SceneStatistics& statistics) {
    WarningList warnings;
    return build_renderer_scene(model, description, 1, statistics, warnings);
}

MeshText triangle(double size = 1) {
    return MeshText().vertex(0, 0, 0).vertex(size, 0, 0).vertex(0, size, 0).face(0, 1, 2);
}

TEST(RendererScene, CoordinatesBecomeMetres) {
    struct Case {
        double scale;
        double drawing_units;
    };
    for (const Case& c : {Case{0.001, 2500}, Case{0.0254, 98.4251968503937}, Case{1, 2.5}}) {
        const StreamModel model = model_of(triangle(c.drawing_units * 0.0254).text());
        SceneStatistics statistics;
        const auto scene = build(model, description_of(model, c.scale), statistics);
        ASSERT_EQ(scene.meshes.size(), 1u);
        EXPECT_NEAR(scene.meshes[0].positions[1].x, 2.5f, 1e-6f) << c.scale;
    }
}

TEST(RendererScene, FarFromTheOriginShapeKeepsBelowAMillimetre) {
    // a plate of 100 mm at 5,000,000 mm, as the stream tells it with nine digits
    const double at = 5e6 * 0.0254;
    const StreamModel model = model_of(MeshText()
                                           .vertex(at, at, 0)
                                           .vertex(at + 100 * 0.0254, at, 0)
                                           .vertex(at, at + 100 * 0.0254, 0)
                                           .face(0, 1, 2)
                                           .text());
    SceneDescription description = description_of(model, 0.001);
    description.center = {5000, 5000, 0};
    SceneStatistics statistics;
    const auto scene = build(model, description, statistics);
    const auto& p = scene.meshes.at(0).positions;
    EXPECT_NEAR(p[1].x - p[0].x, 0.1f, 1e-4f);
    EXPECT_NEAR(p[2].y - p[0].y, 0.1f, 1e-4f);
}

TEST(RendererScene, OfFacesInOnePlaneTheLookThatComesLaterIsSeen) {
    // Two looks with the very same triangle, and a larger one of each: as on a screen, the later
    // look covers the earlier one, whichever triangle it is.
    const StreamModel model =
        model_of(triangle(1).text() + triangle(3).text() + triangle(1).text() + triangle(2).text());
    SceneDescription description = description_of(model);
    description.mesh_surface = {0, 0, 1, 1};
    SceneStatistics statistics;
    const auto scene = build(model, description, statistics);
    EXPECT_EQ(statistics.coincident, 1u);
    ASSERT_EQ(scene.meshes.size(), 2u);
    const bool first_is_earlier = scene.meshes[0].material == 0;
    const renderer::Mesh& earlier = scene.meshes[first_is_earlier ? 0 : 1];
    const renderer::Mesh& later = scene.meshes[first_is_earlier ? 1 : 0];
    EXPECT_EQ(earlier.triangles.size(), 1u) << "the triangle that both have is the later look's";
    EXPECT_EQ(later.triangles.size(), 2u);
    EXPECT_LT(later.order, earlier.order);
}

TEST(RendererScene, WhatCannotBeSeenIsDroppedAndCounted) {
    MeshText mesh = triangle();
    mesh.vertex(2, 0, 0).vertex(1, 0, 0).face(0, 1, 1); // two equal corners
    mesh.face(0, 1, 3);                                 // three in a line
    mesh.face(0, 4, 2); // a vertex of another number, the same place
    std::string text = mesh.text();
    text += "MESH;\nVERT;(nan,0, 0)\nADDV;0\nVERT;(1,0, 5)\nADDV;1\nVERT;(0,1, 5)\nADDV;2\n"
            "FACE;0,1,2\nEMSH;\n";
    MeshText turned = MeshText().vertex(0, 1, 0).vertex(1, 0, 0).vertex(0, 0, 0).face(0, 1, 2);
    text += turned.text(); // the first one again, in another order and turn
    MeshText hidden = triangle(7);
    hidden.head = "INVS;1\n";
    text += hidden.text();
    const StreamModel model = model_of(text);
    SceneStatistics statistics;
    const auto scene = build(model, description_of(model), statistics);
    EXPECT_EQ(statistics.triangles, 1u);
    EXPECT_EQ(statistics.degenerate, 2u);
    EXPECT_EQ(statistics.coincident, 2u);
    EXPECT_EQ(statistics.not_finite, 1u);
    EXPECT_EQ(statistics.invisible, 1u);
    ASSERT_EQ(scene.meshes.size(), 1u);
    for (const auto& p : scene.meshes[0].positions) {
        EXPECT_TRUE(std::isfinite(p.x));
    }
}

TEST(RendererScene, MeshesOfOneSurfaceMerge) {
    const StreamModel model =
        model_of(triangle(1).text() + triangle(2).text() + triangle(3).text());
    SceneDescription description = description_of(model);
    description.mesh_surface = {0, 1, 0};
    SceneStatistics statistics;
    const auto scene = build(model, description, statistics);
    ASSERT_EQ(scene.meshes.size(), 2u);
    EXPECT_EQ(scene.meshes[0].triangles.size(), 2u);
    EXPECT_EQ(scene.meshes[0].triangles[1][0], 3u)
        << "indices move behind the first mesh's vertices";
    EXPECT_EQ(scene.meshes[1].material, 1u);
    EXPECT_TRUE(scene.meshes[0].normals.empty());
}

TEST(RendererScene, NormalsAreUnitFiniteAndOnTheSideOfTheirFace) {
    struct Case {
        const char* normal;
        float x, z; ///< of the first corner's normal
        std::size_t replaced;
    };
    const Case cases[] = {
        {"(0,0,1)", 0, 1, 0},   {"(3,0,4)", 0.6f, 0.8f, 0}, {"(nan,0,1)", 0, 1, 1},
        {"(0,0,0)", 0, 1, 1},   {"(1,0,0.01)", 0, 1, 1},    {"(0,0,-1)", 0, 1, 0},
        {"(0,inf,1)", 0, 1, 1},
    };
    for (const Case& c : cases) {
        const StreamModel model = model_of(MeshText()
                                               .vertex(0, 0, 0, c.normal)
                                               .vertex(1, 0, 0, "(0,0,1)")
                                               .vertex(0, 1, 0, "(0,0,1)")
                                               .face(0, 1, 2)
                                               .text());
        SceneStatistics statistics;
        const auto scene = build(model, description_of(model), statistics);
        const auto& mesh = scene.meshes.at(0);
        ASSERT_EQ(mesh.normals.size(), mesh.positions.size());
        const renderer::Vec3 n = mesh.normals[mesh.triangles[0][0]];
        EXPECT_NEAR(n.x, c.x, 1e-5f) << c.normal;
        EXPECT_NEAR(n.z, c.z, 1e-5f) << c.normal;
        EXPECT_EQ(statistics.normals_replaced, c.replaced) << c.normal;
    }
}

TEST(RendererScene, AFaceWoundAgainstItsNormalsIsTurned) {
    const StreamModel model = model_of(MeshText()
                                           .vertex(0, 0, 0, "(0,0,-1)")
                                           .vertex(1, 0, 0, "(0,0,-1)")
                                           .vertex(0, 1, 0, "(0,0,-1)")
                                           .face(0, 1, 2)
                                           .text());
    SceneStatistics statistics;
    const auto scene = build(model, description_of(model), statistics);
    const auto& mesh = scene.meshes.at(0);
    EXPECT_EQ(mesh.positions.size(), 3u) << "no vertex is doubled for it";
    const auto& t = mesh.triangles[0];
    const renderer::Vec3 face = cross(mesh.positions[t[1]] - mesh.positions[t[0]],
                                      mesh.positions[t[2]] - mesh.positions[t[0]]);
    EXPECT_LT(face.z, 0);
}

TEST(RendererScene, TheGroundIsMovedWithTheScene) {
    const StreamModel model = model_of(triangle().text());
    SceneDescription description = description_of(model);
    description.center = {0, 0, 100};
    description.ground = 99.5;
    description.ground_surface = 1;
    SceneStatistics statistics;
    const auto scene = build(model, description, statistics);
    ASSERT_TRUE(scene.ground);
    EXPECT_FLOAT_EQ(scene.ground->elevation, -0.5f);
    EXPECT_EQ(scene.ground->material, 1u);
}

} // namespace
