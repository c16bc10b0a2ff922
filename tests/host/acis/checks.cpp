#include "part_maker.h"

#include "host/acis/spline.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace test_acis {

namespace {

const brep::Edge& edgeOf(const brep::Body& body, const brep::Coedge& coedge) {
    return body.edges[static_cast<std::size_t>(coedge.edge)];
}

int startOf(const brep::Body& body, const brep::Coedge& coedge) {
    return coedge.reversed ? edgeOf(body, coedge).end : edgeOf(body, coedge).start;
}
int endOf(const brep::Body& body, const brep::Coedge& coedge) {
    return coedge.reversed ? edgeOf(body, coedge).start : edgeOf(body, coedge).end;
}

const AcGePoint3d& pointOf(const brep::Body& body, int vertex) {
    return body.vertices[static_cast<std::size_t>(vertex)].point;
}

template <class Visit>
void eachFace(const brep::Body& body, Visit visit) {
    for (const brep::Lump& lump : body.lumps) {
        for (const brep::Shell& shell : lump.shells) {
            for (const brep::Face& face : shell.faces) {
                visit(face);
            }
        }
    }
}

bool within(int index, std::size_t count) {
    return index >= 0 && static_cast<std::size_t>(index) < count;
}

std::string edgeFault(const brep::Body& body, const brep::Edge& edge, double tolerance) {
    if (!within(edge.start, body.vertices.size()) || !within(edge.end, body.vertices.size()) ||
        (edge.curve != -1 && !within(edge.curve, body.curves.size()))) {
        return "an edge leads out of the lists";
    }
    if (edge.curve < 0 || !edge.has_range) {
        return {};
    }
    const brep::Curve& curve = body.curves[static_cast<std::size_t>(edge.curve)];
    for (const auto& [t, vertex] : {std::pair(edge.from, edge.start), {edge.to, edge.end}}) {
        const auto point = acis::pointAt(curve, edge.reversed ? -t : t);
        if (!point || point->distanceTo(pointOf(body, vertex)) > tolerance) {
            return fmt::format("an edge does not end at its vertex ({}, off by {})", t,
                               point ? point->distanceTo(pointOf(body, vertex)) : -1);
        }
    }
    return {};
}

} // namespace

