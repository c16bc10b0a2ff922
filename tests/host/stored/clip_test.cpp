// Clipping of primitives: what is left of areas, lengths and bodies.
#include "bodies.h"

#include "../draw/drawing.h"
#include "host/db/polylines.h"
#include "host/gi/clip.h"
#include "host/gi/fallback.h"

#include <numbers>

using gi::ClipScope;
using gi::ClipVolume;
using gi::Primitive;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr double kPi = std::numbers::pi;

ClipVolume volumeOf(std::vector<AcGePoint2d> boundary) {
    ClipVolume volume;
    volume.boundary = std::move(boundary);
    return volume;
}
ClipVolume rectangle(double x0, double y0, double x1, double y1) {
    return volumeOf({{x0, y0}, {x1, y1}});
}

class Clip : public testing::Test {
protected:
    double areaOfSquare(double size = 10) {
        recorder.calls.clear();
        gi::polygon(&recorder, std::vector<AcGePoint3d>{
                                   {0, 0, 0}, {size, 0, 0}, {size, size, 0}, {0, size, 0}});
        return bodies::area(recorder);
    }
    /// A closed box from the origin, drawn as one shell.
    void box(double x, double y, double z) {
        std::vector<AcGePoint3d> points;
        for (int i = 0; i < 8; ++i) {
            points.push_back({(i & 1) * x, (i >> 1 & 1) * y, (i >> 2) * z});
        }
        recorder.calls.clear();
        gi::shell(&recorder, points,
                  std::vector<std::int32_t>{4, 0, 2, 3, 1, 4, 4, 5, 7, 6, 4, 0, 1, 5, 4,
                                            4, 2, 6, 7, 3, 4, 0, 4, 6, 2, 4, 1, 3, 7, 5});
    }
    double length() const {
        double sum = 0;
        for (const gi::RecordedCall& call : recorder.calls) {
            for (std::size_t i = 0; i + 1 < call.points.size(); ++i) {
                sum += call.points[i].distanceTo(call.points[i + 1]);
            }
        }
        return sum;
    }
    gi::Recorder recorder;
};

TEST_F(Clip, RectanglesAndConvexBoundariesLeaveTheirPart) {
    const ClipScope half(rectangle(3, -1, 20, 20));
    EXPECT_NEAR(areaOfSquare(), 70, 1e-9);
    const ClipScope triangle(volumeOf({{0, 0}, {0, 20}, {20, 0}})); // clockwise; cuts nothing more
    EXPECT_NEAR(areaOfSquare(), 70, 1e-9);
    const ClipScope corner(volumeOf({{0, 0}, {8, 0}, {0, 8}}));
    EXPECT_NEAR(areaOfSquare(), 25.0 / 2, 1e-9); // of all three, x above 3
}

TEST_F(Clip, ConcaveBoundaries) {
    // A U, open upwards.
    const std::vector<AcGePoint2d> ring{{1, 1}, {9, 1}, {9, 20}, {6, 20},
                                        {6, 4}, {4, 4}, {4, 20}, {1, 20}};
    ClipVolume volume = volumeOf(ring);
    {
        const ClipScope scope(volume);
        EXPECT_NEAR(areaOfSquare(), 8 * 3 + 2 * 3 * 6, 1e-9);
    }
    volume.inverted = true;
    const ClipScope scope(volume);
    EXPECT_NEAR(areaOfSquare(), 100 - 60, 1e-9);
    const ClipScope nested(rectangle(0, 0, 5, 5));
    EXPECT_NEAR(areaOfSquare(), 25 - 4 * 3 - 3 * 1 + 0, 1e-9);
}

TEST_F(Clip, InvertedRectanglesAreHoles) {
    ClipVolume volume = rectangle(2, 2, 5, 6);
    volume.inverted = true;
    const ClipScope scope(volume);
    EXPECT_NEAR(areaOfSquare(), 100 - 12, 1e-9);
}

