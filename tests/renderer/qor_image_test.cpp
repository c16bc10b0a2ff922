// `.QorImage` on disk: nothing is lost, and no damage does worse than an error.
#include "renderer/qor_image.h"

#include "renderer/image_file.h"
#include "renderer/sampler.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <unistd.h>

using namespace renderer;
namespace fs = std::filesystem;

namespace {

class QorImageFile : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / ("qor_image_test_" + std::to_string(::getpid()));
        fs::create_directories(folder_);
        path_ = folder_ / "house.QorImage";
        fill(37, 91);
        image_.weights[1] = 0.125f;
        image_.tone.brightness = 0.61;
        image_.tone.gamma = 1 / 3.0;
        image_.metadata = {{"Software", "test 1.0"}, {"Settings", "a; 1\nb; 2:\n"}, {"Empty", ""}};
    }
    void TearDown() override { fs::remove_all(folder_); }

    void fill(int width, int height) {
        ChannelFilm& picture = image_.picture;
        picture = {};
        Film& film = picture.film;
        film.width = width;
        film.height = height;
        film.passes = 3;
        film.samples = 12;
        picture.channels.resize(2);
        picture.channels[0].name = "Sun";
        picture.channels[1].name = "Lamps; g\xc3\xa4ng: 2";
        picture.channels[1].number = 6;
        for (int i = 0; i < width * height; ++i) {
            Sampler u(std::uint32_t(i), 0, 0, 1);
            const auto value = [&u] { return std::exp2(40 * u.next_1d() - 30); };
            film.radiance.push_back({value(), value(), value()});
            film.alpha.push_back(value());
            film.albedo.push_back({value(), 0, 1});
            film.normal.push_back({-value(), value(), 0});
            film.depth.push_back(value());
            film.variance.push_back(value());
            for (LightChannel& channel : picture.channels)
                channel.radiance.push_back({value(), value(), value()});
        }
    }
    std::string message(const fs::path& path) const {
        try {
            load_qor_image(path);
            return {};
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }
    std::string bytes() const {
        std::ifstream in(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    void put(const std::string& text) const { std::ofstream(path_, std::ios::binary) << text; }

    fs::path folder_, path_;
    QorImage image_;
};

template <typename T>
bool same_bytes(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

} // namespace

TEST_F(QorImageFile, KeepsEverything) {
    save_qor_image(path_, image_);
    const QorImage back = load_qor_image(path_);
    const Film &a = image_.picture.film, &b = back.picture.film;
    EXPECT_EQ(b.width, 37);
    EXPECT_EQ(b.height, 91);
    EXPECT_EQ(b.passes, 3);
    EXPECT_EQ(b.samples, 12);
    EXPECT_TRUE(same_bytes(a.radiance, b.radiance));
    EXPECT_TRUE(same_bytes(a.alpha, b.alpha));
    EXPECT_TRUE(same_bytes(a.albedo, b.albedo));
    EXPECT_TRUE(same_bytes(a.normal, b.normal));
    EXPECT_TRUE(same_bytes(a.depth, b.depth));
    EXPECT_TRUE(same_bytes(a.variance, b.variance));
    ASSERT_EQ(back.picture.channels.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        const LightChannel &c = image_.picture.channels[i], &d = back.picture.channels[i];
        EXPECT_EQ(c.name, d.name);
        EXPECT_EQ(c.number, d.number);
        EXPECT_TRUE(same_bytes(c.radiance, d.radiance));
    }
    EXPECT_EQ(back.weights, image_.weights);
    EXPECT_EQ(back.tone.brightness, 0.61);
    EXPECT_EQ(back.tone.gamma, 1 / 3.0);
    EXPECT_EQ(back.metadata, image_.metadata);
}

TEST_F(QorImageFile, WithoutChannelsAndSavedTwiceItIsTheLast) {
    save_qor_image(path_, image_);
    fill(1, 1);
    image_.picture.channels.clear();
    image_.metadata.clear();
    save_qor_image(path_, image_);
    const QorImage back = load_qor_image(path_);
    EXPECT_EQ(back.picture.film.width, 1);
    EXPECT_TRUE(back.picture.channels.empty());
    EXPECT_TRUE(back.metadata.empty());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1) << "no temporary file stays";
}

TEST_F(QorImageFile, WhatIsNoneIsToldInWords) {
    const auto expect = [&](const fs::path& path, const char* part) {
        EXPECT_NE(message(path).find(path.string()), std::string::npos);
        EXPECT_NE(message(path).find(part), std::string::npos) << message(path);
    };
    expect(folder_ / "none.QorImage", "no such file");
    expect(folder_, "this is no file");
    put("");
    expect(path_, "this is no QorImage");
    put("not a picture at all, but some bytes");
    expect(path_, "this is no QorImage");
    save_image(folder_ / "a.exr", image_.picture.film, {});
    expect(folder_ / "a.exr", "this is an OpenEXR file, but no QorImage");
    save_qor_image(path_, image_);
    const std::string good = bytes();
    put(good.substr(0, 200));
    expect(path_, "damaged or cut");
    put(good.substr(0, good.size() - 10));
    expect(path_, "damaged or cut");

    std::string absurd = good; // a window of two thousand million pixels a side
    const std::size_t window = good.find("dataWindow") + 11 + 6 + 4;
    absurd.replace(window + 8, 8, "\xff\xff\xff\x7f\xff\xff\xff\x7f", 8);
    put(absurd);
    expect(path_, "its size is not that of a picture");
    absurd.replace(window + 8, 8, std::string("\x0f\x27\0\0\x0f\x27\0\0", 8)); // 10000 by 10000
    put(absurd);
    expect(path_, "far too short");
}

TEST_F(QorImageFile, NoDamageDoesWorseThanAnError) {
    save_qor_image(path_, image_);
    const std::string good = bytes();
    int refused = 0, tried = 0;
    for (std::size_t size = 0; size < good.size(); size += size < 3000 ? 151 : 6007, ++tried) {
        put(good.substr(0, size));
        EXPECT_NE(message(path_), "") << size << " of " << good.size();
    }
    for (std::size_t at = 0; at < good.size(); at += at < 3500 ? 11 : 4513)
        for (const char flip : {'\x01', '\x80', '\xff'}) {
            std::string bad = good;
            bad[at] = static_cast<char>(bad[at] ^ flip);
            put(bad);
            refused += message(path_).empty() ? 0 : 1;
            ++tried;
        }
    EXPECT_GT(refused, tried / 4) << "most of what is changed is noticed";
}

TEST_F(QorImageFile, WhereItCannotBeWrittenTheOldOneStays) {
    save_qor_image(path_, image_);
    const std::string good = bytes();
    EXPECT_THROW(save_qor_image(folder_ / "no" / "a.QorImage", image_), std::runtime_error);
    image_.picture.channels[0].radiance.pop_back();
    EXPECT_THROW(save_qor_image(path_, image_), std::runtime_error);
    EXPECT_EQ(bytes(), good);
}
