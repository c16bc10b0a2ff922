// Feeds bytes to the parameter reader and resolves the names that it finds.
#include "KestraBatch/params_file.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace KestraBatch;
    try {
        WarningList warnings;
        const Parameters params =
            parse_params({reinterpret_cast<const char*>(data), size}, "/b/params.txt", warnings);
        if (params.geometry_file.empty() || params.view_file.empty()) {
            __builtin_trap(); // the reader promises both
        }
        if (params.geometry_file.find('\0') == std::string::npos) {
            (void)params.resolve(params.geometry_file);
        }
    } catch (const ReadError&) {
        // refused with a message
    }
    return 0;
}
