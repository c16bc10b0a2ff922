// The recording drawing interface.
#include "host/gi/recorder.h"

#include "host/db/database.h"
#include "host/db/polylines.h"
#include "host/gi/fallback.h"
#include "host/gi/transform_stack.h"

#include <cmath>
#include <numbers>

namespace gi {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr int kSamples = 64;

class Traits : public AcGiDrawableTraits {
public:
    void setColor(std::uint16_t index) override { now.color = AcCmEntityColor::index(index); }
    void setTrueColor(const AcCmEntityColor& color) override { now.color = color; }
    void setLayer(AcDbObjectId layer) override { now.layer = layer; }
    void setLineType(AcDbObjectId line_type) override { now.line_type = line_type; }
    void setMaterial(AcDbObjectId material) override { now.material = material; }
    void setMapper(const AcGiMapper*) override {}
    void setThickness(double thickness) override { now.thickness = thickness; }
    void setSelectionMarker(std::intptr_t) override {}
    std::uint16_t color() const override {
        return static_cast<std::uint16_t>(now.color.colorIndex());
    }
    AcCmEntityColor trueColor() const override { return now.color; }
    AcDbObjectId layerId() const override { return now.layer; }
    AcDbObjectId lineTypeId() const override { return now.line_type; }
    AcDbObjectId materialId() const override { return now.material; }
    double thickness() const override { return now.thickness; }

    RecordedTraits now;
};

class Context : public AcGiContext {
public:
    explicit Context(AcDbDatabase* database)
      : database_(database) {}
    AcDbDatabase* database() const override { return database_; }

private:
    AcDbDatabase* database_;
};

} // namespace

