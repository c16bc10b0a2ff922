// The commands and what they do.
#include "omb_qorvane/command_table.h"

#include "omb/base/errors.h"
#include "omb/base/text.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/OMB_Qorvane.h"
#include "omb_qorvane/commands.h"
#include "omb_qorvane/driver.h"

#include <array>
#include <charconv>
#include <string>

namespace {

void tell_missing(const char* name) {
    acutPrintf(std::string("\n") + name + " is not there yet.\n");
}

void omb_addons_dlg() {
    first_use();
    tell_missing("OMB_ADDONS_DLG");
}
void omb_ac_render_ready() { open_render_ready(first_use()); }
void omb_image_wizard() {
    first_use();
    tell_missing("OMB_IMAGE_WIZARD");
}
void omb_ac_layer_materials() { open_layer_materials(first_use()); }
void omb_auto_refl() {
    first_use();
    tell_missing("OMB_AUTO_REFL");
}
void omb_test() {
    first_use();
    tell_missing("OMB_TEST");
}
void OMB_GREEN_BUTTON() {
    first_use();
    green_button_command();
}
void QORB() { open_control_panel(first_use()); }

/// The next word typed behind the command, when it is a number, is the start code.
int pending_start_code() {
    const std::optional<std::string> word = acedTakePendingInput();
    int code = 0;
    if (word) {
        const auto [end, error] = std::from_chars(word->data(), word->data() + word->size(), code);
        if (error != std::errc() || end != word->data() + word->size()) {
            code = 0;
        }
    }
    return code;
}

void RENDER() {
    first_use();
    plain_start(pending_start_code(), EXTRACT_AND_RENDER);
}

/// The host tells the user why a command failed: text is all that it gets from us.
template <void (*body)()>
void command() {
    run_at_boundary("Error while running command", body);
}

constexpr std::array<cl_command_row, 7> table{{
    {"_omb_ac_addons_dlg", "omb_addons_dlg", &command<omb_addons_dlg>},
    {"_omb_ac_render_ready", "omb_ac_render_ready", &command<omb_ac_render_ready>},
    {"_omb_ac_image_wizard", "omb_image_wizard", &command<omb_image_wizard>},
    {"_omb_ac_layer_materials", "omb_ac_layer_materials", &command<omb_ac_layer_materials>},
    {"_omb_auto_refl", "OMB_AUTO_REFL", &command<omb_auto_refl>},
    {"_omb_test", "omb_test", &command<omb_test>},
    {"_OMB_GREEN_BUTTON", "OMB_GREEN_BUTTON", &command<OMB_GREEN_BUTTON>},
}};
constexpr std::array<cl_command_row, 2> by_hand{{
    {"QORB", "QORB", &command<QORB>},
    {"RENDER", "RENDER", &command<RENDER>},
}};

} // namespace

std::span<const cl_command_row> command_table() { return table; }
std::span<const cl_command_row> hand_added_commands() { return by_hand; }
