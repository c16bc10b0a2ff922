// Boxes that ask: for whoever shows widgets, with or without the window system.
#pragma once

#include "platform/window/window_system.h"

class QWidget;

namespace platform {

/// Shows the box and returns the number of the button; closing it is the safe answer. With another
/// button the only standard one closes the box, and reads so.
int show_message_box(const MessageQuestion& question, QWidget* parent);
std::optional<std::string> show_file_box(const FileQuestion& question, QWidget* parent);
std::optional<std::string> show_folder_box(const std::string& title, const std::string& start,
                                           QWidget* parent);
std::optional<WindowColor> show_color_box(const std::string& title, WindowColor color,
                                          QWidget* parent);
int show_menu(const std::vector<MenuRow>& rows, WindowPoint at, QWidget* parent);

} // namespace platform
