// How times and memory grow with the drawing, from the real programs:
//   scale_trials [--plot FILE.svg] [--quick]
// Writes drawings of 20 thousand to 2 million faces in nested blocks, all different, and one with
// 20 thousand inserts of a block of a hundred faces; extracts each and renders one pass. Times of
// the extraction are the processor's, which other programs leave alone. The first pass is timed by
// the clock and, as other programs may be running, by the processor: what reading and building take
// on one core, and half of what the pass takes on all; the limit is for the shorter one. Ends with
// 1 when a limit is broken. --quick stops at 200 thousand faces.
#include "bench/apps/growth_plot.h"
#include "bench/apps/scale_drawings.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fmt/format.h>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <string_view>

namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status = -1;
    double processor_seconds = 0;
    double seconds = 0;
    double megabytes = 0; ///< most memory that it had
};

/// Processor time of a process that runs.
double processor_seconds(pid_t process) {
    std::ifstream in(fmt::format("/proc/{}/stat", process));
    std::string skipped;
    double user = 0, system = 0;
    for (int i = 1; i < 14; ++i) {
        in >> skipped; // the program's name has no blanks
    }
    in >> user >> system;
    return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

/// Runs a program with its output thrown away; `watch` is called now and then meanwhile.
Outcome run(const std::vector<std::string>& words, const std::function<void(pid_t)>& watch = {}) {
    Outcome outcome;
    std::fflush(stdout); // or the child would write it as well
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> arguments;
        for (const std::string& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        if (std::freopen("/dev/null", "w", stdout) != nullptr &&
            std::freopen("/dev/null", "w", stderr) != nullptr) {
            execvp(arguments[0], arguments.data());
        }
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    while (child > 0 && watch && wait4(child, &status, WNOHANG, &usage) == 0) {
        watch(child);
        usleep(10'000);
    }
    if (child < 0 || (!watch && wait4(child, &status, 0, &usage) != child)) {
        return outcome;
    }
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
    };
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128;
    outcome.processor_seconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    outcome.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    outcome.megabytes = static_cast<double>(usage.ru_maxrss) / 1024;
    return outcome;
}

/// Processor time of formatting all coordinates and normals of the stream into memory.
double format_seconds(const fs::path& stream) {
    std::ifstream in(stream);
    std::vector<double> numbers;
    std::string line;
    double sum = 0;
    std::vector<char> memory(std::size_t{1} << 20);
    const auto format_all = [&] {
        const std::clock_t begin = std::clock();
        char* out = memory.data();
        for (const double number : numbers) {
            if (memory.data() + memory.size() - out < 32) {
                out = memory.data();
            }
            out = std::to_chars(out, out + 24, number, std::chars_format::general, 9).ptr;
            *out++ = ',';
        }
        sum += static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        numbers.clear();
    };
    while (std::getline(in, line)) {
        if (!line.starts_with("VERT;(") && !line.starts_with("NORM;(")) {
            continue;
        }
        const char* at = line.data() + 6;
        for (int i = 0; i < 3; ++i) {
            while (*at == ' ' || *at == ',') {
                ++at;
            }
            double number = 0;
            at = std::from_chars(at, line.data() + line.size(), number).ptr;
            numbers.push_back(number);
        }
        if (numbers.size() >= 3'000'000) {
            format_all();
        }
    }
    format_all();
    return sum;
}

/// When the phase began, seconds from the start; negative when it never did.
double phase_began(const fs::path& progress, std::string_view phase) {
    std::ifstream in(progress);
    std::string line;
    while (std::getline(in, line)) {
        const auto event = nlohmann::json::parse(line, nullptr, false);
        if (event.is_object() && event.value("event", "") == "phase" &&
            event.value("phase", "") == phase) {
            return event.value("elapsed_s", -1.0);
        }
    }
    return -1;
}

struct Trial {
    double faces = 0;
    Outcome extraction, render;
    double file_megabytes = 0, md5_seconds = 0, format_seconds = 0;
    double reading = 0, building = 0, first_pass = 0; ///< seconds until they have ended
    double built_processor = 0, pass_processor = 0;   ///< seconds until then, of the processor
    /// Of the first pass with two cores that nobody else uses.
    double on_two_cores() const { return built_processor + (pass_processor - built_processor) / 2; }
};

class Trials {
public:
    explicit Trials(fs::path folder)
      : folder_(std::move(folder)) {
        fs::create_directories(folder_ / "home");
        setenv("QORVANE_HOME", (folder_ / "home").c_str(), 1);
    }

    Trial measure(const fs::path& drawing, double faces) {
        const fs::path build = QORVANE_BUILD_DIR;
        const fs::path batch = folder_ / "batch", progress = folder_ / "progress";
        Trial trial;
        trial.faces = faces;
        trial.file_megabytes = static_cast<double>(fs::file_size(drawing)) / (1 << 20);
        trial.md5_seconds = run({"md5sum", drawing.string()}).processor_seconds;
        trial.extraction = run({(build / "omb_bin/qorvane").string(), "extract", drawing.string(),
                                "--batch-folder", batch.string(), "-D", "bks_auto_name_image=1",
                                "-D", "sks_auto_image_folder=" + folder_.string(), "-D",
                                "sks_auto_image_name=trial", "-D", "iks_max_render_passes=1"});
        trial.format_seconds = format_seconds(batch / "batch_file.txt");
        std::ofstream(progress, std::ios::trunc).close();
        setenv("QORVANE_PROGRESS", progress.c_str(), 1);
        trial.render = run({(build / "OMB_BATCH/KestraBatch64").string(),
                            (batch / "qor_render_params.txt").string()},
                           [&](pid_t process) {
                               if (phase_began(progress, "saving") >= 0) {
                                   return;
                               }
                               trial.pass_processor = processor_seconds(process);
                               if (phase_began(progress, "rendering") < 0) {
                                   trial.built_processor = trial.pass_processor;
                               }
                           });
        unsetenv("QORVANE_PROGRESS");
        trial.reading = phase_began(progress, "building");
        trial.building = phase_began(progress, "rendering");
        trial.first_pass = phase_began(progress, "saving");
        fs::remove_all(batch);
        return trial;
    }

    void require(bool holds, const std::string& what) {
        fmt::print("{} {}\n", holds ? "  held  " : "  BROKEN", what);
        broken_ = broken_ || !holds;
    }
    bool is_broken() const { return broken_; }

private:
    fs::path folder_;
    bool broken_ = false;
};

void tell(const char* name, const Trial& t) {
    fmt::print("{} {:.0f} faces, file {:.0f} MB\n", name, t.faces, t.file_megabytes);
    fmt::print("  extraction {:.2f} s of the processor, {:.2f} s by the clock, {:.0f} MB; md5sum "
               "{:.2f} s, formatting {:.2f} s\n",
               t.extraction.processor_seconds, t.extraction.seconds, t.extraction.megabytes,
               t.md5_seconds, t.format_seconds);
    fmt::print("  batch process: read after {:.2f} s, built after {:.2f} s, first pass after "
               "{:.2f} s; {:.0f} MB; of the processor {:.2f} s until built, {:.2f} s until the "
               "first pass\n",
               t.reading, t.building, t.first_pass, t.render.megabytes, t.built_processor,
               t.pass_processor);
}

void check(Trials& trials, const Trial& t, double most_megabytes) {
    trials.require(t.extraction.status == 0 && t.render.status == 0, "both programs ended well");
    const double limit = 3 * t.format_seconds + 5 * t.md5_seconds;
    trials.require(t.extraction.processor_seconds < limit + 0.1,
                   fmt::format("extraction: {:.2f} s, limit {:.2f} s",
                               t.extraction.processor_seconds, limit + 0.1));
    trials.require(t.first_pass > 0 && std::min(t.first_pass, t.on_two_cores()) < 12,
                   fmt::format("first pass after {:.2f} s by the clock, {:.2f} s on two free "
                               "cores, limit 12 s",
                               t.first_pass, t.on_two_cores()));
    trials.require(t.render.megabytes < most_megabytes,
                   fmt::format("batch process: {:.0f} MB, limit {:.0f} MB", t.render.megabytes,
                               most_megabytes));
    if (t.file_megabytes > 100) { // below, the program's own size counts for more
        trials.require(t.extraction.megabytes < 4 * t.file_megabytes,
                       fmt::format("extraction: {:.2f} times the memory of the file, limit 4",
                                   t.extraction.megabytes / t.file_megabytes));
    }
}

int measure_all(Trials& trials, const fs::path& folder, bool quick, const std::string& plot) {
    scale::Curve extraction{"extraction, processor", "#1b6ca8", {}},
        batch{"batch process until its scene is built, processor", "#c8553d", {}};
    std::vector<Trial> done;
    for (const std::int64_t faces : {20'000, 60'000, 200'000, 600'000, 2'000'000}) {
        if (quick && faces > 200'000) {
            break;
        }
        const fs::path drawing = folder / "distinct.dxf";
        scale::write_distinct(drawing, faces);
        const Trial t = trials.measure(drawing, static_cast<double>(faces));
        tell("different", t);
        check(trials, t, 2500);
        extraction.points.emplace_back(t.faces, t.extraction.processor_seconds);
        batch.points.emplace_back(t.faces, std::max(t.built_processor, 1e-2));
        done.push_back(t);
        fs::remove(drawing);
    }
    for (std::size_t i = 2; i < done.size(); ++i) {
        const double ratio =
            done[i].extraction.processor_seconds / done[i - 2].extraction.processor_seconds;
        trials.require(ratio < 11, fmt::format("from {:.0f} to {:.0f} faces: extraction {:.2f} "
                                               "times the time, limit 11",
                                               done[i - 2].faces, done[i].faces, ratio));
    }
    const fs::path drawing = folder / "inserts.dxf";
    const std::int64_t inserts = quick ? 2'000 : 20'000;
    scale::write_inserts(drawing, inserts);
    const Trial t = trials.measure(drawing, static_cast<double>(inserts * 100));
    tell("inserts", t);
    check(trials, t, 600);
    fs::remove(drawing);
    if (!plot.empty()) {
        std::ofstream(plot, std::ios::binary) << scale::growth_plot({extraction, batch});
    }
    return trials.is_broken() ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    std::string plot;
    fs::path folder = fs::temp_directory_path() / fmt::format("qorvane-scale-{}", getpid());
    bool quick = false;
    const std::vector<std::string_view> words(argv + 1, argv + argc);
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--quick") {
            quick = true;
        } else if (words[i] == "--plot" && i + 1 < words.size()) {
            plot = words[++i];
        } else {
            fmt::print(stderr, "usage: scale_trials [--plot FILE.svg] [--quick]\n");
            return 2;
        }
    }
    try {
        Trials trials(folder);
        const int result = measure_all(trials, folder, quick, plot);
        fs::remove_all(folder);
        return result;
    } catch (const std::exception& error) {
        fmt::print(stderr, "scale_trials: {}\n", error.what());
        return 1;
    }
}
