// Shapes kept while blocks are drawn again and again.
#include "tests/host/draw/drawing.h"

#include "host/db/faces.h"
#include "host/gi/shape_cache.h"

using gi::ShapeCache;
using testing::SizeIs;

namespace {

gi::ShapeData triangle(double size, std::size_t spare = 0) {
    gi::ShapeData shape;
    gi::ShapeShell& shell = shape.shells.emplace_back();
    shell.points.reserve(3 + spare);
    shell.points = {{0, 0, 0}, {size, 0, 0}, {0, size, 0}};
    shell.face_list = {3, 0, 1, 2};
    return shape;
}

struct Counted {
    Drawing drawing;
    int made = 0;
    AcDbObjectId first = drawing.make<AcDbFace>(drawing.model())->objectId();
    AcDbObjectId second = drawing.make<AcDbFace>(drawing.model())->objectId();

    double sizeOf(const gi::ShapeKey& key) {
        const auto shape = ShapeCache::get(key, [this] { return triangle(++made); });
        return shape->shells.front().points[1].x;
    }
};

} // namespace

TEST(ShapeCache, KeepsOnlyInAScopeAndInsideAReference) {
    Counted c;
    EXPECT_EQ(c.sizeOf({c.first}), 1);
    {
        const gi::ShapeCacheScope scope;
        EXPECT_EQ(c.sizeOf({c.first}), 2) << "what stands in the drawing itself is drawn once";
        const gi::ShapeReplayScope replay;
        EXPECT_EQ(c.sizeOf({c.first}), 3);
        EXPECT_EQ(c.sizeOf({c.first}), 3);
        EXPECT_EQ(c.sizeOf({AcDbObjectId()}), 4);
        EXPECT_EQ(c.sizeOf({AcDbObjectId()}), 5) << "without an id there is nothing to know it by";
        {
            const gi::ShapeCacheScope inner(1);
            EXPECT_EQ(c.sizeOf({c.first}), 3) << "the outer scope's shapes and limit hold on";
        }
        EXPECT_EQ(ShapeCache::size(), 1U);
    }
    EXPECT_EQ(ShapeCache::size(), 0U);
    EXPECT_EQ(ShapeCache::bytes(), 0U);
    EXPECT_EQ(ShapeCache::find({c.first}), nullptr);
}

TEST(ShapeCache, EntityDeviationAndKindTellShapesApart) {
    Counted c;
    const gi::ShapeCacheScope scope;
    const gi::ShapeReplayScope replay;
    const std::vector<gi::ShapeKey> keys{
        {c.first}, {c.second}, {c.first, 0.25}, {c.first, 0.5}, {c.first, 0.25, 1}};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(c.sizeOf(keys[i]), static_cast<double>(i + 1));
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(c.sizeOf(keys[i]), static_cast<double>(i + 1));
    }
    EXPECT_EQ(c.sizeOf({c.first, 0.25 * (1 + 1e-12)}), 3) << "the same as a float";
}

TEST(ShapeCache, WhatWasAskedForLongestAgoGoesFirst) {
    Counted c;
    const AcDbObjectId third = c.drawing.make<AcDbFace>(c.drawing.model())->objectId();
    const gi::ShapeCacheScope scope(10'000); // two of the shapes below, not three
    const gi::ShapeReplayScope replay;
    const auto put = [](AcDbObjectId id) { return ShapeCache::put({id}, triangle(1, 150)); };
    const auto held = put(c.first);
    put(c.second);
    EXPECT_NE(ShapeCache::find({c.first}), nullptr);
    put(third);
    EXPECT_NE(ShapeCache::find({c.first}), nullptr);
    EXPECT_EQ(ShapeCache::find({c.second}), nullptr);
    EXPECT_LE(ShapeCache::bytes(), 10'000U);
    put(third);
    EXPECT_EQ(ShapeCache::size(), 2U) << "put again, a shape takes its own place";
    put(c.second);
    put(third);
    EXPECT_EQ(ShapeCache::find({c.first}), nullptr);
    EXPECT_THAT(held->shells.front().points, SizeIs(3)) << "whoever holds a shape keeps it";
    EXPECT_NE(ShapeCache::put({c.first}, triangle(1, 1000)), nullptr);
    EXPECT_EQ(ShapeCache::find({c.first}), nullptr) << "larger than all that may be kept";
    EXPECT_EQ(ShapeCache::size(), 2U);
}

TEST(ShapeCache, ASmoothedMeshInABlockIsComputedOnceAndDrawnTheSame) {
    Drawing drawing;
    const AcDbObjectId block = drawing.block("ball");
    auto* ball = drawing.make<AcDbSubDMesh>(block);
    ball->set({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
              {3, 0, 2, 1, 3, 0, 1, 3, 3, 1, 2, 3, 3, 2, 0, 3}, 2);
    AcDbBlockReference* reference = drawing.insert(drawing.model(), block);
    const auto draw = [&] {
        gi::Recorder recorder;
        recorder.record(reference);
        return recorder.callsOf(gi::Primitive::kShell);
    };
    const auto plain = draw();
    ASSERT_THAT(plain, SizeIs(1));
    const gi::ShapeCacheScope scope;
    const auto first = draw();
    EXPECT_EQ(ShapeCache::size(), 1U);
    ball->set({{0, 0, 0}, {9, 0, 0}, {0, 1, 0}}, {3, 0, 1, 2}, 0); // shows that it is not asked
    const auto again = draw();
    ASSERT_THAT(again, SizeIs(1));
    EXPECT_EQ(again[0].faces, plain[0].faces);
    EXPECT_THAT(again[0].normals, SizeIs(plain[0].normals.size()));
    ASSERT_THAT(again[0].points, SizeIs(plain[0].points.size()));
    for (std::size_t i = 0; i < plain[0].points.size(); ++i) {
        EXPECT_THAT(again[0].points[i], IsNear(plain[0].points[i]));
        EXPECT_THAT(first[0].points[i], IsNear(plain[0].points[i]));
    }
}
