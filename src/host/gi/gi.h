// The abstract drawing interfaces. Entities draw themselves through them; a screen, an extractor,
// a bounding box or a test recorder implements them. A primitive that returns false was not
// handled, and the caller draws it again in simpler ones.
#pragma once

#include "host/db/color.h"
#include "host/db/object_id.h"
#include "host/ge/ge.h"
#include "host/gi/drawable.h"

#include <cstdint>
#include <functional>
#include <vector>

class AcDbDatabase;
class AcDbPolyline;
class AcDbRasterImageDef;

enum AcGiArcType { kAcGiArcSimple, kAcGiArcSector, kAcGiArcChord };
enum AcGiRegenType {
    kAcGiStandardDisplay = 2,
    kAcGiHideOrShadeCommand = 3,
    kAcGiRenderCommand = 4,
    kAcGiForExplode = 5,
    kAcGiSaveWorldDrawForProxy = 6,
    kAcGiForExtents = 7
};
enum AcGiDeviationType {
    kAcGiMaxDevForCircle,
    kAcGiMaxDevForCurve,
    kAcGiMaxDevForBoundary,
    kAcGiMaxDevForIsoline,
    kAcGiMaxDevForFacet
};
enum AcGiOrientationTransformBehavior { kAcGiScreenOrientation };
enum AcGiPositionTransformBehavior { kAcGiScreenPosition };
enum AcGiScaleTransformBehavior { kAcGiScreenScale };

/// How a texture is laid on an object.
struct AcGiMapper {
    enum Projection { kInheritProjection = 0, kPlanar = 1, kBox = 2, kCylinder = 3, kSphere = 4 };
    Projection projection = kPlanar;
    AcGeMatrix3d transform; ///< its frame: from the mapper's coordinates to the object's
};

/// Per-vertex data of meshes and shells; null members are absent.
struct AcGiVertexData {
    const AcGeVector3d* normals = nullptr;
    const std::uint32_t* true_colors = nullptr;  ///< 0x00RRGGBB
    const AcGePoint3d* mapping_coords = nullptr; ///< u, v, w
};
/// Per-edge and per-face data; null members are absent.
struct AcGiEdgeData {
    const std::uint8_t* visibilities = nullptr;
};
struct AcGiFaceData {
    const std::int16_t* colors = nullptr;
    const AcGeVector3d* normals = nullptr;
};

/// A polyline with everything that goes with it.
struct AcGiPolyline {
    std::uint32_t count = 0;
    const AcGePoint3d* points = nullptr;
    const AcGeVector3d* normal = nullptr;
    std::intptr_t marker = -1;
};
/// A picture for AcGiGeometry::image.
struct AcGiImageBGRA32 {
    std::uint32_t width = 0, height = 0; ///< as the drawing tells them
    /// Reads the pixels: rows from the top, four bytes (blue, green, red, alpha) each, with the
    /// size that the file has. False when there are none. Reading takes its time.
    std::function<bool(std::uint32_t& width, std::uint32_t& height,
                       std::vector<std::uint8_t>& pixels)>
        load;
};
struct AcGiTextStyle;
struct AcGiClipBoundary;
struct AcGiEdge2dArray;

class AcGiSubEntityTraits : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcGiSubEntityTraits)
public:
    virtual void setColor(std::uint16_t index) = 0; ///< 0 by block, 256 by layer
    virtual void setTrueColor(const AcCmEntityColor& color) = 0;
    virtual void setLayer(AcDbObjectId layer) = 0;
    virtual void setLineType(AcDbObjectId line_type) = 0;
    virtual void setMaterial(AcDbObjectId material) = 0;
    virtual void setMapper(const AcGiMapper* mapper) = 0;
    virtual void setThickness(double thickness) = 0;
    virtual void setSelectionMarker(std::intptr_t marker) = 0;
    virtual std::uint16_t color() const = 0;
    virtual AcCmEntityColor trueColor() const = 0;
    virtual AcDbObjectId layerId() const = 0;
    virtual AcDbObjectId lineTypeId() const = 0;
    virtual AcDbObjectId materialId() const = 0;
    virtual double thickness() const = 0;
};

