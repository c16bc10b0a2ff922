// The sample class that the module enters in the host's class dictionary.
#pragma once

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
