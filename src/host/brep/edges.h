// Points along the edges of a body, made once for all faces.
#pragma once

#include "host/brep/curves.h"

namespace brep {

/// What points must keep to, in the body's own units.
struct Fineness {
    double chord = 0.01;
    double angle = 0.5;
    double tolerance = 1e-7; ///< distances below it count as none
    std::size_t most_points = 2'000'000;
};

/// An edge's points from its start to its end; a single one for an edge that is a point, none for
/// an edge without any usable place.
struct EdgePoints {
    std::vector<std::uint32_t> ids;
    std::vector<double> at; ///< the edge's parameter at each point
};

class EdgeSampler {
public:
    /// `points`: the mesh's points, to which the vertices and the new ones are added.
    EdgeSampler(const Body& body, const Fineness& fineness, std::vector<AcGePoint3d>& points);
    /// `round`: a neighbouring surface bends along and across, so that chords must be shorter.
    EdgePoints sample(const Edge& edge, bool round);
    bool too_many() const { return points_.size() > fineness_.most_points; }
    /// The point of a vertex, when the vertex is there.
    std::optional<std::uint32_t> vertex(int index) const;

private:
    struct Part;
    std::optional<Range> part_of(const Edge& edge, const Curve& curve, double& sign,
                                 double turn) const;
    bool meets(const Edge& edge, const Part& part, const Range& range) const;
    void split(const Part& part, double from, double to, int depth, std::vector<double>& at) const;
    std::vector<double> steps(const Part& part, const Range& range, bool closed) const;

    const Body& body_;
    Fineness fineness_;
    std::vector<AcGePoint3d>& points_;
    std::vector<std::optional<std::uint32_t>> vertices_;
};

} // namespace brep
