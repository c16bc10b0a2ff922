// The pass over the file: sections, tables, blocks, entities, objects.
#include "host/dxf/reader.h"

#include "host/db/block_reference.h"
#include "host/db/database_impl.h"
#include "host/db/polylines.h"
#include "host/db/unknown.h"
#include "host/dxf/load_context.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/tag_reader.h"

#include <algorithm>
#include <unordered_set>

namespace dxf {
namespace {

constexpr std::uint64_t kMonitorStep = 1 << 20;
/// A vector of tags that grew beyond this for one odd object is given back.
constexpr std::size_t kTagsToKeep = 1 << 16;

enum class Place { kOutside, kHeader, kTables, kBlocks, kEntities, kObjects, kOther };

struct SectionName {
    std::string_view name;
    Place place;
};
constexpr SectionName kSectionNames[] = {{"HEADER", Place::kHeader},
                                         {"TABLES", Place::kTables},
                                         {"BLOCKS", Place::kBlocks},
                                         {"ENTITIES", Place::kEntities},
                                         {"OBJECTS", Place::kObjects}};

/// An INSERT with rows or columns.
bool is_array(const ObjectTags& tags) {
    return std::any_of(tags.own().begin(), tags.own().end(), [&](const Tag& tag) {
        return (tag.code == 70 || tag.code == 71) && tags.integer(tag) > 1;
    });
}

class Reader {
public:
    Reader(AcDbDatabase& db, Document& document, const AcDbDatabase::Monitor& monitor)
      : db_(db)
      , impl_(DxfAccess::impl(db))
      , document_(document)
      , context_(db, document, &DxfAccess::report(db))
      , monitor_(monitor)
      , reader_(document.bytes().substr(document.form().first_byte), document.form().form,
                document.form().line_end) {
        reader_.set_fault_sink(
            [this](TagReader::Fault what, const char* where) { on_fault(what, where); });
    }

    Acad::ErrorStatus run();
    bool found_any() const { return found_any_; }

private:
    bool next_object();
    void on_fault(TagReader::Fault what, const char* where);
    Span object_span() const {
        return {document_.offset(tags_.front().begin), document_.offset(object_end_)};
    }
    void dispatch(const ObjectTags& tags);
    bool structure(const ObjectTags& tags);
    void begin_section(const ObjectTags& tags);
    void end_section(bool told);
    void begin_table(const ObjectTags& tags);
    void end_table(bool told);
    void read_header(const ObjectTags& tags);
    void in_tables(const ObjectTags& tags);
    void in_blocks(const ObjectTags& tags);
    void begin_block(const ObjectTags& tags);
    void end_block(const ObjectTags* end);
    AcDbBlockTableRecord& space(const ObjectTags& tags);
    void entity(const ObjectTags& tags, AcDbBlockTableRecord& owner);
    bool continues_composite(const ObjectTags& tags, AcDbBlockTableRecord& owner);
    void end_composite(bool told, const char* where);
    void object(const ObjectTags& tags);
    AcDbObjectId enter(std::unique_ptr<AcDbObject> object, const ObjectTags& tags);
    AcDbStub* row_for(const ObjectTags& tags);
    void note_handle(const ObjectTags& tags);
    void resolve_blocks();
    void number_rows();

