// Names, handles and findings while a drawing is read.
#include "host/dxf/load_context.h"

#include "host/db/block_reference.h"
#include "host/db/database_impl.h"

namespace dxf {
namespace {

/// Findings of one list are kept up to this number.
constexpr std::size_t kMostFindings = 100;

AcDbObjectId find_record(AcDbSymbolTable& table, const std::string& name) {
    AcDbObjectId id;
    table.getAt(name, id);
    return id;
}

} // namespace

const Encoding& LoadContext::encoding() const { return document_.encoding; }

AcDbObjectId LoadContext::object(std::uint64_t handle) {
    if (handle == 0) {
        return {};
    }
    auto& impl = DxfAccess::impl(database_);
    return AcDbObjectId(loading() ? impl.row(&database_, handle) : impl.find(handle));
}

AcDbObjectId LoadContext::layer(std::string_view bytes) {
    if (bytes == last_layer_ && !last_layer_id_.isNull()) {
        return last_layer_id_;
    }
    AcDbObjectId& id = layers_[bytes];
    if (id.isNull()) {
        const std::string name = encoding().decode(bytes);
        id = find_record(*DxfAccess::layers(database_), name);
        if (id.isNull() && loading()) {
            auto record = std::make_unique<AcDbLayerTableRecord>();
            record->setName(name);
            DxfAccess::set_implied(*record, true);
            DxfAccess::layers(database_)->add(std::move(record), id);
        }
    }
    last_layer_ = bytes;
    last_layer_id_ = id;
    return id;
}

AcDbObjectId LoadContext::line_type(std::string_view bytes) {
    const auto [at, is_new] = line_types_.try_emplace(bytes);
    if (is_new) {
        at->second = find_record(DxfAccess::table(database_, "LTYPE"), encoding().decode(bytes));
    }
    return at->second;
}

AcDbObjectId LoadContext::block(std::string_view bytes) {
    AcDbObjectId& id = blocks_[bytes];
    if (id.isNull()) {
        id = find_record(*DxfAccess::blocks(database_), encoding().decode(bytes));
    }
    return id;
}

void LoadContext::await_block(AcDbBlockReference& reference, std::string_view bytes) {
    if (loading()) {
        awaited_blocks.push_back({&reference, bytes});
    }
}

void LoadContext::repaired(const char* code, std::string message, const char* where) {
    if (report_ != nullptr) {
        note(report_->repaired, code, std::move(message), where);
    }
}

void LoadContext::lost(const char* code, std::string message, const char* where) {
    if (report_ != nullptr) {
        note(report_->lost, code, std::move(message), where);
    }
}

void LoadContext::note(std::vector<AcDbLoadFinding>& list, const char* code, std::string message,
                       const char* where) {
    if (list.size() >= kMostFindings) {
        ++report_->suppressed;
        return;
    }
    list.push_back(
        {code, std::move(message), where != nullptr ? document_.line_of(where) : 0, handle_});
}

} // namespace dxf
