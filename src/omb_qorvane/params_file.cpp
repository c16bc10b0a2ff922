// write_params_files: materials, document and parameter file of the batch folder.
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/registry.h"
#include "omb/base/trace.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/ac_material.h"
#include "omb_qorvane/record_text.h"
#include "omb_qorvane/the_app.h"

namespace {

/// With the Asuni code only so many toolkit materials are written as such.
constexpr int most_asuni_materials = 13;

std::string model_name() {
    const std::string name = path_name(acDocManager()->curDocument()->fileName());
    return name.empty() ? "Untitled" : name;
}

std::string support_folder_of_renderer() {
    std::string folder;
    get_text_from_registry("HKEY_CURRENT_USER\\Software\\Halden\\Tessara Qor\\InstallDir", folder);
    if (folder.empty()) {
        folder = "C:\\Program Files\\tessara qor";
    }
    if (folder.back() == '\\') {
        folder.pop_back();
    }
    return folder;
}

struct params_values {
    const cl_omb_export& exporter;
    const green_button_row& code;
};

/// One line of the parameter file: text that stands before the value, and the value. A line with
/// `show` is left out when that says no.
struct params_line {
    const char* head;
    std::string (*value)(const params_values&) = nullptr;
    bool (*show)() = nullptr;
};

bool has_window() { return adsw_acadMainWnd() != 0; }

const params_line params_lines[] = {
    {"", [](const params_values& v) { return std::string(v.code.comment); }},
    {"*@KEY:APPLICATION_NAME;",
     [](const params_values& v) { return std::string(v.code.application); }},
    {"*@KEY:CALLING_APP;", [](const params_values& v) { return std::string(v.code.calling_app); }},
    {"*@KEY:VERSION;",
     [](const params_values& v) {
         const bool oem = v.exporter.green_button_app == GREEN_BUTTON_DELTA &&
                          get_global_bool("bqor_is_acad_oem");
         return std::string(oem ? "OEM" : "GreenButton");
     }},
    {"*@KEY:APPLICATION_FOLDER;",
     [](const params_values&) { return theApp().somb_support_folder; }},
    {"*@KEY:MATERIAL_MAPS;.\\Materials\\qor_matl_map.csv"},
    {"*@KEY:VERSION_INFO;1.1"},
    {"*@KEY:MODEL_NAME;", [](const params_values&) { return model_name(); }},
    {"*@KEY:MODEL_PATH;",
     [](const params_values&) { return acDocManager()->curDocument()->fileName(); }},
    {"*@KEY:UUID;UUID not set"},
    {"*@KEY:BATCH_GEOM_FILE;.\\batch_file.txt"},
    {"*@KEY:VIEW_FILE;.\\qor_view.txt"},
    {"*@KEY:LIGHT_FOLDER;.\\QorBatch_Lights"},
    {"*@KEY:MATERIAL_FOLDER;.\\Materials"},
    {"*@KEY:GLOBALS_FILE;.\\option_globals.txt"},
    {"*@KEY:DOC_FILE;.\\qor_doc.xml"},
    {"*@KEY:PROPS_FILE;.\\qor_props.txt"},
    {"*@KEY:TS3MATS_FILE;.\\qor_ts3mats.txt"},
    {"*@KEY:RPC_FOLDER;.\\rpcs"},
    {"#; Other Qor Batch settings;"},
    {"*@KEY:DBUNIT;1"},
    {"*@KEY:HWND;", [](const params_values&) { return std::to_string(adsw_acadMainWnd()); },
     &has_window},
    {"*@KEY:WTITLE;", [](const params_values&) { return acedMainWindowTitle(); }, &has_window},
    {"#;"},
    {"#;"},
    {"*@KEY:SupportFolder;", [](const params_values&) { return support_folder_of_renderer(); }},
};
const params_line params_last_lines[] = {
    {"#;"},
    {"*@KEY:GLOBAL;bks_qorvane_mode;0"},
    {"*@KEY:GLOBAL;bks_kestra_qor_mode;1"},
};

void add_line(std::string& text, const params_line& line, const params_values& values) {
    if (line.show != nullptr && !line.show()) {
        return;
    }
    text += line.head;
    if (line.value != nullptr) {
        text += record_name(line.value(values));
    }
    text += '\n';
}

} // namespace

