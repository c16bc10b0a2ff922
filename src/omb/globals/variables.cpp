// The variable classes and their conversions, see variables.h.
#include "omb/globals/variables.h"

#include "omb/base/profile.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"

#include <cmath>
#include <limits>

namespace {

constexpr const char* section = "Globals";

std::string double_text(double value) { return fmt::sprintf("%.9g", value); }

/// Towards zero; what no 32-bit integer holds gives the smallest one, as the processor does.
std::int32_t truncate(double value) {
    using limits = std::numeric_limits<std::int32_t>;
    const bool fits = value > static_cast<double>(limits::min()) - 1.0 &&
                      value < static_cast<double>(limits::max()) + 1.0;
    return fits ? static_cast<std::int32_t>(value) : limits::min();
}

std::int32_t as_signed(std::uint32_t word) { return static_cast<std::int32_t>(word); }
std::uint32_t as_word(std::int32_t value) { return static_cast<std::uint32_t>(value); }

COLORREF pack(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return (red & 0xff) | (green & 0xff) << 8 | (blue & 0xff) << 16;
}

} // namespace

COLORREF parse_colorref(std::string_view text) {
    if (text.starts_with('#')) {
        const auto channel = [&](std::size_t at) {
            return at < text.size() ? omb::parse_hex(text.substr(at, 2)) : 0u;
        };
        return pack(channel(1), channel(3), channel(5));
    }
    if (text.starts_with("rgb(")) {
        const std::string_view inside = text.substr(4, text.size() - 5);
        const std::vector<std::string_view> parts = omb::split(inside, ',');
        if (text.size() < 5 || parts.size() < 2) {
            return 0;
        }
        return pack(omb::parse_unsigned(parts[0]), omb::parse_unsigned(parts[1]),
                    parts.size() > 2 ? omb::parse_unsigned(parts[2]) : 0);
    }
    return omb::parse_unsigned(text);
}

std::string colorref_to_text(COLORREF color) {
    return fmt::sprintf("#%02x%02x%02x", color & 0xff, color >> 8 & 0xff, color >> 16 & 0xff);
}

// ---- the base ----

cl_variable_base::cl_variable_base(std::string name, int kind, int save_type)
  : name(std::move(name))
  , kind(kind)
  , save_type(save_type) {}
cl_variable_base::~cl_variable_base() = default;

std::int32_t cl_variable_base::get_int_value() const { return 0; }
std::string cl_variable_base::get_string_value() const { return {}; }
double cl_variable_base::get_double_value() const { return 0; }
fpt cl_variable_base::get_fpt_value() const { return {}; }
COLORREF cl_variable_base::get_COLORREF_value() const { return 0; }
void cl_variable_base::set_int_value(std::int32_t) {}
void cl_variable_base::set_string_value(const std::string&) {}
void cl_variable_base::set_double_value(double) {}
void cl_variable_base::set_fpt_value(const fpt&) {}
void cl_variable_base::set_COLORREF_value(COLORREF) {}
void cl_variable_base::set_int_default(std::int32_t) {}
void cl_variable_base::set_string_default(const std::string&) {}
void cl_variable_base::set_double_default(double) {}
void cl_variable_base::set_fpt_default(const fpt&) {}
void cl_variable_base::set_COLORREF_default(COLORREF) {}

void cl_variable_base::put_in_profile(profile_put put) const {
    (profile().*put)(section, name, value_text());
}

void cl_variable_base::save_to_profile() const {
    if (is_saved_type(save_type)) {
        put_in_profile(&cl_profile_store::write);
        agreement = profile_generation();
    }
}

void cl_variable_base::bring_into_agreement() const {
    put_in_profile(agreement == remembered ? &cl_profile_store::remember
                                           : &cl_profile_store::write);
    agreement = profile_generation();
}

