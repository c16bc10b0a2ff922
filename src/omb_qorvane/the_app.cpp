// The application object.
#include "omb_qorvane/the_app.h"

#include "omb/base/folders.h"
#include "platform/files.h"

std::unique_ptr<cl_omb_qorvane_app> theApp_instance;

std::string own_module_folder() {
    return platform::module_file(reinterpret_cast<const void*>(&own_module_folder))
        .parent_path()
        .string();
}

cl_omb_qorvane_app::cl_omb_qorvane_app(const std::string& module_folder)
  : application_folder(module_folder)
  , somb_support_folder(sibling_folder(module_folder, "OMB_SUPPORT"))
  , batch_exe_folder(sibling_folder(module_folder, "OMB_BATCH")) {
    omb_export.application_folder = module_folder;
}

void cl_omb_qorvane_app::show_progress(const std::string& title, const std::string& text) {
    if (progress_dialog == nullptr && make_progress_dialog) {
        progress_dialog = make_progress_dialog();
    }
    if (progress_dialog != nullptr) {
        progress_dialog->show(title, text);
    }
}

bool cl_omb_qorvane_app::refresh_document() {
    tstoolkit = TsAcToolkit();
    tsdoc = tstoolkit != nullptr ? tstoolkit->CurrentDocument() : nullptr;
    return tsdoc != nullptr;
}
