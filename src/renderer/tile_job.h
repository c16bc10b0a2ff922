// One render under way: its tiles, its clock, and when it must stop.
#pragma once

#include "renderer/integrator.h"
#include "renderer/light_channels.h"
#include "renderer/render_control.h"
#include "renderer/renderer.h"

#include <tbb/task_arena.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <vector>

namespace renderer {

/// Treats numbers too small for full precision as zero on this thread, as Embree expects, and so
/// alike on all threads; restores the mode behind it.
class FlushDenormals {
public:
    FlushDenormals();
    ~FlushDenormals();
    FlushDenormals(const FlushDenormals&) = delete;
    FlushDenormals& operator=(const FlushDenormals&) = delete;

private:
    unsigned saved_;
};

/// Renders passes into a film, tile by tile. What a pixel holds depends on its passes alone, so a
/// pass may be left and taken up again at any pixel.
class TileJob {
public:
    /// Keeps references to all of them. The film has the settings' size.
    TileJob(const Integrator& integrator, const RenderSettings& settings, ChannelFilm& film,
            RenderControl& control, const Renderer::ProgressCallback& progress);

    /// Renders one pass; false when it was stopped in its midst.
    bool run_pass(int pass, tbb::task_arena& arena);
    /// Asks the callback even if it was asked a moment ago; false when the render must stop.
    bool report();
    /// True when the pass that was stopped has rendered something.
    bool has_pixels() const;
    bool stopped() const { return cancelled_ || late_ || control_.stopped(); }
    Outcome outcome() const;
    void set_passes_done(int passes) { passes_done_ = passes; }
    int passes_asked() const; ///< those of the settings and those added since

private:
    int tiles_across() const;
    int tile_count() const { return static_cast<int>(pixels_done_.size()); }
    void order_tiles();
    void render_next_tile();
    bool render_tile(int tile);
    void render_pixel(int x, int y);
    void between_tiles();
    void call_back();
    double elapsed() const;

    const Integrator& integrator_;
    const RenderSettings& settings_;
    ChannelFilm& film_;
    RenderControl& control_;
    const Renderer::ProgressCallback& progress_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    double paused_seconds_ = 0;
    std::vector<int> order_;       ///< tiles in the order in which they are taken
    std::vector<int> pixels_done_; ///< of each tile in this pass; each is written by one thread
    std::atomic<int> next_ = 0, finished_tiles_ = 0;
    unsigned changes_ = 0; ///< of the control when the threads set out
    int pass_ = 0, passes_done_ = 0;
    std::atomic<bool> cancelled_ = false, late_ = false;
    std::mutex callback_mutex_;
    double last_callback_ = 0;
};

} // namespace renderer
