// A render that runs on a thread of its own while somebody looks on: the batch process's window,
// or its loop without one. All public functions may be called from the owner's thread at any time.
// The process-wide globals are touched by `start` alone, on the owner's thread; the session's own
// thread never does, so that the owner may use them while it renders.
#pragma once

#include "KestraBatch/batch_folder.h"
#include "KestraBatch/progress.h"
#include "KestraBatch/render_job.h"
#include "renderer/light_channels.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace KestraBatch {

enum class SessionState { reading, building, rendering, paused, finished, stopped, failed };

struct SessionStatus {
    SessionState state = SessionState::reading;
    int pass = 0, passes = 0;                     ///< finished, and asked for
    double fraction = 0;                          ///< of the render, 0 to 1
    double elapsed_seconds = 0, eta_seconds = -1; ///< pauses not counted; negative: not known yet
    std::uint64_t picture = 0;      ///< raised whenever there is a newer picture to take
    std::string problem;            ///< why it failed, in words
    ExitCode code = ExitCode::done; ///< of a process that ends for that problem
    std::vector<Warning> warnings;
};

/// A part of the picture in pixels from the top left; empty when the width is 0.
struct PictureRegion {
    int x = 0, y = 0, width = 0, height = 0;
};

class RenderSession {
public:
    /// Starts nothing yet. `program_version` and `threads` as in BatchRun.
    RenderSession(std::filesystem::path params_file, std::string program_version, int threads);
    ~RenderSession(); ///< stops and waits

    /// Without a name to save the picture under, it ends as soon as the scene is built. Before
    /// `start`.
    void skip_render_without_outputs();
    /// Shows coarse pictures until the first pass is there, for somebody who looks on, and
    /// renders on threads that give way to others. Drafts have no passes. Before `start`.
    void show_drafts();
    /// Reads the folder's settings into the globals, at once; reads the geometry and renders on the
    /// session's thread. Again after an end: from the start, with the folder read anew. What goes
    /// wrong is in the status.
    void start();
    void pause(); ///< within a tile; the light so far stays
    void resume();
    /// Within a tile; the picture so far stays. Once the scene is built there is always one: before
    /// the first pass has ended, a draft stands in for what is not there.
    void stop();
    /// Renders that part first in each pass, so that it clears up sooner; an empty one: all alike.
    /// The finished picture does not depend on it.
    void set_region(PictureRegion region);
    /// Adds passes to a render that has finished or is under way. One that was stopped goes on from
    /// its last whole pass, or begins anew when it has none. A time limit holds no longer once it
    /// has ended.
    void add_passes(int passes);

    SessionStatus status() const;
    /// Copies the newest picture when it is newer than `known`, which is set to its number.
    bool take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const;
    /// Waits until the render has ended or `seconds` have passed; true when it has ended.
    bool wait(double seconds) const;

    // What the folder asked for; valid from SessionState::rendering on.
    const RenderJob& job() const;
    const Parameters& parameters() const;
    const std::vector<std::string>& changed_settings() const; ///< "name; value" lines

    /// Saves a picture under any name of a kind that is written: toned with `tone` and `weights`
    /// (png, jpg), linear (hdr, exr), or `.QorImage`, which keeps the channels and the settings.
    /// A picture without a whole pass is marked as `Draft` in the metadata.
    /// False with `error` in words; a file that stood there stays. Toned pictures lose their grain,
    /// which takes seconds.
    bool save(const std::filesystem::path& path, const renderer::ChannelWeights& weights,
              const renderer::ToneSettings& tone, std::string& error) const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace KestraBatch
