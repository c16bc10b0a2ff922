// A render on a thread of its own. The owner's thread reads the settings and steers; the session's
// reads the geometry, builds and renders. They meet in what `mutex` guards, in the render's
// control, and in finished pictures that nobody changes.
#include "KestraBatch/render_session.h"

#include "KestraBatch/renderer_scene.h"
#include "KestraBatch/saved_picture.h"
#include "KestraBatch/stream_model.h"
#include "KestraBatch/stream_reader.h"
#include "renderer/renderer.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <thread>

namespace KestraBatch {

namespace {

using renderer::Outcome;

/// Why a session ended without success, as a status tells it.
struct Problem {
    ExitCode code = ExitCode::failed;
    std::string text;
};

/// The problem that is being thrown. Called in a handler.
Problem current_problem(const std::filesystem::path& file) {
    try {
        throw;
    } catch (const ReadError& error) {
        return {error.code(), error.what()};
    } catch (const std::bad_alloc&) {
        return {ExitCode::limit, file.string() + ": not enough memory for this scene"};
    } catch (const std::exception& error) {
        return {ExitCode::failed, file.string() + ": " + error.what()};
    }
}

/// Each pixel as a square of `factor` pixels.
renderer::Film enlarged(const renderer::Film& small, int factor, int width, int height) {
    renderer::Film film;
    film.width = width;
    film.height = height;
    const auto n = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const auto grow = [&](const auto& from, auto& to) {
        to.resize(n);
        for (std::size_t i = 0; i < n; ++i) {
            const int x = static_cast<int>(i) % width / factor;
            const int y = static_cast<int>(i) / width / factor;
            to[i] = from[static_cast<std::size_t>(y) * static_cast<std::size_t>(small.width) +
                         static_cast<std::size_t>(x)];
        }
    };
    grow(small.radiance, film.radiance);
    grow(small.alpha, film.alpha);
    grow(small.albedo, film.albedo);
    grow(small.normal, film.normal);
    grow(small.depth, film.depth);
    grow(small.variance, film.variance);
    return film;
}

} // namespace

struct RenderSession::Impl {
    std::filesystem::path params_file;
    std::string program_version;
    int threads = 0;
    bool outputs_only = false;
    bool drafts = false;

    // written by the owner before the thread begins, and by the thread before it renders
    BatchFolder folder;
    RenderJob job;
    WarningList warnings;
    std::unique_ptr<renderer::Renderer> renderer;
    std::thread thread;

    mutable std::mutex mutex; ///< of all below
    mutable std::condition_variable ended;
    bool running = false;
    SessionStatus status;
    std::shared_ptr<renderer::RenderControl> control = std::make_shared<renderer::RenderControl>();
    renderer::Renderer::SharedPicture picture;
    renderer::Renderer::SharedPicture draft; ///< shown while there is no picture
    int passes_asked = 0;                    ///< without those that the control has added
    double time_limit = 0;                   ///< seconds, 0 for none
    double seconds_before = 0;               ///< of the renders that this one goes on from
    double fraction_before = 0;

    // ---- on the owner's thread ----
    void stop_and_join();
    bool read_settings();
    void launch(bool go_on);

    // ---- on the session's thread ----
    void work(bool go_on);
    void build();
    void render(bool go_on);
    void render_drafts();
    bool end_of_render(Outcome outcome);
    void take_progress(const renderer::Progress& progress);
    void publish(const renderer::Renderer::SharedPicture& newest);

