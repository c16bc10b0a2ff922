// A drawing: header variables, object table, symbol tables, dictionaries.
#pragma once

#include "host/db/dictionary.h"
#include "host/db/entity.h"
#include "host/db/symbol_tables.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dxf {
class Document; // the file as read: sections and spans in order
}

/// One finding of the reader: a stable code, words, and where.
struct AcDbLoadFinding {
    std::string code; ///< for instance "dxf-truncated", "dxf-bad-number"
    std::string message;
    std::uint64_t line = 0;   ///< 1-based in text files, byte offset in binary ones
    std::uint64_t handle = 0; ///< 0 when none
};
/// What loading found: repaired in passing, or lost. Equal findings beyond a hundred are counted.
struct AcDbLoadReport {
    std::vector<AcDbLoadFinding> repaired;
    std::vector<AcDbLoadFinding> lost;
    std::uint64_t suppressed = 0;
};

enum class AcDbDxfForm { kAsInput, kAscii, kBinary };

class AcDbDatabase {
public:
    /// A new drawing with the tables, blocks and dictionaries that every drawing has.
    explicit AcDbDatabase(bool build_default_drawing = true);
    ~AcDbDatabase();
    AcDbDatabase(const AcDbDatabase&) = delete;
    AcDbDatabase& operator=(const AcDbDatabase&) = delete;

    /// Called now and then while reading; false gives eUserBreak.
    using Monitor = std::function<bool(std::uint64_t done, std::uint64_t total)>;
    /// Reads a drawing into this empty database (made with false). eFileNotFound, eFileAccessErr
    /// or eBadDxfFile with `error` in words; damage short of that is repaired and reported.
    Acad::ErrorStatus dxfIn(const std::filesystem::path& path, std::string& error,
                            const Monitor& monitor = {});
    /// The same from memory; `bytes` is copied.
    Acad::ErrorStatus dxfInMemory(std::string bytes, std::string& error);
    /// Writes the drawing under a temporary name, syncs and renames. What was not changed since
    /// reading keeps its tags. eFileAccessErr with `error` in words.
    Acad::ErrorStatus dxfOut(const std::filesystem::path& path, std::string& error,
                             AcDbDxfForm form = AcDbDxfForm::kAsInput) const;
    const AcDbLoadReport& loadReport() const { return report_; }
    const std::string& filename() const { return filename_; }
    void setFilename(std::string name) { filename_ = std::move(name); }
    /// "AC1009" ... "AC1032"; older ones as the file has them.
    std::string versionCode() const;

    /// Header variable by name with its dollar sign; empty chain when it is not there.
    AcDbValues headerVar(const std::string& name) const;
    void setHeaderVar(const std::string& name, AcDbValues values);
    std::int16_t insunits() const; ///< $INSUNITS, or 0
    void setInsunits(std::int16_t units);
    double facetres() const; ///< $FACETRES, 0.01 to 10, default 0.5

    // Where on Earth the drawing lies: header variables, else the data on model space.
    double latitude() const;  ///< degrees, north above 0
    double longitude() const; ///< degrees, east above 0
    /// Hours ahead of UTC times 1000, and minutes times 10: -3300 is three hours and a half behind.
    std::int32_t timeZone() const;
    double timeZoneHours() const;
    double northDirection() const; ///< clockwise from the Y axis, radians

    AcDbSymbolTable& layerTable() { return *layers_; }
    AcDbSymbolTable& blockTable() { return *blocks_; }
    AcDbSymbolTable& viewportTable() { return *viewports_; }
    AcDbSymbolTable& viewTable() { return *views_; }
    AcDbSymbolTable& ucsTable() { return *ucss_; }
    AcDbObjectId layerZero() const { return layer_zero_; }
    AcDbObjectId modelSpaceId() const { return model_space_; }
    AcDbObjectId namedObjectsDictionaryId() const { return named_objects_; }
    AcDbObjectId materialDictionaryId() const;
    AcDbObjectId byLayerMaterial() const { return material_by_layer_; }
    AcDbObjectId byBlockMaterial() const { return material_by_block_; }
    AcDbObjectId globalMaterial() const { return material_global_; }
    AcDbObjectId activeViewportId() const { return active_viewport_; }
    /// Materials of the drawing in dictionary order, ByLayer, ByBlock and Global included.
    std::vector<AcDbObjectId> materials() const;

    /// Groups of the drawing in dictionary order.
    std::vector<AcDbObjectId> groups() const;
    /// The number, from 0, of the first group in groups() that the entity is a member of; -1 for
    /// one in none. The members of all groups are gathered at the first call.
    int groupOf(AcDbObjectId entity) const;

    /// The id for a handle; null when nothing has it.
    AcDbObjectId getAcDbObjectId(AcDbHandle handle) const;
    /// Takes an object over, with a new handle.
    AcDbObjectId addAcDbObject(std::unique_ptr<AcDbObject> object, AcDbObjectId owner);
    /// The drawing above all that this one is an external reference of; null for any other.
    AcDbDatabase* xrefHost() const { return xref_host_; }
    /// The name of the block through which it is one; it stands before the names of its layers.
    const std::string& xrefName() const;

    /// Plain sizes for reports and benchmarks.
    std::size_t objectCount() const;
    std::size_t memoryInUse() const; ///< bytes of typed objects, tables and the index, roughly

private:
    friend struct DxfAccess;
    friend class AcDbSymbolTable;
    friend class AcDbDictionary;
    friend class AcDbObject;
    friend class AcDbGroup;
    struct Impl; ///< object table, handle index, file spans, header
    std::unique_ptr<Impl> impl_;
    AcDbLoadReport report_;
    std::string filename_;
    std::unique_ptr<AcDbSymbolTable> layers_, blocks_, viewports_, views_, ucss_;
    AcDbObjectId layer_zero_, model_space_, named_objects_, active_viewport_;
    AcDbObjectId material_by_layer_, material_by_block_, material_global_;
    AcDbDatabase* xref_host_ = nullptr;
};

/// The drawing that new calls mean; null when none is open.
AcDbDatabase* acdbCurDwg();
void acdbSetCurDwg(AcDbDatabase* database);
/// Factor from one unit code ($INSUNITS) to another; false when either is unitless or unknown.
bool acdbGetUnitsConversion(int from, int to, double& factor);
/// The unit code of metres.
constexpr int kAcDbUnitMeters = 6;
