// Texture files and their pyramids.
#include "renderer/sampler.h"
#include "renderer/texture.h"
#include "tests/renderer/picture_files.h"
#include "tests/test_folder.h"

#include <OpenImageIO/imageio.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

using namespace renderer;
namespace fs = std::filesystem;

namespace {

class Textures : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(folder); }
    void TearDown() override { fs::remove_all(folder); }
    fs::path file(const std::string& name) const { return folder / name; }
    std::string problem(const fs::path& path) const {
        TexelImage image;
        std::string error;
        EXPECT_FALSE(read_texture_file(path, image, error));
        EXPECT_TRUE(image.texels.empty());
        return error;
    }
    const fs::path folder = unique_test_path("textures");
};

TexturePyramid pyramid_of(int width, int height, const picture_files::Paint& paint,
                          bool repeat = true, std::size_t most = 1 << 25) {
    TexelImage image{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.texels.push_back(paint(x, y));
    Texture texture;
    texture.repeat = repeat;
    return TexturePyramid(std::move(image), texture, most);
}

} // namespace

TEST_F(Textures, FilesComeUprightAndStraight) {
    const auto path = file("a.tga");
    picture_files::write_tga(path, 6, 4, [](int x, int y) {
        return x == 0 && y == 3 ? picture_files::Pixel{200, 100, 50, 128}
                                : picture_files::quarters(x, y, 6, 4);
    });
    TexelImage image;
    std::string error;
    ASSERT_TRUE(read_texture_file(path, image, error)) << error;
    ASSERT_EQ(image.width, 6);
    EXPECT_EQ(image.texels[0], (Texel{255, 0, 0, 255})) << "the first row is the top";
    EXPECT_EQ(image.texels[5], (Texel{0, 255, 0, 255}));
    EXPECT_EQ(image.texels[18], (Texel{200, 100, 50, 128})) << "not multiplied by alpha";

    // the same by PNG, with 16 bits, and as grey with alpha
    const std::uint16_t grey[] = {0x8080, 0xffff, 0x4040, 0x8080};
    auto output = OIIO::ImageOutput::create("png");
    OIIO::ImageSpec spec(2, 1, 2, OIIO::TypeDesc::UINT16);
    spec.channelnames = {"Y", "A"};
    spec.alpha_channel = 1;
    spec.attribute("oiio:UnassociatedAlpha", 1);
    ASSERT_TRUE(output->open(file("g.png").string(), spec));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::UINT16, grey));
    output->close();
    ASSERT_TRUE(read_texture_file(file("g.png"), image, error)) << error;
    EXPECT_EQ(image.texels[0], (Texel{128, 128, 128, 255}));
    EXPECT_NEAR(image.texels[1][0], 64, 1);
    EXPECT_EQ(image.texels[1][3], 128);

    // linear light of an EXR file, multiplied by alpha as such files are
    const float linear[] = {0.5f, 0.25f, 7, 0.5f};
    output = OIIO::ImageOutput::create("openexr");
    spec = OIIO::ImageSpec(1, 1, 4, OIIO::TypeDesc::FLOAT);
    ASSERT_TRUE(output->open(file("l.exr").string(), spec));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, linear));
    output->close();
    ASSERT_TRUE(read_texture_file(file("l.exr"), image, error)) << error;
    EXPECT_EQ(image.texels[0], (Texel{255, 188, 255, 128}));
}

TEST_F(Textures, FilesThatAreNoneAreToldAndDoNotCrash) {
    EXPECT_NE(problem(file("none.png")).find("no such file"), std::string::npos);
    fs::create_directories(file("folder.png"));
    EXPECT_NE(problem(file("folder.png")).find("no plain file"), std::string::npos);
    EXPECT_NE(problem("/dev/zero").find("no plain file"), std::string::npos);
    std::ofstream(file("text.png")) << "this is no picture";
    problem(file("text.png"));
    std::ofstream(file("text.txt")) << "nor is this";
    EXPECT_NE(problem(file("text.txt")).find("no picture"), std::string::npos);
    std::ofstream(file("empty.jpg")).flush();
    problem(file("empty.jpg"));

    picture_files::write_tga(file("whole.tga"), 64, 64, [](int, int) {
        return picture_files::Pixel{1, 2, 3, 255};
    });
    fs::copy_file(file("whole.tga"), file("cut.tga"));
    fs::resize_file(file("cut.tga"), 2000);
    problem(file("cut.tga"));
    fs::copy_file(file("whole.tga"), file("palette.tga"));
    std::fstream(file("palette.tga"), std::ios::binary | std::ios::in | std::ios::out)
        .seekp(1)
        .write("\x01\x01", 2);
    EXPECT_NE(problem(file("palette.tga")).find("packed"), std::string::npos);
    fs::copy_file(file("whole.tga"), file("huge.tga"));
    std::fstream(file("huge.tga"), std::ios::binary | std::ios::in | std::ios::out)
        .seekp(12)
        .write("\xff\xff\xff\xff", 4);
    EXPECT_NE(problem(file("huge.tga")).find("65535 by 65535"), std::string::npos);

    const TextureSet set({{file("none.png").string()}, {file("whole.tga").string()}});
    ASSERT_EQ(set.problems().size(), 1u) << "once for each file";
    EXPECT_NEAR(set[0].sample({0.5f, 0.5f}, 0).color.x, 0.5f, 0.01f);
    EXPECT_EQ(set[0].alpha({0.5f, 0.5f}), 1);
}

