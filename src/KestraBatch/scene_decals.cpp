// Decals: pictures on surfaces, and pictures that hang free.
#include "KestraBatch/scene_decals.h"

#include "KestraBatch/color.h"
#include "KestraBatch/picture_backing.h"
#include "omb/base/folders.h"
#include "toolkit/ts_decal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace KestraBatch {

namespace {

constexpr double lumens_per_watt = 683.0; ///< candela a square metre at a radiance of 1
constexpr float least_backing = 0.1f;     ///< share of a hanging picture with a surface behind it
constexpr double least_depth = 1e-3;      ///< metres
// A hanging picture belongs to surfaces this near to its plane.
constexpr double near_plane = 0.01, near_plane_share = 0.002, near_plane_most = 0.05;

Triple times(const Triple& t, double f) { return {t.x * f, t.y * f, t.z * f}; }
Triple plus(const Triple& a, const Triple& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Triple minus(const Triple& a, const Triple& b) { return plus(a, times(b, -1)); }
double dot(const Triple& a, const Triple& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Triple cross(const Triple& a, const Triple& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double length(const Triple& t) { return std::hypot(t.x, t.y, t.z); }
bool finite(const Triple& t) {
    return std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.z);
}
bool is_zero(const Triple& t) { return t.x == 0 && t.y == 0 && t.z == 0; }
Triple from(const CTsVector& v) { return {v.x, v.y, v.z}; }
Triple from(const CTsPoint& p) { return {p.x, p.y, p.z}; }
renderer::Vec3 narrow(const Triple& t) {
    return {static_cast<float>(t.x), static_cast<float>(t.y), static_cast<float>(t.z)};
}

/// How a length is meant that may be the lower edge or the diagonal, in metres or drawing units.
struct Reading {
    double metres_per_unit;
    bool diagonal;
};

Reading read_length(double told, double width, double height, double view_scale) {
    const double diagonal = std::hypot(width, height);
    const struct {
        double length;
        Reading reading;
    } readings[] = {{width, {1, false}},
                    {diagonal, {1, true}},
                    {width / view_scale, {view_scale, false}},
                    {diagonal / view_scale, {view_scale, true}}};
    Reading best = readings[0].reading;
    double least = std::numeric_limits<double>::infinity();
    for (const auto& row : readings) {
        const double off = std::abs(std::log(told / row.length));
        if (off < least - 1e-4) { // of equal ones the first
            least = off;
            best = row.reading;
        }
    }
    return best;
}

class DecalHanger {
public:
    DecalHanger(const SceneDescription& description, const DecalSource& source,
                renderer::Scene& scene, WarningList& warnings)
      : description_(description)
      , source_(source)
      , scene_(scene)
      , warnings_(warnings) {}

    void add(const DecalRecord& record) {
        record.is_image ? add_image(record) : add_object(record);
    }

    /// Sorts the hanging pictures: onto surfaces, or free.
    void finish() {
        const std::vector<float> backing = picture_backing(scene_, images_);
        for (std::size_t i = 0; i < images_.size(); ++i) {
            if (backing[i] >= least_backing) {
                scene_.decals[image_rows_[i]] = images_[i];
            } else {
                hang_free(images_[i]);
            }
        }
        std::erase_if(scene_.decals, [](const renderer::Decal& d) { return d.opacity <= 0; });
    }

private:
    void warn(const char* code, const DecalRecord& record, const std::string& what) {
        warnings_.add(code, ReadError::where(source_.stream, record.line) + what +
                                "; the decal is left out");
    }

    /// Index of the texture, or -1 with a warning.
    int texture(const DecalRecord& record, const std::string& name) {
        std::string error;
        const auto path = find_picture(source_.folder, name, error);
        if (path.empty()) {
            warn("decal-picture", record, error);
            return -1;
        }
        const auto [at, added] =
            textures_.try_emplace(path.string(), static_cast<int>(scene_.textures.size()));
        if (added) {
            scene_.textures.push_back({path.string(), false, white_reflectance});
        }
        return at->second;
    }

    bool is_usable(const renderer::Decal& decal) const {
        const double far = 1e7; // metres
        for (const renderer::Vec3& v : {decal.origin, decal.x_axis, decal.y_axis}) {
            if (!(renderer::length(v) < far)) {
                return false;
            }
        }
        return renderer::length(renderer::cross(decal.x_axis, decal.y_axis)) > 1e-9f;
    }

    void add_object(const DecalRecord& record) {
        CTsDecal file;
        std::string error;
        const std::string name = path_name(record.file); // never leaves its folder
        const auto path = source_.folder / name;
        std::error_code ignored;
        if (name.empty() || !std::filesystem::is_regular_file(path, ignored)) {
            warn("decal-missing", record, "there is no decal file " + path.string());
            return;
        }
        if (!file.ReadFile(path.string(), error)) {
            warn("decal-unreadable", record, error);
            return;
        }
        const int picture = texture(record, file.m_Image);
        if (picture < 0) {
            return;
        }
        const bool told =
            !is_zero(record.x_axis) && !is_zero(record.y_axis) && !is_zero(record.scale);
        const Triple scale =
            told ? record.scale : Triple{file.m_XScale, file.m_YScale, file.m_ZScale};
        const Triple origin = told ? record.origin : from(file.m_Location);
        renderer::Decal decal;
        decal.origin = narrow(minus(origin, description_.center));
        decal.x_axis = narrow(times(told ? record.x_axis : from(file.m_XAxis), scale.x));
        decal.y_axis = narrow(times(told ? record.y_axis : from(file.m_YAxis), scale.y));
        decal.depth = static_cast<float>(std::max(std::abs(scale.z), least_depth));
        decal.texture = static_cast<std::uint32_t>(picture);
        decal.opacity = static_cast<float>(file.m_Opacity);
        decal.both_sides = file.m_BothSides;
        const auto glow = static_cast<float>(file.m_Glow / lumens_per_watt / white_reflectance);
        decal.emission = {glow, glow, glow};
        if (!is_usable(decal) || !(decal.depth < 1e6f)) {
            warn("decal-place", record, "its place is no usable number");
            return;
        }
        scene_.decals.push_back(decal);
    }

    void add_image(const DecalRecord& record) {
        const auto place = place_image(record, description_.view.view_scale);
        if (!place) {
            warn("decal-place", record, "its corners, width, height and normal tell no place");
            return;
        }
        const int picture = texture(record, path_name(record.file));
        if (picture < 0) {
            return;
        }
        renderer::Decal decal;
        decal.origin = narrow(minus(place->origin, description_.center));
        decal.x_axis = narrow(place->x_axis);
        decal.y_axis = narrow(place->y_axis);
        const double size = std::max(record.width, record.height);
        decal.depth =
            static_cast<float>(std::min(near_plane + near_plane_share * size, near_plane_most));
        decal.texture = static_cast<std::uint32_t>(picture);
        decal.both_sides = true; // as a drawing shows it: from behind it is mirrored
        if (!is_usable(decal)) {
            warn("decal-place", record, "its place is no usable number");
            return;
        }
        images_.push_back(decal);
        image_rows_.push_back(scene_.decals.size());
        scene_.decals.push_back(decal);
        scene_.decals.back().opacity = 0; // keeps its place in the order until it is known
    }

    void hang_free(const renderer::Decal& decal) {
        const auto [at, added] = surfaces_.try_emplace(
            decal.texture, static_cast<std::uint32_t>(scene_.materials.size()));
        if (added) {
            renderer::Material surface;
            surface.texture = static_cast<int>(decal.texture);
            surface.cut_out = true;
            surface.roughness = 0.7f;
            surface.specular = 0.3f;
            scene_.materials.push_back(surface);
        }
        renderer::Mesh mesh;
        mesh.material = at->second;
        mesh.positions = {decal.origin, decal.origin + decal.x_axis,
                          decal.origin + decal.x_axis + decal.y_axis, decal.origin + decal.y_axis};
        mesh.uvs = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        mesh.triangles = {{0, 1, 2}, {0, 2, 3}};
        scene_.meshes.push_back(std::move(mesh));
    }

    const SceneDescription& description_;
    const DecalSource& source_;
    renderer::Scene& scene_;
    WarningList& warnings_;
    std::map<std::string, int> textures_;
    std::map<std::uint32_t, std::uint32_t> surfaces_; ///< of free pictures, by texture
    std::vector<renderer::Decal> images_;
    std::vector<std::size_t> image_rows_; ///< of the scene's decals
};

bool has_control_characters(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 32 || byte == 127;
    });
}

} // namespace

