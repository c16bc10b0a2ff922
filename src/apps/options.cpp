// Flags as rows: what is listed here is parsed, helped, completed and documented.
#include "apps/options.h"

#include "apps/exit_codes.h"
#include "apps/settings_table.h"
#include "apps/settings_text.h"
#include "apps/version.h"
#include "omb/base/text.h"
#include "omb/globals/catalogue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace apps {
namespace {

bool parse_number(std::string_view text, int& value, int low, int high) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && value >= low &&
           value <= high;
}

std::string take_size(Options& options, const std::string& value) {
    const std::size_t cross = value.find_first_of("xX");
    if (cross == std::string::npos ||
        !parse_number(std::string_view(value).substr(0, cross), options.width, 50, 32000) ||
        !parse_number(std::string_view(value).substr(cross + 1), options.height, 30, 32000)) {
        return "a size is WIDTHxHEIGHT, from 50x30 to 32000x32000";
    }
    return {};
}

std::string take_passes(Options& options, const std::string& value) {
    return parse_number(value, options.passes, 1, 32767) ? ""
                                                         : "passes are a number from 1 to 32767";
}

std::string take_time(Options& options, const std::string& value) {
    options.time_seconds = parse_duration(value);
    return options.time_seconds > 0 ? "" : "a time is a number of seconds, or like 90s, 10m, 1h30m";
}

std::string take_threads(Options& options, const std::string& value) {
    return parse_number(value, options.threads, 1, 1024) ? ""
                                                         : "threads are a number from 1 to 1024";
}

constexpr std::array<std::string_view, 5> kPresets{"exterior", "interior", "interior-no-sun",
                                                   "hdri", "high-dynamic"};

std::string take_preset(Options& options, const std::string& value) {
    options.preset = value;
    return std::ranges::find(kPresets, value) != kPresets.end()
               ? ""
               : "presets are exterior, interior, interior-no-sun, hdri, high-dynamic";
}

std::string take_facets(Options& options, const std::string& value) {
    options.facets = value;
    return value == "drawing" || value == "camera" ? "" : "facets are drawing or camera";
}

std::string take_progress(Options& options, const std::string& value) {
    options.progress = value;
    return value == "auto" || value == "tty" || value == "ndjson" || value == "none"
               ? ""
               : "progress is auto, tty, ndjson or none";
}

std::string take_global(Options& options, const std::string& value) {
    const std::size_t equals = value.find('=');
    if (equals == std::string::npos || equals == 0) {
        return "a setting is NAME=VALUE";
    }
    const std::string name = value.substr(0, equals);
    if (!is_catalogue_global(name)) {
        return unknown_setting(name);
    }
    CheckedText checked =
        check_setting_text(name, std::string_view(value).substr(equals + 1), TextForm::kTyped);
    options.globals.emplace_back(name, std::move(checked.text));
    return std::move(checked.wrong);
}

/// As take_global, but of any name that says its kind: dialogs may make settings of their own.
std::string take_set(Options& options, const std::string& value) {
    const std::size_t equals = value.find('=');
    if (equals == std::string::npos || equals == 0) {
        return "a setting is NAME=VALUE";
    }
    const std::string name = value.substr(0, equals);
    if (std::string_view("bisrcp").find(name[0]) == std::string_view::npos) {
        return "a setting's name begins with its kind: b, i, r, s, c or p";
    }
    if (name[0] == 's') { // a text may have lines, as lists of dialogs do
        options.settings.emplace_back(name, value.substr(equals + 1));
        return {};
    }
    CheckedText checked =
        check_setting_text(name, std::string_view(value).substr(equals + 1), TextForm::kTyped);
    options.settings.emplace_back(name, std::move(checked.text));
    return std::move(checked.wrong);
}

std::string take_theme(Options& options, const std::string& value) {
    options.theme = value;
    return value == "light" || value == "dark" ? "" : "themes are light and dark";
}

std::string take_scale(Options& options, const std::string& value) {
    return parse_number(value, options.scale, 1, 2) ? "" : "scales are 1 and 2";
}

template <std::string Options::*member>
std::string take_text(Options& options, const std::string& value) {
    options.*member = value;
    return value.empty() ? "the value is empty" : "";
}

template <bool Options::*member>
std::string take_switch(Options& options, const std::string&) {
    options.*member = true;
    return {};
}

