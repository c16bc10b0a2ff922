// Pictures for dialogs: PNG and Radiance pictures are read here, others by whoever lends a reader.
// What was read is kept, up to a bound, and read again when its file changes.
#pragma once

#include "platform/window/window_types.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

/// A picture, or why there is none.
struct cl_dialog_picture {
    platform::SharedPicture picture; ///< null when it could not be read
    std::string error;               ///< in words
};

/// Reads any other kind of file; false with `error` filled when it cannot.
using dialog_picture_reader = std::function<bool(
    const std::string& path, platform::WindowPicture& picture, std::string& error)>;
void set_dialog_picture_reader(dialog_picture_reader reader);

/// Largest pictures that are read: pixels, and bytes of a file.
inline constexpr std::size_t dialog_picture_pixels = std::size_t{1} << 26;
inline constexpr std::size_t dialog_picture_bytes = std::size_t{1} << 29;

/// The picture of a file. Damaged, huge and missing files give an error in words.
cl_dialog_picture load_dialog_picture(const std::string& path);
void forget_dialog_pictures(); ///< empties the store
std::size_t kept_dialog_picture_bytes();

/// The picture made smaller to fit in a room, with its shape kept; one that fits as it is.
platform::SharedPicture reduced_picture(const platform::SharedPicture& picture,
                                        platform::WindowSize room);

/// Reads the bytes of a PNG file; an error in words, "" when it went well.
std::string read_png_picture(std::string_view bytes, platform::WindowPicture& picture);

/// The file of a picture: an absolute path, "application:name", or a name in the folder "images" of
/// the application, and then of "comm". "" when there is none.
std::string find_dialog_picture(const std::string& name, const std::string& application);
