// Curves, surfaces and parameter curves of every kind that is read.
#include "part_maker.h"

#include "host/acis/spline.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

using namespace test_acis;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr double kPi = std::numbers::pi;

Value full() { return Enum{"full", 0}; }

/// "nubs" with clamped ends as the format counts them.
Values spline(int degree, const std::vector<std::pair<double, int>>& knots,
              const std::vector<double>& numbers, bool rational = false, int closure = 0) {
    static constexpr std::array words{"open", "closed", "periodic"};
    Values values{Word{rational ? "nurbs" : "nubs"}, Int{degree},
                  Enum{words[static_cast<std::size_t>(closure)], closure},
                  Int{static_cast<std::int64_t>(knots.size())}};
    for (const auto& [knot, times] : knots) {
        values.insert(values.end(), {knot, Int{times}});
    }
    for (const double number : numbers) {
        values.emplace_back(number);
    }
    return values;
}

/// A surface of degree 1 by 1 over [0, 1] by [0, 2]; points with u fastest.
Values patch(const std::array<Point, 4>& points, bool rational = false) {
    Values values{Word{rational ? "nurbs" : "nubs"}, Int{1}, Int{1}};
    if (rational) {
        values.emplace_back(Enum{"both", 0});
    }
    for (const char* word : {"open", "open"}) {
        values.emplace_back(Enum{word, 0});
    }
    for (const char* word : {"none", "none"}) {
        values.emplace_back(Enum{word, 2});
    }
    values.insert(values.end(),
                  {Int{2}, Int{2}, 0.0, Int{1}, 1.0, Int{1}, 0.0, Int{1}, 2.0, Int{1}});
    for (const Point& p : points) {
        values.emplace_back(p);
        if (rational) {
            values.emplace_back(2.0);
        }
    }
    values.emplace_back(0.0);
    return values;
}

