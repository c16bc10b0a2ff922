// Pass after pass: what the film holds when, and who gets to see it.
#include "renderer/renderer.h"

#include "renderer/accel.h"
#include "renderer/integrator.h"
#include "renderer/texture.h"
#include "renderer/tile_job.h"

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <stdexcept>

namespace renderer {

namespace {

void check(const RenderSettings& s) {
    constexpr std::int64_t most_pixels = 1 << 28;
    if (s.width < 1 || s.height < 1 || std::int64_t{s.width} * s.height > most_pixels)
        throw std::invalid_argument("render: the picture must have 1 to 268435456 pixels");
    if (s.passes < 1 || s.samples_per_pass < 1 ||
        std::int64_t{s.passes} * s.samples_per_pass > std::int64_t{1} << 31)
        throw std::invalid_argument("render: passes and samples must be at least 1");
    if (s.max_bounces < 0 || s.max_bounces > 1000)
        throw std::invalid_argument("render: bounces must number 0 to 1000");
    if (!(s.filter_radius >= 0 && s.filter_radius <= 16))
        throw std::invalid_argument("render: the filter radius must lie between 0 and 16 pixels");
    if (!(s.max_seconds >= 0) || !(s.clamp >= 0) || !(s.clamp_factor >= 0) || s.threads < 0)
        throw std::invalid_argument("render: time limit, clamp and threads must not be negative");
}

std::size_t pixel_count(const RenderSettings& s) {
    return static_cast<std::size_t>(s.width) * static_cast<std::size_t>(s.height);
}

void clear(ChannelFilm& picture, const RenderSettings& settings) {
    const std::size_t n = pixel_count(settings);
    Film& film = picture.film;
    film.width = settings.width;
    film.height = settings.height;
    film.passes = 0;
    film.radiance.assign(n, {0, 0, 0});
    film.alpha.assign(n, 0.0f);
    film.albedo.assign(n, {0, 0, 0});
    film.normal.assign(n, {0, 0, 0});
    film.depth.assign(n, 0.0f);
    film.variance.assign(n, 0.0f);
    film.samples = 0;
    picture.channels.clear();
    for (const ChannelLabel& label : settings.light.channels)
        picture.channels.push_back({label.name, std::vector<Rgb>(n), label.number});
}

/// True when the picture is one that these settings can go on with.
bool can_go_on(const ChannelFilm& picture, const RenderSettings& settings) {
    const std::size_t n = pixel_count(settings);
    const Film& film = picture.film;
    bool fits = film.passes > 0 && film.width == settings.width && film.height == settings.height &&
                film.radiance.size() == n && film.alpha.size() == n && film.albedo.size() == n &&
                film.normal.size() == n && film.depth.size() == n && film.variance.size() == n &&
                picture.channels.size() == settings.light.channels.size();
    for (const LightChannel& channel : picture.channels)
        fits = fits && channel.radiance.size() == n;
    return fits;
}

/// As many threads as asked for, 0 being all, but not more than this process may use at once.
int usable_threads(int asked) {
    const auto most = static_cast<int>(
        tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism));
    return asked > 0 ? std::min(asked, most) : most;
}

} // namespace

struct Renderer::Impl {
    Scene scene; // without the meshes, which the ray queries hold
    Accel accel;
    int threads;
};

namespace {

Scene without_meshes(const Scene& scene) {
    Scene copy;
    copy.materials = scene.materials;
    copy.lights = scene.lights;
    copy.webs = scene.webs;
    copy.textures = scene.textures;
    copy.decals = scene.decals;
    copy.environment = scene.environment;
    copy.ground = scene.ground;
    copy.camera = scene.camera;
    return copy;
}

} // namespace

Renderer::Renderer(const Scene& scene, int threads)
  : impl_(std::make_unique<Impl>(Impl{without_meshes(scene), Accel(scene), threads})) {}

Renderer::~Renderer() = default;
Renderer::Renderer(Renderer&&) noexcept = default;
Renderer& Renderer::operator=(Renderer&&) noexcept = default;

Outcome Renderer::run(const RenderSettings& settings, ChannelFilm& working, RenderControl& control,
                      const ProgressCallback& progress, const std::function<void()>& pass_done) {
    check(settings);
    const FlushDenormals flush;
    const Integrator integrator(impl_->accel, impl_->scene, settings);
    if (!settings.resume || !can_go_on(working, settings))
        clear(working, settings);
    const int threads = usable_threads(settings.threads > 0 ? settings.threads : impl_->threads);
    // who looks on meanwhile, and mixes, comes first
    tbb::task_arena arena(threads, 1, tbb::task_arena::priority::low);
    TileJob job(integrator, settings, working, control, progress);
    job.set_passes_done(working.film.passes);
    for (int pass = working.film.passes; pass < job.passes_asked(); ++pass) {
        if (!job.run_pass(pass, arena)) {
            if (working.film.passes == 0 && !job.has_pixels())
                working = {};
            return job.outcome();
        }
        working.film.passes = pass + 1;
        working.film.samples = (pass + 1) * settings.samples_per_pass;
        job.set_passes_done(pass + 1);
        pass_done();
        if (!job.report() && pass + 1 < job.passes_asked())
            return job.outcome();
    }
    return Outcome::finished;
}

Outcome Renderer::render(const RenderSettings& settings, Film& film,
                         const ProgressCallback& progress, const PassCallback& pass_done) {
    RenderSettings whole = settings;
    whole.light = {};
    RenderControl control;
    ChannelFilm working; // a pass that is stopped in its midst must leave no trace in the film
    if (settings.resume)
        working.film = film;
    bool whole_passes = can_go_on(working, whole);
    const Outcome outcome = run(whole, working, control, progress, [&] {
        film = working.film;
        whole_passes = true;
        if (pass_done)
            pass_done(film);
    });
    if (!whole_passes && working.film.width > 0)
        film = std::move(working.film);
    return outcome;
}

Outcome Renderer::render(const RenderSettings& settings, SharedPicture& picture,
                         RenderControl& control, const ProgressCallback& progress,
                         const PictureCallback& pass_done) {
    ChannelFilm working;
    if (settings.resume && picture)
        working = *picture;
    bool whole_passes = can_go_on(working, settings);
    const Outcome outcome = run(settings, working, control, progress, [&] {
        picture = std::make_shared<const ChannelFilm>(working);
        whole_passes = true;
        if (pass_done)
            pass_done(picture);
    });
    if (!whole_passes && working.film.width > 0)
        picture = std::make_shared<const ChannelFilm>(std::move(working));
    return outcome;
}

const std::vector<std::string>& Renderer::texture_problems() const {
    return impl_->accel.textures().problems();
}
std::size_t Renderer::triangle_count() const { return impl_->accel.triangle_count(); }
std::size_t Renderer::skipped_triangle_count() const {
    return impl_->accel.skipped_triangle_count();
}

} // namespace renderer
