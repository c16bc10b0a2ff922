// How far apart the points of a face may be, and a plane in which that is even.
#pragma once

#include "host/brep/edges.h"
#include "host/brep/loops.h"

namespace brep {

/// The largest steps in s and t over the part of the surface that a face uses, as they change with
/// t. In the plane (s, y) a step has nearly the same length in both directions, so that Delaunay
/// triangles there are fair on the surface.
class Spacing {
public:
    Spacing(const Chart& chart, const Range& s, const Range& t, const Fineness& fineness);

    double step_s(double t) const { return look_up(step_s_, t); }
    /// Steps in t from the face's low end to here.
    double row(double t) const { return look_up(row_, t); }
    double rows() const { return row_.back(); }
    double t_of_row(double row) const { return find(row_, row); }

    AcGePoint2d plane(const Param& p) const { return {p.s, look_up(y_, p.t)}; }
    Param param(const AcGePoint2d& p) const { return {p.x, find(y_, p.y)}; }
    /// Steps that a straight line takes.
    double length(const Param& a, const Param& b) const;

private:
    double look_up(const std::vector<double>& table, double t) const;
    double find(const std::vector<double>& table, double value) const;

    Range t_;
    std::vector<double> step_s_, row_, y_;
};

} // namespace brep
