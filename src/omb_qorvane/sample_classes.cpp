// Registration of the sample class.
#include "omb_qorvane/sample_classes.h"

void MyClass::rxInit() {
    acrxRegisterClass(class_name, AcDbObject::desc(), dxf_name, nullptr, application);
}

void MyClass::rxRemove() { acrxDeleteClass(class_name); }
