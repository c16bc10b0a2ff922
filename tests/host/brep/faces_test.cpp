// Faces by themselves and bodies of odd shape: tips and poles on loops, explicit seams, windows in
// closed surfaces, loops that run wrong, sheets; transforms and limits.
#include "bodies.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

namespace {

using namespace bodies;
constexpr double kPi = std::numbers::pi;
const AcGeVector3d kX{1, 0, 0}, kY{0, 1, 0}, kZ{0, 0, 1};
const AcGePoint3d kOrigin{0, 0, 0};

/// Length of the edges that only one triangle has.
double rim_length(const brep::Mesh& mesh) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> uses;
    for (const auto& t : mesh.triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            const std::uint32_t a = t[i].point, b = t[(i + 1) % 3].point;
            uses[{std::min(a, b), std::max(a, b)}] += 1;
        }
    }
    double length = 0;
    for (const auto& [edge, count] : uses) {
        EXPECT_LE(count, 2);
        length += count == 1 ? mesh.points[edge.first].distanceTo(mesh.points[edge.second]) : 0;
    }
    return length;
}

/// A mesh of one sheet: true area, true rim, normals that agree with `outward` of the triangles.
void expect_sheet(const Body& body, double area, double rim, const std::string& name) {
    for (const double chord : {0.02, 0.001}) {
        SCOPED_TRACE(name + " " + std::to_string(chord));
        brep::MeshOptions options;
        options.chord = chord;
        const brep::Mesh mesh = brep::mesh(body, options);
        EXPECT_TRUE(mesh.problems.empty()) << mesh.problems[0].code;
        EXPECT_NEAR(brep::area(mesh), area, chord * (area + rim));
        EXPECT_NEAR(rim_length(mesh), rim, chord * rim);
        EXPECT_LE(largest_gap(body, mesh), chord * 1.2 + 1e-9);
    }
}

/// A window on a cylinder or a torus about z: between the angles a and b, from the lower to the
/// upper place, as a hole.
std::vector<int> window(Maker& m, double radius, double a, double b, double low, double high) {
    const auto at = [&](double angle, double z) {
        return m.vertex({radius * std::cos(angle), radius * std::sin(angle), z});
    };
    const int v[4] = {at(a, low), at(b, low), at(b, high), at(a, high)};
    const int bottom = m.ellipse({{0, 0, low}, kZ, kX * radius, 1}, v[0], v[1]);
    const int right = m.line(v[1], v[2]);
    const int top = m.ellipse({{0, 0, high}, kZ, kX * radius, 1}, v[3], v[2]);
    const int left = m.line(v[0], v[3]);
    return {left, top, -right, -bottom};
}

TEST(brep_faces, windows_in_a_tube_that_no_straight_seam_passes) {
    Maker m;
    const double r = 2, h = 9;
    const int low = m.ellipse({kOrigin, kZ, kX * r, 1}, m.vertex({r, 0, 0}));
    const int high = m.ellipse({{0, 0, h}, kZ, kX * r, 1}, m.vertex({r, 0, h}));
    std::vector<std::vector<int>> loops{{low}, {-high}};
    double area = 2 * kPi * r * h, rim = 4 * kPi * r;
    for (int row = 0; row < 4; ++row) {
        for (int i = 0; i < 3; ++i) {
            const double a = 2 * kPi * (i + row * 0.5) / 3, b = a + 1.5;
            loops.push_back(window(m, r, a, b, 1 + 2 * row, 2 + 2 * row));
            area -= 1.5 * r;
            rim += 3 * r + 2;
        }
    }
    m.face(brep::Cone{kOrigin, kZ, kX * r, 1, 0, 1}, loops);
    expect_sheet(m.body, area, rim, "tube");
}

