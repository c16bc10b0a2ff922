// Photometric files: LM-63 and EULUMDAT. LM-63 as in ANSI/IES LM-63-19 and its forerunners,
// EULUMDAT as in A. Stockmar, "EULUMDAT - ein Leuchtendatenformat fuer den europaeischen
// Beleuchtungsplaner", Licht '90.
#include "toolkit/ts_photometry.h"

#include "platform/files.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;
constexpr double degree = pi / 180;
constexpr double same_angle = 1e-4; ///< degrees
constexpr std::size_t file_limit = std::size_t{4} << 20;

// ---- from measured angles to a web ----

bool Ascends(const std::vector<double>& angles) {
    return std::all_of(angles.begin(), angles.end(),
                       [](double angle) { return std::abs(angle) <= 720; }) &&
           std::is_sorted(angles.begin(), angles.end());
}

/// A plane of a web, taken or mixed from two measured ones.
struct Column {
    double angle = 0; ///< degrees
    std::size_t first = 0, second = 0;
    double share = 0; ///< of the second
};

double Turned(double angle) {
    angle -= 360 * std::floor(angle / 360);
    return angle > 360 - same_angle ? 0 : angle;
}

/// The planes of a full turn: those measured and their mirror images, ascending from 0 to 360.
std::vector<Column> FullTurn(const TsMeasuredWeb& measured) {
    std::vector<Column> columns;
    const bool flip_y = measured.mirror == TsMirror::about_0_180;
    const bool flip_x = measured.mirror == TsMirror::about_90_270;
    const bool both = measured.mirror == TsMirror::about_both;
    for (std::size_t i = 0; i < measured.horizontal.size(); ++i) {
        const double h = measured.horizontal[i];
        const auto add = [&](double angle) {
            columns.push_back({Turned(angle + measured.turn), i, i, 0});
        };
        add(h);
        if (flip_y || both) {
            add(-h);
        }
        if (flip_x || both) {
            add(180 - h);
        }
        if (both) {
            add(180 + h);
        }
    }
    std::stable_sort(columns.begin(), columns.end(),
                     [](const Column& a, const Column& b) { return a.angle < b.angle; });
    const auto same = [](const Column& a, const Column& b) {
        return b.angle - a.angle < same_angle;
    };
    columns.erase(std::unique(columns.begin(), columns.end(), same), columns.end());
    if (columns.front().angle > same_angle) { // the plane of 0 from its neighbours
        const double ahead = 360 - columns.back().angle;
        columns.insert(columns.begin(), {0, columns.back().first, columns.front().first,
                                         ahead / (ahead + columns.front().angle)});
    }
    columns.front().angle = 0;
    columns.push_back(columns.front());
    columns.back().angle = 360;
    return columns;
}

void TakeColumns(const TsMeasuredWeb& measured, const std::vector<Column>& columns,
                 CTsPhotometricWeb& web) {
    const std::size_t width = measured.horizontal.size();
    for (const Column& column : columns) {
        web.m_Horizontal.push_back(static_cast<float>(column.angle * degree));
    }
    for (std::size_t v = 0; v < measured.vertical.size(); ++v) {
        web.m_Vertical.push_back(static_cast<float>(measured.vertical[v] * degree));
        const double* row = measured.candela.data() + v * width;
        for (const Column& column : columns) {
            const double value =
                row[column.first] + column.share * (row[column.second] - row[column.first]);
            web.m_Candela.push_back(static_cast<float>(std::clamp(value, 0.0, 1e30)));
        }
    }
}

