// Finds the surface of each mesh: by its material file, its colour, and the name of its layer.
#pragma once

#include "KestraBatch/read_error.h"
#include "KestraBatch/stream_model.h"
#include "renderer/scene.h"
#include "toolkit/ts_material.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace KestraBatch {

/// A material file as it was read.
struct FileMaterial {
    CTsMaterial material;
    bool is_stand_in = false; ///< one of those that every drawing has: leaves all to the object
};

/// Equal surfaces are one row. The order of precedence for a mesh is: a material file that can be
/// read (in the object's colour, when it says so); COLR; the comment colour of a shell; the
/// stream's default face colour. Without a material file the layer's name may tell what the surface
/// is made of.
class SurfaceTable {
public:
    /// `folder` holds the material files. A file that cannot be read is one warning.
    SurfaceTable(const StreamModel& model, std::filesystem::path folder, WarningList& warnings);

    /// Index into surfaces() for a mesh of the model.
    std::uint32_t surface_of(const MeshRecord& mesh);
    /// Index of a surface that is given.
    std::uint32_t add(const renderer::Material& surface);

    const std::vector<renderer::Material>& surfaces() const { return surfaces_; }

private:
    /// What decides a surface: material index, colour (or one that says none), mapping key.
    using Key = std::tuple<std::int32_t, std::uint32_t, std::uint32_t>;

    renderer::Material resolve(const MeshRecord& mesh);
    const FileMaterial* file_material(std::int32_t index);
    std::optional<FileMaterial> read_material(std::int32_t index);

    const StreamModel& model_;
    std::filesystem::path folder_;
    WarningList& warnings_;
    std::unordered_map<std::int32_t, std::optional<FileMaterial>> files_;
    std::vector<renderer::Material> surfaces_;
    std::map<Key, std::uint32_t> by_key_;
};

} // namespace KestraBatch
