// Curves, surfaces and parameter curves of a part.
#pragma once

#include "host/acis/analytic.h"
#include "host/acis/part.h"
#include "host/brep/brep.h"

#include <optional>
#include <string_view>

namespace acis {

/// Where the values of a record begin: behind the references to attributes and history that all
/// records have, whose number grew with the releases.
Cursor fieldsOf(const Part& part, const Record& record);

class GeometryReader {
public:
    explicit GeometryReader(const Part& part);

    /// Equal for two records that have one curve or surface: one of them may refer to the other.
    std::uint64_t shapeOf(const Record& record);

    /// False when the record's curve is of an unknown kind or broken. An empty curve is the one of
    /// an edge that is a point.
    bool readCurve(const Record& record, brep::Curve& curve);
    SurfaceRead readSurface(const Record& record);
    /// The parameter curve of a pcurve record; its direction is not certain.
    std::optional<brep::BSplineCurve> readPCurve(const Record& record);

private:
    bool takeCurve(Cursor& cursor, int depth, brep::Curve& curve);
    bool curveValues(std::string_view kind, Cursor& cursor, int depth, brep::Curve& curve);
    bool subtypeCurve(Cursor inside, int depth, brep::Curve& curve);
    std::optional<brep::BSplineCurve> supportPCurve(Cursor inside, int which, int depth);

    /// Reads a surface that stands within another record.
    bool takeSurface(Cursor& cursor, int depth, SurfaceRead& read);
    bool surfaceValues(std::string_view kind, Cursor& cursor, int depth, SurfaceRead& read);
    bool subtypeSurface(Cursor inside, int depth, SurfaceRead& read);
    bool definedSurface(std::string_view name, Cursor inside, int depth, brep::Surface& surface);
    bool offsetSurface(Cursor inside, int depth, SurfaceRead& read);

    /// The inside of the subtype that "ref n" means.
    std::optional<Cursor> referred(Cursor inside);
    /// Pays for reading a subtype once more; false when the part has had its share, which only
    /// happens when many records refer to one large subtype.
    bool pay(const Cursor& inside);
    /// Subtypes are counted as they begin or as they end; the order in which more of the part's
    /// references lead to a subtype of their own sort is the part's.
    void chooseOrder();
    std::string_view sortOf(std::uint32_t open) const;

    const Part& part_;
    std::uint64_t left_; ///< tokens that may still be read again
    bool order_chosen_ = false;
    bool by_end_ = false;
};

} // namespace acis
