// Pictures for dialogs, see dialog_image.h.
#include "omb/dialog/dialog_image.h"

#include "omb/base/application_files.h"
#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/text.h"
#include "omb/dialog/hdr_picture.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <list>
#include <png.h>

namespace {

/// Times of files are coarser than clocks.
constexpr std::chrono::milliseconds clock_step{50};
constexpr std::size_t kept_bytes_most = std::size_t{128} << 20;

/// A picture that was read, or its error, for as long as the file stays as it is.
struct kept_picture {
    std::string path;
    std::filesystem::file_time_type time{};
    std::uintmax_t size = 0;
    bool is_settled = true; ///< a file written a moment ago may be written again at the same time
    cl_dialog_picture result;

    std::size_t bytes() const {
        return path.size() + (result.picture ? result.picture->rgba.size() : 0);
    }
};

/// Used last ones first.
std::list<kept_picture>& kept_pictures() {
    static std::list<kept_picture> pictures;
    return pictures;
}

dialog_picture_reader& lent_reader() {
    static dialog_picture_reader reader;
    return reader;
}

bool is_whole(const platform::WindowPicture& picture) {
    return picture.width > 0 && picture.height > 0 &&
           picture.rgba.size() / 4 / static_cast<std::size_t>(picture.width) >=
               static_cast<std::size_t>(picture.height);
}

std::string read_by_lent_reader(const std::string& path, platform::WindowPicture& picture) {
    if (!lent_reader()) {
        return "pictures of this kind cannot be read here";
    }
    std::string error;
    try {
        if (!lent_reader()(path, picture, error)) {
            return error.empty() ? "it cannot be read" : error;
        }
    } catch (const std::exception& failure) {
        return failure.what();
    }
    return is_whole(picture) ? std::string() : "it has no pixels";
}

std::string read_picture(const std::string& path, platform::WindowPicture& picture) {
    cl_input_file file;
    if (!file.open_binary(path, dialog_picture_bytes)) {
        return file.error_text();
    }
    const std::string_view content = file.rest();
    if (content.starts_with("\x89PNG")) {
        return read_png_picture(content, picture);
    }
    if (!content.starts_with("#?")) {
        file.close();
        return read_by_lent_reader(path, picture);
    }
    cl_hdr_picture lights;
    std::string error = read_hdr_picture(content, lights);
    if (error.empty()) {
        picture = tone_mapped(lights);
    }
    return error;
}

void keep_within_bound() {
    std::list<kept_picture>& pictures = kept_pictures();
    while (pictures.size() > 1 && kept_dialog_picture_bytes() > kept_bytes_most) {
        pictures.pop_back();
    }
}

struct pixel_range {
    std::size_t first, end;
};

/// The pixels of `from` that pixel `at` of `to` stands for; at least one.
pixel_range source_range(int at, int to, int from) {
    const auto first = static_cast<std::size_t>(std::int64_t{at} * from / to);
    const auto end = static_cast<std::size_t>((std::int64_t{at} + 1) * from / to);
    return {first, std::max(first + 1, end)};
}

/// Mean of a block: colours count by their opacity.
std::array<std::uint8_t, 4> mean_pixel(const platform::WindowPicture& picture, pixel_range rows,
                                       pixel_range columns) {
    std::array<std::uint64_t, 4> sum{};
    for (std::size_t row = rows.first; row < rows.end; ++row) {
        for (std::size_t column = columns.first; column < columns.end; ++column) {
            const std::size_t at = (row * static_cast<std::size_t>(picture.width) + column) * 4;
            const std::uint64_t opacity = picture.rgba[at + 3];
            for (std::size_t channel = 0; channel < 3; ++channel) {
                sum[channel] += picture.rgba[at + channel] * opacity;
            }
            sum[3] += opacity;
        }
    }
    const std::uint64_t count = (rows.end - rows.first) * (columns.end - columns.first);
    std::array<std::uint8_t, 4> mean{};
    for (std::size_t channel = 0; channel < 3 && sum[3] > 0; ++channel) {
        mean[channel] = static_cast<std::uint8_t>((sum[channel] + sum[3] / 2) / sum[3]);
    }
    mean[3] = static_cast<std::uint8_t>((sum[3] + count / 2) / count);
    return mean;
}

bool is_absolute(const std::string& name) {
    return name.starts_with('/') || (name.size() > 2 && name[1] == ':' && name[2] == '/');
}

} // namespace

