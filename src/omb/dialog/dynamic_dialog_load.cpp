// From a dialog's name to the open dialog.
#include "omb/base/folders.h"
#include "omb/base/trace.h"
#include "omb/dialog/dcl_loader.h"
#include "omb/dialog/dialog_layout.h"
#include "omb/dialog/dynamic_dialog.h"

namespace {

/// A file of this name in the settings folder: dialogs are taken from the development folder first.
constexpr const char* development_marker = "omb_use_dbg_dcls";
constexpr std::string_view generated_prefix = "tmp_";

/// The file to read, "" when it is to be found by the application's name.
std::string file_of_dialog(const std::string& name) {
    const std::string settings = settings_folder_path();
    if (name.starts_with(generated_prefix)) {
        return join_path(settings, name + ".dcl");
    }
    if (file_exists(join_path(settings, development_marker))) {
        std::string file = join_path(development_folder(), name + ".dcl");
        if (file_exists(file)) {
            return file;
        }
    }
    return {};
}

} // namespace

bool load_dialog_records(cl_dcl_data& data, const std::string& name, const std::string& file) {
    const std::size_t underscore = name.find('_');
    if (underscore == std::string::npos) {
        OMB_TRACE(2, "Dialog name must contain an underscore: appl_name: '%s'", name);
        return false;
    }
    data.name = name;
    data.appl_name = name.substr(0, underscore);
    return load_dcl_dialog(data, data.appl_name, name, file.empty() ? file_of_dialog(name) : file)
               .status == 0;
}

namespace {

bool is_modal(const cl_dynamic_dialog& dialog, const cl_dialog_request& request) {
    if (request.mode == "modal") {
        return true;
    }
    return !request.is_sub && dialog.root.modeless == 0;
}

void give_focus(const cl_dynamic_dialog* parent) {
    platform::Window* window = parent != nullptr && parent->is_open()
                                   ? parent->window.get()
                                   : window_system().main_window();
    if (window != nullptr && !window->spec().embedded) {
        window->activate();
    }
}

void focus_named_control(const cl_dynamic_dialog& dialog) {
    for (const auto& item : dialog.controls) {
        if (item->set_focus != 0 && item->control != nullptr) {
            item->control->set_focus();
        }
    }
}

/// Takes a dialog that did not open, or whose loop is over, out of the table.
void take_out(cl_dynamic_dialog& dialog) {
    if (dialog_table().contains(&dialog)) {
        dialog_table().remove_modal(dialog);
    }
}

int load_and_open(const cl_dialog_request& request, cl_dynamic_dialog** opened) {
    cl_dynamic_dialog& dialog = dialog_table().enter(std::make_unique<cl_dynamic_dialog>());
    dialog.parent = request.parent;
    dialog.on_drop = request.on_drop;
    if (!load_dialog_records(dialog, request.name, request.file) || request.debug) {
        const bool is_right = dialog.found && request.debug;
        take_out(dialog);
        return is_right ? 1 : 0;
    }
    dialog.is_sub = request.is_sub;
    dialog.modal = is_modal(dialog, request);
    dialog.origin_offset = {request.offset.x + dialog.root.orgx,
                            request.offset.y + dialog.root.orgy};
    const int result = dialog.open(request.mode == "move_to_cursor");
    if (dialog.modal || !dialog.is_open()) {
        take_out(dialog);
        return dialog.modal ? result : 0;
    }
    if (dialog.root.set_focus != 0) {
        focus_named_control(dialog);
    }
    if (opened != nullptr) {
        *opened = &dialog;
    }
    return result;
}

} // namespace

int dlg_load_dialog_or_sub(const cl_dialog_request& request, cl_dynamic_dialog** opened) {
    if (opened != nullptr) {
        *opened = nullptr;
    }
    const bool once = request.mode.empty() || request.mode == "modal";
    if (once && request.parent == nullptr && !request.is_sub && !request.debug &&
        dialog_table().find_dialog(request.name) != nullptr) {
        return 0;
    }
    const cl_dialogs_stay while_it_opens;
    if (request.parent != nullptr &&
        (!dialog_table().contains(request.parent) || !request.parent->is_open())) {
        OMB_TRACE(1, "Parent dialog not found for: %s", request.name);
        return 0;
    }
    give_focus(request.parent);
    return load_and_open(request, opened);
}

int dlg_load_dialog(const std::string& name, const std::string& mode, bool is_sub, bool debug) {
    cl_dialog_request request;
    request.name = name;
    request.mode = mode;
    request.is_sub = is_sub;
    request.debug = debug;
    return dlg_load_dialog_or_sub(request);
}

cl_dynamic_dialog* dlg_load_sub_dialog(const std::string& name, cl_dynamic_dialog& parent,
                                       platform::WindowPoint offset, bool debug) {
    cl_dialog_request request;
    request.name = name;
    request.parent = &parent;
    request.is_sub = true;
    request.offset = offset;
    request.debug = debug;
    cl_dynamic_dialog* opened = nullptr;
    dlg_load_dialog_or_sub(request, &opened);
    return opened;
}
