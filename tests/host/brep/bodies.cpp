#include "bodies.h"

#include "host/brep/chart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace bodies {
namespace {

const AcGeVector3d kX{1, 0, 0}, kY{0, 1, 0}, kZ{0, 0, 1};
const AcGePoint3d kOrigin{0, 0, 0};

brep::Plane horizontal(double z, bool up) { return {{0, 0, z}, up ? kZ : -kZ, kX}; }

} // namespace

Maker::Maker() { body.lumps = {{{brep::Shell{}}}}; }

int Maker::vertex(const AcGePoint3d& p) {
    body.vertices.push_back({p});
    return static_cast<int>(body.vertices.size()) - 1;
}

int Maker::line(int from, int to) {
    const auto at = [&](int i) { return body.vertices[static_cast<std::size_t>(i)].point; };
    body.curves.push_back(brep::Line{at(from), at(to) - at(from)});
    body.edges.push_back({static_cast<int>(body.curves.size()) - 1, from, to, 0, 1, true, false});
    return static_cast<int>(body.edges.size());
}

int Maker::ellipse(const brep::Ellipse& e, int from, int to) {
    body.curves.push_back(e);
    brep::Edge edge;
    edge.curve = static_cast<int>(body.curves.size()) - 1;
    edge.start = from;
    edge.end = to < 0 ? from : to;
    body.edges.push_back(edge);
    return static_cast<int>(body.edges.size());
}

int Maker::spline(const brep::BSplineCurve& curve, int from, int to) {
    body.curves.push_back(curve);
    body.edges.push_back({static_cast<int>(body.curves.size()) - 1, from, to, curve.knots.front(),
                          curve.knots.back(), true, false});
    return static_cast<int>(body.edges.size());
}

int Maker::surface(brep::Surface s) {
    body.surfaces.push_back(std::move(s));
    return static_cast<int>(body.surfaces.size()) - 1;
}

brep::Face& Maker::face(int surface, const std::vector<std::vector<int>>& loops, bool reversed) {
    brep::Face face;
    face.surface = surface;
    face.reversed = reversed;
    for (const std::vector<int>& edges : loops) {
        brep::Loop loop;
        for (const int edge : edges) {
            loop.coedges.push_back({std::abs(edge) - 1, edge < 0, std::nullopt});
        }
        face.loops.push_back(std::move(loop));
    }
    auto& faces = body.lumps[0].shells[0].faces;
    faces.push_back(std::move(face));
    return faces.back();
}

Body prism(const std::vector<std::vector<AcGePoint2d>>& rings, double height) {
    Maker m;
    std::vector<std::vector<int>> bottoms, tops;
    for (const auto& ring : rings) {
        const int count = static_cast<int>(ring.size());
        std::vector<int> low, high, bottom, top, side;
        for (const AcGePoint2d& p : ring) {
            low.push_back(m.vertex({p.x, p.y, 0}));
            high.push_back(m.vertex({p.x, p.y, height}));
        }
        const auto at = [](const std::vector<int>& list, int i) {
            return list[static_cast<std::size_t>(i) % list.size()];
        };
        for (int i = 0; i < count; ++i) {
            bottom.push_back(m.line(at(low, i), at(low, i + 1)));
            top.push_back(m.line(at(high, i), at(high, i + 1)));
            side.push_back(m.line(at(low, i), at(high, i)));
        }
        for (int i = 0; i < count; ++i) {
            const AcGePoint3d a = m.body.vertices[static_cast<std::size_t>(at(low, i))].point;
            const AcGePoint3d b = m.body.vertices[static_cast<std::size_t>(at(low, i + 1))].point;
            const AcGeVector3d along = (b - a).normal();
            m.face(brep::Plane{a, along.crossProduct(kZ), along},
                   {{at(bottom, i), at(side, i + 1), -at(top, i), -at(side, i)}});
        }
        tops.push_back(top);
        bottoms.emplace_back();
        for (auto it = bottom.rbegin(); it != bottom.rend(); ++it) {
            bottoms.back().push_back(-*it);
        }
    }
    m.face(horizontal(0, false), bottoms);
    m.face(horizontal(height, true), tops);
    return m.body;
}