std::string take_view(Options& options, const std::string& value) {
    options.views.push_back(value);
    return value.empty() ? "the view is empty" : "";
}

std::string take_material(Options& options, const std::string& value) {
    options.materials.push_back(value);
    return {};
}

std::string take_verbose(Options& options, const std::string&) {
    ++options.verbosity;
    return {};
}

constexpr VerbRow kVerbs[] = {
    {kRender, "render", "DRAWING", "render a drawing to a picture", 1, 1},
    {kExtract, "extract", "DRAWING", "write the batch folder only, start no process", 1, 1},
    {kRun, "run", "DRAWING", "run command lines from a script or from standard input", 1, 1},
    {kInspect, "inspect", "DRAWING", "tell what a drawing holds and what would be rendered", 1, 1},
    {kConvert, "convert", "IN OUT", "read a drawing and write it again, losing nothing", 2, 2},
    {kSettings, "settings", "VERB ...", "show, change, save and load settings", 1, kNoLimit},
    {kDialog, "dialog", "VERB ...", "check, lay out and show dialogs, for who writes them", 1,
     kNoLimit},
};

constexpr SubVerbRow kSubVerbs[] = {
    {kSettings, "list", "[PATTERN]",
     "all settings, or those whose name or title matches: a word, or a pattern with * and ?", 0, 1,
     "--json --drawing --defaults"},
    {kSettings, "get", "NAME", "the value of one setting", 1, 1, "--json --drawing --defaults"},
    {kSettings, "set", "NAME VALUE...", "keep new values; all of them, or none", 2, kNoLimit, ""},
    {kSettings, "reset", "[NAME...]", "back to factory values; without names, everything", 0,
     kNoLimit, ""},
    {kSettings, "export", "FILE.dfl", "write the settings to a defaults file", 0, 1,
     "--user --drawing --defaults"},
    {kSettings, "import", "FILE.dfl", "take the settings of a defaults file", 0, 1, "--user"},
    {kSettings, "diff", "", "only what differs from the factory values", 0, 0,
     "--json --drawing --defaults"},
    {kDialog, "tokens", "FILE", "the words of a dialog file, with their lines", 1, 1, "--json"},
    {kDialog, "check", "FILE",
     "the mistakes of a dialog file, with their places; exit code 1 when there are some", 1, 1,
     "--json --dialog"},
    {kDialog, "tree", "NAME",
     "the controls of a dialog with their places, in the units of dialogs, at letters 6 by 13 "
     "pixels",
     1, 1, "--json --file --set"},
    {kDialog, "show", "NAME", "open a dialog; tells OK or Cancel, and changes no setting", 1, 1,
     "--file --script --log --grab --set --theme --scale"},
};

