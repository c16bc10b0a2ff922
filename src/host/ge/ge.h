// Points, vectors and matrices of the host, in double precision. Right-handed frames.
#pragma once

#include <array>
#include <cmath>

class AcGeVector3d;
class AcGeMatrix3d;

/// Tolerances for comparing points and vectors.
class AcGeTol {
public:
    double equalPoint() const { return point_; }
    double equalVector() const { return vector_; }
    void setEqualPoint(double value) { point_ = value; }
    void setEqualVector(double value) { vector_ = value; }

private:
    double point_ = 1e-10;
    double vector_ = 1e-10;
};

struct AcGeContext {
    static inline AcGeTol gTol;
};

class AcGeVector2d {
public:
    double x = 0, y = 0;
    double length() const { return std::hypot(x, y); }
};

class AcGePoint2d {
public:
    double x = 0, y = 0;
    double distanceTo(const AcGePoint2d& p) const { return std::hypot(p.x - x, p.y - y); }
    bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint();
    }
};

class AcGeVector3d {
public:
    static const AcGeVector3d kXAxis, kYAxis, kZAxis, kIdentity;
    double x = 0, y = 0, z = 0;

    double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
    AcGeVector3d crossProduct(const AcGeVector3d& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    double lengthSqrd() const { return dotProduct(*this); }
    double length() const { return std::sqrt(lengthSqrd()); }
    bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return length() <= tol.equalVector();
    }
    bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
        return std::abs(x - v.x) <= tol.equalVector() && std::abs(y - v.y) <= tol.equalVector() &&
               std::abs(z - v.z) <= tol.equalVector();
    }
    /// Scales to length 1; a vector shorter than the tolerance is left as it is.
    AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol) {
        const double len = length();
        if (len > tol.equalVector()) {
            x /= len;
            y /= len;
            z /= len;
        }
        return *this;
    }
    AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const {
        AcGeVector3d copy = *this;
        return copy.normalize(tol);
    }
    AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    AcGeVector3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    AcGeVector3d operator-() const { return {-x, -y, -z}; }
    AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
    AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
    bool operator==(const AcGeVector3d& v) const = default;
    /// This vector turned about `axis` (unit) by `angle` radians, right-hand rule.
    AcGeVector3d rotatedBy(double angle, const AcGeVector3d& axis) const;
    AcGeVector3d transformedBy(const AcGeMatrix3d& m) const;
    /// A unit vector at a right angle to this one, by the arbitrary-axis rule of DXF.
    AcGeVector3d perpVector() const;
};

inline const AcGeVector3d AcGeVector3d::kXAxis{1, 0, 0};
inline const AcGeVector3d AcGeVector3d::kYAxis{0, 1, 0};
inline const AcGeVector3d AcGeVector3d::kZAxis{0, 0, 1};
inline const AcGeVector3d AcGeVector3d::kIdentity{0, 0, 0};

class AcGePoint3d {
public:
    static const AcGePoint3d kOrigin;
    double x = 0, y = 0, z = 0;

    AcGeVector3d asVector() const { return {x, y, z}; }
    double distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }
    bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
        const double dx = x - p.x, dy = y - p.y, dz = z - p.z;
        return dx * dx + dy * dy + dz * dz <= tol.equalPoint() * tol.equalPoint();
    }
    AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
    AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    AcGePoint3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    bool operator==(const AcGePoint3d& p) const = default;
    AcGePoint3d transformedBy(const AcGeMatrix3d& m) const;
};

inline const AcGePoint3d AcGePoint3d::kOrigin{0, 0, 0};

class AcGeScale3d {
public:
    double sx = 1, sy = 1, sz = 1;
    bool operator==(const AcGeScale3d&) const = default;
};

/// A 4 by 4 transform, rows first; points are columns, so the axes of a frame stand in the first
/// three columns and its origin in the fourth.
class AcGeMatrix3d {
public:
    static const AcGeMatrix3d kIdentity;
    std::array<std::array<double, 4>, 4> entry{
        {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

    double operator()(int row, int column) const { return entry[row][column]; }
    double& operator()(int row, int column) { return entry[row][column]; }
    AcGeMatrix3d operator*(const AcGeMatrix3d& m) const;
    bool operator==(const AcGeMatrix3d&) const = default;
    bool isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol = AcGeContext::gTol) const;
    /// Determinant of the 3 by 3 part: negative for a mirror.
    double det() const;
    bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const;
    /// The inverse; the identity for a singular matrix.
    AcGeMatrix3d inverse() const;
    AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }

    static AcGeMatrix3d translation(const AcGeVector3d& v);
    static AcGeMatrix3d scaling(const AcGeScale3d& s);
    static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis);
    /// The frame with the given axes in its columns.
    static AcGeMatrix3d coordSystem(const AcGePoint3d& origin, const AcGeVector3d& x,
                                    const AcGeVector3d& y, const AcGeVector3d& z);
    /// From the object coordinate system of an extrusion direction to the world, by the
    /// arbitrary-axis rule: X is world Y (|nx|,|ny| < 1/64) or world Z, crossed with the normal.
    static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal);
};

inline const AcGeMatrix3d AcGeMatrix3d::kIdentity{};
