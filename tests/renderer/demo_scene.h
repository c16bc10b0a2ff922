// A small exterior for tests, the demonstration program and the benchmark.
#pragma once

#include "renderer/scene.h"

namespace demo {

/// A box with flat faces, appended as one mesh.
void add_box(renderer::Scene& scene, renderer::Vec3 low, renderer::Vec3 high,
             std::uint32_t material);
/// A sphere with smooth normals.
void add_sphere(renderer::Scene& scene, renderer::Vec3 centre, float radius, std::uint32_t material,
                int rings = 32);
/// An upright cylinder of few facets with smooth normals.
void add_cylinder(renderer::Scene& scene, renderer::Vec3 foot, float radius, float height,
                  std::uint32_t material, int facets = 16);
/// The unit vector towards a sun at an altitude and azimuth (from +x towards +y) in degrees.
renderer::Vec3 sun_direction(float altitude, float azimuth);

/// A white house with windows, spheres, columns and steps on a ground plane under a clear sky.
renderer::Scene make_scene(float sun_altitude, float turbidity);

} // namespace demo
