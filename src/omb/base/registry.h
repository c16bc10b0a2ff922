// A stand-in for the registry: typed values under full key texts such as
// "HKEY_CURRENT_USER\Software\Halden\Tessara Qor\InstallDir", in a profile store whose sections
// are the keys. A text stands there as it is, a number as "dword:0000002a", bytes as "hex:01,ff",
// and a text that looks like one of these behind "sz:". The user's settings are seen as well:
// section and key of the profile below HKEY_CURRENT_USER\Software\Ombrel Systems\Profile.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

class cl_profile_store;

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
bool write_registry_entry(std::string_view full_key, const cl_registry_result& value);
/// Replaces the store of the values; a null pointer brings back an empty one in memory. Names
/// should know no case in it.
void set_registry(std::unique_ptr<cl_profile_store> store);
void clear_registry();

/// Typed reads. False, with a trace and `value` untouched, when missing or of another type.
bool get_text_from_registry(std::string_view full_key, std::string& value);
bool get_int_from_registry(std::string_view full_key, std::uint32_t& value);
/// A number kept as text.
bool get_double_from_registry(std::string_view full_key, double& value);
bool get_binary_from_registry(std::string_view full_key, std::vector<std::uint8_t>& value);
