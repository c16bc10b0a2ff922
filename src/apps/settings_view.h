// Settings as tables for people and as JSON for programs.
#pragma once

#include "apps/settings_table.h"

#include <string>
#include <vector>

namespace apps {

/// A table under the catalogue's headings, 100 columns wide unless a name or value is longer.
/// `cut_values` shortens long values to that width, for a terminal.
std::string settings_table_text(const std::vector<Setting>& settings, bool cut_values);
/// Name, value, factory value and source of each.
std::string settings_diff_text(const std::vector<Setting>& settings);

/// An object with name, save_type, value, default, title, source, group, save_type_name, kind.
std::string setting_json(const Setting& setting);
/// An array of them.
std::string settings_json(const std::vector<Setting>& settings);

} // namespace apps