void BuildTypeC(const TsMeasuredWeb& measured, CTsPhotometricWeb& web) {
    const double first = measured.horizontal.front(), last = measured.horizontal.back();
    const auto reaches = [&](double from, double to) {
        return std::abs(first - from) < same_angle && std::abs(last - to) < same_angle;
    };
    if (measured.horizontal.size() == 1) {
        TakeColumns(measured, {Column{}}, web);
        return;
    }
    TsMeasuredWeb told = measured;
    if (measured.mirror == TsMirror::none && measured.turn == 0) {
        if (std::abs(first) < same_angle && last < 360 + same_angle) {
            std::vector<Column> columns;
            for (std::size_t i = 0; i < measured.horizontal.size(); ++i) {
                columns.push_back({std::clamp(measured.horizontal[i], 0.0, 360.0), i, i, 0});
            }
            TakeColumns(measured, columns, web);
            return;
        }
        told.mirror = reaches(90, 270) || reaches(-90, 90)    ? TsMirror::about_90_270
                      : reaches(180, 360) || reaches(-180, 0) ? TsMirror::about_0_180
                                                              : TsMirror::none;
    }
    TakeColumns(told, FullTurn(told), web);
}

/// Bilinear within the measured angles, 0 beyond them.
double Sample(const TsMeasuredWeb& measured, double h, double v) {
    const auto find = [](const std::vector<double>& angles, double value, double& share) {
        const auto above = std::upper_bound(angles.begin(), angles.end(), value + same_angle);
        const auto high = static_cast<std::size_t>(above - angles.begin());
        share = 0;
        if (high == 0 || (high == angles.size() && value > angles.back() + same_angle)) {
            return angles.size();
        }
        if (high < angles.size()) {
            share = std::max(0.0, value - angles[high - 1]) / (angles[high] - angles[high - 1]);
        }
        return high - 1;
    };
    double h_share = 0, v_share = 0;
    const std::size_t column = find(measured.horizontal, h, h_share);
    const std::size_t row = find(measured.vertical, v, v_share);
    const std::size_t width = measured.horizontal.size();
    if (column == width || row == measured.vertical.size()) {
        return 0;
    }
    const auto at = [&](std::size_t r) {
        const double* values = measured.candela.data() + r * width;
        return h_share > 0 ? values[column] + h_share * (values[column + 1] - values[column])
                           : values[column];
    };
    return v_share > 0 ? at(row) + v_share * (at(row + 1) - at(row)) : at(row);
}

/// Types A and B turn about an axis across the beam: upright for A, level for B. The beam is the
/// light's direction, and the level axis across it the x axis. They are measured anew on a grid of
/// type C.
void BuildTypeAB(const TsMeasuredWeb& measured, CTsPhotometricWeb& web) {
    const bool mirrored_h = measured.horizontal.front() > -same_angle;
    const bool mirrored_v = measured.vertical.front() > -same_angle;
    const auto widest = [](const std::vector<double>& angles) {
        return std::max(std::abs(angles.front()), std::abs(angles.back()));
    };
    const bool behind = std::max(widest(measured.horizontal), widest(measured.vertical)) > 90.01;
    const int rows = behind ? 181 : 91;
    constexpr int columns = 121;
    for (int i = 0; i < columns; ++i) {
        web.m_Horizontal.push_back(static_cast<float>(i * 360.0 / (columns - 1) * degree));
    }
    for (int v = 0; v < rows; ++v) {
        web.m_Vertical.push_back(static_cast<float>(v * degree));
        for (int i = 0; i < columns; ++i) {
            const double turn = i * 360.0 / (columns - 1) * degree;
            const double right = std::sin(v * degree) * std::cos(turn);
            const double up = std::sin(v * degree) * std::sin(turn);
            const double ahead = std::cos(v * degree);
            const bool b = measured.type == 2;
            const double across = std::asin(std::clamp(b ? right : up, -1.0, 1.0)) / degree;
            const double along = std::atan2(b ? up : right, ahead) / degree;
            const double h_angle = b ? across : along, v_angle = b ? along : across;
            const double value = Sample(measured, mirrored_h ? std::abs(h_angle) : h_angle,
                                        mirrored_v ? std::abs(v_angle) : v_angle);
            web.m_Candela.push_back(static_cast<float>(std::clamp(value, 0.0, 1e30)));
        }
    }
}

} // namespace

