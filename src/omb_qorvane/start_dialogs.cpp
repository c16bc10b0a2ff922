// The forms of the starts.
#include "omb_qorvane/start_dialogs.h"

#include "omb/base/error_dialog.h"
#include "omb/base/form_dialog.h"
#include "omb/base/message_box.h"
#include "omb_qorvane/omb_export.h"

#include <fmt/format.h>

namespace {
constexpr int largest_picture = 32768; ///< pixels along a side
}

bool cl_asuni_start_dlg::show() {
    cl_form_dialog form;
    form.title = std::string(green_button_info(GREEN_BUTTON_ASUNI).program_name) + " Rendering";
    form.rows = {cl_form_row::whole("Width", width, 1, largest_picture),
                 cl_form_row::whole("Height", height, 1, largest_picture),
                 cl_form_row::real("Sun altitude", altitude, -90, 90),
                 cl_form_row::real("Sun azimuth", azimuth, -360, 360)};
    if (!do_form_dialog(form)) {
        return false;
    }
    width = form.rows[0].int_value();
    height = form.rows[1].int_value();
    altitude = form.rows[2].double_value();
    azimuth = form.rows[3].double_value();
    return true;
}

bool show_about_dialog() {
    const cl_version_data& version = version_data();
    return do_message_box(fmt::format("{}\n\nVersion {} ({})", version.program, version.version,
                                      version.build),
                          "About Qorvane",
                          message_box::ok_cancel | message_box::icon_information) ==
           message_box::id_ok;
}
