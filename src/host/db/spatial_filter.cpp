// Clips of block references: their data, and what they leave.
#include "host/db/spatial_filter.h"

#include "host/db/block_drawing.h"
#include "host/db/block_reference.h"
#include "host/db/dictionary.h"
#include "host/dxf/fields.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbSpatialFilter, AcDbObject, "SPATIAL_FILTER")

namespace {

constexpr const char* kFilters = "ACAD_FILTER";
constexpr const char* kSpatial = "SPATIAL";
/// Programs that know no inverted clips keep their data here.
constexpr const char* kKeptRecord = "ACAD_XREC_ROUNDTRIP";
constexpr const char* kInverted = "ACAD_INVERTEDCLIP_ROUNDTRIP";
constexpr std::size_t kMatrixNumbers = 12;

/// Three rows of four numbers.
AcGeMatrix3d matrix(std::span<const double> numbers) {
    AcGeMatrix3d m;
    for (std::size_t i = 0; i < kMatrixNumbers; ++i) {
        m.entry[i / 4][i % 4] = numbers[i];
    }
    return m;
}

void write_matrix(const AcGeMatrix3d& m, dxf::TagWriter& writer) {
    for (std::size_t i = 0; i < kMatrixNumbers; ++i) {
        writer.real(40, m.entry[i / 4][i % 4]);
    }
}

} // namespace

void AcDbSpatialFilter::setTransforms(const AcGeMatrix3d& block_inverse,
                                      const AcGeMatrix3d& to_clip) {
    block_inverse_ = block_inverse;
    to_clip_ = to_clip;
    has_transforms_ = true;
}

void AcDbSpatialFilter::dxfIn(const dxf::ObjectTags& tags) {
    AcDbObject::dxfIn(tags);
    using F = dxf::Field<AcDbSpatialFilter>;
    static constexpr F kFields[] = {F(210, &AcDbSpatialFilter::normal_),
                                    F(11, &AcDbSpatialFilter::origin_),
                                    F(71, &AcDbSpatialFilter::enabled_)};
    std::vector<double> numbers;
    bool front = false, back = false;
    for (const dxf::Tag& tag : tags.own()) {
        switch (tag.code) {
        case 10:
            boundary_.push_back({tags.real(tag), 0});
            break;
        case 20:
            if (!boundary_.empty()) {
                boundary_.back().y = tags.real(tag);
            }
            break;
        case 72:
            front = tags.integer(tag) != 0;
            break;
        case 73:
            back = tags.integer(tag) != 0;
            break;
        case 40: // the front distance, where it is on, and the transforms
            numbers.push_back(tags.real(tag));
            break;
        case 41:
            back_ = tags.real(tag);
            break;
        default:
            dxf::load_fields(*this, kFields, std::span(&tag, 1), tags);
        }
    }
    if (!back) {
        back_.reset();
    }
    has_transforms_ = numbers.size() >= 2 * kMatrixNumbers;
    if (has_transforms_) {
        const std::span<const double> all(numbers);
        if (front && numbers.size() > 2 * kMatrixNumbers) {
            front_ = numbers.front();
        }
        block_inverse_ = matrix(all.subspan(all.size() - 2 * kMatrixNumbers, kMatrixNumbers));
        to_clip_ = matrix(all.last(kMatrixNumbers));
    }
}

void AcDbSpatialFilter::dxfOut(dxf::TagWriter& writer) const {
    AcDbObject::dxfOut(writer);
    writer.subclass("AcDbFilter");
    writer.subclass("AcDbSpatialFilter");
    writer.integer(70, static_cast<std::int64_t>(boundary_.size()));
    for (const AcGePoint2d& p : boundary_) {
        writer.point(10, p);
    }
    writer.vector(210, normal_);
    writer.point(11, origin_);
    writer.integer(71, enabled_);
    writer.integer(72, front_.has_value() ? 1 : 0);
    if (front_) {
        writer.real(40, *front_);
    }
    writer.integer(73, back_.has_value() ? 1 : 0);
    if (back_) {
        writer.real(41, *back_);
    }
    if (has_transforms_) {
        write_matrix(block_inverse_, writer);
        write_matrix(to_clip_, writer);
    }
}

std::vector<AcGePoint2d> AcDbSpatialFilter::invertedBoundary() const {
    std::vector<AcGePoint2d> points;
    AcDbObjectId id;
    const AcDbObjectPointer<AcDbDictionary> dictionary(extensionDictionary());
    if (!dictionary || dictionary->getAt(kKeptRecord, id) != Acad::eOk) {
        return points;
    }
    const AcDbObjectPointer<AcDbXrecord> record(id);
    bool ours = false;
    for (std::size_t i = 0; record && i < record->rbChain().size(); ++i) {
        const AcDbValue& value = record->rbChain()[i];
        if (value.code == 102) {
            ours = value.text() == kInverted;
        } else if (ours && value.code == 10) {
            points.push_back({value.point().x, value.point().y});
        }
    }
    return points;
}

