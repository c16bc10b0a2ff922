// What a database keeps out of its header: the object table, the handle index, the file.
#pragma once

#include "host/db/database.h"
#include "host/dxf/data_section.h"
#include "host/dxf/document.h"

#include <deque>
#include <optional>
#include <unordered_map>

namespace dxf {

/// Handles to rows of the object table: open addressing, since a drawing may hold millions.
class HandleIndex {
public:
    AcDbStub* find(std::uint64_t handle) const;
    void insert(AcDbStub* stub);
    std::size_t bytes() const { return slots_.capacity() * sizeof(void*); }

private:
    static std::size_t hash(std::uint64_t handle) {
        return static_cast<std::size_t>((handle * 0x9e3779b97f4a7c15ULL) >> 20);
    }
    void grow();
    std::vector<AcDbStub*> slots_;
    std::size_t used_ = 0;
};

} // namespace dxf

class AcDbXrefGraph;

/// A record of a table without a class of its own.
class AcDbNamedRecord : public AcDbSymbolTableRecord {
public:
    explicit AcDbNamedRecord(std::string dxf_name)
      : dxf_name_(std::move(dxf_name)) {}
    std::string dxfName() const override { return dxf_name_; }
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::string dxf_name_;
};

struct AcDbDatabase::Impl {
    std::deque<AcDbStub> stubs;
    dxf::HandleIndex index;
    std::unique_ptr<dxf::Document> document;
    std::uint64_t next_handle = 1;
    std::uint64_t highest_in_file = 0;
    /// Tables without a class of their own, by name: LTYPE, STYLE, APPID, DIMSTYLE ...
    std::map<std::string, std::unique_ptr<AcDbSymbolTable>> other_tables;
    std::map<std::string, AcDbValues> header_changes;
    AcDbObjectId material_dictionary, paper_space;
    std::size_t objects = 0;
    /// The external references of this drawing, and those of the drawing that it is one of.
    std::shared_ptr<AcDbXrefGraph> own_xrefs;
    AcDbXrefGraph* xrefs = nullptr;
    std::string xref_name; ///< the block through which it is a reference of another drawing
    /// Which group an entity belongs to; gathered when first asked for.
    std::unordered_map<const AcDbStub*, int> group_of;
    bool groups_known = false;
    /// The data section's records of solids; gathered when first asked for.
    std::optional<dxf::SolidDataIndex> solid_data;

    void forget_groups() {
        group_of.clear();
        groups_known = false;
    }

    AcDbStub* find(std::uint64_t handle) const { return index.find(handle); }
    /// The row of a handle, made when missing.
    AcDbStub* row(AcDbDatabase* database, std::uint64_t handle);
    /// A row without a handle; it gets one when loading ends.
    AcDbStub* new_row(AcDbDatabase* database);
    AcDbStub* new_row_with_handle(AcDbDatabase* database);
};

/// The reader's and writer's door to private members.
struct DxfAccess {
    using Impl = AcDbDatabase::Impl;
    /// Bits of AcDbObject::entity_flags_.
    enum : std::uint8_t {
        kInvisible = 1,
        kPaperSpace = 2,
        kExtended = 8,  ///< its tags name an extension dictionary
        kAttached = 16, ///< there are extended data among its tags
        kImplied = 128  ///< made in memory because every drawing has it; written when it is used
    };
    static Impl& impl(AcDbDatabase& db) { return *db.impl_; }
    static const Impl& impl(const AcDbDatabase& db) { return *db.impl_; }
    static const dxf::SolidDataIndex& solid_data(AcDbDatabase& db) {
        Impl& impl = *db.impl_;
        if (!impl.solid_data) {
            impl.solid_data.emplace(*impl.document);
        }
        return *impl.solid_data;
    }
    static AcDbLoadReport& report(AcDbDatabase& db) { return db.report_; }
    static std::unique_ptr<AcDbSymbolTable>& layers(AcDbDatabase& db) { return db.layers_; }
    static std::unique_ptr<AcDbSymbolTable>& blocks(AcDbDatabase& db) { return db.blocks_; }
    static std::unique_ptr<AcDbSymbolTable>& viewports(AcDbDatabase& db) { return db.viewports_; }
    static std::unique_ptr<AcDbSymbolTable>& views(AcDbDatabase& db) { return db.views_; }
    static std::unique_ptr<AcDbSymbolTable>& ucss(AcDbDatabase& db) { return db.ucss_; }
    static AcDbObjectId& layer_zero(AcDbDatabase& db) { return db.layer_zero_; }
    static AcDbObjectId& model_space(AcDbDatabase& db) { return db.model_space_; }
    static AcDbObjectId& named_objects(AcDbDatabase& db) { return db.named_objects_; }
    static AcDbObjectId& active_viewport(AcDbDatabase& db) { return db.active_viewport_; }
    static AcDbObjectId& material(AcDbDatabase& db, int which) {
        return which == 0   ? db.material_by_block_
               : which == 1 ? db.material_by_layer_
                            : db.material_global_;
    }

    static dxf::Span span(const AcDbObject& o) {
        return {o.source_begin_, o.source_begin_ + o.source_length_};
    }
    static void set_span(AcDbObject& o, dxf::Span span);
    static bool modified(const AcDbObject& o) { return o.modified_; }
    static void set_modified(AcDbObject& o, bool modified) { o.modified_ = modified; }
    static std::uint8_t& flags(AcDbObject& o) { return o.entity_flags_; }
    static bool attached(const AcDbObject& o) { return (o.entity_flags_ & kAttached) != 0; }
    /// Notes what else hangs on an object, so that most objects need not be read for it again.
    static void note_attachments(AcDbObject& o, const dxf::ObjectTags& tags);
    static bool implied(const AcDbObject& o) { return (o.entity_flags_ & kImplied) != 0; }
    static void set_implied(AcDbObject& o, bool implied);
    static const dxf::ObjectExtras* extras(const AcDbObject& o) { return o.extras_.get(); }
    static void set_id(AcDbObject& o, AcDbObjectId id) { o.id_ = id; }
    static void set_owner(AcDbObject& o, AcDbObjectId owner) { o.owner_ = owner; }

    static std::string& name(AcDbSymbolTableRecord& r) { return r.name_; }
    static std::int32_t& record_flags(AcDbSymbolTableRecord& r) { return r.flags_; }
    static std::vector<AcDbObjectId>& records(AcDbSymbolTable& t) { return t.records_; }
    static std::map<std::string, AcDbObjectId>& index(AcDbSymbolTable& t) { return t.index_; }
    static std::vector<AcDbObjectId>& entities(AcDbBlockTableRecord& b) { return b.entities_; }
    static AcGePoint3d& origin(AcDbBlockTableRecord& b) { return b.origin_; }
    static std::int32_t& block_flags(AcDbBlockTableRecord& b) { return b.block_flags_; }
    static std::string& path(AcDbBlockTableRecord& b) { return b.path_; }
    static bool& unloaded(AcDbBlockTableRecord& b) { return b.unloaded_; }
    static AcDbDatabase*& xref_host(AcDbDatabase& db) { return db.xref_host_; }

    /// The table of that name, made when missing.
    static AcDbSymbolTable& table(AcDbDatabase& db, const std::string& name);
    static void enter(AcDbDictionary& dictionary, const std::string& key, AcDbObjectId id);
    /// Enters a record that already has its row.
    static void index_record(AcDbSymbolTable& table, AcDbSymbolTableRecord& record);
    /// Puts an object into the drawing under a row; the drawing owns it.
    static void adopt(AcDbDatabase& db, AcDbStub* row, std::unique_ptr<AcDbObject> object);
};
