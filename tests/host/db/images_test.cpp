// Pictures: where they lie, which file they mean, how they are read and drawn.
#include "support.h"

#include "host/db/draw_report.h"
#include "host/db/image.h"
#include "host/db/support_files.h"
#include "host/gi/recorder.h"

#include <gmock/gmock.h>

#include <unistd.h>

using namespace test_dxf;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// An image of 200 by 100 pixels, 2 units a pixel along Y and 3 along Z; `extra` behind its tags.
std::string image(const std::string& extra = "", const char* size = "13\n200.0\n23\n100.0\n") {
    return "0\nIMAGE\n5\nA1\n100\nAcDbEntity\n8\n0\n100\nAcDbRasterImage\n90\n0\n10\n1.0\n20\n2.0\n"
           "30\n3.0\n11\n0.0\n21\n2.0\n31\n0.0\n12\n0.0\n22\n0.0\n32\n3.0\n" +
           std::string(size) + "340\nD1\n70\n7\n281\n60\n282\n170\n283\n-5\n" + extra;
}

std::string drawing(const std::string& entity, const std::string& file = "wood.png",
                    const std::string& objects = "") {
    return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" +
           entity +
           "0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n330\n0\n100\nAcDbDictionary\n"
           "3\nACAD_IMAGE_VARS\n350\nE1\n"
           "0\nIMAGEDEF\n5\nD1\n330\nC\n100\nAcDbRasterImageDef\n90\n0\n1\n" +
           file + "\n10\n200.0\n20\n100.0\n11\n0.5\n21\n0.5\n280\n1\n281\n5\n" + objects +
           "0\nENDSEC\n0\nEOF\n";
}

AcDbRasterImage& only_image(AcDbDatabase& db) {
    auto* found = first_entity<AcDbRasterImage>(db);
    EXPECT_NE(found, nullptr);
    return *found;
}

/// A folder that is removed with all that is in it, and no loader left behind.
class Images : public testing::Test {
protected:
    void SetUp() override {
        folder = std::filesystem::temp_directory_path() /
                 ("qorvane_images_" + std::to_string(::getpid()));
        std::filesystem::create_directories(folder / "pictures");
        std::filesystem::create_directories(folder / "support");
    }
    void TearDown() override {
        acdbSetImageLoader({});
        acdbSetSupportFolders({});
        std::error_code code;
        std::filesystem::remove_all(folder, code);
    }
    std::filesystem::path put(const std::string& name) const {
        std::ofstream(folder / name) << "picture";
        return folder / name;
    }
    std::unique_ptr<AcDbDatabase> open(const std::string& bytes) const {
        auto db = load(bytes);
        db->setFilename((folder / "plan.dxf").string());
        return db;
    }
    std::filesystem::path folder;
};

TEST_F(Images, EdgesAreThoseOfTheWholePicture) {
    const auto db = load(drawing(image()));
    const AcDbRasterImage& read = only_image(*db);
    AcGePoint3d origin;
    AcGeVector3d u, v;
    ASSERT_TRUE(read.getOrientation(origin, u, v));
    EXPECT_EQ(origin, (AcGePoint3d{1, 2, 3}));
    EXPECT_EQ(u, (AcGeVector3d{0, 400, 0}));
    EXPECT_EQ(v, (AcGeVector3d{0, 0, 300}));
    AcDbExtents box;
    ASSERT_EQ(read.getGeomExtents(box), Acad::eOk);
    EXPECT_EQ(box.minPoint(), (AcGePoint3d{1, 2, 3}));
    EXPECT_EQ(box.maxPoint(), (AcGePoint3d{1, 402, 303}));
    EXPECT_TRUE(read.isSetDisplayOpt(AcDbRasterImage::kClip));
    EXPECT_FALSE(read.isSetDisplayOpt(AcDbRasterImage::kTransparent));
    EXPECT_EQ(read.brightness(), 60);
    EXPECT_EQ(read.contrast(), 100) << "held in range";
    EXPECT_EQ(read.fade(), 0);
    EXPECT_TRUE(read.isKindOf(AcDbImage::desc()));
    EXPECT_EQ(save(*db), drawing(image()));
}

