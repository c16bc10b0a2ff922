// The module's entry points.
#include "host/ed/ed.h"
#include "omb/base/message_box.h"
#include "omb_qorvane/OMB_Qorvane.h"

#include <string>

namespace {
COMB_Qorvane& application() {
    static COMB_Qorvane only;
    return only;
}

/// Without windows of its own the module tells what a box would hold through its host.
void show_boxes_through_host() {
    set_message_sink([](const std::string& text, const std::string& title) {
        acedAlert(title.empty() ? text : title + ": " + text);
    });
}
} // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* data) {
    if (message == AcRx::kInitAppMsg) {
        show_boxes_through_host();
    }
    return application().message(message, data);
}

extern "C" int acrxGetApiVersion() { return kAcrxApiVersion; }
