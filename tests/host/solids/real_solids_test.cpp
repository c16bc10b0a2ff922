// Solids that real modellers made, where the folder of real drawings is there.
#include "host/db/database.h"
#include "host/db/solids.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <numbers>

namespace {

std::filesystem::path folder() {
    const char* set = std::getenv("QORVANE_SHARED_DRAWINGS");
    return set != nullptr ? set : std::filesystem::path(QORVANE_SOURCE_DIR) / "../shared/drawings";
}

struct Measured {
    const char* file;
    std::uint64_t handle;
    bool closed;
    double volume; ///< 0: not known
};

constexpr double kPi = std::numbers::pi;
/// A torus has the volume 2 pi^2 R r^2.
constexpr Measured kRows[] = {
    {"torus_r2000.dxf", 0x9C, true, 2 * kPi* kPi * 31.999999999999993 * 100},
    {"torus_r2010.dxf", 0x9C, true, 2 * kPi* kPi * 31.999999999999993 * 100},
    {"sphere.dxf", 0x9C, true, 0},
    {"3dsolids.dxf", 0x99, true, 0},
    {"3dsolids.dxf", 0xA2, true, 0},
    {"3dsolids.dxf", 0xA5, true, 0},
    {"3dsolids.dxf", 0xA6, true, 0},
    {"example_2000.dxf", 0x2E1, true, 0},
    {"example_2007.dxf", 0x2E1, true, 0},
    {"example_2018.dxf", 0x2E1, true, 0},
    {"TS1_2018.dxf", 0x21D, true, 0},
    {"uncommon.dxf", 0x622, true, 0},
    {"uncommon.dxf", 0x62C, true, 0},
    {"example_2000.dxf", 0x176, false, 0},
    {"example_2000.dxf", 0x37D, false, 0},
    {"Surface.dxf", 0x2D8, false, 0},
    {"Surface.dxf", 0x34D, false, 0},
    {"Surface.dxf", 0x366, false, 0},
    {"Surface.dxf", 0x411, false, 0},
    {"Surface.dxf", 0x50A, false, 0},
};

TEST(RealSolids, AreMeshedWhole) {
    if (!std::filesystem::exists(folder())) {
        GTEST_SKIP() << "no folder of real drawings";
    }
    for (const Measured& row : kRows) {
        SCOPED_TRACE(std::string(row.file) + " " + std::to_string(row.handle));
        AcDbDatabase db(false);
        std::string error;
        ASSERT_EQ(db.dxfIn(folder() / row.file, error), Acad::eOk) << error;
        const AcDbObjectPointer<AcDbModelerGeometry> solid(
            db.getAcDbObjectId(AcDbHandle(row.handle)));
        ASSERT_TRUE(solid);
        AcDbExtents box;
        ASSERT_EQ(solid->getGeomExtents(box), Acad::eOk);
        const double size = (box.maxPoint() - box.minPoint()).length();
        double last = 0;
        for (const double chord : {size / 100, size / 1000, size / 10000}) {
            const brep::Mesh mesh = solid->mesh(chord);
            EXPECT_TRUE(mesh.complete);
            EXPECT_TRUE(mesh.problems.empty()) << mesh.problems.front().text;
            EXPECT_EQ(brep::openEdges(mesh) == 0, row.closed);
            const double measure = row.closed ? brep::volume(mesh) : brep::area(mesh);
            EXPECT_GT(measure, 0);
            const double error_bound = brep::area(mesh) * chord;
            if (row.volume > 0) {
                EXPECT_NEAR(measure, row.volume, error_bound);
            } else if (last > 0) {
                EXPECT_NEAR(measure, last, row.closed ? 10 * error_bound : last * 0.05);
            }
            last = measure;
        }
    }
}

} // namespace
