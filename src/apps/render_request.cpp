// Fills the settings store from flags and defaults, and hands what changed to the drawing.
#include "apps/render_request.h"

#include "Kestra_Qor/sun_sky.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/dictionary.h"
#include "omb_qorvane/units.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>

namespace apps {
namespace {

constexpr double kMetresPerInch = 0.0254;
constexpr double kSunAltitude = 40;   // degrees: light that models without long shadows
constexpr double kSunFromCamera = 52; // degrees to the right of the camera's own azimuth
constexpr int kCustomSize = 5;        // iks_render_size: width and height as given

struct PresetName {
    const char* flag;
    const char* name;
};
constexpr PresetName kPresetNames[] = {{"exterior", "Exterior"},
                                       {"interior", "Interior w/sun"},
                                       {"interior-no-sun", "Interior no sun"},
                                       {"hdri", "HDRi sky"},
                                       {"high-dynamic", "High Dynamic"}};

/// Sets a global by its text form, which every kind parses.
void set_global_text(const std::string& name, const std::string& text) {
    cl_variable_base* variable = find_global(name, SAVE_ANY, false);
    variable->set_string_value(text);
    variable->changed = 1;
}

/// Compass direction from the target to the camera, degrees clockwise from north.
double camera_azimuth(const AcGsView& view) {
    const AcGeVector3d direction = view.position - view.target;
    if (std::hypot(direction.x, direction.y) < 1e-9 * direction.length()) {
        return 180; // a plan is lit like a view from the south
    }
    return std::atan2(direction.x, direction.y) * 180 / std::numbers::pi;
}

/// Defaults of a picture, set where the drawing has stored nothing of its own.
void set_picture_defaults(const Options& options, AcDbDatabase& database,
                          const ResolvedView& view) {
    const auto* preset = std::ranges::find_if(
        kPresetNames, [&](const PresetName& row) { return options.preset == row.flag; });
    rb_set_default_lighting(preset != std::end(kPresetNames) ? preset->name : "Exterior");
    set_global_bool("bks_sun_setting_native", false);
    set_global_bool("bks_sun_setting_manual", true);
    const double azimuth = std::fmod(camera_azimuth(view.view) + kSunFromCamera + 360, 360);
    set_global_double("rqor_sun_azimuth", azimuth);
    set_global_double("rqor_sun_altitude", kSunAltitude);
    set_global_bool("bks_ground_plane", true);
    const AcDbExtents box = rendered_extents(database);
    const double low = box.minPoint().z;
    const double gap = 1e-5 * (box.maxPoint() - box.minPoint()).length();
    const double metres = metres_per_unit(default_units_word(database.insunits()));
    set_global_double("rqor_groundplane_elevation", (low - gap) * metres / kMetresPerInch);
}

void set_requested(const Options& options, const std::filesystem::path& image) {
    const PictureSize size = picture_size(options);
    set_global_int("iks_render_size", kCustomSize);
    set_global_bool("bks_use_sketchup_aspect_ratio", false);
    set_global_int("iks_resx", size.width);
    set_global_int("iks_resy", size.height);
    if (options.passes > 0) {
        set_global_int("iks_max_render_passes", options.passes);
    }
    if (options.time_seconds > 0) {
        // The settings know whole minutes; the rest of the limit is kept by the program itself.
        set_global_int("iks_max_render_minutes",
                       static_cast<int>(std::ceil(options.time_seconds / 60)));
    }
    set_global_bool("bks_close_window_when_image_done", true);
    set_global_bool("bks_prompt_when_image_done", false);
    set_global_bool("bks_auto_name_image", !image.empty());
    if (!image.empty()) {
        set_global_bool("bks_make_auto_image_name_unique", false);
        set_global_string("sks_auto_image_folder", image.parent_path().string());
        set_global_string("sks_auto_image_name", image.filename().string());
    }
}

/// Names of all globals that were set since the flags were last taken back.
std::set<std::string> take_changed() {
    std::vector<std::string> names;
    get_global_names_sorted(names);
    std::set<std::string> changed;
    for (const std::string& name : names) {
        cl_variable_base* variable = find_global(name, SAVE_ANY, false);
        if (variable->changed != 0) {
            changed.insert(name);
            variable->changed = 0;
        }
    }
    return changed;
}

} // namespace

PictureSize picture_size(const Options& options) {
    PictureSize size;
    if (options.width > 0) {
        size = {options.width & ~1, options.height & ~1}; // sizes are even
    }
    return size;
}

std::filesystem::path output_path(const Options& options, const std::string& drawing,
                                  const std::string& view_name) {
    const std::string stem = std::filesystem::path(drawing).stem().string();
    std::string pattern = options.output.empty() ? "%n.png" : options.output;
    const bool names_view = pattern.find("%v") != std::string::npos;
    std::string result;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char next = pattern[i] == '%' && i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        if (next == 'n' || next == 'v' || next == '%') {
            std::string word = next == 'n' ? stem : next == 'v' ? view_name : "%";
            std::ranges::replace(word, '/', '_');
            result += word;
            ++i;
        } else {
            result += pattern[i];
        }
    }
    std::filesystem::path path(result);
    if (options.views.size() > 1 && !names_view) {
        std::string word = view_name;
        std::ranges::replace(word, '/', '_');
        path.replace_filename(path.stem().string() + "-" + word + path.extension().string());
    }
    std::error_code failed;
    const auto absolute = std::filesystem::absolute(path, failed);
    return failed ? path : absolute.lexically_normal();
}

void store_request(const Options& options, AcDbDatabase& database, const ResolvedView& view,
                   const std::filesystem::path& image) {
    acgsSetViewParameters(database.activeViewportId(), view.view);
    const std::set<std::string> stored = names_in_OMB_QorvaneDictionary(database);
    preset_application_globals(0);
    take_changed();
    set_picture_defaults(options, database, view);
    for (const std::string& name : take_changed()) {
        if (!options.preset.empty() || !stored.contains(name)) {
            write_global_to_OMB_QorvaneDictionary(database, name);
        }
    }
    set_requested(options, image);
    for (const auto& [name, text] : options.globals) {
        set_global_text(name, text);
    }
    for (const std::string& name : take_changed()) {
        write_global_to_OMB_QorvaneDictionary(database, name);
    }
}

} // namespace apps
