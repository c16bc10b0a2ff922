// Points, vectors, colours and 4 by 4 transforms of the rendering toolkit. Row-major, column
// vectors: p' = M p, the translation in the fourth column.
#pragma once

#include <array>
#include <cstddef>

struct CTsPoint {
    double x = 0, y = 0, z = 0;
    friend bool operator==(const CTsPoint&, const CTsPoint&) = default;
};

struct CTsVector {
    double x = 0, y = 0, z = 0;
    double Length() const;
    friend bool operator==(const CTsVector&, const CTsVector&) = default;
};

inline CTsVector operator-(const CTsPoint& a, const CTsPoint& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline CTsPoint operator+(const CTsPoint& a, const CTsVector& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

/// Display values, 0 to 1 a channel.
struct CTsColor {
    double r = 0, g = 0, b = 0;
    friend bool operator==(const CTsColor&, const CTsColor&) = default;
};

class CTsMatrix {
public:
    CTsMatrix(); ///< the identity

    double& operator()(int row, int column) { return m[Index(row, column)]; }
    double operator()(int row, int column) const { return m[Index(row, column)]; }
    bool operator==(const CTsMatrix&) const = default;

    static CTsMatrix Translation(const CTsVector& offset);
    static CTsMatrix Scaling(double x, double y, double z);
    static CTsMatrix RotationZ(double radians);

    CTsMatrix operator*(const CTsMatrix& right) const; ///< applies `right` first
    CTsPoint operator*(const CTsPoint& p) const;
    CTsVector operator*(const CTsVector& v) const; ///< without the translation
    /// Determinant of the upper left 3 by 3 part; negative for a mirror.
    double Determinant3() const;
    /// Inverse of an affine transform. A singular one gives the identity and sets `*ok` to false.
    CTsMatrix Inverse(bool* ok = nullptr) const;

private:
    static std::size_t Index(int row, int column) {
        return 4 * static_cast<std::size_t>(row) + static_cast<std::size_t>(column);
    }
    std::array<double, 16> m;
};
