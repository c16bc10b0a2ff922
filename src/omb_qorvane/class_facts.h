// What a walk needs to know of a drawable's class, worked out once a class.
#pragma once

#include "host/rx/rxobject.h"

/// How a scan for layers and colours takes a class.
enum class scan_interest { none, always, with_thickness };

struct cl_class_facts {
    bool light = false; ///< exactly AcDbLight
    bool entity = false;
    bool block_reference = false; ///< exactly AcDbBlockReference, not what derives from it
    bool block_record = false;    ///< a block table record
    bool rpc_object = false, rpc_guide = false;
    bool raster_image = false;
    bool special = false;      ///< DXF name begins with "AT_", without case
    bool own_dxf_name = false; ///< the object itself knows its DXF name
    scan_interest scan = scan_interest::none;
};

/// Facts of a class of the host's dictionary; the reference stays valid for the whole run.
const cl_class_facts& class_facts(const AcRxClass* record);
/// True for a DXF name that begins with "AT_", compared without case.
bool is_special_dxf_name(const char* name);
