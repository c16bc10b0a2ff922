// Parts of buildings: walls with openings, gables, joinery, tiled roofs, arcades, columns, stairs.
#pragma once

#include "apps/make_samples/drawing.h"

#include <string>
#include <vector>

namespace make_samples {

/// A hole in a wall, and the block (window, door) that stands in it.
struct Opening {
    double center = 0; ///< along the wall, from its start
    double width = 1, sill = 0.9, height = 1.3;
    std::string block = "";
};

/// A straight wall. Walking from start to end, its outer face is on the right.
struct Wall {
    Point2 from, to;
    double thickness = 0.36, low = 0, high = 3;
    bool mitred = true; ///< ends cut at 45 degrees for a corner; else square ends with faces
    std::vector<Opening> openings = {};
};
/// The wall's mesh, reveals included.
Mesh wall_mesh(const Wall& wall);
/// Draws the wall and inserts the blocks of its openings.
void draw_wall(Space& space, const Wall& wall, const Look& look);
/// The triangle over a wall's end: a prism of the wall's thickness, `rise` high in its middle.
Mesh gable_mesh(const Wall& wall, double rise);

/// Joinery blocks of a size in metres; x runs along the wall about 0, y inwards from the outer
/// face, z from the sill. Each returns the block's name.
std::string window_block(Drawing& drawing, double width, double height, int lights, bool shutters);
std::string door_block(Drawing& drawing, double width, double height);
std::string glazed_screen_block(Drawing& drawing, double width, double height, int lights);

/// A slope of a tiled roof: seen from outside, `eave` is its lower left corner.
struct Slope {
    Point eave;
    Vector along; ///< unit, level, to the right along the eave
    Vector up;    ///< unit, up the slope
    double length = 1, height = 1;
    bool plain = false; ///< larger tiles of one colour, as an array
};
void draw_slope(Drawing& drawing, const Slope& slope, Random& random);
/// A gable roof over a rectangle, its ridge along the longer side, with overhang, gutters and
/// ridge tiles. `pitch` in degrees, `eave` the height of the walls' upper edge.
void draw_gable_roof(Drawing& drawing, const Point2& low, const Point2& high, double eave,
                     double pitch, bool plain_back, Random& random);

/// A round column with base and capital, `height` in all. Returns the block's name.
std::string column_block(Drawing& drawing, double height, double radius);
/// A wall on round arches between square-free supports: `bays` of `span`, springing at `spring`.
Mesh arcade_mesh(int bays, double span, double pier, double spring, double top, double thickness);
/// Steps that rise along +y from the origin, centred on x = 0.
Mesh steps_mesh(double width, int steps, double rise, double going);

} // namespace make_samples
