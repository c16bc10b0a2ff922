// Boxes of entities against what they draw.
#include "tests/host/draw/drawing.h"

#include "host/db/block_extents.h"
#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"

#include <numbers>
#include <random>

namespace {

constexpr double kPi = std::numbers::pi;

/// The box must hold all that is drawn, and reach no farther than `slack` beyond it.
void expectTight(AcDbEntity& entity, double slack, std::set<gi::Primitive> refuse = {}) {
    gi::Recorder recorder;
    recorder.refuse = std::move(refuse);
    recorder.record(&entity);
    const AcDbExtents drawn = recorder.extents();
    AcDbExtents box;
    ASSERT_EQ(entity.getGeomExtents(box), Acad::eOk) << entity.isA()->name();
    const AcGeVector3d low = drawn.minPoint() - box.minPoint();
    const AcGeVector3d high = box.maxPoint() - drawn.maxPoint();
    for (const double gap : {low.x, low.y, low.z, high.x, high.y, high.z}) {
        EXPECT_GE(gap, -1e-9) << entity.isA()->name();
        EXPECT_LE(gap, slack) << entity.isA()->name();
    }
}

TEST(Extents, CurvesAgainstTheirPoints) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> any(-3, 3);
    for (int round = 0; round < 50; ++round) {
        const auto point = [&] { return AcGePoint3d{any(random), any(random), any(random)}; };
        const AcGeVector3d normal = point().asVector();
        AcDbLine line(point(), point());
        line.setNormal(normal);
        line.setThickness(any(random));
        expectTight(line, 1e-9);
        AcDbCircle circle(point(), normal, 2);
        circle.setThickness(any(random));
        expectTight(circle, 0.01);
        AcDbArc arc(point(), 2, any(random), any(random));
        arc.setNormal(normal);
        arc.setThickness(any(random));
        expectTight(arc, 0.01);
        AcDbEllipse ellipse;
        ellipse.set(point(), normal, normal.perpVector() * 2, 0.3, any(random), any(random));
        expectTight(ellipse, 0.01);
        AcDbSpline spline;
        spline.setFitPoints({point(), point(), point(), point()});
        expectTight(spline, 0.02);
    }
}

TEST(Extents, PolylinesWithBulgesWidthsAndThickness) {
    AcDbPolyline polyline;
    polyline.setNormal({1, 2, 3});
    polyline.setElevation(4);
    polyline.addVertex({0, 0}, 0.7, 1, 1);
    polyline.addVertex({5, 1}, -1.5, 1, 3);
    polyline.addVertex({7, 8}, 0, 3, 0);
    polyline.addVertex({-2, 5});
    polyline.setClosed(true);
    polyline.setThickness(-2);
    // Mitres and tapered arcs leave some room.
    expectTight(polyline, 1.0, {gi::Primitive::kPline});
}

TEST(Extents, FacesSolidsAndTheirThickness) {
    AcDbFace face({0, 0, 0}, {1, 5, 0}, {2, 2, 9}, {-1, 1, 1});
    expectTight(face, 1e-9);
    AcDbSolid solid;
    solid.setPoints({{{0, 0, 1}, {2, 0, 1}, {0, 2, 1}, {2, 3, 1}}});
    solid.setNormal({0, 1, 1});
    solid.setThickness(5);
    expectTight(solid, 1e-9);
}

TEST(Extents, BlocksThroughTheirContents) {
    Drawing drawing;
    const AcDbObjectId inner = drawing.block("inner", {1, 0, 0});
    drawing.make<AcDbLine>(inner, AcGePoint3d{1, 0, 0}, AcGePoint3d{2, 1, 1});
    drawing.make<AcDbLine>(inner, AcGePoint3d{50, 0, 0}, AcGePoint3d{60, 1, 1})
        ->setVisibility(AcDb::kInvisible);
    drawing.make<AcDbLine>(inner, AcGePoint3d{std::nan(""), 0, 0}, AcGePoint3d{60, 1, 1});
    const AcDbObjectId outer = drawing.block("outer");
    drawing.insert(outer, inner, {10, 0, 0})->setRotation(kPi / 2);
    drawing.insert(outer, outer, {500, 0, 0}); // itself: adds nothing
    AcDbBlockReference* reference = drawing.insert(drawing.model(), outer, {0, 0, 7});
    reference->setScaleFactors({2, 2, 2});
    AcDbExtents box;
    ASSERT_EQ(reference->getGeomExtents(box), Acad::eOk);
    EXPECT_THAT(box.minPoint(), IsNear(AcGePoint3d{18, 0, 7}));
    EXPECT_THAT(box.maxPoint(), IsNear(AcGePoint3d{20, 2, 9}));
    auto* array = drawing.make<AcDbMInsertBlock>(drawing.model());
    array->setBlockTableRecord(inner);
    array->setArray(30000, 30000, -1, 2);
    ASSERT_EQ(array->getGeomExtents(box), Acad::eOk);
    EXPECT_THAT(box.minPoint(), IsNear(AcGePoint3d{-29999, 0, 0}));
    EXPECT_THAT(box.maxPoint(), IsNear(AcGePoint3d{1, 59999, 1}));
    ASSERT_EQ(acdbGetBlockExtents(drawing.model(), box), Acad::eOk);
    EXPECT_THAT(box.maxPoint(), IsNear(AcGePoint3d{20, 59999, 9}));
    const AcDbObjectId empty = drawing.block("empty");
    EXPECT_EQ(drawing.insert(drawing.model(), empty)->getGeomExtents(box), Acad::eNullExtents);
}

TEST(Extents, AScopeKeepsBoxesAndItsEndForgetsThem) {
    Drawing drawing;
    const AcDbObjectId block = drawing.block("A");
    AcDbLine* line = drawing.make<AcDbLine>(block, AcGePoint3d{}, AcGePoint3d{1, 1, 1});
    AcDbBlockReference* reference = drawing.insert(drawing.model(), block);
    AcDbExtents box;
    {
        const AcDbBlockExtentsScope scope;
        ASSERT_EQ(reference->getGeomExtents(box), Acad::eOk);
        line->setEndPoint({5, 5, 5});
        ASSERT_EQ(reference->getGeomExtents(box), Acad::eOk);
        EXPECT_EQ(box.maxPoint().x, 1);
    }
    ASSERT_EQ(reference->getGeomExtents(box), Acad::eOk);
    EXPECT_EQ(box.maxPoint().x, 5);
}

TEST(Extents, VeryDeepNestingNeedsNoStack) {
    Drawing drawing;
    AcDbObjectId inner = drawing.block("0");
    drawing.make<AcDbLine>(inner, AcGePoint3d{}, AcGePoint3d{1, 1, 1});
    for (int level = 1; level <= 20000; ++level) {
        const AcDbObjectId outer = drawing.block(std::to_string(level));
        drawing.insert(outer, inner, {1, 0, 0});
        inner = outer;
    }
    AcDbExtents box;
    ASSERT_EQ(drawing.insert(drawing.model(), inner)->getGeomExtents(box), Acad::eOk);
    EXPECT_EQ(box.maxPoint().x, 20001);
}

} // namespace
