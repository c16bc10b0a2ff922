// Registration of the sample class, and the module's services.
#include "omb_qorvane/sample_classes.h"

#include "omb/base/folders.h"
#include "omb_qorvane/the_app.h"

void MyClass::rxInit() {
    acrxRegisterClass(class_name, AcDbObject::desc(), dxf_name, nullptr, application);
}

void MyClass::rxRemove() { acrxDeleteClass(class_name); }

Acad::ErrorStatus MyHostAppServices::findFile(std::string& found, const std::string& name,
                                              const AcDbDatabase* database) const {
    const Acad::ErrorStatus status = AcDbHostApplicationServices::findFile(found, name, database);
    if (status != Acad::eFileNotFound) {
        return status;
    }
    std::vector<std::string> folders = theApp().omb_export.find_file_folders;
    folders.push_back(theApp().somb_support_folder);
    const std::string last_part = path_name(name);
    for (const std::string& folder : folders) {
        const std::string path = join_path(folder, last_part);
        if (!folder.empty() && file_exists(path)) {
            found = path;
            return Acad::eOk;
        }
    }
    return Acad::eFileNotFound;
}

void MyHostAppServices::Meter::start(const std::string& text) {
    theApp().show_progress("OMB_Qorvane", text);
}

void MyHostAppServices::Meter::stop() {
    AcDbHostApplicationProgressMeter::stop();
    theApp().progress_dialog.reset();
}
