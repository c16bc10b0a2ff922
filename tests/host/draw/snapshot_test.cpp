// Still pictures: known pixels of simple drawings.
#include "tests/host/draw/drawing.h"

#include "host/db/curves.h"
#include "host/db/faces.h"
#include "host/ed/ed.h"
#include "host/gs/painter.h"
#include "host/gs/snapshot.h"

#include <array>
#include <limits>

namespace {

using Pixel = std::array<int, 4>;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr Pixel kNothing{0, 0, 0, 0}, kKey{255, 254, 253, 255}, kRed{255, 0, 0, 255};

struct Snapshots : testing::Test {
    Drawing drawing;
    AcGsView view; ///< from above, 10 by 10 units around the origin
    AcGsSnapshot shot;
    int size = 100;

    Snapshots() {
        view.position = {0, 0, 50};
        view.field_width = view.field_height = 10;
    }
    AcDbFace& face(double left, double bottom, double right, double top, double z, int color,
                   AcDbObjectId block = {}) {
        auto* made = drawing.make<AcDbFace>(
            block.isNull() ? drawing.model() : block, AcGePoint3d{left, bottom, z},
            AcGePoint3d{right, bottom, z}, AcGePoint3d{right, top, z}, AcGePoint3d{left, top, z});
        made->setColor(AcCmEntityColor::index(color));
        return *made;
    }
    void take() { ASSERT_TRUE(acgsTakeSnapshot(drawing.db, view, size, size, shot)); }
    static Pixel at(const AcGsImage& image, int x, int y) {
        const std::size_t first = 4 * static_cast<std::size_t>(y * image.width + x);
        return {image.rgba[first], image.rgba[first + 1], image.rgba[first + 2],
                image.rgba[first + 3]};
    }
    Pixel shaded(int x, int y) const { return at(shot.shaded, x, y); }
    Pixel wire(int x, int y) const { return at(shot.wires, x, y); }
    /// How many pixels are not the picture's empty one.
    static int painted(const AcGsImage& image, const Pixel& empty) {
        int count = 0;
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                count += at(image, x, y) != empty ? 1 : 0;
            }
        }
        return count;
    }
};

TEST_F(Snapshots, ASquareInTheMiddleOfATopView) {
    face(-2, -2, 2, 2, 0, 1);
    face(3, 3.5, 4, 4.5, 0, 5); // top right
    take();
    EXPECT_EQ(shaded(50, 50), kRed) << "faces the viewer: fully lit";
    EXPECT_EQ(shaded(30, 30), kRed);
    EXPECT_EQ(shaded(29, 50), kNothing);
    EXPECT_EQ(shaded(50, 70), kNothing);
    EXPECT_EQ(shaded(0, 0), kNothing);
    EXPECT_EQ(shaded(85, 10), (Pixel{0, 0, 255, 255})) << "upper right is +X, +Y";
    EXPECT_EQ(painted(shot.shaded, kNothing), 40 * 40 + 10 * 10);
    EXPECT_EQ(wire(0, 0), kKey);
    EXPECT_EQ(wire(50, 50), kKey) << "wires only";
    EXPECT_EQ(wire(30, 50), kRed);
    EXPECT_EQ(wire(50, 30), kRed);
    EXPECT_EQ(wire(31, 50), kKey) << "one pixel wide";
    EXPECT_EQ(painted(shot.wires, kKey), 4 * 40 + 4 * 10);
}

TEST_F(Snapshots, BordersAreSmoothAndWiresAreNot) {
    face(-2, -2, 2.05, 2, 0, 1);
    take();
    EXPECT_EQ(shaded(70, 50), (Pixel{255, 0, 0, 127})) << "half covered";
    for (std::size_t i = 0; i < shot.wires.rgba.size(); i += 4) {
        ASSERT_TRUE(shot.wires.rgba[i + 1] == 254 || shot.wires.rgba[i + 1] == 0);
    }
}

TEST_F(Snapshots, TheNearerFaceIsSeenWhateverTheOrder) {
    for (const bool parallel : {true, false}) {
        view.perspective = !parallel;
        Drawing other;
        for (const double z : {1.0, 3.0, 2.0}) {
            auto* made =
                other.make<AcDbFace>(other.model(), AcGePoint3d{-2, -2, z}, AcGePoint3d{2, -2, z},
                                     AcGePoint3d{2, 2, z}, AcGePoint3d{-2, 2, z});
            made->setColor(AcCmEntityColor::index(static_cast<int>(z)));
        }
        ASSERT_TRUE(acgsTakeSnapshot(other.db, view, size, size, shot));
        EXPECT_EQ(shaded(52, 50), (Pixel{0, 255, 0, 255})) << "index colour 3";
    }
}

