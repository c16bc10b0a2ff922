// Between the host's and the toolkit's points, vectors and matrices.
#pragma once

#include "host/ge/ge.h"
#include "toolkit/ts_math.h"

inline CTsPoint to_ts(const AcGePoint3d& p) { return {p.x, p.y, p.z}; }
inline CTsVector to_ts(const AcGeVector3d& v) { return {v.x, v.y, v.z}; }
inline AcGePoint3d to_ac(const CTsPoint& p) { return {p.x, p.y, p.z}; }
inline AcGeVector3d to_ac(const CTsVector& v) { return {v.x, v.y, v.z}; }

inline CTsMatrix to_ts(const AcGeMatrix3d& m) {
    CTsMatrix out;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            out(row, column) = m(row, column);
        }
    }
    return out;
}

inline AcGeMatrix3d to_ac(const CTsMatrix& m) {
    AcGeMatrix3d out;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            out(row, column) = m(row, column);
        }
    }
    return out;
}
