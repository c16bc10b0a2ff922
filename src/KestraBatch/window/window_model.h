// The window's state without a widget: tone and channels, what may be pressed, what is said.
#pragma once

#include "KestraBatch/window/window_port.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace KestraBatch {

/// One tone value as it is shown: in the numbers of the settings.
struct ToneRow {
    const char* label;
    const char* tip;
    double renderer::ToneSettings::*member;
    double shown; ///< what 1.0 of the member is shown as
    double lowest, highest;
    int decimals;
};
inline constexpr int tone_rows = 5;
const ToneRow& tone_row(int row);

/// As many passes mean a render without a limit of passes.
inline constexpr int endless_passes = 1'000'000;

/// What can be pressed.
enum class WindowCommand {
    pause,
    stop,
    again,
    more_passes,
    save,
    save_as,
    copy_picture,
    copy_name,
    region,
    clear_region,
    fit,
    actual_size,
    keep_settings,
    open
};

/// What is asked at closing.
struct CloseQuestion {
    bool save = false; ///< a picture would be lost
    bool keep = false; ///< changed settings would be lost
    std::string text, detail;
    bool is_asked() const { return save || keep; }
};

class WindowModel {
public:
    WindowModel();

    /// Another picture, or another render of the same one. With `keep_changes` the user's tone and
    /// channels stay.
    void begin(bool can_render, bool keep_changes);
    void set_facts(const PictureFacts& facts);
    void set_status(const SessionStatus& status);
    /// The channels of a picture that has come; those known by name keep what the user set.
    void set_channels(const std::vector<ChannelChoice>& rendered);
    void set_picture(std::uint64_t number); ///< that is shown; 0 none

    // Tone, in shown numbers; values are clamped to the row's range.
    double tone_value(int row) const;
    double rendered_tone_value(int row) const;
    bool is_tone_changed(int row) const;
    void set_tone_value(int row, double value);
    void reset_tone();
    /// `exposure` above 0 holds that one, 0 measures anew.
    renderer::ToneSettings tone(double exposure = 0) const;

    const std::vector<ChannelChoice>& channels() const { return channels_; }
    bool is_channel_changed(int channel) const;
    void set_channel(int channel, double percent, bool on);
    void reset_channel(int channel);
    void reset_channels();
    renderer::ChannelWeights weights() const;
    /// Every channel is off: the picture is black and people should know why.
    bool is_dark() const;

    bool are_settings_changed() const; ///< since the render, or since they were kept
    void mark_kept();
    bool is_saved() const; ///< what is shown lies in a file
    /// A number that changes with the picture, the tone and the channels.
    std::uint64_t revision() const { return revision_; }
    /// A file holds what was shown at `revision`.
    void mark_saved(const std::filesystem::path& path, std::uint64_t revision);
    const std::filesystem::path& last_saved() const { return last_saved_; }

    /// While a picture is being written; `name` is its file's, empty for not any more.
    void set_saving(const std::string& name) { saving_ = name; }
    bool is_saving() const { return !saving_.empty(); }
    /// The window closes, or shows another picture, as soon as this one is saved.
    void set_leaving(bool leaving) { leaving_ = leaving; }

    const SessionStatus& status() const { return status_; }
    const PictureFacts& facts() const { return facts_; }
    bool has_facts() const { return has_facts_; }
    bool has_picture() const { return picture_ != 0; }
    bool can_render() const { return can_render_; }
    bool is_running() const; ///< reading, building, rendering or paused
    bool is_enabled(WindowCommand command) const;

    void set_region(PictureRegion region) { region_ = region; }
    PictureRegion region() const { return region_; }

    std::string title(const std::string& program) const;
    std::string state_text() const;
    std::string passes_text() const;
    std::string time_text() const;
    int progress() const; ///< 0 to 1000; -1: busy without a number
    /// What stands in the view while there is no picture.
    std::string empty_text() const;
    /// What is laid over the picture: why the user has to wait; empty for nothing.
    std::string waiting_text() const;
    CloseQuestion close_question() const;

private:
    void show_rendered(const renderer::ToneSettings& tone);
    void touch() { ++revision_; }

    bool can_render_ = false, has_facts_ = false, tone_set_ = false, leaving_ = false;
    std::string saving_;
    PictureFacts facts_;
    SessionStatus status_;
    PictureRegion region_;
    std::array<double, tone_rows> tone_{}, rendered_tone_{}, kept_tone_{};
    std::vector<ChannelChoice> channels_, rendered_channels_, kept_channels_;
    std::uint64_t picture_ = 0, revision_ = 0, saved_revision_ = ~std::uint64_t{0};
    std::filesystem::path last_saved_;
};

/// A rectangle of the desktop.
struct WindowPlace {
    int x = 0, y = 0, width = 0, height = 0;
};
/// The wanted place, moved and shrunk until it lies on the screen that holds most of it, or on the
/// first; a width of 0 asks for a good place for a picture of that size on the first screen.
WindowPlace place_on_screen(WindowPlace wanted, const std::vector<WindowPlace>& screens,
                            int picture_width, int picture_height);

/// "0:07", "12:03", "1:02:03".
std::string duration_text(double seconds);
/// Values under the cursor: place, linear radiance, display value.
std::string pixel_text(int column, int row, const renderer::Rgb& radiance,
                       const std::array<int, 3>& display);
/// The kinds of file that a picture is saved as: extension and description.
struct PictureKind {
    const char* extension;
    const char* description;
};
inline constexpr int picture_kinds = 5;
const PictureKind& picture_kind(int kind);
/// Index of the kind by extension without point and case, -1 for none.
int find_picture_kind(const std::string& extension);
/// `name` with the kind's extension, unless it has one that is written already.
std::filesystem::path with_kind(const std::filesystem::path& name, int kind);

} // namespace KestraBatch
