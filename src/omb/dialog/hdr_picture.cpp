// Radiance pictures, see hdr_picture.h. Format: G. Ward, "Real Pixels", Graphics Gems II (1991),
// and the Radiance reference manual, "Radiance File Formats".
#include "omb/dialog/hdr_picture.h"

#include "omb/base/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace {

using rgbe = std::array<std::uint8_t, 4>;

constexpr int largest_side = 1 << 16;
constexpr std::size_t most_pixels = std::size_t{1} << 27;
constexpr int least_run_width = 8, most_run_width = 0x7fff; ///< of the newer run-length form
constexpr float exponent_bias = 128 + 8;                    ///< the mantissas are bytes

struct hdr_reader {
    std::string_view bytes;
    int width = 0, height = 0;
    bool from_bottom = false;
    bool from_right = false;

    std::string read_header();
    std::string read_resolution(std::string_view line);
    bool read_line(std::vector<rgbe>& line);

private:
    bool take(std::uint8_t& byte);
    bool take_pixel(rgbe& pixel);
    bool take_channel(std::vector<rgbe>& line, std::size_t channel);
    bool take_old_line(std::vector<rgbe>& line, std::size_t at);
};

bool hdr_reader::take(std::uint8_t& byte) {
    if (bytes.empty()) {
        return false;
    }
    byte = static_cast<std::uint8_t>(bytes.front());
    bytes.remove_prefix(1);
    return true;
}

bool hdr_reader::take_pixel(rgbe& pixel) {
    return take(pixel[0]) && take(pixel[1]) && take(pixel[2]) && take(pixel[3]);
}

std::string_view take_text_line(std::string_view& bytes) {
    const std::size_t end = bytes.find('\n');
    const std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

std::string hdr_reader::read_header() {
    if (!bytes.starts_with("#?")) {
        return "it is no Radiance picture";
    }
    while (!bytes.empty()) {
        const std::string_view line = take_text_line(bytes);
        if (line.empty()) {
            return read_resolution(take_text_line(bytes));
        }
        if (line.starts_with("FORMAT=") && omb::trim(line.substr(7)) != "32-bit_rle_rgbe") {
            return "its pixels are not in red, green and blue";
        }
    }
    return "it has no picture behind its header";
}

/// "-Y 480 +X 640": rows from the top, from the left. Columns first are not read.
std::string hdr_reader::read_resolution(std::string_view line) {
    const std::vector<std::string_view> words = omb::split(omb::trim(line), ' ');
    if (words.size() != 4 || (words[0] != "-Y" && words[0] != "+Y") ||
        (words[2] != "+X" && words[2] != "-X")) {
        return "its size cannot be read";
    }
    from_bottom = words[0] == "+Y";
    from_right = words[2] == "-X";
    height = omb::parse_int(words[1]);
    width = omb::parse_int(words[3]);
    if (width < 1 || height < 1 || width > largest_side || height > largest_side ||
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height) > most_pixels) {
        return "its size is out of range";
    }
    return {};
}

/// One of the four bytes of all pixels of a line, in runs and stretches.
bool hdr_reader::take_channel(std::vector<rgbe>& line, std::size_t channel) {
    for (std::size_t at = 0; at < line.size();) {
        std::uint8_t count = 0, byte = 0;
        if (!take(count)) {
            return false;
        }
        const bool is_run = count > 128;
        const std::size_t pixels = is_run ? count - 128U : count;
        if (pixels == 0 || pixels > line.size() - at || (is_run && !take(byte))) {
            return false;
        }
        for (std::size_t i = 0; i < pixels; ++i, ++at) {
            if (!is_run && !take(byte)) {
                return false;
            }
            line[at][channel] = byte;
        }
    }
    return true;
}

/// Plain pixels; a pixel of 1, 1, 1 says how often the one ahead of it comes again.
bool hdr_reader::take_old_line(std::vector<rgbe>& line, std::size_t at) {
    unsigned shift = 0;
    while (at < line.size()) {
        rgbe pixel{};
        if (!take_pixel(pixel)) {
            return false;
        }
        if (pixel[0] != 1 || pixel[1] != 1 || pixel[2] != 1) {
            line[at++] = pixel;
            shift = 0;
            continue;
        }
        const std::size_t count = static_cast<std::size_t>(pixel[3]) << shift;
        if (at == 0 || shift > 16 || count > line.size() - at) {
            return false;
        }
        const rgbe again = line[at - 1];
        std::fill_n(line.begin() + static_cast<std::ptrdiff_t>(at), count, again);
        at += count;
        shift += 8;
    }
    return true;
}

bool hdr_reader::read_line(std::vector<rgbe>& line) {
    rgbe first{};
    if (width < least_run_width || width > most_run_width) {
        return take_old_line(line, 0);
    }
    const std::string_view before = bytes;
    if (!take_pixel(first)) {
        return false;
    }
    if (first[0] != 2 || first[1] != 2 || first[2] >= 128) {
        bytes = before;
        return take_old_line(line, 0);
    }
    if (first[2] * 256 + first[3] != width) {
        return false;
    }
    for (std::size_t channel = 0; channel < 4; ++channel) {
        if (!take_channel(line, channel)) {
            return false;
        }
    }
    return true;
}

