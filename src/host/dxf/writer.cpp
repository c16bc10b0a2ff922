// Puts a drawing's file together: the bytes that were read, with edits.
#include "host/dxf/writer.h"

#include "host/db/block_reference.h"
#include "host/db/database_impl.h"
#include "host/dxf/patch.h"
#include "host/dxf/tag_reader.h"

#include <algorithm>
#include <set>

namespace dxf {
namespace {

constexpr const char* kTableOrder[] = {"VPORT", "LTYPE", "LAYER",    "STYLE",       "VIEW",
                                       "UCS",   "APPID", "DIMSTYLE", "BLOCK_RECORD"};
constexpr const char* kSectionOrder[] = {"HEADER",   "CLASSES", "TABLES",         "BLOCKS",
                                         "ENTITIES", "OBJECTS", "THUMBNAILIMAGE", "ACDSDATA"};

struct Edit {
    Span span;
    std::string text;
};

using Sink = std::function<void(std::string_view)>;

class Writer {
public:
    explicit Writer(const AcDbDatabase& db)
      : db_(db)
      , impl_(DxfAccess::impl(db))
      , document_(*impl_.document)
      , style_(document_.style())
      , next_handle_(impl_.next_handle)
      , new_handle_([this] { return next_handle_++; }) {}

    void collect();
    void compose(const Sink& sink);

private:
    static bool is_new(const AcDbObject& o) { return DxfAccess::span(o).empty(); }
    void need(AcDbObjectId id);
    void need_references(const AcDbObject& object);
    void find_objects();
    void remove(const AcDbObject& object);
    void change(const AcDbObject& object);
    void change_block(const AcDbBlockTableRecord& block);
    void add(const AcDbObject& object);
    void add_record(const AcDbSymbolTableRecord& record);
    static bool has_definitions(const AcDbBlockTableRecord& block);
    void add_block(const AcDbBlockTableRecord& block);
    void add_entity(const AcDbEntity& entity);
    void add_attributes(const AcDbBlockReference& reference);
    std::string new_attributes(const AcDbBlockReference& reference, bool& any);
    void header();
    void put_tables();
    void put_section(const char* name, const std::string& text);
    std::uint64_t place_of_section(std::string_view name) const;
    void insert(std::uint64_t at, std::string text) {
        if (!text.empty()) {
            edits_.push_back({{at, at}, std::move(text)});
        }
    }

