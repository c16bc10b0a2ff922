// Solids with B-spline, extruded, turned and summed surfaces, against measures by fine sums.
#include "bodies.h"

#include "host/brep/curves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

namespace {

using namespace bodies;
constexpr double kPi = std::numbers::pi;
const AcGeVector3d kX{1, 0, 0}, kZ{0, 0, 1};

std::vector<double> clamped_knots(std::size_t points, int degree) {
    const auto d = static_cast<std::size_t>(degree);
    std::vector<double> knots(d, 0.0);
    for (std::size_t i = 0; i <= points - d; ++i) {
        knots.push_back(static_cast<double>(i));
    }
    knots.insert(knots.end(), d, static_cast<double>(points - d));
    return knots;
}

/// Closed, smooth at its ends too, round about the axis: 12 points at the given distances.
brep::BSplineCurve ring(double z, const std::function<double(double)>& radius) {
    brep::BSplineCurve curve;
    curve.degree = 3;
    std::vector<AcGePoint3d> corners;
    for (int i = 0; i < 12; ++i) {
        const double angle = 2 * kPi * (i + 0.5) / 12;
        corners.push_back({radius(angle) * std::cos(angle), radius(angle) * std::sin(angle), z});
    }
    const AcGePoint3d middle = corners[11] + (corners[0] - corners[11]) / 2;
    curve.points.push_back(middle);
    curve.points.insert(curve.points.end(), corners.begin(), corners.end());
    curve.points.push_back(middle);
    curve.knots = clamped_knots(curve.points.size(), 3);
    return curve;
}

double squarish(double a) {
    return 2 / std::pow(std::pow(std::cos(a), 6) + std::pow(std::sin(a), 6), 1.0 / 6);
}
double roundish(double) { return 1; }
double starry(double a) { return 2 + 0.6 * std::cos(3 * a); }

struct Measures {
    double area = 0, length = 0;
};

Measures measure(const brep::BSplineCurve& curve) {
    Measures m;
    constexpr int kSteps = 20000;
    const double end = curve.knots.back();
    AcGePoint3d before = evaluate(curve, 0).point;
    for (int i = 1; i <= kSteps; ++i) {
        const AcGePoint3d p = evaluate(curve, end * i / kSteps).point;
        m.area += (before.x * p.y - before.y * p.x) / 2;
        m.length += before.distanceTo(p);
        before = p;
    }
    return m;
}

brep::BSplineCurve raised(brep::BSplineCurve curve, double z) {
    for (AcGePoint3d& p : curve.points) {
        p.z += z;
    }
    return curve;
}

/// Two closed curves at z = 0 and above, flat faces in them, and a wall between.
Body between(const brep::BSplineCurve& low, const brep::BSplineCurve& high, brep::Surface wall) {
    Maker m;
    const int a = m.spline(low, m.vertex(low.points[0]), 0);
    const int b = m.spline(high, m.vertex(high.points[0]), 1);
    m.face(brep::Plane{{0, 0, 0}, -kZ, kX}, {{-a}});
    m.face(brep::Plane{{0, 0, high.points[0].z}, kZ, kX}, {{b}});
    m.face(std::move(wall), {{a}, {-b}});
    return m.body;
}

brep::BSplineSurface ruled(const brep::BSplineCurve& low, const brep::BSplineCurve& high) {
    brep::BSplineSurface s;
    s.degree_u = low.degree;
    s.knots_u = low.knots;
    s.knots_v = {0, 0, 1, 1};
    s.closed_u = true;
    for (std::size_t i = 0; i < low.points.size(); ++i) {
        s.points.push_back(low.points[i]);
        s.points.push_back(high.points[i]);
        if (!low.weights.empty()) {
            s.weights.insert(s.weights.end(), 2, low.weights[i]);
        }
    }
    return s;
}

TEST(brep_splines, walls_over_a_profile) {
    const brep::BSplineCurve low = ring(0, starry), high = raised(low, 3);
    const Measures m = measure(low);
    const double volume = 3 * m.area, area = 2 * m.area + 3 * m.length;
    expect_solid(between(low, high, brep::Extrusion{low, {0, 0, 1}}), volume, area, "extruded");
    expect_solid(between(low, high, ruled(low, high)), volume, area, "spline");
    expect_solid(
        between(low, high, brep::CurveSum{low, brep::Line{{7, 7, 7}, {0, 0, 2}}, {7, 7, 7}}),
        volume, area, "sum");
    // The same wall with u and v exchanged, so that its own normal looks inwards.
    const brep::BSplineSurface s = ruled(low, high);
    brep::BSplineSurface turned = s;
    std::swap(turned.degree_u, turned.degree_v);
    std::swap(turned.knots_u, turned.knots_v);
    for (std::size_t i = 0; i < low.points.size(); ++i) {
        turned.points[i] = s.points[2 * i];
        turned.points[low.points.size() + i] = s.points[2 * i + 1];
    }
    Body body = between(low, high, turned);
    body.lumps[0].shells[0].faces[2].reversed = true;
    expect_solid(body, volume, area, "spline, turned");
}

TEST(brep_splines, from_a_square_to_a_circle) {
    const brep::BSplineCurve low = ring(0, squarish), high = ring(3, roundish);
    double volume = 0;
    constexpr int kSlices = 200;
    for (int i = 0; i < kSlices; ++i) {
        brep::BSplineCurve slice = low;
        for (std::size_t k = 0; k < slice.points.size(); ++k) {
            const AcGeVector3d way = high.points[k] - low.points[k];
            slice.points[k] = slice.points[k] + way * ((i + 0.5) / kSlices);
        }
        volume += measure(slice).area * 3 / kSlices;
    }
    brep::MeshOptions fine;
    fine.chord = 1e-4;
    const Body body = between(low, high, ruled(low, high));
    const double area = brep::area(brep::mesh(body, fine));
    EXPECT_NEAR(brep::volume(brep::mesh(body, fine)), volume, 1e-4 * area);
    expect_solid(body, volume, area, "loft");
}

TEST(brep_splines, a_rational_spline_is_a_true_cylinder) {
    brep::BSplineCurve circle;
    circle.degree = 2;
    circle.knots = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4};
    const double w = std::sqrt(0.5);
    circle.points = {{2, 0, 0},   {2, 2, 0},  {0, 2, 0},  {-2, 2, 0}, {-2, 0, 0},
                     {-2, -2, 0}, {0, -2, 0}, {2, -2, 0}, {2, 0, 0}};
    circle.weights = {1, w, 1, w, 1, w, 1, w, 1};
    const Body body = between(circle, raised(circle, 5), ruled(circle, raised(circle, 5)));
    expect_solid(body, 20 * kPi, 8 * kPi + 20 * kPi, "rational");
}

