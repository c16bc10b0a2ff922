// `cl_omb_export`: writes a drawing's batch folder and starts the batch process.
#pragma once

#include "host/db/dictionary.h"
#include "host/ed/ed.h"
#include "omb/base/files.h"
#include "omb_qorvane/material_name_table.h"
#include "omb_qorvane/stream_writer.h"
#include "omb_qorvane/ts_ac_doc.h"

#include <array>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class CTsAcCommonDraw;
class CTsAcSubEntityTraits;

/// The CAD program that the add-on serves.
enum green_button_codes : int {
    GREEN_BUTTON_NONE = 0, ///< plain start
    GREEN_BUTTON_ASUNI = 1,
    GREEN_BUTTON_DELTA = 2,
    GREEN_BUTTON_GBCAD = 3,
    GREEN_BUTTON_ZWCAD = 4,
    GREEN_BUTTON_BRICS = 5
};
/// What goes with a code.
struct green_button_row {
    const char* code_word;    ///< "" for the plain start
    const char* calling_app;  ///< CALLING_APP of the parameter file
    const char* folder_word;  ///< null: the drawing's own name
    const char* comment;      ///< first line of the parameter file
    const char* application;  ///< APPLICATION_NAME
    const char* program_name; ///< in titles of messages
};
/// std::invalid_argument for a code out of 0 to 5.
const green_button_row& green_button_info(int code);
/// The code of a word, or -1.
int green_button_code_of(const std::string& word);

/// Told when the host has no main window.
inline constexpr const char* no_parent_window =
    "OMB_Qorvane Unable to locate AutoCAD parent window.";

enum extraction_mode : int {
    EXTRACT_AND_RENDER = 0,
    EXTRACT_SCAN = 1,       ///< layers and colours only, no files
    EXTRACT_FOLDER_ONLY = 2 ///< no process
};

class cl_omb_export {
public:
    cl_omb_export();
    virtual ~cl_omb_export();

    /// The extraction. 1 when the process was started or the folder is done; 0 on abort, a failed
    /// start, a scan, or without a parameter file; -1 without a document or when the stream cannot
    /// be written.
    virtual int OMB_ExtractGeometryandRender(int mode, TsAcCallback callback, void* callback_data,
                                             const std::string& ignored);
    void reset();

    // Folders. Each is made when missing and kept in its member; "" without a current document.
    std::string get_drawing_name() const;
    std::string get_drawing_files_folder();
    std::string get_batch_folder();
    /// Where the files of a drawing of that name (without folder and extension) lie, made or not.
    std::string drawing_folder_of(const std::string& drawing_name) const;
    std::string get_drawing_materials_folder();
    std::string get_material_images_folder(); ///< stores where the materials getter does
    std::string get_drawing_lights_folder();
    std::string get_drawing_plants_folder();
    std::string get_drawing_decals_folder();
    std::string get_drawing_temp_images_folder();
    std::string get_smaterial_schemes_folder();
    /// Name of the parameter file: the second name when the first cannot be removed.
    std::string get_params_file_full();
    /// Deletes the light folder and the folder of texture images.
    void reset_lights_and_images();

    /// The parameter file with everything that it names but stream and view. Its path, or "".
    std::string write_params_files();
    std::string get_renderbatch_exe() const;
    /// Material dialogs in the batch program, by mode: -1 edit (the material `name`, or the
    /// folder), -2 browse, -3 by layer, -4 start rendering, -5 create, -6 select a decal, others
    /// edit from the list file. -2, -5 and -6 run beside the host in the temporary folder `name`;
    /// the others are waited for. 1 when it ran, was started or asked, 0 when it could not.
    int EditMaterials(std::uintptr_t parent, int mode, const std::string& name);

