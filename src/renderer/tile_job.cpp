// One render under way.
#include "renderer/tile_job.h"

#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <xmmintrin.h>

namespace renderer {

namespace {

constexpr int tile_size = 16;
constexpr int tile_finished = -1;          // in place of a number of pixels
constexpr double callback_interval = 0.05; // seconds

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Takes a sample into the running means of a pixel. Depth is a mean over what was hit.
void add_sample(Film& film, std::size_t pixel, const PathResult& path, float share) {
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

} // namespace

FlushDenormals::FlushDenormals()
  : saved_(_mm_getcsr()) {
    _mm_setcsr((saved_ & ~0x6000u) | 0x8040u);
}

FlushDenormals::~FlushDenormals() { _mm_setcsr(saved_); }

TileJob::TileJob(const Integrator& integrator, const RenderSettings& settings, ChannelFilm& film,
                 RenderControl& control, const Renderer::ProgressCallback& progress)
  : integrator_(integrator)
  , settings_(settings)
  , film_(film)
  , control_(control)
  , progress_(progress) {
    const int down = (settings.height + tile_size - 1) / tile_size;
    pixels_done_.resize(static_cast<std::size_t>(tiles_across()) * static_cast<std::size_t>(down));
}

int TileJob::tiles_across() const { return (settings_.width + tile_size - 1) / tile_size; }

Outcome TileJob::outcome() const {
    return cancelled_ || control_.stopped() ? Outcome::cancelled
           : late_                          ? Outcome::time_limit
                                            : Outcome::finished;
}

int TileJob::passes_asked() const {
    constexpr std::int64_t most = std::int64_t{1} << 30;
    const std::int64_t asked = std::int64_t{settings_.passes} + control_.added_passes();
    return static_cast<int>(std::min(asked, most / settings_.samples_per_pass));
}

double TileJob::elapsed() const { return seconds_since(start_) - paused_seconds_; }

bool TileJob::run_pass(int pass, tbb::task_arena& arena) {
    std::fill(pixels_done_.begin(), pixels_done_.end(), 0);
    finished_tiles_ = 0;
    pass_ = pass;
    do {
        changes_ = control_.changes(); // first: whatever changes from here on ends the round
        if (control_.paused()) {
            const Clock::time_point began = Clock::now();
            control_.wait_while_paused();
            paused_seconds_ += seconds_since(began);
        }
        order_tiles();
        next_ = 0;
        const auto count = static_cast<int>(order_.size());
        arena.execute([&] {
            tbb::parallel_for(
                0, count, [&](int) { render_next_tile(); }, tbb::simple_partitioner());
        });
    } while (!stopped() && finished_tiles_ < tile_count());
    return finished_tiles_ == tile_count();
}

bool TileJob::has_pixels() const {
    return std::any_of(pixels_done_.begin(), pixels_done_.end(),
                       [](int done) { return done != 0; });
}

/// Unfinished tiles row by row, those of the region first.
void TileJob::order_tiles() {
    const PixelRegion region = control_.region();
    order_.clear();
    for (int tile = 0; tile < tile_count(); ++tile)
        if (pixels_done_[static_cast<std::size_t>(tile)] != tile_finished)
            order_.push_back(tile);
    if (region.empty())
        return;
    const auto in_region = [&](int tile) {
        const std::int64_t x = tile % tiles_across() * tile_size;
        const std::int64_t y = tile / tiles_across() * tile_size;
        return x < std::int64_t{region.x} + region.width && region.x < x + tile_size &&
               y < std::int64_t{region.y} + region.height && region.y < y + tile_size;
    };
    std::stable_partition(order_.begin(), order_.end(), in_region);
}

/// The order is ours, whichever thread comes first. A task a tile, so that threads are free for
/// others now and then.
void TileJob::render_next_tile() {
    if (stopped() || control_.changes() != changes_)
        return;
    const FlushDenormals flush;
    if (render_tile(order_[static_cast<std::size_t>(next_++)])) {
        ++finished_tiles_;
        between_tiles();
    }
}

/// Goes on with a tile where it was left; false when it was left again.
bool TileJob::render_tile(int tile) {
    const int x0 = tile % tiles_across() * tile_size, y0 = tile / tiles_across() * tile_size;
    const int width = std::min(tile_size, settings_.width - x0);
    const int height = std::min(tile_size, settings_.height - y0);
    int& left_at = pixels_done_[static_cast<std::size_t>(tile)];
    for (int i = left_at; i < width * height; ++i) {
        if (stopped() || control_.changes() != changes_) {
            left_at = i;
            return false;
        }
        render_pixel(x0 + i % width, y0 + i / width);
    }
    left_at = tile_finished;
    return true;
}

void TileJob::render_pixel(int x, int y) {
    const auto pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(settings_.width) +
                       static_cast<std::size_t>(x);
    const auto count = static_cast<std::uint32_t>(settings_.samples_per_pass);
    const std::uint32_t first = static_cast<std::uint32_t>(pass_) * count;
    PathChannels by_channel;
    PathChannels* asked = film_.channels.empty() ? nullptr : &by_channel;
    for (std::uint32_t s = first; s < first + count; ++s) {
        const float share = 1.0f / (static_cast<float>(s) + 1.0f);
        add_sample(film_.film, pixel, integrator_.trace_sample(x, y, s, asked), share);
        for (std::size_t i = 0; i < film_.channels.size(); ++i) {
            Rgb& mean = film_.channels[i].radiance[pixel];
            mean += (by_channel.radiance[i] - mean) * share;
        }
    }
}

void TileJob::between_tiles() {
    if (settings_.max_seconds > 0 && elapsed() >= settings_.max_seconds)
        late_ = true;
    if (!progress_ || !callback_mutex_.try_lock())
        return;
    const std::lock_guard lock(callback_mutex_, std::adopt_lock);
    if (elapsed() - last_callback_ >= callback_interval)
        call_back();
}

bool TileJob::report() {
    const std::lock_guard lock(callback_mutex_);
    call_back();
    return !stopped();
}

void TileJob::call_back() {
    if (!progress_ || cancelled_)
        return;
    last_callback_ = elapsed();
    Progress p;
    p.pass = passes_done_;
    p.passes = passes_asked();
    const double part = passes_done_ > pass_ ? 0.0 : double(finished_tiles_) / tile_count();
    p.fraction = std::min(1.0, (passes_done_ + part) / p.passes);
    p.elapsed_seconds = last_callback_;
    if (!progress_(p))
        cancelled_ = true;
}

} // namespace renderer
