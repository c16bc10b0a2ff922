#include "text_reader.h"

#include "stream_checker.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>

namespace checker {
namespace {

/// The text of a value as a printf conversion gives it, in no locale.
std::string formatted(double value, std::string_view conversion) {
    char text[400];
    const bool fixed = conversion == "%f";
    const int digits = conversion == "%0.9g" ? 9 : 6; // "%f" and "%g" have six
    const auto end =
        std::to_chars(text, text + sizeof text, value,
                      fixed ? std::chars_format::fixed : std::chars_format::general, digits);
    return {text, end.ptr};
}

bool read_number(std::string_view text, std::string_view conversion, double& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value) &&
           text == formatted(value, conversion);
}

constexpr std::size_t most_faults = 100;

} // namespace

bool is_g9(std::string_view text) {
    double value = 0;
    return read_number(text, "%0.9g", value);
}

bool is_integer(std::string_view text, bool sign) {
    if (sign && text.starts_with('-')) {
        text.remove_prefix(1);
        if (text == "0") {
            return false;
        }
    }
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos &&
           (text == "0" || text.front() != '0');
}

bool read_three(std::string_view text, std::array<int, 3>& out, bool sign) {
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::string_view word = i < 2 ? text.substr(0, text.find(',')) : text;
        const auto end = std::from_chars(word.data(), word.data() + word.size(), out[i]);
        if (!is_integer(word, sign) || end.ec != std::errc()) {
            return false;
        }
        text.remove_prefix(std::min(text.size(), word.size() + 1));
    }
    return true;
}

bool read_form(std::string_view text, std::string_view form, triple& out) {
    std::size_t count = 0;
    while (!form.empty()) {
        if (form.front() != '%') {
            if (text.empty() || text.front() != form.front()) {
                return false;
            }
            text.remove_prefix(1);
            form.remove_prefix(1);
            continue;
        }
        const std::string_view conversion = form.substr(0, form.find_first_of("gf") + 1);
        const std::string_view number =
            text.substr(0, std::min(text.size(), text.find_first_of(",; )")));
        if (count == out.size() || !read_number(number, conversion, out[count])) {
            return false;
        }
        ++count;
        text.remove_prefix(number.size());
        form.remove_prefix(conversion.size());
    }
    return text.empty();
}

std::string read_text(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

text_reader::text_reader(std::string_view text, std::vector<std::string>& faults)
  : faults_(faults) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines_.push_back(text.substr(0, end));
        if (end == text.npos) {
            faults_.push_back("line " + std::to_string(lines_.size()) +
                              ": the last line has no line end");
            break;
        }
        text.remove_prefix(end + 1);
    }
}

std::string_view text_reader::peek(std::size_t ahead) const {
    return next_ + ahead < lines_.size() ? lines_[next_ + ahead] : std::string_view("<end>");
}

void text_reader::require(bool holds, const std::string& rule) {
    if (!holds && faults_.size() < most_faults) {
        faults_.push_back("line " + std::to_string(next_) + ": " + rule + ": '" +
                          std::string(last()) + "'");
    }
}

void text_reader::lose(const std::string& rule) {
    require(false, rule);
    throw lost_place{};
}

void text_reader::wrong_line(const std::string& wanted) {
    const std::string found = at_end() ? "the end of the file" : std::string(peek());
    skip(); // the message is about the line that stands here
    if (faults_.size() < most_faults) {
        faults_.push_back("line " + std::to_string(next_) + ": wanted '" + wanted + "' in " +
                          context_ + ", found '" + found + "'" + keyword_remark(found));
    }
    throw lost_place{};
}

void text_reader::exact(std::string_view line) {
    if (!take(line)) {
        wrong_line(std::string(line));
    }
}

bool text_reader::take(std::string_view line) {
    if (at_end() || peek() != line) {
        return false;
    }
    ++next_;
    return true;
}

std::string text_reader::rest(std::string_view prefix) {
    if (at_end() || !at(prefix)) {
        wrong_line(std::string(prefix) + "...");
    }
    return std::string(lines_[next_++].substr(prefix.size()));
}

int text_reader::integer(std::string_view prefix) {
    const std::string text = rest(prefix);
    int value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    require(is_integer(text, true) && end.ec == std::errc(), "no integer of the form %d");
    return value;
}

std::uint64_t text_reader::handle(std::string_view prefix) {
    const std::string text = rest(prefix);
    std::uint64_t value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    require(is_integer(text) && end.ec == std::errc(), "no handle of the form %llu");
    return value;
}

std::uint32_t text_reader::color(std::string_view prefix) {
    const std::string text = rest(prefix);
    std::uint32_t value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    char again[16];
    const auto written = std::to_chars(again, again + sizeof again, value, 16);
    require(end.ec == std::errc() && text == std::string_view(again, written.ptr) &&
                value <= 0xffffff,
            "no colour of the form %x");
    return value;
}

triple text_reader::numbers(std::string_view prefix, std::string_view form) {
    triple out{};
    const bool good = read_form(rest(prefix), form, out);
    require(good, "not in the form " + std::string(prefix) + std::string(form));
    return out;
}

} // namespace checker
