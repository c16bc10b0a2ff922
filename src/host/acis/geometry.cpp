#include "host/acis/geometry.h"

#include "host/acis/analytic.h"
#include "host/acis/spline.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace acis {

namespace {

constexpr int kMostDepth = 12;

/// Numbers and the word ahead of a stored approximation: releases put different ones there.
void skipToSpline(Cursor& cursor) {
    std::int64_t ignored = 0;
    for (int i = 0; i < 4 && (cursor.takeInteger(ignored) || cursor.takeWord("full")); ++i) {
    }
}

bool isSurfaceWord(const Token& token) {
    static constexpr std::array<std::string_view, 6> words{"plane", "cone",   "sphere",
                                                           "torus", "spline", "null_surface"};
    return token.isName() && std::find(words.begin(), words.end(), token.text()) != words.end();
}

/// Moves the cursor to the next token at its own level for which `wanted` holds.
template <class Wanted>
bool moveTo(Cursor& cursor, Wanted wanted) {
    while (cursor.more()) {
        Cursor inside = cursor;
        if (wanted(*cursor.peek())) {
            return true;
        }
        if (!cursor.takeSubtype(inside)) {
            cursor.skip();
        }
    }
    return false;
}

bool isSplineWord(const Token& token) {
    return token.isName() && (token.text() == "nubs" || token.text() == "nurbs");
}

} // namespace

Cursor fieldsOf(const Part& part, const Record& record) {
    Cursor cursor(part, record.begin, record.end);
    std::int64_t number = 0;
    if (!cursor.takeReference(number)) {
        return cursor;
    }
    const bool wide = part.version >= 700;
    if (record.leaf == "transform") {
        std::array<double, 14> values{};
        for (Cursor probe = cursor; probe.take(values.data(), 14); probe = cursor) {
            cursor.skip(); // 13 values belong to the transform
        }
        return cursor;
    }
    Cursor probe = cursor;
    int numbers = 0;
    for (; numbers < 3 && probe.takeInteger(number); ++numbers) {
    }
    // Geometry of the early releases begins with its own numbers; a pcurve's with one and a
    // reference, as a heading's end does.
    const bool heading = numbers > 0 && numbers < 3 && probe.takeReference(number);
    if (!heading || (!wide && record.leaf == "pcurve")) {
        return cursor;
    }
    return record.base == "attrib" ? cursor : probe;
}

GeometryReader::GeometryReader(const Part& part)
  : part_(part)
  , left_(1'000'000 + 50 * std::uint64_t{part.tokens.size()}) {}

std::uint64_t GeometryReader::shapeOf(const Record& record) {
    Cursor cursor = fieldsOf(part_, record);
    bool reversed = false;
    Cursor inside = cursor;
    if ((record.leaf != "spline" && record.leaf != "intcurve") || !cursor.takeBool(reversed) ||
        !cursor.takeSubtype(inside)) {
        return std::uint64_t{record.begin} * 2;
    }
    for (int depth = 0; depth < kMostDepth; ++depth) {
        const auto target = referred(inside);
        if (!target) {
            break;
        }
        inside = *target;
    }
    return std::uint64_t{inside.position()} * 2 + (reversed ? 1 : 0);
}

bool GeometryReader::pay(const Cursor& inside) {
    const std::uint64_t price = inside.left();
    const bool enough = price <= left_;
    left_ -= enough ? price : left_;
    return enough;
}

bool GeometryReader::readCurve(const Record& record, brep::Curve& curve) {
    Cursor cursor = fieldsOf(part_, record);
    return curveValues(record.leaf, cursor, 0, curve);
}

bool GeometryReader::takeCurve(Cursor& cursor, int depth, brep::Curve& curve) {
    std::string_view kind;
    return cursor.takeName(kind) && curveValues(kind, cursor, depth, curve);
}

