// Polygons and lines into samples.
//
// A face is filled by rows: each row's crossings with all outlines, sorted, bound the spans within
// (even-odd rule), so that concave faces and holes need no triangles. Nearness over a plane is
// linear in the picture: 1/z in perspective, -z in parallel views.
#include "host/gs/painter.h"

#include "host/gi/fallback.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace gs {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr float kFarthest = -std::numeric_limits<float>::infinity();
constexpr std::uint32_t kPainted = 0xff000000U;
/// What is nearer than this part of the target's distance is not seen in perspective.
constexpr double kNearestPart = 1e-3;
/// Of two faces as good as in one plane the first stays: no speckles.
constexpr float kSamePlane = 1e-6F;
/// The cosine below which a face is seen along its plane.
constexpr double kEdgeOn = 1e-9;

std::size_t product(int a, int b) {
    return static_cast<std::size_t>(a) * static_cast<std::size_t>(b);
}

/// The first sample whose centre is not left of (or above) a border.
int firstSample(double border, int count) {
    return static_cast<int>(std::clamp(std::ceil(border - 0.5), 0.0, static_cast<double>(count)));
}

std::uint32_t shade(std::uint32_t rgb, double light) {
    const auto channel = [&](int shift) {
        const double value = static_cast<double>(rgb >> shift & 0xffU) * light;
        return static_cast<std::uint32_t>(std::clamp(value + 0.5, 0.0, 255.0)) << shift;
    };
    return kPainted | channel(16) | channel(8) | channel(0);
}

/// Newell's normal of an outline, twice its area long, and the mean of its corners.
AcGeVector3d normalOf(std::span<const AcGePoint3d> corners, AcGePoint3d& middle) {
    AcGeVector3d normal;
    AcGeVector3d sum;
    const AcGePoint3d origin = corners.front();
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const AcGeVector3d a = corners[i] - origin;
        const AcGeVector3d b = corners[(i + 1) % corners.size()] - origin;
        normal = normal + a.crossProduct(b);
        sum = sum + a;
    }
    middle = origin + sum / static_cast<double>(corners.size());
    return normal;
}

double valueAt(const Ramp& ramp, double x, double y) {
    return std::clamp(ramp.at_origin + ramp.by_x * x + ramp.by_y * y, ramp.lowest, ramp.highest);
}

/// Light over the picture of a triangle; false for one without width there.
bool rampOver(const std::vector<AcGePoint3d>& corners, const std::vector<double>& values,
              Ramp& ramp) {
    const AcGeVector3d b = corners[1] - corners[0];
    const AcGeVector3d c = corners[2] - corners[0];
    const double area = b.x * c.y - c.x * b.y;
    const double to_b = values[1] - values[0];
    const double to_c = values[2] - values[0];
    ramp.by_x = (to_b * c.y - to_c * b.y) / area;
    ramp.by_y = (to_c * b.x - to_b * c.x) / area;
    ramp.at_origin = values[0] - ramp.by_x * corners[0].x - ramp.by_y * corners[0].y;
    const auto [lowest, highest] = std::minmax_element(values.begin(), values.end());
    ramp.lowest = *lowest;
    ramp.highest = *highest;
    return std::isfinite(ramp.at_origin + ramp.by_x + ramp.by_y);
}

/// Cuts a line at the borders of the picture (Liang and Barsky, "A new concept and method for line
/// clipping", 1984); false when nothing is left.
bool cutToPicture(AcGePoint3d& a, AcGePoint3d& b, int width, int height) {
    const AcGeVector3d way = b - a;
    double first = 0;
    double last = 1;
    const double inwards[4] = {way.x, -way.x, way.y, -way.y};
    const double room[4] = {a.x, width - a.x, a.y, height - a.y};
    for (int side = 0; side < 4; ++side) {
        if (inwards[side] == 0) {
            if (room[side] < 0) {
                return false;
            }
            continue;
        }
        const double at = -room[side] / inwards[side];
        (inwards[side] > 0 ? first : last) =
            inwards[side] > 0 ? std::max(first, at) : std::min(last, at);
    }
    if (first > last) {
        return false;
    }
    b = a + way * last;
    a = a + way * first;
    return true;
}

} // namespace

