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

bool cl_omb_qorvane_app::refresh_document() {
    tstoolkit = TsAcToolkit();
    tsdoc = tstoolkit != nullptr ? tstoolkit->CurrentDocument() : nullptr;
    return tsdoc != nullptr;
}
