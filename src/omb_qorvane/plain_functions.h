// The functions that other programs call, all plain.
#pragma once

#include <cstdint>

extern "C" {
/// Runs the start of a code word ("ASUNI", "DELTA", "GBCAD", "ZWCAD", "BRICS"); `defaults` may be
/// null. 1 when a start ran, 0 when it could not, -1 when there is no view or nothing to render.
int omb_green_button(const char* code, const char* defaults);
/// As omb_green_button, behind the options dialog in the batch program.
int omb_oem_button(const char* code, const char* defaults);
/// Background picture of the DeltaCADD start, with its scales in per cent. 1.
int omb_set_background(const char* file, double xscale, double yscale);
/// Adds a folder, once, to those that the renderer searches. 1; 0 without a folder.
int omb_add_search_path_for_FindFile(const char* folder);
/// Opens the dialog of materials by layer. 1; 0 without a main window of the host.
int omb_materials(void);
/// Opens the dialog of the lamps. 1; 0 without a main window of the host.
int omb_render_ready(void);
/// Not there yet: says so, and 0.
int omb_CreateMaterial(const char* name, const char* image, double tile_x, double tile_y,
                       const char* output);
/// Gives an entity (its handle in hexadecimal) or a layer a material of the drawing. 1; 0, told,
/// when one of them is not there.
int omb_set_entity_material(const char* handle, const char* material);
int omb_set_layer_material(const char* layer, const char* material);
/// The code of the CAD program that this run of the host serves, 0 to 5; may ask for it.
int get_green_button_code(void);
/// The plain start without dialogs and without a process: the batch folder of the current drawing.
/// 1 when it is done, 0 when it was stopped or the parameter file cannot be made, -1 when there is
/// nothing to render or the stream cannot be written.
int omb_extract_batch_folder(void);
/// Process id of the batch process started last; 0 when none is known.
std::int64_t omb_last_process_id(void);
/// Why the last extraction ended early, in words; "" when it did not.
const char* omb_last_error(void);
/// Triangles that the last extraction wrote: 0 means an empty picture.
std::int64_t omb_last_face_count(void);
/// Calls `progress(done, total, data)` now and then while entities are extracted; 0 from it stops
/// the extraction. Null takes it away.
void omb_set_progress(int (*progress)(std::int64_t done, std::int64_t total, void* data),
                      void* data);
}
