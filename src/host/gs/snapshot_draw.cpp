// What entities draw, as faces and lines.
//
// Curved primitives are refused, so that they come back as lines, polygons and shells.
#include "host/gs/snapshot_draw.h"

#include "host/db/database.h"
#include "host/db/entity.h"
#include "host/ed/ed.h"
#include "host/gi/fallback.h"
#include "host/gi/transform_stack.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <vector>

namespace gs {
namespace {

/// Attributes as last set, and those of the drawable around.
struct Attributes {
    AcCmEntityColor color;
    AcDbObjectId layer, line_type, material;
    double thickness = 0;
    const Attributes* around = nullptr;
};

class Traits : public AcGiDrawableTraits {
public:
    void setColor(std::uint16_t index) override { now->color = AcCmEntityColor::index(index); }
    void setTrueColor(const AcCmEntityColor& color) override { now->color = color; }
    void setLayer(AcDbObjectId layer) override { now->layer = layer; }
    void setLineType(AcDbObjectId line_type) override { now->line_type = line_type; }
    void setMaterial(AcDbObjectId material) override { now->material = material; }
    void setMapper(const AcGiMapper*) override {}
    void setThickness(double thickness) override { now->thickness = thickness; }
    void setSelectionMarker(std::intptr_t) override {}
    std::uint16_t color() const override {
        return static_cast<std::uint16_t>(now->color.colorIndex());
    }
    AcCmEntityColor trueColor() const override { return now->color; }
    AcDbObjectId layerId() const override { return now->layer; }
    AcDbObjectId lineTypeId() const override { return now->line_type; }
    AcDbObjectId materialId() const override { return now->material; }
    double thickness() const override { return now->thickness; }

    Attributes outermost;
    Attributes* now = &outermost;
};

class Context : public AcGiContext {
public:
    explicit Context(AcDbDatabase& database)
      : database_(database) {}
    AcDbDatabase* database() const override { return &database_; }

private:
    AcDbDatabase& database_;
};

struct LayerFacts {
    bool shown = false;
    AcCmEntityColor color = AcCmEntityColor::index(7);
};

/// Layers and colours along the chain of drawables.
class Colors {
public:
    explicit Colors(const AcDbDatabase& database)
      : layer_zero_(database.layerZero()) {}

    const LayerFacts& layer(AcDbObjectId id) {
        const auto [at, fresh] = layers_.try_emplace(id.stub());
        if (fresh) {
            const AcDbObjectPointer<AcDbLayerTableRecord> record(id);
            if (record) {
                at->second = {!record->isOff() && !record->isFrozen(), record->color()};
            }
        }
        return at->second;
    }

    /// What a colour means here: by block that of the drawable around, by layer that of the
    /// layer, layer 0 within a block being the layer around.
    AcCmEntityColor resolve(const Attributes& attributes) {
        const Attributes* at = &attributes;
        while (at->color.isByBlock() && at->around != nullptr) {
            at = at->around;
        }
        if (at->color.isByBlock()) {
            return AcCmEntityColor::index(7);
        }
        if (!at->color.isByLayer()) {
            return at->color;
        }
        while (at->layer == layer_zero_ && at->around != nullptr && !at->around->layer.isNull()) {
            at = at->around;
        }
        return layer(at->layer).color;
    }

private:
    AcDbObjectId layer_zero_;
    std::unordered_map<const void*, LayerFacts> layers_;
};

std::uint32_t rgbOf(const AcCmEntityColor& color) {
    return color.isByColor() ? color.word() & 0xffffffU
                             : AcCmEntityColor::lookUpRGB(color.colorIndex());
}

/// Index colour 7 is whatever stands out, and no line may have the key colour.
std::uint32_t wireRgbOf(const AcCmEntityColor& color) {
    if (color.isByACI() && color.colorIndex() == 7) {
        return 0;
    }
    const std::uint32_t rgb = rgbOf(color);
    return rgb == kAcGsKeyColor ? 0xffffffU : rgb;
}

class Geometry : public gi::TransformStackGeometry {
public:
    Geometry(SnapshotDraw& draw, Painter& painter, Traits& traits, const AcDbDatabase& database)
      : draw_(draw)
      , painter_(painter)
      , traits_(traits)
      , colors_(database) {}

