// The settings store, see globals.h.
#include "omb/globals/globals.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"

#include <algorithm>
#include <exception>

cl_global_variable_array globals;

// ---- name checks ----

namespace {

bool check_first_letter(std::string_view name, std::string_view letters, const char* message) {
    if (!name.empty() && letters.find(name.front()) != letters.npos) {
        return true;
    }
    OMB_TRACE(4, message, std::string(name));
    return false;
}

} // namespace

bool check_global_name_bool(std::string_view name) {
    return check_first_letter(name, "b", "bool globals should start with 'b': '%s'");
}
bool check_global_name_int(std::string_view name) {
    return check_first_letter(name, "ib", "Integer globals should start with 'i': '%s'");
}
bool check_global_name_double(std::string_view name) {
    return check_first_letter(name, "r", "Double globals should start with 'r': %s");
}
bool check_global_name_String(std::string_view name) {
    return check_first_letter(name, "s", "CString globals should start with 's': %s");
}
bool check_global_name_fpt(std::string_view name) {
    return check_first_letter(name, "p", "Floating Point globals should start with 'p': %s");
}
bool check_global_name_COLORREF(std::string_view name) {
    return check_first_letter(name, "c", "COLORREF globals should start with 'c': %s");
}

// ---- finding and making ----

cl_global_variable_array::cl_global_variable_array() { variables.reserve(1009); }

cl_variable_base* cl_global_variable_array::lookup(std::string_view name) const {
    const auto entry = variables.find(name);
    return entry == variables.end() ? nullptr : entry->second.get();
}

cl_variable_base* cl_global_variable_array::enter(std::unique_ptr<cl_variable_base> variable) {
    std::string name = variable->name;
    return variables.try_emplace(std::move(name), std::move(variable)).first->second.get();
}

namespace {

/// Between types 1, 2 and 3 a mismatch is silent.
void report_save_type(const cl_variable_base& variable, int wanted) {
    if (wanted == variable.save_type) {
        return;
    }
    if (wanted == OPTION_GLOBAL || variable.save_type == OPTION_GLOBAL) {
        OMB_TRACE(0, "OPTION_GLOBAL NOT SET PROPERLY: %s", variable.name);
    } else if (wanted == OPTION_NON_DATABASE_GLOBAL ||
               variable.save_type == OPTION_NON_DATABASE_GLOBAL) {
        OMB_TRACE(0, "OPTION_NON_DATABASE_GLOBAL NOT SET PROPERLY: %s", variable.name);
    }
}

} // namespace

cl_variable_base* cl_global_variable_array::find_global(std::string_view name, int save_type,
                                                        bool report_missing) {
    cl_variable_base* variable = lookup(name);
    try {
        if (variable == nullptr) {
            if (report_missing && save_type != SAVE_NONE) {
                OMB_TRACE(1, "Global not defined: %s", std::string(name));
            }
            variable = enter(make_variable(name, save_type));
            variable->load_from_profile(); // acts on the saved types only
        } else if (save_type != SAVE_ANY) {
            report_save_type(*variable, save_type);
        }
    } catch (const std::exception&) {
        OMB_TRACE(1, "Could not load global: %s", std::string(name));
    }
    return variable;
}

void cl_global_variable_array::report_global_not_preset(std::string_view name) const {
    OMB_TRACE(4, "Global not preset properly: %s", std::string(name));
}

cl_variable_base* cl_global_variable_array::get_or_make(std::string_view name, bool report_missing,
                                                        int save_type) {
    if (cl_variable_base* variable = lookup(name)) {
        return variable;
    }
    if (report_missing && save_type != SAVE_NONE) {
        report_global_not_preset(name);
    }
    return enter(make_variable(name, save_type));
}

cl_variable_base* cl_global_variable_array::prepare_set(std::string_view name, int save_type) {
    cl_variable_base* variable = find_global(name, save_type, false);
    if (variable != nullptr) {
        variable->changed = true;
    }
    return variable;
}

