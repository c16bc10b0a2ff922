// Decals: those on entities, each in a file of its own, and pictures that hang in the drawing.
#include "host/db/image.h"
#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/png_file.h"
#include "omb/base/trace.h"
#include "omb_qorvane/drawing_files.h"
#include "omb_qorvane/entity_functions.h"
#include "omb_qorvane/omb_export.h"
#include "omb_qorvane/record_text.h"
#include "omb_qorvane/ts_ac_convert.h"

#include <cmath>
#include <filesystem>
#include <fmt/printf.h>

namespace {

std::string triple_text(const char* keyword, double x, double y, double z) {
    return fmt::sprintf("%s;(%f,%f,%f)\n", keyword, x, y, z);
}
template <class Triple>
std::string triple_text(const char* keyword, const Triple& t) {
    return triple_text(keyword, t.x, t.y, t.z);
}

bool is_finite_triple(const auto& t) {
    return std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.z);
}

/// A copy in the folder of decals, unless there is one of that name. False when it fails.
bool copy_beside(const std::string& from, const std::string& to) {
    if (file_exists(to)) {
        return true;
    }
    std::error_code error;
    std::filesystem::copy_file(from, to, error);
    if (error) {
        OMB_TRACE(1, "Cannot copy %s to %s: %s", from, to, error.message());
    }
    return !error;
}

/// The decal's file; the picture goes beside it when it can be found.
bool write_decal_file(const CTsDecal& decal, const std::string& folder, const std::string& path) {
    CTsDecal written = decal;
    if (const std::string picture = find_drawing_file(decal.m_Image); !picture.empty()) {
        const std::string bare = path_name(picture);
        if (copy_beside(picture, join_path(folder, bare))) {
            written.m_Image = bare;
        }
    }
    CTsXmlWriter writer;
    writer.Init(path, 0, -1);
    written.Write(writer);
    if (writer.Close()) {
        return true;
    }
    OMB_TRACE(1, "Cannot write decal: %s", writer.Error());
    return false;
}

/// Where an image decal's picture comes from: found, copied or made. Comments tell how.
class image_source {
public:
    image_source(const AcDbRasterImage& image, CTsAcCommonDraw& draw)
      : image_(image)
      , draw_(draw)
      , folder_(draw.exporter.get_drawing_decals_folder()) {}

    /// The file's name in the folder of decals; "" without one.
    std::string take() {
        const std::string source = image_.sourceFileName();
        comment("DECAL, sourceFileName: %s", source);
        const std::string found = locate(source);
        if (!found.empty()) {
            const std::string bare = path_name(found);
            const std::string target = join_path(folder_, bare);
            if (!file_exists(target)) {
                comment("CopyFile: %s -> %s", found, target);
            }
            if (copy_beside(found, target)) {
                return bare;
            }
        }
        return from_image_data(source);
    }

private:
    template <class... Args>
    void comment(const char* format, const Args&... args) {
        draw_.stream.text("#;" + record_name(fmt::sprintf(format, args...)) + "\n");
    }

    std::string locate(const std::string& source) {
        if (source.empty() || source.front() != '.') {
            return file_exists(source) ? source : std::string();
        }
        const std::string path = join_path(current_drawing_folder(), native_separators(source));
        if (!file_exists(path)) {
            comment("Relative image not found: %s", path);
            return {};
        }
        comment("Found relative image: %s", path);
        return path;
    }

    std::string from_image_data(const std::string& source) {
        std::string stem = record_name(path_stem(source));
        if (stem.empty()) {
            stem = fmt::sprintf("%d", static_cast<std::int32_t>(image_.getAcDbHandle().low()));
        }
        const std::string name = "DECAL - " + stem + ".png";
        const std::string path = join_path(folder_, name);
        if (file_exists(path)) {
            return name;
        }
        AcDbImageData data;
        const AcDbObjectPointer<AcDbRasterImageDef> definition(image_.imageDefId());
        if (!definition || !definition->imageData(data)) {
            comment("Could not get ATIL Image; %s", source);
            return {};
        }
        std::string error;
        if (!write_png_file(path, static_cast<int>(data.width), static_cast<int>(data.height),
                            data.rgba, error)) {
            OMB_TRACE(1, "Cannot save the picture of a decal: %s", error);
            return {};
        }
        comment("Saved ATIL Image; %s", path);
        return name;
    }

    const AcDbRasterImage& image_;
    CTsAcCommonDraw& draw_;
    std::string folder_;
};

/// Both corners of the lower edge, the sizes, the normal. False for a picture without an area.
bool add_image_to_batch_file(const AcDbRasterImage& image, const std::string& file,
                             CTsAcCommonDraw& draw) {
    AcGePoint3d origin;
    AcGeVector3d u, v;
    if (!image.getOrientation(origin, u, v)) {
        return false;
    }
    const CTsPoint start = draw.tsdoc.ToTs(to_ts(origin));
    const CTsPoint end = draw.tsdoc.ToTs(to_ts(origin + u));
    const CTsVector height = draw.tsdoc.ToTs(to_ts(v));
    const AcGeVector3d normal =
        to_ac(end - start).normal().crossProduct(to_ac(height).normal()).normal();
    if (!is_finite_triple(start) || !is_finite_triple(end) || !is_finite_triple(height) ||
        normal.isZeroLength()) {
        return false;
    }
    draw.stream.text("#;\n" + triple_text("DEC1", start) + triple_text("DEC2", end) +
                     fmt::sprintf("DECW;%f\nDECH;%f\n", (end - start).Length(), height.Length()) +
                     triple_text("DECN", normal) + "DECL;" + record_name(file) + "\n#;\n");
    return true;
}

} // namespace

void write_object_decals(CTsAcCommonDraw& draw) {
    if (draw.traits->decals.empty() || !draw.stream.is_open()) {
        return;
    }
    const std::string folder = draw.exporter.get_drawing_decals_folder();
    for (const CTsDecal& decal : draw.traits->decals) {
        const std::string name =
            fmt::sprintf("OMB_Decal_%d.TsDecal", draw.exporter.decal_counter++);
        const std::string path = join_path(folder, name);
        if (!is_finite_triple(decal.m_Location) || !write_decal_file(decal, folder, path) ||
            !file_exists(path)) {
            draw.stream.text("#;DECAL not written\n");
            continue;
        }
        draw.stream.text("#;\n" + triple_text("DECO", decal.m_Location) +
                         triple_text("DECX", decal.m_XAxis) + triple_text("DECY", decal.m_YAxis) +
                         triple_text("DECZ", decal.m_ZAxis) +
                         triple_text("DECS", decal.m_XScale, decal.m_YScale, decal.m_ZScale) +
                         "DECL;" + name + "\n#;\n");
    }
}

void write_image_decal(const AcGiDrawable& drawable, CTsAcCommonDraw& draw) {
    if (!draw.stream.is_open()) {
        return;
    }
    const auto& image = static_cast<const AcDbRasterImage&>(drawable);
    const std::string file = image_source(image, draw).take();
    if (file.empty() || !add_image_to_batch_file(image, file, draw)) {
        draw.stream.text("#;DECL; Not Found: " + record_name(image.sourceFileName()) + "\n");
        ++draw.report.missing_images;
        return;
    }
}
