// The triangulator: areas, edges, the Delaunay property, and what damaged or random input makes.
#include "host/ge/triangulate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>
#include <random>
#include <set>
#include <string>

namespace {

using Ring = std::vector<AcGePoint2d>;
using Segment = std::array<std::uint32_t, 2>;

double cross(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

double area(const ge::Triangulation& t) {
    double sum = 0;
    for (const auto& [a, b, c] : t.triangles) {
        sum += cross(t.points[a], t.points[b], t.points[c]) / 2;
    }
    return sum;
}

double ring_area(const Ring& ring) {
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        sum += cross(ring[0], ring[i], ring[(i + 1) % ring.size()]) / 2;
    }
    return sum;
}

std::set<Segment> edges_of(const ge::Triangulation& t) {
    std::set<Segment> edges;
    for (const auto& triangle : t.triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            const std::uint32_t a = triangle[i], b = triangle[(i + 1) % 3];
            EXPECT_TRUE(edges.insert({a, b}).second) << "an edge used twice: " << a << " " << b;
        }
    }
    return edges;
}

/// Triangles turn the right way and fit together; edges with one triangle are the outline.
void expect_valid(const ge::Triangulation& t) {
    double size = 0;
    for (const AcGePoint2d& p : t.points) {
        size = std::isfinite(p.x + p.y) ? std::max({size, std::abs(p.x), std::abs(p.y)}) : size;
    }
    for (const auto& [a, b, c] : t.triangles) {
        ASSERT_LT(std::max({a, b, c}), t.points.size());
        EXPECT_GT(cross(t.points[a], t.points[b], t.points[c]), -1e-7 * size * size);
    }
    edges_of(t);
}

bool has_edge(const std::set<Segment>& edges, std::uint32_t a, std::uint32_t b) {
    return edges.count({a, b}) + edges.count({b, a}) > 0;
}

Ring star(std::mt19937& random, int count, double inner, double outer, AcGePoint2d middle) {
    std::uniform_real_distribution<double> radius(inner, outer), shift(0.1, 0.9);
    Ring ring;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * std::numbers::pi * (i + shift(random)) / count;
        const double r = radius(random);
        ring.push_back({middle.x + r * std::cos(angle), middle.y + r * std::sin(angle)});
    }
    return ring;
}

Ring square(double x, double y, double size) {
    return {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}};
}

Ring turned(Ring ring) {
    std::reverse(ring.begin(), ring.end());
    return ring;
}

struct Case {
    std::string name;
    std::vector<Ring> rings;
    double even_odd, non_zero;
    bool crossed;
};

TEST(triangulate, areas) {
    const std::vector<Case> cases = {
        {"square", {square(0, 0, 2)}, 4, 4, false},
        {"hole", {square(0, 0, 4), turned(square(1, 1, 2))}, 12, 12, false},
        {"hole the same way round", {square(0, 0, 4), square(1, 1, 2)}, 12, 16, false},
        {"island", {square(0, 0, 9), turned(square(1, 1, 6)), square(2, 2, 3)}, 54, 54, false},
        {"side by side on one edge", {square(0, 0, 1), square(1, 0, 1)}, 2, 2, true},
        {"the same twice", {square(0, 0, 2), square(0, 0, 2)}, 0, 4, true},
        {"there and back", {square(0, 0, 2), turned(square(0, 0, 2))}, 0, 0, true},
        {"bow tie", {{{0, 0}, {2, 2}, {2, 0}, {0, 2}}}, 2, 2, true},
        {"overlap", {square(0, 0, 4), square(2, 2, 4)}, 24, 28, true},
        {"overlap the other way", {square(0, 0, 4), turned(square(2, 2, 4))}, 24, 24, true},
        {"collinear points",
         {{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 3}, {1.5, 3}, {0, 3}, {0, 1}}},
         9,
         9,
         false},
        {"points twice", {{{0, 0}, {0, 0}, {3, 0}, {3, 0}, {3, 3}, {0, 3}, {0, 3}}}, 9, 9, false},
        {"spike", {{{0, 0}, {4, 0}, {7, 0}, {4, 0}, {4, 4}, {0, 4}}}, 16, 16, true},
        {"collinear overlap", {{{0, 0}, {4, 0}, {4, 2}, {0, 2}}, square(1, 0, 2)}, 4, 8, true},
        {"touching at a corner", {square(0, 0, 1), square(1, 1, 1)}, 2, 2, false},
        {"a corner on an edge", {square(0, 0, 4), {{4, 2}, {6, 1}, {6, 3}}}, 18, 18, false},
        {"line", {{{0, 0}, {1, 1}, {2, 2}}}, 0, 0, true},
        {"point", {{{3, 3}, {3, 3}, {3, 3}}}, 0, 0, false},
        {"nothing", {{}}, 0, 0, false},
    };
    for (const Case& c : cases) {
        for (const bool even : {true, false}) {
            SCOPED_TRACE(c.name + (even ? ", even-odd" : ", non-zero"));
            const auto t = ge::triangulateRings(c.rings, even ? ge::FillRule::kEvenOdd
                                                              : ge::FillRule::kNonZero);
            expect_valid(t);
            EXPECT_NEAR(area(t), even ? c.even_odd : c.non_zero, 1e-6);
            EXPECT_EQ(t.crossed, c.crossed);
        }
    }
}

