// Presets and look-ups of the catalogue, see catalogue.h.
#include "omb/globals/catalogue.h"

#include "omb/base/profile.h"
#include "omb/base/text.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_set>

namespace {

constexpr const char* section = "Globals";

/// The remembered text of a key from the initialisation file.
std::optional<std::string> read_initialisation(std::string_view key) {
    std::string text = initialisation_file().read_text(section, key, profile_sentinel::text);
    return text == profile_sentinel::text ? std::nullopt : std::optional(std::move(text));
}

/// The remembered value of each kind, or nothing. A profile that holds the sentinel itself cannot
/// be told from one that holds nothing.
std::optional<std::int32_t> remembered_int(std::string_view key) {
    const std::int32_t value = profile().read_int(section, key, profile_sentinel::whole_number);
    if (value != profile_sentinel::whole_number) {
        return value;
    }
    const std::optional<std::string> text = read_initialisation(key);
    return text ? std::optional(omb::parse_int(*text)) : std::nullopt;
}

std::optional<std::string> remembered_string(std::string_view key) {
    std::string text = profile().read_text(section, key, profile_sentinel::text);
    return text == profile_sentinel::text ? read_initialisation(key)
                                          : std::optional(std::move(text));
}

std::optional<COLORREF> remembered_color(std::string_view key) {
    std::optional<std::string> text = profile().read_text(section, key, profile_sentinel::color);
    if (*text == profile_sentinel::color) {
        text = read_initialisation(key);
    }
    return text ? std::optional(parse_colorref(*text)) : std::nullopt;
}

struct preset_flags {
    bool keep_default_unset, zero_is_default, report_missing;
};

/// Steps 2 to 4 of a preset: the variable, with its type and default brought up to date. `is_new`
/// tells whether it still needs its value.
template <typename SetDefault>
cl_variable_base& preset_variable(cl_global_variable_array& array, std::string_view name,
                                  int save_type, const preset_flags& flags, bool& is_new,
                                  SetDefault&& set_default) {
    cl_variable_base* variable = array.lookup(name);
    is_new = variable == nullptr;
    if (is_new) {
        if (flags.report_missing && save_type != SAVE_NONE) {
            array.report_global_not_preset(name);
        }
        variable = array.enter(make_variable(name, save_type));
    } else {
        variable->set_save_type(save_type);
    }
    if (!flags.keep_default_unset) {
        set_default(*variable);
    }
    return *variable;
}

/// The integer kinds share everything but their name check.
void preset_integer(cl_global_variable_array& array, std::string_view name, int save_type,
                    std::int32_t value, const preset_flags& flags) {
    bool is_new = false;
    cl_variable_base& variable =
        preset_variable(array, name, save_type, flags, is_new,
                        [&](cl_variable_base& v) { v.set_int_default(value); });
    if (!is_new) {
        return;
    }
    std::int32_t used = value;
    if (is_saved_type(save_type)) {
        used = remembered_int(name).value_or(value);
    }
    variable.set_int_value(used == 0 && flags.zero_is_default ? value : used);
    variable.mark_remembered();
}

} // namespace

void preset_global_bool(cl_global_variable_array& array, std::string_view name, int save_type,
                        bool value, bool keep_default_unset, bool zero_is_default,
                        bool report_missing, int mode) {
    if (mode == 1) {
        array.set_global_bool(name, value, save_type);
        return;
    }
    check_global_name_bool(name);
    preset_integer(array, name, save_type, value ? 1 : 0,
                   {keep_default_unset, zero_is_default, report_missing});
}

void preset_global_int(cl_global_variable_array& array, std::string_view name, int save_type,
                       std::int32_t value, bool keep_default_unset, bool zero_is_default,
                       bool report_missing, int mode) {
    if (mode == 1) {
        array.set_global_int(name, value, save_type);
    } else if (check_global_name_int(name)) {
        preset_integer(array, name, save_type, value,
                       {keep_default_unset, zero_is_default, report_missing});
    }
}

void preset_global_double(cl_global_variable_array& array, std::string_view name, int save_type,
                          double value, bool keep_default_unset, bool zero_is_default,
                          bool report_missing, int mode) {
    if (mode == 1) {
        array.set_global_double(name, value, save_type);
        return;
    }
    check_global_name_double(name);
    bool is_new = false;
    cl_variable_base& variable = preset_variable(
        array, name, save_type, {keep_default_unset, zero_is_default, report_missing}, is_new,
        [&](cl_variable_base& v) { v.set_double_default(value); });
    if (!is_new) {
        return;
    }
    // No sentinel: the default is the profile's fall-back, the initialisation file is not asked.
    const double used =
        is_saved_type(save_type) ? profile().read_double(section, name, value) : value;
    variable.set_double_value(used == 0 && zero_is_default ? value : used);
    variable.mark_remembered();
}

