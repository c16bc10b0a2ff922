// An independent reader of the batch folder, strict to the letter: what it finds wrong it tells
// with file, line and rule. It shares no code with the writers.
#pragma once

#include "text_reader.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace checker {

struct vertex {
    triple position{}, normal{};
    bool has_normal = false, has_texture = false;
};

struct mesh {
    std::string kind; ///< "CIRCLE 1", "ARC - Rad", "LINE", "PLINE - T", "MESH" or "SHELL"
    std::string key;  ///< "LAY:walls", "COL:1", "RGB:(1,2,3)" or "" for NOLY
    std::string material;
    std::uint32_t color = 0; ///< 0x00BBGGRR
    int color_index = -1;    ///< -1 for shells
    int material_index = 0;
    std::uint64_t handle = 0;
    double rotation = 0;
    int light = -1;
    bool textured = false;           ///< brings its own texture coordinates
    std::string cover;               ///< definition file of a ground cover, "" without
    std::vector<std::string> blocks; ///< names of the open brackets, outermost first
    std::map<int, vertex> vertices;  ///< by their ADDV number
    std::vector<std::array<int, 3>> faces;
};

struct light {
    int number = 0, type = 0;
    triple origin{};
};

struct plant {
    std::string file; ///< the definition's
    triple position{};
    double diameter = 0, rotation = 0, scale = 0; ///< diameter 0 for an Asuni plant
    int season = 0;
    bool from_library = false;
};

struct decal {
    std::string file;
    bool is_image = false;
    /// An object's: origin, three axes, scales. An image's: two corners, (width, height, 0),
    /// normal.
    std::vector<triple> values;
};

/// A file that the stream names: it has to stand in that folder of the drawing's folder.
struct named_file {
    std::size_t line;
    std::string folder, name;
};

struct stream {
    std::vector<std::string> faults; ///< "line 12: ..."; empty for a well-formed stream
    /// Files by index, as they stand; of two of one row the last, whose name the table keeps.
    std::map<int, std::string> materials;
    /// The first of the two, the toolkit material's.
    std::map<int, std::string> toolkit_materials;
    std::vector<mesh> meshes;
    std::vector<light> lights;
    std::vector<plant> plants;
    std::vector<decal> decals;
    std::vector<named_file> files; ///< of lights, plants, decals and ground covers
    int brackets = 0;              ///< BLOK records
};

/// Reads a whole stream. Behind a line out of place it goes on with the next thing of the body.
stream check_stream(std::string_view text);

/// Faults of a parameter file, of whichever start. `values` gets the keys in order, repeated keys
/// joined by a bar.
std::vector<std::string> check_params(std::string_view text,
                                      std::map<std::string, std::string>& values);

/// Faults of a view file. `values` gets the first number of each key.
std::vector<std::string> check_view(std::string_view text, std::map<std::string, double>& values);

/// Faults of a whole folder: its text files, each as "qor_view.txt, line 3: ...", and what they
/// name.
std::vector<std::string> check_folder(const std::filesystem::path& folder);

/// True when the text is what "%0.9g" gives for its own value.
bool is_g9(std::string_view text);

/// What to say of a line whose keyword has no place in any stream, or none in meshes; "" for
/// others.
std::string keyword_remark(std::string_view line);

std::string read_text(const std::string& path);

} // namespace checker
