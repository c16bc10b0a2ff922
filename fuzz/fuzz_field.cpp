// The reader of comma-separated fields: any bytes are read to their end, and fields that are
// written come back as they were, trimmed. The first byte chooses the separator; in the second part
// of the test a zero byte stands between fields.
#include "omb/base/files.h"
#include "omb/base/text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void require(bool good) {
    if (!good) {
        std::abort();
    }
}

void read_any_bytes(std::string_view bytes, char separator) {
    std::string_view same = bytes.substr(0, 4096);
    std::string line(same); // this form moves the rest at every field
    while (!same.empty()) {
        const std::size_t before = same.size();
        const std::string field = read_field_csv(same, separator);
        require(same.size() < before);
        require(field == read_field_csv(line, separator) && line == same);
        require(field == omb::trim(field));
    }
    require(read_field_csv(same, separator).empty());
}

void write_and_read(const std::vector<std::string_view>& fields, char separator) {
    std::string text;
    bool always_quoted = false;
    for (const std::string_view field : fields) {
        text += field_csv(field, separator, always_quoted) + separator;
        always_quoted = !always_quoted;
    }
    require(text.find_first_of("\r\n") == text.npos);
    std::string_view rest = text;
    for (const std::string_view field : fields) {
        require(read_field_csv(rest, separator) == omb::trim(field));
    }
    require(rest.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const char separator = ",;\t|"[data[0] % 4];
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    read_any_bytes(bytes, separator);
    write_and_read(omb::split(bytes, '\0'), separator);
    return 0;
}
