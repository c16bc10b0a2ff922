// The settings as the program's verbs see them: each name of the catalogue once, with its value
// and where the value comes from.
#pragma once

#include "omb/globals/catalogue.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace apps {

/// Where a value comes from; a later one wins over an earlier one.
enum class Source { kDefault, kFile, kProfile, kDrawing };

struct Setting {
    std::string_view group;     ///< heading of the catalogue
    const catalogue_row* row;   ///< first mention of the name
    cl_variable_base* variable; ///< lives as long as the store
    Source source = Source::kDefault;
};

/// One save type in words.
struct SaveTypeRow {
    int type;
    const char* constant; ///< "OPTION_GLOBAL"
    const char* word;     ///< one word for a column
    const char* meaning;  ///< a sentence for people
};
std::span<const SaveTypeRow> save_type_rows();
const SaveTypeRow& save_type_row(int type);

/// "bool", "int", "double", "text", "point" or "colour", by the first letter of a name.
const char* kind_word(std::string_view name);
/// "default", "file", "profile" or "drawing".
const char* source_word(Source source);

/// Every setting in catalogue order: main, application and report block. The store must have been
/// preset.
std::vector<Setting> collect_settings();
/// The setting of this name, or null.
Setting* find_setting(std::vector<Setting>& settings, std::string_view name);

/// True when the value differs from the factory's. A value that nobody has stored never does: one
/// setting has another value at first than the default that a later row gives it.
bool is_changed(const Setting& setting);

/// "there is no setting 'x'; nearest: a, b, c".
std::string unknown_setting(std::string_view name);

/// Reads the values that a drawing has stored over the settings. Throws Failure.
void apply_drawing(std::vector<Setting>& settings, const std::string& drawing);
/// Marks what a defaults file has given.
void mark_file_values(std::vector<Setting>& settings, const std::set<std::string>& names);

/// Keys of the profile that hold a setting: three for a point.
std::vector<std::string> profile_keys(std::string_view name);
/// Takes a setting's keys out of the profile. Where the initialisation file would then give another
/// value than the factory's, that one is written instead.
void restore_factory_value(const Setting& setting);

} // namespace apps
