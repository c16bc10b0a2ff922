// The run: read, describe, render, save, and tell.
#include "KestraBatch/run_batch.h"

#include "KestraBatch/batch_folder.h"
#include "KestraBatch/command_words.h"
#include "KestraBatch/render_job.h"
#include "KestraBatch/renderer_scene.h"
#include "omb/globals/globals.h"
#include "renderer/denoise.h"
#include "renderer/renderer.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <new>

namespace KestraBatch {

namespace {

constexpr std::string_view usage_text =
    "usage: KestraBatch64 PARAMETER_FILE\n"
    "       KestraBatch64 WORD:ARGUMENT\n"
    "Renders the batch folder that the parameter file describes and saves the picture, or runs\n"
    "the dialog of a command word.\n"
    "  -h, --help     this text\n"
    "  -V, --version  the program's version\n"
    "QORVANE_PROGRESS=FILE in the environment sends progress there, a JSON object a line.";

constexpr int interrupt_signal = 2;

class BatchRunner {
public:
    BatchRunner(cl_batch_output& out, const BatchRun& run)
      : progress_(out)
      , run_(run) {}

    ExitCode render(const std::string& params_file) {
        progress_.start(run_.program_version);
        std::string problem;
        ExitCode code = ExitCode::failed;
        try {
            code = work(params_file);
            problem = code == ExitCode::done ? "" : "stopped as asked";
        } catch (const ReadError& error) {
            code = error.code();
            problem = error.what();
        } catch (const StreamCancelled& error) {
            code = stop_code();
            problem = error.what();
        } catch (const std::bad_alloc&) {
            code = ExitCode::limit;
            problem = params_file + ": not enough memory for this scene";
        } catch (const std::exception& error) {
            problem = params_file + ": " + error.what();
        }
        tell_warnings();
        progress_.end(code, problem, saved_);
        return code;
    }

private:
    ExitCode work(const std::string& params_file) {
        progress_.phase("reading");
        BatchFolder folder =
            read_batch_folder(params_file, warnings_, [this](std::uint64_t) { return !stopped(); });
        RenderJob job = plan_render(folder, run_.threads, warnings_);
        if (!run_.no_window.empty()) {
            warnings_.add("no-window", "rendered without a window: " + run_.no_window);
        }
        progress_.phase("building");
        renderer::Scene scene = build(folder, job);
        if (job.outputs.empty()) {
            warnings_.add("no-image", "the settings name no picture to save "
                                      "(bks_auto_name_image is off); nothing is rendered");
            return ExitCode::done;
        }
        renderer::Renderer renderer(scene, job.settings.threads);
        scene = {}; // the renderer has its own
        tell_warnings();
        return render_and_save(renderer, folder, job);
    }

    renderer::Scene build(BatchFolder& folder, const RenderJob& job) {
        const auto materials = folder.params.resolve(folder.params.material_folder);
        const SceneDescription description =
            describe_scene(folder.model, folder.view, folder.document, materials, warnings_);
        SceneStatistics statistics;
        const double aspect = static_cast<double>(job.settings.width) / job.settings.height;
        renderer::Scene scene =
            build_renderer_scene(folder.model, description, aspect, statistics, warnings_);
        folder.model = {};
        return scene;
    }

    ExitCode render_and_save(renderer::Renderer& renderer, const BatchFolder& folder,
                             RenderJob& job) {
        progress_.phase("rendering");
        const double began = progress_.elapsed_seconds();
        renderer::Film film;
        const renderer::Outcome outcome =
            renderer.render(job.settings, film, [this](const renderer::Progress& p) {
                progress_.progress("rendering", p.fraction, p.pass, p.passes);
                return !stopped();
            });
        const bool cancelled = outcome == renderer::Outcome::cancelled;
        if (film.width > 0 && !film.radiance.empty()) {
            progress_.phase("saving");
            add_metadata(job, folder, run_.program_version, film.passes,
                         progress_.elapsed_seconds() - began);
            save(film, job);
        }
        return cancelled ? stop_code() : ExitCode::done;
    }

    /// Pictures to look at lose their grain; files of linear light keep what was measured.
    void save(const renderer::Film& film, const RenderJob& job) {
        renderer::Film clean;
        for (const auto& path : job.outputs) {
            const bool toned = is_toned(path);
            if (toned && clean.radiance.empty()) {
                clean = film;
                renderer::denoise(clean);
            }
            try {
                renderer::save_image(path, toned ? clean : film, job.tone, job.image);
            } catch (const std::runtime_error& error) {
                throw ReadError(ExitCode::output_unwritable, error.what());
            }
            saved_.push_back(path.string());
            progress_.image(path.string());
        }
    }

    /// Warnings go out as soon as a step has ended, each once.
    void tell_warnings() {
        for (; told_ < warnings_.items().size(); ++told_) {
            progress_.warning(warnings_.items()[told_]);
        }
        if (warnings_.dropped() > 0 && !told_dropped_) {
            told_dropped_ = true;
            progress_.warning(
                {"more-warnings", std::to_string(warnings_.dropped()) + " more warnings"});
        }
    }

    bool stopped() const {
        if (run_.take_messages) {
            run_.take_messages();
        }
        return run_.stop && run_.stop->load() != 0;
    }
    ExitCode stop_code() const {
        const int signal = run_.stop ? run_.stop->load() : interrupt_signal;
        return signal == interrupt_signal ? ExitCode::interrupted : ExitCode::terminated;
    }

    ProgressReporter progress_;
    const BatchRun& run_;
    WarningList warnings_;
    std::size_t told_ = 0;
    bool told_dropped_ = false;
    std::vector<std::string> saved_;
};

int run_guarded_command(const Command& command, cl_batch_output& out, const BatchRun& run) {
    try {
        return static_cast<int>(run_command(command, out, run.next_event));
    } catch (const std::exception& error) {
        out.error(command.word + ": " + error.what());
        return static_cast<int>(ExitCode::failed);
    }
}

} // namespace

int run_batch(const std::vector<std::string>& arguments, cl_batch_output& out,
              const BatchRun& run) {
    const std::string first = arguments.empty() ? "" : arguments.front();
    if (first == "-h" || first == "--help") {
        out.message(std::string(usage_text));
        return static_cast<int>(ExitCode::done);
    }
    if (first == "-V" || first == "--version") {
        out.message(run.program_version);
        return static_cast<int>(ExitCode::done);
    }
    if (const auto command = parse_command(arguments)) {
        return run_guarded_command(*command, out, run);
    }
    if (arguments.size() != 1 || first.empty() || first.front() == '-') {
        out.error(std::string(usage_text));
        return static_cast<int>(ExitCode::usage);
    }
    return static_cast<int>(BatchRunner(out, run).render(first));
}

} // namespace KestraBatch
