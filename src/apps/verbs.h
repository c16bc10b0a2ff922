// The verbs of `qorvane`. Each returns an exit code or throws Failure.
#pragma once

#include "apps/options.h"

namespace apps {

int run_render(const Options& options);
int run_extract(const Options& options);
int run_script(const Options& options);
int run_inspect(const Options& options);
int run_convert(const Options& options);
int run_settings(const Options& options);
int run_dialog(const Options& options);

} // namespace apps
