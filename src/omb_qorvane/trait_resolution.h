// By layer and by block, resolved: what a mesh really wears.
#pragma once

#include "omb_qorvane/layer_facts.h"
#include "omb_qorvane/ts_ac_traits.h"

/// What resolving needs beside the traits.
struct cl_resolution {
    cl_layer_cache& layers;
    AcDbObjectId layer_zero, material_by_layer, material_by_block;

    /// Display colour, 0 to 1. Layer zero inside a drawable takes the enclosing one's layer; by
    /// block takes the enclosing colour, and grey 0.7 at the top.
    fpt32 color(const CTsAcSubEntityTraits& traits);
    /// The material of the layer, layer zero as for colours; may be null.
    AcDbObjectId layer_material(const CTsAcSubEntityTraits& traits);
    /// The material of the object: by layer leads to the layer's, by block to the enclosing
    /// drawable's; by block at the top stays.
    AcDbObjectId material(const CTsAcSubEntityTraits& traits);
    /// The material that counts: the layer's when the colour is by layer, else the object's.
    AcDbObjectId effective_material(const CTsAcSubEntityTraits& traits);

private:
    const cl_layer_facts& layer(const CTsAcSubEntityTraits& traits);
};

/// 0x00BBGGRR, each channel times 255 and truncated.
std::uint32_t colr_value(const fpt32& color);