void cl_variable_base::set_save_type(int new_type) {
    if (!is_saved_type(new_type) || new_type == save_type) {
        return;
    }
    switch (new_type) {
    case SAVE_PROFILE:
        OMB_TRACE(4, "Setting save type to SAVE_PROFILE from (%d): %s", save_type, name);
        break;
    case OPTION_GLOBAL:
        OMB_TRACE(4, "Setting save type to OPTION_GLOBAL: %s", name);
        break;
    default: // type 5 keeps the wording of type 3
        OMB_TRACE(4, "Setting save type to SAVE_DATABASE: %s", name);
    }
    save_type = new_type;
}

// ---- integers ----

cl_variable_int::cl_variable_int(std::string name, int save_type, std::int32_t value)
  : cl_variable_base(std::move(name), 1, save_type)
  , current(value)
  , preset(value) {}

std::int32_t cl_variable_int::get_int_value() const { return current; }
std::string cl_variable_int::get_string_value() const { return std::to_string(current); }
double cl_variable_int::get_double_value() const { return current; }
void cl_variable_int::set_int_value(std::int32_t value) {
    current = value;
    mark_touched();
}
void cl_variable_int::set_string_value(const std::string& value) {
    current = as_signed(omb::parse_unsigned(value));
    mark_touched();
}
void cl_variable_int::set_double_value(double value) {
    current = truncate(value);
    mark_touched();
}
void cl_variable_int::set_int_default(std::int32_t value) { preset = value; }
void cl_variable_int::restore_default() {
    current = preset;
    mark_touched();
}
std::string cl_variable_int::value_text() const { return std::to_string(current); }
std::string cl_variable_int::default_text() const { return std::to_string(preset); }

void cl_variable_int::load_from_profile() {
    if (is_saved_type(save_type)) {
        current = profile().read_int(section, name, 0);
        mark_remembered();
    }
}

// ---- text ----

cl_variable_string::cl_variable_string(std::string name, int save_type, std::string value)
  : cl_variable_base(std::move(name), 2, save_type)
  , current(std::move(value)) {}

std::int32_t cl_variable_string::get_int_value() const {
    return as_signed(omb::parse_unsigned(current));
}
std::string cl_variable_string::get_string_value() const { return current; }
double cl_variable_string::get_double_value() const { return omb::parse_double(current); }
void cl_variable_string::set_int_value(std::int32_t value) {
    current = std::to_string(value);
    mark_touched();
}
void cl_variable_string::set_string_value(const std::string& value) {
    current = value;
    mark_touched();
}
void cl_variable_string::set_double_value(double value) {
    current = double_text(snap_to_zero(value));
    mark_touched();
}
void cl_variable_string::set_string_default(const std::string& value) { preset = value; }
void cl_variable_string::restore_default() {
    current = preset;
    mark_touched();
}
std::string cl_variable_string::value_text() const { return current; }
std::string cl_variable_string::default_text() const { return preset; }

void cl_variable_string::load_from_profile() {
    if (is_saved_type(save_type)) {
        current = profile().read_text(section, name, "");
        mark_remembered();
    }
}

// ---- doubles ----

cl_variable_double::cl_variable_double(std::string name, int save_type, double value)
  : cl_variable_base(std::move(name), 3, save_type)
  , current(value) {}

std::int32_t cl_variable_double::get_int_value() const {
    // Not 0.5: 2.500005 is still 2.
    return truncate(std::floor(current + 0.49999));
}
std::string cl_variable_double::get_string_value() const {
    return double_text(snap_to_zero(current));
}
double cl_variable_double::get_double_value() const { return current; }
void cl_variable_double::set_int_value(std::int32_t value) {
    current = value;
    mark_touched();
}
void cl_variable_double::set_string_value(const std::string& value) {
    current = omb::parse_double(value);
    mark_touched();
}
void cl_variable_double::set_double_value(double value) {
    current = value;
    mark_touched();
}
void cl_variable_double::set_double_default(double value) { preset = value; }
void cl_variable_double::restore_default() {
    current = preset;
    mark_touched();
}
std::string cl_variable_double::value_text() const { return double_text(current); }
std::string cl_variable_double::default_text() const { return double_text(preset); }

