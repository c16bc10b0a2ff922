// `.QorImage`: layers of 32-bit floats, row blocks at a time, so that a large picture is not in
// memory twice.
#include "renderer/qor_image.h"

#include "renderer/encoded_file.h"
#include "renderer/qor_image_header.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <type_traits>

namespace renderer {

namespace fs = std::filesystem;

namespace {

constexpr int rows_at_a_time = 64; // a multiple of the 16 that ZIP packs together

[[noreturn]] void fail_load(const fs::path& path, const std::string& cause) {
    throw std::runtime_error("cannot open picture '" + path.string() + "': " + cause);
}

/// One number of each pixel.
template <typename Float>
struct Plane {
    std::string name;
    Float* first;
    std::size_t stride; ///< in floats
};

static_assert(sizeof(Vec3) == 3 * sizeof(float));

/// All numbers of a picture under the names of their EXR channels.
template <typename Picture>
auto planes_of(Picture& picture) {
    using Float = std::conditional_t<std::is_const_v<Picture>, const float, float>;
    std::vector<Plane<Float>> planes;
    const auto add = [&planes](const std::string& layer, const char* letters, auto& values) {
        Float* const members[] = {&values[0].x, &values[0].y, &values[0].z};
        for (std::size_t i = 0; i < 3; ++i)
            planes.push_back({layer + letters[i], members[i], 3});
    };
    auto& film = picture.film;
    add("", "RGB", film.radiance);
    planes.push_back({"A", film.alpha.data(), 1});
    add("albedo.", "RGB", film.albedo);
    add("normal.", "XYZ", film.normal);
    planes.push_back({"Z", film.depth.data(), 1});
    planes.push_back({"variance", film.variance.data(), 1});
    for (std::size_t i = 0; i < picture.channels.size(); ++i)
        add("light" + std::to_string(i) + ".", "RGB", picture.channels[i].radiance);
    return planes;
}

void check_picture(const fs::path& path, const ChannelFilm& picture) {
    const Film& film = picture.film;
    const auto n = static_cast<std::size_t>(std::max(film.width, 0)) *
                   static_cast<std::size_t>(std::max(film.height, 0));
    bool fits = n > 0 && film.radiance.size() == n && film.alpha.size() == n &&
                film.albedo.size() == n && film.normal.size() == n && film.depth.size() == n &&
                film.variance.size() == n && picture.channels.size() <= most_channels;
    for (const LightChannel& channel : picture.channels)
        fits = fits && channel.radiance.size() == n;
    if (!fits)
        fail_picture(path, "the picture is empty or its buffers do not fit its size");
    if (n > static_cast<std::size_t>(most_loaded_pixels))
        fail_picture(path, "it has more pixels than could be opened again");
}

OIIO::ImageSpec spec_of(const QorImage& image, const std::vector<Plane<const float>>& planes) {
    const Film& film = image.picture.film;
    OIIO::ImageSpec spec(film.width, film.height, static_cast<int>(planes.size()),
                         OIIO::TypeDesc::FLOAT);
    spec.channelnames.clear();
    for (const auto& plane : planes)
        spec.channelnames.push_back(plane.name);
    spec.alpha_channel = 3;
    spec.z_channel = spec.channelindex("Z");
    spec.attribute("oiio:ColorSpace", "Linear");
    spec.attribute("compression", "zip");
    for (const auto& [name, text] : image.metadata) // for other programs
        spec.attribute(name, text);
    for (const auto& [name, text] : qor_image_texts(image))
        spec.attribute(name, text);
    return spec;
}

bool put_rows(OIIO::ImageOutput& output, const Film& film,
              const std::vector<Plane<const float>>& planes) {
    const auto width = static_cast<std::size_t>(film.width);
    std::vector<float> rows(planes.size() * width * rows_at_a_time);
    for (int y = 0; y < film.height; y += rows_at_a_time) {
        const int end = std::min(y + rows_at_a_time, film.height);
        const std::size_t first = static_cast<std::size_t>(y) * width;
        const std::size_t count = static_cast<std::size_t>(end - y) * width;
        for (std::size_t p = 0; p < planes.size(); ++p)
            for (std::size_t i = 0; i < count; ++i)
                rows[i * planes.size() + p] = planes[p].first[(first + i) * planes[p].stride];
        if (!output.write_scanlines(y, end, 0, OIIO::TypeDesc::FLOAT, rows.data()))
            return false;
    }
    return true;
}

ExrHeader load_header(const fs::path& path) {
    std::error_code error;
    const auto status = fs::status(path, error);
    if (!fs::exists(status))
        fail_load(path, "no such file");
    if (!fs::is_regular_file(status))
        fail_load(path, "this is no file");
    std::ifstream in(path, std::ios::binary);
    if (!in)
        fail_load(path, "it cannot be read");
    const std::uintmax_t size = fs::file_size(path, error);
    if (error)
        fail_load(path, error.message());
    std::string bytes(static_cast<std::size_t>(std::min<std::uintmax_t>(size, longest_exr_header)),
                      '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    ExrHeader header;
    std::string cause;
    if (!read_exr_header(bytes, header, cause))
        fail_load(path, cause);
    // the best that ZIP can do is a little over 1000 to 1
    constexpr double best_ratio = 1100;
    const double floats =
        double(header.width) * header.height * static_cast<double>(header.channels.size());
    if (floats * sizeof(float) > best_ratio * static_cast<double>(size))
        fail_load(path, "it is cut: it is far too short for its size in pixels");
    return header;
}

void make_room(ChannelFilm& picture, int width, int height) {
    const auto n = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    Film& film = picture.film;
    film.width = width;
    film.height = height;
    film.radiance.resize(n);
    film.alpha.resize(n);
    film.albedo.resize(n);
    film.normal.resize(n);
    film.depth.resize(n);
    film.variance.resize(n);
    for (LightChannel& channel : picture.channels)
        channel.radiance.resize(n);
}

/// The decoder's channel of each plane.
std::vector<std::size_t> channel_of_planes(const fs::path& path, const OIIO::ImageSpec& spec,
                                           const std::vector<Plane<float>>& planes) {
    std::vector<std::size_t> channels;
    for (const auto& plane : planes) {
        const auto found =
            std::find(spec.channelnames.begin(), spec.channelnames.end(), plane.name);
        if (found == spec.channelnames.end())
            fail_load(path, "its layer '" + plane.name + "' is missing");
        channels.push_back(static_cast<std::size_t>(found - spec.channelnames.begin()));
    }
    return channels;
}

void load_rows(const fs::path& path, OIIO::ImageInput& input, Film& film,
               const std::vector<Plane<float>>& planes) {
    const OIIO::ImageSpec& spec = input.spec();
    const auto channels = channel_of_planes(path, spec, planes);
    const auto width = static_cast<std::size_t>(film.width);
    const auto per_pixel = static_cast<std::size_t>(spec.nchannels);
    std::vector<float> rows(per_pixel * width * rows_at_a_time);
    for (int y = 0; y < film.height; y += rows_at_a_time) {
        const int end = std::min(y + rows_at_a_time, film.height);
        if (!input.read_scanlines(0, 0, y, end, 0, 0, spec.nchannels, OIIO::TypeDesc::FLOAT,
                                  rows.data()))
            fail_load(path, "it is damaged or cut: " + input.geterror());
        const std::size_t first = static_cast<std::size_t>(y) * width;
        const std::size_t count = static_cast<std::size_t>(end - y) * width;
        for (std::size_t p = 0; p < planes.size(); ++p)
            for (std::size_t i = 0; i < count; ++i)
                planes[p].first[(first + i) * planes[p].stride] = rows[i * per_pixel + channels[p]];
    }
}

} // namespace

void save_qor_image(const fs::path& path, const QorImage& image) {
    check_picture(path, image.picture);
    const EncodedFile file(path);
    const auto planes = planes_of(image.picture);
    file.encode("exr", spec_of(image, planes), [&](OIIO::ImageOutput& output) {
        return put_rows(output, image.picture.film, planes);
    });
    file.publish();
}

QorImage load_qor_image(const fs::path& path) {
    const ExrHeader header = load_header(path);
    QorImage image;
    std::string cause;
    if (!take_qor_image_texts(header.texts, image, cause))
        fail_load(path, cause);
    auto input = OIIO::ImageInput::create("exr");
    OIIO::ImageSpec spec;
    if (!input)
        fail_load(path, OIIO::geterror());
    if (!input->open(path.string(), spec))
        fail_load(path, "it is damaged or cut: " + input->geterror());
    if (spec.width != header.width || spec.height != header.height || spec.x != 0 || spec.y != 0 ||
        spec.nchannels != static_cast<int>(header.channels.size()))
        fail_load(path, "its header is damaged");
    make_room(image.picture, header.width, header.height);
    load_rows(path, *input, image.picture.film, planes_of(image.picture));
    return image;
}

} // namespace renderer
