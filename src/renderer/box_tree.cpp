// A tree of boxes.
#include "renderer/box_tree.h"

namespace renderer {

namespace {

constexpr std::uint32_t leaf_size = 4;

} // namespace

BoxTree::BoxTree(std::vector<AlignedBox> boxes)
  : boxes_(std::move(boxes))
  , order_(boxes_.size()) {
    for (std::uint32_t i = 0; i < order_.size(); ++i)
        order_[i] = i;
    if (!boxes_.empty())
        build(0, static_cast<std::uint32_t>(order_.size()));
}

std::uint32_t BoxTree::build(std::uint32_t begin, std::uint32_t end) {
    const auto index = static_cast<std::uint32_t>(nodes_.size());
    nodes_.emplace_back();
    Node node;
    for (std::uint32_t i = begin; i < end; ++i) {
        node.box.add(boxes_[order_[i]].low);
        node.box.add(boxes_[order_[i]].high);
    }
    if (end - begin <= leaf_size) {
        node.first = begin;
        node.count = end - begin;
    } else {
        const Vec3 size = node.box.high - node.box.low;
        const float Vec3::*axis = size.x >= size.y && size.x >= size.z ? &Vec3::x
                                  : size.y >= size.z                   ? &Vec3::y
                                                                       : &Vec3::z;
        const std::uint32_t middle = begin + (end - begin) / 2;
        std::nth_element(order_.begin() + begin, order_.begin() + middle, order_.begin() + end,
                         [&](std::uint32_t a, std::uint32_t b) {
                             const AlignedBox &p = boxes_[a], &q = boxes_[b];
                             return p.low.*axis + p.high.*axis < q.low.*axis + q.high.*axis;
                         });
        node.first = build(begin, middle);
        node.second = build(middle, end);
    }
    nodes_[index] = node;
    return index;
}

} // namespace renderer
