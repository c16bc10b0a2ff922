// The file of a pop-up menu, see menu_file.h.
#include "omb/dialog/menu_file.h"

#include "omb/base/application_files.h"
#include "omb/base/text.h"

#include <array>
#include <cctype>
#include <fmt/printf.h>

namespace {

struct menu_key {
    std::string_view key;
    std::string cl_cmenu_values::*of_menu;
    std::string cl_cmenu_item::*of_item; ///< behind an `item` the key is the item's
};
/// `cmenu`, `item` and `color` have rules of their own.
constexpr std::array<menu_key, 7> menu_keys{{
    {"type", &cl_cmenu_values::type, nullptr},
    {"select_global", &cl_cmenu_values::select_global, nullptr},
    {"value_global", &cl_cmenu_values::value_global, nullptr},
    {"color_global", &cl_cmenu_values::color_global, nullptr},
    {"command", &cl_cmenu_values::command, &cl_cmenu_item::command},
    {"label", nullptr, &cl_cmenu_item::label},
    {"value", nullptr, &cl_cmenu_item::value},
}};

/// What stands in quotes, or the text up to a semicolon.
std::string value_of(std::string_view text) {
    text = omb::trim(text);
    if (text.starts_with('"')) {
        text.remove_prefix(1);
        return std::string(text.substr(0, text.find('"')));
    }
    return std::string(omb::trim(text.substr(0, text.find(';'))));
}

class menu_reader {
public:
    menu_reader(std::string_view name, std::vector<std::string>& messages)
      : name(name)
      , messages(messages) {}

    void read_line(std::string_view line, int number);
    cl_cmenu_values menu;

private:
    void read_key(std::string_view key, const std::string& value, int number);
    bool has_item(std::string_view key, int number);
    void begin_item(const std::string& value);

    std::string_view name;
    std::vector<std::string>& messages;
    bool is_full = false;
};

void menu_reader::read_line(std::string_view line, int number) {
    line = omb::trim(line);
    if (line.empty() || line.starts_with('#')) {
        return;
    }
    const std::size_t end = line.find_first_of("=:");
    const std::string_view key = omb::trim(line.substr(0, end));
    read_key(key, end == std::string_view::npos ? std::string() : value_of(line.substr(end + 1)),
             number);
}

void menu_reader::begin_item(const std::string& value) {
    if (menu.items.size() >= menu_file_items) {
        if (!is_full) {
            messages.push_back(fmt::sprintf("The menu has more than %d items: %s",
                                            static_cast<int>(menu_file_items), std::string(name)));
        }
        is_full = true;
        return;
    }
    menu.items.emplace_back().value = value;
}

bool menu_reader::has_item(std::string_view key, int number) {
    if (menu.items.empty()) {
        messages.push_back(fmt::sprintf("Cannot read .mnu file - line: %d - %s is not in an item",
                                        number, std::string(key)));
    }
    return !menu.items.empty() && !is_full;
}

void menu_reader::read_key(std::string_view key, const std::string& value, int number) {
    if (key == "item") {
        begin_item(value);
        return;
    }
    if (key == "cmenu") {
        menu.name = value;
        if (value != name) {
            messages.push_back(
                fmt::sprintf("Cannot read .mnu file - menu name does not match file name: %s : %s",
                             value, std::string(name)));
        }
        return;
    }
    if (key == "color") {
        if (has_item(key, number)) {
            menu.items.back().color = parse_colorref(value);
            menu.items.back().has_color = true;
        }
        return;
    }
    for (const menu_key& row : menu_keys) {
        if (row.key != key) {
            continue;
        }
        if (row.of_menu != nullptr && (row.of_item == nullptr || menu.items.empty())) {
            menu.*row.of_menu = value;
        } else if (has_item(key, number)) {
            menu.items.back().*row.of_item = value;
        }
        return;
    }
    messages.push_back(
        fmt::sprintf("The menu's line %d is not known: %s", number, std::string(key)));
}

bool is_word_character(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// Arguments up to the closing bracket; false when the text does not end there.
bool take_arguments(std::string_view text, std::vector<cl_dcl_parameter>& parameters) {
    text = omb::trim(text);
    if (text.starts_with(')')) {
        return text.size() == 1;
    }
    while (true) {
        std::size_t end = 0;
        if (text.starts_with('"')) {
            end = text.find('"', 1);
            if (end == std::string_view::npos) {
                return false;
            }
            parameters.push_back({std::string(text.substr(1, end - 1)), 1});
            text = omb::trim(text.substr(end + 1));
        } else {
            end = text.find_first_of(",)");
            if (end == std::string_view::npos) {
                return false;
            }
            parameters.push_back({std::string(omb::trim(text.substr(0, end))), 1});
            text.remove_prefix(end);
        }
        if (!text.starts_with(',')) {
            return text == ")";
        }
        text = omb::trim(text.substr(1));
    }
}

} // namespace

cl_cmenu_values parse_menu_file(std::string_view text, std::string_view name,
                                std::vector<std::string>& messages) {
    menu_reader reader(name, messages);
    if (text.size() > menu_file_bytes) {
        messages.push_back(fmt::sprintf("The menu's file is too large: %s", std::string(name)));
        return {};
    }
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    }
    int number = 0;
    for (const std::string_view line : omb::split(text, '\n')) {
        reader.read_line(line, ++number);
    }
    return std::move(reader.menu);
}

std::string find_menu_file(const std::string& name) {
    const std::string application = name.substr(0, name.find('_'));
    const std::string file = name + ".mnu";
    for (const char* folder : {"DCL", "dcl"}) {
        if (const std::string path = find_application_file(folder, application, file);
            !path.empty()) {
            return path;
        }
    }
    return {};
}

std::optional<cl_dialog_command_line> parse_command_text(std::string_view text) {
    text = omb::trim(text);
    while (text.ends_with(';')) {
        text = omb::trim(text.substr(0, text.size() - 1));
    }
    std::size_t end = 0;
    while (end < text.size() && is_word_character(text[end])) {
        ++end;
    }
    cl_dialog_command_line line;
    line.name = text.substr(0, end);
    text = omb::trim(text.substr(end));
    if (line.name.empty() || std::isdigit(static_cast<unsigned char>(line.name.front())) != 0) {
        return {};
    }
    if (text.empty()) {
        return line;
    }
    if (!text.starts_with('(') || !take_arguments(text.substr(1), line.parameters)) {
        return {};
    }
    return line;
}
