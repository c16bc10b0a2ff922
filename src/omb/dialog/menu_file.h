// The file of a pop-up menu (.mnu): lines of keys and values.
#pragma once

#include "omb/dialog/cmenu.h"
#include "omb/dialog/dialog_command_list.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Largest menu that is read.
inline constexpr std::size_t menu_file_bytes = std::size_t{1} << 20, menu_file_items = 4096;

/// Reads the text of the file `name`.mnu; lines that cannot be read are left out and told in
/// `messages`. docs/formats/mnu.md has the rules.
cl_cmenu_values parse_menu_file(std::string_view text, std::string_view name,
                                std::vector<std::string>& messages);

/// The path of a menu's file in the folder "DCL" of its application, the part of the name before
/// the first underscore. "" when there is none.
std::string find_menu_file(const std::string& name);

/// One call as a menu writes it: a name, and arguments in brackets behind it. Nothing when the text
/// is no call.
std::optional<cl_dialog_command_line> parse_command_text(std::string_view text);
