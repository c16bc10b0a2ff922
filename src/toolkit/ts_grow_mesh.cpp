// Vectors, chance and meshes of growing plants, see ts_grow.h.
#include "toolkit/ts_grow.h"

#include <algorithm>

namespace grow {

// ---- vectors ----

Vec Unit(Vec v, Vec fall_back) {
    const double length = Length(v);
    return length > 1e-12 ? v * (1 / length) : fall_back;
}

Vec Across(Vec v) {
    return std::abs(v.z) < 0.9 * Length(v) ? Unit(Cross({0, 0, 1}, v)) : Unit(Cross({0, 1, 0}, v));
}

Vec Off(Vec v, Vec axis, Vec fall_back) {
    const Vec off = v - axis * Dot(v, axis);
    if (Length(off) > 1e-6) {
        return Unit(off);
    }
    const Vec second = fall_back - axis * Dot(fall_back, axis);
    return Length(second) > 1e-6 ? Unit(second) : Across(axis);
}

Vec Toward(double azimuth, double elevation) {
    return {std::cos(azimuth) * std::cos(elevation), std::sin(azimuth) * std::cos(elevation),
            std::sin(elevation)};
}

// ---- chance ----

/// The finaliser of SplitMix64 (G. Steele, D. Lea, C. Flood, OOPSLA 2014).
std::uint64_t Hash(std::uint64_t value) {
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

Vec Random::Ball() {
    for (;;) {
        const Vec v{In(-1, 1), In(-1, 1), In(-1, 1)};
        if (Dot(v, v) <= 1) {
            return v;
        }
    }
}

namespace {

double Corner(std::int64_t x, std::int64_t y, std::int64_t z, std::uint32_t seed) {
    const std::uint64_t mixed = static_cast<std::uint64_t>(x) * 73856093U ^
                                static_cast<std::uint64_t>(y) * 19349663U ^
                                static_cast<std::uint64_t>(z) * 83492791U;
    return static_cast<double>(Hash(mixed + seed) >> 11) * 0x1p-52 - 1;
}

} // namespace

double Noise(Vec p, std::uint32_t seed) {
    const double cell[3] = {std::floor(p.x), std::floor(p.y), std::floor(p.z)};
    const auto smooth = [](double t) { return t * t * (3 - 2 * t); };
    const double u = smooth(p.x - cell[0]), v = smooth(p.y - cell[1]), w = smooth(p.z - cell[2]);
    const auto x = static_cast<std::int64_t>(cell[0]), y = static_cast<std::int64_t>(cell[1]),
               z = static_cast<std::int64_t>(cell[2]);
    const auto row = [&](int dy, int dz) {
        return Lerp(Corner(x, y + dy, z + dz, seed), Corner(x + 1, y + dy, z + dz, seed), u);
    };
    return Lerp(Lerp(row(0, 0), row(1, 0), v), Lerp(row(0, 1), row(1, 1), v), w);
}

// ---- meshes ----

std::size_t Mesh::Part(CTsPlantPart::Look look, const CTsColor& color) {
    CTsPlantPart& part = parts.emplace_back();
    part.look = look;
    part.color = {std::clamp(color.r, 0.0, 1.0), std::clamp(color.g, 0.0, 1.0),
                  std::clamp(color.b, 0.0, 1.0)};
    return parts.size() - 1;
}

std::uint32_t Mesh::Vertex(CTsPlantPart& part, Vec position, Vec normal) {
    const auto index = static_cast<std::uint32_t>(part.positions.size() / 3);
    for (const double value : {position.x, position.y, position.z}) {
        part.positions.push_back(static_cast<float>(value));
    }
    for (const double value : {normal.x, normal.y, normal.z}) {
        part.normals.push_back(static_cast<float>(value));
    }
    return index;
}

void Mesh::Triangle(CTsPlantPart& part, std::uint32_t a, std::uint32_t b, std::uint32_t c) {
    part.triangles.insert(part.triangles.end(), {a, b, c});
    ++triangles;
}

std::size_t Mesh::TubeTriangles(std::size_t points, bool pointed, int sides) {
    const std::size_t steps = points < 2 ? 0 : points - 1;
    return static_cast<std::size_t>(sides) * (2 * steps - (pointed && steps > 0 ? 1 : 0));
}

void Mesh::Tube(std::size_t part_index, const std::vector<PathPoint>& path, int sides) {
    if (path.size() < 2) {
        return;
    }
    CTsPlantPart& part = parts[part_index];
    const auto count = static_cast<std::uint32_t>(sides);
    Vec side = Across(path[1].at - path[0].at);
    std::uint32_t before = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const Vec from = path[i == 0 ? 0 : i - 1].at,
                  to = path[std::min(i + 1, path.size() - 1)].at;
        const Vec axis = Unit(to - from);
        side = Off(side, axis, {1, 0, 0}); // carried along, so that the tube does not twist
        const Vec other = Cross(axis, side);
        const bool last = i + 1 == path.size();
        if (last && path[i].size <= 0) {
            const std::uint32_t tip = Vertex(part, path[i].at, axis);
            for (std::uint32_t s = 0; s < count; ++s) {
                Triangle(part, before + s, before + (s + 1) % count, tip);
            }
            return;
        }
        const auto ring = static_cast<std::uint32_t>(part.positions.size() / 3);
        for (int s = 0; s < sides; ++s) {
            const double turn = 2 * pi * s / sides;
            const Vec out = side * std::cos(turn) + other * std::sin(turn);
            Vertex(part, path[i].at + out * path[i].size, out);
        }
        for (std::uint32_t s = 0; i > 0 && s < count; ++s) {
            const std::uint32_t next = (s + 1) % count;
            Triangle(part, before + s, before + next, ring + s);
            Triangle(part, before + next, ring + next, ring + s);
        }
        before = ring;
    }
}

void Mesh::Blade(std::size_t part_index, const std::vector<PathPoint>& path, Vec normal,
                 double fold) {
    if (path.size() < 2) {
        return;
    }
    CTsPlantPart& part = parts[part_index];
    const std::uint32_t across = fold != 0 ? 3 : 2;
    std::uint32_t before = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const Vec axis =
            Unit(path[std::min(i + 1, path.size() - 1)].at - path[i == 0 ? 0 : i - 1].at);
        normal = Off(normal, axis, {0, 0, 1});
        const Vec side = Cross(axis, normal);
        const double half = path[i].size;
        if (half <= 0 && i + 1 == path.size()) {
            const std::uint32_t tip = Vertex(part, path[i].at, normal);
            for (std::uint32_t s = 0; s + 1 < across; ++s) {
                Triangle(part, before + s, before + s + 1, tip);
            }
            return;
        }
        const Vec raised = normal * (fold * half);
        const auto row = static_cast<std::uint32_t>(part.positions.size() / 3);
        Vertex(part, path[i].at - side * half + raised, Unit(normal + side * fold));
        if (across == 3) {
            Vertex(part, path[i].at, normal);
        }
        Vertex(part, path[i].at + side * half + raised, Unit(normal - side * fold));
        for (std::uint32_t s = 0; i > 0 && s + 1 < across; ++s) {
            Triangle(part, before + s, before + s + 1, row + s);
            Triangle(part, before + s + 1, row + s + 1, row + s);
        }
        before = row;
    }
}

