// OMB_ExtractGeometryandRender: the order of events of one extraction.
#include "Kestra_Qor/render_size.h"
#include "host/db/block_extents.h"
#include "host/db/references.h"
#include "host/ed/ed.h"
#include "host/gi/shape_cache.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/processes.h"
#include "omb/base/trace.h"
#include "omb/globals/defaults_files.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/ac_material.h"
#include "omb_qorvane/record_text.h"
#include "omb_qorvane/the_app.h"
#include "omb_qorvane/ts_ac_world_draw.h"
#include "platform/files.h"
#include "platform/process.h"

#include <ctime>
#include <fmt/format.h>

struct cl_omb_export::extraction {
    CTsAcDoc& document;
    std::unique_ptr<CTsAcCommonDraw> common;
    std::unique_ptr<CTsAcGiGeometry> geometry;
    std::unique_ptr<CTsAcWorldDraw> world_draw;
    std::unique_ptr<CTsAcViewportDraw> viewport_draw;
    std::unique_ptr<CTsAcSubEntityTraits> traits;
    AcEdSelectionSet selection;
    double facetres = 0.5;
    std::uint64_t faces_before = 0; ///< of the writer, when the walk began
};

cl_omb_export::cl_omb_export() = default;
cl_omb_export::~cl_omb_export() = default;

void cl_omb_export::reset() {
    background_file.clear();
    background_xscale = background_yscale = 100;
}

int cl_omb_export::fail(int result, std::string message) {
    OMB_TRACE(1, "Extraction ended: %s", message);
    last_error = std::move(message);
    stream.flush();
    batch_file.close();
    return result;
}

int cl_omb_export::OMB_ExtractGeometryandRender(int mode, TsAcCallback callback,
                                                void* callback_data, const std::string&) {
    last_error.clear();
    if (!refresh_document()) {
        return fail(-1, "No current drawing.");
    }
    if (acdbResolveXrefs(*theApp().tsdoc->Database(), [](auto, auto) { return !acedUsrBrk(); }) !=
        Acad::eOk) {
        return fail(0, "The extraction was stopped.");
    }
    reset_extraction(mode);
    if (write_params_files().empty()) {
        return fail(0, last_error.empty() ? "No parameter file." : last_error);
    }
    if (!scan_only) {
        if (!open_stream()) {
            return fail(-1, "Cannot write the geometry stream: " + batch_file_path);
        }
        write_stream_header();
        write_material_list();
    }
    extraction run{*theApp().tsdoc, {}, {}, {}, {}, {}, {}, 0.5, stream.face_count()};
    begin_walk(run, callback, callback_data);
    make_draw_objects(run);
    select_all(run);
    prepare_walk_folders();
    walk(run);
    end_walk(run);
    if (was_aborted()) {
        return fail(0, "The extraction was stopped.");
    }
    update_channels(run.facetres);
    if (!end_stream()) {
        return fail(-1, "Cannot write the geometry stream: " + batch_file_path);
    }
    write_scan_report();
    if (scan_only || scan_for_layer_dialog) {
        return 0;
    }
    const AcDbObjectId viewport = acedActiveViewportId();
    if (AcDbObjectPointer<AcDbViewportTableRecord>(viewport)) {
        if (!write_view_file(viewport, theApp().tsdoc->m_Scale)) {
            return fail(0, "Cannot write the view: " + view_file_path);
        }
    }
    if (mode == EXTRACT_FOLDER_ONLY) {
        resave_ts_texture_images();
        return 1;
    }
    return start_batch_process();
}

bool cl_omb_export::refresh_document() {
    return acDocManager()->curDocument() != nullptr && theApp().refresh_document();
}

void cl_omb_export::reset_extraction(int mode) {
    if (batch_file.is_open()) { // an exception ended the last extraction
        stream.flush();
        batch_file.close();
    }
    material_layer_array.clear();
    material_layers_known_.clear();
    material_map_entries.clear();
    layer_ids.clear();
    rgb_colors.clear();
    index_colors.clear();
    num_lighting_channels = 2;
    scan_only = mode == EXTRACT_SCAN;
    if (!scan_only) {
        close_last_process();
        scan_for_layer_dialog = false;
    }
}

void cl_omb_export::close_last_process() {
    // Enough for the picture so far to be saved; what takes longer is asked once more and goes on.
    constexpr double grace_seconds = 5;
    if (last_process_id != 0) {
        close_program(last_process_id, grace_seconds, platform::program_name("KestraBatch.exe"));
    }
    last_process_id = last_thread_id = 0;
}

