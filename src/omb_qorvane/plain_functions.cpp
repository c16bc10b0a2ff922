// The functions that other programs call.
#include "omb_qorvane/plain_functions.h"

#include "omb/base/errors.h"
#include "omb/base/text.h"
#include "omb_qorvane/OMB_Qorvane.h"
#include "omb_qorvane/batch_calls.h"
#include "omb_qorvane/commands.h"
#include "omb_qorvane/driver.h"
#include "omb_qorvane/material_assignment.h"

#include <algorithm>

namespace {

std::string text_of(const char* text) { return text != nullptr ? text : ""; }

std::string code_form(const std::string& text) { return omb::to_upper(omb::trim(text)); }

/// Exceptions end at the border of the module.
template <class Work>
int guarded(int on_failure, Work&& work) {
    if (theApp_instance == nullptr) {
        return on_failure;
    }
    std::string text;
    const int status = run_guarded("Error in a plain function", on_failure, work, &text);
    if (!text.empty()) {
        theApp().omb_export.last_error = text;
        acutPrintf("\n" + text + "\n");
    }
    return status;
}

} // namespace

extern "C" {

int omb_green_button(const char* code, const char* defaults) {
    return guarded(0, [&] {
        first_use();
        return run_green_button(text_of(code), text_of(defaults));
    });
}

int omb_oem_button(const char* code, const char* defaults) {
    return guarded(0, [&] {
        first_use();
        const int number = green_button_code_of(code_form(text_of(code)));
        if (number > 0) { // whose options they are
            theApp().omb_export.green_button_app = number;
        }
        show_options_dialog(adsw_acadMainWnd());
        return run_green_button(text_of(code), text_of(defaults));
    });
}

int omb_set_background(const char* file, double xscale, double yscale) {
    return guarded(0, [&] {
        cl_omb_export& exporter = theApp().omb_export;
        exporter.background_file = text_of(file);
        exporter.background_xscale = xscale;
        exporter.background_yscale = yscale;
        return 1;
    });
}

int omb_add_search_path_for_FindFile(const char* folder) {
    return guarded(0, [&] {
        std::vector<std::string>& folders = theApp().omb_export.find_file_folders;
        const std::string name = text_of(folder);
        if (name.empty()) {
            return 0;
        }
        if (std::find(folders.begin(), folders.end(), name) == folders.end()) {
            folders.push_back(name);
        }
        return 1;
    });
}

int get_green_button_code(void) {
    return guarded(0, [] {
        first_use();
        return find_green_button_code();
    });
}

int omb_materials(void) {
    return guarded(0, [] {
        const std::uintptr_t window = first_use();
        if (window == 0) {
            return 0;
        }
        open_layer_materials(window);
        return 1;
    });
}

int omb_render_ready(void) {
    return guarded(0, [] {
        const std::uintptr_t window = first_use();
        if (window == 0) {
            return 0;
        }
        open_render_ready(window);
        return 1;
    });
}

int omb_CreateMaterial(const char*, const char*, double, double, const char*) {
    return guarded(0, [] {
        acutPrintf("\nMaking a material is not there yet.\n");
        return 0;
    });
}

int omb_set_entity_material(const char* handle, const char* material) {
    return guarded(
        0, [&] { return assign_entity_material(text_of(handle), text_of(material)) ? 1 : 0; });
}

int omb_set_layer_material(const char* layer, const char* material) {
    return guarded(
        0, [&] { return assign_layer_material(text_of(layer), text_of(material)) ? 1 : 0; });
}

int omb_extract_batch_folder(void) {
    return guarded(-1, [] {
        first_use();
        return plain_start(start_after_dialog, EXTRACT_FOLDER_ONLY);
    });
}

std::int64_t omb_last_process_id(void) {
    return theApp_instance != nullptr ? theApp().omb_export.last_process_id : 0;
}

const char* omb_last_error(void) {
    return theApp_instance != nullptr ? theApp().omb_export.last_error.c_str() : "";
}

std::int64_t omb_last_face_count(void) {
    return theApp_instance != nullptr ? theApp().omb_export.last_face_count : 0;
}

void omb_set_progress(int (*progress)(std::int64_t, std::int64_t, void*), void* data) {
    if (theApp_instance == nullptr) {
        return;
    }
    theApp().progress = nullptr;
    if (progress != nullptr) {
        theApp().progress = [=](std::int64_t done, std::int64_t total) {
            return progress(done, total, data) != 0;
        };
    }
}

} // extern "C"
