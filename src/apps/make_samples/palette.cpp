// Natural colours: reflectances of plaster, clay, stone, wood and leaves as they are measured
// outdoors, none above 0.85 and none saturated.
#include "apps/make_samples/palette.h"

namespace make_samples {

namespace {

struct PaintRow {
    const char* name;
    std::uint32_t rgb;
    double gloss = 0.1, reflectivity = 0, opacity = 1;
};

constexpr PaintRow kPaints[] = {
    {"Plaster", 0xece4d6},
    {"Plaster 2", 0xdfd2bd},
    {"Ceiling white", 0xefece6},
    {"Ochre plaster", 0xd9bd8f},
    {"Sage plaster", 0xc9cdb8},
    {"Terracotta", 0xac5c40},
    {"Terracotta 2", 0xb96c4b},
    {"Terracotta 3", 0x9b5139},
    {"Terracotta 4", 0xc07d5c},
    {"Limestone", 0xc6baa4},
    {"Limestone 2", 0xcfc5b2},
    {"Limestone 3", 0xb8ab95},
    {"Limestone 4", 0xcbb898},
    {"Joint sand", 0x9a9080},
    {"Dressed stone", 0xd6cdbb},
    {"Slate", 0x565b60, 0.3},
    {"Slate 2", 0x666a6d, 0.3},
    {"Slate 3", 0x4b4f52, 0.3},
    {"Oak", 0x9a7650, 0.3},
    {"Oak 2", 0xa5825c, 0.3},
    {"Oak 3", 0x8c6945, 0.3},
    {"Oak 4", 0xaf8d66, 0.3},
    {"Walnut", 0x664631, 0.4},
    {"Larch", 0xa98962, 0.2},
    {"Larch 2", 0x9b7b56, 0.2},
    {"Bark", 0x655546},
    {"Leaf", 0x61803a},
    {"Leaf 2", 0x7c9446},
    {"Leaf 3", 0x4d6b32},
    {"Olive leaf", 0x7f8a62},
    {"Far leaf", 0x5f7a45},
    {"Far leaf 2", 0x6f8550},
    {"Hedge leaf", 0x4f6b38},
    {"Grass", 0x6f8546},
    {"Grass 2", 0x7d8c50},
    {"Meadow", 0x8a9160},
    {"Far hills", 0x7f8f78},
    {"Earth", 0x6e5844},
    {"Gravel", 0xb4a994},
    {"Water", 0x2f5052, 0.95},
    {"Glass", 0xeef4f2, 1, 0.1, 0.02},
    {"Iron", 0x34353a, 0.5},
    {"Shutter", 0x6f8377, 0.3},
    {"White paint", 0xe4e1da, 0.4},
    {"Linen", 0xe2dccf},
    {"Linen 2", 0xcfc6b4},
    {"Ochre cloth", 0xc29a58},
    {"Blue cloth", 0x5d7686},
    {"Rust cloth", 0xa3593c},
    {"Wool", 0xcfc8bb},
    {"Wool 2", 0x8e8f8c},
    {"Lavender", 0x86749f},
    {"Rose", 0xc27680},
    {"White flower", 0xe6e1d6},
    {"Brass", 0xb0905a, 0.8},
    {"Lamp shade", 0xeae0c8},
    {"Ceramic", 0xdcd8ce, 0.7},
    {"Ceramic blue", 0x4f6c7c, 0.7},
    {"Ink", 0x3a4048},
    {"Paper", 0xe6dfcf},
    {"Asphalt", 0x6b6a67},
    {"Asphalt 2", 0x7a7874},
    {"Concrete", 0xb3b0a9},
    {"Concrete 2", 0xa29f98},
    {"Brick", 0x9c6650},
    {"Brick 2", 0xab7a5e},
    {"Sandstone", 0xcdb592},
    {"Facade grey", 0xa6a9a8},
    {"Facade white", 0xdcd9d2},
    {"Tower glass", 0x4b6470, 0.95, 0.35},
    {"Tower glass 2", 0x5a7380, 0.95, 0.35},
    {"Window dark", 0x39464d, 0.9, 0.3},
    {"Bronze", 0x7d6a52, 0.6},
    {"Car red", 0x8f3b34, 0.9, 0.15},
    {"Car silver", 0xb6b8b9, 0.9, 0.15},
    {"Car blue", 0x3f566e, 0.9, 0.15},
    {"Rubber", 0x2b2b2c},
    {"Line white", 0xd8d6cf},
    {"Gravel roof", 0x9d998f},
    {"Moss roof", 0x7e8862},
};

struct LayerRow {
    const char* name;
    const char* paint;
    int aci = 0;
};

constexpr LayerRow kLayers[] = {
    {"Walls", "Plaster"},
    {"Mauer außen", "Plaster 2"},
    {"Stonework", "Dressed stone"},
    {"Roof", "Terracotta"},
    {"Roof flat", "Gravel", 9},
    {"Columns", "Dressed stone"},
    {"Paving", "Limestone"},
    {"Joints", "Joint sand"},
    {"Water", "Water"},
    {"Glass", "Glass"},
    {"Wood", "Oak"},
    {"Window frames", "Larch"},
    {"Shutters", "Shutter"},
    {"Metal", "Iron"},
    {"Gutters", "Slate", 8},
    {"Trunks", "Bark"},
    {"Foliage light", "Leaf 2"},
    {"Foliage dark", "Leaf 3"},
    {"Hedge", "Hedge leaf"},
    {"Flowers", "Lavender"},
    {"Lawn", "Grass"},
    {"Surroundings", "Meadow"},
    {"Far trees", "Far leaf"},
    {"Path", "Gravel"},
    {"Soil", "Earth"},
    {"Furniture", "Oak 2"},
    {"Cushions", "Linen"},
    {"Textiles", "Linen"},
    {"Planters", "Terracotta 4"},
    {"Lamps", "Lamp shade"},
    {"Neighbours", "Sage plaster"},
    {"Floor", "Oak 4"},
    {"Ceiling", "Ceiling white"},
    {"Inner walls", "Plaster"},
    {"Curtains", "Linen"},
    {"Rug", "Wool"},
    {"Shelves", "Oak 2"},
    {"Books", "Paper"},
    {"Bilder und Rahmen", "Walnut"},
};

} // namespace

void add_palette(Drawing& drawing) {
    for (const PaintRow& row : kPaints) {
        drawing.paint(row.name, row.rgb, row.gloss, row.reflectivity, row.opacity);
    }
    for (const LayerRow& row : kLayers) {
        drawing.layer(row.name, row.paint, row.aci);
    }
}

std::string shade(const std::string& base, int shades, Random& random) {
    const int number = random.below(shades) + 1;
    return number == 1 ? base : base + " " + std::to_string(number);
}

} // namespace make_samples