// ---- getters ----

bool cl_global_variable_array::get_global_bool(std::string_view name, bool report_missing,
                                               int save_type) {
    check_global_name_bool(name);
    return get_or_make(name, report_missing, save_type)->get_int_value() != 0;
}

std::int32_t cl_global_variable_array::get_global_int(std::string_view name, bool report_missing,
                                                      int save_type) {
    if (!check_global_name_int(name)) {
        return 0;
    }
    return get_or_make(name, report_missing, save_type)->get_int_value();
}

double cl_global_variable_array::get_global_double(std::string_view name, bool report_missing,
                                                   int save_type) {
    check_global_name_double(name);
    const cl_variable_base* variable = get_or_make(name, report_missing, save_type);
    variable->write_through();
    return variable->get_double_value();
}

std::string cl_global_variable_array::get_global_string(std::string_view name, bool report_missing,
                                                        int save_type) {
    if (name.empty()) {
        return {};
    }
    check_global_name_String(name);
    const cl_variable_base* variable = get_or_make(name, report_missing, save_type);
    variable->write_through();
    return variable->get_string_value();
}

fpt cl_global_variable_array::get_global_fpt(std::string_view name, bool report_missing,
                                             int save_type) {
    check_global_name_fpt(name);
    const cl_variable_base* variable = get_or_make(name, report_missing, save_type);
    variable->write_through();
    return variable->get_fpt_value();
}

COLORREF cl_global_variable_array::get_global_COLORREF(std::string_view name, bool report_missing,
                                                       int save_type) {
    check_global_name_COLORREF(name);
    const cl_variable_base* variable = get_or_make(name, report_missing, save_type);
    variable->write_through();
    return variable->get_COLORREF_value();
}

// ---- setters ----

void cl_global_variable_array::set_global_bool(std::string_view name, bool value, int save_type) {
    check_global_name_bool(name);
    if (cl_variable_base* variable = prepare_set(name, save_type)) {
        variable->set_int_value(value ? 1 : 0);
        variable->save_to_profile();
    }
}

void cl_global_variable_array::set_global_int(std::string_view name, std::int32_t value,
                                              int save_type) {
    if (!check_global_name_int(name)) {
        return;
    }
    if (cl_variable_base* variable = prepare_set(name, save_type)) {
        variable->set_int_value(value);
        variable->save_to_profile();
    }
}

void cl_global_variable_array::set_global_double(std::string_view name, double value,
                                                 int save_type) {
    check_global_name_double(name);
    if (cl_variable_base* variable = prepare_set(name, save_type)) {
        variable->set_double_value(value);
        variable->save_to_profile();
    }
}

void cl_global_variable_array::set_global_string(std::string_view name, std::string_view value,
                                                 int save_type) {
    check_global_name_String(name);
    if (cl_variable_base* variable = prepare_set(name, save_type)) {
        variable->set_string_value(std::string(value));
        variable->save_to_profile();
    }
}

void cl_global_variable_array::set_global_fpt(std::string_view name, const fpt& value,
                                              int save_type) {
    check_global_name_fpt(name);
    if (cl_variable_base* variable = prepare_set(name, save_type)) {
        variable->set_fpt_value(value);
        variable->save_to_profile();
    }
}

void cl_global_variable_array::set_global_COLORREF(std::string_view name, COLORREF value,
                                                   int save_type) {
    check_global_name_COLORREF(name);
    if (cl_variable_base* variable = prepare_set(name, save_type)) {
        variable->set_COLORREF_value(value);
        variable->save_to_profile();
    }
}

// ---- the rest ----

namespace {

/// The text behind the first underscore, underscores as blanks, first letter in upper case.
std::string title_from_name(const std::string& name) {
    const std::size_t at = name.find('_');
    std::string title = at == name.npos ? name : name.substr(at + 1);
    std::replace(title.begin(), title.end(), '_', ' ');
    if (!title.empty()) {
        title.front() = omb::to_upper(title.substr(0, 1)).front();
    }
    return title;
}

} // namespace

