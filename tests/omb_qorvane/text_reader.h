// Lines of a text file with their numbers, and the forms that numbers have in them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace checker {

using triple = std::array<double, 3>;

/// Thrown when a line stands where another must stand, so that what follows cannot be read in turn.
struct lost_place {};

/// Takes one line after the other and notes what is wrong, in words and with the line's number.
class text_reader {
public:
    text_reader(std::string_view text, std::vector<std::string>& faults);

    bool at_end() const { return next_ >= lines_.size(); }
    std::size_t position() const { return next_; }
    void skip() { next_ += at_end() ? 0 : 1; }
    /// The line to be taken next, or the one so many lines behind it; "<end>" behind the last.
    std::string_view peek(std::size_t ahead = 0) const;
    bool at(std::string_view prefix, std::size_t ahead = 0) const {
        return peek(ahead).starts_with(prefix);
    }
    bool at_line(std::string_view line, std::size_t ahead = 0) const { return peek(ahead) == line; }

    /// What is being read, for messages: "the preamble of a mesh".
    void context(std::string_view what) { context_ = what; }

    /// Notes a fault of the line taken last, unless the rule holds.
    void require(bool holds, const std::string& rule);
    /// The same, and nothing more can be read here.
    [[noreturn]] void lose(const std::string& rule);

    /// Takes exactly this line; lost without it.
    void exact(std::string_view line);
    /// Takes the line when it is there.
    bool take(std::string_view line);
    /// Takes a line with this beginning and gives the rest; lost without it.
    std::string rest(std::string_view prefix);
    /// The same with "%d", "%llu" or "%x" behind the beginning.
    int integer(std::string_view prefix);
    std::uint64_t handle(std::string_view prefix);
    std::uint32_t color(std::string_view prefix);
    /// The same with up to three numbers in this printf form, such as "(%f, %f, %f)". Each must be
    /// what its conversion ("%0.9g", "%g" or "%f") gives for its own value.
    triple numbers(std::string_view prefix, std::string_view form);

private:
    [[noreturn]] void wrong_line(const std::string& wanted);
    std::string_view last() const { return next_ > 0 ? lines_[next_ - 1] : std::string_view(); }

    std::vector<std::string_view> lines_;
    std::vector<std::string>& faults_;
    std::size_t next_ = 0;
    std::string context_;
};

/// Reads numbers between the fixed characters of a printf form; false when the text is not of the
/// form to the letter.
bool read_form(std::string_view text, std::string_view form, triple& out);
/// True when the whole text is the integer that "%d" gives; negative ones when `sign`.
bool is_integer(std::string_view text, bool sign = false);

/// Reads "1,2,3", each as "%d" gives it, none below 0 unless `sign`; false otherwise.
bool read_three(std::string_view text, std::array<int, 3>& out, bool sign = false);

} // namespace checker
