// The module's entry: the window system, when there is a display.
#include "platform/files.h"
#include "platform/window/qt/qt_display.h"
#include "platform/window/qt/qt_window_system.h"

namespace {

std::string error_text;

} // namespace

/// See make_window_system_function.
extern "C" [[gnu::visibility("default")]] platform::WindowSystem*
make_window_system(int version, const char** error) {
    if (version != platform::window_system_version) {
        error_text = "the window module is of another version";
    } else {
        error_text = qApp != nullptr ? std::string() : platform::display_problem();
    }
    if (!error_text.empty()) {
        if (error != nullptr) {
            *error = error_text.c_str();
        }
        return nullptr;
    }
    auto application = qApp == nullptr ? platform::make_qt_application() : nullptr;
    return std::make_unique<platform::QtWindowSystem>(std::move(application)).release();
}
