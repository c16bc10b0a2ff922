// The drawing: object table, header variables, reading and writing.
#include "host/db/database.h"

#include "host/db/database_impl.h"
#include "host/db/group.h"
#include "host/dxf/load_context.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/reader.h"
#include "host/dxf/tag_reader.h"
#include "host/dxf/writer.h"

#include <algorithm>
#include <limits>
#include <malloc.h>
#include <utility>

// ---- handles ----

namespace dxf {

AcDbStub* HandleIndex::find(std::uint64_t handle) const {
    if (slots_.empty() || handle == 0) {
        return nullptr;
    }
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash(handle) & mask; slots_[i] != nullptr; i = (i + 1) & mask) {
        if (slots_[i]->handle == handle) {
            return slots_[i];
        }
    }
    return nullptr;
}

void HandleIndex::insert(AcDbStub* stub) {
    if ((used_ + 1) * 3 >= slots_.size() * 2) {
        grow();
    }
    const std::size_t mask = slots_.size() - 1;
    std::size_t i = hash(stub->handle) & mask;
    while (slots_[i] != nullptr) {
        i = (i + 1) & mask;
    }
    slots_[i] = stub;
    ++used_;
}

void HandleIndex::grow() {
    std::vector<AcDbStub*> old(std::max<std::size_t>(64, slots_.size() * 2));
    old.swap(slots_);
    used_ = 0;
    for (AcDbStub* stub : old) {
        if (stub != nullptr) {
            insert(stub);
        }
    }
}

} // namespace dxf

AcDbStub* AcDbDatabase::Impl::row(AcDbDatabase* database, std::uint64_t handle) {
    if (AcDbStub* present = index.find(handle); present != nullptr) {
        return present;
    }
    AcDbStub* made = new_row(database);
    made->handle = handle;
    index.insert(made);
    return made;
}

AcDbStub* AcDbDatabase::Impl::new_row(AcDbDatabase* database) {
    AcDbStub& made = stubs.emplace_back();
    made.database = database;
    return &made;
}

AcDbStub* AcDbDatabase::Impl::new_row_with_handle(AcDbDatabase* database) {
    while (index.find(next_handle) != nullptr) {
        ++next_handle;
    }
    return row(database, next_handle++);
}

// ---- the reader's door ----

void DxfAccess::set_span(AcDbObject& o, dxf::Span span) {
    using Limits = std::numeric_limits<std::uint32_t>;
    o.source_begin_ = span.begin;
    o.source_length_ =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(span.end - span.begin, Limits::max()));
}

void DxfAccess::note_attachments(AcDbObject& o, const dxf::ObjectTags& tags) {
    o.entity_flags_ = static_cast<std::uint8_t>(o.entity_flags_ |
                                                (tags.extension_dictionary() != 0 ? kExtended : 0) |
                                                (tags.xdata().empty() ? 0 : kAttached));
}

void DxfAccess::set_implied(AcDbObject& o, bool implied) {
    o.entity_flags_ = static_cast<std::uint8_t>(implied ? o.entity_flags_ | kImplied
                                                        : o.entity_flags_ & ~kImplied);
}

AcDbSymbolTable& DxfAccess::table(AcDbDatabase& db, const std::string& name) {
    struct Known {
        const char* name;
        std::unique_ptr<AcDbSymbolTable>& (*table)(AcDbDatabase&);
    };
    static constexpr Known kKnown[] = {{"LAYER", layers},
                                       {"BLOCK_RECORD", blocks},
                                       {"VPORT", viewports},
                                       {"VIEW", views},
                                       {"UCS", ucss}};
    const auto* known = std::find_if(std::begin(kKnown), std::end(kKnown),
                                     [&](const Known& row) { return row.name == name; });
    auto& place = known != std::end(kKnown) ? known->table(db) : db.impl_->other_tables[name];
    if (place == nullptr) {
        place = std::make_unique<AcDbSymbolTable>();
        AcDbStub* row = db.impl_->new_row(&db);
        row->object = place.get();
        place->id_ = AcDbObjectId(row);
    }
    return *place;
}

void DxfAccess::index_record(AcDbSymbolTable& table, AcDbSymbolTableRecord& record) {
    table.records_.push_back(record.objectId());
    table.index_[dxf::fold_name(record.getName())] = record.objectId();
}

