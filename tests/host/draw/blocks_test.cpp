// References draw their blocks: transforms, arrays, and blocks that would never end.
#include "tests/host/draw/drawing.h"

#include "host/db/curves.h"
#include "host/db/faces.h"

#include <numbers>
#include <stdexcept>

using gi::Primitive;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr double kPi = std::numbers::pi;

/// First points of all polylines drawn by the reference.
std::vector<AcGePoint3d> starts(AcDbBlockReference& reference) {
    gi::Recorder recorder;
    recorder.record(&reference);
    std::vector<AcGePoint3d> points;
    for (const gi::RecordedCall& call : recorder.callsOf(Primitive::kPolyline)) {
        points.push_back(call.points.front());
    }
    return points;
}

struct Blocks : testing::Test {
    Drawing drawing;
    AcDbObjectId withLine(const std::string& name, const AcGePoint3d& start,
                          const AcGePoint3d& origin = {}) {
        const AcDbObjectId block = drawing.block(name, origin);
        drawing.make<AcDbLine>(block, start, AcGePoint3d{9, 9, 9});
        return block;
    }
};

TEST_F(Blocks, TheTransformIsBaseScaleTurnMoveAndPlane) {
    const AcDbObjectId block = withLine("A", {3, 1, 0}, {1, 1, 0});
    AcDbBlockReference* reference = drawing.insert(drawing.model(), block, {10, 20, 30});
    reference->setScaleFactors({2, 3, 4});
    EXPECT_THAT(starts(*reference), ElementsAre(IsNear(AcGePoint3d{14, 20, 30})));
    reference->setRotation(kPi / 2);
    EXPECT_THAT(starts(*reference), ElementsAre(IsNear(AcGePoint3d{10, 24, 30})));
    // The position lies in the plane's own system: seen from below X and Z are turned round.
    reference->setNormal({0, 0, -1});
    EXPECT_THAT(starts(*reference), ElementsAre(IsNear(AcGePoint3d{-10, 24, -30})));
}

TEST_F(Blocks, MirrorsKeepArcsOnTheirSide) {
    const AcDbObjectId block = drawing.block("A");
    drawing.make<AcDbArc>(block, AcGePoint3d{5, 0, 0}, 2.0, 0.0, kPi / 2);
    AcDbBlockReference* reference = drawing.insert(drawing.model(), block);
    reference->setScaleFactors({-1, 1, 1});
    gi::Recorder recorder;
    recorder.record(reference);
    const auto arcs = recorder.callsOf(Primitive::kArc);
    ASSERT_THAT(arcs, SizeIs(1));
    EXPECT_LT(arcs[0].transform.det(), 0);
    EXPECT_THAT(arcs[0].samples.front(), IsNear(AcGePoint3d{-7, 0, 0}));
    EXPECT_THAT(arcs[0].samples.back(), IsNear(AcGePoint3d{-5, 2, 0}));
}

TEST_F(Blocks, NestedTransformsMultiply) {
    const AcDbObjectId inner = withLine("inner", {1, 0, 0});
    const AcDbObjectId outer = drawing.block("outer");
    drawing.insert(outer, inner, {10, 0, 0})->setRotation(kPi / 2);
    AcDbBlockReference* reference = drawing.insert(drawing.model(), outer, {100, 0, 0});
    reference->setScaleFactors({2, 3, 1}); // not uniform: the turned line is stretched by Y
    EXPECT_THAT(starts(*reference), ElementsAre(IsNear(AcGePoint3d{120, 3, 0})));
}

TEST_F(Blocks, EntitiesKeepFileOrderAndErasedOnesStayOut) {
    const AcDbObjectId block = withLine("A", {1, 0, 0});
    AcDbLine* second = drawing.make<AcDbLine>(block, AcGePoint3d{2, 0, 0}, AcGePoint3d{});
    drawing.make<AcDbLine>(block, AcGePoint3d{3, 0, 0}, AcGePoint3d{});
    AcDbBlockReference* reference = drawing.insert(drawing.model(), block);
    second->erase();
    EXPECT_THAT(starts(*reference),
                ElementsAre(IsNear(AcGePoint3d{1, 0, 0}), IsNear(AcGePoint3d{3, 0, 0})));
}

TEST_F(Blocks, ArraysStepInTheTurnedPlaneAndAreNotScaled) {
    const AcDbObjectId block = withLine("A", {0, 0, 0});
    auto* array = drawing.make<AcDbMInsertBlock>(drawing.model());
    array->setBlockTableRecord(block);
    array->setRotation(kPi / 2);
    array->setScaleFactors({5, 5, 5});
    array->setArray(3, 2, 10, 100);
    EXPECT_THAT(starts(*array),
                ElementsAre(IsNear(AcGePoint3d{0, 0, 0}), IsNear(AcGePoint3d{0, 10, 0}),
                            IsNear(AcGePoint3d{0, 20, 0}), IsNear(AcGePoint3d{-100, 0, 0}),
                            IsNear(AcGePoint3d{-100, 10, 0}), IsNear(AcGePoint3d{-100, 20, 0})));
    array->setArray(0, -5, 1, 1);
    EXPECT_THAT(starts(*array), SizeIs(1));
}