class AcGiDrawableTraits : public AcGiSubEntityTraits {
    ACRX_DECLARE_MEMBERS(AcGiDrawableTraits)
};

/// The primitives. Coordinates are model coordinates; the top of the transform stack leads to the
/// world. Slots stand in a fixed order.
class AcGiGeometry : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcGiGeometry)
public:
    virtual AcGeMatrix3d getModelToWorldTransform() const = 0;
    virtual AcGeMatrix3d getWorldToModelTransform() const = 0;
    virtual bool pushModelTransform(const AcGeVector3d& normal) = 0;
    virtual bool pushModelTransform(const AcGeMatrix3d& matrix) = 0;
    virtual bool popModelTransform() = 0;
    virtual AcGeMatrix3d pushPositionTransform(AcGiPositionTransformBehavior behavior,
                                               const AcGePoint3d& offset) = 0;
    virtual AcGeMatrix3d pushPositionTransform(AcGiPositionTransformBehavior behavior,
                                               const AcGePoint2d& offset) = 0;
    virtual AcGeMatrix3d pushScaleTransform(AcGiScaleTransformBehavior behavior,
                                            const AcGePoint3d& extents) = 0;
    virtual AcGeMatrix3d pushScaleTransform(AcGiScaleTransformBehavior behavior,
                                            const AcGePoint2d& extents) = 0;
    virtual AcGeMatrix3d pushOrientationTransform(AcGiOrientationTransformBehavior behavior) = 0;
    virtual bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) = 0;
    virtual bool circle(const AcGePoint3d& first, const AcGePoint3d& second,
                        const AcGePoint3d& third) = 0;
    /// `start` is the vector from the centre's direction to the first point, `sweep` in radians,
    /// counter-clockwise about `normal`.
    virtual bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                             const AcGeVector3d& start, double sweep,
                             AcGiArcType type = kAcGiArcSimple) = 0;
    virtual bool circularArc(const AcGePoint3d& start, const AcGePoint3d& point,
                             const AcGePoint3d& end, AcGiArcType type = kAcGiArcSimple) = 0;
    /// `normal` is the extrusion direction for the thickness of the traits, or null.
    virtual bool polyline(std::uint32_t count, const AcGePoint3d* points,
                          const AcGeVector3d* normal = nullptr, std::intptr_t marker = -1) = 0;
    virtual bool polyline(const AcGiPolyline& polyline) = 0;
    virtual bool polyPolyline(std::uint32_t count, const AcGiPolyline* polylines) = 0;
    virtual bool polygon(std::uint32_t count, const AcGePoint3d* points) = 0;
    virtual bool polyPolygon(std::uint32_t polygons, const std::uint32_t* counts,
                             const AcGePoint3d* points) = 0;
    /// A grid of `rows` by `columns` points, row after row.
    virtual bool mesh(std::uint32_t rows, std::uint32_t columns, const AcGePoint3d* points,
                      const AcGiEdgeData* edges = nullptr, const AcGiFaceData* faces = nullptr,
                      const AcGiVertexData* vertices = nullptr, bool auto_normals = true) = 0;
    /// `face_list`: a count of corners, then that many indices; a negative count is a hole in the
    /// face before it. `face_list_size` counts all its entries.
    virtual bool shell(std::uint32_t count, const AcGePoint3d* points, std::uint32_t face_list_size,
                       const std::int32_t* face_list, const AcGiEdgeData* edges = nullptr,
                       const AcGiFaceData* faces = nullptr,
                       const AcGiVertexData* vertices = nullptr) = 0;
    virtual bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
                      const AcGeVector3d& direction, double height, double width, double oblique,
                      const char* text) = 0;
    virtual bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
                      const AcGeVector3d& direction, const char* text, std::int32_t length,
                      bool raw, const AcGiTextStyle& style) = 0;
    virtual bool xline(const AcGePoint3d& first, const AcGePoint3d& second) = 0;
    virtual bool ray(const AcGePoint3d& first, const AcGePoint3d& second) = 0;
    /// A whole light-weight polyline; false asks the caller to draw it in simpler primitives.
    virtual bool pline(const AcDbPolyline& polyline, std::uint32_t from = 0,
                       std::uint32_t count = 0) = 0;
    /// A nested drawable: an entity of a block, for instance.
    virtual bool draw(AcGiDrawable* drawable) = 0;
    /// A picture with its lower left corner at `position`; `u` and `v` are its whole edges.
    virtual bool image(const AcGiImageBGRA32& source, const AcGePoint3d& position,
                       const AcGeVector3d& u, const AcGeVector3d& v) = 0;
    virtual bool rowOfDots(int count, const AcGePoint3d& start, const AcGeVector3d& step) = 0;
    virtual bool ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& normal,
                               double major_radius, double minor_radius, double start_angle,
                               double end_angle, double tilt,
                               AcGiArcType type = kAcGiArcSimple) = 0;
    virtual bool pushClipBoundary(AcGiClipBoundary* boundary) = 0;
    virtual void popClipBoundary() = 0;
    virtual bool edge(const AcGiEdge2dArray& edges) = 0;
};

