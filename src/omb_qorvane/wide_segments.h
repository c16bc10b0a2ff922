// The band of a polyline with width: straight pieces with a left and a right rail, mitred where
// they meet.
#pragma once

#include "host/ge/ge.h"
#include "omb_qorvane/mesh_builder.h"
#include "omb_qorvane/stream_transform.h"

#include <vector>

/// Drawing space. Left is where normal x direction points.
struct wide_segment {
    AcGePoint3d left_start, left_end, right_start, right_end;
    AcGeVector3d normal; ///< unit, of the polyline's plane
};

wide_segment make_wide_segment(const AcGePoint3d& start, const AcGePoint3d& end,
                               const AcGeVector3d& normal, double half_width);

/// Moves the ends of neighbouring rails to where their lines meet; the last and the first are
/// neighbours when closed. Lines that do not meet stay as they are.
void join_rails(std::vector<wide_segment>& segments, bool closed);

/// The top of each piece, and, with a thickness, bottom and sides, and the two end caps when open.
void add_wide_segments(const std::vector<wide_segment>& segments, const AcGeVector3d& extrusion,
                       bool closed, const cl_stream_transform& transform, cl_mesh_builder& mesh);