    // Settings.
    /// The drawing's settings dictionary, made empty when missing and `create`; null id without.
    AcDbObjectId OMB_QorvaneDictionary(AcDb::OpenMode mode, AcDbDatabase* database, bool create);
    void read_globals_from_OMB_QorvaneDictionary();
    void write_globals_to_OMB_QorvaneDictionary();
    void initialize_options_globals_file();
    void read_default_globals_file(const std::string& path);
    void read_options_globals_file();
    void save_options_globals_file();
    void append_our_options_to_globals_file();

    /// Writes to the stream while it is open.
    void write_to_batch_file(std::string_view text) { stream.text(text); }
    /// Notes a host-assigned material for the material map; equal notes are kept once.
    void add_entry_to_material_map_file(const std::string& type, const std::string& layer,
                                        const std::string& value, const std::string& material);
    /// Enters a layer key without repeats.
    void add_material_layer(const std::string& key);

    int next_light_number = 0;
    int dynamic_light_index = -1; ///< the light written as DYLT
    int num_lighting_channels = 2;
    std::string background_file;
    double background_xscale = 100, background_yscale = 100;
    std::string application_folder; ///< of the program's own module
    std::string batch_folder;
    int decal_counter = 0, plant_counter = 0;
    std::vector<AcDbObjectId> layer_ids;   ///< of a scan
    std::vector<std::uint32_t> rgb_colors; ///< r | g << 8 | b << 16
    std::vector<int> index_colors;
    bool scan_only = false, scan_for_layer_dialog = false;
    std::vector<std::string> material_layer_array;
    std::string mat_map_folder;
    int green_button_app = GREEN_BUTTON_NONE;
    std::string params_path, batch_file_path, map_file_path, view_file_path, doc_file_path,
        block_layers_path;
    cl_output_file params_file, batch_file, map_file, view_file;
    std::int64_t last_process_id = 0, last_thread_id = 0;
    bool render_selection_set = false;
    // The batch process whose material browser stays open beside the host.
    std::int64_t dialog_process_id = 0, dialog_thread_id = 0;
    std::string dialog_word, dialog_folder; ///< what it was asked for last

    std::string materials_folder, lights_folder, plants_folder, decals_folder, temp_images_folder;
    std::vector<std::string> find_file_folders; ///< of omb_add_search_path_for_FindFile
    cl_stream_writer stream{batch_file};
    cl_material_name_table material_names;
    std::set<std::array<std::string, 4>> material_map_entries;
    std::int64_t last_face_count = 0; ///< triangles that the last extraction wrote
    std::string last_error; ///< of the extraction that ran last, in words; "" when it went well

private:
    struct extraction; ///< what lives during one extraction

    // extraction.cpp: the steps, in order.
    bool refresh_document();
    void reset_extraction(int mode);
    void close_last_process();
    bool open_stream();
    void write_stream_header();
    void write_material_list();
    void begin_walk(extraction& run, TsAcCallback callback, void* callback_data);
    void make_draw_objects(extraction& run);
    void select_all(extraction& run);
    void prepare_walk_folders();
    void walk(extraction& run);
    void end_walk(extraction& run);
    bool was_aborted() const;
    void update_channels(double facetres);
    bool end_stream();
    int start_batch_process();
    void resave_ts_texture_images();
    int fail(int result, std::string message);

    // params_file.cpp, view_file.cpp, scan_report.cpp
    void write_material_files(CTsAcDoc& document);
    bool write_material_file(const CTsMaterial& material, const std::string& name);
    void set_paths();
    bool write_doc_file(CTsAcDoc& document);
    void bring_settings_up_to_date();
    std::string params_text();
    bool write_view_file(AcDbObjectId viewport, double scale);
    void write_scan_report();
    void write_scan_lines(cl_output_file& file) const;
    bool write_list_file(const std::string& path) const;
    // edit_materials.cpp
    bool scan_materials(int mode);
    int browse_beside(const char* word, const std::string& folder);
    bool ask_running_browser(const char* word, const std::string& folder);
    std::string make_sub_folder(const char* name, std::string& member);

    std::unordered_set<std::string> material_layers_known_;
};
