// The reader of pop-up menus and of their commands: any text gives a menu within its limits, whose
// pieces hold no line ends.
#include "omb/dialog/menu_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void check(const std::string& text) {
    if (text.find('\n') != std::string::npos) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> messages;
    const cl_cmenu_values menu = parse_menu_file(text, "fuzz_menu", messages);
    if (menu.items.size() > menu_file_items) {
        std::abort();
    }
    check(menu.command);
    for (const cl_cmenu_item& item : menu.items) {
        check(item.label);
        check(item.value);
        const auto line = parse_command_text(item.command);
        if (line && line->name.empty()) {
            std::abort();
        }
    }
    (void)parse_command_text(text);
    return 0;
}
