// A picture file on its way to the disk.
#include "renderer/encoded_file.h"

#include <OpenImageIO/filesystem.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace renderer {

namespace fs = std::filesystem;

namespace {

std::atomic<unsigned> counter = 0;

std::string system_error(int code) { return std::strerror(code); }

fs::path folder_of(const fs::path& target) {
    return target.parent_path().empty() ? fs::path(".") : target.parent_path();
}

/// Says in words why a folder cannot take a file, before an encoder's own message hides it.
void check_folder(const fs::path& target) {
    const fs::path folder = folder_of(target);
    std::error_code error;
    if (!fs::is_directory(folder, error))
        fail_picture(target, "the folder '" + folder.string() + "' does not exist");
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        fail_picture(target, "the folder '" + folder.string() + "': " + system_error(errno));
    if (fs::is_directory(target, error))
        fail_picture(target, "a folder has that name");
}

/// Makes the new name last; some file systems cannot, and the picture is there all the same.
void sync_folder(const fs::path& folder) {
    const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    ::fsync(handle);
    ::close(handle);
}

} // namespace

void fail_picture(const fs::path& path, const std::string& cause) {
    throw std::runtime_error("cannot write picture '" + path.string() + "': " + cause);
}

EncodedFile::EncodedFile(const fs::path& target)
  : target_(target)
  , path_(target.parent_path() / (".picture-" + std::to_string(::getpid()) + "-" +
                                  std::to_string(counter++) + target.extension().string())) {
    check_folder(target);
}

EncodedFile::~EncodedFile() {
    std::error_code ignored;
    fs::remove(path_, ignored);
}

void EncodedFile::encode(const std::string& extension, const OIIO::ImageSpec& spec,
                         const std::function<bool(OIIO::ImageOutput&)>& put_pixels) const {
    const std::string name = "picture." + extension; // chooses the encoder, nothing is opened
    auto output = OIIO::ImageOutput::create(name);
    if (!output)
        fail_picture(target_, OIIO::geterror());
    std::vector<unsigned char> bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes);
    if (!output->supports("ioproxy") || !output->set_ioproxy(&memory))
        fail_picture(target_, "the encoder cannot write to memory");
    if (!output->open(name, spec) || !put_pixels(*output) || !output->close())
        fail_picture(target_, output->geterror());
    output.reset();
    write(bytes);
}

void EncodedFile::write(const std::vector<unsigned char>& bytes) const {
    const int handle = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (handle < 0)
        fail_picture(target_, system_error(errno));
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
        fail_picture(target_, system_error(code));
}

void EncodedFile::publish() const {
    std::error_code error;
    fs::rename(path_, target_, error);
    if (error)
        fail_picture(target_, error.message());
    sync_folder(folder_of(target_));
}

} // namespace renderer
