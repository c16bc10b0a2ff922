// Log-log plots as SVG.
#include "bench/apps/growth_plot.h"

#include <cmath>
#include <fmt/format.h>

namespace scale {

namespace {

constexpr double width = 640, height = 420, left = 70, right = 20, top = 20, bottom = 50;

struct Axes {
    double low_x = 1e300, high_x = 0, low_y = 1e300, high_y = 0; ///< powers of 10

    double x(double faces) const {
        return left + (width - left - right) * (std::log10(faces) - low_x) / (high_x - low_x);
    }
    double y(double seconds) const {
        return height - bottom -
               (height - top - bottom) * (std::log10(seconds) - low_y) / (high_y - low_y);
    }
};

Axes axes_of(const std::vector<Curve>& curves) {
    Axes axes;
    for (const Curve& curve : curves) {
        for (const auto& [faces, seconds] : curve.points) {
            axes.low_x = std::min(axes.low_x, std::floor(std::log10(faces)));
            axes.high_x = std::max(axes.high_x, std::ceil(std::log10(faces)));
            axes.low_y = std::min(axes.low_y, std::floor(std::log10(seconds)));
            axes.high_y = std::max(axes.high_y, std::ceil(std::log10(seconds)));
        }
    }
    return axes;
}

std::string line(double x1, double y1, double x2, double y2, const char* look) {
    return fmt::format("<line x1='{:.1f}' y1='{:.1f}' x2='{:.1f}' y2='{:.1f}' {}/>\n", x1, y1, x2,
                       y2, look);
}

std::string text(double x, double y, const char* anchor, const std::string& words) {
    return fmt::format("<text x='{:.1f}' y='{:.1f}' text-anchor='{}'>{}</text>\n", x, y, anchor,
                       words);
}

std::string grid(const Axes& axes) {
    constexpr const char* look = "stroke='#ddd'";
    std::string out;
    for (double e = axes.low_x; e <= axes.high_x; ++e) {
        const double x = axes.x(std::pow(10, e));
        out += line(x, top, x, height - bottom, look) +
               text(x, height - bottom + 18, "middle", fmt::format("{:.0f}", std::pow(10, e)));
    }
    for (double e = axes.low_y; e <= axes.high_y; ++e) {
        const double y = axes.y(std::pow(10, e));
        out += line(left, y, width - right, y, look) +
               text(left - 8, y + 4, "end", fmt::format("{:g} s", std::pow(10, e)));
    }
    return out + text((left + width - right) / 2, height - 10, "middle", "faces");
}

std::string drawn(const Curve& curve, const Axes& axes, double key_y) {
    std::string path, dots;
    for (const auto& [faces, seconds] : curve.points) {
        path += fmt::format("{}{:.1f},{:.1f} ", path.empty() ? "M" : "L", axes.x(faces),
                            axes.y(seconds));
        dots += fmt::format("<circle cx='{:.1f}' cy='{:.1f}' r='3' fill='{}'/>\n", axes.x(faces),
                            axes.y(seconds), curve.color);
    }
    const auto& [faces, seconds] = curve.points.back();
    const double first = curve.points.front().first;
    return line(axes.x(first), axes.y(seconds * first / faces), axes.x(faces), axes.y(seconds),
                "stroke='#999' stroke-dasharray='4 3'") +
           fmt::format("<path d='{}' fill='none' stroke='{}' stroke-width='2'/>\n", path,
                       curve.color) +
           dots +
           fmt::format("<rect x='{}' y='{}' width='14' height='4' fill='{}'/>\n", left + 14,
                       key_y - 6, curve.color) +
           text(left + 34, key_y, "start", curve.name);
}

} // namespace

std::string growth_plot(const std::vector<Curve>& curves) {
    const Axes axes = axes_of(curves);
    std::string out = fmt::format(
        "<svg xmlns='http://www.w3.org/2000/svg' width='{0}' height='{1}' viewBox='0 0 {0} {1}' "
        "font-family='sans-serif' font-size='12'>\n<rect width='{0}' height='{1}' fill='white'/>\n",
        width, height);
    out += grid(axes);
    double key_y = top + 20;
    for (const Curve& curve : curves) {
        out += drawn(curve, axes, key_y);
        key_y += 18;
    }
    return out + "</svg>\n";
}

} // namespace scale
