// A render for the window's tests: a ball on a plane in four kinds of light, grainy at first. It
// obeys pause, stop, regions and more passes as the real one does.
#pragma once

#include "KestraBatch/window/window_port.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace window_test {

struct FakeOptions {
    int width = 320, height = 200, passes = 8;
    int pass_ms = 20;
    std::vector<std::filesystem::path> outputs;
    std::string failure; ///< fails with it in place of rendering
    bool from_file = false;
};

class FakePicture : public KestraBatch::cl_window_picture {
public:
    explicit FakePicture(FakeOptions options);
    ~FakePicture() override;

    bool can_render() const override { return !options_.from_file; }
    void start() override;
    void pause() override;
    void resume() override;
    void stop() override;
    void set_region(KestraBatch::PictureRegion region) override;
    void add_passes(int passes) override;
    KestraBatch::SessionStatus status() override;
    bool take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const override;
    KestraBatch::PictureFacts facts() override;
    KestraBatch::ChannelChoice channel_choice(std::size_t index,
                                              const renderer::LightChannel& channel) const override;
    bool save(const std::filesystem::path& path, const renderer::ChannelWeights& weights,
              const renderer::ToneSettings& tone, std::string& error) override;
    bool keep_settings(const renderer::ToneSettings& tone,
                       const std::vector<KestraBatch::ChannelChoice>& channels,
                       std::string& error) override;

    KestraBatch::PictureRegion region() const;

    // What the window asked for.
    std::vector<std::filesystem::path> saved;
    renderer::ChannelWeights saved_weights{};
    renderer::ToneSettings saved_tone, kept_tone;
    std::vector<KestraBatch::ChannelChoice> kept_channels;
    std::string save_problem;     ///< makes every save fail
    std::atomic<int> save_ms = 0; ///< each save takes as long
    int starts = 0;

private:
    void render();
    void render_pass(int pass);
    bool wait_ms(std::unique_lock<std::mutex>& lock, int ms);
    void end();

    FakeOptions options_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    KestraBatch::SessionStatus status_;
    KestraBatch::PictureRegion region_;
    renderer::ChannelFilm picture_;
    bool stop_ = false, pause_ = false;
    std::thread thread_;
};

class FakeProgram : public KestraBatch::cl_window_program {
public:
    std::unique_ptr<KestraBatch::cl_window_picture> open_image(const std::filesystem::path& path,
                                                               std::string& error) override;
    renderer::DisplayImage tone(const renderer::ChannelFilm& picture,
                                const renderer::ChannelWeights& weights,
                                const renderer::ToneSettings& tone) override;
    renderer::DisplayImage tone_clean(const renderer::ChannelFilm& picture,
                                      const renderer::ChannelWeights& weights,
                                      const renderer::ToneSettings& tone) override;
    double exposure_of(const renderer::Film& film) override;
    int stop_asked() override { return signal; }
    KestraBatch::WindowMemory memory() override { return kept; }
    void remember(const KestraBatch::WindowMemory& memory) override { kept = memory; }

    KestraBatch::WindowMemory kept;
    int signal = 0;
    std::atomic<int> toned = 0, cleaned = 0;
};

} // namespace window_test
