// Faces of stored graphics: meshes, shells, and light-weight polylines.
#include "host/db/draw_util.h"
#include "host/db/polylines.h"
#include "host/db/proxy_replay.h"
#include "host/ge/triangulate.h"
#include "host/gi/face_list.h"

#include <cstdlib>
#include <limits>
#include <map>

namespace proxy {
namespace {

/// Bits that tell which data of edges, faces or vertices follow, in this order.
enum Trait : std::uint32_t {
    kColors = 0x1,
    kLayers = 0x2,
    kLineTypes = 0x4,
    kMarkers = 0x20,
    kVisibilities = 0x40,
    kNormals = 0x80,
    kOrientation = 0x400
};

struct EdgeData {
    std::vector<std::int32_t> visibilities;
};

EdgeData readEdges(Bytes& in, std::uint32_t edges) {
    EdgeData data;
    const std::uint32_t flags = in.left() >= 4 ? in.u32() : 0;
    for (const std::uint32_t bit : {kColors, kLayers, kLineTypes, kMarkers}) {
        if ((flags & bit) != 0) {
            in.integers(edges);
        }
    }
    if ((flags & kVisibilities) != 0) {
        data.visibilities = in.integers(edges);
        for (std::int32_t& shown : data.visibilities) {
            shown = shown != 0 ? 1 : 0;
        }
    }
    return data;
}

std::vector<AcGeVector3d> readNormals(Bytes& in, std::uint32_t count) {
    std::vector<AcGeVector3d> normals;
    for (const AcGePoint3d& p : in.points(count)) {
        normals.push_back(p.asVector());
    }
    return normals;
}

} // namespace

/// Empty members are absent.
struct Replay::FaceData {
    std::vector<std::int32_t> edge_visibilities;
    std::vector<std::int32_t> colors, layers, visibilities; ///< one a face
    std::vector<AcGeVector3d> normals;                      ///< one a vertex

    void read(Bytes& in, std::uint32_t edges, std::uint32_t faces, std::uint32_t vertices) {
        edge_visibilities = readEdges(in, edges).visibilities;
        const std::uint32_t face_flags = in.left() >= 4 ? in.u32() : 0;
        if ((face_flags & kColors) != 0) {
            colors = in.integers(faces);
        }
        if ((face_flags & kLayers) != 0) {
            layers = in.integers(faces);
        }
        if ((face_flags & kMarkers) != 0) {
            in.integers(faces);
        }
        if ((face_flags & kNormals) != 0) {
            in.points(faces);
        }
        if ((face_flags & kVisibilities) != 0) {
            visibilities = in.integers(faces);
        }
        const std::uint32_t vertex_flags = in.left() >= 4 ? in.u32() : 0;
        if ((vertex_flags & kNormals) != 0) {
            normals = readNormals(in, vertices);
        }
        if ((vertex_flags & kOrientation) != 0) {
            in.u32();
        }
    }
};

/// Faces of one colour and layer, for receivers that fan each face and know no holes.
struct Replay::ShellPart {
    gi::FaceList list;

