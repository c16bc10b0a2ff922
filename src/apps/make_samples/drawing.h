// A drawing under construction: layers, paints, blocks and entities by name, all lengths in
// metres. The drawing itself is in millimetres.
#pragma once

#include "apps/make_samples/mesh.h"
#include "host/db/block_reference.h"
#include "host/db/database.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace make_samples {

/// Where an entity gets its looks from.
struct Look {
    std::string layer = "0";
    /// A paint's name, "ByBlock", "#8" for an index colour, or empty for the layer's.
    std::string paint = "";
};
inline const char* const kByBlock = "ByBlock";

/// How a block stands in its owner: scaled, turned about the local Z, moved. The local X and Z
/// axes may be tilted, for instance along a roof.
struct Placement {
    Point at;
    double turn = 0; ///< degrees
    AcGeScale3d scale;
    Vector normal = Vector{0, 0, 1};

    Placement() = default;
    Placement(const Point& where, double degrees = 0, double size = 1)
      : at(where)
      , turn(degrees)
      , scale{size, size, size} {}
    /// The placement whose local axes point along `x` and `normal`, unit and at a right angle.
    static Placement frame(const Point& at, const Vector& x, const Vector& normal);
};

struct OutlinePoint {
    double x = 0, y = 0;
    double bulge = 0; ///< tangent of a quarter of the arc's angle
};

/// A plane polyline; one without width and thickness draws nothing.
struct Outline {
    std::vector<OutlinePoint> points;
    bool closed = true;
    double elevation = 0, thickness = 0, width = 0;
};

struct DrawingImpl;
class Drawing;

/// A block definition or model space. Cheap to copy; lives as long as its drawing.
class Space {
public:
    Space(DrawingImpl* drawing, std::size_t index)
      : drawing_(drawing)
      , index_(index) {}
    /// A subdivision mesh; level 0 keeps the faces plane, 1 and more make it smooth.
    void mesh(const Mesh& mesh, const Look& look, int level = 0);
    void polyface(const Mesh& mesh, const Look& look); ///< faces of at most four corners
    void face(const Point& a, const Point& b, const Point& c, const Point& d, const Look& look);
    /// A polygon mesh of rows by columns points.
    void grid(int rows, int columns, const std::vector<Point>& points, const Look& look,
              bool closed_columns = false);
    void line(const Point& from, const Point& to, double thickness, const Look& look);
    /// The side of an upright cylinder, without lids.
    void circle(const Point& center, double radius, double thickness, const Look& look);
    void polyline(const Outline& outline, const Look& look);
    void solid(const std::vector<Point2>& corners, double elevation, double thickness,
               const Look& look); ///< four corners in turn
    AcDbBlockReference& insert(const std::string& block, const Placement& placement,
                               const Look& look);
    /// Any entity, its lengths in the drawing's millimetres.
    AcDbEntity& add(std::unique_ptr<AcDbEntity> entity, const Look& look);
    template <class Entity, class... Args>
    Entity& make(const Look& look, Args&&... args) {
        auto entity = std::make_unique<Entity>(std::forward<Args>(args)...);
        Entity& made = *entity;
        add(std::move(entity), look);
        return made;
    }
    void array(const std::string& block, const Placement& placement, int columns, int rows,
               double column_spacing, double row_spacing, const Look& look);

private:
    DrawingImpl* drawing_;
    std::size_t index_;
};

class Drawing {
public:
    Drawing();
    ~Drawing();
    /// A colour with a material of that name, in the drawing once it is used. `rgb` is 0x00RRGGBB;
    /// gloss, reflectivity and opacity 0 to 1; what is not opaque has the index of glass.
    void paint(const std::string& name, std::uint32_t rgb, double gloss = 0.1,
               double reflectivity = 0, double opacity = 1);
    /// A layer in a paint, in the drawing once it is used; with `aci` above 0 it keeps that index
    /// colour and its material too.
    void layer(const std::string& name, const std::string& paint, int aci = 0);
    Space model();
    Space block(const std::string& name); ///< made at the first call
    AcDbDatabase& database();
    AcDbObjectId layer_id(const std::string& name);    ///< in the drawing from then on
    AcDbObjectId material_id(const std::string& name); ///< of a paint
    bool has_block(const std::string& name) const;
    /// A named perspective view, three by two, of a lens on 24 by 36 mm film. The last one with
    /// `active` set is also what the drawing opens with.
    void view(const std::string& name, const Point& eye, const Point& target, double lens,
              bool active = false);
    /// False with `error` in words.
    bool write(const std::filesystem::path& path, std::string& error);

private:
    std::unique_ptr<DrawingImpl> impl_;
};

} // namespace make_samples
