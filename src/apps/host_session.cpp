// Opens drawings and modules in the embedded host.
#include "apps/host_session.h"

#include "apps/exit_codes.h"
#include "apps/picture_loader.h"
#include "host/db/references.h"
#include "host/rx/module.h"
#include "platform/files.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <iostream>

#include <fmt/format.h>

namespace apps {
namespace {

constexpr std::size_t kMostAlerts = 20; // more would bury what matters
constexpr const char* kAddOn = "omb_qorvane.arx";

std::atomic<int> interrupt_count{0};
std::atomic<int> first_signal{0};

void on_interrupt(int signal) {
    int none = 0;
    first_signal.compare_exchange_strong(none, signal);
    ++interrupt_count;
    acedSetUsrBrk(true);
}

int exit_code_of(Acad::ErrorStatus status) {
    return status == Acad::eOutOfMemory ? kLimit
           : status == Acad::eUserBreak ? kInterrupted
                                        : kUnreadable;
}

} // namespace

void install_interrupt_handlers() {
    struct sigaction action {};
    action.sa_handler = on_interrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

int interrupts_received() { return interrupt_count; }
int first_interrupt_signal() { return first_signal; }

std::optional<std::string> TerminalPort::readLine(const std::string& prompt) {
    write(prompt);
    std::string line;
    if (script_ == nullptr || !std::getline(*script_, line)) {
        return std::nullopt;
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

void TerminalPort::write(const std::string& text) {
    if (show_) {
        std::cout << text << std::flush;
    }
}

std::string one_line(const std::string& text) {
    std::string line;
    for (const char c : text) {
        const bool blank = c == '\n' || c == '\r' || c == ' ';
        if (!blank || (!line.empty() && line.back() != ' ')) {
            line += blank ? ' ' : c;
        }
    }
    return line;
}

void TerminalPort::alert(const std::string& text) {
    const std::string line = one_line(text);
    if (show_) {
        fmt::print(stderr, "qorvane: {}\n", line);
    } else if (alerts_.size() < kMostAlerts &&
               std::find(alerts_.begin(), alerts_.end(), line) == alerts_.end()) {
        alerts_.push_back(line);
    }
}

HostSession::HostSession(const std::string& drawing)
  : drawing_(drawing) {
    // Without windows the program tells through the host's command line what a box would hold.
    old_window_port_ = set_window_port(std::make_unique<cl_headless_window_port>(
        [](const std::string& text, const std::string& title) {
            acedAlert(title.empty() ? text : title + ": " + text);
        }));
    lend_picture_loader();
    auto database = std::make_unique<AcDbDatabase>(false);
    std::string error;
    const Acad::ErrorStatus status =
        database->dxfIn(drawing, error, [](auto, auto) { return interrupts_received() == 0; });
    if (status != Acad::eOk) {
        throw Failure{exit_code_of(status), fmt::format("{}: {}", drawing, error)};
    }
    std::error_code failed;
    const auto absolute = std::filesystem::absolute(drawing, failed);
    database->setFilename(failed ? drawing : absolute.string());
    acDocManager()->addDocument(std::move(database));
}

HostSession::~HostSession() {
    acrxUnloadAllModules();
    acDocManager()->closeAll();
    set_window_port(std::move(old_window_port_));
}

void HostSession::load_references() {
    const Acad::ErrorStatus status =
        acdbResolveXrefs(database(), [](auto, auto) { return interrupts_received() == 0; });
    if (status != Acad::eOk) {
        throw Failure{exit_code_of(status),
                      fmt::format("{}: loading its external references was cancelled", drawing_)};
    }
}

void HostSession::load_add_on() {
    const auto path = platform::program_file().parent_path() / kAddOn;
    std::string error;
    if (!acrxLoadModule(path, error)) {
        throw Failure{kMissing, fmt::format("{}: {}", path.string(), error)};
    }
}

void* HostSession::add_on_symbol(const std::string& name) const {
    void* address = acrxGetModuleSymbol(kAddOn, name);
    if (address == nullptr) {
        throw Failure{kMissing, fmt::format("{}: the module has no function {}", kAddOn, name)};
    }
    return address;
}

std::vector<std::string> HostSession::report_lines(std::size_t limit) const {
    const AcDbLoadReport& report = acDocManager()->curDocument()->database()->loadReport();
    std::vector<std::string> lines;
    const auto add = [&](const std::vector<AcDbLoadFinding>& findings, const char* word) {
        for (const AcDbLoadFinding& finding : findings) {
            if (lines.size() == limit) {
                return;
            }
            std::string where = fmt::format("line {}", finding.line);
            if (finding.handle != 0) {
                where += fmt::format(", handle {:X}", finding.handle);
            }
            lines.push_back(fmt::format("{}: {}: {} ({}) [{}]", drawing_, word, finding.message,
                                        where, finding.code));
        }
    };
    add(report.lost, "lost");
    add(report.repaired, "repaired");
    const std::size_t all = report.lost.size() + report.repaired.size() + report.suppressed;
    if (all > lines.size()) {
        lines.push_back(fmt::format("{}: and {} more findings", drawing_, all - lines.size()));
    }
    return lines;
}

} // namespace apps
