// Colours of entities and layers.
#pragma once

#include <cstdint>

/// How a colour is meant, and its value, packed in one word: the method in the top byte, then
/// red, green, blue or the index. Method values are those of the host's files.
class AcCmEntityColor {
public:
    enum ColorMethod : std::uint8_t {
        kByLayer = 192,
        kByBlock = 193,
        kByColor = 194, ///< true colour
        kByACI = 195    ///< index colour 1 to 255
    };
    enum : std::int16_t { kACIbyBlock = 0, kACIbyLayer = 256 };

    AcCmEntityColor() = default;
    static AcCmEntityColor byLayer() { return AcCmEntityColor(kByLayer, 0); }
    static AcCmEntityColor byBlock() { return AcCmEntityColor(kByBlock, 0); }
    /// 0 gives by block, 256 by layer, 1 to 255 an index; anything else by layer.
    static AcCmEntityColor index(int aci) {
        if (aci == kACIbyBlock) {
            return byBlock();
        }
        return aci >= 1 && aci <= 255 ? AcCmEntityColor(kByACI, static_cast<std::uint32_t>(aci))
                                      : byLayer();
    }
    /// `rgb` is 0x00RRGGBB, the form of group code 420.
    static AcCmEntityColor trueColor(std::uint32_t rgb) {
        return AcCmEntityColor(kByColor, rgb & 0xffffffU);
    }
    ColorMethod colorMethod() const { return static_cast<ColorMethod>(word_ >> 24); }
    bool isByLayer() const { return colorMethod() == kByLayer; }
    bool isByBlock() const { return colorMethod() == kByBlock; }
    bool isByColor() const { return colorMethod() == kByColor; }
    bool isByACI() const { return colorMethod() == kByACI; }
    /// 256 by layer, 0 by block, the index, or 257 for a true colour.
    std::int16_t colorIndex() const {
        switch (colorMethod()) {
        case kByBlock:
            return 0;
        case kByACI:
            return static_cast<std::int16_t>(word_ & 0xff);
        case kByColor:
            return 257;
        default:
            return 256;
        }
    }
    std::uint8_t red() const { return static_cast<std::uint8_t>(word_ >> 16); }
    std::uint8_t green() const { return static_cast<std::uint8_t>(word_ >> 8); }
    std::uint8_t blue() const { return static_cast<std::uint8_t>(word_); }
    std::uint32_t word() const { return word_; }
    bool operator==(const AcCmEntityColor&) const = default;

    /// The display colour of an index, 0x00RRGGBB; 7 is white, 0 and above 255 grey (b3b3b3).
    static std::uint32_t lookUpRGB(int aci);

private:
    AcCmEntityColor(ColorMethod method, std::uint32_t value)
      : word_((static_cast<std::uint32_t>(method) << 24) | value) {}
    std::uint32_t word_ = static_cast<std::uint32_t>(kByLayer) << 24;
};