void set_dialog_picture_reader(dialog_picture_reader reader) {
    lent_reader() = std::move(reader);
    forget_dialog_pictures();
}

void forget_dialog_pictures() { kept_pictures().clear(); }

std::size_t kept_dialog_picture_bytes() {
    std::size_t sum = 0;
    for (const kept_picture& kept : kept_pictures()) {
        sum += kept.bytes();
    }
    return sum;
}

std::string read_png_picture(std::string_view bytes, platform::WindowPicture& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
        return image.message;
    }
    const std::size_t pixels =
        static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    if (pixels == 0 || pixels > dialog_picture_pixels) {
        png_image_free(&image);
        return "its size is out of range";
    }
    image.format = PNG_FORMAT_RGBA;
    platform::WindowPicture result{static_cast<int>(image.width), static_cast<int>(image.height),
                                   std::vector<std::uint8_t>(pixels * 4)};
    if (png_image_finish_read(&image, nullptr, result.rgba.data(), 0, nullptr) == 0) {
        return image.message;
    }
    picture = std::move(result);
    return {};
}

cl_dialog_picture load_dialog_picture(const std::string& path) {
    std::error_code failure;
    kept_picture fresh;
    fresh.path = path;
    fresh.time = std::filesystem::last_write_time(path, failure);
    fresh.size = failure ? 0 : std::filesystem::file_size(path, failure);
    if (failure) {
        return {nullptr, failure.message()};
    }
    fresh.is_settled = std::filesystem::file_time_type::clock::now() - fresh.time > clock_step;
    std::list<kept_picture>& pictures = kept_pictures();
    const auto there = std::find_if(pictures.begin(), pictures.end(),
                                    [&](const kept_picture& one) { return one.path == path; });
    if (there != pictures.end()) {
        if (there->time == fresh.time && there->size == fresh.size && there->is_settled) {
            pictures.splice(pictures.begin(), pictures, there);
            return pictures.front().result;
        }
        pictures.erase(there);
    }
    platform::WindowPicture picture;
    fresh.result.error = read_picture(path, picture);
    if (fresh.result.error.empty()) {
        fresh.result.picture = std::make_shared<const platform::WindowPicture>(std::move(picture));
    }
    pictures.push_front(std::move(fresh));
    keep_within_bound();
    return pictures.front().result;
}

platform::SharedPicture reduced_picture(const platform::SharedPicture& picture,
                                        platform::WindowSize room) {
    if (!picture || !is_whole(*picture) || room.width < 1 || room.height < 1 ||
        (picture->width <= room.width && picture->height <= room.height)) {
        return picture;
    }
    const double scale = std::min(static_cast<double>(room.width) / picture->width,
                                  static_cast<double>(room.height) / picture->height);
    platform::WindowPicture result;
    result.width = std::max(1, static_cast<int>(std::lround(picture->width * scale)));
    result.height = std::max(1, static_cast<int>(std::lround(picture->height * scale)));
    result.rgba.reserve(static_cast<std::size_t>(result.width) *
                        static_cast<std::size_t>(result.height) * 4);
    for (int y = 0; y < result.height; ++y) {
        const pixel_range rows = source_range(y, result.height, picture->height);
        for (int x = 0; x < result.width; ++x) {
            const auto mean =
                mean_pixel(*picture, rows, source_range(x, result.width, picture->width));
            result.rgba.insert(result.rgba.end(), mean.begin(), mean.end());
        }
    }
    return std::make_shared<const platform::WindowPicture>(std::move(result));
}

std::string find_dialog_picture(const std::string& name, const std::string& application) {
    const std::string native = native_separators(omb::trim(name));
    if (native.empty() || is_absolute(native)) {
        return !native.empty() && file_exists(native) ? native : std::string();
    }
    std::string appl = application, rest = native;
    if (const std::size_t colon = native.find(':'); colon != std::string::npos && colon > 1) {
        appl = native.substr(0, colon);
        rest = native.substr(colon + 1);
    }
    for (const std::string& one : {appl, std::string("comm")}) {
        const std::string found =
            one.empty() ? std::string() : find_application_file("images", one, rest);
        if (!found.empty()) {
            return found;
        }
    }
    return {};
}
