// Gradients of hatches: the colour along them, and cutting an area into bands.
#include "host/db/hatch_gradient.h"

#include "host/gi/fallback.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

namespace draw {
namespace {

constexpr int kMostBands = 31; // an odd number has a middle one
constexpr int kSides = 32;

enum class Course { kAlong, kMirrored, kCurved, kFromMiddle, kFromEdge };

struct GradientName {
    std::string_view name;
    Course course;
    bool inverted;
};
constexpr GradientName kNames[] = {{"LINEAR", Course::kAlong, false},
                                   {"CYLINDER", Course::kMirrored, false},
                                   {"INVCYLINDER", Course::kMirrored, true},
                                   {"SPHERICAL", Course::kFromMiddle, false},
                                   {"INVSPHERICAL", Course::kFromMiddle, true},
                                   {"HEMISPHERICAL", Course::kFromEdge, false},
                                   {"INVHEMISPHERICAL", Course::kFromEdge, true},
                                   {"CURVED", Course::kCurved, false},
                                   {"INVCURVED", Course::kCurved, true}};

GradientName nameOf(const std::string& name) {
    std::string upper = name;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    const auto* row = std::find_if(std::begin(kNames), std::end(kNames),
                                   [&](const GradientName& n) { return n.name == upper; });
    return row != std::end(kNames) ? *row : kNames[0];
}

/// How much of the second colour there is at a place from 0 to 1 along the gradient.
double weightAt(double place, const GradientName& kind) {
    double weight = place;
    switch (kind.course) {
    case Course::kMirrored:
        weight = 1 - std::abs(2 * place - 1);
        break;
    case Course::kCurved:
        weight = place * place;
        break;
    case Course::kFromMiddle:
    case Course::kFromEdge:
        weight = 1 - place; // the second colour stands in the centre
        break;
    default:
        break;
    }
    return kind.inverted ? 1 - weight : weight;
}

struct Rgb {
    double red = 0, green = 0, blue = 0;
    Rgb mix(const Rgb& other, double t) const {
        return {red + (other.red - red) * t, green + (other.green - green) * t,
                blue + (other.blue - blue) * t};
    }
    double away(const Rgb& other) const {
        return std::max({std::abs(red - other.red), std::abs(green - other.green),
                         std::abs(blue - other.blue)});
    }
    AcCmEntityColor color() const {
        const auto byte = [](double v) {
            return static_cast<std::uint32_t>(std::clamp(std::lround(v), 0L, 255L));
        };
        return AcCmEntityColor::trueColor(byte(red) << 16 | byte(green) << 8 | byte(blue));
    }
};

Rgb rgbOf(const AcCmEntityColor& color) {
    const AcCmEntityColor c =
        color.isByColor()
            ? color
            : AcCmEntityColor::trueColor(AcCmEntityColor::lookUpRGB(color.colorIndex()));
    return {double(c.red()), double(c.green()), double(c.blue())};
}

std::array<Rgb, 2> endsOf(const AcDbHatchGradient& gradient) {
    constexpr Rgb kBlue{0, 0, 255}, kBlack{0, 0, 0}, kWhite{255, 255, 255};
    const Rgb first = gradient.colors.empty() ? kBlue : rgbOf(gradient.colors[0]);
    if (gradient.colors.size() > 1) {
        return {first, rgbOf(gradient.colors[1])};
    }
    const double tint = gi::isFinite(gradient.tint) ? std::clamp(gradient.tint, 0.0, 1.0) : 0;
    return {first, tint < 0.5 ? first.mix(kBlack, 1 - 2 * tint) : first.mix(kWhite, 2 * tint - 1)};
}

using Polygon = std::vector<AcGePoint2d>;

/// Distance along a direction.
struct Ruler {
    double x = 1, y = 0; ///< unit
    AcGePoint2d origin;
    double at(const AcGePoint2d& p) const { return (p.x - origin.x) * x + (p.y - origin.y) * y; }
};

/// Divides a convex polygon at a level of the ruler.
void divide(const Polygon& polygon, const Ruler& ruler, double level, Polygon& below,
            Polygon& above) {
    below.clear();
    above.clear();
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const AcGePoint2d &a = polygon[i], &b = polygon[(i + 1) % polygon.size()];
        const double da = ruler.at(a) - level, db = ruler.at(b) - level;
        if (da <= 0) {
            below.push_back(a);
        }
        if (da >= 0) {
            above.push_back(a);
        }
        if ((da < 0 && db > 0) || (da > 0 && db < 0)) {
            const double t = da / (da - db);
            const AcGePoint2d cut{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
            below.push_back(cut);
            above.push_back(cut);
        }
    }
}

/// Gives the parts of polygons to the bands that they lie in.
class Cutter {
public:
    Cutter(std::vector<GradientBand>& bands, std::vector<double> levels)
      : bands_(bands)
      , levels_(std::move(levels)) {}

