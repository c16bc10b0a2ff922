// The pages of the system's large dialogs, and the modes in which each is there.
#pragma once

#include <span>
#include <string_view>

struct cl_standard_tab {
    std::string_view name;
    bool in_product, in_low_end, in_room; ///< modes
    bool in_bricscad = true;              ///< under that host
};

/// The 29 rows in their order; two have the name "Camera", of which the first counts.
std::span<const cl_standard_tab> standard_tabs();
/// The first row of that name, exact; null for a page that shows in every mode.
const cl_standard_tab* find_standard_tab(std::string_view name);

struct cl_tab_modes {
    bool product = false;       ///< bks_kestra_qor_mode
    bool brinmoor = false;      ///< bqor_is_brinmoor
    bool acad_oem = false;      ///< bqor_is_acad_oem
    bool bricscad = false;      ///< bqor_is_bricscad
    bool room = false;          ///< bks_load_auto_room_tab, or brinmoor
    bool all_room_tabs = false; ///< bks_auto_room_show_all_tabs
    bool room_tab = false;      ///< bks_load_auto_room_tab
    bool room_debug = false;    ///< bks_show_room_debug_tab
    bool low_end = false;       ///< bks_lowend_render_mode
};
/// The modes as the settings have them.
cl_tab_modes read_tab_modes();

/// Whether a page of that name is there in these modes.
bool tab_is_shown(std::string_view name, const cl_tab_modes& modes);
