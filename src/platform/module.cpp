// Shared libraries on POSIX systems.
#include "platform/module.h"

#include <utility>

#include <dlfcn.h>

namespace platform {

Module::~Module() { close(); }
Module::Module(Module&& other) noexcept
  : handle_(std::exchange(other.handle_, nullptr)) {}
Module& Module::operator=(Module&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
}

bool Module::open(const std::filesystem::path& path, std::string& error) {
    close();
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_ == nullptr) {
        const char* text = dlerror();
        error = text != nullptr ? text : "cannot be loaded";
    }
    return handle_ != nullptr;
}

void Module::close() {
    if (handle_ != nullptr) {
        dlclose(std::exchange(handle_, nullptr));
    }
}

void* Module::symbol(const std::string& name) const {
    return handle_ != nullptr ? dlsym(handle_, name.c_str()) : nullptr;
}

} // namespace platform
