// Stored graphics, chunk by chunk.
#include "bodies.h"
#include "encoder.h"

#include "../draw/drawing.h"
#include "host/db/proxy_graphics.h"
#include "host/gi/fallback.h"

#include <numbers>

using encode::Bits;
using encode::Data;
using encode::Graphics;
using gi::Primitive;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr double kPi = std::numbers::pi;

class ProxyGraphics : public testing::Test {
protected:
    proxy::Outcome replay(const Graphics& graphics) {
        recorder.calls.clear();
        return proxy::replay(&recorder, graphics.bytes(), &drawing.db);
    }
    /// The only call; all of it must be sound.
    gi::RecordedCall only(const Graphics& graphics) {
        EXPECT_FALSE(replay(graphics).damaged);
        EXPECT_THAT(recorder.calls, SizeIs(1));
        return recorder.calls.empty() ? gi::RecordedCall() : recorder.calls[0];
    }
    Drawing drawing;
    gi::Recorder recorder{&drawing.db};
};

TEST_F(ProxyGraphics, CirclesByCentreAndByThreePoints) {
    const auto plain = only(Graphics().add(2, Data().point(1, 2, 3).real(4).point(0, 1, 0)));
    EXPECT_EQ(plain.primitive, Primitive::kCircle);
    EXPECT_THAT(plain.points[0], IsNear(AcGePoint3d{1, 2, 3}));
    EXPECT_EQ(plain.radius, 4);
    EXPECT_EQ(*plain.normal, (AcGeVector3d{0, 1, 0}));
    const auto through =
        only(Graphics().add(3, Data().point(6, 2, 3).point(1, 7, 3).point(-4, 2, 3)));
    EXPECT_THAT(through.points[0], IsNear(AcGePoint3d{1, 2, 3}));
    EXPECT_NEAR(through.radius, 5, 1e-12);
    EXPECT_TRUE(
        replay(Graphics().add(3, Data().point(0, 0, 0).point(1, 1, 1).point(2, 2, 2))).damaged ==
        false);
    EXPECT_THAT(recorder.calls, IsEmpty()); // no circle through points of a line
}

TEST_F(ProxyGraphics, ArcsGoTheWayOfTheirPoints) {
    const auto arc = only(Graphics().add(
        4, Data().point(1, 0, 0).real(2).point(0, 0, 1).point(0, 5, 0).real(kPi / 2).u32(0)));
    EXPECT_THAT(arc.samples.front(), IsNear(AcGePoint3d{1, 2, 0}));
    EXPECT_THAT(arc.samples.back(), IsNear(AcGePoint3d{-1, 0, 0}));
    // Round the far side, clockwise seen from above.
    const auto far =
        only(Graphics().add(5, Data().point(0, 3, 0).point(3, 0, 0).point(-3, 0, 0).u32(0)));
    EXPECT_THAT(far.samples.front(), IsNear(AcGePoint3d{0, 3, 0}));
    EXPECT_THAT(far.samples.back(), IsNear(AcGePoint3d{-3, 0, 0}));
    EXPECT_NEAR(far.sweep, 1.5 * kPi, 1e-9);
    EXPECT_NEAR(far.normal->z, -1, 1e-9);
    // The sector has its two sides too.
    replay(Graphics().add(
        4, Data().point(1, 0, 0).real(2).point(0, 0, 1).point(1, 0, 0).real(kPi).u32(1)));
    ASSERT_THAT(recorder.calls, SizeIs(2));
    EXPECT_THAT(recorder.calls[1].points,
                ElementsAre(IsNear(AcGePoint3d{-1, 0, 0}), IsNear(AcGePoint3d{1, 0, 0}),
                            IsNear(AcGePoint3d{3, 0, 0})));
}

TEST_F(ProxyGraphics, EllipsesKeepAxesAndParameters) {
    const auto arc = only(Graphics().add(
        44, Data().point(1, 1, 0).point(0, 0, 1).reals({4, 2, 0, kPi / 2, kPi / 2}).u32(0)));
    EXPECT_EQ(arc.primitive, Primitive::kEllipticalArc);
    const AcGeVector3d axis = AcGeVector3d::kZAxis.perpVector().rotatedBy(kPi / 2, {0, 0, 1});
    EXPECT_THAT(arc.samples.front(), IsNear(AcGePoint3d{1, 1, 0} + axis * 4));
    EXPECT_THAT(arc.samples.back(),
                IsNear(AcGePoint3d{1, 1, 0} + AcGeVector3d::kZAxis.crossProduct(axis) * 2));
}

