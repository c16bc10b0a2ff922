#include "host/acis/body_builder.h"
#include "host/acis/spline.h"
#include "host/db/color.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace acis {

namespace {

constexpr double kTurn = 2 * 3.14159265358979323846;

bool isSmall(double value) { return std::abs(value) <= kMostValue; }

/// The last numbers of a record, in their order; false when there are fewer.
bool lastNumbers(const Part& part, const Record& record, double* values, std::uint32_t count) {
    std::uint32_t found = 0;
    for (std::uint32_t i = record.end; i > record.begin && found < count; --i) {
        if (numberOf(part.tokens[i - 1], values[count - 1 - found])) {
            ++found;
        }
    }
    return found == count;
}

std::uint32_t channel(double value) {
    return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

/// What an attribute says of the colour.
std::optional<std::uint32_t> attributeColor(const Part& part, const Record& attribute) {
    enum : std::uint32_t { kTrueColor = 0xc2, kIndexed = 0xc3 };
    std::array<double, 3> values{};
    if (attribute.leaf == "rgb_color" && lastNumbers(part, attribute, values.data(), 3)) {
        return channel(values[0]) << 16 | channel(values[1]) << 8 | channel(values[2]);
    }
    double number = 0;
    if ((attribute.leaf != "color" && attribute.leaf != "truecolor") ||
        !lastNumbers(part, attribute, &number, 1) || !(std::abs(number) < 4294967296.0)) {
        return std::nullopt;
    }
    const auto bits = static_cast<std::uint32_t>(static_cast<std::int64_t>(number));
    const std::uint32_t index = bits & 0xffU;
    if (attribute.leaf == "truecolor" && bits >> 24 == kTrueColor) {
        return bits & 0xffffffU;
    }
    const bool indexed = attribute.leaf == "color" ? bits == index : bits >> 24 == kIndexed;
    if (indexed && index > 0) {
        return AcCmEntityColor::lookUpRGB(static_cast<int>(index));
    }
    return std::nullopt;
}

/// A way in which the parameters of a curve may stand to those of the surface.
struct Turned {
    bool swap, minus_u, minus_v;
};

brep::BSplineCurve turnedCurve(brep::BSplineCurve curve, const Turned& turned) {
    for (AcGePoint3d& p : curve.points) {
        if (turned.swap) {
            std::swap(p.x, p.y);
        }
        p = {turned.minus_u ? -p.x : p.x, turned.minus_v ? -p.y : p.y, 0};
    }
    return curve;
}

/// Whether a spline's knots reach as far as `value`.
bool reaches(const std::vector<double>& knots, double value) {
    const double slack = 1e-6 * (knots.back() - knots.front());
    return value >= knots.front() - slack && value <= knots.back() + slack;
}

bool isOn(const brep::Surface& surface, const AcGePoint3d& uv) {
    const auto* spline = std::get_if<brep::BSplineSurface>(&surface);
    return spline == nullptr || (reaches(spline->knots_u, uv.x) && reaches(spline->knots_v, uv.y));
}

/// The largest distance of a parameter curve on its surface from the edge, at five places.
std::optional<double> distance(const brep::Surface& surface, const brep::Curve& curve,
                               const brep::Edge& edge, const brep::BSplineCurve& pcurve) {
    double most = 0;
    for (int i = 0; i <= 4; ++i) {
        const double t = edge.from + (edge.to - edge.from) * i / 4;
        const auto wanted = pointAt(curve, edge.reversed ? -t : t);
        const AcGePoint3d uv = pointAt(pcurve, t);
        const auto point = pointAt(surface, uv.x, uv.y);
        if (!wanted || !point || !isOn(surface, uv)) {
            return std::nullopt;
        }
        const double found = wanted->distanceTo(*point);
        if (!std::isfinite(found)) {
            return std::nullopt;
        }
        most = std::max(most, found);
    }
    return most;
}

} // namespace

int BodyBuilder::vertexAt(std::int64_t number) {
    const Record* record = recordOf(number, "vertex");
    if (record == nullptr) {
        return -1;
    }
    Entry& entry = vertices_[placeOf(*record)];
    if (entry.state != State::kUnseen) {
        return entry.index;
    }
    entry.state = State::kBroken;
    const Record* point = nullptr;
    std::int64_t other = 0;
    for (Cursor cursor = fieldsOf(part_, *record); cursor.more();) {
        if (!cursor.takeReference(other)) {
            cursor.skip();
        } else if (const Record* found = recordOf(other, "point")) {
            point = found;
        }
    }
    std::array<double, 3> values{};
    if (point == nullptr || !fieldsOf(part_, *point).take(values.data(), 3) ||
        !std::all_of(values.begin(), values.end(), isSmall)) {
        return -1;
    }
    entry = {State::kSound, static_cast<int>(body_.vertices.size())};
    body_.vertices.push_back({{values[0], values[1], values[2]}});
    return entry.index;
}

bool BodyBuilder::edgeAt(std::int64_t number, int& index) {
    const Record* record = recordOf(number, "edge");
    if (record == nullptr) {
        return false;
    }
    Entry& entry = edges_[placeOf(*record)];
    if (entry.state == State::kUnseen) {
        brep::Edge edge;
        entry.state = State::kBroken;
        if (makeEdge(*record, edge)) {
            entry = {State::kSound, static_cast<int>(body_.edges.size())};
            body_.edges.push_back(edge);
        }
    }
    index = entry.index;
    return entry.state == State::kSound;
}

/// start and end vertex, each with its parameter since 5.0, coedge, curve, sense
bool BodyBuilder::makeEdge(const Record& record, brep::Edge& edge) {
    Cursor cursor = fieldsOf(part_, record);
    std::int64_t start = 0;
    std::int64_t end = 0;
    std::int64_t coedge = 0;
    std::int64_t curve = 0;
    if (!cursor.takeReference(start)) {
        return false;
    }
    edge.has_range = cursor.take(edge.from);
    const bool sound = cursor.takeReference(end) && (!edge.has_range || cursor.take(edge.to)) &&
                       cursor.takeReference(coedge) && cursor.takeReference(curve);
    if (!sound || !isSmall(edge.from) || !isSmall(edge.to)) {
        return false;
    }
    cursor.takeBool(edge.reversed);
    edge.start = vertexAt(start);
    edge.end = vertexAt(end);
    if (edge.start < 0 || edge.end < 0) {
        return false;
    }
    if (!curveAt(curve, edge.curve)) {
        const Record* found = part_.record(curve);
        reason_ = "an edge whose curve cannot be made";
        reason_ += found != nullptr ? " (" + std::string(found->leaf.substr(0, 30)) + ")" : "";
        return false;
    }
    if (edge.curve < 0) {
        edge.has_range = false;
        return true;
    }
    const brep::Curve& made = body_.curves[static_cast<std::size_t>(edge.curve)];
    if (edge.has_range && !(edge.to > edge.from) && std::holds_alternative<brep::Ellipse>(made)) {
        edge.to += kTurn * (std::floor((edge.from - edge.to) / kTurn) + 1);
    }
    edge.has_range = edge.has_range && edge.to > edge.from;
    return true;
}

bool BodyBuilder::curveAt(std::int64_t number, int& index) {
    index = -1;
    if (number < 0) {
        return true;
    }
    const Record* record = recordOf(number, "curve");
    if (record == nullptr) {
        return false;
    }
    Entry& entry = curves_[geometry_.shapeOf(*record)];
    if (entry.state == State::kUnseen) {
        brep::Curve curve;
        entry.state = geometry_.readCurve(*record, curve) ? State::kSound : State::kBroken;
        if (entry.state == State::kSound && curve.index() != 0) {
            entry.index = static_cast<int>(body_.curves.size());
            body_.curves.push_back(std::move(curve));
        }
    }
    index = entry.index;
    return entry.state == State::kSound;
}

const BodyBuilder::SurfaceEntry& BodyBuilder::surfaceOf(const Record& record) {
    const auto [found, made] = surfaces_.try_emplace(geometry_.shapeOf(record));
    if (made) {
        SurfaceRead read = geometry_.readSurface(record);
        found->second.flip = read.flip;
        found->second.kind = std::move(read.kind);
        if (read.surface.index() != 0) {
            found->second.index = static_cast<int>(body_.surfaces.size());
            body_.surfaces.push_back(std::move(read.surface));
        }
    }
    return found->second;
}

/// Keeps the coedge's parameter curve when it leads along the edge. Releases and kinds differ in
/// the directions of the parameters, so that all are tried.
void BodyBuilder::fitPCurve(std::int64_t number, const brep::Face& face, brep::Coedge& coedge) {
    const brep::Surface& surface = body_.surfaces[static_cast<std::size_t>(face.surface)];
    const brep::Edge& edge = body_.edges[static_cast<std::size_t>(coedge.edge)];
    const bool parametric = std::holds_alternative<brep::BSplineSurface>(surface) ||
                            std::holds_alternative<brep::Extrusion>(surface) ||
                            std::holds_alternative<brep::Revolution>(surface) ||
                            std::holds_alternative<brep::CurveSum>(surface);
    if (!parametric || edge.curve < 0 || !edge.has_range) {
        return;
    }
    auto found = geometry_.readPCurve(*part_.record(number));
    if (!found) {
        return;
    }
    const brep::Curve& curve = body_.curves[static_cast<std::size_t>(edge.curve)];
    const auto middle = pointAt(curve, (edge.reversed ? -0.5 : 0.5) * (edge.from + edge.to));
    const AcGePoint3d start = body_.vertices[static_cast<std::size_t>(edge.start)].point;
    const AcGePoint3d end = body_.vertices[static_cast<std::size_t>(edge.end)].point;
    if (!middle) {
        return;
    }
    const double length = start.distanceTo(*middle) + middle->distanceTo(end);
    double best = 1e-3 * length + 1e-9 * start.asVector().length();
    static constexpr std::array ways{Turned{false, false, false}, Turned{true, false, false},
                                     Turned{false, true, false}, Turned{false, false, true}};
    for (int direction = 0; direction < 2; ++direction) {
        for (const Turned& way : ways) {
            brep::BSplineCurve turned = turnedCurve(*found, way);
            const auto off = distance(surface, curve, edge, turned);
            if (off && *off < best) {
                best = *off;
                coedge.pcurve = brep::PCurve{std::move(turned)};
            }
        }
        reverse(*found);
    }
}

std::optional<std::uint32_t> BodyBuilder::colorOf(const Record& record) const {
    std::int64_t next = -1;
    Cursor(part_, record.begin, record.end).takeReference(next);
    for (int i = 0; i < 100; ++i) {
        const Record* attribute = recordOf(next, "attrib");
        if (attribute == nullptr) {
            break;
        }
        if (const auto color = attributeColor(part_, *attribute)) {
            return color;
        }
        Cursor cursor = fieldsOf(part_, *attribute);
        std::int64_t ignored = 0;
        while (cursor.takeInteger(ignored)) {
        }
        if (!cursor.takeReference(next)) {
            break;
        }
    }
    return std::nullopt;
}

/// Three rows that points are multiplied with from the left, the shift, the scale.
bool BodyBuilder::readTransform(const Record& record, AcGeMatrix3d& matrix) const {
    std::array<double, 13> v{};
    if (!fieldsOf(part_, record).take(v.data(), 13) || !std::all_of(v.begin(), v.end(), isSmall)) {
        return false;
    }
    const double scale = v[12];
    AcGeMatrix3d found;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            found.entry[row][column] = v[column * 3 + row] * scale;
        }
        found.entry[row][3] = v[9 + row];
    }
    if (!(std::abs(found.det()) > 0)) {
        return false;
    }
    matrix = found;
    return true;
}

} // namespace acis
