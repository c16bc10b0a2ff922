// What a surface is made of, guessed from the name of its layer or material.
#pragma once

#include "renderer/scene.h"

#include <string_view>

namespace KestraBatch {

enum class SurfaceKind { paint, matte, glass, water, metal, polished };

/// The kind that a name tells by one of its words, without regard to case; paint when it tells
/// nothing. "A-Glazing-01" is glass, "Window frames" is paint: words for what holds a pane, or
/// for what is only drawn beside it, rule out glass.
SurfaceKind guess_surface(std::string_view name);

/// A surface of this kind in the drawing's colour. `linear` is the linear display colour, white 1.
renderer::Material make_surface(SurfaceKind kind, renderer::Rgb linear);

} // namespace KestraBatch
