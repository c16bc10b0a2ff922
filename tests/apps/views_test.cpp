#include "apps/views.h"

#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/faces.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace apps;

namespace {

/// Largest picture coordinates, 1 at the picture's edge, of the box's corners in the view.
struct Coverage {
    double x = 0, y = 0;
};

Coverage coverage(const AcDbExtents& box, const AcGsView& view) {
    const AcGeVector3d forward = (view.target - view.position).normal();
    const AcGeVector3d right = forward.crossProduct(view.up).normal();
    const double target_distance = view.position.distanceTo(view.target);
    Coverage result;
    for (int i = 0; i < 8; ++i) {
        const AcGePoint3d& a = box.minPoint();
        const AcGePoint3d& b = box.maxPoint();
        const AcGePoint3d p{(i & 1) != 0 ? a.x : b.x, (i & 2) != 0 ? a.y : b.y,
                            (i & 4) != 0 ? a.z : b.z};
        const AcGeVector3d v = p - view.position;
        const double depth = v.dotProduct(forward);
        EXPECT_GT(depth, 0) << "a corner lies behind the camera";
        const double scale = view.perspective ? target_distance / depth : 1.0;
        result.x =
            std::max(result.x, std::abs(v.dotProduct(right)) * scale / (view.field_width / 2));
        result.y =
            std::max(result.y, std::abs(v.dotProduct(view.up)) * scale / (view.field_height / 2));
    }
    return result;
}

AcDbExtents box_of(const AcGePoint3d& a, const AcGePoint3d& b) {
    AcDbExtents box;
    box.addPoint(a);
    box.addPoint(b);
    return box;
}

TEST(Framing, PerspectivesHoldTheWholeBoxAndFillThePicture) {
    const AcDbExtents boxes[] = {box_of({0, 0, 0}, {20, 30, 8}), box_of({0, 0, 0}, {300, 1, 1}),
                                 box_of({0, 0, 0}, {1, 1, 90}),
                                 box_of({4e6, 5e6, 100}, {4.00002e6, 5.00001e6, 103}),
                                 box_of({0, 0, 0}, {100, 80, 0})};
    for (const AcDbExtents& box : boxes) {
        for (const double aspect : {1.5, 0.6}) {
            const AcGsView view =
                frame_perspective(box, AcGeVector3d{1, -1, 0.6}.normal(), 0.9, aspect);
            const Coverage c = coverage(box, view);
            EXPECT_LE(std::max(c.x, c.y), 1.0);
            EXPECT_GE(std::max(c.x, c.y), 0.85) << "the picture is mostly empty";
            EXPECT_NEAR(view.field_width / view.field_height, aspect, 1e-9);
            EXPECT_NEAR(view.up.dotProduct((view.target - view.position).normal()), 0, 1e-9);
            EXPECT_GT(view.up.z, 0);
        }
    }
}

TEST(Framing, ParallelViewsHoldTheWholeBox) {
    const AcDbExtents box = box_of({-5, 2, 0}, {20, 30, 8});
    for (const AcGeVector3d& direction :
         {AcGeVector3d{0, 0, 1}, AcGeVector3d{0, -1, 0}, AcGeVector3d{1, -1, 1}}) {
        const AcGsView view = frame_parallel(box, direction, 1.5);
        const Coverage c = coverage(box, view);
        EXPECT_FALSE(view.perspective);
        EXPECT_LE(std::max(c.x, c.y), 1.0);
        EXPECT_GE(std::max(c.x, c.y), 0.9);
    }
}

class Views : public ::testing::Test {
protected:
    void SetUp() override {
        add({0, 0, 0}, {10, 0, 0}, {10, 8, 3});
        AcDbObjectPointer<AcDbBlockTableRecord> space(database_.modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        // A line has no faces, so it does not count for framing.
        space->appendAcDbEntity(
            std::make_unique<AcDbLine>(AcGePoint3d{-500, 0, 0}, AcGePoint3d{500, 0, 0}), id);
    }
    void add(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
        AcDbObjectPointer<AcDbBlockTableRecord> space(database_.modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        space->appendAcDbEntity(std::make_unique<AcDbFace>(a, b, c, c), id);
    }
    bool resolve(const std::string& word) {
        return resolve_view(database_, word, 1.5, resolved_, error_);
    }
    AcDbDatabase database_;
    ResolvedView resolved_;
    std::string error_;
};

TEST_F(Views, ExtentsTakeWhatGivesFaces) {
    const AcDbExtents box = rendered_extents(database_);
    EXPECT_DOUBLE_EQ(box.minPoint().x, 0);
    EXPECT_DOUBLE_EQ(box.maxPoint().x, 10);
}

TEST_F(Views, ReferencesCountWithTheFacesOfTheirBlocksOnly) {
    auto block = std::make_unique<AcDbBlockTableRecord>();
    block->setName("chair");
    AcDbObjectId block_id, id;
    ASSERT_EQ(database_.blockTable().add(std::move(block), block_id), Acad::eOk);
    {
        AcDbObjectPointer<AcDbBlockTableRecord> record(block_id, AcDb::kForWrite);
        record->appendAcDbEntity(
            std::make_unique<AcDbFace>(AcGePoint3d{0, 0, 0}, AcGePoint3d{1, 0, 0},
                                       AcGePoint3d{1, 1, 0}, AcGePoint3d{1, 1, 0}),
            id);
        record->appendAcDbEntity(
            std::make_unique<AcDbLine>(AcGePoint3d{0, 0, 0}, AcGePoint3d{9e6, 0, 0}), id);
        auto itself = std::make_unique<AcDbBlockReference>();
        itself->setBlockTableRecord(block_id);
        itself->setPosition({1e7, 0, 0});
        record->appendAcDbEntity(std::move(itself), id);
    }
    auto array = std::make_unique<AcDbMInsertBlock>();
    array->setBlockTableRecord(block_id);
    array->setPosition({100, 0, 0});
    array->setArray(3, 2, 10, 5);
    {
        AcDbObjectPointer<AcDbBlockTableRecord> space(database_.modelSpaceId(), AcDb::kForWrite);
        ASSERT_EQ(space->appendAcDbEntity(std::move(array), id), Acad::eOk);
    }
    const AcDbExtents box = rendered_extents(database_);
    EXPECT_NEAR(box.maxPoint().x, 121, 1e-9);
    EXPECT_NEAR(box.maxPoint().y, 8, 1e-9) << "the face of model space is higher up";
}

TEST_F(Views, AutomaticLooksFromTheSouthEastAndIsPerspective) {
    ASSERT_TRUE(resolve("auto")) << error_;
    const AcGeVector3d direction = resolved_.view.position - resolved_.view.target;
    EXPECT_TRUE(resolved_.view.perspective);
    EXPECT_GT(direction.x, 0);
    EXPECT_LT(direction.y, 0);
    EXPECT_GT(direction.z, 0);
}

TEST_F(Views, AnActivePerspectiveIsTakenAsItStands) {
    AcGsView view = frame_perspective(rendered_extents(database_), {-1, 0, 0}, 0.8, 1.5);
    ASSERT_TRUE(acgsSetViewParameters(database_.activeViewportId(), view));
    ASSERT_TRUE(resolve("auto")) << error_;
    EXPECT_LT(resolved_.view.position.x, 0);
}

TEST_F(Views, CamerasInWords) {
    ASSERT_TRUE(resolve("eye=0,-20,2;target=0,0,2;fov=90")) << error_;
    EXPECT_EQ(resolved_.name, "camera");
    EXPECT_NEAR(resolved_.view.field_width, 40, 1e-9);
    EXPECT_NEAR(resolved_.view.up.z, 1, 1e-12);
    for (const char* bad : {"eye=1,2,3", "eye=1,2;target=0,0,0", "eye=0,0,0;target=0,0,0",
                            "eye=0,0,1;target=0,0,0;fov=180", "eye=0,0,1;target=0,0,0;foo=1",
                            "eye=nan,0,1;target=0,0,0"}) {
        EXPECT_FALSE(resolve(bad)) << bad;
        EXPECT_FALSE(error_.empty());
    }
}

TEST_F(Views, AMissingNamedViewListsWhatIsThere) {
    EXPECT_FALSE(resolve("Garten"));
    EXPECT_EQ(error_, "there is no view 'Garten'; the drawing has no named views");
    auto record = std::make_unique<AcDbViewTableRecord>();
    record->setName("Süd Ansicht");
    AcDbObjectId id;
    ASSERT_EQ(database_.viewTable().add(std::move(record), id), Acad::eOk);
    EXPECT_FALSE(resolve("Garten"));
    EXPECT_EQ(error_, "there is no view 'Garten'; the drawing has Süd Ansicht");
    EXPECT_TRUE(resolve("Süd Ansicht"));
}

TEST_F(Views, ClippingPlanesAreTold) {
    AcDbDatabase drawing(false);
    std::string error;
    ASSERT_EQ(drawing.dxfInMemory("0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nVIEW\n70\n2\n"
                                  "0\nVIEW\n2\nCut\n70\n0\n40\n5\n41\n8\n11\n1\n21\n0\n31\n0\n"
                                  "12\n0\n22\n0\n32\n0\n42\n50\n43\n2\n44\n-2\n71\n7\n"
                                  "0\nVIEW\n2\nWhole\n70\n0\n40\n5\n41\n8\n11\n1\n21\n0\n31\n0\n"
                                  "71\n1\n0\nENDTAB\n0\nENDSEC\n0\nEOF\n",
                                  error),
              Acad::eOk);
    ASSERT_TRUE(resolve_view(drawing, "cut", 1.5, resolved_, error_)) << error_;
    EXPECT_NE(resolved_.remark.find("'Cut' has clipping planes"), std::string::npos);
    EXPECT_TRUE(resolved_.view.perspective);
    ASSERT_TRUE(resolve_view(drawing, "whole", 1.5, resolved_, error_)) << error_;
    EXPECT_EQ(resolved_.remark, "");
}

} // namespace
