// The module's entry points.
#include "omb_qorvane/OMB_Qorvane.h"

namespace {
COMB_Qorvane& application() {
    static COMB_Qorvane only;
    return only;
}
} // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* data) {
    return application().message(message, data);
}

extern "C" int acrxGetApiVersion() { return kAcrxApiVersion; }
