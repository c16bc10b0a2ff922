// Text drawings written in one go, without an object in memory.
#include "bench/apps/scale_drawings.h"

#include "host/dxf/tag_writer.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string>

namespace scale {

namespace {

constexpr std::int64_t faces_in_block = 100, blocks_in_block = 10;

dxf::WriteStyle style() {
    dxf::WriteStyle old;
    old.version = 1015;
    return old;
}

/// The text of a drawing, handed to its file in pieces.
class DrawingFile {
public:
    explicit DrawingFile(const std::filesystem::path& path)
      : file_(path, std::ios::binary)
      , writer_(text_, style()) {
        text_ = "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n  9\n$INSUNITS\n 70\n     "
                "6\n  0\nENDSEC\n";
    }

    void section(const char* name) {
        writer_.raw(0, "SECTION");
        writer_.raw(2, name);
    }
    void end_section() { writer_.raw(0, "ENDSEC"); }
    void end() {
        writer_.raw(0, "EOF");
        flush();
    }

    void begin_block(const std::string& name) {
        head("BLOCK", "0");
        writer_.subclass("AcDbBlockBegin");
        writer_.raw(2, name);
        writer_.integer(70, 0);
        writer_.point(10, AcGePoint3d{0, 0, 0});
        writer_.raw(3, name);
    }
    void end_block() {
        head("ENDBLK", "0");
        writer_.subclass("AcDbBlockEnd");
        flush();
    }
    void insert(const std::string& name, const AcGePoint3d& at, double scale, double degrees) {
        head("INSERT", "Furniture");
        writer_.subclass("AcDbBlockReference");
        writer_.raw(2, name);
        writer_.point(10, at);
        writer_.real(41, scale);
        writer_.real(42, scale);
        writer_.real(43, scale);
        writer_.real(50, degrees);
    }
    /// A square of the unit, with corners at the heights.
    void face(double x, double y, double unit, const double (&heights)[4], const char* layer) {
        head("3DFACE", layer);
        writer_.subclass("AcDbFace");
        writer_.point(10, AcGePoint3d{x, y, heights[0]});
        writer_.point(11, AcGePoint3d{x + unit, y, heights[1]});
        writer_.point(12, AcGePoint3d{x + unit, y + unit, heights[2]});
        writer_.point(13, AcGePoint3d{x, y + unit, heights[3]});
    }

private:
    void head(const char* type, const char* layer) {
        writer_.raw(0, type);
        writer_.handle(5, ++handle_);
        writer_.subclass("AcDbEntity");
        writer_.raw(8, layer);
    }
    void flush() {
        file_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
        text_.clear();
    }

    std::ofstream file_;
    std::string text_;
    dxf::TagWriter writer_;
    std::uint64_t handle_ = 0x100;
};

std::string numbered(const char* name, std::int64_t number) {
    return name + std::to_string(number);
}

/// Ground that is nowhere the same.
double height(double x, double y) {
    return 1.5 * std::sin(0.31 * x) * std::cos(0.27 * y) + 0.4 * std::sin(1.7 * x + 2.3 * y) +
           0.002 * x;
}

constexpr double unit = 0.25; ///< side of a face, metres
constexpr std::int64_t side = 10;

void write_patch(DrawingFile& out, std::int64_t block, std::int64_t blocks_in_row,
                 std::int64_t faces) {
    const double left = static_cast<double>(block % blocks_in_row) * side * unit;
    const double front = static_cast<double>(block / blocks_in_row) * side * unit;
    out.begin_block(numbered("patch", block));
    for (std::int64_t i = 0; i < faces; ++i) {
        const double x = left + static_cast<double>(i % side) * unit;
        const double y = front + static_cast<double>(i / side) * unit;
        const double heights[4] = {height(x, y), height(x + unit, y), height(x + unit, y + unit),
                                   height(x, y + unit)};
        out.face(x, y, unit, heights, i % 3 == 0 ? "Roof" : "Walls");
    }
    out.end_block();
}

/// A chair of boxes, so to speak: a hundred faces within half a metre.
void write_chair(DrawingFile& out) {
    out.begin_block("chair");
    for (std::int64_t i = 0; i < faces_in_block; ++i) {
        const double x = 0.05 * static_cast<double>(i % side),
                     y = 0.05 * static_cast<double>(i / side);
        const double z = 0.4 + 0.3 * std::sin(0.37 * static_cast<double>(i));
        const double heights[4] = {z, z + 0.02, z + 0.05, z + 0.01};
        out.face(x, y, 0.05, heights, "Wood");
    }
    out.end_block();
}

} // namespace

void write_distinct(const std::filesystem::path& file, std::int64_t faces) {
    DrawingFile out(file);
    const std::int64_t blocks = (faces + faces_in_block - 1) / faces_in_block;
    const std::int64_t outer = (blocks + blocks_in_block - 1) / blocks_in_block;
    const auto in_row =
        static_cast<std::int64_t>(std::ceil(std::sqrt(static_cast<double>(blocks))));
    out.section("BLOCKS");
    for (std::int64_t i = 0; i < blocks; ++i) {
        write_patch(out, i, in_row, std::min(faces_in_block, faces - i * faces_in_block));
    }
    for (std::int64_t i = 0; i < outer; ++i) {
        out.begin_block(numbered("field", i));
        for (std::int64_t k = i * blocks_in_block; k < std::min(blocks, (i + 1) * blocks_in_block);
             ++k) {
            out.insert(numbered("patch", k), {0, 0, 0}, 1, 0);
        }
        out.end_block();
    }
    out.end_section();
    out.section("ENTITIES");
    for (std::int64_t i = 0; i < outer; ++i) {
        out.insert(numbered("field", i), {0, 0, 0}, 1, 0);
    }
    out.end_section();
    out.end();
}

void write_inserts(const std::filesystem::path& file, std::int64_t inserts) {
    DrawingFile out(file);
    out.section("BLOCKS");
    write_chair(out);
    out.begin_block("seat");
    out.insert("chair", {0, 0, 0.1}, 1.1, 30);
    out.end_block();
    out.end_section();
    out.section("ENTITIES");
    const auto in_row =
        static_cast<std::int64_t>(std::ceil(std::sqrt(static_cast<double>(inserts))));
    for (std::int64_t i = 0; i < inserts; ++i) {
        const AcGePoint3d at{1.1 * static_cast<double>(i % in_row),
                             1.2 * static_cast<double>(i / in_row), 0};
        out.insert(i % 4 == 3 ? "seat" : "chair", at, 0.8 + 0.01 * static_cast<double>(i % 37),
                   17.3 * static_cast<double>(i));
    }
    out.end_section();
    out.end();
}

} // namespace scale
