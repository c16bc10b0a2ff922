// The calls that each kind of curve and face makes.
#include "tests/host/draw/drawing.h"

#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"

#include <numbers>

using gi::Primitive;
using gi::RecordedCall;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The only call that an entity makes.
RecordedCall onlyCall(AcDbEntity& entity) {
    gi::Recorder recorder;
    recorder.record(&entity);
    EXPECT_THAT(recorder.calls, SizeIs(1));
    return recorder.calls.empty() ? RecordedCall() : recorder.calls.front();
}

TEST(Entities, LinesPassTheirExtrusionOn) {
    AcDbLine line({1, 2, 3}, {4, 5, 6});
    line.setNormal({0, 0, -2});
    line.setThickness(7);
    const RecordedCall call = onlyCall(line);
    EXPECT_EQ(call.primitive, Primitive::kPolyline);
    EXPECT_THAT(call.points, ElementsAre(AcGePoint3d{1, 2, 3}, AcGePoint3d{4, 5, 6}));
    EXPECT_THAT(*call.normal, IsNear(AcGeVector3d{0, 0, -1}));
    EXPECT_EQ(call.traits.thickness, 7);
    EXPECT_EQ(line.notRenderedReason(), nullptr);
    line.setThickness(0);
    EXPECT_STREQ(line.notRenderedReason(), "curve-without-thickness");
}

TEST(Entities, PointsDrawOnlyWithThickness) {
    AcDbPoint point;
    gi::Recorder recorder;
    recorder.record(&point);
    EXPECT_THAT(recorder.calls, IsEmpty());
    point.setThickness(2);
    EXPECT_THAT(onlyCall(point).points, SizeIs(1));
}

TEST(Entities, CirclesAndArcs) {
    AcDbCircle circle({1, 2, 3}, {0, 0, 5}, -4);
    RecordedCall call = onlyCall(circle);
    EXPECT_EQ(call.primitive, Primitive::kCircle);
    EXPECT_EQ(call.radius, 4);
    EXPECT_THAT(*call.normal, IsNear(AcGeVector3d::kZAxis));

    AcDbArc arc({1, 0, 0}, 2, 1.75 * kPi, 0.25 * kPi);
    EXPECT_NEAR(arc.sweep(), kPi / 2, 1e-12) << "over the zero angle";
    call = onlyCall(arc);
    EXPECT_EQ(call.primitive, Primitive::kArc);
    const double side = std::sqrt(2.0);
    EXPECT_THAT(call.start, IsNear(AcGeVector3d{side, -side, 0}));
    EXPECT_THAT(call.samples.back(), IsNear(AcGePoint3d{1 + side, side, 0}));
    EXPECT_THAT(arc.pointAt(0), IsNear(AcGePoint3d{3, 0, 0}));

    AcDbArc below({-1, 0, 0}, 2, 0, kPi / 2); // seen from below: X leads to -X
    below.setNormal({0, 0, -1});
    call = onlyCall(below);
    EXPECT_THAT(call.samples.front(), IsNear(AcGePoint3d{-3, 0, 0}));
    EXPECT_THAT(call.samples.back(), IsNear(AcGePoint3d{-1, 2, 0}));

    EXPECT_NEAR(AcDbArc({}, 1, 1, 1).sweep(), 2 * kPi, 1e-12) << "equal angles: all round";
}

TEST(Entities, EllipsesGiveAxesAndTilt) {
    AcDbEllipse ellipse;
    ellipse.set({1, 1, 0}, {0, 0, 1}, {0, 4, 0}, 0.5, 0, kPi / 2);
    const RecordedCall call = onlyCall(ellipse);
    EXPECT_EQ(call.primitive, Primitive::kEllipticalArc);
    EXPECT_THAT(call.start, IsNear(AcGeVector3d{0, 4, 0}));
    EXPECT_NEAR(call.minor_radius, 2, 1e-12);
    EXPECT_THAT(call.samples.front(), IsNear(AcGePoint3d{1, 5, 0}));
    EXPECT_THAT(call.samples.back(), IsNear(AcGePoint3d{-1, 1, 0}));
}

