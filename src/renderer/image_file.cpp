// Writes pictures through OpenImageIO.
#include "renderer/image_file.h"

#include "renderer/encoded_file.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <array>

namespace renderer {

namespace fs = std::filesystem;

namespace {

constexpr std::array<const char*, 5> extensions = {"png", "jpg", "jpeg", "hdr", "exr"};

std::string lower_extension(const fs::path& path) {
    std::string text = path.extension().string();
    if (!text.empty())
        text.erase(0, 1);
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

void add_metadata(OIIO::ImageSpec& spec, const std::string& extension,
                  const ImageFileOptions& options) {
    std::string comment;
    for (const auto& [name, text] : options.metadata) {
        if (extension == "png" || extension == "exr")
            spec.attribute(name, text);
        comment.append(name).append(": ").append(text).append("\n");
    }
    if ((extension == "jpg" || extension == "jpeg") && !comment.empty())
        spec.attribute("ImageDescription", comment);
    spec.attribute("XResolution", static_cast<float>(options.dots_per_inch));
    spec.attribute("YResolution", static_cast<float>(options.dots_per_inch));
    spec.attribute("ResolutionUnit", "in");
}

void write(const EncodedFile& file, const std::string& extension, const OIIO::ImageSpec& spec,
           const OIIO::TypeDesc& type, const void* pixels) {
    file.encode(extension, spec,
                [&](OIIO::ImageOutput& output) { return output.write_image(type, pixels); });
}

void write_display(const EncodedFile& file, const std::string& extension, const Film& film,
                   const ToneSettings& tone, const ImageFileOptions& options) {
    const DisplayImage image = tone_map(film, tone);
    OIIO::ImageSpec spec(image.width, image.height, 3, OIIO::TypeDesc::UINT8);
    spec.attribute("oiio:ColorSpace", "sRGB");
    spec.attribute("CompressionQuality", std::clamp(options.jpeg_quality, 1, 100));
    if (extension != "png") // full resolution of colour, as drawings have hard coloured edges
        spec.attribute("jpeg:subsampling", "4:4:4");
    add_metadata(spec, extension, options);
    write(file, extension, spec, OIIO::TypeDesc::UINT8, image.rgb.data());
}

void write_hdr(const EncodedFile& file, const Film& film, const ImageFileOptions& options) {
    OIIO::ImageSpec spec(film.width, film.height, 3, OIIO::TypeDesc::FLOAT);
    spec.attribute("oiio:ColorSpace", "Linear");
    add_metadata(spec, "hdr", options);
    write(file, "hdr", spec, OIIO::TypeDesc::FLOAT, film.radiance.data());
}

constexpr std::array<const char*, 11> exr_channels = {
    "R",        "G",        "B",        "A",        "albedo.R", "albedo.G",
    "albedo.B", "normal.X", "normal.Y", "normal.Z", "Z"};

std::vector<float> interleave(const Film& film) {
    std::vector<float> data;
    data.reserve(film.radiance.size() * exr_channels.size());
    for (std::size_t i = 0; i < film.radiance.size(); ++i) {
        const Rgb c = film.radiance[i], a = film.albedo[i];
        const Vec3 n = film.normal[i];
        data.insert(data.end(),
                    {c.x, c.y, c.z, film.alpha[i], a.x, a.y, a.z, n.x, n.y, n.z, film.depth[i]});
    }
    return data;
}

void write_exr(const EncodedFile& file, const Film& film, const ImageFileOptions& options) {
    OIIO::ImageSpec spec(film.width, film.height, static_cast<int>(exr_channels.size()),
                         OIIO::TypeDesc::FLOAT);
    spec.channelnames.assign(exr_channels.begin(), exr_channels.end());
    spec.alpha_channel = 3;
    spec.z_channel = static_cast<int>(exr_channels.size()) - 1;
    spec.attribute("oiio:ColorSpace", "Linear");
    spec.attribute("compression", "zip");
    add_metadata(spec, "exr", options);
    write(file, "exr", spec, OIIO::TypeDesc::FLOAT, interleave(film).data());
}

void check_film(const fs::path& path, const Film& film) {
    const auto n = static_cast<std::size_t>(std::max(film.width, 0)) *
                   static_cast<std::size_t>(std::max(film.height, 0));
    if (n == 0 || film.radiance.size() != n || film.alpha.size() != n || film.albedo.size() != n ||
        film.normal.size() != n || film.depth.size() != n)
        fail_picture(path, "the film is empty or its buffers do not fit its size");
}

} // namespace

bool is_supported_image_extension(const std::string& extension) {
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

void save_image(const fs::path& path, const Film& film, const ToneSettings& tone,
                const ImageFileOptions& options) {
    const std::string extension = lower_extension(path);
    if (!is_supported_image_extension(extension))
        fail_picture(path, "'" + extension + "' is not one of png, jpg, jpeg, hdr, exr");
    check_film(path, film);
    const EncodedFile file(path);
    if (extension == "hdr")
        write_hdr(file, film, options);
    else if (extension == "exr")
        write_exr(file, film, options);
    else
        write_display(file, extension, film, tone, options);
    file.publish();
}

} // namespace renderer
