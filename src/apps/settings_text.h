// Texts that people give: values of settings, checked against the kind, and patterns.
#pragma once

#include <string>
#include <string_view>

namespace apps {

/// Who has written a value's text.
enum class TextForm {
    kTyped, ///< a person: yes and on, #rrggbb, x,y,z
    kFile   ///< a defaults file: whole numbers for bool and colour, points in brackets
};

struct CheckedText {
    std::string text;  ///< in a form that every variable and the file's reader take
    std::string wrong; ///< what is wrong, in words, or empty
};
/// Whether the text fits the kind of the setting.
CheckedText check_setting_text(std::string_view name, std::string_view text, TextForm form);

/// True when the text holds the word, or matches the pattern as a whole when there is a *, ? or [
/// in it. ASCII letters are compared without case.
bool matches_pattern(std::string_view pattern, std::string_view text);

/// One line that a terminal can show: control characters become "?", a long text is cut.
std::string shown_text(std::string_view text);

} // namespace apps