void DxfAccess::enter(AcDbDictionary& dictionary, const std::string& key, AcDbObjectId id) {
    const auto [at, is_new] =
        dictionary.index_.try_emplace(dxf::fold_name(key), dictionary.entries_.size());
    if (is_new) {
        dictionary.entries_.push_back({key, id});
    } else {
        dictionary.entries_[at->second].id = id;
    }
}

void DxfAccess::adopt(AcDbDatabase& db, AcDbStub* row, std::unique_ptr<AcDbObject> object) {
    object->id_ = AcDbObjectId(row);
    row->object = object.release(); // freed by the database
    ++db.impl_->objects;
}

// ---- database ----

AcDbDatabase::AcDbDatabase(bool build_default_drawing)
  : impl_(std::make_unique<Impl>()) {
    impl_->document = std::make_unique<dxf::Document>();
    for (const char* name : {"LAYER", "BLOCK_RECORD", "VPORT", "VIEW", "UCS"}) {
        DxfAccess::table(*this, name);
    }
    if (build_default_drawing) {
        std::string error;
        dxfInMemory(dxf::default_drawing(), error);
    }
}

AcDbDatabase::~AcDbDatabase() {
    if (acdbCurDwg() == this) {
        acdbSetCurDwg(nullptr);
    }
    // The tables belong to members; all other objects to their rows.
    for (const auto* table : {&layers_, &blocks_, &viewports_, &views_, &ucss_}) {
        (*table)->objectId().stub()->object = nullptr;
    }
    for (const auto& [name, table] : impl_->other_tables) {
        table->objectId().stub()->object = nullptr;
    }
    for (AcDbStub& row : impl_->stubs) {
        const std::unique_ptr<AcDbObject> object(std::exchange(row.object, nullptr));
    }
}

Acad::ErrorStatus AcDbDatabase::dxfIn(const std::filesystem::path& path, std::string& error,
                                      const Monitor& monitor) {
    std::error_code code;
    const auto status = std::filesystem::status(path, code);
    if (!std::filesystem::exists(status)) {
        error = "does not exist";
        return Acad::eFileNotFound;
    }
    if (std::filesystem::is_directory(status)) {
        error = "is a directory";
        return Acad::eFileAccessErr;
    }
    platform::MappedFile file;
    if (!file.open(path, error)) {
        return Acad::eFileAccessErr;
    }
    filename_ = path.string();
    impl_->document->take(std::move(file));
    const Acad::ErrorStatus result = dxf::read_document(*this, *impl_->document, error, monitor);
    if (result == Acad::eOk) {
        dxf::complete_database(*this);
    }
    return result;
}

Acad::ErrorStatus AcDbDatabase::dxfInMemory(std::string bytes, std::string& error) {
    impl_->document->take(std::move(bytes));
    const Acad::ErrorStatus result = dxf::read_document(*this, *impl_->document, error, {});
    if (result == Acad::eOk) {
        dxf::complete_database(*this);
    }
    return result;
}

Acad::ErrorStatus AcDbDatabase::dxfOut(const std::filesystem::path& path, std::string& error,
                                       AcDbDxfForm form) const {
    return dxf::write_document(*this, path, error, form);
}

std::string AcDbDatabase::versionCode() const { return impl_->document->version_code(); }

AcDbValues AcDbDatabase::headerVar(const std::string& name) const {
    if (const auto at = impl_->header_changes.find(name); at != impl_->header_changes.end()) {
        return at->second;
    }
    const dxf::Document& document = *impl_->document;
    const auto* variable = document.header_variable(name);
    if (variable == nullptr) {
        return {};
    }
    dxf::TagReader reader(document.bytes(variable->span), document.form().form,
                          document.form().line_end);
    std::vector<dxf::Tag> tags;
    dxf::Tag tag;
    while (reader.next(tag)) {
        if (tag.code != 999) {
            tags.push_back(tag);
        }
    }
    dxf::LoadContext context(const_cast<AcDbDatabase&>(*this), document, nullptr);
    const dxf::ObjectTags divided(tags, context);
    return dxf::to_values(std::span<const dxf::Tag>(tags).subspan(1), divided);
}

void AcDbDatabase::setHeaderVar(const std::string& name, AcDbValues values) {
    impl_->header_changes[name] = std::move(values);
}

