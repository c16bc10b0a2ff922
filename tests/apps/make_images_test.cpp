// The drawn pictures: shapes cover what they should, and the files of support/appl are what the
// program draws.
#include "apps/make_images/images.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace make_images {
namespace {

namespace fs = std::filesystem;
const fs::path appl = fs::path(QORVANE_SOURCE_DIR) / "support" / "appl";

/// Covered area of a shape, in square units of the icon.
double area_of(const Shape& shape, int pixels = 96) {
    Canvas canvas(pixels);
    canvas.paint(shape, kInk);
    const std::vector<std::uint8_t> bytes = canvas.rgba();
    double sum = 0;
    for (std::size_t i = 3; i < bytes.size(); i += 4) {
        sum += bytes[i] / 255.0;
    }
    const double unit = 48.0 / pixels;
    return sum * unit * unit;
}

TEST(Canvas, ShapesCoverTheirArea) {
    const double pi = 3.14159265358979;
    EXPECT_NEAR(area_of(disc({24, 24}, 10)), pi * 100, 1);
    EXPECT_NEAR(area_of(disc({24, 24}, 10), 24), pi * 100, 4) << "smooth at a quarter of the size";
    EXPECT_NEAR(area_of(ring({24, 24}, 10, 4)), pi * (144 - 64), 1.5);
    EXPECT_NEAR(area_of(arc({24, 24}, 10, 0, 90, 4)), pi * 80 / 4 + pi * 4, 1.5);
    EXPECT_NEAR(area_of(arc({24, 24}, 10, 300, 480, 4)), pi * 80 / 2 + pi * 4, 1.5)
        << "through the right";
    EXPECT_NEAR(area_of(stroke({{10, 24}, {30, 24}}, 4)), 80 + pi * 4, 1);
    EXPECT_NEAR(area_of(polygon({{4, 4}, {44, 4}, {44, 44}, {24, 10}, {4, 44}})), 1600 - 680, 2)
        << "a corner that points inwards";
    EXPECT_NEAR(area_of(box({10, 10}, {30, 20}, 4)), 200 - (64 - pi * 16), 1.5);
    EXPECT_NEAR(area_of(turned(box({20, 10}, {28, 38}, 0), 90)), 8 * 28, 1);
    EXPECT_NEAR(area_of(without(disc({24, 24}, 10), box({0, 0}, {24, 48}, 0))), pi * 50, 1);
}

TEST(Canvas, OverlappingInksKeepTheirColour) {
    Canvas canvas(48);
    canvas.paint(box({0, 0}, {48, 48}, 0), Ink{1, 0, 0, 0.5});
    canvas.paint(box({0, 0}, {24, 48}, 0), Ink{0, 0, 1, 0.5});
    const std::vector<std::uint8_t> bytes = canvas.rgba();
    const std::size_t right = 4 * (24 * 48 + 40), left = 4 * (24 * 48 + 5);
    EXPECT_EQ(bytes[right], 255) << "half transparent red is still red";
    EXPECT_EQ(bytes[right + 3], 128);
    EXPECT_EQ(bytes[left + 3], 191);
    EXPECT_NEAR(bytes[left + 2], 170, 1) << "two thirds of what is seen is the upper ink";
}

TEST(Images, FilesAreWhatIsDrawn) {
    for (const auto rows : {comm_images(), kestra_images()}) {
        for (const ImageRow& row : rows) {
            Canvas canvas(row.pixels);
            row.draw(canvas);
            png_image image{};
            image.version = PNG_IMAGE_VERSION;
            const std::string path = (appl / row.file).string();
            ASSERT_NE(png_image_begin_read_from_file(&image, path.c_str()), 0) << path;
            image.format = PNG_FORMAT_RGBA;
            std::vector<std::uint8_t> bytes(PNG_IMAGE_SIZE(image));
            ASSERT_NE(png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr), 0) << path;
            EXPECT_EQ(static_cast<int>(image.width), row.pixels) << path;
            EXPECT_TRUE(bytes == canvas.rgba()) << path << ": run make_images support/appl";
        }
    }
    std::ifstream in(appl / panorama_file, std::ios::binary);
    const std::string kept{std::istreambuf_iterator<char>(in), {}};
    EXPECT_TRUE(kept == panorama()) << panorama_file;
}

} // namespace
} // namespace make_images
