// The tone globals as plain factors for a renderer.
#pragma once

/// Brightness, contrast and burn are 0 to 1 with 0.5 neutral; saturation 1.0 neutral; gamma an
/// extra exponent 1/gamma with 1.0 neutral.
struct cl_tone_values {
    double brightness = 0.5;
    double contrast = 0.5;
    double burn = 0.5;
    double saturation = 1.0;
    double gamma = 1.0;
};

/// Reads `iks_tone_operator_*` (50 neutral, saturation 100) and `rks_gamma_factor`, whose factory
/// value 1.23 is neutral. Values out of range are clamped.
cl_tone_values get_tone_values();
