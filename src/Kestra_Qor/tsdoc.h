// `cl_tsdoc`: the render document as the options logic fills it from the globals.
#pragma once

#include "toolkit/ts_doc.h"

class cl_tsdoc : public CTsDoc {
public:
    /// Globals to document, in its fixed order: engine, channels, lighting, sun, sky, ground,
    /// limits.
    static void write_globals_into_tsdoc2(CTsDoc& document);
    void write_globals_into_tsdoc2() { write_globals_into_tsdoc2(*this); }
    /// Quality globals to document, in its fixed order.
    static void write_quality_to_document(CTsDoc& document);
    /// Document to globals: the reverse of write_globals_into_tsdoc2 for the values that come back.
    static void read_globals_from_tsdoc(const CTsDoc& document);
};

/// The scale of sun and sky from `iks_light_balance` (0 to 100): 50 gives 1.0, 100 gives 0.0, 0
/// gives 100.0.
double get_light_balance_scale();

/// Lights per pass for a document with `light_count` lights; at least
/// `iqor_minimum_lights_per_pass`.
int get_lights_per_pass(int light_count);

/// Turns fog's engine question into a box when `bks_enable_fog` is on without the Path Tracer.
void check_fog_engine();
