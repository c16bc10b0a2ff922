#include "omb/dialog/dialog_dump.h"

cl_dialog_dump dump_dialog(const cl_dcl_data& data) {
    cl_dialog_dump dump{
        expanded_title(data.root.label), data.root.position.width, data.root.position.height, {}};
    dump.controls.reserve(data.controls.size());
    for (const std::unique_ptr<cl_dialog_item>& item : data.controls) {
        const int parent = item->parent_item != nullptr ? item->parent_item->number : -1;
        dump.controls.push_back({item->number, item->window_id, item->sid, item->kind, parent,
                                 item->skip, item->skip ? cl_dialog_rect{} : item->position});
    }
    return dump;
}