    AcDbDatabase& db_;
    DxfAccess::Impl& impl_;
    Document& document_;
    LoadContext context_;
    const AcDbDatabase::Monitor& monitor_;
    TagReader reader_;
    std::vector<Tag> tags_;
    Tag pending_;
    bool has_pending_ = false, ended_ = false, found_any_ = false;
    const char* object_end_ = nullptr;
    Place place_ = Place::kOutside;
    bool in_table_ = false, outside_told_ = false;
    AcDbSymbolTable* table_ = nullptr;
    AcDbBlockTableRecord* block_ = nullptr;
    AcDbHeavyPolyline* polyline_ = nullptr;   ///< vertices are added to it
    AcDbBlockReference* reference_ = nullptr; ///< attributes are added to it
    std::unordered_set<std::string> section_names_;
    std::uint64_t next_report_ = kMonitorStep;
};

void Reader::on_fault(TagReader::Fault what, const char* where) {
    switch (what) {
    case TagReader::Fault::kBadCode:
        context_.lost("dxf-bad-group-code", "this line should be a group code; it is passed over",
                      where);
        break;
    case TagReader::Fault::kTruncated:
        context_.lost("dxf-truncated", "the file ends in the middle of a group", where);
        break;
    case TagReader::Fault::kLostBinary:
        context_.lost("dxf-bad-group-code", "what follows is no group of a binary file", where);
        break;
    }
}

/// Collects the tags up to the next group code 0.
bool Reader::next_object() {
    if (tags_.capacity() > kTagsToKeep) {
        std::vector<Tag>().swap(tags_);
    }
    tags_.clear();
    if (has_pending_) {
        tags_.push_back(pending_);
        has_pending_ = false;
    }
    Tag tag;
    while (reader_.next(tag)) {
        if (tag.code == 0) {
            if (tags_.empty()) {
                tags_.push_back(tag);
                continue;
            }
            pending_ = tag;
            has_pending_ = true;
            object_end_ = tag.begin;
            return true;
        }
        if (!tags_.empty() && tag.code != 999) { // comments stay in the file only
            tags_.push_back(tag);
        }
    }
    object_end_ = reader_.position();
    return !tags_.empty();
}

Acad::ErrorStatus Reader::run() {
    const std::uint64_t total = document_.bytes().size();
    while (!ended_ && next_object()) {
        const std::uint64_t done = document_.offset(object_end_);
        if (monitor_ && done >= next_report_) {
            next_report_ = done + kMonitorStep;
            if (!monitor_(done, total)) {
                return Acad::eUserBreak;
            }
        }
        const ObjectTags tags(tags_, context_);
        dispatch(tags);
    }
    if (!ended_) {
        context_.repaired("dxf-missing-eof", "the file has no end mark", object_end_);
    }
    end_section(ended_);
    resolve_blocks();
    number_rows();
    return Acad::eOk;
}

void Reader::dispatch(const ObjectTags& tags) {
    context_.set_handle(0);
    if (structure(tags)) {
        return;
    }
    switch (place_) {
    case Place::kTables:
        in_tables(tags);
        break;
    case Place::kBlocks:
        in_blocks(tags);
        break;
    case Place::kEntities:
        entity(tags, space(tags));
        break;
    case Place::kObjects:
        object(tags);
        break;
    case Place::kOutside:
        if (!outside_told_) {
            context_.lost("dxf-outside-section", "objects stand outside of all sections",
                          tags_.front().begin);
            outside_told_ = true;
        }
        break;
    default:
        note_handle(tags);
    }
}

/// Handles what divides the file. False when the object is none of that.
bool Reader::structure(const ObjectTags& tags) {
    const std::string_view type = tags.type();
    if (type == "SECTION") {
        if (place_ != Place::kOutside) {
            context_.repaired("dxf-missing-endsec", "a section is not closed", tags_.front().begin);
            end_section(false);
        }
        begin_section(tags);
    } else if (type == "ENDSEC") {
        end_section(true);
    } else if (type == "EOF") {
        document_.end_of_file = document_.offset(tags_.front().begin);
        ended_ = true;
        if (place_ != Place::kOutside) {
            context_.repaired("dxf-missing-endsec", "the last section is not closed",
                              tags_.front().begin);
        }
    } else if (type == "TABLE" && place_ == Place::kTables) {
        if (in_table_) {
            end_table(false);
        }
        begin_table(tags);
    } else if (type == "ENDTAB" && place_ == Place::kTables) {
        end_table(true);
    } else {
        return false;
    }
    return true;
}

void Reader::begin_section(const ObjectTags& tags) {
    found_any_ = true;
    outside_told_ = false;
    const Tag* name_tag = tags.find(2);
    const std::string name(name_tag != nullptr ? name_tag->trimmed() : std::string_view());
    if (!section_names_.insert(name).second) {
        context_.repaired("dxf-section-twice", "section " + name + " stands here again",
                          tags_.front().begin);
    }
    document_.sections.push_back({name, object_span()});
    place_ = Place::kOther;
    for (const SectionName& known : kSectionNames) {
        if (known.name == name) {
            place_ = known.place;
        }
    }
    if (place_ == Place::kHeader) {
        read_header(tags);
    }
}

void Reader::end_section(bool told) {
    end_table(told);
    end_block(nullptr);
    end_composite(told, tags_.empty() ? nullptr : tags_.front().begin);
    if (place_ != Place::kOutside && !document_.sections.empty()) {
        const std::uint64_t end =
            tags_.empty() ? document_.end_of_file : document_.offset(tags_.front().begin);
        Span& span = document_.sections.back().span;
        span.end = std::max(span.begin, end);
        if (tags_.empty()) {
            span.end = document_.offset(object_end_);
        }
    }
    place_ = Place::kOutside;
}

void Reader::read_header(const ObjectTags& tags) {
    auto& header = document_.header;
    std::string_view version, page;
    for (std::size_t i = 0; i < tags.all().size(); ++i) {
        const Tag& tag = tags.all()[i];
        if (tag.code != 9) {
            continue;
        }
        const std::uint64_t begin = document_.offset(tag.begin);
        if (!header.empty() && header.back().span.end == 0) {
            header.back().span.end = begin;
        }
        header.push_back({std::string(tag.trimmed()), {begin, 0}});
        const Tag* value = i + 1 < tags.all().size() ? &tags.all()[i + 1] : nullptr;
        if (value != nullptr && header.back().name == "$ACADVER") {
            version = value->trimmed();
        } else if (value != nullptr && header.back().name == "$DWGCODEPAGE") {
            page = value->trimmed();
        }
    }
    if (!header.empty() && header.back().span.end == 0) {
        header.back().span.end = object_span().end;
    }
    if (version.starts_with("AC") && version.size() >= 4) {
        document_.version_text = version;
        document_.version_told = true;
        document_.version = std::atoi(std::string(version.substr(2)).c_str());
    }
    document_.encoding.set(document_.version, page);
}

// ---- tables ----

void Reader::begin_table(const ObjectTags& tags) {
    const Tag* name_tag = tags.find(2);
    // With subclass markers the name stands before the marker, among the common tags.
    for (const Tag& tag : tags.common()) {
        if (tag.code == 2) {
            name_tag = &tag;
            break;
        }
    }
    const std::string name(name_tag != nullptr ? name_tag->trimmed() : std::string_view());
    document_.tables.push_back({name, object_span()});
    in_table_ = true;
    table_ = &DxfAccess::table(db_, name);
    if (DxfAccess::span(*table_).empty() && table_->getAcDbHandle().isNull()) {
        DxfAccess::set_span(*table_, object_span());
        DxfAccess::note_attachments(*table_, tags);
        if (AcDbStub* row = table_->objectId().stub();
            row != nullptr && tags.handle() != 0 && impl_.find(tags.handle()) == nullptr) {
            row->handle = tags.handle();
            impl_.index.insert(row);
        }
    }
    note_handle(tags);
}

void Reader::end_table(bool told) {
    if (!in_table_) {
        return;
    }
    in_table_ = false;
    const char* where = tags_.empty() ? nullptr : tags_.front().begin;
    document_.tables.back().span.end =
        where != nullptr ? document_.offset(where) : document_.offset(object_end_);
    if (!told || (where != nullptr && tags_.front().trimmed() != "ENDTAB")) {
        context_.repaired("dxf-missing-endtab", "a table is not closed", where);
    }
}

void Reader::in_tables(const ObjectTags& tags) {
    if (!in_table_) {
        context_.lost("dxf-outside-table", "a record stands outside of all tables",
                      tags_.front().begin);
        return;
    }
    const std::string_view type = tags.type();
    std::unique_ptr<AcDbSymbolTableRecord> record;
    std::unique_ptr<AcDbObject> made = make_object(type, 0, false);
    if (AcDbSymbolTableRecord::cast(made.get()) != nullptr) {
        record.reset(static_cast<AcDbSymbolTableRecord*>(made.release()));
    } else {
        record = std::make_unique<AcDbNamedRecord>(std::string(type));
    }
    AcDbSymbolTableRecord* raw = record.get();
    const AcDbObjectId id = enter(std::move(record), tags);
    DxfAccess::set_owner(*raw, table_->objectId());
    if (raw->getName().empty()) {
        context_.lost("dxf-nameless-record", "a table record has no name", tags_.front().begin);
        return;
    }
    DxfAccess::index_record(*table_, *raw);
    if (table_ == DxfAccess::viewports(db_).get() && DxfAccess::active_viewport(db_).isNull()) {
        DxfAccess::active_viewport(db_) = id;
    }
}

// ---- blocks and entities ----

void Reader::in_blocks(const ObjectTags& tags) {
    const std::string_view type = tags.type();
    if (type == "BLOCK") {
        if (block_ != nullptr) {
            context_.repaired("dxf-missing-endblk", "a block is not closed", tags_.front().begin);
            end_block(nullptr);
        }
        begin_block(tags);
    } else if (type == "ENDBLK") {
        note_handle(tags);
        end_composite(true, tags_.front().begin);
        end_block(&tags);
    } else if (block_ != nullptr) {
        entity(tags, *block_);
    } else {
        context_.lost("dxf-outside-block", "an entity stands outside of all blocks",
                      tags_.front().begin);
    }
}

void Reader::begin_block(const ObjectTags& tags) {
    std::string name;
    AcGePoint3d origin;
    std::int32_t flags = 0;
    std::string path;
    bool unloaded = false;
    for (const Tag& tag : tags.own()) {
        if (tag.code == 2 && name.empty()) {
            name = tags.text(tag);
        } else if (tag.code == 70) {
            flags = tags.int32(tag);
        } else if (tag.code == 10) {
            origin.x = tags.real(tag);
        } else if (tag.code == 20) {
            origin.y = tags.real(tag);
        } else if (tag.code == 30) {
            origin.z = tags.real(tag);
        } else if (tag.code == 1) {
            path = tags.text(tag);
        } else if (tag.code == 71) {
            unloaded = tags.integer(tag) == 1;
        }
    }
    note_handle(tags);
    AcDbSymbolTable& table = *DxfAccess::blocks(db_);
    AcDbObjectId id;
    if (table.getAt(name, id) != Acad::eOk) {
        if (document_.version > 1009) {
            context_.repaired("dxf-block-without-record", "block " + name + " has no record",
                              tags_.front().begin);
        }
        auto record = std::make_unique<AcDbBlockTableRecord>();
        record->setName(name);
        DxfAccess::set_implied(*record, true);
        AcDbBlockTableRecord* raw = record.get();
        AcDbStub* row = impl_.new_row(&db_);
        DxfAccess::adopt(db_, row, std::move(record));
        DxfAccess::set_owner(*raw, table.objectId());
        DxfAccess::index_record(table, *raw);
        id = raw->objectId();
    }
    block_ = static_cast<AcDbBlockTableRecord*>(id.stub()->object);
    auto& spans = document_.blocks[id.stub()];
    if (!spans.head.empty()) {
        context_.repaired("dxf-block-twice", "block " + name + " stands here again",
                          tags_.front().begin);
    }
    spans = {object_span(), object_span().end, object_span().end};
    DxfAccess::origin(*block_) = origin;
    DxfAccess::block_flags(*block_) = flags;
    DxfAccess::path(*block_) = path;
    DxfAccess::unloaded(*block_) = unloaded;
}

void Reader::end_block(const ObjectTags* end) {
    if (block_ == nullptr) {
        return;
    }
    DxfAccess::entities(*block_).shrink_to_fit();
    auto& spans = document_.blocks[block_->objectId().stub()];
    const char* where = tags_.empty() ? object_end_ : tags_.front().begin;
    spans.end_begin = spans.end_end = document_.offset(where);
    if (end != nullptr) {
        spans.end_end = object_span().end;
    } else if (tags_.empty() || tags_.front().trimmed() != "BLOCK") {
        context_.repaired("dxf-missing-endblk", "a block is not closed", where);
    }
    block_ = nullptr;
}

/// The space that an entity of the ENTITIES section lies in.
AcDbBlockTableRecord& Reader::space(const ObjectTags& tags) {
    bool paper = false;
    for (const Tag& tag : tags.common()) {
        if (tag.code == 67) {
            paper = tags.integer(tag) != 0;
        }
    }
    AcDbObjectId& id = paper ? impl_.paper_space : DxfAccess::model_space(db_);
    if (id.isNull()) {
        AcDbSymbolTable& table = *DxfAccess::blocks(db_);
        const bool old_name = table.has(paper ? "$PAPER_SPACE" : "$MODEL_SPACE");
        const std::string name = old_name ? (paper ? "$PAPER_SPACE" : "$MODEL_SPACE")
                                          : (paper ? "*Paper_Space" : "*Model_Space");
        if (table.getAt(name, id) != Acad::eOk) {
            auto record = std::make_unique<AcDbBlockTableRecord>();
            record->setName(name);
            DxfAccess::set_implied(*record, true);
            table.add(std::move(record), id);
        }
    }
    return *static_cast<AcDbBlockTableRecord*>(id.stub()->object);
}

void Reader::entity(const ObjectTags& tags, AcDbBlockTableRecord& owner) {
    if (continues_composite(tags, owner)) {
        return;
    }
    const std::string_view type = tags.type();
    std::int64_t flags = 0;
    if (type == "POLYLINE" || type == "DIMENSION") {
        const Tag* tag = tags.find(70);
        flags = tag != nullptr ? tags.integer(*tag) : 0;
    }
    std::unique_ptr<AcDbObject> made =
        make_object(type == "INSERT" && is_array(tags) ? "MINSERT" : type, flags, true);
    if (made == nullptr) {
        auto unknown = std::make_unique<AcDbUnknownEntity>();
        unknown->setDxfName(std::string(type));
        made = std::move(unknown);
    }
    AcDbObject* raw = made.get();
    const AcDbObjectId id = enter(std::move(made), tags);
    DxfAccess::set_owner(*raw, owner.objectId());
    DxfAccess::entities(owner).push_back(id);
    if (type == "POLYLINE") {
        polyline_ = static_cast<AcDbHeavyPolyline*>(raw);
    } else if (type == "INSERT") {
        const Tag* follow = tags.find(66);
        if (follow != nullptr && tags.integer(*follow) != 0) {
            reference_ = static_cast<AcDbBlockReference*>(raw);
        }
    }
}

/// Vertices, attributes and SEQEND belong to the polyline or reference before them.
bool Reader::continues_composite(const ObjectTags& tags, AcDbBlockTableRecord& owner) {
    if (polyline_ == nullptr && reference_ == nullptr) {
        return false;
    }
    const std::string_view type = tags.type();
    if (polyline_ != nullptr && type == "VERTEX") {
        note_handle(tags);
        read_vertex(*polyline_, tags);
        DxfAccess::set_span(*polyline_, {DxfAccess::span(*polyline_).begin, object_span().end});
        return true;
    }
    if (reference_ != nullptr && type == "ATTRIB") {
        std::unique_ptr<AcDbObject> made = make_object(type, 0, true);
        AcDbObject* raw = made.get();
        const AcDbObjectId id = enter(std::move(made), tags);
        DxfAccess::set_owner(*raw, reference_->objectId());
        reference_->appendAttribute(id);
        const std::uint64_t end = object_span().end;
        document_.reference_ends[reference_->objectId().stub()] = {end, end};
        return true;
    }
    if (type == "SEQEND") {
        note_handle(tags);
        if (polyline_ != nullptr) {
            DxfAccess::set_span(*polyline_, {DxfAccess::span(*polyline_).begin, object_span().end});
        } else {
            document_.reference_ends[reference_->objectId().stub()] = object_span();
        }
        end_composite(true, nullptr);
        return true;
    }
    (void)owner;
    end_composite(false, tags_.front().begin);
    return false;
}

void Reader::end_composite(bool told, const char* where) {
    const bool open = polyline_ != nullptr || reference_ != nullptr;
    if (polyline_ != nullptr) {
        polyline_->vertices().shrink_to_fit();
    }
    if (open && (!told || where != nullptr)) {
        context_.repaired("dxf-missing-seqend", "the parts of an entity are not closed", where);
    }
    polyline_ = nullptr;
    reference_ = nullptr;
}

void Reader::object(const ObjectTags& tags) {
    std::unique_ptr<AcDbObject> made = make_object(tags.type(), 0, false);
    if (made == nullptr) {
        auto unknown = std::make_unique<AcDbUnknownObject>();
        unknown->setDxfName(std::string(tags.type()));
        made = std::move(unknown);
    }
    AcDbObject* raw = made.get();
    const AcDbObjectId id = enter(std::move(made), tags);
    DxfAccess::set_owner(*raw, context_.object(tags.owner()));
    if (DxfAccess::named_objects(db_).isNull() && AcDbDictionary::cast(raw) != nullptr) {
        DxfAccess::named_objects(db_) = id; // the first dictionary is the root
    }
}

/// Gives the object its row and span, and lets it read its tags.
AcDbObjectId Reader::enter(std::unique_ptr<AcDbObject> object, const ObjectTags& tags) {
    AcDbObject* raw = object.get();
    AcDbStub* row = row_for(tags);
    context_.set_handle(row->handle);
    DxfAccess::adopt(db_, row, std::move(object));
    DxfAccess::set_span(*raw, object_span());
    raw->dxfIn(tags);
    DxfAccess::note_attachments(*raw, tags);
    DxfAccess::set_modified(*raw, false);
    return raw->objectId();
}

AcDbStub* Reader::row_for(const ObjectTags& tags) {
    const std::uint64_t handle = tags.handle();
    if (handle == 0) {
        return impl_.new_row(&db_);
    }
    AcDbStub* row = impl_.row(&db_, handle);
    if (row->object != nullptr) {
        context_.set_handle(handle);
        context_.repaired("dxf-duplicate-handle", "another object has this handle already",
                          tags_.front().begin);
        return impl_.new_row(&db_);
    }
    return row;
}

/// Parts that are no objects of ours have handles too, which no new object may take.
void Reader::note_handle(const ObjectTags& tags) {
    impl_.highest_in_file = std::max(impl_.highest_in_file, tags.handle());
}

void Reader::resolve_blocks() {
    for (const auto& [reference, name] : context_.awaited_blocks) {
        AcDbObjectId id = context_.block(name);
        if (id.isNull()) {
            context_.set_handle(reference->getAcDbHandle().value());
            const std::string words = document_.encoding.decode(name.substr(0, 255));
            reference->setBlockName(words);
            context_.lost("dxf-missing-block", "there is no block of the name " + words,
                          name.data());
        }
        reference->setBlockTableRecord(id);
    }
    context_.set_handle(0);
}

/// Rows without a handle get one above all that the file uses.
void Reader::number_rows() {
    std::uint64_t highest = impl_.highest_in_file;
    for (const AcDbStub& row : impl_.stubs) {
        highest = std::max(highest, row.handle);
    }
    const AcDbValues seed = db_.headerVar("$HANDSEED");
    std::uint64_t told = 0;
    if (!seed.empty() && parse_handle(seed.front().text(), told) && told > 0) {
        highest = std::max(highest, told - 1);
    }
    constexpr std::uint64_t kHighest = 1ULL << 62; // a seed near the end leaves no room
    impl_.next_handle = highest < kHighest ? highest + 1 : kHighest;
    for (AcDbStub& row : impl_.stubs) {
        while (row.handle == 0) {
            const std::uint64_t handle = impl_.next_handle++;
            if (impl_.find(handle) == nullptr) {
                row.handle = handle;
                impl_.index.insert(&row);
            }
        }
    }
}

std::string_view refusal(std::string_view bytes) {
    constexpr std::size_t kHead = 1 << 16;
    const std::string_view head = bytes.substr(0, kHead);
    if (bytes.empty()) {
        return "is empty";
    }
    if (head.starts_with("AC10") && head.size() > 6 && head[6] == '\0') {
        return "is a DWG file; only DXF files are read";
    }
    return head.find("SECTION") == std::string_view::npos ? "is not a DXF file"
                                                          : std::string_view();
}

} // namespace

Acad::ErrorStatus read_document(AcDbDatabase& database, Document& document, std::string& error,
                                const AcDbDatabase::Monitor& monitor) {
    error = refusal(document.bytes());
    if (!error.empty()) {
        return Acad::eBadDxfFile;
    }
    Reader reader(database, document, monitor);
    const Acad::ErrorStatus status = reader.run();
    if (status != Acad::eOk) {
        error = "reading was cancelled";
        return status;
    }
    if (!reader.found_any()) {
        error = "is not a DXF file";
        return Acad::eBadDxfFile;
    }
    return Acad::eOk;
}

} // namespace dxf
