// Values, permissions and texts of the window.
#include "KestraBatch/window/window_model.h"

#include "omb/base/text.h"

#include <algorithm>
#include <cmath>

namespace KestraBatch {

namespace {

using renderer::ToneSettings;

constexpr std::array<ToneRow, tone_rows> tone_table{{
    {"Brightness", "Makes the whole picture lighter or darker. 50 is neutral.",
     &ToneSettings::brightness, 100, 0, 100, 0},
    {"Contrast", "Pulls light and dark apart, or together. 50 is neutral.", &ToneSettings::contrast,
     100, 0, 100, 0},
    {"Burn", "How soon highlights run out into white. 50 is neutral.", &ToneSettings::burn, 100, 0,
     100, 0},
    {"Saturation", "Strength of the colours: 0 is grey, 100 is neutral.", &ToneSettings::saturation,
     100, 0, 200, 0},
    {"Gamma", "Lifts or lowers the middle tones. 1.23 is neutral.", &ToneSettings::gamma, 1.23, 0.2,
     4.0, 2},
}};

constexpr std::array<PictureKind, picture_kinds> kind_table{{
    {"png", "PNG picture"},
    {"jpg", "JPEG picture"},
    {"exr", "OpenEXR, linear light with layers"},
    {"hdr", "Radiance HDR, linear light"},
    {"QorImage", "Qorvane picture, tone and light stay adjustable"},
}};

double rounded(double value, int decimals) {
    const double scale = std::pow(10.0, decimals);
    return std::round(value * scale) / scale;
}

bool same_channel(const ChannelChoice& a, const ChannelChoice& b) {
    return a.name == b.name && a.on == b.on && std::abs(a.percent - b.percent) < 0.05;
}

const ChannelChoice* find_channel(const std::vector<ChannelChoice>& channels,
                                  const std::string& name) {
    const auto at = std::find_if(channels.begin(), channels.end(),
                                 [&](const ChannelChoice& c) { return c.name == name; });
    return at == channels.end() ? nullptr : &*at;
}

} // namespace

const ToneRow& tone_row(int row) { return tone_table.at(static_cast<std::size_t>(row)); }

const PictureKind& picture_kind(int kind) { return kind_table.at(static_cast<std::size_t>(kind)); }

int find_picture_kind(const std::string& extension) {
    for (int kind = 0; kind < picture_kinds; ++kind) {
        if (omb::equal_no_case(extension, picture_kind(kind).extension)) {
            return kind;
        }
    }
    return omb::equal_no_case(extension, "jpeg") ? 1 : -1;
}

std::filesystem::path with_kind(const std::filesystem::path& name, int kind) {
    const std::string extension = name.extension().string();
    if (!extension.empty() && find_picture_kind(extension.substr(1)) >= 0) {
        return name;
    }
    return name.string() + "." + picture_kind(kind).extension;
}

WindowModel::WindowModel() { show_rendered(ToneSettings{}); }

/// The tone that a picture comes with; what the user has set stays.
void WindowModel::show_rendered(const ToneSettings& tone) {
    for (int i = 0; i < tone_rows; ++i) {
        const ToneRow& row = tone_row(i);
        rendered_tone_.at(static_cast<std::size_t>(i)) = std::clamp(
            rounded(tone.*row.member * row.shown, row.decimals), row.lowest, row.highest);
    }
    if (!tone_set_) {
        tone_ = rendered_tone_;
    }
    kept_tone_ = rendered_tone_;
}

void WindowModel::begin(bool can_render, bool keep_changes) {
    can_render_ = can_render;
    status_ = {};
    picture_ = 0;
    has_facts_ = false;
    saved_revision_ = ~std::uint64_t{0};
    tone_set_ = tone_set_ && keep_changes;
    if (!keep_changes) {
        channels_.clear();
        rendered_channels_.clear();
        kept_channels_.clear();
        last_saved_.clear();
        region_ = {};
    }
}

void WindowModel::set_facts(const PictureFacts& facts) {
    facts_ = facts;
    has_facts_ = true;
    show_rendered(facts.tone);
    tone_set_ = true;
    touch();
}

void WindowModel::set_status(const SessionStatus& status) { status_ = status; }

void WindowModel::set_channels(const std::vector<ChannelChoice>& rendered) {
    std::vector<ChannelChoice> channels = rendered;
    for (ChannelChoice& channel : channels) {
        const ChannelChoice* before = find_channel(rendered_channels_, channel.name);
        const ChannelChoice* set = find_channel(channels_, channel.name);
        if (before != nullptr && set != nullptr && !same_channel(*before, *set)) {
            channel = *set; // what the user changed stays
        }
    }
    channels_ = std::move(channels);
    rendered_channels_ = rendered;
    kept_channels_ = rendered;
}

void WindowModel::set_picture(std::uint64_t number) {
    if (number != picture_) {
        picture_ = number;
        touch();
    }
}

double WindowModel::tone_value(int row) const { return tone_.at(static_cast<std::size_t>(row)); }

double WindowModel::rendered_tone_value(int row) const {
    return rendered_tone_.at(static_cast<std::size_t>(row));
}

bool WindowModel::is_tone_changed(int row) const {
    return std::abs(tone_value(row) - rendered_tone_value(row)) > 1e-6;
}

void WindowModel::set_tone_value(int row, double value) {
    const ToneRow& limits = tone_row(row);
    const double fitting =
        std::clamp(rounded(value, limits.decimals), limits.lowest, limits.highest);
    double& own = tone_.at(static_cast<std::size_t>(row));
    if (std::abs(fitting - own) > 1e-6) {
        own = fitting;
        touch();
    }
}

void WindowModel::reset_tone() {
    for (int row = 0; row < tone_rows; ++row) {
        set_tone_value(row, rendered_tone_value(row));
    }
}

ToneSettings WindowModel::tone(double exposure) const {
    ToneSettings tone = facts_.tone;
    for (int i = 0; i < tone_rows; ++i) {
        const ToneRow& row = tone_row(i);
        if (tone_set_ && is_tone_changed(i)) {
            tone.*row.member = tone_value(i) / row.shown;
        }
    }
    if (exposure > 0) {
        tone.exposure = exposure;
    }
    return tone;
}

bool WindowModel::is_channel_changed(int channel) const {
    const auto at = static_cast<std::size_t>(channel);
    return !same_channel(channels_.at(at), rendered_channels_.at(at));
}

void WindowModel::set_channel(int channel, double percent, bool on) {
    ChannelChoice& own = channels_.at(static_cast<std::size_t>(channel));
    const ChannelChoice wanted{own.name, std::clamp(percent, 0.0, 200.0), on, own.number};
    if (!same_channel(own, wanted)) {
        own = wanted;
        touch();
    }
}

void WindowModel::reset_channel(int channel) {
    const ChannelChoice& rendered = rendered_channels_.at(static_cast<std::size_t>(channel));
    set_channel(channel, rendered.percent, rendered.on);
}

void WindowModel::reset_channels() {
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        reset_channel(static_cast<int>(i));
    }
}

