// The text of the view file.
#pragma once

#include "host/gs/view.h"

#include <string>

/// All lines for a camera in drawing units; `scale` is metres per drawing unit.
std::string view_file_text(const AcGsView& view, double scale);
