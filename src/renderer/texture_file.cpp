// Reads pictures through OpenImageIO.
#include "renderer/texture_file.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <fstream>
#include <string_view>

namespace renderer {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t most_file_bytes = std::uintmax_t{1} << 30;
constexpr int most_side = 1 << 16;

struct FormatRow {
    const char* extension;
    const char* format; ///< OpenImageIO's name
};

/// Formats whose readers take files from anybody.
constexpr std::array<FormatRow, 10> formats{{{"png", "png"},
                                             {"jpg", "jpeg"},
                                             {"jpeg", "jpeg"},
                                             {"bmp", "bmp"},
                                             {"tga", "targa"},
                                             {"tif", "tiff"},
                                             {"tiff", "tiff"},
                                             {"gif", "gif"},
                                             {"exr", "openexr"},
                                             {"hdr", "hdr"}}};

const char* format_of(const fs::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    for (const FormatRow& row : formats)
        if (extension == std::string(".") + row.extension)
            return row.format;
    return nullptr;
}

float srgb_from_linear(float x) {
    return x <= 0.0031308f ? 12.92f * x : 1.055f * std::pow(x, 1 / 2.4f) - 0.055f;
}

std::uint8_t byte_of(float value) {
    return static_cast<std::uint8_t>(std::lround(255 * std::clamp(value, 0.0f, 1.0f)));
}

/// How the channels of a file become a texel.
struct Channels {
    int count = 0;
    int alpha = -1;
    bool multiplied = false; ///< colours come multiplied by alpha
    std::array<int, 3> color() const {
        const bool grey = count - (alpha >= 0 ? 1 : 0) < 3;
        return grey ? std::array<int, 3>{0, 0, 0} : std::array<int, 3>{0, 1, 2};
    }
};

template <typename T>
bool read_pixels(OIIO::ImageInput& input, OIIO::TypeDesc type, const Channels& channels,
                 std::size_t pixels, std::vector<T>& values) {
    values.resize(pixels * static_cast<std::size_t>(channels.count));
    return input.read_image(0, 0, 0, channels.count, type, values.data());
}

bool read_bytes(OIIO::ImageInput& input, const Channels& channels, TexelImage& image) {
    std::vector<std::uint8_t> values;
    if (!read_pixels(input, OIIO::TypeDesc::UINT8, channels, image.texels.size(), values))
        return false;
    const auto color = channels.color();
    for (std::size_t i = 0; i < image.texels.size(); ++i) {
        const std::uint8_t* from = values.data() + i * static_cast<std::size_t>(channels.count);
        Texel& to = image.texels[i];
        to[3] = channels.alpha >= 0 ? from[channels.alpha] : 255;
        for (std::size_t c = 0; c < 3; ++c) {
            const int value = from[color[c]];
            const bool divide = channels.multiplied && to[3] > 0 && to[3] < 255;
            to[c] = static_cast<std::uint8_t>(divide ? std::min(255, value * 255 / to[3]) : value);
        }
    }
    return true;
}

bool read_floats(OIIO::ImageInput& input, const Channels& channels, TexelImage& image) {
    std::vector<float> values;
    if (!read_pixels(input, OIIO::TypeDesc::FLOAT, channels, image.texels.size(), values))
        return false;
    const auto color = channels.color();
    for (std::size_t i = 0; i < image.texels.size(); ++i) {
        const float* from = values.data() + i * static_cast<std::size_t>(channels.count);
        Texel& to = image.texels[i];
        const float alpha = channels.alpha >= 0 ? from[channels.alpha] : 1;
        to[3] = std::isfinite(alpha) ? byte_of(alpha) : 255;
        for (std::size_t c = 0; c < 3; ++c) {
            const float value = from[color[c]];
            const float straight = channels.multiplied && to[3] > 0 ? value / alpha : value;
            to[c] = std::isfinite(straight) ? byte_from_linear(straight) : 0;
        }
    }
    return true;
}

/// What is wrong with a picture of this header; nothing when it can be read.
std::string check_header(const OIIO::ImageSpec& spec) {
    if (spec.width < 1 || spec.height < 1 || spec.depth > 1 || spec.nchannels < 1)
        return "it has no pixels";
    const auto pixels =
        static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.height);
    if (spec.width > most_side || spec.height > most_side || pixels > most_texture_pixels)
        return "it has " + std::to_string(spec.width) + " by " + std::to_string(spec.height) +
               " pixels, more than are read";
    return {};
}

