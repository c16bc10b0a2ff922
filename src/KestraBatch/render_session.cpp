// A render on a thread of its own. The owner's thread reads the settings and steers; the session's
// reads the geometry, builds and renders. They meet in what `mutex` guards, in the render's
// control, and in finished pictures that nobody changes.
#include "KestraBatch/render_session.h"

#include "KestraBatch/renderer_scene.h"
#include "KestraBatch/saved_picture.h"
#include "KestraBatch/scene_decals.h"
#include "KestraBatch/scene_lights.h"
#include "KestraBatch/scene_plants.h"
#include "KestraBatch/stream_model.h"
#include "KestraBatch/stream_reader.h"
#include "platform/files.h"
#include "platform/thread_priority.h"
#include "renderer/renderer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

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

/// Most pixels of a draft that is made in haste, when a render is stopped before it has any light.
constexpr double hasty_pixels = 65536;

/// Each pixel as a square of `factor` pixels. It has no passes: that marks it as a draft.
renderer::ChannelFilm enlarged(const renderer::ChannelFilm& small, int factor, int width,
                               int height) {
    renderer::ChannelFilm large;
    const auto grow = [&](const auto& from, auto& to) {
        to.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        auto next = to.begin();
        for (int y = 0; y < height; ++y) {
            const auto row = from.begin() + std::ptrdiff_t{y / factor} * small.film.width;
            for (int x = 0; x < width; ++x) {
                *next++ = row[x / factor];
            }
        }
    };
    renderer::Film& film = large.film;
    film.width = width;
    film.height = height;
    grow(small.film.radiance, film.radiance);
    grow(small.film.alpha, film.alpha);
    grow(small.film.albedo, film.albedo);
    grow(small.film.normal, film.normal);
    grow(small.film.depth, film.depth);
    grow(small.film.variance, film.variance);
    for (const renderer::LightChannel& channel : small.channels) {
        large.channels.push_back({channel.name, {}, channel.number});
        grow(channel.radiance, large.channels.back().radiance);
    }
    return large;
}

bool is_black(const renderer::Rgb& light) { return light.x == 0 && light.y == 0 && light.z == 0; }

/// Pixels that no path has reached yet are taken from the draft of the same size.
void fill_gaps(renderer::ChannelFilm& picture, const renderer::ChannelFilm& draft) {
    renderer::Film& film = picture.film;
    for (std::size_t i = 0; i < film.radiance.size(); ++i) {
        if (film.alpha[i] != 0 || film.variance[i] != 0 || !is_black(film.radiance[i])) {
            continue;
        }
        film.radiance[i] = draft.film.radiance[i];
        film.alpha[i] = draft.film.alpha[i];
        film.albedo[i] = draft.film.albedo[i];
        film.normal[i] = draft.film.normal[i];
        film.depth[i] = draft.film.depth[i];
        film.variance[i] = draft.film.variance[i];
        for (std::size_t c = 0; c < std::min(picture.channels.size(), draft.channels.size()); ++c) {
            picture.channels[c].radiance[i] = draft.channels[c].radiance[i];
        }
    }
}

/// Blocks that stand in several places are kept once, unless tests and measurements want it
/// otherwise.
bool wants_copies() { return platform::environment("QORVANE_COPIES") != "off"; }

} // namespace

struct RenderSession::Impl {
    std::filesystem::path params_file;
    std::string program_version;
    int threads = 0;
    bool outputs_only = false;
    bool drafts = false;
    std::atomic<bool> abandoned = false; ///< nobody wants the picture of this render any more