Body box(double x, double y, double z) { return prism({{{0, 0}, {x, 0}, {x, y}, {0, y}}}, z); }

Body lathe(const std::vector<AcGePoint2d>& profile, double ratio) {
    Maker m;
    std::vector<int> circles;
    for (const AcGePoint2d& p : profile) {
        circles.push_back(
            p.x > 0 ? m.ellipse({{0, 0, p.y}, kZ, kX * p.x, ratio}, m.vertex({p.x, 0, p.y})) : 0);
    }
    const bool closed = profile.front().x > 0;
    for (std::size_t i = 0; i + (closed ? 0 : 1) < profile.size(); ++i) {
        const std::size_t k = (i + 1) % profile.size();
        const AcGePoint2d a = profile[i], b = profile[k];
        const double length = a.distanceTo(b), sine = (b.x - a.x) / length,
                     cosine = (b.y - a.y) / length;
        std::vector<std::vector<int>> loops;
        if (circles[i] != 0) {
            loops.push_back({circles[i]});
        }
        if (circles[k] != 0) {
            loops.push_back({-circles[k]});
        }
        const AcGePoint2d c = a.x > 0 ? a : b;
        if (cosine == 0) {
            m.face(horizontal(a.y, sine < 0), loops);
        } else {
            m.face(brep::Cone{{0, 0, c.y}, kZ, kX * c.x, ratio, sine, cosine}, loops);
        }
    }
    return m.body;
}

Body sphere(double radius) {
    Maker m;
    m.face(brep::Sphere{kOrigin, radius, kX, kZ}, {});
    return m.body;
}

Body sphere_above(double radius, double z) {
    Maker m;
    const double r = std::sqrt(radius * radius - z * z);
    const int circle = m.ellipse({{0, 0, z}, kZ, kX * r, 1}, m.vertex({r, 0, z}));
    m.face(brep::Sphere{kOrigin, radius, kX, kZ}, {{circle}});
    m.face(horizontal(z, false), {{-circle}});
    return m.body;
}

Body torus(double major, double minor) {
    Maker m;
    m.face(brep::Torus{kOrigin, kZ, kX, major, minor}, {});
    return m.body;
}

Body torus_part(double major, double minor, double angle) {
    Maker m;
    std::vector<int> circles;
    for (const double a : {0.0, angle}) {
        const AcGeVector3d out = kX.rotatedBy(a, kZ), along = kZ.crossProduct(out);
        const AcGePoint3d c = kOrigin + out * major;
        // Runs as v does: from out to the axis.
        circles.push_back(m.ellipse({c, -along, out * minor, 1}, m.vertex(c + out * minor)));
        m.face(brep::Plane{c, a == 0 ? -along : along, out},
               {{a == 0 ? circles.back() : -circles.back()}});
    }
    m.face(brep::Torus{kOrigin, kZ, kX, major, minor}, {{-circles[0]}, {circles[1]}});
    return m.body;
}

Body perforated(int columns, int rows) {
    Maker m;
    const double x = columns, y = rows, h = 0.5;
    m.body = box(x, y, h);
    auto& faces = m.body.lumps[0].shells[0].faces;
    const std::size_t bottom = faces.size() - 2, top = faces.size() - 1;
    for (int i = 0; i < columns; ++i) {
        for (int k = 0; k < rows; ++k) {
            const AcGePoint3d low{i + 0.5, k + 0.5, 0}, high{i + 0.5, k + 0.5, h};
            const int a = m.ellipse({low, kZ, kX * 0.3, 1}, m.vertex(low + kX * 0.3));
            const int b = m.ellipse({high, kZ, kX * 0.3, 1}, m.vertex(high + kX * 0.3));
            m.face(brep::Cone{low, kZ, kX * 0.3, 1, 0, 1}, {{-a}, {b}}, true);
            faces[bottom].loops.push_back({{{a - 1, false, std::nullopt}}});
            faces[top].loops.push_back({{{b - 1, true, std::nullopt}}});
        }
    }
    return m.body;
}

