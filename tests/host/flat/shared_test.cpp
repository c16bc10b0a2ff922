// Real drawings: hatches, dimensions and the like are drawn or tell why not.
#include "tests/host/flat/support.h"

#include "host/db/block_extents.h"
#include "host/db/hatch.h"
#include "host/db/unknown.h"

#include <map>

using namespace test_flat;

namespace {

/// Calls `visit` for every entity of all blocks of a real drawing; false when it is not there.
template <class Visit>
bool eachEntity(const std::string& file, const Visit& visit) {
    AcDbDatabase db(false);
    std::string error;
    if (db.dxfIn(test_dxf::shared_drawings() / file, error) != Acad::eOk) {
        return false;
    }
    const AcDbBlockExtentsScope scope;
    for (const AcDbObjectId block : db.blockTable().records()) {
        const AcDbObjectPointer<AcDbBlockTableRecord> record(block);
        for (std::size_t i = 0; record && i < record->entities().size(); ++i) {
            const AcDbObjectPointer<AcDbEntity> entity(record->entities()[i]);
            visit(*entity);
        }
    }
    return true;
}

TEST(SharedDrawings, FilledHatchesAreWithinTheirBoxes) {
    std::size_t filled = 0;
    bool there = false;
    for (const char* file : {"hatches_1.dxf", "floorplan.dxf", "TS1_2018.dxf", "example_2018.dxf",
                             "Ceco.NET-Architecture-Tm-53.dxf", "gh109_1.dxf"}) {
        there |= eachEntity(file, [&](AcDbEntity& entity) {
            auto* hatch = AcDbHatch::cast(&entity);
            if (hatch == nullptr) {
                return;
            }
            SCOPED_TRACE(std::string(file) + " " + std::to_string(hatch->getAcDbHandle().value()));
            for (const std::string& code : codes(*hatch)) {
                EXPECT_NE(code, "hatch-boundary") << "all of these enclose an area";
            }
            AcDbExtents box;
            ASSERT_EQ(hatch->getGeomExtents(box), Acad::eOk);
            const auto calls = drawn(*hatch, 0.01 * box.maxPoint().distanceTo(box.minPoint()));
            const AcGeVector3d size = box.maxPoint() - box.minPoint();
            filled += calls.empty() ? 0 : 1;
            EXPECT_LE(surfaceOf(calls), size.x * size.y * 1.01 + 1e-9);
            EXPECT_NEAR(surfaceOf(calls), areaOf(calls).length(), 1e-6 * surfaceOf(calls));
            EXPECT_GT(surfaceOf(drawn(*hatch)) + (hatch->notRenderedReason() != nullptr ? 1 : 0),
                      0);
        });
    }
    if (!there) {
        GTEST_SKIP() << "no folder " << test_dxf::shared_drawings();
    }
    EXPECT_GT(filled, 0U);
}

TEST(SharedDrawings, DimensionsTablesAndLeadersHavePictures) {
    std::map<std::string, std::size_t> drawn_kinds, told;
    bool there = false;
    for (const char* file : {"TS1_2018.dxf", "example_2000.dxf", "example_2007.dxf",
                             "example_2018.dxf", "example_r12.dxf", "floorplan.dxf", "uncommon.dxf",
                             "entities_r10.dxf", "dimension_in_nested_blocks.dxf"}) {
        there |= eachEntity(file, [&](AcDbEntity& entity) {
            if (const char* reason = entity.notRenderedReason(); reason == nullptr) {
                ++drawn_kinds[entity.dxfName()];
            } else if (AcDbUnknownEntity::cast(&entity) == nullptr) {
                ++told[reason];
                EXPECT_NE(acdbFindDrawCode(reason), nullptr) << reason;
            }
            AcDbExtents box;
            entity.getGeomExtents(box); // ends, whatever the blocks hold
        });
    }
    if (!there) {
        GTEST_SKIP() << "no folder " << test_dxf::shared_drawings();
    }
    EXPECT_GT(drawn_kinds["DIMENSION"], 100U);
    EXPECT_GT(drawn_kinds["ACAD_TABLE"], 2U);
    EXPECT_GT(drawn_kinds["LEADER"], 0U);
    EXPECT_GT(drawn_kinds["MULTILEADER"], 0U);
    EXPECT_EQ(told["unknown-kind"], 0U);
}

} // namespace
