// PNG files through libpng, encoded in memory first: its own files would be half written when the
// disk is full.
#include "omb/base/png_file.h"

#include "platform/files.h"

#include <png.h>

bool write_png_file(const std::string& path, int width, int height,
                    std::span<const std::uint8_t> rgba, std::string& error) {
    if (width < 1 || height < 1 ||
        rgba.size() / 4 / static_cast<std::size_t>(width) != static_cast<std::size_t>(height) ||
        rgba.size() % (4 * static_cast<std::size_t>(width)) != 0) {
        error = "the picture's size does not fit its pixels";
        return false;
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    image.flags = PNG_IMAGE_FLAG_FAST;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, rgba.data(), 0, nullptr) == 0) {
        error = image.message;
        return false;
    }
    bytes.resize(size);
    platform::AtomicFile file;
    if (!file.open(path, error)) {
        return false;
    }
    file.write(bytes);
    return file.commit(error);
}
