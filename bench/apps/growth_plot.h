// A picture of how times grow with the size of a drawing.
#pragma once

#include <string>
#include <vector>

namespace scale {

struct Curve {
    std::string name;
    std::string color;
    std::vector<std::pair<double, double>> points; ///< faces and seconds, all above 0
};

/// An SVG with both axes logarithmic, and a thin line of slope 1 through the last point of each
/// curve: what lies on it grows linearly.
std::string growth_plot(const std::vector<Curve>& curves);

} // namespace scale
