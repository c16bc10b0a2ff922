// Tone and channels between the window and the settings.
#include "KestraBatch/window/session_picture.h"

#include "omb/globals/globals.h"

#include <array>
#include <cmath>

#include <fmt/format.h>

namespace KestraBatch {

namespace {

struct PercentRow {
    const char* global;
    double renderer::ToneSettings::*member;
};

constexpr std::array<PercentRow, 4> percent_rows{{
    {"iks_tone_operator_brightness", &renderer::ToneSettings::brightness},
    {"iks_tone_operator_contrast", &renderer::ToneSettings::contrast},
    {"iks_tone_operator_burn", &renderer::ToneSettings::burn},
    {"iks_tone_operator_saturation", &renderer::ToneSettings::saturation},
}};

constexpr const char* gamma_global = "rks_gamma_factor";
constexpr double neutral_gamma = 1.23; ///< the setting's factory value means no extra exponent
constexpr int most_numbers = 9;        ///< channels that the settings know

std::string numbered(const char* stem, int number) { return stem + std::to_string(number); }

} // namespace

ChannelChoice choice_of_weight(float weight) {
    ChannelChoice choice;
    choice.on = weight > 0;
    choice.percent = choice.on ? weight * 100.0 : 100.0;
    return choice;
}

void write_tone_to_globals(const renderer::ToneSettings& tone) {
    for (const PercentRow& row : percent_rows) {
        const auto percent = static_cast<std::int32_t>(std::lround(tone.*row.member * 100));
        if (get_global_int(row.global, false) != percent) {
            set_global_int(row.global, percent);
        }
    }
    const double gamma = tone.gamma * neutral_gamma;
    if (std::abs(get_global_double(gamma_global, false) - gamma) > 1e-6) {
        set_global_double(gamma_global, std::round(gamma * 1e6) / 1e6);
    }
}

void write_channels_to_globals(const std::vector<ChannelChoice>& channels) {
    for (const ChannelChoice& channel : channels) {
        if (channel.number < 0 || channel.number >= most_numbers) {
            continue;
        }
        const ChannelChoice before = read_channel_from_globals(channel.number);
        if (std::abs(before.percent - channel.percent) > 0.05) {
            set_global_double(numbered("rks_lighting_channel_intensity", channel.number),
                              std::round(channel.percent * 10) / 1000);
        }
        if (before.on != channel.on) {
            set_global_bool(numbered("bks_lighting_channel_on", channel.number), channel.on);
        }
    }
}

ChannelChoice read_channel_from_globals(int number) {
    ChannelChoice choice;
    if (number >= 0 && number < most_numbers) {
        choice.percent =
            100 * get_global_double(numbered("rks_lighting_channel_intensity", number), false);
        choice.on = get_global_bool(numbered("bks_lighting_channel_on", number), false);
        choice.number = number;
    }
    return choice;
}

} // namespace KestraBatch
