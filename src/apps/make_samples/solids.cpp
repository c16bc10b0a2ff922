// A still life of solid bodies: each is one 3D solid with its modeller's data, turned, pushed,
// bored or without any edge at all. Bodies are in millimetres, placed by blocks in metres.
#include "host/db/solids.h"
#include "apps/make_samples/bodies.h"
#include "apps/make_samples/palette.h"
#include "apps/make_samples/samples.h"

#include <cmath>

namespace make_samples {

namespace {

using P = ProfilePiece;

void solid_block(Drawing& drawing, const std::string& name, const brep::Body& body) {
    Space block = drawing.block(name);
    block.make<AcDb3dSolid>({"0", kByBlock}).setText(solid_text(body));
}

/// A vase: spline walls outside, a cone and a ball's part inside.
brep::Body vase() {
    return revolved(
        {{0, 0},
         {46, 0, P::kSpline, 0, 0, {{58, 8}, {104, 90}, {70, 190}, {30, 232}, {34, 268}}},
         {52, 290},
         {46, 290},
         {27, 240},
         {27, 60, P::kRightArc, 0, 60},
         {0, 33}});
}

brep::Body bowl() {
    const double rim = 150;
    return revolved({{0, 0},
                     {52, 0},
                     {52, 10},
                     {46, 10.0 + 150 - std::sqrt(rim * rim - 46 * 46), P::kLeftArc, 0, 160},
                     {150, 160},
                     {142, 160, P::kRightArc, 0, 160},
                     {0, 18}});
}

/// A stem glass of lines, cones and rounded parts.
brep::Body goblet() {
    return revolved({{0, 0},
                     {36, 0},
                     {36, 2},
                     {8, 8},
                     {4, 20},
                     {4, 90},
                     {10, 100},
                     {38, 130, P::kSpline, 0, 0, {{46, 150}, {42, 176}}},
                     {34, 205},
                     {32.5, 205, P::kSpline, 0, 0, {{40.5, 176}, {44.5, 150}}},
                     {36, 131},
                     {9, 103},
                     {0, 101}});
}

/// A wheel with a rounded rim, a hub and a bore.
brep::Body wheel() {
    return revolved({{14, -22},
                     {30, -22},
                     {30, -8},
                     {92, -8},
                     {92, -14},
                     {104, -14, P::kLeftArc, 104, 0},
                     {104, 14},
                     {92, 14},
                     {92, 8},
                     {30, 8},
                     {30, 22},
                     {14, 22}});
}

brep::Body perforated_plate() {
    std::vector<RoundHole> holes;
    for (int row = -3; row <= 3; ++row) {
        for (int column = -6; column <= 6; ++column) {
            holes.push_back({column * 26.0 + (row % 2 == 0 ? 0 : 13) - 6.5, row * 23.0, 7.5});
        }
    }
    const double x = 190, y = 95, r = 24, quarter = std::tan(std::atan(1.0) / 2);
    return extruded({{-x + r, -y},
                     {x - r, -y, quarter},
                     {x, -y + r},
                     {x, y - r, quarter},
                     {x - r, y},
                     {-x + r, y, quarter},
                     {-x, y - r},
                     {-x, -y + r, quarter}},
                    0, 6, holes);
}

/// A spanner-like link: two eyes, a waist with hollow sides, two bores.
brep::Body link() {
    return extruded({{-70, -34, 0.0},
                     {-60, -34, -0.12},
                     {60, -34},
                     {70, -34, 1},
                     {70, 34},
                     {60, 34, -0.12},
                     {-60, 34},
                     {-70, 34, 1}},
                    0, 22, {{-70, 0, 18}, {70, 0, 18}});
}

void draw_room(Drawing& drawing) {
    Space model = drawing.model();
    const auto slab = [&](const char* name, double x, double y, double low, double high,
                          const Look& look) {
        solid_block(drawing, name,
                    extruded({{0, 0}, {x * 1000, 0}, {x * 1000, y * 1000}, {0, y * 1000}},
                             low * 1000, high * 1000));
        model.insert(name, {{-x / 2, -y / 2, 0}}, look);
    };
    slab("Table top", 1.5, 0.85, -0.04, 0, {"Furniture", "Walnut"});
    solid_block(drawing, "Back wall",
                extruded({{0, 0}, {4000, 0}, {4000, 30}, {0, 30}}, -700, 1700));
    model.insert("Back wall", {{-2, 0.62, 0}}, {"Inner walls", "Sage plaster"});
}

} // namespace

void build_solids(Drawing& drawing) {
    add_palette(drawing);
    // Text data lie in the entities of this release and older ones.
    drawing.database().setHeaderVar("$ACADVER", {AcDbValue(1, std::string("AC1024"))});
    solid_block(drawing, "Vase", vase());
    solid_block(drawing, "Bowl", bowl());
    solid_block(drawing, "Goblet", goblet());
    solid_block(drawing, "Wheel", wheel());
    solid_block(drawing, "Plate", perforated_plate());
    solid_block(drawing, "Link", link());
    solid_block(drawing, "Ring", ring({0, 0, 16}, 60, 16));
    solid_block(drawing, "Fruit", ball({0, 0, 42}, 42));
    solid_block(drawing, "Cone", revolved({{0, 0}, {48, 0}, {0, 150}}));
    draw_room(drawing);
    Space model = drawing.model();
    model.insert("Vase", {{-0.42, 0.16, 0}}, {"Planters", "Ceramic blue"});
    model.insert("Bowl", {{0.02, 0.1, 0}}, {"Planters", "Ceramic"});
    model.insert("Fruit", {{0.02, 0.06, 0.05}}, {"Planters", "Terracotta 2"});
    model.insert("Fruit", {{0.075, 0.13, 0.055}, 0, 0.95}, {"Planters", "Ochre cloth"});
    model.insert("Fruit", {{-0.03, 0.14, 0.052}, 0, 0.9}, {"Planters", "Leaf 2"});
    model.insert("Goblet", {{0.23, 0.24, 0}}, {"Glass"});
    model.insert("Goblet", {{0.31, 0.1, 0}}, {"Glass"});
    model.insert("Plate", {{0.31, -0.2, 0.001}, 12}, {"Metal", "Brass"});
    model.insert("Link", {{-0.14, -0.2, 0}, 24}, {"Metal", "Car silver"});
    model.insert("Ring", {{-0.38, -0.2, 0}}, {"Metal", "Brass"});
    model.insert("Cone", {{-0.6, -0.02, 0}}, {"Furniture", "Larch"});
    // The wheel leans back a little on its rim.
    model.insert("Wheel",
                 Placement::frame({0.5, 0.29, 0.116}, {0.96, -0.28, 0}, {-0.274, -0.94, 0.2}),
                 {"Metal", "Iron"});
    drawing.view("StillLife", {0.5, -1.75, 1.0}, {0.01, 0.03, 0.085}, 55, true);
}

} // namespace make_samples
