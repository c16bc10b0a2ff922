// Lines of text: codes within them, letters side by side, and their bodies.
#include "host/db/text_drawing.h"

#include "host/db/draw_util.h"
#include "host/db/glyphs.h"
#include "host/db/support_files.h"
#include "platform/fonts.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>

namespace draw {
namespace {

// ---- fonts

struct FoundFont {
    std::shared_ptr<GlyphFont> font;
    bool exact = false;
};

bool endsWith(const std::string& text, std::string_view end) {
    return text.size() >= end.size() &&
           std::equal(end.rbegin(), end.rend(), text.rbegin(),
                      [](char a, char b) { return a == (b >= 'A' && b <= 'Z' ? b + 32 : b); });
}

FoundFont openFont(const TextFont& wanted) {
    FoundFont found;
    const bool stroke = wanted.family.empty() && endsWith(wanted.file, ".shx");
    if (wanted.family.empty() && !stroke && !wanted.file.empty()) {
        const std::filesystem::path own = acdbFindFile(nullptr, wanted.file);
        found.font = own.empty() ? nullptr : GlyphFont::open(own, 0);
        found.exact = found.font != nullptr;
    }
    std::vector<std::string> names;
    if (!stroke) {
        names = {wanted.family, wanted.file};
        std::erase(names, "");
    }
    for (const std::string& name : names) {
        if (found.font == nullptr) {
            const auto file = platform::find_font(name, wanted.bold, wanted.italic);
            found.font = file.exact ? GlyphFont::open(file.path, file.face) : nullptr;
            found.exact = found.font != nullptr;
        }
    }
    if (found.font == nullptr) {
        const auto file = platform::find_font({}, wanted.bold, wanted.italic);
        found.font = file.path.empty() ? nullptr : GlyphFont::open(file.path, file.face);
        found.exact = wanted.family.empty() && wanted.file.empty();
    }
    return found;
}

/// The font, looked for once a run.
FoundFont fontOf(const TextFont& wanted) {
    using Key = std::tuple<std::string, std::string, bool, bool>;
    static std::mutex mutex;
    static std::map<Key, FoundFont> known;
    const std::lock_guard lock(mutex);
    const Key key(wanted.family, wanted.file, wanted.bold, wanted.italic);
    const auto at = known.find(key);
    return at != known.end() ? at->second : known.emplace(key, openFont(wanted)).first->second;
}

// ---- characters

struct Letter {
    char32_t character;
    bool underline, overline;
};

/// One character of UTF-8; a byte that is none stands for itself.
char32_t nextCharacter(std::string_view text, std::size_t& at) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const unsigned lead = byte(at);
    const int extra = lead >= 0xf0 ? 3 : lead >= 0xe0 ? 2 : lead >= 0xc0 ? 1 : 0;
    char32_t c = extra == 0 ? lead : lead & (0x3fU >> extra);
    for (int i = 1; i <= extra; ++i) {
        const unsigned next = byte(at + static_cast<std::size_t>(i));
        if ((next & 0xc0) != 0x80) {
            ++at;
            return lead;
        }
        c = c << 6 | (next & 0x3f);
    }
    at += static_cast<std::size_t>(extra) + 1;
    return c;
}

/// Reads that many digits; false when there are fewer.
bool digits(std::string_view text, std::size_t count, unsigned base, char32_t& value) {
    value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const char c = i < text.size() ? text[i] : ' ';
        const unsigned digit = c >= '0' && c <= '9'   ? static_cast<unsigned>(c - '0')
                               : c >= 'a' && c <= 'f' ? static_cast<unsigned>(c - 'a') + 10
                               : c >= 'A' && c <= 'F' ? static_cast<unsigned>(c - 'A') + 10
                                                      : base;
        if (digit >= base) {
            return false;
        }
        value = value * base + digit;
    }
    return true;
}

