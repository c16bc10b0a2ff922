// The bytes of an object that was changed: its own, with only the changed tags replaced.
#pragma once

#include "host/db/database.h"
#include "host/dxf/tag_writer.h"

#include <functional>
#include <string>

namespace dxf {

/// The object's span with what its members say now. Tags that the class does not know, and those
/// whose members are as they were read, keep their bytes.
std::string patch_object(const AcDbDatabase& database, const AcDbObject& object,
                         const std::function<std::uint64_t()>& new_handle);
/// A whole new object: type, handle, owner, its class's tags, extended data.
void write_new_object(std::string& out, const WriteStyle& style, const AcDbObject& object,
                      const std::function<std::uint64_t()>& new_handle);

} // namespace dxf
