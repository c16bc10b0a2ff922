// The table of standard pages and its rules, see standard_tabs.h.
#include "omb/dialog/standard_tabs.h"

#include "omb/globals/globals.h"

#include <algorithm>

namespace {

constexpr bool yes = true, no = false;

// BricsCAD goes without the pages of ready-made looks ("Presets", "Styles", "Special"): all that
// they set is on other pages too, so nothing is out of reach there.
constexpr cl_standard_tab rows[] = {
    // name, product, low-end, room, BricsCAD
    {"Render", yes, yes, no},
    {"Render 2", yes, yes, no},
    {"Bgnd", yes, yes, no},
    {"HDRi", yes, yes, no},
    {"Image", yes, yes, no},
    {"Presets", yes, yes, no, no},
    {"Styles", yes, yes, no, no},
    {"Fgnd", yes, no, no},
    {"Fog/Haze", yes, no, no},
    {"Lights", yes, no, no},
    {"More", yes, no, no},
    {"Layers", yes, no, no},
    {"Sun", yes, no, no},
    {"Sky", yes, no, no},
    {"Camera", no, no, no},
    {"Plants", yes, yes, no},
    {"Special", yes, no, no, no},
    {"Preset Rooms", no, no, yes},
    {"Custom Settings", no, no, yes},
    {"Walls", no, no, yes},
    {"Backgrounds", no, no, yes},
    {"Room_Debug", no, no, yes},
    {"Create_Room", no, no, no},
    {"Table", yes, yes, no},
    {"Floor", yes, yes, no},
    {"Linear", yes, no, no},
    {"Camera", yes, no, no},
    {"Beams", yes, no, no},
    {"Wall", yes, no, no},
};

bool is_set(const char* name) { return get_global_bool(name, false); }

} // namespace

std::span<const cl_standard_tab> standard_tabs() { return rows; }

const cl_standard_tab* find_standard_tab(std::string_view name) {
    const auto* const found =
        std::find_if(std::begin(rows), std::end(rows),
                     [&](const cl_standard_tab& row) { return row.name == name; });
    return found == std::end(rows) ? nullptr : found;
}

cl_tab_modes read_tab_modes() {
    cl_tab_modes modes;
    modes.product = is_set("bks_kestra_qor_mode");
    modes.brinmoor = is_set("bqor_is_brinmoor");
    modes.acad_oem = is_set("bqor_is_acad_oem");
    modes.bricscad = is_set("bqor_is_bricscad");
    modes.room_tab = is_set("bks_load_auto_room_tab");
    modes.room = modes.room_tab || modes.brinmoor;
    modes.all_room_tabs = is_set("bks_auto_room_show_all_tabs");
    modes.room_debug = is_set("bks_show_room_debug_tab");
    modes.low_end = is_set("bks_lowend_render_mode");
    return modes;
}

bool tab_is_shown(std::string_view name, const cl_tab_modes& modes) {
    const cl_standard_tab* row = find_standard_tab(name);
    if (row == nullptr) {
        return true;
    }
    const bool creates_room = name == "Create_Room";
    const bool left_out_by_room =
        modes.room && !modes.all_room_tabs && name != "Render" && !creates_room && !row->in_room;
    const bool left_out_by_mode =
        !modes.room && (row->in_room || (modes.product && !row->in_product) ||
                        (modes.low_end && !row->in_low_end));
    const bool left_out_by_host =
        (modes.bricscad && !row->in_bricscad) || (modes.acad_oem && name == "Special");
    const bool left_out_by_setting =
        (creates_room && !modes.room_tab) || (name == "Room_Debug" && !modes.room_debug);
    return !left_out_by_room && !left_out_by_mode && !left_out_by_host && !left_out_by_setting;
}
