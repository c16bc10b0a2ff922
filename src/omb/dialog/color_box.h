// Colours of controls: their names, and how a colour box is painted.
#pragma once

#include "omb/dialog/dialog_item.h"

#include <optional>
#include <string>
#include <string_view>

/// The colour of a name (without regard to case), of "#rrggbb" or of "rgb(r,g,b)".
std::optional<COLORREF> find_color(std::string_view text);
/// Name of a standard colour, "" for another.
std::string_view color_name(COLORREF color);
/// Name of the colour, or label and channels.
std::string color_box_text(const cl_dialog_item& item);
/// Black on light colours, white on dark ones.
COLORREF color_box_text_color(COLORREF color);
void paint_color_box(const cl_dialog_item& item, platform::Painter& painter);
