// The record writers: number formats by record, without the C library's printf.
#include "omb_qorvane/stream_writer.h"

using number_text::max_chars;

cl_stream_writer::cl_stream_writer(cl_output_file& file)
  : file_(file)
  , buffer_(std::make_unique<char[]>(capacity)) {}

void cl_stream_writer::flush() {
    if (used_ > 0 && file_.is_open()) {
        file_.write_data({buffer_.get(), used_});
    }
    used_ = 0;
}

void cl_stream_writer::text(std::string_view lines) {
    if (lines.size() > capacity / 2) { // a name of absurd length
        flush();
        if (file_.is_open()) {
            file_.write_data(lines);
        }
        return;
    }
    commit(put(room(lines.size()), lines));
}

void cl_stream_writer::integer(std::string_view keyword, std::int32_t value) {
    char* out = number_text::write_int(put(room(keyword.size() + max_chars + 1), keyword), value);
    *out++ = '\n';
    commit(out);
}

void cl_stream_writer::hex(std::string_view keyword, std::uint32_t value) {
    char* out = number_text::write_hex(put(room(keyword.size() + max_chars + 1), keyword), value);
    *out++ = '\n';
    commit(out);
}

void cl_stream_writer::handle(std::string_view keyword, std::uint64_t value) {
    char* out = number_text::write_u64(put(room(keyword.size() + max_chars + 1), keyword), value);
    *out++ = '\n';
    commit(out);
}

void cl_stream_writer::triple(std::string_view head, double x, double y, double z,
                              std::string_view before_z) {
    char* out = put(room(head.size() + 3 * max_chars + 8), head);
    // Adding zero turns a negative zero into a plain one.
    out = number_text::write_g9(out, x + 0.0);
    *out++ = ',';
    out = number_text::write_g9(out, y + 0.0);
    out = put(out, before_z);
    out = number_text::write_g9(out, z + 0.0);
    out = put(out, ")\n");
    commit(out);
}

void cl_stream_writer::texture(double u, double v) {
    char* out = put(room(2 * max_chars + 16), "UVQ;(");
    out = number_text::write_g9(out, u);
    *out++ = ',';
    out = number_text::write_g9(out, v);
    out = put(out, ",0)\n");
    commit(out);
}

void cl_stream_writer::face(std::int32_t a, std::int32_t b, std::int32_t c) {
    ++faces_;
    char* out = put(room(3 * max_chars + 16), "FACE;");
    out = number_text::write_int(out, a);
    *out++ = ',';
    out = number_text::write_int(out, b);
    *out++ = ',';
    out = number_text::write_int(out, c);
    *out++ = '\n';
    commit(out);
}
