// Display colours of the 255 colour indices.
#include "host/db/color.h"

#include <array>
#include <cmath>

namespace {

// The standard palette: 1 to 9 by hand; 10 to 249 are 24 hues (15 degrees apart, from red) of ten
// shades: five values, each in full saturation and in a third of it; 250 to 255 greys.
constexpr std::uint32_t kFirst[] = {0xb3b3b3, 0xff0000, 0xffff00, 0x00ff00, 0x00ffff,
                                    0x0000ff, 0xff00ff, 0xffffff, 0x808080, 0xc0c0c0};
constexpr std::uint32_t kGreys[] = {0x333333, 0x505050, 0x696969, 0x828282, 0xbebebe, 0xffffff};
constexpr int kValues[] = {255, 189, 129, 104, 79};
/// A full-saturation channel in steps of 15 degrees while it falls from one hue to the next.
constexpr int kRamp[] = {0, 63, 127, 191, 255};

/// Channel 0 to 255 of full value for a hue step 0 to 23; `phase` moves it for green and blue.
int channel(int hue, int phase) {
    const int h = (hue + phase) % 24; // 0: the channel is at its full height
    if (h <= 4 || h >= 20) {
        return 255;
    }
    if (h < 8) {
        return kRamp[8 - h];
    }
    return h <= 16 ? 0 : kRamp[h - 16];
}

std::uint32_t shade(int aci) {
    const int hue = (aci - 10) / 10;
    const int step = (aci - 10) % 10;
    const int value = kValues[step / 2];
    std::uint32_t rgb = 0;
    for (const int phase : {0, 16, 8}) { // red leads, green is full at 120 degrees, blue at 240
        int c = channel(hue, phase);
        if (step % 2 == 1) {
            c = 170 + c * 85 / 255;
        }
        rgb = rgb << 8 | static_cast<std::uint32_t>(c * value / 255);
    }
    return rgb;
}

} // namespace

std::uint32_t AcCmEntityColor::lookUpRGB(int aci) {
    if (aci < 0 || aci > 255) {
        return kFirst[0];
    }
    if (aci < 10) {
        return kFirst[aci];
    }
    return aci >= 250 ? kGreys[aci - 250] : shade(aci);
}