TEST_F(Snapshots, PerspectiveShrinksWithDistance) {
    view.perspective = true;
    face(-2, -2, 2, 2, 0, 1);
    take();
    EXPECT_EQ(painted(shot.shaded, kNothing), 40 * 40) << "at the target's distance";
    face(-2, -2, 2, 2, 25, 3);
    take();
    EXPECT_EQ(painted(shot.shaded, kNothing), 80 * 80) << "at half of it";
    EXPECT_EQ(shaded(50, 50), (Pixel{0, 255, 0, 255}));
}

TEST_F(Snapshots, WhatIsBehindOrTooNearIsCutOff) {
    view.perspective = true;
    view.position = {0, -50, 1};
    view.target = {0, 0, 1};
    view.up = AcGeVector3d::kZAxis;
    face(-1000, -1000, 1000, 1000, 0, 1); // ground from far behind to far in front
    take();
    EXPECT_EQ(shaded(50, 99)[0] > 50 && shaded(50, 99)[3] == 255, true) << "below the horizon";
    EXPECT_EQ(shaded(50, 40), kNothing) << "above it";
    EXPECT_EQ(shaded(0, 99)[3], 255) << "out to the corners";
    Drawing behind;
    behind.make<AcDbFace>(behind.model(), AcGePoint3d{-5, -60, -5}, AcGePoint3d{5, -60, -5},
                          AcGePoint3d{5, -60, 5}, AcGePoint3d{-5, -60, 5});
    behind.make<AcDbLine>(behind.model(), AcGePoint3d{0, -60, 0}, AcGePoint3d{0, -55, 5});
    ASSERT_TRUE(acgsTakeSnapshot(behind.db, view, size, size, shot));
    EXPECT_EQ(painted(shot.shaded, kNothing), 0);
    EXPECT_EQ(painted(shot.wires, kKey), 0);
    // A line through the camera's plane shows the part in front only.
    behind.make<AcDbLine>(behind.model(), AcGePoint3d{1, -100, 1}, AcGePoint3d{1, 0, 1});
    ASSERT_TRUE(acgsTakeSnapshot(behind.db, view, size, size, shot));
    EXPECT_EQ(painted(shot.wires, kKey), 40) << "from the picture's right edge to the target";
}

