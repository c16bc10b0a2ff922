// Whole bodies in all releases and forms.
#include "part_maker.h"

#include "host/db/color.h"

#include <gmock/gmock.h>

#include <numbers>

using namespace test_acis;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class EveryRelease : public testing::TestWithParam<Release> {};

INSTANTIATE_TEST_SUITE_P(All, EveryRelease, testing::ValuesIn(allReleases()),
                         [](const auto& param) { return nameOf(param.param); });

TEST_P(EveryRelease, Box) {
    PartMaker maker(GetParam());
    maker.solid(addBox(maker, {1, 2, 3}, {-4, 5, 6}));
    const brep::Body body = maker.read();
    EXPECT_THAT(body.problems, IsEmpty()) << described(body);
    EXPECT_EQ(countsOf(body), (Counts{1, 1, 6, 6, 24, 0, 12, 8}));
    EXPECT_EQ(faultOf(body), "");
    EXPECT_NEAR(polyhedronVolume(body), 6, 1e-9);
    for (const brep::Edge& edge : body.edges) {
        EXPECT_EQ(edge.has_range, GetParam().version >= 500);
    }
}

/// A plate with a square hole: two faces have two loops.
TEST_P(EveryRelease, Hole) {
    PartMaker maker(GetParam());
    std::vector<Point> points;
    for (const double half : {2.0, 1.0}) {
        for (const double z : {0.0, 1.0}) {
            points.insert(points.end(),
                          {{-half, -half, z}, {half, -half, z}, {half, half, z}, {-half, half, z}});
        }
    }
    std::vector<std::vector<std::vector<int>>> faces{{{3, 2, 1, 0}, {8, 9, 10, 11}},
                                                     {{4, 5, 6, 7}, {15, 14, 13, 12}}};
    for (int i = 0; i < 4; ++i) {
        const int j = (i + 1) % 4;
        faces.push_back({{i, j, j + 4, i + 4}});
        faces.push_back({{j + 8, i + 8, i + 12, j + 12}});
    }
    maker.solid(maker.polyhedron(points, faces));
    const brep::Body body = maker.read();
    EXPECT_EQ(countsOf(body), (Counts{1, 1, 10, 12, 48, 0, 24, 16}));
    EXPECT_EQ(faultOf(body), "");
    EXPECT_NEAR(polyhedronVolume(body), 12, 1e-9);
}

TEST_P(EveryRelease, CylinderWithoutSeam) {
    PartMaker maker(GetParam());
    maker.solid(addCylinder(maker, 2, 5));
    const brep::Body body = maker.read();
    EXPECT_THAT(body.problems, IsEmpty());
    EXPECT_EQ(countsOf(body), (Counts{1, 1, 3, 4, 4, 0, 2, 2}));
    EXPECT_EQ(faultOf(body), "");
    ASSERT_EQ(body.edges.size(), 2U);
    EXPECT_NE(body.edges[0].reversed, body.edges[1].reversed);
    const brep::Face& side = body.lumps[0].shells[0].faces[0];
    EXPECT_EQ(side.kind, "cone");
    EXPECT_FALSE(side.reversed);
    const auto& cone = std::get<brep::Cone>(body.surfaces[static_cast<std::size_t>(side.surface)]);
    EXPECT_EQ(cone.sine, 0);
    EXPECT_EQ(cone.cosine, 1);
    EXPECT_EQ(cone.major.length(), 2);
}

TEST_P(EveryRelease, ConeWithApex) {
    PartMaker maker(GetParam());
    maker.solid(addCone(maker, 3, 4));
    const brep::Body body = maker.read();
    EXPECT_THAT(body.problems, IsEmpty());
    EXPECT_EQ(countsOf(body), (Counts{1, 1, 2, 3, 3, 0, 2, 2}));
    EXPECT_EQ(faultOf(body), "");
    const brep::Edge& tip = body.edges[1].curve < 0 ? body.edges[1] : body.edges[0];
    EXPECT_EQ(tip.curve, -1);
    EXPECT_EQ(tip.start, tip.end);
    EXPECT_FALSE(tip.has_range);
}

