// Where a drawing's batch folder lies, and its sub-folders.
#include "omb/base/folders.h"
#include "omb/base/trace.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/the_app.h"
#include "platform/files.h"

#include <filesystem>

namespace {

AcApDocument* current_document() {
    AcApDocument* document = acDocManager()->curDocument();
    return document != nullptr && document->database() != nullptr ? document : nullptr;
}

std::string made(const std::string& folder) {
    if (make_folder(folder)) {
        return folder;
    }
    OMB_TRACE(1, "Cannot create folder: %s", folder);
    return {};
}

/// A drawing name as a folder below the data folder. Names that mean other folders are encoded.
std::string folder_word(const std::string& drawing_name) {
    if (drawing_name.empty()) {
        return "Untitled";
    }
    if (drawing_name == "." || drawing_name == "..") {
        return drawing_name.size() == 1 ? "%2e" : "%2e%2e";
    }
    return drawing_name;
}

/// The plain start's folder as the environment names it; "" when it does not.
std::string folder_from_environment(int green_button_app) {
    const std::string wanted = green_button_app == GREEN_BUTTON_NONE
                                   ? platform::environment("QORVANE_BATCH_FOLDER")
                                   : std::string();
    std::error_code ignored;
    return wanted.empty() ? wanted
                          : std::filesystem::absolute(wanted, ignored).lexically_normal().string();
}

/// A folder of the older place is copied over once; it stays.
void copy_from_older_place(const std::string& folder, const std::string& word) {
    const std::string older =
        join_path(join_path(platform::documents_folder().string(), "Qorvane"), word);
    if (folder_exists(folder) || !folder_exists(older)) {
        return;
    }
    if (!copy_folder(older, folder)) {
        OMB_TRACE(1, "Cannot copy folder: %s -> %s", older, folder);
    }
}

} // namespace

std::string cl_omb_export::get_drawing_name() const {
    const AcApDocument* document = current_document();
    return document != nullptr ? path_stem(document->fileName()) : std::string();
}

std::string cl_omb_export::drawing_folder_of(const std::string& drawing_name) const {
    const std::string given = folder_from_environment(green_button_app);
    if (!given.empty()) {
        return given;
    }
    const char* fixed_word = green_button_info(green_button_app).folder_word;
    return join_path(join_path(join_path(get_application_data_folder(), "Qorvane"), "OMB_Data"),
                     fixed_word != nullptr ? fixed_word : folder_word(drawing_name));
}

std::string cl_omb_export::get_drawing_files_folder() {
    if (current_document() == nullptr) {
        return {};
    }
    const std::string name = get_drawing_name();
    const std::string folder = drawing_folder_of(name);
    if (!folder_from_environment(green_button_app).empty()) {
        made(folder); // when it cannot be made, what is written there says so
        return folder;
    }
    if (get_application_data_folder().empty()) {
        return {};
    }
    if (green_button_app == GREEN_BUTTON_NONE) {
        copy_from_older_place(folder, folder_word(name));
    }
    return made(folder);
}

std::string cl_omb_export::get_batch_folder() {
    if (current_document() == nullptr) {
        return {};
    }
    batch_folder = get_drawing_files_folder();
    if (batch_folder.empty()) {
        batch_folder = made(join_path(get_temporary_directory(), "Qor_batch_acad"));
    }
    return batch_folder;
}

std::string cl_omb_export::make_sub_folder(const char* name, std::string& member) {
    const std::string folder = get_batch_folder();
    if (folder.empty()) {
        return {};
    }
    member = join_path(folder, name);
    made(member);
    return member;
}

std::string cl_omb_export::get_drawing_materials_folder() {
    return make_sub_folder("Materials", materials_folder);
}
// Stores where the materials getter does: the member means the folder asked for last. Kept.
std::string cl_omb_export::get_material_images_folder() {
    return make_sub_folder("Batch_TsTexture_Files", materials_folder);
}
std::string cl_omb_export::get_drawing_lights_folder() {
    return make_sub_folder("QorBatch_Lights", lights_folder);
}
std::string cl_omb_export::get_drawing_plants_folder() {
    return make_sub_folder("Plants", plants_folder);
}
std::string cl_omb_export::get_drawing_decals_folder() {
    return make_sub_folder("Decals", decals_folder);
}
std::string cl_omb_export::get_drawing_temp_images_folder() {
    return make_sub_folder("Temp Images", temp_images_folder);
}

std::string cl_omb_export::get_smaterial_schemes_folder() {
    std::string folder = get_global_string("sks_material_scheme_folder");
    if (folder.empty()) {
        folder = join_path(join_path(get_application_data_folder(), "Qorvane"), "Material Schemes");
        set_global_string("sks_material_scheme_folder", folder);
    }
    return folder;
}

std::string cl_omb_export::get_params_file_full() {
    const std::string folder = get_batch_folder();
    std::error_code ignored;
    std::string path = join_path(folder, "qor_render_params.txt");
    std::filesystem::remove(path, ignored);
    if (std::filesystem::exists(path, ignored)) {
        path = join_path(folder, fmt::sprintf("qor_render_params_%d.txt", 2));
        std::filesystem::remove(path, ignored);
    }
    return path;
}

void cl_omb_export::reset_lights_and_images() {
    const std::string folder = get_batch_folder();
    for (const char* name : {"QorBatch_Lights", "Batch_TsTexture_Files"}) {
        const std::string sub_folder = join_path(folder, name);
        if (!folder.empty() && folder_exists(sub_folder) && !delete_folder_tree(sub_folder)) {
            OMB_TRACE(1, "Cannot remove folder: %s", sub_folder);
        }
    }
}
