// Builds the samples' drawings through the host's database.
#include "apps/make_samples/drawing.h"

#include "host/db/block_reference.h"
#include "host/db/curves.h"
#include "host/db/database.h"
#include "host/db/faces.h"
#include "host/db/polylines.h"
#include "host/gs/view.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>

namespace make_samples {

namespace {

/// Metres to the drawing's millimetres, rounded to a tenth.
double mm(double metres) { return std::round(metres * 10000.0) / 10.0 + 0.0; }
Point mm(const Point& p) { return {mm(p.x), mm(p.y), mm(p.z)}; }

constexpr std::int16_t kMillimetres = 4; // $INSUNITS
constexpr double kGlassIndex = 1.52;
constexpr int kMeshFlag = 16, kMeshVertexFlag = 64, kClosedColumns = 32;
constexpr int kPolyFaceFlag = 64;

void require(Acad::ErrorStatus status, const std::string& what) {
    if (status != Acad::eOk) {
        throw std::runtime_error(what + ": " + Acad::errorText(status));
    }
}

/// A figure without the last digits, in which mathematical libraries differ.
double steady(double value) { return std::round(value * 1e9) / 1e9 + 0.0; }
Vector steady(const Vector& v) { return {steady(v.x), steady(v.y), steady(v.z)}; }

/// The axes of the object coordinate system of an extrusion direction (arbitrary-axis rule).
void object_axes(const Vector& normal, Vector& x, Vector& y) {
    const bool steep = std::abs(normal.x) < 1.0 / 64 && std::abs(normal.y) < 1.0 / 64;
    x = (steep ? Vector{0, 1, 0} : Vector{0, 0, 1}).crossProduct(normal).normal();
    y = normal.crossProduct(x).normal();
}

} // namespace

/// Paints and layers enter the drawing when something uses them.
struct DrawingImpl {
    struct Paint {
        std::uint32_t rgb = 0;
        double gloss = 0, reflectivity = 0, opacity = 1;
        AcDbObjectId material;
    };
    struct Layer {
        std::string paint;
        int aci = 0;
        AcDbObjectId record;
    };
    AcDbDatabase database;
    std::map<std::string, Paint> paints;
    std::map<std::string, Layer> layers;
    std::map<std::string, std::size_t> block_names;
    std::vector<AcDbObjectId> spaces;

    const Paint& paint(const std::string& name) {
        const auto found = paints.find(name);
        if (found == paints.end()) {
            throw std::runtime_error("no paint of the name " + name);
        }
        Paint& paint = found->second;
        if (paint.material.isNull()) {
            auto material = std::make_unique<AcDbMaterial>();
            material->setName(name);
            material->setDiffuseColor(paint.rgb);
            material->setSpecularGloss(paint.gloss);
            material->setReflectivity(paint.reflectivity);
            material->setOpacity(paint.opacity);
            material->setRefraction(paint.opacity < 1 ? kGlassIndex : 1);
            AcDbObjectPointer<AcDbDictionary> dictionary(database.materialDictionaryId(),
                                                         AcDb::kForWrite);
            require(dictionary.openStatus(), "material dictionary");
            require(dictionary->setAt(name, std::move(material), paint.material), name);
        }
        return paint;
    }

    AcDbObjectId layer(const std::string& name) {
        const auto found = layers.find(name);
        if (found == layers.end()) {
            throw std::runtime_error("no layer of the name " + name);
        }
        Layer& layer = found->second;
        if (layer.record.isNull()) {
            const Paint& look = paint(layer.paint);
            auto record = std::make_unique<AcDbLayerTableRecord>();
            record->setName(name);
            record->setColor(layer.aci > 0 ? AcCmEntityColor::index(layer.aci)
                                           : AcCmEntityColor::trueColor(look.rgb));
            record->setMaterialId(look.material);
            require(database.layerTable().add(std::move(record), layer.record), name);
        }
        return layer.record;
    }

    void dress(AcDbEntity& entity, const Look& look) {
        require(entity.setLayer(layer(look.layer)), look.layer);
        if (look.paint == kByBlock) {
            entity.setColor(AcCmEntityColor::byBlock());
            entity.setMaterial(database.byBlockMaterial());
        } else if (look.paint.starts_with('#')) {
            entity.setColor(AcCmEntityColor::index(std::stoi(look.paint.substr(1))));
        } else if (!look.paint.empty()) {
            const Paint& own = paint(look.paint);
            entity.setColor(AcCmEntityColor::trueColor(own.rgb));
            entity.setMaterial(own.material);
        }
    }

