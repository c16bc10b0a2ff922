// Writes tags in the form and version of one file.
#pragma once

#include "host/db/object_id.h"
#include "host/db/resbuf.h"
#include "host/dxf/encoding.h"
#include "host/dxf/tag.h"
#include "host/ge/ge.h"

#include <functional>
#include <string>
#include <string_view>

namespace dxf {

/// How a file is written.
struct WriteStyle {
    Form form = Form::kAscii;
    std::string line_end = "\n";
    int code_width = 3; ///< group codes are right-aligned to this
    int version = 1027; ///< the number in $ACADVER
    const Encoding* encoding = nullptr;
};

/// Appends tags to a string. Text is given as UTF-8 and encoded as the file has it.
class TagWriter {
public:
    TagWriter(std::string& out, const WriteStyle& style)
      : out_(out)
      , style_(style) {}

    void text(int code, std::string_view utf8);
    /// Bytes of the file, as they stand.
    void raw(int code, std::string_view bytes);
    void real(int code, double value);
    void integer(int code, std::int64_t value);
    void handle(int code, std::uint64_t value);
    void id(int code, AcDbObjectId id) { handle(code, id.handle().value()); }
    /// Codes c, c + 10 and c + 20.
    void point(int code, const AcGePoint3d& p);
    void point(int code, const AcGePoint2d& p);
    void vector(int code, const AcGeVector3d& v) { point(code, AcGePoint3d{v.x, v.y, v.z}); }
    /// Group 210 of a direction that is not the default one, world Z.
    void extrusion(const AcGeVector3d& normal) {
        if (!(normal == AcGeVector3d::kZAxis)) {
            vector(210, normal);
        }
    }
    /// Group 39 of a thickness that is not the default one, 0.
    void thickness(double value) {
        if (value != 0) {
            real(39, value);
        }
    }
    /// Bytes, cut into chunks of 127.
    void chunk(int code, std::string_view bytes);
    /// A subclass marker; files to R12 have none.
    void subclass(std::string_view name);
    void value(const AcDbValue& value);
    /// The tag of a file in either form, its value kept.
    void copy(const Tag& tag);

    int version() const { return style_.version; }
    bool has_subclasses() const { return style_.version > 1009; }
    /// Handles and owners of parts (vertices) are written only when this is set.
    void set_handle_source(std::function<std::uint64_t()> source) { handles_ = std::move(source); }
    /// Opens a part of an object: type, and in newer files handle, owner and AcDbEntity with layer.
    void part(std::string_view type, std::uint64_t owner, std::string_view layer);

private:
    void code(int code);
    void end_line() { out_ += style_.line_end; }
    std::string& out_;
    WriteStyle style_;
    std::function<std::uint64_t()> handles_;
};

/// The shortest text that gives the same number again, with a decimal point.
void append_real(std::string& out, double value);

} // namespace dxf