// ---- Camera

Camera::Camera(const AcGsView& view, int width, int height)
  : position_(view.position)
  , width_(width)
  , height_(height)
  , perspective_(view.perspective) {
    const AcGeVector3d sight = view.target - view.position;
    const double distance = sight.length();
    forward_ = sight / distance;
    right_ = forward_.crossProduct(view.up);
    right_ = right_ / right_.length();
    up_ = right_.crossProduct(forward_);
    x_scale_ = width_ / view.field_width * (perspective_ ? distance : 1);
    y_scale_ = height_ / view.field_height * (perspective_ ? distance : 1);
    nearest_ = perspective_ ? distance * kNearestPart : -kInfinity;
    usable_ = gi::isFinite(position_) && gi::isFinite(forward_) && gi::isFinite(right_) &&
              gi::isFinite(up_) && std::isfinite(x_scale_) && std::isfinite(y_scale_) &&
              x_scale_ > 0 && y_scale_ > 0;
}

void Camera::nearnessOf(const AcGeVector3d& normal, const AcGePoint3d& point, Ramp& ramp) const {
    // A pixel's line of sight is (u, v, 1) in perspective, u and v linear in the pixel; on the
    // plane n . p = d it ends at depth d / (n . (u, v, 1)). In parallel views, x and y are so.
    const double d = normal.dotProduct(point.asVector());
    const double by_u = normal.x / (perspective_ ? d : normal.z);
    const double by_v = normal.y / (perspective_ ? d : normal.z);
    const double constant = perspective_ ? normal.z / d : -d / normal.z;
    const double unit = perspective_ ? 1 : y_scale_ / height_;
    ramp.by_x = by_u / x_scale_ * unit;
    ramp.by_y = -by_v / y_scale_ * unit;
    ramp.at_origin = constant * unit - ramp.by_x * width_ / 2 - ramp.by_y * height_ / 2;
}

AcGeVector3d Camera::toEye(const AcGeVector3d& world) const {
    return {world.dotProduct(right_), world.dotProduct(up_), world.dotProduct(forward_)};
}

AcGePoint3d Camera::toEye(const AcGePoint3d& world) const {
    return AcGePoint3d::kOrigin + toEye(world - position_);
}

AcGePoint3d Camera::toPixels(const AcGePoint3d& eye) const {
    const double depth = perspective_ ? eye.z : 1;
    return {width_ / 2 + eye.x / depth * x_scale_, height_ / 2 - eye.y / depth * y_scale_,
            perspective_ ? 1 / eye.z : -eye.z * y_scale_ / height_};
}

double Camera::pixelSize(const AcGePoint3d& world) const {
    const double depth = perspective_ ? std::max(std::abs(toEye(world).z), nearest_) : 1;
    return depth / std::max(x_scale_, y_scale_);
}

double Camera::facing(const AcGePoint3d& eye, const AcGeVector3d& normal) const {
    const AcGeVector3d sight = perspective_ ? eye.asVector() : AcGeVector3d::kZAxis;
    const double lengths = sight.length() * normal.length();
    return lengths > 0 ? normal.dotProduct(sight) / lengths : 0;
}

double lightOf(double cosine) {
    constexpr double kAmbient = 0.45; // a wall seen along its face keeps its colour
    return kAmbient + (1 - kAmbient) * std::abs(cosine);
}

void Face::clear() {
    corners.clear();
    ends.clear();
    light.clear();
}

// ---- Painter

Painter::Painter(const AcGsView& view, int width, int height)
  : width_(width)
  , height_(height)
  , camera_(view, width, height)
  , nearness_(product(width * kSide, height * kSide), kFarthest)
  , line_nearness_(product(width, height), kFarthest)
  , samples_(nearness_.size(), 0)
  , pixels_(line_nearness_.size(), kAcGsKeyColor) {}

