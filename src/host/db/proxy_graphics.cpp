// Replaying stored graphics: the chunks, and what they set for those that follow.
#include "host/db/proxy_graphics.h"

#include "host/db/database_impl.h"
#include "host/db/dictionary.h"
#include "host/db/draw_util.h"
#include "host/db/proxy_replay.h"
#include "host/gi/face_list.h"
#include "host/gi/recorder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace proxy {

struct Replay::Row {
    std::uint32_t type;
    void (Replay::*run)(Bytes&);
};

// Types of chunks that are not here (extents, markers, line weights and scales, plot styles,
// mappers, and what newer programs add) change nothing that is drawn.
const Replay::Row Replay::kRows[] = {
    {2, &Replay::circle},         {3, &Replay::circle3Points}, {4, &Replay::arc},
    {5, &Replay::arc3Points},     {6, &Replay::polyline},      {7, &Replay::polygon},
    {8, &Replay::mesh},           {9, &Replay::shell},         {10, &Replay::text},
    {11, &Replay::text2},         {12, &Replay::endless},      {13, &Replay::endless},
    {14, &Replay::color},         {16, &Replay::layer},        {18, &Replay::lineType},
    {20, &Replay::fill},          {22, &Replay::trueColor},    {25, &Replay::thickness},
    {27, &Replay::pushClip},      {28, &Replay::popClip},      {29, &Replay::pushTransform},
    {30, &Replay::pushTransform}, {31, &Replay::popTransform}, {32, &Replay::polylineWithNormal},
    {33, &Replay::lwPolyline},    {34, &Replay::material},     {36, &Replay::unicodeText},
    {38, &Replay::unicodeText2},  {44, &Replay::ellipticalArc}};

namespace {

constexpr std::uint32_t kHeadBytes = 8; ///< of the graphics and of each chunk
constexpr int kMostTransforms = 256, kMostClips = 64;

/// The place in a table, or null. -1 and -2 stand for by layer and by block.
AcDbObjectId recordAt(const AcDbSymbolTable& table, std::int32_t index) {
    const auto& records = table.records();
    return index >= 0 && static_cast<std::size_t>(index) < records.size()
               ? records[static_cast<std::size_t>(index)]
               : AcDbObjectId();
}

} // namespace

Replay::Replay(AcGiWorldDraw* draw, AcDbDatabase* database)
  : draw_(draw)
  , database_(database)
  , from_world_(draw->geometry().getWorldToModelTransform())
  , color_(traits().trueColor())
  , layer_(traits().layerId())
  , line_type_(traits().lineTypeId())
  , material_(traits().materialId())
  , thickness_(traits().thickness()) {}

Replay::~Replay() {
    while (!clips_.empty()) { // the inner ones first
        clips_.pop_back();
    }
    for (; transforms_ > 0; --transforms_) {
        draw_->geometry().popModelTransform();
    }
    setColor(color_);
    traits().setLayer(layer_);
    traits().setLineType(line_type_);
    traits().setMaterial(material_);
    traits().setThickness(thickness_);
}

Outcome Replay::run(std::string_view graphics) {
    Bytes head(graphics);
    const std::uint32_t size = head.u32();
    const std::uint32_t count = head.u32();
    if (head.failed() || size < kHeadBytes) {
        outcome_.damaged = true;
        return std::move(outcome_);
    }
    outcome_.damaged = size > graphics.size();
    Bytes in(graphics.substr(kHeadBytes, size - kHeadBytes));
    std::uint32_t done = 0;
    for (; in.left() > 0; ++done) {
        const std::uint32_t length = in.u32();
        const std::uint32_t type = in.u32();
        Bytes data(length >= kHeadBytes ? in.take(length - kHeadBytes) : std::string_view());
        if (in.failed() || length < kHeadBytes) {
            outcome_.damaged = true;
            break;
        }
        chunk(type, data);
        if (data.failed()) {
            outcome_.damaged = true;
            break;
        }
        if (done % 1024 == 1023 && draw_->regenAbort()) {
            return std::move(outcome_);
        }
    }
    outcome_.damaged = outcome_.damaged || done < count;
    return std::move(outcome_);
}

void Replay::chunk(std::uint32_t type, Bytes& in) {
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [&](const Row& r) { return r.type == type; });
    if (row != std::end(kRows)) {
        (this->*row->run)(in);
    }
}

// ---- what holds for all that follows

void Replay::setColor(const AcCmEntityColor& color) {
    if (color.isByColor()) {
        traits().setTrueColor(color);
    } else {
        setColorIndex(color.colorIndex());
    }
}

