// Text styles in DXF.
#include "host/db/text_style.h"

#include "host/dxf/fields.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, "STYLE")

namespace {
constexpr std::int64_t kItalic = 0x1000000, kBold = 0x2000000;
}

struct AcDbTextStyleTableRecord::Table {
    using F = dxf::Field<AcDbTextStyleTableRecord>;
    static constexpr F kFields[] = {F(40, &AcDbTextStyleTableRecord::text_size_),
                                    F(41, &AcDbTextStyleTableRecord::x_scale_),
                                    F::angle(50, &AcDbTextStyleTableRecord::oblique_),
                                    F(71, &AcDbTextStyleTableRecord::generation_),
                                    F(42, &AcDbTextStyleTableRecord::prior_size_),
                                    F(3, &AcDbTextStyleTableRecord::file_),
                                    F(4, &AcDbTextStyleTableRecord::big_font_)};
};

void AcDbTextStyleTableRecord::dxfIn(const dxf::ObjectTags& tags) {
    AcDbSymbolTableRecord::dxfIn(tags);
    dxf::load_fields(*this, Table::kFields, tags.own(), tags);
    bool ours = false;
    for (const dxf::Tag& tag : tags.xdata()) {
        if (tag.code == 1001) {
            ours = tag.is(1001, "ACAD");
        } else if (ours && tag.code == 1000) {
            family_ = tags.text(tag);
        } else if (ours && tag.code == 1071) {
            italic_ = (tags.integer(tag) & kItalic) != 0;
            bold_ = (tags.integer(tag) & kBold) != 0;
        }
    }
}

void AcDbTextStyleTableRecord::dxfOut(dxf::TagWriter& writer) const {
    AcDbSymbolTableRecord::dxfOut(writer);
    writer.subclass("AcDbTextStyleTableRecord");
    writer.text(2, name_);
    writer.integer(70, flags_);
    dxf::write_fields(*this, Table::kFields, writer);
}
