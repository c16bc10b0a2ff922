// `qorvane run`: host command lines from a script or from standard input.
#include "apps/exit_codes.h"
#include "apps/host_session.h"
#include "apps/verbs.h"
#include "apps/window_choice.h"
#include "omb/base/profile.h"

#include <filesystem>
#include <fstream>
#include <iostream>

#include <fmt/format.h>

namespace apps {

namespace {

constexpr const char* command_group = "QORVANE";

/// SAVEAS FILE: the drawing goes on under that name. A file that stands there is asked for.
void save_as() {
    std::string name;
    if (acedGetString("\nSave drawing as: ", name) != RTNORM) {
        return;
    }
    std::error_code failed;
    const auto path = std::filesystem::absolute(name, failed);
    std::string answer;
    if (std::filesystem::exists(path, failed) &&
        (acedGetKword("Yes No", "\n" + path.string() + " is there. Replace it? [Yes/No] <No>: ",
                      answer) != RTNORM ||
         answer != "Yes")) {
        return;
    }
    std::string error;
    if (acedSaveAs(*acDocManager()->curDocument()->database(), path, error) == Acad::eOk) {
        acutPrintf("\nSaved as " + path.string() + "\n");
    } else {
        acedAlert(path.string() + ": " + error);
    }
}

} // namespace

int run_script(const Options& options) {
    std::ifstream file;
    if (!options.script.empty()) {
        file.open(options.script);
        if (!file) {
            throw Failure{kUnreadable, fmt::format("{}: cannot be read", options.script)};
        }
    }
    std::istream& script = options.script.empty() ? std::cin : file;
    install_interrupt_handlers();
    TerminalPort port(&script, !options.quiet);
    AcEdInputPort* const old_port = acedSetInputPort(&port);
    open_user_profile(profile_use::read_and_write); // a session of the host, as from a window
    const bool may_ask = !options.quiet && options.progress != "none";
    const WindowChoice windows(make_windows_when_needed(may_ask), may_ask && has_display()
                                                                      ? Boxes::in_windows
                                                                      : Boxes::on_the_terminal);
    HostSession session(options.operands.front());
    session.load_add_on();
    acedRegCmds().addCommand(command_group, "_SAVEAS", "SAVEAS", ACRX_CMD_MODAL, &save_as);
    int code = kDone;
    std::string line;
    int number = 0;
    while (interrupts_received() == 0 && std::getline(script, line)) {
        ++number;
        const std::size_t first = line.find_first_not_of(" \t\r");
        if (first == std::string::npos || line[first] == ';') {
            continue;
        }
        if (!acedCommand(line)) {
            fmt::print(stderr, "qorvane: {}: unknown or failed command '{}' (line {})\n",
                       options.script.empty() ? "standard input" : options.script, line, number);
            code = kFailed;
        }
    }
    acedRegCmds().removeGroup(command_group);
    std::cout << std::flush;
    acedSetInputPort(old_port);
    return interrupts_received() > 0 ? 128 + first_interrupt_signal() : code;
}

} // namespace apps