void preset_global_string(cl_global_variable_array& array, std::string_view name, int save_type,
                          std::string_view value, bool keep_default_unset, bool zero_is_default,
                          bool report_missing, int mode) {
    if (mode == 1) {
        array.set_global_string(name, value, save_type);
        return;
    }
    check_global_name_String(name);
    bool is_new = false;
    const std::string text(value);
    cl_variable_base& variable = preset_variable(
        array, name, save_type, {keep_default_unset, zero_is_default, report_missing}, is_new,
        [&](cl_variable_base& v) { v.set_string_default(text); });
    if (!is_new) {
        return;
    }
    std::string used = text;
    if (is_saved_type(save_type)) {
        used = remembered_string(name).value_or(text);
    }
    variable.set_string_value(used.empty() && zero_is_default ? text : used);
    variable.mark_remembered();
}

void preset_global_fpt(cl_global_variable_array& array, std::string_view name, int save_type,
                       const fpt& value, bool keep_default_unset, bool zero_is_default,
                       bool report_missing, int mode) {
    if (mode == 1) {
        array.set_global_fpt(name, value, save_type);
        return;
    }
    check_global_name_fpt(name);
    bool is_new = false;
    cl_variable_base& variable = preset_variable(
        array, name, save_type, {keep_default_unset, zero_is_default, report_missing}, is_new,
        [&](cl_variable_base& v) { v.set_fpt_default(value); });
    if (!is_new) {
        return;
    }
    fpt used = value;
    if (is_saved_type(save_type)) {
        const std::string key(name);
        used = {profile().read_double(section, key + "_x", value.x),
                profile().read_double(section, key + "_y", value.y),
                profile().read_double(section, key + "_z", value.z)};
    }
    variable.set_fpt_value(used == fpt{} && zero_is_default ? value : used);
    variable.mark_remembered();
}

void preset_global_COLORREF(cl_global_variable_array& array, std::string_view name, int save_type,
                            COLORREF value, bool keep_default_unset, bool zero_is_default,
                            bool report_missing, int mode) {
    if (mode == 1) {
        array.set_global_COLORREF(name, value, save_type);
        return;
    }
    check_global_name_COLORREF(name);
    bool is_new = false;
    cl_variable_base& variable = preset_variable(
        array, name, save_type, {keep_default_unset, zero_is_default, report_missing}, is_new,
        [&](cl_variable_base& v) { v.set_COLORREF_default(value); });
    if (!is_new) {
        return;
    }
    COLORREF used = value;
    if (is_saved_type(save_type)) {
        used = remembered_color(name).value_or(value);
    }
    variable.set_COLORREF_value(used == 0 && zero_is_default ? value : used);
    variable.mark_remembered();
}

// ---- blocks of rows ----

void preset_row(cl_global_variable_array& array, const catalogue_row& row, int mode) {
    const std::string_view text = row.default_text;
    const bool z = row.zero_is_default;
    switch (row.name.front()) {
    case 'b':
        preset_global_bool(array, row.name, row.save_type, omb::parse_int(text) != 0, false, z,
                           false, mode);
        break;
    case 'i':
        preset_global_int(array, row.name, row.save_type, omb::parse_int(text), false, z, false,
                          mode);
        break;
    case 's':
        preset_global_string(array, row.name, row.save_type, text, false, z, false, mode);
        break;
    case 'p':
        preset_global_fpt(array, row.name, row.save_type, parse_point(text), false, z, false, mode);
        break;
    case 'c':
        preset_global_COLORREF(array, row.name, row.save_type, parse_colorref(text), false, z,
                               false, mode);
        break;
    default:
        preset_global_double(array, row.name, row.save_type, omb::parse_double(text), false, z,
                             false, mode);
    }
}

namespace {

void preset_groups(std::span<const catalogue_group> groups, int mode) {
    const cl_profile_bulk one_write;
    for (const catalogue_group& group : groups) {
        for (const catalogue_row& row : group.rows) {
            preset_row(globals, row, mode);
        }
    }
}

} // namespace

void preset_globals(int mode) { preset_groups(main_catalogue(), mode); }

void preset_application_globals(int mode) {
    preset_globals(mode);
    preset_groups(application_catalogue(), mode);
}

void preset_report_globals(int mode) { preset_groups(report_catalogue(), mode); }

// ---- look-ups ----

namespace {

/// The names of all blocks, each once, in catalogue order.
const std::vector<std::string_view>& catalogue_names() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> list;
        std::unordered_set<std::string_view> seen;
        for (const auto& groups : {main_catalogue(), application_catalogue(), report_catalogue()}) {
            for (const catalogue_group& group : groups) {
                for (const catalogue_row& row : group.rows) {
                    if (seen.insert(row.name).second) {
                        list.push_back(row.name);
                    }
                }
            }
        }
        return list;
    }();
    return names;
}

} // namespace

bool is_catalogue_global(std::string_view name) {
    static const std::unordered_set<std::string_view> known(catalogue_names().begin(),
                                                            catalogue_names().end());
    return known.contains(name);
}

std::vector<std::string> nearest_global_names(std::string_view name, std::size_t count) {
    constexpr std::size_t longest = 100; // of a name worth comparing
    const std::string wanted = omb::to_lower(name.substr(0, longest));
    std::vector<std::pair<std::size_t, std::string_view>> ranked;
    for (const std::string_view candidate : catalogue_names()) {
        ranked.emplace_back(omb::edit_distance(wanted, candidate), candidate);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::min(count, ranked.size()); ++i) {
        names.emplace_back(ranked[i].second);
    }
    return names;
}