namespace {

class Geometry : public TransformStackGeometry {
public:
    Geometry(Recorder& recorder, Traits& traits)
      : recorder_(recorder)
      , traits_(traits) {}

    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override {
        RecordedCall call = begin(Primitive::kCircle, {&center, 1}, &normal);
        call.radius = radius;
        sampleArc(call, {center, radius, normal, normal.perpVector(), kTurn});
        return end(std::move(call));
    }
    bool circle(const AcGePoint3d& first, const AcGePoint3d& second,
                const AcGePoint3d& third) override {
        const AcGePoint3d points[] = {first, second, third};
        return end(begin(Primitive::kCircle3Points, points, nullptr));
    }
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& start, double sweep, AcGiArcType) override {
        RecordedCall call = begin(Primitive::kArc, {&center, 1}, &normal);
        call.radius = radius;
        call.start = start.transformedBy(top());
        call.sweep = sweep;
        sampleArc(call, {center, radius, normal, start.normal(), sweep});
        return end(std::move(call));
    }
    bool circularArc(const AcGePoint3d& start, const AcGePoint3d& point, const AcGePoint3d& last,
                     AcGiArcType) override {
        const AcGePoint3d points[] = {start, point, last};
        return end(begin(Primitive::kArc3Points, points, nullptr));
    }
    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  std::intptr_t) override {
        return end(begin(Primitive::kPolyline, {points, count}, normal));
    }
    bool polyline(const AcGiPolyline& line) override {
        return end(begin(Primitive::kPolyline, {line.points, line.count}, line.normal));
    }
    bool polyPolyline(std::uint32_t count, const AcGiPolyline* lines) override {
        bool all = true;
        for (std::uint32_t i = 0; i < count; ++i) {
            all = polyline(lines[i]) && all;
        }
        return all;
    }
    bool polygon(std::uint32_t count, const AcGePoint3d* points) override {
        return end(begin(Primitive::kPolygon, {points, count}, nullptr));
    }
    bool polyPolygon(std::uint32_t polygons, const std::uint32_t* counts,
                     const AcGePoint3d* points) override {
        bool all = true;
        for (std::uint32_t i = 0; i < polygons; points += counts[i], ++i) {
            all = polygon(counts[i], points) && all;
        }
        return all;
    }
    bool mesh(std::uint32_t rows, std::uint32_t columns, const AcGePoint3d* points,
              const AcGiEdgeData*, const AcGiFaceData*, const AcGiVertexData* vertices,
              bool) override {
        const std::size_t count = std::size_t{rows} * columns;
        RecordedCall call = begin(Primitive::kMesh, {points, count}, nullptr);
        call.rows = rows;
        call.columns = columns;
        keepNormals(call, vertices, count);
        return end(std::move(call));
    }
    bool shell(std::uint32_t count, const AcGePoint3d* points, std::uint32_t face_list_size,
               const std::int32_t* face_list, const AcGiEdgeData* edges, const AcGiFaceData*,
               const AcGiVertexData* vertices) override {
        RecordedCall call = begin(Primitive::kShell, {points, count}, nullptr);
        if (!recorder_.count_only) {
            call.faces.assign(face_list, face_list + face_list_size);
            keepNormals(call, vertices, count);
            keepVisibilities(call, edges);
        }
        return end(std::move(call));
    }
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d&, double,
              double, double, const char*) override {
        return end(begin(Primitive::kText, {&position, 1}, &normal));
    }
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d&,
              const char*, std::int32_t, bool, const AcGiTextStyle&) override {
        return end(begin(Primitive::kText, {&position, 1}, &normal));
    }
    bool xline(const AcGePoint3d& first, const AcGePoint3d& second) override {
        const AcGePoint3d points[] = {first, second};
        return end(begin(Primitive::kXline, points, nullptr));
    }
    bool ray(const AcGePoint3d& first, const AcGePoint3d& second) override {
        const AcGePoint3d points[] = {first, second};
        return end(begin(Primitive::kRay, points, nullptr));
    }
    bool pline(const AcDbPolyline& polyline, std::uint32_t, std::uint32_t) override {
        std::vector<AcGePoint3d> points(polyline.numVerts());
        for (std::uint32_t i = 0; i < polyline.numVerts(); ++i) {
            polyline.getPointAt(i, points[i]);
        }
        const AcGeVector3d normal = polyline.normal();
        RecordedCall call = begin(Primitive::kPline, points, &normal);
        for (std::uint32_t i = 0; i < polyline.numVerts(); ++i) {
            AcGeCircArc3d arc;
            if (polyline.getArcSegAt(i, arc) == Acad::eOk) {
                sampleArc(call, {arc.center, arc.radius, arc.normal, arc.start, arc.sweep});
            }
        }
        return end(std::move(call));
    }
    bool draw(AcGiDrawable* drawable) override {
        ++recorder_.draw_count;
        const RecordedTraits outer = traits_.now;
        RecordedCall call = begin(Primitive::kDraw, {}, nullptr);
        const bool accepted = end(std::move(call));
        if (accepted) {
            ++depth_;
            drawable->setAttributes(&traits_);
            drawable->worldDraw(&recorder_);
            --depth_;
        }
        traits_.now = outer;
        return accepted;
    }
    bool image(const AcGiImageBGRA32&, const AcGePoint3d& position, const AcGeVector3d&,
               const AcGeVector3d&) override {
        return end(begin(Primitive::kImage, {&position, 1}, nullptr));
    }
    bool rowOfDots(int, const AcGePoint3d& start, const AcGeVector3d&) override {
        return end(begin(Primitive::kDots, {&start, 1}, nullptr));
    }
    bool ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& normal, double major,
                       double minor, double start, double last, double tilt, AcGiArcType) override {
        RecordedCall call = begin(Primitive::kEllipticalArc, {&center, 1}, &normal);
        const AcGeVector3d axis = normal.perpVector().rotatedBy(tilt, normal);
        call.start = (axis * major).transformedBy(top());
        call.radius = major;
        call.minor_radius = minor;
        call.sweep = last - start;
        const EllipticalArc arc{center, normal, axis * major, normal.crossProduct(axis) * minor,
                                start,  last};
        for (int i = 0; i <= kSamples; ++i) {
            call.samples.push_back(
                arc.at(start + (last - start) * i / kSamples).transformedBy(top()));
        }
        return end(std::move(call));
    }
    bool pushClipBoundary(AcGiClipBoundary*) override { return false; }
    void popClipBoundary() override {}
    bool edge(const AcGiEdge2dArray&) override { return end(begin(Primitive::kEdge, {}, nullptr)); }

