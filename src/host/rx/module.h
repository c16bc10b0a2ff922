// Loading of add-on modules and their entry points.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace AcRx {
/// Messages that a module receives, numbered as modules expect them.
enum AppMsgCode {
    kNullMsg = 0,
    kInitAppMsg = 1,
    kUnloadAppMsg = 2,
    kLoadDwgMsg = 3,
    kUnloadDwgMsg = 4,
    kInvkSubrMsg = 5,
    kCfgMsg = 6,
    kEndMsg = 7,
    kQuitMsg = 8,
    kSaveMsg = 9,
    kDependencyMsg = 10,
    kNoDependencyMsg = 11,
    kOleUnloadAppMsg = 12,
    kPreQuitMsg = 13,
    kInitDialogMsg = 14,
    kEndDialogMsg = 15
};
enum AppRetCode { kRetOK = 0, kRetError = 3 };
} // namespace AcRx

/// The interface version that a module must report through acrxGetApiVersion: R20.
constexpr int kAcrxApiVersion = 20;

/// Loads the module, checks its version and sends kInitAppMsg and kLoadDwgMsg. The same file is
/// loaded once. False with `error` filled when it cannot be found, has no entry points, reports
/// another version or refuses.
bool acrxLoadModule(const std::filesystem::path& path, std::string& error);
/// Sends kUnloadDwgMsg and kUnloadAppMsg and closes the module (named by file name).
bool acrxUnloadModule(const std::string& name);
void acrxUnloadAllModules();
/// File names (lower case) of the loaded modules, in order of loading.
std::vector<std::string> acrxLoadedApps();
/// The address of an exported function of a loaded module, or null.
void* acrxGetModuleSymbol(const std::string& module, const std::string& symbol);
