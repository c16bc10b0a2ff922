// Steers a render from other threads.
#include "renderer/render_control.h"

namespace renderer {

void RenderControl::pause() {
    const std::lock_guard lock(mutex_);
    paused_ = true;
    ++changes_;
}

void RenderControl::resume() {
    const std::lock_guard lock(mutex_);
    paused_ = false;
    changed_.notify_all();
}

void RenderControl::stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    ++changes_;
    changed_.notify_all();
}

void RenderControl::set_region(PixelRegion region) {
    const std::lock_guard lock(mutex_);
    region_ = region;
    ++changes_;
}

void RenderControl::add_passes(int passes) {
    if (passes > 0)
        added_passes_ += passes;
}

PixelRegion RenderControl::region() const {
    const std::lock_guard lock(mutex_);
    return region_;
}

void RenderControl::wait_while_paused() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !paused_ || stopped_; });
}

} // namespace renderer