private:
    AcGeMatrix3d top() const { return getModelToWorldTransform(); }

    RecordedCall begin(Primitive primitive, std::span<const AcGePoint3d> points,
                       const AcGeVector3d* normal) {
        RecordedCall call;
        call.primitive = primitive;
        call.accepted = !recorder_.refuse.contains(primitive);
        if (recorder_.count_only) {
            return call;
        }
        call.depth = depth_;
        call.transform = top();
        call.traits = traits_.now;
        for (const AcGePoint3d& p : points) {
            call.points.push_back(p.transformedBy(call.transform));
        }
        if (normal != nullptr) {
            call.normal = normal->transformedBy(call.transform);
        }
        return call;
    }

    bool end(RecordedCall call) {
        const bool accepted = call.accepted;
        if (call.primitive != Primitive::kDraw) {
            ++recorder_.primitive_count;
        }
        if (!recorder_.count_only) {
            recorder_.calls.push_back(std::move(call));
        }
        return accepted;
    }

    void sampleArc(RecordedCall& call, const Arc& arc) const {
        for (int i = 0; i <= kSamples; ++i) {
            call.samples.push_back(arc.at(arc.sweep * i / kSamples).transformedBy(top()));
        }
    }

    static void keepNormals(RecordedCall& call, const AcGiVertexData* data, std::size_t count) {
        if (data != nullptr && data->normals != nullptr) {
            call.normals.assign(data->normals, data->normals + count);
        }
    }

    static void keepVisibilities(RecordedCall& call, const AcGiEdgeData* data) {
        if (data == nullptr || data->visibilities == nullptr) {
            return;
        }
        std::size_t edges = 0;
        for (std::size_t i = 0; i < call.faces.size();) {
            const auto corners = static_cast<std::size_t>(std::abs(call.faces[i]));
            edges += corners;
            i += corners + 1;
        }
        call.visibilities.assign(data->visibilities, data->visibilities + edges);
    }

    Recorder& recorder_;
    Traits& traits_;
    std::size_t depth_ = 0;
};

} // namespace

struct Recorder::Parts {
    Parts(Recorder& recorder, AcDbDatabase* database)
      : context(database)
      , geometry(recorder, traits) {}
    Traits traits;
    Context context;
    Geometry geometry;
};

Recorder::Recorder(AcDbDatabase* database)
  : parts_(std::make_unique<Parts>(*this, database)) {}
Recorder::~Recorder() = default;

void Recorder::record(AcGiDrawable* drawable) {
    drawable->setAttributes(&parts_->traits);
    drawable->worldDraw(this);
}

std::vector<RecordedCall> Recorder::callsOf(Primitive primitive) const {
    std::vector<RecordedCall> found;
    for (const RecordedCall& call : calls) {
        if (call.primitive == primitive) {
            found.push_back(call);
        }
    }
    return found;
}

AcDbExtents Recorder::extents() const {
    AcDbExtents box;
    for (const RecordedCall& call : calls) {
        const bool endless =
            call.primitive == Primitive::kXline || call.primitive == Primitive::kRay;
        if (!call.accepted || endless) {
            continue;
        }
        const bool round = call.primitive == Primitive::kCircle ||
                           call.primitive == Primitive::kArc ||
                           call.primitive == Primitive::kEllipticalArc;
        const AcGeVector3d shift =
            call.normal ? *call.normal * call.traits.thickness : AcGeVector3d();
        for (const auto& points :
             {round ? std::vector<AcGePoint3d>() : call.points, call.samples}) {
            for (const AcGePoint3d& p : points) {
                box.addPoint(p);
                box.addPoint(p + shift);
            }
        }
    }
    return box;
}

AcGiSubEntityTraits& Recorder::subEntityTraits() const { return parts_->traits; }
AcGiGeometry* Recorder::rawGeometry() const { return &parts_->geometry; }
AcGiContext* Recorder::context() { return &parts_->context; }
AcGiWorldGeometry& Recorder::geometry() const { return parts_->geometry; }

} // namespace gi
