// What a scan found, as text: the list file of the layer dialog, and a report of the same lines
// that nothing in this system gives a path, so that it is not written.
#include "host/db/symbol_tables.h"
#include "omb/base/trace.h"
#include "omb_qorvane/layer_facts.h"
#include "omb_qorvane/record_text.h"
#include "omb_qorvane/the_app.h"
#include "omb_qorvane/trait_resolution.h"

namespace {

void write_layers(cl_output_file& file, AcDbDatabase& database) {
    cl_layer_cache layers;
    for (const AcDbObjectId id : database.layerTable().records()) {
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(id);
        if (!layer) {
            continue;
        }
        const std::uint32_t color = colr_value(layers.find(id).color);
        file.write_fmt("MATL,%s\nCOLI,%d\nCOLR,%d, 0x%06X\nEND_MATL,%s\n#;\n", layer->getName(),
                       layer->color().colorIndex(), color, color, layer->getName());
    }
}

} // namespace

void cl_omb_export::write_scan_report() {
    if (map_file_path.empty() || !map_file.open_atomic(map_file_path)) {
        return;
    }
    write_scan_lines(map_file);
    map_file.close();
}

bool cl_omb_export::write_list_file(const std::string& path) const {
    cl_output_file file;
    if (!file.open_atomic(path, false)) {
        OMB_TRACE(1, "Cannot write list file: %s", path);
        return false;
    }
    write_scan_lines(file);
    return file.close();
}

void cl_omb_export::write_scan_lines(cl_output_file& file) const {
    file.write_fmt("SAPP,%s\nFOLDER,.\\Materials\nAPPLICATION_FOLDER,%s\n",
                   green_button_info(green_button_app).calling_app, theApp().somb_support_folder);
    write_layers(file, *acdbCurDwg());
    for (const AcDbObjectId id : layer_ids) {
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(id);
        file.write_fmt("LAYR,%s\n", layer ? layer->getName() : std::string());
    }
    for (const int index : index_colors) {
        file.write_fmt("LAYR,%s\n", color_index_key(index));
    }
    for (const std::uint32_t bgr : rgb_colors) {
        file.write_fmt("LAYR,RGB:(%d,%d,%d)\n", bgr & 0xff, bgr >> 8 & 0xff, bgr >> 16 & 0xff);
    }
    if (layer_ids.empty() && index_colors.empty() && rgb_colors.empty()) {
        int number = 0;
        for (const std::string& key : material_layer_array) {
            file.write_fmt("%d. LAYR,%s\n", number++, key);
        }
    }
    file.write_fmt("LAYR,Qor_Ground_Plane\nLAYR,Qor_Default_Color\nMCUR,%s\n", mat_map_folder);
}
