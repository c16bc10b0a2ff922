// A module for the loader's tests; what it does wrong is chosen by a definition.
#include "host/rx/module.h"
#include "host/ed/ed.h"

#include <stdexcept>

#ifndef MODULE_BARE
extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void*) {
    acutPrintf(std::string(MODULE_NAME) + std::to_string(static_cast<int>(message)) + " ");
#ifdef MODULE_REFUSING
    return AcRx::kRetError;
#endif
#ifdef MODULE_THROWING
    throw std::runtime_error("no licence");
#endif
    return AcRx::kRetOK;
}
#endif

extern "C" int acrxGetApiVersion() {
#ifdef MODULE_OLD
    return kAcrxApiVersion - 1;
#else
    return kAcrxApiVersion;
#endif
}

extern "C" int moduleAnswer() { return 42; }
