// What a walk needs to know of the drawing's layers, each read once.
#pragma once

#include "host/db/object_id.h"
#include "omb/base/math.h"

#include <string>
#include <unordered_map>

struct cl_layer_facts {
    bool readable = false;
    bool frozen = false;
    bool off = false;
    std::string name;                ///< fit for a record
    std::string key;                 ///< "LAY:" and the name
    std::string light_tag;           ///< what follows OMB-LIGHT- in the name
    bool has_light_tag = false;      ///< the name has OMB-LIGHT- in it
    fpt32 color{0.7F, 0.7F, 0.7F};   ///< display colour, 0 to 1
    AcDbObjectId material;           ///< as the layer has it
    bool in_material_layers = false; ///< its name has been entered in material_layer_array
};

/// Answers from memory after the first question. Layers must not change while it lives.
class cl_layer_cache {
public:
    /// The facts of a layer; `readable` is false for a null id and for what is no layer.
    cl_layer_facts& find(AcDbObjectId layer);

private:
    std::unordered_map<AcDbStub*, cl_layer_facts> facts_;
    AcDbStub* last_id_ = nullptr;
    cl_layer_facts* last_ = nullptr;
};

/// Display colour of an index: the host's palette, 7 is white.
fpt32 palette_color(int index);
/// Colour of 0x00RRGGBB, each channel over 255.
fpt32 rgb_color(std::uint32_t rgb);
