// Sun, sky and ground of the document as the renderer's environment.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/record_fields.h"
#include "renderer/scene.h"
#include "toolkit/ts_doc.h"

#include <optional>
#include <string>

namespace KestraBatch {

/// Light from outside, in plain numbers. Factors are 1 at the factory settings of sun and sky.
struct SunSky {
    bool sun_on = false;
    Triple sun_direction{0, 0, 1}; ///< unit vector towards the sun
    double sun_factor = 1;
    enum class Sky { physical, image, colors } sky = Sky::physical;
    bool sky_visible = false;
    bool sky_illuminates = true;
    double sky_factor = 1;
    double turbidity = 2.5;
    double saturation = 1;                                 ///< 1 as computed
    std::string image;                                     ///< of Sky::image
    renderer::Rgb sky_color{1, 1, 1}, background{1, 1, 1}; ///< linear, white is 1
};

/// Radiance of a white sky of one colour at factor 1, in the renderer's unit (683 cd/m^2): about
/// 5000 cd/m^2, the mean of a clear sky, so that sun and sky keep their balance.
inline constexpr float white_sky_radiance = 7.0f;

/// Takes the values from a document that the settings have been written into. Throws ReadError
/// for a value that is no finite number.
SunSky read_sun_sky(const CTsDoc& document);

/// The environment. A sun below the horizon gives no light and a dusky sky; an image sky is a
/// neutral one until images are rendered; each is a warning, as is a scene without any light:
/// `has_lights` tells of others.
renderer::Environment make_environment(const SunSky& light, WarningList& warnings,
                                       bool has_lights = false);

/// World elevation of the ground plane in metres, nothing when it is off. It lies a little below
/// its setting (a quarter of a millimetre, less for a model whose `model_diagonal` in metres is
/// small), so that ground of the model at that height covers it.
std::optional<double> ground_elevation(const CTsDoc& document, double model_diagonal);
/// Its surface: a neutral, slightly warm grey.
renderer::Material ground_surface();

} // namespace KestraBatch
