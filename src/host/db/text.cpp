// Texts and attributes: data with their tags.
#include "host/db/text.h"

#include "host/dxf/fields.h"

#include <algorithm>

namespace {
/// Group codes of the vertical alignment: in attributes and definitions the other one is taken.
constexpr int kVerticalOfText = 73, kVerticalOfAttribute = 74;
} // namespace

ACRX_DXF_DEFINE_MEMBERS(AcDbText, AcDbEntity, "TEXT")
ACRX_DXF_DEFINE_MEMBERS(AcDbMText, AcDbText, "MTEXT")
ACRX_DXF_DEFINE_MEMBERS(AcDbAttributeDefinition, AcDbText, "ATTDEF")
ACRX_DXF_DEFINE_MEMBERS(AcDbAttribute, AcDbText, "ATTRIB")

void AcDbText::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbText>;
    static constexpr F kFields[] = {F(39, &AcDbText::thickness_, 0),
                                    F(10, &AcDbText::position_),
                                    F(40, &AcDbText::height_),
                                    F(1, &AcDbText::text_),
                                    F::angle(50, &AcDbText::rotation_, 0),
                                    F(41, &AcDbText::width_factor_, 1),
                                    F::angle(51, &AcDbText::oblique_, 0),
                                    F(7, &AcDbText::style_),
                                    F(71, &AcDbText::generation_, 0),
                                    F(72, &AcDbText::horizontal_, 0),
                                    F(11, &AcDbText::alignment_),
                                    F(210, &AcDbText::normal_)};
    // The attribute's own part has other meanings for some of these codes.
    std::span<const dxf::Tag> range = tags.subclass("AcDbText");
    range = range.empty() ? tags.own() : range;
    dxf::load_fields(*this, kFields, range, tags);
    aligned_ = std::any_of(range.begin(), range.end(), [](const auto& t) { return t.code == 11; });
    // This one stands in the second part of its name.
    const int vertical = tags.type() == "TEXT" ? kVerticalOfText : kVerticalOfAttribute;
    for (const dxf::Tag& tag : tags.own()) {
        vertical_ = tag.code == vertical ? tags.int32(tag) : vertical_;
    }
    dxf::repair_normal(normal_, tags);
}

void AcDbText::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbText");
    using F = dxf::Field<AcDbText>;
    static constexpr F kFields[] = {F(39, &AcDbText::thickness_, 0),
                                    F(10, &AcDbText::position_),
                                    F(40, &AcDbText::height_),
                                    F(1, &AcDbText::text_),
                                    F::angle(50, &AcDbText::rotation_, 0),
                                    F(41, &AcDbText::width_factor_, 1),
                                    F::angle(51, &AcDbText::oblique_, 0)};
    dxf::write_fields(*this, kFields, writer);
    if (!style_.empty()) {
        writer.text(7, style_);
    }
    static constexpr F kLast[] = {F(71, &AcDbText::generation_, 0),
                                  F(72, &AcDbText::horizontal_, 0)};
    dxf::write_fields(*this, kLast, writer);
    if (aligned_) {
        writer.point(11, alignment_);
    }
    writer.extrusion(normal_);
    if (isA() == AcDbText::desc()) {
        writer.subclass("AcDbText"); // the marker stands twice in a TEXT
        if (vertical_ != 0) {
            writer.integer(kVerticalOfText, vertical_);
        }
    }
}

void AcDbMText::dxfIn(const dxf::ObjectTags& tags) {
    // An MTEXT shares members with a TEXT, not its tags.
    AcDbEntity::dxfIn(tags); // NOLINT(bugprone-parent-virtual-call)
    std::string bytes;
    bool directed = false;
    AcGeVector3d direction;
    for (const dxf::Tag& tag : tags.own()) {
        switch (tag.code) {
        case 1:
        case 3:
            bytes += tag.raw(); // joined before decoding: a piece may end within a character
            break;
        case 10:
        case 20:
        case 30:
            dxf::set_coordinate(position_, tag.code / 10 - 1, tags.real(tag));
            break;
        case 11:
        case 21:
        case 31:
            dxf::set_coordinate(direction, tag.code / 10 - 1, tags.real(tag));
            directed = true;
            break;
        case 40:
            height_ = tags.real(tag);
            break;
        case 50: // radians here, unlike in TEXT
            rotation_ = tags.real(tag);
            directed = false;
            break;
        default:
            dxf::take_extrusion(normal_, tag, tags);
            break;
        }
    }
    text_ = tags.context().encoding().decode(bytes);
    dxf::repair_normal(normal_, tags);
    if (directed && !direction.isZeroLength()) {
        rotation_ = std::atan2(direction.y, direction.x);
    }
}

void AcDbMText::dxfOut(dxf::TagWriter& writer) const {
    constexpr std::size_t kLongest = 250; // bytes a piece
    AcDbEntity::dxfOut(writer);           // NOLINT(bugprone-parent-virtual-call)
    writer.subclass("AcDbMText");
    writer.point(10, position_);
    writer.real(40, height_);
    std::string_view rest = text_;
    while (rest.size() > kLongest) {
        std::size_t cut = kLongest;
        while (cut > 0 && (static_cast<unsigned char>(rest[cut]) & 0xc0) == 0x80) {
            --cut;
        }
        cut = cut == 0 ? kLongest : cut;
        writer.text(3, rest.substr(0, cut));
        rest.remove_prefix(cut);
    }
    writer.text(1, rest);
    writer.extrusion(normal_);
    if (rotation_ != 0) {
        writer.real(50, rotation_);
    }
}

namespace {

/// Tag, flags and, for definitions, prompt: in the subclass's own part where there is one.
void read_attribute(const dxf::ObjectTags& tags, const char* subclass, std::string& tag_text,
                    std::int32_t& flags, std::string* prompt) {
    std::span<const dxf::Tag> range = tags.subclass(subclass);
    for (const dxf::Tag& tag : range.empty() ? tags.own() : range) {
        if (tag.code == 2) {
            tag_text = tags.text(tag);
        } else if (tag.code == 70) {
            flags = tags.int32(tag);
        } else if (tag.code == 3 && prompt != nullptr) {
            *prompt = tags.text(tag);
        }
    }
}

} // namespace

void AcDbAttributeDefinition::dxfIn(const dxf::ObjectTags& tags) {
    AcDbText::dxfIn(tags);
    read_attribute(tags, "AcDbAttributeDefinition", tag_, flags_, &prompt_);
}

void AcDbAttributeDefinition::dxfOut(dxf::TagWriter& writer) const {
    AcDbText::dxfOut(writer);
    writer.subclass("AcDbAttributeDefinition");
    writer.text(3, prompt_);
    writer.text(2, tag_);
    writer.integer(70, flags_);
    if (vertical_ != 0) {
        writer.integer(kVerticalOfAttribute, vertical_);
    }
}

void AcDbAttribute::dxfIn(const dxf::ObjectTags& tags) {
    AcDbText::dxfIn(tags);
    read_attribute(tags, "AcDbAttribute", tag_, flags_, nullptr);
}

void AcDbAttribute::dxfOut(dxf::TagWriter& writer) const {
    AcDbText::dxfOut(writer);
    writer.subclass("AcDbAttribute");
    writer.text(2, tag_);
    writer.integer(70, flags_);
    if (vertical_ != 0) {
        writer.integer(kVerticalOfAttribute, vertical_);
    }
}