Values operator+(Values a, const Values& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Values inSubtype(const char* name, const Values& inside, bool reversed = false) {
    return Values{Flag{reversed}, Open{}, Word{name}} + inside + Values{Close{}};
}

const Values kRange{infinite(), infinite()};

/// A face on one surface, bounded by one circle, so that both are read.
struct OneFace {
    PartMaker maker;
    explicit OneFace(Release release)
      : maker(release) {}
    brep::Body with(std::string surface_kind, Values surface, bool reversed = false) {
        const int v = maker.vertex({1, 0, 0});
        const int e = maker.edge(v, v, maker.circle({0, 0, 0}, {0, 0, 1}, {1, 0, 0}), 0, 2 * kPi);
        const int s = maker.add(std::move(surface_kind), std::move(surface));
        maker.solid({maker.face(s, {{{e, false}}}, reversed)});
        return maker.read();
    }
};

/// A body with one edge on the given curve.
brep::Body withCurve(Release release, std::string kind, Values values, Point start, Point end,
                     double from = 0, double to = 1, bool reversed = false) {
    PartMaker maker(release);
    const int a = maker.vertex(start);
    const int b = maker.vertex(end);
    const int curve = maker.add(std::move(kind), std::move(values));
    const int there = maker.edge(a, b, curve, from, to, reversed);
    const int back = maker.edge(b, a, maker.straight(end, {1, 0, 0}), 0, 1);
    maker.solid({maker.face(maker.plane({0, 0, 0}, {0, 0, 1}, {1, 0, 0}),
                            {{{there, false}, {back, false}}})});
    return maker.read();
}

class EveryForm : public testing::TestWithParam<Release> {};

INSTANTIATE_TEST_SUITE_P(All, EveryForm,
                         testing::Values(Release{500, Form::kText}, Release{21800, Form::kText},
                                         Release{22300, Form::kBinary4},
                                         Release{23100, Form::kBinary8}),
                         [](const auto& param) { return nameOf(param.param); });

TEST_P(EveryForm, StoredCurves) {
    const Values points =
        spline(2, {{0, 2}, {0.5, 1}, {1, 2}}, {0, 0, 0, 1, 0, 0, 2, 1, 0, 3, 3, 0});
    // Newer releases put a number of their own ahead of the approximation.
    for (const Values& inside :
         {Values{full()} + points, Values{Int{23100}, full()} + points, points}) {
        const brep::Body body =
            withCurve(GetParam(), "intcurve-curve",
                      inSubtype("exactcur", inside + Values{0.0, Word{"null_surface"}}) + kRange,
                      {0, 0, 0}, {3, 3, 0});
        ASSERT_THAT(body.problems, IsEmpty()) << body.problems[0].text;
        const auto& curve = std::get<brep::BSplineCurve>(body.curves[0]);
        EXPECT_THAT(curve.knots, ElementsAre(0, 0, 0, 0.5, 1, 1, 1));
        EXPECT_EQ(curve.points.size(), 4U);
        EXPECT_THAT(curve.weights, IsEmpty());
        EXPECT_TRUE(acis::pointAt(curve, 1).isEqualTo({3, 3, 0}));
    }
}

TEST_P(EveryForm, ReversedCurvesRunOverNegativeParameters) {
    const Values line = spline(1, {{2, 1}, {5, 1}}, {0, 0, 0, 3, 0, 0});
    const brep::Body body =
        withCurve(GetParam(), "intcurve-curve",
                  inSubtype("parcur", Values{full()} + line + Values{0.0}, true) + kRange,
                  {3, 0, 0}, {0, 0, 0}, -5, -2);
    ASSERT_EQ(body.curves.size(), 2U);
    const auto& curve = std::get<brep::BSplineCurve>(body.curves[0]);
    EXPECT_THAT(curve.knots, ElementsAre(-5, -5, -2, -2));
    EXPECT_TRUE(acis::pointAt(curve, -5).isEqualTo({3, 0, 0}));
    // The same by the edge's own sense
    const brep::Body other =
        withCurve(GetParam(), "intcurve-curve",
                  inSubtype("parcur", Values{full()} + line + Values{0.0}) + kRange, {3, 0, 0},
                  {0, 0, 0}, -5, -2, true);
    EXPECT_TRUE(other.edges[0].reversed);
    EXPECT_TRUE(acis::pointAt(other.curves[0], 5)->isEqualTo({3, 0, 0}));
    EXPECT_TRUE(other.edges[0].has_range);
}

TEST_P(EveryForm, RationalAndPeriodicCurves) {
    // A quarter of a circle, rational
    const double w = std::sqrt(0.5);
    brep::Body body =
        withCurve(GetParam(), "intcurve-curve",
                  inSubtype("exactcur", Values{full()} +
                                            spline(2, {{0, 2}, {1, 2}},
                                                   {1, 0, 0, 1, 1, 1, 0, w, 0, 1, 0, 1}, true) +
                                            Values{0.0}) +
                      kRange,
                  {1, 0, 0}, {0, 1, 0});
    const auto& quarter = std::get<brep::BSplineCurve>(body.curves[0]);
    EXPECT_THAT(quarter.weights, ElementsAre(1, w, 1));
    EXPECT_NEAR(acis::pointAt(quarter, 0.3).asVector().length(), 1, 1e-12);
    // A uniform quadratic spline with single knots at its ends is clamped to where it is defined.
    body =
        withCurve(GetParam(), "intcurve-curve",
                  inSubtype("exactcur", Values{full()} +
                                            spline(2, {{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}},
                                                   {0, 0, 0, 2, 0, 0, 2, 2, 0, 0, 2, 0}, false, 2) +
                                            Values{0.0}) +
                      kRange,
                  {0, 0, 0}, {0, 2, 0});
    const auto& clamped = std::get<brep::BSplineCurve>(body.curves[0]);
    ASSERT_EQ(clamped.knots.size(), clamped.points.size() + 3);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(clamped.knots[i], clamped.knots[0]);
        EXPECT_EQ(clamped.knots[clamped.knots.size() - 1 - i], clamped.knots.back());
    }
    EXPECT_TRUE(acis::pointAt(clamped, clamped.knots.front()).isEqualTo(clamped.points.front()));
    EXPECT_TRUE(acis::pointAt(clamped, clamped.knots.back()).isEqualTo(clamped.points.back()));
}

TEST_P(EveryForm, Helix) {
    const brep::Body body =
        withCurve(GetParam(), "intcurve-curve",
                  inSubtype("helix_int_cur", {finite(), 0.0, finite(), 4 * kPi, Point{0, 0, 1},
                                              Point{2, 0, 0}, Point{0, 2, 0}, Point{0, 0, 3}, 0.0,
                                              Point{0, 0, 1}, Word{"null_surface"}}) +
                      kRange,
                  {2, 0, 1}, {2, 0, 7}, 0, 4 * kPi);
    ASSERT_THAT(body.problems, IsEmpty());
    const auto& helix = std::get<brep::BSplineCurve>(body.curves[0]);
    for (double t = 0; t < 4 * kPi; t += 0.37) {
        const AcGePoint3d wanted{2 * std::cos(t), 2 * std::sin(t), 1 + 3 * t / (2 * kPi)};
        EXPECT_LT(acis::pointAt(helix, t).distanceTo(wanted), 1e-4) << t;
    }
}