void Replay::setColorIndex(std::int32_t index) {
    const bool known = index >= 0 && index <= 256;
    traits().setColor(static_cast<std::uint16_t>(known ? index : 256));
}

void Replay::color(Bytes& in) {
    const std::int32_t index = in.i32();
    if (!in.failed()) {
        setColorIndex(index);
    }
}

void Replay::trueColor(Bytes& in) {
    const std::uint32_t word = in.u32();
    if (in.failed()) {
        return;
    }
    switch (word >> 24) {
    case AcCmEntityColor::kByColor:
        traits().setTrueColor(AcCmEntityColor::trueColor(word));
        break;
    case AcCmEntityColor::kByACI:
        setColorIndex(static_cast<std::int32_t>(word & 0xffff));
        break;
    case AcCmEntityColor::kByBlock:
        setColorIndex(0);
        break;
    default:
        setColorIndex(256);
    }
}

void Replay::setLayerIndex(std::int32_t index) {
    const AcDbObjectId id =
        database_ != nullptr ? recordAt(database_->layerTable(), index) : AcDbObjectId();
    traits().setLayer(id.isNull() ? layer_ : id);
}

void Replay::layer(Bytes& in) {
    const std::int32_t index = in.i32();
    if (!in.failed()) {
        setLayerIndex(index);
    }
}

void Replay::lineType(Bytes& in) {
    const std::int32_t index = in.i32();
    if (in.failed() || database_ == nullptr) {
        return;
    }
    const AcDbObjectId id = recordAt(DxfAccess::table(*database_, "LTYPE"), index);
    traits().setLineType(id.isNull() ? line_type_ : id);
}

void Replay::fill(Bytes& in) { fill_ = in.u32(); }

void Replay::thickness(Bytes& in) {
    const double value = in.real();
    if (!in.failed()) {
        traits().setThickness(value);
    }
}

void Replay::material(Bytes& in) {
    const std::uint64_t handle = in.u64();
    if (in.failed() || database_ == nullptr) {
        return;
    }
    const AcDbObjectId id = database_->getAcDbObjectId(AcDbHandle(handle));
    const AcDbObjectPointer<AcDbMaterial> found(id);
    traits().setMaterial(found ? id : material_);
}

void Replay::pushTransform(Bytes& in) {
    AcGeMatrix3d matrix = in.matrix();
    matrix.entry[3] = {0, 0, 0, 1};
    if (in.failed() || transforms_ >= kMostTransforms ||
        !draw_->geometry().pushModelTransform(matrix)) {
        in.fail();
        return;
    }
    ++transforms_;
}

void Replay::popTransform(Bytes&) {
    if (transforms_ > 0) {
        draw_->geometry().popModelTransform();
        --transforms_;
    }
}

void Replay::pushClip(Bytes& in) {
    gi::ClipVolume volume;
    in.vector(); // direction and origin are in the transform already
    in.point();
    const std::uint32_t count = in.count(16);
    for (std::uint32_t i = 0; i < count; ++i) {
        const double x = in.real();
        volume.boundary.push_back({x, in.real()});
    }
    AcGeMatrix3d to_clip = in.matrix();
    AcGeMatrix3d from_block = in.matrix();
    volume.front_on = in.u32() != 0;
    volume.back_on = in.u32() != 0;
    volume.front = in.real();
    volume.back = in.real();
    if (in.failed() || clips_.size() >= kMostClips) {
        in.fail();
        return;
    }
    to_clip.entry[3] = from_block.entry[3] = {0, 0, 0, 1};
    // The second matrix undoes the transforms that were pushed before the clip.
    volume.from_world = to_clip * from_block * from_world_;
    clips_.emplace_back(std::move(volume));
}

void Replay::popClip(Bytes&) {
    if (!clips_.empty()) {
        clips_.pop_back();
    }
}

// ---- curves

void Replay::drawArc(const gi::Arc& arc, std::uint32_t kind) {
    if (!(arc.radius > 0) || arc.sweep == 0) {
        return;
    }
    gi::circularArc(draw_, arc);
    if (kind == kAcGiArcSector) {
        const AcGePoint3d sides[] = {arc.at(arc.sweep), arc.center, arc.at(0)};
        gi::polyline(draw_, sides, &arc.normal);
    } else if (kind == kAcGiArcChord) {
        const AcGePoint3d chord[] = {arc.at(arc.sweep), arc.at(0)};
        gi::polyline(draw_, chord, &arc.normal);
    }
    noteCurve(isThick());
}