TEST_F(Blocks, MissingBlocksDrawNothingAndSaySo) {
    AcDbBlockReference lost;
    lost.setBlockName("Chair");
    gi::Recorder recorder;
    recorder.record(&lost);
    EXPECT_THAT(recorder.calls, IsEmpty());
    EXPECT_STREQ(lost.notRenderedReason(), "missing-block");
    EXPECT_EQ(lost.blockName(), "Chair");
    AcDbExtents box;
    EXPECT_EQ(lost.getGeomExtents(box), Acad::eNullExtents);
}

TEST_F(Blocks, BlocksThatInsertThemselvesEnd) {
    const AcDbObjectId direct = withLine("direct", {1, 0, 0});
    drawing.insert(direct, direct, {5, 0, 0});
    EXPECT_THAT(starts(*drawing.insert(drawing.model(), direct)), SizeIs(1));
    const AcDbObjectId a = withLine("a", {1, 0, 0});
    const AcDbObjectId b = withLine("b", {2, 0, 0});
    drawing.insert(a, b);
    drawing.insert(b, a);
    EXPECT_THAT(starts(*drawing.insert(drawing.model(), a)), SizeIs(2));
    EXPECT_THAT(starts(*drawing.insert(drawing.model(), b)), SizeIs(2)) << "the guard is let go";
}

TEST_F(Blocks, NestingEndsAtSixtyFourLevels) {
    AcDbObjectId inner = withLine("0", {1, 0, 0});
    for (int level = 1; level < 500; ++level) {
        const AcDbObjectId outer = withLine(std::to_string(level), {1, 0, 0});
        drawing.insert(outer, inner, {1, 0, 0});
        inner = outer;
    }
    EXPECT_THAT(starts(*drawing.insert(drawing.model(), inner)), SizeIs(64));
}

/// Each level inserts the one below it ten times: ten to the tenth lines.
AcDbBlockReference* makeBomb(Blocks& test) {
    AcDbObjectId inner = test.withLine("0", {1, 0, 0});
    for (int level = 1; level <= 10; ++level) {
        const AcDbObjectId outer = test.drawing.block(std::to_string(level));
        for (int i = 0; i < 10; ++i) {
            test.drawing.insert(outer, inner, {static_cast<double>(i), 0, 0});
        }
        inner = outer;
    }
    return test.drawing.insert(test.drawing.model(), inner);
}

TEST_F(Blocks, AnAbortIsHeardSoon) {
    AcDbBlockReference* bomb = makeBomb(*this);
    gi::Recorder recorder;
    recorder.count_only = true;
    recorder.abort_after = 5000;
    recorder.record(bomb);
    EXPECT_GE(recorder.draw_count, 5000U);
    EXPECT_LT(recorder.draw_count, 5000U + 2048U);
    // The next reference starts afresh.
    recorder.draw_count = 0;
    recorder.abort_after = 1'000'000;
    recorder.record(bomb);
    EXPECT_GE(recorder.draw_count, 1'000'000U);
}

TEST_F(Blocks, BoxesOfBombsTakeNoTime) {
    AcDbExtents box;
    ASSERT_EQ(makeBomb(*this)->getGeomExtents(box), Acad::eOk);
    EXPECT_THAT(box.minPoint(), IsNear(AcGePoint3d{1, 0, 0}));
    EXPECT_THAT(box.maxPoint(), IsNear(AcGePoint3d{9 + 90, 9, 9}));
}

TEST_F(Blocks, ExceptionsLeaveNothingBehind) {
    // An exception that leaves the drawer leaves no block marked as being drawn.
    struct Throwing : AcDbLine {
        bool worldDraw(AcGiWorldDraw*) override { throw std::runtime_error("stop"); }
    };
    const AcDbObjectId block = drawing.block("A");
    drawing.add(block, std::make_unique<Throwing>());
    AcDbBlockReference* reference = drawing.insert(drawing.model(), block);
    gi::Recorder recorder;
    EXPECT_THROW(recorder.record(reference), std::runtime_error);
    EXPECT_TRUE(recorder.geometry().getModelToWorldTransform() == AcGeMatrix3d());
    gi::Recorder again;
    EXPECT_THROW(again.record(reference), std::runtime_error) << "entered again";
}

} // namespace
