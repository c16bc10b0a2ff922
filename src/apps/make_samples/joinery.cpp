// Windows, doors and columns as blocks.
#include "apps/make_samples/building.h"

#include <cmath>
#include <fmt/format.h>

namespace make_samples {

namespace {

constexpr double kFrame = 0.06, kFrameBack = 0.10, kFrameFront = 0.17; // frame from the outer face

/// A rectangular frame of bars in the plane of the wall.
Mesh frame_mesh(double x0, double x1, double z0, double z1, double bar, double y0, double y1) {
    Mesh mesh = box({x0, y0, z0}, {x0 + bar, y1, z1});
    mesh.append(box({x1 - bar, y0, z0}, {x1, y1, z1}));
    mesh.append(box({x0 + bar, y0, z0}, {x1 - bar, y1, z0 + bar}));
    mesh.append(box({x0 + bar, y0, z1 - bar}, {x1 - bar, y1, z1}));
    return mesh;
}

/// Frames and panes of equal lights side by side.
void add_lights(Space& space, double width, double height, int lights, double bar) {
    Mesh frames = frame_mesh(-width / 2, width / 2, 0, height, bar, kFrameBack, kFrameFront);
    const double inner = width - 2 * bar, light = inner / lights;
    for (int i = 0; i < lights; ++i) {
        const double x0 = -width / 2 + bar + i * light, x1 = x0 + light;
        const double y0 = kFrameBack + 0.015, y1 = kFrameFront - 0.015;
        frames.append(frame_mesh(x0 + 0.002, x1 - 0.002, bar, height - bar, bar * 0.8, y0, y1));
        const double a = x0 + bar * 0.7, b = x1 - bar * 0.7, pane = 0.135;
        const double low = bar * 1.7, high = height - bar * 1.7;
        space.face({a, pane, low}, {b, pane, low}, {b, pane, high}, {a, pane, high}, {"Glass"});
    }
    space.mesh(frames, {"Window frames"});
}

void add_shutters(Space& space, double width, double height) {
    for (const double side : {-1.0, 1.0}) {
        const double leaf = width / 2 + 0.02, x0 = side < 0 ? -width / 2 - leaf : width / 2;
        Mesh mesh = frame_mesh(x0, x0 + leaf, -0.02, height + 0.02, 0.07, -0.055, -0.015);
        for (double z = 0.08; z < height - 0.08; z += 0.085) {
            mesh.append(Mesh(box({x0 + 0.07, -0.008, 0}, {x0 + leaf - 0.07, 0.004, 0.095}))
                            .tilt(18)
                            .move(0, -0.03, z));
        }
        space.mesh(mesh, {"Shutters"});
    }
}

} // namespace

std::string window_block(Drawing& drawing, double width, double height, int lights, bool shutters) {
    const std::string name =
        fmt::format("Window {:.0f}x{:.0f}{}", width * 100, height * 100, shutters ? " S" : "");
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    add_lights(space, width, height, lights, kFrame);
    space.mesh(box({-width / 2 - 0.06, -0.05, -0.06}, {width / 2 + 0.06, 0.1, -0.001}),
               {"Stonework"});
    // Curtains a little way inside keep the rooms from looking empty.
    for (const double side : {-1.0, 1.0}) {
        Mesh curtain = sheet(0, width * 0.3, 10, 0, height, 1, [](double, double) { return 0.0; });
        curtain.bend([&](const Point& p) {
            const double wave = 0.03 * ((std::lround(p.x / (width * 0.03)) & 1) * 2 - 1);
            return Point{side * (width / 2 - p.x), 0.45 + wave, p.y + 0.02};
        });
        space.mesh(curtain, {"Textiles"});
    }
    if (shutters) {
        add_shutters(space, width, height);
    }
    return name;
}

std::string door_block(Drawing& drawing, double width, double height) {
    const std::string name = fmt::format("Door {:.0f}x{:.0f}", width * 100, height * 100);
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    space.mesh(frame_mesh(-width / 2, width / 2, 0, height, 0.07, 0.1, 0.18), {"Window frames"});
    Mesh leaf;
    const int boards = 7;
    const double board = (width - 0.14) / boards;
    for (int i = 0; i < boards; ++i) {
        const double x = -width / 2 + 0.07 + i * board;
        leaf.append(box({x + 0.003, 0.125, 0.01}, {x + board - 0.003, 0.165, height - 0.075}));
    }
    space.mesh(leaf, {"Shutters"});
    Mesh iron = box({width / 2 - 0.16, 0.105, 1.0}, {width / 2 - 0.13, 0.125, 1.2});
    iron.append(box({width / 2 - 0.24, 0.085, 1.10}, {width / 2 - 0.135, 0.105, 1.125}));
    space.mesh(iron, {"Metal"});
    space.mesh(box({-width / 2, -0.04, -0.04}, {width / 2, 0.3, 0.008}), {"Stonework"});
    return name;
}

std::string glazed_screen_block(Drawing& drawing, double width, double height, int lights) {
    const std::string name = fmt::format("Screen {:.0f}x{:.0f}", width * 100, height * 100);
    if (!drawing.has_block(name)) {
        Space space = drawing.block(name);
        add_lights(space, width, height, lights, 0.05);
    }
    return name;
}

std::string column_block(Drawing& drawing, double height, double radius) {
    const std::string name = fmt::format("Column {:.0f}", height * 100);
    if (drawing.has_block(name)) {
        return name;
    }
    Space space = drawing.block(name);
    const double r = radius, plinth = 0.1, abacus = 0.09;
    space.mesh(block(r * 2.7, r * 2.7, plinth), {"0"});
    space.mesh(block(r * 2.75, r * 2.75, abacus).move(0, 0, height - abacus), {"0"});
    const double foot = plinth, head = height - abacus;
    // Points in pairs keep a line firm where the smooth surface turns sharply.
    const std::vector<Point2> profile = {
        {r * 1.25, foot},         {r * 1.30, foot + 0.01},  {r * 1.32, foot + 0.045},
        {r * 1.22, foot + 0.08},  {r * 1.06, foot + 0.085}, {r * 1.02, foot + 0.13},
        {r * 1.0, foot + 0.16},   {r * 1.0, foot + 0.7},    {r * 0.93, (foot + head) / 2 + 0.3},
        {r * 0.84, head - 0.26},  {r * 0.84, head - 0.225}, {r * 0.95, head - 0.215},
        {r * 0.95, head - 0.185}, {r * 0.86, head - 0.175}, {r * 0.88, head - 0.12},
        {r * 1.02, head - 0.06},  {r * 1.20, head - 0.02},  {r * 1.24, head - 0.004},
        {r * 1.24, head}};
    space.mesh(turned(profile, 12), {"0"}, 1);
    return name;
}

} // namespace make_samples
