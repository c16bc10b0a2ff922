// The data section of newer drawings (ACDSDATA): binary records that belong to objects by handle.
#pragma once

#include "host/dxf/document.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace dxf {

/// Where the solid data of each object lie in the section.
class SolidDataIndex {
public:
    /// Goes through the section once; a drawing without one gives an empty index.
    explicit SolidDataIndex(const Document& document);
    /// The bytes of an object's data, its chunks joined; empty when there are none.
    std::vector<std::uint8_t> find(const Document& document, std::uint64_t handle) const;

private:
    std::unordered_map<std::uint64_t, Span> records_; ///< from the tag 310 on
};

} // namespace dxf
