// The root of the host's classes and its run-time class dictionary.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class AcRxObject;

/// What the dictionary knows of a class. Records are made once and live for the whole run.
class AcRxClass {
public:
    using Factory = AcRxObject* (*)();

    AcRxClass(std::string name, const AcRxClass* parent, std::string dxf_name, Factory factory,
              std::string application = {});
    const char* name() const { return name_.c_str(); }
    const char* dxfName() const { return dxf_name_.empty() ? nullptr : dxf_name_.c_str(); }
    const char* appName() const { return application_.c_str(); }
    const AcRxClass* myParent() const { return parent_; }
    bool isDerivedFrom(const AcRxClass* other) const {
        for (const AcRxClass* c = this; c != nullptr; c = c->parent_) {
            if (c == other) {
                return true;
            }
        }
        return false;
    }
    /// A new object of this class, or null for an abstract one. The caller owns it.
    AcRxObject* create() const { return factory_ != nullptr ? factory_() : nullptr; }

private:
    std::string name_;
    const AcRxClass* parent_;
    std::string dxf_name_;
    Factory factory_;
    std::string application_;
};

class AcRxObject {
public:
    virtual ~AcRxObject() = default;
    static AcRxClass* desc();
    virtual AcRxClass* isA() const { return desc(); }
    bool isKindOf(const AcRxClass* other) const { return isA()->isDerivedFrom(other); }
};

/// Within a class: the members that every registered class has.
#define ACRX_DECLARE_MEMBERS(CLASS)                                                                \
public:                                                                                            \
    static AcRxClass* desc();                                                                      \
    AcRxClass* isA() const override { return desc(); }                                             \
    static CLASS* cast(const AcRxObject* object) {                                                 \
        return object != nullptr && object->isKindOf(desc())                                       \
                   ? static_cast<CLASS*>(const_cast<AcRxObject*>(object))                          \
                   : nullptr;                                                                      \
    }                                                                                              \
    static void rxInit() { (void)desc(); }

/// In one source: an abstract class, a class that can be made, and one with a DXF name.
#define ACRX_NO_CONS_DEFINE_MEMBERS(CLASS, PARENT)                                                 \
    AcRxClass* CLASS::desc() {                                                                     \
        static AcRxClass* record = acrxRegisterClass(#CLASS, PARENT::desc(), "", nullptr);         \
        return record;                                                                             \
    }
#define ACRX_DXF_DEFINE_MEMBERS(CLASS, PARENT, DXF_NAME)                                           \
    AcRxClass* CLASS::desc() {                                                                     \
        static AcRxClass* record = acrxRegisterClass(#CLASS, PARENT::desc(), DXF_NAME,             \
                                                     []() -> AcRxObject* { return new CLASS; });   \
        return record;                                                                             \
    }

/// Enters a class in the dictionary; an earlier record of the same name is returned unchanged.
AcRxClass* acrxRegisterClass(const char* name, const AcRxClass* parent, const char* dxf_name,
                             AcRxClass::Factory factory, const char* application = "");
/// The record of that class name, or null.
AcRxClass* acrxFindClass(std::string_view name);
/// The class that reads objects of that DXF name (compared as it stands), or null.
AcRxClass* acrxFindClassByDxfName(std::string_view dxf_name);
/// Removes a class that a module registered; false when it is unknown.
bool acrxDeleteClass(std::string_view name);
/// All registered names, sorted.
std::vector<std::string> acrxClassNames();
