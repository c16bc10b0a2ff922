// Multilines and their styles in DXF.
#include "host/db/mline.h"

#include "host/dxf/fields.h"

#include <algorithm>

void AcDbMlineStyle::dxfIn(const dxf::ObjectTags& tags) {
    for (const dxf::Tag& tag : tags.subclass("AcDbMlineStyle")) {
        AcCmEntityColor& color = elements_.empty() ? fill_color_ : elements_.back().color;
        switch (tag.code) {
        case 2:
            name_ = tags.text(tag);
            break;
        case 70:
            flags_ = tags.int32(tag);
            break;
        case 49:
            elements_.push_back({tags.real(tag), {}});
            break;
        case 62:
            color = AcCmEntityColor::index(tags.int32(tag));
            break;
        case 420:
            color = AcCmEntityColor::trueColor(static_cast<std::uint32_t>(tags.integer(tag)));
            break;
        default:
            break;
        }
    }
    elements_.shrink_to_fit();
}

namespace {

/// What the values of codes 41 and 42 belong to: counts of 74 and 75 stand before them.
void take_parameter(AcDbMline::Vertex& vertex, const dxf::Tag& tag, const dxf::ObjectTags& tags) {
    if (tag.code == 74) {
        vertex.elements.emplace_back();
    } else if (tag.code == 41 && !vertex.elements.empty()) {
        vertex.elements.back().push_back(tags.real(tag));
    } else if (tag.code == 42) {
        vertex.fills.push_back(tags.real(tag));
    }
}

} // namespace

void AcDbMline::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbMline>;
    static constexpr F kFields[] = {F(340, &AcDbMline::style_),        F(40, &AcDbMline::scale_),
                                    F(70, &AcDbMline::justification_), F(71, &AcDbMline::flags_),
                                    F(73, &AcDbMline::elements_),      F(210, &AcDbMline::normal_)};
    for (const dxf::Tag& tag : tags.own()) {
        const int axis = tag.code / 10 - 1;
        if (tag.code == 11) {
            vertices_.emplace_back();
        }
        if (vertices_.empty() || tag.code >= 100) {
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        } else if (axis >= 0 && axis < 3 && tag.code % 10 == 1) {
            dxf::set_coordinate(vertices_.back().point, axis, tags.real(tag));
        } else if (axis >= 0 && axis < 3 && tag.code % 10 == 2) {
            dxf::set_coordinate(vertices_.back().direction, axis, tags.real(tag));
        } else if (axis >= 0 && axis < 3 && tag.code % 10 == 3) {
            dxf::set_coordinate(vertices_.back().miter, axis, tags.real(tag));
        } else {
            take_parameter(vertices_.back(), tag, tags);
        }
    }
    vertices_.shrink_to_fit();
    dxf::repair_normal(normal_, tags);
}
