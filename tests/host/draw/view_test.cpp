// Views from viewport records and back.
#include "tests/host/draw/drawing.h"

#include "host/gs/view.h"

#include <numbers>
#include <random>

namespace {

constexpr double kPi = std::numbers::pi;

struct View : testing::Test {
    Drawing drawing;
    AcDbObjectId id = drawing.db.activeViewportId();
    AcGsView get() const {
        AcGsView view;
        EXPECT_TRUE(acgsGetViewParameters(id, view));
        return view;
    }
    template <class Change>
    void change(const Change& change_record) const {
        AcDbObjectPointer<AcDbViewportTableRecord> record(id, AcDb::kForWrite);
        ASSERT_TRUE(record);
        record->setSize(8, 6);
        record->setTarget({0, 0, 0});
        record->setViewDirection({0, 0, 1});
        change_record(*record);
    }
};

TEST_F(View, AnOffsetMovesEyeAndTarget) {
    change([](auto& record) {
        record.setTarget({100, 0, 0});
        record.setCenterPoint({3, 4});
    });
    AcGsView view = get();
    EXPECT_FALSE(view.perspective);
    EXPECT_THAT(view.target, IsNear(AcGePoint3d{103, 4, 0}));
    EXPECT_THAT(view.position, IsNear(AcGePoint3d{103, 4, 1}));
    EXPECT_THAT(view.up, IsNear(AcGeVector3d{0, 1, 0}));
    EXPECT_DOUBLE_EQ(view.field_height, 6);
    EXPECT_DOUBLE_EQ(view.field_width, 8);
    // From the front the view's axes are world X and Z.
    change([](auto& record) {
        record.setViewDirection({0, -5, 0});
        record.setCenterPoint({3, 4});
    });
    EXPECT_THAT(get().target, IsNear(AcGePoint3d{3, 0, 4}));
}

TEST_F(View, TwistTurnsTheDrawingCounterClockwise) {
    // A twist of a quarter brings world X up, so up is world X.
    change([](auto& record) {
        record.setViewTwist(kPi / 2);
        record.setCenterPoint({0, 2});
    });
    EXPECT_THAT(get().up, IsNear(AcGeVector3d{1, 0, 0}));
    EXPECT_THAT(get().target, IsNear(AcGePoint3d{2, 0, 0})) << "the offset turns with it";
}

TEST_F(View, LensesAreThoseOfA42MillimetreDiagonal) {
    change([](auto& record) {
        record.setPerspectiveEnabled(true);
        record.setLensLength(42);
        record.setViewDirection({30, 0, 0});
        record.setCenterPoint({9, 9});
    });
    const AcGsView view = get();
    EXPECT_TRUE(view.perspective);
    EXPECT_NEAR(std::hypot(view.field_width, view.field_height), 30, 1e-12);
    EXPECT_NEAR(view.field_width / view.field_height, 8.0 / 6, 1e-12);
    EXPECT_THAT(view.target, IsNear(AcGePoint3d{0, 0, 0}));
}

TEST_F(View, ComesBackAsItWasSet) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> any(-50, 50);
    std::vector<AcGeVector3d> directions{{0, 0, 5}, {0, 0, -5}, {0, 1e-7, 5}, {7, 0, 0}};
    for (int i = 0; i < 100; ++i) {
        directions.push_back({any(random), any(random), any(random)});
    }
    for (const AcGeVector3d& direction : directions) {
        AcGsView view;
        view.target = {any(random), any(random), any(random)};
        view.position = view.target + direction;
        view.up = direction.perpVector().rotatedBy(any(random), direction.normal());
        view.field_width = 1 + std::abs(any(random));
        view.field_height = 1 + std::abs(any(random));
        view.perspective = any(random) > 0;
        ASSERT_TRUE(acgsSetViewParameters(id, view));
        const AcGsView back = get();
        EXPECT_THAT(back.position, IsNear(view.position));
        EXPECT_THAT(back.target, IsNear(view.target));
        EXPECT_THAT(back.up, IsNear(view.up));
        EXPECT_NEAR(back.field_width, view.field_width, 1e-9);
        EXPECT_NEAR(back.field_height, view.field_height, 1e-9);
        EXPECT_EQ(back.perspective, view.perspective);
    }
}

TEST_F(View, DamagedRecordsStillGiveAView) {
    change([](auto& record) {
        record.setViewDirection({0, 0, 0});
        record.setSize(std::nan(""), -3);
        record.setViewTwist(std::nan(""));
        record.setLensLength(0);
        record.setPerspectiveEnabled(true);
    });
    const AcGsView view = get();
    EXPECT_GT(view.field_width, 0);
    EXPECT_GT(view.field_height, 0);
    EXPECT_NEAR(view.up.length(), 1, 1e-12);
    AcGsView none;
    EXPECT_FALSE(acgsGetViewParameters(AcDbObjectId::kNull, none));
    EXPECT_FALSE(acgsGetViewParameters(drawing.model(), none));
    none.position = none.target;
    EXPECT_FALSE(acgsSetViewParameters(id, none));
}

} // namespace
