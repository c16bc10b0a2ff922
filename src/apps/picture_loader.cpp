// The reader of pictures, loaded when it is needed.
#include "apps/picture_loader.h"

#include "host/db/image.h"
#include "omb/base/trace.h"
#include "omb/dialog/dialog_image.h"
#include "platform/files.h"
#include "platform/module.h"

#include <mutex>

namespace apps {

namespace {

using Reader = bool (*)(const char* path, AcDbImageData* data);

/// Null, and traced once, when the module is not there.
Reader reader() {
    static std::once_flag once;
    static platform::Module module;
    static Reader found = nullptr;
    std::call_once(once, [] {
        std::string error;
        if (module.open(platform::program_file().parent_path() / "qorvane_pictures.so", error)) {
            found = reinterpret_cast<Reader>(module.symbol("qorvane_read_picture"));
        } else {
            OMB_TRACE(1, "Pictures cannot be read: %s", error);
        }
    });
    return found;
}

} // namespace

void lend_picture_loader() {
    acdbSetImageLoader([](const std::filesystem::path& path, AcDbImageData& data) {
        const Reader read = reader();
        return read != nullptr && read(path.c_str(), &data);
    });
    lend_dialog_pictures();
}

void lend_dialog_pictures() {
    set_dialog_picture_reader(
        [](const std::string& path, platform::WindowPicture& picture, std::string& error) {
            const Reader read = reader();
            AcDbImageData data;
            if (read == nullptr || !read(path.c_str(), &data) || !data.isValid()) {
                error = read == nullptr ? "the reader of pictures is not there" : "it is damaged";
                return false;
            }
            picture = {static_cast<int>(data.width), static_cast<int>(data.height),
                       std::move(data.rgba)};
            return true;
        });
}

} // namespace apps