class Parser {
public:
    Parser(const TextLine& line, const GlyphFont& font)
      : font_(font)
      , underline_(line.underline)
      , overline_(line.overline) {
        const std::string_view text = line.text;
        for (std::size_t at = 0; at < text.size() && letters.size() < kMostLetters;) {
            if (line.raw || !code(text, at)) {
                add(nextCharacter(text, at));
            }
        }
    }
    std::vector<Letter> letters;

private:
    static constexpr std::size_t kMostLetters =
        4096; ///< of a line; more are made to exhaust memory

    void add(char32_t c) {
        if (c >= U' ') {
            letters.push_back({c, underline_, overline_});
        }
    }
    bool code(std::string_view text, std::size_t& at) {
        const std::string_view rest = text.substr(at);
        char32_t value = 0;
        if (rest.starts_with("\\U+") && digits(rest.substr(3), 4, 16, value)) {
            add(value);
            at += 7;
            return true;
        }
        if (!rest.starts_with("%%") || rest.size() < 3) {
            return false;
        }
        if (digits(rest.substr(2), 3, 10, value)) {
            add(value);
            at += 5;
            return true;
        }
        at += 3;
        switch (rest[2] | 0x20) {
        case 'd':
            add(U'\u00b0');
            break;
        case 'p':
            add(U'\u00b1');
            break;
        case 'c':
            add(font_.has(U'\u2300') ? U'\u2300' : U'\u00d8');
            break;
        case 'u':
            underline_ = !underline_;
            break;
        case 'o':
            overline_ = !overline_;
            break;
        case 'k': // struck through: not drawn
            break;
        default:
            if (rest[2] == '%') {
                add(U'%');
                break;
            }
            at -= 3;
            return false;
        }
        return true;
    }
    const GlyphFont& font_;
    bool underline_, overline_;
};

// ---- bodies

/// Letters in the plane of the line, for capitals of height 1.
class Layout {
public:
    Layout(const TextLine& line, GlyphFont& font, double deviation) {
        for (const Letter& letter : Parser(line, font).letters) {
            const auto glyph = font.glyph(letter.character, deviation);
            const double step = glyph->advance * line.tracking;
            if (line.vertical) {
                place(*glyph, {-glyph->advance / 2, down_ - 1});
                down_ -= kLineStep;
                width = std::max(width, glyph->advance);
                continue;
            }
            place(*glyph, {width, 0});
            if (letter.underline) {
                bar(width, width + step, -0.2);
            }
            if (letter.overline) {
                bar(width, width + step, 1.2);
            }
            width += step;
        }
    }
    std::vector<AcGePoint2d> points;
    std::vector<std::array<std::uint32_t, 3>> triangles;
    std::vector<std::array<std::uint32_t, 2>> boundary;
    double width = 0;

private:
    static constexpr double kLineStep = 1.5; ///< of letters below each other
    static constexpr double kBar = 0.04;     ///< half the height of a line under or over letters

    void place(const Glyph& glyph, const AcGePoint2d& at) {
        const auto first = static_cast<std::uint32_t>(points.size());
        for (const AcGePoint2d& p : glyph.points) {
            points.push_back({p.x + at.x, p.y + at.y});
        }
        for (const auto& t : glyph.triangles) {
            triangles.push_back({t[0] + first, t[1] + first, t[2] + first});
        }
        for (const auto& e : glyph.boundary) {
            boundary.push_back({e[0] + first, e[1] + first});
        }
    }
    void bar(double from, double to, double y) {
        Glyph box;
        box.points = {{from, y - kBar}, {to, y - kBar}, {to, y + kBar}, {from, y + kBar}};
        box.triangles = {{0, 1, 2}, {0, 2, 3}};
        box.boundary = {{0, 1}, {1, 2}, {2, 3}, {3, 0}};
        place(box, {0, 0});
    }
    double down_ = 0;
};

/// The plane of a line: from letters of height 1 to model coordinates, and whether it mirrors.
struct Frame {
    AcGePoint3d origin;
    AcGeVector3d x, y, z;
    bool mirrored = false;

