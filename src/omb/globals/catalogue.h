// The catalogue: the one list of all globals with save type and factory default, as tables, and
// the presets that run it.
#pragma once

#include "omb/globals/globals.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// One row. The default stands as text: "0", "-6.0", "Draft", "#ffffff", "(0.0, 0.0, 0.0)".
struct catalogue_row {
    std::string_view name;
    int save_type;
    std::string_view default_text;
    bool zero_is_default = false;
};

/// Neighbouring rows with their heading.
struct catalogue_group {
    std::string_view title;
    std::span<const catalogue_row> rows;
};

/// The blocks in catalogue order, duplicate rows included.
std::span<const catalogue_group> main_catalogue();
std::span<const catalogue_group> application_catalogue(); ///< without the main block
std::span<const catalogue_group> report_catalogue();

/// What a profile answers for a key that it does not hold: a stored value that equals it reads as
/// missing, and the initialisation file is asked. Doubles and points have no such value.
namespace profile_sentinel {
inline constexpr std::int32_t whole_number = -99999;
inline constexpr std::string_view text = "ZZZ"; ///< of the initialisation file too, for every kind
inline constexpr std::string_view color = "xxx";
} // namespace profile_sentinel

/// Mode 0 makes what is missing and leaves values alone; mode 1 sets every global to its default.
void preset_globals(int mode);
/// The main block and then the application block.
void preset_application_globals(int mode);
void preset_report_globals(int mode);

// One row by kind. `keep_default_unset` leaves the variable's default alone; `zero_is_default`
// replaces a remembered zero (or empty text); `report_missing` reports what was not there.
void preset_global_bool(cl_global_variable_array& array, std::string_view name, int save_type,
                        bool value, bool keep_default_unset, bool zero_is_default,
                        bool report_missing, int mode);
void preset_global_int(cl_global_variable_array& array, std::string_view name, int save_type,
                       std::int32_t value, bool keep_default_unset, bool zero_is_default,
                       bool report_missing, int mode);
void preset_global_double(cl_global_variable_array& array, std::string_view name, int save_type,
                          double value, bool keep_default_unset, bool zero_is_default,
                          bool report_missing, int mode);
void preset_global_string(cl_global_variable_array& array, std::string_view name, int save_type,
                          std::string_view value, bool keep_default_unset, bool zero_is_default,
                          bool report_missing, int mode);
void preset_global_fpt(cl_global_variable_array& array, std::string_view name, int save_type,
                       const fpt& value, bool keep_default_unset, bool zero_is_default,
                       bool report_missing, int mode);
void preset_global_COLORREF(cl_global_variable_array& array, std::string_view name, int save_type,
                            COLORREF value, bool keep_default_unset, bool zero_is_default,
                            bool report_missing, int mode);
/// The row through the preset of its kind.
void preset_row(cl_global_variable_array& array, const catalogue_row& row, int mode);

/// True when any block names this global.
bool is_catalogue_global(std::string_view name);

/// Up to `count` catalogue names, nearest by edit distance first, for "did you mean".
std::vector<std::string> nearest_global_names(std::string_view name, std::size_t count);