TEST_F(Clip, WhatLiesInsideIsDrawnAsEverAndWhatLiesOutsideNotAtAll) {
    const ClipScope scope(volumeOf({{-20, -20}, {20, -20}, {0, 40}}));
    gi::circle(&recorder, {0, 0, 5}, 3, AcGeVector3d::kZAxis);
    gi::circle(&recorder, {100, 0, 5}, 3, AcGeVector3d::kZAxis);
    AcDbPolyline line;
    line.addVertex({0, 0}, 1);
    line.addVertex({2, 0});
    gi::pline(&recorder, line);
    EXPECT_EQ(areaOfSquare(4), 16);
    ASSERT_THAT(recorder.calls, SizeIs(1));
    EXPECT_EQ(recorder.calls[0].primitive, Primitive::kPolygon);
    recorder.calls.clear();
    gi::circle(&recorder, {0, 0, 5}, 3, AcGeVector3d::kZAxis);
    gi::circle(&recorder, {100, 0, 5}, 3, AcGeVector3d::kZAxis);
    gi::pline(&recorder, line);
    ASSERT_THAT(recorder.calls, SizeIs(2));
    EXPECT_EQ(recorder.calls[0].primitive, Primitive::kCircle);
    EXPECT_EQ(recorder.calls[1].primitive, Primitive::kPline);
}

TEST_F(Clip, TurnedFramesAndModelTransforms) {
    ClipVolume volume = rectangle(0, 0, 4, 100); // a strip along its own Y
    volume.from_world = AcGeMatrix3d::rotation(-kPi / 4, AcGeVector3d::kZAxis);
    const ClipScope scope(volume);
    // World points with 0 <= (x + y) / sqrt 2 <= 4 and y >= x.
    EXPECT_NEAR(areaOfSquare(), 8, 1e-9);
    recorder.geometry().pushModelTransform(AcGeMatrix3d::scaling({2, 2, 2}));
    EXPECT_NEAR(areaOfSquare(5), 8, 1e-9); // recorded in the world
    recorder.geometry().popModelTransform();
}

TEST_F(Clip, FrontAndBackCutBodies) {
    ClipVolume volume = rectangle(-10, -10, 1, 10);
    volume.front_on = volume.back_on = true;
    volume.front = 5;
    volume.back = 2;
    const ClipScope scope(volume);
    box(4, 3, 9);
    // Three sides are left between the heights: one of 3, two of 1; open where it was cut.
    EXPECT_NEAR(bodies::area(recorder), 3 * (3 + 1 + 1), 1e-9);
    const AcDbExtents extents = recorder.extents();
    EXPECT_THAT(extents.minPoint(), IsNear(AcGePoint3d{0, 0, 2}));
    EXPECT_THAT(extents.maxPoint(), IsNear(AcGePoint3d{1, 3, 5}));
}

TEST_F(Clip, FacesWithHolesAndCornersInward) {
    const std::vector<AcGePoint3d> points{{0, 0, 2}, {10, 0, 2}, {10, 10, 2}, {0, 10, 2},
                                          {2, 2, 2}, {2, 8, 2},  {8, 8, 2},   {8, 2, 2}};
    const ClipScope scope(rectangle(-1, -1, 5, 11));
    gi::shell(&recorder, points, std::vector<std::int32_t>{4, 0, 1, 2, 3, -4, 4, 5, 6, 7});
    EXPECT_NEAR(bodies::area(recorder), 50 - 18, 1e-7);
    recorder.calls.clear();
    gi::polygon(&recorder, std::vector<AcGePoint3d>{
                               {0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 2, 0}, {0, 10, 0}});
    EXPECT_NEAR(bodies::area(recorder), (100 - 40) / 2.0, 1e-6);
}

TEST_F(Clip, NormalsGoAlongWithTheFaces) {
    const std::vector<AcGePoint3d> points{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}};
    const std::vector<AcGeVector3d> normals{{1, 0, 1}, {-1, 0, 1}, {-1, 0, 1}, {1, 0, 1}};
    const ClipScope scope(rectangle(2, -1, 9, 9));
    gi::mesh(&recorder, 2, 2, std::vector<AcGePoint3d>{points[0], points[1], points[3], points[2]},
             std::vector<AcGeVector3d>{normals[0], normals[1], normals[3], normals[2]}.data());
    EXPECT_NEAR(bodies::area(recorder), 8, 1e-9);
    bool at_cut = false;
    for (const gi::RecordedCall& call : recorder.calls) {
        ASSERT_EQ(call.normals.size(), call.points.size());
        for (std::size_t i = 0; i < call.points.size(); ++i) {
            if (std::abs(call.points[i].x - 2) < 1e-9 && std::abs(call.points[i].y) < 1e-9) {
                EXPECT_NEAR(call.normals[i].z, 1, 1e-9); // half way between the two
                at_cut = true;
            }
        }
    }
    EXPECT_TRUE(at_cut);
}

