// Reading and changing the text of initialisation files, see ini_text.h.
#include "omb/base/ini_text.h"

#include "omb/base/text.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

bool is_control(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }
bool is_blank(char c) { return c == ' ' || c == '\t'; }

struct escape {
    char character, letter;
};
constexpr escape escapes[] = {{'\\', '\\'}, {'"', '"'}, {'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}};

bool needs_quotes(std::string_view text) {
    return !text.empty() && (is_blank(text.front()) || is_blank(text.back()) ||
                             text.front() == '"' || std::ranges::any_of(text, is_control));
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        const auto* known = std::ranges::find(escapes, c, &escape::character);
        if (known != std::end(escapes)) {
            result += {'\\', known->letter};
        } else if (is_control(c)) {
            result += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string quoted_if_needed(std::string_view text) {
    return needs_quotes(text) ? quoted(text) : std::string(text);
}

/// A key must not look like a comment, a heading or two halves.
std::string key_text(std::string_view key) {
    const bool odd = key.empty() || key.find('=') != key.npos || key.front() == '[' ||
                     key.front() == ';' || key.front() == '#';
    return odd ? quoted(key) : quoted_if_needed(key);
}

std::string heading(std::string_view section) { return "[" + quoted_if_needed(section) + "]"; }

/// Reads one escape behind a backslash at `at`, which moves to its last character.
void append_unescaped(std::string& result, std::string_view text, std::size_t& at) {
    const char letter = text[at];
    const auto* known = std::ranges::find(escapes, letter, &escape::letter);
    if (known != std::end(escapes)) {
        result += known->character;
    } else if (letter == 'x' && at + 2 < text.size()) {
        result += static_cast<char>(omb::parse_hex(text.substr(at + 1, 2)));
        at += 2;
    } else {
        result += {'\\', letter};
    }
}

/// Takes a quoted text from the front. Nothing, with `text` untouched, when it has no closing
/// quote: then the quote is an ordinary character.
std::optional<std::string> take_quoted(std::string_view& text) {
    std::string result;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '"') {
            text.remove_prefix(at + 1);
            return result;
        }
        if (text[at] == '\\' && at + 1 < text.size()) {
            append_unescaped(result, text, ++at);
        } else {
            result += text[at];
        }
    }
    return std::nullopt;
}

/// A whole value or section name: quoted, or as it stands.
std::string plain(std::string_view text) {
    if (text.starts_with('"')) {
        std::string_view rest = text;
        std::optional<std::string> inside = take_quoted(rest);
        if (inside && omb::trim(rest).empty()) {
            return *inside;
        }
    }
    return std::string(text);
}

/// Splits "key=value"; false for any other line.
bool split_entry(std::string_view text, std::string& key, std::string& value) {
    if (text.starts_with('"')) {
        std::string_view rest = text;
        std::optional<std::string> inside = take_quoted(rest);
        rest = omb::trim(rest);
        if (inside && rest.starts_with('=')) {
            key = *inside;
            value = plain(omb::trim(rest.substr(1)));
            return true;
        }
    }
    const std::size_t at = text.find('=');
    if (at == text.npos || at == 0 || text.front() == ';' || text.front() == '#') {
        return false;
    }
    key = omb::trim(text.substr(0, at));
    value = plain(omb::trim(text.substr(at + 1)));
    return true;
}

} // namespace

std::string cl_ini_text::index_key(std::string_view section, std::string_view key) const {
    std::string result;
    result.reserve(section.size() + key.size() + 1);
    result.append(section).append(1, '\0').append(key);
    return fold_case ? omb::to_lower(result) : result;
}

void cl_ini_text::add_line(std::string_view raw) {
    const std::string_view text = omb::trim(raw);
    if (text.starts_with('[') && text.ends_with(']')) {
        sections.push_back(
            {plain(omb::trim(text.substr(1, text.size() - 2))), std::string(raw), {}});
        return;
    }
    section_lines& current = sections.back();
    line added;
    added.raw = raw;
    added.entry = split_entry(text, added.key, added.value);
    if (added.entry) {
        index.try_emplace(index_key(current.name, added.key),
                          place{static_cast<std::uint32_t>(sections.size() - 1),
                                static_cast<std::uint32_t>(current.lines.size())});
    }
    current.lines.push_back(std::move(added));
}

bool cl_ini_text::parse(std::string_view bytes) {
    clear();
    if (bytes.find('\0') != bytes.npos) {
        return false;
    }
    while (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
    }
    const std::size_t first_end = bytes.find('\n');
    line_end =
        first_end != bytes.npos && first_end > 0 && bytes[first_end - 1] == '\r' ? "\r\n" : "\n";
    sections.emplace_back();
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        std::string_view raw = bytes.substr(0, end);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
        while (raw.ends_with('\r')) {
            raw.remove_suffix(1);
        }
        add_line(raw);
    }
    return true;
}

