// The block brackets of a stream: opened late, at the first geometry inside.
#pragma once

#include "omb_qorvane/stream_writer.h"

#include <cstdint>
#include <string>
#include <vector>

struct cl_instance_row {
    std::string block_name;
    std::string layer_name;
    std::uint32_t handle = 0; ///< low part of the reference's
    bool written = false;     ///< its BLOK went out
};

/// Rows by nesting depth; row 0 is model space and empty. Rows above the depth are kept for reuse.
class cl_instance_stack {
public:
    cl_instance_stack()
      : rows_(1) {}
    int depth() const { return depth_; }
    const cl_instance_row& top() const { return rows_[static_cast<std::size_t>(depth_)]; }

    void push(const std::string& block_name, const std::string& layer_name, std::uint32_t handle);
    /// Writes EBLK when the top's BLOK went out, and takes the top away.
    void pop(cl_stream_writer& stream);
    /// True when the top has a name and is not written.
    bool must_open() const { return !top().block_name.empty() && !top().written; }
    /// Writes each unwritten row that has a name, outermost first, when the top must open.
    void start_new_block_if_nec(cl_stream_writer& stream);

    /// Two blanks for each level above 1.
    static std::string indent(int level);

private:
    std::vector<cl_instance_row> rows_;
    int depth_ = 0;
};
