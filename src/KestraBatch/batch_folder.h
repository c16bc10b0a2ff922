// The settings of a batch folder and what goes back into it: all that meets the process-wide
// globals, and so belongs to the thread that owns them.
#pragma once

#include "KestraBatch/params_file.h"
#include "KestraBatch/view_file.h"
#include "toolkit/ts_doc.h"

#include <filesystem>
#include <string>
#include <vector>

namespace KestraBatch {

/// The records of one batch folder but for its geometry, which may take long to read. The settings
/// are in the process-wide globals, and have been written into the document.
struct BatchFolder {
    Parameters params;
    ViewRecord view;
    CTsDoc document;
    std::vector<std::string> changed_settings; ///< "name; value" of what is not at its default
};

/// Reads the folder of `params_file`. The globals start from the catalogue; the options file and
/// the GLOBAL keys of the parameter file go over them. A missing options file or document is a
/// warning; the view must be there. Settings that ask for what is not rendered yet are warnings.
/// Throws ReadError.
BatchFolder read_batch_folder(const std::filesystem::path& params_file, WarningList& warnings);

/// Writes the globals of this process back into the folder's options file and document; what the
/// document holds beside them stays. False with `error`: what could not be read or written.
bool hand_settings_back(const Parameters& params, std::string& error);

} // namespace KestraBatch
