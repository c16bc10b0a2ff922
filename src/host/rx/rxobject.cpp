// The class dictionary.
#include "host/rx/rxobject.h"

#include <map>
#include <memory>
#include <mutex>

namespace {

struct ClassDictionary {
    std::mutex mutex;
    std::map<std::string, std::unique_ptr<AcRxClass>, std::less<>> by_name;
    std::map<std::string, AcRxClass*, std::less<>> by_dxf_name;
    /// Records of removed classes: objects and static pointers may still refer to them.
    std::vector<std::unique_ptr<AcRxClass>> removed;
};

ClassDictionary& dictionary() {
    static ClassDictionary instance;
    return instance;
}

} // namespace

AcRxClass::AcRxClass(std::string name, const AcRxClass* parent, std::string dxf_name,
                     Factory factory, std::string application)
  : name_(std::move(name))
  , parent_(parent)
  , dxf_name_(std::move(dxf_name))
  , factory_(factory)
  , application_(std::move(application)) {}

AcRxClass* AcRxObject::desc() {
    static AcRxClass* record = acrxRegisterClass("AcRxObject", nullptr, "", nullptr);
    return record;
}

AcRxClass* acrxRegisterClass(const char* name, const AcRxClass* parent, const char* dxf_name,
                             AcRxClass::Factory factory, const char* application) {
    ClassDictionary& all = dictionary();
    const std::lock_guard lock(all.mutex);
    auto& place = all.by_name[name];
    if (place == nullptr) {
        place = std::make_unique<AcRxClass>(name, parent, dxf_name, factory, application);
        if (*dxf_name != '\0') {
            all.by_dxf_name.emplace(dxf_name, place.get()); // the first of equal names stays
        }
    }
    return place.get();
}

AcRxClass* acrxFindClass(std::string_view name) {
    ClassDictionary& all = dictionary();
    const std::lock_guard lock(all.mutex);
    const auto at = all.by_name.find(name);
    return at != all.by_name.end() ? at->second.get() : nullptr;
}

AcRxClass* acrxFindClassByDxfName(std::string_view dxf_name) {
    ClassDictionary& all = dictionary();
    const std::lock_guard lock(all.mutex);
    const auto at = all.by_dxf_name.find(dxf_name);
    return at != all.by_dxf_name.end() ? at->second : nullptr;
}

bool acrxDeleteClass(std::string_view name) {
    ClassDictionary& all = dictionary();
    const std::lock_guard lock(all.mutex);
    const auto at = all.by_name.find(name);
    if (at == all.by_name.end()) {
        return false;
    }
    std::erase_if(all.by_dxf_name,
                  [&](const auto& entry) { return entry.second == at->second.get(); });
    all.removed.push_back(std::move(at->second));
    all.by_name.erase(at);
    return true;
}

std::vector<std::string> acrxClassNames() {
    ClassDictionary& all = dictionary();
    const std::lock_guard lock(all.mutex);
    std::vector<std::string> names;
    for (const auto& [name, record] : all.by_name) {
        names.push_back(name);
    }
    return names;
}
