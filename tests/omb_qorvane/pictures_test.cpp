// The background pictures that init_omb_qorvane makes, read back.
#include "extraction_fixture.h"

#include "host/gs/view.h"
#include "omb/base/png_file.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/background_images.h"
#include "omb_qorvane/host_reading.h"

#include <array>
#include <cstdlib>
#include <png.h>

namespace {

namespace fs = std::filesystem;
using Pixel = std::array<int, 4>;

struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
    Pixel at(int x, int y) const {
        const std::size_t first = 4 * static_cast<std::size_t>(y * width + x);
        return {rgba.at(first), rgba.at(first + 1), rgba.at(first + 2), rgba.at(first + 3)};
    }
};

Picture read_png(const fs::path& path) {
    Picture picture;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
        ADD_FAILURE() << path << ": " << image.message;
        return picture;
    }
    EXPECT_EQ(image.format, static_cast<png_uint_32>(PNG_FORMAT_RGBA)) << "8 bits and opacity";
    image.format = PNG_FORMAT_RGBA;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    picture.rgba.resize(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, picture.rgba.data(), 0, nullptr);
    return picture;
}

class Pictures : public ExtractionTest {
protected:
    void SetUp() override {
        ExtractionTest::SetUp();
        const char* before = std::getenv("TMPDIR");
        old_temporary = before != nullptr ? before : "";
        temporary = home / "tmp";
        fs::create_directories(temporary);
        setenv("TMPDIR", temporary.c_str(), 1);
        AcGsView view; // from above, 8 by 4
        view.position = {0, 0, 10};
        view.field_width = 8;
        view.field_height = 4;
        ASSERT_TRUE(acgsSetViewParameters(acedActiveViewportId(), view));
        make<AcDbFace>({}, AcGePoint3d{-1, -1, 0}, AcGePoint3d{1, -1, 0}, AcGePoint3d{1, 1, 0},
                       AcGePoint3d{-1, 1, 0})
            .setColor(AcCmEntityColor::index(5));
    }
    void TearDown() override {
        old_temporary.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", old_temporary.c_str(), 1);
        ExtractionTest::TearDown();
    }
    fs::path alpha() const { return temporary / "OMB_Batch_alpha_image.png"; }
    fs::path wires() const { return temporary / "OMB_Batch_wireframe_image.png"; }
    /// Runs init_omb_qorvane for a picture of that width.
    bool init(int width) {
        cl_omb_export& exporter = theApp().omb_export;
        exporter.initialize_options_globals_file();
        set_global_int("iks_resx", width);
        set_global_int("iks_resy", width);
        exporter.write_globals_to_OMB_QorvaneDictionary();
        return init_omb_qorvane(2);
    }
    std::string old_temporary;
    fs::path temporary;
};

TEST_F(Pictures, ShowTheViewAtThePicturesSize) {
    ASSERT_TRUE(init(200));
    EXPECT_EQ(get_global_int("iks_resy"), 100);
    const Picture model = read_png(alpha());
    EXPECT_EQ(model.width, 200);
    EXPECT_EQ(model.height, 100);
    EXPECT_EQ(model.at(100, 50), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(model.at(0, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(model.at(73, 50)[3], 0);
    EXPECT_EQ(model.at(76, 50)[3], 255);
    const Picture lines = read_png(wires());
    EXPECT_EQ(lines.width, 200);
    EXPECT_EQ(lines.at(0, 0), (Pixel{255, 254, 253, 255}));
    EXPECT_EQ(lines.at(100, 50), (Pixel{255, 254, 253, 255}));
    EXPECT_EQ(lines.at(75, 50), (Pixel{0, 0, 255, 255}));
}

TEST_F(Pictures, AreNeverLargerThan1600) {
    using testing::ElementsAre;
    EXPECT_THAT(background_image_size(3200, 1600), ElementsAre(1600, 800));
    EXPECT_THAT(background_image_size(100, 5000), ElementsAre(32, 1600));
    EXPECT_THAT(background_image_size(32768, 1), ElementsAre(1600, 1));
    EXPECT_THAT(background_image_size(640, 480), ElementsAre(640, 480));
    EXPECT_THAT(background_image_size(0, -7), ElementsAre(1, 1));
}

TEST_F(Pictures, APictureThatCannotBeWrittenHarmsNothing) {
    fs::create_directories(alpha() / "in the way");
    EXPECT_TRUE(init(50));
    EXPECT_TRUE(fs::is_directory(alpha()));
    EXPECT_EQ(read_png(wires()).width, 50) << "the other one is there";
    EXPECT_EQ(std::distance(fs::directory_iterator(temporary), {}), 2) << "nothing half written";
}

TEST_F(Pictures, AStartMakesNone) {
    extract();
    EXPECT_FALSE(fs::exists(alpha()) || fs::exists(wires()));
}

TEST_F(Pictures, FilesThatCannotBe) {
    std::string error;
    const std::vector<std::uint8_t> pixels(2 * 3 * 4, 7);
    EXPECT_TRUE(write_png_file((temporary / "a.png").string(), 2, 3, pixels, error)) << error;
    EXPECT_EQ(read_png(temporary / "a.png").at(1, 2), (Pixel{7, 7, 7, 7}));
    EXPECT_FALSE(write_png_file((temporary / "b.png").string(), 3, 3, pixels, error));
    EXPECT_FALSE(write_png_file((temporary / "b.png").string(), 0, 0, {}, error));
    EXPECT_FALSE(write_png_file((temporary / "no" / "b.png").string(), 2, 3, pixels, error));
    EXPECT_NE(error, "");
    EXPECT_FALSE(fs::exists(temporary / "b.png"));
}

} // namespace
