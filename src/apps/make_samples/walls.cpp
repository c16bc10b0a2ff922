// Walls with openings, gables, arcades and steps.
#include "apps/make_samples/building.h"

#include <algorithm>
#include <cmath>

namespace make_samples {

namespace {

double length_of(const Wall& wall) { return wall.from.distanceTo(wall.to); }

double degrees_of(const Wall& wall) {
    return std::atan2(wall.to.y - wall.from.y, wall.to.x - wall.from.x) / radians(1);
}

bool inside(const Opening& o, double x, double z) {
    return std::abs(x - o.center) < o.width / 2 && z > o.sill && z < o.sill + o.height;
}

/// The break lines of a wall along its length and its height.
void break_lines(const Wall& wall, std::vector<double>& xs, std::vector<double>& zs) {
    xs = {0, length_of(wall)};
    zs = {0, wall.high - wall.low};
    for (const Opening& o : wall.openings) {
        xs.insert(xs.end(), {o.center - o.width / 2, o.center + o.width / 2});
        zs.insert(zs.end(), {o.sill, o.sill + o.height});
    }
    for (std::vector<double>* lines : {&xs, &zs}) {
        std::sort(lines->begin(), lines->end());
        const auto near = [](double a, double b) { return b - a < 1e-6; };
        lines->erase(std::unique(lines->begin(), lines->end(), near), lines->end());
    }
}

void add_reveals(Mesh& mesh, const Opening& o, double t, bool to_ground) {
    const double a = o.center - o.width / 2, b = o.center + o.width / 2;
    const double z0 = o.sill, z1 = o.sill + o.height;
    mesh.quad({a, 0, z0}, {a, t, z0}, {a, t, z1}, {a, 0, z1});
    mesh.quad({b, 0, z0}, {b, 0, z1}, {b, t, z1}, {b, t, z0});
    mesh.quad({a, 0, z1}, {a, t, z1}, {b, t, z1}, {b, 0, z1});
    if (!to_ground) {
        mesh.quad({a, 0, z0}, {b, 0, z0}, {b, t, z0}, {a, t, z0});
    }
}

} // namespace

Mesh wall_mesh(const Wall& wall) {
    std::vector<double> xs, zs;
    break_lines(wall, xs, zs);
    const double length = length_of(wall), t = wall.thickness, top = wall.high - wall.low;
    const double cut = wall.mitred ? t : 0;
    const auto inner = [&](double x) { return std::clamp(x, cut, length - cut); };
    Mesh mesh;
    for (std::size_t i = 0; i + 1 < xs.size(); ++i) {
        for (std::size_t k = 0; k + 1 < zs.size(); ++k) {
            const double x0 = xs[i], x1 = xs[i + 1], z0 = zs[k], z1 = zs[k + 1];
            const auto hit = [&](const Opening& o) {
                return inside(o, (x0 + x1) / 2, (z0 + z1) / 2);
            };
            if (std::any_of(wall.openings.begin(), wall.openings.end(), hit)) {
                continue;
            }
            mesh.quad({x0, 0, z0}, {x1, 0, z0}, {x1, 0, z1}, {x0, 0, z1});
            mesh.quad({inner(x0), t, z0}, {inner(x0), t, z1}, {inner(x1), t, z1},
                      {inner(x1), t, z0});
        }
    }
    mesh.quad({0, 0, top}, {length, 0, top}, {length - cut, t, top}, {cut, t, top});
    if (!wall.mitred) {
        mesh.quad({0, 0, 0}, {0, 0, top}, {0, t, top}, {0, t, 0});
        mesh.quad({length, 0, 0}, {length, t, 0}, {length, t, top}, {length, 0, top});
    }
    for (const Opening& o : wall.openings) {
        add_reveals(mesh, o, t, o.sill <= 0);
    }
    mesh.turn(degrees_of(wall));
    return mesh.move(wall.from.x, wall.from.y, wall.low);
}

void draw_wall(Space& space, const Wall& wall, const Look& look) {
    space.mesh(wall_mesh(wall), look);
    const double length = length_of(wall);
    const Vector along{(wall.to.x - wall.from.x) / length, (wall.to.y - wall.from.y) / length, 0};
    for (const Opening& o : wall.openings) {
        if (o.block.empty()) {
            continue;
        }
        Placement placement;
        placement.at = Point{wall.from.x, wall.from.y, wall.low + o.sill} + along * o.center;
        placement.turn = degrees_of(wall);
        space.insert(o.block, placement, {});
    }
}

Mesh gable_mesh(const Wall& wall, double rise) {
    const double length = length_of(wall), t = wall.thickness;
    Mesh mesh;
    const Point a{0, 0, 0}, b{length, 0, 0}, c{length / 2, 0, rise};
    const Vector in{0, t, 0};
    const int first = mesh.add(a);
    for (const Point& p : {b, c, a + in, b + in, c + in}) {
        mesh.add(p);
    }
    mesh.face({first, first + 1, first + 2});
    mesh.face({first + 3, first + 5, first + 4});
    mesh.face({first + 1, first + 4, first + 5, first + 2});
    mesh.face({first + 2, first + 5, first + 3, first});
    mesh.turn(degrees_of(wall));
    return mesh.move(wall.from.x, wall.from.y, wall.high);
}

Mesh arcade_mesh(int bays, double span, double pier, double spring, double top, double thickness) {
    constexpr int kSteps = 16;
    const double radius = (span - pier) / 2;
    Mesh mesh;
    const auto cell = [&](const Point2& a, const Point2& b, bool sloped) {
        mesh.quad({a.x, 0, a.y}, {b.x, 0, b.y}, {b.x, 0, top}, {a.x, 0, top});
        mesh.quad({a.x, thickness, a.y}, {a.x, thickness, top}, {b.x, thickness, top},
                  {b.x, thickness, b.y});
        mesh.quad({a.x, 0, top}, {b.x, 0, top}, {b.x, thickness, top}, {a.x, thickness, top});
        if (sloped || a.y == b.y) {
            mesh.quad({a.x, 0, a.y}, {a.x, thickness, a.y}, {b.x, thickness, b.y}, {b.x, 0, b.y});
        }
    };
    for (int bay = 0; bay <= bays; ++bay) {
        const double x = bay * span;
        cell({x - pier / 2, spring}, {x + pier / 2, spring}, false);
        if (bay == bays) {
            break;
        }
        for (int i = 0; i < kSteps; ++i) {
            const auto at = [&](int step) {
                const double a = radians(180.0 - 180.0 * step / kSteps);
                return Point2{x + span / 2 + radius * std::cos(a), spring + radius * std::sin(a)};
            };
            cell(at(i), at(i + 1), true);
        }
    }
    const double end = bays * span + pier / 2;
    mesh.quad({-pier / 2, 0, spring}, {-pier / 2, 0, top}, {-pier / 2, thickness, top},
              {-pier / 2, thickness, spring});
    mesh.quad({end, 0, spring}, {end, thickness, spring}, {end, thickness, top}, {end, 0, top});
    return mesh;
}

Mesh steps_mesh(double width, int steps, double rise, double going) {
    Mesh mesh;
    const double depth = steps * going;
    for (int i = 0; i < steps; ++i) {
        const double y = i * going, z = i * rise;
        mesh.append(box({-width / 2, y, 0}, {width / 2, depth, z + rise - 0.04}));
        mesh.append(box({-width / 2 - 0.015, y - 0.025, z + rise - 0.04},
                        {width / 2 + 0.015, depth + 0.001 * i, z + rise}));
    }
    return mesh;
}

} // namespace make_samples
