// Where a message comes from, and the texts that a trace line is made of.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// A place in the sources or in a script: file, line, function.
struct cl_trace_source {
    std::string file = "Unknown";
    int line = 0;
    std::string function;
};

/// A section of work that was entered, with its state: "(START) place", " (CLOSED)" behind it once
/// it has ended.
struct cl_trace_entry {
    cl_trace_source source;
    std::string text;
};

namespace trace_text {

/// Each conversion "%g" becomes "%.6g"; the "g" behind an escaped percent sign stays.
std::string six_digits(std::string_view format);

/// Narrow text in the system's code page as UTF-8: what is UTF-8 stays, every other byte is read as
/// Windows-1252.
std::string from_code_page(std::string_view narrow);

/// The path below the product's `src` folder, or below the `ruby` folder for a script (".rbs");
/// the path as given when it has no such folder. Both separators count, and are kept.
std::string product_path(std::string_view path);

/// "file(line): function():", "file(line):" without a function, "file:" without a line too.
std::string source_label(const cl_trace_source& source);

/// " (%.1fM)" of the memory in use, in units of 1024 * 1024 bytes.
std::string memory_note(std::uint64_t bytes);

/// From this many seconds on a line tells the delay before it.
inline constexpr double delay_seconds = 2.0;
/// Clock time and seconds since the last line; with the delay when they are more than
/// delay_seconds.
std::string time_note(const std::string& clock, double seconds);

std::string clock_now(); ///< local time, "HH:MM:SS"
std::string date_now();  ///< local date, "YYYY-MM-DD"

/// The last `count` lines of a text file, read from at most its last 256 kB; false when it cannot
/// be read.
bool last_lines_of_file(const std::string& path, int count, std::string& lines);

} // namespace trace_text
