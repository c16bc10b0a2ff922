// Materials of the drawing assigned from outside, by names.
#pragma once

#include <string>

/// Gives an entity, by its handle in hexadecimal, a material of the drawing by name ("ByLayer" and
/// "ByBlock" included). False, with a message, when one of them is not there.
bool assign_entity_material(const std::string& handle, const std::string& material);
/// The same for a layer.
bool assign_layer_material(const std::string& layer, const std::string& material);
