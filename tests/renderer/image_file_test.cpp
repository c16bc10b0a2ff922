// Pictures on disk: round trips, metadata, failures that leave nothing behind.
#include "renderer/image_file.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

using namespace renderer;
namespace fs = std::filesystem;

namespace {

class ImageFile : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / ("image_file_test_" + std::to_string(::getpid()));
        fs::create_directories(folder_);
        film_.width = 40;
        film_.height = 24;
        for (int i = 0; i < 40 * 24; ++i) {
            const float x = float(i % 40) / 40, y = float(i / 40) / 24;
            film_.radiance.push_back({x, y, 0.25f + x * y});
            film_.alpha.push_back(y);
            film_.albedo.push_back({0.1f, x, y});
            film_.normal.push_back({0, -1, x});
            film_.depth.push_back(10 * x);
        }
        tone_.exposure = 1;
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::vector<float> read(const fs::path& path, OIIO::ImageSpec& spec) {
        auto input = OIIO::ImageInput::open(path.string());
        if (!input)
            return {};
        spec = input->spec();
        std::vector<float> data(std::size_t(spec.width) * spec.height * spec.nchannels);
        input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::FLOAT, data.data());
        return data;
    }
    std::size_t files() const {
        return std::size_t(std::distance(fs::directory_iterator(folder_), {}));
    }
    std::string message(const fs::path& path) {
        try {
            save_image(path, film_, tone_);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

    fs::path folder_;
    Film film_;
    ToneSettings tone_;
};

} // namespace

TEST_F(ImageFile, DisplayFormatsHoldTheTonedPicture) {
    const DisplayImage expected = tone_map(film_, tone_);
    for (const std::string extension : {"png", "jpg", "JPEG"}) {
        const fs::path path = folder_ / ("b\xc3\xbc"
                                         "ro." +
                                         extension);
        save_image(path, film_, tone_);
        OIIO::ImageSpec spec;
        const auto data = read(path, spec);
        ASSERT_EQ(data.size(), expected.rgb.size()) << extension;
        double worst = 0;
        for (std::size_t i = 0; i < data.size(); ++i)
            worst = std::max(worst, std::fabs(double(data[i]) * 255 - expected.rgb[i]));
        EXPECT_LE(worst, extension == "png" ? 0.01 : 24) << extension;
        EXPECT_EQ(spec.get_string_attribute("oiio:ColorSpace"), "sRGB");
    }
    EXPECT_EQ(files(), 3u) << "no temporary file stays";
}

TEST_F(ImageFile, LinearFormatsHoldTheFilm) {
    OIIO::ImageSpec spec;
    save_image(folder_ / "a.exr", film_, tone_);
    const auto exr = read(folder_ / "a.exr", spec);
    ASSERT_EQ(spec.nchannels, 11);
    const auto channel = [&](const char* name, std::size_t pixel) {
        const int i = spec.channelindex(name);
        return i < 0 ? NAN : exr[pixel * 11 + std::size_t(i)];
    };
    for (const std::size_t p : {std::size_t{0}, std::size_t{77}, std::size_t{959}}) {
        EXPECT_EQ(channel("R", p), film_.radiance[p].x);
        EXPECT_EQ(channel("B", p), film_.radiance[p].z);
        EXPECT_EQ(channel("A", p), film_.alpha[p]);
        EXPECT_EQ(channel("albedo.G", p), film_.albedo[p].y);
        EXPECT_EQ(channel("normal.Z", p), film_.normal[p].z);
        EXPECT_EQ(channel("Z", p), film_.depth[p]);
    }
    save_image(folder_ / "a.hdr", film_, tone_);
    const auto hdr = read(folder_ / "a.hdr", spec);
    ASSERT_EQ(hdr.size(), film_.radiance.size() * 3);
    for (std::size_t p = 0; p < film_.radiance.size(); ++p)
        EXPECT_NEAR(hdr[3 * p + 2], film_.radiance[p].z, 0.01f);
}

TEST_F(ImageFile, MetadataSurvives) {
    ImageFileOptions options;
    options.metadata = {{"Software", "test 1.0"}, {"Drawing", "h\xc3\xa4user.dxf"}};
    options.dots_per_inch = 300;
    OIIO::ImageSpec spec;
    for (const char* name : {"m.png", "m.exr"}) {
        save_image(folder_ / name, film_, tone_, options);
        read(folder_ / name, spec);
        EXPECT_EQ(spec.get_string_attribute("Drawing"), "h\xc3\xa4user.dxf") << name;
    }
    save_image(folder_ / "m.jpg", film_, tone_, options);
    read(folder_ / "m.jpg", spec);
    EXPECT_NE(spec.get_string_attribute("ImageDescription").find("Drawing: h"), std::string::npos);
    EXPECT_NEAR(spec.get_float_attribute("XResolution"), 300, 1);
}

TEST_F(ImageFile, QualityChangesTheSizeOfJpeg) {
    ImageFileOptions low, high;
    low.jpeg_quality = 20;
    high.jpeg_quality = 100;
    save_image(folder_ / "low.jpg", film_, tone_, low);
    save_image(folder_ / "high.jpg", film_, tone_, high);
    EXPECT_LT(2 * fs::file_size(folder_ / "low.jpg"), fs::file_size(folder_ / "high.jpg"));
}

TEST_F(ImageFile, FailuresNameFileAndCause) {
    EXPECT_NE(message(folder_ / "none" / "a.png").find("does not exist"), std::string::npos);
    EXPECT_NE(message(folder_ / "a.tiff").find("'tiff' is not one of"), std::string::npos);
    EXPECT_NE(message(folder_ / "noext").find("noext"), std::string::npos);
    fs::create_directory(folder_ / "dir.png");
    EXPECT_NE(message(folder_ / "dir.png").find("a folder has that name"), std::string::npos);
    film_.depth.pop_back();
    EXPECT_NE(message(folder_ / "a.exr").find("do not fit"), std::string::npos);
    EXPECT_EQ(files(), 1u);
    EXPECT_TRUE(is_supported_image_extension("exr"));
    EXPECT_FALSE(is_supported_image_extension("PNG"));
}

TEST_F(ImageFile, AFullDiskLeavesTheOldPicture) {
    for (const char* name : {"a.png", "a.exr", "a.hdr", "a.jpg"}) {
        const fs::path path = folder_ / name;
        std::ofstream(path) << "old";
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit before{};
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit tight = before;
        tight.rlim_cur = 512;
        setrlimit(RLIMIT_FSIZE, &tight);
        const std::string text = message(path);
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
        EXPECT_NE(text.find(name), std::string::npos) << name << ": " << text;
        std::string content;
        std::ifstream(path) >> content;
        EXPECT_EQ(content, "old") << name;
    }
    EXPECT_EQ(files(), 4u);
}
