// NURBS curves against circles, and curves through fit points.
#include "tests/host/draw/drawing.h"

#include "host/db/curves.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// The circle of radius 1 about the origin as a rational curve of degree 2 (nine points).
AcDbSpline* circle(AcDbSpline& spline, bool with_weights = true) {
    const double w = std::sqrt(0.5);
    spline.set(2, {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4},
               {{1, 0, 0},
                {1, 1, 0},
                {0, 1, 0},
                {-1, 1, 0},
                {-1, 0, 0},
                {-1, -1, 0},
                {0, -1, 0},
                {1, -1, 0},
                {1, 0, 0}},
               with_weights ? std::vector<double>{1, w, 1, w, 1, w, 1, w, 1}
                            : std::vector<double>(),
               true);
    return &spline;
}

double chordError(const std::vector<AcGePoint3d>& points) {
    double worst = 0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const AcGePoint3d middle = points[i] + (points[i + 1] - points[i]) * 0.5;
        worst = std::max(worst, 1 - middle.asVector().length());
    }
    return worst;
}

TEST(Spline, ARationalCircleIsExact) {
    AcDbSpline spline;
    for (const double deviation : {0.1, 1e-3, 1e-5}) {
        const auto points = circle(spline)->sample(deviation);
        for (const AcGePoint3d& p : points) {
            EXPECT_NEAR(p.asVector().length(), 1, 1e-12);
        }
        EXPECT_LE(chordError(points), deviation);
        EXPECT_GE(chordError(points), deviation / 50) << "no finer than needed";
        EXPECT_THAT(points.back(), IsNear(points.front()));
    }
    // Without weights it leaves the circle.
    double farthest = 0;
    for (const AcGePoint3d& p : circle(spline, false)->sample(1e-3)) {
        farthest = std::max(farthest, std::abs(p.asVector().length() - 1));
    }
    EXPECT_GT(farthest, 0.05);
}

TEST(Spline, AnSBendIsNotTakenForStraight) {
    AcDbSpline spline; // its middle lies on the chord from end to end
    spline.set(3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0, 0}, {1, 3, 0}, {2, -3, 0}, {3, 0, 0}});
    EXPECT_GT(spline.sample(0.01).size(), 8U);
}

TEST(Spline, PeriodicCurvesRunOverTheirOwnSpans) {
    AcDbSpline spline; // four points of a square, the first three repeated, knots not clamped
    std::vector<double> knots;
    for (int i = 0; i < 11; ++i) {
        knots.push_back(i);
    }
    spline.set(3, knots,
               {{1, 1, 0}, {-1, 1, 0}, {-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {-1, -1, 0}},
               {}, true);
    const auto points = spline.sample(0.01);
    ASSERT_GT(points.size(), 8U);
    EXPECT_THAT(points.back(), IsNear(points.front()));
    // A uniform cubic starts at a sixth, four sixths and a sixth of its first three points.
    EXPECT_THAT(points.front(), IsNear(AcGePoint3d{-4.0 / 6, 4.0 / 6, 0}));
}

TEST(Spline, FitPointsLieOnTheCurve) {
    const std::vector<AcGePoint3d> fit{{0, 0, 0}, {1, 2, 0}, {3, 2, 1}, {4, 0, 0}};
    AcDbSpline spline;
    for (const bool closed : {false, true}) {
        spline.setFitPoints(fit, closed);
        const auto points = spline.sample(1e-3);
        for (const AcGePoint3d& p : fit) {
            EXPECT_THAT(points, testing::Contains(IsNear(p)));
        }
        EXPECT_EQ(points.front().isEqualTo(points.back()), closed);
        // No kinks: neighbouring chords turn little, over the seam of the closed one too.
        for (std::size_t i = 1; i + (closed ? 0 : 1) < points.size(); ++i) {
            const AcGePoint3d& next = i + 1 < points.size() ? points[i + 1] : points[1];
            const AcGeVector3d a = (points[i] - points[i - 1]).normal();
            const AcGeVector3d b = (next - points[i]).normal();
            EXPECT_GT(a.dotProduct(b), 0.97) << i;
        }
    }
    // Through two points it is the segment, and points along a line stay on it.
    spline.setFitPoints({{0, 0, 0}, {1, 1, 1}});
    for (const AcGePoint3d& p : spline.sample(0.1)) {
        EXPECT_NEAR(p.x, p.y, 1e-12);
        EXPECT_NEAR(p.x, p.z, 1e-12);
    }
}

TEST(Spline, NumbersThatDoNotFitAreRepaired) {
    AcDbSpline spline;
    const std::vector<AcGePoint3d> points{{0, 0, 0}, {1, 2, 0}, {3, 0, 0}};
    spline.set(3, {0, 0, 1, 1}, points); // too few points and knots for the degree
    EXPECT_THAT(spline.sample(0.1).front(), IsNear(points.front()));
    EXPECT_THAT(spline.sample(0.1).back(), IsNear(points.back()));
    spline.set(2, {0, 0, 0, 0, 0, 0}, points); // no length
    EXPECT_THAT(spline.sample(0.1).back(), IsNear(points.back()));
    spline.set(2, {5, 4, 3, 2, 1, 0}, points); // falling
    EXPECT_THAT(spline.sample(0.1).back(), IsNear(points.back()));
    spline.set(1000, {}, std::vector<AcGePoint3d>(2000, AcGePoint3d{1, 1, 1}));
    EXPECT_FALSE(spline.sample(0.1).empty());
    spline.set(2, {0, 0, 0, 1, 1, 1}, points, {1, -1, 0}); // weights are left out
    for (const AcGePoint3d& p : spline.sample(0)) {
        EXPECT_TRUE(p.y >= 0 && p.y <= 1 + 1e-12);
    }
    spline.set(3, {}, {});
    EXPECT_THAT(spline.sample(0.1), IsEmpty());
    spline.setFitPoints({{1, 1, 1}, {1, 1, 1}});
    EXPECT_THAT(spline.sample(0.1), IsEmpty());
}

} // namespace
