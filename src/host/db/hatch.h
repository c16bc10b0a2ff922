// Hatches and filled multi-polygons.
#pragma once

#include "host/db/entity.h"
#include "host/db/hatch_loop.h"
#include "host/ge/triangulate.h"

#include <vector>

namespace dxf {
struct Tag;
}

/// How a gradient runs, group codes 450 to 470.
struct AcDbHatchGradient {
    bool on = false;
    std::string name = "LINEAR"; ///< LINEAR, CYLINDER, CURVED, SPHERICAL, HEMISPHERICAL, INV...
    double angle = 0;            ///< radians
    double shift = 0;            ///< 0 the middle, 1 moved by half of the area's size
    bool one_color = false;
    double tint = 0; ///< of the other colour of a gradient of one: 0 black, 1 white
    std::vector<AcCmEntityColor> colors;
};

class AcDbHatch : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbHatch)
public:
    enum HatchStyle { kNormal = 0, kOuter = 1, kIgnore = 2 };

    bool isSolidFill() const { return solid_; }
    bool isGradient() const { return gradient_.on; }
    const AcDbHatchGradient& gradient() const { return gradient_; }
    const std::string& patternName() const { return pattern_; }
    double elevation() const { return elevation_; }
    AcGeVector3d normal() const { return normal_; }
    HatchStyle hatchStyle() const { return static_cast<HatchStyle>(style_); }
    const std::vector<AcDbHatchLoop>& loops() const { return loops_; }
    /// There is a colour behind the lines of a pattern, or that fills a multi-polygon.
    bool hasBackground() const { return has_background_; }
    AcCmEntityColor backgroundColor() const { return background_; }

    /// The area inside, islands taken out by the style, in the hatch's plane. Chords leave curves
    /// by no more than `deviation`.
    ge::Triangulation area(double deviation) const;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    /// The filled area, in bands of colour for a gradient. Patterns give their background only.
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;

protected:
    /// Takes a tag that stands outside of the loops.
    virtual void take(const dxf::Tag& tag, const dxf::ObjectTags& tags);
    bool isFilled() const { return solid_ || gradient_.on || has_background_; }
    std::vector<AcDbHatchLoop> loops_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double elevation_ = 0;
    bool solid_ = false;
    std::int32_t style_ = kNormal;
    std::string pattern_;
    AcDbHatchGradient gradient_;
    bool has_background_ = false;
    AcCmEntityColor background_;
};

/// A polygon of several loops with its filling. Its loops are polylines.
class AcDbMPolygon : public AcDbHatch {
    ACRX_DECLARE_MEMBERS(AcDbMPolygon)
protected:
    void take(const dxf::Tag& tag, const dxf::ObjectTags& tags) override;
};
