// Finding a transform: three points give it, all points better it and have the last word.
#include "KestraBatch/similarity.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace KestraBatch {

namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

constexpr double least_scale = 1e-4, largest_scale = 1e4;

Triple operator+(const Triple& a, const Triple& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Triple operator-(const Triple& a, const Triple& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Triple operator*(const Triple& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
double dot(const Triple& a, const Triple& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Triple cross(const Triple& a, const Triple& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double length(const Triple& a) { return std::sqrt(dot(a, a)); }
double largest(const Triple& a) { return std::max({std::abs(a.x), std::abs(a.y), std::abs(a.z)}); }

Triple times(const Matrix& m, const Triple& v) {
    const auto row = [&](std::size_t i) { return m[i][0] * v.x + m[i][1] * v.y + m[i][2] * v.z; };
    return {row(0), row(1), row(2)};
}

Matrix times(const Matrix& a, const Matrix& b) {
    Matrix out{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            out[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
        }
    }
    return out;
}

Matrix transposed(const Matrix& m) {
    return {
        {{m[0][0], m[1][0], m[2][0]}, {m[0][1], m[1][1], m[2][1]}, {m[0][2], m[1][2], m[2][2]}}};
}

/// Columns: along the first two of three points, across, and out of their plane.
Matrix frame_of(const Triple& a, const Triple& b, const Triple& c, bool mirrored) {
    Triple x = b - a;
    x = x * (1 / length(x));
    Triple y = (c - a) - x * dot(c - a, x);
    y = y * (1 / length(y));
    const Triple z = mirrored ? cross(y, x) : cross(x, y);
    return {{{x.x, y.x, z.x}, {x.y, y.y, z.y}, {x.z, y.z, z.z}}};
}

/// Calls `visit(p, q)` for all pairs until one answers false; whether none did.
template <class Visit>
bool for_all_pairs(const PointRuns& from, const PointRuns& to, const Visit& visit) {
    std::size_t run = 0, at = 0;
    for (const PointRuns::Run& f : from.runs) {
        const Triple* p = from.points->data() + f.first;
        for (std::size_t i = 0; i < f.count; ++i, ++at) {
            while (run < to.runs.size() && at == to.runs[run].count) {
                ++run;
                at = 0;
            }
            if (run == to.runs.size() || !visit(p[i], (*to.points)[to.runs[run].first + at])) {
                return false;
            }
        }
    }
    return true;
}

/// The rotation by a small angle about an axis, as one vector (Rodrigues).
Matrix small_rotation(const Triple& w) {
    const double angle = length(w);
    if (!(angle > 0)) {
        return Similarity().turn;
    }
    const Triple k = w * (1 / angle);
    const double s = std::sin(angle), c = std::cos(angle), d = 1 - c;
    return {{{c + k.x * k.x * d, k.x * k.y * d - k.z * s, k.x * k.z * d + k.y * s},
             {k.y * k.x * d + k.z * s, c + k.y * k.y * d, k.y * k.z * d - k.x * s},
             {k.z * k.x * d - k.y * s, k.z * k.y * d + k.x * s, c + k.z * k.z * d}}};
}

constexpr std::size_t unknowns = 7; ///< turn about three axes, scale, shift along three axes
using Row = std::array<double, unknowns>;

/// Symmetric equations of least squares, weighted.
struct Equations {
    std::array<Row, unknowns> left{};
    Row right{};

    void add(const Row& row, double value, double weight) {
        for (std::size_t i = 0; i < unknowns; ++i) {
            if (row[i] == 0) {
                continue;
            }
            const double w = weight * row[i];
            right[i] += w * value;
            for (std::size_t j = 0; j <= i; ++j) {
                left[i][j] += w * row[j];
            }
        }
    }

    /// By the decomposition of Cholesky; what is hardly determined stays near 0.
    Row solution() {
        for (std::size_t i = 0; i < unknowns; ++i) {
            left[i][i] = left[i][i] * (1 + 1e-12) + 1e-300;
        }
        for (std::size_t i = 0; i < unknowns; ++i) {
            for (std::size_t j = 0; j <= i; ++j) {
                double sum = left[i][j];
                for (std::size_t k = 0; k < j; ++k) {
                    sum -= left[i][k] * left[j][k];
                }
                left[i][j] = i == j ? std::sqrt(std::max(sum, 1e-15 * left[i][i] + 1e-300))
                                    : sum / left[j][j];
            }
        }
        Row x = right;
        for (std::size_t i = 0; i < unknowns; ++i) {
            for (std::size_t k = 0; k < i; ++k) {
                x[i] -= left[i][k] * x[k];
            }
            x[i] /= left[i][i];
        }
        for (std::size_t i = unknowns; i-- > 0;) {
            for (std::size_t k = i + 1; k < unknowns; ++k) {
                x[i] -= left[k][i] * x[k];
            }
            x[i] /= left[i][i];
        }
        return x;
    }
};

using Pairs = std::vector<std::pair<Triple, Triple>>;

/// Points all over the shape that are enough to better a transform by.
Pairs sample_pairs(const PointRuns& from, const PointRuns& to) {
    constexpr std::size_t most = 48;
    const std::size_t stride = std::max<std::size_t>(1, from.size() / most);
    Pairs pairs;
    std::size_t index = 0;
    for_all_pairs(from, to, [&](const Triple& p, const Triple& q) {
        if (index++ % stride == 0) {
            pairs.emplace_back(p, q);
        }
        return true;
    });
    return pairs;
}

/// One step of least squares: a small turn, scale and shift that take away what is left over. Axes
/// count by their digits: a floor near height 0 keeps its height while the places far to the east
/// are coarse.
Similarity bettered(const Similarity& place, const Pairs& pairs, const Triple& tolerance) {
    Triple centre;
    for (const auto& pair : pairs) {
        centre = centre + place.point(pair.first);
    }
    centre = centre * (1 / static_cast<double>(pairs.size()));
    const auto weight = [](double t) { return t > 0 ? 1 / (t * t) : 0; };
    const std::array<double, 3> weights{weight(tolerance.x), weight(tolerance.y),
                                        weight(tolerance.z)};
    Equations equations;
    for (const auto& [p, q] : pairs) {
        const Triple at = place.point(p), y = at - centre, r = q - at;
        equations.add({0, y.z, -y.y, y.x, 1, 0, 0}, r.x, weights[0]);
        equations.add({-y.z, 0, y.x, y.y, 0, 1, 0}, r.y, weights[1]);
        equations.add({y.y, -y.x, 0, y.z, 0, 0, 1}, r.z, weights[2]);
    }
    const Row x = equations.solution();
    const Matrix turn = small_rotation({x[0], x[1], x[2]});
    Similarity better;
    better.turn = times(turn, place.turn);
    better.scale = place.scale * (1 + x[3]);
    better.shift =
        centre + Triple{x[4], x[5], x[6]} + times(turn, place.shift - centre) * (1 + x[3]);
    return better;
}

} // namespace

bool leads(const Similarity& place, const PointRuns& from, const PointRuns& to,
           const Triple& tolerance) {
    return for_all_pairs(from, to, [&](const Triple& p, const Triple& q) {
        const Triple off = place.point(p) - q;
        return std::abs(off.x) <= tolerance.x && std::abs(off.y) <= tolerance.y &&
               std::abs(off.z) <= tolerance.z;
    });
}

Triple Similarity::direction(const Triple& v) const { return times(turn, v); }

Triple Similarity::point(const Triple& p) const { return times(turn, p) * scale + shift; }

bool Similarity::operator==(const Similarity& other) const {
    return turn == other.turn && scale == other.scale && shift.x == other.shift.x &&
           shift.y == other.shift.y && shift.z == other.shift.z;
}

bool Similarity::is_identity() const { return *this == Similarity(); }

Similarity operator*(const Similarity& outer, const Similarity& inner) {
    Similarity both;
    both.turn = times(outer.turn, inner.turn);
    both.scale = outer.scale * inner.scale;
    both.shift = outer.point(inner.shift);
    return both;
}

Similarity inverse(const Similarity& place) {
    Similarity back;
    back.turn = transposed(place.turn);
    back.scale = 1 / place.scale;
    back.shift = times(back.turn, place.shift) * -back.scale;
    return back;
}

std::size_t PointRuns::size() const {
    std::size_t sum = 0;
    for (const Run& run : runs) {
        sum += run.count;
    }
    return sum;
}

const Triple& PointRuns::operator[](std::size_t i) const {
    std::size_t run = 0;
    while (i >= runs[run].count) {
        i -= runs[run++].count;
    }
    return (*points)[runs[run].first + i];
}

void PointRuns::add(std::size_t first, std::size_t count) {
    if (!runs.empty() && runs.back().first + runs.back().count == first) {
        runs.back().count += count;
    } else if (count > 0) {
        runs.push_back({first, count});
    }
}

Triple digit_steps(const Triple& low, const Triple& high) {
    const auto step = [](double a, double b) {
        const double most = std::max(std::abs(a), std::abs(b));
        return most > 0 ? std::pow(10.0, std::floor(std::log10(most)) - 8) : 0;
    };
    return {step(low.x, high.x), step(low.y, high.y), step(low.z, high.z)};
}

std::optional<Anchors> find_anchors(const PointRuns& points, const Triple& steps) {
    Anchors found;
    if (points.size() < 3) {
        return std::nullopt;
    }
    const Triple a = points[0];
    Triple along;
    std::size_t index = 0;
    const auto visit_all = [&](const auto& visit) {
        index = 0;
        for (const PointRuns::Run& run : points.runs) {
            for (std::size_t i = 0; i < run.count; ++i, ++index) {
                visit((*points.points)[run.first + i]);
            }
        }
    };
    visit_all([&](const Triple& p) {
        if (const double far = length(p - a); far > found.length) {
            found.length = far;
            found.index[1] = index;
            along = p - a;
        }
    });
    if (!(found.length > 0)) {
        return std::nullopt;
    }
    along = along * (1 / found.length);
    visit_all([&](const Triple& p) {
        if (const double far = length(cross(p - a, along)); far > found.width) {
            found.width = far;
            found.index[2] = index;
        }
    });
    // what is hardly wider than its digits has no frame worth the name
    if (!(found.width > 1e-6 * found.length) || !(found.width > 20 * largest(steps))) {
        return std::nullopt;
    }
    return found;
}

Triple tolerance_of(const Similarity& place, const Triple& from_steps, const Triple& to_steps) {
    const Matrix& m = place.turn;
    const auto along = [&](std::size_t i, double to_step) {
        return to_step +
               place.scale * (std::abs(m[i][0]) * from_steps.x + std::abs(m[i][1]) * from_steps.y +
                              std::abs(m[i][2]) * from_steps.z);
    };
    const Triple steps{along(0, to_steps.x), along(1, to_steps.y), along(2, to_steps.z)};
    const double floor = 1e-4 * largest(steps); // the transform can be no better than that
    return Triple{std::max(steps.x, floor), std::max(steps.y, floor), std::max(steps.z, floor)} *
           most_steps_apart;
}

std::optional<Similarity> find_similarity(const PointRuns& from, const Anchors& anchors,
                                          const Triple& from_steps, const PointRuns& to,
                                          const Triple& to_steps, bool mirrored) {
    if (!mirrored && leads({}, from, to, {})) {
        return Similarity();
    }
    const auto& [ia, ib, ic] = anchors.index;
    const Triple a = to[ia], b = to[ib], c = to[ic];
    const double along = length(b - a), across = length(cross(c - a, b - a)) / along;
    Similarity place;
    place.scale = along / anchors.length;
    if (!(place.scale > least_scale) || !(place.scale < largest_scale) || !(across > 0)) {
        return std::nullopt;
    }
    place.turn = times(frame_of(a, b, c, mirrored),
                       transposed(frame_of(from[ia], from[ib], from[ic], false)));
    place.shift = a - times(place.turn, from[ia]) * place.scale;
    const Triple tolerance = tolerance_of(place, from_steps, to_steps);
    const double rough = 4 * largest(tolerance);
    if (!(std::abs(across - anchors.width * place.scale) <= rough) ||
        !leads(place, from, to, {rough, rough, rough})) {
        return std::nullopt;
    }
    constexpr int most_rounds = 4;
    Pairs pairs;
    for (int round = 0; !leads(place, from, to, tolerance); ++round) {
        if (round == most_rounds) {
            return std::nullopt;
        }
        if (pairs.empty()) {
            pairs = sample_pairs(from, to);
        }
        place = bettered(place, pairs, tolerance);
    }
    return place;
}

} // namespace KestraBatch
