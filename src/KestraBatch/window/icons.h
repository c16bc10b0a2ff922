// Icons drawn in code: sharp at any size, in the palette's own colours.
#pragma once

#include <QIcon>

namespace KestraBatch {

enum class IconShape {
    pause,
    resume,
    stop,
    again,
    save,
    save_as,
    copy,
    copy_name,
    region,
    clear_region,
    fit,
    actual_size,
    keep,
    open,
    reset,
    warning,
    program
};

QIcon make_icon(IconShape shape);

} // namespace KestraBatch
