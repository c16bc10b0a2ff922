// The axes of a container and the position pass, see dialog_layout.h.
#include "omb/dialog/dialog_layout_axis.h"

#include <algorithm>

namespace {

constexpr layout_axis horizontal{&cl_dialog_rect::width,          &cl_dialog_rect::x,
                                 &cl_dialog_parameters::imargx,   &cl_dialog_parameters::margx,
                                 &cl_dialog_parameters::no_sizex, false};
constexpr layout_axis vertical{&cl_dialog_rect::height,         &cl_dialog_rect::y,
                               &cl_dialog_parameters::imargy,   &cl_dialog_parameters::margy,
                               &cl_dialog_parameters::no_sizey, true};

char first_letter(std::string_view word) { return word.empty() ? '\0' : word.front(); }

/// The letter that places a child across its container.
char letter_across(const cl_dialog_item& container, const cl_dialog_item& child) {
    if (!child.align.empty()) {
        return first_letter(child.align);
    }
    if (child.is_button()) {
        return 'c';
    }
    if (child.kind == kind_button_row) {
        return 'r';
    }
    return container.group_alignment.empty() ? 'l' : first_letter(container.group_alignment);
}

/// The part of free space that lies ahead: none, half or all of it, by a letter. The vertical axis
/// knows `t` and `b`, with the middle for all others; the horizontal one `c` and `r`, with left for
/// all others.
std::int64_t space_ahead(std::int64_t free, char letter, bool is_vertical) {
    if (is_vertical) {
        return letter == 't' ? 0 : letter == 'b' ? free : free / 2;
    }
    return letter == 'c' ? free / 2 : letter == 'r' ? free : 0;
}

void place_children(cl_dialog_item& container) {
    const std::vector<cl_dialog_item*> children = visible_children(container);
    const layout_axis& along = axis_along(container);
    const layout_axis& across = axis_across(container);
    const bool is_vertical = &along == &vertical;

    const std::int64_t free =
        container.position.*along.size - used_length(container, children, along);
    std::int64_t at = container.position.*along.start + along.extra_before(container) +
                      space_ahead(std::max<std::int64_t>(free, 0),
                                  first_letter(container.group_alignment), is_vertical);
    const cl_dialog_item* previous = nullptr;
    for (cl_dialog_item* child : children) {
        at += previous == nullptr ? along.edge_gap(container, *child)
                                  : along.neighbour_gap(*previous, *child);
        child->position.*along.start = place(at);
        at += child->position.*along.size;
        previous = child;

        const std::int64_t gap = across.edge_gap(container, *child);
        const std::int64_t rest = std::int64_t{container.position.*across.size} -
                                  across.extra_before(container) - across.extra_after(container) -
                                  2 * gap - child->position.*across.size;
        child->position.*across.start =
            place(container.position.*across.start + across.extra_before(container) + gap +
                  space_ahead(std::max<std::int64_t>(rest, 0), letter_across(container, *child),
                              !is_vertical));
        place_children(*child);
    }
}

} // namespace

int dimension(std::int64_t units) {
    return static_cast<int>(std::clamp<std::int64_t>(units, 0, largest_dimension));
}

int place(std::int64_t units) {
    return static_cast<int>(std::clamp<std::int64_t>(units, -largest_dimension, largest_dimension));
}

std::int64_t layout_axis::edge_gap(const cl_dialog_item& container,
                                   const cl_dialog_item& child) const {
    return place(std::max(container.*inner_margin, child.*outer_margin));
}

std::int64_t layout_axis::neighbour_gap(const cl_dialog_item& one,
                                        const cl_dialog_item& next) const {
    return place(std::max(one.*outer_margin, next.*outer_margin));
}

std::int64_t layout_axis::extra_before(const cl_dialog_item& container) const {
    return has_extras ? dimension(container.top_extra) : 0;
}

std::int64_t layout_axis::extra_after(const cl_dialog_item& container) const {
    return has_extras ? dimension(container.bottom_extra) : 0;
}

const layout_axis& axis_along(const cl_dialog_item& container) {
    return container.is_row() ? horizontal : vertical;
}

const layout_axis& axis_across(const cl_dialog_item& container) {
    return container.is_row() ? vertical : horizontal;
}

std::vector<cl_dialog_item*> visible_children(const cl_dialog_item& container) {
    std::vector<cl_dialog_item*> children;
    for (cl_dialog_item* child = container.first_child; child != nullptr;
         child = child->next_sibling) {
        if (!child->skip) {
            children.push_back(child);
        }
    }
    return children;
}

int used_length(const cl_dialog_item& container, const std::vector<cl_dialog_item*>& children,
                const layout_axis& along) {
    std::int64_t length = along.extra_before(container) + along.extra_after(container);
    const cl_dialog_item* previous = nullptr;
    for (const cl_dialog_item* child : children) {
        length += previous == nullptr ? along.edge_gap(container, *child)
                                      : along.neighbour_gap(*previous, *child);
        length += child->position.*along.size;
        previous = child;
    }
    if (previous != nullptr) {
        length += along.edge_gap(container, *previous);
    }
    return dimension(length);
}

void compute_positions(cl_dcl_data& data) {
    data.root.position.x = 0;
    data.root.position.y = 0;
    place_children(data.root);
}