std::string cl_global_variable_array::get_global_title(std::string_view name) {
    if (lookup(name) == nullptr) {
        find_global(name, SAVE_ANY, false); // made on demand, as every mention does
        return std::string(name);
    }
    cl_variable_base* variable = find_global(name, SAVE_ANY, false);
    if (variable->title.empty()) {
        variable->title = title_from_name(variable->name);
    }
    return variable->title;
}

int cl_global_variable_array::get_save_type(std::string_view name) const {
    const cl_variable_base* variable = lookup(name);
    return variable == nullptr ? SAVE_ANY : variable->save_type;
}

void cl_global_variable_array::set_global_comment(std::string_view name, std::string_view comment) {
    if (cl_variable_base* variable = find_global(name)) {
        variable->comment = comment;
    }
}

void cl_global_variable_array::get_global_names_sorted(std::vector<std::string>& names) const {
    names.clear();
    names.reserve(variables.size());
    for (const auto& entry : variables) {
        names.push_back(entry.first);
    }
    std::sort(names.begin(), names.end());
}

void cl_global_variable_array::save_all_changed() const {
    for (const auto& entry : variables) {
        const cl_variable_base& variable = *entry.second;
        if (variable.changed && variable.save_type != SAVE_NONE &&
            variable.save_type != SAVE_LOCAL) {
            variable.save_to_profile();
        }
    }
}

double cl_global_variable_array::get_sky_rotation(std::string_view name) {
    if (name != "rks_sky_rotation") {
        return 0.0;
    }
    if (get_global_double(name) == 0.0) {
        const std::int32_t old = get_global_int("iks_sky_rotation");
        if (old != 0) {
            set_global_double(name, old);
            set_global_int("iks_sky_rotation", 0);
        }
    }
    return get_global_double(name);
}

// ---- the variables of a dialog ----

std::shared_ptr<cl_variable_base> cl_local_variable_array::find_local(std::string_view name,
                                                                      bool create) const {
    const auto entry = variables.find(name);
    if (entry != variables.end()) {
        return entry->second;
    }
    return create ? std::shared_ptr<cl_variable_base>(make_variable(name, SAVE_LOCAL)) : nullptr;
}

void cl_local_variable_array::enter(const std::shared_ptr<cl_variable_base>& variable) {
    variables.try_emplace(variable->name, variable);
}

void cl_local_variable_array::get_local_int(std::string_view name, std::int32_t& value) const {
    value = find_local(name, true)->get_int_value();
}
void cl_local_variable_array::get_local_COLORREF(std::string_view name, COLORREF& value) const {
    value = find_local(name, true)->get_COLORREF_value();
}
void cl_local_variable_array::get_local_double(std::string_view name, double& value) const {
    value = find_local(name, true)->get_double_value();
}
void cl_local_variable_array::get_local_string(std::string_view name, std::string& value) const {
    value = find_local(name, true)->get_string_value();
}

cl_variable_base& cl_local_variable_array::prepare_set(std::string_view name, int kind) {
    std::shared_ptr<cl_variable_base> variable = find_local(name, true);
    enter(variable);
    variable->kind = kind;
    variable->changed = true;
    return *variable;
}

void cl_local_variable_array::set_local_int(std::string_view name, std::int32_t value) {
    prepare_set(name, 1).set_int_value(value);
}
void cl_local_variable_array::set_local_string(std::string_view name, std::string_view value) {
    prepare_set(name, 2).set_string_value(std::string(value));
}
void cl_local_variable_array::set_local_double(std::string_view name, double value) {
    prepare_set(name, 3).set_double_value(value);
}
void cl_local_variable_array::set_local_COLORREF(std::string_view name, COLORREF value) {
    prepare_set(name, 5).set_COLORREF_value(value);
}