/// A profile in the plane x, z from the bottom up.
brep::BSplineCurve profile(const std::vector<AcGePoint2d>& points) {
    brep::BSplineCurve curve;
    curve.degree = 3;
    for (const AcGePoint2d& p : points) {
        curve.points.push_back({p.x, 0, p.y});
    }
    curve.knots = clamped_knots(points.size(), 3);
    return curve;
}

double turned_volume(const brep::BSplineCurve& curve, double& area) {
    double volume = 0;
    constexpr int kSteps = 20000;
    AcGePoint3d a = curve.points[0];
    for (int i = 1; i <= kSteps; ++i) {
        const AcGePoint3d b = evaluate(curve, curve.knots.back() * i / kSteps).point;
        volume += kPi / 3 * (b.z - a.z) * (a.x * a.x + a.x * b.x + b.x * b.x);
        area += kPi * (a.x + b.x) * a.distanceTo(b);
        a = b;
    }
    return volume;
}

TEST(brep_splines, turned_profiles) {
    {
        const brep::BSplineCurve egg = profile({{0, 0}, {2, 0}, {2, 2}, {1.5, 4}, {0, 4}});
        Maker m;
        m.face(brep::Revolution{egg, {0, 0, 0}, kZ}, {},
               true); // along the profile x round: inwards
        double area = 0;
        const double volume = turned_volume(egg, area);
        expect_solid(m.body, volume, area, "egg");
    }
    const brep::BSplineCurve vase = profile({{1, 0}, {3, 1}, {0.5, 3}, {1, 4}, {1.5, 5}});
    Maker m;
    const int low = m.ellipse({{0, 0, 0}, kZ, kX, 1}, m.vertex({1, 0, 0}));
    const int high = m.ellipse({{0, 0, 5}, kZ, kX * 1.5, 1}, m.vertex({1.5, 0, 5}));
    m.face(brep::Plane{{0, 0, 0}, -kZ, kX}, {{-low}});
    m.face(brep::Plane{{0, 0, 5}, kZ, kX}, {{high}});
    m.face(brep::Revolution{vase, {0, 0, 0}, kZ}, {{low}, {-high}}, true);
    double area = kPi + 2.25 * kPi;
    const double volume = turned_volume(vase, area);
    expect_solid(m.body, volume, area, "vase");
}

