// Real drawings: everything draws itself, stays finite and lies within its box.
#include "tests/host/draw/drawing.h"

#include "host/db/block_extents.h"
#include "host/db/light.h"

#include <cstdlib>
#include <filesystem>

namespace {

/// ../shared/drawings beside the source tree, or the folder that QORVANE_SHARED_DRAWINGS names.
std::filesystem::path drawings_folder() {
    if (const char* named = std::getenv("QORVANE_SHARED_DRAWINGS"); named != nullptr) {
        return named;
    }
    return std::filesystem::path(QORVANE_SOURCE_DIR) / ".." / "shared" / "drawings";
}

bool isFinite(const gi::RecordedCall& call) {
    return std::all_of(call.points.begin(), call.points.end(), [](const AcGePoint3d& p) {
        return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
    });
}

/// Draws an entity as it stands in model space and compares it with its box.
void checkEntity(AcDbEntity& entity, const std::set<gi::Primitive>& refuse) {
    gi::Recorder recorder;
    recorder.refuse = refuse;
    recorder.record(&entity);
    std::erase_if(recorder.calls, [](const auto& call) {
        return call.primitive == gi::Primitive::kDraw || !call.accepted;
    });
    for (const gi::RecordedCall& call : recorder.calls) {
        ASSERT_TRUE(isFinite(call));
    }
    // What draws nothing says why, but for lights, which have no faces by nature.
    std::vector<AcDbObjectId> blocks;
    entity.drawnBlocks(blocks);
    if (recorder.calls.empty() && blocks.empty() && AcDbLight::cast(&entity) == nullptr) {
        EXPECT_NE(entity.notRenderedReason(), nullptr);
    }
    const AcDbExtents drawn = recorder.extents();
    AcDbExtents box;
    if (drawn.isEmpty() || !blocks.empty()) {
        return; // invisible parts of blocks are drawn here, and have no part in boxes
    }
    ASSERT_EQ(entity.getGeomExtents(box), Acad::eOk);
    const double slack = 1e-3 * (1 + box.maxPoint().distanceTo(box.minPoint()));
    EXPECT_GE(drawn.minPoint().x, box.minPoint().x - slack);
    EXPECT_GE(drawn.minPoint().y, box.minPoint().y - slack);
    EXPECT_GE(drawn.minPoint().z, box.minPoint().z - slack);
    EXPECT_LE(drawn.maxPoint().x, box.maxPoint().x + slack);
    EXPECT_LE(drawn.maxPoint().y, box.maxPoint().y + slack);
    EXPECT_LE(drawn.maxPoint().z, box.maxPoint().z + slack);
}

TEST(Drawings, DrawThemselvesWithinTheirBoxes) {
    const std::filesystem::path folder = drawings_folder();
    if (!std::filesystem::is_directory(folder)) {
        GTEST_SKIP() << "no drawings in " << folder;
    }
    using gi::Primitive;
    const std::set<Primitive> refusals[] = {{},
                                            {Primitive::kPline, Primitive::kCircle, Primitive::kArc,
                                             Primitive::kEllipticalArc, Primitive::kMesh,
                                             Primitive::kPolygon}};
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        AcDbDatabase db(false);
        std::string error;
        if (file.path().extension() != ".dxf" || db.dxfIn(file.path(), error) != Acad::eOk) {
            continue;
        }
        const AcDbBlockExtentsScope scope;
        const AcDbObjectPointer<AcDbBlockTableRecord> model(db.modelSpaceId());
        ASSERT_TRUE(model);
        for (const AcDbObjectId id : model->entities()) {
            const AcDbObjectPointer<AcDbEntity> entity(id);
            for (const auto& refuse : refusals) {
                SCOPED_TRACE(file.path().filename().string() + " " + entity->dxfName() + " " +
                             std::to_string(id.handle().value()));
                checkEntity(*entity, refuse);
            }
        }
    }
}

} // namespace