TEST(triangulate, keeps_the_points_of_the_input_far_from_the_origin) {
    std::mt19937 random(7);
    for (const double far : {0.0, 5e5, -3e8}) {
        const Ring outer = star(random, 60, 5, 9, {far, -far});
        const Ring hole = star(random, 30, 1, 4, {far, -far});
        const auto t = ge::triangulateRings(std::vector<Ring>{outer, hole});
        ASSERT_EQ(t.points.size(), outer.size() + hole.size());
        EXPECT_EQ(t.points[5].x, outer[5].x);
        EXPECT_EQ(t.points[63].y, hole[3].y);
        EXPECT_EQ(t.triangles.size(), 90U); // n points, one hole: n triangles
        EXPECT_NEAR(area(t), ring_area(outer) - ring_area(hole), 1e-9 + std::abs(far) * 1e-12);
        const std::set<Segment> edges = edges_of(t);
        for (std::uint32_t i = 0; i < 60; ++i) {
            EXPECT_EQ(edges.count({i, (i + 1) % 60}), 1U) << i; // inside to the left of it
            EXPECT_EQ(edges.count({(i + 1) % 60, i}), 0U) << i;
        }
        for (std::uint32_t i = 0; i < 30; ++i) {
            EXPECT_EQ(edges.count({60 + (i + 1) % 30, 60 + i}), 1U) << i;
        }
    }
}

bool inside_circle(const ge::Triangulation& t, const std::array<std::uint32_t, 3>& triangle,
                   const AcGePoint2d& d) {
    const auto row = [&](std::size_t i) {
        const AcGePoint2d& p = t.points[triangle[i]];
        return std::array<double, 3>{p.x - d.x, p.y - d.y,
                                     (p.x - d.x) * (p.x - d.x) + (p.y - d.y) * (p.y - d.y)};
    };
    const auto a = row(0), b = row(1), c = row(2);
    const double det = a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
                       a[2] * (b[0] * c[1] - b[1] * c[0]);
    return det > 1e-6;
}

TEST(triangulate, is_delaunay_but_for_the_segments) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(-4.5, 4.5);
    std::vector<AcGePoint2d> points = star(random, 40, 6.5, 9, {});
    std::vector<Segment> segments;
    std::set<Segment> bound;
    for (std::uint32_t i = 0; i < 40; ++i) {
        segments.push_back({i, (i + 1) % 40});
    }
    for (int i = 0; i < 300; ++i) {
        points.push_back({place(random), place(random)});
    }
    for (const Segment& s : segments) {
        bound.insert(s);
    }
    const auto t = ge::triangulate(points, segments);
    expect_valid(t);
    EXPECT_EQ(t.triangles.size(), 2 * 340U - 2 - 40);
    std::map<Segment, std::size_t> owner;
    for (std::size_t i = 0; i < t.triangles.size(); ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            owner[{t.triangles[i][k], t.triangles[i][(k + 1) % 3]}] = i;
        }
    }
    std::size_t inner = 0;
    for (const auto& [edge, first] : owner) {
        const auto other = owner.find({edge[1], edge[0]});
        if (other == owner.end()) {
            EXPECT_EQ(bound.count(edge), 1U);
            continue;
        }
        ++inner;
        for (const std::uint32_t d : t.triangles[other->second]) {
            if (d != edge[0] && d != edge[1]) {
                EXPECT_FALSE(inside_circle(t, t.triangles[first], t.points[d]));
            }
        }
    }
    EXPECT_EQ(inner, 3 * t.triangles.size() - 40);
}

TEST(triangulate, open_segments_are_edges_and_bound_nothing) {
    std::vector<AcGePoint2d> points = square(0, 0, 10);
    points.insert(points.end(), {{2, 5}, {8, 5}, {5, 5}, {5, 9}});
    const auto t = ge::triangulate(
        points, std::vector<Segment>{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {6, 7}, {1, 90}});
    EXPECT_NEAR(area(t), 100, 1e-9);
    const std::set<Segment> edges = edges_of(t);
    EXPECT_TRUE(has_edge(edges, 4, 6) && has_edge(edges, 6, 5) && has_edge(edges, 6, 7));
    EXPECT_FALSE(has_edge(edges, 4, 5));
}

