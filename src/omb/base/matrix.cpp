// The 4 by 4 transform, see matrix.h.
#include "omb/base/matrix.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"

#include <cmath>

cl_matrix::cl_matrix()
  : values{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}

bool cl_matrix::frame_axes(const fpt& x, const fpt& y, bool inverse, int report_level,
                           fpt axes[3]) const {
    if (x.length() == 0) {
        OMB_TRACE(report_level, "Cannot create matrix: X vector was empty");
        return false;
    }
    if (y.length() == 0) {
        OMB_TRACE(report_level, "Cannot create matrix: Y vector was empty");
        return false;
    }
    axes[2] = cross(x, y);
    if (!axes[2].make_unit()) {
        if (inverse) {
            OMB_TRACE(report_level, "Could not create normal");
        } else {
            OMB_TRACE(report_level,
                      "Could not create normal - X and Y vectors are co-linear: %s %s",
                      fpt_to_text(x), fpt_to_text(y));
        }
        return false;
    }
    axes[0] = x;
    axes[0].make_unit();
    axes[1] = cross(axes[2], axes[0]);
    axes[1].make_unit();
    return true;
}

bool cl_matrix::create_from_vectors(const fpt& origin, const fpt& x, const fpt& y,
                                    int report_level) {
    fpt axes[3];
    if (!frame_axes(x, y, false, report_level, axes)) {
        return false;
    }
    *this = cl_matrix();
    for (int column = 0; column < 3; ++column) {
        at(0, column) = axes[column].x;
        at(1, column) = axes[column].y;
        at(2, column) = axes[column].z;
    }
    at(0, 3) = origin.x, at(1, 3) = origin.y, at(2, 3) = origin.z;
    return true;
}

bool cl_matrix::create_from_vectors(const fpt32& origin, const fpt32& x, const fpt32& y,
                                    int report_level) {
    return create_from_vectors(widen(origin), widen(x), widen(y), report_level);
}

bool cl_matrix::create_from_vectors_inverse(const fpt& origin, const fpt& x, const fpt& y,
                                            int report_level) {
    fpt axes[3];
    if (!frame_axes(x, y, true, report_level, axes)) {
        return false;
    }
    *this = cl_matrix();
    for (int row = 0; row < 3; ++row) {
        at(row, 0) = axes[row].x;
        at(row, 1) = axes[row].y;
        at(row, 2) = axes[row].z;
        at(row, 3) = -dot(axes[row], origin);
    }
    return true;
}

bool cl_matrix::create_from_vectors_inverse(const fpt32& origin, const fpt32& x, const fpt32& y,
                                            int report_level) {
    return create_from_vectors_inverse(widen(origin), widen(x), widen(y), report_level);
}

cl_matrix cl_matrix::translation(const fpt& offset) {
    cl_matrix result;
    result.at(0, 3) = offset.x, result.at(1, 3) = offset.y, result.at(2, 3) = offset.z;
    return result;
}

cl_matrix cl_matrix::scaling(const fpt& factors) {
    cl_matrix result;
    result.at(0, 0) = factors.x, result.at(1, 1) = factors.y, result.at(2, 2) = factors.z;
    return result;
}

namespace {

/// A right-handed turn in the plane of two axes, from `a` towards `b`.
cl_matrix plane_rotation(int a, int b, double radians) {
    cl_matrix result;
    result.at(a, a) = std::cos(radians), result.at(a, b) = -std::sin(radians);
    result.at(b, a) = std::sin(radians), result.at(b, b) = std::cos(radians);
    return result;
}

} // namespace

cl_matrix cl_matrix::rotation_x(double radians) { return plane_rotation(1, 2, radians); }
cl_matrix cl_matrix::rotation_y(double radians) { return plane_rotation(2, 0, radians); }
cl_matrix cl_matrix::rotation_z(double radians) { return plane_rotation(0, 1, radians); }

cl_matrix cl_matrix::operator*(const cl_matrix& right) const {
    cl_matrix result;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            double sum = 0;
            for (int i = 0; i < 4; ++i) {
                sum += at(row, i) * right.at(i, column);
            }
            result.at(row, column) = sum;
        }
    }
    return result;
}

