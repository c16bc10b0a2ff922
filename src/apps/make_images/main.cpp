// make_images FOLDER: writes the dialogs' pictures below support/appl, the same bytes on every run.
#include "apps/make_images/images.h"
#include "omb/base/png_file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;
constexpr int kWrongUsage = 2, kCannotWrite = 5;

bool write_row(const fs::path& folder, const make_images::ImageRow& row) {
    make_images::Canvas canvas(row.pixels);
    row.draw(canvas);
    const fs::path path = folder / row.file;
    std::error_code failed;
    fs::create_directories(path.parent_path(), failed);
    std::string error;
    if (!write_png_file(path.string(), row.pixels, row.pixels, canvas.rgba(), error)) {
        std::fprintf(stderr, "make_images: %s\n", error.c_str());
        return false;
    }
    return true;
}

bool write_panorama(const fs::path& path) {
    std::error_code failed;
    fs::create_directories(path.parent_path(), failed);
    std::ofstream out(path, std::ios::binary);
    out << make_images::panorama();
    if (!out.flush()) {
        std::fprintf(stderr, "make_images: %s: cannot be written\n", path.c_str());
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || argv[1][0] == '-') {
        std::fputs("usage: make_images FOLDER\n", stderr);
        return kWrongUsage;
    }
    const fs::path folder = argv[1];
    for (const auto rows : {make_images::comm_images(), make_images::kestra_images()}) {
        for (const make_images::ImageRow& row : rows) {
            if (!write_row(folder, row)) {
                return kCannotWrite;
            }
        }
    }
    return write_panorama(folder / make_images::panorama_file) ? 0 : kCannotWrite;
}
