// Render size and automatic image names, see render_size.h.
#include "Kestra_Qor/render_size.h"

#include "omb/base/folders.h"
#include "omb/base/text.h"
#include "omb/globals/globals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/printf.h>

namespace {

/// The low 24 bits with the lowest cleared; sizes beyond them wrap.
int make_even(int value) { return value & 0xfffffe; }

enum size_rows { small_size = 0, large_size = 2, hires_size = 3, viewport_size = 4, own_size = 5 };

/// Width of a preset row; a value that no row has is the medium one.
int preset_width(int row) {
    switch (row) {
    case small_size:
        return get_global_int("iqor_render_default_size_small");
    case large_size:
        return get_global_int("iqor_render_default_size_large");
    case hires_size:
        return get_global_int("iqor_render_default_size_hires");
    default:
        return get_global_int("iqor_render_default_size_medium");
    }
}

void choose_size(cl_render_size& record, int row, bool animation) {
    if (row == viewport_size) {
        record.width = get_global_int("iks_skp_resx");
        record.height = get_global_int("iks_skp_resy");
        if (record.width > 0 && record.height > 0) {
            record.aspect = static_cast<double>(record.width) / record.height;
        }
    } else if (row == own_size) {
        record.width = get_global_int(animation ? "iks_anim_resx" : "iks_resx");
        record.height = get_global_int(animation ? "iks_anim_resy" : "iks_resy");
    } else {
        record.width = preset_width(row);
        record.use_aspect = true;
    }
}

} // namespace

void compute_render_size(cl_render_size& record, bool for_animation) {
    const bool animation = for_animation || get_global_bool("bks_doing_auto_movie");
    record.panorama = !animation && get_global_bool("bks_make_panorama");
    record.use_aspect = get_global_bool(animation ? "bks_anim_use_sketchup_aspect_ratio"
                                                  : "bks_use_sketchup_aspect_ratio");
    choose_size(record, get_global_int(animation ? "iks_anim_render_size" : "iks_render_size"),
                animation);
    record.width = std::max(record.width, 50);
    if (record.panorama) {
        record.height = make_even(record.width / 2);
        record.width = record.height * 2;
    } else if (record.use_aspect) {
        const double aspect = record.aspect > 0 ? record.aspect : 1.0;
        record.width = make_even(record.width);
        const double height = std::min(record.width / aspect + 0.5, 16777215.0);
        record.height = static_cast<int>(height);
    }
    record.height = std::max(record.height, 30);
    record.width = make_even(record.width);
    record.height = make_even(record.height);
}

// ---- automatic image names ----

namespace {

struct image_extensions {
    std::string first, second;
};

image_extensions extensions_for(const std::string& name) {
    static const std::array<image_extensions, 4> by_global{
        {{"jpg", ""}, {"png", ""}, {"QorImage", ""}, {"jpg", "QorImage"}}};
    const int index = get_global_int("iks_auto_name_extension");
    const bool known = index >= 0 && index < static_cast<int>(by_global.size());
    image_extensions result = by_global[known ? static_cast<std::size_t>(index) : 0];
    if (const std::string own = path_extension(name); !own.empty()) {
        result.first = own;
    }
    return result;
}

/// The first of stem_1.ext, stem_2.ext ... that neither folder has.
std::string unique_name(const std::string& stem, const std::string& extension,
                        const std::string& folder, const std::string& names_folder) {
    constexpr int most = 1000000;
    std::string name;
    for (int i = 1; i <= most; ++i) {
        name = fmt::sprintf("%s_%d.%s", stem, i, extension);
        if (!file_exists(join_path(folder, name)) && !file_exists(join_path(names_folder, name))) {
            break;
        }
    }
    return name;
}

} // namespace

void set_auto_image_globals(const std::string& default_folder, const std::string& default_name) {
    std::string folder = get_global_string("sks_auto_image_folder");
    if (folder.empty()) {
        folder = default_folder;
    }
    std::string name = get_global_string("sks_auto_image_name");
    if (name.empty()) {
        name = default_name;
    }
    const image_extensions extensions = extensions_for(name);
    const std::string names_folder =
        join_path(get_temporary_directory(), "OMB_UNIQUE_AUTOSAVE_NAMES");
    make_folder(names_folder);
    const std::string stem = path_stem(name);
    if (get_global_bool("bks_make_auto_image_name_unique")) {
        name = unique_name(stem, extensions.first, folder, names_folder);
    } else if (path_extension(name).empty()) {
        name += "." + extensions.first;
    }
    set_global_string("sks_auto_image_save_name", join_path(folder, name));
    set_global_string("sks_autosave_image_save_name", join_path(folder, "Autosave_" + name));
    set_global_string("sks_auto_image_save_name2",
                      extensions.second.empty()
                          ? ""
                          : join_path(folder, path_stem(name) + "." + extensions.second));
    set_global_string("sks_auto_image_folder", folder);
    set_global_string("sks_auto_image_name", name);
}