Body moved(Body body, const AcGeMatrix3d& matrix) {
    body.transform = matrix * body.transform;
    return body;
}

void expect_sound(const brep::Mesh& mesh) {
    EXPECT_EQ(brep::openEdges(mesh), 0U);
    EXPECT_TRUE(mesh.complete);
    for (const brep::Problem& problem : mesh.problems) {
        ADD_FAILURE() << problem.code << " " << problem.text << " " << problem.count;
    }
    std::size_t turned = 0, not_unit = 0;
    for (const auto& triangle : mesh.triangles) {
        const AcGePoint3d& a = mesh.points[triangle[0].point];
        const AcGeVector3d n =
            (mesh.points[triangle[1].point] - a).crossProduct(mesh.points[triangle[2].point] - a);
        for (const auto& corner : triangle) {
            turned += n.dotProduct(mesh.normals[corner.normal]) > 0 ? 0 : 1;
            not_unit += std::abs(mesh.normals[corner.normal].length() - 1) < 1e-9 ? 0 : 1;
        }
    }
    EXPECT_EQ(turned, 0U);
    EXPECT_EQ(not_unit, 0U);
    ASSERT_FALSE(mesh.faces.empty());
    EXPECT_EQ(mesh.faces.back().end, mesh.triangles.size());
}

double largest_gap(const Body& body, const brep::Mesh& mesh) {
    double gap = 0;
    const auto& faces = body.lumps[0].shells[0].faces;
    for (std::size_t i = 0; i < faces.size(); ++i) {
        const auto chart = brep::Chart::make(
            body.surfaces[static_cast<std::size_t>(faces[i].surface)], {kOrigin, 100}, 1e-6);
        if (!chart) {
            ADD_FAILURE() << "no chart of face " << i;
            continue;
        }
        for (std::size_t k = mesh.faces[i].begin; k < mesh.faces[i].end; ++k) {
            AcGeVector3d sum;
            for (const auto& corner : mesh.triangles[k]) {
                sum = sum + mesh.points[corner.point].asVector() / 3;
            }
            const AcGePoint3d middle = kOrigin + sum;
            const AcGePoint3d on = chart->at(chart->project(middle, nullptr)).point;
            gap = std::max(gap, on.distanceTo(middle));
        }
    }
    return gap;
}

void expect_solid(const Body& body, double volume, double area, const std::string& name) {
    double rim = 0; // flat faces lose or gain the chord along their arcs
    for (const brep::Curve& curve : body.curves) {
        const auto* ellipse = std::get_if<brep::Ellipse>(&curve);
        rim += ellipse != nullptr ? 4 * std::numbers::pi * ellipse->major.length() : 0;
    }
    for (const double chord : {0.1, 0.02, 0.002}) {
        SCOPED_TRACE(name + ", chord " + std::to_string(chord));
        brep::MeshOptions options;
        options.chord = chord;
        const brep::Mesh mesh = brep::mesh(body, options);
        expect_sound(mesh);
        // The mesh lies within the chord of the surface. The factor 1.2 is the mesher's own
        // allowance for centres of triangles.
        EXPECT_NEAR(brep::volume(mesh), volume, area * chord * 1.2 + 1e-9 * volume);
        EXPECT_LT(brep::area(mesh), area * (1 + 1e-3) + chord * rim);
        EXPECT_GT(brep::area(mesh), area * (1 - 0.1 * chord / (0.01 + chord)) - chord * rim);
        EXPECT_LE(largest_gap(body, mesh), chord * 1.2 + 1e-9);
        EXPECT_LT(static_cast<double>(mesh.triangles.size()), 2000 + 20 * area / chord);
    }
}

} // namespace bodies