    const AcDbDatabase& db_;
    const DxfAccess::Impl& impl_;
    const Document& document_;
    WriteStyle style_;
    std::uint64_t next_handle_;
    std::function<std::uint64_t()> new_handle_;
    std::vector<Edit> edits_;
    std::vector<const AcDbObject*> new_objects_, changed_objects_;
    std::set<const AcDbObject*> needed_;
    std::map<std::string, std::string> table_text_, section_text_;
    std::map<const AcDbStub*, std::string> block_text_; ///< entities added to blocks
};

// ---- which objects are written ----

/// Objects made in memory only because every drawing has them are written once they are used.
void Writer::need(AcDbObjectId id) {
    if (!id.isValid() || id.isErased()) {
        return;
    }
    const AcDbObject& object = *id.stub()->object;
    if (is_new(object) && DxfAccess::implied(object) && needed_.insert(&object).second) {
        need_references(object);
    }
}

void Writer::need_references(const AcDbObject& object) {
    if (const auto* entity = AcDbEntity::cast(&object); entity != nullptr) {
        // A layer that the file names without having it stays so, unless something new names it.
        if (is_new(object)) {
            need(entity->layerId());
            if (style_.version > 1009) {
                need(entity->ownerId()); // a space that the file has no record of
            }
        }
        need(entity->materialId());
    } else if (const auto* dictionary = AcDbDictionary::cast(&object); dictionary != nullptr) {
        for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
            need(entry.id);
        }
    } else if (const auto* layer = AcDbLayerTableRecord::cast(&object); layer != nullptr) {
        need(layer->materialId());
    }
    if (AcDbDictionary::cast(&object) != nullptr || AcDbMaterial::cast(&object) != nullptr) {
        need(object.ownerId());
    }
}

void Writer::find_objects() {
    for (const AcDbStub& row : impl_.stubs) {
        const AcDbObject* object = row.object;
        if (object == nullptr || AcDbSymbolTable::cast(object) != nullptr) {
            continue;
        }
        const bool fresh = is_new(*object) && !DxfAccess::implied(*object);
        if (row.erased || (!fresh && !DxfAccess::modified(*object))) {
            continue;
        }
        if (is_new(*object)) {
            needed_.insert(object);
        } else {
            changed_objects_.push_back(object);
        }
        need_references(*object);
    }
    for (const AcDbStub& row : impl_.stubs) { // in the order of the table
        if (row.object != nullptr && needed_.contains(row.object)) {
            new_objects_.push_back(row.object);
        }
        if (row.object != nullptr && row.erased) {
            remove(*row.object);
        }
    }
}

void Writer::remove(const AcDbObject& object) {
    const Span span = DxfAccess::span(object);
    if (span.empty()) {
        return;
    }
    Span whole = span;
    const AcDbStub* row = object.objectId().stub();
    if (const auto end = document_.reference_ends.find(row);
        end != document_.reference_ends.end()) {
        whole.end = end->second.end;
    }
    edits_.push_back({whole, {}});
    if (const auto block = document_.blocks.find(row); block != document_.blocks.end()) {
        edits_.push_back({{block->second.head.begin, block->second.end_end}, {}});
    }
}

void Writer::change(const AcDbObject& object) {
    const Span span = DxfAccess::span(object);
    std::string text = patch_object(db_, object, new_handle_);
    if (text != document_.bytes(span)) {
        edits_.push_back({span, std::move(text)});
    }
    if (const auto* reference = AcDbBlockReference::cast(&object); reference != nullptr) {
        add_attributes(*reference);
    } else if (const auto* block = AcDbBlockTableRecord::cast(&object); block != nullptr) {
        change_block(*block);
    }
}

/// The base point stands in the BLOCK, apart from the record.
void Writer::change_block(const AcDbBlockTableRecord& block) {
    const auto spans = document_.blocks.find(block.objectId().stub());
    if (spans == document_.blocks.end()) {
        return;
    }
    const AcGePoint3d origin = block.origin();
    const std::string_view head = document_.bytes(spans->second.head);
    TagReader reader(head, document_.form().form, document_.form().line_end);
    Tag tag;
    while (reader.next(tag)) {
        const bool coordinate = tag.code == 10 || tag.code == 20 || tag.code == 30;
        const double wanted = tag.code == 10 ? origin.x : tag.code == 20 ? origin.y : origin.z;
        double told = 0;
        if (coordinate && (parse_real(tag, told), told != wanted)) {
            std::string text;
            TagWriter(text, style_).real(tag.code, wanted);
            edits_.push_back(
                {{document_.offset(tag.begin), document_.offset(reader.position())}, text});
        }
    }
}

// ---- new objects ----

void Writer::add(const AcDbObject& object) {
    if (const auto* block = AcDbBlockTableRecord::cast(&object); block != nullptr) {
        add_block(*block);
    } else if (const auto* record = AcDbSymbolTableRecord::cast(&object); record != nullptr) {
        add_record(*record);
    } else if (const auto* entity = AcDbEntity::cast(&object); entity != nullptr) {
        add_entity(*entity);
    } else {
        write_new_object(section_text_["OBJECTS"], style_, object, new_handle_);
    }
}

void Writer::add_record(const AcDbSymbolTableRecord& record) {
    write_new_object(table_text_[record.dxfName()], style_, record, new_handle_);
}

/// A reference to such a block carries attributes.
bool Writer::has_definitions(const AcDbBlockTableRecord& block) {
    return std::any_of(block.entities().begin(), block.entities().end(), [](AcDbObjectId id) {
        return id.isValid() && !id.isErased() &&
               AcDbAttributeDefinition::cast(id.stub()->object) != nullptr;
    });
}

void Writer::add_block(const AcDbBlockTableRecord& block) {
    const bool space =
        block.objectId() == db_.modelSpaceId() || block.objectId() == impl_.paper_space;
    if (style_.version > 1009) {
        add_record(block);
    } else if (space) {
        return; // old files have no blocks of the spaces
    }
    if (document_.blocks.contains(block.objectId().stub())) {
        change_block(block); // its BLOCK is in the file, only the record was missing
        return;
    }
    std::string& text = section_text_["BLOCKS"];
    TagWriter writer(text, style_);
    writer.set_handle_source(new_handle_);
    const std::uint64_t own = block.getAcDbHandle().value();
    writer.part("BLOCK", own, "0");
    writer.subclass("AcDbBlockBegin");
    writer.text(2, block.getName());
    writer.integer(70, has_definitions(block) ? 2 : 0);
    writer.point(10, block.origin());
    writer.text(3, block.getName());
    writer.raw(1, "");
    for (const AcDbObjectId id : block.entities()) {
        if (!space && id.isValid() && !id.isErased() && is_new(*id.stub()->object)) {
            write_new_object(text, style_, *id.stub()->object, new_handle_);
            if (const auto* reference = AcDbBlockReference::cast(id.stub()->object)) {
                bool any = false;
                text += new_attributes(*reference, any);
            }
        }
    }
    TagWriter end(text, style_);
    end.set_handle_source(new_handle_);
    end.part("ENDBLK", own, "0");
    end.subclass("AcDbBlockEnd");
}

void Writer::add_entity(const AcDbEntity& entity) {
    const AcDbObjectId owner = entity.ownerId();
    if (!owner.isValid() || AcDbBlockReference::cast(owner.stub()->object) != nullptr) {
        return; // attributes go with their reference
    }
    const bool space = owner == db_.modelSpaceId() || owner == impl_.paper_space;
    const bool in_file = document_.blocks.contains(owner.stub());
    if (!space && !in_file) {
        return; // written with its new block
    }
    std::string& text = space ? section_text_["ENTITIES"] : block_text_[owner.stub()];
    write_new_object(text, style_, entity, new_handle_);
    if (const auto* reference = AcDbBlockReference::cast(&entity); reference != nullptr) {
        bool any = false;
        text += new_attributes(*reference, any);
    }
}

/// The attributes that are not in the file, and the end mark when none is there yet.
std::string Writer::new_attributes(const AcDbBlockReference& reference, bool& any) {
    std::string text;
    for (const AcDbObjectId id : reference.attributes()) {
        if (id.isValid() && !id.isErased() && is_new(*id.stub()->object)) {
            write_new_object(text, style_, *id.stub()->object, new_handle_);
            any = true;
        }
    }
    const auto end = document_.reference_ends.find(reference.objectId().stub());
    const bool closed = end != document_.reference_ends.end() && !end->second.empty();
    if (any && !closed) {
        TagWriter writer(text, style_);
        writer.set_handle_source(new_handle_);
        writer.part("SEQEND", reference.getAcDbHandle().value(), reference.layer());
    }
    return text;
}

void Writer::add_attributes(const AcDbBlockReference& reference) {
    bool any = false;
    std::string text = new_attributes(reference, any);
    const auto end = document_.reference_ends.find(reference.objectId().stub());
    insert(end != document_.reference_ends.end() ? end->second.begin
                                                 : DxfAccess::span(reference).end,
           std::move(text));
}

// ---- places ----

std::uint64_t Writer::place_of_section(std::string_view name) const {
    const auto* at = std::find(std::begin(kSectionOrder), std::end(kSectionOrder), name);
    for (; at != std::end(kSectionOrder); ++at) {
        if (const auto* later = document_.section(*at); later != nullptr) {
            return later->span.begin;
        }
    }
    return document_.end_of_file;
}

void Writer::put_section(const char* name, const std::string& text) {
    if (text.empty()) {
        return;
    }
    if (const auto* section = document_.section(name); section != nullptr) {
        insert(section->span.end, text);
        return;
    }
    std::string whole;
    TagWriter writer(whole, style_);
    writer.raw(0, "SECTION");
    writer.raw(2, name);
    whole += text;
    TagWriter(whole, style_).raw(0, "ENDSEC");
    insert(place_of_section(name), std::move(whole));
}

void Writer::put_tables() {
    std::string missing;
    for (const char* name : kTableOrder) {
        const std::string& text = table_text_[name];
        if (text.empty()) {
            continue;
        }
        if (const auto* table = document_.table(name); table != nullptr) {
            insert(table->span.end, text);
            continue;
        }
        TagWriter writer(missing, style_);
        writer.raw(0, "TABLE");
        writer.raw(2, name);
        if (writer.has_subclasses()) {
            writer.id(5, DxfAccess::table(const_cast<AcDbDatabase&>(db_), name).objectId());
            writer.handle(330, 0);
            writer.subclass("AcDbSymbolTable");
        }
        writer.integer(70, 1);
        missing += text;
        TagWriter(missing, style_).raw(0, "ENDTAB");
    }
    put_section("TABLES", missing);
}

void Writer::header() {
    std::map<std::string, AcDbValues> values = impl_.header_changes;
    std::uint64_t seed = 0;
    const AcDbValues told = db_.headerVar("$HANDSEED");
    const bool has_seed = !told.empty() && parse_handle(told.front().text(), seed);
    if (!new_objects_.empty() && (has_seed || style_.version > 1009) && seed < next_handle_) {
        std::string text;
        WriteStyle plain;
        plain.code_width = 0;
        TagWriter(text, plain).handle(5, next_handle_);
        values["$HANDSEED"] = {AcDbValue(5, text.substr(2, text.size() - 3))};
    }
    std::string added;
    for (const auto& [name, chain] : values) {
        std::string text;
        TagWriter writer(text, style_);
        if (!chain.empty()) {
            writer.raw(9, name);
        }
        for (const AcDbValue& value : chain) {
            writer.value(value);
        }
        if (const auto* variable = document_.header_variable(name); variable != nullptr) {
            edits_.push_back({variable->span, std::move(text)});
        } else {
            added += text;
        }
    }
    put_section("HEADER", added);
}

void Writer::collect() {
    find_objects();
    for (const AcDbObject* object : changed_objects_) {
        change(*object);
    }
    for (const AcDbObject* object : new_objects_) {
        add(*object);
    }
    put_tables();
    for (const auto& [row, text] : block_text_) {
        insert(document_.blocks.at(row).end_begin, text);
    }
    put_section("BLOCKS", section_text_["BLOCKS"]);
    put_section("ENTITIES", section_text_["ENTITIES"]);
    put_section("OBJECTS", section_text_["OBJECTS"]);
    header(); // last: the seed lies above all handles that were given
}

/// Hands out the pieces of the new file, each beginning and ending between tags.
void Writer::compose(const Sink& sink) {
    std::stable_sort(edits_.begin(), edits_.end(), [](const Edit& a, const Edit& b) {
        return a.span.begin < b.span.begin ||
               (a.span.begin == b.span.begin && a.span.empty() && !b.span.empty());
    });
    const std::string_view bytes = document_.bytes();
    std::uint64_t at = 0;
    for (const Edit& edit : edits_) {
        if (edit.span.begin < at) {
            continue; // within something that was taken out
        }
        sink(bytes.substr(at, edit.span.begin - at));
        const bool open_line = style_.form == Form::kAscii && edit.span.begin == bytes.size() &&
                               !bytes.empty() && bytes.back() != style_.line_end.back();
        if (open_line && !edit.text.empty()) {
            sink(style_.line_end); // the last line of the file was not closed
        }
        sink(edit.text);
        at = edit.span.end;
    }
    sink(bytes.substr(at));
}

// ---- the form of the file ----

constexpr std::string_view kSentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

/// Writes every tag of the pieces in another form.
class Converter {
public:
    Converter(const Document& document, AcDbDxfForm form, const Sink& sink)
      : document_(document)
      , sink_(sink) {
        style_.version = document.version;
        style_.encoding = &document.encoding;
        if (form == AcDbDxfForm::kBinary) {
            style_.form = document.version > 1009 ? Form::kBinary13 : Form::kBinary12;
            sink_(kSentinel);
        } else if (document.form().form == Form::kAscii) {
            style_ = document.style();
        }
    }
    void convert(std::string_view piece) {
        TagReader reader(piece, document_.form().form, document_.form().line_end);
        Tag tag;
        TagWriter writer(buffer_, style_);
        while (reader.next(tag)) {
            writer.copy(tag);
            if (buffer_.size() > kFlushAt) {
                flush();
            }
        }
        flush();
    }

private:
    static constexpr std::size_t kFlushAt = 1 << 16;
    void flush() {
        sink_(buffer_);
        buffer_.clear();
    }
    const Document& document_;
    const Sink& sink_;
    WriteStyle style_;
    std::string buffer_;
};

void write_to(const AcDbDatabase& database, AcDbDxfForm form, const Sink& sink) {
    Writer writer(database);
    writer.collect();
    if (form == AcDbDxfForm::kAsInput) {
        writer.compose(sink);
        return;
    }
    const Document& document = *DxfAccess::impl(database).document;
    Converter converter(document, form, sink);
    std::uint64_t skip = document.form().first_byte; // the old file's mark or sentinel
    writer.compose([&](std::string_view piece) {
        const std::uint64_t head = std::min<std::uint64_t>(skip, piece.size());
        skip -= head;
        converter.convert(piece.substr(head));
    });
}

} // namespace

Acad::ErrorStatus write_document(const AcDbDatabase& database, const std::filesystem::path& path,
                                 std::string& error, AcDbDxfForm form) {
    platform::AtomicFile file;
    if (!file.open(path, error)) {
        return Acad::eFileAccessErr;
    }
    write_to(database, form, [&](std::string_view piece) { file.write(piece); });
    return file.commit(error) ? Acad::eOk : Acad::eFileAccessErr;
}

std::string write_to_memory(const AcDbDatabase& database, AcDbDxfForm form) {
    std::string out;
    write_to(database, form, [&](std::string_view piece) { out += piece; });
    return out;
}

} // namespace dxf