renderer::ChannelWeights WindowModel::weights() const {
    renderer::ChannelWeights weights;
    weights.fill(1.0f);
    for (std::size_t i = 0; i < std::min(channels_.size(), weights.size()); ++i) {
        weights[i] = channels_[i].on ? static_cast<float>(channels_[i].percent / 100) : 0.0f;
    }
    return weights;
}

bool WindowModel::is_dark() const {
    return !channels_.empty() &&
           std::all_of(channels_.begin(), channels_.end(),
                       [](const ChannelChoice& c) { return !c.on || c.percent <= 0; });
}

bool WindowModel::are_settings_changed() const {
    const bool same_tone = std::equal(tone_.begin(), tone_.end(), kept_tone_.begin(),
                                      [](double a, double b) { return std::abs(a - b) < 1e-6; });
    return has_facts_ &&
           !(same_tone && std::equal(channels_.begin(), channels_.end(), kept_channels_.begin(),
                                     kept_channels_.end(), same_channel));
}

void WindowModel::mark_kept() {
    kept_tone_ = tone_;
    kept_channels_ = channels_;
}

bool WindowModel::is_saved() const { return saved_revision_ == revision_; }

void WindowModel::mark_saved(const std::filesystem::path& path, std::uint64_t revision) {
    saved_revision_ = revision;
    last_saved_ = path;
}

bool WindowModel::is_running() const {
    return can_render_ && status_.state < SessionState::finished;
}

bool WindowModel::is_enabled(WindowCommand command) const {
    switch (command) {
    case WindowCommand::pause:
        return can_render_ &&
               (status_.state == SessionState::rendering || status_.state == SessionState::paused);
    case WindowCommand::stop:
        return can_render_ && is_running();
    case WindowCommand::again:
        return can_render_ && !is_running() && !is_saving() && !leaving_;
    case WindowCommand::more_passes:
        return can_render_ && has_facts_ && status_.state != SessionState::failed &&
               status_.passes < endless_passes;
    case WindowCommand::save:
    case WindowCommand::save_as:
    case WindowCommand::copy_picture:
    case WindowCommand::fit:
    case WindowCommand::actual_size:
        return has_picture();
    case WindowCommand::copy_name:
        return !last_saved_.empty();
    case WindowCommand::region:
        return can_render_ && has_picture();
    case WindowCommand::clear_region:
        return region_.width > 0;
    case WindowCommand::keep_settings:
        return can_render_ && are_settings_changed();
    case WindowCommand::open:
        return true;
    }
    return false;
}

} // namespace KestraBatch
