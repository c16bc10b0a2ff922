// `qorvane render` and `qorvane extract`: the whole road, and its first half.
#include "apps/draw_report_text.h"
#include "apps/exit_codes.h"
#include "apps/host_session.h"
#include "apps/progress.h"
#include "apps/render_request.h"
#include "apps/verbs.h"
#include "omb/base/profile.h"
#include "platform/files.h"
#include "platform/process.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <fmt/format.h>

#include <unistd.h>

namespace apps {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::array<const char*, 5> kFormats{"png", "jpg", "jpeg", "hdr", "exr"};
constexpr std::size_t kReportLines = 5;

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// True when the picture carries this program's name in its metadata: it may be replaced.
bool made_by_us(const fs::path& path) {
    platform::MappedFile file;
    std::string error;
    if (!file.open(path, error)) {
        return false;
    }
    constexpr std::size_t kHead = std::size_t{1} << 16;
    const std::string_view bytes = file.view();
    return bytes.substr(0, kHead).find("Qorvane") != std::string_view::npos ||
           bytes.substr(bytes.size() - std::min(bytes.size(), kHead)).find("Qorvane") !=
               std::string_view::npos;
}

void check_output(const fs::path& path, bool force) {
    std::string extension = path.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension.empty() || std::ranges::find(kFormats, extension.substr(1)) == kFormats.end()) {
        throw Failure{kUsage,
                      fmt::format("{}: a picture is .png, .jpg, .hdr or .exr", path.string())};
    }
    std::error_code failed;
    if (fs::is_directory(path, failed)) {
        throw Failure{kUnwritable, fmt::format("{}: Is a directory", path.string())};
    }
    const fs::path folder = path.parent_path();
    if (!fs::is_directory(folder, failed)) {
        throw Failure{kUnwritable, fmt::format("{}: the folder does not exist", folder.string())};
    }
    if (access(folder.c_str(), W_OK) != 0) {
        throw Failure{kUnwritable,
                      fmt::format("{}: the folder cannot be written to", folder.string())};
    }
    if (fs::exists(path, failed) && !force && !made_by_us(path)) {
        throw Failure{
            kUnwritable,
            fmt::format("{}: exists and was not made by this program; --force replaces it",
                        path.string())};
    }
}

void check_flags(const Options& options) {
    if (!options.materials.empty()) {
        throw Failure{kUsage, "--material is not there yet"};
    }
}

/// Hands the kind of facets to the add-on. It belongs to this picture, not to the drawing.
void choose_facets(const Options& options) {
    if (!options.facets.empty()) {
        setenv("QORVANE_FACETS", options.facets.c_str(), 1);
    }
}

/// Makes the batch folder and hands its name to the add-on.
void choose_batch_folder(const Options& options) {
    if (options.batch_folder.empty()) {
        return;
    }
    std::error_code failed;
    const fs::path folder = fs::absolute(options.batch_folder, failed).lexically_normal();
    fs::create_directories(folder, failed);
    if (failed || access(folder.c_str(), W_OK) != 0) {
        throw Failure{kUnwritable,
                      fmt::format("{}: the batch folder cannot be written to", folder.string())};
    }
    setenv("QORVANE_BATCH_FOLDER", folder.c_str(), 1);
}

/// Ends of a render that the user asked for.
int interrupted_code() { return 128 + first_interrupt_signal(); }

/// Follows the batch process to its end, passing progress on and interrupts down.
int follow_process(std::int64_t process, double limit_seconds, ProgressChannel& channel,
                   ProgressPrinter& printer) {
    const auto start = Clock::now();
    int passed_on = 0;
    bool timed_out = false;
    std::optional<int> status;
    while (!status) {
        channel.poll(0.1, [&](const std::string& line) { printer.show(line); });
        for (; passed_on < interrupts_received(); ++passed_on) {
            platform::interrupt_process(process);
        }
        if (limit_seconds > 0 && !timed_out && seconds_since(start) > limit_seconds) {
            timed_out = true;
            platform::interrupt_process(process);
        }
        status = platform::wait_process(process, 0);
        if (!status && !platform::is_process_running(process)) {
            break;
        }
    }
    channel.poll(0.05, [&](const std::string& line) { printer.show(line); });
    printer.finish();
    const int code = status.value_or(kFailed);
    if (interrupts_received() > 0) {
        return interrupted_code();
    }
    constexpr int kSignal = 128; // exit statuses from here on tell of a signal
    if (code > kSignal && code != kInterrupted && code != kTerminated) {
        throw Failure{kFailed, fmt::format("the batch process was ended by signal {}; there is no "
                                           "picture",
                                           code - kSignal)};
    }
    return timed_out && code == kInterrupted ? kDone : code;
}

