// Matrices and the arbitrary-axis rule.
#include "tests/host/draw/drawing.h"

#include <numbers>

namespace {

constexpr double kPi = std::numbers::pi;

TEST(Ge, TurnsByTheRightHandRule) {
    EXPECT_THAT(AcGeVector3d::kXAxis.rotatedBy(kPi / 2, AcGeVector3d::kZAxis),
                IsNear(AcGeVector3d{0, 1, 0}));
    EXPECT_THAT(
        AcGeVector3d::kYAxis.transformedBy(AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kXAxis)),
        IsNear(AcGeVector3d{0, 0, 1}));
    // About the space diagonal a third of a turn permutes the axes.
    const AcGeVector3d diagonal = AcGeVector3d{1, 1, 1}.normal();
    EXPECT_THAT((AcGeVector3d{1, 2, 3}.rotatedBy(2 * kPi / 3, diagonal)),
                IsNear(AcGeVector3d{3, 1, 2}));
}

TEST(Ge, ObjectSystemsFollowTheArbitraryAxisRule) {
    const auto axis = [](const AcGeVector3d& normal, int column) {
        const AcGeMatrix3d m = AcGeMatrix3d::planeToWorld(normal);
        return AcGeVector3d{m(0, column), m(1, column), m(2, column)};
    };
    EXPECT_EQ(AcGeMatrix3d::planeToWorld(AcGeVector3d::kZAxis), AcGeMatrix3d());
    EXPECT_THAT(axis({0, 0, -1}, 0), IsNear(AcGeVector3d{-1, 0, 0}));
    EXPECT_THAT(axis({0, 0, -1}, 1), IsNear(AcGeVector3d{0, 1, 0}));
    EXPECT_THAT(axis({1, 0, 0}, 0), IsNear(AcGeVector3d{0, 1, 0}));
    EXPECT_THAT(axis({0, -3, 0}, 0), IsNear(AcGeVector3d{1, 0, 0}));
    // A 64th decides between world Y and world Z.
    EXPECT_GT(axis({1.0 / 64 - 1e-6, 0, 1}, 0).x, 0.99);
    EXPECT_GT(axis(AcGeVector3d{1.0 / 64 + 1e-4, 0, 1}, 0).y, 0.99);
    EXPECT_EQ(AcGeMatrix3d::planeToWorld({0, 0, 0}), AcGeMatrix3d()) << "no direction at all";
    for (const AcGeVector3d& n : {AcGeVector3d{0.3, -0.2, 0.9}, AcGeVector3d{-5, 1, -2}}) {
        const AcGeMatrix3d m = AcGeMatrix3d::planeToWorld(n);
        EXPECT_NEAR(m.det(), 1, 1e-12);
        EXPECT_THAT(axis(n, 2), IsNear(n.normal()));
    }
}

TEST(Ge, InvertsAndComposes) {
    const AcGeMatrix3d m = AcGeMatrix3d::translation({5e5, -2e5, 7}) *
                           AcGeMatrix3d::rotation(0.7, AcGeVector3d{1, 2, 3}.normal()) *
                           AcGeMatrix3d::scaling({2, -3, 0.5});
    EXPECT_NEAR(m.det(), -3, 1e-12) << "one mirror";
    const AcGePoint3d p{1, 2, 3};
    EXPECT_NEAR(p.transformedBy(m).transformedBy(m.inverse()).distanceTo(p), 0, 1e-9);
    EXPECT_TRUE((m.inverse() * m).isEqualTo(AcGeMatrix3d(), [] {
        AcGeTol tol;
        tol.setEqualVector(1e-9);
        return tol;
    }()));
    // The right factor acts first.
    EXPECT_THAT((AcGePoint3d{1, 1, 1}.transformedBy(AcGeMatrix3d::translation({10, 0, 0}) *
                                                    AcGeMatrix3d::scaling({2, 2, 2}))),
                IsNear(AcGePoint3d{12, 2, 2}));
}

TEST(Ge, SingularMeansFlatAndNotSmall) {
    EXPECT_FALSE(AcGeMatrix3d::scaling({1e-5, 1e-5, 1e-5}).isSingular());
    const AcGeMatrix3d flat = AcGeMatrix3d::scaling({1, 1, 0});
    EXPECT_TRUE(flat.isSingular());
    EXPECT_EQ(flat.inverse(), AcGeMatrix3d());
    AcGeMatrix3d damaged;
    damaged(1, 1) = std::nan("");
    EXPECT_TRUE(damaged.isSingular());
}

} // namespace
