// Multilines draw themselves.
#include "host/db/mline.h"

#include "host/db/draw_util.h"
#include "host/gi/face_list.h"

#include <numbers>

ACRX_DXF_DEFINE_MEMBERS(AcDbMlineStyle, AcDbObject, "MLINESTYLE")
ACRX_DXF_DEFINE_MEMBERS(AcDbMline, AcDbEntity, "MLINE")

namespace {

/// Elements at most, as programs allow.
constexpr std::size_t kMostElements = 16;

/// The stretches of a segment of that length that are filled, as parts of it from 0 to 1. Stored
/// are, in turn, where one begins and where it ends; the last one may have no end.
std::vector<std::array<double, 2>> stretchesOf(const std::vector<double>& stored, double length) {
    std::vector<std::array<double, 2>> stretches;
    if (stored.size() < 2 || !(length > 0)) {
        return {{0, 1}};
    }
    const auto part = [length](double along) { return std::clamp(along / length, 0.0, 1.0); };
    for (std::size_t i = 0; i < stored.size(); i += 2) {
        const double from = part(stored[i]);
        const double to = i + 1 < stored.size() ? part(stored[i + 1]) : 1;
        if (from < to) {
            stretches.push_back({from, to});
        }
    }
    return stretches;
}

AcGePoint3d between(const AcGePoint3d& a, const AcGePoint3d& b, double t) {
    return a + (b - a) * t;
}

} // namespace

bool AcDbMline::isFinite() const {
    return gi::isFinite(scale_) && gi::isFinite(normal_) &&
           std::all_of(vertices_.begin(), vertices_.end(), [](const Vertex& v) {
               const auto finite = [](double d) { return gi::isFinite(d); };
               return gi::isFinite(v.point) && gi::isFinite(v.direction) && gi::isFinite(v.miter) &&
                      std::all_of(v.fills.begin(), v.fills.end(), finite) &&
                      std::all_of(v.elements.begin(), v.elements.end(), [&](const auto& e) {
                          return std::all_of(e.begin(), e.end(), finite);
                      });
           });
}

std::size_t AcDbMline::elementCount() const {
    std::size_t most = 0;
    for (const Vertex& vertex : vertices_) {
        most = std::max(most, vertex.elements.size());
    }
    const AcDbObjectPointer<AcDbMlineStyle> style(style_);
    const std::size_t of_style = style ? style->elements().size() : 0;
    return std::min(most > 0 ? most : of_style, kMostElements);
}

AcGePoint3d AcDbMline::pointOf(std::size_t index, std::size_t element) const {
    const Vertex& vertex = vertices_[index];
    if (element < vertex.elements.size() && !vertex.elements[element].empty()) {
        return vertex.point + vertex.miter * vertex.elements[element].front();
    }
    // A file without parameters: the style's offsets, moved by the justification.
    const AcDbObjectPointer<AcDbMlineStyle> style(style_);
    if (!style || element >= style->elements().size()) {
        return vertex.point;
    }
    double low = 0, high = 0;
    for (const auto& e : style->elements()) {
        low = std::min(low, e.offset);
        high = std::max(high, e.offset);
    }
    const double moved = justification_ == 0 ? -high : justification_ == 2 ? -low : 0;
    const AcGeVector3d left = draw::unitNormal(normal_).crossProduct(vertex.direction);
    const double along = left.dotProduct(vertex.miter); // a slanted miter is longer
    const double away = (style->elements()[element].offset + moved) * scale_;
    return vertex.point + vertex.miter * (std::abs(along) > 1e-6 ? away / along : away);
}

Acad::ErrorStatus AcDbMline::getGeomExtents(AcDbExtents& extents) const {
    if (!isFinite()) {
        return Acad::eInvalidExtents;
    }
    AcDbExtents box;
    const std::size_t elements = elementCount();
    for (std::size_t v = 0; v < vertices_.size(); ++v) {
        box.addPoint(vertices_[v].point);
        for (std::size_t e = 0; e < elements; ++e) {
            box.addPoint(pointOf(v, e));
        }
    }
    return draw::giveExtents(box, extents);
}

const char* AcDbMline::notRenderedReason() const {
    if (!isFinite() || vertices_.size() < 2) {
        return draw::kDegenerate;
    }
    const AcDbObjectPointer<AcDbMlineStyle> style(style_);
    return style && style->isFilled() && elementCount() > 1 ? nullptr : draw::kNoThickness;
}