    /// `levels_[i]` is where band i ends and the next begins; the last one has no end.
    void cut(Polygon polygon, const Ruler& ruler) {
        double low = 1e300, high = -1e300;
        for (const AcGePoint2d& p : polygon) {
            low = std::min(low, ruler.at(p));
            high = std::max(high, ruler.at(p));
        }
        const auto first = std::upper_bound(levels_.begin(), levels_.end(), low);
        auto band = static_cast<std::size_t>(first - levels_.begin());
        for (; band < levels_.size() && levels_[band] < high; ++band) {
            divide(polygon, ruler, levels_[band], below_, above_);
            add(bands_[band], below_);
            polygon.swap(above_);
        }
        add(bands_[band], polygon);
    }

private:
    static void add(GradientBand& band, const Polygon& polygon) {
        if (polygon.size() < 3) {
            return;
        }
        const auto first = static_cast<std::uint32_t>(band.points.size());
        band.points.insert(band.points.end(), polygon.begin(), polygon.end());
        for (std::uint32_t i = 1; i + 1 < polygon.size(); ++i) {
            band.triangles.push_back({first, first + i, first + i + 1});
        }
    }
    std::vector<GradientBand>& bands_;
    std::vector<double> levels_;
    Polygon below_, above_;
};

struct Span {
    double low = 1e300, high = -1e300;
    void add(double v) {
        low = std::min(low, v);
        high = std::max(high, v);
    }
    double at(double t) const { return low + (high - low) * t; }
};

/// The part of a polygon in one of the sectors round a centre.
Polygon inSector(const Polygon& polygon, const AcGePoint2d& center, double from, double to) {
    Polygon left, right, part;
    divide(polygon, {-std::sin(from), std::cos(from), center}, 0, right, left);
    if (left.size() < 3) {
        return {};
    }
    divide(left, {-std::sin(to), std::cos(to), center}, 0, part, right);
    return part;
}

/// Where bands end, between 0 and 1: the middle of the gradient is moved by the shift.
std::vector<double> endsOfBands(int count, double shift) {
    const double middle = std::clamp(0.5 - (gi::isFinite(shift) ? shift : 0) / 2, 0.001, 0.999);
    std::vector<double> ends;
    for (int i = 1; i < count; ++i) {
        const double t = static_cast<double>(i) / count;
        ends.push_back(t < 0.5 ? 2 * t * middle : middle + (2 * t - 1) * (1 - middle));
    }
    return ends;
}

class GradientCutter {
public:
    GradientCutter(const ge::Triangulation& area, const AcDbHatchGradient& gradient,
                   std::vector<GradientBand>& bands)
      : area_(area)
      , bands_(bands)
      , ends_(endsOfBands(static_cast<int>(bands.size()), gradient.shift)) {
        const double angle = gi::isFinite(gradient.angle) ? gradient.angle : 0;
        along_ = {std::cos(angle), std::sin(angle), {}};
        across_ = {-along_.y, along_.x, {}};
        eachTriangle([&](const Polygon& triangle) {
            for (const AcGePoint2d& p : triangle) {
                width_.add(along_.at(p));
                height_.add(across_.at(p));
            }
        });
    }

    void alongAngle() {
        Cutter cutter(bands_, levels(width_));
        eachTriangle([&](const Polygon& triangle) { cutter.cut(triangle, along_); });
    }

    /// Rings round the middle, or round the middle of the lower side.
    void round(bool from_edge) {
        const double u = width_.at(0.5), v = height_.at(from_edge ? 0 : 0.5);
        const AcGePoint2d center{u * along_.x + v * across_.x, u * along_.y + v * across_.y};
        Span reach{0, 0};
        eachTriangle([&](const Polygon& triangle) {
            for (const AcGePoint2d& p : triangle) {
                reach.add(center.distanceTo(p));
            }
        });
        Cutter cutter(bands_, levels(reach));
        constexpr double kSector = 2 * std::numbers::pi / kSides;
        eachTriangle([&](const Polygon& triangle) {
            for (int side = 0; side < kSides; ++side) {
                const double from = side * kSector, middle = from + kSector / 2;
                const Ruler outwards{std::cos(middle), std::sin(middle), center};
                const bool behind = std::all_of(triangle.begin(), triangle.end(),
                                                [&](auto& p) { return outwards.at(p) <= 0; });
                Polygon part =
                    behind ? Polygon() : inSector(triangle, center, from, from + kSector);
                if (part.size() >= 3) {
                    cutter.cut(std::move(part), outwards);
                }
            }
        });
    }

private:
    template <class Visit>
    void eachTriangle(const Visit& visit) const {
        for (const auto& t : area_.triangles) {
            visit({area_.points[t[0]], area_.points[t[1]], area_.points[t[2]]});
        }
    }
    std::vector<double> levels(const Span& span) const {
        std::vector<double> levels;
        for (const double end : ends_) {
            levels.push_back(span.at(end));
        }
        return levels;
    }
    const ge::Triangulation& area_;
    std::vector<GradientBand>& bands_;
    std::vector<double> ends_;
    Ruler along_, across_;
    Span width_, height_;
};

} // namespace

std::vector<GradientBand> gradientBands(const ge::Triangulation& area,
                                        const AcDbHatchGradient& gradient) {
    const GradientName kind = nameOf(gradient.name);
    const auto [first, second] = endsOf(gradient);
    const int steps = static_cast<int>(first.away(second));
    const int count = steps == 0 ? 1 : std::clamp(steps | 1, 3, kMostBands);
    std::vector<GradientBand> bands(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const double place = count > 1 ? static_cast<double>(i) / (count - 1) : 0;
        bands[static_cast<std::size_t>(i)].color = first.mix(second, weightAt(place, kind)).color();
    }
    GradientCutter cutter(area, gradient, bands);
    if (kind.course == Course::kFromMiddle || kind.course == Course::kFromEdge) {
        cutter.round(kind.course == Course::kFromEdge);
    } else {
        cutter.alongAngle();
    }
    std::erase_if(bands, [](const GradientBand& band) { return band.triangles.empty(); });
    return bands;
}

} // namespace draw