    explicit Frame(const TextLine& line)
      : origin(line.origin)
      , z(unitNormal(line.normal)) {
        AcGeVector3d along = line.direction - z * line.direction.dotProduct(z);
        along = along.isZeroLength() ? z.perpVector() : along.normal();
        const AcGeVector3d up = z.crossProduct(along);
        const double rise = line.upside_down ? -line.height : line.height;
        x = along * (line.height * line.width_factor);
        const double slant = std::clamp(line.oblique, -1.48, 1.48); // 85 degrees
        const double side = line.width_factor < 0 ? -1 : 1;
        y = up * rise + along * (line.height * std::tan(slant) * side);
        mirrored = (line.width_factor < 0) != (rise < 0);
    }
    AcGePoint3d at(const AcGePoint2d& p) const { return origin + x * p.x + y * p.y; }
    bool isUsable() const {
        return gi::isFinite(origin) && gi::isFinite(x) && gi::isFinite(y) &&
               !x.isZeroLength(AcGeTol()) && !y.isZeroLength(AcGeTol());
    }
};

/// Closes the letters to bodies: all points below, then all above.
void drawBody(AcGiWorldDraw* draw, const Layout& layout, const Frame& frame, const AcGeVector3d& up,
              bool flipped) {
    std::vector<AcGePoint3d> points;
    const auto count = static_cast<std::int32_t>(layout.points.size());
    for (const AcGeVector3d& shift : {AcGeVector3d(), up}) {
        for (const AcGePoint2d& p : layout.points) {
            points.push_back(frame.at(p) + shift);
        }
    }
    std::vector<std::int32_t> faces;
    faces.reserve(layout.triangles.size() * 8 + layout.boundary.size() * 5);
    for (const auto& t : layout.triangles) {
        const auto a = static_cast<std::int32_t>(t[0]);
        const auto b = static_cast<std::int32_t>(flipped ? t[2] : t[1]);
        const auto c = static_cast<std::int32_t>(flipped ? t[1] : t[2]);
        faces.insert(faces.end(), {3, a, c, b, 3, a + count, b + count, c + count});
    }
    for (const auto& e : layout.boundary) {
        const auto a = static_cast<std::int32_t>(flipped ? e[1] : e[0]);
        const auto b = static_cast<std::int32_t>(flipped ? e[0] : e[1]);
        faces.insert(faces.end(), {4, a, b, b + count, a + count});
    }
    if (gi::isFinite(points)) {
        gi::shell(draw, points, faces);
    }
}

} // namespace

TextSize measureText(const TextLine& line) {
    const FoundFont found = fontOf(line.font);
    if (found.font == nullptr) {
        return {};
    }
    double width = 0;
    for (const Letter& letter : Parser(line, *found.font).letters) {
        width += found.font->glyph(letter.character, 1)->advance * line.tracking;
    }
    return {width * line.height * std::abs(line.width_factor), found.font->descent() * line.height};
}

void noteFont(const TextFont& font, std::vector<AcDbDrawFinding>& findings) {
    const FoundFont found = fontOf(font);
    if (!found.exact || found.font == nullptr) {
        findings.push_back({found.font == nullptr ? "font-missing" : "font-substituted",
                            font.family.empty() ? font.file : font.family, 1});
    }
}

bool thickText(AcGiWorldDraw* draw, const TextLine& line, double thickness) {
    const FoundFont found = fontOf(line.font);
    if (found.font == nullptr) {
        return false;
    }
    const Frame frame(line);
    if (!frame.isUsable() || !gi::isFinite(thickness) || thickness == 0) {
        return true;
    }
    const double deviation = draw->deviation(kAcGiMaxDevForCurve, line.origin);
    const Layout layout(line, *found.font, deviation / line.height);
    if (!layout.triangles.empty()) {
        drawBody(draw, layout, frame, frame.z * thickness, frame.mirrored != (thickness < 0));
    }
    return true;
}

} // namespace draw
