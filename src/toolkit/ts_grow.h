// Within the toolkit: what the growing of plants shares. Metres, Z up; a plant stands on the
// origin.
#pragma once

#include "toolkit/ts_plant.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace grow {

// ---- vectors ----

struct Vec {
    double x = 0, y = 0, z = 0;
};
inline Vec operator+(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec operator*(Vec a, double s) { return {a.x * s, a.y * s, a.z * s}; }
inline double Dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec Cross(Vec a, Vec b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(Vec a) { return std::sqrt(Dot(a, a)); }
inline Vec Mix(Vec a, Vec b, double share) { return a + (b - a) * share; }
Vec Unit(Vec v, Vec fall_back = {0, 0, 1});
Vec Across(Vec v);                       ///< any unit vector at right angles
Vec Off(Vec v, Vec axis, Vec fall_back); ///< unit part of v at right angles to a unit axis
/// Unit direction from azimuth and elevation, radians.
Vec Toward(double azimuth, double elevation);
inline double Lerp(double a, double b, double share) { return a + (b - a) * share; }

// ---- chance ----

/// The angle between neighbours in a spiral of leaves, as most plants set them.
inline constexpr double golden_angle = 2.3999632297286533;
inline constexpr double pi = 3.141592653589793;

std::uint64_t Hash(std::uint64_t value);

/// Numbers that are the same on every machine.
class Random {
public:
    /// Streams of one seed are independent: foliage may change and the branches stay.
    Random(std::uint32_t seed, std::uint32_t stream)
      : state(Hash((std::uint64_t(stream) << 32) + seed)) {}
    double Unit() { return static_cast<double>(Hash(state++) >> 11) * 0x1p-53; } ///< 0 to below 1
    double In(double from, double to) { return from + (to - from) * Unit(); }
    bool Chance(double share) { return Unit() < share; }
    Vec Ball(); ///< even within the unit ball

private:
    std::uint64_t state;
};

/// Smooth noise, about -1 to 1, with lumps of size 1.
double Noise(Vec p, std::uint32_t seed);

// ---- meshes ----

/// A place on a branch, blade or stem, with the radius or half width there.
struct PathPoint {
    Vec at;
    double size = 0;
};

/// Parts under construction.
class Mesh {
public:
    std::size_t Part(CTsPlantPart::Look look, const CTsColor& color); ///< a new one
    std::size_t Triangles() const { return triangles; }
    /// A branch with round normals; ends in a point when the last size is 0.
    void Tube(std::size_t part, const std::vector<PathPoint>& path, int sides);
    static std::size_t TubeTriangles(std::size_t points, bool pointed, int sides);
    /// A ribbon along a path, its half width beside the path; `normal` is its upper side at the
    /// start, `fold` raises the edges over the middle (share of the half width). Two triangles a
    /// step, four with a fold, half as many in the last step when it ends in a point.
    void Blade(std::size_t part, const std::vector<PathPoint>& path, Vec normal, double fold);
    /// A leaf from its foot along `axis`: a pointed oval, folded along its middle, its tip bent
    /// down by `bend` (share of the length). Of 1, 2, 4 or 6 triangles.
    void Leaf(std::size_t part, Vec foot, Vec axis, Vec normal, double length, double width,
              double bend, int triangle_count);
    /// Leaves out parts without triangles.
    CTsPlantShape Take();

private:
    std::uint32_t Vertex(CTsPlantPart& part, Vec position, Vec normal);
    void Triangle(CTsPlantPart& part, std::uint32_t a, std::uint32_t b, std::uint32_t c);
    std::vector<CTsPlantPart> parts;
    std::size_t triangles = 0;
};

/// Area of Mesh::Leaf of length and width 1.
double LeafArea(int triangle_count);

// ---- the task ----

/// What is grown, with everything that follows from season and detail.
struct Task {
    Task(const CTsPlantDefinition& plant, CTsSeason when, int how_fine, double density);

    const CTsPlantDefinition& d;
    CTsSeason season;
    int detail;         ///< 0 to 3
    std::size_t limit;  ///< triangles
    double leaf_amount; ///< factor on the area of leaves; 0 when bare
    double leaf_scale;  ///< factor on the length of leaves
    double blossom;     ///< 0, or the factor on the number of blossoms
    Mesh mesh;
    std::size_t bark, twig; ///< parts: trunk and boughs, thin branches
    std::size_t leaf[3];    ///< parts: usual, light, dark
    std::size_t flower[2];  ///< petals, and their middles

    bool Bare() const { return leaf_amount <= 0; }
    std::size_t Left() const { return limit > mesh.Triangles() ? limit - mesh.Triangles() : 0; }
    /// A leaf part; `light` -1 to 1 says how lit the leaf stands.
    std::size_t LeafPart(Random& random, double light) const;
};

/// How many leaves to draw, of how many triangles, how long.
struct LeafPlan {
    std::size_t count = 0;
    int triangle_count = 2;
    double length = 0, width = 0;
};
/// Shares `area` square metres of leaves out to as many leaves of the plant's own size as fit into
/// `triangles`; when they do not, there are fewer and larger ones.
LeafPlan PlanLeaves(const Task& task, double area, std::size_t triangles);

/// How many of `total` things fall to the `index`-th of `places`.
inline std::size_t ShareOf(std::size_t total, std::size_t index, std::size_t places) {
    return (index + 1) * total / places - index * total / places;
}

// ---- kinds ----

void GrowTree(Task& task);    ///< broadleaf trees, shrubs, and conifers with bare trunks
void GrowConifer(Task& task); ///< whorls about a straight trunk
void GrowColumn(Task& task);  ///< narrow conifers
void GrowGrass(Task& task);
void GrowFlower(Task& task);
void GrowPalm(Task& task);

/// A blossom at `foot`, open towards `axis`: petals about a middle. `closed` 0 flat to 1 a cup.
void AddBlossom(Task& task, Random& random, Vec foot, Vec axis, double radius, int petals,
                double closed);

} // namespace grow
