// Covers of the ground.
#include "KestraBatch/scene_covers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <map>

namespace KestraBatch {

namespace {

constexpr std::uint32_t tufts = 5;            ///< shapes of one cover
constexpr double patch_share = 0.3;           ///< side of a patch by its distance from the eye
constexpr double least_patch = 1;             ///< metres
constexpr std::size_t most_patches = 400'000; ///< of all covers
constexpr double largest_growth = 2.5;        ///< of plants that stand for several

using Corners = std::array<Triple, 3>;

Triple minus(const Triple& a, const Triple& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Triple middle(const Triple& a, const Triple& b) {
    return {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
}
double length(const Triple& t) { return std::hypot(t.x, t.y, t.z); }
double distance(const Triple& a, const Triple& b) { return length(minus(a, b)); }
bool finite(const Triple& t) {
    return std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.z);
}
CTsPoint point(const Triple& t) { return {t.x, t.y, t.z}; }

/// Twice the area, along the normal.
Triple crossed(const Corners& c) {
    const Triple a = minus(c[1], c[0]), b = minus(c[2], c[0]);
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

struct Cover {
    const CTsPlant* plant;
    std::array<std::uint32_t, tufts> prototypes;
};

/// A part of a face with the cover that grows on it.
struct Patch {
    Corners corners;
    const Cover* cover = nullptr;
    double plants = 0;   ///< expected on it
    double distance = 0; ///< metres from the eye
};

/// Gathers the patches, finds how dense they may be, and fills them.
class CoverScatter {
public:
    CoverScatter(const StreamModel& model, const SceneDescription& description,
                 renderer::Scene& scene)
      : model_(model)
      , description_(description)
      , scene_(scene) {}

    /// The cover stays where it is.
    void add_mesh(const MeshRecord& mesh, const Cover& cover) {
        const double least_cosine = std::cos(cover.plant->m_CoverSlope);
        for (std::size_t i = 0; i < mesh.triangle_count; ++i) {
            Corners corners;
            const auto& triangle = model_.triangles[mesh.first_triangle + i];
            for (std::size_t k = 0; k < 3; ++k) {
                const double f = description_.metres_per_coordinate;
                const Triple& p = model_.positions[mesh.first_vertex + triangle[k]];
                corners[k] = {p.x * f, p.y * f, p.z * f};
            }
            const Triple across = crossed(corners);
            const double area = length(across) / 2;
            const bool good = finite(corners[0]) && finite(corners[1]) && finite(corners[2]);
            if (!good || !(area > 0) || std::abs(across.z) < 2 * area * least_cosine) {
                continue;
            }
            const double plants = area * cover.plant->m_CoverDensity;
            patches_.push_back({corners, &cover, plants, distance_of(corners)});
            expected_ += plants;
        }
    }

    double expected() const { return expected_; }

    /// Fills all patches with at most about `most` plants; returns the distance from the eye in
    /// metres within which no plant is missing, or a negative number when none is missing at all.
    double fill(std::size_t most) {
        const auto limit = static_cast<double>(most);
        double whole = -1;
        if (expected_ > 0.95 * limit) { // scattering may give a few more than are expected
            split();
            whole = whole_distance(0.92 * limit);
        }
        for (const Patch& patch : patches_) {
            const double share = share_of(patch, whole);
            const std::size_t room = most - std::min(most, placed_);
            scatter(patch, share, room);
        }
        return whole;
    }

    std::size_t placed() const { return placed_; }

private:
    double distance_of(const Corners& c) const {
        const Triple mean{(c[0].x + c[1].x + c[2].x) / 3, (c[0].y + c[1].y + c[2].y) / 3,
                          (c[0].z + c[1].z + c[2].z) / 3};
        return distance(mean, description_.view.eye);
    }

    /// Halves patches along their longest edge until each is small beside its distance.
    void split() {
        for (std::size_t i = 0; i < patches_.size() && patches_.size() < most_patches;) {
            Patch& patch = patches_[i];
            std::array<double, 3> edges;
            for (std::size_t k = 0; k < 3; ++k) {
                edges[k] = distance(patch.corners[k], patch.corners[(k + 1) % 3]);
            }
            const auto longest = static_cast<std::size_t>(
                std::max_element(edges.begin(), edges.end()) - edges.begin());
            const double nearest = patch.distance - edges[longest] * 0.67;
            if (edges[longest] <= std::max(least_patch, patch_share * nearest)) {
                ++i;
                continue;
            }
            const std::size_t next = (longest + 1) % 3;
            const Triple cut = middle(patch.corners[longest], patch.corners[next]);
            Patch other = patch;
            patch.corners[next] = cut;
            other.corners[longest] = cut;
            for (Patch* half : {&patch, &other}) {
                half->plants /= 2;
                half->distance = distance_of(half->corners);
            }
            patches_.push_back(other);
        }
    }

    static double share_of(const Patch& patch, double whole) {
        if (whole < 0 || patch.distance <= whole) {
            return 1;
        }
        const double ratio = whole / patch.distance;
        return ratio * ratio;
    }

    /// The distance up to which all plants may stand when beyond it they thin out.
    double whole_distance(double limit) const {
        double low = 0, high = 1e7;
        for (int step = 0; step < 60; ++step) {
            const double tried = (low + high) / 2;
            double sum = 0;
            for (const Patch& patch : patches_) {
                sum += patch.plants * share_of(patch, tried);
            }
            (sum > limit ? high : low) = tried;
        }
        return low;
    }

    void scatter(const Patch& patch, double share, std::size_t room) {
        const Cover& cover = *patch.cover;
        CTsPlant sparse = *cover.plant;
        sparse.m_CoverDensity *= share;
        const double growth = std::min(1 / std::sqrt(std::max(share, 1e-9)), largest_growth);
        const auto places =
            TsScatterCover(sparse, point(patch.corners[0]), point(patch.corners[1]),
                           point(patch.corners[2]), sparse.m_Definition.m_Seed, room);
        for (const CTsCoverPlace& place : places) {
            const Triple at{place.location.x, place.location.y, place.location.z};
            const auto turn = static_cast<std::uint64_t>(std::abs(place.rotation) * 1e6);
            const std::uint32_t prototype =
                cover.prototypes[(turn * 2654435761u >> 7) % cover.prototypes.size()];
            const double scale = place.scale * growth;
            if (prototype == PlantShapes::none ||
                !is_usable_instance(at, scale, description_.center)) {
                continue;
            }
            scene_.instances.push_back(
                make_instance(prototype, at, place.rotation, scale, description_.center));
            ++placed_;
        }
    }

    const StreamModel& model_;
    const SceneDescription& description_;
    renderer::Scene& scene_;
    std::vector<Patch> patches_;
    double expected_ = 0;
    std::size_t placed_ = 0;
};

} // namespace

renderer::Instance make_instance(std::uint32_t prototype, const Triple& metres, double turn,
                                 double scale, const Triple& center) {
    const auto c = static_cast<float>(scale * std::cos(turn));
    const auto s = static_cast<float>(scale * std::sin(turn));
    renderer::Instance instance;
    instance.prototype = prototype;
    instance.transform = {
        {{c, -s, 0, static_cast<float>(metres.x - center.x)},
         {s, c, 0, static_cast<float>(metres.y - center.y)},
         {0, 0, static_cast<float>(scale), static_cast<float>(metres.z - center.z)}}};
    return instance;
}

bool is_usable_instance(const Triple& metres, double scale, const Triple& center) {
    return scale >= 1e-4 && scale <= 1e4 && distance(metres, center) < 1e7;
}

void add_covers(const StreamModel& model, const SceneDescription& description,
                const PlantSource& source, PlantDefinitions& definitions, PlantShapes& shapes,
                renderer::Scene& scene, WarningList& warnings) {
    CoverScatter scatter(model, description, scene);
    const auto season = static_cast<CTsSeason>(source.settings.season);
    std::map<const CTsPlant*, Cover> covers;
    for (const MeshRecord& mesh : model.meshes) {
        if (mesh.cover_file == no_name || mesh.invisible) {
            continue;
        }
        const CTsPlant* plant = definitions.find(model.names[mesh.cover_file], mesh.line);
        if (plant == nullptr) {
            continue;
        }
        const auto [at, added] = covers.try_emplace(plant, Cover{plant, {}});
        CTsPlantDefinition tuft = plant->m_Definition;
        for (std::uint32_t i = 0; i < tufts && added; ++i) {
            tuft.m_Seed = plant->m_Definition.m_Seed + i;
            at->second.prototypes[i] = shapes.prototype_of(tuft, season);
        }
        scatter.add_mesh(mesh, at->second);
    }
    if (!(scatter.expected() > 0)) {
        return;
    }
    const std::size_t most =
        source.most_instances - std::min(source.most_instances, planted(scene));
    const double whole = scatter.fill(most);
    if (whole >= 0) {
        warnings.add("cover-thinned",
                     fmt::format("the covers of the ground would take {:.0f} plants; {} are drawn, "
                                 "all of them within {:.0f} m of the eye, fewer and larger ones "
                                 "beyond",
                                 scatter.expected(), scatter.placed(), whole));
    }
}

} // namespace KestraBatch