TEST(Entities, BulgesAreExactArcs) {
    AcDbPolyline polyline;
    polyline.setElevation(5);
    polyline.addVertex({0, 0}, 1);                  // half circle to the right of the way
    polyline.addVertex({2, 0}, -std::tan(kPi / 8)); // quarter, clockwise
    polyline.addVertex({4, 2});
    AcGeCircArc3d arc;
    ASSERT_EQ(polyline.getArcSegAt(0, arc), Acad::eOk);
    EXPECT_THAT(arc.center, IsNear(AcGePoint3d{1, 0, 5}));
    EXPECT_NEAR(arc.sweep, kPi, 1e-12);
    EXPECT_THAT(arc.evalPoint(kPi / 2), IsNear(AcGePoint3d{1, -1, 5}));
    EXPECT_THAT(arc.evalPoint(arc.sweep), IsNear(AcGePoint3d{2, 0, 5}));
    ASSERT_EQ(polyline.getArcSegAt(1, arc), Acad::eOk);
    EXPECT_THAT(arc.center, IsNear(AcGePoint3d{4, 0, 5}));
    EXPECT_NEAR(arc.radius, 2, 1e-12);
    EXPECT_THAT(arc.normal, IsNear(AcGeVector3d{0, 0, -1}));
    EXPECT_THAT(arc.evalPoint(arc.sweep), IsNear(AcGePoint3d{4, 2, 5}));
    AcGeLineSeg3d line;
    EXPECT_EQ(polyline.getLineSegAt(1, line), Acad::eNotApplicable);
    EXPECT_EQ(polyline.getArcSegAt(3, arc), Acad::eInvalidIndex);
}

TEST(Entities, SegmentKindsOfPolylines) {
    AcDbPolyline polyline;
    for (const AcGePoint2d& p : {AcGePoint2d{0, 0}, AcGePoint2d{1, 0}, AcGePoint2d{1, 0}}) {
        polyline.addVertex(p);
    }
    EXPECT_EQ(polyline.segType(0), AcDbPolyline::kLine);
    EXPECT_EQ(polyline.segType(1), AcDbPolyline::kCoincident);
    EXPECT_EQ(polyline.segType(2), AcDbPolyline::kPoint);
    EXPECT_EQ(polyline.segType(3), AcDbPolyline::kEmpty);
    polyline.setClosed(true);
    EXPECT_EQ(polyline.segType(2), AcDbPolyline::kLine);
}

TEST(Entities, HeavyPolylinesDrawTheirCurveAndNotTheFrame) {
    AcDb2dPolyline polyline;
    polyline.setFlags(4 | 1); // spline-fit, closed
    polyline.setThickness(2);
    for (int i = 0; i < 6; ++i) {
        AcDbHeavyVertex vertex;
        vertex.point = {static_cast<double>(i), static_cast<double>(i * i), 3};
        vertex.flags = i % 2 == 0 ? 16 : 8;
        polyline.vertices().push_back(vertex);
    }
    const RecordedCall call = onlyCall(polyline);
    EXPECT_EQ(call.primitive, Primitive::kPline);
    EXPECT_THAT(call.points, ElementsAre(IsNear(AcGePoint3d{1, 1, 3}), IsNear(AcGePoint3d{3, 9, 3}),
                                         IsNear(AcGePoint3d{5, 25, 3})));
    EXPECT_EQ(call.traits.thickness, 2);
    EXPECT_EQ(polyline.notRenderedReason(), nullptr);

    AcDb3dPolyline path;
    path.setFlags(8 | 1);
    path.vertices() = polyline.vertices();
    EXPECT_THAT(onlyCall(path).points, SizeIs(7)) << "no fit, so all points, and the first again";
}

TEST(Entities, FacesDropCornersThatRepeat) {
    const AcGePoint3d a{0, 0, 0};
    const AcGePoint3d b{1, 0, 0};
    const AcGePoint3d c{1, 1, 0};
    AcDbFace quad(a, b, c, {0, 1, 1});
    quad.setInvisibleEdges(0b0100);
    RecordedCall call = onlyCall(quad);
    EXPECT_EQ(call.primitive, Primitive::kShell);
    EXPECT_THAT(call.faces, ElementsAre(4, 0, 1, 2, 3));
    EXPECT_THAT(call.visibilities, ElementsAre(1, 1, 0, 1));
    AcDbFace triangle(a, b, c, c);
    EXPECT_THAT(onlyCall(triangle).points, ElementsAre(a, b, c));
    AcDbFace first_twice(a, a, b, c);
    EXPECT_THAT(onlyCall(first_twice).points, ElementsAre(a, b, c));
    gi::Recorder recorder;
    AcDbFace needle(a, b, b, a);
    recorder.record(&needle);
    EXPECT_THAT(recorder.calls, IsEmpty());
    EXPECT_STREQ(needle.notRenderedReason(), "degenerate");
    EXPECT_EQ(quad.notRenderedReason(), nullptr);
}