std::string TsBuildWeb(const TsMeasuredWeb& measured, CTsPhotometricWeb& web) {
    web.m_Horizontal.clear(), web.m_Vertical.clear(), web.m_Candela.clear();
    std::string fault;
    if (measured.horizontal.empty() || measured.vertical.size() < 2 ||
        measured.candela.size() != measured.horizontal.size() * measured.vertical.size()) {
        fault = "has too few angles";
    } else if (!std::all_of(measured.candela.begin(), measured.candela.end(),
                            [](double value) { return std::isfinite(value); })) {
        fault = "holds what is no number";
    } else if (!Ascends(measured.horizontal) || !Ascends(measured.vertical)) {
        fault = "has angles that do not ascend";
    } else {
        measured.type == 1 ? BuildTypeC(measured, web) : BuildTypeAB(measured, web);
        fault = web.Valid() ? "" : "has angles or values out of range";
    }
    if (!fault.empty()) {
        web = {};
    }
    return fault;
}

namespace {

// ---- text ----

/// Numbers with blanks, commas or line breaks between them.
class NumberText {
public:
    NumberText(std::string_view all_text, std::size_t offset)
      : whole(all_text)
      , at(offset) {}

    bool Take(double& value) {
        constexpr std::string_view between = " \t\r\n\f\v,;";
        at = std::min(whole.find_first_not_of(between, at), whole.size());
        at += at < whole.size() && whole[at] == '+' ? 1 : 0;
        double read = 0;
        const auto result = std::from_chars(whole.data() + at, whole.data() + whole.size(), read);
        if (result.ec != std::errc() || !std::isfinite(read)) {
            return false;
        }
        at = static_cast<std::size_t>(result.ptr - whole.data());
        value = read;
        return true;
    }
    bool Take(std::vector<double>& values, std::size_t count) {
        values.resize(count);
        return std::all_of(values.begin(), values.end(), [&](double& v) { return Take(v); });
    }
    std::string Where() const {
        const auto end = whole.begin() + static_cast<std::ptrdiff_t>(at);
        return " (line " + std::to_string(1 + std::count(whole.begin(), end, '\n')) + ")";
    }

private:
    std::string_view whole;
    std::size_t at;
};

/// A count that is a whole number between 1 and `most`; 0 when it is not.
std::size_t Count(double number, std::size_t most) {
    return number >= 1 && number <= static_cast<double>(most) && number == std::floor(number)
               ? static_cast<std::size_t>(number)
               : 0;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

std::string Upper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return upper;
}

std::vector<std::string_view> Lines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.push_back(text.substr(0, end));
        const bool pair = text.substr(end).starts_with("\r\n");
        text.remove_prefix(std::min(text.size(), end + (pair ? 2 : 1)));
    }
    return lines;
}

// ---- LM-63 ----

/// `rows` by `columns` values, given plane by plane.
std::vector<double> Transposed(const std::vector<double>& planes, std::size_t rows,
                               std::size_t columns) {
    std::vector<double> values(planes.size());
    for (std::size_t column = 0; column < columns; ++column) {
        for (std::size_t row = 0; row < rows; ++row) {
            values[row * columns + column] = planes[column * rows + row];
        }
    }
    return values;
}

/// The table of a lamp's output by tilt: read over, since a light's tilt is not known here.
bool SkipTilt(NumberText& numbers) {
    double geometry = 0, pairs = 0;
    std::vector<double> table;
    return numbers.Take(geometry) && numbers.Take(pairs) && pairs >= 0 &&
           (pairs == 0 || Count(pairs, 1000) > 0) &&
           numbers.Take(table, 2 * static_cast<std::size_t>(pairs));
}

/// Up to LM-63-1991 the second factor behind the sizes is the ballast-lamp factor. Later it is kept
/// for the future, and in LM-63-2019 tells how the file was made.
bool HasLampFactor(std::string_view first_line) {
    const std::string line = Upper(first_line);
    return !line.starts_with("IESNA:") && !line.starts_with("IES:");
}

