// A finished picture on its way to a file, and back from one.
#include "KestraBatch/saved_picture.h"

#include "KestraBatch/render_job.h"
#include "renderer/denoise.h"

#include <algorithm>
#include <new>

namespace KestraBatch {

namespace {

/// Runs `work` and tells whether it went well; `error` in words otherwise.
template <typename Work>
bool succeeds(const std::filesystem::path& path, std::string& error, const Work& work) {
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        error = path.string() + ": not enough memory for this picture";
    } catch (const std::exception& problem) {
        error = problem.what();
    }
    return false;
}

} // namespace

bool is_qor_image(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return extension == ".qorimage";
}

bool save_picture(const std::filesystem::path& path, const renderer::QorImage& image,
                  const renderer::ImageFileOptions& options, std::string& error) {
    return succeeds(path, error, [&] {
        if (is_qor_image(path)) {
            renderer::save_qor_image(path, image);
            return;
        }
        renderer::Film film = renderer::mix(image.picture, image.weights);
        if (is_toned(path)) {
            renderer::denoise(film);
        }
        renderer::save_image(path, film, image.tone, options);
    });
}

bool open_saved_picture(const std::filesystem::path& path, renderer::QorImage& image,
                        std::string& error) {
    return succeeds(path, error, [&] { image = renderer::load_qor_image(path); });
}

} // namespace KestraBatch
