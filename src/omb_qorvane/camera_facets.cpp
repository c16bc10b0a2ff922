// Pixels to lengths.
#include "omb_qorvane/camera_facets.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

double scale_of(const AcGeMatrix3d& m) {
    double largest = 0;
    for (std::size_t column = 0; column < 3; ++column) {
        largest = std::max(largest,
                           std::hypot(m.entry[0][column], m.entry[1][column], m.entry[2][column]));
    }
    return largest;
}

double distance_to(const AcDbExtents& box, const AcGePoint3d& p) {
    const auto outside = [](double at, double low, double high) {
        return std::max({low - at, at - high, 0.0});
    };
    return std::hypot(outside(p.x, box.minPoint().x, box.maxPoint().x),
                      outside(p.y, box.minPoint().y, box.maxPoint().y),
                      outside(p.z, box.minPoint().z, box.maxPoint().z));
}

} // namespace

cl_camera_facets::cl_camera_facets(const AcGePoint3d& eye, const AcGePoint3d& target,
                                   bool perspective, double field_width, int width_pixels)
  : eye_(eye)
  , perspective_(perspective)
  , tolerance_(pixel_share * field_width / std::max(width_pixels, 1)) {
    if (perspective) {
        const double way = (target - eye).length();
        tolerance_ = way > 0 ? tolerance_ / way : 0;
    }
}

double cl_camera_facets::deviation(double own, const AcDbExtents& box, const AcGeMatrix3d& to_world,
                                   bool in_reference) const {
    AcDbExtents world = box;
    world.transformBy(to_world);
    const double scale = scale_of(to_world);
    const double wanted = tolerance_ * (perspective_ ? distance_to(world, eye_) : 1) / scale;
    const double step = in_reference ? 2 : 1; // powers of 4 or 2
    const double most = std::log2(most_change);
    double power = std::floor(std::log2(wanted / own) / step) * step;
    if (std::isnan(power)) { // sizes without sense, or a view without one
        return own;
    }
    power = std::clamp(power, -most, most);
    return own * std::exp2(power);
}
