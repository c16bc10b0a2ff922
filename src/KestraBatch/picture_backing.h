// How much of a hanging picture has a surface right behind it.
#pragma once

#include "renderer/scene.h"

#include <vector>

namespace KestraBatch {

/// For each of the pictures, given as decals of a scene, the share of it (0 to 1) that has a face
/// of the scene's meshes, or the ground, within the decal's depth of its plane and about parallel
/// to it. Of the instances only those count that take decals.
std::vector<float> picture_backing(const renderer::Scene& scene,
                                   const std::vector<renderer::Decal>& pictures);

} // namespace KestraBatch
