// Hatches in DXF.
#include "host/db/hatch.h"

#include "host/dxf/fields.h"

#include <algorithm>

namespace {

/// Walks the boundary part of a hatch, tag by tag, in the order that the format gives.
class LoopReader {
public:
    LoopReader(std::span<const dxf::Tag> range, const dxf::ObjectTags& tags, bool polylines_only)
      : range_(range)
      , tags_(tags)
      , polylines_only_(polylines_only) {}

    std::vector<AcDbHatchLoop> read();
    std::size_t used() const { return at_; } ///< tags that were taken

private:
    bool at(int code) const { return at_ < range_.size() && range_[at_].code == code; }
    /// The value when the next tag has that code; otherwise the fallback, and nothing is passed.
    double take(int code, double fallback = 0) {
        return at(code) ? tags_.real(range_[at_++]) : fallback;
    }
    std::int64_t take_integer(int code, std::int64_t fallback = 0) {
        return at(code) ? tags_.integer(range_[at_++]) : fallback;
    }
    AcGePoint2d take_point(int code) {
        const double x = take(code), y = take(code + 10);
        return {x, y};
    }
    /// Counts of the file are believed as far as there are tags.
    std::size_t take_count(int code) {
        const std::int64_t count = take_integer(code);
        const auto left = static_cast<std::int64_t>(range_.size() - at_);
        return static_cast<std::size_t>(std::clamp<std::int64_t>(count, 0, left));
    }
    void polyline(AcDbHatchLoop& loop);
    void edge(AcDbHatchLoop& loop);
    void ellipse(AcDbHatchEdge& edge, bool circular);
    AcDbHatchSpline spline();
    std::span<const dxf::Tag> range_;
    const dxf::ObjectTags& tags_;
    bool polylines_only_;
    std::size_t at_ = 0;
};

void LoopReader::polyline(AcDbHatchLoop& loop) {
    loop.flags |= AcDbHatchLoop::kPolyline;
    for (int i = 0; i < 2; ++i) { // some programs write the two the other way round
        take_integer(72);
        loop.closed = take_integer(73, loop.closed ? 1 : 0) != 0;
    }
    const std::size_t count = take_count(93);
    for (std::size_t i = 0; i < count && at(10); ++i) {
        const AcGePoint2d p = take_point(10);
        loop.vertices.push_back({p, take(42)});
    }
}

void LoopReader::ellipse(AcDbHatchEdge& edge, bool circular) {
    edge.start = take_point(10);
    if (!circular) {
        edge.end = take_point(11);
    }
    edge.radius = take(40);
    edge.from = take(50) * dxf::kRadians;
    edge.to = take(51) * dxf::kRadians;
    edge.counter_clockwise = take_integer(73, 1) != 0;
}

AcDbHatchSpline LoopReader::spline() {
    AcDbHatchSpline spline;
    spline.degree = static_cast<std::int32_t>(std::clamp<std::int64_t>(take_integer(94, 3), 1, 25));
    take_integer(73);
    take_integer(74);
    const std::size_t knots = take_count(95), points = take_count(96);
    for (std::size_t i = 0; i < knots && at(40); ++i) {
        spline.knots.push_back(take(40));
    }
    bool weighted = false;
    for (std::size_t i = 0; i < points && at(10); ++i) {
        spline.control_points.push_back(take_point(10));
        weighted = weighted || at(42);
        spline.weights.push_back(take(42, 1));
    }
    if (!weighted) {
        spline.weights.clear();
    }
    // Before R2010 edges had no fit points: the count is then that of the boundary objects.
    const std::size_t fits = take_count(97);
    for (std::size_t i = 0; i < fits && at(11); ++i) {
        spline.fit_points.push_back(take_point(11));
    }
    take_point(12);
    take_point(13);
    return spline;
}

void LoopReader::edge(AcDbHatchLoop& loop) {
    AcDbHatchEdge edge;
    const std::int64_t kind = take_integer(72);
    if (kind < AcDbHatchEdge::kLine || kind > AcDbHatchEdge::kSpline) {
        return;
    }
    edge.kind = static_cast<AcDbHatchEdge::Kind>(kind);
    if (edge.kind == AcDbHatchEdge::kLine) {
        edge.start = take_point(10);
        edge.end = take_point(11);
    } else if (edge.kind == AcDbHatchEdge::kSpline) {
        edge.spline = static_cast<std::uint32_t>(loop.splines.size());
        loop.splines.push_back(spline());
    } else {
        ellipse(edge, edge.kind == AcDbHatchEdge::kArc);
    }
    loop.edges.push_back(edge);
}

std::vector<AcDbHatchLoop> LoopReader::read() {
    std::vector<AcDbHatchLoop> loops;
    const std::size_t count = take_count(91);
    for (std::size_t i = 0; i < count && at_ < range_.size(); ++i) {
        while (at_ < range_.size() && !at(92) && !at(75) && !at(76) &&
               !(polylines_only_ && (at(93) || at(73)))) {
            ++at_; // boundary objects, and what is not expected
        }
        if (at_ >= range_.size() || at(75) || at(76)) {
            break;
        }
        AcDbHatchLoop& loop = loops.emplace_back();
        loop.flags = static_cast<std::int32_t>(take_integer(92));
        if (polylines_only_ || (loop.flags & AcDbHatchLoop::kPolyline) != 0) {
            polyline(loop);
        } else {
            const std::size_t edges = take_count(93);
            for (std::size_t e = 0; e < edges && at(72); ++e) {
                edge(loop);
            }
        }
        loop.vertices.shrink_to_fit();
        loop.edges.shrink_to_fit();
    }
    return loops;
}

/// The colour of a word as extended data hold it; false for none.
bool color_of_word(std::int64_t word, AcCmEntityColor& color) {
    const auto bits = static_cast<std::uint32_t>(word);
    switch (bits >> 24) {
    case AcCmEntityColor::kByColor:
        color = AcCmEntityColor::trueColor(bits & 0xffffff);
        return true;
    case AcCmEntityColor::kByACI:
        color = AcCmEntityColor::index(static_cast<int>(bits & 0xff));
        return true;
    default:
        return false;
    }
}

} // namespace

