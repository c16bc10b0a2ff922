// The text of an initialisation file: sections of "key=value" lines. Comments and lines that are
// not understood stay where they are; a change touches its own line only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// A value, key or section name that begins or ends with a blank, begins with a quote or holds
/// control characters stands in double quotes, with the escapes \\ \" \n \r \t \xHH; any other
/// stands as it is. Blanks around a key and ahead of a value do not count.
class cl_ini_text {
public:
    /// With `fold_case`, section and key names are the same in upper and lower case (of ASCII).
    explicit cl_ini_text(bool fold_case = false)
      : fold_case(fold_case) {}

    /// Takes the place of what was there. Line ends may be LF or CR LF; a byte order mark is
    /// skipped. Of a key that stands twice the first counts. False, with nothing kept, when the
    /// bytes are no text (they hold a zero byte).
    bool parse(std::string_view bytes);
    std::string text() const;

    /// The view is valid until the next change.
    std::optional<std::string_view> read(std::string_view section, std::string_view key) const;
    /// Replaces the value, or adds the key at the section's end and the section at the file's.
    void write(std::string_view section, std::string_view key, std::string_view value);
    /// Takes the line away; false when there was none.
    bool remove(std::string_view section, std::string_view key);
    void clear();

    /// The keys of a section in the order of their lines.
    std::vector<std::string> keys(std::string_view section) const;

private:
    struct line {
        std::string raw, key, value;
        bool entry = false;
    };
    struct section_lines {
        std::string name, raw; ///< raw: its heading as it stands; "" ahead of the first heading
        std::vector<line> lines;
    };
    struct place {
        std::uint32_t section, line;
    };

    std::string index_key(std::string_view section, std::string_view key) const;
    void add_line(std::string_view raw);
    std::size_t last_section(std::string_view name) const;
    void reindex();

    bool fold_case;
    std::string line_end = "\n";
    std::vector<section_lines> sections;
    std::unordered_map<std::string, place> index;
};
