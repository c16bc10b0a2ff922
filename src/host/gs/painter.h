// A software rasteriser with a depth buffer: polygons into one picture, lines into another.
#pragma once

#include "host/gs/snapshot.h"

#include <span>
#include <vector>

namespace gs {

/// Something that changes linearly over a picture.
struct Ramp {
    double at_origin = 0, by_x = 0, by_y = 0;
    double lowest = 0, highest = 0; ///< no value is taken from beyond these
};

/// A view as a projection to pixels.
class Camera {
public:
    Camera(const AcGsView& view, int width, int height);
    /// False for a view that cannot be looked through.
    bool isUsable() const { return usable_; }
    /// To the right, upwards and away from the position, in drawing units.
    AcGePoint3d toEye(const AcGePoint3d& world) const;
    /// How near a point in front of the camera may be; minus infinity for parallel views.
    double nearest() const { return nearest_; }
    /// Pixels from the left and the top, and how near: larger is nearer, and over the picture of a
    /// plane it changes linearly.
    AcGePoint3d toPixels(const AcGePoint3d& eye) const;
    /// The nearness of a plane over the picture, its bounds left alone. The plane is told by a
    /// normal and a point, in eye coordinates.
    void nearnessOf(const AcGeVector3d& normal, const AcGePoint3d& point, Ramp& ramp) const;
    /// The size of a pixel at a world point, in drawing units.
    double pixelSize(const AcGePoint3d& world) const;
    /// Cosine between a direction and the line of sight at a point, both in eye coordinates.
    double facing(const AcGePoint3d& eye, const AcGeVector3d& normal) const;
    /// A vector of the world in eye coordinates.
    AcGeVector3d toEye(const AcGeVector3d& world) const;

private:
    AcGePoint3d position_;
    AcGeVector3d right_, up_, forward_;
    double width_, height_, x_scale_ = 1, y_scale_ = 1, nearest_ = 0;
    bool perspective_, usable_ = false;
};

/// Corners of a face: outlines one after the other, in eye coordinates. What lies within an odd
/// number of them is filled.
struct Face {
    std::vector<AcGePoint3d> corners;
    std::vector<std::size_t> ends; ///< behind the last corner of each outline
    /// Brightness at the corners, 0 to 1; empty for a flat face, which is lit by its plane.
    std::vector<double> light;

    void clear();
    void closeOutline() { ends.push_back(corners.size()); }
};

/// Brightness of a surface that shows itself to the viewer with that cosine.
double lightOf(double cosine);

class Painter {
public:
    Painter(const AcGsView& view, int width, int height);
    const Camera& camera() const { return camera_; }
    /// Fills a plane face of any shape. Triangles may carry light at their corners.
    void fill(const Face& face, std::uint32_t rgb);
    /// A line a pixel wide, hidden by nearer lines only. Eye coordinates.
    void line(AcGePoint3d from, AcGePoint3d to, std::uint32_t rgb);
    AcGsImage shaded() const;
    AcGsImage wires() const;

private:
    struct Surface {
        Ramp nearness, light;
        std::uint32_t rgb = 0;
    };
    /// Samples a pixel along each side of the shaded picture.
    static constexpr int kSide = 2;

    void clipAndProject(const Face& face);
    bool describe(const Face& face, Surface& surface) const;
    void scan(const Surface& surface);
    void span(int row, double from, double to, const Surface& surface);

    void drop(const AcGePoint3d& at, std::uint32_t rgb);

    int width_, height_;
    Camera camera_;
    std::vector<float> nearness_, line_nearness_;
    std::vector<std::uint32_t> samples_, pixels_; ///< 0x00RRGGBB; a top byte says "there is one"
    // Buffers that keep their memory from face to face.
    std::vector<AcGePoint3d> clipped_;
    std::vector<std::size_t> clipped_ends_;
    std::vector<double> crossings_;
};

} // namespace gs
