// The tone globals as factors, see tone_values.h.
#include "Kestra_Qor/tone_values.h"

#include "omb/globals/globals.h"

#include <algorithm>

namespace {

double percent(const char* name, double highest) {
    return std::clamp(get_global_int(name) * 0.01, 0.0, highest);
}

} // namespace

cl_tone_values get_tone_values() {
    constexpr double neutral_gamma = 1.23; ///< factory value of the gamma global
    cl_tone_values values;
    values.brightness = percent("iks_tone_operator_brightness", 1.0);
    values.contrast = percent("iks_tone_operator_contrast", 1.0);
    values.burn = percent("iks_tone_operator_burn", 1.0);
    values.saturation = percent("iks_tone_operator_saturation", 2.0);
    const double gamma = get_global_double("rks_gamma_factor");
    values.gamma = gamma > 0 ? std::clamp(gamma / neutral_gamma, 0.1, 10.0) : 1.0;
    return values;
}
