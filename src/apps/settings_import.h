// Reading a defaults file with a word for each line that was not taken.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace apps {

struct RefusedLine {
    std::int64_t line; ///< from 1
    std::string reason;
};

struct ImportReport {
    std::set<std::string> taken;      ///< names whose lines were valid
    std::set<std::string> changed;    ///< those of them that got another value
    std::vector<RefusedLine> refused; ///< the first of them
    std::size_t refused_count = 0;    ///< all of them
};

/// Reads the lines that are valid into the store through the system's own reader. When one changed
/// a value, `iks_render_quality` becomes 0 (custom). Throws Failure when the file cannot be read.
ImportReport import_defaults_file(const std::string& path);

} // namespace apps
