// An independent reader of the batch folder's text files, strict to the letter: what it finds wrong
// it tells with the line number. It shares no code with the writers.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace checker {

using triple = std::array<double, 3>;

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
    std::vector<std::string> blocks; ///< names of the open brackets, outermost first
    std::map<int, vertex> vertices;  ///< by their ADDV number
    std::vector<std::array<int, 3>> faces;
};

struct stream {
    std::vector<std::string> faults; ///< "line 12: ..."; empty for a well-formed stream
    std::map<int, std::string> materials;
    std::vector<mesh> meshes;
    int brackets = 0; ///< BLOK records
};

/// Reads a whole stream; stops at the first fault.
stream check_stream(std::string_view text);

/// Faults of a parameter file of the plain start. `values` gets the keys in order, repeated keys
/// joined by a bar.
std::vector<std::string> check_params(std::string_view text,
                                      std::map<std::string, std::string>& values);

/// Faults of a view file. `values` gets the first number of each key.
std::vector<std::string> check_view(std::string_view text, std::map<std::string, double>& values);

/// True when the text is what "%0.9g" gives for its own value.
bool is_g9(std::string_view text);

std::string read_text(const std::string& path);

} // namespace checker
