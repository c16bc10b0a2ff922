// Lights in DXF.
#include "host/db/light.h"
#include "host/dxf/fields.h"

#include <algorithm>

namespace {

enum Code {
    kName = 1,
    kColorIndex = 63,
    kType = 70,
    kVersionOrColor = 90, ///< the first is the version, the second the colour as one word
    kOn = 290,
    kWebFile = 300,
    kTrueColor = 421
};

/// A colour that is packed in one word, as drawings of R2000 have it.
AcCmEntityColor color_of_word(std::int64_t value) {
    const auto word = static_cast<std::uint32_t>(value);
    switch (word >> 24) {
    case AcCmEntityColor::kByBlock:
        return AcCmEntityColor::byBlock();
    case AcCmEntityColor::kByColor:
        return AcCmEntityColor::trueColor(word & 0xffffff);
    case AcCmEntityColor::kByACI:
        return AcCmEntityColor::index(static_cast<int>(word & 0xff));
    default:
        return AcCmEntityColor::byLayer();
    }
}

} // namespace

/// Takes a tag of the colour. `head_read`: name, type or state stood before it.
bool AcDbLight::take_color(const dxf::Tag& tag, const dxf::ObjectTags& tags, bool head_read) {
    switch (tag.code) {
    case kColorIndex:
        if (!light_color_.isByColor()) {
            light_color_ = AcCmEntityColor::index(tags.int32(tag));
        }
        return true;
    case kTrueColor:
        light_color_ = AcCmEntityColor::trueColor(static_cast<std::uint32_t>(tags.integer(tag)));
        return true;
    case kVersionOrColor:
        if (head_read) {
            light_color_ = color_of_word(tags.integer(tag));
        } else {
            version_ = tags.int32(tag);
        }
        return true;
    default:
        return false;
    }
}

void AcDbLight::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbLight>;
    static constexpr F kFields[] = {F(kName, &AcDbLight::name_),
                                    F(kType, &AcDbLight::type_),
                                    F(kOn, &AcDbLight::on_),
                                    F(291, &AcDbLight::plot_glyph_),
                                    F(40, &AcDbLight::intensity_),
                                    F(10, &AcDbLight::position_),
                                    F(11, &AcDbLight::target_),
                                    F(72, &AcDbLight::attenuation_),
                                    F(292, &AcDbLight::use_limits_),
                                    F(41, &AcDbLight::start_limit_),
                                    F(42, &AcDbLight::end_limit_),
                                    F::angle(50, &AcDbLight::hotspot_),
                                    F::angle(51, &AcDbLight::falloff_),
                                    F(293, &AcDbLight::shadows_),
                                    F(73, &AcDbLight::shadow_type_),
                                    F(91, &AcDbLight::map_size_),
                                    F(280, &AcDbLight::softness_),
                                    F(kWebFile, &AcDbLight::web_file_)};
    bool head_read = false;
    for (const dxf::Tag& tag : tags.subclass("AcDbLight")) {
        if (!take_color(tag, tags, head_read)) {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
        head_read = head_read || tag.code == kName || tag.code == kType || tag.code == kOn;
    }
    hotspot_ = std::clamp(hotspot_, 0.0, std::numbers::pi);
    falloff_ = std::clamp(falloff_, hotspot_, std::numbers::pi);
}

void AcDbLight::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbLight");
    writer.integer(kVersionOrColor, version_);
    using F = dxf::Field<AcDbLight>;
    static constexpr F kHead[] = {F(kName, &AcDbLight::name_), F(kType, &AcDbLight::type_),
                                  F(kOn, &AcDbLight::on_)};
    dxf::write_fields(*this, kHead, writer);
    constexpr int kFirstWithTrueColors = 1018;
    if (writer.version() < kFirstWithTrueColors) {
        writer.integer(kVersionOrColor, static_cast<std::int32_t>(light_color_.word()));
    } else if (light_color_.isByColor()) {
        writer.integer(kTrueColor, light_color_.word() & 0xffffff);
    } else {
        writer.integer(kColorIndex, light_color_.colorIndex());
    }
    static constexpr F kRest[] = {
        F(291, &AcDbLight::plot_glyph_),    F(40, &AcDbLight::intensity_),
        F(10, &AcDbLight::position_),       F(11, &AcDbLight::target_),
        F(72, &AcDbLight::attenuation_),    F(292, &AcDbLight::use_limits_),
        F(41, &AcDbLight::start_limit_),    F(42, &AcDbLight::end_limit_),
        F::angle(50, &AcDbLight::hotspot_), F::angle(51, &AcDbLight::falloff_),
        F(293, &AcDbLight::shadows_),       F(73, &AcDbLight::shadow_type_),
        F(91, &AcDbLight::map_size_),       F(280, &AcDbLight::softness_)};
    dxf::write_fields(*this, kRest, writer);
    if (!web_file_.empty()) {
        writer.text(kWebFile, web_file_);
    }
}