void AcDbHatch::take(const dxf::Tag& tag, const dxf::ObjectTags& tags) {
    using F = dxf::Field<AcDbHatchGradient>;
    static constexpr F kGradient[] = {
        F(460, &AcDbHatchGradient::angle), F(461, &AcDbHatchGradient::shift),
        F(462, &AcDbHatchGradient::tint), F(470, &AcDbHatchGradient::name)};
    switch (tag.code) {
    case 30:
        elevation_ = tags.real(tag);
        break;
    case 2:
        pattern_ = tags.text(tag);
        break;
    case 70:
        solid_ = tags.integer(tag) != 0;
        break;
    case 75:
        style_ = std::clamp<std::int32_t>(tags.int32(tag), kNormal, kIgnore);
        break;
    case 450:
        gradient_.on = tags.integer(tag) != 0;
        break;
    case 452:
        gradient_.one_color = tags.integer(tag) != 0;
        break;
    case 463:
        gradient_.colors.emplace_back();
        break;
    case 63:
    case 421: { // a true colour stands behind its index
        const AcCmEntityColor color =
            tag.code == 63
                ? AcCmEntityColor::index(tags.int32(tag))
                : AcCmEntityColor::trueColor(static_cast<std::uint32_t>(tags.integer(tag)));
        if (gradient_.colors.empty()) {
            background_ = color;
            has_background_ = !color.isByLayer();
        } else {
            gradient_.colors.back() = color;
        }
        break;
    }
    default:
        dxf::take_extrusion(normal_, tag, tags);
        dxf::load_fields(gradient_, kGradient, std::span(&tag, 1), tags);
    }
}

void AcDbMPolygon::take(const dxf::Tag& tag, const dxf::ObjectTags& tags) {
    if (tag.code == 71) { // 70 is a version
        solid_ = tags.integer(tag) != 0;
    } else if (tag.code != 70) {
        AcDbHatch::take(tag, tags);
    }
}

void AcDbHatch::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    const std::span<const dxf::Tag> own = tags.own();
    bool loops_read = false;
    for (std::size_t i = 0; i < own.size(); ++i) {
        if (own[i].code == 91 && !loops_read) {
            LoopReader reader(own.subspan(i), tags, AcDbMPolygon::cast(this) != nullptr);
            loops_ = reader.read();
            loops_read = true;
            i += std::max<std::size_t>(reader.used(), 1) - 1;
        } else if (own[i].code != 30 || !loops_read) {
            take(own[i], tags);
        }
    }
    dxf::repair_normal(normal_, tags);
    const std::span<const dxf::Tag> data = tags.xdata();
    for (std::size_t i = 0; i + 1 < data.size(); ++i) {
        if (data[i].is(1001, "HATCHBACKGROUNDCOLOR") && data[i + 1].code == 1071) {
            has_background_ = color_of_word(tags.integer(data[i + 1]), background_);
        }
    }
}
