// Commands that ask for files, open pages and start other programs, see engine_commands.h.
#include "omb/base/application_files.h"
#include "omb/base/error_list.h"
#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/dialog_services.h"
#include "omb/dialog/dynamic_dialog.h"
#include "omb/dialog/engine_commands.h"
#include "platform/process.h"

#include <filesystem>

namespace engine_commands {
namespace {

int open_address(const std::string& address) {
    if (!address.empty() && window_system().open_address(address)) {
        return 0;
    }
    OMB_TRACE(1, "Unable to open file.\n\nCannot launch file: %s", address);
    return -1;
}

bool has_scheme(const std::string& address) {
    return address.find("://") != std::string::npos || address.starts_with("mailto:");
}

int open_help(const cl_dynamic_dialog& dialog, const std::string& topic) {
    const auto& help_page = dialog_services().help_page;
    const std::string page = has_scheme(topic) ? topic
                             : help_page
                                 ? help_page(dialog.appl_name, topic)
                                 : find_application_file("help", dialog.appl_name, topic + ".html");
    if (page.empty()) {
        do_message_box("There is no help page for: " + topic, "Help",
                       message_box::icon_information);
        return -1;
    }
    return open_address(page);
}

/// Puts the result of a browse into a control and its global.
void deliver_path(cl_dynamic_dialog& dialog, const std::string& sid, const std::string& path) {
    cl_dialog_item* item = find_item(dialog, sid);
    if (item == nullptr) {
        return;
    }
    if (!item->get_bound_global().empty()) {
        set_global_string(item->get_bound_global(), path, item->get_bound_save_type());
    }
    if (item->control != nullptr) {
        item->set_item_text(path);
        // A shortened path, say, is made by the exchange.
        item->do_data_exchange(dialog, exchange_direction::to_controls);
    }
}

/// The value of the global that an argument names; "" without one.
std::string global_of_argument(const cl_dialog_command& command, int index) {
    const std::string global = command.get_string_argument(index);
    return global.empty() ? std::string() : get_global_string(global);
}

/// "jpg", "*.jpg;*.png", ".jpg, png" as extensions without the point.
std::vector<std::string> extensions_of(const std::string& text) {
    std::vector<std::string> extensions;
    const std::string list = omb::replace_all(text, ",", ";");
    for (const std::string_view part : omb::split(list, ';')) {
        std::string_view extension = omb::trim(part);
        extension = extension.substr(std::min(extension.find_first_not_of("*."), extension.size()));
        if (!extension.empty()) {
            extensions.emplace_back(extension);
        }
    }
    return extensions;
}

int ask_for_file(cl_dialog_command& command) {
    const int mode = command.get_int_argument(5);
    platform::FileQuestion question;
    question.mode = mode == 2 ? platform::FileQuestion::save : platform::FileQuestion::open;
    question.title = command.get_string_argument(2);
    question.extensions = extensions_of(command.get_string_argument(3));
    question.kind = command.get_string_argument(3);
    question.start = native_separators(global_of_argument(command, 4));
    const std::string sid = command.get_string_argument(1);
    cl_dynamic_dialog* dialog = command.dialog;
    const auto path = window_system().choose_file(question, dialog->window.get());
    if (path && dialog_table().contains(dialog)) {
        deliver_path(*dialog, sid, *path);
    }
    return 0;
}

std::string batch_folder() {
    const auto& source = dialog_services().batch_folder;
    return native_separators(source ? source() : get_global_string("sqor_batch_folder"));
}

/// Packs a folder with the program; why not, in words, or "".
std::string pack_folder(const std::filesystem::path& packer, const std::string& folder,
                        const std::string& archive) {
    std::error_code ignored;
    std::filesystem::remove(archive, ignored);
    std::string why;
    const auto process = platform::start_process(
        packer, {"a", "-tzip", archive, join_path(folder, "*")}, folder, why);
    if (!process) {
        return "7Zip failure. Process could not be started.\n\n" + why;
    }
    const auto outcome = platform::wait_in_slices(process->process_id, platform::kWaitSlice);
    return outcome.status.value_or(0) == 0 && file_exists(archive)
               ? ""
               : "The packer has failed for: " + folder;
}

} // namespace

int show_debug_file(cl_dialog_command&) {
    ::show_debug_file();
    return 0;
}

int show_error_file(cl_dialog_command& command) {
    ::show_error_file(command.get_int_argument(1) != 0);
    return 0;
}

int zip_batch_folder(cl_dialog_command&) {
    constexpr const char* title = "Batch Folder";
    const std::string folder = batch_folder();
    if (folder.empty() || !folder_exists(folder)) {
        do_message_box("There is no batch folder: " + folder, title, message_box::icon_warning);
        return -1;
    }
    std::filesystem::path packer;
    for (const char* name : {"7z", "7zz", "7za"}) {
        packer = packer.empty() ? platform::find_on_path(name) : packer;
    }
    if (packer.empty()) {
        do_message_box("The packer 7z is not installed; the batch folder is: " + folder, title,
                       message_box::icon_warning);
        return -1;
    }
    // Behind the folder's name, so that the archive does not get into itself.
    const std::string archive = folder.substr(0, folder.find_last_not_of("/\\") + 1) + ".zip";
    const std::string why = pack_folder(packer, folder, archive);
    do_message_box(why.empty() ? "The batch folder has been packed: " + archive : why, title,
                   why.empty() ? message_box::icon_information : message_box::icon_error);
    return why.empty() ? 0 : -1;
}

int launch_file(cl_dialog_command& command) {
    const std::string file = command.get_string_argument(1);
    return open_address(has_scheme(file) ? file : native_separators(file));
}

int help(cl_dialog_command& command) {
    const cl_dialog_item& root = command.dialog->root;
    for (const std::string* topic : {&root.help_id, &root.help_key, &root.help_index}) {
        if (!topic->empty()) {
            return open_help(*command.dialog, *topic);
        }
    }
    return open_help(*command.dialog, command.dialog->name);
}

int load_webpage(cl_dialog_command& command) {
    const std::string address = command.get_string_argument(1);
    return open_address(address.empty() || has_scheme(address) ? address : "https://" + address);
}

int check_for_updates(cl_dialog_command&) {
    const std::string& page = dialog_services().update_page;
    if (page.empty()) {
        do_message_box("This program has no web page that tells of new versions.", "Updates",
                       message_box::icon_information);
        return 0;
    }
    return open_address(page);
}

int load_help(cl_dialog_command& command) {
    return open_help(*command.dialog, command.get_string_argument(1));
}

int browse_folder(cl_dialog_command& command) {
    const std::string sid = command.get_string_argument(1);
    cl_dynamic_dialog* dialog = command.dialog;
    const auto folder = window_system().choose_folder(
        command.get_string_argument(2), native_separators(global_of_argument(command, 3)),
        dialog->window.get());
    if (folder && dialog_table().contains(dialog)) {
        deliver_path(*dialog, sid, *folder);
    }
    return 0;
}

int browse_file(cl_dialog_command& command) {
    try {
        return ask_for_file(command);
    } catch (...) {
        OMB_TRACE(2, "Unknown Error during dc_browse_file");
        return -1;
    }
}

} // namespace engine_commands
