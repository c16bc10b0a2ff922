// Counts how often each block stands in the scene, then goes through the tree of blocks and copies.
// Explicit stacks, as blocks may be nested deeply.
#include "KestraBatch/scene_copies.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace KestraBatch {

namespace {

/// Memory of a triangle with its share of vertices and tree, and of an instance; the latter is
/// rated higher than it is (some 450 bytes), as rays pay for each one as well.
constexpr double triangle_bytes = 130;
constexpr double instance_bytes = 1000;

class Planner {
public:
    Planner(const StreamModel& model, const std::vector<bool>& glows)
      : model_(model)
      , glows_(glows)
      , world_(model.blocks.size())
      , meshes_(world_ + 1)
      , inner_(world_ + 1)
      , times_(world_ + 1, 0)
      , weight_(world_ + 1, 0)
      , prototype_(world_, none) {}

    CopyPlan run() {
        gather();
        count();
        for (std::uint32_t i = 0; i < model_.meshes.size(); ++i) {
            const std::uint32_t block = model_.meshes[i].block;
            if (block == no_name || times_[block] == 1) {
                plan_.plain.push_back({i, 0});
            }
        }
        place_all();
        drop_repeated();
        return std::move(plan_);
    }

private:
    static constexpr std::uint32_t none = 0xffffffffu;
    struct Prototype {
        std::vector<PlacedMesh> glowing; ///< stays out of it
        std::vector<NestedBlock> inner;  ///< prototypes of their own
    };

    std::size_t container(std::uint32_t block) const { return block == no_name ? world_ : block; }

    void gather() {
        for (std::uint32_t i = 0; i < model_.meshes.size(); ++i) {
            if (model_.meshes[i].block != no_name) {
                meshes_[model_.meshes[i].block].push_back(i);
            }
        }
        for (std::uint32_t i = 0; i < model_.blocks.size(); ++i) {
            inner_[container(model_.blocks[i].parent)].push_back({i, {}});
        }
        for (const CopyRecord& copy : model_.copies) {
            inner_[container(copy.block)].push_back({copy.original, copy.place});
        }
    }