bool cl_omb_export::open_stream() {
    // Under a temporary name until it is closed, so that no half of it is read in mistake.
    return batch_file.open_atomic(batch_file_path);
}

void cl_omb_export::write_stream_header() {
    write_to_batch_file("#;Qor Batch Geometry from AutoCad\n#;" +
                        stream_time_text(std::time(nullptr)) + "\nDFFC;c8c8c8\nDFEC;000000\n");
}

void cl_omb_export::write_material_list() {
    const CTsAcDoc& document = *theApp().tsdoc;
    const std::vector<AcDbObjectId>& rows = document.MaterialRows();
    material_names.reset(rows.size());
    const auto write_row = [this](std::size_t row, const std::string& name) {
        write_to_batch_file(fmt::format("MATF;{}.TsMaterial\nMATI;{}\n", encode_file_name(name),
                                        row + cl_material_name_table::first_index));
        material_names.set(row, name);
    };
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (!rows[row].isValid()) {
            continue;
        }
        if (const CTsMaterial* toolkit = document.ToolkitMaterial(rows[row])) {
            write_row(row, toolkit_material_name(*toolkit));
        }
        if (const std::string& name = document.m_Materials[row].m_Name; !name.empty()) {
            write_row(row, name);
        }
    }
}

void cl_omb_export::begin_walk(extraction& run, TsAcCallback callback, void* callback_data) {
    run.document.BuildTsAcMatTable();
    run.document.FreeObjectBuffer();
    run.document.SetCallback(callback, callback_data);
    run.document.m_ObjectIndex = run.document.m_ObjectCount = 0;
    run.document.m_Abort = false;
    run.document.m_RpcMark = false;
    run.document.ClearTransforms();
}

void cl_omb_export::make_draw_objects(extraction& run) {
    run.common = std::make_unique<CTsAcCommonDraw>(*this, run.document, stream, scan_only,
                                                   scan_for_layer_dialog);
    CTsAcCommonDraw& common = *run.common;
    run.geometry = std::make_unique<CTsAcGiGeometry>(common);
    run.world_draw = std::make_unique<CTsAcWorldDraw>(common, *run.geometry);
    run.viewport_draw = std::make_unique<CTsAcViewportDraw>(common, *run.geometry);
    common.geometry = run.geometry.get();
    common.world_draw = run.world_draw.get();
    common.viewport_draw = run.viewport_draw.get();
    common.rpc.find_and_begin();
    run.viewport_draw->view.take(run.document, acedActiveViewportId());

    if (platform::environment("QORVANE_FACETS") == "camera") {
        cl_render_size size;
        compute_render_size(size, false);
        const CTsAcGiViewport& view = run.viewport_draw->view;
        common.camera_facets.emplace(view.eye, view.target, view.perspective, view.field_width,
                                     size.width);
    }
    const AcDbDatabase& database = *run.document.Database();
    run.facetres = static_cast<float>(database.facetres());
    run.traits = std::make_unique<CTsAcSubEntityTraits>(&common);
    run.traits->facet_scale = 1 / (2 * run.facetres);
    run.traits->set_deviation(0.01 / (2 * run.facetres));
    run.traits->setLayer(database.layerZero());
    run.traits->setMaterial(database.globalMaterial());
    common.traits = run.traits.get();
}

void cl_omb_export::select_all(extraction& run) {
    acedSSGet("_A", run.selection); // without a filter
    acutPrintf(fmt::format("\nRendering drawing. Units: {}", run.document.Database()->insunits()));
    run.document.m_ObjectCount = static_cast<int>(run.selection.length());
}

void cl_omb_export::prepare_walk_folders() {
    decal_counter = plant_counter = 0;
    get_batch_folder();
    clear_folder(get_drawing_decals_folder(), true);
    clear_folder(get_drawing_plants_folder(), true);
}

void cl_omb_export::walk(extraction& run) {
    CTsAcDoc& document = run.document;
    const extraction_progress& progress = theApp().progress;
    const auto total = static_cast<std::int64_t>(run.selection.length());
    constexpr int between_reports = 256;
    // Nothing changes during the walk: boxes and costly shapes of blocks are computed once.
    const AcDbBlockExtentsScope block_boxes;
    const gi::ShapeCacheScope block_shapes;
    while (document.m_ObjectIndex < total && !document.m_Abort) {
        const AcDbObjectId id = run.selection.at(static_cast<std::size_t>(document.m_ObjectIndex));
        if (id.isValid()) {
            const AcDbObjectPointer<AcDbEntity> entity(id);
            if (entity && entity->visibility() == AcDb::kVisible) {
                run.geometry->draw(entity.object());
            }
        }
        if (document.m_ObjectIndex % between_reports == 0) {
            run.common->regenAbort();
            if (progress && !progress(document.m_ObjectIndex, total)) {
                document.m_Abort = true;
            }
        }
        ++document.m_ObjectIndex;
    }
    if (progress && !document.m_Abort) {
        progress(total, total);
    }
}