TEST_P(EveryRelease, ClosedSurfacesWithoutLoops) {
    PartMaker maker(GetParam());
    const Flag v{false, "forward_v", "reverse_v"};
    const Values ends{v, infinite(), infinite(), infinite(), infinite()};
    Values sphere{Point{1, 2, 3}, 5.0, Point{1, 0, 0}, Point{0, 0, 1}};
    Values torus{Point{0, 0, 9}, Point{0, 1, 0}, 4.0, -1.0, Point{1, 0, 0}};
    for (Values* values : {&sphere, &torus}) {
        values->insert(values->end(), ends.begin(), ends.end());
    }
    const int ball =
        maker.lump({maker.shell({maker.face(maker.add("sphere-surface", sphere), {})})});
    const int ring = maker.lump({maker.shell({maker.face(maker.add("torus-surface", torus), {})})});
    maker.body({ball, ring});
    const brep::Body body = maker.read();
    EXPECT_THAT(body.problems, IsEmpty());
    ASSERT_EQ(countsOf(body), (Counts{2, 2, 2, 0, 0, 0, 0, 0}));
    EXPECT_EQ(std::get<brep::Sphere>(body.surfaces[0]).radius, 5);
    EXPECT_FALSE(body.lumps[0].shells[0].faces[0].reversed);
    // A negative minor radius turns the normal, which the face tells instead.
    EXPECT_EQ(std::get<brep::Torus>(body.surfaces[1]).minor_radius, 1);
    EXPECT_TRUE(body.lumps[1].shells[0].faces[0].reversed);
}

TEST_P(EveryRelease, LumpsShellsAndTransform) {
    PartMaker maker(GetParam());
    const int hollow = maker.lump(
        {maker.shell(addBox(maker, {4, 4, 4})), maker.shell(addBox(maker, {1, 1, 1}, {1, 1, 1}))});
    const int other = maker.lump({maker.shell(addBox(maker, {1, 1, 1}, {9, 0, 0}))});
    const int transform = maker.add(
        "transform", {Point{0, 1, 0}, Point{-1, 0, 0}, Point{0, 0, 1}, Point{10, 20, 30}, 2.0,
                      Flag{true, "no_rotate", "rotate"}, Flag{false, "no_reflect", "reflect"},
                      Flag{false, "no_shear", "shear"}});
    maker.body({hollow, other}, transform);
    const brep::Body body = maker.read();
    EXPECT_THAT(body.problems, IsEmpty());
    EXPECT_EQ(countsOf(body), (Counts{2, 3, 18, 18, 72, 0, 36, 24}));
    // A quarter turn about Z, twice the size, then the shift.
    const AcGePoint3d moved = AcGePoint3d{1, 0, 0}.transformedBy(body.transform);
    EXPECT_TRUE(moved.isEqualTo({10, 22, 30})) << moved.x << " " << moved.y << " " << moved.z;
}

TEST_P(EveryRelease, TransformAsOneText) {
    PartMaker maker(GetParam());
    const int transform = maker.add(
        "transform", {Literal{"1 0 0 0 1 0 0 0 1 4 5 6 3 no_rotate no_reflect no_shear "}});
    maker.solid(addBox(maker, {1, 1, 1}), transform);
    const brep::Body body = maker.read();
    EXPECT_THAT(body.problems, IsEmpty());
    const AcGePoint3d corner{1, 1, 1};
    EXPECT_TRUE(corner.transformedBy(body.transform).isEqualTo({7, 8, 9}));
}

/// Tolerant edges, coedges and vertices are the plain ones with more behind.
TEST_P(EveryRelease, TolerantTopology) {
    PartMaker maker(GetParam());
    maker.solid(addBox(maker, {1, 2, 3}));
    for (int i = 0; i < maker.size(); ++i) {
        MadeRecord& record = maker.record(i);
        if (record.kind == "edge" || record.kind == "vertex") {
            record.kind = "t" + record.kind + "-" + record.kind;
            record.values.emplace_back(0.01);
        } else if (record.kind == "coedge") {
            record.kind = "tcoedge-coedge";
            record.values.insert(record.values.end(), {0.0, 1.0});
        }
    }
    const brep::Body body = maker.read();
    EXPECT_THAT(body.problems, IsEmpty());
    EXPECT_EQ(countsOf(body), (Counts{1, 1, 6, 6, 24, 0, 12, 8}));
    EXPECT_EQ(faultOf(body), "");
    EXPECT_NEAR(polyhedronVolume(body), 6, 1e-9);
}