/// Each outline is cut at the nearest plane on its own; edges that fall together there cancel out
/// by the even-odd rule. The result is in samples of the shaded picture.
void Painter::clipAndProject(const Face& face) {
    clipped_.clear();
    clipped_ends_.clear();
    const double nearest = camera_.nearest();
    std::size_t begin = 0;
    for (const std::size_t end : face.ends) {
        for (std::size_t i = begin; i < end; ++i) {
            const AcGePoint3d& a = face.corners[i];
            const AcGePoint3d& b = face.corners[i + 1 == end ? begin : i + 1];
            const bool a_seen = a.z >= nearest;
            if (a_seen) {
                clipped_.push_back(camera_.toPixels(a));
            }
            if (a_seen != (b.z >= nearest)) {
                AcGePoint3d cut = a + (b - a) * ((nearest - a.z) / (b.z - a.z));
                cut.z = nearest;
                clipped_.push_back(camera_.toPixels(cut));
            }
        }
        clipped_ends_.push_back(clipped_.size());
        begin = end;
    }
    for (AcGePoint3d& p : clipped_) {
        p.x *= kSide;
        p.y *= kSide;
    }
}

/// Nearness and light over the picture. False for a face that is seen along its plane or has no
/// area.
bool Painter::describe(const Face& face, Surface& surface) const {
    AcGePoint3d middle;
    const AcGeVector3d normal = normalOf({face.corners.data(), face.ends.front()}, middle);
    const double cosine = camera_.facing(middle, normal);
    if (!(std::abs(cosine) > kEdgeOn)) {
        return false;
    }
    Ramp& nearness = surface.nearness;
    camera_.nearnessOf(normal, middle, nearness);
    nearness.by_x /= kSide;
    nearness.by_y /= kSide;
    const auto [lowest, highest] =
        std::minmax_element(clipped_.begin(), clipped_.end(),
                            [](const AcGePoint3d& a, const AcGePoint3d& b) { return a.z < b.z; });
    nearness.lowest = lowest->z;
    nearness.highest = highest->z;
    const bool whole = clipped_.size() == 3 && face.corners.size() == 3;
    if (face.light.size() == 3 && whole && rampOver(clipped_, face.light, surface.light)) {
        return true;
    }
    const double flat = face.light.empty()
                            ? lightOf(cosine)
                            : std::accumulate(face.light.begin(), face.light.end(), 0.0) /
                                  static_cast<double>(face.light.size());
    surface.light = {flat, 0, 0, flat, flat};
    return true;
}

void Painter::fill(const Face& face, std::uint32_t rgb) {
    if (face.ends.empty() || face.ends.front() < 3 || !gi::isFinite(face.corners)) {
        return;
    }
    clipAndProject(face);
    Surface surface;
    surface.rgb = rgb;
    if (clipped_.size() >= 3 && gi::isFinite(clipped_) && describe(face, surface)) {
        scan(surface);
    }
}

void Painter::scan(const Surface& surface) {
    double top = kInfinity;
    double bottom = -kInfinity;
    for (const AcGePoint3d& p : clipped_) {
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
    }
    const int last = firstSample(bottom, height_ * kSide);
    for (int row = firstSample(top, height_ * kSide); row < last; ++row) {
        const double y = row + 0.5;
        crossings_.clear();
        std::size_t begin = 0;
        for (const std::size_t end : clipped_ends_) {
            for (std::size_t i = begin; i < end; ++i) {
                // From the upper end down, so that neighbours agree on the border that they share.
                AcGePoint3d a = clipped_[i];
                AcGePoint3d b = clipped_[i + 1 == end ? begin : i + 1];
                if ((a.y <= y) == (b.y <= y)) {
                    continue;
                }
                if (a.y > b.y) {
                    std::swap(a, b);
                }
                crossings_.push_back(a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y)));
            }
            begin = end;
        }
        std::sort(crossings_.begin(), crossings_.end());
        for (std::size_t i = 0; i + 1 < crossings_.size(); i += 2) {
            span(row, crossings_[i], crossings_[i + 1], surface);
        }
    }
}