    // written by the owner before the thread begins, and by the thread before it renders
    BatchFolder folder;
    RenderJob job;
    WarningList warnings;
    std::unique_ptr<renderer::Renderer> renderer;
    std::thread thread;
    std::thread before; ///< has ended but for its last steps; `thread` joins it
    std::vector<renderer::Renderer::SharedPicture> old_pictures; ///< for the thread to let go

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
    renderer::Renderer::SharedPicture render_draft(int divisor, const std::function<bool()>& go_on);
    renderer::Renderer::SharedPicture completed(renderer::Renderer::SharedPicture picture);
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
    abandoned = true;
    control->stop();
    for (std::thread* one : {&thread, &before}) {
        if (one->joinable()) {
            one->join();
        }
    }
    abandoned = false;
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
    if (thread.joinable() && !before.joinable()) {
        before = std::move(thread); // it gives way to others: the owner must not wait for it
    }
    try {
        thread = std::thread([this, go_on] {
            if (before.joinable()) {
                before.join();
            }
            work(go_on);
        });
    } catch (const std::system_error& error) {
        end(SessionState::failed, {ExitCode::limit, std::string("no thread: ") + error.what()});
    }
}

// ---- on the session's thread ----

void RenderSession::Impl::work(bool go_on) {
    if (drafts) { // who looks on comes first; the renderer's threads are started by this one
        platform::give_way();
    }
    old_pictures.clear();
    try {
        if (!go_on) {
            renderer.reset(); // takes a while: the owner's thread must not
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
    if (wants_copies()) {
        model.find_copies();
    }
    const auto stream = folder.params.resolve(folder.params.geometry_file);
    std::error_code unknown;
    if (const auto bytes = std::filesystem::file_size(stream, unknown); !unknown) {
        model.expect(bytes);
    }
    read_stream_file(stream, model, warnings, {},
                     [this](std::uint64_t) { return !control->stopped(); });
    publish_warnings(false);
    enter(SessionState::building);
    const auto materials = folder.params.resolve(folder.params.material_folder);
    SceneDescription description =
        describe_scene(model, folder.view, folder.document, job.light, materials, warnings);
    add_lights(model, folder.params, folder.document.m_Render.m_ArtificialLighting, description,
               warnings);
    SceneStatistics statistics;
    const double aspect = static_cast<double>(job.settings.width) / job.settings.height;
    renderer::Scene scene = build_renderer_scene(model, description, aspect, statistics, warnings);
    const auto beside = folder.params.resolve(folder.params.geometry_file);
    add_plants(model, description,
               {beside.parent_path() / "Plants", beside.string(), job.plants, TsGrowPlant}, scene,
               warnings);
    add_decals(model, description, {beside.parent_path() / "Decals", beside.string()}, scene,
               warnings);
    model = {};
    job.settings.clamp = lamp_clamp(scene, job.settings.clamp);
    job.weights = plan_channels(job.channels, scene, job.settings.light);
    if (!outputs_only || !job.outputs.empty()) {
        renderer = std::make_unique<renderer::Renderer>(scene, job.settings.threads);
        for (const std::string& problem : renderer->texture_problems()) {
            warnings.add("picture-unreadable", problem);
        }
    }
}

void RenderSession::Impl::render(bool go_on) {
    renderer::Renderer::SharedPicture newest;
    renderer::RenderSettings settings = job.settings;
    {
        const std::lock_guard lock(mutex);
        newest = go_on && picture && picture->film.passes > 0 ? picture : nullptr;
        settings.passes = passes_asked;
        settings.max_seconds = time_limit = go_on ? 0 : job.settings.max_seconds;
        status.state = control->stopped() ? status.state : SessionState::rendering;
        status.passes = passes_asked + control->added_passes();
    }
    if (drafts && !go_on) {
        render_drafts();
    }
    Outcome outcome = Outcome::cancelled;
    do {
        if (control->stopped()) { // before there was any light
            publish(completed(newest));
            break;
        }
        settings.resume = newest != nullptr;
        outcome = renderer->render(
            settings, newest, *control,
            [this](const renderer::Progress& progress) {
                take_progress(progress);
                return true;
            },
            [this](const renderer::Renderer::SharedPicture& finished) { publish(finished); });
        if (outcome != Outcome::finished && (!newest || newest->film.passes == 0)) {
            newest = completed(newest);
        }
        publish(newest);
    } while (!end_of_render(outcome));
    if (outcome == Outcome::cancelled) {
        end(SessionState::stopped, {ExitCode::terminated, "stopped as asked"});
    }
}

/// One path for each square of `divisor` pixels; null when `go_on` ended it.
renderer::Renderer::SharedPicture
RenderSession::Impl::render_draft(int divisor, const std::function<bool()>& go_on) {
    renderer::RenderSettings settings = job.settings;
    settings.width = (settings.width + divisor - 1) / divisor;
    settings.height = (settings.height + divisor - 1) / divisor;
    settings.passes = settings.samples_per_pass = 1;
    settings.max_seconds = 0;
    settings.resume = false;
    renderer::RenderControl own; // passes that were added are not the draft's
    renderer::Renderer::SharedPicture small;
    const Outcome outcome =
        renderer->render(settings, small, own, [&](const renderer::Progress&) { return go_on(); });
    if (outcome != Outcome::finished || !small) {
        return nullptr;
    }
    return std::make_shared<const renderer::ChannelFilm>(
        enlarged(*small, divisor, job.settings.width, job.settings.height));
}

/// Two quick looks, a sixteenth and a quarter of the pixels.
void RenderSession::Impl::render_drafts() {
    for (const int divisor : {4, 2}) {
        auto newer = render_draft(divisor, [this] { return !control->stopped(); });
        if (!newer) {
            return;
        }
        const std::lock_guard lock(mutex);
        draft.swap(newer);
        ++status.picture;
    }
}

/// A render that ended within its first pass still leaves a whole picture: a draft stands in for
/// what is not there, one that was shown or one that is made now, in a fraction of a second.
renderer::Renderer::SharedPicture
RenderSession::Impl::completed(renderer::Renderer::SharedPicture picture_so_far) {
    if (abandoned || (picture_so_far && picture_so_far->film.passes > 0)) {
        return picture_so_far;
    }
    renderer::Renderer::SharedPicture coarse;
    {
        const std::lock_guard lock(mutex);
        coarse = draft;
    }
    if (!coarse) {
        const double pixels = static_cast<double>(job.settings.width) * job.settings.height;
        const int divisor =
            std::max(4, static_cast<int>(std::ceil(std::sqrt(pixels / hasty_pixels))));
        coarse = render_draft(divisor, [this] { return !abandoned; });
    }
    if (!coarse) {
        return picture_so_far;
    }
    warnings.add("draft", "the render ended before its first pass: what was not rendered yet is a "
                          "coarse draft");
    publish_warnings(true);
    if (!picture_so_far) {
        return coarse;
    }
    auto whole = std::make_shared<renderer::ChannelFilm>(*picture_so_far);
    fill_gaps(*whole, *coarse);
    return whole;
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
    renderer::Renderer::SharedPicture before, no_draft; // let go when the lock is
    const std::lock_guard lock(mutex);
    if (newest && newest != picture) {
        before = std::exchange(picture, newest);
        no_draft = std::move(draft);
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
    if (!wait(0)) {
        s.stop_and_join();
    }
    s.warnings = WarningList();
    {
        const std::lock_guard lock(s.mutex);
        const auto region = s.control->region();
        s.control = std::make_shared<renderer::RenderControl>();
        s.control->set_region(region);
        const std::uint64_t number = s.status.picture;
        s.status = {};
        s.status.picture = number;
        s.old_pictures = {std::move(s.picture), std::move(s.draft)};
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
        if (!s.picture || !s.renderer) {
            return; // nothing to go on from
        }
        const auto region = s.control->region();
        s.control = std::make_shared<renderer::RenderControl>();
        s.control->set_region(region);
        const int whole = s.picture->film.passes;
        s.passes_asked = whole > 0 ? whole : passes; // a draft is rendered from the start
        s.control->add_passes(whole > 0 ? passes : 0);
        s.seconds_before = s.status.elapsed_seconds;
        s.fraction_before = static_cast<double>(whole) / (whole + passes);
        s.status.problem.clear();
        s.status.code = ExitCode::done;
        s.status.state = SessionState::rendering;
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
    if (image.picture.film.passes < 1) {
        job.image.metadata.emplace_back("Draft", "in part: no pass was finished");
    }
    image.weights = weights;
    image.tone = tone;
    image.metadata = job.image.metadata;
    return save_picture(path, image, job.image, error);
}

} // namespace KestraBatch