TEST_P(EveryRelease, ColoursOfFaces) {
    PartMaker maker(GetParam());
    const std::vector<int> faces = addBox(maker, {1, 1, 1});
    maker.solid(faces);
    const auto attribute = [&](std::string kind, Values values, int next = -1) {
        values.insert(values.begin(), {Ref{next}, Ref{-1}, Ref{-1}});
        return maker.add(std::move(kind), std::move(values));
    };
    const int rgb = attribute("rgb_color-st-attrib", {1.0, 0.5, 0.0});
    const int behind = attribute("name_attrib-gen-attrib", {Text{"a # b"}}, rgb);
    const int exact = attribute("truecolor-adesk-attrib", {Int{0xc2123456 - 0x100000000}});
    const int index = attribute("color-adesk-attrib", {Int{1}});
    const int by_layer = attribute("color-adesk-attrib", {Int{256}});
    const auto with = [&](int face, int attribute_number) {
        PartMaker copy = maker;
        copy.attach(face, attribute_number);
        const brep::Body body = copy.read();
        for (const brep::Face& found : body.lumps[0].shells[0].faces) {
            if (found.color) {
                return static_cast<std::int64_t>(*found.color);
            }
        }
        return std::int64_t{-1};
    };
    EXPECT_EQ(with(faces[2], rgb), 0xff8000);
    EXPECT_EQ(with(faces[3], exact), 0x123456);
    EXPECT_EQ(with(faces[2], index), AcCmEntityColor::lookUpRGB(1));
    EXPECT_EQ(with(faces[2], by_layer), -1);
    EXPECT_EQ(with(faces[2], behind), 0xff8000);
}

TEST(Bodies, TextAndBinaryGiveTheSame) {
    const auto make = [](const Release& release) {
        PartMaker maker(release);
        std::vector<int> faces = addBox(maker, {1, 2, 3});
        maker.body({maker.lump({maker.shell(faces)}),
                    maker.lump({maker.shell(addCylinder(maker, 1, 2))}),
                    maker.lump({maker.shell(addCone(maker, 1, 2))})});
        return described(maker.read());
    };
    const std::string text = make({22300, Form::kText});
    EXPECT_THAT(text, HasSubstr("cone"));
    EXPECT_EQ(make({22300, Form::kBinary4}), text);
    EXPECT_EQ(make({23100, Form::kBinary8}), text);
    EXPECT_EQ(make({700, Form::kText}), text);
    EXPECT_EQ(make({700, Form::kBinary4}), text);
}

TEST(Bodies, SubshellsAreReadToo) {
    PartMaker maker({400, Form::kText});
    const std::vector<int> faces = addBox(maker, {1, 1, 1});
    const int shell = maker.shell({faces[0], faces[1]});
    maker.shell({faces[2], faces[3]});
    maker.shell({faces[4], faces[5]});
    const int child = maker.add("subshell", {Ref{shell}, Ref{-1}, Ref{-1}, Ref{faces[4]}, Ref{-1}});
    const int first =
        maker.add("subshell", {Ref{shell}, Ref{-1}, Ref{child}, Ref{faces[2]}, Ref{-1}});
    maker.record(shell).values[1] = Ref{first};
    maker.body({maker.lump({shell})});
    const brep::Body body = maker.read();
    EXPECT_EQ(faultOf(body), "");
    EXPECT_EQ(countsOf(body).faces, 6);
}

TEST(Bodies, HistoryIsNotTheBody) {
    PartMaker maker({22300, Form::kText});
    maker.solid(addBox(maker, {1, 1, 1}));
    std::string text = maker.write();
    const std::size_t end = text.find("End-of-ASM-data");
    text.insert(end, "Begin-of-ACIS-History-Data\nhistory_stream $-1 1 2 0 0 $0 $0 $0 $-1 #\n"
                     "face $-1 -1 $-1 $-1 $-1 $-1 $-1 $-1 forward single #\n"
                     "End-of-ACIS-History-Section\n");
    const brep::Body body = acis::readText(text);
    EXPECT_THAT(body.problems, IsEmpty()) << described(body);
    EXPECT_EQ(countsOf(body).faces, 6);
}

TEST(Bodies, WithoutFacesIsEmpty) {
    PartMaker maker({400, Form::kText});
    maker.body({});
    const brep::Body body = maker.read();
    ASSERT_EQ(body.problems.size(), 1U);
    EXPECT_EQ(body.problems[0].code, "solid-empty");
}

} // namespace
