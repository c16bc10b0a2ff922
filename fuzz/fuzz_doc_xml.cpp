// The reader of qor_doc.xml: any bytes are refused or read; what was read comes back the same after
// a write.
#include "toolkit/ts_doc.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

std::string written(const CTsDoc& document) {
    CTsXmlWriter writer;
    writer.Init("", 0, -1);
    document.Write(writer);
    return writer.Text();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CTsXmlReader reader;
    CTsDoc document;
    if (!reader.InitFromText({reinterpret_cast<const char*>(data), size}, "fuzz") ||
        !document.Read(reader)) {
        return 0;
    }
    const std::string once = written(document);
    CTsXmlReader second;
    CTsDoc back;
    if (!second.InitFromText(once, "again") || !back.Read(second)) {
        std::abort();
    }
    return 0;
}
