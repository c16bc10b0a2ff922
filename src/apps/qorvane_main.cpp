// The program `qorvane`: parses its arguments and runs the verb.
#include "apps/exit_codes.h"
#include "apps/host_session.h"
#include "apps/options.h"
#include "apps/settings_page.h"
#include "apps/verbs.h"
#include "apps/version.h"
#include "omb/base/error_dialog.h"
#include "omb/base/message_box.h"
#include "omb/base/trace.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace {

struct VerbFunction {
    apps::Verb verb;
    int (*function)(const apps::Options&);
};
constexpr VerbFunction kFunctions[] = {
    {apps::kRender, apps::run_render},   {apps::kExtract, apps::run_extract},
    {apps::kRun, apps::run_script},      {apps::kInspect, apps::run_inspect},
    {apps::kConvert, apps::run_convert}, {apps::kSettings, apps::run_settings},
    {apps::kDialog, apps::run_dialog},
};

int run(const apps::Options& options) {
    for (const VerbFunction& row : kFunctions) {
        if (row.verb == options.verb) {
            return row.function(options);
        }
    }
    return apps::kUsage;
}

void tell(const std::string& text) { fmt::print(stderr, "qorvane: {}\n", text); }

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 1 && words[0] == "--manual-page") {
        fmt::print("{}", apps::manual_page());
        return apps::kDone;
    }
    if (words.size() == 1 && words[0] == "--bash-completion") {
        fmt::print("{}", apps::bash_completion());
        return apps::kDone;
    }
    if (words.size() == 1 && words[0] == "--settings-page") {
        fmt::print("{}", apps::settings_page());
        return apps::kDone;
    }
    const apps::ParseResult parsed = apps::parse_command_line(words);
    if (!parsed.proceed) {
        fmt::print(parsed.exit_code == apps::kDone ? stdout : stderr, "{}", parsed.message);
        return parsed.exit_code;
    }
    if (!parsed.options.log_file.empty()) {
        // The add-on and the batch process keep traces of their own; all meet in this file.
        std::error_code failed;
        const auto path = std::filesystem::absolute(parsed.options.log_file, failed);
        setenv("QORVANE_LOG_FILE", path.c_str(), 1);
    }
    start_trace_from_environment("qorvane");
    set_trace_sink([](int, const std::string& line) { fmt::print(stderr, "{}", line); });
    set_version_data({"qorvane", apps::version_number(), apps::build_name(), {}});
    // What a box would hold is told on the terminal.
    set_message_sink([](const std::string& text, const std::string&) { tell(text); });
    try {
        return run(parsed.options);
    } catch (const apps::Failure& failure) {
        tell(failure.message);
        return failure.exit_code;
    } catch (const std::bad_alloc&) {
        tell("out of memory");
        return apps::kLimit;
    } catch (const std::exception& error) {
        tell(error.what());
        return apps::kFailed;
    }
}
