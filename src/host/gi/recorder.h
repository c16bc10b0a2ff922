// A drawing interface that writes down what it is asked, for tests, reports and extents.
#pragma once

#include "host/db/extents.h"
#include "host/gi/gi.h"

#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace gi {

/// The primitives that a recorder tells apart.
enum class Primitive {
    kCircle,
    kCircle3Points,
    kArc,
    kArc3Points,
    kPolyline,
    kPolygon,
    kMesh,
    kShell,
    kText,
    kXline,
    kRay,
    kPline,
    kDraw,
    kImage,
    kDots,
    kEllipticalArc,
    kEdge
};

/// The attributes as last set.
struct RecordedTraits {
    AcCmEntityColor color;
    AcDbObjectId layer, line_type, material;
    double thickness = 0;
};

/// One call, its points and vectors in world coordinates.
struct RecordedCall {
    Primitive primitive = Primitive::kDraw;
    bool accepted = true;
    std::size_t depth = 0;  ///< of nested draws
    AcGeMatrix3d transform; ///< model to world
    RecordedTraits traits;
    std::vector<AcGePoint3d> points;    ///< the centre of circles and arcs
    std::optional<AcGeVector3d> normal; ///< transformed as a vector, not made a unit
    AcGeVector3d start;                 ///< of arcs; the major axis of elliptical ones
    double radius = 0, minor_radius = 0, sweep = 0;
    std::uint32_t rows = 0, columns = 0;
    std::vector<std::int32_t> faces;
    std::vector<std::uint8_t> visibilities; ///< one an edge of the shell
    std::vector<AcGeVector3d> normals;      ///< at the points, as given
    std::vector<AcGePoint3d> samples;       ///< points along curves, before extrusion
};

/// Records all calls. Primitives in `refuse` are written down and answered with false.
class Recorder : public AcGiWorldDraw {
public:
    explicit Recorder(AcDbDatabase* database = nullptr);
    ~Recorder() override;

    std::set<Primitive> refuse;
    std::vector<RecordedCall> calls;
    double chord_deviation = 0.01;
    /// regenAbort says yes once this many nested draws were made.
    std::size_t abort_after = static_cast<std::size_t>(-1);
    /// Only count nested draws and primitives, for drawings too large to write down.
    bool count_only = false;
    std::size_t draw_count = 0, primitive_count = 0;

    /// Sets the attributes of the drawable and lets it draw itself.
    void record(AcGiDrawable* drawable);
    std::vector<RecordedCall> callsOf(Primitive primitive) const;
    /// The box of all points of accepted calls, arcs and circles by points along them, thickness
    /// included, endless lines left out.
    AcDbExtents extents() const;

    AcGiRegenType regenType() const override { return kAcGiRenderCommand; }
    bool regenAbort() const override { return draw_count >= abort_after; }
    AcGiSubEntityTraits& subEntityTraits() const override;
    AcGiGeometry* rawGeometry() const override;
    bool isDragging() const override { return false; }
    double deviation(AcGiDeviationType, const AcGePoint3d&) const override {
        return chord_deviation;
    }
    std::uint32_t numberOfIsolines() const override { return 4; }
    AcGiContext* context() override;
    AcGiWorldGeometry& geometry() const override;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace gi
