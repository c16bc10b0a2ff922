// Commands of the gallery of controls, see gallery_commands.h.
#include "apps/gallery_commands.h"

#include "omb/dialog/dialog_command.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/progress_bar.h"
#include "omb/dialog/thumbnail_box.h"
#include "omb/dialog/tree_ctrl_box.h"
#include "omb/globals/globals.h"

namespace apps {
namespace {

void fill_tree(cl_tree_ctrl_box& tree) {
    tree.clear();
    const int house = tree.add_item("House");
    const int ground = tree.add_item("Ground floor", house, true);
    tree.add_item("Walls", ground, true);
    tree.add_item("Windows", ground, true);
    tree.add_item("Stairs", ground);
    const int upper = tree.add_item("Upper floor", house);
    tree.add_item("Walls", upper);
    tree.add_item("Balcony", upper, true);
    const int garden = tree.add_item("Garden", cl_tree_ctrl_box::no_row, true);
    tree.add_item("Trees", garden, true);
    tree.add_item("Lawn", garden);
    tree.select_item(ground);
    tree.refresh();
}

void fill_thumbnails(cl_thumbnail_box& thumbnails) {
    struct thumbnail {
        const char* title;
        const char* image;
    };
    constexpr thumbnail rows[] = {
        {"Setup", "kestra:setup.png"},
        {"Light", "kestra:light.png"},
        {"Sun", "kestra:sun.png"},
        {"Sky image", "kestra:hdri.png"},
        {"Background", "kestra:background.png"},
        {"Image", "kestra:image.png"},
        {"Special", "kestra:special.png"},
        {"Layers", "kestra:layers.png"},
        {"Camera", "kestra:camera.png"},
        {"Panorama", "panorama.hdr"},
        {"Missing", "not_there.png"},
    };
    thumbnails.clear();
    int value = 0;
    for (const thumbnail& row : rows) {
        thumbnails.add_item(row.title, row.image, value++);
    }
    thumbnails.refresh();
}

/// Texts with line breaks, colours and a date, which a dialog file cannot write.
int start(cl_dialog_command&) {
    set_global_string("sgallery_lines", "One line,\nand the next.", SAVE_NONE);
    set_global_string("sgallery_layers", "Walls\nWindows\nDoors\nFurniture\nGarden", SAVE_NONE);
    set_global_string("sgallery_some", "Windows\nDoors", SAVE_NONE);
    set_global_string("sgallery_checked", "Walls\nGarden", SAVE_NONE);
    set_global_string(
        "sgallery_rich",
        "A field of several lines.\nIt wraps long lines at its edge and keeps what is "
        "typed.",
        SAVE_NONE);
    set_global_COLORREF("cgallery_wall", parse_colorref("#e6d3b3"), SAVE_NONE);
    set_global_COLORREF("cgallery_lamp", parse_colorref("#ffd6aa"), SAVE_NONE);
    set_global_fpt("pgallery_date", fpt{2026, 6, 21}, SAVE_NONE);
    set_global_fpt("pgallery_time", fpt{16, 30, 0}, SAVE_NONE);
    return 0;
}

int fill(cl_dialog_command& command) {
    cl_dialog_item* item = command.dialog->find_control(command.get_string_argument(1));
    if (auto* tree = dynamic_cast<cl_tree_ctrl_box*>(item)) {
        fill_tree(*tree);
    } else if (auto* thumbnails = dynamic_cast<cl_thumbnail_box*>(item)) {
        fill_thumbnails(*thumbnails);
    }
    return 0;
}

/// A tenth further, and from the start again behind the end.
int step(cl_dialog_command& command) {
    const auto* bar = dynamic_cast<cl_dlg_progress_bar*>(
        command.dialog->find_control(command.get_string_argument(1)));
    if (bar != nullptr && !bar->get_bound_global().empty()) {
        const int done = bar->get_item_int();
        set_global_int(bar->get_bound_global(), done >= 100 ? 0 : done + 10);
        command.dialog->update_dialog();
    }
    return 0;
}

} // namespace

void add_gallery_commands() {
    add_dialog_command(2, "dc_gallery_start", 0, "", start);
    add_dialog_command(2, "dc_gallery_fill", 1, "s", fill);
    add_dialog_command(2, "dc_gallery_step", 1, "s", step);
}

} // namespace apps
