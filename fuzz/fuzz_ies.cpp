// The readers of photometric files and of the packed block: any bytes are refused or give a web
// that answers with finite candela and comes back the same from its block.
#include "toolkit/ts_light.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

void check(const CTsPhotometricWeb& web) {
    if (web.Empty()) {
        return;
    }
    double most = 0;
    for (const double v : {0.0, 0.3, 1.5707963267948966, 3.1, 3.1415926535897931}) {
        for (const double h : {-1.0, 0.0, 1.0, 3.0, 6.2831853071795862}) {
            const double candela = web.Candela(v, h);
            most = std::isfinite(candela) && candela >= 0 ? most : -1;
        }
    }
    const double flux = web.Flux();
    CTsPhotometricWeb back;
    if (!web.Valid() || most < 0 || !std::isfinite(flux) || flux < 0 ||
        !back.ReadBlock(web.WriteBlock()) || back.m_Candela.size() < web.m_Candela.size()) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CTsPhotometricWeb web;
    std::string error;
    if (web.ReadText({reinterpret_cast<const char*>(data), size}, "fuzz", error) != error.empty()) {
        std::abort();
    }
    check(web);
    if (web.ReadBlock(std::vector<unsigned char>(data, data + size))) {
        check(web);
    } else if (!web.Empty()) {
        std::abort();
    }
    return 0;
}
