// Light-weight and heavy polylines in DXF.
#include "host/db/polylines.h"
#include "host/dxf/fields.h"
#include "host/dxf/reader.h"

#include <algorithm>

void AcDbPolyline::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    double width = 0;
    const auto points = std::count_if(tags.own().begin(), tags.own().end(),
                                      [](const dxf::Tag& tag) { return tag.code == 10; });
    vertices_.reserve(static_cast<std::size_t>(points)); // counted, not told by the file
    for (const dxf::Tag& tag : tags.own()) {
        Vertex* last = vertices_.empty() ? nullptr : &vertices_.back();
        switch (tag.code) {
        case 10:
            vertices_.push_back({{tags.real(tag), 0}, 0, width, width});
            break;
        case 20:
        case 40:
        case 41:
        case 42:
            if (last != nullptr) {
                (tag.code == 20   ? last->point.y
                 : tag.code == 40 ? last->start_width
                 : tag.code == 41 ? last->end_width
                                  : last->bulge) = tags.real(tag);
            }
            break;
        case 43:
            width = tags.real(tag);
            break;
        case 38:
            elevation_ = tags.real(tag);
            break;
        case 39:
            thickness_ = tags.real(tag);
            break;
        case 70:
            closed_ = (tags.integer(tag) & 1) != 0;
            break;
        default:
            dxf::take_extrusion(normal_, tag, tags);
            break;
        }
    }
    dxf::repair_normal(normal_, tags);
}

void AcDbPolyline::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass("AcDbPolyline");
    writer.integer(90, numVerts());
    writer.integer(70, closed_ ? 1 : 0);
    const double width = vertices_.empty() ? 0 : vertices_.front().start_width;
    const bool even =
        width != 0 && std::all_of(vertices_.begin(), vertices_.end(), [&](const Vertex& v) {
            return v.start_width == width && v.end_width == width;
        });
    if (even) {
        writer.real(43, width);
    }
    if (elevation_ != 0) {
        writer.real(38, elevation_);
    }
    writer.thickness(thickness_);
    for (const Vertex& v : vertices_) {
        writer.point(10, v.point);
        if (!even && (v.start_width != 0 || v.end_width != 0)) {
            writer.real(40, v.start_width);
            writer.real(41, v.end_width);
        }
        if (v.bulge != 0) {
            writer.real(42, v.bulge);
        }
    }
    writer.extrusion(normal_);
}

void AcDbHeavyPolyline::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    using F = dxf::Field<AcDbHeavyPolyline>;
    static constexpr F kFields[] = {
        F(30, &AcDbHeavyPolyline::elevation_),      F(39, &AcDbHeavyPolyline::thickness_, 0),
        F(40, &AcDbHeavyPolyline::start_width_, 0), F(41, &AcDbHeavyPolyline::end_width_, 0),
        F(70, &AcDbHeavyPolyline::flags_, 0),       F(71, &AcDbHeavyPolyline::m_, 0),
        F(72, &AcDbHeavyPolyline::n_, 0),           F(73, &AcDbHeavyPolyline::m_density_, 0),
        F(74, &AcDbHeavyPolyline::n_density_, 0),   F(75, &AcDbHeavyPolyline::smooth_, 0),
        F(210, &AcDbHeavyPolyline::normal_)};
    dxf::load_fields(*this, kFields, tags.own(), tags);
    dxf::repair_normal(normal_, tags);
}

