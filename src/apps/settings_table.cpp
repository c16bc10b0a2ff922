// Settings with their sources, see settings_table.h.
#include "apps/settings_table.h"

#include "apps/host_session.h"
#include "apps/settings_text.h"
#include "omb/base/profile.h"
#include "omb/base/text.h"
#include "omb_qorvane/dictionary.h"

#include <array>
#include <optional>

#include <fmt/format.h>

namespace apps {
namespace {

constexpr const char* kSection = "Globals";

constexpr SaveTypeRow kSaveTypes[] = {
    {SAVE_NONE, "SAVE_NONE", "never", "never kept: a value of the moment"},
    {SAVE_PROFILE, "SAVE_PROFILE", "profile", "your profile and the drawing: a habit of yours"},
    {SAVE_DATABASE, "SAVE_DATABASE", "drawing",
     "your profile, the drawing and defaults files: a setting of the drawing"},
    {OPTION_GLOBAL, "OPTION_GLOBAL", "option",
     "your profile, the drawing and defaults files: an option of the render"},
    {OPTION_NON_DATABASE_GLOBAL, "OPTION_NON_DATABASE_GLOBAL", "by-name",
     "your profile, the drawing and defaults files: an option of the render, by name"},
    {SAVE_LOCAL, "SAVE_LOCAL", "dialog", "never kept: it belongs to one dialog"},
    {SAVE_SESSION, "SAVE_SESSION", "session", "never kept: it is set at each start"},
};
constexpr SaveTypeRow kUnknownType = {SAVE_ANY, "SAVE_ANY", "any", "never kept"};

struct KindRow {
    char letter;
    const char* word;
};
constexpr KindRow kKinds[] = {{'b', "bool"},   {'i', "int"},   {'s', "text"},
                              {'r', "double"}, {'p', "point"}, {'c', "colour"}};

/// The text that stands for "no such key", for the kinds that ask the initialisation file.
std::optional<std::string_view> sentinel(std::string_view name) {
    switch (name.front()) {
    case 's':
        return profile_sentinel::text;
    case 'c':
        return profile_sentinel::color;
    default:
        return std::nullopt;
    }
}

bool is_whole_number(std::string_view name) { return name.front() == 'b' || name.front() == 'i'; }

bool profile_holds(std::string_view name) {
    const std::optional<std::string_view> text = profile().read(kSection, name);
    if (!text) {
        return false;
    }
    return is_whole_number(name) ? omb::parse_int(*text) != profile_sentinel::whole_number
                                 : text != sentinel(name);
}

/// Numbers with a fraction never ask the initialisation file.
bool initialisation_holds(std::string_view name) {
    const std::optional<std::string_view> text = initialisation_file().read(kSection, name);
    return (is_whole_number(name) || sentinel(name)) && text && *text != profile_sentinel::text;
}

/// A remembered zero that reads as the default counts as nothing remembered.
bool reads_as_default(const cl_profile_store& store, const catalogue_row& row) {
    return row.zero_is_default && store.read_double(kSection, row.name, 1) == 0;
}

/// Where a fresh start finds the value.
Source stored_source(const catalogue_row& row, int save_type) {
    if (!is_saved_type(save_type)) {
        return Source::kDefault;
    }
    if (row.name.front() == 'p') {
        for (const std::string& key : profile_keys(row.name)) {
            if (profile().read(kSection, key)) {
                return Source::kProfile;
            }
        }
        return Source::kDefault;
    }
    if (profile_holds(row.name)) {
        return reads_as_default(profile(), row) ? Source::kDefault : Source::kProfile;
    }
    const bool found =
        initialisation_holds(row.name) && !reads_as_default(initialisation_file(), row);
    return found ? Source::kFile : Source::kDefault;
}

} // namespace

std::span<const SaveTypeRow> save_type_rows() { return kSaveTypes; }

const SaveTypeRow& save_type_row(int type) {
    for (const SaveTypeRow& row : kSaveTypes) {
        if (row.type == type) {
            return row;
        }
    }
    return kUnknownType;
}

const char* kind_word(std::string_view name) {
    for (const KindRow& row : kKinds) {
        if (name.starts_with(row.letter)) {
            return row.word;
        }
    }
    return "double";
}

const char* source_word(Source source) {
    constexpr std::array<const char*, 4> kWords{"default", "file", "profile", "drawing"};
    return kWords[static_cast<std::size_t>(source)];
}

std::vector<Setting> collect_settings() {
    std::vector<Setting> settings;
    std::set<std::string_view> seen;
    for (const auto& groups : {main_catalogue(), application_catalogue(), report_catalogue()}) {
        for (const catalogue_group& group : groups) {
            for (const catalogue_row& row : group.rows) {
                if (!seen.insert(row.name).second) {
                    continue;
                }
                cl_variable_base* variable = find_global(row.name, SAVE_ANY, false);
                settings.push_back(
                    {group.title, &row, variable, stored_source(row, variable->save_type)});
            }
        }
    }
    return settings;
}

Setting* find_setting(std::vector<Setting>& settings, std::string_view name) {
    for (Setting& setting : settings) {
        if (setting.row->name == name) {
            return &setting;
        }
    }
    return nullptr;
}

bool is_changed(const Setting& setting) {
    return setting.source != Source::kDefault &&
           setting.variable->value_text() != setting.variable->default_text();
}

std::string unknown_setting(std::string_view name) {
    constexpr std::size_t kNearest = 3;
    return fmt::format("there is no setting '{}'; nearest: {}", shown_text(name),
                       fmt::join(nearest_global_names(name, kNearest), ", "));
}

void apply_drawing(std::vector<Setting>& settings, const std::string& drawing) {
    HostSession session(drawing);
    if (names_in_OMB_QorvaneDictionary(session.database()).empty()) {
        return;
    }
    for (Setting& setting : settings) {
        setting.variable->changed = false;
    }
    read_globals_from_OMB_QorvaneDictionary(session.database());
    for (Setting& setting : settings) {
        if (setting.variable->changed) {
            setting.source = Source::kDrawing;
        }
    }
}

void mark_file_values(std::vector<Setting>& settings, const std::set<std::string>& names) {
    for (Setting& setting : settings) {
        if (names.contains(setting.variable->name)) {
            setting.source = Source::kFile;
        }
    }
}

std::vector<std::string> profile_keys(std::string_view name) {
    const std::string key(name);
    if (!name.starts_with('p')) {
        return {key};
    }
    return {key + "_x", key + "_y", key + "_z"};
}

void restore_factory_value(const Setting& setting) {
    setting.variable->restore_default();
    if (!is_saved_type(setting.variable->save_type)) {
        return;
    }
    for (const std::string& key : profile_keys(setting.row->name)) {
        profile().remove(kSection, key);
    }
    cl_global_variable_array fresh; // what the next start would find
    preset_row(fresh, *setting.row, 0);
    const cl_variable_base* next = fresh.lookup(setting.row->name);
    if (next->value_text() != next->default_text()) {
        setting.variable->set_string_value(next->default_text());
        setting.variable->save_to_profile();
    }
}

} // namespace apps
