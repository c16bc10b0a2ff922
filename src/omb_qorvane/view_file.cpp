// The view file: the camera of the active viewport.
#include "host/gs/view.h"
#include "omb/base/number_text.h"
#include "omb_qorvane/omb_export.h"
#include "omb_qorvane/view_text.h"

#include <cmath>
#include <numbers>

namespace {

/// Composes "Key;value" lines with nine significant digits.
class view_lines {
public:
    void text(std::string_view lines) { out_ += lines; }
    void number(std::string_view key, double value, std::string_view end = "\n") {
        out_ += key;
        number_text::append_g9(out_, value);
        out_ += end;
    }
    void triple(std::string_view key, const AcGeVector3d& v) {
        out_ += key;
        out_ += '(';
        number_text::append_g9(out_, v.x);
        out_ += ',';
        number_text::append_g9(out_, v.y);
        out_ += ',';
        number_text::append_g9(out_, v.z);
        out_ += ")\n";
    }
    /// "EyeX;", "EyeY;", "EyeZ;" and a blank line; `unit` stands behind the letter.
    void axes(const std::string& name, const std::string& unit, const AcGeVector3d& v) {
        number(name + "X" + unit + ";", v.x);
        number(name + "Y" + unit + ";", v.y);
        number(name + "Z" + unit + ";", v.z, "\n\n");
    }
    std::string take() { return std::move(out_); }

private:
    std::string out_;
};

/// The unit vector, or zero for a vector without length.
AcGeVector3d unit_or_zero(const AcGeVector3d& v) {
    const double length = v.length();
    return length > 0 ? v / length : AcGeVector3d();
}

} // namespace

std::string view_file_text(const AcGsView& view, double scale) {
    const AcGeVector3d eye = view.position.asVector() * scale;
    const AcGeVector3d target = view.target.asVector() * scale;
    const AcGeVector3d direction = view.target - view.position;
    const AcGeVector3d up = unit_or_zero(view.up);
    const double width = view.field_width * scale, height = view.field_height * scale;
    // A length read as an angle in degrees: kept, its readers expect it.
    const double half_width = 0.5 * std::cos(width * std::numbers::pi / 180);
    const double half_height = 0.5 * std::cos(height * std::numbers::pi / 180);
    const auto angle = [](double half) {
        return 2 * std::abs(std::atan(half)) * 180 / std::numbers::pi;
    };
    view_lines out;
    out.text("#;Batch_ViewSettingsFile\nViewName;Current\n\nIsAcad;1\n\nPixelWidth;0\n"
             "PixelHeight;0\n\n\nviewport: width = 0  height = 0\n\n\n");
    out.triple("Eye;", eye);
    out.axes("Eye", "", eye);
    out.triple("Target;", target);
    out.axes("Target", "", target);
    out.axes("Eye", " (inches)", eye);
    out.triple("Dir;", direction * scale);
    out.axes("Dir", " (meters)", direction * scale);
    out.axes("Dir", " (inches)", direction);
    out.number("dir_len;", scale * direction.length(), "\n\n");
    out.number("m_Scale;", scale);
    out.number("view_scale;", scale);
    out.number("\nfieldWidth;", width, ";\n");
    out.number("\nfieldHeight;", height);
    out.axes("Dir", "", unit_or_zero(direction));
    out.triple("Up;", up * scale);
    out.axes("Up", "", up);
    out.text("m_d;1\n");
    out.number("m_l;", -half_width);
    out.number("m_r;", half_width);
    out.number("m_t;", half_height);
    out.number("m_b;", -half_height);
    out.number("FOV;", angle(half_height));
    out.number("FOVW;", angle(-half_width));
    out.text("\nCameraType;Perspective\n");
    out.number("OrthoHeight;", height);
    out.text("\n\nBrightness;0\nBurn;0\nSaturation;1\nEND_CURRENT;\n");
    return out.take();
}

bool cl_omb_export::write_view_file(AcDbObjectId viewport, double scale) {
    if (!view_file.open_atomic(view_file_path)) {
        return false;
    }
    AcGsView view;
    acgsGetViewParameters(viewport, view);
    view_file.write_data(view_file_text(view, scale));
    return view_file.close();
}
