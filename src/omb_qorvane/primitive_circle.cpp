// Circles: a fan round the centre, and with thickness a tube.
#include "omb_qorvane/ts_ac_gi_geometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// The full turn in single precision, as the segment rule has it.
constexpr double full_turn = 6.2831854820251465;

/// Number of segments for a chord error. A ratio that acos cannot take gives the smallest integer,
/// as the conversion of no-number to an integer does on this platform: no ring is then written.
std::int32_t circle_segments(double deviation, double radius) {
    const auto twice = static_cast<float>(2 * std::acos(1 - deviation / radius));
    const double wanted = full_turn / static_cast<double>(twice) + 0.5;
    constexpr double most = 1 << 24; // far beyond any drawing; keeps the indices in range
    if (std::isnan(wanted) || wanted > most) {
        return std::numeric_limits<std::int32_t>::min();
    }
    return static_cast<std::int32_t>(std::max(6.0, wanted));
}

/// A frame in single precision: the plane of the circle by two unit vectors.
struct circle_frame {
    AcGeVector3d e1, e2;

    explicit circle_frame(const AcGeVector3d& normal) {
        const AcGeVector3d unit = normal.normal();
        const auto nx = static_cast<float>(unit.x), ny = static_cast<float>(unit.y),
                   nz = static_cast<float>(unit.z);
        fpt32 a =
            std::abs(nx) < 0.001F && std::abs(ny) < 0.001F ? fpt32{nz, 0, -nx} : fpt32{-ny, nx, 0};
        const float length = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
        if (length > 0) {
            a = {a.x / length, a.y / length, a.z / length};
        }
        e1 = {a.x, a.y, a.z};
        e2 = {a.z * ny - a.y * nz, a.x * nz - a.z * nx, a.y * nx - a.x * ny};
    }
    AcGeVector3d radial(double angle) const { return e1 * std::cos(angle) + e2 * std::sin(angle); }
};

} // namespace

bool CTsAcGiGeometry::circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) {
    const double thickness = common_.traits->thickness();
    const AcGeVector3d extrusion = normal * thickness;
    const std::array<AcGePoint3d, 3> needed{center, center + extrusion,
                                            center + AcGeVector3d{radius, radius, radius}};
    if (drop_if_bad(needed)) {
        return true;
    }
    const std::int32_t n = circle_segments(common_.traits->deviation(), radius);
    if (!begin_mesh("#;ACAD CIRCLE 1;", false)) {
        return true;
    }
    const circle_frame frame(normal);
    ring_.resize(n > 0 ? static_cast<std::size_t>(n) + 1 : 0); // the upper ring closes itself
    for (std::size_t step = 0; step < ring_.size(); ++step) {
        const AcGeVector3d radial = frame.radial(static_cast<double>(step) * full_turn / n);
        ring_[step] = {radial * radius, transform_.direction(radial)};
    }
    const auto ring = [&](const AcGePoint3d& middle, std::int32_t index, std::int32_t step) {
        const ring_point& at = ring_[static_cast<std::size_t>(step)];
        write_normal(at.normal);
        write_point(transform_.to_ts(middle + at.offset));
        out_.add_vertex(index);
    };
    write_point(transform_.to_ts(center));
    out_.add_vertex(0);
    for (std::int32_t i = 1; i <= n; ++i) {
        ring(center, i, i - 1);
    }
    if (thickness != 0 && n > 0) {
        // The upper centre has the number n + 1 and is not written.
        for (std::int32_t j = n + 2; j <= 2 * n + 2; ++j) {
            ring(center + extrusion, j, j - n - 2);
        }
        for (std::int32_t k = 1; k <= n; ++k) {
            const std::int32_t m = k == n ? 1 : k + 1;
            const std::int32_t t = n + k + 1;
            const std::int32_t u = k == n ? n + 2 : t + 1;
            out_.face(k, m, u);
            out_.face(k, u, t);
        }
    } else if (common_.traits->light_number >= 0) {
        for (std::int32_t k = 2; k <= n - 1; ++k) {
            out_.face(0, k - 1, k);
        }
    }
    end_mesh();
    return true;
}
