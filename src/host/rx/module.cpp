// Add-on modules: loading, entry-point messages, unloading.
#include "host/rx/module.h"

#include "platform/files.h"
#include "platform/module.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <system_error>

namespace fs = std::filesystem;

namespace {

using EntryPoint = AcRx::AppRetCode (*)(AcRx::AppMsgCode, void*);
using ApiVersion = int (*)();

struct LoadedModule {
    std::string name; ///< file name, lower case
    fs::path path;    ///< canonical
    platform::Module library;
    EntryPoint entry = nullptr;
};

std::vector<std::unique_ptr<LoadedModule>>& modules() {
    static std::vector<std::unique_ptr<LoadedModule>> loaded;
    return loaded;
}

std::string lower(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

LoadedModule* findModule(const std::string& name) {
    const std::string key = lower(fs::path(name).filename().string());
    for (const auto& module : modules()) {
        if (module->name == key) {
            return module.get();
        }
    }
    return nullptr;
}

/// The file itself, or one of that name beside the program; also with the ending of modules.
fs::path resolve(const fs::path& path) {
    std::vector<fs::path> candidates{path};
    if (path.is_relative()) {
        candidates.push_back(platform::program_file().parent_path() / path);
    }
    std::error_code ignored;
    for (const fs::path& candidate : candidates) {
        for (const char* ending : {"", ".arx"}) {
            fs::path file = candidate;
            file += ending;
            if (fs::is_regular_file(file, ignored)) {
                return fs::canonical(file, ignored);
            }
        }
    }
    return {};
}

/// Sends a message; an exception that leaves the module counts as a refusal and is told.
bool send(LoadedModule& module, AcRx::AppMsgCode message, std::string& error) {
    try {
        if (module.entry(message, module.name.data()) != AcRx::kRetError) {
            return true;
        }
        error = fmt::format("{}: the module refused message {}", module.name,
                            static_cast<int>(message));
    } catch (const std::exception& e) {
        error = fmt::format("{}: message {} failed: {}", module.name, static_cast<int>(message),
                            e.what());
    } catch (...) {
        error = fmt::format("{}: message {} failed with an exception of an unknown kind",
                            module.name, static_cast<int>(message));
    }
    return false;
}

/// Opens the file and checks that it is a module for this host.
bool openModule(LoadedModule& module, std::string& error) {
    if (!module.library.open(module.path, error)) {
        error = fmt::format("{}: {}", module.path.string(), error);
        return false;
    }
    module.entry = reinterpret_cast<EntryPoint>(module.library.symbol("acrxEntryPoint"));
    const auto version = reinterpret_cast<ApiVersion>(module.library.symbol("acrxGetApiVersion"));
    if (module.entry == nullptr || version == nullptr) {
        error = fmt::format("{}: not a module of this program: {} is missing", module.path.string(),
                            module.entry == nullptr ? "acrxEntryPoint" : "acrxGetApiVersion");
        return false;
    }
    const int reported = version();
    if (reported != kAcrxApiVersion) {
        error = fmt::format("{}: made for interface version {}, this program has {}",
                            module.path.string(), reported, kAcrxApiVersion);
        return false;
    }
    return true;
}

/// Takes a module out of the list, so that what it unloads in turn does not meet it again.
std::unique_ptr<LoadedModule> takeOut(const LoadedModule* module) {
    auto& list = modules();
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const auto& held) { return held.get() == module; });
    if (found == list.end()) {
        return nullptr;
    }
    std::unique_ptr<LoadedModule> taken = std::move(*found);
    list.erase(found);
    return taken;
}

} // namespace

bool acrxLoadModule(const fs::path& path, std::string& error) {
    error.clear();
    const fs::path file = resolve(path);
    if (file.empty()) {
        error = fmt::format("{}: no such module", path.string());
        return false;
    }
    if (const LoadedModule* same = findModule(file.string())) {
        if (same->path == file) {
            return true;
        }
        error = fmt::format("{}: a module of this name is loaded already, from {}", file.string(),
                            same->path.string());
        return false;
    }
    auto module = std::make_unique<LoadedModule>();
    module->name = lower(file.filename().string());
    module->path = file;
    if (!openModule(*module, error)) {
        return false;
    }
    // Listed before it is asked, so that it finds itself; taken out again when it refuses.
    LoadedModule* entered = modules().emplace_back(std::move(module)).get();
    if (!send(*entered, AcRx::kInitAppMsg, error)) {
        takeOut(entered);
        return false;
    }
    if (!send(*entered, AcRx::kLoadDwgMsg, error)) {
        std::string ignored;
        send(*entered, AcRx::kUnloadAppMsg, ignored);
        takeOut(entered);
        return false;
    }
    return true;
}

bool acrxUnloadModule(const std::string& name) {
    const std::unique_ptr<LoadedModule> module = takeOut(findModule(name));
    if (module == nullptr) {
        return false;
    }
    std::string ignored;
    send(*module, AcRx::kUnloadDwgMsg, ignored);
    send(*module, AcRx::kUnloadAppMsg, ignored);
    return true;
}

void acrxUnloadAllModules() {
    while (!modules().empty()) {
        acrxUnloadModule(modules().back()->name);
    }
}

std::vector<std::string> acrxLoadedApps() {
    std::vector<std::string> names;
    for (const auto& module : modules()) {
        names.push_back(module->name);
    }
    return names;
}

void* acrxGetModuleSymbol(const std::string& module, const std::string& symbol) {
    const LoadedModule* found = findModule(module);
    return found != nullptr ? found->library.symbol(symbol) : nullptr;
}
