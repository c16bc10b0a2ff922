// Pictures in a drawing: their definition (a file) and their places.
#pragma once

#include "host/db/entity.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// A decoded picture: rows from the top, four bytes (red, green, blue, alpha) a pixel.
struct AcDbImageData {
    /// Larger pictures are refused.
    static constexpr std::uint32_t kMostSide = 32768;
    static constexpr std::uint64_t kMostBytes = 1ULL << 30;

    std::uint32_t width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
    /// Both sides are within the limits, and there are bytes for all pixels.
    bool isValid() const;
};

/// Reads a picture's file; false when it can't. It may refuse early what is beyond the limits of
/// AcDbImageData. It must allow calls from several threads.
using AcDbImageLoader = std::function<bool(const std::filesystem::path&, AcDbImageData&)>;
/// The host itself reads no pictures: a program lends it a loader. A null one takes it away.
void acdbSetImageLoader(AcDbImageLoader loader);
/// Reads a picture through the loader: false without one, when it fails or throws, and when the
/// picture is empty or beyond the limits; `data` is empty then.
bool acdbLoadImage(const std::filesystem::path& file, AcDbImageData& data);

/// DXF IMAGEDEF: the file of a picture.
class AcDbRasterImageDef : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbRasterImageDef)
public:
    enum Units { kNone = 0, kCentimeters = 2, kInches = 5 };

    const std::string& sourceFileName() const { return source_; } ///< as stored
    void setSourceFileName(std::string name) { source_ = std::move(name); }
    /// The file that was found for it (support_files.h), empty when there is none.
    std::string activeFileName() const;
    AcGePoint2d size() const { return size_; } ///< pixels, as stored
    void setSize(const AcGePoint2d& size) { size_ = size; }
    AcGePoint2d pixelSize() const { return pixel_size_; } ///< drawing units a pixel, by default
    Units resolutionUnits() const;
    bool isLoaded() const { return loaded_ != 0; } ///< the mark in the drawing
    /// Finds and reads the picture. Nothing is kept: each call reads the file.
    bool imageData(AcDbImageData& data) const;

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::string source_;
    AcGePoint2d size_, pixel_size_;
    std::int32_t version_ = 0, loaded_ = 1, units_ = kNone;
};

/// DXF RASTERVARIABLES: how a drawing shows all its pictures.
class AcDbRasterVariables : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbRasterVariables)
public:
    int imageFrame() const { return frame_; } ///< 0: frames are hidden
    void setImageFrame(int frame) { frame_ = frame; }
    /// Frames of pictures are shown in that drawing; true when it does not tell.
    static bool areFramesShown(const AcDbDatabase* database);

    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    std::int32_t version_ = 0, frame_ = 1, quality_ = 1, units_ = 0;
};

/// A flat picture in space.
class AcDbImage : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbImage)
public:
    /// Its visible outline in world coordinates, the first point again at the end. Empty when it
    /// has no area or unusable numbers.
    virtual std::vector<AcGePoint3d> getVertices() const = 0;
};

/// DXF IMAGE.
class AcDbRasterImage : public AcDbImage {
    ACRX_DECLARE_MEMBERS(AcDbRasterImage)
public:
    enum ImageDisplayOpt { kShow = 1, kShowUnAligned = 2, kClip = 4, kTransparent = 8 };
    enum ClipBoundaryType { kInvalid = 0, kRect = 1, kPoly = 2 };

    AcDbObjectId imageDefId() const { return definition_; }
    void setImageDefId(AcDbObjectId id) { definition_ = id; }
    /// Name in the definition and file found for it; empty without a definition.
    std::string sourceFileName() const;
    std::string activeFileName() const;

    /// The lower left corner and the whole lower and left edges, world coordinates. False, with
    /// edges of no length, when its numbers are not usable; the size in pixels may be zero.
    bool getOrientation(AcGePoint3d& origin, AcGeVector3d& u, AcGeVector3d& v) const;
    /// Edges as above; they are kept for a pixel, so the size is set before. eInvalidInput for a
    /// size of zero or numbers that are not finite.
    Acad::ErrorStatus setOrientation(const AcGePoint3d& origin, const AcGeVector3d& u,
                                     const AcGeVector3d& v);
    AcGePoint2d imageSize() const; ///< pixels; the definition's when the entity tells none
    void setImageSize(const AcGePoint2d& size) { size_ = size; }

    bool isSetDisplayOpt(ImageDisplayOpt option) const { return (options_ & option) != 0; }
    void setDisplayOpt(ImageDisplayOpt option, bool on);
    std::int32_t brightness() const { return brightness_; } ///< 0 to 100
    std::int32_t contrast() const { return contrast_; }     ///< 0 to 100
    std::int32_t fade() const { return fade_; }             ///< 0 to 100

    bool isClipped() const;                                ///< on, and there is a boundary
    bool isClipInverted() const { return inverted_ != 0; } ///< the boundary is a hole
    ClipBoundaryType clipBoundaryType() const;
    /// In pixels from the upper left corner (-0.5, -0.5), y down; two opposite corners for kRect.
    const std::vector<AcGePoint2d>& clipBoundary() const { return boundary_; }
    Acad::ErrorStatus setClipBoundary(ClipBoundaryType type, std::vector<AcGePoint2d> boundary);

    std::vector<AcGePoint3d> getVertices() const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    /// One whose file is not found cannot be shown.
    const char* notRenderedReason() const override {
        return activeFileName().empty() ? "image" : nullptr;
    }
    /// The picture, where it is not clipped and the interface takes pictures, and the frame where
    /// frames are shown.
    bool worldDraw(AcGiWorldDraw* draw) override;
    void dxfIn(const dxf::ObjectTags& tags) override;
    void dxfOut(dxf::TagWriter& writer) const override;

private:
    AcDbObjectId definition_, reactor_;
    AcGePoint3d origin_;
    AcGeVector3d u_pixel_{1, 0, 0}, v_pixel_{0, 1, 0};
    AcGePoint2d size_;
    std::int32_t version_ = 0, options_ = kShow | kShowUnAligned, clipping_ = 0;
    std::int32_t brightness_ = 50, contrast_ = 50, fade_ = 0, inverted_ = 0;
    std::int32_t boundary_type_ = kRect;
    std::vector<AcGePoint2d> boundary_;
};

/// The picture as drawing interfaces take it; it is read when they ask for its pixels, while the
/// drawing is still there.
AcGiImageBGRA32 acdbImageSource(const AcDbRasterImage& image);