TEST_F(Images, ClipBoundaryCountsPixelsFromTheUpperLeftCorner) {
    const std::string clip = "280\n1\n71\n1\n91\n2\n14\n-0.5\n24\n-0.5\n14\n99.5\n24\n24.5\n";
    const auto db = load(drawing(image(clip)));
    AcDbRasterImage& read = only_image(*db);
    ASSERT_TRUE(read.isClipped());
    AcDbExtents box;
    ASSERT_EQ(read.getGeomExtents(box), Acad::eOk);
    EXPECT_EQ(box.minPoint(), (AcGePoint3d{1, 2, 228})) << "the upper quarter";
    EXPECT_EQ(box.maxPoint(), (AcGePoint3d{1, 202, 303})) << "of the left half";
    EXPECT_EQ(read.setClipBoundary(AcDbRasterImage::kPoly, {{0, 0}, {1, 1}}), Acad::eInvalidInput);
    EXPECT_EQ(read.setClipBoundary(AcDbRasterImage::kPoly, {{-0.5, -0.5}, {9.5, 9.5}, {-0.5, 9.5}}),
              Acad::eOk);
    const auto again = load(save(*db));
    EXPECT_THAT(only_image(*again).clipBoundary(), SizeIs(3));
    EXPECT_THAT(only_image(*again).getVertices(), SizeIs(4)) << "closed";
    EXPECT_EQ(only_image(*again).getVertices()[1], (AcGePoint3d{1, 22, 273}));
}

TEST_F(Images, DrawThePictureAndItsFrame) {
    const auto frames = [](const std::string& objects, const std::string& extra = "") {
        const auto db = load(drawing(image(extra), "wood.png", objects));
        gi::Recorder recorder(db.get());
        recorder.record(&only_image(*db));
        EXPECT_THAT(recorder.callsOf(gi::Primitive::kImage), SizeIs(1));
        return recorder.callsOf(gi::Primitive::kPolyline);
    };
    const auto shown = frames("");
    ASSERT_THAT(shown, SizeIs(1));
    EXPECT_THAT(shown[0].points, SizeIs(5));
    const std::string variables = "0\nRASTERVARIABLES\n5\nE1\n100\nAcDbRasterVariables\n90\n0\n";
    EXPECT_THAT(frames(variables + "70\n0\n"), IsEmpty());
    EXPECT_THAT(frames(variables + "70\n1\n"), SizeIs(1));
}

TEST_F(Images, FileIsLookedForInOrder) {
    const auto db = open(drawing(image(), "..\\maps\\pictures\\wood.png"));
    AcDbRasterImage& read = only_image(*db);
    acdbSetSupportFolders({folder / "support"});
    EXPECT_EQ(read.sourceFileName(), "..\\maps\\pictures\\wood.png");
    EXPECT_EQ(read.activeFileName(), "");
    const auto support = put("support/wood.png");
    EXPECT_EQ(read.activeFileName(), support);
    const auto beside = put("wood.png");
    EXPECT_EQ(read.activeFileName(), beside);
    const auto relative = put("pictures/oak.png");
    EXPECT_EQ(acdbFindFile(db.get(), ".\\pictures\\oak.png").lexically_normal(), relative);
    EXPECT_EQ(acdbFindFile(db.get(), "C:\\Users\\x\\wood.png"), beside);
    EXPECT_EQ(acdbFindFile(nullptr, relative.string()), relative) << "as stored";
    for (const std::string& name :
         {std::string(), std::string("."), std::string("pictures"), std::string("/dev/zero"),
          std::string(100000, 'x'), std::string("wood.png\0x", 10)}) {
        EXPECT_EQ(acdbFindFile(db.get(), name), "") << name.substr(0, 20);
    }
}