    /// A block ends before what holds it or a copy of it.
    void count() {
        std::vector<std::uint32_t> order(world_);
        std::iota(order.begin(), order.end(), 0u);
        std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
            return model_.blocks[a].closing > model_.blocks[b].closing;
        });
        const auto enter = [&](std::size_t block) {
            for (const NestedBlock& inner : inner_[block]) {
                times_[inner.block] += times_[block];
            }
        };
        times_[world_] = 1;
        enter(world_);
        for (const std::uint32_t block : order) {
            enter(block);
        }
        for (auto at = order.rbegin(); at != order.rend(); ++at) {
            for (const std::uint32_t mesh : meshes_[*at]) {
                weight_[*at] += glows_[mesh] ? 0 : model_.meshes[mesh].triangle_count;
            }
            for (const NestedBlock& inner : inner_[*at]) {
                weight_[*at] += goes_into(inner.block, *at) ? weight_[inner.block] : 0;
            }
        }
    }

    /// Whether the triangles of `inner` are cheaper in the prototype of `outer` than instances.
    bool goes_into(std::uint32_t inner, std::uint32_t outer) const {
        return triangle_bytes * static_cast<double>(weight_[inner]) <
               instance_bytes * static_cast<double>(times_[outer]);
    }

    bool is_prototype(std::uint32_t block) const {
        const auto times = static_cast<double>(times_[block]);
        return triangle_bytes * static_cast<double>(weight_[block]) * (times - 1) >
               instance_bytes * times;
    }

    std::uint32_t index_of(const Similarity& place) {
        if (place.is_identity()) {
            return 0;
        }
        if (!(plan_.places.back() == place)) {
            plan_.places.push_back(place);
        }
        return static_cast<std::uint32_t>(plan_.places.size() - 1);
    }

    void place_all() {
        std::vector<NestedBlock> stack(inner_[world_].rbegin(), inner_[world_].rend());
        const auto enter = [&](const std::vector<NestedBlock>& inner, const Similarity& place) {
            for (auto at = inner.rbegin(); at != inner.rend(); ++at) {
                stack.push_back({at->block, place.is_identity() ? at->place : place * at->place});
            }
        };
        while (!stack.empty()) {
            const NestedBlock now = stack.back();
            stack.pop_back();
            if (times_[now.block] == 1) {
                enter(inner_[now.block], now.place);
            } else if (is_prototype(now.block)) {
                const Prototype& prototype = prototype_of(now.block);
                plan_.standing.push_back({prototype_[now.block], now.place});
                add_plain(prototype.glowing, now.place);
                enter(prototype.inner, now.place);
            } else {
                for (const std::uint32_t mesh : meshes_[now.block]) {
                    plan_.plain.push_back({mesh, index_of(now.place)});
                }
                enter(inner_[now.block], now.place);
            }
        }
    }

    void add_plain(const std::vector<PlacedMesh>& meshes, const Similarity& place) {
        for (const PlacedMesh& mesh : meshes) {
            const Similarity inner = plan_.places[mesh.place];
            plan_.plain.push_back({mesh.mesh, index_of(place * inner)});
        }
    }

    /// Of copies at one and the same place the first stays.
    void drop_repeated() {
        std::vector<CopyPlan::Standing>& all = plan_.standing;
        const auto numbers = [&](std::uint32_t i) {
            const Similarity& p = all[i].place;
            return std::tuple(all[i].prototype, p.shift.x, p.shift.y, p.shift.z, p.scale, p.turn);
        };
        std::vector<std::uint32_t> order(all.size());
        std::iota(order.begin(), order.end(), 0u);
        std::stable_sort(order.begin(), order.end(),
                         [&](std::uint32_t a, std::uint32_t b) { return numbers(a) < numbers(b); });
        std::vector<bool> repeated(all.size(), false);
        for (std::size_t i = 1; i < order.size(); ++i) {
            repeated[order[i]] = numbers(order[i]) == numbers(order[i - 1]);
        }
        std::size_t i = 0;
        plan_.repeated =
            std::erase_if(all, [&](const CopyPlan::Standing&) { return repeated[i++]; });
    }

    const Prototype& prototype_of(std::uint32_t root) {
        if (prototype_[root] != none) {
            return prototypes_[prototype_[root]];
        }
        prototype_[root] = static_cast<std::uint32_t>(prototypes_.size());
        Prototype& prototype = prototypes_.emplace_back();
        std::vector<PlacedMesh>& parts = plan_.prototypes.emplace_back();
        std::vector<NestedBlock> stack{{root, {}}};
        while (!stack.empty()) {
            const NestedBlock now = stack.back();
            stack.pop_back();
            for (const std::uint32_t mesh : meshes_[now.block]) {
                (glows_[mesh] ? prototype.glowing : parts).push_back({mesh, index_of(now.place)});
            }
            for (const NestedBlock& inner : inner_[now.block]) {
                const NestedBlock placed{inner.block, now.place * inner.place};
                (goes_into(inner.block, root) ? stack : prototype.inner).push_back(placed);
            }
        }
        return prototype;
    }

    const StreamModel& model_;
    const std::vector<bool>& glows_;
    std::size_t world_; ///< number of what holds all that is in no block
    std::vector<std::vector<std::uint32_t>> meshes_; ///< of each block itself
    std::vector<std::vector<NestedBlock>> inner_;
    std::vector<std::size_t> times_;  ///< how often each stands in the scene
    std::vector<std::size_t> weight_; ///< triangles of its prototype
    std::vector<std::uint32_t> prototype_;
    std::vector<Prototype> prototypes_;
    CopyPlan plan_;
};

} // namespace

CopyPlan plan_copies(const StreamModel& model, const std::vector<bool>& glows) {
    return Planner(model, glows).run();
}

} // namespace KestraBatch
