// Files of the applications below the support folder: dialogs, menus and images are kept as
// OMB_SUPPORT/appl/APPLICATION/FOLDER/NAME.
#pragma once

#include <string>
#include <string_view>

/// The support folder: that of the program ("OMB_SUPPORT" beside "omb_bin") unless one was set.
std::string support_folder();
/// Takes another one, for tests and for programs that live elsewhere; "" is the program's again.
void set_support_folder(const std::string& folder);

/// The file `name` in the folder `folder` ("dcl", "images") of an application; "" when there is
/// none. Names differ in case only when no exact one is there. A name may hold sub-folders; one
/// that climbs out of the folder is not found.
std::string find_application_file(std::string_view folder, std::string_view application,
                                  std::string_view name);
