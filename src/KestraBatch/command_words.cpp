// The table of command words, and the copying of a project's folder.
#include "KestraBatch/command_words.h"

#include "omb/base/folders.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace KestraBatch {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view copy_word = "copy_project_render_folder";
constexpr std::string_view copy_target = " to_folder:";

struct WordRow {
    std::string_view word;
    Dialog dialog; ///< empty: not there
};

std::array<WordRow, 9>& words() {
    static std::array<WordRow, 9> rows{{
        {"qorvane_ac_setup", {}},
        {"qorvane_delta_OEM_setup", {}},
        {"show_acad_layers_and_matls_dlg", {}},
        {"show_start_rendering_dialog", {}},
        {"edit_materials_in_omb_ac_folder_dialog", {}},
        {"browse_for_material", {}},
        {"create_material", {}},
        {"select_decal", {}},
        {copy_word, {}},
    }};
    return rows;
}

Dialog& missing_dialog() {
    static Dialog dialog;
    return dialog;
}

WordRow* find_word(std::string_view word) {
    auto& rows = words();
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [=](const WordRow& row) { return row.word == word; });
    return found != rows.end() ? &*found : nullptr;
}

std::string trimmed(std::string text) {
    const std::size_t first = text.find_first_not_of(' ');
    text.erase(0, std::min(first, text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

ExitCode refuse(cl_batch_output& out, ExitCode code, const std::string& why) {
    out.error(why);
    return code;
}

/// Both folders are told in full; the source is there, and the target is another one outside it.
ExitCode copy_project_render_folder(const Command& command, cl_batch_output& out) {
    const fs::path from = command.argument, to = command.second;
    std::error_code error;
    if (!from.is_absolute() || !to.is_absolute()) {
        return refuse(out, ExitCode::usage,
                      std::string(copy_word) + " wants two full folder names, the second behind "
                                               "\"to_folder:\"");
    }
    if (!fs::is_directory(from, error)) {
        return refuse(out, ExitCode::missing, command.argument + ": no such folder");
    }
    if (fs::exists(to, error) && !fs::is_directory(to, error)) {
        return refuse(out, ExitCode::output_unwritable, command.second + ": is no folder");
    }
    if (!copy_folder(from.string(), to.string())) {
        return refuse(out, ExitCode::output_unwritable,
                      command.argument + ": cannot be copied to " + command.second);
    }
    out.message("copied " + command.argument + " to " + command.second);
    return ExitCode::done;
}

} // namespace

std::optional<DialogEvent> dialog_event(const platform::Message& message) {
    using Kind = DialogEvent::Kind;
    constexpr std::array<Kind, 3> kinds{Kind::again, Kind::browse, Kind::other_dialog};
    const bool close =
        message.number == platform::WM_CLOSE ||
        (message.number == platform::kDialogMessage && message.parameter == platform::WM_CLOSE);
    if (close) {
        return DialogEvent{};
    }
    if (message.number != platform::kDialogMessage || message.parameter < platform::kFirstDialog ||
        message.parameter > platform::kLastDialog) {
        return std::nullopt;
    }
    DialogEvent event;
    event.kind = kinds[static_cast<std::size_t>(message.parameter - platform::kFirstDialog)];
    const std::size_t colon = message.text.find(':');
    event.word = message.text.substr(0, colon);
    event.argument = colon == std::string::npos ? std::string() : message.text.substr(colon + 1);
    return event;
}

bool register_dialog(std::string_view word, Dialog dialog) {
    WordRow* row = find_word(word);
    if (row == nullptr || word == copy_word) {
        return false;
    }
    row->dialog = std::move(dialog);
    return true;
}

void register_missing_dialog(Dialog dialog) { missing_dialog() = std::move(dialog); }

std::optional<Command> parse_command(const std::vector<std::string>& arguments) {
    std::string line; // a caller may have cut the line at its blanks
    for (const std::string& argument : arguments) {
        line += (line.empty() ? "" : " ") + argument;
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos ||
        find_word(std::string_view(line).substr(0, colon)) == nullptr) {
        return std::nullopt;
    }
    Command command{line.substr(0, colon), line.substr(colon + 1), {}};
    if (const std::size_t target = command.argument.rfind(copy_target);
        command.word == copy_word && target != std::string::npos) {
        command.second = trimmed(command.argument.substr(target + copy_target.size()));
        command.argument.erase(target);
    }
    command.argument = trimmed(command.argument);
    return command;
}

ExitCode run_command(const Command& command, cl_batch_output& out,
                     const std::function<std::optional<DialogEvent>()>& next_event) {
    if (command.word == copy_word) {
        return copy_project_render_folder(command, out);
    }
    const WordRow* row = find_word(command.word);
    const bool missing = row == nullptr || !row->dialog;
    if (missing) {
        out.error("the dialog '" + command.word + "' is not there yet");
    }
    const Dialog dialog = missing ? missing_dialog() : row->dialog;
    if (!dialog) {
        return ExitCode::cancelled;
    }
    const auto no_events = [] { return std::optional<DialogEvent>(); };
    DialogCall call{command.word, command.argument, out,
                    next_event ? next_event
                               : std::function<std::optional<DialogEvent>()>(no_events)};
    return dialog(call);
}

} // namespace KestraBatch
