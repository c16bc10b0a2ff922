// Letters of scalable fonts as areas.
#pragma once

#include "host/ge/triangulate.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace draw {

/// The area of a letter for capitals of height 1, the base line along X.
struct Glyph {
    std::vector<AcGePoint2d> points;
    std::vector<std::array<std::uint32_t, 3>> triangles; ///< counter-clockwise
    std::vector<std::array<std::uint32_t, 2>> boundary;  ///< edges, the area to their left
    double advance = 0;                                  ///< to the next letter
};

/// One font, with the letters that were asked for so far. Letters live as long as the font.
class GlyphFont {
public:
    /// Null when the file can't be read or is no scalable font.
    static std::shared_ptr<GlyphFont> open(const std::filesystem::path& file, int face);
    ~GlyphFont();

    /// The letter of a character, its curves as chords no farther from them than `deviation` (a
    /// share of the height of capitals; between a power of two and the next there is one form).
    /// What the font lacks has its sign for missing letters.
    std::shared_ptr<const Glyph> glyph(char32_t character, double deviation);
    bool has(char32_t character) const;
    double descent() const; ///< below the base line, positive

private:
    struct Impl;
    explicit GlyphFont(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

} // namespace draw
