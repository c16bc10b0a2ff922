// Steers a render from other threads: pause, stop, what comes first, how much more.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace renderer {

/// A part of the picture in pixels from the top left; it may reach beyond the picture, and is empty
/// when a side is not above 0.
struct PixelRegion {
    int x = 0, y = 0, width = 0, height = 0;
    bool empty() const { return width <= 0 || height <= 0; }
};

/// Handed to a render and to whoever steers it. All methods may be called from any thread. What was
/// asked before the render begins holds as well.
class RenderControl {
public:
    void pause();  ///< within a tile; no thread is kept busy meanwhile
    void resume(); ///< goes on where it paused
    void stop();   ///< within a tile, for good
    /// Tiles that touch `region` come first in each pass, the one under way included. The finished
    /// picture does not depend on it.
    void set_region(PixelRegion region);
    void add_passes(int passes);

    bool paused() const { return paused_; }
    bool stopped() const { return stopped_; }
    int added_passes() const { return added_passes_; }
    PixelRegion region() const;

    /// Raised by pause, stop and set_region: a render compares it between pixels.
    unsigned changes() const { return changes_.load(std::memory_order_relaxed); }
    /// Waits until there is no pause, or a stop.
    void wait_while_paused();

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::atomic<bool> paused_ = false, stopped_ = false;
    std::atomic<int> added_passes_ = 0;
    std::atomic<unsigned> changes_ = 0;
    PixelRegion region_;
};

} // namespace renderer
