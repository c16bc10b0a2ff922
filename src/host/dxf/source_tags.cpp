// Objects read anew from the drawing's file.
#include "host/dxf/source_tags.h"

#include "host/db/database_impl.h"
#include "host/dxf/tag_reader.h"

namespace dxf {

std::vector<Tag> source_tags(const AcDbObject& object) {
    std::vector<Tag> tags;
    const AcDbDatabase* db = object.database();
    const Span span = DxfAccess::span(object);
    if (db == nullptr || span.empty()) {
        return tags;
    }
    const Document& document = *DxfAccess::impl(*db).document;
    TagReader reader(document.bytes(span), document.form().form, document.form().line_end);
    Tag tag;
    while (reader.next(tag) && (tags.empty() || tag.code != 0)) {
        tags.push_back(tag);
    }
    return tags;
}

} // namespace dxf