brep::Body readPart(const std::string& bytes) {
    if (bytes.find("BinaryFile") < 8) {
        return acis::readBinary(
            {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    }
    return acis::readText(bytes);
}

std::vector<int> addBox(PartMaker& maker, Point size, Point corner) {
    std::vector<Point> points;
    for (int i = 0; i < 8; ++i) {
        points.push_back({corner.x + (i & 1) * size.x, corner.y + (i >> 1 & 1) * size.y,
                          corner.z + (i >> 2) * size.z});
    }
    return maker.polyhedron(points, {{{0, 2, 3, 1}},
                                     {{4, 5, 7, 6}},
                                     {{0, 1, 5, 4}},
                                     {{2, 6, 7, 3}},
                                     {{0, 4, 6, 2}},
                                     {{1, 3, 7, 5}}});
}

std::vector<int> addCylinder(PartMaker& maker, double radius, double height) {
    constexpr double turn = 2 * std::numbers::pi;
    const int low = maker.vertex({radius, 0, 0});
    const int high = maker.vertex({radius, 0, height});
    const int bottom =
        maker.edge(low, low, maker.circle({0, 0, 0}, {0, 0, 1}, {radius, 0, 0}), 0, turn);
    // The upper circle runs the other way, and its edge against it.
    const int top = maker.edge(high, high, maker.circle({0, 0, height}, {0, 0, -1}, {radius, 0, 0}),
                               -turn, 0, true);
    const int side = maker.cone({0, 0, 0}, {0, 0, 1}, {radius, 0, 0}, 0, 1);
    return {maker.face(side, {{{bottom, false}}, {{top, true}}}),
            maker.face(maker.plane({0, 0, 0}, {0, 0, 1}, {1, 0, 0}), {{{bottom, true}}}, true),
            maker.face(maker.plane({0, 0, height}, {0, 0, 1}, {1, 0, 0}), {{{top, false}}})};
}

std::vector<int> addCone(PartMaker& maker, double radius, double height) {
    const double slant = std::hypot(radius, height);
    const int rim = maker.vertex({radius, 0, 0});
    const int apex = maker.vertex({0, 0, height});
    const int base = maker.edge(rim, rim, maker.circle({0, 0, 0}, {0, 0, 1}, {radius, 0, 0}), 0,
                                2 * std::numbers::pi);
    const int tip = maker.edge(apex, apex, -1, 1, 0);
    const int side =
        maker.cone({0, 0, 0}, {0, 0, 1}, {radius, 0, 0}, -radius / slant, height / slant);
    return {maker.face(side, {{{base, false}}, {{tip, false}}}),
            maker.face(maker.plane({0, 0, 0}, {0, 0, -1}, {1, 0, 0}), {{{base, true}}})};
}

Counts countsOf(const brep::Body& body) {
    Counts counts;
    counts.lumps = static_cast<int>(body.lumps.size());
    for (const brep::Lump& lump : body.lumps) {
        counts.shells += static_cast<int>(lump.shells.size());
    }
    eachFace(body, [&](const brep::Face& face) {
        ++counts.faces;
        counts.loops += static_cast<int>(face.loops.size());
        for (const brep::Loop& loop : face.loops) {
            counts.coedges += static_cast<int>(loop.coedges.size());
            for (const brep::Coedge& coedge : loop.coedges) {
                counts.pcurves += coedge.pcurve ? 1 : 0;
            }
        }
    });
    counts.edges = static_cast<int>(body.edges.size());
    counts.vertices = static_cast<int>(body.vertices.size());
    return counts;
}

std::string faultOf(const brep::Body& body, bool closed, double tolerance) {
    std::string fault;
    const auto found = [&](std::string text) { fault = fault.empty() ? std::move(text) : fault; };
    for (const brep::Edge& edge : body.edges) {
        found(edgeFault(body, edge, tolerance));
    }
    std::vector<std::array<int, 2>> uses(body.edges.size());
    eachFace(body, [&](const brep::Face& face) {
        if (!within(face.surface, body.surfaces.size()) ||
            body.surfaces[static_cast<std::size_t>(face.surface)].index() == 0) {
            found("a face without a surface");
        }
        for (const brep::Loop& loop : face.loops) {
            for (std::size_t i = 0; i < loop.coedges.size(); ++i) {
                const brep::Coedge& next = loop.coedges[(i + 1) % loop.coedges.size()];
                if (!within(loop.coedges[i].edge, body.edges.size())) {
                    found("a coedge without an edge");
                    return;
                }
                ++uses[static_cast<std::size_t>(loop.coedges[i].edge)]
                      [loop.coedges[i].reversed ? 1 : 0];
                if (endOf(body, loop.coedges[i]) != startOf(body, next)) {
                    found("an open loop");
                }
            }
        }
    });
    for (std::size_t i = 0; closed && i < uses.size(); ++i) {
        const bool apex = body.edges[i].curve < 0;
        if (!apex && uses[i] != std::array{1, 1}) {
            found(fmt::format("edge {} is used {} times along and {} times against it", i,
                              uses[i][0], uses[i][1]));
        }
    }
    return fault;
}

double polyhedronVolume(const brep::Body& body) {
    double six_times = 0;
    bool sound = true;
    eachFace(body, [&](const brep::Face& face) {
        const auto& plane =
            std::get<brep::Plane>(body.surfaces[static_cast<std::size_t>(face.surface)]);
        const AcGeVector3d normal = face.reversed ? -plane.normal : plane.normal;
        AcGeVector3d twice_area{};
        for (const brep::Loop& loop : face.loops) {
            for (const brep::Coedge& coedge : loop.coedges) {
                twice_area = twice_area +
                             (pointOf(body, startOf(body, coedge)) - plane.origin)
                                 .crossProduct(pointOf(body, endOf(body, coedge)) - plane.origin);
            }
        }
        sound = sound && twice_area.dotProduct(normal) > 0; // faces lie left of their loops
        six_times += twice_area.dotProduct(normal) * plane.origin.asVector().dotProduct(normal);
    });
    return sound ? six_times / 6 : std::numeric_limits<double>::quiet_NaN();
}

namespace {

template <class Range>
std::string listed(const char* name, const Range& numbers) {
    std::string text = name;
    for (const auto& number : numbers) {
        if constexpr (std::is_same_v<std::decay_t<decltype(number)>, AcGePoint3d>) {
            text += fmt::format(" ({} {} {})", number.x, number.y, number.z);
        } else {
            text += fmt::format(" {}", number);
        }
    }
    return text + "\n";
}

std::string described(const AcGeVector3d& v) { return fmt::format("({} {} {})", v.x, v.y, v.z); }

std::string described(const brep::Curve& curve) {
    if (const auto* line = std::get_if<brep::Line>(&curve)) {
        return "line " + described(line->origin.asVector()) + described(line->direction) + "\n";
    }
    if (const auto* ellipse = std::get_if<brep::Ellipse>(&curve)) {
        return "ellipse " + described(ellipse->center.asVector()) + described(ellipse->normal) +
               described(ellipse->major) + fmt::format(" {}\n", ellipse->ratio);
    }
    const auto* spline = std::get_if<brep::BSplineCurve>(&curve);
    return spline == nullptr ? "none\n"
                             : listed("knots", spline->knots) + listed("points", spline->points) +
                                   listed("weights", spline->weights);
}

std::string described(const brep::Surface& surface) {
    if (const auto* spline = std::get_if<brep::BSplineSurface>(&surface)) {
        return listed("u", spline->knots_u) + listed("v", spline->knots_v) +
               listed("points", spline->points) + listed("weights", spline->weights);
    }
    if (const auto* cone = std::get_if<brep::Cone>(&surface)) {
        return "cone " + described(cone->center.asVector()) + described(cone->axis) +
               described(cone->major) +
               fmt::format(" {} {} {}\n", cone->ratio, cone->sine, cone->cosine);
    }
    if (const auto* plane = std::get_if<brep::Plane>(&surface)) {
        return "plane " + described(plane->origin.asVector()) + described(plane->normal) +
               described(plane->u_axis) + "\n";
    }
    return fmt::format("surface {}\n", surface.index());
}

} // namespace

std::string described(const brep::Body& body) {
    std::string text;
    for (const brep::Curve& curve : body.curves) {
        text += described(curve);
    }
    for (const brep::Surface& surface : body.surfaces) {
        text += described(surface);
    }
    for (const brep::Vertex& vertex : body.vertices) {
        text += "vertex " + described(vertex.point.asVector()) + "\n";
    }
    for (const brep::Edge& edge : body.edges) {
        text += fmt::format("edge {} {} {} {} {} {} {}\n", edge.curve, edge.start, edge.end,
                            edge.from, edge.to, edge.has_range, edge.reversed);
    }
    eachFace(body, [&](const brep::Face& face) {
        text += fmt::format("face {} {} {} {} {}\n", face.surface, face.reversed, face.double_sided,
                            face.kind, face.color.value_or(0));
        for (const brep::Loop& loop : face.loops) {
            for (const brep::Coedge& coedge : loop.coedges) {
                text += fmt::format(" {}{}", coedge.edge, coedge.reversed ? "-" : "+");
                text += coedge.pcurve ? described(brep::Curve(coedge.pcurve->curve)) : "";
            }
            text += " loop\n";
        }
    });
    for (const brep::Problem& problem : body.problems) {
        text += problem.code + " " + problem.text + "\n";
    }
    return text + listed("transform", body.transform.entry[0]) +
           listed("", body.transform.entry[1]) + listed("", body.transform.entry[2]);
}

} // namespace test_acis