TEST_F(Images, PixelsComeThroughTheLoader) {
    put("pictures/wood.png");
    const auto db = open(drawing(image(), "pictures\\wood.png"));
    const AcDbObjectPointer<AcDbRasterImageDef> definition(only_image(*db).imageDefId());
    ASSERT_TRUE(definition);
    AcDbImageData data;
    EXPECT_FALSE(definition->imageData(data)) << "no loader";
    std::filesystem::path asked;
    acdbSetImageLoader([&](const std::filesystem::path& file, AcDbImageData& out) {
        asked = file;
        out = {2, 1, {1, 2, 3, 4, 5, 6, 7, 8}};
        return true;
    });
    ASSERT_TRUE(definition->imageData(data));
    EXPECT_EQ(asked, folder / "pictures/wood.png");
    EXPECT_EQ(data.width, 2u);
    EXPECT_EQ(data.rgba[4], 5);

    const auto refused = [&](AcDbImageData given) {
        acdbSetImageLoader([given](const std::filesystem::path&, AcDbImageData& out) {
            out = given;
            return true;
        });
        return !definition->imageData(data) && data.rgba.empty() && data.width == 0;
    };
    EXPECT_TRUE(refused({0, 0, {}})) << "empty";
    EXPECT_TRUE(refused({2, 2, std::vector<std::uint8_t>(15)})) << "too few bytes";
    EXPECT_TRUE(refused({40000, 1, std::vector<std::uint8_t>(160000)})) << "too wide";
    acdbSetImageLoader([](const std::filesystem::path&, AcDbImageData&) -> bool {
        throw std::runtime_error("broken file");
    });
    EXPECT_FALSE(definition->imageData(data));
}

/// What an interface that takes pictures gets.
TEST_F(Images, InterfacesGetPixelsWhenTheyAsk) {
    put("wood.png");
    int loads = 0;
    acdbSetImageLoader([&](const std::filesystem::path&, AcDbImageData& out) {
        ++loads;
        out = {1, 1, {10, 20, 30, 255}};
        return true;
    });
    const auto db = open(drawing(image(), "wood.png"));
    gi::Recorder recorder(db.get());
    recorder.record(&only_image(*db));
    EXPECT_EQ(loads, 0) << "nobody asked";
    const AcGiImageBGRA32 source = acdbImageSource(only_image(*db));
    EXPECT_EQ(source.width, 200u);
    std::uint32_t width = 0, height = 0;
    std::vector<std::uint8_t> pixels;
    ASSERT_TRUE(source.load(width, height, pixels));
    EXPECT_EQ(pixels, (std::vector<std::uint8_t>{30, 20, 10, 255}));
    EXPECT_EQ(loads, 1);
}

TEST_F(Images, DamageGivesNoGeometry) {
    AcGePoint3d origin;
    AcGeVector3d u, v;
    AcDbExtents box;
    const auto lost = load(drawing(image("340\nFFFF\n", ""))); // no size, no definition
    const AcDbRasterImage& nothing = only_image(*lost);
    EXPECT_EQ(nothing.sourceFileName(), "");
    EXPECT_EQ(nothing.activeFileName(), "");
    EXPECT_TRUE(nothing.getOrientation(origin, u, v));
    EXPECT_EQ(u, AcGeVector3d::kIdentity);
    EXPECT_EQ(nothing.getGeomExtents(box), Acad::eNullExtents);
    EXPECT_THAT(nothing.getVertices(), IsEmpty());

    const auto sized = load(drawing(image("", "")));
    EXPECT_EQ(only_image(*sized).imageSize().x, 200) << "the definition tells it";

    const auto huge = load(drawing(image("11\n1e308\n10\nnan\n", "13\n1e300\n23\n1e300\n")));
    EXPECT_FALSE(only_image(*huge).getOrientation(origin, u, v));
    EXPECT_EQ(u, AcGeVector3d::kIdentity);
    EXPECT_TRUE(std::isfinite(origin.x));
    EXPECT_EQ(only_image(*huge).getGeomExtents(box), Acad::eNullExtents);
    gi::Recorder recorder(huge.get());
    recorder.record(&only_image(*huge));
    EXPECT_TRUE(recorder.calls.empty());

    const auto clip = load(drawing(image("280\n1\n71\n2\n91\n9\n24\n5\n14\n1\n")));
    EXPECT_FALSE(only_image(*clip).isClipped()) << "too few points";
    EXPECT_THAT(only_image(*clip).getVertices(), SizeIs(5)) << "the whole picture";

    const auto itself = load(drawing(image("340\nA1\n"))); // its own definition
    EXPECT_EQ(only_image(*itself).sourceFileName(), "");
}

