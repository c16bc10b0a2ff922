// A finished picture on its way to a file, and back from one.
#pragma once

#include "renderer/qor_image.h"

#include <filesystem>
#include <string>

namespace KestraBatch {

/// True for a name that ends in `.QorImage`, in any case.
bool is_qor_image(const std::filesystem::path& path);

/// Saves by the kind of file: `.QorImage` with everything; png and jpg mixed, without grain, toned;
/// hdr and exr mixed, linear. `options` are for all kinds but `.QorImage`, which takes the
/// metadata of `image`. False with `error` that names file and cause; a file that stood there
/// stays.
bool save_picture(const std::filesystem::path& path, const renderer::QorImage& image,
                  const renderer::ImageFileOptions& options, std::string& error);

/// Opens a `.QorImage`: picture, weights and tone as they were saved. False with `error` that names
/// file and cause.
bool open_saved_picture(const std::filesystem::path& path, renderer::QorImage& image,
                        std::string& error);

} // namespace KestraBatch
