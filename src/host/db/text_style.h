// Text styles: in which letters texts stand.
#pragma once

#include "host/db/symbol_tables.h"
#include "host/db/text_drawing.h"

/// DXF STYLE.
class AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord)
public:
    const std::string& fileName() const { return file_; } ///< "txt.shx", "arial.ttf"
    const std::string& bigFontFileName() const { return big_font_; }
    void setFileName(std::string file) { file_ = std::move(file); }
    /// True type family, bold and italic, from the extended data; empty when the file counts.
    const std::string& typeface() const { return family_; }
    void setFont(std::string family, bool bold, bool italic) {
        family_ = std::move(family);
        bold_ = bold;
        italic_ = italic;
    }
    bool isVertical() const { return (flags_ & 4) != 0; }
    draw::TextFont font() const { return {file_, family_, bold_, italic_}; }

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    struct Table; ///< its groups
    std::string file_, big_font_, family_;
    bool bold_ = false, italic_ = false;
    double text_size_ = 0, x_scale_ = 1, oblique_ = 0, prior_size_ = 1;
    std::int32_t generation_ = 0;
};
