// What the commands do that other programs can call as well.
#include "omb_qorvane/commands.h"

#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/the_app.h"

namespace {
constexpr int materials_by_layer = -3;
}

void open_render_ready(std::uintptr_t window) {
    set_global_bool("bks_is_green_button_app", true);
    run_named_dialog("kestra_lamps_qrac", window);
    acedPostCommandPrompt();
}

int open_layer_materials(std::uintptr_t window) {
    return theApp().omb_export.EditMaterials(window, materials_by_layer, "");
}

void open_control_panel(std::uintptr_t window) {
    if (!theApp().control_panel_used) {
        theApp().control_panel_used = true;
        preset_globals(0);
        theApp().omb_export.reset();
    }
    run_named_dialog("qorb_control_panel", window);
}
