// What is read from the host's drawing and view ahead of a render.
#pragma once

/// Copies the sun of the active viewport into the document; without one nothing changes. Throws
/// std::invalid_argument when the sun's date lies before 1900 or is none.
void read_sun_from_host();
/// Degrees brought into 0 up to 360, and into -180 up to 180; any finite value of use as an angle.
double wrapped_azimuth(double degrees);
double wrapped_altitude(double degrees);

/// Fills theApp().tsview from the active viewport, and the document's unit code and scale from the
/// drawing's insunits (1 metre a unit when they say nothing). False without document or view.
bool get_view_from_drawing();

/// Brings a drawing's settings and its batch folder up to date for a picture of the view:
/// parameter files, picture size by the view's aspect, background pictures, the drawing's
/// dictionary. `code` is that of the CAD program; with DeltaCADD's the settings are not read. False
/// without document or view.
bool init_omb_qorvane(int code);
