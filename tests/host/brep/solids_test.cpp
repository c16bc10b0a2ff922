// Solids of plane, conical, spherical and toroidal faces, against their exact volumes and areas.
#include "bodies.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using namespace bodies;
constexpr double kPi = std::numbers::pi;

double lathe_volume(const std::vector<AcGePoint2d>& profile) {
    double sum = 0;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const AcGePoint2d a = profile[i], b = profile[(i + 1) % profile.size()];
        sum += kPi / 3 * (b.y - a.y) * (a.x * a.x + a.x * b.x + b.x * b.x);
    }
    return sum;
}

double lathe_area(const std::vector<AcGePoint2d>& profile) {
    double sum = 0;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const AcGePoint2d a = profile[i], b = profile[(i + 1) % profile.size()];
        sum += a.x + b.x > 0 ? kPi * (a.x + b.x) * a.distanceTo(b) : 0;
    }
    return sum;
}

TEST(brep_solids, flat_faces) {
    expect_solid(box(2, 3, 4), 24, 52, "box");
    EXPECT_EQ(brep::mesh(box(2, 3, 4)).triangles.size(), 12U);
    EXPECT_EQ(brep::mesh(box(2, 3, 4)).points.size(), 8U);
    expect_solid(prism({{{0, 0}, {3, 0}, {0, 4}}}, 2), 12, 36, "wedge");
    expect_solid(prism({{{0, 0}, {6, 0}, {6, 6}, {0, 6}},
                        {{1, 1}, {1, 2}, {2, 2}, {2, 1}},
                        {{3, 3}, {3, 5}, {5, 5}, {5, 3}}},
                       2),
                 62, 2 * 31 + 2 * (24 + 4 + 8), "holes");
}

TEST(brep_solids, turned_about_an_axis) {
    const std::vector<std::pair<std::string, std::vector<AcGePoint2d>>> profiles = {
        {"cylinder", {{0, 0}, {1, 0}, {1, 5}, {0, 5}}},
        {"cone", {{0, 0}, {2, 0}, {0, 3}}},
        {"cone on its tip", {{0, 0}, {2, 3}, {0, 3}}},
        {"two tips", {{0, -2}, {1, 0}, {0, 2}}},
        {"frustum", {{0, 0}, {3, 0}, {1, 2}, {0, 2}}},
        {"hollow", {{0, 0}, {3, 0}, {3, 2}, {2, 2}, {0, 1}}},
        {"tube", {{1, 0}, {2, 0}, {2, 4}, {1, 4}}},
        {"ring", {{3, 0}, {4, 1}, {3, 2}}},
        {"flat", {{0, 0}, {9, 0}, {9, 0.01}, {0, 0.01}}},
    };
    for (const auto& [name, profile] : profiles) {
        expect_solid(lathe(profile), lathe_volume(profile), lathe_area(profile), name);
    }
    // The area of the wall: the perimeter of the ellipse 2 by 1 (9.688448...) times the height.
    expect_solid(lathe({{0, 0}, {2, 0}, {2, 3}, {0, 3}}, 0.5), kPi * 2 * 3,
                 2 * kPi * 2 + 9.688448220547675 * 3, "elliptic cylinder");
}

TEST(brep_solids, a_cylinder_has_as_many_triangles_as_it_needs) {
    brep::MeshOptions options;
    options.chord = 1 - std::cos(kPi / 32) + 1e-9; // 32 steps round
    const brep::Mesh mesh = brep::mesh(lathe({{0, 0}, {1, 0}, {1, 5}, {0, 5}}), options);
    EXPECT_EQ(mesh.points.size(), 64U);
    EXPECT_EQ(mesh.triangles.size(), 64U + 2 * 30);
}

TEST(brep_solids, spheres) {
    for (const double r : {1.0, 7.0}) {
        expect_solid(sphere(r), 4 * kPi / 3 * r * r * r, 4 * kPi * r * r, "sphere");
        for (const double part : {0.0, 0.6, -0.6, 0.99, -0.99}) {
            const double h = r - part * r;
            const double volume = kPi * h * h * (3 * r - h) / 3;
            const double area = 2 * kPi * r * h + kPi * r * r * (1 - part * part);
            expect_solid(sphere_above(r, part * r), volume, area,
                         "sphere above " + std::to_string(part));
        }
    }
}

TEST(brep_solids, tori) {
    expect_solid(torus(5, 1), 2 * kPi * kPi * 5, 4 * kPi * kPi * 5, "torus");
    for (const double angle : {0.3, kPi / 2, kPi, 4.0, 6.0}) {
        expect_solid(torus_part(5, 1, angle), kPi * 5 * angle, 2 * kPi * 5 * angle + 2 * kPi,
                     "torus part " + std::to_string(angle));
    }
}

TEST(brep_solids, a_plate_with_many_holes) {
    const double hole = kPi * 0.09, wall = 2 * kPi * 0.3 * 0.5;
    expect_solid(perforated(6, 4), 0.5 * (24 - 24 * hole), 2 * (24 - 24 * hole) + 10 + 24 * wall,
                 "plate");
}

} // namespace