bool GeometryReader::curveValues(std::string_view kind, Cursor& cursor, int depth,
                                 brep::Curve& curve) {
    curve = std::monostate();
    if (kind == "straight") {
        return takeLine(cursor, curve);
    }
    if (kind == "ellipse") {
        return takeEllipse(cursor, curve);
    }
    if (kind == "degenerate_curve" || kind == "degenerate") {
        AcGePoint3d ignored;
        const bool sound = takePoint(cursor, ignored);
        takeRange(cursor);
        return sound;
    }
    if (kind == "intcurve") {
        bool reversed = false;
        Cursor inside = cursor;
        cursor.takeBool(reversed);
        if (!cursor.takeSubtype(inside) || !subtypeCurve(inside, depth, curve)) {
            return false;
        }
        takeRange(cursor);
        if (reversed) {
            turn(curve);
        }
        return true;
    }
    return kind == "null_curve";
}

bool GeometryReader::subtypeCurve(Cursor inside, int depth, brep::Curve& curve) {
    if (depth > kMostDepth) {
        return false;
    }
    if (const auto target = referred(inside)) {
        return pay(*target) && subtypeCurve(*target, depth + 1, curve);
    }
    std::string_view name;
    if (!inside.takeName(name)) {
        return false;
    }
    Cursor values = inside;
    skipToSpline(inside);
    if (auto spline = takeSplineCurve(inside, 3)) {
        curve = std::move(*spline);
        return true;
    }
    if (name == "helix_int_cur") {
        std::int64_t ignored = 0;
        values.takeInteger(ignored);
        return takeHelix(values, curve);
    }
    return false;
}

std::optional<brep::BSplineCurve> GeometryReader::supportPCurve(Cursor inside, int which,
                                                                int depth) {
    if (depth > kMostDepth || !pay(inside)) {
        return std::nullopt;
    }
    if (const auto target = referred(inside)) {
        return supportPCurve(*target, which, depth + 1);
    }
    if (!moveTo(inside, isSurfaceWord)) {
        return std::nullopt;
    }
    for (int i = 0; i < 2; ++i) {
        std::string_view name;
        if (!inside.takeName(name)) {
            return std::nullopt;
        }
        // What stands between the surfaces' names and the curves is not needed.
        moveTo(inside, [&](const Token& token) {
            return isSplineWord(token) || (token.isName() && token.text() == "nullbs") ||
                   (i == 0 && isSurfaceWord(token));
        });
    }
    for (int i = 0; i < which; ++i) {
        if (!inside.takeWord("nullbs") && !takeSplineCurve(inside, 2)) {
            return std::nullopt;
        }
    }
    return takeSplineCurve(inside, 2);
}

std::optional<brep::BSplineCurve> GeometryReader::readPCurve(const Record& record) {
    Cursor cursor = fieldsOf(part_, record);
    std::int64_t which = 0;
    if (!cursor.takeInteger(which)) {
        return std::nullopt;
    }
    std::optional<brep::BSplineCurve> found;
    bool reversed = which < 0;
    Cursor inside = cursor;
    if (which == 0) {
        cursor.takeBool(reversed);
        if (!cursor.takeSubtype(inside)) {
            return std::nullopt;
        }
        for (int depth = 0; depth < kMostDepth; ++depth) {
            const auto target = referred(inside);
            if (!target) {
                break;
            }
            inside = *target;
        }
        if (!pay(inside)) {
            return std::nullopt;
        }
        std::string_view name;
        inside.takeName(name);
        skipToSpline(inside);
        found = takeSplineCurve(inside, 2);
    } else {
        std::int64_t number = 0;
        const Record* curve = nullptr;
        if (std::abs(which) > 2 || !cursor.takeReference(number) ||
            (curve = part_.record(number)) == nullptr) {
            return std::nullopt;
        }
        Cursor values = fieldsOf(part_, *curve);
        bool ignored = false;
        values.takeBool(ignored);
        if (values.takeSubtype(inside)) {
            found = supportPCurve(inside, static_cast<int>(std::abs(which)) - 1, 0);
        }
    }
    std::array<double, 2> shift{};
    if (found && cursor.take(shift.data(), 2) && std::abs(shift[0]) < kMostValue &&
        std::abs(shift[1]) < kMostValue) {
        for (AcGePoint3d& point : found->points) {
            point = point + AcGeVector3d{shift[0], shift[1], 0};
        }
    }
    if (found && reversed) {
        reverse(*found);
    }
    return found;
}

