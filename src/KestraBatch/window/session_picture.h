// The program's side of the window: renders and files as pictures for it. Links no widgets.
#pragma once

#include "KestraBatch/progress.h"
#include "KestraBatch/window/window_port.h"
#include "renderer/qor_image.h"

#include <mutex>

namespace KestraBatch {

/// A render of a batch folder. What happens to it is told to programs that follow the run.
class SessionPicture : public cl_window_picture {
public:
    SessionPicture(const std::filesystem::path& params_file, const std::string& program_version,
                   int threads, cl_batch_output& out);

    bool can_render() const override { return true; }
    void start() override;
    void pause() override { session_.pause(); }
    void resume() override { session_.resume(); }
    void stop() override { session_.stop(); }
    void set_region(PictureRegion region) override { session_.set_region(region); }
    void add_passes(int passes) override { session_.add_passes(passes); }
    SessionStatus status() override;
    bool take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const override;
    PictureFacts facts() override;
    ChannelChoice channel_choice(std::size_t index,
                                 const renderer::LightChannel& channel) const override;
    bool save(const std::filesystem::path& path, const renderer::ChannelWeights& weights,
              const renderer::ToneSettings& tone, std::string& error) override;
    bool keep_settings(const renderer::ToneSettings& tone,
                       const std::vector<ChannelChoice>& channels, std::string& error) override;

    /// Tells the end of the run; `window_code` is what the window returned. Returns the exit code.
    int end(int window_code);

private:
    RenderSession session_;
    ProgressReporter progress_;
    std::string phase_;
    std::size_t told_warnings_ = 0;
    std::mutex saved_mutex_; ///< pictures are saved on the window's own thread
    std::vector<std::string> saved_;
    std::string save_problem_; ///< of the last save; empty when it went well
    std::size_t told_saved_ = 0;
};

/// A picture that was opened from a `.QorImage`.
class FilePicture : public cl_window_picture {
public:
    /// Throws std::runtime_error that names file and cause.
    explicit FilePicture(const std::filesystem::path& path);

    bool can_render() const override { return false; }
    void start() override {}
    void pause() override {}
    void resume() override {}
    void stop() override {}
    void set_region(PictureRegion) override {}
    void add_passes(int) override {}
    SessionStatus status() override;
    bool take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const override;
    PictureFacts facts() override;
    ChannelChoice channel_choice(std::size_t index,
                                 const renderer::LightChannel& channel) const override;
    bool save(const std::filesystem::path& path, const renderer::ChannelWeights& weights,
              const renderer::ToneSettings& tone, std::string& error) override;
    bool keep_settings(const renderer::ToneSettings& tone,
                       const std::vector<ChannelChoice>& channels, std::string& error) override;

private:
    std::filesystem::path path_;
    renderer::QorImage image_;
};

/// A weight as check box and slider show it.
ChannelChoice choice_of_weight(float weight);

/// The tone and the channels into the globals, in the settings' own numbers. Values of the tone
/// that stand for the same number leave it alone.
void write_tone_to_globals(const renderer::ToneSettings& tone);
void write_channels_to_globals(const std::vector<ChannelChoice>& channels);
/// What the settings say of the channel with that number.
ChannelChoice read_channel_from_globals(int number);

} // namespace KestraBatch
