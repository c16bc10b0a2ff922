// The settings store: one process-wide map of typed, named values. No failure reaches the user:
// unknown names are made, wrong types give zero values, wrong prefixes and save types are traced.
// One thread only.
#pragma once

#include "omb/globals/variables.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct cl_name_hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
        return std::hash<std::string_view>{}(name);
    }
};

class cl_global_variable_array {
public:
    cl_global_variable_array();

    /// The variable, made (and loaded from the profile when its type is saved) if missing. Another
    /// save type than the stored one is traced for the option types; the stored one stays.
    cl_variable_base* find_global(std::string_view name, int save_type = SAVE_ANY,
                                  bool report_missing = true);
    /// The variable, or null when there is none; makes nothing.
    cl_variable_base* lookup(std::string_view name) const;

    // Getters make what is missing, without the profile. Those of double, string, fpt and COLORREF
    // write the variable through to the profile (see cl_variable_base::write_through); bool and int
    // do not. Kept: an int read changes nothing on disk.
    bool get_global_bool(std::string_view name, bool report_missing = true, int save_type = 0);
    std::int32_t get_global_int(std::string_view name, bool report_missing = true,
                                int save_type = 0);
    double get_global_double(std::string_view name, bool report_missing = true, int save_type = 0);
    std::string get_global_string(std::string_view name, bool report_missing = true,
                                  int save_type = 0);
    fpt get_global_fpt(std::string_view name, bool report_missing = true, int save_type = 0);
    COLORREF get_global_COLORREF(std::string_view name, bool report_missing = true,
                                 int save_type = 0);

    // Setters always mark the variable as changed and write it through.
    void set_global_bool(std::string_view name, bool value, int save_type = 0);
    void set_global_int(std::string_view name, std::int32_t value, int save_type = 0);
    void set_global_double(std::string_view name, double value, int save_type = 0);
    void set_global_string(std::string_view name, std::string_view value, int save_type = 0);
    void set_global_fpt(std::string_view name, const fpt& value, int save_type = 0);
    void set_global_COLORREF(std::string_view name, COLORREF value, int save_type = 0);

    /// The title, derived from the name at the first call; the name itself for an unknown name.
    std::string get_global_title(std::string_view name);
    /// The stored type, or 0 for an unknown name; makes nothing.
    int get_save_type(std::string_view name) const;
    void set_global_comment(std::string_view name, std::string_view comment);
    void get_global_names_sorted(std::vector<std::string>& names) const;
    void save_all_changed() const;
    /// `rks_sky_rotation`, degrees, after moving an old `iks_sky_rotation` into it; 0.0 for any
    /// other name.
    double get_sky_rotation(std::string_view name);
    void report_global_not_preset(std::string_view name) const;

    /// Enters a variable that is not there yet and returns it.
    cl_variable_base* enter(std::unique_ptr<cl_variable_base> variable);
    std::size_t size() const { return variables.size(); }
    void clear() { variables.clear(); }

private:
    cl_variable_base* get_or_make(std::string_view name, bool report_missing, int save_type);
    cl_variable_base* prepare_set(std::string_view name, int save_type);

    std::unordered_map<std::string, std::unique_ptr<cl_variable_base>, cl_name_hash,
                       std::equal_to<>>
        variables;
};

/// The one store of the process; empty at load, see preset_globals.
extern cl_global_variable_array globals;

/// The variables of one dialog, made with SAVE_LOCAL.
class cl_local_variable_array {
public:
    /// The variable; when missing and `create`, a new one that is not entered: its owner does that.
    std::shared_ptr<cl_variable_base> find_local(std::string_view name, bool create) const;
    void enter(const std::shared_ptr<cl_variable_base>& variable);

    void get_local_int(std::string_view name, std::int32_t& value) const;
    void get_local_COLORREF(std::string_view name, COLORREF& value) const;
    void get_local_double(std::string_view name, double& value) const;
    void get_local_string(std::string_view name, std::string& value) const;
    // Setters enter a missing variable, overwrite its kind with their own code, mark it changed.
    void set_local_int(std::string_view name, std::int32_t value);
    void set_local_string(std::string_view name, std::string_view value);
    void set_local_double(std::string_view name, double value);
    void set_local_COLORREF(std::string_view name, COLORREF value);

private:
    cl_variable_base& prepare_set(std::string_view name, int kind);

    std::unordered_map<std::string, std::shared_ptr<cl_variable_base>, cl_name_hash,
                       std::equal_to<>>
        variables;
};

// Name checks: true when the first letter suits the type; otherwise traced at level 4.
bool check_global_name_bool(std::string_view name);
bool check_global_name_int(std::string_view name);
bool check_global_name_double(std::string_view name);
bool check_global_name_String(std::string_view name);
bool check_global_name_fpt(std::string_view name);
bool check_global_name_COLORREF(std::string_view name);

// The same operations on the one store.
cl_variable_base* find_global(std::string_view name, int save_type = SAVE_ANY,
                              bool report_missing = true);
bool get_global_bool(std::string_view name, bool report_missing = true, int save_type = 0);
std::int32_t get_global_int(std::string_view name, bool report_missing = true, int save_type = 0);
double get_global_double(std::string_view name, bool report_missing = true, int save_type = 0);
std::string get_global_string(std::string_view name, bool report_missing = true, int save_type = 0);
fpt get_global_fpt(std::string_view name, bool report_missing = true, int save_type = 0);
COLORREF get_global_COLORREF(std::string_view name, bool report_missing = true, int save_type = 0);
void set_global_bool(std::string_view name, bool value, int save_type = 0);
void set_global_int(std::string_view name, std::int32_t value, int save_type = 0);
void set_global_double(std::string_view name, double value, int save_type = 0);
void set_global_string(std::string_view name, std::string_view value, int save_type = 0);
void set_global_fpt(std::string_view name, const fpt& value, int save_type = 0);
void set_global_COLORREF(std::string_view name, COLORREF value, int save_type = 0);
std::string get_global_title(std::string_view name);
int get_save_type(std::string_view name);
void set_global_comment(std::string_view name, std::string_view comment);
void get_global_names_sorted(std::vector<std::string>& names);
void save_all_changed();
double get_sky_rotation(std::string_view name);
void report_global_not_preset(std::string_view name);
