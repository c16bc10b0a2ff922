// Reads tags one after the other from bytes in memory, in text or binary form.
#pragma once

#include "host/dxf/tag.h"

#include <functional>

namespace dxf {

/// What is at the beginning of a file.
struct FileForm {
    Form form = Form::kAscii;
    char line_end = '\n';       ///< the last character of a line: a few old files have '\r' alone
    std::size_t first_byte = 0; ///< of the first tag, behind a byte-order mark or binary sentinel
};
FileForm detect_form(std::string_view bytes);

class TagReader {
public:
    enum class Fault {
        kBadCode,   ///< a line that should be a group code is none; it was passed over
        kTruncated, ///< the file ends within a tag
        kLostBinary ///< a binary file cannot be followed any further
    };
    using FaultSink = std::function<void(Fault, const char* where)>;

    /// Reads `bytes`, which begin at a tag and must outlive the tags.
    TagReader(std::string_view bytes, Form form, char line_end = '\n')
      : at_(bytes.data())
      , end_(bytes.data() + bytes.size())
      , form_(form)
      , line_end_(line_end) {}
    void set_fault_sink(FaultSink sink) { sink_ = std::move(sink); }
    /// The next tag; false at the end.
    bool next(Tag& tag) { return form_ == Form::kAscii ? next_ascii(tag) : next_binary(tag); }
    /// Where the next tag begins.
    const char* position() const { return at_; }

private:
    bool next_ascii(Tag& tag);
    bool next_binary(Tag& tag);
    bool read_code(int& code);
    bool binary_value(Tag& tag);
    void fault(Fault what, const char* where) {
        if (sink_) {
            sink_(what, where);
        }
    }
    const char* at_;
    const char* end_;
    Form form_;
    char line_end_;
    FaultSink sink_;
};

} // namespace dxf