/// Old forms that nobody needs and whose decoders have a history of faults with damaged files:
/// targa with a palette, bmp with run lengths.
bool is_refused_form(const fs::path& path, std::string_view format) {
    std::array<unsigned char, 34> head{};
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(head.data()), head.size());
    if (format == "targa")
        return head[1] != 0 || (head[2] & 7) == 1;
    if (format == "bmp") // size of the header, then its compression
        return head[14] >= 40 && (head[30] == 1 || head[30] == 2);
    return false;
}

std::string read(const fs::path& path, TexelImage& image) {
    std::error_code failed;
    if (!fs::is_regular_file(path, failed))
        return fs::exists(path, failed) ? "it is no plain file" : "there is no such file";
    const std::uintmax_t bytes = fs::file_size(path, failed);
    if (failed || bytes > most_file_bytes)
        return "the file is too large";
    const char* format = format_of(path);
    const auto input = format ? OIIO::ImageInput::create(format) : nullptr;
    if (!input)
        return "it is no picture of a kind that can be read";
    if (is_refused_form(path, format))
        return "it is packed in a way that is not read; save it as png";
    OIIO::ImageSpec wishes, spec;
    wishes.attribute("oiio:UnassociatedAlpha", 1);
    if (!input->open(path.string(), spec, wishes))
        return "it cannot be read: " + input->geterror();
    if (std::string bad = check_header(spec); !bad.empty())
        return bad;
    image.width = spec.width;
    image.height = spec.height;
    image.texels.resize(static_cast<std::size_t>(spec.width) *
                        static_cast<std::size_t>(spec.height));
    Channels channels;
    channels.count = std::min(spec.nchannels, 4);
    channels.alpha = spec.alpha_channel < channels.count ? spec.alpha_channel : -1;
    if (channels.alpha == 0) // nothing but alpha
        channels.alpha = -1;
    channels.multiplied =
        channels.alpha >= 0 && spec.get_int_attribute("oiio:UnassociatedAlpha", 0) == 0;
    const bool good = spec.format.is_floating_point() ? read_floats(*input, channels, image)
                                                      : read_bytes(*input, channels, image);
    return good ? std::string() : "it is damaged: " + input->geterror();
}

} // namespace

std::uint8_t byte_from_linear(float linear) {
    static const std::vector<std::uint8_t> table = [] {
        std::vector<std::uint8_t> bytes(1 << 16);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = byte_of(srgb_from_linear(static_cast<float>(i) / 65535));
        return bytes;
    }();
    return table[static_cast<std::size_t>(std::lround(65535 * std::clamp(linear, 0.0f, 1.0f)))];
}

float linear_from_byte(std::uint8_t value) {
    static const std::array<float, 256> table = [] {
        std::array<float, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const float x = static_cast<float>(i) / 255;
            values[i] = x <= 0.04045f ? x / 12.92f : std::pow((x + 0.055f) / 1.055f, 2.4f);
        }
        return values;
    }();
    return table[value];
}

bool read_texture_file(const fs::path& path, TexelImage& image, std::string& error) {
    std::string what;
    try {
        what = read(path, image);
    } catch (const std::exception& problem) {
        what = std::string("it cannot be read: ") + problem.what();
    }
    if (what.empty())
        return true;
    image = {};
    error = path.string() + ": " + what;
    return false;
}

} // namespace renderer
