// Multilines and their styles.
#pragma once

#include "host/db/entity.h"

#include <array>
#include <string>
#include <vector>

namespace gi {
struct FaceList;
}

/// DXF MLINESTYLE.
class AcDbMlineStyle : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbMlineStyle)
public:
    enum Flag { kFilled = 1, kStartRound = 64, kEndRound = 1024 };
    struct Element {
        double offset = 0;
        AcCmEntityColor color;
    };
    const std::string& name() const { return name_; }
    bool isFilled() const { return (flags_ & kFilled) != 0; }
    bool hasFlag(Flag flag) const { return (flags_ & flag) != 0; }
    AcCmEntityColor fillColor() const { return fill_color_; }
    const std::vector<Element>& elements() const { return elements_; }
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    std::string name_;
    std::int32_t flags_ = 0;
    AcCmEntityColor fill_color_;
    std::vector<Element> elements_;
};

class AcDbMline : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbMline)
public:
    enum Flag { kClosed = 2, kNoStartCaps = 4, kNoEndCaps = 8 };
    /// A corner: where it lies, along which way its segment leaves and the lines meet there.
    struct Vertex {
        AcGePoint3d point;
        AcGeVector3d direction, miter;
        /// For each element: the way along the miter to its line, then stretches along the line.
        std::vector<std::vector<double>> elements;
        std::vector<double> fills; ///< stretches along the segment, none: all of it
    };
    AcDbObjectId styleId() const { return style_; }
    double scale() const { return scale_; }
    bool isClosed() const { return (flags_ & kClosed) != 0; }
    AcGeVector3d normal() const { return normal_; }
    const std::vector<Vertex>& vertices() const { return vertices_; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    /// The lines of all elements, and the area between the outer ones when the style fills it.
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;

private:
    bool isFinite() const;
    std::size_t elementCount() const;
    /// Where the line of an element crosses the miter of a vertex.
    AcGePoint3d pointOf(std::size_t vertex, std::size_t element) const;
    void drawLines(AcGiWorldDraw* draw) const;
    std::array<std::size_t, 2> outerElements() const; ///< the lowest and the highest
    void addSegments(gi::FaceList& body) const;
    void addCap(gi::FaceList& body, std::size_t vertex, const AcGeVector3d& outwards,
                double deviation) const;
    void drawFill(AcGiWorldDraw* draw, const AcDbMlineStyle& style) const;
    AcDbObjectId style_;
    double scale_ = 1;
    std::int32_t justification_ = 0, flags_ = 0, elements_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    std::vector<Vertex> vertices_;
};
