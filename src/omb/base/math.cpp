// Points and vectors, see math.h.
#include "omb/base/math.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"

#include <algorithm>
#include <cmath>

double fpt::length() const { return std::sqrt(x * x + y * y + z * z); }

bool fpt::make_unit() {
    const double size = length();
    if (size == 0) {
        return false;
    }
    x /= size, y /= size, z /= size;
    return true;
}

float fpt32::length() const { return std::sqrt(x * x + y * y + z * z); }

bool fpt32::make_unit() {
    const float size = length();
    if (size == 0) {
        OMB_TRACE(1, "fpt32::make_unit: zero vector");
        return false;
    }
    x /= size, y /= size, z /= size;
    return true;
}

bool number_equal(double a, double b, double tolerance) {
    // Room for the rounding at the bound, a few parts in 1e8 as the two magnitudes differ there.
    constexpr double inside = 1 - 2e-8;
    const double difference = std::fabs(a - b);
    return difference < tolerance ||
           difference < std::max(std::fabs(a), std::fabs(b)) * tolerance * 0.1 * inside;
}

bool fpt_equal(const fpt& a, const fpt& b, double tolerance) {
    return number_equal(a.x, b.x, tolerance) && number_equal(a.y, b.y, tolerance) &&
           number_equal(a.z, b.z, tolerance);
}

std::string fpt_to_text(const fpt& point) {
    return fmt::sprintf("(%.9g, %.9g, %.9g)", snap_to_zero(point.x), snap_to_zero(point.y),
                        snap_to_zero(point.z));
}

fpt parse_point(std::string_view text) {
    double values[3] = {};
    char ahead = '(';
    for (double& value : values) {
        if (text.empty() || text.front() != ahead) {
            return {};
        }
        text.remove_prefix(1);
        if (!omb::take_double(text, value)) {
            return {};
        }
        ahead = ',';
    }
    return {values[0], values[1], values[2]};
}

fpt parse_point_loose(std::string_view text) {
    text = omb::trim(text);
    for (const char c : {'V', '('}) {
        if (!text.empty() && text.front() == c) {
            text = omb::trim(text.substr(1));
        }
    }
    double values[3] = {};
    const std::vector<std::string_view> pieces = omb::split(text, ',');
    for (std::size_t i = 0; i < std::min<std::size_t>(3, pieces.size()); ++i) {
        values[i] = omb::parse_double(pieces[i]);
    }
    return {values[0], values[1], values[2]};
}
