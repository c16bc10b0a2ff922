// Within the toolkit: measured candela values as files and blocks hold them, and their way into a
// CTsPhotometricWeb.
#pragma once

#include "toolkit/ts_light.h"

#include <string>
#include <vector>

/// Planes about a plane of symmetry that the file leaves out.
enum class TsMirror { none, about_0_180, about_90_270, about_both };

/// Degrees and candela in the order of CTsPhotometricWeb, of photometric type C, B or A (1, 2, 3 as
/// LM-63 counts).
struct TsMeasuredWeb {
    std::vector<double> horizontal, vertical;
    std::vector<double> candela; ///< a row of horizontal values for each vertical angle
    int type = 1;
    /// Type C: what is known beside the angles themselves, and where the plane of 0 degrees lies.
    TsMirror mirror = TsMirror::none;
    double turn = 0;
};

/// Fills the angles and values of `web`; its other members stay as they are. Returns what is wrong
/// in words, with the web emptied, or nothing.
std::string TsBuildWeb(const TsMeasuredWeb& measured, CTsPhotometricWeb& web);
