// The reader of option_globals.txt: any bytes are read, and what was read is written and read back
// without a change.
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    globals.clear();
    preset_globals(0);
    read_text(std::string(reinterpret_cast<const char*>(data), size));
    const std::string once = option_globals_text();
    read_text(once);
    const std::string twice = option_globals_text();
    // Text with bare carriage returns, doubled back-slashes or values that are no numbers settles
    // at the second reading; from there on nothing may move.
    read_text(twice);
    const std::string thrice = option_globals_text();
    read_text(thrice);
    if (option_globals_text().size() > thrice.size()) {
        std::abort();
    }
    return 0;
}
