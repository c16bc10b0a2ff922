// Bodies by turning and pushing outlines.
#include "apps/make_samples/bodies.h"

#include <cmath>
#include <numbers>

namespace make_samples {

namespace {

using brep::Body;
constexpr double kTurn = 2 * std::numbers::pi;
constexpr AcGeVector3d kUp{0, 0, 1}, kDown{0, 0, -1}, kEast{1, 0, 0};

template <class List, class Item>
int put(List& list, Item item) {
    list.push_back(std::move(item));
    return static_cast<int>(list.size()) - 1;
}

brep::Shell& shell_of(Body& body) {
    if (body.lumps.empty()) {
        body.lumps.push_back({{brep::Shell{}}});
    }
    return body.lumps.front().shells.front();
}

void add_face(Body& body, brep::Surface surface, bool reversed, std::vector<brep::Loop> loops) {
    brep::Face face;
    face.surface = put(body.surfaces, std::move(surface));
    face.reversed = reversed;
    face.loops = std::move(loops);
    shell_of(body).faces.push_back(std::move(face));
}

/// A whole circle as an edge that begins and ends at the point east of its centre.
int add_circle(Body& body, const AcGePoint3d& center, double radius) {
    const int vertex = put(body.vertices, brep::Vertex{center + kEast * radius});
    brep::Edge edge;
    edge.curve = put(body.curves, brep::Ellipse{center, kUp, kEast * radius, 1});
    edge.start = edge.end = vertex;
    edge.to = kTurn;
    edge.has_range = true;
    return put(body.edges, edge);
}

brep::Loop ring_loop(int edge, bool reversed) { return {{brep::Coedge{edge, reversed, {}}}}; }

/// The curve of a profile's spline piece in the half plane of x, clamped at both ends.
brep::BSplineCurve profile_spline(const ProfilePiece& from, const ProfilePiece& to) {
    brep::BSplineCurve curve;
    curve.degree = 3;
    curve.points.push_back({from.r, 0, from.z});
    for (const AcGePoint2d& p : from.inner) {
        curve.points.push_back({p.x, 0, p.y});
    }
    curve.points.push_back({to.r, 0, to.z});
    const int spans = static_cast<int>(curve.points.size()) - curve.degree;
    for (int i = -curve.degree; i <= spans + curve.degree; ++i) {
        curve.knots.push_back(std::min(std::max(i, 0), spans));
    }
    return curve;
}

/// The surface of a spline turned once: nine points around, every other one with the weight of a
/// right angle's half.
brep::BSplineSurface turned_spline(const brep::BSplineCurve& profile) {
    brep::BSplineSurface surface;
    surface.degree_u = 2;
    surface.degree_v = profile.degree;
    surface.knots_u = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4};
    surface.knots_v = profile.knots;
    surface.closed_u = true;
    constexpr int kRound[9][2] = {{1, 0},   {1, 1},  {0, 1},  {-1, 1}, {-1, 0},
                                  {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
    for (int i = 0; i < 9; ++i) {
        for (const AcGePoint3d& p : profile.points) {
            surface.points.push_back({p.x * kRound[i][0], p.x * kRound[i][1], p.z});
            surface.weights.push_back(i % 2 == 0 ? 1 : std::numbers::sqrt2 / 2);
        }
    }
    return surface;
}

/// The surface that a piece makes, and whether its own normal points into the body.
brep::Surface piece_surface(const ProfilePiece& from, const ProfilePiece& to, bool& reversed) {
    const double dr = to.r - from.r, dz = to.z - from.z;
    reversed = false;
    if (from.kind == ProfilePiece::kSpline) {
        return turned_spline(profile_spline(from, to));
    }
    if (from.kind != ProfilePiece::kLine) {
        const AcGePoint3d center{0, 0, from.center_z};
        const double radius = std::hypot(from.r - from.center_r, from.z - from.center_z);
        reversed = from.kind == ProfilePiece::kRightArc;
        if (from.center_r == 0) {
            return brep::Sphere{center, radius, kEast, kUp};
        }
        return brep::Torus{center, kUp, kEast, from.center_r, radius};
    }
    if (dz == 0) {
        return brep::Plane{{0, 0, from.z}, dr > 0 ? kDown : kUp, kEast};
    }
    const ProfilePiece& wide = from.r > to.r ? from : to;
    const double length = std::hypot(dr, dz);
    reversed = dz < 0;
    return brep::Cone{{0, 0, wide.z},       kUp, kEast * wide.r, 1, dr / dz * std::abs(dz) / length,
                      std::abs(dz) / length};
}

} // namespace

brep::Body revolved(const std::vector<ProfilePiece>& profile) {
    Body body;
    std::vector<int> circles;
    circles.reserve(profile.size());
    for (const ProfilePiece& piece : profile) {
        circles.push_back(piece.r > 0 ? add_circle(body, {0, 0, piece.z}, piece.r) : -1);
    }
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const std::size_t next = (i + 1) % profile.size();
        if (circles[i] < 0 && circles[next] < 0 && profile[i].kind == ProfilePiece::kLine) {
            continue;
        }
        bool reversed = false;
        brep::Surface surface = piece_surface(profile[i], profile[next], reversed);
        std::vector<brep::Loop> loops;
        if (circles[i] >= 0) {
            loops.push_back(ring_loop(circles[i], false));
        }
        if (circles[next] >= 0) {
            loops.push_back(ring_loop(circles[next], true));
        }
        add_face(body, std::move(surface), reversed, std::move(loops));
    }
    return body;
}

brep::Body ring(const AcGePoint3d& center, double major, double minor) {
    Body body;
    add_face(body, brep::Torus{center, kUp, kEast, major, minor}, false, {});
    return body;
}

brep::Body ball(const AcGePoint3d& center, double radius) {
    Body body;
    add_face(body, brep::Sphere{center, radius, kEast, kUp}, false, {});
    return body;
}

namespace {

/// The edge from one corner to the next at a height: straight, or an arc by its bulge.
int add_side(Body& body, const OutlineCorner& from, const OutlineCorner& to, double z, int start,
             int end) {
    const AcGePoint3d a{from.x, from.y, z}, b{to.x, to.y, z};
    brep::Edge edge;
    edge.start = start;
    edge.end = end;
    edge.has_range = true;
    if (from.bulge == 0) {
        edge.to = a.distanceTo(b);
        edge.curve = put(body.curves, brep::Line{a, (b - a) / edge.to});
    } else {
        const double sweep = 4 * std::atan(from.bulge);
        const AcGeVector3d chord = b - a;
        const AcGeVector3d left{-chord.y, chord.x, 0};
        const AcGePoint3d center = a + chord * 0.5 + left * (0.5 / std::tan(sweep / 2));
        edge.to = std::abs(sweep);
        edge.curve =
            put(body.curves, brep::Ellipse{center, sweep > 0 ? kUp : kDown, a - center, 1});
    }
    return put(body.edges, edge);
}

int add_upright(Body& body, int low, int high) {
    const AcGePoint3d from = body.vertices[static_cast<std::size_t>(low)].point;
    brep::Edge edge;
    edge.start = low;
    edge.end = high;
    edge.to = body.vertices[static_cast<std::size_t>(high)].point.z - from.z;
    edge.has_range = true;
    edge.curve = put(body.curves, brep::Line{from, kUp});
    return put(body.edges, edge);
}

/// The wall above one edge of the lower outline.
brep::Surface wall_surface(const Body& body, int edge, bool& reversed) {
    const brep::Curve& curve =
        body.curves[static_cast<std::size_t>(body.edges[static_cast<std::size_t>(edge)].curve)];
    reversed = false;
    if (const auto* line = std::get_if<brep::Line>(&curve)) {
        return brep::Plane{line->origin, line->direction.crossProduct(kUp), line->direction};
    }
    const auto& arc = std::get<brep::Ellipse>(curve);
    reversed = arc.normal.z < 0;
    return brep::Cone{arc.center, kUp, arc.major, 1, 0, 1};
}

struct Outlines {
    std::vector<brep::Loop> bottom{1}, top{1};
};

void add_walls(Body& body, const std::vector<OutlineCorner>& outline, double low, double high,
               Outlines& ends) {
    const std::size_t n = outline.size();
    std::vector<int> lower, upper, uprights, below, above;
    for (const OutlineCorner& c : outline) {
        lower.push_back(put(body.vertices, brep::Vertex{{c.x, c.y, low}}));
        upper.push_back(put(body.vertices, brep::Vertex{{c.x, c.y, high}}));
        uprights.push_back(add_upright(body, lower.back(), upper.back()));
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t j = (i + 1) % n;
        below.push_back(add_side(body, outline[i], outline[j], low, lower[i], lower[j]));
        above.push_back(add_side(body, outline[i], outline[j], high, upper[i], upper[j]));
    }
    for (std::size_t i = 0; i < n; ++i) {
        bool reversed = false;
        brep::Surface wall = wall_surface(body, below[i], reversed);
        add_face(body, std::move(wall), reversed,
                 {{{{below[i], false, {}},
                    {uprights[(i + 1) % n], false, {}},
                    {above[i], true, {}},
                    {uprights[i], true, {}}}}});
        ends.top.front().coedges.push_back({above[i], false, {}});
        ends.bottom.front().coedges.insert(ends.bottom.front().coedges.begin(),
                                           brep::Coedge{below[i], true, {}});
    }
}

void add_hole(Body& body, const RoundHole& hole, double low, double high, Outlines& ends) {
    const int below = add_circle(body, {hole.x, hole.y, low}, hole.radius);
    const int above = add_circle(body, {hole.x, hole.y, high}, hole.radius);
    add_face(body, brep::Cone{{hole.x, hole.y, low}, kUp, kEast * hole.radius, 1, 0, 1}, true,
             {ring_loop(below, true), ring_loop(above, false)});
    ends.bottom.push_back(ring_loop(below, false));
    ends.top.push_back(ring_loop(above, true));
}

} // namespace

brep::Body extruded(const std::vector<OutlineCorner>& outline, double low, double high,
                    const std::vector<RoundHole>& holes) {
    Body body;
    Outlines ends;
    add_walls(body, outline, low, high, ends);
    for (const RoundHole& hole : holes) {
        add_hole(body, hole, low, high, ends);
    }
    add_face(body, brep::Plane{{0, 0, low}, kDown, kEast}, false, std::move(ends.bottom));
    add_face(body, brep::Plane{{0, 0, high}, kUp, kEast}, false, std::move(ends.top));
    return body;
}

} // namespace make_samples
