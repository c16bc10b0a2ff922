// A stand-in for the registry: typed values under full key texts such as
// "HKEY_CURRENT_USER\Software\Halden\Tessara Qor\InstallDir". Values live in memory and end with
// the process: nothing is kept on disk yet.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A value with the type numbers that messages name: 1 text, 3 binary, 4 32-bit number.
struct cl_registry_result {
    enum type_number { none = 0, text = 1, binary = 3, number = 4 };
    std::variant<std::monostate, std::string, std::vector<std::uint8_t>, std::uint32_t> value;

    type_number type() const;
};

/// Reads a value by its full key text. A key of HKEY_LOCAL_MACHINE under SOFTWARE\ that is missing
/// is tried again under SOFTWARE\WOW6432Node\. False, with a trace, when it is not there.
bool read_registry_entry(std::string_view full_key, cl_registry_result& result);
/// False, with a trace, when the key text is not well formed.
bool write_registry_entry(std::string_view full_key, cl_registry_result value);
void clear_registry();

/// Typed reads. False, with a trace and `value` untouched, when missing or of another type.
bool get_text_from_registry(std::string_view full_key, std::string& value);
bool get_int_from_registry(std::string_view full_key, std::uint32_t& value);
/// A number kept as text.
bool get_double_from_registry(std::string_view full_key, double& value);
bool get_binary_from_registry(std::string_view full_key, std::vector<std::uint8_t>& value);
