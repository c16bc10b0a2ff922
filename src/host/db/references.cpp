// Loads external references and fits them into the drawing that names them.
#include "host/db/references.h"

#include "host/db/database_impl.h"
#include "host/db/support_files.h"
#include "host/dxf/encoding.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <unordered_map>

namespace fs = std::filesystem;

namespace {

/// References deeper than this are never drawn: a block that lies so deep is not entered.
constexpr int kDeepestLevel = 64;
/// A drawing that names more files than this was made to exhaust the machine.
constexpr std::size_t kMostFiles = 4096;

std::string real_path(const fs::path& path) {
    std::error_code failed;
    const fs::path whole = fs::canonical(path, failed);
    return failed ? path.lexically_normal().string() : whole.string();
}

bool has_ending(const std::string& name, const char* ending) {
    const std::string folded = dxf::fold_name(name);
    return folded.ends_with(dxf::fold_name(ending));
}

/// The file that `owner`, or the drawing above all, means by a name.
fs::path find_for(const AcDbDatabase& owner, const AcDbDatabase& host, const std::string& name) {
    const fs::path found = acdbFindFile(&owner, name);
    return found.empty() && &owner != &host ? acdbFindFile(&host, name) : found;
}

/// A DWG is looked for as the DXF beside it; the DWG itself when there is none.
fs::path find_drawing(const AcDbDatabase& owner, const AcDbDatabase& host,
                      const std::string& name) {
    constexpr std::size_t kEnding = 4;
    if (has_ending(name, ".dwg")) {
        const std::string stem = name.substr(0, name.size() - kEnding);
        for (const char* ending : {".dxf", ".DXF"}) {
            if (fs::path found = find_for(owner, host, stem + ending); !found.empty()) {
                return found;
            }
        }
    }
    return find_for(owner, host, name);
}

/// The records of the drawings above say how the layers of their references look.
bool keeps_layer_changes(const AcDbDatabase& db) {
    const AcDbValues value = db.headerVar("$VISRETAIN");
    return value.empty() || value.front().integer() != 0;
}

bool is_standard_material(const AcDbDatabase& db, AcDbObjectId id) {
    return id == db.byLayerMaterial() || id == db.byBlockMaterial() || id == db.globalMaterial();
}

void copy_looks(const AcDbDatabase& from_db, const AcDbLayerTableRecord& from,
                AcDbLayerTableRecord& to) {
    to.setColor(from.color());
    to.setIsOff(from.isOff());
    to.setIsFrozen(from.isFrozen());
    if (from.materialId().isValid() && !is_standard_material(from_db, from.materialId())) {
        to.setMaterialId(from.materialId());
    }
}

AcDbLayerTableRecord* layer_of(AcDbObjectId id) {
    return id.isValid() ? AcDbLayerTableRecord::cast(id.stub()->object) : nullptr;
}

void take_looks(AcDbDatabase& above, AcDbLayerTableRecord& layer) {
    AcDbObjectId id;
    if (!keeps_layer_changes(above) || above.layerTable().getAt(layer.getName(), id) != Acad::eOk) {
        return;
    }
    if (const AcDbLayerTableRecord* record = layer_of(id)) {
        copy_looks(above, *record, layer);
    }
}

/// Gives the layers of a reference their names and looks in the drawings above. Layers that
/// depend on references of its own have such names already.
void fit_layers(AcDbDatabase& child, const std::string& name, AcDbDatabase& owner,
                AcDbDatabase& host) {
    AcDbSymbolTable& table = child.layerTable();
    auto& index = DxfAccess::index(table);
    for (const AcDbObjectId id : table.records()) {
        AcDbLayerTableRecord* layer = layer_of(id);
        if (layer == nullptr || layer->getName().find('|') != std::string::npos) {
            continue;
        }
        if (id == child.layerZero()) {
            if (const AcDbLayerTableRecord* zero = layer_of(host.layerZero())) {
                copy_looks(host, *zero, *layer);
            }
            continue;
        }
        index.erase(dxf::fold_name(layer->getName()));
        layer->setName(name + "|" + layer->getName());
        index[dxf::fold_name(layer->getName())] = id;
        if (&owner != &host) {
            take_looks(owner, *layer);
        }
        take_looks(host, *layer);
    }
}

void fit_materials(AcDbDatabase& child, const std::string& name) {
    for (const AcDbObjectId id : child.materials()) {
        auto* material = AcDbMaterial::cast(id.stub()->object);
        if (!is_standard_material(child, id) && material->name().find('|') == std::string::npos) {
            material->setName(name + "|" + material->name());
        }
    }
    // Line types are told by name only.
    for (const AcDbObjectId id : DxfAccess::table(child, "LTYPE").records()) {
        auto* record = AcDbSymbolTableRecord::cast(id.isValid() ? id.stub()->object : nullptr);
        static const std::string kStandard[] = {"bylayer", "byblock", "continuous"};
        if (record != nullptr && record->getName().find('|') == std::string::npos &&
            std::find(std::begin(kStandard), std::end(kStandard),
                      dxf::fold_name(record->getName())) == std::end(kStandard)) {
            record->setName(name + "|" + record->getName());
        }
    }
}

AcGePoint3d base_point(const AcDbDatabase& db) {
    const AcDbValues value = db.headerVar("$INSBASE");
    return value.empty() ? AcGePoint3d::kOrigin : value.front().point();
}

} // namespace

