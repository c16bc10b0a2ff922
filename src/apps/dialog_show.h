// `qorvane dialog show`: opens a dialog for who writes it.
#pragma once

#include "apps/options.h"

namespace apps {

/// Opens the dialog and prints how it ended. Throws Failure.
int show_dialog(const Options& options);

} // namespace apps
