// The profile's text: any bytes are read, every change keeps the other keys, and what was written
// is read back the same.
#include "omb/base/ini_text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

std::map<std::string, std::string> values_of(const cl_ini_text& ini, const char* section) {
    std::map<std::string, std::string> values;
    for (const std::string& key : ini.keys(section)) {
        values.emplace(key, *ini.read(section, key));
    }
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const bool fold_case = size % 2 == 1;
    cl_ini_text ini(fold_case);
    if (!ini.parse(bytes)) {
        return 0;
    }
    cl_ini_text again(fold_case);
    require(again.parse(ini.text()) && again.text() == ini.text());
    auto expected = values_of(ini, "Globals");
    require(values_of(again, "Globals") == expected);

    // The input's own bytes as key, value and section.
    const std::string key = bytes.substr(0, size / 3);
    const std::string value = bytes.substr(size / 3);
    ini.write("Globals", key, value);
    ini.write(value, key, value);
    require(again.parse(ini.text()));
    require(again.read("Globals", key) == value && again.read(value, key) == value);
    for (const auto& [name, text] : expected) {
        const bool written = again.read("Globals", name) == value;
        require(written || again.read("Globals", name) == text);
    }
    while (ini.remove("Globals", key)) {
    }
    require(again.parse(ini.text()) && !again.read("Globals", key));
    return 0;
}
