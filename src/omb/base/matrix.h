// `cl_matrix`: a 4 by 4 transform in row order. Points are column vectors: the axes of a frame
// stand in columns 0 to 2, its origin in column 3.
#pragma once

#include "omb/base/math.h"

#include <array>
#include <string>
#include <string_view>

class cl_matrix {
public:
    cl_matrix(); ///< the identity

    double& at(int row, int column) { return values[index(row, column)]; }
    double at(int row, int column) const { return values[index(row, column)]; }
    bool operator==(const cl_matrix&) const = default;

    /// The frame with the given origin, X axis along `x`, and `y` fixing the plane. False, with the
    /// matrix unchanged and a message at trace level `report_level`, when a vector is zero or both
    /// are co-linear.
    bool create_from_vectors(const fpt& origin, const fpt& x, const fpt& y, int report_level = 1);
    bool create_from_vectors(const fpt32& origin, const fpt32& x, const fpt32& y,
                             int report_level = 1);
    /// The inverse of that frame's transform: world to frame.
    bool create_from_vectors_inverse(const fpt& origin, const fpt& x, const fpt& y,
                                     int report_level = 1);
    bool create_from_vectors_inverse(const fpt32& origin, const fpt32& x, const fpt32& y,
                                     int report_level = 1);

    static cl_matrix translation(const fpt& offset);
    static cl_matrix scaling(const fpt& factors);
    static cl_matrix rotation_x(double radians);
    static cl_matrix rotation_y(double radians);
    static cl_matrix rotation_z(double radians);

    cl_matrix operator*(const cl_matrix& right) const; ///< applies `right` first
    double determinant() const;
    /// Inverse into `result`; false, with `result` untouched, when the matrix has none.
    bool invert(cl_matrix& result) const;

    fpt transform_point(const fpt& p) const;  ///< with the fourth column
    fpt transform_vector(const fpt& v) const; ///< without it

    /// Four rows "\t%.4g %.4g %.4g %.4g" with line feeds between them.
    std::string to_text() const;
    /// Reads 16 numbers after dropping brackets and commas. False, unchanged, when fewer stand
    /// there.
    bool from_text(std::string_view text);

private:
    static std::size_t index(int row, int column) {
        return 4 * static_cast<std::size_t>(row) + static_cast<std::size_t>(column);
    }
    bool frame_axes(const fpt& x, const fpt& y, bool inverse, int report_level, fpt axes[3]) const;

    std::array<double, 16> values;
};

/// `vector` turned by `angle` (radians, right-handed) about `normal`, with its length made 1.
/// When both point the same way: reported, and the input comes back as it was.
fpt rotz_around_normal(const fpt& vector, double angle, const fpt& normal);
