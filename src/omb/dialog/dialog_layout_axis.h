// What the size pass and the position pass share: the two axes of a container, and the gaps between
// the edges along them. For the layout's own sources.
#pragma once

#include "omb/dialog/dialog_layout.h"

/// No control is larger than this, in dialog units, whatever a file says.
inline constexpr int largest_dimension = 1'000'000;

/// A size from 0 to the largest.
int dimension(std::int64_t units);
/// A place from minus to plus the largest.
int place(std::int64_t units);

/// Pieces of a label between the two characters '\' and 'n'; at least one.
std::vector<std::string_view> label_lines(std::string_view label);

/// The kind whose class and defaults a record has: of tabs with buttons it is their own, though
/// they are stored as plain tabs.
int class_kind(const cl_dialog_item& item);

/// One of the two directions, with the members that belong to it.
struct layout_axis {
    int cl_dialog_rect::*size;
    int cl_dialog_rect::*start;
    std::int32_t cl_dialog_parameters::*inner_margin;
    std::int32_t cl_dialog_parameters::*outer_margin;
    std::int32_t cl_dialog_parameters::*no_growth;
    bool has_extras; ///< frames have room above and below

    /// Between a container's edge and the child that lies at it.
    std::int64_t edge_gap(const cl_dialog_item& container, const cl_dialog_item& child) const;
    /// Between two neighbours: their own margins only.
    std::int64_t neighbour_gap(const cl_dialog_item& one, const cl_dialog_item& next) const;
    std::int64_t extra_before(const cl_dialog_item& container) const;
    std::int64_t extra_after(const cl_dialog_item& container) const;
};

/// The axis on which a container lines up its children, and the other one.
const layout_axis& axis_along(const cl_dialog_item& container);
const layout_axis& axis_across(const cl_dialog_item& container);

/// The children that take space, in order.
std::vector<cl_dialog_item*> visible_children(const cl_dialog_item& container);

/// Length of all visible children with the gaps between and around them and the frame's extras.
int used_length(const cl_dialog_item& container, const std::vector<cl_dialog_item*>& children,
                const layout_axis& along);
