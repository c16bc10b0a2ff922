// The bodies of the samples.
#include "apps/make_samples/mesh.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace make_samples {

int Mesh::add(const Point& p) {
    points.push_back(p);
    return static_cast<int>(points.size()) - 1;
}

void Mesh::quad(const Point& a, const Point& b, const Point& c, const Point& d) {
    const int first = add(a);
    add(b);
    add(c);
    add(d);
    face({first, first + 1, first + 2, first + 3});
}

Mesh& Mesh::append(const Mesh& other) {
    const int offset = static_cast<int>(points.size());
    points.insert(points.end(), other.points.begin(), other.points.end());
    for (std::vector<int> corners : other.faces) {
        for (int& corner : corners) {
            corner += offset;
        }
        faces.push_back(std::move(corners));
    }
    return *this;
}

Mesh& Mesh::bend(const std::function<Point(const Point&)>& map) {
    for (Point& p : points) {
        p = map(p);
    }
    return *this;
}

Mesh& Mesh::move(double x, double y, double z) {
    return bend([=](const Point& p) { return Point{p.x + x, p.y + y, p.z + z}; });
}

Mesh& Mesh::stretch(double x, double y, double z) {
    if (x * y * z < 0) {
        for (std::vector<int>& corners : faces) {
            std::reverse(corners.begin(), corners.end());
        }
    }
    return bend([=](const Point& p) { return Point{p.x * x, p.y * y, p.z * z}; });
}

Mesh& Mesh::turn(double degrees) {
    const double c = std::cos(radians(degrees)), s = std::sin(radians(degrees));
    return bend([=](const Point& p) { return Point{c * p.x - s * p.y, s * p.x + c * p.y, p.z}; });
}

Mesh& Mesh::tilt(double degrees) {
    const double c = std::cos(radians(degrees)), s = std::sin(radians(degrees));
    return bend([=](const Point& p) { return Point{p.x, c * p.y - s * p.z, s * p.y + c * p.z}; });
}

Mesh& Mesh::lean(double degrees) {
    const double c = std::cos(radians(degrees)), s = std::sin(radians(degrees));
    return bend([=](const Point& p) { return Point{c * p.x + s * p.z, p.y, c * p.z - s * p.x}; });
}

std::size_t Mesh::triangles() const {
    std::size_t count = 0;
    for (const std::vector<int>& corners : faces) {
        count += corners.size() - 2;
    }
    return count;
}

Mesh box(const Point& low, const Point& high) {
    return lattice({low.x, high.x}, {low.y, high.y}, {low.z, high.z});
}

Mesh block(double width, double depth, double height) {
    return box({-width / 2, -depth / 2, 0}, {width / 2, depth / 2, height});
}

namespace {

/// Adds the two sides of a lattice that lie across one axis. `order` names the axis across, then
/// the two along, so that they form a right-handed frame.
void add_sides(Mesh& mesh, std::map<std::tuple<int, int, int>, int>& known,
               const std::array<const std::vector<double>*, 3>& axes, std::array<int, 3> order) {
    const auto corner = [&](int across, int u, int v) {
        std::array<int, 3> at{};
        at[order[0]] = across;
        at[order[1]] = u;
        at[order[2]] = v;
        const auto [entry, fresh] = known.try_emplace({at[0], at[1], at[2]}, 0);
        if (fresh) {
            entry->second = mesh.add({(*axes[0])[at[0]], (*axes[1])[at[1]], (*axes[2])[at[2]]});
        }
        return entry->second;
    };
    const int last = static_cast<int>(axes[order[0]]->size()) - 1;
    const int us = static_cast<int>(axes[order[1]]->size()) - 1;
    const int vs = static_cast<int>(axes[order[2]]->size()) - 1;
    for (int u = 0; u < us; ++u) {
        for (int v = 0; v < vs; ++v) {
            mesh.face({corner(last, u, v), corner(last, u + 1, v), corner(last, u + 1, v + 1),
                       corner(last, u, v + 1)});
            mesh.face({corner(0, u, v), corner(0, u, v + 1), corner(0, u + 1, v + 1),
                       corner(0, u + 1, v)});
        }
    }
}

} // namespace

Mesh lattice(const std::vector<double>& xs, const std::vector<double>& ys,
             const std::vector<double>& zs) {
    Mesh mesh;
    std::map<std::tuple<int, int, int>, int> known;
    const std::array<const std::vector<double>*, 3> axes{&xs, &ys, &zs};
    add_sides(mesh, known, axes, {0, 1, 2});
    add_sides(mesh, known, axes, {1, 2, 0});
    add_sides(mesh, known, axes, {2, 0, 1});
    return mesh;
}

Mesh soft_block(double width, double depth, double height, double radius) {
    const auto lines = [radius](double low, double high) {
        const double r = std::min(radius, (high - low) * 0.45);
        return std::vector<double>{low, low + r, high - r, high};
    };
    return lattice(lines(-width / 2, width / 2), lines(-depth / 2, depth / 2), lines(0, height));
}

Mesh prism(const std::vector<Point2>& outline, double low, double high) {
    Mesh mesh;
    const int count = static_cast<int>(outline.size());
    std::vector<int> bottom, top;
    for (int i = 0; i < count; ++i) {
        mesh.add({outline[i].x, outline[i].y, low});
        mesh.add({outline[i].x, outline[i].y, high});
        top.push_back(2 * i + 1);
        bottom.insert(bottom.begin(), 2 * i);
    }
    for (int i = 0; i < count; ++i) {
        const int j = (i + 1) % count;
        mesh.face({2 * i, 2 * j, 2 * j + 1, 2 * i + 1});
    }
    mesh.face(top);
    mesh.face(bottom);
    return mesh;
}

