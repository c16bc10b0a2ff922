// Reads a geometry stream in one pass and hands its records to a target.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/stream_target.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace KestraBatch {

/// What a stream may hold at most. A stream beyond a limit is refused with its name.
struct StreamLimits {
    std::uint64_t bytes = std::uint64_t{64} << 30;
    std::uint64_t vertices = 1'500'000'000;
    std::uint64_t triangles = 1'500'000'000;
    std::uint64_t meshes = 100'000'000;
    std::size_t line_bytes = std::size_t{1} << 20;
    std::size_t block_depth = 100'000;
};

/// What was read, by row of record_rows() and in sum.
struct StreamSummary {
    std::vector<std::uint64_t> counts; ///< records by row of the record table
    std::uint64_t lines = 0;
    std::uint64_t bytes = 0;
    std::uint64_t meshes = 0;
    std::uint64_t vertices = 0;
    std::uint64_t triangles = 0;
    std::uint64_t blocks = 0;
    std::uint64_t unknown_records = 0;

    /// How many records of `keyword` there were.
    std::uint64_t count(std::string_view keyword) const;
};

/// Called now and then with the bytes read so far; false ends the read with StreamCancelled.
using StreamProgress = std::function<bool(std::uint64_t bytes)>;

struct StreamCancelled : std::runtime_error {
    StreamCancelled()
      : std::runtime_error("the reading of the geometry was cancelled") {}
};

/// Reads the whole of `text`; `file` is its path, for messages. Records of unknown keywords are
/// warnings and skipped; so are things that are read but not rendered yet (one warning each), and
/// whatever follows `END;`. Throws ReadError with file and line for a line that is no record, a
/// field that cannot be read, a record at a wrong place, an index that does not fit, a limit, and
/// a stream without `END;`.
StreamSummary read_stream(std::string_view text, const std::string& file, StreamTarget& target,
                          WarningList& warnings, const StreamLimits& limits = {});

/// Reads the file `path` in blocks of constant size. The file may change or shrink meanwhile
/// without harm: that is why it is not mapped into memory.
StreamSummary read_stream_file(const std::filesystem::path& path, StreamTarget& target,
                               WarningList& warnings, const StreamLimits& limits = {},
                               const StreamProgress& progress = {});

} // namespace KestraBatch
