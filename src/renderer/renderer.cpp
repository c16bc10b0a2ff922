// Passes over tiles: who renders what, when to stop, and what the film holds then.
#include "renderer/renderer.h"

#include "renderer/accel.h"
#include "renderer/integrator.h"
#include "renderer/sampling.h"

#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <stdexcept>
#include <xmmintrin.h>

namespace renderer {

namespace {

constexpr int tile_size = 16;
constexpr double callback_interval = 0.05; // seconds

/// Treats numbers too small for full precision as zero on this thread, as Embree expects, and so
/// alike on all threads; restores the mode behind it.
class FlushDenormals {
public:
    FlushDenormals()
      : saved_(_mm_getcsr()) {
        _mm_setcsr((saved_ & ~0x6000u) | 0x8040u);
    }
    ~FlushDenormals() { _mm_setcsr(saved_); }
    FlushDenormals(const FlushDenormals&) = delete;
    FlushDenormals& operator=(const FlushDenormals&) = delete;

private:
    unsigned saved_;
};

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

void clear(Film& film, int width, int height) {
    const auto n = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    film.width = width;
    film.height = height;
    film.passes = 0;
    film.radiance.assign(n, {0, 0, 0});
    film.alpha.assign(n, 0.0f);
    film.albedo.assign(n, {0, 0, 0});
    film.normal.assign(n, {0, 0, 0});
    film.depth.assign(n, 0.0f);
    film.variance.assign(n, 0.0f);
    film.samples = 0;
}

bool has_size(const Film& film, int width, int height) {
    const auto n = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    return film.width == width && film.height == height && film.radiance.size() == n &&
           film.alpha.size() == n && film.albedo.size() == n && film.normal.size() == n &&
           film.depth.size() == n && film.variance.size() == n;
}

/// As many threads as asked for, 0 being all, but not more than this process may use at once.
int usable_threads(int asked) {
    const auto most = static_cast<int>(
        tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism));
    return asked > 0 ? std::min(asked, most) : most;
}

/// Takes a sample into the running means of a pixel. Depth is a mean over what was hit.
void add_sample(Film& film, std::size_t pixel, const PathResult& path, std::uint32_t before) {
    const float share = 1.0f / (static_cast<float>(before) + 1.0f);
    const float light = luminance(path.radiance), before_mean = luminance(film.radiance[pixel]);
    film.radiance[pixel] += (path.radiance - film.radiance[pixel]) * share;
    const float spread = (light - before_mean) * (light - luminance(film.radiance[pixel]));
    film.variance[pixel] += (spread - film.variance[pixel]) * share; // Welford 1962
    film.albedo[pixel] += (path.albedo - film.albedo[pixel]) * share;
    film.normal[pixel] += (path.normal - film.normal[pixel]) * share;
    film.alpha[pixel] += (path.alpha - film.alpha[pixel]) * share;
    if (path.alpha > 0) {
        const float weight = path.alpha * share / std::max(film.alpha[pixel], 1e-9f);
        film.depth[pixel] += (path.depth - film.depth[pixel]) * std::min(weight, 1.0f);
    }
}

/// One render under way: what the tiles share.
class Job {
public:
    Job(const Integrator& integrator, const RenderSettings& settings, Film& film,
        const Renderer::ProgressCallback& progress)
      : integrator_(integrator)
      , settings_(settings)
      , film_(film)
      , progress_(progress) {}