void cl_variable_double::load_from_profile() {
    if (is_saved_type(save_type)) {
        current = profile().read_double(section, name, 0.0);
        mark_remembered();
    }
}

// ---- points ----

cl_variable_fpt::cl_variable_fpt(std::string name, int save_type, const fpt& value)
  : cl_variable_base(std::move(name), 4, save_type)
  , current(value) {}

std::string cl_variable_fpt::get_string_value() const { return fpt_to_text(current); }
fpt cl_variable_fpt::get_fpt_value() const { return current; }
void cl_variable_fpt::set_string_value(const std::string& value) {
    current = parse_point(value);
    mark_touched();
}
void cl_variable_fpt::set_fpt_value(const fpt& value) {
    current = value;
    mark_touched();
}
void cl_variable_fpt::set_fpt_default(const fpt& value) { preset = value; }
std::string cl_variable_fpt::value_text() const { return fpt_to_text(current); }
std::string cl_variable_fpt::default_text() const { return fpt_to_text(preset); }

void cl_variable_fpt::restore_default() {
    if (!fpt_equal(current, preset)) {
        current = preset;
        mark_touched();
    }
}

void cl_variable_fpt::put_in_profile(profile_put put) const {
    const cl_profile_bulk one_write;
    (profile().*put)(section, name + "_x", double_text(current.x));
    (profile().*put)(section, name + "_y", double_text(current.y));
    (profile().*put)(section, name + "_z", double_text(current.z));
}

void cl_variable_fpt::load_from_profile() {
    if (is_saved_type(save_type)) {
        current = {profile().read_double(section, name + "_x", 0.0),
                   profile().read_double(section, name + "_y", 0.0),
                   profile().read_double(section, name + "_z", 0.0)};
        mark_remembered();
    }
}

// ---- colours ----

cl_variable_COLORREF::cl_variable_COLORREF(std::string name, int save_type, COLORREF value)
  : cl_variable_base(std::move(name), 5, save_type)
  , current(value) {}

std::int32_t cl_variable_COLORREF::get_int_value() const { return as_signed(current); }
COLORREF cl_variable_COLORREF::get_COLORREF_value() const { return current & 0xffffff; }
void cl_variable_COLORREF::set_int_value(std::int32_t value) {
    current = as_word(value);
    mark_touched();
}
void cl_variable_COLORREF::set_string_value(const std::string& value) {
    current = parse_colorref(value);
    mark_touched();
}
void cl_variable_COLORREF::set_COLORREF_value(COLORREF value) {
    current = value & 0xffffff;
    mark_touched();
}
void cl_variable_COLORREF::set_COLORREF_default(COLORREF value) { preset = value & 0xffffff; }
void cl_variable_COLORREF::restore_default() {
    current = preset;
    mark_touched();
}
std::string cl_variable_COLORREF::value_text() const { return colorref_to_text(current); }
std::string cl_variable_COLORREF::default_text() const { return colorref_to_text(preset); }

void cl_variable_COLORREF::load_from_profile() {
    if (is_saved_type(save_type)) {
        current = parse_colorref(profile().read_text(section, name, ""));
        mark_remembered();
    }
}

std::unique_ptr<cl_variable_base> make_variable(std::string_view name, int save_type) {
    std::string own(name);
    switch (name.empty() ? '\0' : name.front()) {
    case 'b':
    case 'i':
        return std::make_unique<cl_variable_int>(std::move(own), save_type);
    case 's':
        return std::make_unique<cl_variable_string>(std::move(own), save_type);
    case 'p':
        return std::make_unique<cl_variable_fpt>(std::move(own), save_type);
    case 'c':
        return std::make_unique<cl_variable_COLORREF>(std::move(own), save_type);
    default:
        return std::make_unique<cl_variable_double>(std::move(own), save_type);
    }
}
