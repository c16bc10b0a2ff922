// Solids draw the meshes of their bodies.
#include "host/db/solids.h"

#include "host/acis/acis.h"
#include "host/brep/extremes.h"
#include "host/db/database_impl.h"
#include "host/db/draw_util.h"
#include "host/dxf/load_context.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/source_tags.h"
#include "host/dxf/tag_writer.h"
#include "host/gi/shape_cache.h"

#include <algorithm>
#include <map>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbModelerGeometry, AcDbEntity)
ACRX_DXF_DEFINE_MEMBERS(AcDb3dSolid, AcDbModelerGeometry, "3DSOLID")
ACRX_DXF_DEFINE_MEMBERS(AcDbBody, AcDbModelerGeometry, "BODY")
ACRX_DXF_DEFINE_MEMBERS(AcDbRegion, AcDbModelerGeometry, "REGION")
ACRX_DXF_DEFINE_MEMBERS(AcDbSurface, AcDbModelerGeometry, "SURFACE")
ACRX_DXF_DEFINE_MEMBERS(AcDbPlaneSurface, AcDbSurface, "PLANESURFACE")
ACRX_DXF_DEFINE_MEMBERS(AcDbExtrudedSurface, AcDbSurface, "EXTRUDEDSURFACE")
ACRX_DXF_DEFINE_MEMBERS(AcDbRevolvedSurface, AcDbSurface, "REVOLVEDSURFACE")
ACRX_DXF_DEFINE_MEMBERS(AcDbLoftedSurface, AcDbSurface, "LOFTEDSURFACE")
ACRX_DXF_DEFINE_MEMBERS(AcDbSweptSurface, AcDbSurface, "SWEPTSURFACE")
ACRX_DXF_DEFINE_MEMBERS(AcDbNurbSurface, AcDbSurface, "NURBSURFACE")

void acdbInitSolidClasses() {
    for (auto* init :
         {AcDb3dSolid::rxInit, AcDbBody::rxInit, AcDbRegion::rxInit, AcDbSurface::rxInit,
          AcDbPlaneSurface::rxInit, AcDbExtrudedSurface::rxInit, AcDbRevolvedSurface::rxInit,
          AcDbLoftedSurface::rxInit, AcDbSweptSurface::rxInit, AcDbNurbSurface::rxInit}) {
        init();
    }
}

namespace {

constexpr const char* kEmpty = "solid-empty";
constexpr const char* kUnreadable = "solid-unreadable";
/// Part of a body's size that the mesh for its box may be off: where farthest points have a closed
/// form, and where they have none.
constexpr double kBoxPrecision = 1.0 / 200, kFreeBoxPrecision = 1.0 / 500;
/// How far a farthest point may lie beyond the mesh's box to be taken for one of the body's own, in
/// chords.
constexpr double kReach = 1.2;
/// Tag of shells whose faces have no colour of their own.
constexpr std::intptr_t kNoColor = -1;

/// The text of the data: each group 1 begins a line, each 3 goes on with it.
std::string solid_text(std::span<const dxf::Tag> tags) {
    std::string text;
    std::string line;
    bool any = false;
    bool plain = false;
    const auto finish_line = [&] {
        text += plain ? line : acis::descramble(line);
        text += '\n';
        line.clear();
    };
    for (const dxf::Tag& tag : tags) {
        if (tag.code == 1) {
            if (any) {
                finish_line();
            } else {
                // The data begin with a number; a digit is none once it is scrambled.
                const std::string_view first = tag.trimmed();
                plain = !first.empty() && first.front() >= '0' && first.front() <= '9';
                any = true;
            }
        }
        if (tag.code == 1 || (tag.code == 3 && any)) {
            line += tag.raw();
        }
    }
    if (any) {
        finish_line();
    }
    return text;
}

brep::Body without_data(const char* text) {
    brep::Body body;
    body.problems.push_back({kEmpty, text, 1});
    return body;
}

double sizeOf(const AcDbExtents& box) { return (box.maxPoint() - box.minPoint()).length(); }

AcDbExtents boxOf(std::span<const AcGePoint3d> points) {
    AcDbExtents box;
    for (const AcGePoint3d& p : points) {
        box.addPoint(p);
    }
    return box;
}

double precisionOf(const brep::Body& body) {
    return brep::hasFreeSurfaces(body) ? kFreeBoxPrecision : kBoxPrecision;
}

/// Extends the box to coordinates of the points that lie beyond it by `most` or less.
void reach(AcDbExtents& box, std::span<const AcGePoint3d> points, double most) {
    if (box.isEmpty()) {
        return;
    }
    const AcGePoint3d low = box.minPoint(), high = box.maxPoint();
    const auto inside = [&](double value, double from, double to) {
        return value < from - most || value > to + most ? from : value;
    };
    for (const AcGePoint3d& p : points) {
        box.addPoint(
            {inside(p.x, low.x, high.x), inside(p.y, low.y, high.y), inside(p.z, low.z, high.z)});
    }
}

/// Triangles of one colour as a shell: points with the same normal are shared.
class ShellBuilder {
public:
    explicit ShellBuilder(const brep::Mesh& mesh)
      : mesh_(mesh)
      , first_(mesh.points.size(), kNone) {}