void cl_omb_export::end_walk(extraction& run) {
    if (run.common->rpc.begin != nullptr && run.common->rpc.end != nullptr) {
        run.common->rpc.end();
    }
    run.common->report.faces = stream.face_count() - run.faces_before;
    last_face_count = static_cast<std::int64_t>(run.common->report.faces);
    if (!scan_only) {
        const std::string not_written = run.common->report.text();
        if (!not_written.empty()) {
            acutPrintf(not_written);
            OMB_TRACE(1, "%s", not_written);
        }
    }
    run.selection.ids().clear();
    run.traits.reset();
    run.viewport_draw.reset();
    run.world_draw.reset();
    run.geometry.reset();
    run.common.reset();
}

bool cl_omb_export::was_aborted() const {
    const CTsAcDoc& document = *theApp().tsdoc;
    return document.m_Abort || !document.Notify(4) || !document.Notify(2);
}

void cl_omb_export::update_channels(double facetres) {
    CTsAcDoc& document = *theApp().tsdoc;
    document.m_FacetRes = facetres;
    if (!get_global_bool("bks_auto_lighting_channels")) {
        return;
    }
    const bool delta = green_button_app == GREEN_BUTTON_DELTA;
    const bool oem = delta && get_global_bool("bqor_is_acad_oem"); // its option file is its own
    if (delta && !oem) {
        read_default_globals_file(find_render_defaults_file(
            get_global_string("sks_green_button_defaults"), theApp().somb_support_folder));
        take_background();
    } else if (!oem) {
        initialize_options_globals_file();
    }
    document.SetNumChannels(num_lighting_channels + 1);
    set_global_int("iks_lighting_channels", num_lighting_channels + 1);
    if (!oem) {
        rewrite_options_file();
    }
}

void cl_omb_export::take_background() {
    if (file_exists(background_file)) {
        set_global_string("sqor_background_image", background_file);
        set_global_double("rqor_background_xscale", background_xscale);
        set_global_double("rqor_background_yscale", background_yscale);
    }
}

bool cl_omb_export::end_stream() {
    if (!batch_file.is_open()) {
        return scan_only;
    }
    write_to_batch_file("END;\n");
    stream.flush();
    map_file.close();
    return batch_file.close();
}

// Materials carry no pictures yet, so there is nothing to save again; only what an earlier program
// left beside them goes.
void cl_omb_export::resave_ts_texture_images() {
    clear_folder(get_drawing_materials_folder(), false, ".omobj");
}

int cl_omb_export::start_batch_process() {
    const std::string exe = get_renderbatch_exe();
    const std::string command_line = fmt::format("\"{}\" \"{}\"", exe, params_path);
    const std::string folder = get_temporary_directory();
    if (file_exists(join_path(folder, "omb_leave_last"))) {
        std::string ignored;
        write_whole_file(join_path(folder, "qor_batch_params.bat"), command_line + "\n", ignored);
    }
    std::string error;
    const auto started = platform::start_process(exe, {params_path}, application_folder, error);
    if (!started) {
        // Composed and not shown: a render that does not start is silent.
        last_error = fmt::format("Render failure. Process could not be started.\n\nSEXEC: {}\n\n{}",
                                 command_line, error);
        OMB_TRACE(1, "%s", last_error);
        return 0;
    }
    last_process_id = started->process_id;
    last_thread_id = started->thread_id;
    return 1;
}

std::string cl_omb_export::get_renderbatch_exe() const {
    const bool plain_word =
        green_button_app >= GREEN_BUTTON_ASUNI && green_button_app <= GREEN_BUTTON_ZWCAD;
    return join_path(theApp().batch_exe_folder,
                     platform::program_name(plain_word ? "KestraBatch.exe" : "KestraBatch64.exe"));
}

void cl_omb_export::add_material_layer(const std::string& key) {
    if (material_layers_known_.insert(key).second) {
        material_layer_array.push_back(key);
    }
}

void cl_omb_export::add_entry_to_material_map_file(const std::string& type,
                                                   const std::string& layer,
                                                   const std::string& value,
                                                   const std::string& material) {
    material_map_entries.insert({type, layer, value, material});
}