namespace {

constexpr std::int32_t kFaceRecord = 128, kFacePoint = 64;

std::string_view polyline_subclass(std::int32_t flags) {
    if ((flags & 64) != 0) {
        return "AcDbPolyFaceMesh";
    }
    if ((flags & 16) != 0) {
        return "AcDbPolygonMesh";
    }
    return (flags & 8) != 0 ? "AcDb3dPolyline" : "AcDb2dPolyline";
}

void write_vertex(const AcDbHeavyVertex& v, std::int32_t flags, dxf::TagWriter& writer) {
    const bool face = (v.flags & kFaceRecord) != 0 && (v.flags & kFacePoint) == 0;
    if (face) {
        writer.subclass("AcDbFaceRecord");
    } else {
        writer.subclass("AcDbVertex");
        writer.subclass((flags & 64) != 0   ? "AcDbPolyFaceMeshVertex"
                        : (flags & 16) != 0 ? "AcDbPolygonMeshVertex"
                        : (flags & 8) != 0  ? "AcDb3dPolylineVertex"
                                            : "AcDb2dVertex");
    }
    writer.point(10, v.point);
    if (v.start_width != 0 || v.end_width != 0) {
        writer.real(40, v.start_width);
        writer.real(41, v.end_width);
    }
    if (v.bulge != 0) {
        writer.real(42, v.bulge);
    }
    if (v.flags != 0) {
        writer.integer(70, v.flags);
    }
    for (int i = 0; face && i < 4; ++i) {
        if (const std::int32_t corner = v.face[static_cast<std::size_t>(i)]; corner != 0) {
            writer.integer(71 + i, corner);
        }
    }
}

} // namespace

void AcDbHeavyPolyline::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    writer.subclass(polyline_subclass(flags_));
    writer.integer(66, 1);
    writer.point(10, AcGePoint3d{0, 0, elevation_});
    using F = dxf::Field<AcDbHeavyPolyline>;
    static constexpr F kFields[] = {
        F(39, &AcDbHeavyPolyline::thickness_, 0),   F(70, &AcDbHeavyPolyline::flags_, 0),
        F(40, &AcDbHeavyPolyline::start_width_, 0), F(41, &AcDbHeavyPolyline::end_width_, 0),
        F(71, &AcDbHeavyPolyline::m_, 0),           F(72, &AcDbHeavyPolyline::n_, 0),
        F(73, &AcDbHeavyPolyline::m_density_, 0),   F(74, &AcDbHeavyPolyline::n_density_, 0),
        F(75, &AcDbHeavyPolyline::smooth_, 0),      F(210, &AcDbHeavyPolyline::normal_)};
    dxf::write_fields(*this, kFields, writer);
    const std::string layer_name = layer();
    const std::uint64_t own = id_.handle().value();
    for (const AcDbHeavyVertex& v : vertices_) {
        writer.part("VERTEX", own, layer_name);
        if (v.color_word != 0) {
            const auto index = static_cast<std::int64_t>(v.color_word & 0xff);
            const std::uint32_t method = v.color_word >> 24;
            if (method == AcCmEntityColor::kByACI || method == AcCmEntityColor::kByBlock) {
                writer.integer(62, index);
            } else if (method == AcCmEntityColor::kByColor && writer.version() >= 1018) {
                writer.integer(420, v.color_word & 0xffffff);
            }
        }
        write_vertex(v, flags_, writer);
    }
    writer.part("SEQEND", own, layer_name);
}

void dxf::read_vertex(AcDbHeavyPolyline& polyline, const ObjectTags& tags) {
    AcDbHeavyVertex v;
    bool true_color = false;
    for (const Tag& tag : tags.common()) {
        if (tag.code == 420) {
            v.color_word =
                AcCmEntityColor::trueColor(static_cast<std::uint32_t>(tags.integer(tag))).word();
            true_color = true;
        } else if (tag.code == 62 && !true_color) {
            v.color_word = AcCmEntityColor::index(tags.int32(tag)).word();
        }
    }
    for (const Tag& tag : tags.own()) {
        switch (tag.code) {
        case 10:
        case 20:
        case 30:
            set_coordinate(v.point, tag.code / 10 - 1, tags.real(tag));
            break;
        case 40:
            v.start_width = tags.real(tag);
            break;
        case 41:
            v.end_width = tags.real(tag);
            break;
        case 42:
            v.bulge = tags.real(tag);
            break;
        case 70:
            v.flags = tags.int32(tag);
            break;
        case 71:
        case 72:
        case 73:
        case 74:
            v.face[static_cast<std::size_t>(tag.code - 71)] = tags.int32(tag);
            break;
        default:
            break;
        }
    }
    polyline.vertices().push_back(v);
}
