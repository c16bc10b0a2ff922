// What entities are handed to draw themselves with: world and viewport draw objects and their
// geometry, all forwarding to one common draw and one geometry object.
#pragma once

#include "omb_qorvane/ts_ac_gi_geometry.h"

/// Forwards every primitive.
template <class Base>
class CTsAcForwardingGeometry : public Base {
public:
    explicit CTsAcForwardingGeometry(CTsAcGiGeometry& geometry)
      : to_(geometry) {}

    AcGeMatrix3d getModelToWorldTransform() const override {
        return to_.getModelToWorldTransform();
    }
    AcGeMatrix3d getWorldToModelTransform() const override {
        return to_.getWorldToModelTransform();
    }
    bool pushModelTransform(const AcGeVector3d& v) override { return to_.pushModelTransform(v); }
    bool pushModelTransform(const AcGeMatrix3d& m) override { return to_.pushModelTransform(m); }
    bool popModelTransform() override { return to_.popModelTransform(); }
    AcGeMatrix3d pushPositionTransform(AcGiPositionTransformBehavior b,
                                       const AcGePoint3d& p) override {
        return to_.pushPositionTransform(b, p);
    }
    AcGeMatrix3d pushPositionTransform(AcGiPositionTransformBehavior b,
                                       const AcGePoint2d& p) override {
        return to_.pushPositionTransform(b, p);
    }
    AcGeMatrix3d pushScaleTransform(AcGiScaleTransformBehavior b, const AcGePoint3d& p) override {
        return to_.pushScaleTransform(b, p);
    }
    AcGeMatrix3d pushScaleTransform(AcGiScaleTransformBehavior b, const AcGePoint2d& p) override {
        return to_.pushScaleTransform(b, p);
    }
    AcGeMatrix3d pushOrientationTransform(AcGiOrientationTransformBehavior b) override {
        return to_.pushOrientationTransform(b);
    }
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override {
        return to_.circle(center, radius, normal);
    }
    bool circle(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) override {
        return to_.circle(a, b, c);
    }
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& start, double sweep, AcGiArcType type) override {
        return to_.circularArc(center, radius, normal, start, sweep, type);
    }
    bool circularArc(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c,
                     AcGiArcType type) override {
        return to_.circularArc(a, b, c, type);
    }
    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  std::intptr_t marker) override {
        return to_.polyline(count, points, normal, marker);
    }
    bool polyline(const AcGiPolyline& p) override { return to_.polyline(p); }
    bool polyPolyline(std::uint32_t n, const AcGiPolyline* p) override {
        return to_.polyPolyline(n, p);
    }
    bool polygon(std::uint32_t n, const AcGePoint3d* p) override { return to_.polygon(n, p); }
    bool polyPolygon(std::uint32_t n, const std::uint32_t* counts, const AcGePoint3d* p) override {
        return to_.polyPolygon(n, counts, p);
    }
    bool mesh(std::uint32_t rows, std::uint32_t columns, const AcGePoint3d* points,
              const AcGiEdgeData* edges, const AcGiFaceData* faces, const AcGiVertexData* vertices,
              bool auto_normals) override {
        return to_.mesh(rows, columns, points, edges, faces, vertices, auto_normals);
    }
    bool shell(std::uint32_t count, const AcGePoint3d* points, std::uint32_t size,
               const std::int32_t* list, const AcGiEdgeData* edges, const AcGiFaceData* faces,
               const AcGiVertexData* vertices) override {
        return to_.shell(count, points, size, list, edges, faces, vertices);
    }
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
              const AcGeVector3d& direction, double height, double width, double oblique,
              const char* words) override {
        return to_.text(position, normal, direction, height, width, oblique, words);
    }
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
              const AcGeVector3d& direction, const char* words, std::int32_t length, bool raw,
              const AcGiTextStyle& style) override {
        return to_.text(position, normal, direction, words, length, raw, style);
    }
    bool xline(const AcGePoint3d& a, const AcGePoint3d& b) override { return to_.xline(a, b); }
    bool ray(const AcGePoint3d& a, const AcGePoint3d& b) override { return to_.ray(a, b); }
    bool pline(const AcDbPolyline& p, std::uint32_t from, std::uint32_t count) override {
        return to_.pline(p, from, count);
    }
    bool draw(AcGiDrawable* drawable) override { return to_.draw(drawable); }
    bool image(const AcGiImageBGRA32& source, const AcGePoint3d& position, const AcGeVector3d& u,
               const AcGeVector3d& v) override {
        return to_.image(source, position, u, v);
    }
    bool rowOfDots(int count, const AcGePoint3d& start, const AcGeVector3d& step) override {
        return to_.rowOfDots(count, start, step);
    }
    bool ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& normal, double major,
                       double minor, double start, double end, double tilt,
                       AcGiArcType type) override {
        return to_.ellipticalArc(center, normal, major, minor, start, end, tilt, type);
    }
    bool pushClipBoundary(AcGiClipBoundary* b) override { return to_.pushClipBoundary(b); }
    void popClipBoundary() override { to_.popClipBoundary(); }
    bool edge(const AcGiEdge2dArray& edges) override { return to_.edge(edges); }

