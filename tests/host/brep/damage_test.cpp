// Bodies that are not valid: nothing may crash, hang or give numbers that are none.
#include "bodies.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace bodies;

void expect_harmless(const brep::Mesh& mesh) {
    for (const AcGePoint3d& p : mesh.points) {
        ASSERT_TRUE(std::isfinite(p.x + p.y + p.z));
    }
    for (const AcGeVector3d& n : mesh.normals) {
        ASSERT_NEAR(n.length(), 1, 1e-6);
    }
    for (const auto& triangle : mesh.triangles) {
        for (const auto& corner : triangle) {
            ASSERT_LT(corner.point, mesh.points.size());
            ASSERT_LT(corner.normal, mesh.normals.size());
        }
    }
    for (const auto& face : mesh.faces) {
        ASSERT_LE(face.begin, face.end);
        ASSERT_LE(face.end, mesh.triangles.size());
    }
}

bool told(const brep::Mesh& mesh, const std::string& code) {
    return std::any_of(mesh.problems.begin(), mesh.problems.end(),
                       [&](const brep::Problem& p) { return p.code == code; });
}

std::vector<Body> samples() {
    return {box(1, 2, 3),
            lathe({{0, 0}, {2, 0}, {1, 3}, {0, 3}}),
            lathe({{0, 0}, {2, 0}, {0, 3}}),
            sphere_above(2, 0.5),
            torus_part(5, 1, 2),
            perforated(2, 1)};
}

TEST(brep_damage, told_of) {
    Body body = lathe({{0, 0}, {2, 0}, {1, 3}, {0, 3}});
    body.lumps[0].shells[0].faces[1].surface = -1;
    const brep::Mesh no_surface = brep::mesh(body);
    expect_harmless(no_surface);
    EXPECT_TRUE(told(no_surface, "solid-face-approximate") ||
                told(no_surface, "solid-face-missing"));

    body = box(1, 1, 1);
    body.lumps[0].shells[0].faces[2].surface = 77;
    const brep::Mesh still = brep::mesh(body);
    EXPECT_TRUE(told(still, "solid-face-approximate"));
    EXPECT_NEAR(brep::volume(still), 1, 1e-9); // the loops tell the plane
    EXPECT_EQ(brep::openEdges(still), 0U);

    body.lumps[0].shells[0].faces[2].loops.clear();
    const brep::Mesh missing = brep::mesh(body);
    EXPECT_TRUE(told(missing, "solid-face-missing"));
    EXPECT_FALSE(missing.complete);
    EXPECT_EQ(missing.faces.size(), 6U);
    EXPECT_EQ(brep::openEdges(missing), 4U);
    EXPECT_TRUE(brep::mesh(Body{}).triangles.empty());
}

TEST(brep_damage, edges_without_curves_are_straight) {
    Body body = box(1, 2, 3);
    for (brep::Edge& edge : body.edges) {
        edge.curve = -1;
    }
    expect_sound(brep::mesh(body));
    body = sphere_above(2, 0.5); // a circle with neither range nor sense
    body.edges[0].has_range = true;
    body.edges[0].from = body.edges[0].to = 3;
    expect_sound(brep::mesh(body));
}

/// One change somewhere.
void damage(Body& body, std::mt19937& random) {
    const double values[] = {
        0, -1, 1e300, 1e-300, std::nan(""), std::numeric_limits<double>::infinity(), 0.5, 7};
    const int indices[] = {-1, 0, 1, 5, 1000000, -7};
    const auto pick = [&](std::size_t count) { return count > 0 ? random() % count : 0; };
    const double value = values[pick(std::size(values))];
    const int index = indices[pick(std::size(indices))];
    auto& faces = body.lumps[0].shells[0].faces;
    brep::Face& face = faces[pick(faces.size())];
    brep::Edge& edge = body.edges[pick(body.edges.size())];
    switch (random() % 14) {
    case 0:
        body.vertices[pick(body.vertices.size())].point.x = value;
        break;
    case 1:
        edge.start = index;
        break;
    case 2:
        edge.end = index;
        break;
    case 3:
        edge.curve = index;
        break;
    case 4:
        edge = {edge.curve, edge.start, edge.end, value, values[pick(8)], true, false};
        break;
    case 5:
        edge.reversed = !edge.reversed;
        break;
    case 6:
        face.surface = index;
        break;
    case 7:
        face.reversed = !face.reversed;
        break;
    case 8:
        body.curves[pick(body.curves.size())] =
            brep::Ellipse{{value, 0, 0}, {0, 0, 1}, {1, 0, 0}, value};
        break;
    case 9:
        body.surfaces[pick(body.surfaces.size())] =
            brep::Cone{{0, value, 0}, {0, 0, 1}, {2, 0, 0}, 1, value, 0.3};
        break;
    case 10:
        body.surfaces[pick(body.surfaces.size())] =
            brep::Torus{{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, value, 0.7};
        break;
    case 11:
        body.transform(1, 2) = value;
        break;
    default:
        if (!face.loops.empty()) {
            brep::Loop& loop = face.loops[pick(face.loops.size())];
            if (!loop.coedges.empty()) {
                brep::Coedge& coedge = loop.coedges[pick(loop.coedges.size())];
                switch (random() % 4) {
                case 0:
                    coedge.reversed = !coedge.reversed;
                    break;
                case 1:
                    coedge.edge = index;
                    break;
                case 2:
                    loop.coedges.pop_back();
                    break;
                default:
                    std::reverse(loop.coedges.begin(), loop.coedges.end());
                    break;
                }
            }
        }
    }
}

TEST(brep_damage, random_changes) {
    std::mt19937 random(4);
    const std::vector<Body> bodies = samples();
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE(round);
        Body body = bodies[static_cast<std::size_t>(round) % bodies.size()];
        for (int i = 0; i <= round % 3; ++i) {
            damage(body, random);
        }
        brep::MeshOptions options;
        options.chord = 0.05;
        options.most_triangles = 20000;
        expect_harmless(brep::mesh(body, options));
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST(brep_damage, splines_that_are_none) {
    brep::BSplineSurface good;
    good.knots_u = good.knots_v = {0, 0, 1, 1};
    good.points = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0.5}};
    std::vector<brep::BSplineSurface> bad(7, good);
    bad[0].degree_u = 0;
    bad[1].degree_v = 1000;
    bad[2].knots_u = {0, 0, -1, 1};
    bad[3].points.pop_back();
    bad[4].weights = {1, 1, 0, 1};
    bad[5].knots_v = {1, 1, 1, 1};
    bad[6].points[0].x = std::nan("");
    for (const brep::BSplineSurface& surface : bad) {
        Maker m;
        m.face(surface, {});
        EXPECT_TRUE(told(brep::mesh(m.body), "solid-face-missing"));
    }
}

} // namespace
