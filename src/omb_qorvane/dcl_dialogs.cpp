// Opening dialogs of dialog files, see dcl_dialogs.h.
#include "omb_qorvane/dcl_dialogs.h"

#include "omb_qorvane/named_dialogs.h"
#include "omb_qorvane/the_app.h"

#include "host/gs/view.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/globals/globals.h"

namespace {

constexpr const char* start_dialog = "kestra_start_rendering_modal";
constexpr const char* active_view = "Active view";
constexpr const char* has_views = "bks_start_has_views";
constexpr const char* view_names = "sks_start_view_names";
constexpr const char* chosen_view = "sks_start_view";
constexpr const char* chosen_light = "iks_start_lighting";

AcDbDatabase* current_database() {
    CTsAcDoc* document = theApp().tsdoc;
    return document != nullptr ? document->Database() : nullptr;
}

/// What the dialog's own settings are at its opening: the drawing's named views, and no choice.
void offer_views() {
    std::string names = active_view;
    bool any = false;
    if (AcDbDatabase* database = current_database()) {
        for (const AcDbObjectId& id : database->viewTable().records()) {
            const AcDbObjectPointer<AcDbViewTableRecord> record(id);
            if (record && record->getName().find('\n') == std::string::npos) {
                names += "\n" + record->getName();
                any = true;
            }
        }
    }
    set_global_bool(has_views, any, SAVE_NONE);
    set_global_string(view_names, names, SAVE_NONE);
    set_global_string(chosen_view, active_view, SAVE_NONE);
    set_global_int(chosen_light, 0, SAVE_NONE);
}

/// Makes the chosen view the active one.
void take_view() {
    AcDbDatabase* database = current_database();
    const std::string name = get_global_string(chosen_view);
    AcDbObjectId id;
    AcGsView view;
    if (database != nullptr && name != active_view &&
        database->viewTable().getAt(name, id) == Acad::eOk && acgsGetViewParameters(id, view)) {
        acgsSetViewParameters(acedActiveViewportId(), view);
    }
}

int run_start_dialog() {
    offer_views();
    switch (run_dcl_dialog(start_dialog)) {
    case dialog_answer::confirmed:
        take_view();
        return dialog_confirmed;
    case dialog_answer::cancelled:
        return dialog_cancelled;
    default:
        acutPrintf(std::string("\nThere is no display for the dialog ") + start_dialog +
                   "; going on with the settings as they are.\n");
        return dialog_confirmed;
    }
}

} // namespace

dialog_answer run_dcl_dialog(const std::string& name) {
    if (!window_system().is_attended()) {
        return dialog_answer::unattended;
    }
    return dlg_load_dialog(name, "modal") == dialog_cancel ? dialog_answer::cancelled
                                                           : dialog_answer::confirmed;
}

void register_dcl_dialogs() {
    register_named_dialog(start_dialog, [](std::uintptr_t) { return run_start_dialog(); });
}
