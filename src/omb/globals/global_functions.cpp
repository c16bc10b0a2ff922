// The accessors as free functions on the one store.
#include "omb/globals/globals.h"

cl_variable_base* find_global(std::string_view name, int save_type, bool report_missing) {
    return globals.find_global(name, save_type, report_missing);
}
bool get_global_bool(std::string_view name, bool report_missing, int save_type) {
    return globals.get_global_bool(name, report_missing, save_type);
}
std::int32_t get_global_int(std::string_view name, bool report_missing, int save_type) {
    return globals.get_global_int(name, report_missing, save_type);
}
double get_global_double(std::string_view name, bool report_missing, int save_type) {
    return globals.get_global_double(name, report_missing, save_type);
}
std::string get_global_string(std::string_view name, bool report_missing, int save_type) {
    return globals.get_global_string(name, report_missing, save_type);
}
fpt get_global_fpt(std::string_view name, bool report_missing, int save_type) {
    return globals.get_global_fpt(name, report_missing, save_type);
}
COLORREF get_global_COLORREF(std::string_view name, bool report_missing, int save_type) {
    return globals.get_global_COLORREF(name, report_missing, save_type);
}
void set_global_bool(std::string_view name, bool value, int save_type) {
    globals.set_global_bool(name, value, save_type);
}
void set_global_int(std::string_view name, std::int32_t value, int save_type) {
    globals.set_global_int(name, value, save_type);
}
void set_global_double(std::string_view name, double value, int save_type) {
    globals.set_global_double(name, value, save_type);
}
void set_global_string(std::string_view name, std::string_view value, int save_type) {
    globals.set_global_string(name, value, save_type);
}
void set_global_fpt(std::string_view name, const fpt& value, int save_type) {
    globals.set_global_fpt(name, value, save_type);
}
void set_global_COLORREF(std::string_view name, COLORREF value, int save_type) {
    globals.set_global_COLORREF(name, value, save_type);
}
std::string get_global_title(std::string_view name) { return globals.get_global_title(name); }
int get_save_type(std::string_view name) { return globals.get_save_type(name); }
void set_global_comment(std::string_view name, std::string_view comment) {
    globals.set_global_comment(name, comment);
}
void get_global_names_sorted(std::vector<std::string>& names) {
    globals.get_global_names_sorted(names);
}
void save_all_changed() { globals.save_all_changed(); }
double get_sky_rotation(std::string_view name) { return globals.get_sky_rotation(name); }
void report_global_not_preset(std::string_view name) { globals.report_global_not_preset(name); }
