// `CTsAcLight`: the light record that makes an entity of the drawing a lamp.
#pragma once

#include "host/db/entity.h"
#include "toolkit/ts_light.h"

#include <array>
#include <memory>

/// A light as dialogs edit it.
class CTsUiLight : public CTsLight {
public:
    int m_Flags = 0; ///< below 0: an opening that lets daylight in
};

class CTsAcLight : public CTsUiLight {
public:
    /// Where the light is on its entity, drawing units: from the middle of the entity's box to the
    /// light (3) and to its aim (3), its x axis (3), and a spare.
    std::array<double, 10> m_Placing{0, 0, 0, 0, 0, -1, 1, 0, 0, 0};
    /// What glows beside the light itself: the lamp's own surface. Null for most.
    std::shared_ptr<CTsLight> m_ImplicitSource;

    /// Reads the record of an entity; with `read_old` what older drawings carry comes first and the
    /// newer record over it. False when there is neither, or the record cannot be read.
    bool load_from_entity(const AcDbEntity& entity, bool read_old);
    /// Stores record, photometric web and placing. False on any failure, with the entity as it was
    /// or without the last of the three.
    bool save_to_entity(AcDbEntity& entity) const;

    /// The entity's light in the drawing, before any transform: the middle of the entity's box,
    /// moved by the placing. False when the entity has no box.
    bool place_on(const AcDbEntity& entity, AcGePoint3d& location, AcGeVector3d& direction,
                  AcGeVector3d& x_axis) const;
    bool LoadImplicitSource(CTsLight& source) const;

private:
    bool LoadOldStuff(const AcDbEntity& entity);
    bool read_record(const AcDbEntity& entity);
    std::string record_text() const;
};

/// The entity carries a light of the older kind that can be read.
bool TsAcIsOldLight(const AcDbEntity& entity);
