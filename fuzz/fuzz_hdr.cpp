// The reader of Radiance pictures and the tone mapping behind it: any bytes are refused in words or
// give a picture of finite light.
#include "omb/dialog/hdr_picture.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    cl_hdr_picture picture;
    constexpr int most = 64;
    if (!read_hdr_picture({reinterpret_cast<const char*>(data), size}, picture, most).empty()) {
        return 0;
    }
    const auto pixels = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
    if (picture.width > most || picture.height > most || picture.rgb.size() != pixels * 3) {
        std::abort();
    }
    for (const float light : picture.rgb) {
        if (!std::isfinite(light) || light < 0) {
            std::abort();
        }
    }
    if (tone_mapped(picture).rgba.size() != pixels * 4) {
        std::abort();
    }
    return 0;
}