std::optional<PicturePlace> place_image(const DecalRecord& record, double view_scale) {
    const Triple way = minus(record.end, record.start);
    const double w = record.width, h = record.height;
    if (!finite(record.start) || !finite(way) || !finite(record.normal) || !(w > 0 && w < 1e7) ||
        !(h > 0 && h < 1e7) || !(length(way) > 0) || !(length(record.normal) > 0)) {
        return std::nullopt;
    }
    const Reading reading = read_length(length(way), w, h, view_scale);
    const Triple n = times(record.normal, 1 / length(record.normal));
    const Triple flat = minus(way, times(n, dot(way, n)));
    // of the diagonal d: d = w u + h (n x u), and so (w w + h h) u = w d + h (d x n)
    const Triple across = reading.diagonal ? plus(times(flat, w), times(cross(flat, n), h)) : flat;
    if (!(length(across) > 1e-9 * length(way))) {
        return std::nullopt; // the normal lies along the edge
    }
    const Triple u = times(across, 1 / length(across));
    return PicturePlace{times(record.start, reading.metres_per_unit), times(u, w),
                        times(cross(n, u), h), n};
}

std::filesystem::path find_picture(const std::filesystem::path& folder, const std::string& name,
                                   std::string& error) {
    error.clear();
    if (name.empty() || has_control_characters(name)) {
        error = name.empty() ? "it names no picture"
                             : "its picture's name holds characters that no name has";
        return {};
    }
    std::string plain = name;
    std::replace(plain.begin(), plain.end(), '\\', '/');
    const bool drive = plain.size() > 2 && plain[1] == ':' && plain[2] == '/';
    std::error_code ignored;
    std::filesystem::path path(plain);
    if (path.is_absolute() || drive) {
        if (std::filesystem::is_regular_file(path, ignored)) {
            return path;
        }
        path = path_name(plain); // it may have come along
    }
    path = path.lexically_normal();
    if (path.empty() || *path.begin() == "..") {
        error = "its picture '" + name + "' would lie outside of the folder of decals: refused";
        return {};
    }
    for (const auto& tried : {folder / path, folder / path.filename()}) {
        if (std::filesystem::is_regular_file(tried, ignored)) {
            return tried;
        }
    }
    error = "there is no picture " + (folder / path).string();
    return {};
}

void add_decals(const StreamModel& model, const SceneDescription& description,
                const DecalSource& source, renderer::Scene& scene, WarningList& warnings) {
    DecalHanger hanger(description, source, scene, warnings);
    for (const DecalRecord& record : model.decals) {
        hanger.add(record);
    }
    hanger.finish();
}

} // namespace KestraBatch
