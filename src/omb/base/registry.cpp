// The registry's stand-in, see registry.h.
#include "omb/base/registry.h"

#include "omb/base/profile.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"

namespace {

constexpr std::string_view machine_root = "HKEY_LOCAL_MACHINE";
constexpr std::string_view user_root = "HKEY_CURRENT_USER";
constexpr std::string_view software = "SOFTWARE\\";
constexpr std::string_view redirected = "SOFTWARE\\WOW6432Node\\";

constexpr std::string_view profile_path = "Software\\Ombrel Systems\\Profile\\";

using holder = std::unique_ptr<cl_profile_store>;

holder& store() {
    static holder values = make_memory_profile(true);
    return values;
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

/// Key and value name, split at the last backslash.
struct value_place {
    std::string key, name;

    value_place(std::string_view root, std::string_view path)
      : key(root) {
        const std::size_t at = path.rfind('\\');
        key.append("\\").append(path.substr(0, at));
        name = path.substr(at + 1);
    }
};

constexpr std::string_view number_mark = "dword:", bytes_mark = "hex:", text_mark = "sz:";

std::string bytes_text(const std::vector<std::uint8_t>& bytes) {
    std::string text(bytes_mark);
    for (const std::uint8_t byte : bytes) {
        text += fmt::sprintf("%s%02x", text.size() == bytes_mark.size() ? "" : ",", byte);
    }
    return text;
}

std::string stored_text(const cl_registry_result& value) {
    switch (value.type()) {
    case cl_registry_result::text: {
        const std::string& text = std::get<std::string>(value.value);
        const bool marked = text.starts_with(number_mark) || text.starts_with(bytes_mark) ||
                            text.starts_with(text_mark);
        return (marked ? std::string(text_mark) : std::string()) + text;
    }
    case cl_registry_result::number:
        return fmt::sprintf("%s%08x", std::string(number_mark),
                            std::get<std::uint32_t>(value.value));
    case cl_registry_result::binary:
        return bytes_text(std::get<std::vector<std::uint8_t>>(value.value));
    default:
        return {};
    }
}

cl_registry_result stored_value(std::string_view text) {
    if (text.starts_with(number_mark)) {
        return {omb::parse_hex(text.substr(number_mark.size()))};
    }
    if (text.starts_with(bytes_mark)) {
        std::vector<std::uint8_t> bytes;
        text.remove_prefix(bytes_mark.size());
        for (const std::string_view piece : omb::split(text, ',')) {
            if (!omb::trim(piece).empty()) {
                bytes.push_back(static_cast<std::uint8_t>(omb::parse_hex(piece)));
            }
        }
        return {std::move(bytes)};
    }
    return {std::string(text.substr(text.starts_with(text_mark) ? text_mark.size() : 0))};
}

/// A setting of the user: a whole number counts as one.
bool read_setting(std::string_view path, cl_registry_result& result) {
    const std::size_t at = path.find('\\', profile_path.size());
    if (at == path.npos) {
        return false;
    }
    const auto text = profile().read(path.substr(profile_path.size(), at - profile_path.size()),
                                     path.substr(at + 1));
    if (!text) {
        return false;
    }
    const std::int32_t number = omb::parse_int(*text);
    if (std::to_string(number) == *text) {
        result = {static_cast<std::uint32_t>(number)};
    } else {
        result = {std::string(*text)};
    }
    return true;
}

bool read_round(std::string_view root, std::string_view path, cl_registry_result& result) {
    const value_place place(root, path);
    if (const auto text = store()->read(place.key, place.name)) {
        result = stored_value(*text);
        return true;
    }
    return root == user_root &&
           omb::equal_no_case(path.substr(0, profile_path.size()), profile_path) &&
           read_setting(path, result);
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

bool write_registry_entry(std::string_view full_key, const cl_registry_result& value) {
    key_parts parts;
    if (!parse_key(full_key, parts)) {
        return false;
    }
    const value_place place(parts.root, parts.path);
    store()->write(place.key, place.name, stored_text(value));
    return true;
}

void set_registry(holder values) {
    store() = values ? std::move(values) : make_memory_profile(true);
}

void clear_registry() { set_registry(nullptr); }

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
