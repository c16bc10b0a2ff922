// `CTsAcCommonDraw`: the state of one extraction, and the answers that entities ask of it.
#pragma once

#include "omb_qorvane/camera_facets.h"
#include "omb_qorvane/extraction_report.h"
#include "omb_qorvane/instance_stack.h"
#include "omb_qorvane/layer_facts.h"
#include "omb_qorvane/stream_writer.h"
#include "omb_qorvane/trait_resolution.h"
#include "omb_qorvane/ts_ac_doc.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

class AcDbBlockReference;
class cl_omb_export;
class CTsAcGiGeometry;
class CTsAcWorldDraw;
class CTsAcViewportDraw;

/// What an entity asks of its surroundings; its database is the host's working one.
class CTsAcGiContext : public AcGiContext {
    ACRX_DECLARE_MEMBERS(CTsAcGiContext)
public:
    AcDbDatabase* database() const override;
};

/// Functions of the optional plug-in for RPC objects; null when it is not loaded.
struct cl_rpc_functions {
    using begin_function = int (*)(int, int);
    using draw_function = int (*)(AcDbEntity*, AcGiViewportDraw*, void*);
    using end_function = int (*)();
    begin_function begin = nullptr;
    draw_function viewport_draw = nullptr;
    end_function end = nullptr;
    /// Looks for the plug-in among the loaded modules and announces an extraction to it.
    void find_and_begin();
};

/// Writes a plant of the optional module: the plant's file, its definition's. 1 when it is one.
using cl_plant_function = int (*)(AcDbBlockReference* plant, const char* plant_path,
                                  const char* definition_path);

class CTsAcCommonDraw : public AcGiCommonDraw {
    ACRX_DECLARE_MEMBERS(CTsAcCommonDraw)
public:
    CTsAcCommonDraw(cl_omb_export& exporter, CTsAcDoc& document, cl_stream_writer& stream,
                    bool scan_only, bool scan_for_layer_dialog);

    /// The command for special classes, whose DXF name begins with "AT_", is hide; else render.
    AcGiRegenType regenType() const override;
    /// True, with the document's abort flag set, when the document says stop.
    bool regenAbort() const override;
    AcGiSubEntityTraits& subEntityTraits() const override { return *traits; }
    AcGiGeometry* rawGeometry() const override;
    bool isDragging() const override { return false; }
    double deviation(AcGiDeviationType, const AcGePoint3d&) const override;
    /// The entity's box in its own coordinates, empty when it has none; that of an entity in a
    /// block is asked for once, however often the block is inserted.
    const AcDbExtents& box_of(const AcDbEntity& entity);
    std::uint32_t numberOfIsolines() const override { return 4; }
    AcGiContext* context() override { return &context_; }

    cl_omb_export& exporter;
    CTsAcDoc& tsdoc;
    cl_stream_writer& stream;
    CTsAcGiGeometry* geometry = nullptr;
    CTsAcSubEntityTraits* traits = nullptr; ///< of what is being drawn
    CTsAcWorldDraw* world_draw = nullptr;
    CTsAcViewportDraw* viewport_draw = nullptr;
    int group_id = 0;
    bool scan_only, scan_for_layer_dialog;
    cl_instance_stack stack;
    std::string indent; ///< of the current depth
    cl_rpc_functions rpc;
    bool in_rpc_draw = false;
    bool special_class = false;
    cl_plant_function save_plant; ///< of the optional plant module, null without it

    // The current entity.
    std::uint64_t entity_handle = 0;
    AcDbObjectId object_id;        ///< set just before it draws
    std::string block_handle_text; ///< of the last block reference

    std::optional<cl_camera_facets> camera_facets; ///< when chords follow the camera

    cl_layer_cache layers;
    cl_resolution resolution;
    cl_extraction_report report;

private:
    CTsAcGiContext context_;
    std::unordered_map<AcDbObjectId, AcDbExtents> boxes_; ///< of entities in blocks
    AcDbExtents box_;                                     ///< of the last one outside
};
