#include "omb/dialog/dcl_input_file.h"

#include "omb/base/application_files.h"
#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/trace.h"

void cl_dcl_input_file::take(std::string text) {
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.erase(0, 3);
    }
    std::erase(text, '\r');
    content = std::make_unique<std::string>(std::move(text));
}

void cl_dcl_input_file::open_text(std::string text, const std::string& text_name) {
    name = text_name;
    take(std::move(text));
}

void cl_dcl_input_file::open_dcl_file(const std::string& application, const std::string& file_name,
                                      const std::string& file_path, bool report) {
    std::string whole_name = file_name;
    if (whole_name.find('.') == whole_name.npos) {
        whole_name += ".dcl";
    }
    appl = application;
    name = file_path.empty() ? whole_name : file_path;
    label = application + ":" + file_name;
    path = file_path.empty() ? find_application_file("dcl", application, whole_name) : file_path;
    std::string bytes;
    if (!path.empty() && file_exists(path) && read_whole_file(path, bytes, size_limit)) {
        take(std::move(bytes));
        return;
    }
    error =
        fmt::sprintf("Cannot open DCL input file: %s (appl: %s) dcl: %s", name, application, label);
    if (report) {
        OMB_TRACE(file_path.empty() ? 1 : 2, "%s", error);
    }
}