TEST(brep_splines, a_roof_on_four_walls) {
    // z = 2 + bumps over the unit net; the walls' upper edges are the patch's sides.
    brep::BSplineSurface roof;
    roof.degree_u = roof.degree_v = 3;
    roof.knots_u = roof.knots_v = clamped_knots(6, 3);
    const double at[6] = {0, 1.0 / 3, 1, 2, 8.0 / 3, 3}; // Greville: x and y run evenly
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 6; ++k) {
            roof.points.push_back({at[i], at[k], 2 + 0.8 * std::sin(i * 1.3) * std::cos(k * 1.1)});
        }
    }
    const auto side = [&](bool along_u, std::size_t other) {
        brep::BSplineCurve curve;
        curve.degree = 3;
        curve.knots = roof.knots_u;
        for (std::size_t i = 0; i < 6; ++i) {
            curve.points.push_back(roof.points[along_u ? i * 6 + other : other * 6 + i]);
        }
        return curve;
    };
    Maker m;
    const AcGePoint3d corner[4] = {{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 3, 0}};
    const std::size_t net[4] = {0, 30, 35, 5};
    for (const AcGePoint3d& p : corner) {
        m.vertex(p);
    }
    for (const std::size_t i : net) {
        m.vertex(roof.points[i]);
    }
    int base[4], post[4];
    for (int i = 0; i < 4; ++i) {
        base[i] = m.line(i, (i + 1) % 4);
        post[i] = m.line(i, i + 4);
    }
    const int top[4] = {m.spline(side(true, 0), 4, 5), m.spline(side(false, 5), 5, 6),
                        -m.spline(side(true, 5), 7, 6), -m.spline(side(false, 0), 4, 7)};
    for (int i = 0; i < 4; ++i) {
        const AcGeVector3d along = (corner[(i + 1) % 4] - corner[i]) / 3;
        m.face(brep::Plane{corner[i], along.crossProduct(kZ), along},
               {{base[i], post[(i + 1) % 4], -top[i], -post[i]}});
    }
    m.face(brep::Plane{{0, 0, 0}, -kZ, kX}, {{-base[3], -base[2], -base[1], -base[0]}});
    m.face(roof, {{top[0], top[1], top[2], top[3]}});
    double volume = 0;
    constexpr int kSteps = 300;
    for (int i = 0; i < kSteps; ++i) {
        for (int k = 0; k < kSteps; ++k) {
            volume += evaluate(roof, 3 * (i + 0.5) / kSteps, 3 * (k + 0.5) / kSteps).point.z * 9 /
                      kSteps / kSteps;
        }
    }
    brep::MeshOptions fine;
    fine.chord = 1e-4;
    expect_solid(m.body, volume, brep::area(brep::mesh(m.body, fine)), "roof");
}

} // namespace
