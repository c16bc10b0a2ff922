// Sun and sky settings: the tables of time zones and HDRi skies, the lighting presets, and the
// check of date and place.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The 48 rows of the time-zone table; row 17 is "UTC 00:00".
std::span<const std::string_view> utc_table();

/// Takes over the user's last place for a drawing that has none (`iqor_sun_utc` below 0) and stores
/// the time zone's text in `sqor_sun_utc`.
void check_sun_date_globals();

/// A row of the table of sky images. Row 18 is the user's own image.
struct cl_hdri_array_element {
    int index = 0;
    std::string display_name;
    std::string file_name;
};

std::span<const cl_hdri_array_element> hdri_table();
/// Row of a file, compared without case, or -1.
int find_hdri_by_file(std::string_view name);
/// Display name, or nothing for a row out of range.
std::optional<std::string> hdri_display_name(int row);
/// Puts an image that the table does not have into the user's row.
void set_user_hdri(const std::string& file_name);

/// Sets the globals of a lighting preset: "High Dynamic", "Exterior", "Interior w/sun", "Interior
/// no sun", "HDRi sky". False, with a trace at error level and nothing changed, for another name.
bool rb_set_default_lighting(std::string_view name);
/// The five names, by the number kept in `iks_current_preset`.
std::span<const std::string_view> lighting_preset_names();
