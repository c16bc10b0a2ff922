// The host's own services.
#include "host/db/host_services.h"

#include "host/db/database.h"
#include "platform/files.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

AcDbHostApplicationServices* own_services() {
    static AcDbHostApplicationServices services;
    return &services;
}
AcDbHostApplicationServices* current_services = nullptr;

} // namespace

AcDbHostApplicationServices::~AcDbHostApplicationServices() {
    if (current_services == this) {
        current_services = nullptr;
    }
}

AcDbDatabase* AcDbHostApplicationServices::workingDatabase() const { return acdbCurDwg(); }
void AcDbHostApplicationServices::setWorkingDatabase(AcDbDatabase* database) {
    acdbSetCurDwg(database);
}

Acad::ErrorStatus AcDbHostApplicationServices::findFile(std::string& found, const std::string& name,
                                                        const AcDbDatabase* database) const {
    database = database != nullptr ? database : workingDatabase();
    std::string portable = name;
    std::replace(portable.begin(), portable.end(), '\\', '/');
    if (portable.empty() || portable.find('\0') != std::string::npos) {
        return Acad::eInvalidInput;
    }
    const fs::path folder =
        database != nullptr ? fs::path(database->filename()).parent_path() : fs::path();
    const fs::path own(portable);
    for (const fs::path& path : {own.is_absolute() ? own : folder / own, folder / own.filename()}) {
        std::error_code error;
        if (fs::is_regular_file(path, error)) {
            found = path.lexically_normal().string();
            return Acad::eOk;
        }
    }
    return Acad::eFileNotFound;
}

std::string AcDbHostApplicationServices::product() const { return "Qorvane"; }

std::string AcDbHostApplicationServices::userLocale() const {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string whole = platform::environment(variable);
        if (!whole.empty()) {
            const std::string locale = whole.substr(0, whole.find_first_of(".@"));
            return locale == "C" || locale == "POSIX" ? "en_US" : locale;
        }
    }
    return "en_US";
}

AcDbHostApplicationProgressMeter* AcDbHostApplicationServices::newProgressMeter() {
    return &silent_;
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
    return current_services != nullptr ? current_services : own_services();
}

void acdbSetHostApplicationServices(AcDbHostApplicationServices* services) {
    current_services = services;
}
