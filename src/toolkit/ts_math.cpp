// Transforms of the toolkit, see ts_math.h.
#include "toolkit/ts_math.h"

#include <cmath>

double CTsVector::Length() const { return std::sqrt(x * x + y * y + z * z); }

CTsMatrix::CTsMatrix()
  : m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}

CTsMatrix CTsMatrix::Translation(const CTsVector& offset) {
    CTsMatrix result;
    result(0, 3) = offset.x, result(1, 3) = offset.y, result(2, 3) = offset.z;
    return result;
}

CTsMatrix CTsMatrix::Scaling(double x, double y, double z) {
    CTsMatrix result;
    result(0, 0) = x, result(1, 1) = y, result(2, 2) = z;
    return result;
}

CTsMatrix CTsMatrix::RotationZ(double radians) {
    CTsMatrix result;
    result(0, 0) = std::cos(radians), result(0, 1) = -std::sin(radians);
    result(1, 0) = std::sin(radians), result(1, 1) = std::cos(radians);
    return result;
}

CTsMatrix CTsMatrix::operator*(const CTsMatrix& right) const {
    CTsMatrix result;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            double sum = 0;
            for (int i = 0; i < 4; ++i) {
                sum += (*this)(row, i) * right(i, column);
            }
            result(row, column) = sum;
        }
    }
    return result;
}

CTsPoint CTsMatrix::operator*(const CTsPoint& p) const {
    return {m[0] * p.x + m[1] * p.y + m[2] * p.z + m[3],
            m[4] * p.x + m[5] * p.y + m[6] * p.z + m[7],
            m[8] * p.x + m[9] * p.y + m[10] * p.z + m[11]};
}

CTsVector CTsMatrix::operator*(const CTsVector& v) const {
    return {m[0] * v.x + m[1] * v.y + m[2] * v.z, m[4] * v.x + m[5] * v.y + m[6] * v.z,
            m[8] * v.x + m[9] * v.y + m[10] * v.z};
}

double CTsMatrix::Determinant3() const {
    return m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
           m[2] * (m[4] * m[9] - m[5] * m[8]);
}

CTsMatrix CTsMatrix::Inverse(bool* ok) const {
    const double determinant = Determinant3();
    const bool regular = determinant != 0 && std::isfinite(determinant);
    if (ok != nullptr) {
        *ok = regular;
    }
    CTsMatrix result;
    if (!regular) {
        return result;
    }
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            // The cofactor of the transposed place, by cyclic indices.
            const int a = (column + 1) % 3, b = (column + 2) % 3;
            const int c = (row + 1) % 3, d = (row + 2) % 3;
            result(row, column) =
                ((*this)(a, c) * (*this)(b, d) - (*this)(a, d) * (*this)(b, c)) / determinant;
        }
    }
    const CTsVector back = result * CTsVector{m[3], m[7], m[11]};
    result(0, 3) = -back.x, result(1, 3) = -back.y, result(2, 3) = -back.z;
    return result;
}
