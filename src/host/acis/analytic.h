// Values of curves and surfaces that have a formula, as they stand in records and within others.
#pragma once

#include "host/acis/part.h"
#include "host/brep/brep.h"

#include <optional>
#include <string>

namespace acis {

/// Coordinates beyond this are broken; products of some of them stay finite.
inline constexpr double kMostValue = 1e60;

/// A surface of the model. With `flip` its normal is against the one that the part gives it.
struct SurfaceRead {
    brep::Surface surface; ///< none when it could not be read
    bool flip = false;
    std::string kind;
};

struct Range {
    std::optional<double> from, to;
};

bool takePoint(Cursor& cursor, AcGePoint3d& point);
bool takeVector(Cursor& cursor, AcGeVector3d& vector);
/// A direction, made a unit vector.
bool takeDirection(Cursor& cursor, AcGeVector3d& vector);
/// Two ends of a range, each "I" for none, or "F" and the value.
Range takeRange(Cursor& cursor);

/// The curve taken at the negative of its parameter.
void turn(brep::Curve& curve);

// Each reads the values behind the kind's name; false when they are broken.
bool takeLine(Cursor& cursor, brep::Curve& curve);
bool takeEllipse(Cursor& cursor, brep::Curve& curve);
/// A helix about an axis: range of the angle, centre, two radii as vectors, rise of one turn,
/// growth of the radius with each turn. Made of cubic pieces that have the helix's points and
/// tangents at their ends.
bool takeHelix(Cursor& cursor, brep::Curve& curve);
bool takePlane(Cursor& cursor, SurfaceRead& read);
bool takeCone(Cursor& cursor, SurfaceRead& read);
bool takeSphere(Cursor& cursor, SurfaceRead& read);
bool takeTorus(Cursor& cursor, SurfaceRead& read);

} // namespace acis