TEST(triangulate, numbers_that_are_none) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const double huge = std::numeric_limits<double>::max();
    Ring ring = square(0, 0, 2);
    ring.push_back({nan, 0});
    ring.push_back({0, inf});
    const auto t = ge::triangulateRings(std::vector<Ring>{ring});
    ASSERT_EQ(t.points.size(), 6U);
    for (const auto& triangle : t.triangles) {
        EXPECT_LT(*std::max_element(triangle.begin(), triangle.end()), 4U);
    }
    EXPECT_EQ(ge::triangulateRings(std::vector<Ring>{square(-huge, -huge, huge)}).triangles.size(),
              2U);
    const Ring whole{{-huge, -huge}, {huge, -huge}, {huge, huge}, {-huge, huge}};
    EXPECT_EQ(ge::triangulateRings(std::vector<Ring>{whole}).triangles.size(), 2U);
}

/// Area by counting along scan lines: an independent measure of the even-odd and non-zero rules.
double scan_area(const std::vector<Ring>& rings, bool even, int lines) {
    double sum = 0;
    for (int i = 0; i < lines; ++i) {
        const double y = (i + 0.5) / lines;
        std::vector<std::pair<double, int>> hits;
        for (const Ring& ring : rings) {
            for (std::size_t k = 0; k < ring.size(); ++k) {
                const AcGePoint2d &a = ring[k], &b = ring[(k + 1) % ring.size()];
                if ((a.y <= y) != (b.y <= y)) {
                    hits.emplace_back(a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y),
                                      a.y < b.y ? 1 : -1);
                }
            }
        }
        std::sort(hits.begin(), hits.end());
        int wind = 0;
        for (std::size_t k = 0; k + 1 < hits.size(); ++k) {
            wind += hits[k].second;
            if (even ? k % 2 == 0 : wind != 0) {
                sum += (hits[k + 1].first - hits[k].first) / lines;
            }
        }
    }
    return sum;
}

TEST(triangulate, random_rings_that_cross) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(0, 1);
    for (int round = 0; round < 30; ++round) {
        std::vector<Ring> rings(1 + round % 3);
        for (Ring& ring : rings) {
            for (int i = 0; i < 3 + round; ++i) {
                ring.push_back({place(random), place(random)});
            }
        }
        for (const bool even : {true, false}) {
            const auto t =
                ge::triangulateRings(rings, even ? ge::FillRule::kEvenOdd : ge::FillRule::kNonZero);
            expect_valid(t);
            EXPECT_NEAR(area(t), scan_area(rings, even, 4000), 4e-3) << round << " " << even;
        }
    }
}

TEST(triangulate, random_segments_on_a_coarse_grid) {
    // Many collinear, overlapping and touching segments: nothing but validity is asked for, and
    // that every segment with inside next to it is there in pieces.
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        const auto width = static_cast<unsigned>(2 + round % 9);
        std::vector<AcGePoint2d> points;
        for (int i = 0; i < 20; ++i) {
            points.push_back({static_cast<double>(random() % width),
                              static_cast<double>(random() % width) * 1e-3});
        }
        std::vector<Segment> segments;
        for (std::uint32_t i = 0; i < 20; ++i) {
            segments.push_back({i, static_cast<std::uint32_t>(random() % 20)});
        }
        for (const Segment& s : {Segment{20, 21}, {21, 22}, {22, 23}, {23, 20}}) {
            segments.push_back(s);
        }
        for (const AcGePoint2d& p : square(-1, -1, 12)) {
            points.push_back(p);
        }
        const auto t = ge::triangulate(points, segments, ge::FillRule::kNonZero);
        expect_valid(t);
        EXPECT_LE(area(t), 144 + 1e-6);
    }
}

TEST(triangulate, crossings_closer_than_the_grid) {
    // Needles whose crossings round to the same few cells, and move their neighbours.
    std::mt19937 random(9);
    std::uniform_real_distribution<double> place(-1e-7, 1e-7);
    for (int round = 0; round < 20; ++round) {
        Ring ring;
        for (int i = 0; i < 60; ++i) {
            ring.push_back({i % 2 == 0 ? -1.0 : 1.0, place(random)});
        }
        expect_valid(ge::triangulateRings(std::vector<Ring>{ring}));
        expect_valid(ge::triangulateRings(std::vector<Ring>{ring}, ge::FillRule::kNonZero));
    }
}

TEST(triangulate, a_hundred_thousand_points) {
    std::mt19937 random(1);
    const Ring outer = star(random, 50000, 8, 9, {});
    const auto t = ge::triangulateRings(std::vector<Ring>{outer, star(random, 50000, 6, 7, {})});
    EXPECT_EQ(t.triangles.size(), 100000U);
    // A lattice: every decision a tie.
    std::vector<AcGePoint2d> points;
    for (int i = 0; i < 320; ++i) {
        for (int k = 0; k < 320; ++k) {
            points.push_back({i * 0.25, k * 0.25});
        }
    }
    const auto lattice = ge::triangulate(
        points, std::vector<Segment>{{0, 319}, {319, 102399}, {102399, 102080}, {102080, 0}});
    EXPECT_EQ(lattice.triangles.size(), 2U * 319 * 319);
}

} // namespace
