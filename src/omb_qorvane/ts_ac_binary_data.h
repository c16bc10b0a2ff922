// Data of the rendering toolkit on drawing objects: named blocks of bytes in the object's extension
// dictionary, and the coded values that older drawings carry as extended data.
#pragma once

#include "host/db/object.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Names of the blocks.
namespace ts_data {
inline constexpr const char* light = "TessaraLighting";    ///< XML of a light
inline constexpr const char* ies = "TS3_IES";              ///< a packed photometric web
inline constexpr const char* plant = "TsAcPlant";          ///< XML of a placed plant
inline constexpr const char* cover = "TsAcGroundCover";    ///< XML of a cover's definition
inline constexpr const char* cover_id = "TsAcGroundcover"; ///< refers to a cover
inline constexpr const char* cover_instance = "TsAcGroundcoverInstance";
inline constexpr const char* decals = "TsAcDecalList";       ///< XML of decals
inline constexpr const char* properties = "TsAcObjectProps"; ///< flags and scale
inline constexpr const char* material = "TsAcMaterial";      ///< XML of a toolkit material
inline constexpr const char* old_application = "Tessara3";   ///< extended data
} // namespace ts_data

/// Most bytes of one block that are read or written.
inline constexpr std::size_t ts_binary_limit = std::size_t{16} << 20;

/// The bytes of a block; nothing when the object has no block of that name or it is too large.
class CTsAcBinaryData {
public:
    static bool Has(const AcDbObject& object, const char* name);
    static std::optional<std::vector<unsigned char>> Read(const AcDbObject& object,
                                                          const char* name);
    static std::string ReadText(const AcDbObject& object, const char* name);
};

/// Copies at most `size` bytes of a block; with a null buffer, only says how large it is. The size
/// of the block, 0 without one.
std::size_t Ts3AcReadBinaryDataFromEntity(const AcDbObject& object, const char* name,
                                          unsigned char* buffer, std::size_t size);
/// Stores a block; no bytes take it away. False when the object belongs to no database or the block
/// is too large.
bool Ts3AcWriteBinaryDataToEntity(AcDbObject& object, const char* name,
                                  const std::vector<unsigned char>& bytes);
bool Ts3AcWriteBinaryDataToEntity(AcDbObject& object, const char* name, std::string_view text);

/// Values of the older extended data in order, each with its code. A code beyond those that files
/// have stands as a 1070 value of 2000 or more ahead of its value.
class cl_old_values {
public:
    explicit cl_old_values(const AcDbObject& object);
    bool empty() const { return values.empty(); }
    const AcDbValue* find(int code) const; ///< the first, or null
    /// A number, whichever kind it was stored as; `fall_back` without one.
    double number(int code, double fall_back = 0) const;
    int integer(int code, int fall_back = 0) const;
    std::string text(int code) const;

private:
    std::vector<std::pair<int, AcDbValue>> values;
};
