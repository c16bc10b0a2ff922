// The module's entry points.
#include "omb/base/errors.h"
#include "omb_qorvane/OMB_Qorvane.h"

namespace {
COMB_Qorvane& application() {
    static COMB_Qorvane only;
    return only;
}
} // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* data) {
    return run_at_boundary("Error in the module's entry point",
                           [&] { return application().message(message, data); });
}

extern "C" int acrxGetApiVersion() { return kAcrxApiVersion; }