TEST_P(EveryForm, EllipseWithNegativeRatioRunsTheOtherWay) {
    const brep::Body body =
        withCurve(GetParam(), "ellipse-curve",
                  {Point{0, 0, 0}, Point{0, 0, 2}, Point{3, 0, 0}, -0.5, infinite(), infinite()},
                  {3, 0, 0}, {0, -1.5, 0}, 0, kPi / 2);
    const auto& ellipse = std::get<brep::Ellipse>(body.curves[0]);
    EXPECT_EQ(ellipse.ratio, 0.5);
    EXPECT_TRUE(acis::pointAt(body.curves[0], kPi / 2)->isEqualTo({0, -1.5, 0}));
    EXPECT_EQ(ellipse.normal.length(), 1);
}

TEST_P(EveryForm, UnknownCurvesLeaveTheirFacesOut) {
    const brep::Body body =
        withCurve(GetParam(), "intcurve-curve", inSubtype("new_int_cur", {Int{5}, 1.0}) + kRange,
                  {0, 0, 0}, {1, 0, 0});
    EXPECT_EQ(countsOf(body).faces, 0);
    ASSERT_EQ(body.problems.size(), 1U);
    EXPECT_EQ(body.problems[0].code, "solid-face-missing");
    EXPECT_THAT(body.problems[0].text, HasSubstr("intcurve"));
}

TEST_P(EveryForm, StoredSurfaces) {
    const std::array<Point, 4> points{Point{0, 0, 0}, Point{1, 0, 0}, Point{0, 4, 0},
                                      Point{1, 4, 1}};
    const std::array<Point, 4> support{Point{9, 9, 9}, Point{8, 9, 9}, Point{9, 8, 9},
                                       Point{8, 8, 9}};
    const Values pcurve = spline(1, {{0, 1}, {1, 1}}, {0, 0, 1, 0});
    struct Case {
        const char* kind;
        Values inside;
    };
    // The last surface that a subtype holds at its own level is its own.
    const std::vector<Case> cases{
        {"exactsur", Values{full()} + patch(points)},
        {"exact_spl_sur", Values{Int{23100}, full()} + patch(points, true)},
        {"rb_blend_spl_sur", Values{Int{1}} + pcurve + Values{full()} + patch(support) +
                                 Values{Word{"null_curve"}, full()} + patch(points)},
        {"offsur", Values{Word{"spline"}, Flag{}, Open{}, Word{"exactsur"}, full()} +
                       patch(support) + Values{Close{}, 2.0, full()} + patch(points)},
        {"never_heard_of", patch(points) + pcurve},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.kind);
        OneFace face(GetParam());
        const brep::Body body =
            face.with("spline-surface", inSubtype(one.kind, one.inside) + kRange + kRange);
        ASSERT_THAT(body.problems, IsEmpty()) << body.problems[0].text;
        EXPECT_EQ(body.lumps[0].shells[0].faces[0].kind, one.kind);
        const auto& surface = std::get<brep::BSplineSurface>(body.surfaces[0]);
        EXPECT_THAT(surface.knots_u, ElementsAre(0, 0, 1, 1));
        EXPECT_THAT(surface.knots_v, ElementsAre(0, 0, 2, 2));
        EXPECT_TRUE(acis::pointAt(body.surfaces[0], 1, 0)->isEqualTo({1, 0, 0}));
        EXPECT_TRUE(acis::pointAt(body.surfaces[0], 0, 2)->isEqualTo({0, 4, 0}));
        EXPECT_TRUE(acis::pointAt(body.surfaces[0], 1, 2)->isEqualTo({1, 4, 1}));
    }
}

TEST_P(EveryForm, DefinedSurfacesWithoutApproximation) {
    const Values line{
        Word{"straight"}, Point{2, 0, 0}, Point{0, 0, 1}, finite(), 0.0, finite(), 5.0};
    const Values arc{Word{"ellipse"}, Point{0, 0, 0}, Point{0, 0, 1}, Point{2, 0, 0}, 1.0,
                     infinite(),      infinite()};
    const Values none{Enum{"none", 2}, finite(), 0.0, finite(), 1.0, finite(), 0.0, finite(), 1.0};
    const auto read = [&](const char* kind, const Values& inside) {
        OneFace face(GetParam());
        return face.with("spline-surface", inSubtype(kind, inside + none) + kRange + kRange);
    };
    brep::Body body = read("rotsur", line + Values{Point{0, 0, 0}, Point{0, 0, 3}});
    EXPECT_TRUE(acis::pointAt(body.surfaces.at(0), 4, kPi / 2)->isEqualTo({0, 2, 4}));
    body = read("sum_spl_sur", Values{Int{23100}} + line + arc + Values{Point{2, 0, 0}});
    EXPECT_TRUE(acis::pointAt(body.surfaces.at(0), 4, kPi / 2)->isEqualTo({0, 2, 4}));
    body = read("cylsur", arc + Values{Point{0, 0, 2}, Point{0, 0, 0}});
    EXPECT_TRUE(acis::pointAt(body.surfaces.at(0), kPi / 2, 3)->isEqualTo({0, 2, 6}));
    body = read("offsur", Values{Word{"sphere"}, Point{1, 1, 1}, 3.0, Point{1, 0, 0},
                                 Point{0, 0, 1}, Flag{false, "forward_v", "reverse_v"}} +
                              kRange + kRange + Values{-1.0});
    EXPECT_EQ(std::get<brep::Sphere>(body.surfaces.at(0)).radius, 2);
    body = read("skinsur", line);
    EXPECT_THAT(body.surfaces, IsEmpty());
    EXPECT_THAT(body.problems.at(0).text, HasSubstr("skinsur"));
}