/// Sums of the pixels of each block of the reduced picture.
struct block_sums {
    int step = 1, width = 0;
    std::vector<float> sums;

    void add(const std::vector<rgbe>& line) {
        for (std::size_t x = 0; x < line.size(); ++x) {
            const rgbe& pixel = line[x];
            if (pixel[3] == 0) {
                continue;
            }
            const float scale = std::exp2(static_cast<float>(pixel[3]) - exponent_bias);
            float* sum = &sums[x / static_cast<std::size_t>(step) * 3];
            for (std::size_t channel = 0; channel < 3; ++channel) {
                sum[channel] += static_cast<float>(pixel[channel]) * scale;
            }
        }
    }
};

/// A row of blocks, `rows` lines high, goes into the picture.
void store_blocks(cl_hdr_picture& picture, int row, block_sums& blocks, int rows, int line_width) {
    float* out =
        &picture.rgb[static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.width) * 3];
    for (int x = 0; x < picture.width; ++x) {
        const int columns = std::min(blocks.step, line_width - x * blocks.step);
        const float share = 1.0F / static_cast<float>(columns * rows);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const std::size_t at = static_cast<std::size_t>(x) * 3 + channel;
            out[at] = std::min(blocks.sums[at] * share, 1e30F);
        }
    }
    std::fill(blocks.sums.begin(), blocks.sums.end(), 0.0F);
}

double luminance(const float* rgb) { return 0.2126 * rgb[0] + 0.7152 * rgb[1] + 0.0722 * rgb[2]; }

std::uint8_t srgb_byte(double light) {
    const double value = std::clamp(light, 0.0, 1.0);
    const double encoded =
        value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
    return static_cast<std::uint8_t>(std::lround(encoded * 255));
}

/// Scale that brings the logarithmic mean to middle grey, and the light that becomes white.
struct exposure {
    double scale = 1, white = 1;
};

exposure exposure_of(const cl_hdr_picture& picture) {
    constexpr double middle_grey = 0.18, white_share = 0.99, least_white = 1;
    std::vector<double> lights;
    double sum = 0;
    for (std::size_t at = 0; at + 2 < picture.rgb.size(); at += 3) {
        const double light = luminance(&picture.rgb[at]);
        if (light > 0) {
            lights.push_back(light);
            sum += std::log(light);
        }
    }
    if (lights.empty()) {
        return {};
    }
    exposure result;
    result.scale = middle_grey / std::exp(sum / static_cast<double>(lights.size()));
    const auto at =
        static_cast<std::ptrdiff_t>(white_share * static_cast<double>(lights.size() - 1));
    std::nth_element(lights.begin(), lights.begin() + at, lights.end());
    result.white = std::max(lights[static_cast<std::size_t>(at)] * result.scale, least_white);
    return result;
}

} // namespace

std::string read_hdr_picture(std::string_view bytes, cl_hdr_picture& picture, int most) {
    hdr_reader reader{bytes};
    if (std::string error = reader.read_header(); !error.empty()) {
        return error;
    }
    most = std::max(most, 1);
    const int step = (std::max(reader.width, reader.height) + most - 1) / most;
    cl_hdr_picture result;
    result.width = (reader.width + step - 1) / step;
    result.height = (reader.height + step - 1) / step;
    result.rgb.resize(static_cast<std::size_t>(result.width) *
                      static_cast<std::size_t>(result.height) * 3);
    block_sums blocks{step, result.width,
                      std::vector<float>(static_cast<std::size_t>(result.width) * 3)};
    std::vector<rgbe> line(static_cast<std::size_t>(reader.width));
    for (int y = 0; y < reader.height; ++y) {
        if (!reader.read_line(line)) {
            return "it ends early or is damaged";
        }
        if (reader.from_right) {
            std::reverse(line.begin(), line.end());
        }
        blocks.add(line);
        if (const int rows = y % step + 1; rows == step || y + 1 == reader.height) {
            const int row = y / step;
            store_blocks(result, reader.from_bottom ? result.height - 1 - row : row, blocks, rows,
                         reader.width);
        }
    }
    picture = std::move(result);
    return {};
}

platform::WindowPicture tone_mapped(const cl_hdr_picture& picture) {
    const exposure exposed = exposure_of(picture);
    const double white = exposed.white * exposed.white;
    platform::WindowPicture result{picture.width, picture.height, {}};
    result.rgba.reserve(picture.rgb.size() / 3 * 4);
    for (std::size_t at = 0; at + 2 < picture.rgb.size(); at += 3) {
        const double light = luminance(&picture.rgb[at]);
        const double exposed_light = light * exposed.scale;
        const double shown = exposed_light * (1 + exposed_light / white) / (1 + exposed_light);
        const double scale = light > 0 ? shown / light : 0;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            result.rgba.push_back(
                srgb_byte(static_cast<double>(picture.rgb[at + channel]) * scale));
        }
        result.rgba.push_back(255);
    }
    return result;
}
