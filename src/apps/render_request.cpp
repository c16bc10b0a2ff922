// Fills the settings store from flags and defaults, and hands what changed to the drawing.
#include "apps/render_request.h"

#include "Kestra_Qor/render_size.h"
#include "Kestra_Qor/sun_sky.h"
#include "host/db/sun.h"
#include "omb/base/profile.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb/globals/trace_values.h"
#include "omb_qorvane/dictionary.h"
#include "omb_qorvane/units.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

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

std::string drawing_name(const AcDbDatabase& database) {
    return std::filesystem::path(database.filename()).stem().string();
}

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

/// Settings of a single picture: they say nothing about the drawing.
constexpr const char* kPictureOnly[] = {"bks_close_window_when_image_done",
                                        "bks_prompt_when_image_done",
                                        "bks_auto_name_image",
                                        "bks_make_auto_image_name_unique",
                                        "sks_auto_image_folder",
                                        "sks_auto_image_name",
                                        "sks_auto_image_save_name",
                                        "sks_auto_image_save_name2",
                                        "sks_autosave_image_save_name"};
/// Settings that only a drawing itself can know: the last one's, left in the profile, do not count.
constexpr const char* kDrawingBound[] = {"sks_acad_drawing_units", "rqor_groundplane_elevation",
                                         "somb_acad_database_name"};
constexpr const char* kSizeNames[] = {"iks_render_size", "bks_use_sketchup_aspect_ratio",
                                      "iks_resx", "iks_resy"};

} // namespace

RenderRequest::RenderRequest(const Options& options, AcDbDatabase& database)
  : options_(options)
  , database_(database)
  , stored_(names_in_OMB_QorvaneDictionary(database)) {
    preset_application_globals(0);
    for (const char* name : kDrawingBound) {
        find_global(name, SAVE_ANY, false)->restore_default();
    }
    read_globals_from_OMB_QorvaneDictionary(database);
    std::vector<std::string> names;
    get_global_names_sorted(names);
    for (const std::string& name : names) {
        const cl_variable_base* variable = globals.lookup(name);
        std::string text = variable->value_text();
        if (stored_.contains(name) ||
            (is_saved_type(variable->save_type) && text != variable->default_text())) {
            own_.emplace(name, std::move(text));
        }
    }
}

PictureSize RenderRequest::size() const {
    PictureSize size;
    if (options_.width > 0) {
        size = {options_.width & ~1, options_.height & ~1}; // sizes are even
    } else if (std::ranges::any_of(kSizeNames, [&](const char* name) { return is_own(name); })) {
        cl_render_size record;
        record.aspect = static_cast<double>(size.width) / size.height;
        for (const char* name : kSizeNames) {
            if (is_own(name)) {
                set_global_text(name, own_.at(name));
            }
        }
        // Without a window there is no viewport whose shape could count: an own size keeps its own.
        if (get_global_int("iks_render_size") == kCustomSize && get_global_int("iks_resy") > 0) {
            record.aspect =
                static_cast<double>(get_global_int("iks_resx")) / get_global_int("iks_resy");
        }
        compute_render_size(record, false);
        size = {record.width, record.height};
    }
    return size;
}

namespace {

/// Where the drawing's own sun stands, when it has one that is on and knows its date.
std::optional<AcDbSunPosition> own_sun(const AcDbDatabase& database) {
    constexpr int kFirstYear = 1900;
    const AcDbObjectPointer<AcDbViewportTableRecord> viewport(database.activeViewportId());
    const AcDbObjectPointer<AcDbSun> sun(viewport ? viewport->sunId() : AcDbObjectId());
    return sun && sun->isOn() && sun->date().year >= kFirstYear ? std::optional(sun->position())
                                                                : std::nullopt;
}

} // namespace