std::string ReadLm63(std::string_view text, std::size_t behind_tilt, std::string_view tilt,
                     bool lamp_factor, CTsPhotometricWeb& web) {
    NumberText numbers(text, behind_tilt);
    if (tilt == "INCLUDE" && !SkipTilt(numbers)) {
        return "has a damaged tilt table" + numbers.Where();
    }
    // Lamps, lumens each, multiplier, vertical and horizontal angles, type, units, width, length,
    // height, ballast factor, ballast-lamp factor, watts.
    std::vector<double> head;
    if (!numbers.Take(head, 13)) {
        return "is cut short or holds what is no number" + numbers.Where();
    }
    const std::size_t rows = Count(head[3], CTsPhotometricWeb::angle_limit);
    const std::size_t columns = Count(head[4], CTsPhotometricWeb::angle_limit);
    if (rows == 0 || columns == 0 || rows * columns > CTsPhotometricWeb::value_limit) {
        return "has no usable number of angles" + numbers.Where();
    }
    if (Count(head[5], 3) == 0) {
        return "has an unknown photometric type" + numbers.Where();
    }
    TsMeasuredWeb measured;
    measured.type = static_cast<int>(head[5]);
    std::vector<double> planes;
    if (!numbers.Take(measured.vertical, rows) || !numbers.Take(measured.horizontal, columns) ||
        !numbers.Take(planes, rows * columns)) {
        return "is cut short or holds what is no number" + numbers.Where();
    }
    measured.candela = Transposed(planes, rows, columns);
    double factor = 1;
    for (const double part : {head[2], head[10], lamp_factor ? head[11] : 1}) {
        factor *= part > 0 ? part : 1; // zeros stand where a maker had nothing to tell
    }
    web.m_Multiplier = static_cast<float>(std::clamp(factor, 1e-30, 1e30));
    return TsBuildWeb(measured, web);
}

// ---- EULUMDAT ----

/// Lines of a EULUMDAT file as numbers; a decimal comma is taken for a point.
class LineNumbers {
public:
    explicit LineNumbers(std::vector<std::string_view> all_lines)
      : lines(std::move(all_lines)) {}
    std::size_t next = 0; ///< line

    bool Take(double& value) {
        if (next >= lines.size()) {
            return false;
        }
        std::string line(Trimmed(lines[next++]).substr(0, 64));
        std::replace(line.begin(), line.end(), ',', '.');
        return NumberText(line, 0).Take(value);
    }
    bool Take(std::vector<double>& values, std::size_t count) {
        values.resize(count);
        return std::all_of(values.begin(), values.end(), [&](double& v) { return Take(v); });
    }
    std::string Where() const { return " (line " + std::to_string(next) + ")"; }

private:
    std::vector<std::string_view> lines;
};

/// Which of `planes` planes, counted from C0, a kind of symmetry lists, and how to mirror them.
struct Listed {
    std::size_t first, count;
    TsMirror mirror;
};

Listed ListedPlanes(int symmetry, std::size_t planes) {
    switch (symmetry) {
    case 1:
        return {0, 1, TsMirror::none};
    case 2:
        return {0, planes / 2 + 1, TsMirror::about_0_180};
    case 3:
        return {3 * planes / 4, planes / 2 + 1, TsMirror::about_90_270};
    case 4:
        return {0, planes / 4 + 1, TsMirror::about_both};
    default:
        return {0, planes, TsMirror::none};
    }
}

/// Candela for one thousand lumens times the lamps' flux: the factor on the file's values.
bool ReadLampFactor(LineNumbers& lines, double& factor) {
    double conversion = 0, tilt = 0, sets = 0;
    lines.next = 23;
    if (!lines.Take(conversion) || !lines.Take(tilt) || !lines.Take(sets) ||
        Count(sets, 100) == 0) {
        return false;
    }
    const std::size_t begin = lines.next;
    double flux = 0;
    lines.next = begin + 2; // number and name of the lamps of the first set stand ahead of it
    if (!lines.Take(flux)) {
        return false;
    }
    lines.next = begin + 6 * Count(sets, 100) + 10; // the sets, then ten direct ratios
    factor = (conversion > 0 ? conversion : 1) * (flux > 0 ? flux / 1000 : 1);
    return true;
}

