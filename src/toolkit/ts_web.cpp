// Measured distributions of light and their packed form, see ts_light.h. The readers of photometric
// files are in ts_photometry.cpp.
#include "toolkit/ts_light.h"
#include "toolkit/ts_photometry.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;
constexpr double degree = pi / 180;
/// Angles are kept as 32-bit floats, whose pi is not the double's.
constexpr double angle_slack = 1e-6;

bool Ascends(const std::vector<float>& angles) {
    return std::is_sorted(angles.begin(), angles.end()) && angles.back() - angles.front() > 1e-5F;
}

/// Where a value lies in ascending angles: the interval's lower index and the share of its upper
/// end.
struct Place {
    std::size_t low = 0, high = 0;
    double share = 0;
};

Place Find(const std::vector<float>& angles, double value) {
    const auto above = std::upper_bound(angles.begin(), angles.end(), value);
    if (above == angles.begin()) {
        return {};
    }
    const auto high = static_cast<std::size_t>(above - angles.begin());
    if (high == angles.size()) {
        return {high - 1, high - 1, 0};
    }
    const double low_angle = angles[high - 1], high_angle = angles[high];
    return {high - 1, high, (value - low_angle) / (high_angle - low_angle)};
}

/// How far the measured horizontal angles reach; the rest follows by mirrors.
enum class Reach { point, quadrant, half, full };

Reach ReachOf(const std::vector<float>& horizontal) {
    const double last = horizontal.back();
    const auto is = [&](double angle) { return std::abs(last - angle) < 1e-3; };
    return horizontal.size() == 1 ? Reach::point
           : is(pi / 2)           ? Reach::quadrant
           : is(pi)               ? Reach::half
                                  : Reach::full;
}

/// Brings any horizontal angle to the measured ones.
double Folded(double angle, Reach reach) {
    angle -= 2 * pi * std::floor(angle / (2 * pi));
    if (reach == Reach::half || reach == Reach::quadrant) {
        angle = angle > pi ? 2 * pi - angle : angle;
    }
    if (reach == Reach::quadrant) {
        angle = angle > pi / 2 ? pi - angle : angle;
    }
    return angle;
}

/// The place of a horizontal angle; behind the last angle of a full turn the first comes again.
Place FindHorizontal(const std::vector<float>& horizontal, double angle) {
    const Reach reach = ReachOf(horizontal);
    if (reach == Reach::point) {
        return {};
    }
    angle = Folded(angle, reach);
    const double last = horizontal.back();
    const double gap = 2 * pi - last;
    if (reach == Reach::full && angle > last && gap > 1e-4) {
        return {horizontal.size() - 1, 0, (angle - last) / gap};
    }
    return Find(horizontal, angle);
}

} // namespace

bool CTsPhotometricWeb::Valid() const {
    const std::size_t h = m_Horizontal.size(), v = m_Vertical.size();
    if (h < 1 || v < 2 || h > angle_limit || v > angle_limit || h * v > value_limit ||
        m_Candela.size() != h * v) {
        return false;
    }
    const auto finite = [](const std::vector<float>& values) {
        return std::all_of(values.begin(), values.end(), [](float x) { return std::isfinite(x); });
    };
    const bool positive =
        std::none_of(m_Candela.begin(), m_Candela.end(), [](float x) { return x < 0; });
    const bool horizontal_fits = std::abs(m_Horizontal.front()) <= angle_slack &&
                                 (h == 1 || Ascends(m_Horizontal)) &&
                                 m_Horizontal.back() <= 2 * pi + angle_slack;
    return positive && finite(m_Horizontal) && finite(m_Vertical) && finite(m_Candela) &&
           horizontal_fits && Ascends(m_Vertical) && m_Vertical.front() >= -angle_slack &&
           m_Vertical.back() <= pi + angle_slack && m_Multiplier > 0 && std::isfinite(m_Multiplier);
}

double CTsPhotometricWeb::Candela(double vertical, double horizontal) const {
    if (m_Horizontal.empty() || m_Vertical.empty() ||
        m_Candela.size() != m_Horizontal.size() * m_Vertical.size() || !std::isfinite(vertical) ||
        !std::isfinite(horizontal) || vertical < m_Vertical.front() - angle_slack ||
        vertical > m_Vertical.back() + angle_slack) {
        return 0;
    }
    const Place v = Find(m_Vertical, vertical), h = FindHorizontal(m_Horizontal, horizontal);
    const auto row = [&](std::size_t index) {
        const float* values = m_Candela.data() + index * m_Horizontal.size();
        return values[h.low] + h.share * (double(values[h.high]) - values[h.low]);
    };
    const double low = row(v.low);
    return std::max(0.0, m_Multiplier * (low + v.share * (row(v.high) - low)));
}

