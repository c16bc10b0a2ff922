// `qorvane convert`: reads a drawing and writes it again, losing nothing.
#include "apps/exit_codes.h"
#include "apps/host_session.h"
#include "apps/verbs.h"

#include <cstdio>
#include <filesystem>

#include <fmt/format.h>

namespace apps {

int run_convert(const Options& options) {
    if (options.ascii && options.binary) {
        throw Failure{kUsage, "--ascii and --binary exclude each other"};
    }
    const std::string& output = options.operands[1];
    std::error_code failed;
    if (std::filesystem::exists(output, failed) && !options.force) {
        throw Failure{kUnwritable, fmt::format("{}: exists; --force replaces it", output)};
    }
    install_interrupt_handlers();
    HostSession session(options.operands[0]);
    if (!options.quiet) {
        constexpr std::size_t kReportLines = 20;
        for (const std::string& line : session.report_lines(kReportLines)) {
            fmt::print(stderr, "qorvane: {}\n", line);
        }
    }
    const AcDbDxfForm form = options.ascii    ? AcDbDxfForm::kAscii
                             : options.binary ? AcDbDxfForm::kBinary
                                              : AcDbDxfForm::kAsInput;
    std::string error;
    if (session.database().dxfOut(output, error, form) != Acad::eOk) {
        throw Failure{kUnwritable, fmt::format("{}: {}", output, error)};
    }
    return kDone;
}

} // namespace apps
