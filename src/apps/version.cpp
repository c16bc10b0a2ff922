// The version text; the build passes the numbers in.
#include "apps/version.h"

#include <fmt/format.h>

namespace apps {

std::string version_text() {
    return fmt::format("qorvane {} ({})\nfeatures: dxf-ascii dxf-binary embree openimageio\n",
                       QORVANE_VERSION, QORVANE_COMMIT);
}

std::string version_number() { return QORVANE_VERSION; }
std::string build_name() { return QORVANE_COMMIT; }

} // namespace apps