    /// Renders one pass; false when it was stopped in its midst.
    bool run_pass(int pass, tbb::task_arena& arena, int threads) {
        next_tile_ = 0;
        finished_tiles_ = 0;
        pass_ = pass;
        arena.execute([&] {
            tbb::parallel_for(
                0, threads, [&](int) { work(); }, tbb::simple_partitioner());
        });
        return !stopped();
    }
    /// Asks the callback even if it was asked a moment ago; false when the render must stop.
    bool report() {
        const std::lock_guard lock(callback_mutex_);
        call_back();
        return !stopped();
    }
    bool stopped() const { return cancelled_ || late_; }
    Outcome outcome() const {
        return cancelled_ ? Outcome::cancelled : late_ ? Outcome::time_limit : Outcome::finished;
    }
    double elapsed() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }
    void set_passes_done(int passes) { passes_done_ = passes; }
    void check_time() {
        if (settings_.max_seconds > 0 && elapsed() >= settings_.max_seconds)
            late_ = true;
    }

private:
    int tiles_across() const { return (settings_.width + tile_size - 1) / tile_size; }
    int tile_count() const {
        return tiles_across() * ((settings_.height + tile_size - 1) / tile_size);
    }
    void work() {
        const FlushDenormals flush;
        for (int tile = next_tile_++; tile < tile_count() && !stopped(); tile = next_tile_++) {
            render_tile(tile);
            ++finished_tiles_;
            between_tiles();
        }
    }
    void render_tile(int tile) {
        const int x0 = tile % tiles_across() * tile_size, y0 = tile / tiles_across() * tile_size;
        const int x1 = std::min(x0 + tile_size, settings_.width);
        const int y1 = std::min(y0 + tile_size, settings_.height);
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1 && !stopped(); ++x)
                render_pixel(x, y);
    }
    void render_pixel(int x, int y) {
        const auto pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(settings_.width) +
                           static_cast<std::size_t>(x);
        const auto count = static_cast<std::uint32_t>(settings_.samples_per_pass);
        const std::uint32_t first = static_cast<std::uint32_t>(pass_) * count;
        for (std::uint32_t s = first; s < first + count; ++s)
            add_sample(film_, pixel, integrator_.trace_sample(x, y, s), s);
    }
    void between_tiles() {
        check_time();
        if (!progress_ || !callback_mutex_.try_lock())
            return;
        const std::lock_guard lock(callback_mutex_, std::adopt_lock);
        if (elapsed() - last_callback_ >= callback_interval)
            call_back();
    }
    void call_back() {
        if (!progress_ || cancelled_)
            return;
        last_callback_ = elapsed();
        Progress p;
        p.pass = passes_done_;
        p.passes = settings_.passes;
        const double part = passes_done_ > pass_ ? 0.0 : double(finished_tiles_) / tile_count();
        p.fraction = std::min(1.0, (passes_done_ + part) / settings_.passes);
        p.elapsed_seconds = last_callback_;
        if (!progress_(p))
            cancelled_ = true;
    }

    const Integrator& integrator_;
    const RenderSettings& settings_;
    Film& film_;
    const Renderer::ProgressCallback& progress_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::atomic<int> next_tile_ = 0, finished_tiles_ = 0;
    int pass_ = 0, passes_done_ = 0;
    std::atomic<bool> cancelled_ = false, late_ = false;
    std::mutex callback_mutex_;
    double last_callback_ = 0;
};

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

Outcome Renderer::render(const RenderSettings& settings, Film& film,
                         const ProgressCallback& progress, const PassCallback& pass_done) {
    check(settings);
    const FlushDenormals flush;
    const Integrator integrator(impl_->accel, impl_->scene, settings);
    const bool resumed = settings.resume && has_size(film, settings.width, settings.height);
    if (!resumed)
        clear(film, settings.width, settings.height);
    const int threads = usable_threads(settings.threads > 0 ? settings.threads : impl_->threads);
    tbb::task_arena arena(threads);
    Film working = film; // a pass that is stopped in its midst must leave no trace in the film
    Job job(integrator, settings, working, progress);
    job.set_passes_done(film.passes);
    for (int pass = film.passes; pass < settings.passes; ++pass) {
        if (!job.run_pass(pass, arena, threads)) {
            if (film.passes == 0)
                film = std::move(working);
            return job.outcome();
        }
        working.passes = pass + 1;
        working.samples = (pass + 1) * settings.samples_per_pass;
        film = working;
        job.set_passes_done(pass + 1);
        if (pass_done)
            pass_done(film);
        if (!job.report() && pass + 1 < settings.passes)
            return job.outcome();
    }
    return Outcome::finished;
}

std::size_t Renderer::triangle_count() const { return impl_->accel.triangle_count(); }
std::size_t Renderer::skipped_triangle_count() const {
    return impl_->accel.skipped_triangle_count();
}

} // namespace renderer
