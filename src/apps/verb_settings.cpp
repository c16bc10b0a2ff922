// `qorvane settings`: shows, changes, saves and loads the settings that the user's profile keeps.
#include "apps/exit_codes.h"
#include "apps/host_session.h"
#include "apps/settings_import.h"
#include "apps/settings_text.h"
#include "apps/settings_view.h"
#include "apps/verbs.h"
#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/profile.h"
#include "omb/globals/defaults_files.h"
#include "omb/globals/option_globals.h"
#include "platform/files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

namespace apps {
namespace {

/// Counts what the store below tells of trouble with its files.
int troubles = 0;

void tell(std::string_view text) { fmt::print(stderr, "qorvane: {}\n", text); }

/// Prints an answer. Throws Failure when it does not go out whole.
void answer(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        throw Failure{kUnwritable, "standard output: " + platform::system_error_text(errno)};
    }
}

/// What the profile holds under a setting's keys.
std::vector<std::optional<std::string>> kept_texts(const std::vector<std::string>& names) {
    std::vector<std::optional<std::string>> texts;
    for (const std::string& name : names) {
        for (const std::string& key : profile_keys(name)) {
            texts.emplace_back(profile().read("Globals", key));
        }
    }
    return texts;
}

/// Runs a change, which returns the names that it touched, with one write to disk. Throws Failure
/// when they were not kept.
void keep(const std::function<std::vector<std::string>()>& change) {
    std::vector<std::string> names;
    {
        const cl_profile_bulk bulk;
        names = change();
    }
    if (troubles == 0) {
        return;
    }
    // Some file made trouble, perhaps another one than the profile: what does a new start find?
    const auto wanted = kept_texts(names);
    set_message_sink([](const std::string&, const std::string&) {}); // told already
    open_user_profile(profile_use::read_only);
    if (kept_texts(names) != wanted) {
        throw Failure{kUnwritable, "the settings could not be kept"};
    }
}

void report_refused(const std::string& path, const ImportReport& report) {
    for (const RefusedLine& line : report.refused) {
        tell(fmt::format("{}:{}: {}", path, line.line, line.reason));
    }
    if (report.refused_count > report.refused.size()) {
        tell(fmt::format("{}: and {} more lines that were not taken", path,
                         report.refused_count - report.refused.size()));
    }
}

/// Reads a defaults file and tells what was not taken. Throws Failure when nothing could be read.
ImportReport import_and_tell(const std::string& path) {
    ImportReport report = import_defaults_file(path);
    report_refused(path, report);
    if (report.taken.empty() && report.refused_count > 0) {
        throw Failure{kUnreadable, fmt::format("{}: no line of it is a setting", path)};
    }
    return report;
}

/// Every setting, with the defaults file and the drawing that the flags name over the stored ones.
std::vector<Setting> effective_settings(const Options& options) {
    std::vector<Setting> settings = collect_settings();
    if (!options.defaults.empty()) {
        mark_file_values(settings, import_and_tell(options.defaults).taken);
    }
    if (!options.drawing.empty()) {
        apply_drawing(settings, options.drawing);
    }
    return settings;
}

int run_list(const Options& options) {
    std::vector<Setting> settings = effective_settings(options);
    if (options.operands.size() > 1) {
        const std::string& pattern = options.operands[1];
        std::erase_if(settings, [&](const Setting& setting) {
            return !matches_pattern(pattern, setting.row->name) &&
                   !matches_pattern(pattern, get_global_title(setting.row->name));
        });
    }
    if (options.json) {
        answer(settings_json(settings));
    } else if (settings.empty()) {
        tell(fmt::format("no setting matches '{}'", shown_text(options.operands[1])));
    } else {
        answer(settings_table_text(settings, isatty(STDOUT_FILENO) != 0));
    }
    return kDone;
}

int run_get(const Options& options) {
    const std::string& name = options.operands[1];
    if (!is_catalogue_global(name)) {
        throw Failure{kMissing, unknown_setting(name)};
    }
    std::vector<Setting> settings = effective_settings(options);
    const Setting& setting = *find_setting(settings, name);
    answer(options.json ? setting_json(setting) : setting.variable->value_text() + "\n");
    return kDone;
}

int run_diff(const Options& options) {
    std::vector<Setting> settings = effective_settings(options);
    std::erase_if(settings, [](const Setting& setting) { return !is_changed(setting); });
    if (options.json) {
        answer(settings_json(settings));
    } else if (settings.empty()) {
        fmt::print("Nothing differs from the factory values.\n");
    } else {
        answer(settings_diff_text(settings));
    }
    return kDone;
}

// ---- changes ----

/// A value to be stored, checked.
struct Change {
    Setting* setting;
    std::string text;
};

/// Checks names and values, telling all that is wrong; the exit code, 0 when all is well.
int check_changes(const Options& options, std::vector<Setting>& settings,
                  std::vector<Change>& changes) {
    int code = kDone;
    const auto refuse = [&](int with, std::string_view text) {
        tell(text);
        code = code == kDone ? with : code;
    };
    for (std::size_t i = 1; i + 1 < options.operands.size(); i += 2) {
        const std::string& name = options.operands[i];
        const std::string& value = options.operands[i + 1];
        Setting* setting = find_setting(settings, name);
        if (setting == nullptr) {
            refuse(kMissing, unknown_setting(name));
            continue;
        }
        const int type = setting->variable->save_type;
        CheckedText checked = check_setting_text(name, value, TextForm::kTyped);
        if (!is_saved_type(type)) {
            refuse(kUsage, fmt::format("{}: {}", name, save_type_row(type).meaning));
        } else if (!checked.wrong.empty()) {
            refuse(kUsage, fmt::format("{} {}, not '{}'", name, checked.wrong, shown_text(value)));
        } else {
            changes.push_back({setting, std::move(checked.text)});
        }
    }
    return code;
}

int run_set(const Options& options) {
    if (options.operands.size() % 2 == 0) {
        throw Failure{kUsage, fmt::format("'{}' has no value; usage: qorvane settings set NAME "
                                          "VALUE [NAME VALUE]...",
                                          shown_text(options.operands.back()))};
    }
    std::vector<Setting> settings = collect_settings();
    std::vector<Change> changes;
    if (const int code = check_changes(options, settings, changes); code != kDone) {
        tell("nothing was changed");
        return code;
    }
    std::string text;
    keep([&] {
        std::vector<std::string> names;
        for (const Change& change : changes) {
            cl_variable_base& variable = *change.setting->variable;
            const std::string before = variable.value_text();
            variable.set_string_value(change.text);
            variable.changed = true;
            variable.save_to_profile();
            text += fmt::format("{}: {} -> {}\n", variable.name, before, variable.value_text());
            if (change.setting->row->zero_is_default && variable.get_double_value() == 0) {
                text += fmt::format("{}: 0 stands for the factory value, {}\n", variable.name,
                                    variable.default_text());
            }
            names.push_back(variable.name);
        }
        return names;
    });
    if (!options.quiet) {
        fmt::print("{}", text);
    }
    return kDone;
}

int run_reset(const Options& options) {
    std::vector<Setting> settings = collect_settings();
    std::vector<Setting> chosen;
    bool unknown = false;
    for (std::size_t i = 1; i < options.operands.size(); ++i) {
        if (const Setting* setting = find_setting(settings, options.operands[i])) {
            chosen.push_back(*setting);
        } else {
            tell(unknown_setting(options.operands[i]));
            unknown = true;
        }
    }
    if (unknown) {
        tell("nothing was changed");
        return kMissing;
    }
    if (options.operands.size() == 1) {
        chosen = std::move(settings);
    }
    std::size_t count = 0;
    keep([&] {
        std::vector<std::string> names;
        for (const Setting& setting : chosen) {
            count += is_changed(setting) ? 1 : 0;
            restore_factory_value(setting);
            names.push_back(setting.variable->name);
        }
        return names;
    });
    if (!options.quiet) {
        fmt::print("{} setting{} reset.\n", count, count == 1 ? "" : "s");
    }
    return kDone;
}

// ---- files ----

/// The file that an operand or --user means. Throws Failure.
std::string defaults_file(const Options& options, bool for_reading) {
    if (options.user == (options.operands.size() > 1)) {
        throw Failure{kUsage, fmt::format("usage: qorvane settings {} FILE.dfl, or --user in place "
                                          "of the file",
                                          options.operands[0])};
    }
    if (options.user) {
        if (get_defaults_folder().empty()) {
            throw Failure{kUnwritable, "the folder of the user's defaults cannot be made"};
        }
        return get_user_defaults_file();
    }
    const std::string& path = options.operands[1];
    if (!path_extension(path).empty() || (for_reading && file_exists(path))) {
        return path;
    }
    return path + ".dfl";
}

/// Values that hold a line break do not come back from a file; each is told.
void tell_broken_values(const std::vector<Setting>& settings) {
    for (const Setting& setting : settings) {
        if (is_options_file_type(setting.variable->save_type) &&
            setting.variable->value_text().find_first_of("\r\n") != std::string::npos) {
            tell(fmt::format("{} holds a line break, which the file does not keep",
                             setting.row->name));
        }
    }
}

int run_export(const Options& options) {
    const std::string path = defaults_file(options, false);
    if (!options.user && !options.force && (file_exists(path) || folder_exists(path))) {
        throw Failure{kUnwritable, fmt::format("{}: exists; --force replaces it", path)};
    }
    tell_broken_values(effective_settings(options));
    std::string error;
    if (!write_whole_file(path, option_globals_text(), error)) {
        throw Failure{kUnwritable, error};
    }
    if (!options.quiet) {
        fmt::print("{}\n", options.user ? "User defaults saved" : path);
    }
    return kDone;
}

int run_import(const Options& options) {
    const std::string path = defaults_file(options, true);
    ImportReport report;
    keep([&] {
        report = import_and_tell(path);
        return std::vector<std::string>(report.changed.begin(), report.changed.end());
    });
    if (options.quiet) {
        return kDone;
    }
    if (options.user) {
        fmt::print("User defaults loaded\n");
    }
    const std::size_t changed = report.changed.size();
    fmt::print("{} setting{} changed, {} line{} not taken.\n", changed, changed == 1 ? "" : "s",
               report.refused_count, report.refused_count == 1 ? "" : "s");
    if (changed > 0) {
        fmt::print("iks_render_quality is 0 (custom) now, as after every file that changes a "
                   "setting.\n");
    }
    return kDone;
}

struct SubVerb {
    const char* name;
    profile_use use; ///< those that only look keep what they read to themselves
    int (*run)(const Options& options);
};
constexpr SubVerb kSubVerbs[] = {
    {"list", profile_use::read_only, run_list},
    {"get", profile_use::read_only, run_get},
    {"set", profile_use::read_and_write, run_set},
    {"reset", profile_use::read_and_write, run_reset},
    {"export", profile_use::read_only, run_export},
    {"import", profile_use::read_and_write, run_import},
    {"diff", profile_use::read_only, run_diff},
};

} // namespace

int run_settings(const Options& options) {
    const auto* row = std::ranges::find_if(
        kSubVerbs, [&](const SubVerb& r) { return options.operands.front() == r.name; });
    if (row == std::end(kSubVerbs)) {
        throw Failure{kUsage, "settings has no verb '" + options.operands.front() + "'"};
    }
    set_message_sink([](const std::string& text, const std::string&) {
        ++troubles;
        tell(text);
    });
    open_user_profile(row->use);
    preset_application_globals(0);
    preset_report_globals(0);
    return row->run(options);
}

} // namespace apps
