// The triangulation under construction, on the whole numbers of a grid.
#pragma once

#include "host/ge/triangulate.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ge {

constexpr int kGridBits = 26;
constexpr std::int64_t kGrid = std::int64_t{1} << kGridBits;

/// Grid coordinates. With the corners of the frame they span 3 * 2^26 < 2^28 steps, so that the
/// in-circle determinant stays below 2^116.
struct Cell {
    std::int64_t x = 0, y = 0;
    bool operator==(const Cell&) const = default;
};
/// What the segments on an edge come to: how many, and how many more run along than against it.
struct Bound {
    std::int32_t count = 0, wind = 0;
    Bound turned() const { return {count, -wind}; }
};

/// Edge i lies opposite corner i and runs from corner i + 1 to corner i + 2.
struct Triangle {
    std::array<std::int32_t, 3> corner{-1, -1, -1};
    std::array<std::int32_t, 3> next{-1, -1, -1};
    std::array<Bound, 3> bound;
};

/// An edge as seen from one of its triangles.
struct Side {
    std::int32_t triangle = -1;
    int edge = 0;
    bool found() const { return triangle >= 0; }
};

/// A segment, or a piece of one.
struct Piece {
    std::int32_t from = 0, to = 0;
    Bound bound;
};

class Builder {
public:
    /// Starts with a frame of four corners around the grid, at `first_corner` in `cells`.
    Builder(std::vector<Cell> cells, std::int32_t first_corner);
    /// Inserts a vertex, or returns the one that stands there already.
    std::int32_t insert(std::int32_t vertex);
    void constrain(const Piece& piece);
    /// Per triangle, whether it is inside.
    std::vector<bool> inside(FillRule rule) const;

    const std::vector<Triangle>& triangles() const { return triangles_; }
    const std::vector<Cell>& cells() const { return cells_; }
    bool crossed() const { return crossed_; }

private:
    struct Place {
        Side side;                ///< edge -1: inside the triangle
        std::int32_t vertex = -1; ///< stands exactly there
    };
    enum class Step { kDone, kAgain, kSplit };

    const Cell& at(std::int32_t vertex) const { return cells_[static_cast<std::size_t>(vertex)]; }
    Triangle& tri(std::int32_t i) { return triangles_[static_cast<std::size_t>(i)]; }
    const Triangle& tri(std::int32_t i) const { return triangles_[static_cast<std::size_t>(i)]; }
    Side across(const Side& side) const;
    Place locate(const Cell& cell, std::int32_t start) const;
    Place place_in(std::int32_t triangle, const Cell& cell) const;
    void fan(std::int32_t vertex, const Place& place);
    void restore(std::vector<std::int32_t>& open);
    void restore_edges(std::vector<std::array<std::int32_t, 2>>& open);
    void flip(const Side& side);
    void relink(std::int32_t triangle, int edge, std::int32_t next);
    Side find_edge(std::int32_t from, std::int32_t to) const;
    void mark(const Side& side, const Bound& bound);
    void clear(const Side& side);
    void insert_piece(const Piece& piece);
    Side first_crossed(const Piece& piece, std::int32_t& reached) const;
    bool collect(const Piece& piece, Side side, std::int32_t& reached,
                 std::vector<std::array<std::int32_t, 2>>& crossed);
    void cross(const Piece& piece, const Side& side);
    void flip_away(std::int32_t from, std::int32_t to,
                   std::vector<std::array<std::int32_t, 2>>& crossed);
    bool crosses(std::int32_t a, std::int32_t b, std::int32_t p, std::int32_t q) const;

    std::vector<Cell> cells_;
    std::vector<Triangle> triangles_;
    std::vector<std::int32_t> triangle_of_; ///< one of a vertex's triangles
    std::vector<Piece> pieces_;             ///< still to be inserted
    std::int32_t last_ = 0;
    std::size_t crossings_ = 0;
    bool crossed_ = false;
};

} // namespace ge