Mesh turned(const std::vector<Point2>& profile, int sides) {
    std::vector<Point> path;
    std::vector<double> radii;
    for (const Point2& p : profile) {
        path.push_back({0, 0, p.y});
        radii.push_back(p.x);
    }
    Mesh mesh;
    for (std::size_t i = 0; i < path.size(); ++i) {
        for (int k = 0; k < sides; ++k) {
            const double a = radians(360.0 * k / sides);
            mesh.add({radii[i] * std::cos(a), radii[i] * std::sin(a), path[i].z});
        }
    }
    std::vector<int> bottom, top;
    const int rings = static_cast<int>(path.size());
    for (int k = 0; k < sides; ++k) {
        const int next = (k + 1) % sides;
        for (int i = 0; i + 1 < rings; ++i) {
            mesh.face(
                {i * sides + k, i * sides + next, (i + 1) * sides + next, (i + 1) * sides + k});
        }
        top.push_back((rings - 1) * sides + k);
        bottom.insert(bottom.begin(), k);
    }
    if (radii.front() > 0) {
        mesh.face(bottom);
    }
    if (radii.back() > 0) {
        mesh.face(top);
    }
    return mesh;
}

Mesh tube(const std::vector<Point>& path, const std::vector<double>& radii, int sides) {
    Mesh mesh;
    const int rings = static_cast<int>(path.size());
    for (int i = 0; i < rings; ++i) {
        const Vector along = (path[std::min(i + 1, rings - 1)] - path[std::max(i - 1, 0)]).normal();
        const Vector helper = std::abs(along.z) < 0.9 ? Vector{0, 0, 1} : Vector{0, 1, 0};
        const Vector u = helper.crossProduct(along).normal();
        const Vector v = along.crossProduct(u);
        for (int k = 0; k < sides; ++k) {
            const double a = radians(360.0 * k / sides);
            mesh.add(path[i] + u * (radii[i] * std::cos(a)) + v * (radii[i] * std::sin(a)));
        }
    }
    std::vector<int> bottom, top;
    for (int k = 0; k < sides; ++k) {
        const int next = (k + 1) % sides;
        for (int i = 0; i + 1 < rings; ++i) {
            mesh.face(
                {i * sides + k, i * sides + next, (i + 1) * sides + next, (i + 1) * sides + k});
        }
        top.push_back((rings - 1) * sides + k);
        bottom.insert(bottom.begin(), k);
    }
    mesh.face(bottom);
    mesh.face(top);
    return mesh;
}

Mesh bar(const Point& from, const Point& to, double width, double depth) {
    const Vector axis = to - from;
    const Vector along = axis.normal();
    const Vector helper = std::abs(along.z) < 0.95 ? Vector{0, 0, 1} : Vector{0, 1, 0};
    const Vector side = helper.crossProduct(along).normal();
    const Vector up = along.crossProduct(side);
    Mesh mesh = box({0, -width / 2, -depth / 2}, {axis.length(), width / 2, depth / 2});
    return mesh.bend([&](const Point& p) { return from + along * p.x + side * p.y + up * p.z; });
}

Mesh blob(double radius, int cells, double roughness, Random& random) {
    std::vector<double> lines;
    for (int i = 0; i <= cells; ++i) {
        lines.push_back(std::tan(radians(-45.0 + 90.0 * i / cells)));
    }
    Mesh mesh = lattice(lines, lines, lines);
    return mesh.bend([&](const Point& p) {
        const Vector out = p.asVector().normal();
        return Point{} + out * (radius * (1 + roughness * random.real(-1, 1)));
    });
}

Mesh sheet(double x0, double x1, int columns, double y0, double y1, int rows,
           const std::function<double(double, double)>& height) {
    Mesh mesh;
    for (int r = 0; r <= rows; ++r) {
        for (int c = 0; c <= columns; ++c) {
            const double x = x0 + (x1 - x0) * c / columns, y = y0 + (y1 - y0) * r / rows;
            mesh.add({x, y, height(x, y)});
        }
    }
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            const int a = r * (columns + 1) + c;
            mesh.face({a, a + 1, a + columns + 2, a + columns + 1});
        }
    }
    return mesh;
}

namespace {

double lattice_value(std::int64_t x, std::int64_t y, std::int64_t z) {
    Random hash(static_cast<std::uint64_t>(x * 73856093 ^ y * 19349663 ^ z * 83492791));
    return hash.real(-1, 1);
}

} // namespace

double noise(double x, double y, double z) {
    const std::array<double, 3> at{x, y, z};
    std::array<std::int64_t, 3> cell{};
    std::array<double, 3> weight{};
    for (int i = 0; i < 3; ++i) {
        cell[i] = static_cast<std::int64_t>(std::floor(at[i]));
        const double t = at[i] - static_cast<double>(cell[i]);
        weight[i] = t * t * (3 - 2 * t);
    }
    double sum = 0;
    for (int corner = 0; corner < 8; ++corner) {
        const int dx = corner & 1, dy = (corner >> 1) & 1, dz = corner >> 2;
        const double w = (dx != 0 ? weight[0] : 1 - weight[0]) *
                         (dy != 0 ? weight[1] : 1 - weight[1]) *
                         (dz != 0 ? weight[2] : 1 - weight[2]);
        sum += w * lattice_value(cell[0] + dx, cell[1] + dy, cell[2] + dz);
    }
    return sum;
}

} // namespace make_samples
