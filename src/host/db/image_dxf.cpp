// Pictures in DXF.
#include "host/db/image.h"

#include "host/dxf/fields.h"

#include <algorithm>

void AcDbRasterImage::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbRasterImage>;
    static constexpr F kFields[] = {
        F(90, &AcDbRasterImage::version_),       F(10, &AcDbRasterImage::origin_),
        F(11, &AcDbRasterImage::u_pixel_),       F(12, &AcDbRasterImage::v_pixel_),
        F(13, &AcDbRasterImage::size_),          F(340, &AcDbRasterImage::definition_),
        F(70, &AcDbRasterImage::options_),       F(280, &AcDbRasterImage::clipping_),
        F(281, &AcDbRasterImage::brightness_),   F(282, &AcDbRasterImage::contrast_),
        F(283, &AcDbRasterImage::fade_),         F(360, &AcDbRasterImage::reactor_),
        F(71, &AcDbRasterImage::boundary_type_), F(290, &AcDbRasterImage::inverted_)};
    for (const dxf::Tag& tag : tags.subclass("AcDbRasterImage")) {
        if (!dxf::take_outline(boundary_, 14, tag, tags)) {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
    }
    boundary_.shrink_to_fit();
    for (std::int32_t* percent : {&brightness_, &contrast_, &fade_}) {
        *percent = std::clamp(*percent, 0, 100);
    }
}

void AcDbRasterImage::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbRasterImage");
    using F = dxf::Field<AcDbRasterImage>;
    static constexpr F kFields[] = {
        F(90, &AcDbRasterImage::version_),       F(10, &AcDbRasterImage::origin_),
        F::axis(11, &AcDbRasterImage::u_pixel_), F::axis(12, &AcDbRasterImage::v_pixel_),
        F(13, &AcDbRasterImage::size_),          F(340, &AcDbRasterImage::definition_),
        F(70, &AcDbRasterImage::options_),       F(280, &AcDbRasterImage::clipping_),
        F(281, &AcDbRasterImage::brightness_),   F(282, &AcDbRasterImage::contrast_),
        F(283, &AcDbRasterImage::fade_),         F(360, &AcDbRasterImage::reactor_),
        F(71, &AcDbRasterImage::boundary_type_)};
    dxf::write_fields(*this, kFields, writer);
    writer.integer(91, static_cast<std::int64_t>(boundary_.size()));
    for (const AcGePoint2d& p : boundary_) {
        writer.point(14, p);
    }
    if (inverted_ != 0) {
        writer.integer(290, inverted_);
    }
}
