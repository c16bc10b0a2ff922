// What the reading of one drawing shares: names and handles to objects, and the report.
#pragma once

#include "host/db/database.h"
#include "host/dxf/encoding.h"
#include "host/dxf/tag.h"

#include <string>
#include <string_view>
#include <unordered_map>

class AcDbBlockReference;

namespace dxf {

class Document;

/// Looks names up by the bytes that the file has for them, so that an entity costs no decoding.
class LoadContext {
public:
    /// `report` null: findings are dropped and nothing is created (an object is read again).
    LoadContext(AcDbDatabase& database, const Document& document, AcDbLoadReport* report)
      : database_(database)
      , document_(document)
      , report_(report) {}

    AcDbDatabase& database() const { return database_; }
    const Document& document() const { return document_; }
    const Encoding& encoding() const;
    bool loading() const { return report_ != nullptr; }

    /// The id of a handle; it may name an object that comes later.
    AcDbObjectId object(std::uint64_t handle);
    /// The layer of that name; one that the table lacks is made in memory.
    AcDbObjectId layer(std::string_view bytes);
    AcDbObjectId line_type(std::string_view bytes);
    /// The block of that name, null when there is none (yet).
    AcDbObjectId block(std::string_view bytes);
    /// A reference to a block that was not there; it is tried again at the end.
    void await_block(AcDbBlockReference& reference, std::string_view bytes);

    /// Findings: what was set right in passing, and what is lost.
    void repaired(const char* code, std::string message, const char* where);
    void lost(const char* code, std::string message, const char* where);
    void set_handle(std::uint64_t handle) { handle_ = handle; } ///< of the object being read

    struct AwaitedBlock {
        AcDbBlockReference* reference;
        std::string_view name;
    };
    std::vector<AwaitedBlock> awaited_blocks;

private:
    void note(std::vector<AcDbLoadFinding>& list, const char* code, std::string message,
              const char* where);
    using Cache = std::unordered_map<std::string_view, AcDbObjectId>;
    AcDbDatabase& database_;
    const Document& document_;
    AcDbLoadReport* report_;
    Cache layers_, line_types_, blocks_;
    std::string_view last_layer_;
    AcDbObjectId last_layer_id_;
    std::uint64_t handle_ = 0;
};

} // namespace dxf
