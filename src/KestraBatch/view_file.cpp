// Reads the view file by a table of its keys.
#include "KestraBatch/view_file.h"

#include <array>
#include <bitset>
#include <cmath>
#include <string>

namespace KestraBatch {

namespace {

struct NumberRow {
    std::string_view key;
    double ViewRecord::*member;
    bool positive; ///< needed, and above 0
};

constexpr std::array<NumberRow, 6> number_rows{{
    {"view_scale", &ViewRecord::view_scale, true},
    {"fieldWidth", &ViewRecord::field_width, true},
    {"fieldHeight", &ViewRecord::field_height, true},
    {"Brightness", &ViewRecord::brightness, false},
    {"Burn", &ViewRecord::burn, false},
    {"Saturation", &ViewRecord::saturation, false},
}};

struct PointRow {
    std::string_view key;
    Triple ViewRecord::*member;
    bool needed;
};

constexpr std::array<PointRow, 4> point_rows{{
    {"Eye", &ViewRecord::eye, true},
    {"Target", &ViewRecord::target, true},
    {"Up", &ViewRecord::up, true},
    {"Dir", &ViewRecord::direction, false},
}};

constexpr std::size_t direction_row = 3;
static_assert(point_rows[direction_row].key == "Dir");

/// Known, and told by another line already or of no use for a picture.
constexpr auto other_keys = std::to_array<std::string_view>({
    "IsAcad",        "PixelWidth",    "PixelHeight",   "EyeX",          "EyeY",
    "EyeZ",          "TargetX",       "TargetY",       "TargetZ",       "EyeX (inches)",
    "EyeY (inches)", "EyeZ (inches)", "DirX (meters)", "DirY (meters)", "DirZ (meters)",
    "DirX (inches)", "DirY (inches)", "DirZ (inches)", "m_Scale",       "DirX",
    "DirY",          "DirZ",          "UpX",           "UpY",           "UpZ",
    "m_d",           "m_l",           "m_r",           "m_t",           "m_b",
    "FOV",           "FOVW",          "CameraType",    "OrthoHeight",   "dir_len",
});

bool finite(const Triple& t) {
    return std::isfinite(t.x) && std::isfinite(t.y) && std::isfinite(t.z);
}

class ViewParser {
public:
    ViewParser(const std::string& file, WarningList& warnings)
      : file_(file)
      , warnings_(warnings) {}

    ViewRecord run(std::string_view text) {
        LineCursor lines(text);
        std::string_view line;
        bool ended = false;
        while (!ended && lines.next(line)) {
            line_ = lines.number();
            ended = take_line(trim_blanks(line));
        }
        if (!ended) {
            fail("the file ends without 'END_CURRENT;'");
        }
        check();
        return view_;
    }

private:
    /// True at the end record.
    bool take_line(std::string_view line) {
        if (line.empty() || line.substr(0, 2) == "#;" || line.substr(0, 9) == "viewport:") {
            return false;
        }
        const std::size_t semicolon = line.find(';');
        const std::string_view key = line.substr(0, semicolon);
        if (semicolon == line.npos) {
            warn("view-line", "no semicolon in it; the line is skipped");
            return false;
        }
        std::string_view value = line.substr(semicolon + 1);
        if (!value.empty() && value.back() == ';') {
            value.remove_suffix(1); // fieldWidth ends so
        }
        if (key == "END_CURRENT") {
            return true;
        }
        if (key == "ViewName") {
            view_.name = value;
        } else if (!take_number_row(key, value) && !take_point_row(key, value) && !other(key)) {
            warn("view-key-unknown", "unknown key '" + std::string(key) + "'");
        }
        return false;
    }

    bool take_number_row(std::string_view key, std::string_view value) {
        for (std::size_t i = 0; i < number_rows.size(); ++i) {
            const NumberRow& row = number_rows[i];
            if (row.key != key) {
                continue;
            }
            double number = 0;
            if (!parse_number(value, number) || !std::isfinite(number)) {
                fail(std::string(key) + " is no finite number: '" + std::string(value) + "'");
            }
            if (row.positive && number <= 0) {
                fail(std::string(key) + " must be above 0, not '" + std::string(value) + "'");
            }
            view_.*row.member = number;
            seen_numbers_.set(i);
            return true;
        }
        return false;
    }

    bool take_point_row(std::string_view key, std::string_view value) {
        for (std::size_t i = 0; i < point_rows.size(); ++i) {
            if (point_rows[i].key != key) {
                continue;
            }
            Triple point;
            if (!parse_triple(value, point) || !finite(point)) {
                fail(std::string(key) + " is no point '(x,y,z)' of finite numbers: '" +
                     std::string(value) + "'");
            }
            view_.*point_rows[i].member = point;
            seen_points_.set(i);
            return true;
        }
        return false;
    }

    static bool other(std::string_view key) {
        for (const std::string_view known : other_keys) {
            if (known == key) {
                return true;
            }
        }
        return false;
    }

    void check() {
        for (std::size_t i = 0; i < number_rows.size(); ++i) {
            if (number_rows[i].positive && !seen_numbers_[i]) {
                fail("no line '" + std::string(number_rows[i].key) + ";' before the end");
            }
        }
        for (std::size_t i = 0; i < point_rows.size(); ++i) {
            if (point_rows[i].needed && !seen_points_[i]) {
                fail("no line '" + std::string(point_rows[i].key) + ";' before the end");
            }
        }
        if (!seen_points_[direction_row]) {
            view_.direction = {view_.target.x - view_.eye.x, view_.target.y - view_.eye.y,
                               view_.target.z - view_.eye.z};
        }
    }

    [[noreturn]] void fail(const std::string& text) const {
        throw ReadError(ExitCode::input_unreadable, file_, line_, text);
    }
    void warn(const char* code, const std::string& text) {
        warnings_.add(code, ReadError::where(file_, line_) + text);
    }

    const std::string& file_;
    WarningList& warnings_;
    ViewRecord view_;
    std::size_t line_ = 0;
    std::bitset<number_rows.size()> seen_numbers_;
    std::bitset<point_rows.size()> seen_points_;
};

} // namespace

ViewRecord parse_view(std::string_view text, const std::string& file, WarningList& warnings) {
    return ViewParser(file, warnings).run(text);
}

} // namespace KestraBatch