SurfaceRead GeometryReader::readSurface(const Record& record) {
    SurfaceRead read;
    Cursor cursor = fieldsOf(part_, record);
    if (!surfaceValues(record.leaf, cursor, 0, read)) {
        read.surface = std::monostate();
    }
    return read;
}

bool GeometryReader::takeSurface(Cursor& cursor, int depth, SurfaceRead& read) {
    std::string_view kind;
    return cursor.takeName(kind) && surfaceValues(kind, cursor, depth, read);
}

bool GeometryReader::surfaceValues(std::string_view kind, Cursor& cursor, int depth,
                                   SurfaceRead& read) {
    struct Form {
        std::string_view kind;
        bool (*take)(Cursor&, SurfaceRead&);
    };
    static constexpr std::array forms{Form{"plane", takePlane}, Form{"cone", takeCone},
                                      Form{"sphere", takeSphere}, Form{"torus", takeTorus}};
    read = {};
    read.kind = kind;
    const auto* const form =
        std::find_if(forms.begin(), forms.end(), [&](const Form& f) { return f.kind == kind; });
    if (form != forms.end()) {
        return form->take(cursor, read);
    }
    if (kind != "spline") {
        return false;
    }
    bool reversed = false;
    Cursor inside = cursor;
    cursor.takeBool(reversed);
    if (!cursor.takeSubtype(inside) || !subtypeSurface(inside, depth, read)) {
        return false;
    }
    takeRange(cursor);
    takeRange(cursor);
    read.flip = read.flip != reversed;
    return true;
}

bool GeometryReader::subtypeSurface(Cursor inside, int depth, SurfaceRead& read) {
    if (depth > kMostDepth) {
        return false;
    }
    if (const auto target = referred(inside)) {
        return pay(*target) && subtypeSurface(*target, depth + 1, read);
    }
    std::string_view name;
    if (!inside.takeName(name)) {
        return false;
    }
    read.kind = name;
    // The surface's own approximation stands behind those of its supports.
    std::optional<brep::BSplineSurface> stored;
    for (Cursor at = inside; moveTo(at, isSplineWord);) {
        if (auto found = takeSplineSurface(at)) {
            stored = std::move(found);
        } else {
            at.skip();
        }
    }
    if (stored) {
        read.surface = std::move(*stored);
        return true;
    }
    std::int64_t ignored = 0;
    inside.takeInteger(ignored);
    if (name == "offsur" || name == "off_spl_sur") {
        return offsetSurface(inside, depth, read);
    }
    return definedSurface(name, inside, depth, read.surface);
}

/// Kinds whose definition the model can hold, for parts that store no approximation.
bool GeometryReader::definedSurface(std::string_view name, Cursor inside, int depth,
                                    brep::Surface& surface) {
    brep::Curve curve;
    if (name == "rotsur" || name == "rot_spl_sur") {
        brep::Revolution turned;
        if (!takeCurve(inside, depth + 1, turned.curve) || turned.curve.index() == 0 ||
            !takePoint(inside, turned.origin) || !takeDirection(inside, turned.axis)) {
            return false;
        }
        surface = std::move(turned);
        return true;
    }
    if (name == "sumsur" || name == "sum_spl_sur") {
        brep::CurveSum sum;
        if (!takeCurve(inside, depth + 1, sum.first) || !takeCurve(inside, depth + 1, sum.second) ||
            sum.first.index() == 0 || sum.second.index() == 0 || !takePoint(inside, sum.anchor)) {
            return false;
        }
        surface = std::move(sum);
        return true;
    }
    if (name == "cylsur" || name == "cyl_spl_sur") {
        brep::Extrusion pushed;
        if (!takeCurve(inside, depth + 1, pushed.curve) || pushed.curve.index() == 0 ||
            !takeVector(inside, pushed.direction) || !(pushed.direction.length() > 0)) {
            return false;
        }
        surface = std::move(pushed);
        return true;
    }
    return false;
}

