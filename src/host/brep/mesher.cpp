// Bodies: sizes and limits, edges once, faces one after the other, the result in the entity's
// coordinates.
#include "host/brep/mesh.h"

#include "host/brep/face.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brep {
namespace {

struct Box {
    AcGePoint3d low, high;
    bool empty = true;
    void add(const AcGePoint3d& p) {
        if (!finite(p)) {
            return;
        }
        low = empty ? p
                    : AcGePoint3d{std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = empty ? p
                     : AcGePoint3d{std::max(high.x, p.x), std::max(high.y, p.y),
                                   std::max(high.z, p.z)};
        empty = false;
    }
    void add(const AcGePoint3d& p, double radius) {
        add(p - AcGeVector3d{radius, radius, radius});
        add(p + AcGeVector3d{radius, radius, radius});
    }
};

/// Holds vertices, curves, and the surfaces that are closed without any.
Box box_of(const Body& body) {
    Box box;
    for (const Vertex& vertex : body.vertices) {
        box.add(vertex.point);
    }
    for (const Curve& curve : body.curves) {
        if (const auto* spline = std::get_if<BSplineCurve>(&curve)) {
            for (const AcGePoint3d& p : spline->points) {
                box.add(p);
            }
        }
    }
    for (const Curve& curve : body.curves) {
        if (const auto* ellipse = std::get_if<Ellipse>(&curve)) {
            box.add(ellipse->center,
                    ellipse->major.length() * std::max(1.0, std::abs(ellipse->ratio)));
        }
    }
    for (const Surface& surface : body.surfaces) {
        if (const auto* sphere = std::get_if<Sphere>(&surface)) {
            box.add(sphere->center, std::abs(sphere->radius));
        } else if (const auto* torus = std::get_if<Torus>(&surface)) {
            box.add(torus->center, std::abs(torus->major_radius) + std::abs(torus->minor_radius));
        }
    }
    return box;
}

bool finite(const AcGeMatrix3d& m) {
    return std::all_of(m.entry.begin(), m.entry.end(), [](const auto& row) {
        return std::all_of(row.begin(), row.end(), [](double x) { return std::isfinite(x); });
    });
}

/// How much the matrix makes a length longer at most: the root of the largest eigenvalue of the
/// product with its transpose, by repeated products.
double largest_stretch(const AcGeMatrix3d& m) {
    double most = 0;
    for (AcGeVector3d v : {AcGeVector3d{1, 0.1, 0.01}, {0.01, 1, 0.1}, {0.1, 0.01, 1}}) {
        for (int step = 0; step < 50; ++step) {
            const AcGeVector3d w = v.transformedBy(m);
            most = std::max(most, w.length() / v.length());
            v = {m(0, 0) * w.x + m(1, 0) * w.y + m(2, 0) * w.z,
                 m(0, 1) * w.x + m(1, 1) * w.y + m(2, 1) * w.z,
                 m(0, 2) * w.x + m(1, 2) * w.y + m(2, 2) * w.z};
            const double length = v.length();
            if (!(length > 0) || !std::isfinite(length)) {
                break;
            }
            v = v / length;
        }
    }
    return most;
}

void tell(std::vector<Problem>& problems, const std::string& code, const std::string& text) {
    for (Problem& problem : problems) {
        if (problem.code == code && problem.text == text) {
            ++problem.count;
            return;
        }
    }
    problems.push_back({code, text, 1});
}

class Mesher {
public:
    Mesher(const Body& body, const MeshOptions& options);
    Mesh mesh();

private:
    bool try_mesh();
    bool cancelled() const { return options_.cancelled && options_.cancelled(); }
    std::vector<EdgePoints> sample_edges(EdgeSampler& sampler);
    bool add_face(const FaceContext& context, const Face& face);
    std::uint32_t place(std::uint32_t point);
    AcGeVector3d outward(const AcGeVector3d& normal) const;

    const Body& body_;
    const MeshOptions& options_;
    AcGeMatrix3d transform_, cofactors_;
    bool mirrored_ = false;
    double excess_ = 1; ///< of the last try
    Fineness fineness_;
    Box box_;
    Mesh mesh_;
    std::vector<AcGePoint3d> points_;
    std::vector<std::uint32_t> place_of_; ///< of a point in the mesh
};

Mesher::Mesher(const Body& body, const MeshOptions& options)
  : body_(body)
  , options_(options)
  , transform_(body.transform)
  , box_(box_of(body)) {
    if (!finite(transform_) || transform_.isSingular()) {
        transform_ = AcGeMatrix3d::kIdentity;
    }
    mirrored_ = transform_.det() < 0;
    // Normals go with the cofactors; their sign is that of the determinant.
    const AcGeMatrix3d inverse = transform_.inverse();
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            cofactors_(row, column) = inverse(column, row);
        }
    }
    const double size = box_.empty ? 1 : std::max(box_.low.distanceTo(box_.high), 1e-9);
    const double chord = options.chord / std::max(largest_stretch(transform_), 1e-300);
    fineness_.tolerance = std::max(1e-8 * size, 1e-10);
    fineness_.chord = std::max(std::isfinite(chord) ? chord : 0.01 * size, 1e-7 * size);
    fineness_.angle = std::isfinite(options.angle) ? std::clamp(options.angle, 0.01, 1.05) : 0.5;
    fineness_.most_points = options.most_triangles + 1000;
}