namespace {

/// Half outlines of leaves between foot and tip: share of the length, share of the half width.
struct Outline {
    int points;
    double at[2], half[2];
    double area; ///< of the whole leaf
};

const Outline& OutlineOf(int triangle_count) {
    static constexpr Outline diamond{1, {0.42, 0}, {1, 0}, 0.5};
    static constexpr Outline oval{2, {0.25, 0.62}, {0.86, 0.9}, 0.6031};
    return triangle_count >= 4 ? oval : diamond;
}

} // namespace

double LeafArea(int triangle_count) {
    return triangle_count == 1 ? 0.5 : OutlineOf(triangle_count).area;
}

void Mesh::Leaf(std::size_t part_index, Vec foot, Vec axis, Vec normal, double length, double width,
                double bend, int triangle_count) {
    CTsPlantPart& part = parts[part_index];
    axis = Unit(axis);
    normal = Off(normal, axis, {0, 0, 1});
    const Vec side = Cross(axis, normal);
    const double half = width / 2, fold = 0.35;
    const Vec tip = foot + axis * length - normal * (bend * length);
    if (triangle_count == 1) {
        const std::uint32_t a = Vertex(part, foot - side * half, normal);
        Vertex(part, foot + side * half, normal);
        Vertex(part, tip, normal);
        Triangle(part, a, a + 1, a + 2);
        return;
    }
    const Outline& outline = OutlineOf(triangle_count);
    const Vec tip_normal = Unit(normal + axis * bend);
    const std::uint32_t first = Vertex(part, foot, normal);
    Vertex(part, tip, tip_normal);
    const bool ribbed = triangle_count >= 6; // a point on the middle rib lets the leaf curve
    if (ribbed) {
        Vertex(part, foot + axis * (0.5 * length) + normal * (0.04 * length), normal);
    }
    for (const double sign : {-1.0, 1.0}) {
        std::uint32_t edge[2] = {};
        for (int i = 0; i < outline.points; ++i) {
            const double along = outline.at[i], off = outline.half[i] * half;
            edge[i] = Vertex(part,
                             foot + axis * (along * length) + side * (sign * off) +
                                 normal * (fold * off - bend * along * along * length),
                             Unit(normal - side * (sign * fold)));
        }
        const auto put = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
            sign > 0 ? Triangle(part, a, b, c) : Triangle(part, a, c, b);
        };
        if (outline.points == 1) {
            put(first, edge[0], first + 1);
        } else if (ribbed) {
            put(first, edge[0], first + 2);
            put(edge[0], edge[1], first + 2);
            put(edge[1], first + 1, first + 2);
        } else {
            put(first, edge[0], edge[1]);
            put(first, edge[1], first + 1);
        }
    }
}

CTsPlantShape Mesh::Take() {
    CTsPlantShape shape;
    for (CTsPlantPart& part : parts) {
        if (!part.triangles.empty()) {
            shape.parts.push_back(std::move(part));
        }
    }
    parts.clear();
    triangles = 0;
    return shape;
}

} // namespace grow