TEST(brep_faces, a_window_alone_is_a_patch_or_all_but_the_patch) {
    Maker patch;
    std::vector<int> loop = window(patch, 2, 0.3, 1.8, 1, 2);
    std::reverse(loop.begin(), loop.end());
    for (int& edge : loop) {
        edge = -edge;
    }
    patch.face(brep::Cone{kOrigin, kZ, kX * 2, 1, 0, 1}, {loop});
    expect_sheet(patch.body, 3, 8, "patch");

    // A small circle on a sphere, across the equator: outside of it.
    Maker rest;
    const double r = 3, q = std::sqrt(9 - 2.5 * 2.5);
    const int circle = rest.ellipse({{2.5, 0, 0}, kX, kY * q, 1}, rest.vertex({2.5, q, 0}));
    rest.face(brep::Sphere{kOrigin, r, kX, kZ}, {{-circle}});
    expect_sheet(rest.body, 4 * kPi * r * r - 2 * kPi * r * 0.5, 2 * kPi * q, "sphere");
}

TEST(brep_faces, holes_in_a_torus) {
    // Circles of constant height cut near the outer equator bound a band that winds round; here a
    // window of arcs: two of longitude and two of latitude.
    Maker m;
    const double R = 5, r = 1, a = 0.4, b = 1.9, low = -0.7, high = 0.9;
    const auto at = [&](double u, double v) {
        return AcGePoint3d{(R + r * std::cos(v)) * std::cos(u), (R + r * std::cos(v)) * std::sin(u),
                           r * std::sin(v)};
    };
    const int v[4] = {m.vertex(at(a, low)), m.vertex(at(b, low)), m.vertex(at(b, high)),
                      m.vertex(at(a, high))};
    const auto level = [&](double t, int from, int to) {
        return m.ellipse({{0, 0, r * std::sin(t)}, kZ, kX * (R + r * std::cos(t)), 1}, from, to);
    };
    const auto upright = [&](double u, int from, int to) {
        const AcGeVector3d out = kX.rotatedBy(u, kZ);
        return m.ellipse({kOrigin + out * R, out.crossProduct(kZ), out * r, 1}, from, to);
    };
    const int bottom = level(low, v[0], v[1]), top = level(high, v[3], v[2]);
    const int right = upright(b, v[1], v[2]), left = upright(a, v[0], v[3]);
    m.face(brep::Torus{kOrigin, kZ, kX, R, r}, {{left, top, -right, -bottom}});
    const double hole = (b - a) * r * (R * (high - low) + r * (std::sin(high) - std::sin(low)));
    const double rim =
        2 * r * (high - low) + (b - a) * (2 * R + r * (std::cos(low) + std::cos(high)));
    expect_sheet(m.body, 4 * kPi * kPi * R * r - hole, rim, "torus with a window");
}

TEST(brep_faces, bands_of_a_torus) {
    // Between two circles of latitude: over the top, and the rest.
    for (const bool over : {true, false}) {
        Maker m;
        const double R = 5, r = 1;
        const int outer = m.ellipse({kOrigin, kZ, kX * 6, 1}, m.vertex({6, 0, 0}));
        const int inner = m.ellipse({kOrigin, kZ, kX * 4, 1}, m.vertex({4, 0, 0}));
        m.face(brep::Torus{kOrigin, kZ, kX, R, r},
               over ? std::vector<std::vector<int>>{{outer}, {-inner}}
                    : std::vector<std::vector<int>>{{-outer}, {inner}});
        expect_sheet(m.body, 2 * kPi * kPi * R * r, 20 * kPi, over ? "top" : "bottom");
        const brep::Mesh mesh = brep::mesh(m.body);
        double height = 0;
        for (const AcGePoint3d& p : mesh.points) {
            height += p.z;
        }
        EXPECT_GT(over ? height : -height, 1);
    }
}

/// Half of a cone with its tip on the loop, closed by a flat triangle and half a disc.
Body half_cone(bool split_tip) {
    Maker m;
    const int a = m.vertex({2, 0, 0}), b = m.vertex({-2, 0, 0}), tip = m.vertex({0, 0, 3});
    const int arc = m.ellipse({kOrigin, kZ, kX * 2, 1}, a, b);
    const int up = m.line(b, tip), down = m.line(tip, a), back = m.line(b, a);
    const double length = std::sqrt(13.0);
    std::vector<int> loop{arc, up, down};
    if (split_tip) { // an edge that is a point
        m.body.edges.push_back({-1, tip, tip, 0, 0, false, false});
        loop = {arc, up, static_cast<int>(m.body.edges.size()), down};
    }
    m.face(brep::Cone{kOrigin, kZ, kX * 2, 1, -2 / length, 3 / length}, {loop});
    m.face(brep::Plane{kOrigin, -kY, kX}, {{back, -down, -up}});
    m.face(brep::Plane{kOrigin, -kZ, kX}, {{-arc, -back}});
    return m.body;
}

