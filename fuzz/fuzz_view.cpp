// Feeds bytes to the view reader: what it accepts must be usable as a camera.
#include "KestraBatch/view_file.h"

#include <cmath>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace KestraBatch;
    try {
        WarningList warnings;
        const ViewRecord view =
            parse_view({reinterpret_cast<const char*>(data), size}, "view", warnings);
        const bool usable = view.view_scale > 0 && view.field_width > 0 && view.field_height > 0 &&
                            std::isfinite(view.eye.x) && std::isfinite(view.target.z);
        if (!usable) {
            __builtin_trap();
        }
    } catch (const ReadError&) {
        // refused with a message
    }
    return 0;
}
