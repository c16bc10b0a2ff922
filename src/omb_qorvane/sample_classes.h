// Classes that the module gives to the host: a sample class for the class dictionary, and the
// services that a drawing asks for.
#pragma once

#include "host/db/host_services.h"
#include "host/db/object.h"

/// Known to the host by name, and made by nobody: objects of this kind in a drawing stay as they
/// are read, so that they outlive the module.
class MyClass : public AcDbObject {
public:
    static constexpr const char* class_name = "MyClass";
    static constexpr const char* dxf_name = "MYCLASS";
    static constexpr const char* application = "MYSAMP";
    static void rxInit();
    static void rxRemove();
};

/// The module's services: files are also looked for in the folders that other programs added and
/// in the support folder; progress shows in the module's own dialog. In force while the module is
/// loaded.
class MyHostAppServices : public AcDbHostApplicationServices {
public:
    Acad::ErrorStatus findFile(std::string& found, const std::string& name,
                               const AcDbDatabase* database = nullptr) const override;
    std::string product() const override { return "OMB_Qorvane"; }
    AcDbHostApplicationProgressMeter* newProgressMeter() override { return &meter_; }

private:
    class Meter : public AcDbHostApplicationProgressMeter {
    public:
        void start(const std::string& text) override;
        void stop() override;
    };
    Meter meter_;
};