/// The surface at a distance from a plane, cylinder, round cone, sphere or torus.
bool GeometryReader::offsetSurface(Cursor inside, int depth, SurfaceRead& read) {
    SurfaceRead base;
    double distance = 0;
    if (!takeSurface(inside, depth + 1, base) || !inside.take(distance) ||
        !(std::abs(distance) <= kMostValue)) {
        return false;
    }
    distance = base.flip ? -distance : distance; // along the model's normal
    bool sound = false;
    if (auto* plane = std::get_if<brep::Plane>(&base.surface)) {
        plane->origin = plane->origin + plane->normal * distance;
        sound = true;
    } else if (auto* sphere = std::get_if<brep::Sphere>(&base.surface)) {
        sphere->radius += distance;
        sound = sphere->radius > 0;
    } else if (auto* torus = std::get_if<brep::Torus>(&base.surface)) {
        torus->minor_radius += distance;
        sound = torus->minor_radius > 0;
    } else if (auto* cone = std::get_if<brep::Cone>(&base.surface)) {
        const double radius = cone->major.length();
        const double wanted = radius + distance / cone->cosine;
        cone->major = cone->major * (wanted / radius);
        sound = cone->ratio == 1 && wanted > 0;
    }
    read.surface = std::move(base.surface);
    read.flip = base.flip;
    return sound;
}

std::optional<Cursor> GeometryReader::referred(Cursor inside) {
    std::int64_t number = 0;
    if (!inside.takeWord("ref") || !inside.takeInteger(number)) {
        return std::nullopt;
    }
    if (!order_chosen_) {
        chooseOrder();
    }
    const auto& table = by_end_ ? part_.closed : part_.opened;
    if (number < 0 || static_cast<std::uint64_t>(number) >= table.size()) {
        return std::nullopt;
    }
    const std::uint32_t open = table[static_cast<std::size_t>(number)];
    const auto all = static_cast<std::uint32_t>(part_.tokens.size());
    return Cursor(part_, open + 1, std::clamp(part_.tokens[open].length, open + 1, all));
}

std::string_view GeometryReader::sortOf(std::uint32_t open) const {
    const Record* record = part_.recordAt(open);
    if (record == nullptr) {
        return {};
    }
    // "spline forward {" within a record, else the record's own kind
    for (std::uint32_t back = 1; back <= 2 && open >= record->begin + back; ++back) {
        const std::string_view word = part_.tokens[open - back].text();
        if (part_.tokens[open - back].isName() &&
            (word == "spline" || word == "intcurve" || word == "pcurve")) {
            return word;
        }
    }
    return record->leaf;
}

void GeometryReader::chooseOrder() {
    order_chosen_ = true;
    std::size_t begin_fits = 0;
    std::size_t end_fits = 0;
    for (std::uint32_t i = 0; i + 2 < part_.tokens.size(); ++i) {
        std::int64_t number = 0;
        if (part_.tokens[i].kind != Token::Kind::kOpen || !part_.tokens[i + 1].isName() ||
            part_.tokens[i + 1].text() != "ref" || !integerOf(part_.tokens[i + 2], number) ||
            number < 0 || static_cast<std::uint64_t>(number) >= part_.closed.size()) {
            continue;
        }
        const auto place = static_cast<std::size_t>(number);
        const std::string_view sort = sortOf(i);
        begin_fits += sortOf(part_.opened[place]) == sort ? 1 : 0;
        end_fits += sortOf(part_.closed[place]) == sort ? 1 : 0;
    }
    by_end_ = end_fits > begin_fits;
}

} // namespace acis
