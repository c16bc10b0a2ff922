// Rotations, mirrors, one scale for all axes and a shift: what leads from one copy of a shape to
// another, and how it is found from their points.
#pragma once

#include "KestraBatch/record_fields.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace KestraBatch {

struct Similarity {
    /// Rows; an orthonormal matrix, with determinant -1 for a mirror.
    std::array<std::array<double, 3>, 3> turn{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    double scale = 1;
    Triple shift;

    Triple direction(const Triple& v) const; ///< turned only
    Triple point(const Triple& p) const;
    bool is_identity() const;
    bool operator==(const Similarity&) const;
};

/// First `inner`, then `outer`.
Similarity operator*(const Similarity& outer, const Similarity& inner);
Similarity inverse(const Similarity& place);

/// Runs of one array of points, taken one behind the other.
struct PointRuns {
    const std::vector<Triple>* points = nullptr;
    struct Run {
        std::size_t first = 0, count = 0;
    };
    std::vector<Run> runs;

    std::size_t size() const;
    const Triple& operator[](std::size_t i) const; ///< takes time by the number of runs
    void add(std::size_t first, std::size_t count);
};

/// For each axis, the step between neighbouring numbers of nine digits at the largest coordinate
/// of the box: twice what writing may have changed there. 0 where all is at 0.
Triple digit_steps(const Triple& low, const Triple& high);

/// Three points that span a shape best: far apart and far from one line.
struct Anchors {
    std::array<std::size_t, 3> index{};
    double length = 0; ///< from the first to the second
    double width = 0;  ///< from their line to the third
};
/// Nothing for points that lie in one line, or are too near to each other for their digits.
std::optional<Anchors> find_anchors(const PointRuns& points, const Triple& steps);

/// How far apart a copy and its prototype may be along each axis and still count as one: so many
/// steps of nine digits at the copy, and at the prototype in the copy's turn and scale. Rounding
/// alone makes up to half of each; the rest is for the transform, which is found from rounded
/// points.
inline constexpr double most_steps_apart = 2;

/// A transform that leads every point of `from` to its fellow in `to` within the tolerance of
/// `most_steps_apart`, mirrored or not. Both have as many points; the anchors are those of `from`,
/// the steps of either. Identity, exactly, for equal points.
std::optional<Similarity> find_similarity(const PointRuns& from, const Anchors& anchors,
                                          const Triple& from_steps, const PointRuns& to,
                                          const Triple& to_steps, bool mirrored);

/// Whether `place` leads every point of `from` to its fellow in `to` within the tolerance of each
/// axis.
bool leads(const Similarity& place, const PointRuns& from, const PointRuns& to,
           const Triple& tolerance);

/// The tolerance for points that went through `place`, along each axis of `to`.
Triple tolerance_of(const Similarity& place, const Triple& from_steps, const Triple& to_steps);

} // namespace KestraBatch
