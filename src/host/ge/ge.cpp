// Rotations, the arbitrary-axis rule and 4 by 4 transforms.
#include "host/ge/ge.h"

#include <cmath>

AcGeVector3d AcGeVector3d::rotatedBy(double angle, const AcGeVector3d& axis) const {
    // Rodrigues' formula.
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return *this * c + axis.crossProduct(*this) * s + axis * (axis.dotProduct(*this) * (1 - c));
}

AcGeVector3d AcGeVector3d::transformedBy(const AcGeMatrix3d& m) const {
    return {m(0, 0) * x + m(0, 1) * y + m(0, 2) * z, m(1, 0) * x + m(1, 1) * y + m(1, 2) * z,
            m(2, 0) * x + m(2, 1) * y + m(2, 2) * z};
}

AcGeVector3d AcGeVector3d::perpVector() const {
    // DXF reference, "Arbitrary axis algorithm": close to world Z means both below 1/64.
    constexpr double kClose = 1.0 / 64.0;
    const AcGeVector3d n = normal();
    const bool near_z = std::abs(n.x) < kClose && std::abs(n.y) < kClose;
    return (near_z ? kYAxis : kZAxis).crossProduct(n).normal();
}

AcGePoint3d AcGePoint3d::transformedBy(const AcGeMatrix3d& m) const {
    return {m(0, 0) * x + m(0, 1) * y + m(0, 2) * z + m(0, 3),
            m(1, 0) * x + m(1, 1) * y + m(1, 2) * z + m(1, 3),
            m(2, 0) * x + m(2, 1) * y + m(2, 2) * z + m(2, 3)};
}

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& m) const {
    AcGeMatrix3d product;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            double sum = 0;
            for (int k = 0; k < 4; ++k) {
                sum += entry[row][k] * m.entry[k][column];
            }
            product.entry[row][column] = sum;
        }
    }
    return product;
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol) const {
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            if (!(std::abs(entry[row][column] - m.entry[row][column]) <= tol.equalVector())) {
                return false;
            }
        }
    }
    return true;
}

double AcGeMatrix3d::det() const {
    const auto& e = entry;
    return e[0][0] * (e[1][1] * e[2][2] - e[1][2] * e[2][1]) -
           e[0][1] * (e[1][0] * e[2][2] - e[1][2] * e[2][0]) +
           e[0][2] * (e[1][0] * e[2][1] - e[1][1] * e[2][0]);
}

bool AcGeMatrix3d::isSingular(const AcGeTol& tol) const {
    // Against the product of the axes' lengths, so that a drawing scaled by a thousandth in each
    // direction is no more singular than one that is not.
    double size = 1;
    for (int column = 0; column < 3; ++column) {
        size *= AcGeVector3d{entry[0][column], entry[1][column], entry[2][column]}.length();
    }
    return !(std::abs(det()) > tol.equalVector() * size);
}

AcGeMatrix3d AcGeMatrix3d::inverse() const {
    if (isSingular()) {
        return kIdentity;
    }
    const double scale = 1 / det();
    AcGeMatrix3d result;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            // Cyclic cofactors carry their sign with them; the transpose is in the swapped indices.
            const int r1 = (column + 1) % 3;
            const int r2 = (column + 2) % 3;
            const int c1 = (row + 1) % 3;
            const int c2 = (row + 2) % 3;
            result.entry[row][column] =
                (entry[r1][c1] * entry[r2][c2] - entry[r1][c2] * entry[r2][c1]) * scale;
        }
    }
    const AcGeVector3d moved = (-translation()).transformedBy(result);
    result.entry[0][3] = moved.x;
    result.entry[1][3] = moved.y;
    result.entry[2][3] = moved.z;
    return result;
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d& v) {
    AcGeMatrix3d m;
    m.entry[0][3] = v.x;
    m.entry[1][3] = v.y;
    m.entry[2][3] = v.z;
    return m;
}

AcGeMatrix3d AcGeMatrix3d::scaling(const AcGeScale3d& s) {
    AcGeMatrix3d m;
    m.entry[0][0] = s.sx;
    m.entry[1][1] = s.sy;
    m.entry[2][2] = s.sz;
    return m;
}

AcGeMatrix3d AcGeMatrix3d::rotation(double angle, const AcGeVector3d& axis) {
    return coordSystem(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis.rotatedBy(angle, axis),
                       AcGeVector3d::kYAxis.rotatedBy(angle, axis),
                       AcGeVector3d::kZAxis.rotatedBy(angle, axis));
}

AcGeMatrix3d AcGeMatrix3d::coordSystem(const AcGePoint3d& origin, const AcGeVector3d& x,
                                       const AcGeVector3d& y, const AcGeVector3d& z) {
    AcGeMatrix3d m;
    m.entry = {{{x.x, y.x, z.x, origin.x},
                {x.y, y.y, z.y, origin.y},
                {x.z, y.z, z.z, origin.z},
                {0, 0, 0, 1}}};
    return m;
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d& normal) {
    const AcGeVector3d z = normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
    const AcGeVector3d x = z.perpVector();
    return coordSystem(AcGePoint3d::kOrigin, x, z.crossProduct(x), z);
}