    // ---- on either ----
    void enter(SessionState state);
    void end(SessionState state, const Problem& problem);
    void publish_warnings(bool last);
};

// ---- on either thread ----

void RenderSession::Impl::enter(SessionState state) {
    const std::lock_guard lock(mutex);
    status.state = state;
}

void RenderSession::Impl::end(SessionState state, const Problem& problem) {
    const std::lock_guard lock(mutex);
    status.state = state;
    status.problem = problem.text;
    status.code = problem.code;
    status.eta_seconds = state == SessionState::finished ? 0 : -1;
    running = false;
    ended.notify_all();
}

/// Warnings go out as soon as a step has ended; how many there were beyond the limit comes last.
void RenderSession::Impl::publish_warnings(bool last) {
    const std::lock_guard lock(mutex);
    status.warnings = warnings.items();
    if (last && warnings.dropped() > 0) {
        status.warnings.push_back(
            {"more-warnings", std::to_string(warnings.dropped()) + " more warnings"});
    }
}

// ---- on the owner's thread ----

void RenderSession::Impl::stop_and_join() {
    control->stop();
    if (thread.joinable()) {
        thread.join();
    }
}

/// What meets the globals. False when it failed, which the status then tells.
bool RenderSession::Impl::read_settings() {
    try {
        folder = read_batch_folder(params_file, warnings);
        job = plan_render(folder, threads, warnings);
        publish_warnings(false);
        return true;
    } catch (...) {
        const Problem problem = current_problem(params_file);
        publish_warnings(true);
        end(SessionState::failed, problem);
        return false;
    }
}

void RenderSession::Impl::launch(bool go_on) {
    {
        const std::lock_guard lock(mutex);
        running = true;
    }
    try {
        thread = std::thread([this, go_on] { work(go_on); });
    } catch (const std::system_error& error) {
        end(SessionState::failed, {ExitCode::limit, std::string("no thread: ") + error.what()});
    }
}

// ---- on the session's thread ----

void RenderSession::Impl::work(bool go_on) {
    try {
        if (!go_on) {
            build();
            publish_warnings(true);
        }
        if (!go_on && outputs_only && job.outputs.empty()) {
            end(SessionState::finished, {ExitCode::done, ""});
        } else {
            render(go_on);
        }
    } catch (const StreamCancelled& error) {
        publish_warnings(true);
        end(SessionState::stopped, {ExitCode::terminated, error.what()});
    } catch (...) {
        const Problem problem = current_problem(params_file);
        publish_warnings(true);
        end(SessionState::failed, problem);
    }
}

void RenderSession::Impl::build() {
    StreamModel model;
    read_stream_file(folder.params.resolve(folder.params.geometry_file), model, warnings, {},
                     [this](std::uint64_t) { return !control->stopped(); });
    publish_warnings(false);
    enter(SessionState::building);
    const auto materials = folder.params.resolve(folder.params.material_folder);
    const SceneDescription description =
        describe_scene(model, folder.view, folder.document, job.light, materials, warnings);
    SceneStatistics statistics;
    const double aspect = static_cast<double>(job.settings.width) / job.settings.height;
    renderer::Scene scene = build_renderer_scene(model, description, aspect, statistics, warnings);
    model = {};
    job.weights = plan_channels(job.channels, scene, job.settings.light);
    if (!outputs_only || !job.outputs.empty()) {
        renderer = std::make_unique<renderer::Renderer>(scene, job.settings.threads);
    }
}

void RenderSession::Impl::render(bool go_on) {
    renderer::Renderer::SharedPicture newest;
    renderer::RenderSettings settings = job.settings;
    {
        const std::lock_guard lock(mutex);
        newest = go_on ? picture : nullptr;
        settings.passes = passes_asked;
        settings.max_seconds = time_limit = go_on ? 0 : job.settings.max_seconds;
        status.state = control->stopped() ? status.state : SessionState::rendering;
        status.passes = passes_asked + control->added_passes();
    }
    if (drafts && !newest) {
        render_drafts();
    }
    Outcome outcome = Outcome::cancelled;
    do {
        if (control->stopped()) {
            break; // before there was any light
        }
        settings.resume = newest != nullptr;
        outcome = renderer->render(
            settings, newest, *control,
            [this](const renderer::Progress& progress) {
                take_progress(progress);
                return true;
            },
            [this](const renderer::Renderer::SharedPicture& finished) { publish(finished); });
        publish(newest);
    } while (!end_of_render(outcome));
    if (outcome == Outcome::cancelled) {
        end(SessionState::stopped, {ExitCode::terminated, "stopped as asked"});
    }
}

/// Two quick looks, a sixteenth and a quarter of the pixels, one path each.
void RenderSession::Impl::render_drafts() {
    for (const int divisor : {4, 2}) {
        renderer::RenderSettings settings = job.settings;
        settings.width = (settings.width + divisor - 1) / divisor;
        settings.height = (settings.height + divisor - 1) / divisor;
        settings.passes = settings.samples_per_pass = 1;
        settings.max_seconds = 0;
        settings.light.channels.clear();
        renderer::Film small;
        const Outcome outcome = renderer->render(
            settings, small, [this](const renderer::Progress&) { return !control->stopped(); });
        if (outcome != Outcome::finished) {
            return;
        }
        auto large = std::make_shared<renderer::ChannelFilm>();
        large->film = enlarged(small, divisor, job.settings.width, job.settings.height);
        const std::lock_guard lock(mutex);
        draft = std::move(large);
        ++status.picture;
    }
}

/// False when passes were added in the last moment. A cancelled render is ended by the caller.
bool RenderSession::Impl::end_of_render(Outcome outcome) {
    if (outcome == Outcome::cancelled) {
        return true;
    }
    const std::lock_guard lock(mutex);
    const int asked = passes_asked + control->added_passes();
    if (outcome == Outcome::finished && picture->film.passes < asked && !control->stopped()) {
        return false;
    }
    status.state = SessionState::finished;
    status.fraction = 1;
    status.eta_seconds = 0;
    running = false;
    ended.notify_all();
    return true;
}

void RenderSession::Impl::take_progress(const renderer::Progress& progress) {
    const std::lock_guard lock(mutex);
    const double by_time = time_limit > 0 ? progress.elapsed_seconds / time_limit : 0;
    status.pass = progress.pass;
    status.passes = progress.passes;
    status.fraction = std::max(progress.fraction, std::min(by_time, 1.0));
    status.elapsed_seconds = seconds_before + progress.elapsed_seconds;
    const double gained = status.fraction - fraction_before;
    const bool known = gained > 0.002 || progress.elapsed_seconds > 2;
    status.eta_seconds =
        known && gained > 0 ? progress.elapsed_seconds * (1 - status.fraction) / gained : -1;
}

void RenderSession::Impl::publish(const renderer::Renderer::SharedPicture& newest) {
    const std::lock_guard lock(mutex);
    if (newest && newest != picture) {
        picture = newest;
        draft = nullptr;
        ++status.picture;
        status.pass = newest->film.passes;
    }
}

// ---- the public face ----

RenderSession::RenderSession(std::filesystem::path params_file, std::string program_version,
                             int threads)
  : impl_(std::make_unique<Impl>()) {
    impl_->params_file = std::move(params_file);
    impl_->program_version = std::move(program_version);
    impl_->threads = threads;
}

RenderSession::~RenderSession() { impl_->stop_and_join(); }

void RenderSession::show_drafts() { impl_->drafts = true; }

void RenderSession::skip_render_without_outputs() { impl_->outputs_only = true; }

void RenderSession::start() {
    Impl& s = *impl_;
    s.stop_and_join();
    s.renderer.reset();
    s.warnings = WarningList();
    {
        const std::lock_guard lock(s.mutex);
        const auto region = s.control->region();
        s.control = std::make_shared<renderer::RenderControl>();
        s.control->set_region(region);
        const std::uint64_t number = s.status.picture;
        s.status = {};
        s.status.picture = number;
        s.picture = s.draft = nullptr;
        s.seconds_before = s.fraction_before = 0;
    }
    if (!s.read_settings()) {
        return;
    }
    s.passes_asked = s.job.settings.passes;
    s.launch(false);
}

void RenderSession::pause() { impl_->control->pause(); }

void RenderSession::resume() { impl_->control->resume(); }

void RenderSession::stop() { impl_->control->stop(); }

void RenderSession::set_region(PictureRegion region) {
    impl_->control->set_region({region.x, region.y, region.width, region.height});
}

void RenderSession::add_passes(int passes) {
    Impl& s = *impl_;
    if (passes < 1) {
        return;
    }
    {
        const std::lock_guard lock(s.mutex);
        if (s.running) {
            s.control->add_passes(passes);
            return;
        }
        if (!s.picture || s.picture->film.passes < 1 || !s.renderer) {
            return; // nothing to go on from
        }
        const auto region = s.control->region();
        s.control = std::make_shared<renderer::RenderControl>();
        s.control->set_region(region);
        s.passes_asked = s.picture->film.passes;
        s.control->add_passes(passes);
        s.seconds_before = s.status.elapsed_seconds;
        s.fraction_before = static_cast<double>(s.passes_asked) / (s.passes_asked + passes);
        s.status.problem.clear();
        s.status.code = ExitCode::done;
        s.status.state = SessionState::rendering;
    }
    if (s.thread.joinable()) {
        s.thread.join(); // it has ended
    }
    s.launch(true);
}

SessionStatus RenderSession::status() const {
    const std::lock_guard lock(impl_->mutex);
    SessionStatus status = impl_->status;
    if (status.state == SessionState::rendering && impl_->control->paused()) {
        status.state = SessionState::paused;
    }
    return status;
}

bool RenderSession::take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const {
    renderer::Renderer::SharedPicture newest;
    {
        const std::lock_guard lock(impl_->mutex);
        newest = impl_->picture ? impl_->picture : impl_->draft;
        if (!newest || impl_->status.picture == known) {
            return false;
        }
        known = impl_->status.picture;
    }
    picture = *newest;
    return true;
}

bool RenderSession::wait(double seconds) const {
    const auto patience = std::chrono::duration<double>(std::clamp(seconds, 0.0, 1e7));
    std::unique_lock lock(impl_->mutex);
    return impl_->ended.wait_for(lock, patience, [this] { return !impl_->running; });
}

const RenderJob& RenderSession::job() const { return impl_->job; }

const Parameters& RenderSession::parameters() const { return impl_->folder.params; }

const std::vector<std::string>& RenderSession::changed_settings() const {
    return impl_->folder.changed_settings;
}

bool RenderSession::save(const std::filesystem::path& path, const renderer::ChannelWeights& weights,
                         const renderer::ToneSettings& tone, std::string& error) const {
    renderer::QorImage image;
    std::uint64_t none = 0;
    if (!take_picture(none, image.picture)) {
        error = path.string() + ": there is no picture yet";
        return false;
    }
    RenderJob job = impl_->job;
    add_metadata(job, impl_->folder, impl_->program_version, image.picture.film.passes,
                 status().elapsed_seconds);
    image.weights = weights;
    image.tone = tone;
    image.metadata = job.image.metadata;
    return save_picture(path, image, job.image, error);
}

} // namespace KestraBatch