/// A session with its command line, message boxes and the add-on in place.
class RenderSession {
public:
    explicit RenderSession(const Options& options)
      : options_(options)
      , port_(nullptr, options.verbosity > 0)
      , session_(options.operands.front()) {
        acedSetInputPort(&port_);
        if (!options.quiet) {
            for (const std::string& line : session_.report_lines(kReportLines)) {
                fmt::print(stderr, "qorvane: {}\n", line);
            }
        }
        session_.load_references();
        if (options.save) {
            check_savable();
        }
        request_.emplace(options_, session_.database());
        session_.load_add_on();
    }
    ~RenderSession() { acedSetInputPort(nullptr); }
    RenderSession(const RenderSession&) = delete;
    RenderSession& operator=(const RenderSession&) = delete;

    ResolvedView view(const std::string& word) {
        const PictureSize size = request_->size();
        ResolvedView resolved;
        std::string error;
        if (!resolve_view(session_.database(), word, static_cast<double>(size.width) / size.height,
                          resolved, error)) {
            throw Failure{kMissing, fmt::format("{}: {}", options_.operands.front(), error)};
        }
        if (!resolved.remark.empty() && !options_.quiet) {
            fmt::print(stderr, "qorvane: {}: {}\n", options_.operands.front(), resolved.remark);
        }
        return resolved;
    }
    /// What the pictures do not show. It is gone through at the first call, while the batch process
    /// works on the first picture.
    const AcDbDrawReport& report() {
        if (!report_) {
            report_ = acdbCollectDrawReport(session_.database(),
                                            [] { return interrupts_received() == 0; });
        }
        return *report_;
    }
    bool has_report() const { return report_.has_value(); }
    HostSession& host() { return session_; }
    RenderRequest& request() { return *request_; }
    /// Shows what the add-on told in passing.
    void show_alerts() {
        for (const std::string& line : port_.take_alerts()) {
            fmt::print(stderr, "qorvane: {}\n", line);
        }
    }
    /// Why the add-on's last extraction ended early. What it names as a file that cannot be
    /// written gives the exit code for that.
    Failure extraction_failure() {
        using LastError = const char* (*)();
        const auto last_error =
            reinterpret_cast<LastError>(session_.add_on_symbol("omb_last_error"));
        std::string words = one_line(last_error());
        if (const auto alerts = port_.take_alerts(); !alerts.empty()) {
            words = alerts.front();
        }
        const bool unwritable =
            words.starts_with("Cannot create") || words.starts_with("Cannot write");
        return {unwritable ? kUnwritable : kFailed,
                fmt::format("{}: {}", options_.operands.front(),
                            words.empty() ? "the batch process could not be started" : words)};
    }

private:
    /// Tells before the work begins what would keep the settings out of the drawing's file.
    void check_savable() {
        const std::string& drawing = options_.operands.front();
        std::string why = RenderRequest::why_not_savable(session_.database());
        if (why.empty() && access(drawing.c_str(), W_OK) != 0) {
            why = "the file cannot be written to";
        }
        if (!why.empty()) {
            throw Failure{kUnwritable, fmt::format("{}: --save: {}", drawing, why)};
        }
    }

    const Options& options_;
    TerminalPort port_;
    HostSession session_;
    std::optional<RenderRequest> request_;
    std::optional<AcDbDrawReport> report_;
};

/// Stores the settings in the drawing's file, once a render of them has begun.
void save_settings(const Options& options, RenderSession& session) {
    std::string error;
    if (!session.request().save(error)) {
        throw Failure{kUnwritable, fmt::format("{}: {}", options.operands.front(), error)};
    }
    if (!options.quiet) {
        fmt::print(stderr, "qorvane: {}: settings stored\n", options.operands.front());
    }
}

std::vector<std::string> views_of(const Options& options) {
    return options.views.empty() ? std::vector<std::string>{"auto"} : options.views;
}

void print_phase(const Options& options, const char* phase) {
    if (options.progress == "ndjson") {
        fmt::print("{{\"event\":\"phase\",\"phase\":\"{}\"}}\n", phase);
        std::fflush(stdout);
    }
}