std::optional<gi::ClipVolume> AcDbSpatialFilter::volume(const AcGeMatrix3d& block_to_world) const {
    if (!has_transforms_ || block_inverse_.det() == 0 || !draw::isFinite(block_inverse_) ||
        !draw::isFinite(block_to_world) || block_to_world.det() == 0) {
        return std::nullopt;
    }
    gi::ClipVolume volume;
    // The boundary was set where the block lay then, and goes with the block.
    volume.from_world = to_clip_ * block_inverse_.inverse() * block_to_world.inverse();
    volume.boundary = invertedBoundary();
    volume.inverted = volume.boundary.size() >= 2;
    if (!volume.inverted) {
        volume.boundary = boundary_;
    }
    volume.front_on = front_.has_value();
    volume.back_on = back_.has_value();
    volume.front = front_.value_or(0);
    volume.back = back_.value_or(0);
    return volume;
}

namespace draw {
namespace {

struct FoundClip {
    bool wanted = false;                  ///< there is one, and it is on
    std::optional<gi::ClipVolume> volume; ///< when it can be used
};

FoundClip clipOf(const AcDbBlockReference& reference, const AcGeMatrix3d& to_world) {
    FoundClip found;
    if (!reference.mayHaveAttachments()) {
        return found;
    }
    AcDbObjectId id;
    const AcDbObjectPointer<AcDbDictionary> own(reference.extensionDictionary());
    if (!own || own->getAt(kFilters, id) != Acad::eOk) {
        return found;
    }
    const AcDbObjectPointer<AcDbDictionary> filters(id);
    if (!filters || filters->getAt(kSpatial, id) != Acad::eOk) {
        return found;
    }
    const AcDbObjectPointer<AcDbSpatialFilter> filter(id);
    found.wanted = !filter || filter->isEnabled();
    if (filter && filter->isEnabled()) {
        found.volume = filter->volume(to_world * reference.blockTransform());
    }
    return found;
}

} // namespace

ReferenceClip::ReferenceClip(const AcDbBlockReference& reference, AcGiWorldDraw* draw) {
    const FoundClip found = clipOf(reference, draw->geometry().getModelToWorldTransform());
    if (found.volume) {
        scope_.emplace(*found.volume);
    }
}

void clipFindings(const AcDbBlockReference& reference, std::vector<AcDbDrawFinding>& findings) {
    const FoundClip found = clipOf(reference, AcGeMatrix3d());
    if (found.wanted && !(found.volume && gi::ClipScope(*found.volume).isActive())) {
        findings.push_back({"clip-ignored", reference.blockName(), 1});
    }
}

void clipExtents(const AcDbBlockReference& reference, AcDbExtents& box) {
    const FoundClip found = clipOf(reference, AcGeMatrix3d());
    if (!found.volume || found.volume->inverted || box.isEmpty() ||
        !gi::ClipScope(*found.volume).isActive()) {
        return;
    }
    const gi::ClipVolume& clip = *found.volume;
    AcDbExtents flat = box;
    flat.transformBy(clip.from_world);
    const AcGePoint2d first = clip.boundary.front();
    AcGePoint3d low{first.x, first.y, flat.minPoint().z}, high{first.x, first.y, flat.maxPoint().z};
    for (const AcGePoint2d& p : clip.boundary) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), low.z};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), high.z};
    }
    low = {std::max(low.x, flat.minPoint().x), std::max(low.y, flat.minPoint().y),
           clip.back_on ? std::max(low.z, clip.back) : low.z};
    high = {std::min(high.x, flat.maxPoint().x), std::min(high.y, flat.maxPoint().y),
            clip.front_on ? std::min(high.z, clip.front) : high.z};
    AcDbExtents left;
    if (low.x <= high.x && low.y <= high.y && low.z <= high.z) {
        left.addPoint(low);
        left.addPoint(high);
        left.transformBy(clip.from_world.inverse());
        const AcGePoint3d &a = left.minPoint(), &b = left.maxPoint();
        const AcGePoint3d &c = box.minPoint(), &d = box.maxPoint();
        const AcGePoint3d inner{std::max(a.x, c.x), std::max(a.y, c.y), std::max(a.z, c.z)};
        const AcGePoint3d outer{std::min(b.x, d.x), std::min(b.y, d.y), std::min(b.z, d.z)};
        left = AcDbExtents();
        if (inner.x <= outer.x && inner.y <= outer.y && inner.z <= outer.z) {
            left.addPoint(inner);
            left.addPoint(outer);
        }
    }
    box = left;
}

} // namespace draw