void AcDbMline::drawLines(AcGiWorldDraw* draw) const {
    const std::size_t elements = elementCount();
    for (std::size_t e = 0; e < elements; ++e) {
        std::vector<AcGePoint3d> points;
        for (std::size_t v = 0; v < vertices_.size(); ++v) {
            points.push_back(pointOf(v, e));
        }
        if (isClosed()) {
            points.push_back(pointOf(0, e));
        }
        if (gi::isFinite(points)) {
            gi::polyline(draw, points, nullptr);
        }
    }
}

std::array<std::size_t, 2> AcDbMline::outerElements() const {
    // Those farthest apart on the first miter.
    const auto place = [this](std::size_t e) {
        return (pointOf(0, e) - vertices_[0].point).dotProduct(vertices_[0].miter);
    };
    std::array<std::size_t, 2> outer{0, 0};
    for (std::size_t e = 1; e < elementCount(); ++e) {
        outer[0] = place(e) < place(outer[0]) ? e : outer[0];
        outer[1] = place(e) > place(outer[1]) ? e : outer[1];
    }
    return outer;
}

void AcDbMline::addSegments(gi::FaceList& body) const {
    const auto [low, high] = outerElements();
    const std::size_t segments = vertices_.size() - (isClosed() ? 0 : 1);
    for (std::size_t v = 0; v < segments; ++v) {
        const std::size_t next = (v + 1) % vertices_.size();
        const AcGePoint3d a = pointOf(v, low), b = pointOf(next, low);
        const AcGePoint3d c = pointOf(next, high), d = pointOf(v, high);
        const double length = vertices_[v].point.distanceTo(vertices_[next].point);
        for (const auto& [from, to] : stretchesOf(vertices_[v].fills, length)) {
            const auto first = static_cast<std::int32_t>(body.points.size());
            body.points.insert(body.points.end(), {between(a, b, from), between(a, b, to),
                                                   between(d, c, to), between(d, c, from)});
            const std::int32_t corners[] = {first, first + 1, first + 2, first + 3};
            body.add(corners);
        }
    }
}

/// Round caps bulge out of an end by a half circle over the outer elements.
void AcDbMline::addCap(gi::FaceList& body, std::size_t vertex, const AcGeVector3d& outwards,
                       double deviation) const {
    const auto [low, high] = outerElements();
    const AcGePoint3d p = pointOf(vertex, low);
    const AcGeVector3d half = (pointOf(vertex, high) - p) * 0.5;
    const AcGeVector3d out = outwards.normal() * half.length();
    const int steps = gi::arcSteps(half.length(), std::numbers::pi, deviation);
    std::vector<std::int32_t> indices;
    for (int i = 0; i <= steps; ++i) {
        const double t = std::numbers::pi * i / steps;
        indices.push_back(static_cast<std::int32_t>(body.points.size()));
        body.points.push_back(p + half - half * std::cos(t) + out * std::sin(t));
    }
    if (half.crossProduct(out).dotProduct(normal_) > 0) { // at the start: the other way round
        std::reverse(indices.begin(), indices.end());
    }
    body.add(indices);
}

void AcDbMline::drawFill(AcGiWorldDraw* draw, const AcDbMlineStyle& style) const {
    gi::FaceList body;
    addSegments(body);
    const double deviation = draw->deviation(kAcGiMaxDevForCurve, vertices_[0].point);
    if (!isClosed() && (flags_ & kNoStartCaps) == 0 && style.hasFlag(AcDbMlineStyle::kStartRound)) {
        addCap(body, 0, -vertices_.front().direction, deviation);
    }
    if (!isClosed() && (flags_ & kNoEndCaps) == 0 && style.hasFlag(AcDbMlineStyle::kEndRound)) {
        const std::size_t last = vertices_.size() - 1;
        addCap(body, last, vertices_[last].point - vertices_[last - 1].point, deviation);
    }
    if (!body.faces.empty() && gi::isFinite(body.points)) {
        gi::shell(draw, body.points, body.faces);
    }
}

bool AcDbMline::worldDraw(AcGiWorldDraw* draw) {
    if (!isFinite() || vertices_.size() < 2) {
        return true;
    }
    drawLines(draw);
    const AcDbObjectPointer<AcDbMlineStyle> style(style_);
    if (style && style->isFilled() && elementCount() > 1) {
        draw::ColorScope colors(draw);
        colors.set(style->fillColor());
        drawFill(draw, *style);
    }
    return true;
}