    void add(const std::array<brep::Mesh::Corner, 3>& triangle) {
        shell_.face_list.push_back(3);
        for (const brep::Mesh::Corner& corner : triangle) {
            shell_.face_list.push_back(vertex(corner));
        }
    }
    gi::ShapeShell take(std::optional<std::uint32_t> color) {
        shell_.tag = color ? static_cast<std::intptr_t>(*color) : kNoColor;
        return std::move(shell_);
    }

private:
    static constexpr std::int32_t kNone = -1;
    /// The vertices of one point form a chain; there are few, one for each face around it.
    std::int32_t vertex(const brep::Mesh::Corner& corner) {
        const AcGeVector3d& normal = mesh_.normals[corner.normal];
        for (std::int32_t v = first_[corner.point]; v != kNone;
             v = next_[static_cast<std::size_t>(v)]) {
            if (shell_.normals[static_cast<std::size_t>(v)] == normal) {
                return v;
            }
        }
        const auto made = static_cast<std::int32_t>(shell_.points.size());
        shell_.points.push_back(mesh_.points[corner.point]);
        shell_.normals.push_back(normal);
        next_.push_back(first_[corner.point]);
        first_[corner.point] = made;
        return made;
    }

    const brep::Mesh& mesh_;
    gi::ShapeShell shell_;
    std::vector<std::int32_t> first_, next_;
};

gi::ShapeData shapeOf(const brep::Mesh& mesh) {
    std::map<std::optional<std::uint32_t>, ShellBuilder> builders;
    for (const brep::Mesh::FaceRange& face : mesh.faces) {
        ShellBuilder& builder = builders.try_emplace(face.color, mesh).first->second;
        for (std::size_t t = face.begin; t < face.end; ++t) {
            builder.add(mesh.triangles[t]);
        }
    }
    gi::ShapeData shape;
    for (auto& [color, builder] : builders) {
        shape.shells.push_back(builder.take(color));
    }
    return shape;
}

/// The colour of the traits, put back at the end.
class ColorScope {
public:
    ColorScope(AcGiSubEntityTraits& traits, std::intptr_t color)
      : traits_(traits)
      , set_(color != kNoColor)
      , before_(traits.trueColor()) {
        if (set_) {
            traits_.setTrueColor(AcCmEntityColor::trueColor(static_cast<std::uint32_t>(color)));
        }
    }
    ~ColorScope() {
        if (set_ && before_.isByColor()) {
            traits_.setTrueColor(before_);
        } else if (set_) {
            traits_.setColor(static_cast<std::uint16_t>(before_.colorIndex()));
        }
    }
    ColorScope(const ColorScope&) = delete;
    ColorScope& operator=(const ColorScope&) = delete;

private:
    AcGiSubEntityTraits& traits_;
    bool set_;
    AcCmEntityColor before_;
};

} // namespace

AcDbModelerGeometry::AcDbModelerGeometry() = default;
AcDbModelerGeometry::~AcDbModelerGeometry() = default;

void AcDbModelerGeometry::setText(std::string text) {
    assertWriteEnabled();
    text_ = std::move(text);
    box_.reset();
}

brep::Body AcDbModelerGeometry::body() const {
    if (!text_.empty()) {
        return acis::readText(text_);
    }
    const std::vector<dxf::Tag> tags = dxf::source_tags(*this);
    if (tags.empty()) {
        return without_data("the object is not in a file");
    }
    AcDbDatabase& db = *database();
    const dxf::Document& document = *DxfAccess::impl(db).document;
    dxf::LoadContext context(db, document, nullptr);
    const dxf::ObjectTags divided(tags, context);
    const std::string text = solid_text(divided.subclass("AcDbModelerGeometry"));
    if (!text.empty()) {
        return acis::readText(text);
    }
    const std::vector<std::uint8_t> data =
        DxfAccess::solid_data(db).find(document, getAcDbHandle().value());
    return data.empty() ? without_data("the drawing holds no data for it") : acis::readBinary(data);
}

