// Numbers and points as typed.
#include "host/ed/point_text.h"

#include <charconv>
#include <cmath>
#include <numbers>

namespace ed {
namespace {

/// "x,y", "x,y,z" or "distance<angle".
std::optional<AcGeVector3d> parse_coordinates(std::string_view text, bool spatial) {
    if (const std::size_t bend = text.find('<'); bend != std::string_view::npos) {
        const auto distance = parse_number(text.substr(0, bend));
        const auto degrees = parse_number(text.substr(bend + 1));
        if (!distance || !degrees) {
            return std::nullopt;
        }
        const double angle = *degrees * std::numbers::pi / 180;
        return AcGeVector3d{*distance * std::cos(angle), *distance * std::sin(angle), 0};
    }
    double parts[3] = {0, 0, 0};
    int count = 0;
    while (count < 3) {
        const std::size_t comma = text.find(',');
        const auto number = parse_number(text.substr(0, comma));
        if (!number) {
            return std::nullopt;
        }
        parts[count++] = *number;
        if (comma == std::string_view::npos) {
            const bool good = count == 2 || (count == 3 && spatial);
            return good ? std::optional(AcGeVector3d{parts[0], parts[1], parts[2]}) : std::nullopt;
        }
        text.remove_prefix(comma + 1);
    }
    return std::nullopt;
}

} // namespace

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<double> parse_number(std::string_view text) {
    text = trimmed(text);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<AcGePoint3d> parse_point(std::string_view text, const PointFrame& frame) {
    text = trimmed(text);
    const bool relative = text.starts_with('@');
    const bool of_world = text.starts_with('*');
    if (relative || of_world) {
        text.remove_prefix(1);
    }
    if (relative && trimmed(text).empty()) {
        return frame.base;
    }
    const auto coordinates = parse_coordinates(text, frame.spatial);
    if (!coordinates) {
        return std::nullopt;
    }
    if (relative) {
        return frame.base + coordinates->transformedBy(frame.ucs);
    }
    const AcGePoint3d point = AcGePoint3d::kOrigin + *coordinates;
    return of_world ? point : point.transformedBy(frame.ucs);
}

} // namespace ed
