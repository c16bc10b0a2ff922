// Drawing of primitives that the clips in force may cut.
#include "host/gi/clip_draw.h"

#include "host/ge/triangulate.h"
#include "host/gi/clip_cut.h"

#include <algorithm>
#include <cmath>

namespace gi::clip {
namespace {

AcGeVector3d newell(std::span<const AcGePoint3d> points) {
    AcGeVector3d sum;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const AcGeVector3d a = points[i] - points[0];
        const AcGeVector3d b = points[(i + 1) % points.size()] - points[0];
        sum = sum + a.crossProduct(b);
    }
    return sum;
}

/// Gathers faces and draws them as one shell.
class Body {
public:
    void add(const std::vector<Face>& faces) {
        for (const Face& face : faces) {
            faces_.push_back(static_cast<std::int32_t>(face.size()));
            for (const Corner& corner : face) {
                faces_.push_back(static_cast<std::int32_t>(points_.size()));
                points_.push_back(corner.point);
                normals_.push_back(corner.normal.normal());
            }
        }
    }
    void draw(AcGiWorldDraw* draw, bool with_normals) const {
        if (!faces_.empty()) {
            const Off off;
            gi::shell(draw, points_, faces_, nullptr, with_normals ? normals_.data() : nullptr);
        }
    }

private:
    std::vector<AcGePoint3d> points_;
    std::vector<AcGeVector3d> normals_;
    std::vector<std::int32_t> faces_;
};

/// Cuts a face with its holes, as triangles where it is not convex.
class FaceCutter {
public:
    FaceCutter(const Cutter& cutter, Body& body, std::span<const AcGePoint3d> points,
               const AcGeVector3d* normals)
      : cutter_(cutter)
      , body_(body)
      , points_(points)
      , normals_(normals) {}

    void begin(std::span<const std::int32_t> corners) {
        finish();
        rings_.emplace_back(corners.begin(), corners.end());
    }
    void hole(std::span<const std::int32_t> corners) {
        rings_.emplace_back(corners.begin(), corners.end());
    }
    void finish() {
        if (rings_.size() == 1 && isSimple(rings_[0])) {
            fan(rings_[0]);
        } else if (!rings_.empty()) {
            general();
        }
        rings_.clear();
    }

private:
    Corner corner(std::int32_t index) const {
        const auto i = static_cast<std::size_t>(index);
        return {points_[i], normals_ != nullptr ? normals_[i] : AcGeVector3d()};
    }
    AcGeVector3d faceNormal() const {
        std::vector<AcGePoint3d> outline;
        for (const std::int32_t i : rings_[0]) {
            outline.push_back(points_[static_cast<std::size_t>(i)]);
        }
        return newell(outline);
    }
    /// Triangles, and convex faces: a fan fills them.
    bool isSimple(const std::vector<std::int32_t>& ring) const {
        const AcGeVector3d normal = faceNormal();
        for (std::size_t i = 0; i < ring.size() && ring.size() > 3; ++i) {
            const AcGePoint3d& a = points_[static_cast<std::size_t>(ring[i])];
            const AcGePoint3d& b = points_[static_cast<std::size_t>(ring[(i + 1) % ring.size()])];
            const AcGePoint3d& c = points_[static_cast<std::size_t>(ring[(i + 2) % ring.size()])];
            if ((b - a).crossProduct(c - b).dotProduct(normal) < 0) {
                return false;
            }
        }
        return ring.size() <= 8; // longer ones may turn more than once
    }
    void fan(const std::vector<std::int32_t>& ring) {
        for (std::size_t i = 1; i + 1 < ring.size(); ++i) {
            body_.add(cutter_.cut({corner(ring[0]), corner(ring[i]), corner(ring[i + 1])}));
        }
    }
    void general() {
        const AcGeVector3d normal = faceNormal();
        if (normal.isZeroLength()) {
            return;
        }
        const AcGePoint3d origin = points_[static_cast<std::size_t>(rings_[0][0])];
        const AcGeMatrix3d plane = AcGeMatrix3d::translation(origin.asVector()) *
                                   AcGeMatrix3d::planeToWorld(normal.normal());
        const AcGeMatrix3d flat = plane.inverse();
        std::vector<std::vector<AcGePoint2d>> outlines;
        std::vector<Corner> corners;
        for (const auto& ring : rings_) {
            auto& outline = outlines.emplace_back();
            for (const std::int32_t i : ring) {
                corners.push_back(corner(i));
                const AcGePoint3d p = corners.back().point.transformedBy(flat);
                outline.push_back({p.x, p.y});
            }
        }
        const ge::Triangulation cut = ge::triangulateRings(outlines);
        for (std::size_t i = corners.size(); i < cut.points.size(); ++i) { // crossings
            const AcGePoint3d p{cut.points[i].x, cut.points[i].y, 0};
            corners.push_back({p.transformedBy(plane), normal.normal()});
        }
        for (const auto& t : cut.triangles) {
            body_.add(cutter_.cut({corners[t[0]], corners[t[1]], corners[t[2]]}));
        }
    }