TEST(brep_faces, a_tip_or_a_pole_on_a_loop) {
    const double area = kPi * std::sqrt(13.0) + 6 + 2 * kPi;
    expect_solid(half_cone(false), 2 * kPi, area, "half cone");
    expect_solid(half_cone(true), 2 * kPi, area, "half cone with an edge of no length");
    // Octants and their complements in a half: parts of a ball from 0 to an angle about z.
    for (const double angle : {kPi / 2, kPi, 1.7 * kPi}) {
        Maker m;
        const double r = 2;
        const AcGeVector3d side = kX.rotatedBy(angle, kZ);
        const int a = m.vertex({r, 0, 0}), b = m.vertex(kOrigin + side * r);
        const int pole = m.vertex({0, 0, r}), middle = m.vertex(kOrigin);
        const int arc = m.ellipse({kOrigin, kZ, kX * r, 1}, a, b);
        const int from = m.ellipse({kOrigin, -kY, kX * r, 1}, a, pole);
        const int to = m.ellipse({kOrigin, side.crossProduct(kZ), side * r, 1}, b, pole);
        const int axis = m.line(middle, pole), out = m.line(middle, a), in = m.line(middle, b);
        m.face(brep::Sphere{kOrigin, r, kX, kZ}, {{arc, to, -from}});
        m.face(brep::Plane{kOrigin, -kZ, kX}, {{in, -arc, -out}});
        m.face(brep::Plane{kOrigin, -kY, kX}, {{out, from, -axis}});
        m.face(brep::Plane{kOrigin, -side.crossProduct(kZ), side}, {{axis, -to, -in}});
        const double ball = angle * r * r;
        expect_solid(m.body, ball * r / 3, ball + ball / 2 + kPi * r * r / 2,
                     "part of a ball " + std::to_string(angle));
    }
}

TEST(brep_faces, an_explicit_seam) {
    Maker m;
    const int a = m.vertex({1, 0, 0}), b = m.vertex({1, 0, 4});
    const int low = m.ellipse({kOrigin, kZ, kX, 1}, a), seam = m.line(a, b);
    const int high = m.ellipse({{0, 0, 4}, kZ, kX, 1}, b);
    m.face(brep::Cone{kOrigin, kZ, kX, 1, 0, 1}, {{low, seam, -high, -seam}});
    m.face(brep::Plane{kOrigin, -kZ, kX}, {{-low}});
    m.face(brep::Plane{{0, 0, 4}, kZ, kX}, {{high}});
    expect_solid(m.body, 4 * kPi, 10 * kPi, "cylinder with a seam");

    Maker cone;
    const int base = cone.vertex({2, 0, 0}), tip = cone.vertex({0, 0, 3});
    const int circle = cone.ellipse({kOrigin, kZ, kX * 2, 1}, base);
    const int up = cone.line(base, tip);
    const double length = std::sqrt(13.0);
    cone.face(brep::Cone{kOrigin, kZ, kX * 2, 1, -2 / length, 3 / length}, {{circle, up, -up}});
    cone.face(brep::Plane{kOrigin, -kZ, kX}, {{-circle}});
    expect_solid(cone.body, 4 * kPi, kPi * 2 * length + 4 * kPi, "cone with a seam");
}

TEST(brep_faces, a_vertex_alone_marks_the_tip) {
    Body body = lathe({{0, 0}, {2, 0}, {0, 3}});
    body.vertices.push_back({{0, 0, 3}});
    const int tip = static_cast<int>(body.vertices.size()) - 1;
    body.edges.push_back({-1, tip, tip, 0, 0, false, false});
    const int edge = static_cast<int>(body.edges.size()) - 1;
    body.lumps[0].shells[0].faces[1].loops.push_back({{{edge, false, std::nullopt}}});
    expect_solid(body, 4 * kPi, kPi * 2 * std::sqrt(13.0) + 4 * kPi, "cone");
}

