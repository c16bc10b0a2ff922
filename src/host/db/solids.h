// Solids, regions and surfaces: what a solid modeller made, kept as its data in the drawing.
#pragma once

#include "host/brep/mesh.h"
#include "host/db/entity.h"

#include <optional>

/// What all of them share: the modeller's data, read from the drawing's file whenever the entity is
/// drawn, and meshed to the deviation that the drawer asks for.
class AcDbModelerGeometry : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbModelerGeometry)
public:
    AcDbModelerGeometry();
    ~AcDbModelerGeometry() override;

    /// Gives a new entity its data as text (SAT), lines divided by '\n'.
    void setText(std::string text);
    /// The boundary representation as the data tell it, in world coordinates behind its transform.
    /// Empty, with its problems told, when there are none or they cannot be read.
    brep::Body body() const;
    /// Its mesh; `chord` in drawing units.
    brep::Mesh mesh(double chord) const;

    /// The box around the body: exact but for spline surfaces, where it is that of a mesh which is
    /// off by a five-hundredth of the size at most.
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    const char* notRenderedReason() const override;
    void drawFindings(std::vector<AcDbDrawFinding>& findings) const override;
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    const AcDbExtents& box() const;
    std::string text_; ///< of a new entity; else the data stay in the drawing's file
    mutable std::optional<AcDbExtents> box_;
    mutable std::vector<brep::Problem> problems_; ///< of the last mesh; there when the box is
};

class AcDb3dSolid : public AcDbModelerGeometry {
    ACRX_DECLARE_MEMBERS(AcDb3dSolid)
public:
    void dxfOut(dxf::TagWriter& writer) const override;
};
class AcDbBody : public AcDbModelerGeometry {
    ACRX_DECLARE_MEMBERS(AcDbBody)
};
class AcDbRegion : public AcDbModelerGeometry {
    ACRX_DECLARE_MEMBERS(AcDbRegion)
};
class AcDbSurface : public AcDbModelerGeometry {
    ACRX_DECLARE_MEMBERS(AcDbSurface)
};
class AcDbPlaneSurface : public AcDbSurface {
    ACRX_DECLARE_MEMBERS(AcDbPlaneSurface)
};
class AcDbExtrudedSurface : public AcDbSurface {
    ACRX_DECLARE_MEMBERS(AcDbExtrudedSurface)
};
class AcDbRevolvedSurface : public AcDbSurface {
    ACRX_DECLARE_MEMBERS(AcDbRevolvedSurface)
};
class AcDbLoftedSurface : public AcDbSurface {
    ACRX_DECLARE_MEMBERS(AcDbLoftedSurface)
};
class AcDbSweptSurface : public AcDbSurface {
    ACRX_DECLARE_MEMBERS(AcDbSweptSurface)
};
class AcDbNurbSurface : public AcDbSurface {
    ACRX_DECLARE_MEMBERS(AcDbNurbSurface)
};

/// Enters the classes of this file in the class dictionary.
void acdbInitSolidClasses();
