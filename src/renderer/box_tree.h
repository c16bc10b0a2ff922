// A tree of boxes, for finding the few of many that hold a point or meet a box.
#pragma once

#include "renderer/ray.h"

#include <algorithm>
#include <vector>

namespace renderer {

struct AlignedBox {
    Vec3 low{infinity, infinity, infinity}, high{-infinity, -infinity, -infinity};

    void add(Vec3 p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    bool overlaps(const AlignedBox& b) const {
        return low.x <= b.high.x && b.low.x <= high.x && low.y <= b.high.y && b.low.y <= high.y &&
               low.z <= b.high.z && b.low.z <= high.z;
    }
};

/// Split at the median along the longest side. Boxes keep their numbers.
class BoxTree {
public:
    BoxTree() = default;
    explicit BoxTree(std::vector<AlignedBox> boxes);

    bool empty() const { return boxes_.empty(); }

    /// Calls `found(number)` for each box that meets `box`, in no particular order.
    template <typename Found>
    void visit(const AlignedBox& box, Found found) const {
        if (boxes_.empty())
            return;
        std::uint32_t stack[64];
        int size = 0;
        stack[size++] = 0;
        while (size > 0) {
            const Node& node = nodes_[stack[--size]];
            if (!node.box.overlaps(box))
                continue;
            if (node.count == 0) {
                stack[size++] = node.second;
                stack[size++] = node.first;
                continue;
            }
            for (std::uint32_t i = node.first; i < node.first + node.count; ++i)
                if (boxes_[order_[i]].overlaps(box))
                    found(order_[i]);
        }
    }

private:
    struct Node {
        AlignedBox box;
        std::uint32_t first = 0, second = 0; ///< children, or the first place of a leaf
        std::uint32_t count = 0;             ///< boxes of a leaf, 0 for an inner node
    };
    std::uint32_t build(std::uint32_t begin, std::uint32_t end);

    std::vector<AlignedBox> boxes_;
    std::vector<std::uint32_t> order_;
    std::vector<Node> nodes_;
};

} // namespace renderer