TEST(Entities, SolidsGoRoundTheirCorners) {
    AcDbSolid solid;
    solid.setPoints({{{0, 0, 1}, {2, 0, 1}, {0, 2, 1}, {2, 2, 1}}});
    solid.setNormal({0, 0, -1});
    RecordedCall call = onlyCall(solid);
    EXPECT_EQ(call.primitive, Primitive::kPolygon);
    EXPECT_THAT(call.points,
                ElementsAre(IsNear(AcGePoint3d{0, 0, -1}), IsNear(AcGePoint3d{-2, 0, -1}),
                            IsNear(AcGePoint3d{-2, 2, -1}), IsNear(AcGePoint3d{0, 2, -1})));
    solid.setThickness(3);
    call = onlyCall(solid);
    EXPECT_EQ(call.primitive, Primitive::kShell);
    EXPECT_THAT(call.points, SizeIs(8));
    EXPECT_THAT(call.points.back(), IsNear(AcGePoint3d{0, 2, -4}));
    EXPECT_THAT(call.faces, SizeIs(6 * 5));
    EXPECT_THAT(call.visibilities, IsEmpty());
}

TEST(Entities, NumbersThatAreNoneDrawNothing) {
    AcDbLine line({kNaN, 0, 0}, {1, 0, 0});
    AcDbCircle circle({0, 0, 0}, {0, 0, 1}, kNaN);
    AcDbCircle dot({0, 0, 0}, {0, 0, 1}, 0);
    AcDbArc arc({0, 0, 0}, 1, kNaN, 1);
    AcDbFace face({0, 0, 0}, {1, 0, 0}, {1, 1, HUGE_VAL}, {0, 1, 0});
    AcDbPolyline polyline;
    polyline.addVertex({0, 0}, kNaN);
    polyline.addVertex({1, 0});
    AcDbSpline spline;
    spline.set(2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {kNaN, 0, 0}, {1, 1, 1}});
    AcDbEllipse ellipse;
    ellipse.set({}, {0, 0, 1}, {kNaN, 0, 0}, 0.5, 0, 1);
    for (AcDbEntity* entity : std::initializer_list<AcDbEntity*>{&line, &circle, &dot, &arc, &face,
                                                                 &polyline, &spline, &ellipse}) {
        gi::Recorder recorder;
        recorder.record(entity);
        EXPECT_THAT(recorder.calls, IsEmpty()) << entity->isA()->name();
        AcDbExtents box;
        EXPECT_EQ(entity->getGeomExtents(box), Acad::eInvalidExtents) << entity->isA()->name();
        EXPECT_TRUE(box.isEmpty());
        EXPECT_NE(entity->notRenderedReason(), nullptr);
    }
}

TEST(Entities, AttributesReachTheTraits) {
    Drawing drawing;
    auto* line = drawing.make<AcDbLine>(drawing.model());
    gi::Recorder recorder;
    recorder.record(line);
    line->setColor(AcCmEntityColor::index(5));
    recorder.record(line);
    line->setColor(AcCmEntityColor::trueColor(0x102030));
    recorder.record(line);
    ASSERT_THAT(recorder.calls, SizeIs(3));
    EXPECT_TRUE(recorder.calls[0].traits.color.isByLayer());
    EXPECT_EQ(recorder.calls[0].traits.layer, drawing.db.layerZero());
    EXPECT_EQ(recorder.calls[0].traits.material, drawing.db.byLayerMaterial());
    EXPECT_EQ(recorder.calls[1].traits.color.colorIndex(), 5);
    EXPECT_EQ(recorder.calls[2].traits.color.green(), 0x20);
}

} // namespace