void Replay::circle(Bytes& in) {
    const AcGePoint3d center = in.point();
    const double radius = in.real();
    const AcGeVector3d normal = draw::unitNormal(in.vector());
    if (!in.failed() && radius > 0) {
        gi::circle(draw_, center, radius, normal);
        noteCurve(isThick());
    }
}

void Replay::circle3Points(Bytes& in) {
    const std::vector<AcGePoint3d> p = in.points(3);
    if (in.failed()) {
        return;
    }
    if (const auto arc = arcThrough(p[0], p[1], p[2])) {
        gi::circle(draw_, arc->center, arc->radius, arc->normal);
        noteCurve(isThick());
    }
}

void Replay::arc(Bytes& in) {
    gi::Arc arc;
    arc.center = in.point();
    arc.radius = in.real();
    arc.normal = draw::unitNormal(in.vector());
    AcGeVector3d start = in.vector();
    arc.sweep = in.real();
    const std::uint32_t kind = in.left() >= 4 ? in.u32() : 0;
    if (in.failed()) {
        return;
    }
    start = start - arc.normal * start.dotProduct(arc.normal);
    arc.start = start.isZeroLength() ? arc.normal.perpVector() : start.normal();
    arc.sweep = std::clamp(arc.sweep, -2 * std::numbers::pi, 2 * std::numbers::pi);
    drawArc(arc, kind);
}

void Replay::arc3Points(Bytes& in) {
    const std::vector<AcGePoint3d> p = in.points(3);
    const std::uint32_t kind = in.left() >= 4 ? in.u32() : 0;
    if (in.failed()) {
        return;
    }
    if (const auto arc = arcThrough(p[0], p[1], p[2])) {
        drawArc(*arc, kind);
    } else {
        gi::polyline(draw_, p, nullptr);
        noteCurve(false);
    }
}

void Replay::ellipticalArc(Bytes& in) {
    gi::EllipticalArc arc;
    arc.center = in.point();
    arc.normal = draw::unitNormal(in.vector());
    const double major = in.real();
    const double minor = in.real();
    arc.start = in.real();
    arc.end = in.real();
    const double tilt = in.real();
    if (in.failed() || !(major > 0) || !(minor > 0)) {
        return;
    }
    const double turn = 2 * std::numbers::pi;
    arc.end = arc.start + std::clamp(arc.end - arc.start, -turn, turn);
    const AcGeVector3d axis = arc.normal.perpVector().rotatedBy(tilt, arc.normal);
    arc.major = axis * major;
    arc.minor = arc.normal.crossProduct(axis) * minor;
    gi::ellipticalArc(draw_, arc);
    noteCurve(isThick());
}

void Replay::polyline(Bytes& in) {
    const std::vector<AcGePoint3d> points = in.points(in.u32());
    if (!in.failed() && !points.empty()) {
        gi::polyline(draw_, points, nullptr);
        noteCurve(false);
    }
}

void Replay::polylineWithNormal(Bytes& in) {
    const std::vector<AcGePoint3d> points = in.points(in.u32());
    const AcGeVector3d normal = draw::unitNormal(in.vector());
    if (!in.failed() && !points.empty()) {
        gi::polyline(draw_, points, &normal);
        noteCurve(isThick());
    }
}

void Replay::polygon(Bytes& in) {
    constexpr std::uint32_t kNever = 2; // only the outline
    std::vector<AcGePoint3d> points = in.points(in.u32());
    if (in.failed() || points.size() < 2) {
        return;
    }
    if (fill_ == kNever || points.size() < 3) {
        points.push_back(points.front());
        gi::polyline(draw_, points, nullptr);
        noteCurve(false);
        return;
    }
    outcome_.faces = true;
    if (gi::fanCorner(points) == 0) {
        gi::polygon(draw_, points);
        return;
    }
    gi::FaceList list;
    std::vector<std::int32_t> corners(points.size());
    std::iota(corners.begin(), corners.end(), 0);
    list.points = std::move(points);
    list.add(corners);
    gi::shell(draw_, list.points, list.faces);
}

/// Endless lines have no body.
void Replay::endless(Bytes& in) {
    in.points(2);
    noteCurve(false);
}

// ----

Outcome replay(AcGiWorldDraw* draw, std::string_view graphics, AcDbDatabase* database) {
    return Replay(draw, database).run(graphics);
}

Outcome examine(std::string_view graphics, AcDbDatabase* database) {
    gi::Recorder nowhere(database);
    nowhere.count_only = true;
    return replay(&nowhere, graphics, database);
}

} // namespace proxy