std::string ReadEulumdat(std::string_view text, CTsPhotometricWeb& web) {
    LineNumbers lines(Lines(text));
    const std::string no_form = "is neither an LM-63 nor an EULUMDAT file";
    double kind = 0, symmetry = 0, plane_count = 0, step = 0, row_count = 0, factor = 1;
    lines.next = 1;
    if (!lines.Take(kind) || !lines.Take(symmetry) || !lines.Take(plane_count) ||
        !lines.Take(step) || !lines.Take(row_count) || !ReadLampFactor(lines, factor)) {
        return no_form;
    }
    const std::size_t planes = Count(plane_count, CTsPhotometricWeb::angle_limit);
    const std::size_t rows = Count(row_count, CTsPhotometricWeb::angle_limit);
    const int kind_of_symmetry = static_cast<int>(Count(symmetry + 1, 5)) - 1;
    const bool divides = kind_of_symmetry < 2 || planes % (kind_of_symmetry == 2 ? 2 : 4) == 0;
    if (planes == 0 || rows == 0 || kind_of_symmetry < 0 || !divides) {
        return no_form;
    }
    const Listed listed = ListedPlanes(kind_of_symmetry, planes);
    if (listed.count * rows > CTsPhotometricWeb::value_limit) {
        return "has too many values";
    }
    TsMeasuredWeb measured;
    std::vector<double> all_planes, values;
    if (!lines.Take(all_planes, planes) || !lines.Take(measured.vertical, rows) ||
        !lines.Take(values, listed.count * rows)) {
        return "is cut short or holds what is no number" + lines.Where();
    }
    for (std::size_t i = 0; i < listed.count; ++i) {
        const std::size_t plane = listed.first + i;
        measured.horizontal.push_back(all_planes[plane % planes] + (plane >= planes ? 360 : 0));
    }
    measured.candela = Transposed(values, rows, listed.count);
    measured.mirror = listed.mirror;
    // C0 lies across the luminaire, the plane of 0 degrees of LM-63 and of the web along it.
    measured.turn = -90;
    web.m_Multiplier = static_cast<float>(std::clamp(factor, 1e-30, 1e30));
    return TsBuildWeb(measured, web);
}

} // namespace

// ---- files ----

bool CTsPhotometricWeb::ReadText(std::string_view text, const std::string& name,
                                 std::string& error) {
    *this = {};
    error.clear();
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    }
    std::string fault;
    if (text.size() > file_limit) {
        fault = "is too large for a photometric file";
    } else {
        const std::vector<std::string_view> lines = Lines(text);
        const auto tilt = std::find_if(lines.begin(), lines.end(), [](std::string_view line) {
            const std::string upper = Upper(Trimmed(line).substr(0, 8));
            return upper.starts_with("TILT") && upper.find('=') != std::string::npos;
        });
        if (tilt == lines.end()) {
            fault = ReadEulumdat(text, *this);
        } else {
            const auto behind = static_cast<std::size_t>(tilt->data() - text.data()) + tilt->size();
            const std::string_view value = tilt->substr(tilt->find('=') + 1);
            fault = ReadLm63(text, behind, Upper(Trimmed(value)),
                             HasLampFactor(Trimmed(lines.front())), *this);
        }
    }
    if (!fault.empty()) {
        *this = {};
        error = name + ": " + fault;
        return false;
    }
    m_Name = name;
    return true;
}

bool CTsPhotometricWeb::ReadFile(const std::string& path, std::string& error) {
    *this = {};
    platform::MappedFile file;
    std::string why;
    if (!file.open(path, why)) {
        error = path + ": " + why;
        return false;
    }
    if (!ReadText(file.view(), path, error)) {
        return false;
    }
    m_Name = std::filesystem::path(path).filename().string();
    return true;
}
