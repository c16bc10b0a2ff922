// The table of all records that a geometry stream can hold.
#pragma once

#include "KestraBatch/record_fields.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace KestraBatch {

class StreamTarget;

/// How the fields behind the first semicolon are read.
enum class FieldForm {
    none,     ///< whatever stands there means nothing
    text,     ///< the rest of the line as it stands
    integer,  ///< one 32-bit number
    handle,   ///< one unsigned 64-bit number
    color,    ///< hexadecimal, 0x00BBGGRR
    number,   ///< one floating-point number
    triple,   ///< (x,y,z)
    triangle, ///< three vertex indices
};

/// Where a record may stand.
enum class RecordScope { file, mesh, anywhere };

/// The fields of one record; only the member of the record's form is set.
struct RecordValue {
    std::string_view text;
    std::int32_t integer = 0;
    std::uint64_t handle = 0;
    std::uint32_t color = 0;
    double number = 0;
    Triple triple;
    std::array<std::uint32_t, 3> triangle{};
};

struct RecordRow {
    std::string_view keyword;
    FieldForm form;
    RecordScope scope;
    void (*deliver)(StreamTarget&, const RecordValue&);
    /// What one such record stands for when it is read and counted but not rendered yet; else null.
    const char* not_rendered = nullptr;
};

/// All rows, sorted by keyword.
std::span<const RecordRow> record_rows();
/// Index into record_rows, or -1.
int find_record(std::string_view keyword);

} // namespace KestraBatch
