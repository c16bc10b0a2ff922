// The bytes of a drawing and the places in them.
#include "host/dxf/document.h"

#include "host/dxf/tag_reader.h"

#include <algorithm>

namespace dxf {
namespace {

template <class Part>
const Part* find_named(const std::vector<Part>& parts, std::string_view name) {
    const auto at = std::find_if(parts.begin(), parts.end(),
                                 [&](const Part& part) { return part.name == name; });
    return at != parts.end() ? &*at : nullptr;
}

} // namespace

void Document::take(platform::MappedFile file) {
    file_ = std::move(file);
    bytes_ = file_.view();
    detect();
}

void Document::take(std::string bytes) {
    own_ = std::move(bytes);
    bytes_ = own_;
    detect();
}

void Document::detect() {
    form_ = detect_form(bytes_);
    end_of_file = bytes_.size();
    encoding.set(version, {});
}

std::uint64_t Document::line_of(const char* where) const {
    if (form_.form != Form::kAscii) {
        return offset(where);
    }
    if (counted_to_ == nullptr || where < counted_to_) {
        counted_to_ = bytes_.data();
        counted_lines_ = 0;
    }
    counted_lines_ += static_cast<std::uint64_t>(std::count(counted_to_, where, form_.line_end));
    counted_to_ = where;
    return counted_lines_ + 1;
}

WriteStyle Document::style() const {
    WriteStyle style;
    style.form = form_.form;
    style.version = version;
    style.encoding = &encoding;
    if (form_.form != Form::kAscii) {
        return style;
    }
    const std::string_view head = bytes_.substr(form_.first_byte, 4096);
    const std::size_t stop = head.find(form_.line_end);
    if (form_.line_end == '\r') {
        style.line_end = "\r";
    } else if (stop != std::string_view::npos && stop > 0 && head[stop - 1] == '\r') {
        style.line_end = "\r\n";
    }
    style.code_width = !head.empty() && head.front() != ' ' && !head.starts_with("999") ? 0 : 3;
    return style;
}

std::string Document::version_code() const { return version_told ? version_text : "AC1009"; }

const Document::Section* Document::section(std::string_view name) const {
    return find_named(sections, name);
}
const Document::Table* Document::table(std::string_view name) const {
    return find_named(tables, name);
}
const Document::HeaderVariable* Document::header_variable(std::string_view name) const {
    return find_named(header, name);
}

} // namespace dxf
