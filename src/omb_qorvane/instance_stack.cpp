// Block brackets.
#include "omb_qorvane/instance_stack.h"

#include <fmt/printf.h>

std::string cl_instance_stack::indent(int level) {
    return std::string(level > 1 ? 2 * static_cast<std::size_t>(level - 1) : 0, ' ');
}

void cl_instance_stack::push(const std::string& block_name, const std::string& layer_name,
                             std::uint32_t handle) {
    ++depth_;
    if (rows_.size() <= static_cast<std::size_t>(depth_)) {
        rows_.resize(static_cast<std::size_t>(depth_) + 1);
    }
    rows_[static_cast<std::size_t>(depth_)] = {block_name, layer_name, handle, false};
}

void cl_instance_stack::pop(cl_stream_writer& stream) {
    if (depth_ == 0) {
        return;
    }
    if (top().written) {
        stream.text(fmt::sprintf("EBLK;%s%s\n#;#;\n", indent(depth_), top().block_name));
    }
    --depth_;
}

void cl_instance_stack::start_new_block_if_nec(cl_stream_writer& stream) {
    if (!must_open()) {
        return;
    }
    for (int level = 1; level <= depth_; ++level) {
        cl_instance_row& row = rows_[static_cast<std::size_t>(level)];
        if (row.written || row.block_name.empty()) {
            continue;
        }
        const std::string blanks = indent(level);
        stream.text(fmt::sprintf("#;BLOK: %s%s  HNDL: 0x%x  %d\nBLOK;%s%s\nBLYR;%s%s\n", blanks,
                                 row.block_name, row.handle, static_cast<std::int32_t>(row.handle),
                                 blanks, row.block_name, blanks, row.layer_name));
        row.written = true;
    }
}