class AcGiWorldGeometry : public AcGiGeometry {
    ACRX_DECLARE_MEMBERS(AcGiWorldGeometry)
};

class AcGiViewportGeometry : public AcGiGeometry {
    ACRX_DECLARE_MEMBERS(AcGiViewportGeometry)
public:
    virtual bool polylineEye(std::uint32_t count, const AcGePoint3d* points) = 0;
    virtual bool polygonEye(std::uint32_t count, const AcGePoint3d* points) = 0;
    virtual bool polylineDc(std::uint32_t count, const AcGePoint3d* points) = 0;
    virtual bool polygonDc(std::uint32_t count, const AcGePoint3d* points) = 0;
};

class AcGiContext : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcGiContext)
public:
    virtual AcDbDatabase* database() const = 0;
    virtual bool isPsOut() const { return false; }
    virtual bool isPlotGeneration() const { return false; }
};

class AcGiViewport : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcGiViewport)
public:
    virtual bool isPerspective() const = 0;
    virtual AcGePoint3d getCameraLocation() const = 0;
    virtual AcGePoint3d getCameraTarget() const = 0;
    virtual AcGeVector3d getCameraUpVector() const = 0;
    virtual AcGeVector3d viewDir() const = 0; ///< from the target towards the camera
    virtual std::int16_t acadWindowId() const { return 2; }
};

class AcGiCommonDraw : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcGiCommonDraw)
public:
    virtual AcGiRegenType regenType() const = 0;
    /// True asks the drawer to stop as soon as it can.
    virtual bool regenAbort() const = 0;
    virtual AcGiSubEntityTraits& subEntityTraits() const = 0;
    virtual AcGiGeometry* rawGeometry() const = 0;
    virtual bool isDragging() const = 0;
    /// The largest distance between a curve and its chords, in drawing units.
    virtual double deviation(AcGiDeviationType type, const AcGePoint3d& point) const = 0;
    virtual std::uint32_t numberOfIsolines() const = 0;
    virtual AcGiContext* context() = 0;
};

class AcGiWorldDraw : public AcGiCommonDraw {
    ACRX_DECLARE_MEMBERS(AcGiWorldDraw)
public:
    virtual AcGiWorldGeometry& geometry() const = 0;
};

class AcGiViewportDraw : public AcGiCommonDraw {
    ACRX_DECLARE_MEMBERS(AcGiViewportDraw)
public:
    virtual AcGiViewport& viewport() const = 0;
    virtual AcGiViewportGeometry& geometry() const = 0;
};
