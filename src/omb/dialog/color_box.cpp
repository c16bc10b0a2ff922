// Colours of controls, see color_box.h.
#include "omb/dialog/color_box.h"

#include "omb/base/text.h"

#include <algorithm>
#include <fmt/printf.h>

namespace {

struct named_color {
    std::string_view name;
    COLORREF color; ///< 0x00BBGGRR
};

/// The sixteen colours of the first colour displays, as far as boxes name them, and the light of
/// lamps in sRGB, scaled to a full red: a filament (CIE illuminant A), tubes of 3000 K and 4000 K
/// (chromaticities by the cubic fit of the black body's curve of Kim et al., US patent 7024034).
constexpr named_color standard_colors[] = {
    {"White", 0xffffff},
    {"Black", 0x000000},
    {"Gray", 0x808080},
    {"Maroon", 0x000080},
    {"Lime", 0x00ff00},
    {"Green", 0x008000},
    {"Blue", 0xff0000},
    {"Navy Blue", 0x800000},
    {"Aqua Blue", 0xffff00},
    {"Teal", 0x808000},
    {"Yellow", 0x00ffff},
    {"Olive", 0x008080},
    {"Fuscia", 0xff00ff},
    {"Purple", 0x800080},
    {"Incandescent", 0x64b2ff},
    {"Flourescent - warm", 0x6db8ff},
    {"Flourescent - standard", 0xa5d3ff},
};

/// Words for colours of texts that boxes do not name.
constexpr named_color further_colors[] = {
    {"Red", 0x0000ff},  {"Silver", 0xc0c0c0}, {"Grey", 0x808080},    {"Navy", 0x800000},
    {"Aqua", 0xffff00}, {"Cyan", 0xffff00},   {"Fuchsia", 0xff00ff}, {"Magenta", 0xff00ff},
};

constexpr COLORREF black = 0, white = 0xffffff;
constexpr unsigned light_channel = 128;

} // namespace

std::optional<COLORREF> find_color(std::string_view text) {
    text = omb::trim(text);
    const auto find_in = [&](auto& table) -> const named_color* {
        const auto* found =
            std::find_if(std::begin(table), std::end(table), [&](const named_color& row) {
                return omb::equal_no_case(row.name, text);
            });
        return found == std::end(table) ? nullptr : found;
    };
    const named_color* found = find_in(standard_colors);
    if (found == nullptr) {
        found = find_in(further_colors);
    }
    if (found != nullptr) {
        return found->color;
    }
    if ((text.size() == 7 && text.front() == '#') || text.starts_with("rgb(")) {
        return parse_colorref(text) & white;
    }
    return std::nullopt;
}

std::string_view color_name(COLORREF color) {
    for (const named_color& row : standard_colors) {
        if (row.color == (color & white)) {
            return row.name;
        }
    }
    return {};
}

std::string color_box_text(const cl_dialog_item& item) {
    const std::string_view name = color_name(item.color_value);
    if (!name.empty()) {
        return std::string(name);
    }
    const COLORREF color = item.color_value;
    return fmt::sprintf("%s, RGB(%d, %d, %d)", item.label, color & 0xff, color >> 8 & 0xff,
                        color >> 16 & 0xff);
}

COLORREF color_box_text_color(COLORREF color) {
    const bool is_dark = (color & 0xff) < light_channel && (color >> 8 & 0xff) < light_channel &&
                         (color >> 16 & 0xff) < light_channel;
    return is_dark ? white : black;
}

void paint_color_box(const cl_dialog_item& item, platform::Painter& painter) {
    const platform::WindowSize size = painter.size();
    const platform::WindowRect all{0, 0, size.width, size.height};
    const COLORREF color = item.color_value & white;
    painter.fill(all, color);
    painter.frame(all, painter.text_color());
    painter.text(all, color_box_text(item), color_box_text_color(color),
                 platform::TextAlign::center);
}
