// Light by the channel that it came from: a finished render that can be mixed again without
// rendering.
#pragma once

#include "renderer/film.h"
#include "renderer/tone.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace renderer {

/// Most channels that a render keeps apart.
inline constexpr int most_channels = 8;

/// What one channel contributes: radiance as Film::radiance, row by row from the top. The channels
/// of a film add up to its radiance.
struct LightChannel {
    std::string name; ///< as people know it: "Sun", "Sky", "Lamps", "Glow"
    std::vector<Rgb> radiance;
    int number = 0; ///< in the settings (`rks_lighting_channel_intensity0` and so on); not an index
};

/// A film whose light is also kept by channel. With no channels it is mixed as a whole.
struct ChannelFilm {
    Film film;
    std::vector<LightChannel> channels;
};

/// Factors on the channels' light, 1 as rendered, 0 off.
using ChannelWeights = std::array<float, most_channels>;
ChannelWeights neutral_weights();

/// The film with its radiance mixed anew. Albedo, normals, depth and alpha stay; the variance is
/// scaled as if noise were a fixed share of the light. With neutral weights it is the film as it
/// stands. Throws std::invalid_argument when a buffer does not fit the film's size; a channel
/// without radiance gives no light.
Film mix(const ChannelFilm& channels, const ChannelWeights& weights);

/// mix and tone_map in one go, on all cores, without a film in between: for sliders. With
/// `exposure` above 0 that factor is taken instead of measuring.
DisplayImage mix_and_tone(const ChannelFilm& channels, const ChannelWeights& weights,
                          const ToneSettings& tone);

} // namespace renderer
