// Event scripts, see event_script.h.
#include "platform/window/event_script.h"

#include "platform/file_io.h"

#include <algorithm>
#include <charconv>

namespace platform {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::uint64_t script_limit = 1 << 20; ///< bytes

/// Cuts the first word off the front of `rest`.
std::string_view take_word(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    const std::string_view word = rest.substr(0, rest.find_first_of(blanks));
    rest.remove_prefix(word.size());
    return word;
}

} // namespace

bool parse_script_line(std::string_view line, ScriptEvent& event) {
    event = {};
    std::string_view target = take_word(line);
    if (target.empty() || target.front() == '#') {
        return false;
    }
    if (const std::size_t slash = target.find('/'); slash != std::string_view::npos) {
        event.window = target.substr(0, slash);
        target.remove_prefix(slash + 1);
    }
    event.target = target;
    if (target != "answer") {
        event.action = take_word(line);
    }
    line.remove_prefix(std::min<std::size_t>(line.empty() ? 0 : 1, line.size())); // one separator
    if (const std::size_t end = line.find_last_not_of("\r\n"); end != std::string_view::npos) {
        event.argument = line.substr(0, end + 1);
    }
    return true;
}

std::vector<int> script_numbers(std::string_view text) {
    std::vector<int> numbers;
    while (!text.empty()) {
        if (text.front() == '+') {
            text.remove_prefix(1);
        }
        int number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc()) {
            break;
        }
        numbers.push_back(number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        text.remove_prefix(std::min(text.find_first_of("-+0123456789"), text.size()));
    }
    return numbers;
}

bool read_event_script(const std::string& path, std::vector<std::string>& lines) {
    std::string content, error;
    if (!read_file(path, script_limit, content, error)) {
        return false;
    }
    for (std::string_view rest = content; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        lines.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return true;
}

} // namespace platform