TEST_F(ProxyGraphics, ThicknessMakesFacesOfCurves) {
    const std::vector<AcGePoint3d> points{{0, 0, 0}, {5, 0, 0}};
    const auto thin = replay(Graphics().add(6, Data().points(points)));
    EXPECT_TRUE(thin.curves);
    EXPECT_FALSE(thin.faces);
    const auto thick =
        replay(Graphics().add(25, Data().real(3)).add(32, Data().points(points).point(0, 0, 2)));
    EXPECT_TRUE(thick.faces);
    EXPECT_FALSE(thick.curves);
    ASSERT_THAT(recorder.calls, SizeIs(1));
    EXPECT_EQ(recorder.calls[0].traits.thickness, 3);
    EXPECT_EQ(*recorder.calls[0].normal, AcGeVector3d::kZAxis); // a direction, made a unit
    EXPECT_EQ(recorder.subEntityTraits().thickness(), 0);       // and put back
}

TEST_F(ProxyGraphics, PolygonsAreFacesUnlessTheyAreNotFilled) {
    const Data triangle = Data().points({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}});
    EXPECT_EQ(only(Graphics().add(7, triangle)).primitive, Primitive::kPolygon);
    const auto outline = only(Graphics().add(20, Data().u32(2)).add(7, triangle));
    EXPECT_EQ(outline.primitive, Primitive::kPolyline);
    EXPECT_THAT(outline.points, SizeIs(4));
}

TEST_F(ProxyGraphics, FacesWithCornersInwardAreDivided) {
    // An arrow: a fan from its first corner would cover what lies outside.
    const std::vector<AcGePoint3d> arrow{{4, 0, 0}, {4, 4, 0}, {0, 2, 0}, {3, 2, 0}};
    for (const auto& graphics :
         {Graphics().add(7, Data().points(arrow)),
          Graphics().add(9, Data().points(arrow).u32(5).integers({4, 0, 1, 2, 3}))}) {
        const auto shell = only(graphics);
        double fanned = 0;
        for (const auto& ring : bodies::rings(shell)) {
            for (std::size_t i = 1; i + 1 < ring.size(); ++i) {
                fanned += bodies::areaVector({ring[0], ring[i], ring[i + 1]}).length();
            }
        }
        EXPECT_NEAR(fanned, bodies::areaVector(arrow).length(), 1e-9);
    }
}

TEST_F(ProxyGraphics, MeshesAndTheirNormals) {
    Data grid = Data().u32(2).u32(3);
    for (int i = 0; i < 6; ++i) {
        grid.point(i % 3, i / 3, 0);
    }
    grid.u32(0x20).integers({1, 2, 3, 4, 5, 6, 7}).u32(0).u32(0x480);
    for (int i = 0; i < 6; ++i) {
        grid.point(0, 0, 1);
    }
    const auto mesh = only(Graphics().add(8, grid.u32(1)));
    EXPECT_EQ(mesh.primitive, Primitive::kMesh);
    EXPECT_EQ(mesh.rows, 2U);
    EXPECT_EQ(mesh.columns, 3U);
    EXPECT_THAT(mesh.normals, SizeIs(6));
}

