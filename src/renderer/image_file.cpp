// Writes pictures through OpenImageIO.
#include "renderer/image_file.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

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

[[noreturn]] void fail(const fs::path& path, const std::string& cause) {
    throw std::runtime_error("cannot write picture '" + path.string() + "': " + cause);
}

std::string system_error(int code) { return std::strerror(code); }

/// A file beside the final one that vanishes unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target)
      : path_(target.parent_path() / (".picture-" + std::to_string(::getpid()) + "-" +
                                      std::to_string(counter_++) + target.extension().string()))
      , target_(target) {}
    ~TemporaryFile() {
        std::error_code ignored;
        fs::remove(path_, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const fs::path& path() const { return path_; }
    void publish() const {
        std::error_code error;
        fs::rename(path_, target_, error);
        if (error)
            fail(target_, error.message());
        sync_folder(target_.parent_path().empty() ? fs::path(".") : target_.parent_path());
    }

private:
    /// Makes the new name last; some file systems cannot, and the picture is there all the same.
    static void sync_folder(const fs::path& folder) {
        const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (handle < 0)
            return;
        ::fsync(handle);
        ::close(handle);
    }

    static inline std::atomic<unsigned> counter_ = 0;
    fs::path path_, target_;
};

/// Says in words why a folder cannot take a file, before an encoder's own message hides it.
void check_folder(const fs::path& target) {
    const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
    std::error_code error;
    if (!fs::is_directory(folder, error))
        fail(target, "the folder '" + folder.string() + "' does not exist");
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        fail(target, "the folder '" + folder.string() + "': " + system_error(errno));
    if (fs::is_directory(target, error))
        fail(target, "a folder has that name");
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

/// Writes bytes and says truly whether they arrived; encoders that write by themselves do not.
void write_bytes(const fs::path& target, const fs::path& file,
                 const std::vector<unsigned char>& bytes) {
    const int handle = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (handle < 0)
        fail(target, system_error(errno));
    int code = 0;
    for (std::size_t done = 0; done < bytes.size() && code == 0;) {
        const ssize_t count = ::write(handle, bytes.data() + done, bytes.size() - done);
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            code = count == 0 ? ENOSPC : errno;
    }
    if (code == 0 && ::fsync(handle) != 0)
        code = errno;
    if (::close(handle) != 0 && code == 0)
        code = errno;
    if (code != 0)
        fail(target, system_error(code));
}

void write(const fs::path& target, const fs::path& file, const OIIO::ImageSpec& spec,
           const OIIO::TypeDesc& type, const void* pixels) {
    auto output = OIIO::ImageOutput::create(file.string());
    if (!output)
        fail(target, OIIO::geterror());
    std::vector<unsigned char> bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes);
    if (!output->supports("ioproxy") || !output->set_ioproxy(&memory))
        fail(target, "the encoder cannot write to memory");
    if (!output->open(file.string(), spec) || !output->write_image(type, pixels) ||
        !output->close())
        fail(target, output->geterror());
    output.reset();
    write_bytes(target, file, bytes);
}

void write_display(const fs::path& target, const fs::path& file, const std::string& extension,
                   const Film& film, const ToneSettings& tone, const ImageFileOptions& options) {
    const DisplayImage image = tone_map(film, tone);
    OIIO::ImageSpec spec(image.width, image.height, 3, OIIO::TypeDesc::UINT8);
    spec.attribute("oiio:ColorSpace", "sRGB");
    spec.attribute("CompressionQuality", std::clamp(options.jpeg_quality, 1, 100));
    if (extension != "png") // full resolution of colour, as drawings have hard coloured edges
        spec.attribute("jpeg:subsampling", "4:4:4");
    add_metadata(spec, extension, options);
    write(target, file, spec, OIIO::TypeDesc::UINT8, image.rgb.data());
}

void write_hdr(const fs::path& target, const fs::path& file, const Film& film,
               const ImageFileOptions& options) {
    OIIO::ImageSpec spec(film.width, film.height, 3, OIIO::TypeDesc::FLOAT);
    spec.attribute("oiio:ColorSpace", "Linear");
    add_metadata(spec, "hdr", options);
    write(target, file, spec, OIIO::TypeDesc::FLOAT, film.radiance.data());
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

void write_exr(const fs::path& target, const fs::path& file, const Film& film,
               const ImageFileOptions& options) {
    OIIO::ImageSpec spec(film.width, film.height, static_cast<int>(exr_channels.size()),
                         OIIO::TypeDesc::FLOAT);
    spec.channelnames.assign(exr_channels.begin(), exr_channels.end());
    spec.alpha_channel = 3;
    spec.z_channel = static_cast<int>(exr_channels.size()) - 1;
    spec.attribute("oiio:ColorSpace", "Linear");
    spec.attribute("compression", "zip");
    add_metadata(spec, "exr", options);
    write(target, file, spec, OIIO::TypeDesc::FLOAT, interleave(film).data());
}

void check_film(const fs::path& path, const Film& film) {
    const auto n = static_cast<std::size_t>(std::max(film.width, 0)) *
                   static_cast<std::size_t>(std::max(film.height, 0));
    if (n == 0 || film.radiance.size() != n || film.alpha.size() != n || film.albedo.size() != n ||
        film.normal.size() != n || film.depth.size() != n)
        fail(path, "the film is empty or its buffers do not fit its size");
}

} // namespace

bool is_supported_image_extension(const std::string& extension) {
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

void save_image(const fs::path& path, const Film& film, const ToneSettings& tone,
                const ImageFileOptions& options) {
    const std::string extension = lower_extension(path);
    if (!is_supported_image_extension(extension))
        fail(path, "'" + extension + "' is not one of png, jpg, jpeg, hdr, exr");
    check_film(path, film);
    check_folder(path);
    const TemporaryFile temporary(path);
    if (extension == "hdr")
        write_hdr(path, temporary.path(), film, options);
    else if (extension == "exr")
        write_exr(path, temporary.path(), film, options);
    else
        write_display(path, temporary.path(), extension, film, tone, options);
    temporary.publish();
}

} // namespace renderer
