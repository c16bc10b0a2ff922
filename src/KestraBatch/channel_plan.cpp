// From the settings' numbers to the renderer's channels.
#include "KestraBatch/channel_plan.h"

#include "omb/globals/globals.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace KestraBatch {

namespace {

struct KindRow {
    const char* global;
    const char* name;
};

/// In the order of LightKind.
constexpr std::array<KindRow, light_kinds> kind_rows{{
    {"iks_channel_sun", "Sun"},
    {"iks_channel_sky", "Sky"},
    {"iks_channel_other", "Other lights"},
    {"iks_channel_ceiling", "Ceiling lights"},
    {"iks_channel_self_glow", "Glow"},
}};

constexpr std::size_t index_of(LightKind kind) { return static_cast<std::size_t>(kind); }

bool gives_light(renderer::Rgb c) { return renderer::max_component(c) > 0; }

/// The name that somebody gave to a channel; nothing when it is the factory's.
std::string given_name(const std::string& global) {
    const cl_variable_base* variable = globals.lookup(global);
    return variable != nullptr && variable->value_text() != variable->default_text()
               ? variable->value_text()
               : std::string();
}

std::array<bool, light_kinds> lights_of(const renderer::Scene& scene) {
    const renderer::Environment& e = scene.environment;
    std::array<bool, light_kinds> there{};
    there[index_of(LightKind::sun)] = e.sun && e.sun->intensity > 0;
    there[index_of(LightKind::sky)] =
        e.sky || gives_light(e.constant) || (!e.visible && gives_light(e.background));
    there[index_of(LightKind::glow)] =
        std::any_of(scene.meshes.begin(), scene.meshes.end(), [&](const renderer::Mesh& mesh) {
            return gives_light(scene.materials[mesh.material].emission);
        });
    return there;
}

} // namespace

ChannelWishes read_channel_wishes() {
    ChannelWishes wishes;
    const bool one = get_global_bool("bks_lowend_render_mode", false);
    const bool automatic = get_global_bool("bks_auto_lighting_channels", false);
    const int highest = static_cast<int>(ChannelWishes::numbers) - 1;
    if (one || !automatic) {
        wishes.most =
            one ? 1 : std::clamp(get_global_int("iks_lighting_channels", false), 1, highest + 1);
    }
    for (std::size_t i = 0; i < light_kinds; ++i) {
        wishes.number[i] = get_global_int(kind_rows[i].global, false);
    }
    // the wall models' way of telling light: a fixed glow, and intensities in a unit of their own
    const bool walls = get_global_bool("bqor_is_brinmoor", false);
    if (walls) {
        wishes.number[index_of(LightKind::glow)] = 4;
    }
    for (std::size_t i = 0; i < ChannelWishes::numbers; ++i) {
        const std::string number = std::to_string(i);
        wishes.names[i] = given_name("sks_lighting_channel_name" + number);
        const double intensity =
            get_global_double("rks_lighting_channel_intensity" + number, false);
        const bool on = walls || get_global_bool("bks_lighting_channel_on" + number, false);
        const double weight = walls || !std::isfinite(intensity) ? 1 : intensity;
        wishes.weights[i] = on ? static_cast<float>(std::clamp(weight, 0.0, 1e6)) : 0.0f;
    }
    for (int& number : wishes.number) {
        number = std::clamp(number, 0, wishes.most - 1);
    }
    return wishes;
}

renderer::ChannelWeights plan_channels(const ChannelWishes& wishes, renderer::Scene& scene,
                                       renderer::ChannelSettings& light) {
    const auto there = lights_of(scene);
    std::map<int, std::string> names;
    for (std::size_t i = 0; i < light_kinds; ++i) {
        if (there[i]) {
            std::string& name = names[wishes.number[i]];
            name += (name.empty() ? "" : ", ") + std::string(kind_rows[i].name);
        }
    }
    light = {};
    renderer::ChannelWeights weights = renderer::neutral_weights();
    std::map<int, int> at;
    for (const auto& [number, name] : names) {
        const auto known = static_cast<std::size_t>(number);
        const std::size_t index = light.channels.size();
        at[number] = static_cast<int>(index);
        weights[index] = wishes.weights[known];
        light.channels.push_back(
            {wishes.names[known].empty() ? name : wishes.names[known], number});
    }
    const auto channel_of = [&](LightKind kind) {
        const auto found = at.find(wishes.number[index_of(kind)]);
        return found == at.end() ? 0 : found->second; // there is no such light
    };
    light.sun = channel_of(LightKind::sun);
    light.sky = channel_of(LightKind::sky);
    for (renderer::Material& material : scene.materials) {
        material.light_channel = channel_of(LightKind::glow);
    }
    return weights;
}

} // namespace KestraBatch
