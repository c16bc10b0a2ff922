// Rows that tell which group code fills which member; one loader and one writer for all of them.
#pragma once

#include "host/dxf/load_context.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/tag_writer.h"

#include <numbers>
#include <span>
#include <vector>

namespace dxf {

/// One member of class T. `fallback` is what a missing tag means; a member with a fallback is not
/// written while it has that value.
template <class T>
struct Field {
    enum class Kind : std::uint8_t {
        kPoint,
        kPoint2d,
        kVector,
        kReal,
        kAngle,
        kInteger,
        kText,
        kId
    };
    std::int16_t code;
    Kind kind;
    bool optional = false;
    double fallback = 0;
    union {
        AcGePoint3d T::*point;
        AcGePoint2d T::*point2d;
        AcGeVector3d T::*vector;
        double T::*real;
        std::int32_t T::*integer;
        std::string T::*text;
        AcDbObjectId T::*id;
    };

    constexpr Field(int c, AcGePoint3d T::*m)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kPoint)
      , point(m) {}
    constexpr Field(int c, AcGePoint2d T::*m)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kPoint2d)
      , point2d(m) {}
    /// Directions are optional; a missing one is the Z axis.
    constexpr Field(int c, AcGeVector3d T::*m)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kVector)
      , vector(m) {}
    constexpr Field(int c, double T::*m)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kReal)
      , real(m) {}
    constexpr Field(int c, double T::*m, double missing)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kReal)
      , optional(true)
      , fallback(missing)
      , real(m) {}
    constexpr Field(int c, std::int32_t T::*m)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kInteger)
      , integer(m) {}
    constexpr Field(int c, std::int32_t T::*m, int missing)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kInteger)
      , optional(true)
      , fallback(missing)
      , integer(m) {}
    constexpr Field(int c, std::string T::*m)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kText)
      , text(m) {}
    constexpr Field(int c, AcDbObjectId T::*m)
      : code(static_cast<std::int16_t>(c))
      , kind(Kind::kId)
      , id(m) {}
    /// Degrees in the file, radians in memory.
    static constexpr Field angle(int c, double T::*m) {
        Field field(c, m);
        field.kind = Kind::kAngle;
        return field;
    }
    static constexpr Field angle(int c, double T::*m, double missing) {
        Field field(c, m, missing);
        field.kind = Kind::kAngle;
        return field;
    }
    /// A direction that is always written.
    static constexpr Field axis(int c, AcGeVector3d T::*m) {
        Field field(c, m);
        field.fallback = 1;
        return field;
    }
};

constexpr double kRadians = std::numbers::pi / 180;

/// Sets one coordinate of a point or vector; `axis` 0 to 2.
template <class P>
void set_coordinate(P& p, int axis, double value) {
    (axis == 0 ? p.x : axis == 1 ? p.y : p.z) = value;
}

/// Takes a tag of an extrusion direction, groups 210, 220 and 230; others are passed over.
inline void take_extrusion(AcGeVector3d& normal, const Tag& tag, const ObjectTags& tags) {
    if (tag.code == 210 || tag.code == 220 || tag.code == 230) {
        set_coordinate(normal, tag.code / 10 - 21, tags.real(tag));
    }
}

/// Takes a tag of scale factors, groups 41, 42 and 43; false for any other.
inline bool take_scale(AcGeScale3d& scale, const Tag& tag, const ObjectTags& tags) {
    double* const factors[] = {&scale.sx, &scale.sy, &scale.sz};
    if (tag.code < 41 || tag.code > 43) {
        return false;
    }
    *factors[tag.code - 41] = tags.real(tag);
    return true;
}

/// Takes a tag of an outline's points, whose x has group `code`; false for any other.
inline bool take_outline(std::vector<AcGePoint2d>& outline, int code, const Tag& tag,
                         const ObjectTags& tags) {
    if (tag.code == code) {
        outline.push_back({tags.real(tag), 0});
        return true;
    }
    if (tag.code == code + 10 && !outline.empty()) {
        outline.back().y = tags.real(tag);
        return true;
    }
    return false;
}

template <class T>
bool load_field(T& object, const Field<T>& field, const Tag& tag, const ObjectTags& tags) {
    using Kind = typename Field<T>::Kind;
    const int step = tag.code - field.code;
    if (field.kind <= Kind::kVector) {
        if (step != 0 && step != 10 && (step != 20 || field.kind == Kind::kPoint2d)) {
            return false;
        }
        const double value = tags.real(tag);
        if (field.kind == Kind::kPoint) {
            set_coordinate(object.*field.point, step / 10, value);
        } else if (field.kind == Kind::kVector) {
            set_coordinate(object.*field.vector, step / 10, value);
        } else {
            (step == 0 ? (object.*field.point2d).x : (object.*field.point2d).y) = value;
        }
        return true;
    }
    if (step != 0) {
        return false;
    }
    switch (field.kind) {
    case Kind::kReal:
        object.*field.real = tags.real(tag);
        break;
    case Kind::kAngle:
        object.*field.real = tags.real(tag) * kRadians;
        break;
    case Kind::kInteger:
        object.*field.integer = tags.int32(tag);
        break;
    case Kind::kText:
        object.*field.text = tags.text(tag);
        break;
    default:
        object.*field.id = tags.id(tag);
    }
    return true;
}

/// Fills the members from the tags; tags without a row are passed over.
template <class T, std::size_t N>
void load_fields(T& object, const Field<T> (&fields)[N], std::span<const Tag> range,
                 const ObjectTags& tags) {
    for (const Tag& tag : range) {
        for (const Field<T>& field : fields) {
            if (load_field(object, field, tag, tags)) {
                break;
            }
        }
    }
}

template <class T>
void write_field(const T& object, const Field<T>& field, TagWriter& writer) {
    using Kind = typename Field<T>::Kind;
    switch (field.kind) {
    case Kind::kPoint:
        writer.point(field.code, object.*field.point);
        break;
    case Kind::kPoint2d:
        writer.point(field.code, object.*field.point2d);
        break;
    case Kind::kVector:
        if (field.fallback != 0 || !(object.*field.vector == AcGeVector3d::kZAxis)) {
            writer.vector(field.code, object.*field.vector);
        }
        break;
    case Kind::kReal:
    case Kind::kAngle: {
        const double value = object.*field.real;
        if (!field.optional || value != field.fallback) {
            writer.real(field.code, field.kind == Kind::kAngle ? value / kRadians : value);
        }
        break;
    }
    case Kind::kInteger:
        if (!field.optional || object.*field.integer != static_cast<int>(field.fallback)) {
            writer.integer(field.code, object.*field.integer);
        }
        break;
    case Kind::kText:
        writer.text(field.code, object.*field.text);
        break;
    case Kind::kId:
        if (!(object.*field.id).isNull()) {
            writer.id(field.code, object.*field.id);
        }
        break;
    }
}

template <class T, std::size_t N>
void write_fields(const T& object, const Field<T> (&fields)[N], TagWriter& writer) {
    for (const Field<T>& field : fields) {
        write_field(object, field, writer);
    }
}

/// A direction of no length is taken for the Z axis.
inline void repair_normal(AcGeVector3d& normal, const ObjectTags& tags) {
    if (normal.isZeroLength()) {
        tags.context().repaired("dxf-zero-normal", "an extrusion direction has no length",
                                tags.all().front().begin);
        normal = AcGeVector3d::kZAxis;
    }
}

} // namespace dxf
