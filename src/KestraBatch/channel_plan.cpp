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

/// The kind of a placed light: what it is called by.
LightKind kind_of(const ChannelWishes& wishes, int number) {
    const auto number_of = [&](LightKind kind) { return wishes.number[index_of(kind)]; };
    return number == number_of(LightKind::ceiling) && number != number_of(LightKind::other)
               ? LightKind::ceiling
               : LightKind::other;
}

/// The number of a placed light's channel among those that are wished for.
int wished(const ChannelWishes& wishes, int number) {
    return std::clamp(number, 0, wishes.most - 1);
}

std::array<bool, light_kinds> lights_of(const renderer::Scene& scene) {
    const renderer::Environment& e = scene.environment;
    std::array<bool, light_kinds> there{};
    there[index_of(LightKind::sun)] = e.sun && e.sun->intensity > 0;
    there[index_of(LightKind::sky)] =
        e.sky || gives_light(e.constant) || (!e.visible && gives_light(e.background));
    there[index_of(LightKind::glow)] =
        std::any_of(scene.meshes.begin(), scene.meshes.end(),
                    [&](const renderer::Mesh& mesh) {
                        const renderer::Material& material = scene.materials[mesh.material];
                        return gives_light(material.emission) && !material.is_lamp;
                    }) ||
        std::any_of(scene.decals.begin(), scene.decals.end(),
                    [](const renderer::Decal& decal) { return gives_light(decal.emission); });
    return there;
}

/// The names of the lights at each number that has any.
std::map<int, std::string> names_of(const ChannelWishes& wishes, const renderer::Scene& scene) {
    std::map<int, std::array<bool, light_kinds>> kinds;
    const auto there = lights_of(scene);
    for (std::size_t i = 0; i < light_kinds; ++i) {
        if (there[i]) {
            kinds[wishes.number[i]][i] = true;
        }
    }
    for (const renderer::Light& light : scene.lights) {
        const int number = wished(wishes, light.channel);
        kinds[number][index_of(kind_of(wishes, number))] = true;
    }
    std::map<int, std::string> names;
    for (const auto& [number, present] : kinds) {
        std::string& name = names[number];
        for (std::size_t i = 0; i < light_kinds; ++i) {
            if (present[i]) {
                name += (name.empty() ? "" : ", ") + std::string(kind_rows[i].name);
            }
        }
    }
    return names;
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
    const auto names = names_of(wishes, scene);
    light = {};
    renderer::ChannelWeights weights = renderer::neutral_weights();
    std::map<int, int> at;
    for (const auto& [number, name] : names) {
        const auto known = static_cast<std::size_t>(number);
        if (light.channels.size() == renderer::most_channels) { // the last takes the rest
            at[number] = renderer::most_channels - 1;
            continue;
        }
        const std::size_t index = light.channels.size();
        at[number] = static_cast<int>(index);
        weights[index] = wishes.weights[known];
        light.channels.push_back(
            {wishes.names[known].empty() ? name : wishes.names[known], number});
    }
    const auto channel_at = [&](int number) {
        const auto found = at.find(number);
        return found == at.end() ? 0 : found->second; // there is no such light
    };
    const auto channel_of = [&](LightKind kind) {
        return channel_at(wishes.number[index_of(kind)]);
    };
    light.sun = channel_of(LightKind::sun);
    light.sky = channel_of(LightKind::sky);
    for (renderer::Material& material : scene.materials) {
        material.light_channel = material.is_lamp
                                     ? channel_at(wished(wishes, material.light_channel))
                                     : channel_of(LightKind::glow);
    }
    for (renderer::Light& placed : scene.lights) {
        placed.channel = channel_at(wished(wishes, placed.channel));
    }
    for (renderer::Decal& decal : scene.decals) {
        decal.light_channel = channel_of(LightKind::glow);
    }
    return weights;
}

} // namespace KestraBatch