/// The references of one drawing, and the drawings that they lead to.
class AcDbXrefGraph {
public:
    AcDbXrefGraph(AcDbDatabase& host, const AcDbDatabase::Monitor& monitor)
      : host_(host)
      , monitor_(monitor) {}

    Acad::ErrorStatus resolve_all() {
        const Acad::ErrorStatus status = resolve(host_, {real_path(host_.filename())}, 0);
        monitor_ = {};
        return status;
    }
    const AcDbXref* find(const AcDbStub* block) const {
        const auto at = by_block_.find(block);
        return at != by_block_.end() ? &at->second : nullptr;
    }
    const std::vector<const AcDbXref*>& all() const { return all_; }
    /// The drawings, in the order of their names.
    std::vector<const AcDbDatabase*> drawings() const {
        std::vector<const AcDbDatabase*> list;
        for (const auto& [key, file] : files_) {
            if (file.database != nullptr) {
                list.push_back(file.database.get());
            }
        }
        return list;
    }

private:
    struct File {
        std::unique_ptr<AcDbDatabase> database; ///< null when it cannot be read
        std::string error;
    };
    using Chain = std::vector<std::string>; ///< the files from the drawing to the one that names

    Acad::ErrorStatus resolve(AcDbDatabase& owner, const Chain& chain, int level);
    Acad::ErrorStatus resolve_block(AcDbDatabase& owner, AcDbXref& xref, const Chain& chain);
    Acad::ErrorStatus load(AcDbDatabase& owner, const AcDbXref& xref, const std::string& whole,
                           const Chain& chain, File& file);

    AcDbDatabase& host_;
    AcDbDatabase::Monitor monitor_;
    std::map<std::pair<std::string, std::string>, File> files_; ///< by file and folded block name
    std::unordered_map<const AcDbStub*, AcDbXref> by_block_;
    std::vector<const AcDbXref*> all_;
};

Acad::ErrorStatus AcDbXrefGraph::resolve(AcDbDatabase& owner, const Chain& chain, int level) {
    Acad::ErrorStatus result = Acad::eOk;
    for (const AcDbObjectId id : owner.blockTable().records()) {
        const AcDbObjectPointer<AcDbBlockTableRecord> block(id);
        if (!block || !block->isFromExternalReference()) {
            continue;
        }
        AcDbXref& xref = by_block_[id.stub()];
        all_.push_back(&xref);
        xref.name = block->getName();
        xref.path = block->pathName();
        xref.overlay = block->isFromOverlayReference();
        xref.level = level;
        if (block->isUnloaded()) {
            xref.status = AcDbXrefStatus::kUnloaded;
        } else if (xref.overlay && level > 0) {
            xref.status = AcDbXrefStatus::kLeftOut;
        } else if (result != Acad::eOk) {
            xref.status = AcDbXrefStatus::kUnresolved; // stopped: nothing more is looked for
        } else {
            result = resolve_block(owner, xref, chain);
        }
    }
    return result;
}

Acad::ErrorStatus AcDbXrefGraph::resolve_block(AcDbDatabase& owner, AcDbXref& xref,
                                               const Chain& chain) {
    xref.status = AcDbXrefStatus::kMissing;
    const fs::path found = find_drawing(owner, host_, xref.path);
    if (found.empty()) {
        return Acad::eOk;
    }
    xref.file = found.string();
    const std::string whole = real_path(found);
    if (std::find(chain.begin(), chain.end(), whole) != chain.end()) {
        xref.status = AcDbXrefStatus::kCyclic;
        return Acad::eOk;
    }
    xref.status = AcDbXrefStatus::kUnreadable;
    if (chain.size() >= kDeepestLevel || files_.size() >= kMostFiles) {
        xref.error = "there are too many external references";
        return Acad::eOk;
    }
    const auto [at, is_new] = files_.try_emplace({whole, dxf::fold_name(xref.name)});
    File& file = at->second;
    const Acad::ErrorStatus status = is_new ? load(owner, xref, whole, chain, file) : Acad::eOk;
    if (file.database == nullptr) {
        xref.error = file.error;
        return status;
    }
    xref.status = AcDbXrefStatus::kResolved;
    xref.database = file.database.get();
    xref.base = base_point(*xref.database);
    acdbGetUnitsConversion(xref.database->insunits(), owner.insunits(), xref.scale);
    return status;
}