brep::Mesh AcDbModelerGeometry::mesh(double chord) const {
    brep::MeshOptions options;
    options.chord = chord;
    return brep::mesh(body(), options);
}

const AcDbExtents& AcDbModelerGeometry::box() const {
    if (!box_) {
        const brep::Body whole = body();
        brep::MeshOptions options;
        options.chord = 1e300; // as coarse as can be, for the size
        options.angle = 1.6;
        brep::Mesh mesh = brep::mesh(whole, options);
        if (!mesh.triangles.empty()) {
            options.chord = sizeOf(boxOf(mesh.points)) * precisionOf(whole);
            mesh = brep::mesh(whole, options);
        }
        box_ = mesh.triangles.empty() ? AcDbExtents() : boxOf(mesh.points);
        reach(*box_, brep::extremes(whole), options.chord * kReach);
        problems_ = std::move(mesh.problems);
    }
    return *box_;
}

Acad::ErrorStatus AcDbModelerGeometry::getGeomExtents(AcDbExtents& extents) const {
    return draw::giveExtents(box(), extents);
}

const char* AcDbModelerGeometry::notRenderedReason() const {
    if (!box().isEmpty()) {
        return nullptr;
    }
    const bool no_data = std::any_of(problems_.begin(), problems_.end(),
                                     [](const brep::Problem& p) { return p.code == kEmpty; });
    return no_data ? kEmpty : kUnreadable;
}

void AcDbModelerGeometry::drawFindings(std::vector<AcDbDrawFinding>& findings) const {
    if (const char* reason = notRenderedReason()) {
        std::string detail;
        for (const brep::Problem& problem : problems_) {
            detail += (detail.empty() ? "" : "; ") + problem.text;
        }
        findings.push_back({reason, detail, 1});
        return;
    }
    for (const brep::Problem& problem : problems_) {
        if (const AcDbDrawCode* row = acdbFindDrawCode(problem.code)) {
            const auto count = static_cast<std::uint64_t>(std::max(problem.count, 1));
            findings.push_back({row->code, problem.text, count});
        }
    }
}

bool AcDbModelerGeometry::worldDraw(AcGiWorldDraw* draw) {
    const AcDbExtents& extents = box();
    if (extents.isEmpty()) {
        return true;
    }
    double chord = draw->deviation(kAcGiMaxDevForFacet, extents.minPoint());
    if (!(chord > 0)) {
        chord = sizeOf(extents) * kFreeBoxPrecision;
    }
    const auto shape = gi::ShapeCache::get({objectId(), chord, 0}, [&] {
        brep::Mesh made = mesh(chord);
        problems_ = std::move(made.problems);
        return shapeOf(made);
    });
    for (const gi::ShapeShell& shell : shape->shells) {
        const ColorScope scope(draw->subEntityTraits(), shell.tag);
        gi::shell(draw, shell.points, shell.face_list, nullptr, shell.normals.data());
    }
    return true;
}

void AcDbModelerGeometry::dxfOut(dxf::TagWriter& writer) const {
    AcDbEntity::dxfOut(writer);
    if (text_.empty()) {
        return;
    }
    constexpr std::size_t kLongest = 255; // characters of one line in a file
    writer.subclass("AcDbModelerGeometry");
    writer.integer(70, 1);
    for (std::size_t begin = 0; begin < text_.size();) {
        const std::size_t end = std::min(text_.find('\n', begin), text_.size());
        const std::string line = acis::scramble(std::string_view(text_).substr(begin, end - begin));
        writer.raw(1, std::string_view(line).substr(0, kLongest));
        for (std::size_t at = kLongest; at < line.size(); at += kLongest) {
            writer.raw(3, std::string_view(line).substr(at, kLongest));
        }
        begin = end + 1;
    }
}

void AcDb3dSolid::dxfOut(dxf::TagWriter& writer) const {
    AcDbModelerGeometry::dxfOut(writer);
    if (writer.version() >= 1021) {
        writer.subclass("AcDb3dSolid");
        writer.handle(350, 0);
    }
}
