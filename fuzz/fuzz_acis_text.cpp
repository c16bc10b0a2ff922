// Any bytes as the text of a part, plain and as drawings scramble it.
#include "touch_body.h"

#include "host/acis/acis.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    fuzz::touch_body(acis::readText(text));
    fuzz::require(acis::descramble(text).size() <= size);
    return 0;
}