TEST_F(ProxyGraphics, ShellsAreDividedByColourAndLayerOfTheirFaces) {
    AcDbObjectId walls;
    auto layer = std::make_unique<AcDbLayerTableRecord>();
    layer->setName("walls");
    ASSERT_EQ(drawing.db.layerTable().add(std::move(layer), walls), Acad::eOk);
    const auto& records = drawing.db.layerTable().records();
    const auto index = static_cast<std::int32_t>(std::find(records.begin(), records.end(), walls) -
                                                 records.begin());
    // Four faces: two of colour 1, one of them with a hole; one of colour 5; one hidden.
    Data shell = Data().points(
        {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {1, 1, 0}, {2, 2, 0}, {2, 1, 0}});
    shell.u32(20).integers({4, 0, 1, 2, 3, -3, 4, 5, 6, 3, 0, 1, 2, 3, 1, 2, 3, 3, 0, 2, 3});
    shell.bytes.erase(shell.bytes.size() - 84 - 4, 4);
    shell.bytes.insert(shell.bytes.size() - 84, Data().u32(21).bytes);
    shell.u32(0x40);
    for (int edge = 0; edge < 16; ++edge) {
        shell.u32(edge % 2);
    }
    // Colours, layers, markers, normals and visibilities of the five rings.
    shell.u32(0xe3).integers({1, 1, 5, 1, 1, 0, 0, index, 0, 0, 9, 9, 9, 9, 9});
    for (int ring = 0; ring < 5; ++ring) {
        shell.point(0, 0, 1);
    }
    shell.integers({1, 1, 1, 0, 1}).u32(0);
    EXPECT_TRUE(replay(Graphics().add(14, Data().u32(3)).add(9, shell)).faces);
    ASSERT_THAT(recorder.calls, SizeIs(2));
    const gi::RecordedCall first = recorder.calls[0], second = recorder.calls[1];
    recorder.calls.pop_back();
    EXPECT_NEAR(bodies::area(recorder), 16 - 0.5 + 8, 1e-9);          // the hole is cut out
    EXPECT_EQ(first.visibilities.size(), first.faces.size() / 4 * 3); // triangles all
    EXPECT_EQ(first.traits.color, AcCmEntityColor::index(1));
    EXPECT_THAT(second.faces, ElementsAre(3, 0, 1, 2));
    EXPECT_EQ(second.traits.color, AcCmEntityColor::index(5));
    EXPECT_EQ(second.traits.layer, walls);
}

TEST_F(ProxyGraphics, TraitsHoldUntilTheNextAndAreWhatTheyWereAfterwards) {
    recorder.subEntityTraits().setTrueColor(AcCmEntityColor::trueColor(0x102030));
    recorder.subEntityTraits().setLayer(drawing.db.layerZero());
    const AcDbObjectId material = drawing.db.globalMaterial();
    const Data line = Data().points({{0, 0, 0}, {1, 0, 0}});
    replay(Graphics()
               .add(22, Data().u32(0xc2445566))
               .add(34, Data().u64(material.handle().value()))
               .add(6, line)
               .add(14, Data().u32(6))
               .add(6, line)
               .add(22, Data().u32(0xc1000000))
               .add(6, line)
               .add(14, Data().u32(257)) // no colour
               .add(6, line));
    ASSERT_THAT(recorder.calls, SizeIs(4));
    EXPECT_EQ(recorder.calls[0].traits.color, AcCmEntityColor::trueColor(0x445566));
    EXPECT_EQ(recorder.calls[0].traits.material, material);
    EXPECT_EQ(recorder.calls[1].traits.color, AcCmEntityColor::index(6));
    EXPECT_TRUE(recorder.calls[2].traits.color.isByBlock());
    EXPECT_TRUE(recorder.calls[3].traits.color.isByLayer());
    EXPECT_EQ(recorder.subEntityTraits().trueColor(), AcCmEntityColor::trueColor(0x102030));
    EXPECT_TRUE(recorder.subEntityTraits().materialId().isNull());
}

TEST_F(ProxyGraphics, TransformsNestAndAreTakenBack) {
    const Data at_origin = Data().points({{0, 0, 0}, {1, 0, 0}});
    replay(Graphics()
               .add(31) // nothing to pop
               .add(29, Data().matrix(AcGeMatrix3d::translation({10, 0, 0})))
               .add(30, Data().matrix(AcGeMatrix3d::rotation(kPi / 2, {0, 0, 1})).real(7))
               .add(6, at_origin)
               .add(31)
               .add(6, at_origin));
    ASSERT_THAT(recorder.calls, SizeIs(2));
    EXPECT_THAT(recorder.calls[0].points[1], IsNear(AcGePoint3d{10, 1, 0}));
    EXPECT_THAT(recorder.calls[1].points[1], IsNear(AcGePoint3d{11, 0, 0}));
    EXPECT_EQ(recorder.geometry().getModelToWorldTransform(), AcGeMatrix3d());
}

