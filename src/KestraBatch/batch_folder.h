// Everything that a parameter file names, read: the first step as a whole.
#pragma once

#include "KestraBatch/params_file.h"
#include "KestraBatch/stream_model.h"
#include "KestraBatch/stream_reader.h"
#include "KestraBatch/view_file.h"
#include "toolkit/ts_doc.h"

#include <filesystem>
#include <string>
#include <vector>

namespace KestraBatch {

/// The records of one batch folder. The settings are in the process-wide globals, and have been
/// written into the document.
struct BatchFolder {
    Parameters params;
    ViewRecord view;
    StreamModel model;
    StreamSummary stream;
    CTsDoc document;
    std::vector<std::string> changed_settings; ///< "name; value" of what is not at its default
};

/// Reads the folder of `params_file`. The globals start from the catalogue; the options file and
/// the GLOBAL keys of the parameter file go over them. A missing options file or document is a
/// warning; geometry and view must be there. Settings that ask for what is not rendered yet are
/// warnings. Throws ReadError or StreamCancelled.
BatchFolder read_batch_folder(const std::filesystem::path& params_file, WarningList& warnings,
                              const StreamProgress& progress = {});

} // namespace KestraBatch