constexpr std::array kFlags{
    FlagRow{"-o,--output", "IMAGE",
            "the picture; its extension chooses the format (png, jpg, hdr, exr); %n is the "
            "drawing's name, %v the view's (default %n.png)",
            kRender, take_text<&Options::output>, ""},
    FlagRow{"-s,--size", "WxH", "size in pixels (default 1200x800)", kRender, take_size, ""},
    FlagRow{"--passes", "N", "render passes (default 20)", kRender, take_passes, ""},
    FlagRow{"--time", "DURATION", "stop after this time and keep the picture: 90s, 10m, 1h30m",
            kRender, take_time, ""},
    FlagRow{"--view", "VIEW",
            "auto, current, top, front, right, iso, a named view of the drawing, or "
            "eye=x,y,z;target=x,y,z;fov=deg; may be repeated (default auto)",
            kRender | kExtract, take_view, "auto current top front right iso"},
    FlagRow{"--preset", "PRESET",
            "lighting: exterior, interior, interior-no-sun, hdri, high-dynamic (default exterior)",
            kRender | kExtract, take_preset, "exterior interior interior-no-sun hdri high-dynamic"},
    FlagRow{"--material", "KEY=FILE", "a material file for a layer, colour or block", kRender,
            take_material, ""},
    FlagRow{"--facets", "KIND",
            "how finely curves are drawn: by the drawing's own measure, or as the camera sees "
            "them: drawing or camera (default drawing)",
            kRender | kExtract, take_facets, "drawing camera"},
    FlagRow{"-D", "NAME=VALUE", "set a setting for this render", kRender | kExtract, take_global,
            ""},
    FlagRow{"--batch-folder", "DIR", "where the batch folder is written", kRender | kExtract,
            take_text<&Options::batch_folder>, ""},
    FlagRow{"--save", "", "store the settings in the drawing's file", kRender,
            take_switch<&Options::save>, ""},
    FlagRow{"--script", "FILE",
            "run: command lines (default standard input); dialog: what the user does, a line each",
            kRun | kDialog, take_text<&Options::script>, ""},
    FlagRow{"--json", "", "answer as JSON", kInspect | kSettings | kDialog,
            take_switch<&Options::json>, ""},
    FlagRow{"--file", "FILE", "the file that the dialog stands in (default: found by its name)",
            kDialog, take_text<&Options::dialog_file>, ""},
    FlagRow{"--dialog", "NAME", "only this dialog of the file", kDialog,
            take_text<&Options::dialog_name>, ""},
    FlagRow{"--set", "NAME=VALUE", "a setting as the dialog finds it", kDialog, take_set, ""},
    FlagRow{"--log", "", "print what happens, in its order", kDialog, take_switch<&Options::log>,
            ""},
    FlagRow{"--grab", "FILE.png", "a picture of the dialog as it opens; no display is needed",
            kDialog, take_text<&Options::grab>, ""},
    FlagRow{"--theme", "THEME", "colours of the dialog: light or dark (default the desktop's)",
            kDialog, take_theme, "light dark"},
    FlagRow{"--scale", "N", "device pixels to a pixel of the picture: 1 or 2 (default 1)", kDialog,
            take_scale, "1 2"},
    FlagRow{"--drawing", "FILE", "the values stored in this drawing win over all others", kSettings,
            take_text<&Options::drawing>, ""},
    FlagRow{"--defaults", "FILE.dfl", "the values of this defaults file win over the user's own",
            kSettings, take_text<&Options::defaults>, ""},
    FlagRow{"--user", "", "the user's own defaults file, in place of FILE.dfl", kSettings,
            take_switch<&Options::user>, ""},
    FlagRow{"--ascii", "", "write the drawing as text", kConvert, take_switch<&Options::ascii>, ""},
    FlagRow{"--binary", "", "write the drawing as binary DXF", kConvert,
            take_switch<&Options::binary>, ""},
    FlagRow{"-j,--threads", "N", "threads to render with (default all cores)", kAllVerbs,
            take_threads, ""},
    FlagRow{"-v,--verbose", "", "tell more; twice, the trace", kAllVerbs, take_verbose, ""},
    FlagRow{"--quiet", "", "errors only", kAllVerbs, take_switch<&Options::quiet>, ""},
    FlagRow{"--force", "", "replace an existing file", kAllVerbs, take_switch<&Options::force>, ""},
    FlagRow{"--log-file", "FILE", "write the trace to a file", kAllVerbs,
            take_text<&Options::log_file>, ""},
    FlagRow{"--progress", "KIND", "auto, tty, ndjson (a JSON object per line) or none", kAllVerbs,
            take_progress, "auto tty ndjson none"},
};

std::string indented(std::string_view text, std::size_t indent, std::size_t width) {
    std::string result;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        if (column > 0 && indent + column + 1 + word.size() > width) {
            result += "\n" + std::string(indent, ' ');
            column = 0;
        } else if (column > 0) {
            result += ' ';
            ++column;
        }
        result += word;
        column += word.size();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

const VerbRow* find_verb(std::string_view word) {
    const auto* row =
        std::ranges::find_if(kVerbs, [&](const VerbRow& r) { return word == r.name; });
    return row != std::end(kVerbs) ? row : nullptr;
}

bool has_sub_verbs(Verb verb) {
    return std::ranges::any_of(kSubVerbs, [&](const SubVerbRow& r) { return r.verb == verb; });
}

const SubVerbRow* find_sub_verb(Verb verb, std::string_view word) {
    const auto* row = std::ranges::find_if(
        kSubVerbs, [&](const SubVerbRow& r) { return r.verb == verb && word == r.name; });
    return row != std::end(kSubVerbs) ? row : nullptr;
}

std::string_view nearest_sub_verb(Verb verb, std::string_view word) {
    constexpr std::size_t kLongest = 40; // of a word worth comparing
    std::string_view nearest;
    std::size_t least = kNoLimit;
    for (const SubVerbRow& row : kSubVerbs) {
        const std::size_t distance =
            omb::edit_distance(omb::to_lower(word.substr(0, kLongest)), row.name);
        if (row.verb == verb && distance < least) {
            least = distance;
            nearest = row.name;
        }
    }
    return nearest;
}

/// True when a flag's names hold one of the words of a list.
bool is_named_in(const FlagRow& flag, std::string_view list) {
    const std::string names = "," + std::string(flag.names) + ",";
    return std::ranges::any_of(omb::split(list, ' '), [&](std::string_view word) {
        return !word.empty() && names.find(fmt::format(",{},", word)) != std::string::npos;
    });
}

ParseResult usage_error(std::string text) {
    ParseResult result;
    result.exit_code = kUsage;
    result.message = "qorvane: " + std::move(text) + "\n";
    return result;
}

} // namespace