    const Cutter& cutter_;
    Body& body_;
    std::span<const AcGePoint3d> points_;
    const AcGeVector3d* normals_;
    std::vector<std::vector<std::int32_t>> rings_;
};

/// The ribbon of a polyline's thickness, cut.
void ribbon(AcGiWorldDraw* draw, const Cutter& cutter, std::span<const AcGePoint3d> points,
            const AcGeVector3d& up, std::span<const AcGeVector3d> sides) {
    Body body;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const AcGePoint3d &a = points[i], &b = points[i + 1];
        const AcGeVector3d flat = (b - a).crossProduct(up);
        if (flat.isZeroLength()) {
            continue;
        }
        const AcGeVector3d at_a = sides.empty() ? flat.normal() : sides[i];
        const AcGeVector3d at_b = sides.empty() ? flat.normal() : sides[i + 1];
        body.add(cutter.cut({{a, at_a}, {b, at_b}, {b + up, at_b}, {a + up, at_a}}));
    }
    body.draw(draw, true);
}

/// What is left of the segments, neighbours joined.
void segments(AcGiWorldDraw* draw, const Cutter& cutter, std::span<const AcGePoint3d> points) {
    const Off off;
    std::vector<AcGePoint3d> run;
    const auto flush = [&] {
        if (run.size() > 1) {
            gi::polyline(draw, run, nullptr);
        }
        run.clear();
    };
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const AcGePoint3d &a = points[i], &b = points[i + 1];
        double last = 0;
        for (const auto& [from, to] : cutter.cut(a, b)) {
            if (from != last) {
                flush();
            }
            if (run.empty()) {
                run.push_back(a + (b - a) * from);
            }
            run.push_back(a + (b - a) * to);
            last = to;
        }
        if (last != 1) {
            flush();
        }
    }
    flush();
}

} // namespace

Where classify(AcGiWorldDraw* draw, std::span<const AcGePoint3d> hull) {
    return Cutter(draw, innermost).classify(hull);
}

std::vector<AcGePoint3d> hullOf(AcGiWorldDraw* draw, const AcGePoint3d& center,
                                const AcGeVector3d& u, const AcGeVector3d& v,
                                const AcGeVector3d& normal) {
    const AcGeVector3d up = normal * draw->subEntityTraits().thickness();
    std::vector<AcGePoint3d> points;
    for (const AcGePoint3d& base : {center, center + up}) {
        points.insert(points.end(), {base + u + v, base + u - v, base - u - v, base - u + v});
    }
    return points;
}

bool polyline(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points, const AcGeVector3d* normal,
              std::span<const AcGeVector3d> sides) {
    const double thickness = draw->subEntityTraits().thickness();
    const bool solid = normal != nullptr && thickness != 0;
    const AcGeVector3d up = solid ? *normal * thickness : AcGeVector3d();
    std::vector<AcGePoint3d> hull(points.begin(), points.end());
    for (std::size_t i = 0; solid && i < points.size(); ++i) {
        hull.push_back(points[i] + up);
    }
    const Cutter cutter(draw, innermost);
    switch (cutter.classify(hull)) {
    case Where::kOutside:
        return true;
    case Where::kInside: {
        const Off off;
        return gi::polyline(draw, points, normal);
    }
    default:
        break;
    }
    if (solid) {
        ribbon(draw, cutter, points, up, sides);
    } else {
        segments(draw, cutter, points);
    }
    return true;
}

bool shell(AcGiWorldDraw* draw, std::span<const AcGePoint3d> points,
           std::span<const std::int32_t> faces, const AcGeVector3d* normals) {
    const Cutter cutter(draw, innermost);
    Body body;
    FaceCutter face(cutter, body, points, normals);
    for (std::size_t i = 0; i < faces.size();) {
        const std::size_t count =
            std::min(static_cast<std::size_t>(std::abs(faces[i])), faces.size() - i - 1);
        const std::span<const std::int32_t> corners = faces.subspan(i + 1, count);
        if (faces[i] > 0) {
            face.begin(corners);
        } else if (faces[i] < 0) {
            face.hole(corners);
        }
        i += count + 1;
    }
    face.finish();
    body.draw(draw, normals != nullptr);
    return true;
}

} // namespace gi::clip
