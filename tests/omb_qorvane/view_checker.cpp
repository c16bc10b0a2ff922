// The reader of view files: each line's form, and what the numbers have to do with one another.
#include "stream_checker.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace checker {
namespace {

constexpr double degree = std::numbers::pi / 180;

double length_of(const triple& v) { return std::hypot(v[0], v[1], v[2]); }
triple unit(const triple& v) {
    const double length = length_of(v);
    return length > 0 ? triple{v[0] / length, v[1] / length, v[2] / length} : triple{};
}
triple times(double factor, const triple& v) {
    return {factor * v[0], factor * v[1], factor * v[2]};
}

class view_reader {
public:
    view_reader(std::string_view text, std::map<std::string, double>& values)
      : in_(text, faults_)
      , values_(values) {
        in_.context("the view file");
    }
    std::vector<std::string> read() {
        try {
            head();
            places();
            directions();
            field_and_axes();
            angles();
            tail();
        } catch (const lost_place&) { // noted; the order of the lines is the file's whole form
        }
        return std::move(faults_);
    }

private:
    double number(const std::string& key, std::string_view form = "%0.9g") {
        const double value = in_.numbers(key + ";", form)[0];
        values_.try_emplace(key, value);
        return value;
    }
    triple point(const std::string& key) {
        const triple value = in_.numbers(key + ";", "(%0.9g,%0.9g,%0.9g)");
        values_.try_emplace(key, value[0]);
        return value;
    }
    /// Three lines, then a blank one.
    triple axes(const std::string& key, const std::string& unit_words = "") {
        const auto along = [&](char axis) { return number(key + axis + unit_words); };
        const triple value{along('X'), along('Y'), along('Z')};
        in_.exact("");
        return value;
    }
    /// Nine digits of each, of sums that may have lost some.
    void same(double a, double b, double reach, const std::string& rule) {
        in_.require(std::abs(a - b) <= 2e-8 * std::max({std::abs(a), std::abs(b), reach}), rule);
    }
    void same(const triple& a, const triple& b, double reach, const std::string& rule) {
        const double gap = length_of({a[0] - b[0], a[1] - b[1], a[2] - b[2]});
        in_.require(gap <= 4e-8 * std::max({length_of(a), length_of(b), reach}), rule);
    }

    void head() {
        for (const char* line :
             {"#;Batch_ViewSettingsFile", "ViewName;Current", "", "IsAcad;1", "", "PixelWidth;0",
              "PixelHeight;0", "", "", "viewport: width = 0  height = 0", "", ""}) {
            in_.exact(line);
        }
    }
    void places() {
        eye_ = point("Eye");
        in_.require(axes("Eye") == eye_, "the three lines are not those of Eye");
        target_ = point("Target");
        in_.require(axes("Target") == target_, "the three lines are not those of Target");
        in_.require(axes("Eye", " (inches)") == eye_,
                    "the lines with inches tell the scaled eye as well");
    }
    void directions() {
        direction_ = point("Dir");
        in_.require(axes("Dir", " (meters)") == direction_, "the three lines are not those of Dir");
        const triple gap{target_[0] - eye_[0], target_[1] - eye_[1], target_[2] - eye_[2]};
        reach_ = std::max(length_of(eye_), length_of(target_));
        same(direction_, gap, reach_, "Dir does not lead from Eye to Target");
        const triple unscaled = axes("Dir", " (inches)");
        same(number("dir_len"), length_of(direction_), 0, "dir_len is not the length of Dir");
        in_.exact("");
        const double scale = number("m_Scale");
        in_.require(scale > 0, "the scale is not above 0");
        in_.require(number("view_scale") == scale, "m_Scale and view_scale differ");
        same(times(scale, unscaled), direction_, 0, "Dir in inches is not Dir without the scale");
        scale_ = scale;
        unscaled_ = unscaled;
    }
    void field_and_axes() {
        in_.exact("");
        width_ = number("fieldWidth", "%0.9g;");
        in_.exact("");
        height_ = number("fieldHeight");
        in_.require(width_ >= 0 && height_ >= 0, "a field below 0");
        same(axes("Dir"), unit(unscaled_), 0, "the three lines are not Dir of length 1, or 0");
        const triple up = point("Up");
        const triple up_axes = axes("Up");
        const double length = length_of(up_axes);
        in_.require(length == 0 || std::abs(length - 1) < 1e-7, "the up axis is not of length 1");
        same(up, times(scale_, up_axes), 0, "Up is not the up axis with the scale");
    }
    void angles() {
        in_.exact("m_d;1");
        const auto half_cosine = [this](const std::string& key, double sign, double field) {
            const double value = number(key);
            const double slack = 1e-8 + field * 1e-8 * degree; // of the field's own nine digits
            in_.require(std::abs(value - sign * 0.5 * std::cos(field * degree)) <= slack,
                        key + " is not half the cosine of the field as an angle");
            return value;
        };
        const double left = half_cosine("m_l", -1, width_);
        half_cosine("m_r", 1, width_);
        const double top = half_cosine("m_t", 1, height_);
        half_cosine("m_b", -1, height_);
        const auto fov = [](double half) { return 2 * std::abs(std::atan(half)) / degree; };
        same(number("FOV"), fov(top), 100, "FOV does not follow from m_t");
        same(number("FOVW"), fov(left), 100, "FOVW does not follow from m_l");
    }
    void tail() {
        in_.exact("");
        in_.exact("CameraType;Perspective");
        in_.require(number("OrthoHeight") == height_, "OrthoHeight is not fieldHeight");
        for (const char* line :
             {"", "", "Brightness;0", "Burn;0", "Saturation;1", "END_CURRENT;"}) {
            in_.exact(line);
        }
        if (!in_.at_end()) {
            in_.skip();
            in_.require(false, "the view file has nothing behind END_CURRENT;");
        }
    }

    std::vector<std::string> faults_;
    text_reader in_;
    std::map<std::string, double>& values_;
    triple eye_{}, target_{}, direction_{}, unscaled_{};
    double scale_ = 1, width_ = 0, height_ = 0, reach_ = 0;
};

} // namespace

std::vector<std::string> check_view(std::string_view text, std::map<std::string, double>& values) {
    return view_reader(text, values).read();
}

} // namespace checker
