// The registry's stand-in, see registry.h.
#include "omb/base/registry.h"

#include "omb/base/text.h"
#include "omb/base/trace.h"

#include <map>

namespace {

constexpr std::string_view machine_root = "HKEY_LOCAL_MACHINE";
constexpr std::string_view user_root = "HKEY_CURRENT_USER";
constexpr std::string_view software = "SOFTWARE\\";
constexpr std::string_view redirected = "SOFTWARE\\WOW6432Node\\";

/// Values by lower-case full key text: registry names know no case.
std::map<std::string, cl_registry_result>& entries() {
    static std::map<std::string, cl_registry_result> map;
    return map;
}

struct key_parts {
    std::string_view root, path; ///< path: key, backslash, value name
};

bool parse_key(std::string_view full_key, key_parts& parts) {
    const std::size_t first = full_key.find('\\');
    const std::string_view root = full_key.substr(0, first);
    if (root != machine_root && root != user_root) {
        OMB_TRACE(1, "Registry key must start with HKEY: %s", std::string(full_key));
        return false;
    }
    const std::string_view path =
        first == full_key.npos ? std::string_view() : full_key.substr(first + 1);
    if (path.find('\\') == path.npos) {
        OMB_TRACE(1, "Cannot parse registry key %s - Key must contain a backslash",
                  std::string(full_key));
        return false;
    }
    parts = {root, path};
    return true;
}

bool read_round(std::string_view root, std::string_view path, cl_registry_result& result) {
    const auto entry = entries().find(omb::to_lower(std::string(root) + "\\" + std::string(path)));
    if (entry == entries().end()) {
        return false;
    }
    result = entry->second;
    return true;
}

/// The value of one type; any other is traced.
template <typename Value>
const Value* typed_value(std::string_view full_key, const char* type_name,
                         const cl_registry_result& result) {
    const Value* value = std::get_if<Value>(&result.value);
    if (value == nullptr) {
        OMB_TRACE(1, "Cannot parse registry key - Value is not a %s: %s (%d)", type_name,
                  std::string(full_key), static_cast<int>(result.type()));
    }
    return value;
}

template <typename Value>
bool get_typed(std::string_view full_key, const char* type_name, Value& value) {
    cl_registry_result result;
    if (!read_registry_entry(full_key, result)) {
        return false;
    }
    const Value* found = typed_value<Value>(full_key, type_name, result);
    if (found == nullptr) {
        return false;
    }
    value = *found;
    return true;
}

} // namespace

cl_registry_result::type_number cl_registry_result::type() const {
    constexpr type_number by_index[] = {none, text, binary, number};
    return by_index[value.index()];
}

bool read_registry_entry(std::string_view full_key, cl_registry_result& result) {
    key_parts parts;
    if (!parse_key(full_key, parts)) {
        return false;
    }
    if (read_round(parts.root, parts.path, result)) {
        return true;
    }
    const std::string_view head = parts.path.substr(0, software.size());
    if (parts.root == machine_root && omb::equal_no_case(head, software)) {
        const std::string second =
            std::string(redirected) + std::string(parts.path.substr(software.size()));
        if (read_round(parts.root, second, result)) {
            return true;
        }
    }
    OMB_TRACE(1, "Cannot locate registry entry: %s", std::string(full_key));
    return false;
}

bool write_registry_entry(std::string_view full_key, cl_registry_result value) {
    key_parts parts;
    if (!parse_key(full_key, parts)) {
        return false;
    }
    entries()[omb::to_lower(full_key)] = std::move(value);
    return true;
}

void clear_registry() { entries().clear(); }

bool get_text_from_registry(std::string_view full_key, std::string& value) {
    return get_typed(full_key, "string", value);
}

bool get_int_from_registry(std::string_view full_key, std::uint32_t& value) {
    return get_typed(full_key, "number", value);
}

bool get_double_from_registry(std::string_view full_key, double& value) {
    std::string text;
    if (!get_typed(full_key, "double", text)) {
        return false;
    }
    std::string_view rest = text;
    return omb::take_double(rest, value);
}

bool get_binary_from_registry(std::string_view full_key, std::vector<std::uint8_t>& value) {
    return get_typed(full_key, "binary", value);
}