namespace {

/// Gauss-Jordan elimination with row pivots of `work`, carried along in `inverse`. Returns the
/// determinant; 0 when the matrix is singular or not finite.
double eliminate(cl_matrix& work, cl_matrix& inverse) {
    double determinant = 1;
    for (int column = 0; column < 4; ++column) {
        int pivot = column;
        for (int row = column + 1; row < 4; ++row) {
            if (std::fabs(work.at(row, column)) > std::fabs(work.at(pivot, column))) {
                pivot = row;
            }
        }
        const double value = work.at(pivot, column);
        if (value == 0 || !std::isfinite(value)) {
            return 0;
        }
        determinant *= pivot == column ? value : -value;
        for (int i = 0; i < 4; ++i) {
            std::swap(work.at(pivot, i), work.at(column, i));
            std::swap(inverse.at(pivot, i), inverse.at(column, i));
            work.at(column, i) /= value;
            inverse.at(column, i) /= value;
        }
        for (int row = 0; row < 4; ++row) {
            const double factor = row == column ? 0 : work.at(row, column);
            for (int i = 0; factor != 0 && i < 4; ++i) {
                work.at(row, i) -= factor * work.at(column, i);
                inverse.at(row, i) -= factor * inverse.at(column, i);
            }
        }
    }
    return determinant;
}

} // namespace

double cl_matrix::determinant() const {
    cl_matrix work = *this;
    cl_matrix inverse;
    return eliminate(work, inverse);
}

bool cl_matrix::invert(cl_matrix& result) const {
    cl_matrix work = *this;
    cl_matrix inverse;
    if (eliminate(work, inverse) == 0) {
        return false;
    }
    result = inverse;
    return true;
}

fpt cl_matrix::transform_point(const fpt& p) const {
    return transform_vector(p) + fpt{at(0, 3), at(1, 3), at(2, 3)};
}

fpt cl_matrix::transform_vector(const fpt& v) const {
    return {at(0, 0) * v.x + at(0, 1) * v.y + at(0, 2) * v.z,
            at(1, 0) * v.x + at(1, 1) * v.y + at(1, 2) * v.z,
            at(2, 0) * v.x + at(2, 1) * v.y + at(2, 2) * v.z};
}

std::string cl_matrix::to_text() const {
    std::string text;
    for (int row = 0; row < 4; ++row) {
        text += fmt::sprintf("%s\t%.4g %.4g %.4g %.4g", row > 0 ? "\n" : "", at(row, 0), at(row, 1),
                             at(row, 2), at(row, 3));
    }
    return text;
}

bool cl_matrix::from_text(std::string_view text) {
    std::string plain;
    for (const char c : text) {
        if (std::string_view("()[]{},").find(c) == std::string_view::npos) {
            plain += c;
        }
    }
    std::string_view rest = plain;
    std::array<double, 16> read{};
    for (double& value : read) {
        if (!omb::take_double(rest, value)) {
            return false;
        }
    }
    values = read;
    return true;
}

fpt rotz_around_normal(const fpt& vector, double angle, const fpt& normal) {
    fpt unit = vector;
    fpt axis = normal;
    unit.make_unit();
    axis.make_unit();
    if (fpt_equal(unit, axis)) {
        OMB_TRACE(1, "Cannot rotate vector around normal, pvec ~= pnormal.");
        return vector;
    }
    // A frame with the normal as Z: its X lies across the vector, so neither is empty.
    fpt across = cross(axis, unit);
    if (across.length() < tol) { // opposite to the normal: any X across it will do
        across = cross(axis, std::fabs(axis.x) < 0.9 ? fpt{1, 0, 0} : fpt{0, 1, 0});
    }
    cl_matrix to_world;
    cl_matrix to_frame;
    const fpt along = cross(axis, across);
    if (!to_world.create_from_vectors({}, across, along) ||
        !to_frame.create_from_vectors_inverse({}, across, along)) {
        return vector;
    }
    fpt local = to_frame.transform_vector(unit);
    for (double* component : {&local.x, &local.y, &local.z}) {
        *component = std::fabs(*component) < 1e-8 ? 0 : *component;
    }
    return to_world.transform_vector(cl_matrix::rotation_z(angle).transform_vector(local));
}