TEST_F(Snapshots, ColorsComeFromLayerAndBlock) {
    auto green = std::make_unique<AcDbLayerTableRecord>();
    green->setName("green");
    green->setColor(AcCmEntityColor::index(3));
    AcDbObjectId green_id;
    drawing.db.layerTable().add(std::move(green), green_id);
    const AcDbObjectId block = drawing.block("pair");
    face(-4, -1, -2, 1, 0, 0, block); // by block
    face(2, -1, 4, 1, 0, 256, block); // by layer 0: the layer around
    AcDbBlockReference* reference = drawing.insert(drawing.model(), block);
    reference->setLayer(green_id);
    reference->setColor(AcCmEntityColor::trueColor(0x102030));
    take();
    EXPECT_EQ(shaded(20, 50), (Pixel{0x10, 0x20, 0x30, 255}));
    EXPECT_EQ(shaded(80, 50), (Pixel{0, 255, 0, 255}));
    reference->setColor(AcCmEntityColor::index(7));
    take();
    EXPECT_EQ(shaded(20, 50), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(wire(10, 50), (Pixel{0, 0, 0, 255})) << "white lines would not be seen";
    reference->setColor(AcCmEntityColor::trueColor(kAcGsKeyColor));
    take();
    EXPECT_EQ(wire(10, 50), (Pixel{255, 255, 255, 255})) << "no line has the key colour";
    AcDbObjectPointer<AcDbLayerTableRecord>(green_id, AcDb::kForWrite)->setIsOff(true);
    take();
    EXPECT_EQ(painted(shot.shaded, kNothing) + painted(shot.wires, kKey), 0) << "layer off";
}

TEST_F(Snapshots, CurvesAndThickness) {
    auto* circle =
        drawing.make<AcDbCircle>(drawing.model(), AcGePoint3d{}, AcGeVector3d::kZAxis, 3);
    circle->setColor(AcCmEntityColor::index(1));
    take();
    EXPECT_EQ(painted(shot.shaded, kNothing), 0) << "a curve has no faces";
    EXPECT_EQ(wire(80, 50), kRed);
    circle->setThickness(2);
    view.position = {0, -50, 1};
    view.target = {0, 0, 1};
    view.up = AcGeVector3d::kZAxis;
    take();
    EXPECT_EQ(shaded(50, 50)[3], 255) << "a tube from the side";
    EXPECT_EQ(shaded(50, 38), kNothing);
    EXPECT_GT(shaded(50, 50)[0], shaded(78, 50)[0]) << "darker where it turns away";
    circle->setVisibility(AcDb::kInvisible);
    take();
    EXPECT_EQ(painted(shot.wires, kKey), 0);
}

TEST_F(Snapshots, ConcaveFacesHolesAndCornerLight) {
    gs::Painter painter(view, size, size);
    gs::Face frame;
    frame.corners = {{-4, -4, 50}, {4, -4, 50}, {4, 4, 50}, {0, 4, 50}, {0, 0, 50}, {-4, 0, 50}};
    frame.closeOutline(); // an L: the upper left quarter is missing
    frame.corners.insert(frame.corners.end(), {{1, -3, 50}, {3, -3, 50}, {3, -1, 50}, {1, -1, 50}});
    frame.closeOutline(); // and a hole at the lower right
    painter.fill(frame, 0xff0000);
    AcGsImage image = painter.shaded();
    EXPECT_EQ(at(image, 30, 30), kNothing);
    EXPECT_EQ(at(image, 70, 30), kRed);
    EXPECT_EQ(at(image, 30, 70), kRed);
    EXPECT_EQ(at(image, 70, 70), kNothing);
    EXPECT_EQ(at(image, 85, 85), kRed);
    EXPECT_EQ(painted(image, kNothing), 80 * 80 - 40 * 40 - 20 * 20);

    gs::Face lit;
    lit.corners = {{-5, -5, 40}, {5, -5, 40}, {-5, 5, 40}};
    lit.light = {0, 1, 0};
    lit.closeOutline();
    painter.fill(lit, 0xff0000);
    image = painter.shaded();
    EXPECT_NEAR(at(image, 50, 98)[0], 128, 2) << "half way from dark to bright";
    EXPECT_LT(at(image, 1, 50)[0], 6);
    EXPECT_GT(at(image, 97, 99)[0], 245);
}

TEST_F(Snapshots, NothingAndNonsense) {
    take();
    EXPECT_EQ(painted(shot.shaded, kNothing) + painted(shot.wires, kKey), 0) << "an empty drawing";
    const AcDbObjectId block = drawing.block("b");
    face(-2, -2, 2, 2, 0, 1, block);
    AcDbBlockReference* reference = drawing.insert(drawing.model(), block);
    reference->setScaleFactors({1, kNone, 1});
    drawing.make<AcDbLine>(drawing.model(), AcGePoint3d{kNone, 0, 0}, AcGePoint3d{1, 1, 1});
    drawing.make<AcDbLine>(drawing.model(), AcGePoint3d{-1e308, 0, 0},
                           AcGePoint3d{1e308, 1e308, 0});
    face(-1e300, -2, 1e300, kNone, 0, 1);
    take();
    EXPECT_EQ(painted(shot.shaded, kNothing), 0);
    reference->setScaleFactors({1e-200, 1e-200, 1e-200});
    take();
    reference->setScaleFactors({1e200, 1e200, 1e200});
    take();
    EXPECT_EQ(acgsTakeSnapshot(drawing.db, view, 0, 10, shot), false);
    EXPECT_EQ(acgsTakeSnapshot(drawing.db, view, 10, kAcGsLargestSnapshot + 1, shot), false);
    {
        AcGsView bad = view;
        bad.target = bad.position; // no direction
        EXPECT_FALSE(acgsTakeSnapshot(drawing.db, bad, 10, 10, shot));
    }
    AcGsView bad = view;
    bad.field_width = kNone;
    EXPECT_FALSE(acgsTakeSnapshot(drawing.db, bad, 10, 10, shot));
    bad = view;
    bad.up = {0, 0, 1}; // along the line of sight
    EXPECT_FALSE(acgsTakeSnapshot(drawing.db, bad, 10, 10, shot));
}

TEST_F(Snapshots, ABreakEndsThePicture) {
    face(-2, -2, 2, 2, 0, 1);
    face(-5, -5, 5, 5, -1, 3);
    acedSetUsrBrk(true);
    take();
    acedSetUsrBrk(false);
    EXPECT_EQ(shaded(5, 5), kNothing);
}

} // namespace
