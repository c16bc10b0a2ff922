// What holds for every body that a reader gives, whatever it read.
#pragma once

#include "host/acis/spline.h"
#include "host/brep/mesh.h"

#include <cmath>
#include <cstdlib>

namespace fuzz {

inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

inline void require_index(int index, std::size_t count) {
    require(index >= 0 && static_cast<std::size_t>(index) < count);
}

inline void require_finite(const AcGePoint3d& p) {
    require(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z));
}

inline void touch_spline(const brep::BSplineCurve& curve) {
    require(curve.knots.size() == curve.points.size() + static_cast<std::size_t>(curve.degree) + 1);
    require(curve.weights.empty() || curve.weights.size() == curve.points.size());
    for (std::size_t i = 1; i < curve.knots.size(); ++i) {
        require(curve.knots[i - 1] <= curve.knots[i]);
    }
    require(curve.knots.front() == curve.knots[static_cast<std::size_t>(curve.degree)]);
    require_finite(acis::pointAt(curve, (curve.knots.front() + curve.knots.back()) / 2));
}

inline void touch_geometry(const brep::Body& body) {
    for (const brep::Curve& curve : body.curves) {
        require(curve.index() != 0);
        if (const auto* spline = std::get_if<brep::BSplineCurve>(&curve)) {
            touch_spline(*spline);
        }
        require_finite(acis::pointAt(curve, 1).value());
    }
    for (const brep::Surface& surface : body.surfaces) {
        require(surface.index() != 0);
        if (const auto* spline = std::get_if<brep::BSplineSurface>(&surface)) {
            const std::size_t u =
                spline->knots_u.size() - static_cast<std::size_t>(spline->degree_u) - 1;
            const std::size_t v =
                spline->knots_v.size() - static_cast<std::size_t>(spline->degree_v) - 1;
            require(spline->points.size() == u * v);
        }
        if (const auto point = acis::pointAt(surface, 0.5, 0.25)) {
            require_finite(*point);
        }
    }
}

inline void touch_face(const brep::Body& body, const brep::Face& face) {
    require_index(face.surface, body.surfaces.size());
    for (const brep::Loop& loop : face.loops) {
        require(!loop.coedges.empty());
        for (const brep::Coedge& coedge : loop.coedges) {
            require_index(coedge.edge, body.edges.size());
            if (coedge.pcurve) {
                touch_spline(coedge.pcurve->curve);
            }
        }
    }
}

/// Whatever was read is meshed too: the result is whole in itself.
inline void touch_mesh(const brep::Body& body) {
    brep::MeshOptions options;
    options.most_triangles = 2000;
    const brep::Mesh mesh = brep::mesh(body, options);
    for (const AcGePoint3d& point : mesh.points) {
        require_finite(point);
    }
    for (const auto& triangle : mesh.triangles) {
        for (const brep::Mesh::Corner& corner : triangle) {
            require(corner.point < mesh.points.size() && corner.normal < mesh.normals.size());
        }
    }
}

inline void touch_body(const brep::Body& body) {
    touch_geometry(body);
    for (const brep::Vertex& vertex : body.vertices) {
        require_finite(vertex.point);
    }
    for (const brep::Edge& edge : body.edges) {
        require_index(edge.start, body.vertices.size());
        require_index(edge.end, body.vertices.size());
        require(edge.curve == -1 || static_cast<std::size_t>(edge.curve) < body.curves.size());
        require(!edge.has_range || edge.from < edge.to);
    }
    std::size_t faces = 0;
    for (const brep::Lump& lump : body.lumps) {
        for (const brep::Shell& shell : lump.shells) {
            for (const brep::Face& face : shell.faces) {
                touch_face(body, face);
                ++faces;
            }
        }
    }
    require(faces > 0 || !body.problems.empty());
    touch_mesh(body);
}

} // namespace fuzz