    bool circle(const AcGePoint3d&, double, const AcGeVector3d&) override { return false; }
    bool circle(const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&) override {
        return false;
    }
    bool circularArc(const AcGePoint3d&, double, const AcGeVector3d&, const AcGeVector3d&, double,
                     AcGiArcType) override {
        return false;
    }
    bool circularArc(const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&,
                     AcGiArcType) override {
        return false;
    }
    bool ellipticalArc(const AcGePoint3d&, const AcGeVector3d&, double, double, double, double,
                       double, AcGiArcType) override {
        return false;
    }
    bool mesh(std::uint32_t, std::uint32_t, const AcGePoint3d*, const AcGiEdgeData*,
              const AcGiFaceData*, const AcGiVertexData*, bool) override {
        return false;
    }
    bool pline(const AcDbPolyline&, std::uint32_t, std::uint32_t) override { return false; }

    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  std::intptr_t) override;
    bool polyline(const AcGiPolyline& line) override {
        return polyline(line.count, line.points, line.normal, line.marker);
    }
    bool polyPolyline(std::uint32_t count, const AcGiPolyline* lines) override {
        for (std::uint32_t i = 0; i < count; ++i) {
            polyline(lines[i]);
        }
        return true;
    }
    bool polygon(std::uint32_t count, const AcGePoint3d* points) override;
    bool polyPolygon(std::uint32_t polygons, const std::uint32_t* counts,
                     const AcGePoint3d* points) override {
        for (std::uint32_t i = 0; i < polygons; points += counts[i], ++i) {
            polygon(counts[i], points);
        }
        return true;
    }
    bool shell(std::uint32_t count, const AcGePoint3d* points, std::uint32_t face_list_size,
               const std::int32_t* face_list, const AcGiEdgeData* edges, const AcGiFaceData*,
               const AcGiVertexData* vertices) override;
    bool draw(AcGiDrawable* drawable) override {
        if (drawable != nullptr) {
            draw_.show(*drawable);
        }
        return true;
    }

    // Texts, pictures and endless lines are no part of the model.
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, double, double, double,
              const char*) override {
        return true;
    }
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, const char*,
              std::int32_t, bool, const AcGiTextStyle&) override {
        return true;
    }
    bool xline(const AcGePoint3d&, const AcGePoint3d&) override { return true; }
    bool ray(const AcGePoint3d&, const AcGePoint3d&) override { return true; }
    bool image(const AcGiImageBGRA32&, const AcGePoint3d&, const AcGeVector3d&,
               const AcGeVector3d&) override {
        return true;
    }
    bool rowOfDots(int, const AcGePoint3d&, const AcGeVector3d&) override { return true; }
    bool pushClipBoundary(AcGiClipBoundary*) override { return false; }
    void popClipBoundary() override {}
    bool edge(const AcGiEdge2dArray&) override { return true; }

    bool isShown(const AcGiDrawable& drawable) {
        const AcDbEntity* entity = AcDbEntity::cast(&drawable);
        return entity == nullptr ||
               (entity->visibility() == AcDb::kVisible && colors_.layer(traits_.now->layer).shown);
    }

private:
    /// The points in eye coordinates.
    void look(std::span<const AcGePoint3d> points) {
        const AcGeMatrix3d to_world = getModelToWorldTransform();
        seen_.clear();
        for (const AcGePoint3d& p : points) {
            seen_.push_back(painter_.camera().toEye(p.transformedBy(to_world)));
        }
    }
    void takeColor() {
        const AcCmEntityColor color = colors_.resolve(*traits_.now);
        face_rgb_ = rgbOf(color);
        wire_rgb_ = wireRgbOf(color);
    }
    void lightCorners(const AcGiVertexData* vertices, std::uint32_t count);
    void addCorner(std::size_t point) {
        face_.corners.push_back(seen_[point]);
        if (!light_.empty()) {
            face_.light.push_back(light_[point]);
        }
    }
    void fillFace();

    SnapshotDraw& draw_;
    Painter& painter_;
    Traits& traits_;
    Colors colors_;
    std::uint32_t face_rgb_ = 0, wire_rgb_ = 0;
    // Buffers that keep their memory from call to call.
    std::vector<AcGePoint3d> seen_;
    std::vector<double> light_;
    Face face_, half_;
};

bool Geometry::polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                        std::intptr_t) {
    takeColor();
    look({points, count});
    const double thickness = normal != nullptr ? traits_.now->thickness : 0;
    const AcGeVector3d rise =
        thickness == 0 ? AcGeVector3d()
                       : painter_.camera().toEye(
                             (*normal * thickness).transformedBy(getModelToWorldTransform()));
    for (std::uint32_t i = 0; i + 1 < count; ++i) {
        const AcGePoint3d& a = seen_[i];
        const AcGePoint3d& b = seen_[i + 1];
        painter_.line(a, b, wire_rgb_);
        if (thickness != 0) {
            face_.clear();
            face_.corners = {a, b, b + rise, a + rise};
            face_.closeOutline();
            painter_.fill(face_, face_rgb_);
            painter_.line(a + rise, b + rise, wire_rgb_);
        }
    }
    for (std::uint32_t i = 0; thickness != 0 && i < count; ++i) {
        painter_.line(seen_[i], seen_[i] + rise, wire_rgb_);
    }
    return true;
}

bool Geometry::polygon(std::uint32_t count, const AcGePoint3d* points) {
    takeColor();
    look({points, count});
    face_.clear();
    face_.corners = seen_;
    face_.closeOutline();
    fillFace();
    for (std::uint32_t i = 0; i < count; ++i) {
        painter_.line(seen_[i], seen_[(i + 1) % count], wire_rgb_);
    }
    return true;
}

