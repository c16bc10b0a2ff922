// Entities that are drawn by their stored graphics.
#include "encoder.h"

#include "../db/support.h"
#include "host/db/block_reference.h"
#include "host/db/unknown.h"
#include "host/gi/recorder.h"

#include <gmock/gmock.h>

using namespace test_dxf;
using encode::Data;
using encode::Graphics;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

Graphics square() {
    return Graphics().add(7, Data().points({{0, 0, 1}, {4, 0, 1}, {4, 2, 1}, {0, 2, 1}}));
}

std::string drawing(const std::string& entities) {
    return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n"
           "0\nSECTION\n2\nCLASSES\n0\nCLASS\n1\nOTHER\n2\nAcDbOther\n3\nX\n"
           "0\nCLASS\n1\nAEC_WALL\n2\nAecDbWall\n3\nX\n0\nENDSEC\n"
           "0\nSECTION\n2\nENTITIES\n" +
           entities + "0\nENDSEC\n0\nEOF\n";
}

std::string proxy_tags(const std::string& graphics) {
    // The bytes behind the second length are the entity's own, not a picture.
    return "0\nACAD_PROXY_ENTITY\n5\nA1\n100\nAcDbEntity\n8\n0\n100\nAcDbProxyEntity\n90\n498\n91\n"
           "501\n" +
           graphics + "93\n16\n310\nFFFF\n94\n0\n";
}

template <class T>
const T* only(AcDbDatabase& db) {
    const AcDbObjectPointer<AcDbBlockTableRecord> space(db.modelSpaceId());
    EXPECT_THAT(space->entities(), SizeIs(1));
    const AcDbObjectPointer<T> entity(space->entities()[0]);
    return entity.object();
}

std::vector<std::string> codes(const AcDbEntity& entity) {
    std::vector<AcDbDrawFinding> findings;
    entity.drawFindings(findings);
    std::vector<std::string> list;
    for (const AcDbDrawFinding& finding : findings) {
        EXPECT_NE(acdbFindDrawCode(finding.code), nullptr) << finding.code;
        list.emplace_back(finding.code);
    }
    return list;
}

TEST(ProxyEntity, DrawsItsGraphicsAndKnowsItsKind) {
    const std::string bytes = drawing(proxy_tags(square().tags(92)));
    const auto db = load(bytes);
    const auto* proxy = only<AcDbProxyEntity>(*db);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(proxy->originalClassName(), "AecDbWall");
    EXPECT_EQ(proxy->originalDxfName(), "AEC_WALL");
    EXPECT_EQ(proxy->dxfName(), "ACAD_PROXY_ENTITY");
    EXPECT_EQ(proxy->graphics(), square().bytes());
    EXPECT_EQ(proxy->notRenderedReason(), nullptr);
    EXPECT_THAT(codes(*proxy), IsEmpty());
    AcDbExtents box;
    ASSERT_EQ(proxy->getGeomExtents(box), Acad::eOk);
    EXPECT_EQ(box.maxPoint(), (AcGePoint3d{4, 2, 1}));
    gi::Recorder recorder(db.get());
    recorder.record(const_cast<AcDbProxyEntity*>(proxy));
    EXPECT_THAT(recorder.callsOf(gi::Primitive::kPolygon), SizeIs(1));
    EXPECT_EQ(save(*db), bytes);
}

TEST(ProxyEntity, TellsWhatItLacks) {
    const auto empty = load(drawing(proxy_tags("")));
    EXPECT_THAT(codes(*only<AcDbProxyEntity>(*empty)), testing::ElementsAre("proxy"));
    const Graphics line = Graphics().add(6, Data().points({{0, 0, 0}, {1, 0, 0}}));
    const auto thin = load(drawing(proxy_tags(line.tags(160))));
    EXPECT_STREQ(only<AcDbProxyEntity>(*thin)->notRenderedReason(), "curve-without-thickness");
    std::string cut = square().tags(92);
    cut.resize(cut.size() - 21); // the last bytes of its last line
    const auto damaged = load(drawing(proxy_tags(cut + "\n")));
    EXPECT_THAT(codes(*only<AcDbProxyEntity>(*damaged)),
                testing::ElementsAre("proxy-damaged", "proxy"));
}

TEST(ProxyEntity, UnknownKindsHaveTheirGraphicsAmongWhatAllEntitiesShare) {
    const auto db = load(drawing("0\nAEC_DOOR\n5\nA1\n100\nAcDbEntity\n8\n0\n" + square().tags(92) +
                                 "100\nAecDbDoor\n92\n4\n310\nFFFFFFFF\n"));
    const auto* door = only<AcDbUnknownEntity>(*db);
    EXPECT_EQ(door->graphics(), square().bytes());
    EXPECT_EQ(door->notRenderedReason(), nullptr);
    const auto bare = load(drawing("0\nAEC_DOOR\n5\nA1\n100\nAcDbEntity\n8\n0\n100\nAecDbDoor\n"));
    EXPECT_THAT(codes(*only<AcDbUnknownEntity>(*bare)), testing::ElementsAre("unknown-kind"));
}

TEST(ProxyEntity, WallsOfAnArchitecturalProgram) {
    const auto file = shared_drawings() / "gh109_1.dxf";
    if (!std::filesystem::exists(file)) {
        GTEST_SKIP() << "the shared drawings are not there";
    }
    const auto db = load(read_file(file));
    const AcDbObjectPointer<AcDbBlockTableRecord> space(db->modelSpaceId());
    int proxies = 0, walls = 0, boxes = 0, faces = 0;
    for (const AcDbObjectId id : space->entities()) {
        const AcDbObjectPointer<AcDbProxyEntity> proxy(id);
        if (!proxy) {
            continue;
        }
        ++proxies;
        AcDbExtents box;
        walls += proxy->originalDxfName() == "TCH_WALL" ? 1 : 0;
        boxes += proxy->getGeomExtents(box) == Acad::eOk ? 1 : 0;
        faces += proxy->notRenderedReason() == nullptr ? 1 : 0;
        EXPECT_THAT(codes(*proxy), testing::Not(testing::Contains("proxy-damaged")));
    }
    EXPECT_EQ(proxies, 25);
    EXPECT_EQ(boxes, 23); // two hold nothing but texts and traits
    EXPECT_GT(walls, 0);
    EXPECT_GT(faces, 0);
}

} // namespace
