// The parameter file: the one file that the batch process is started with; it names all others.
#pragma once

#include "KestraBatch/read_error.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KestraBatch {

/// What stands in a parameter file. Texts are as they stand; `resolve` turns a named file into a
/// path. A key that is not there leaves its text empty.
struct Parameters {
    std::string file;             ///< the parameter file's own path, for messages
    std::filesystem::path folder; ///< folder of the parameter file: relative names start here

    std::string application_name, calling_app, version, application_folder, version_info;
    std::string model_name, model_path, uuid, window_handle, window_title, database_unit;
    std::string material_maps, geometry_file, view_file, light_folder, material_folder;
    std::string globals_file, doc_file, props_file, ts3mats_file, rpc_folder;
    std::vector<std::string> support_folders;                 ///< in file order
    std::vector<std::pair<std::string, std::string>> globals; ///< name and value text
    std::vector<std::pair<std::string, std::string>> unknown; ///< key and value, kept

    /// The path that `name` means: relative to the parameter file's folder, with either separator.
    std::filesystem::path resolve(std::string_view name) const;
};

/// Largest parameter or view file that is read, in bytes.
inline constexpr std::size_t small_file_limit = std::size_t{1} << 20;

/// Reads the text of a parameter file. `file` is its path. Unknown keys, lines of no known form and
/// keys that come twice (the last one counts) are warnings. Throws ReadError when there is no key
/// at all, or when one that cannot be done without is missing or empty.
Parameters parse_params(std::string_view text, const std::string& file, WarningList& warnings);

/// Reads a small text file whole. Throws ReadError: `absent` as code when it is not there.
std::string read_small_file(const std::filesystem::path& path, ExitCode absent,
                            std::size_t limit = small_file_limit);

} // namespace KestraBatch