std::int16_t AcDbDatabase::insunits() const {
    const AcDbValues values = headerVar("$INSUNITS");
    const std::int64_t units = values.empty() ? 0 : values.front().integer();
    return units >= 0 && units <= 24 ? static_cast<std::int16_t>(units) : std::int16_t{0};
}

void AcDbDatabase::setInsunits(std::int16_t units) {
    setHeaderVar("$INSUNITS", {AcDbValue(70, static_cast<std::int64_t>(units))});
}

double AcDbDatabase::facetres() const {
    const AcDbValues values = headerVar("$FACETRES");
    return values.empty() ? 0.5 : std::clamp(values.front().real(), 0.01, 10.0);
}

AcDbObjectId AcDbDatabase::materialDictionaryId() const { return impl_->material_dictionary; }

std::vector<AcDbObjectId> AcDbDatabase::materials() const {
    std::vector<AcDbObjectId> ids;
    const AcDbObjectPointer<AcDbDictionary> dictionary(impl_->material_dictionary);
    if (dictionary) {
        for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
            if (entry.id.isValid() && !entry.id.isErased() &&
                AcDbMaterial::cast(entry.id.stub()->object) != nullptr) {
                ids.push_back(entry.id);
            }
        }
    }
    return ids;
}

AcDbObjectId AcDbDatabase::getAcDbObjectId(AcDbHandle handle) const {
    AcDbStub* row = impl_->find(handle.value());
    return row != nullptr && row->object != nullptr ? AcDbObjectId(row) : AcDbObjectId();
}

AcDbObjectId AcDbDatabase::addAcDbObject(std::unique_ptr<AcDbObject> object, AcDbObjectId owner) {
    if (object == nullptr) {
        return {};
    }
    AcDbObject* raw = object.get();
    // What the reader makes is numbered when all handles of the file are known.
    AcDbStub* row =
        DxfAccess::implied(*raw) ? impl_->new_row(this) : impl_->new_row_with_handle(this);
    DxfAccess::adopt(*this, row, std::move(object));
    raw->owner_ = owner;
    raw->modified_ = !DxfAccess::implied(*raw);
    if (AcDbGroup::cast(raw) != nullptr) {
        impl_->forget_groups();
    }
    raw->register_applications();
    return AcDbObjectId(row);
}

const std::string& AcDbDatabase::xrefName() const { return impl_->xref_name; }

std::size_t AcDbDatabase::objectCount() const { return impl_->objects; }

std::size_t AcDbDatabase::memoryInUse() const {
    std::size_t bytes = impl_->index.bytes() + impl_->stubs.size() * sizeof(AcDbStub);
    for (const AcDbStub& row : impl_->stubs) {
        bytes += row.object != nullptr ? malloc_usable_size(row.object) + sizeof(std::size_t) : 0;
    }
    for (const AcDbObjectId block : blocks_->records()) {
        if (const AcDbObjectPointer<AcDbBlockTableRecord> record(block); record) {
            bytes += record->entities().capacity() * sizeof(AcDbObjectId);
        }
    }
    return bytes;
}

// ---- the current drawing, units ----

namespace {

AcDbDatabase* current_drawing = nullptr;

// Metres of the unit codes of $INSUNITS; 0 for none.
constexpr double kMeters[] = {0,
                              0.0254,
                              0.3048,
                              1609.344,
                              0.001,
                              0.01,
                              1,
                              1000,
                              2.54e-8,
                              2.54e-5,
                              0.9144,
                              1e-10,
                              1e-9,
                              1e-6,
                              0.1,
                              10,
                              100,
                              1e9,
                              1.495978707e11,
                              9.4607304725808e15,
                              3.0856775814913673e16,
                              1200.0 / 3937,
                              100.0 / 3937,
                              3600.0 / 3937,
                              5280 * 1200.0 / 3937};

} // namespace

AcDbDatabase* acdbCurDwg() { return current_drawing; }

void acdbSetCurDwg(AcDbDatabase* database) { current_drawing = database; }

bool acdbGetUnitsConversion(int from, int to, double& factor) {
    const auto meters = [](int unit) {
        return unit > 0 && unit < static_cast<int>(std::size(kMeters)) ? kMeters[unit] : 0;
    };
    if (meters(from) == 0 || meters(to) == 0) {
        return false;
    }
    factor = meters(from) / meters(to);
    return true;
}
