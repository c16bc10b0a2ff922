// Tables and JSON of settings, see settings_view.h.
#include "apps/settings_view.h"

#include "omb/base/text.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace apps {
namespace {

constexpr std::size_t kLineWidth = 100;
constexpr std::size_t kGap = 2;
constexpr std::size_t kWidestName = 33; // a few longer ones push what follows
constexpr std::size_t kWidestValue = 14;
constexpr std::size_t kTypeWidth = 7; // "by-name", "profile"
constexpr std::size_t kSourceWidth = 7;
constexpr std::size_t kLeastTitle = 8;
constexpr std::size_t kLongestCut = 30; // of a value on a terminal

/// Characters, not bytes, of UTF-8.
std::size_t width_of(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U; }));
}

/// A value in a table: what is empty or has blanks at its ends can be seen, and it is one line.
std::string cell_text(const std::string& value, bool cut) {
    std::string text = value;
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, '?');
    if (text.empty() || omb::trim(text) != text) {
        text = '"' + text + '"';
    }
    if (cut && width_of(text) > kLongestCut) {
        const std::u16string units = omb::to_utf16(text);
        text = omb::to_utf8(std::u16string_view(units).substr(0, kLongestCut - 3)) + "...";
    }
    return text;
}

/// A line whose cells begin at given columns, or one gap behind a cell that is too long.
class Line {
public:
    void cell(std::size_t column, std::string_view text) {
        const std::size_t width = width_of(text_);
        const std::size_t start = width == 0 ? column : std::max(column, width + kGap);
        text_ += std::string(start - width, ' ');
        text_ += text;
    }
    std::size_t width() const { return width_of(text_); }
    std::string take() { return std::exchange(text_, {}) + "\n"; }

private:
    std::string text_;
};

struct Columns {
    std::size_t name = 2, value = 0, factory = 0, title = 0, type = 0, source = 0;
    bool has_factory = false;
};

Columns columns_of(const std::vector<Setting>& settings, bool cut) {
    std::size_t name = 4;
    std::size_t value = 5;
    std::size_t factory = 0;
    for (const Setting& setting : settings) {
        name = std::max(name, setting.row->name.size());
        value = std::max(value, width_of(cell_text(setting.variable->value_text(), cut)));
        if (is_changed(setting)) {
            const std::string text = cell_text(setting.variable->default_text(), cut);
            factory = std::max({factory, width_of(text), std::size_t{7}});
        }
    }
    Columns columns;
    columns.value = columns.name + std::min(name, kWidestName) + kGap;
    columns.factory = columns.value + std::min(value, kWidestValue) + kGap;
    columns.has_factory = factory > 0;
    columns.title = columns.factory;
    if (columns.has_factory) {
        columns.title += std::min(factory, kWidestValue) + kGap;
    }
    columns.source = kLineWidth - kSourceWidth;
    columns.type = columns.source - kGap - kTypeWidth;
    return columns;
}

void table_row(Line& line, const Columns& columns, const Setting& setting, bool cut) {
    const bool changed = is_changed(setting);
    line.cell(0, fmt::format("{} {}", changed ? '*' : ' ', setting.row->name));
    line.cell(columns.value, cell_text(setting.variable->value_text(), cut));
    if (changed) {
        line.cell(columns.factory, cell_text(setting.variable->default_text(), cut));
    }
    // The title gives way: it is the name in other words.
    const std::size_t start = std::max(columns.title, line.width() + kGap);
    const std::size_t room = columns.type > start + kGap ? columns.type - start - kGap : 0;
    std::string title = get_global_title(setting.row->name);
    if (width_of(title) > room) {
        const std::size_t kept = std::max(room, kLeastTitle);
        title = title.size() > kept ? title.substr(0, kept - 3) + "..." : title;
    }
    line.cell(columns.title, title);
    line.cell(columns.type, save_type_row(setting.variable->save_type).word);
    line.cell(columns.source, source_word(setting.source));
}

nlohmann::ordered_json as_object(const Setting& setting) {
    const int type = setting.variable->save_type;
    return {{"name", setting.row->name},
            {"save_type", type},
            {"value", setting.variable->value_text()},
            {"default", setting.variable->default_text()},
            {"title", get_global_title(setting.row->name)},
            {"source", source_word(setting.source)},
            {"group", setting.group},
            {"save_type_name", save_type_row(type).constant},
            {"kind", kind_word(setting.row->name)}};
}

// Bytes that are no UTF-8 must not lose the whole answer.
std::string dump(const nlohmann::ordered_json& json) {
    return json.dump(1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

} // namespace

std::string settings_table_text(const std::vector<Setting>& settings, bool cut_values) {
    const Columns columns = columns_of(settings, cut_values);
    Line line;
    line.cell(columns.name, "name");
    line.cell(columns.value, "value");
    if (columns.has_factory) {
        line.cell(columns.factory, "factory");
    }
    line.cell(columns.title, "title");
    line.cell(columns.type, "kept in");
    line.cell(columns.source, "from");
    std::string text = line.take();
    std::string_view group;
    for (const Setting& setting : settings) {
        if (setting.group != group) {
            group = setting.group;
            text += fmt::format("\n{}\n", group);
        }
        table_row(line, columns, setting, cut_values);
        text += line.take();
    }
    const auto changed = std::ranges::count_if(settings, is_changed);
    text += fmt::format("\n{} setting{}", settings.size(), settings.size() == 1 ? "" : "s");
    text += changed > 0 ? fmt::format("; * marks {} that differ{} from the factory value.\n",
                                      changed, changed == 1 ? "s" : "")
                        : ", at the factory value.\n";
    return text;
}

std::string settings_diff_text(const std::vector<Setting>& settings) {
    std::size_t name = 4;
    std::size_t value = 5;
    std::size_t factory = 7;
    for (const Setting& setting : settings) {
        name = std::max(name, setting.row->name.size());
        value = std::max(value, width_of(cell_text(setting.variable->value_text(), false)));
        factory = std::max(factory, width_of(cell_text(setting.variable->default_text(), false)));
    }
    constexpr std::size_t kWidest = 30;
    const std::size_t second = name + kGap;
    const std::size_t third = second + std::min(value, kWidest) + kGap;
    const std::size_t fourth = third + std::min(factory, kWidest) + kGap;
    Line line;
    const auto row = [&](std::string_view a, std::string_view b, std::string_view c,
                         std::string_view d) {
        line.cell(0, a);
        line.cell(second, b);
        line.cell(third, c);
        line.cell(fourth, d);
        return line.take();
    };
    std::string text = row("name", "value", "factory", "from");
    for (const Setting& setting : settings) {
        text +=
            row(setting.row->name, cell_text(setting.variable->value_text(), false),
                cell_text(setting.variable->default_text(), false), source_word(setting.source));
    }
    return text;
}

std::string setting_json(const Setting& setting) { return dump(as_object(setting)); }

std::string settings_json(const std::vector<Setting>& settings) {
    auto list = nlohmann::ordered_json::array();
    for (const Setting& setting : settings) {
        list.push_back(as_object(setting));
    }
    return dump(list);
}

} // namespace apps