void Geometry::lightCorners(const AcGiVertexData* vertices, std::uint32_t count) {
    light_.clear();
    if (vertices == nullptr || vertices->normals == nullptr) {
        return;
    }
    // Normals go by the inverse transposed; here, by the model's side of each plane.
    const AcGeMatrix3d to_model = getWorldToModelTransform();
    for (std::uint32_t i = 0; i < count; ++i) {
        const AcGeVector3d& n = vertices->normals[i];
        const auto along = [&](int axis) {
            return n.x * to_model(0, axis) + n.y * to_model(1, axis) + n.z * to_model(2, axis);
        };
        const AcGeVector3d normal =
            painter_.camera().toEye(AcGeVector3d{along(0), along(1), along(2)});
        light_.push_back(lightOf(painter_.camera().facing(seen_[i], normal)));
    }
}

bool Geometry::shell(std::uint32_t count, const AcGePoint3d* points, std::uint32_t face_list_size,
                     const std::int32_t* face_list, const AcGiEdgeData* edges, const AcGiFaceData*,
                     const AcGiVertexData* vertices) {
    takeColor();
    look({points, count});
    lightCorners(vertices, count);
    const std::uint8_t* visible = edges != nullptr ? edges->visibilities : nullptr;
    std::size_t edge = 0;
    for (std::uint32_t at = 0; at < face_list_size;) {
        const bool hole = face_list[at] < 0;
        const auto corners = static_cast<std::uint32_t>(std::abs(face_list[at++]));
        const std::uint32_t left = std::min(corners, face_list_size - at);
        if (!hole) {
            fillFace(); // the one before, now that no more holes of it come
            face_.clear();
        }
        for (std::uint32_t i = 0; i < left; ++i, ++edge) {
            const auto from = static_cast<std::uint32_t>(face_list[at + i]);
            const auto to = static_cast<std::uint32_t>(face_list[at + (i + 1) % left]);
            if (from >= count || to >= count) {
                continue;
            }
            addCorner(from);
            if (visible == nullptr || visible[edge] != 0) {
                painter_.line(seen_[from], seen_[to], wire_rgb_);
            }
        }
        face_.closeOutline();
        at += left;
    }
    fillFace();
    face_.clear();
    return true;
}

/// Quadrilaterals go as two triangles where they are bent or lit at their corners; other faces are
/// taken as plane.
void Geometry::fillFace() {
    const std::vector<AcGePoint3d>& c = face_.corners;
    const bool quad = c.size() == 4 && face_.ends.size() == 1;
    bool halve = quad && face_.light.size() == 4;
    if (quad && !halve) {
        const AcGeVector3d normal = (c[2] - c[0]).crossProduct(c[3] - c[1]);
        const double off = std::abs(normal.dotProduct(c[1] - c[0]));
        halve = off > 1e-4 * normal.length() * c[0].distanceTo(c[2]);
    }
    if (!halve) {
        painter_.fill(face_, face_rgb_);
        return;
    }
    for (const std::size_t last : {std::size_t{2}, std::size_t{3}}) {
        half_.clear();
        for (const std::size_t i : {std::size_t{0}, last - 1, last}) {
            half_.corners.push_back(c[i]);
            if (!face_.light.empty()) {
                half_.light.push_back(face_.light[i]);
            }
        }
        half_.closeOutline();
        painter_.fill(half_, face_rgb_);
    }
}

} // namespace

struct SnapshotDraw::Parts {
    Parts(SnapshotDraw& draw, AcDbDatabase& database, Painter& painter)
      : camera(painter.camera())
      , context(database)
      , geometry(draw, painter, traits, database) {}
    const Camera& camera;
    Traits traits;
    Context context;
    Geometry geometry;
};

SnapshotDraw::SnapshotDraw(AcDbDatabase& database, Painter& painter)
  : parts_(std::make_unique<Parts>(*this, database, painter)) {}
SnapshotDraw::~SnapshotDraw() = default;

void SnapshotDraw::show(AcGiDrawable& drawable) {
    Traits& traits = parts_->traits;
    Attributes own = *traits.now;
    own.around = traits.now;
    const struct Restore {
        Traits& traits;
        Attributes* before;
        ~Restore() { traits.now = before; }
    } restore{traits, traits.now};
    traits.now = &own;
    drawable.setAttributes(&traits);
    if (parts_->geometry.isShown(drawable)) {
        drawable.worldDraw(this);
    }
}

bool SnapshotDraw::regenAbort() const { return acedUsrBrk(); }

/// Half a pixel, in the coordinates that the entity draws in.
double SnapshotDraw::deviation(AcGiDeviationType, const AcGePoint3d& point) const {
    const AcGeMatrix3d to_world = parts_->geometry.getModelToWorldTransform();
    const double scale = std::cbrt(std::abs(to_world.det()));
    const double pixel = parts_->camera.pixelSize(point.transformedBy(to_world));
    return scale > 0 && std::isfinite(pixel) ? pixel / 2 / scale : 1;
}

AcGiSubEntityTraits& SnapshotDraw::subEntityTraits() const { return parts_->traits; }
AcGiGeometry* SnapshotDraw::rawGeometry() const { return &parts_->geometry; }
AcGiContext* SnapshotDraw::context() { return &parts_->context; }
AcGiWorldGeometry& SnapshotDraw::geometry() const { return parts_->geometry; }

} // namespace gs
