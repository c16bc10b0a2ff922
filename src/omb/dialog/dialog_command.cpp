// Lookup of dialog commands, the call object and its arguments, see dialog_command.h.
#include "omb/dialog/dialog_command.h"

#include "omb/base/errors.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"
#include "omb/dialog/dcl_keywords.h"
#include "omb/dialog/dynamic_dialog.h"

#include <algorithm>
#include <limits>

namespace {

std::string& description() {
    static std::string text;
    return text;
}

/// The description stands while its command runs. A command inside replaces it, and empties it.
class described_time {
public:
    explicit described_time(std::string text) { description() = std::move(text); }
    ~described_time() { description().clear(); }
    described_time(const described_time&) = delete;
    described_time& operator=(const described_time&) = delete;
};

/// The keyword of a kind of control; its number when there is none.
std::string kind_name(int kind) {
    const auto rows = dcl_keywords();
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const cl_dcl_keyword& candidate) {
        return candidate.kind == kind &&
               (candidate.token == DCL_CONTROL || candidate.token == DCL_DIALOG);
    });
    return row == rows.end() ? std::to_string(kind) : std::string(row->keyword);
}

std::string describe(const cl_dialog_command& command) {
    std::vector<std::string> arguments;
    for (const cl_dcl_parameter& parameter : command.line->parameters) {
        arguments.push_back(parameter.text);
    }
    return describe_dialog_command(command.dialog->name, command.item->sid,
                                   kind_name(command.item->kind), command.line->name, arguments);
}

bool has_command_prefix(std::string_view name) {
    return name.starts_with("dc_") || name.starts_with("rb_");
}

} // namespace

// ---- table ----

void cl_dialog_command_table::add(cl_dialog_command_table_entry entry) {
    std::string name = entry.name;
    entries.insert_or_assign(std::move(name), std::move(entry));
}

void cl_dialog_command_table::remove(std::string_view name) {
    const auto found = entries.find(name);
    if (found != entries.end()) {
        entries.erase(found);
    }
}

const cl_dialog_command_table_entry* cl_dialog_command_table::find(std::string_view name) const {
    const auto found = entries.find(name);
    return found == entries.end() ? nullptr : &found->second;
}

cl_dialog_command_table& dialog_command_table() {
    static cl_dialog_command_table table;
    return table;
}

void add_dialog_command(std::int32_t group, const char* name, std::int32_t minimum_arguments,
                        const char* signature, dialog_command_handler handler) {
    add_dialog_commands();
    cl_dialog_command_table_entry entry{group, name, nullptr, minimum_arguments, signature};
    if (const cl_dialog_command_table_entry* listed = dialog_command_table().find(name)) {
        entry = *listed; // a row of the list keeps its numbers, whoever handles it
    }
    entry.handler = std::move(handler);
    dialog_command_table().add(std::move(entry));
}

const cl_dialog_command_table_entry* find_dialog_command(std::string_view name) {
    if (!has_command_prefix(name)) {
        return nullptr;
    }
    add_dialog_commands();
    const cl_dialog_command_table& table = dialog_command_table();
    if (const cl_dialog_command_table_entry* entry = table.find(name)) {
        return entry;
    }
    if (name.starts_with("rb_")) {
        OMB_TRACE(1, "rb_ commands should only be used with RUBY_DLL_EXTENSION: %s",
                  std::string(name));
    }
    return table.find("dc_command_not_found");
}

const std::string& current_dialog_command_description() { return description(); }

// ---- arguments ----

int cl_dialog_command::argument_count() const {
    return line == nullptr ? 0 : static_cast<int>(line->parameters.size());
}

std::string cl_dialog_command::get_string_argument(int index, std::string_view fall_back) const {
    if (index < 1 || index > argument_count()) {
        return std::string(fall_back);
    }
    const cl_dcl_parameter& parameter = line->parameters[static_cast<std::size_t>(index) - 1];
    std::string text = parameter.text;
    if (parameter.type != 1 || text.find('%') == std::string::npos || dialog == nullptr ||
        item == nullptr) {
        return text;
    }
    text = omb::replace_all(text, "%dlg%", dialog->name);
    text = omb::replace_all(text, "%id%", item->sid);
    text = omb::replace_all(text, "%sid%", item->sid);
    return omb::replace_all(text, "%global%", item->get_bound_global());
}

std::int32_t cl_dialog_command::get_int_argument(int index, std::int32_t fall_back) const {
    return index < 1 || index > argument_count() ? fall_back
                                                 : omb::parse_int(get_string_argument(index));
}

double cl_dialog_command::get_double_argument(int index, double fall_back) const {
    return index < 1 || index > argument_count() ? fall_back
                                                 : omb::parse_double(get_string_argument(index));
}

std::int32_t cl_dialog_command::get_double_argument_as_int(int index,
                                                           std::int32_t fall_back) const {
    using limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp(get_double_argument(index, fall_back),
                                                static_cast<double>(limits::min()),
                                                static_cast<double>(limits::max())));
}

std::string cl_dialog_command::arguments_text() const {
    std::string text = "(";
    for (int index = 0; index < argument_count(); ++index) {
        text += index > 0 ? ", \"" : "\"";
        text += line->parameters[static_cast<std::size_t>(index)].text + "\"";
    }
    return text + ")";
}

// ---- running ----

int cl_dialog_command::run_command() {
    if (line == nullptr || dialog == nullptr || item == nullptr) {
        return -1;
    }
    const described_time described(describe(*this));
    // The names stay at hand even when the handler's doings take the dialog away.
    const std::string name = line->name, arguments = arguments_text();
    const std::string dialog_name = dialog->name, sid = item->sid;
    try {
        const cl_dialog_command_table_entry* entry = find_dialog_command(name);
        if (entry == nullptr) {
            OMB_TRACE(1, "'%s' dialog command : '%s%s' not found. (from dialog: '%s')", sid, name,
                      arguments, dialog_name);
            return -1;
        }
        status = 0;
        undo_record = nullptr;
        const dialog_command_handler handler = entry->handler; // it may replace its own entry
        const int result = handler ? handler(*this) : -1;
        if (undo_record != nullptr && undo_record->level != -1) {
            OMB_TRACE(1, "Undo level changed during command: %s%s: %d --> %d ", name, arguments, -1,
                      undo_record->level);
        }
        return result < 0 ? -1 : result;
    } catch (const std::exception& error) {
        OMB_TRACE(2, "Error while running command: %s(%s) \n\n%s", name,
                  arguments.substr(1, arguments.size() - 2), error.what());
    } catch (...) {
        OMB_TRACE(2,
                  "Unknown error while running command : '%s%s'\nCalled from dialog: '%s' (sid: "
                  "'%s')",
                  name, arguments, dialog_name, sid);
    }
    return -1;
}

int run_dc_command(cl_dynamic_dialog* dialog, cl_dialog_item* item, std::string_view name,
                   int argument_count, std::string_view argument1, std::string_view argument2) {
    cl_dialog_command_line line;
    line.name = name;
    const std::string_view arguments[] = {argument1, argument2};
    for (int index = 0; index < std::clamp(argument_count, 0, 2); ++index) {
        line.parameters.push_back({std::string(arguments[index]), 1});
    }
    return cl_dialog_command(&line, dialog, item).run_command();
}
