// Blocks within blocks: brackets, transforms and colours three levels down; and what must not show.
#include "apps/make_samples/everything.h"

#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/db/symbol_tables.h"

#include <array>

namespace make_samples {

namespace {

const char* const kMethods[] = {"layer", "block", "index", "true"};

/// An entity or a reference in one of the four colour methods, on layer 0 or on one of its own.
void color(AcDbEntity& entity, const std::string& method, int index) {
    entity.setColor(method == "layer"   ? AcCmEntityColor::byLayer()
                    : method == "block" ? AcCmEntityColor::byBlock()
                    : method == "index" ? AcCmEntityColor::index(index)
                                        : AcCmEntityColor::trueColor(0x3060c0));
    entity.setMaterial({});
}

/// A cube of 0.16 m in a block of each method, in a block of each method, each inserted in each
/// method: 64 cubes of colours in eight rows.
void draw_color_tree(Drawing& drawing, const Point& at) {
    drawing.layer("Tree, outer", "Exhibit", 5);
    drawing.layer("Tree, middle", "Exhibit", 3);
    drawing.layer("Tree, inner", "Exhibit", 1);
    for (const char* name : {"Tree, outer", "Tree, middle", "Tree, inner"}) {
        // no material: the colours themselves are the show
        AcDbObjectPointer<AcDbLayerTableRecord>(drawing.layer_id(name), AcDb::kForWrite)
            ->setMaterialId({});
    }
    int place = 0;
    for (const std::string inner : kMethods) {
        for (const std::string middle : kMethods) {
            const std::string leaf = "Cube " + inner;
            std::string tree = leaf;
            tree.append(" in ").append(middle);
            if (!drawing.has_block(leaf)) {
                Space cube = drawing.block(leaf);
                auto& body = cube.make<AcDbSolid>(Look{"Tree, inner"});
                body.setPoints({AcGePoint3d{-80, -80, 0}, AcGePoint3d{80, -80, 0},
                                AcGePoint3d{-80, 80, 0}, AcGePoint3d{80, 80, 0}});
                body.setThickness(160);
                color(body, inner, 2);
                auto& line = cube.make<AcDbLine>(Look{"Tree, inner"}, AcGePoint3d{-60, 0, 160},
                                                 AcGePoint3d{60, 0, 160});
                line.setThickness(60); // lines carry their colour in the stream
                color(line, inner, 2);
            }
            color(drawing.block(tree).insert(leaf, Placement(), {"Tree, middle"}), middle, 6);
            for (const std::string outer : kMethods) {
                const int column = place % 8, row = place / 8;
                const Point where{at.x + 0.3 * column - 1.05, at.y + 0.3 * row - 1.05, at.z};
                color(drawing.model().insert(tree, Placement(where), {"Tree, outer"}), outer, 4);
                ++place;
            }
        }
    }
}

void draw_transforms(Drawing& drawing, const Point& at) {
    Space arrow = drawing.block("Arrow");
    arrow.mesh(box({-0.05, 0, 0}, {0.05, 0.5, 0.1}), {"0"});
    arrow.mesh(prism({{-0.15, 0.5}, {0.15, 0.5}, {0, 0.75}}, 0, 0.1), {"0"});
    Space pair = drawing.block("Arrow and mirror");
    pair.insert("Arrow", Placement({0.25, 0, 0}), {"0"});
    Placement mirrored({-0.25, 0, 0}, 20);
    mirrored.scale = {-1, 1, 1};
    pair.insert("Arrow", mirrored, {"0"});
    drawing.block("Empty block");
    drawing.block("Only an empty block").insert("Empty block", Placement(), {"0"});
    Space model = drawing.model();
    model.insert("Arrow and mirror", Placement(at), {"Exhibits"});
    model.insert("Arrow and mirror",
                 Placement::frame({at.x + 1.2, at.y, at.z + 0.1}, {1, 0, 0}, {0, -0.6, 0.8}),
                 {"Exhibits"});
    Placement stretched({at.x + 2.2, at.y, at.z}, 30);
    stretched.scale = {0.6, 0.9, 4};
    model.insert("Arrow", stretched, {"Exhibits"});
    model.array("Arrow", Placement({at.x + 3.0, at.y - 0.6, at.z}, 0, 0.5), 4, 3, 0.25, 0.5,
                {"Exhibits"});
    model.insert("Only an empty block", Placement(at), {"Exhibits"});
}

} // namespace

void draw_block_trees(Drawing& drawing) {
    drawing.model().mesh(box({9.4, -1.5, 0}, {12.6, 1.7, 0.3}), {"Plinths"});
    draw_color_tree(drawing, {11.0, 0.1, 0.3});
    drawing.model().mesh(box({9.2, 2.4, 0}, {13.6, 4.2, 0.3}), {"Plinths"});
    draw_transforms(drawing, {9.8, 3.2, 0.3});
}

void draw_hidden_things(Drawing& drawing) {
    drawing.paint("Warning", 0xff0000);
    drawing.layer("Off", "Warning");
    drawing.layer("Frozen", "Warning");
    drawing.layer("Seen", "Exhibit");
    Mesh cube = block(1, 1, 2);
    Space model = drawing.model();
    const auto put = [&](double x, const char* layer) {
        Mesh copy = cube;
        model.mesh(copy.move(x, -3.2, 0), {layer, "Warning"});
    };
    put(0, "Off");
    put(2, "Frozen");
    Space hidden = drawing.block("Frozen inside");
    hidden.mesh(cube, {"Frozen", "Warning"});
    hidden.mesh(block(0.3, 0.3, 0.1), {"0"});
    model.insert("Frozen inside", Placement({4, -3.2, 0}), {"Seen"});
    model.insert("Frozen inside", Placement({6, -3.2, 0}), {"Frozen"}); // the whole reference
    AcDbBlockReference& unseen =
        model.insert("Frozen inside", Placement({8, -3.2, 0}), {"Seen", "Warning"});
    unseen.setVisibility(AcDb::kInvisible);
    const auto set = [&](const char* name, void (*change)(AcDbLayerTableRecord&)) {
        AcDbObjectPointer<AcDbLayerTableRecord> layer(drawing.layer_id(name), AcDb::kForWrite);
        change(*layer);
    };
    set("Off", [](AcDbLayerTableRecord& layer) { layer.setIsOff(true); });
    set("Frozen", [](AcDbLayerTableRecord& layer) { layer.setIsFrozen(true); });
}

} // namespace make_samples