void Painter::span(int row, double from, double to, const Surface& surface) {
    const int columns = width_ * kSide;
    const int first = firstSample(from, columns);
    const int last = firstSample(to, columns);
    const double y = row + 0.5;
    const bool flat = surface.light.by_x == 0 && surface.light.by_y == 0;
    const std::uint32_t color = shade(surface.rgb, surface.light.at_origin);
    std::size_t at = product(row, columns) + static_cast<std::size_t>(first);
    for (int column = first; column < last; ++column, ++at) {
        const auto near = static_cast<float>(valueAt(surface.nearness, column + 0.5, y));
        if (near - std::abs(near) * kSamePlane > nearness_[at]) {
            nearness_[at] = near;
            samples_[at] =
                flat ? color : shade(surface.rgb, valueAt(surface.light, column + 0.5, y));
        }
    }
}

void Painter::drop(const AcGePoint3d& at, std::uint32_t rgb) {
    if (!(at.x >= 0 && at.x < width_ && at.y >= 0 && at.y < height_)) {
        return;
    }
    const std::size_t index =
        product(static_cast<int>(at.y), width_) + static_cast<std::size_t>(at.x);
    const auto near = static_cast<float>(at.z);
    if (near >= line_nearness_[index]) {
        line_nearness_[index] = near;
        pixels_[index] = rgb;
    }
}

void Painter::line(AcGePoint3d from, AcGePoint3d to, std::uint32_t rgb) {
    const double nearest = camera_.nearest();
    if (!gi::isFinite(from) || !gi::isFinite(to) || (from.z < nearest && to.z < nearest)) {
        return;
    }
    if (from.z < nearest || to.z < nearest) {
        AcGePoint3d& hidden = from.z < nearest ? from : to;
        hidden = from + (to - from) * ((nearest - from.z) / (to.z - from.z));
        hidden.z = nearest;
    }
    AcGePoint3d a = camera_.toPixels(from);
    AcGePoint3d b = camera_.toPixels(to);
    if (!gi::isFinite(a) || !gi::isFinite(b) || !cutToPicture(a, b, width_, height_)) {
        return;
    }
    const AcGeVector3d way = b - a;
    const double steps = std::ceil(std::max(std::abs(way.x), std::abs(way.y)));
    for (int i = 0; i <= static_cast<int>(steps); ++i) {
        drop(a + way * (steps > 0 ? i / steps : 0), rgb);
    }
}

AcGsImage Painter::shaded() const {
    AcGsImage image{width_, height_, std::vector<std::uint8_t>(product(width_, height_) * 4)};
    std::uint8_t* out = image.rgba.data();
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x, out += 4) {
            std::uint32_t sums[3] = {0, 0, 0};
            std::uint32_t painted = 0;
            for (int i = 0; i < kSide * kSide; ++i) {
                const std::size_t row = product(y * kSide + i / kSide, width_ * kSide);
                const std::uint32_t sample =
                    samples_[row + static_cast<std::size_t>(x * kSide + i % kSide)];
                if (sample != 0) {
                    ++painted;
                    sums[0] += sample >> 16 & 0xffU;
                    sums[1] += sample >> 8 & 0xffU;
                    sums[2] += sample & 0xffU;
                }
            }
            for (int c = 0; c < 3 && painted > 0; ++c) {
                out[c] = static_cast<std::uint8_t>((sums[c] + painted / 2) / painted);
            }
            out[3] = static_cast<std::uint8_t>(painted * 255 / (kSide * kSide));
        }
    }
    return image;
}

AcGsImage Painter::wires() const {
    AcGsImage image{width_, height_, {}};
    image.rgba.reserve(pixels_.size() * 4);
    for (const std::uint32_t rgb : pixels_) {
        image.rgba.insert(image.rgba.end(), {static_cast<std::uint8_t>(rgb >> 16),
                                             static_cast<std::uint8_t>(rgb >> 8),
                                             static_cast<std::uint8_t>(rgb), 255});
    }
    return image;
}

} // namespace gs
