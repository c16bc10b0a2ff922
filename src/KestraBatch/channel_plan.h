// Which light goes into which channel: from the settings' numbers to the renderer's channels.
#pragma once

#include "renderer/light_channels.h"
#include "renderer/scene.h"

#include <array>
#include <cstddef>
#include <string>

namespace KestraBatch {

enum class LightKind { sun, sky, other, ceiling, glow };
inline constexpr std::size_t light_kinds = 5;

/// What the settings say about channels.
struct ChannelWishes {
    static constexpr std::size_t numbers = 9; ///< channels that the settings know, from 0 on

    int most = static_cast<int>(numbers);   ///< channels; lights beyond them go into the last
    std::array<int, light_kinds> number{};  ///< of each kind of light
    std::array<std::string, numbers> names; ///< that somebody gave; empty: the light's own
    std::array<float, numbers> weights{};   ///< 0 for a channel that is off
};

/// Reads `iks_channel_*`, `bks_auto_lighting_channels` (as many channels as there are lights),
/// `iks_lighting_channels`, and each channel's name, intensity and switch from the globals.
ChannelWishes read_channel_wishes();

/// The channels of a scene: one for each number that a light of the scene has, in ascending order.
/// A channel without light is left out; one that several lights share has their names, and beyond
/// renderer::most_channels the last takes the rest. Placed lights and their lamps come with the
/// settings' number as channel, and leave with their index. Marks the other glowing materials of
/// `scene`, fills `light`, and gives the settings' weights.
renderer::ChannelWeights plan_channels(const ChannelWishes& wishes, renderer::Scene& scene,
                                       renderer::ChannelSettings& light);

} // namespace KestraBatch