    AcDbEntity& add(std::size_t space, std::unique_ptr<AcDbEntity> entity, const Look& look) {
        AcDbEntity& added = *entity;
        dress(*entity, look);
        AcDbObjectPointer<AcDbBlockTableRecord> record(spaces[space], AcDb::kForWrite);
        require(record.openStatus(), "block");
        AcDbObjectId id;
        require(record->appendAcDbEntity(std::move(entity), id), "entity");
        return added;
    }

    AcDbObjectId block_id(const std::string& name) const {
        const auto found = block_names.find(name);
        if (found == block_names.end()) {
            throw std::runtime_error("no block of the name " + name);
        }
        return spaces[found->second];
    }
};

Placement Placement::frame(const Point& at, const Vector& x, const Vector& normal) {
    Vector object_x, object_y;
    object_axes(normal, object_x, object_y);
    Placement placement(at);
    placement.normal = normal;
    placement.turn = std::atan2(x.dotProduct(object_y), x.dotProduct(object_x)) / radians(1);
    return placement;
}

void Space::mesh(const Mesh& mesh, const Look& look, int level) {
    std::vector<Point> points;
    points.reserve(mesh.points.size());
    for (const Point& p : mesh.points) {
        points.push_back(mm(p));
    }
    std::vector<std::int32_t> faces;
    for (const std::vector<int>& corners : mesh.faces) {
        faces.push_back(static_cast<std::int32_t>(corners.size()));
        faces.insert(faces.end(), corners.begin(), corners.end());
    }
    auto entity = std::make_unique<AcDbSubDMesh>();
    entity->set(std::move(points), std::move(faces), level);
    drawing_->add(index_, std::move(entity), look);
}

void Space::polyface(const Mesh& mesh, const Look& look) {
    auto entity = std::make_unique<AcDbPolyFaceMesh>();
    entity->setFlags(kPolyFaceFlag);
    for (const Point& p : mesh.points) {
        entity->appendVertex(mm(p));
    }
    for (const std::vector<int>& corners : mesh.faces) {
        std::array<std::int32_t, 4> face{0, 0, 0, 0};
        for (std::size_t i = 0; i < std::min<std::size_t>(corners.size(), 4); ++i) {
            face[i] = corners[i] + 1;
        }
        entity->appendFace(face);
    }
    drawing_->add(index_, std::move(entity), look);
}

void Space::face(const Point& a, const Point& b, const Point& c, const Point& d, const Look& look) {
    drawing_->add(index_, std::make_unique<AcDbFace>(mm(a), mm(b), mm(c), mm(d)), look);
}

void Space::grid(int rows, int columns, const std::vector<Point>& points, const Look& look,
                 bool closed_columns) {
    auto entity = std::make_unique<AcDbPolygonMesh>();
    entity->setFlags(kMeshFlag | (closed_columns ? kClosedColumns : 0));
    entity->setSize(rows, columns);
    for (const Point& p : points) {
        AcDbHeavyVertex vertex;
        vertex.point = mm(p);
        vertex.flags = kMeshVertexFlag;
        entity->vertices().push_back(vertex);
    }
    drawing_->add(index_, std::move(entity), look);
}

void Space::line(const Point& from, const Point& to, double thickness, const Look& look) {
    auto entity = std::make_unique<AcDbLine>(mm(from), mm(to));
    entity->setThickness(mm(thickness));
    drawing_->add(index_, std::move(entity), look);
}

void Space::circle(const Point& center, double radius, double thickness, const Look& look) {
    auto entity = std::make_unique<AcDbCircle>(mm(center), Vector{0, 0, 1}, mm(radius));
    entity->setThickness(mm(thickness));
    drawing_->add(index_, std::move(entity), look);
}

void Space::polyline(const Outline& outline, const Look& look) {
    auto entity = std::make_unique<AcDbPolyline>();
    for (const OutlinePoint& p : outline.points) {
        entity->addVertex({mm(p.x), mm(p.y)}, p.bulge, mm(outline.width), mm(outline.width));
    }
    entity->setClosed(outline.closed);
    entity->setElevation(mm(outline.elevation));
    entity->setThickness(mm(outline.thickness));
    drawing_->add(index_, std::move(entity), look);
}

void Space::solid(const std::vector<Point2>& corners, double elevation, double thickness,
                  const Look& look) {
    const auto at = [&](std::size_t i) { return mm(Point{corners[i].x, corners[i].y, elevation}); };
    auto entity = std::make_unique<AcDbSolid>();
    entity->setPoints({at(0), at(1), at(3), at(2)});
    entity->setThickness(mm(thickness));
    drawing_->add(index_, std::move(entity), look);
}

namespace {

/// Sets what references and arrays of references share.
void place(AcDbBlockReference& reference, AcDbObjectId block, const Placement& placement) {
    Vector x, y;
    object_axes(placement.normal, x, y);
    const Vector at = mm(placement.at).asVector();
    reference.setBlockTableRecord(block);
    reference.setNormal(steady(placement.normal));
    reference.setPosition({steady(at.dotProduct(x)), steady(at.dotProduct(y)),
                           steady(at.dotProduct(placement.normal))});
    reference.setRotation(steady(radians(placement.turn)));
    const AcGeScale3d& s = placement.scale;
    reference.setScaleFactors({steady(s.sx), steady(s.sy), steady(s.sz)});
}

} // namespace

AcDbBlockReference& Space::insert(const std::string& block, const Placement& placement,
                                  const Look& look) {
    auto entity = std::make_unique<AcDbBlockReference>();
    place(*entity, drawing_->block_id(block), placement);
    return static_cast<AcDbBlockReference&>(drawing_->add(index_, std::move(entity), look));
}

AcDbEntity& Space::add(std::unique_ptr<AcDbEntity> entity, const Look& look) {
    return drawing_->add(index_, std::move(entity), look);
}

void Space::array(const std::string& block, const Placement& placement, int columns, int rows,
                  double column_spacing, double row_spacing, const Look& look) {
    auto entity = std::make_unique<AcDbMInsertBlock>();
    place(*entity, drawing_->block_id(block), placement);
    entity->setArray(columns, rows, steady(column_spacing * 1000), steady(row_spacing * 1000));
    drawing_->add(index_, std::move(entity), look);
}

Drawing::Drawing()
  : impl_(std::make_unique<DrawingImpl>()) {
    impl_->database.setInsunits(kMillimetres);
    impl_->layers["0"].record = impl_->database.layerZero();
    impl_->spaces.push_back(impl_->database.modelSpaceId());
}

Drawing::~Drawing() = default;

void Drawing::paint(const std::string& name, std::uint32_t rgb, double gloss, double reflectivity,
                    double opacity) {
    impl_->paints[name] = {rgb, gloss, reflectivity, opacity, {}};
}

void Drawing::layer(const std::string& name, const std::string& paint, int aci) {
    impl_->layers[name] = {paint, aci, {}};
}

Space Drawing::model() { return {impl_.get(), 0}; }

Space Drawing::block(const std::string& name) {
    const auto [entry, fresh] = impl_->block_names.try_emplace(name, impl_->spaces.size());
    if (fresh) {
        auto record = std::make_unique<AcDbBlockTableRecord>();
        record->setName(name);
        AcDbObjectId id;
        require(impl_->database.blockTable().add(std::move(record), id), name);
        impl_->spaces.push_back(id);
    }
    return {impl_.get(), entry->second};
}

AcDbDatabase& Drawing::database() { return impl_->database; }
AcDbObjectId Drawing::layer_id(const std::string& name) { return impl_->layer(name); }
AcDbObjectId Drawing::material_id(const std::string& name) { return impl_->paint(name).material; }

bool Drawing::has_block(const std::string& name) const {
    return impl_->block_names.count(name) > 0;
}

void Drawing::view(const std::string& name, const Point& eye, const Point& target, double lens,
                   bool active) {
    // The host's lens stands for a field of 42 mm across its diagonal, here three by two.
    const Vector direction = mm(eye) - mm(target);
    const double diagonal = direction.length() * 42 / lens;
    const double width = diagonal * 3 / std::sqrt(13.0), height = diagonal * 2 / std::sqrt(13.0);
    auto record = std::make_unique<AcDbViewTableRecord>();
    record->setName(name);
    record->setSize(width, height);
    record->setTarget(mm(target));
    record->setViewDirection(direction);
    record->setLensLength(lens);
    record->setPerspectiveEnabled(true);
    AcDbObjectId id;
    require(impl_->database.viewTable().add(std::move(record), id), name);
    if (!active) {
        return;
    }
    AcGsView view;
    view.position = mm(eye);
    view.target = mm(target);
    const Vector right = Vector{0, 0, 1}.crossProduct(direction).normal();
    view.up = direction.crossProduct(right).normal();
    view.field_width = width;
    view.field_height = height;
    view.perspective = true;
    if (!acgsSetViewParameters(impl_->database.activeViewportId(), view)) {
        throw std::runtime_error("the active viewport cannot be set");
    }
}

bool Drawing::write(const std::filesystem::path& path, std::string& error) {
    return impl_->database.dxfOut(path, error, AcDbDxfForm::kAscii) == Acad::eOk;
}

} // namespace make_samples
