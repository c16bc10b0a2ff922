// What all entities share, in DXF.
#include "host/db/database_impl.h"
#include "host/db/entity.h"
#include "host/db/material_mapper.h"
#include "host/dxf/fields.h"

namespace {

enum Code {
    kLineType = 6,
    kLayer = 8,
    kHidden = 60,
    kColor = 62,
    kPaper = 67,
    kMaterial = 347,
    kTrueColor = 420
};

/// The index whose display colour is nearest, for files that have no true colours.
int nearest_index(const AcCmEntityColor& color) {
    int best = 7, best_distance = 1 << 30;
    for (int index = 1; index <= 255; ++index) {
        const AcCmEntityColor other = AcCmEntityColor::trueColor(AcCmEntityColor::lookUpRGB(index));
        const int red = color.red() - other.red(), green = color.green() - other.green(),
                  blue = color.blue() - other.blue();
        const int distance = red * red + green * green + blue * blue;
        if (distance < best_distance) {
            best = index;
            best_distance = distance;
        }
    }
    return best;
}

} // namespace

const AcGiMapper* AcDbEntity::mapper() const {
    return extras_ != nullptr ? extras_->mapper.get() : nullptr;
}

void AcDbEntity::read_mapper(const dxf::ObjectTags& tags) {
    const std::span<const dxf::Tag> data = tags.xdata();
    for (std::size_t i = 0; i < data.size(); ++i) {
        if (!data[i].is(1001, kAcDbMapperApplication)) {
            continue;
        }
        std::size_t end = i + 1;
        while (end < data.size() && data[end].code != 1001) {
            ++end;
        }
        if (extras_ == nullptr) {
            extras_ = std::make_unique<dxf::ObjectExtras>();
        }
        extras_->mapper = acdbMapperOf(dxf::to_values(data.subspan(i, end - i), tags));
        return;
    }
}

void AcDbEntity::dxfIn(const dxf::ObjectTags& tags) {
    read_mapper(tags);
    dxf::LoadContext& context = tags.context();
    bool true_color = false;
    for (const dxf::Tag& tag : tags.common()) {
        switch (tag.code) {
        case kLayer:
            layer_ = context.layer(tag.raw());
            break;
        case kLineType:
            line_type_ = context.line_type(tag.raw());
            break;
        case kColor:
            if (!true_color) {
                color_ = AcCmEntityColor::index(tags.int32(tag));
            }
            break;
        case kTrueColor:
            color_ = AcCmEntityColor::trueColor(static_cast<std::uint32_t>(tags.integer(tag)));
            true_color = true;
            break;
        case kHidden:
            entity_flags_ |=
                tags.integer(tag) != 0 ? std::uint8_t{DxfAccess::kInvisible} : std::uint8_t{0};
            break;
        case kPaper:
            entity_flags_ |=
                tags.integer(tag) != 0 ? std::uint8_t{DxfAccess::kPaperSpace} : std::uint8_t{0};
            break;
        case kMaterial:
            material_ = tags.id(tag);
            break;
        default:
            break;
        }
    }
    if (layer_.isNull()) {
        // Some programs put the layer behind the wrong marker; without any it is layer 0.
        const dxf::Tag* misplaced = tags.find(kLayer);
        layer_ = context.layer(misplaced != nullptr ? misplaced->raw() : "0");
    }
}

void AcDbEntity::dxfOut(dxf::TagWriter& writer) const {
    writer.subclass("AcDbEntity");
    if (isInPaperSpace()) {
        writer.integer(kPaper, 1);
    }
    writer.text(kLayer, layer());
    if (const AcDbObjectPointer<AcDbSymbolTableRecord> type(line_type_); type) {
        writer.text(kLineType, type->getName());
    }
    if (color_.isByColor() && writer.version() >= 1018) {
        writer.integer(kTrueColor, color_.word() & 0xffffff);
    } else if (!color_.isByLayer()) {
        writer.integer(kColor, color_.isByColor() ? nearest_index(color_) : color_.colorIndex());
    }
    if (visibility() == AcDb::kInvisible) {
        writer.integer(kHidden, 1);
    }
    if (!material_.isNull() && writer.version() >= 1021) {
        writer.id(kMaterial, material_);
    }
}