std::span<const VerbRow> verb_rows() { return kVerbs; }
std::span<const SubVerbRow> sub_verb_rows() { return kSubVerbs; }
std::span<const FlagRow> flag_rows() { return kFlags; }

double parse_duration(const std::string& text) {
    double total = 0;
    std::string_view rest = text;
    if (rest.empty()) {
        return -1;
    }
    while (!rest.empty()) {
        double value = 0;
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
        if (error != std::errc() || value < 0) {
            return -1;
        }
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
        const char unit = rest.empty() ? 's' : rest.front();
        const double factor = unit == 's' ? 1 : unit == 'm' ? 60 : unit == 'h' ? 3600 : -1;
        if (factor < 0) {
            return -1;
        }
        total += value * factor;
        if (!rest.empty()) {
            rest.remove_prefix(1);
        }
    }
    return total;
}

namespace {

/// What the words hold, before any of it is judged.
struct Words {
    bool help = false, version = false;
    std::vector<std::string> operands;
    std::array<std::vector<std::string>, kFlags.size()> values; ///< an empty text for a switch
};

/// A flag's look, but no number's: values like -1 and -.5 are operands.
bool looks_like_flag(std::string_view word) {
    return word.size() > 1 && word[0] == '-' && word[1] != '.' &&
           std::string_view("0123456789").find(word[1]) == std::string_view::npos;
}

/// Sorts words into flags and operands; returns what is wrong, or an empty text.
std::string sort_words(const std::vector<std::string>& words, Words& out) {
    CLI::App parser;
    parser.set_help_flag();
    // Operands are what is left: as options of their own, texts in brackets would be taken apart.
    parser.allow_extras();
    parser.add_flag("-h,--help", out.help);
    parser.add_flag("-V,--version", out.version);
    std::array<CLI::Option*, kFlags.size()> given{};
    for (std::size_t i = 0; i < kFlags.size(); ++i) {
        given[i] = kFlags[i].metavar[0] != '\0'
                       ? parser.add_option(kFlags[i].names, out.values[i])->allow_extra_args(false)
                       : parser.add_flag(kFlags[i].names);
    }
    try {
        parser.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::ParseError& error) {
        return fmt::format("{}; see qorvane --help", error.what());
    }
    bool flags_ended = false;
    for (std::string& word : parser.remaining()) {
        if (!flags_ended && word == "--") {
            flags_ended = true;
        } else if (!flags_ended && looks_like_flag(word)) {
            return fmt::format("there is no flag {}; see qorvane --help", word);
        } else {
            out.operands.push_back(std::move(word));
        }
    }
    for (std::size_t i = 0; i < kFlags.size(); ++i) {
        if (kFlags[i].metavar[0] == '\0') {
            out.values[i].assign(given[i]->count(), std::string());
        }
    }
    return {};
}

/// What is wrong with verb, sub-verb and the number of operands, or an empty text.
std::string check_operands(const VerbRow& verb, const std::vector<std::string>& operands) {
    const std::size_t count = operands.size();
    if (count < verb.least || count > verb.most) {
        return fmt::format("usage: qorvane {} {}", verb.name, verb.arguments);
    }
    if (!has_sub_verbs(verb.verb)) {
        return {};
    }
    const SubVerbRow* sub = find_sub_verb(verb.verb, operands.front());
    if (sub == nullptr) {
        return fmt::format("{} has no verb '{}'; did you mean '{}'? see qorvane --help", verb.name,
                           operands.front(), nearest_sub_verb(verb.verb, operands.front()));
    }
    if (count - 1 < sub->least || count - 1 > sub->most) {
        return fmt::format("usage: qorvane {} {} {}", verb.name, sub->name, sub->arguments);
    }
    return {};
}

/// Takes the flags' values; returns what is wrong, or an empty text.
std::string take_flags(const Words& words, const VerbRow& verb, const SubVerbRow* sub,
                       Options& options) {
    for (std::size_t i = 0; i < kFlags.size(); ++i) {
        const FlagRow& flag = kFlags[i];
        if (words.values[i].empty()) {
            continue;
        }
        if ((flag.verbs & static_cast<unsigned>(verb.verb)) == 0) {
            return fmt::format("{} has no flag {}", verb.name, flag.names);
        }
        if (sub != nullptr && flag.verbs != kAllVerbs && !is_named_in(flag, sub->flags)) {
            return fmt::format("{} {} has no flag {}", verb.name, sub->name, flag.names);
        }
        for (const std::string& value : words.values[i]) {
            if (const std::string wrong = flag.take(options, value); !wrong.empty()) {
                return fmt::format("{} {}: {}", flag.names, value, wrong);
            }
        }
    }
    return {};
}

} // namespace