TEST(brep_faces, loops_that_run_the_wrong_way_round) {
    // Both circles of a cylinder alike, holes like outlines: the shapes stay.
    Body body = lathe({{0, 0}, {1, 0}, {1, 5}, {0, 5}});
    body.lumps[0].shells[0].faces[1].loops[1].coedges[0].reversed = false;
    EXPECT_NEAR(brep::volume(brep::mesh(body)), 5 * kPi, 0.25);
    Body plate = perforated(2, 2);
    for (brep::Loop& loop : plate.lumps[0].shells[0].faces[5].loops) {
        for (brep::Coedge& coedge : loop.coedges) {
            coedge.reversed = false;
        }
    }
    expect_sound(brep::mesh(plate));
}

TEST(brep_faces, transforms) {
    const Body solid = half_cone(false);
    const double volume = 2 * kPi;
    const std::vector<std::pair<AcGeMatrix3d, double>> cases = {
        {AcGeMatrix3d::scaling({3, 3, 3}), 27},
        {AcGeMatrix3d::scaling({-1, 1, 1}), 1},
        {AcGeMatrix3d::scaling({1, 5, 0.5}), 2.5},
        {AcGeMatrix3d::translation({5e5, -5e5, 7e4}), 1},
        {AcGeMatrix3d::rotation(1, kX) * AcGeMatrix3d::scaling({-2, -2, -2}), 8},
    };
    for (const auto& [matrix, factor] : cases) {
        const brep::Mesh mesh = brep::mesh(moved(solid, matrix), {0.002, 0.5, 4000000, {}});
        expect_sound(mesh);
        EXPECT_NEAR(brep::volume(mesh), volume * factor, 0.01 * volume * factor);
    }
    AcGeMatrix3d flat = AcGeMatrix3d::scaling({1, 1, 0});
    EXPECT_TRUE(brep::mesh(moved(solid, flat)).complete);
}

TEST(brep_faces, far_from_the_origin) {
    Body body = half_cone(false);
    const AcGeVector3d far{5e5, 4e5, -3e5};
    for (brep::Vertex& v : body.vertices) {
        v.point = v.point + far;
    }
    for (brep::Curve& curve : body.curves) {
        if (auto* line = std::get_if<brep::Line>(&curve)) {
            line->origin = line->origin + far;
        } else {
            std::get<brep::Ellipse>(curve).center = std::get<brep::Ellipse>(curve).center + far;
        }
    }
    for (brep::Surface& surface : body.surfaces) {
        if (auto* plane = std::get_if<brep::Plane>(&surface)) {
            plane->origin = plane->origin + far;
        } else {
            std::get<brep::Cone>(surface).center = std::get<brep::Cone>(surface).center + far;
        }
    }
    const brep::Mesh mesh = brep::mesh(body, {0.002, 0.5, 4000000, {}});
    expect_sound(mesh);
    EXPECT_NEAR(brep::volume(mesh), 2 * kPi, 0.02);
}

TEST(brep_faces, limits_and_repeated_work) {
    const Body body = torus(5, 1);
    brep::MeshOptions options;
    options.chord = 1e-9;
    options.most_triangles = 5000;
    const brep::Mesh mesh = brep::mesh(body, options);
    EXPECT_LE(mesh.triangles.size(), 5000U);
    EXPECT_GT(mesh.triangles.size(), 300U);
    expect_sound(mesh);
    const brep::Mesh again = brep::mesh(body, options);
    ASSERT_EQ(again.points.size(), mesh.points.size());
    EXPECT_TRUE(again.points == mesh.points);
    EXPECT_TRUE(again.normals == mesh.normals);
    for (const double chord : {0.0, -1.0, std::nan("")}) {
        options.chord = chord;
        expect_sound(brep::mesh(body, options));
    }
    options.cancelled = [] { return true; };
    EXPECT_FALSE(brep::mesh(body, options).complete);
}

} // namespace