/// The normal of a face is the same however its surface tells it.
TEST_P(EveryForm, Normals) {
    const Flag v{false, "forward_v", "reverse_v"};
    const Values ends = Values{v} + kRange + kRange;
    const bool scaled = GetParam().version >= 400;
    const auto cone = [&](double sine, double cosine) {
        return Values{Point{0, 0, 0}, Point{0, 0, 1}, Point{1, 0, 0}, 1.0} + kRange +
               Values{sine, cosine} + (scaled ? Values{1.0} : Values{}) + Values{Flag{}} + kRange +
               kRange;
    };
    const auto sphere = [&](double radius) {
        return Values{Point{0, 0, 0}, radius, Point{1, 0, 0}, Point{0, 0, 1}} + ends;
    };
    const auto torus = [&](double minor) {
        return Values{Point{0, 0, 0}, Point{0, 0, 1}, 3.0, minor, Point{1, 0, 0}} + ends;
    };
    const std::array<Point, 4> points{Point{0, 0, 0}, Point{1, 0, 0}, Point{0, 1, 0},
                                      Point{1, 1, 0}};
    const auto patch_of = [&](bool reversed) {
        return inSubtype("exactsur", Values{full()} + patch(points), reversed) + kRange + kRange;
    };
    struct Case {
        const char* kind;
        Values surface;
        bool reversed;
    };
    const std::vector<Case> cases{
        {"cone-surface", cone(0.6, 0.8), false},    {"cone-surface", cone(-0.6, -0.8), true},
        {"sphere-surface", sphere(1), false},       {"sphere-surface", sphere(-1), true},
        {"torus-surface", torus(1), false},         {"torus-surface", torus(-1), true},
        {"spline-surface", patch_of(false), false}, {"spline-surface", patch_of(true), true}};
    for (const Case& one : cases) {
        for (const bool face_reversed : {false, true}) {
            OneFace face(GetParam());
            const brep::Body body = face.with(one.kind, one.surface, face_reversed);
            ASSERT_THAT(body.problems, IsEmpty()) << one.kind;
            EXPECT_EQ(body.lumps[0].shells[0].faces[0].reversed, one.reversed != face_reversed)
                << one.kind;
            if (const auto* found = std::get_if<brep::Cone>(&body.surfaces[0])) {
                EXPECT_NEAR(found->sine, 0.6, 1e-15);
                EXPECT_NEAR(found->cosine, 0.8, 1e-15);
            }
        }
    }
}

/// Faces on surfaces told before are found by their number.
TEST_P(EveryForm, ReferencesToSubtypes) {
    const std::array<Point, 4> points{Point{0, 0, 0}, Point{1, 0, 0}, Point{0, 1, 0},
                                      Point{1, 1, 0}};
    PartMaker maker(GetParam());
    // Numbers 0 (the curve), 1 (the outer surface), 2 (the one within it)
    const Values curve = inSubtype(
        "exactcur", Values{full()} + spline(1, {{0, 1}, {1, 1}}, {0, 0, 0, 1, 0, 0}) + Values{0.0});
    maker.add("intcurve-curve", curve + kRange);
    maker.add("spline-surface",
              inSubtype("offsur", Values{Word{"spline"}} +
                                      inSubtype("exactsur", Values{full()} + patch(points)) +
                                      kRange + kRange + Values{0.0, full()} + patch(points)) +
                  kRange + kRange);
    const int again = maker.add("spline-surface", inSubtype("ref", {Int{2}}) + kRange + kRange);
    const int curve_again = maker.add("intcurve-curve", inSubtype("ref", {Int{0}}) + kRange);
    const int a = maker.vertex({0, 0, 0});
    const int b = maker.vertex({1, 0, 0});
    const int there = maker.edge(a, b, curve_again, 0, 1);
    const int back = maker.edge(b, a, maker.straight({1, 0, 0}, {-1, 0, 0}), 0, 1);
    maker.solid({maker.face(again, {{{there, false}, {back, false}}})});
    const brep::Body body = maker.read();
    ASSERT_THAT(body.problems, IsEmpty()) << body.problems[0].text;
    EXPECT_EQ(body.lumps[0].shells[0].faces[0].kind, "exactsur");
    EXPECT_EQ(faultOf(body, false), "");
}