ParseResult parse_command_line(const std::vector<std::string>& words) {
    Words sorted;
    if (std::string wrong = sort_words(words, sorted); !wrong.empty()) {
        return usage_error(std::move(wrong));
    }
    ParseResult result;
    if (sorted.help || sorted.version) {
        result.message = sorted.help ? help_text() : version_text();
        return result;
    }
    const std::vector<std::string>& operands = sorted.operands;
    const VerbRow* verb = operands.empty() ? nullptr : find_verb(operands.front());
    if (verb == nullptr) {
        return usage_error(
            operands.empty() ? "nothing to do; see qorvane --help"
                             : fmt::format("the window is not there yet; use a verb, for instance "
                                           "'qorvane render {}'",
                                           operands.front()));
    }
    result.options.verb = verb->verb;
    result.options.operands.assign(operands.begin() + 1, operands.end());
    const SubVerbRow* sub = result.options.operands.empty()
                                ? nullptr
                                : find_sub_verb(verb->verb, result.options.operands.front());
    if (std::string wrong = take_flags(sorted, *verb, sub, result.options); !wrong.empty()) {
        return usage_error(std::move(wrong));
    }
    if (std::string wrong = check_operands(*verb, result.options.operands); !wrong.empty()) {
        return usage_error(std::move(wrong));
    }
    result.proceed = true;
    return result;
}

namespace {

std::string flag_lines(const auto& wanted) {
    std::string text;
    for (const FlagRow& row : kFlags) {
        if (wanted(row)) {
            text += fmt::format("  {:<26} {}\n", fmt::format("{} {}", row.names, row.metavar),
                                indented(row.help, 29, 80));
        }
    }
    return text;
}

std::string sub_verb_lines(const VerbRow& verb) {
    std::string text;
    for (const SubVerbRow& row : kSubVerbs) {
        if (row.verb == verb.verb) {
            text += fmt::format("  {:<26} {}\n", fmt::format("{} {}", row.name, row.arguments),
                                indented(row.help, 29, 80));
        }
    }
    return text.empty() ? text : fmt::format("\nVerbs of {}:\n{}", verb.name, text);
}

} // namespace

std::string help_text() {
    std::string text = "qorvane: from a CAD drawing to a photo-realistic picture\n\n";
    for (const VerbRow& row : kVerbs) {
        text += fmt::format("  qorvane {:<18} {}\n", fmt::format("{} {}", row.name, row.arguments),
                            row.help);
    }
    for (const VerbRow& verb : kVerbs) {
        text += sub_verb_lines(verb);
        const std::string flags = flag_lines([&](const FlagRow& row) {
            return row.verbs != kAllVerbs && (row.verbs & verb.verb) != 0;
        });
        if (!flags.empty()) {
            text += fmt::format("\nFlags of {}:\n{}", verb.name, flags);
        }
    }
    text += "\nEverywhere:\n";
    text += flag_lines([](const FlagRow& row) { return row.verbs == kAllVerbs; });
    text += "  -h,--help                  this text\n"
            "  -V,--version               the version\n"
            "\nExit codes: 0 done, 1 failed, 2 wrong usage, 3 input cannot be read, 4 something\n"
            "it names is missing, 5 output cannot be written, 6 a limit or memory, 130 and 143\n"
            "interrupted, with the picture so far saved.\n";
    return text;
}