TEST_F(Clip, LinesBecomePiecesAndThickOnesRibbons) {
    ClipVolume volume =
        volumeOf({{1, -1}, {9, -1}, {9, 9}, {6, 9}, {6, 1}, {4, 1}, {4, 9}, {1, 9}});
    const ClipScope scope(volume);
    const std::vector<AcGePoint3d> line{{0, 5, 0}, {10, 5, 0}};
    gi::polyline(&recorder, line, nullptr);
    EXPECT_THAT(recorder.calls, SizeIs(2));
    EXPECT_NEAR(length(), 6, 1e-7);
    recorder.calls.clear();
    recorder.subEntityTraits().setThickness(2);
    gi::polyline(&recorder, line, &AcGeVector3d::kZAxis);
    EXPECT_NEAR(bodies::area(recorder), 12, 1e-9);
    EXPECT_THAT(recorder.callsOf(Primitive::kPolyline), IsEmpty());
}

TEST_F(Clip, CurvesAreCutAlongTheirChords) {
    const ClipScope scope(rectangle(0, -20, 20, 20));
    recorder.chord_deviation = 1e-4;
    gi::circle(&recorder, {0, 0, 0}, 5, AcGeVector3d::kZAxis);
    EXPECT_NEAR(length(), 5 * kPi, 0.01);
    recorder.calls.clear();
    recorder.subEntityTraits().setThickness(3);
    gi::circularArc(&recorder, {{0, 0, 0}, 5, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, kPi});
    EXPECT_NEAR(bodies::area(recorder), 5 * kPi / 2 * 3, 0.03);
    for (const gi::RecordedCall& call : recorder.calls) {
        for (std::size_t i = 0; i < call.points.size(); ++i) {
            const AcGeVector3d radial{call.points[i].x, call.points[i].y, 0};
            EXPECT_GT(call.normals.at(i).dotProduct(radial.normal()), 0.999);
        }
    }
    recorder.calls.clear();
    recorder.subEntityTraits().setThickness(0);
    gi::ellipticalArc(&recorder, {{0, 0, 0}, {0, 0, 1}, {4, 0, 0}, {0, 4, 0}, 0, 2 * kPi});
    EXPECT_NEAR(length(), 4 * kPi, 0.01);
}

TEST_F(Clip, WidePolylinesAreCutInTheirParts) {
    AcDbPolyline line;
    line.addVertex({0, 0}, 0, 2, 2);
    line.addVertex({10, 0}, 0, 2, 2);
    line.addVertex({10, 10}, 0, 2, 2);
    const ClipScope scope(rectangle(4, -5, 20, 20));
    gi::pline(&recorder, line);
    EXPECT_NEAR(bodies::area(recorder), 2 * 7 + 2 * 9, 1e-9);
}

TEST_F(Clip, UnusableVolumesClipNothing) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    ClipVolume flat = rectangle(0, 0, 5, 5);
    flat.from_world = AcGeMatrix3d::scaling({1, 0, 1});
    for (const ClipVolume& volume :
         {volumeOf({}), volumeOf({{1, 1}}), rectangle(1, 1, 1, 5),
          volumeOf({{0, 0}, {1, 1}, {2, 2}}), rectangle(none, 0, 1, 1), flat}) {
        const ClipScope scope(volume);
        EXPECT_FALSE(scope.isActive());
        EXPECT_EQ(areaOfSquare(), 100);
    }
}

TEST_F(Clip, SelfCrossingBoundariesCountByOddAndEven) {
    const ClipScope scope(
        volumeOf({{0, 0}, {10, 10}, {10, 0}, {0, 10}})); // an hourglass on its side
    EXPECT_NEAR(areaOfSquare(), 50, 1e-6);
}

} // namespace