private:
    CTsAcGiGeometry& to_;
};

class CTsAcWorldGeometry : public CTsAcForwardingGeometry<AcGiWorldGeometry> {
    ACRX_DECLARE_MEMBERS(CTsAcWorldGeometry)
public:
    using CTsAcForwardingGeometry::CTsAcForwardingGeometry;
};

/// What depends on the view only is not handled.
class CTsAcViewportGeometry : public CTsAcForwardingGeometry<AcGiViewportGeometry> {
    ACRX_DECLARE_MEMBERS(CTsAcViewportGeometry)
public:
    using CTsAcForwardingGeometry::CTsAcForwardingGeometry;
    bool polylineEye(std::uint32_t, const AcGePoint3d*) override { return false; }
    bool polygonEye(std::uint32_t, const AcGePoint3d*) override { return false; }
    bool polylineDc(std::uint32_t, const AcGePoint3d*) override { return false; }
    bool polygonDc(std::uint32_t, const AcGePoint3d*) override { return false; }
};

/// View data for what draws itself by view.
class CTsAcGiViewport : public AcGiViewport {
    ACRX_DECLARE_MEMBERS(CTsAcGiViewport)
public:
    bool isPerspective() const override { return perspective; }
    AcGePoint3d getCameraLocation() const override { return eye; }
    AcGePoint3d getCameraTarget() const override { return target; }
    AcGeVector3d getCameraUpVector() const override { return up; }
    AcGeVector3d viewDir() const override { return eye - target; }
    /// The document's stored view, then the host's view parameters over it. Drawing units.
    void take(const CTsAcDoc& document, AcDbObjectId viewport);

    AcGePoint3d eye, target;
    AcGeVector3d up = AcGeVector3d::kYAxis;
    double field_width = 1, field_height = 1;
    bool perspective = false;
};

/// Forwards the questions of drawing.
template <class Base>
class CTsAcForwardingDraw : public Base {
public:
    explicit CTsAcForwardingDraw(CTsAcCommonDraw& common)
      : to_(common) {}
    AcGiRegenType regenType() const override { return to_.regenType(); }
    bool regenAbort() const override { return to_.regenAbort(); }
    AcGiSubEntityTraits& subEntityTraits() const override { return to_.subEntityTraits(); }
    AcGiGeometry* rawGeometry() const override { return to_.rawGeometry(); }
    bool isDragging() const override { return to_.isDragging(); }
    double deviation(AcGiDeviationType type, const AcGePoint3d& point) const override {
        return to_.deviation(type, point);
    }
    std::uint32_t numberOfIsolines() const override { return to_.numberOfIsolines(); }
    AcGiContext* context() override { return to_.context(); }

protected:
    CTsAcCommonDraw& to_;
};

class CTsAcWorldDraw : public CTsAcForwardingDraw<AcGiWorldDraw> {
    ACRX_DECLARE_MEMBERS(CTsAcWorldDraw)
public:
    CTsAcWorldDraw(CTsAcCommonDraw& common, CTsAcGiGeometry& geometry)
      : CTsAcForwardingDraw(common)
      , geometry_(geometry) {}
    AcGiWorldGeometry& geometry() const override { return geometry_; }

private:
    mutable CTsAcWorldGeometry geometry_;
};

class CTsAcViewportDraw : public CTsAcForwardingDraw<AcGiViewportDraw> {
    ACRX_DECLARE_MEMBERS(CTsAcViewportDraw)
public:
    CTsAcViewportDraw(CTsAcCommonDraw& common, CTsAcGiGeometry& geometry)
      : CTsAcForwardingDraw(common)
      , geometry_(geometry) {}
    AcGiViewport& viewport() const override { return view; }
    AcGiViewportGeometry& geometry() const override { return geometry_; }

    mutable CTsAcGiViewport view;

private:
    mutable CTsAcViewportGeometry geometry_;
};

/// Enters all classes of the emulated interface in the host's dictionary. They stay there.
void register_draw_classes();
