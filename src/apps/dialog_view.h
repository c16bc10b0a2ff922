// What `qorvane dialog` tells of dialog files: as text for people, as JSON for programs.
#pragma once

#include "omb/dialog/dcl_data.h"
#include "omb/dialog/dcl_dump.h"

#include <string>
#include <vector>

namespace apps {

std::string tokens_json(const std::vector<cl_dcl_token>& tokens);
std::string tokens_text(const std::vector<cl_dcl_token>& tokens);

/// What was found wrong with a file.
struct DialogReport {
    std::vector<cl_dcl_error> errors;  ///< in the order in which they were noticed
    std::vector<std::string> warnings; ///< what only shows when a dialog opens
    std::vector<std::string> trace;    ///< the trace's lines
    std::vector<std::string> dialogs;  ///< that were looked at

    bool ok() const { return errors.empty(); }
};

std::string report_json(const DialogReport& report);
/// As a compiler tells it: place and message, then the line, then a caret below its column. A line
/// that the loader does not give is read from the file.
std::string report_text(const DialogReport& report, bool with_color);

/// The controls of a dialog that has been laid out, in order of number.
std::string tree_json(const cl_dcl_data& data);
std::string tree_text(const cl_dcl_data& data);

} // namespace apps