void cl_omb_export::bring_settings_up_to_date() {
    if (green_button_app == GREEN_BUTTON_DELTA) {
        // Which options file goes with the program is no option of the picture: it stays.
        const bool oem = get_global_bool("bqor_is_acad_oem");
        const std::string defaults = get_global_string("sks_green_button_defaults");
        preset_globals(1);
        set_global_bool("bqor_is_acad_oem", oem);
        set_global_string("sks_green_button_defaults", defaults);
    } else {
        preset_globals(1);
        initialize_options_globals_file();
        read_globals_from_OMB_QorvaneDictionary();
        rewrite_options_file();
    }
}

std::string cl_omb_export::params_text() {
    const params_values values{*this, green_button_info(green_button_app)};
    std::string text;
    for (const params_line& line : params_lines) {
        add_line(text, line, values);
    }
    for (const std::string& folder : find_file_folders) {
        text += "*@KEY:SupportFolder;" + record_name(folder) + "\n";
    }
    for (const params_line& line : params_last_lines) {
        add_line(text, line, values);
    }
    return text;
}

bool cl_omb_export::write_material_file(const CTsMaterial& material, const std::string& name) {
    const std::string path =
        join_path(materials_folder, fmt::sprintf("%s.TsMaterial", encode_file_name(name)));
    std::string error;
    if (material.WriteFile(path, error)) {
        return true;
    }
    OMB_TRACE(1, "Cannot write material: %s", error);
    return false;
}

void cl_omb_export::write_material_files(CTsAcDoc& document) {
    int written = 0;
    for (std::size_t row = 0; row < document.MaterialRows().size(); ++row) {
        const AcDbObjectId id = document.MaterialRows()[row];
        const bool asuni_limit =
            green_button_app == GREEN_BUTTON_ASUNI && written >= most_asuni_materials;
        if (!id.isValid()) {
            continue;
        }
        const CTsMaterial* toolkit = document.ToolkitMaterial(id);
        if (toolkit != nullptr && !asuni_limit) {
            written += write_material_file(*toolkit, toolkit_material_name(*toolkit)) ? 1 : 0;
        } else if (const AcDbObjectPointer<AcDbMaterial> own(id); own) {
            write_material_file(OMB_AcMaterialToTsMaterial(*own), own->name());
        }
    }
}

void cl_omb_export::set_paths() {
    const std::string folder = get_batch_folder();
    view_file_path = join_path(folder, "qor_view.txt");
    params_path = get_params_file_full();
    batch_file_path = join_path(folder, "batch_file.txt");
    doc_file_path = join_path(folder, "qor_doc.xml");
    block_layers_path = join_path(materials_folder, "block_layers.txt");
}

bool cl_omb_export::write_doc_file(CTsAcDoc& document) {
    document.write_globals_into_tsdoc2();
    CTsXmlWriter writer;
    writer.Init(doc_file_path, 0, -1);
    document.Write(writer);
    if (writer.Close()) {
        return true;
    }
    OMB_TRACE(1, "Cannot write document: %s", writer.Error());
    return false;
}

std::string cl_omb_export::write_params_files() {
    theApp().refresh_document();
    CTsAcDoc* document = theApp().tsdoc;
    if (document == nullptr) {
        return {};
    }
    document->BuildTsAcMatTable();
    get_batch_folder();
    get_drawing_materials_folder();
    clear_folder(materials_folder, true);
    write_material_files(*document);
    CTsAcView(*document).TakeSettings();
    set_paths();
    write_doc_file(*document);
    const bool opened = params_file.open_atomic(params_path);
    if (opened) {
        params_file.write_data(params_text()); // its words are those of before the reset
        bring_settings_up_to_date();
        write_registry_entry("HKEY_CURRENT_USER\\SOFTWARE\\Ombrel Systems\\ts_support_files1",
                             {theApp().batch_exe_folder});
    }
    if (!opened || !params_file.close()) {
        last_error = "Cannot create parameters file: " + params_path;
        do_message_box("Cannot create parameters file:\n\n'" + params_path +
                           "'. \n\nMake sure that the file path exists and that the file is not in "
                           "use by another program.\n\nIt may be that a hidden instance of "
                           "Kestrabatch(_x64).exe is running in Task Manager, which has this file "
                           "open.",
                       "Qorvane Batch Error", message_box::icon_error);
        return {};
    }
    return params_path;
}