/// Defaults of a picture, which the drawing and the user may know better.
void RenderRequest::set_picture_defaults(const ResolvedView& view) const {
    const auto* preset = std::ranges::find_if(
        kPresetNames, [&](const PresetName& row) { return options_.preset == row.flag; });
    rb_set_default_lighting(preset != std::end(kPresetNames) ? preset->name : "Exterior");
    set_global_bool("bks_sun_setting_native", false);
    set_global_bool("bks_sun_setting_manual", true);
    const AcDbSunPosition beside_camera{
        std::fmod(camera_azimuth(view.view) + kSunFromCamera + 360, 360), kSunAltitude};
    const AcDbSunPosition sun = own_sun(database_).value_or(beside_camera);
    set_global_double("rqor_sun_azimuth", sun.azimuth);
    set_global_double("rqor_sun_altitude", sun.altitude);
    set_global_bool("bks_ground_plane", true);
    const AcDbExtents box = rendered_extents(database_);
    const double low = box.minPoint().z;
    const double gap = 1e-5 * (box.maxPoint() - box.minPoint()).length();
    const double metres = metres_per_unit(default_units_word(database_.insunits()));
    set_global_double("rqor_groundplane_elevation", (low - gap) * metres / kMetresPerInch);
    if (options_.preset.empty()) { // a preset that was asked for wins
        for (const auto& [name, text] : own_) {
            set_global_text(name, text);
        }
    }
}

void RenderRequest::set_requested(const std::filesystem::path& image) const {
    const PictureSize picture = size();
    set_global_int("iks_render_size", kCustomSize);
    set_global_bool("bks_use_sketchup_aspect_ratio", false);
    set_global_int("iks_resx", picture.width);
    set_global_int("iks_resy", picture.height);
    if (options_.passes > 0) {
        set_global_int("iks_max_render_passes", options_.passes);
    }
    if (options_.time_seconds > 0) {
        // The settings know whole minutes; the rest of the limit is kept by the program itself.
        set_global_int("iks_max_render_minutes",
                       static_cast<int>(std::ceil(options_.time_seconds / 60)));
    }
    set_global_bool("bks_close_window_when_image_done", true);
    set_global_bool("bks_prompt_when_image_done", false);
    set_global_bool("bks_auto_name_image", !image.empty());
    if (!image.empty()) {
        set_global_bool("bks_make_auto_image_name_unique", false);
        set_global_string("sks_auto_image_folder", image.parent_path().string());
        set_global_string("sks_auto_image_name", image.filename().string());
    }
    for (const auto& [name, text] : options_.globals) {
        set_global_text(name, text);
    }
}

void RenderRequest::store(const ResolvedView& view, const std::filesystem::path& image) {
    acgsSetViewParameters(database_.activeViewportId(), view.view);
    const cl_profile_bulk one_write;
    set_picture_defaults(view);
    set_requested(image);
    dc_set_trace_values();
    write_globals_to_OMB_QorvaneDictionary(database_, drawing_name(database_));
}

std::string RenderRequest::why_not_savable(const AcDbDatabase& database) {
    const std::string version = database.versionCode();
    if (version < "AC1012") {
        return "a drawing of release 12 or older has no place for settings";
    }
    if (!database.loadReport().lost.empty()) {
        return "the drawing is damaged; what could not be read would be lost";
    }
    return {};
}

bool RenderRequest::save(std::string& error) {
    const auto put_back = [&](const char* name) {
        if (const auto own = own_.find(name); own != own_.end()) {
            set_global_text(name, own->second);
            write_global_to_OMB_QorvaneDictionary(database_, name);
        } else {
            remove_from_OMB_QorvaneDictionary(database_, name);
        }
    };
    std::ranges::for_each(kPictureOnly, put_back);
    if (options_.width == 0 &&
        std::ranges::any_of(kSizeNames, [&](const char* name) { return is_own(name); })) {
        std::ranges::for_each(kSizeNames, put_back);
    }
    return database_.dxfOut(database_.filename(), error) == Acad::eOk;
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

} // namespace apps
