// The path tracer: a scene in, progressive passes of linear radiance out.
#pragma once

#include "renderer/film.h"
#include "renderer/light_channels.h"
#include "renderer/render_control.h"
#include "renderer/scene.h"

#include <functional>
#include <memory>

namespace renderer {

struct Progress {
    int pass = 0;        ///< passes finished
    int passes = 0;      ///< passes asked for
    double fraction = 0; ///< 0 to 1 over the whole render
    double elapsed_seconds = 0;
};

enum class Outcome { finished, time_limit, cancelled };

/// Builds the acceleration structure once and renders as often as asked. The picture depends on
/// the scene and the settings only: not on the number of threads, nor on time.
/// Throws std::invalid_argument for settings or indices out of range and std::bad_alloc or
/// std::runtime_error when Embree reports an error. Vertices that are not finite, and triangles
/// that use them, are left out and counted.
class Renderer {
public:
    /// Copies what it needs of the scene. `threads` is for renders whose settings name none; 0
    /// means all cores. The tree is built by one thread, see accel.h.
    explicit Renderer(const Scene& scene, int threads = 0);
    ~Renderer();
    Renderer(Renderer&&) noexcept;
    Renderer& operator=(Renderer&&) noexcept;

    /// Called from the rendering thread group, never concurrently; false cancels between tiles.
    using ProgressCallback = std::function<bool(const Progress&)>;
    /// Called after each finished pass with the picture so far.
    using PassCallback = std::function<void(const Film&)>;

    /// Renders; on `cancelled` or `time_limit` the film holds the passes finished until then, or,
    /// when not one is finished, the part of the first pass that is there.
    Outcome render(const RenderSettings& settings, Film& film,
                   const ProgressCallback& progress = {}, const PassCallback& pass_done = {});

    /// A finished copy, which nobody changes any more.
    using SharedPicture = std::shared_ptr<const ChannelFilm>;
    /// Called after each finished pass, on the thread that renders.
    using PictureCallback = std::function<void(const SharedPicture&)>;

    /// The same, steered through `control`, with light by channel as the settings ask. With
    /// `settings.resume` it goes on from `picture`, which is what it would have been had all passes
    /// been asked for at once. On return `picture` is the newest,
    /// and as it was when not one pixel is rendered. A stop through `control` counts
    /// as cancelled; pauses do not count as time.
    Outcome render(const RenderSettings& settings, SharedPicture& picture, RenderControl& control,
                   const ProgressCallback& progress = {}, const PictureCallback& pass_done = {});

    /// Texture files that could not be read, each with its reason; they are drawn grey.
    const std::vector<std::string>& texture_problems() const;
    std::size_t triangle_count() const; ///< those of a prototype count once
    std::size_t skipped_triangle_count() const;

private:
    Outcome run(const RenderSettings& settings, ChannelFilm& working, RenderControl& control,
                const ProgressCallback& progress, const std::function<void()>& pass_done);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace renderer
