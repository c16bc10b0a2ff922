// `qorvane dialog`: tools for who writes dialogs. None of them changes a setting of the user's.
#include "Kestra_Qor/option_commands.h"
#include "apps/dialog_show.h"
#include "apps/dialog_view.h"
#include "apps/exit_codes.h"
#include "apps/gallery_commands.h"
#include "apps/host_session.h"
#include "apps/verbs.h"
#include "apps/version.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/profile.h"
#include "omb/base/trace.h"
#include "omb/dialog/dialog_layout.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "platform/files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fmt/format.h>
#include <unistd.h>

namespace apps {
namespace {

/// Prints an answer. Throws Failure when it does not go out whole.
void answer(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        throw Failure{kUnwritable, "standard output: " + platform::system_error_text(errno)};
    }
}

void check_readable(const std::string& path) {
    if (!file_exists(path) || access(path.c_str(), R_OK) != 0) {
        throw Failure{kUnreadable, fmt::format("{}: {}", path, platform::system_error_text(errno))};
    }
}

/// The application of a dialog or a file: what stands before the first underscore.
std::string application_of(const std::string& name) { return name.substr(0, name.find('_')); }

/// Keeps what is traced and told while this lives.
class TraceKeeper {
public:
    explicit TraceKeeper(std::vector<std::string>& lines) {
        set_trace_started(true);
        trace_settings().show_traces_in_release = true;
        set_trace_sink([&lines](int, const std::string& line) {
            lines.push_back(line.substr(0, line.find_last_not_of("\r\n") + 1));
        });
        set_message_sink([](const std::string&, const std::string&) {});
    }
    ~TraceKeeper() {
        set_trace_sink({});
        trace_settings().show_traces_in_release = false;
    }
    TraceKeeper(const TraceKeeper&) = delete;
    TraceKeeper& operator=(const TraceKeeper&) = delete;
};

int run_tokens(const Options& options) {
    const std::string& path = options.operands.at(1);
    check_readable(path);
    const cl_dcl_token_list list = list_dcl_tokens(path);
    if (!list.readable) {
        throw Failure{kUnreadable, fmt::format("{}: {}", path, list.message)};
    }
    answer(options.json ? tokens_json(list.tokens) : tokens_text(list.tokens));
    DialogReport report;
    report.errors = list.errors;
    fmt::print(stderr, "{}", report_text(report, false));
    return report.ok() ? kDone : kFailed;
}

/// Lays a dialog of the file out: what is wrong then only shows when it opens.
void add_warnings(DialogReport& report, const std::string& path, const std::string& name) {
    cl_dcl_data data;
    cl_dcl_load_options how;
    how.report = false;
    cl_dcl_loader loader(data, how);
    if (loader.load_from_dcl(application_of(name), name, path) == 0) {
        for (const std::string& warning : lay_out_dialog(data, dialog_metrics(data))) {
            report.warnings.push_back(fmt::format("{}: {}", name, warning));
        }
    }
}

DialogReport check_file(const Options& options) {
    const std::string& path = options.operands.at(1);
    const std::string& wanted = options.dialog_name;
    DialogReport report;
    const TraceKeeper keeper(report.trace);
    cl_dcl_load_result result;
    if (wanted.empty()) {
        result = check_dcl_file(path);
        report.dialogs = result.dialogs;
    } else {
        cl_dcl_data data;
        result = load_dcl_dialog(data, application_of(wanted), wanted, path);
        if (std::ranges::find(result.dialogs, wanted) == result.dialogs.end() &&
            result.errors.empty()) {
            throw Failure{kMissing, fmt::format("{}: no dialog '{}' in it", path, wanted)};
        }
        report.dialogs = {wanted};
    }
    report.errors = result.errors;
    if (report.ok()) {
        const std::vector<std::string> traced = report.trace; // the second reading traces it again
        for (const std::string& name : report.dialogs) {
            add_warnings(report, path, name);
        }
        report.trace = traced;
    }
    return report;
}

int run_check(const Options& options) {
    const std::string& path = options.operands.at(1);
    check_readable(path);
    const DialogReport report = check_file(options);
    if (options.json) {
        answer(report_json(report));
    } else {
        const char* no_color = std::getenv("NO_COLOR");
        answer(report_text(report, isatty(STDOUT_FILENO) == 1 &&
                                       (no_color == nullptr || *no_color == '\0')));
    }
    const std::size_t count = report.errors.size();
    if (!options.json && !options.quiet) {
        fmt::print(stderr, "qorvane: {}: {} dialog{}, {} error{}\n", path, report.dialogs.size(),
                   report.dialogs.size() == 1 ? "" : "s", count, count == 1 ? "" : "s");
    }
    return report.ok() ? kDone : kFailed;
}

/// The settings as the dialog finds them.
void set_settings(const Options& options) {
    for (const auto& [name, text] : options.settings) {
        if (cl_variable_base* variable = find_global(name, SAVE_ANY, false)) {
            variable->set_string_value(text);
        }
    }
}

int run_tree(const Options& options) {
    if (!options.dialog_file.empty()) {
        check_readable(options.dialog_file);
    }
    set_settings(options);
    cl_dcl_data data;
    if (!load_dialog_records(data, options.operands.at(1), options.dialog_file)) {
        throw Failure{kFailed, fmt::format("the dialog '{}' cannot be loaded; see qorvane dialog "
                                           "check",
                                           options.operands[1])};
    }
    for (const std::string& error : lay_out_dialog(data, dialog_metrics(data))) {
        fmt::print(stderr, "qorvane: {}: {}\n", options.operands[1], error);
    }
    answer(options.json ? tree_json(data) : tree_text(data));
    return kDone;
}

int run_show(const Options& options) {
    if (!options.dialog_file.empty()) {
        check_readable(options.dialog_file);
    }
    set_settings(options);
    return show_dialog(options);
}

struct SubVerb {
    const char* name;
    int (*run)(const Options& options);
};
constexpr SubVerb kSubVerbs[] = {
    {"tokens", run_tokens},
    {"check", run_check},
    {"tree", run_tree},
    {"show", run_show},
};

} // namespace

int run_dialog(const Options& options) {
    const auto* row = std::ranges::find_if(
        kSubVerbs, [&](const SubVerb& r) { return options.operands.front() == r.name; });
    if (row == std::end(kSubVerbs)) {
        throw Failure{kUsage, "dialog has no verb '" + options.operands.front() + "'"};
    }
    open_user_profile(profile_use::read_only);
    preset_application_globals(0);
    preset_report_globals(0);
    add_option_commands();
    add_gallery_commands();
    set_global_string("sks_about_version",
                      fmt::format("Version {} ({})", version_number(), build_name()), SAVE_NONE);
    return row->run(options);
}

} // namespace apps
