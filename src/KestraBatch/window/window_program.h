// The program's services to its window: toning, opening, what is remembered.
#pragma once

#include "KestraBatch/run_batch.h"
#include "KestraBatch/window/window_port.h"

namespace KestraBatch {

/// What the window remembers, as the settings have it; at their factory values nobody has placed
/// the window yet.
WindowMemory memory_from_globals();

class WindowProgram : public cl_window_program {
public:
    /// `run` outlives it.
    WindowProgram(const BatchRun& run, WindowMemory memory);

    std::unique_ptr<cl_window_picture> open_image(const std::filesystem::path& path,
                                                  std::string& error) override;
    renderer::DisplayImage tone(const renderer::ChannelFilm& picture,
                                const renderer::ChannelWeights& weights,
                                const renderer::ToneSettings& tone) override;
    renderer::DisplayImage tone_clean(const renderer::ChannelFilm& picture,
                                      const renderer::ChannelWeights& weights,
                                      const renderer::ToneSettings& tone) override;
    double exposure_of(const renderer::Film& film) override;
    int stop_asked() override;
    WindowMemory memory() override { return memory_; }
    /// Only now is the user's profile opened for writing: the settings of the folder that was
    /// rendered are the drawing's, and nothing of them goes into the profile.
    void remember(const WindowMemory& memory) override;

private:
    const BatchRun& run_;
    WindowMemory memory_;
};

} // namespace KestraBatch