TEST_F(ProxyGraphics, LightPolylinesAreReadFromBits) {
    const double x[] = {0, 10, 10.000000001, 3}, y[] = {0, 0, 7, 7.5};
    Bits bits;
    bits.bitShort(0x200 | 1 | 2 | 8 | 16 | 32);
    bits.bitDouble(2.5).bitDouble(1.5).bitDouble(0).bitDouble(0).bitDouble(-1);
    bits.bitLong(4).bitLong(4).bitLong(4).raw(x[0]).raw(y[0]);
    for (int i = 1; i < 4; ++i) {
        bits.changed(x[i], x[i - 1]).changed(y[i], y[i - 1]);
    }
    for (const double bulge : {0.0, 1.0, 0.25, 0.0}) {
        bits.bitDouble(bulge);
    }
    for (int i = 0; i < 4; ++i) {
        bits.bitDouble(0.5).bitDouble(0.5);
    }
    const auto size = static_cast<std::uint32_t>(bits.bytes.size());
    Data data = Data().u32(size);
    data.bytes += bits.bytes + std::string(3, '\0');
    const auto line = only(Graphics().add(33, data));
    EXPECT_EQ(line.primitive, Primitive::kPline);
    EXPECT_EQ(line.traits.thickness, 1.5);
    EXPECT_EQ(*line.normal, (AcGeVector3d{0, 0, -1}));
    ASSERT_THAT(line.points, SizeIs(4));
    const AcGeMatrix3d to_world = AcGeMatrix3d::planeToWorld({0, 0, -1});
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_THAT(line.points[i], IsNear(AcGePoint3d{x[i], y[i], 2.5}.transformedBy(to_world)));
    }
    EXPECT_THAT(line.samples, SizeIs(2 * 65)); // two arcs
}

TEST_F(ProxyGraphics, ClipsHoldBetweenPushAndPop) {
    const Data square = Data().points({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}});
    const AcGeMatrix3d moved = AcGeMatrix3d::translation({100, 0, 0});
    const Data clip = Data()
                          .point(0, 0, 1)
                          .point(0, 0, 0)
                          .u32(2)
                          .reals({1, 1, 3, 9})
                          .matrix(AcGeMatrix3d())
                          .matrix(moved.inverse())
                          .u32(0)
                          .u32(0)
                          .reals({0, 0})
                          .u32(1);
    replay(Graphics().add(29, Data().matrix(moved)).add(27, clip).add(7, square).add(31).add(28));
    EXPECT_NEAR(bodies::area(recorder), 2 * 3, 1e-9);
    replay(Graphics().add(27, clip).add(28).add(7, square));
    EXPECT_NEAR(bodies::area(recorder), 16, 1e-9);
    replay(Graphics().add(27, clip).add(27, clip)); // and two that are not popped
    gi::polygon(&recorder, std::vector<AcGePoint3d>{{0, 0, 0}, {4, 0, 0}, {0, 4, 0}});
    EXPECT_NEAR(bodies::area(recorder), 8, 1e-9);
}

TEST_F(ProxyGraphics, TextsOfAllFourKindsStandWithThickness) {
    const Data place = Data().point(5, 0, 0).point(0, 0, 1).point(0, 1, 0);
    const auto with = [](Data data, const Data& more) {
        data.bytes += more.bytes;
        return data;
    };
    const Data style = Data().integers({1, 1}).reals({2, 1, 0, 1}).integers({0, 0, 0, 0, 0});
    const Data chunks[] = {
        with(place, Data().reals({2, 1, 0}).text("I")),
        with(with(with(place, Data().text("I")), style), Data().text("txt.shx").text("")),
        with(place, Data().reals({2, 1, 0}).unicode(u"I")),
        with(with(with(place, Data().unicode(u"I")), style),
             Data().integers({0, 0, 0, 0}).unicode(u"").unicode(u"txt.shx").unicode(u""))};
    const std::uint32_t types[] = {10, 11, 36, 38};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_TRUE(replay(Graphics().add(types[i], chunks[i])).texts);
        EXPECT_THAT(recorder.calls, IsEmpty());
        const auto outcome = replay(Graphics().add(25, Data().real(3)).add(types[i], chunks[i]));
        EXPECT_TRUE(outcome.faces) << types[i];
        EXPECT_EQ(outcome.fonts.empty(), i % 2 == 0); // a stroke font is substituted
        const AcDbExtents box = recorder.extents();
        EXPECT_NEAR(box.minPoint().x, 3, 1e-9); // two high, to the left of the way
        EXPECT_NEAR(box.maxPoint().x, 5, 1e-9);
        EXPECT_NEAR(box.maxPoint().z, 3, 1e-9);
    }
}

} // namespace
