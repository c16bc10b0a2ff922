// Commands that other programs can call as well.
#pragma once

#include <cstdint>

/// The dialog of the lamps, over the window.
void open_render_ready(std::uintptr_t window);
/// Materials by layer, in the batch program. As EditMaterials.
int open_layer_materials(std::uintptr_t window);
/// The control panel. The first call of a run presets the settings and resets the exporter.
void open_control_panel(std::uintptr_t window);
