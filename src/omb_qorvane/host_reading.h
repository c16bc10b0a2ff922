// What is read from the host's drawing and view ahead of a render.
#pragma once

/// Copies the sun of the active viewport into the document. The host has no sun objects yet: a
/// viewport that names one is traced, and nothing changes.
void read_sun_from_host();

/// Fills theApp().tsview from the active viewport, and the document's unit code and scale from the
/// drawing's insunits (1 metre a unit when they say nothing). False without document or view.
bool get_view_from_drawing();

/// Brings a drawing's settings and its batch folder up to date for a picture of the view:
/// parameter files, picture size by the view's aspect, background pictures, the drawing's
/// dictionary. `code` is that of the CAD program; with DeltaCADD's the settings are not read. False
/// without document or view.
bool init_omb_qorvane(int code);