std::string manual_page() {
    const auto escaped = [](std::string_view text) {
        std::string out;
        for (const char c : text) {
            out += c == '-'    ? std::string("\\-")
                   : c == '\\' ? std::string("\\e")
                               : std::string(1, c);
        }
        return out;
    };
    std::string text = ".TH QORVANE 1\n.SH NAME\nqorvane \\- from a CAD drawing to a "
                       "photo\\-realistic picture\n.SH SYNOPSIS\n";
    for (const VerbRow& row : kVerbs) {
        text += fmt::format(".B qorvane {}\n[FLAG]... {}\n.br\n", row.name, row.arguments);
    }
    text += ".SH VERBS\n";
    for (const VerbRow& row : kVerbs) {
        text += fmt::format(".TP\n.B {} {}\n{}\n", row.name, row.arguments, escaped(row.help));
        for (const SubVerbRow& sub : kSubVerbs) {
            if (sub.verb == row.verb) {
                text += fmt::format(".TP\n.B {} {} {}\n{}\n", row.name, sub.name, sub.arguments,
                                    escaped(sub.help));
            }
        }
    }
    text += ".SH OPTIONS\n";
    for (const FlagRow& row : kFlags) {
        std::string verbs;
        for (const VerbRow& verb : kVerbs) {
            if (row.verbs != kAllVerbs && (row.verbs & verb.verb) != 0) {
                verbs += (verbs.empty() ? "" : ", ") + std::string(verb.name);
            }
        }
        text += fmt::format(".TP\n.B {} {}\n{}{}\n", escaped(row.names), row.metavar,
                            escaped(row.help), verbs.empty() ? "" : " (" + verbs + ")");
    }
    text += ".SH EXIT STATUS\n0 done, 1 failed, 2 wrong usage, 3 the input cannot be read, 4 "
            "something that it names is missing, 5 the output cannot be written, 6 a limit or "
            "memory, 130 and 143 interrupted, with the picture so far saved.\n";
    return text;
}

std::string bash_completion() {
    std::string verbs;
    std::string cases;
    std::string sub_cases;
    for (const VerbRow& verb : kVerbs) {
        verbs += std::string(verb.name) + " ";
        std::string flags;
        for (const FlagRow& row : kFlags) {
            if ((row.verbs & verb.verb) != 0) {
                std::string names = row.names;
                std::ranges::replace(names, ',', ' ');
                flags += names + " ";
            }
        }
        cases += fmt::format("        {}) words=\"{}\" ;;\n", verb.name, flags);
        std::string subs;
        for (const SubVerbRow& sub : kSubVerbs) {
            if (sub.verb == verb.verb) {
                subs += std::string(sub.name) + " ";
            }
        }
        if (!subs.empty()) {
            sub_cases += fmt::format("        {}) words=\"{}\" ;;\n", verb.name, subs);
        }
    }
    std::string values;
    for (const FlagRow& row : kFlags) {
        if (row.choices[0] != '\0') {
            std::string names = row.names;
            std::ranges::replace(names, ',', '|');
            values += fmt::format("        {}) COMPREPLY=($(compgen -W \"{}\" -- \"$current\")); "
                                  "return ;;\n",
                                  names, row.choices);
        }
    }
    return fmt::format(R"(# Completion of qorvane for bash, made from its table of flags.
_qorvane() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD-1]}} words=
    case $previous in
{}    esac
    if [ "$COMP_CWORD" = 1 ]; then
        words="{}--help --version"
    elif [[ $current == -* ]]; then
        case ${{COMP_WORDS[1]}} in
{}        esac
    elif [ "$COMP_CWORD" = 2 ]; then
        case ${{COMP_WORDS[1]}} in
{}        esac
    fi
    COMPREPLY=($(compgen -W "$words" -- "$current"))
    [ -n "$words" ] || compopt -o default
}}
complete -F _qorvane qorvane
)",
                       values, verbs, cases, sub_cases);
}

} // namespace apps
