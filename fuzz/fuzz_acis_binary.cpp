// Any bytes as a binary part. The mark is put in front, so that the bytes are read at all: their
// first one chooses between 4 and 8 bytes for integers.
#include "touch_body.h"

#include "host/acis/acis.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    fuzz::touch_body(acis::readBinary({data, size}));
    if (size > 0) {
        std::string marked = (data[0] & 1) != 0 ? "ASM BinaryFile8" : "ASM BinaryFile4";
        marked += bytes.substr(1);
        fuzz::touch_body(
            acis::readBinary({reinterpret_cast<const uint8_t*>(marked.data()), marked.size()}));
    }
    return 0;
}