double CTsPhotometricWeb::Flux() const {
    if (!Valid()) {
        return 0;
    }
    const std::size_t columns = m_Horizontal.size();
    // Mean over the turn, exact for what Candela interpolates.
    const auto mean = [&](std::size_t row) {
        const float* values = m_Candela.data() + row * columns;
        if (columns == 1) {
            return double(values[0]);
        }
        double sum = 0;
        for (std::size_t i = 1; i < columns; ++i) {
            sum += (double(values[i]) + values[i - 1]) / 2 *
                   (double(m_Horizontal[i]) - m_Horizontal[i - 1]);
        }
        double reach = m_Horizontal.back();
        if (ReachOf(m_Horizontal) == Reach::full && reach < 2 * pi) {
            sum += (double(values[0]) + values[columns - 1]) / 2 * (2 * pi - reach);
            reach = 2 * pi;
        }
        return sum / reach;
    };
    double flux = 0, below = mean(0);
    for (std::size_t row = 1; row < m_Vertical.size(); ++row) {
        const double a = m_Vertical[row - 1], b = m_Vertical[row], here = mean(row);
        if (b > a) { // the integral of a straight line times the sine
            const double slope = (here - below) / (b - a);
            flux += below * (std::cos(a) - std::cos(b)) +
                    slope * (std::sin(b) - std::sin(a) - (b - a) * std::cos(b));
        }
        below = here;
    }
    return std::max(0.0, 2 * pi * m_Multiplier * flux);
}

// ---- the packed block ----

namespace {

constexpr std::size_t block_head = 24; ///< bytes ahead of the angles

std::uint32_t Word(const std::vector<unsigned char>& bytes, std::size_t at) {
    return std::uint32_t(bytes[at]) | std::uint32_t(bytes[at + 1]) << 8 |
           std::uint32_t(bytes[at + 2]) << 16 | std::uint32_t(bytes[at + 3]) << 24;
}

void PutWord(std::vector<unsigned char>& bytes, std::uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<unsigned char>(word >> shift));
    }
}

/// Degrees of an angle that once was read from degrees: the short decimal number close by, if any.
float Degrees(float radians) {
    const double exact = radians / degree, rounded = std::round(exact * 1e4) / 1e4;
    return static_cast<float>(std::abs(exact - rounded) < 4e-5 ? rounded : exact);
}

} // namespace

bool CTsPhotometricWeb::ReadBlock(const std::vector<unsigned char>& bytes) {
    *this = {};
    if (bytes.empty()) {
        return true;
    }
    if (bytes.size() < block_head) {
        return false;
    }
    const std::uint64_t h = Word(bytes, 12), v = Word(bytes, 16);
    if (h < 1 || v < 1 || h > angle_limit || v > angle_limit || h * v > value_limit ||
        bytes.size() < block_head + 4 * (h + v + h * v)) {
        return false;
    }
    std::size_t at = block_head;
    const auto take = [&](std::uint64_t count) {
        std::vector<double> values(count);
        for (double& value : values) {
            value = std::bit_cast<float>(Word(bytes, at));
            at += 4;
        }
        return values;
    };
    TsMeasuredWeb measured;
    measured.horizontal = take(h);
    measured.vertical = take(v);
    measured.candela = take(h * v);
    m_Multiplier = std::bit_cast<float>(Word(bytes, 4));
    m_Symmetry = static_cast<std::int32_t>(Word(bytes, 20));
    return TsBuildWeb(measured, *this).empty();
}

std::vector<unsigned char> CTsPhotometricWeb::WriteBlock() const {
    std::vector<unsigned char> bytes;
    if (!Valid()) {
        return bytes;
    }
    PutWord(bytes, 0);
    PutWord(bytes, std::bit_cast<std::uint32_t>(m_Multiplier));
    PutWord(bytes, 0);
    PutWord(bytes, static_cast<std::uint32_t>(m_Horizontal.size()));
    PutWord(bytes, static_cast<std::uint32_t>(m_Vertical.size()));
    PutWord(bytes, static_cast<std::uint32_t>(m_Symmetry));
    for (const std::vector<float>* angles : {&m_Horizontal, &m_Vertical}) {
        for (const float angle : *angles) {
            PutWord(bytes, std::bit_cast<std::uint32_t>(Degrees(angle)));
        }
    }
    for (const float value : m_Candela) {
        PutWord(bytes, std::bit_cast<std::uint32_t>(value));
    }
    return bytes;
}