/// Tells programs of each thing that is not drawn, once a drawing.
void print_draw_events(const Options& options, RenderSession& session) {
    if (session.has_report()) {
        return;
    }
    const AcDbDrawReport& report = session.report();
    if (options.progress != "ndjson") {
        return;
    }
    for (const auto* rows : {&report.not_drawn, &report.approximate}) {
        for (const AcDbDrawReportRow& row : *rows) {
            fmt::print("{}\n", draw_warning_event(row));
        }
    }
    std::fflush(stdout);
}

/// Tells people of them, once at the end.
void print_draw_report(const Options& options, RenderSession& session) {
    if (options.quiet || options.progress == "ndjson" || !session.has_report()) {
        return;
    }
    for (const std::string& line : draw_report_lines(session.report())) {
        fmt::print(stderr, "qorvane: {}\n", line);
    }
}

/// The last line of a picture.
void print_outcome(const std::string& output, bool finished, double seconds, int warnings,
                   const AcDbDrawReport& report) {
    std::error_code failed;
    const fs::path shown = fs::proximate(output, failed);
    const bool short_name = !failed && !shown.empty() && *shown.begin() != "..";
    const std::string counts = draw_report_counts(report);
    fmt::print("{}{} in {:.0f} s, {} warning{}{}{}\n", short_name ? shown.string() : output,
               finished ? "" : " (unfinished)", seconds, warnings, warnings == 1 ? "" : "s",
               counts.empty() ? "" : ", ", counts);
}

int render_view(const Options& options, RenderSession& session, const std::string& word, bool save,
                ProgressChannel& channel) {
    const auto start = Clock::now();
    const ResolvedView view = session.view(word);
    const fs::path image = output_path(options, options.operands.front(), view.name);
    check_output(image, options.force);
    session.request().store(view, image);

    print_phase(options, "extract");
    acedCommand("RENDER 1030");
    using ProcessId = std::int64_t (*)();
    const auto last_process =
        reinterpret_cast<ProcessId>(session.host().add_on_symbol("omb_last_process_id"));
    const std::int64_t process = last_process();
    if (interrupts_received() > 0 && process == 0) {
        return interrupted_code();
    }
    if (process == 0) {
        throw session.extraction_failure();
    }
    session.show_alerts();
    if (save) {
        save_settings(options, session);
    }
    if (options.verbosity > 0) {
        fmt::print(stderr, "qorvane: extracted in {:.2f} s\n", seconds_since(start));
    }
    print_draw_events(options, session);
    ProgressPrinter printer(options.progress, options.quiet);
    const int code = follow_process(process, options.time_seconds, channel, printer);
    if (!options.quiet && options.progress != "ndjson") {
        for (const std::string& output : printer.outputs()) {
            print_outcome(output, code == kDone, seconds_since(start), printer.warnings(),
                          session.report());
        }
    }
    return code;
}

} // namespace

int run_render(const Options& options) {
    check_flags(options);
    // What can be known to fail is told before the work begins.
    for (const std::string& word : views_of(options)) {
        check_output(output_path(options, options.operands.front(), word), options.force);
    }
    choose_batch_folder(options);
    choose_facets(options);
    if (options.threads > 0) {
        // Threads are the machine's matter: no setting of the drawing carries them.
        setenv("QORVANE_THREADS", std::to_string(options.threads).c_str(), 1);
    }
    install_interrupt_handlers();
    ProgressChannel channel;
    std::string error;
    if (!channel.open(error)) {
        throw Failure{kFailed, error};
    }
    print_phase(options, "read");
    // A render leaves the user's settings as they are: what it sets ends with it.
    open_user_profile(profile_use::read_only);
    RenderSession session(options);
    bool save = options.save;
    for (const std::string& word : views_of(options)) {
        const int code = render_view(options, session, word, std::exchange(save, false), channel);
        if (code != kDone) {
            print_draw_report(options, session);
            return code;
        }
    }
    print_draw_report(options, session);
    return kDone;
}

int run_extract(const Options& options) {
    choose_batch_folder(options);
    choose_facets(options);
    install_interrupt_handlers();
    print_phase(options, "read");
    // A render leaves the user's settings as they are: what it sets ends with it.
    open_user_profile(profile_use::read_only);
    RenderSession session(options);
    const ResolvedView view = session.view(views_of(options).front());
    session.request().store(view, {});
    print_phase(options, "extract");
    using Extract = int (*)();
    const auto extract =
        reinterpret_cast<Extract>(session.host().add_on_symbol("omb_extract_batch_folder"));
    if (extract() != 1) {
        if (interrupts_received() > 0) {
            return interrupted_code();
        }
        throw session.extraction_failure();
    }
    session.show_alerts();
    print_draw_events(options, session);
    return kDone;
}

} // namespace apps
