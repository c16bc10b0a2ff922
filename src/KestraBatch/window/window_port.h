// What stands between the batch program and its window. The program links the engine and no GUI
// library; the window is a module that links widgets and no engine. Both know only these classes.
#pragma once

#include "KestraBatch/render_session.h"
#include "renderer/light_channels.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace KestraBatch {

/// One lighting channel as the user has set it.
struct ChannelChoice {
    std::string name;
    double percent = 100; ///< 0 to 200
    bool on = true;
    int number = 0; ///< as LightChannel::number
};

struct SettingLine {
    std::string name, title, value;
};

/// What a picture was rendered with.
struct PictureFacts {
    std::string title; ///< name of the drawing or of the file
    int width = 0, height = 0;
    renderer::ToneSettings tone;
    std::vector<std::filesystem::path> outputs; ///< automatic names; may be empty
    std::filesystem::path folder;               ///< where saving begins when nothing else is known
    std::vector<SettingLine> settings;
};

/// The picture that the window shows: a render that grows, or one that was opened from a file.
/// Called from the window's thread, but for take_picture, which its toning thread calls, and save,
/// which has a thread of its own.
class cl_window_picture {
public:
    virtual ~cl_window_picture() = default;

    /// True when there is a batch folder to render; the six calls below do nothing without.
    virtual bool can_render() const = 0;
    virtual void start() = 0;
    virtual void pause() = 0;
    virtual void resume() = 0;
    virtual void stop() = 0;
    virtual void set_region(PictureRegion region) = 0;
    virtual void add_passes(int passes) = 0;

    virtual SessionStatus status() = 0;
    virtual bool take_picture(std::uint64_t& known, renderer::ChannelFilm& picture) const = 0;
    /// Asked once for each render, from SessionState::rendering on.
    virtual PictureFacts facts() = 0;
    /// How the channel at that place of the film was set when the picture was made.
    virtual ChannelChoice channel_choice(std::size_t index,
                                         const renderer::LightChannel& channel) const = 0;

    /// As RenderSession::save.
    virtual bool save(const std::filesystem::path& path, const renderer::ChannelWeights& weights,
                      const renderer::ToneSettings& tone, std::string& error) = 0;
    /// Hands tone and channels back to the drawing; only asked of pictures with can_render().
    virtual bool keep_settings(const renderer::ToneSettings& tone,
                               const std::vector<ChannelChoice>& channels, std::string& error) = 0;
};

/// What the window remembers from one time to the next.
struct WindowMemory {
    int x = 0, y = 0, width = 0, height = 0; ///< a width of 0: never placed by the user
    std::string save_folder;                 ///< where the last picture was saved to
    std::string save_extension = "png";
    bool ask_at_closing = true;
    bool brighten = true; ///< exposure follows the channels' mix
};

/// The program's services. Called from the window's thread, but for open_image, tone, tone_clean
/// and exposure_of, which threads of its own call.
class cl_window_program {
public:
    virtual ~cl_window_program() = default;
    /// Opens a `.QorImage`; null with `error` in words. Throws nothing.
    virtual std::unique_ptr<cl_window_picture> open_image(const std::filesystem::path& path,
                                                          std::string& error) = 0;
    virtual renderer::DisplayImage tone(const renderer::ChannelFilm& picture,
                                        const renderer::ChannelWeights& weights,
                                        const renderer::ToneSettings& tone) = 0;
    /// The same without grain, as pictures to look at are saved; takes seconds.
    virtual renderer::DisplayImage tone_clean(const renderer::ChannelFilm& picture,
                                              const renderer::ChannelWeights& weights,
                                              const renderer::ToneSettings& tone) = 0;
    virtual double exposure_of(const renderer::Film& film) = 0;
    /// The number of the signal that asks the program to end (SIGTERM for a close message), 0 none.
    virtual int stop_asked() = 0;
    virtual WindowMemory memory() = 0;
    virtual void remember(const WindowMemory& memory) = 0;
};

/// A change of the classes above changes this number: a module of another build is not called.
inline constexpr int window_port_version = 1;

/// What the program hands to the module.
struct WindowStart {
    int version = window_port_version;
    cl_window_program* program = nullptr;
    cl_window_picture* picture = nullptr; ///< null: `notice` is shown and nothing else
    const char* program_name = "";
    const char* program_version = "";
    const char* notice = ""; ///< text of a small window in place of the picture
};

/// The module's one function, by the name `run_batch_window`. Returns when the window is closed: 0,
/// or 128 and the number of the signal that ended it; -1 when the module is of another version or
/// no window can be opened.
using run_batch_window_function = int (*)(const WindowStart*);
inline constexpr const char* run_batch_window_name = "run_batch_window";

} // namespace KestraBatch
