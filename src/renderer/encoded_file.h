// A picture file on its way to the disk: encoded in memory, written beside its name, renamed.
#pragma once

#include <OpenImageIO/imageio.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace renderer {

/// Throws std::runtime_error that names the picture and the cause.
[[noreturn]] void fail_picture(const std::filesystem::path& path, const std::string& cause);

/// A file beside the final one that vanishes unless it was published. What fails throws as
/// fail_picture.
class EncodedFile {
public:
    /// Fails when the folder cannot take the file.
    explicit EncodedFile(const std::filesystem::path& target);
    ~EncodedFile();
    EncodedFile(const EncodedFile&) = delete;
    EncodedFile& operator=(const EncodedFile&) = delete;

    /// Encodes in memory, as encoders that write by themselves may end the process, then writes and
    /// syncs. `extension` names the encoder; `put_pixels` returns false when the encoder does.
    void encode(const std::string& extension, const OIIO::ImageSpec& spec,
                const std::function<bool(OIIO::ImageOutput&)>& put_pixels) const;
    void publish() const; ///< renames it to its final name

private:
    void write(const std::vector<unsigned char>& bytes) const;

    std::filesystem::path target_, path_;
};

} // namespace renderer
