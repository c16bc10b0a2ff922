// Counting what a drawing holds.
#include "host/dxf/facts.h"

#include "host/db/curves.h"
#include "host/db/database_impl.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"

#include <algorithm>

namespace dxf {
namespace {

/// Adds an entity's points to the box when it is a plain one.
void add_plain(const AcDbEntity& entity, AcDbExtents& box) {
    if (const auto* mesh = AcDbSubDMesh::cast(&entity); mesh != nullptr) {
        for (const AcGePoint3d& p : mesh->vertices()) { // the cage, not what it is smoothed to
            box.addPoint(p);
        }
        return;
    }
    static constexpr std::string_view kPlain[] = {
        "LINE", "POINT", "CIRCLE", "ARC", "LWPOLYLINE", "POLYLINE", "3DFACE", "SOLID", "TRACE"};
    const std::string name = entity.dxfName();
    if (std::find(std::begin(kPlain), std::end(kPlain), name) == std::end(kPlain)) {
        return;
    }
    AcDbExtents own;
    if (entity.getGeomExtents(own) == Acad::eOk) {
        box.addExt(own);
    }
}

void count_space(const AcDbBlockTableRecord& block, std::map<std::string, std::uint64_t>& counts,
                 DrawingFacts& facts, AcDbExtents* plain) {
    for (const AcDbObjectId id : block.entities()) {
        const AcDbObjectPointer<AcDbEntity> entity(id);
        if (!entity) {
            continue;
        }
        const std::string name = entity->dxfName();
        ++counts[name];
        facts.lights += name == "LIGHT" ? 1 : 0;
        if (plain != nullptr) {
            add_plain(*entity, *plain);
        }
    }
}

void collect_layers(AcDbDatabase& db, DrawingFacts& facts) {
    for (const AcDbObjectId id : db.layerTable().records()) {
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(id);
        if (!layer) {
            continue;
        }
        LayerFacts& entry = facts.layers[layer->getName()];
        entry.off = layer->isOff();
        entry.frozen = layer->isFrozen();
        entry.color = layer->colorIndex();
        if (layer->color().isByColor()) {
            entry.true_color = layer->color().word() & 0xffffff;
        }
    }
}

/// Every drawing has the layer of dimension points, told or not.
void complete_layers(DrawingFacts& facts) {
    const bool there = std::any_of(facts.layers.begin(), facts.layers.end(), [](const auto& entry) {
        return fold_name(entry.first) == "defpoints";
    });
    if (!there) {
        facts.layers["Defpoints"] = {};
    }
}

void collect_blocks(AcDbDatabase& db, DrawingFacts& facts) {
    AcDbExtents plain;
    for (const AcDbObjectId id : db.blockTable().records()) {
        const AcDbObjectPointer<AcDbBlockTableRecord> block(id);
        if (!block) {
            continue;
        }
        if (id == db.modelSpaceId()) {
            count_space(*block, facts.modelspace, facts, &plain);
        } else if (block->isLayout()) {
            count_space(*block, facts.paperspace, facts, nullptr);
        } else {
            ++facts.blocks;
            count_space(*block, facts.in_blocks, facts, nullptr);
        }
    }
    if (!plain.isEmpty()) {
        const AcGePoint3d &a = plain.minPoint(), &b = plain.maxPoint();
        facts.extents_plain = {{{a.x, a.y, a.z}, {b.x, b.y, b.z}}};
    }
}

} // namespace

DrawingFacts collect_facts(AcDbDatabase& db) {
    DrawingFacts facts;
    facts.file_version = DxfAccess::impl(db).document->version_text;
    const int version = DxfAccess::impl(db).document->version;
    facts.acadver = version <= 1009 ? "AC1009" : db.versionCode();
    // A sound drawing without any header is taken for one in metres, as other programs do; of a
    // damaged one nothing is known.
    constexpr int kMeters = 6;
    const bool sound = db.loadReport().repaired.empty() && db.loadReport().lost.empty();
    const bool told = DxfAccess::impl(db).document->section("HEADER") != nullptr ||
                      !db.headerVar("$INSUNITS").empty();
    facts.insunits = told || !sound ? db.insunits() : kMeters;
    collect_layers(db, facts);
    complete_layers(facts);
    collect_blocks(db, facts);
    for (const AcDbObjectId id : db.materials()) {
        if (const AcDbObjectPointer<AcDbMaterial> material(id); material) {
            facts.materials.push_back(material->name());
        }
    }
    for (const AcDbObjectId id : db.viewTable().records()) {
        if (const AcDbObjectPointer<AcDbViewTableRecord> view(id); view) {
            facts.views.push_back(view->getName());
        }
    }
    facts.report = db.loadReport();
    return facts;
}

} // namespace dxf
