// The reader of option_globals.txt: any bytes are read, and what was read is written and read back
// without a change, back-slashes apart.
#include "omb/globals/catalogue.h"
#include "omb/globals/option_globals.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

bool read_text(const std::string& text) {
    cl_input_file file;
    file.open_text(text, "fuzz");
    return read_option_globals_from_open_file(file);
}

/// Each reading halves runs of back-slashes.
std::string without_back_slashes(std::string text) {
    std::erase(text, '\\');
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    globals.clear();
    preset_globals(0);
    read_text(std::string(reinterpret_cast<const char*>(data), size));
    const std::string once = option_globals_text();
    read_text(once);
    if (without_back_slashes(option_globals_text()) != without_back_slashes(once)) {
        std::abort();
    }
    return 0;
}
