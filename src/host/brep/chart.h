// A surface with its parameters as the mesher needs them: which directions close on themselves,
// where a side shrinks to a point, and the parameters of points on it.
#pragma once

#include "host/brep/curves.h"

#include <span>

namespace brep {

/// Parameters of a chart. Where a surface closes in one direction only, that is s; a pole is a
/// whole line t = const.
struct Param {
    double s = 0, t = 0;
};

/// The ball that holds the body, to cut what is endless.
struct Reach {
    AcGePoint3d center;
    double radius = 1;
};

SurfacePoint evaluate(const Surface& surface, double u, double v);
bool usable(const Surface& surface);

class Chart {
public:
    /// None for surfaces that are missing or whose numbers cannot be worked with. `tolerance`:
    /// distances below it count as none. The surface must outlive the chart.
    static std::optional<Chart> make(const Surface& surface, const Reach& reach, double tolerance);

    /// A point with derivatives: u stands for s, v for t.
    SurfacePoint at(const Param& p) const;
    /// Unit; along the derivatives by s and t, crossed. At a pole that of a point next to it.
    AcGeVector3d normal(const Param& p) const { return normal(p, at(p)); }
    /// The same where the point there is known already.
    AcGeVector3d normal(const Param& p, const SurfacePoint& here) const;
    /// The parameters of the closest point. `near`: where to begin, and which turn to choose.
    Param project(const AcGePoint3d& point, const Param* near) const;
    /// The same point as `p`, within half a period of `near`.
    Param unwrap(Param p, const Param& near) const;

    /// Exchanges s and t.
    void swap();
    /// Turns a sphere so that its poles stay away from the points.
    void turn_poles_away(std::span<const AcGePoint3d> points);

    bool flat() const { return flat_; }
    /// Straight in the direction of t, with one normal along it.
    bool straight() const { return straight_; }
    /// Turned about an axis with s as the angle, so that nothing changes along s but the direction.
    bool even() const;
    /// s and t stand for the surface's v and u, so that the normal is turned about.
    bool swapped() const { return swapped_; }
    double period_s() const { return period_s_; }
    double period_t() const { return period_t_; }
    const Range& s_range() const { return s_range_; }
    const Range& t_range() const { return t_range_; }
    /// The t at which a side is a point, and the point.
    std::optional<double> pole(bool high) const { return high ? pole_high_ : pole_low_; }
    AcGePoint3d pole_point(bool high) const;

private:
    void set_up(const Surface& surface, const Reach& reach, double tolerance);
    void set_up_cone(const Cone& cone);
    void set_up_torus(const Torus& torus);
    void set_up_spline(double tolerance);
    void set_up_swept(const Reach& reach, double tolerance);
    void find_poles(double tolerance);
    void make_seeds();
    bool side_is_point(bool of_s, double value, double tolerance) const;
    bool sides_meet(bool in_s, double tolerance) const;
    std::optional<Param> project_closed(const AcGePoint3d& point) const;
    Param seed(const AcGePoint3d& point) const;
    Param newton(const AcGePoint3d& point, Param p) const;
    double clamp_s(double s) const;
    double clamp_t(double t) const;

    Surface own_;                      ///< planes of flat cones, turned spheres
    const Surface* surface_ = nullptr; ///< null: own_
    bool flat_ = false, straight_ = false, swapped_ = false;
    double period_s_ = 0, period_t_ = 0;
    Range s_range_{-1e300, 1e300}, t_range_{-1e300, 1e300};
    std::optional<double> pole_low_, pole_high_;
    struct Seed {
        Param p;
        AcGePoint3d point;
    };
    std::vector<Seed> seeds_;

private:
    const Surface& surface() const { return surface_ == nullptr ? own_ : *surface_; }
};

} // namespace brep