    /// A face and its holes, as triangles.
    void addWithHoles(const std::vector<std::span<const std::int32_t>>& rings) {
        std::vector<AcGePoint3d> outer;
        for (const std::int32_t i : rings[0]) {
            outer.push_back(list.points[static_cast<std::size_t>(i)]);
        }
        AcGeVector3d normal;
        for (std::size_t i = 1; i + 1 < outer.size(); ++i) {
            normal = normal + (outer[i] - outer[0]).crossProduct(outer[i + 1] - outer[0]);
        }
        if (normal.isZeroLength()) {
            return;
        }
        const AcGeMatrix3d plane = AcGeMatrix3d::translation(outer[0].asVector()) *
                                   AcGeMatrix3d::planeToWorld(normal.normal());
        const AcGeMatrix3d flat = plane.inverse();
        std::vector<std::vector<AcGePoint2d>> outlines;
        std::vector<std::int32_t> places;
        for (const auto& ring : rings) {
            auto& outline = outlines.emplace_back();
            for (const std::int32_t i : ring) {
                const AcGePoint3d p = list.points[static_cast<std::size_t>(i)].transformedBy(flat);
                outline.push_back({p.x, p.y});
                places.push_back(i);
            }
        }
        const ge::Triangulation area = ge::triangulateRings(outlines);
        for (std::size_t i = places.size(); i < area.points.size(); ++i) { // crossings
            places.push_back(static_cast<std::int32_t>(list.points.size()));
            list.points.push_back(
                AcGePoint3d{area.points[i].x, area.points[i].y, 0}.transformedBy(plane));
        }
        for (const auto& t : area.triangles) {
            const std::int32_t corners[] = {places[t[0]], places[t[1]], places[t[2]]};
            list.add(corners);
        }
    }
};

namespace {

/// A face with its holes, by places in the face list.
struct Rings {
    std::vector<std::span<const std::int32_t>> rings;
    std::size_t first = 0; ///< number of the outer one among all rings
    std::size_t edge = 0;  ///< number of its first edge
};

std::vector<Rings> divide(std::span<const std::int32_t> faces) {
    std::vector<Rings> all;
    std::size_t number = 0, edge = 0;
    for (std::size_t i = 0; i < faces.size(); ++number) {
        const auto corners = static_cast<std::size_t>(std::abs(faces[i]));
        if (faces[i] > 0) {
            all.push_back({{}, number, edge});
        }
        all.back().rings.push_back(faces.subspan(i + 1, corners));
        i += corners + 1;
        edge += corners;
    }
    return all;
}

} // namespace

void Replay::drawFaces(std::span<const AcGePoint3d> points, std::span<const std::int32_t> faces,
                       const FaceData& data) {
    constexpr std::int32_t kUnset = std::numeric_limits<std::int32_t>::min();
    std::map<std::pair<std::int32_t, std::int32_t>, ShellPart> parts;
    const std::vector<std::uint8_t> edges(data.edge_visibilities.begin(),
                                          data.edge_visibilities.end());
    for (const Rings& face : divide(faces)) {
        if (!data.visibilities.empty() && data.visibilities[face.first] == 0) {
            continue;
        }
        ShellPart& part = parts[{data.colors.empty() ? kUnset : data.colors[face.first],
                                 data.layers.empty() ? kUnset : data.layers[face.first]}];
        if (part.list.points.empty()) {
            part.list.points.assign(points.begin(), points.end());
        }
        if (face.rings.size() > 1) {
            part.addWithHoles(face.rings);
        } else {
            part.list.add(face.rings[0], edges.empty() ? nullptr : edges.data() + face.edge);
        }
    }
    const AcCmEntityColor color = traits().trueColor();
    const AcDbObjectId layer = traits().layerId();
    for (auto& [trait, part] : parts) {
        if (trait.first != kUnset) {
            setColorIndex(trait.first);
        }
        if (trait.second != kUnset) {
            setLayerIndex(trait.second);
        }
        std::vector<AcGeVector3d> normals = data.normals;
        if (!normals.empty()) {
            normals.resize(part.list.points.size(), AcGeVector3d::kZAxis);
        }
        gi::shell(draw_, part.list.points, part.list.faces,
                  edges.empty() ? nullptr : part.list.visible.data(),
                  normals.empty() ? nullptr : normals.data());
        outcome_.faces = true;
        if (trait.first != kUnset) {
            setColor(color);
        }
        traits().setLayer(layer);
    }
}

void Replay::mesh(Bytes& in) {
    const std::uint32_t rows = in.u32();
    const std::uint32_t columns = in.u32();
    const std::uint64_t count = std::uint64_t{rows} * columns;
    if (in.failed() || count > in.left() / 24 || rows < 2 || columns < 2) {
        in.fail();
        return;
    }
    const std::vector<AcGePoint3d> points = in.points(static_cast<std::uint32_t>(count));
    FaceData data;
    data.read(in, rows * (columns - 1) + columns * (rows - 1), (rows - 1) * (columns - 1),
              static_cast<std::uint32_t>(count));
    if (in.failed()) {
        return;
    }
    if (data.colors.empty() && data.layers.empty() && data.visibilities.empty()) {
        gi::mesh(draw_, rows, columns, points,
                 data.normals.empty() ? nullptr : data.normals.data());
        outcome_.faces = true;
        return;
    }
    data.edge_visibilities.clear(); // those of a mesh are in another order
    std::vector<std::int32_t> faces;
    for (std::uint32_t r = 0; r + 1 < rows; ++r) {
        for (std::uint32_t c = 0; c + 1 < columns; ++c) {
            const auto first = static_cast<std::int32_t>(r * columns + c);
            const auto below = first + static_cast<std::int32_t>(columns);
            faces.insert(faces.end(), {4, first, first + 1, below + 1, below});
        }
    }
    drawFaces(points, faces, data);
}

void Replay::shell(Bytes& in) {
    const std::vector<AcGePoint3d> points = in.points(in.u32());
    const std::vector<std::int32_t> faces = in.integers(in.u32());
    std::uint32_t face_count = 0, edges = 0;
    for (std::size_t i = 0; i < faces.size(); ++face_count) {
        const std::int64_t corners = std::abs(std::int64_t{faces[i]});
        if (corners < 1 || corners > static_cast<std::int64_t>(faces.size() - i - 1) ||
            (i == 0 && faces[i] < 0)) {
            in.fail();
            return;
        }
        for (std::size_t k = i + 1; k <= i + static_cast<std::size_t>(corners); ++k) {
            if (faces[k] < 0 || static_cast<std::size_t>(faces[k]) >= points.size()) {
                in.fail();
                return;
            }
        }
        edges += static_cast<std::uint32_t>(corners);
        i += static_cast<std::size_t>(corners) + 1;
    }
    FaceData data;
    data.read(in, edges, face_count, static_cast<std::uint32_t>(points.size()));
    if (!in.failed()) {
        drawFaces(points, faces, data);
    }
}

void Replay::lwPolyline(Bytes& in) {
    enum Flag {
        kNormal = 1,
        kThickness = 2,
        kWidth = 4,
        kElevation = 8,
        kBulges = 16,
        kWidths = 32,
        kClosed = 0x200,
        kVertexIds = 0x400
    };
    Bits bits(in.take(in.count(1)));
    const std::int32_t flags = bits.bitShort();
    AcDbPolyline line;
    const double width = (flags & kWidth) != 0 ? bits.bitDouble() : 0;
    line.setElevation((flags & kElevation) != 0 ? bits.bitDouble() : 0);
    line.setThickness((flags & kThickness) != 0 ? bits.bitDouble() : 0);
    if ((flags & kNormal) != 0) {
        const double x = bits.bitDouble();
        const double y = bits.bitDouble();
        line.setNormal(draw::unitNormal({x, y, bits.bitDouble()}));
    }
    line.setClosed((flags & kClosed) != 0);
    const std::int64_t count = bits.bitLong();
    const std::int64_t bulges = (flags & kBulges) != 0 ? bits.bitLong() : 0;
    const std::int64_t ids = (flags & kVertexIds) != 0 ? bits.bitLong() : 0;
    const std::int64_t widths = (flags & kWidths) != 0 ? bits.bitLong() : 0;
    const auto most = static_cast<std::int64_t>(bits.bitsLeft() / 2);
    if (bits.failed() || count < 1 || count > most || bulges < 0 || bulges > count || widths < 0 ||
        widths > count || ids < 0 || ids > most) {
        in.fail();
        return;
    }
    std::vector<AcDbPolyline::Vertex> vertices(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        AcGePoint2d& p = vertices[i].point;
        p.x = i == 0 ? bits.rawDouble() : bits.bitDouble(vertices[i - 1].point.x);
        p.y = i == 0 ? bits.rawDouble() : bits.bitDouble(vertices[i - 1].point.y);
        vertices[i].start_width = vertices[i].end_width = width;
    }
    for (std::int64_t i = 0; i < bulges; ++i) {
        vertices[static_cast<std::size_t>(i)].bulge = bits.bitDouble();
    }
    for (std::int64_t i = 0; i < ids && !bits.failed(); ++i) {
        bits.bitLong();
    }
    for (std::int64_t i = 0; i < widths; ++i) {
        vertices[static_cast<std::size_t>(i)].start_width = bits.bitDouble();
        vertices[static_cast<std::size_t>(i)].end_width = bits.bitDouble();
    }
    if (bits.failed()) {
        in.fail();
        return;
    }
    bool wide = false;
    for (const AcDbPolyline::Vertex& v : vertices) {
        line.addVertex(v.point, v.bulge, v.start_width, v.end_width);
        wide = wide || v.start_width != 0 || v.end_width != 0;
    }
    const double before = traits().thickness();
    traits().setThickness(line.thickness());
    gi::pline(draw_, line);
    traits().setThickness(before);
    noteCurve(wide || line.thickness() != 0);
}

} // namespace proxy
