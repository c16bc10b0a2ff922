// Pictures measure and draw themselves.
#include "host/db/image.h"

#include "host/db/draw_util.h"

#include <algorithm>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbImage, AcDbEntity)
ACRX_DXF_DEFINE_MEMBERS(AcDbRasterImage, AcDbImage, "IMAGE")

std::string AcDbRasterImage::sourceFileName() const {
    const AcDbObjectPointer<AcDbRasterImageDef> definition(definition_);
    return definition ? definition->sourceFileName() : std::string();
}

std::string AcDbRasterImage::activeFileName() const {
    const AcDbObjectPointer<AcDbRasterImageDef> definition(definition_);
    return definition ? definition->activeFileName() : std::string();
}

AcGePoint2d AcDbRasterImage::imageSize() const {
    if (size_.x > 0 && size_.y > 0) {
        return size_;
    }
    const AcDbObjectPointer<AcDbRasterImageDef> definition(definition_);
    return definition && size_.x == 0 && size_.y == 0 ? definition->size() : size_;
}

bool AcDbRasterImage::getOrientation(AcGePoint3d& origin, AcGeVector3d& u, AcGeVector3d& v) const {
    const AcGePoint2d size = imageSize();
    origin = origin_;
    u = u_pixel_ * size.x;
    v = v_pixel_ * size.y;
    const bool good =
        gi::isFinite(origin) && gi::isFinite(u) && gi::isFinite(v) && gi::isFinite(origin + u + v);
    if (!good) {
        u = v = AcGeVector3d();
        origin = gi::isFinite(origin) ? origin : AcGePoint3d::kOrigin;
    }
    return good;
}

Acad::ErrorStatus AcDbRasterImage::setOrientation(const AcGePoint3d& origin, const AcGeVector3d& u,
                                                  const AcGeVector3d& v) {
    const AcGePoint2d size = imageSize();
    if (!(size.x > 0) || !(size.y > 0) || !gi::isFinite(origin) || !gi::isFinite(u / size.x) ||
        !gi::isFinite(v / size.y)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    origin_ = origin;
    u_pixel_ = u / size.x;
    v_pixel_ = v / size.y;
    return Acad::eOk;
}

void AcDbRasterImage::setDisplayOpt(ImageDisplayOpt option, bool on) {
    assertWriteEnabled();
    options_ = on ? options_ | option : options_ & ~option;
}

AcDbRasterImage::ClipBoundaryType AcDbRasterImage::clipBoundaryType() const {
    return boundary_type_ == kRect || boundary_type_ == kPoly
               ? static_cast<ClipBoundaryType>(boundary_type_)
               : kInvalid;
}

bool AcDbRasterImage::isClipped() const {
    const std::size_t least = clipBoundaryType() == kPoly ? 3 : 2;
    return clipping_ != 0 && clipBoundaryType() != kInvalid && boundary_.size() >= least;
}

Acad::ErrorStatus AcDbRasterImage::setClipBoundary(ClipBoundaryType type,
                                                   std::vector<AcGePoint2d> boundary) {
    const bool good = type == kRect ? boundary.size() == 2 : type == kPoly && boundary.size() >= 3;
    const bool finite = std::all_of(boundary.begin(), boundary.end(), [](const AcGePoint2d& p) {
        return gi::isFinite(p.x) && gi::isFinite(p.y);
    });
    if (!good || !finite) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    boundary_type_ = type;
    boundary_ = std::move(boundary);
    clipping_ = 1;
    return Acad::eOk;
}

std::vector<AcGePoint3d> AcDbRasterImage::getVertices() const {
    AcGePoint3d origin;
    AcGeVector3d u, v;
    const AcGePoint2d size = imageSize();
    if (!getOrientation(origin, u, v) || u.crossProduct(v).length() == 0) {
        return {};
    }
    // Pixels are counted by their centres, so the corners of the picture lie half a pixel outside.
    std::vector<AcGePoint2d> pixels{{-0.5, -0.5}, {size.x - 0.5, size.y - 0.5}};
    bool rectangle = true;
    if (isClipped() && !isClipInverted()) {
        pixels = boundary_;
        rectangle = clipBoundaryType() == kRect;
    }
    if (rectangle) {
        const AcGePoint2d a = pixels[0], b = pixels[1];
        pixels = {a, {b.x, a.y}, b, {a.x, b.y}};
    }
    std::vector<AcGePoint3d> points;
    points.reserve(pixels.size() + 1);
    for (const AcGePoint2d& p : pixels) {
        points.push_back(origin + u * ((p.x + 0.5) / size.x) + v * (1 - (p.y + 0.5) / size.y));
    }
    if (!points.front().isEqualTo(points.back())) {
        points.push_back(points.front());
    }
    return gi::isFinite(points) ? points : std::vector<AcGePoint3d>();
}

Acad::ErrorStatus AcDbRasterImage::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents box;
    for (const AcGePoint3d& p : getVertices()) {
        box.addPoint(p);
    }
    return draw::giveExtents(box, extents);
}

AcGiImageBGRA32 acdbImageSource(const AcDbRasterImage& image) {
    const auto side = [](double pixels) { // no number gives 0
        return pixels > 0
                   ? static_cast<std::uint32_t>(std::min<double>(pixels, AcDbImageData::kMostSide))
                   : 0;
    };
    const AcGePoint2d size = image.imageSize();
    AcGiImageBGRA32 source;
    source.width = side(size.x);
    source.height = side(size.y);
    source.load = [id = image.imageDefId()](std::uint32_t& width, std::uint32_t& height,
                                            std::vector<std::uint8_t>& pixels) {
        const AcDbObjectPointer<AcDbRasterImageDef> definition(id);
        AcDbImageData data;
        if (!definition || !definition->imageData(data)) {
            return false;
        }
        for (std::size_t i = 0; i + 3 < data.rgba.size(); i += 4) {
            std::swap(data.rgba[i], data.rgba[i + 2]);
        }
        width = data.width;
        height = data.height;
        pixels = std::move(data.rgba);
        return true;
    };
    return source;
}

bool AcDbRasterImage::worldDraw(AcGiWorldDraw* draw) {
    const std::vector<AcGePoint3d> outline = getVertices();
    if (outline.empty()) {
        return true;
    }
    // Interfaces take whole pictures only: a clipped one would show more than the drawing does.
    if (isSetDisplayOpt(kShow) && !isClipped() && draw->regenType() != kAcGiForExtents) {
        AcGePoint3d origin;
        AcGeVector3d u, v;
        getOrientation(origin, u, v);
        draw->geometry().image(acdbImageSource(*this), origin, u, v);
    }
    if (AcDbRasterVariables::areFramesShown(database())) {
        gi::polyline(draw, outline, nullptr);
    }
    return true;
}
