// One of everything: a show-room of plinths, so that each thing can be found in the picture.
#include "apps/make_samples/everything.h"

#include "apps/make_samples/palette.h"
#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"
#include "host/db/symbol_tables.h"
#include "host/db/text.h"

#include <cmath>

namespace make_samples {

namespace {

constexpr double kRow = 2.4;   // metres between rows of plinths
constexpr double kPitch = 1.8; // and along a row
constexpr double kTop = 0.3;   // height of a plinth

/// The middle of a plinth's top, counted from the west and from the south.
Point plinth(Drawing& drawing, int column, int row) {
    const Point at{kPitch * column, kRow * row, kTop};
    Mesh body = block(1.4, 1.4, kTop);
    drawing.model().mesh(body.move(at.x, at.y, 0), {"Plinths"});
    return at;
}

AcGePoint3d mm(const Point& p) { return {1000 * p.x, 1000 * p.y, 1000 * p.z}; }

const Look kShown{"Exhibits"};

void draw_lines_and_circles(Drawing& drawing) {
    Space model = drawing.model();
    Point at = plinth(drawing, 0, 0);
    model.circle(at, 0.45, 0.7, kShown);
    model.circle({at.x, at.y, at.z + 0.71}, 0.3, 0, kShown); // nothing to see: no thickness
    at = plinth(drawing, 1, 0);
    auto& leaning = model.make<AcDbCircle>(kShown, mm({at.x, at.y - 0.25, at.z + 0.35}),
                                           AcGeVector3d{0, 0.6, 0.8}, 250.0);
    leaning.setThickness(500);
    at = plinth(drawing, 2, 0);
    auto& arc = model.make<AcDbArc>(kShown, mm(at), 500.0, 0.3, 4.4);
    arc.setThickness(600);
    at = plinth(drawing, 3, 0);
    model.line({at.x - 0.5, at.y - 0.4, at.z}, {at.x + 0.5, at.y - 0.1, at.z}, 0.6, kShown);
    model.line({at.x - 0.5, at.y + 0.3, at.z}, {at.x + 0.5, at.y + 0.3, at.z}, 0, kShown);
    at = plinth(drawing, 4, 0);
    auto& spline = model.make<AcDbSpline>(kShown);
    spline.setFitPoints({mm({at.x - 0.5, at.y, at.z}), mm({at.x, at.y + 0.4, at.z + 0.3}),
                         mm({at.x + 0.5, at.y - 0.2, at.z + 0.1})});
    auto& ellipse = model.make<AcDbEllipse>(kShown);
    ellipse.set(mm(at), {0, 0, 1}, {500, 0, 0}, 0.6, 0, 2 * std::acos(-1.0));
    auto& point = model.make<AcDbPoint>(kShown);
    point.setPosition(mm(at));
    auto& text = model.make<AcDbText>(kShown);
    text.setPosition(mm({at.x - 0.4, at.y - 0.3, at.z}));
    text.setTextString("Curves and texts have no faces");
    text.setHeight(80);
}

void draw_polylines(Drawing& drawing) {
    Space model = drawing.model();
    Point at = plinth(drawing, 0, 1);
    const auto around = [&at](std::vector<OutlinePoint> points) {
        for (OutlinePoint& p : points) {
            p.x += at.x;
            p.y += at.y;
        }
        return points;
    };
    const std::vector<OutlinePoint> bent{{-0.5, -0.5, 0}, {0.3, -0.5, 0.6}, {0.5, 0.3, 0}};
    model.polyline({around(bent), false, at.z, 0.5, 0}, kShown); // a ribbon
    at = plinth(drawing, 1, 1);
    model.polyline({around({{-0.5, -0.5, 0}, {0.5, -0.5, 0}, {0.5, 0.5, 0}, {-0.2, 0.5, 0}}), false,
                    at.z, 0.4, 0.15},
                   kShown); // broad, with mitred corners and two ends
    at = plinth(drawing, 2, 1);
    model.polyline(
        {around({{-0.45, -0.45, 0}, {0.45, -0.45, 0.4}, {0.45, 0.45, 0}, {-0.45, 0.45, 0}}), true,
         at.z, 0.35, 0.12},
        kShown); // broad and closed, with an arc
    at = plinth(drawing, 3, 1);
    model.polyline({around({{-0.45, -0.45, 0}, {0.45, -0.45, 0}, {0, 0.45, 0}, {-0.45, -0.45, 0}}),
                    false, at.z + 0.01, 0, 0.2},
                   kShown); // flat; closed by its last point
    at = plinth(drawing, 4, 1);
    auto& old = model.make<AcDb2dPolyline>(kShown);
    for (const OutlinePoint& p : around({{-0.5, -0.4, 0}, {0.5, -0.4, 0.5}, {0.2, 0.4, 0}})) {
        AcDbHeavyVertex vertex;
        vertex.point = mm({p.x, p.y, 0});
        vertex.bulge = p.bulge;
        old.vertices().push_back(vertex);
    }
    old.setElevation(1000 * at.z);
    old.setThickness(450);
    auto& space = model.make<AcDb3dPolyline>(kShown);
    space.setFlags(8);
    for (const double x : {-0.4, 0.0, 0.4}) {
        AcDbHeavyVertex vertex;
        vertex.point = mm({at.x + x, at.y, at.z + 0.2 + x * x});
        space.vertices().push_back(vertex);
    }
}

void draw_faces(Drawing& drawing) {
    Space model = drawing.model();
    Point at = plinth(drawing, 0, 2);
    model.face({at.x - 0.5, at.y - 0.5, at.z}, {at.x + 0.5, at.y - 0.5, at.z},
               {at.x + 0.2, at.y + 0.2, at.z + 0.7}, {at.x - 0.2, at.y + 0.2, at.z + 0.7}, kShown);
    at = plinth(drawing, 1, 2);
    model.solid({{at.x - 0.5, at.y - 0.4},
                 {at.x + 0.5, at.y - 0.4},
                 {at.x + 0.3, at.y + 0.4},
                 {at.x - 0.3, at.y + 0.4}},
                at.z, 0.3, kShown);
    at = plinth(drawing, 2, 2);
    std::vector<Point> dome;
    for (int row = 0; row < 7; ++row) {
        for (int column = 0; column < 12; ++column) {
            const double turn = radians(30.0 * column), rise = radians(15.0 * row);
            dome.push_back({at.x + 0.55 * std::cos(rise) * std::cos(turn),
                            at.y + 0.55 * std::cos(rise) * std::sin(turn),
                            at.z + 0.55 * std::sin(rise)});
        }
    }
    model.grid(7, 12, dome, kShown, true); // the last row is one point twelve times
    at = plinth(drawing, 3, 2);
    Mesh house = prism({{-0.4, -0.3}, {0.4, -0.3}, {0.4, 0.3}, {-0.4, 0.3}}, 0, 0.5);
    model.polyface(house.turn(25).move(at.x, at.y, at.z), kShown);
    at = plinth(drawing, 4, 2);
    Mesh soft = soft_block(0.7, 0.7, 0.7, 0.1);
    model.mesh(soft.move(at.x, at.y, at.z), kShown, 2);
}

} // namespace

void draw_primitives(Drawing& drawing) {
    draw_lines_and_circles(drawing);
    draw_polylines(drawing);
    draw_faces(drawing);
}

void build_everything(Drawing& drawing) {
    add_palette(drawing);
    drawing.paint("Plinth", 0xd8d4cc, 0.2);
    drawing.paint("Exhibit", 0xc46a3c, 0.3, 0.1);
    drawing.paint("Paving", 0x9c9890, 0.1);
    drawing.paint("Wall", 0xe8e4da, 0.1);
    drawing.layer("Plinths", "Plinth");
    drawing.layer("Exhibits", "Exhibit");
    drawing.layer("Paving slabs", "Paving");
    drawing.layer("Wände", "Wall");
    Space model = drawing.model();
    model.mesh(box({-1.6, -2, -0.1}, {14, 9.6, 0}), {"Paving slabs"});
    model.mesh(box({-1.6, 8.6, 0}, {14, 8.8, 2.6}), {"Wände"});
    draw_primitives(drawing);
    draw_block_trees(drawing);
    draw_hidden_things(drawing);
    draw_furnishings(drawing);
    drawing.view("Show-room", {3.4, -11, 7.4}, {6.3, 3.4, 0.9}, 32, true);
    drawing.view("Evening", {4.6, -5.2, 3.0}, {6.4, 5.6, 0.7}, 26);
}

} // namespace make_samples