TEST_F(Textures, BeyondTheirMemoryPicturesAreKeptSmaller) {
    picture_files::write_tga(file("a.tga"), 512, 512,
                             [](int x, int y) { return picture_files::quarters(x, y, 512, 512); });
    const std::vector<Texture> many(12, Texture{file("a.tga").string()});
    const TextureSet set(many, std::size_t{2} << 20); // all of them would take 16 MiB
    EXPECT_LT(set.bytes(), (std::size_t{2} << 20) + 12 * (std::size_t{100} << 10));
    EXPECT_EQ(set[0].width(), 512);
    EXPECT_LT(set[11].width(), 512);
    EXPECT_GT(set[11].sample({0.25f, 0.75f}, 0).color.x, 0.99f) << "and look the same";
}

TEST(TexturePyramid, LowerLeftIsTheOriginAndColoursAreLinear) {
    const auto p = pyramid_of(
        8, 8, [](int x, int y) { return picture_files::quarters(x, y, 8, 8); }, false);
    struct Row {
        Vec2 uv;
        Rgb color;
    };
    for (const Row& row : {Row{{0.2f, 0.2f}, {0, 0, 1}},
                           {{0.8f, 0.2f}, {1, 1, 1}},
                           {{0.2f, 0.8f}, {1, 0, 0}},
                           {{0.8f, 0.8f}, {0, 1, 0}}}) {
        const TextureColor c = p.sample(row.uv, 0);
        EXPECT_LT(length(c.color - row.color), 1e-4f) << row.uv.x << " " << row.uv.y;
    }
    EXPECT_EQ(p.sample({1.01f, 0.5f}, 0).alpha, 0) << "outside there is nothing";
    EXPECT_EQ(p.sample({NAN, 0.5f}, 0).alpha, 0);
    EXPECT_LT(length(p.sample({0.5f, 0.5f}, 10).color - Rgb{0.5f, 0.5f, 0.5f}), 0.01f)
        << "from afar the mean of the light, not of the display values";
    const auto repeated =
        pyramid_of(8, 8, [](int x, int y) { return picture_files::quarters(x, y, 8, 8); });
    EXPECT_LT(length(repeated.sample({3.8f, -4.8f}, 0).color - Rgb{1, 1, 1}), 1e-4f);
}

TEST(TexturePyramid, TransparentTexelsDoNotStainTheirNeighbours) {
    // a white disc on transparent black, as pictures of leaves are
    const auto p = pyramid_of(
        63, 37,
        [](int x, int) {
            return x < 21 ? picture_files::Pixel{255, 255, 255, 255}
                          : picture_files::Pixel{0, 0, 0, 0};
        },
        false);
    for (const float footprint : {0.0f, 0.02f, 0.1f, 0.5f, 4.0f})
        for (const float u : {0.05f, 0.2f, 0.33f, 0.34f, 0.5f}) {
            const TextureColor c = p.sample({u, 0.5f}, footprint);
            if (c.alpha > 0.02f) {
                EXPECT_NEAR(c.color.y, 1, 0.01f) << footprint << " " << u;
            }
        }
    EXPECT_NEAR(p.sample({0.5f, 0.5f}, 9).alpha, 1.0f / 3, 0.01f);
}

TEST(TexturePyramid, LookupsAsWideAsTheirPixelsDoNotShimmer) {
    const auto p = pyramid_of(256, 256, [](int x, int y) {
        const auto v = static_cast<std::uint8_t>((x ^ y) & 1 ? 255 : 0);
        return picture_files::Pixel{v, v, v, 255};
    });
    float sharp = 0, wide = 0;
    for (std::uint32_t i = 0; i < 500; ++i) {
        const Vec2 uv = Sampler(i, 0, 0, 1).next_2d();
        sharp = std::max(sharp, std::fabs(p.sample(uv, 0).color.x - 0.5f));
        wide = std::max(wide, std::fabs(p.sample(uv, 8.0f / 256).color.x - 0.5f));
    }
    EXPECT_GT(sharp, 0.4f);
    EXPECT_LT(wide, 0.01f);
}