/// A rectangle on a patch: parameter curves fit their edges whatever their direction, and wrong
/// ones are left out.
TEST_P(EveryForm, ParameterCurves) {
    const std::array<Point, 4> points{Point{0, 0, 0}, Point{1, 0, 0}, Point{0, 2, 0},
                                      Point{1, 2, 0}};
    PartMaker maker(GetParam());
    const int surface = maker.add(
        "spline-surface", inSubtype("exactsur", Values{full()} + patch(points)) + kRange + kRange);
    const auto pcurve = [&](bool reversed, double from, double to, std::array<double, 4> uv) {
        return maker.add(
            "pcurve", Values{Int{0}} +
                          inSubtype("exppc",
                                    spline(1, {{from, 1}, {to, 1}}, {uv[0], uv[1], uv[2], uv[3]}) +
                                        Values{0.0, Word{"spline"}} + inSubtype("ref", {Int{0}}) +
                                        kRange + kRange,
                                    reversed) +
                          Values{0.0, 0.0});
    };
    const int holder = maker.add(
        "intcurve-curve",
        inSubtype("surfintcur", Values{full()} + spline(1, {{0, 1}, {1, 1}}, {1, 2, 0, 0, 2, 0}) +
                                    Values{0.0, Word{"spline"}} + inSubtype("ref", {Int{0}}) +
                                    kRange + kRange +
                                    Values{Word{"plane"}, Point{0, 2, 0}, Point{0, 1, 0},
                                           Point{1, 0, 0}, Flag{false, "forward_v", "reverse_v"}} +
                                    kRange + kRange + spline(1, {{0, 1}, {1, 1}}, {1, 2, 0, 2}) +
                                    Values{Word{"nullbs"}} + kRange) +
            kRange);
    const int by_curve = maker.add("pcurve", {Int{1}, Ref{holder}, 0.0, 0.0});
    std::vector<int> v;
    for (const Point p : {Point{0, 0, 0}, Point{1, 0, 0}, Point{1, 2, 0}, Point{0, 2, 0}}) {
        v.push_back(maker.vertex(p));
    }
    const int e0 = maker.edge(v[0], v[1], maker.straight({0, 0, 0}, {1, 0, 0}), 0, 1);
    const int e1 = maker.edge(v[1], v[2], maker.straight({1, 0, 0}, {0, 1, 0}), 0, 2);
    const int e2 = maker.edge(v[2], v[3], holder, 0, 1);
    const int e3 = maker.edge(v[0], v[3], maker.straight({0, 2, 0}, {0, -1, 0}), 0, 2, false);
    maker.record(e3).values[0] = Ref{v[3]};
    maker.record(e3).values[2] = Ref{v[0]};
    const int plain = pcurve(false, 0, 1, {0, 0, 1, 0});
    const int turned = pcurve(true, -2, 0, {1, 2, 1, 0}); // at -t
    const int wrong = pcurve(false, 0, 2, {0.5, 2, 0, 0});
    maker.solid({maker.face(
        surface,
        {{{e0, false, plain}, {e1, false, turned}, {e2, false, by_curve}, {e3, false, wrong}}})});
    const brep::Body body = maker.read();
    ASSERT_THAT(body.problems, IsEmpty()) << body.problems[0].text;
    EXPECT_EQ(faultOf(body, false), "");
    const auto& coedges = body.lumps[0].shells[0].faces[0].loops[0].coedges;
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        ASSERT_TRUE(coedges[i].pcurve);
        const brep::Edge& edge = body.edges[static_cast<std::size_t>(coedges[i].edge)];
        const AcGePoint3d uv = acis::pointAt(coedges[i].pcurve->curve, edge.from);
        const AcGePoint3d start = body.vertices[static_cast<std::size_t>(edge.start)].point;
        EXPECT_TRUE(acis::pointAt(body.surfaces[0], uv.x, uv.y)->isEqualTo(start));
    }
    EXPECT_FALSE(coedges[3].pcurve);
}

} // namespace
