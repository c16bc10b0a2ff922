// The dialogs of the starts.
#include "omb_qorvane/start_dialogs.h"

#include "omb/base/error_dialog.h"
#include "omb/base/message_box.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/dcl_dialogs.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace {

constexpr int largest_picture = 32767; ///< pixels along a side; drawings keep 16 bits

double angle_from(const char* global, double most) {
    const double value = get_global_double(global);
    return std::isfinite(value) ? std::clamp(value, -most, most) : 0;
}

int pixels_from(const char* global) {
    return std::clamp(get_global_int(global), 1, largest_picture);
}

} // namespace

// The dialog has globals of its own: a cancelled one has written them too.
bool cl_asuni_start_dlg::show() {
    set_global_int("iks_asuni_width", width, SAVE_NONE);
    set_global_int("iks_asuni_height", height, SAVE_NONE);
    set_global_double("rks_asuni_altitude", altitude, SAVE_NONE);
    set_global_double("rks_asuni_azimuth", azimuth, SAVE_NONE);
    if (run_dcl_dialog("kestra_asuni_start") != dialog_answer::confirmed) {
        return false;
    }
    width = pixels_from("iks_asuni_width");
    height = pixels_from("iks_asuni_height");
    altitude = angle_from("rks_asuni_altitude", 90);
    azimuth = angle_from("rks_asuni_azimuth", 360);
    return true;
}

bool show_about_dialog() {
    const cl_version_data& version = version_data();
    const std::string words = fmt::format("Version {} ({})", version.version, version.build);
    set_global_string("sks_about_version", words, SAVE_NONE);
    const dialog_answer answer = run_dcl_dialog("kestra_about");
    if (answer != dialog_answer::unattended) {
        return answer == dialog_answer::confirmed;
    }
    return do_message_box(fmt::format("{}\n\n{}", version.program, words), "About Qorvane",
                          message_box::ok_cancel | message_box::icon_information) ==
           message_box::id_ok;
}
