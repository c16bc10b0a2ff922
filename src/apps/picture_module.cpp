// The module that reads pictures for the host. The picture library is slow to load, and most
// drawings never need it, so it is not linked to the program.
#include "host/db/image.h"
#include "renderer/texture_file.h"

/// True when the picture was read into `data`.
extern "C" bool qorvane_read_picture(const char* path, AcDbImageData* data);

bool qorvane_read_picture(const char* path, AcDbImageData* data) {
    renderer::TexelImage image;
    std::string error;
    if (!renderer::read_texture_file(path, image, error)) {
        return false;
    }
    data->width = static_cast<std::uint32_t>(image.width);
    data->height = static_cast<std::uint32_t>(image.height);
    data->rgba.clear();
    data->rgba.reserve(4 * image.texels.size());
    for (const renderer::Texel& texel : image.texels) {
        data->rgba.insert(data->rgba.end(), texel.begin(), texel.end());
    }
    return true;
}