std::string cl_ini_text::text() const {
    std::string result;
    for (const section_lines& section : sections) {
        if (!section.raw.empty()) {
            result += section.raw + line_end;
        }
        for (const line& line : section.lines) {
            result += line.raw + line_end;
        }
    }
    return result;
}

std::optional<std::string_view> cl_ini_text::read(std::string_view section,
                                                  std::string_view key) const {
    const auto found = index.find(index_key(section, key));
    if (found == index.end()) {
        return std::nullopt;
    }
    return sections[found->second.section].lines[found->second.line].value;
}

/// The last section of that name, or the number of sections.
std::size_t cl_ini_text::last_section(std::string_view name) const {
    for (std::size_t i = sections.size(); i > 0; --i) {
        const std::string& other = sections[i - 1].name;
        if (fold_case ? omb::equal_no_case(other, name) : other == name) {
            return i - 1;
        }
    }
    return sections.size();
}

void cl_ini_text::write(std::string_view section, std::string_view key, std::string_view value) {
    std::string raw = key_text(key) + "=" + quoted_if_needed(value);
    const std::string where = index_key(section, key);
    if (const auto found = index.find(where); found != index.end()) {
        line& present = sections[found->second.section].lines[found->second.line];
        present.raw = std::move(raw);
        present.value = value;
        return;
    }
    if (sections.empty()) {
        sections.emplace_back();
    }
    const std::size_t at = last_section(section);
    if (at == sections.size()) {
        std::vector<line>& above = sections.back().lines;
        if (!above.empty() && !omb::trim(above.back().raw).empty()) {
            above.emplace_back(); // a blank line ahead of a new heading
        }
        sections.push_back({std::string(section), heading(section), {}});
    }
    std::vector<line>& lines = sections[at].lines;
    std::size_t end = lines.size();
    while (end > 0 && omb::trim(lines[end - 1].raw).empty()) {
        --end; // blank lines ahead of the next heading stay there
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(end),
                 {std::move(raw), std::string(key), std::string(value), true});
    index[where] = {static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(end)};
}

bool cl_ini_text::remove(std::string_view section, std::string_view key) {
    const auto found = index.find(index_key(section, key));
    if (found == index.end()) {
        return false;
    }
    const place gone = found->second;
    std::vector<line>& lines = sections[gone.section].lines;
    lines.erase(lines.begin() + gone.line);
    reindex(); // a second line of that key counts from now on
    return true;
}

void cl_ini_text::reindex() {
    index.clear();
    for (std::size_t s = 0; s < sections.size(); ++s) {
        for (std::size_t i = 0; i < sections[s].lines.size(); ++i) {
            if (sections[s].lines[i].entry) {
                index.try_emplace(
                    index_key(sections[s].name, sections[s].lines[i].key),
                    place{static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(i)});
            }
        }
    }
}

void cl_ini_text::clear() {
    sections.clear();
    index.clear();
    line_end = "\n";
}

std::vector<std::string> cl_ini_text::keys(std::string_view section) const {
    std::vector<std::string> result;
    for (const section_lines& candidate : sections) {
        if (fold_case ? omb::equal_no_case(candidate.name, section) : candidate.name == section) {
            for (const line& line : candidate.lines) {
                if (line.entry) {
                    result.push_back(line.key);
                }
            }
        }
    }
    return result;
}