TEST_F(Images, MadeByAProgramComeBack) {
    AcDbDatabase db;
    AcDbObjectId definition, id;
    {
        AcDbObjectPointer<AcDbDictionary> root(db.namedObjectsDictionaryId(), AcDb::kForWrite);
        AcDbObjectId dictionary;
        ASSERT_EQ(root->setAt("ACAD_IMAGE_DICT", std::make_unique<AcDbDictionary>(), dictionary),
                  Acad::eOk);
        auto made = std::make_unique<AcDbRasterImageDef>();
        made->setSourceFileName("Bäume.png");
        made->setSize({64, 32});
        AcDbObjectPointer<AcDbDictionary> images(dictionary, AcDb::kForWrite);
        ASSERT_EQ(images->setAt("trees", std::move(made), definition), Acad::eOk);
    }
    auto made = std::make_unique<AcDbRasterImage>();
    EXPECT_EQ(made->setOrientation({}, {1, 0, 0}, {0, 1, 0}), Acad::eInvalidInput) << "no size";
    made->setImageDefId(definition);
    made->setImageSize({64, 32});
    ASSERT_EQ(made->setOrientation({5, 6, 7}, {8, 0, 0}, {0, 4, 0}), Acad::eOk);
    AcDbObjectPointer<AcDbBlockTableRecord>(db.modelSpaceId(), AcDb::kForWrite)
        ->appendAcDbEntity(std::move(made), id);
    const auto again = load(save(db));
    const AcDbRasterImage& read = only_image(*again);
    AcGePoint3d origin;
    AcGeVector3d u, v;
    ASSERT_TRUE(read.getOrientation(origin, u, v));
    EXPECT_EQ(origin, (AcGePoint3d{5, 6, 7}));
    EXPECT_TRUE(u.isEqualTo({8, 0, 0}));
    EXPECT_TRUE(v.isEqualTo({0, 4, 0}));
    EXPECT_EQ(read.sourceFileName(), "Bäume.png");
}

/// A real drawing carries a preview of each picture's outline, made by the program that wrote it.
TEST_F(Images, OfARealDrawingLieWhereItsOwnPreviewsSay) {
    const auto path = shared_drawings() / "images.dxf";
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "no " << path;
    }
    AcDbDatabase db(false);
    std::string error;
    ASSERT_EQ(db.dxfIn(path, error), Acad::eOk) << error;
    const AcDbObjectPointer<AcDbRasterImage> turned(db.getAcDbObjectId(AcDbHandle(0x7e)));
    ASSERT_TRUE(turned);
    const std::vector<AcGePoint3d> corners = turned->getVertices();
    ASSERT_THAT(corners, SizeIs(5));
    // Doubles of its tag 310: the lower left corner and the lower right one.
    const AcGePoint3d wanted[] = {{120.1317003009177, 156.3826548033235, 0},
                                  {126.72677207695876, 161.9165770981871, 0}};
    AcGePoint3d origin;
    AcGeVector3d u, v;
    ASSERT_TRUE(turned->getOrientation(origin, u, v));
    EXPECT_TRUE(origin.isEqualTo(wanted[0]));
    EXPECT_NEAR((origin + u).x, wanted[1].x, 1e-6);
    EXPECT_NEAR((origin + u).y, wanted[1].y, 1e-6);
    EXPECT_FALSE(turned->sourceFileName().empty());
    const AcDbObjectPointer<AcDbRasterImage> clipped(db.getAcDbObjectId(AcDbHandle(0x11a)));
    ASSERT_TRUE(clipped && clipped->isClipped());
    ASSERT_THAT(clipped->getVertices(), SizeIs(6));
    EXPECT_TRUE(clipped->getVertices()[0].isEqualTo({119.6980812363604, 140.84837183499985, 0}));
    EXPECT_TRUE(clipped->getVertices()[1].isEqualTo({121.68545397643015, 134.79320432030727, 0}));
    const std::vector<AcDbDrawReportRow> missing = acdbCollectDrawReport(db).not_drawn;
    const auto images = std::find_if(missing.begin(), missing.end(),
                                     [](const auto& row) { return row.code == "image"; });
    ASSERT_NE(images, missing.end());
    EXPECT_EQ(images->count, 64u) << "59 in model space, 5 through a block";
}

} // namespace