Acad::ErrorStatus AcDbXrefGraph::load(AcDbDatabase& owner, const AcDbXref& xref,
                                      const std::string& whole, const Chain& chain, File& file) {
    auto database = std::make_unique<AcDbDatabase>(false);
    const Acad::ErrorStatus status = database->dxfIn(xref.file, file.error, monitor_);
    if (status != Acad::eOk) {
        return status == Acad::eUserBreak ? status : Acad::eOk;
    }
    std::error_code failed;
    const fs::path absolute = fs::absolute(xref.file, failed);
    database->setFilename(failed ? xref.file : absolute.string());
    DxfAccess::xref_host(*database) = &host_;
    DxfAccess::impl(*database).xrefs = DxfAccess::impl(host_).xrefs;
    DxfAccess::impl(*database).xref_name = xref.name;
    fit_layers(*database, xref.name, owner, host_);
    fit_materials(*database, xref.name);
    file.database = std::move(database);
    Chain longer = chain;
    longer.push_back(whole);
    return resolve(*file.database, longer, static_cast<int>(chain.size()));
}

// ---- calls

Acad::ErrorStatus acdbResolveXrefs(AcDbDatabase& host, const AcDbDatabase::Monitor& monitor) {
    auto& impl = DxfAccess::impl(host);
    if (impl.xrefs != nullptr) {
        return Acad::eOk;
    }
    impl.own_xrefs = std::make_shared<AcDbXrefGraph>(host, monitor);
    impl.xrefs = impl.own_xrefs.get();
    const Acad::ErrorStatus status = impl.xrefs->resolve_all();
    if (status != Acad::eOk) { // half of them would look like all
        impl.xrefs = nullptr;
        impl.own_xrefs.reset();
    }
    return status;
}

std::vector<const AcDbXref*> acdbXrefs(const AcDbDatabase& host) {
    const AcDbXrefGraph* graph = DxfAccess::impl(host).own_xrefs.get();
    return graph != nullptr ? graph->all() : std::vector<const AcDbXref*>();
}

const AcDbXref* acdbXrefOf(AcDbObjectId block) {
    const AcDbDatabase* db = block.database();
    const AcDbXrefGraph* graph = db != nullptr ? DxfAccess::impl(*db).xrefs : nullptr;
    return graph != nullptr ? graph->find(block.stub()) : nullptr;
}

const char* acdbXrefDrawCode(AcDbXrefStatus status) {
    switch (status) {
    case AcDbXrefStatus::kMissing:
        return "external-reference-missing";
    case AcDbXrefStatus::kUnreadable:
        return "external-reference-unreadable";
    case AcDbXrefStatus::kCyclic:
        return "external-reference-cycle";
    default:
        return nullptr;
    }
}

AcDbBlockContents acdbBlockContents(AcDbObjectId id) {
    const AcDbObjectPointer<AcDbBlockTableRecord> block(id);
    if (!block) {
        return {};
    }
    const AcDbXref* xref = block->isFromExternalReference() ? acdbXrefOf(id) : nullptr;
    if (xref == nullptr) {
        return {id, block->origin(), 1};
    }
    switch (xref->status) {
    case AcDbXrefStatus::kResolved:
        return {xref->database->modelSpaceId(), xref->base, xref->scale};
    case AcDbXrefStatus::kMissing:
    case AcDbXrefStatus::kUnreadable: // some files hold what they last saw of a reference
        return {id, block->origin(), 1};
    default:
        return {};
    }
}

std::vector<AcDbObjectId> acdbDrawnMaterials(const AcDbDatabase& host) {
    std::vector<AcDbObjectId> all = host.materials();
    const AcDbXrefGraph* graph = DxfAccess::impl(host).own_xrefs.get();
    if (graph == nullptr) {
        return all;
    }
    for (const AcDbDatabase* drawing : graph->drawings()) {
        for (const AcDbObjectId id : drawing->materials()) {
            if (!is_standard_material(*drawing, id)) {
                all.push_back(id);
            }
        }
    }
    return all;
}
