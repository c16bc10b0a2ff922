// Checks each line of a defaults file before the system's reader takes it.
#include "apps/settings_import.h"

#include "apps/exit_codes.h"
#include "apps/host_session.h"
#include "apps/settings_table.h"
#include "apps/settings_text.h"
#include "omb/base/text.h"
#include "omb/globals/option_globals.h"

#include <fmt/format.h>

namespace apps {
namespace {

constexpr const char* kQuality = "iks_render_quality";
constexpr std::size_t kMostRefused = 200; // more would tell nothing; suggestions take their time

/// Hands one line to the reader; true when it changed a value.
bool take_line(const std::string& line, const std::string& path) {
    cl_input_file one;
    one.open_text(line, path);
    return read_option_globals_from_open_file(one);
}

/// What is wrong with a line that is neither blank nor a comment; empty, with the name, when it is
/// valid.
std::string judge_line(std::string_view line, bool suggest, std::string& name) {
    const std::size_t at = line.find(';');
    if (at == std::string_view::npos) {
        return fmt::format("no semicolon between name and value in '{}'", shown_text(line));
    }
    name = omb::trim(line.substr(0, at));
    if (name.empty()) {
        return "no name ahead of the semicolon";
    }
    if (!is_catalogue_global(name)) {
        return suggest ? unknown_setting(name) : "there is no such setting";
    }
    if (!is_saved_type(get_save_type(name))) {
        return fmt::format("{} is never kept", name);
    }
    const std::string_view value = omb::trim(line.substr(at + 1));
    const CheckedText checked = check_setting_text(name, value, TextForm::kFile);
    return checked.wrong.empty()
               ? ""
               : fmt::format("{} {}, not '{}'", name, checked.wrong, shown_text(value));
}

} // namespace

ImportReport import_defaults_file(const std::string& path) {
    cl_input_file file;
    if (!file.open(path, option_globals_limit)) {
        throw Failure{kUnreadable, file.error_text()};
    }
    ImportReport report;
    std::string line;
    while (file.read_line(line)) {
        const std::string_view content = omb::trim(line);
        if (content.empty() || content.front() == '#') {
            continue;
        }
        std::string name;
        std::string reason = judge_line(content, report.refused.size() < kMostRefused, name);
        if (!reason.empty()) {
            ++report.refused_count;
            if (report.refused.size() < kMostRefused) {
                report.refused.push_back({file.line_count() + 1, std::move(reason)});
            }
            continue;
        }
        report.taken.insert(name);
        if (take_line(line, path)) {
            report.changed.insert(name);
        }
    }
    if (!report.changed.empty()) { // a file that alters any option leaves the quality preset behind
        set_global_int(kQuality, 0);
        report.taken.insert(kQuality);
    }
    return report;
}

} // namespace apps