std::vector<EdgePoints> Mesher::sample_edges(EdgeSampler& sampler) {
    std::vector<bool> round(body_.edges.size(), false);
    for (const Lump& lump : body_.lumps) {
        for (const Shell& shell : lump.shells) {
            for (const Face& face : shell.faces) {
                const bool known = face.surface >= 0 &&
                                   static_cast<std::size_t>(face.surface) < body_.surfaces.size();
                const Surface* surface =
                    known ? &body_.surfaces[static_cast<std::size_t>(face.surface)] : nullptr;
                if (surface == nullptr || std::holds_alternative<Plane>(*surface) ||
                    std::holds_alternative<Cone>(*surface) ||
                    std::holds_alternative<Extrusion>(*surface)) {
                    continue;
                }
                for (const Loop& loop : face.loops) {
                    for (const Coedge& coedge : loop.coedges) {
                        if (coedge.edge >= 0 &&
                            static_cast<std::size_t>(coedge.edge) < round.size()) {
                            round[static_cast<std::size_t>(coedge.edge)] = true;
                        }
                    }
                }
            }
        }
    }
    std::vector<EdgePoints> edges;
    for (std::size_t i = 0; i < body_.edges.size() && !sampler.too_many(); ++i) {
        edges.push_back(sampler.sample(body_.edges[i], round[i]));
    }
    return edges;
}

std::uint32_t Mesher::place(std::uint32_t point) {
    constexpr std::uint32_t kNone = ~0U;
    if (place_of_.size() < points_.size()) {
        place_of_.resize(points_.size(), kNone);
    }
    std::uint32_t& place = place_of_[point];
    if (place == kNone) {
        place = static_cast<std::uint32_t>(mesh_.points.size());
        mesh_.points.push_back(points_[point].transformedBy(transform_));
    }
    return place;
}

AcGeVector3d Mesher::outward(const AcGeVector3d& normal) const {
    const AcGeVector3d n = normal.transformedBy(cofactors_);
    const double length = n.length();
    return length > 0 ? n / length : AcGeVector3d::kZAxis;
}

bool Mesher::add_face(const FaceContext& context, const Face& face) {
    const std::string kind = face.kind.empty() ? std::string("surface") : face.kind;
    const std::optional<FaceTriangles> made = mesh_face(context, face);
    Mesh::FaceRange range{mesh_.triangles.size(), mesh_.triangles.size(), face.color};
    if (!made) {
        tell(mesh_.problems, "solid-face-missing", kind);
        mesh_.complete = false;
        mesh_.faces.push_back(range);
        return true;
    }
    if (made->excess > 0 ||
        mesh_.triangles.size() + made->triangles.size() > options_.most_triangles) {
        excess_ = std::max(made->excess, 1.0);
        return false;
    }
    if (made->approximate || face.approximate) {
        tell(mesh_.problems, "solid-face-approximate", kind);
    }
    const auto first = static_cast<std::uint32_t>(mesh_.normals.size());
    for (const AcGeVector3d& normal : made->normals) {
        mesh_.normals.push_back(outward(normal));
    }
    for (const auto& triangle : made->triangles) {
        std::array<Mesh::Corner, 3> corners;
        for (std::size_t i = 0; i < 3; ++i) {
            corners[mirrored_ ? 2 - i : i] = {place(triangle[i].point), triangle[i].normal + first};
        }
        mesh_.triangles.push_back(corners);
    }
    range.end = mesh_.triangles.size();
    mesh_.faces.push_back(range);
    return true;
}

/// False when the limits make too many triangles.
bool Mesher::try_mesh() {
    mesh_ = {};
    excess_ = 1;
    mesh_.problems = body_.problems;
    points_.clear();
    place_of_.clear();
    EdgeSampler sampler(body_, fineness_, points_);
    const std::vector<EdgePoints> edges = sample_edges(sampler);
    if (sampler.too_many()) {
        return false;
    }
    const AcGePoint3d center = box_.low + (box_.high - box_.low) / 2;
    const double radius = std::max(box_.low.distanceTo(box_.high) / 2, fineness_.tolerance);
    const FaceContext context{body_, edges, fineness_, center, radius, points_};
    for (const Lump& lump : body_.lumps) {
        for (const Shell& shell : lump.shells) {
            for (const Face& face : shell.faces) {
                if (cancelled()) {
                    mesh_.complete = false;
                    return true;
                }
                if (!add_face(context, face) || sampler.too_many()) {
                    return false;
                }
            }
        }
    }
    return true;
}

Mesh Mesher::mesh() {
    constexpr int kTries = 24;
    for (int i = 0; i < kTries; ++i) {
        if (try_mesh()) {
            return std::move(mesh_);
        }
        // Points inside go with one over the chord.
        fineness_.chord *= std::clamp(excess_, 2.0, 1e9);
        fineness_.angle = std::min(fineness_.angle * 1.3, 1.05);
    }
    mesh_.complete = false;
    tell(mesh_.problems, "mesh-limit", "");
    return std::move(mesh_);
}

} // namespace

Mesh mesh(const Body& body, const MeshOptions& options) { return Mesher(body, options).mesh(); }

} // namespace brep
