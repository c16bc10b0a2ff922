// The solid bodies of the samples: read back from their text they are closed and have the measures
// that turning and pushing give.
#include "apps/make_samples/bodies.h"
#include "host/acis/acis.h"
#include "host/brep/mesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace make_samples {
namespace {

constexpr double kPi = std::numbers::pi;
using P = ProfilePiece;

struct Row {
    const char* name;
    brep::Body body;
    double volume;
};

TEST(SampleBodies, KeepTheirMeasuresThroughTheirText) {
    const double lens = 4.0 / 3 * kPi * 27;
    const Row rows[] = {
        {"cylinder", revolved({{0, 0}, {2, 0}, {2, 5}, {0, 5}}), kPi * 4 * 5},
        {"tube", revolved({{1, 0}, {2, 0}, {2, 5}, {1, 5}}), kPi * (4 - 1) * 5},
        {"cone", revolved({{0, 0}, {3, 0}, {0, 7}}), kPi * 9 * 7 / 3},
        {"frustum upside down", revolved({{0, 0}, {1, 0}, {3, 2}, {0, 2}}),
         kPi * 2 / 3 * (1 + 3 + 9)},
        {"funnel", revolved({{1, 0}, {3, 4}, {2, 4}}), 2 * kPi * 2 * 2}, // Pappus: area 2 at r 2
        {"half ball", revolved({{0, 0}, {3, 0, P::kLeftArc, 0, 0}, {0, 3}}), lens / 2},
        {"ball hollowed from below",
         revolved({{2, 0}, {3, 0, P::kLeftArc, 0, 0}, {0, 3}, {0, 2, P::kRightArc, 0, 0}}),
         lens / 2 - 4.0 / 3 * kPi * 8 / 2},
        {"half ring", revolved({{4, -1, P::kLeftArc, 4, 0}, {4, 1}}),
         2 * kPi * kPi * 4 / 2 + 2 * kPi * 2.0 / 3},
        {"ring", ring({0, 0, 5}, 4, 1), 2 * kPi * kPi * 4},
        {"ball", ball({1, 2, 3}, 3), lens},
        {"plate with holes",
         extruded({{0, 0}, {10, 0}, {10, 6}, {0, 6}}, 1, 3, {{2, 2, 1}, {7, 3, 1.5}}),
         2 * (60 - kPi * (1 + 2.25))},
        {"shaft with a collar",
         revolved({{0, 0}, {1, 0}, {1, 2}, {2, 2}, {2, 3}, {1, 3}, {1, 6}, {0, 6}}), kPi * (6 + 3)},
        {"two bars joined by a rounded corner",
         extruded({{0, 0}, {4, 0}, {4, 1}, {2, 1, -std::tan(kPi / 8)}, {1, 2}, {1, 4}, {0, 4}}, 0,
                  2),
         2 * (7 + 1 - kPi / 4)},
        {"slot", extruded({{0, 0}, {4, 0, 1}, {4, 2}, {0, 2, 1}}, 0, 1), 8 + kPi},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const brep::Body read = acis::readText(solid_text(row.body));
        EXPECT_TRUE(read.problems.empty());
        for (const double chord : {0.05, 0.002}) {
            const brep::Mesh mesh = brep::mesh(read, {chord, 0.5, 4'000'000, {}});
            EXPECT_TRUE(mesh.complete);
            EXPECT_EQ(brep::openEdges(mesh), 0U);
            EXPECT_NEAR(brep::volume(mesh), row.volume, brep::area(mesh) * chord);
        }
    }
}

TEST(SampleBodies, TurnedSplinesMatchTheirPartsSum) {
    // A spline whose points lie in a row is a cone's wall.
    const brep::Body body =
        revolved({{0, 0}, {1, 0, P::kSpline, 0, 0, {{1.5, 1}, {2, 2}, {2.5, 3}}}, {3, 4}, {0, 4}});
    const brep::Mesh mesh =
        brep::mesh(acis::readText(solid_text(body)), {0.002, 0.5, 4'000'000, {}});
    EXPECT_EQ(brep::openEdges(mesh), 0U);
    EXPECT_NEAR(brep::volume(mesh), kPi * 4 / 3 * (1 + 3 + 9), brep::area(mesh) * 0.002);
}

} // namespace
} // namespace make_samples
