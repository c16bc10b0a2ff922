// Settings that go to the batch program and come back: the options dialog, a drawing's folder
// after a save under a new name, and the import of what its window changed.
#include "omb_qorvane/batch_calls.h"

#include "Kestra_Qor/tsdoc.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/dcl_dialogs.h"
#include "omb_qorvane/the_app.h"

#include <fmt/format.h>

int show_options_dialog(std::uintptr_t) {
    cl_omb_export& exporter = theApp().omb_export;
    const std::string params = exporter.write_params_files();
    if (params.empty()) {
        return 0;
    }
    const bool oem =
        exporter.green_button_app == GREEN_BUTTON_DELTA && get_global_bool("bqor_is_acad_oem");
    const std::string call =
        std::string(oem ? "qorvane_delta_OEM_setup:" : "qorvane_ac_setup:") + params;
    if (!run_batch_program(exporter, {call}, call, render_failure).ended()) {
        return 0;
    }
    exporter.read_options_globals_file();
    exporter.write_globals_to_OMB_QorvaneDictionary();
    return 1;
}

namespace {

/// A template gives its settings to nobody.
bool is_template(const std::string& drawing) {
    return omb::equal_no_case(path_extension(drawing), "dwt");
}

bool may_overwrite(const std::string& name, const std::string& folder) {
    return do_message_box(
               fmt::format("Qorvane Batch folder for new drawing '{0}' already exists.\n\n{1}\n\n"
                           "Overwrite Qorvane Batch settings and materials for '{0}'?",
                           name, folder),
               "Copy Qorvane Batch Settings",
               message_box::yes_no | message_box::icon_question) == message_box::id_yes;
}

} // namespace

void copy_batch_settings(const std::string& old_name, const std::string& new_name) {
    cl_omb_export& exporter = theApp().omb_export;
    static constexpr const char* not_to_new =
        "\nUnable to copy Qorvane Batch settings and materials to new drawing.";
    const std::string from = path_stem(old_name), to = path_stem(new_name);
    if (from.empty()) {
        acutPrintf("\nUnable to copy Qorvane Batch settings and materials from existing drawing.");
        return;
    }
    if (to.empty()) {
        acutPrintf(not_to_new);
        return;
    }
    const std::string old_folder = exporter.drawing_folder_of(from);
    const std::string new_folder = exporter.drawing_folder_of(to);
    if (omb::to_upper(from) == omb::to_upper(to) || old_folder == new_folder ||
        is_template(old_name) || !folder_exists(old_folder)) {
        return;
    }
    if (folder_exists(new_folder) && !may_overwrite(to, new_folder)) {
        return;
    }
    const std::string call = "copy_project_render_folder:" + old_folder;
    const batch_call_end end = run_batch_program(exporter, {call, "to_folder:", new_folder},
                                                 call + " to_folder: " + new_folder, copy_failure);
    if (end.ended() && end.status == 0) {
        acutPrintf(fmt::format("\nQorvane Batch settings copied from '{}' to: {}", from, to));
    } else if (end.started) {
        acutPrintf(not_to_new);
    }
}

namespace {

/// Asks whether to import.
struct cl_synch_dialog {
    std::string settings_file, drawing;

    bool show() const {
        set_global_string("sks_import_settings_file", settings_file, SAVE_NONE);
        set_global_string("sks_import_drawing", drawing, SAVE_NONE);
        return run_dcl_dialog("kestra_import_settings") == dialog_answer::confirmed;
    }
};

} // namespace

bool synch_options() {
    cl_omb_export& exporter = theApp().omb_export;
    if (!theApp().refresh_document()) {
        return false;
    }
    exporter.doc_file_path = join_path(exporter.get_batch_folder(), "qor_doc.xml");
    CTsAcDoc& document = *theApp().tsdoc;
    if (!cl_synch_dialog{exporter.doc_file_path, document.Document()->fileName()}.show()) {
        return false;
    }
    CTsXmlReader reader;
    if (!reader.Init(exporter.doc_file_path) || !document.Read(reader)) {
        OMB_TRACE(1, "Cannot read document: %s", exporter.doc_file_path);
        return false;
    }
    cl_tsdoc::read_globals_from_tsdoc(document);
    exporter.read_options_globals_file();
    exporter.write_globals_to_OMB_QorvaneDictionary();
    CTsAcView(document).TakeSettings(); // the camera is the drawing's own
    return true;
}
