// Faces of a shell's list, and the fan that stands for each.
#pragma once

#include <cstdint>
#include <span>

struct cl_shell_face {
    /// The list entries that the fan runs over.
    std::span<const std::int32_t> entries;
    /// More than three corners, or holes: the stream says so in a comment.
    bool fanned = false;
};

/// Takes the face that begins at `at` and moves `at` behind it and its holes. The number of entries
/// is that of the corners of the face and all its holes together, taken from the face's first
/// corner on: with holes the fan thus runs over the counts between them as if they were corners.
/// Kept, because readers of the stream know such faces. A list that ends early ends the face; a
/// count of 0 or a hole without a face is passed over.
inline cl_shell_face take_shell_face(std::span<const std::int32_t> list, std::size_t& at) {
    const std::int64_t corners = list[at];
    ++at;
    if (corners <= 0) {
        at += corners < 0 ? static_cast<std::size_t>(-corners) : 0;
        return {};
    }
    const std::size_t first = at;
    auto total = static_cast<std::size_t>(corners);
    at += total;
    bool holes = false;
    while (at < list.size() && list[at] < 0) {
        const auto size = static_cast<std::size_t>(-static_cast<std::int64_t>(list[at]));
        holes = true;
        total += size;
        at += size + 1;
    }
    if (first >= list.size()) {
        return {};
    }
    const std::size_t left = list.size() - first;
    return {list.subspan(first, total < left ? total : left), holes || corners != 3};
}

/// Calls `triangle` with (first, i, i + 1) for each triangle of the fan.
template <class Triangle>
void for_each_fan_triangle(std::span<const std::int32_t> entries, Triangle&& triangle) {
    for (std::size_t i = 1; i + 1 < entries.size(); ++i) {
        triangle(entries[0], entries[i], entries[i + 1]);
    }
}
