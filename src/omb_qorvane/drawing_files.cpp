// Files that a drawing names.
#include "omb_qorvane/drawing_files.h"

#include "host/db/support_files.h"
#include "host/ed/document.h"
#include "omb/base/folders.h"
#include "omb_qorvane/the_app.h"

#include <vector>

std::string current_drawing_folder() {
    const AcApDocument* document = acDocManager()->curDocument();
    return document != nullptr ? path_folder(document->fileName()) : std::string();
}

std::string find_drawing_file(const std::string& name) {
    const AcApDocument* document = acDocManager()->curDocument();
    if (name.empty() || document == nullptr) {
        return {};
    }
    if (const auto found = acdbFindFile(document->database(), name); !found.empty()) {
        return found.string();
    }
    std::vector<std::string> folders = theApp().omb_export.find_file_folders;
    folders.push_back(theApp().somb_support_folder);
    for (const std::string& folder : folders) {
        if (std::string path = join_path(folder, path_name(name)); file_exists(path)) {
            return path;
        }
    }
    return {};
}
