// Grown plants: sizes, limits, seasons and meshes that a renderer can rely on.
#include "toolkit/ts_plant.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace {

using Look = CTsPlantPart::Look;

struct Bounds {
    double low = 1e9, high = -1e9, out = 0;
};

Bounds bounds_of(const CTsPlantShape& shape) {
    Bounds bounds;
    for (const CTsPlantPart& part : shape.parts) {
        for (std::size_t i = 0; i < part.positions.size(); i += 3) {
            const double z = part.positions[i + 2];
            bounds.low = std::min(bounds.low, z), bounds.high = std::max(bounds.high, z);
            bounds.out = std::max(
                bounds.out, std::hypot(double(part.positions[i]), double(part.positions[i + 1])));
        }
    }
    return bounds;
}

double area_of(const CTsPlantShape& shape, Look look) {
    double area = 0;
    for (const CTsPlantPart& part : shape.parts) {
        for (std::size_t t = 0; part.look == look && t < part.triangles.size(); t += 3) {
            double e[2][3];
            for (std::size_t k = 0; k < 3; ++k) {
                const double a = part.positions[3 * part.triangles[t] + k];
                e[0][k] = part.positions[3 * part.triangles[t + 1] + k] - a;
                e[1][k] = part.positions[3 * part.triangles[t + 2] + k] - a;
            }
            area += std::hypot(e[0][1] * e[1][2] - e[0][2] * e[1][1],
                               e[0][2] * e[1][0] - e[0][0] * e[1][2],
                               e[0][0] * e[1][1] - e[0][1] * e[1][0]) /
                    2;
        }
    }
    return area;
}

bool same(const CTsPlantShape& a, const CTsPlantShape& b) {
    return std::equal(a.parts.begin(), a.parts.end(), b.parts.begin(), b.parts.end(),
                      [](const CTsPlantPart& x, const CTsPlantPart& y) {
                          return x.look == y.look && x.color == y.color &&
                                 x.positions == y.positions && x.normals == y.normals &&
                                 x.triangles == y.triangles;
                      });
}

CTsPlantShape grow(const std::string& name, CTsSeason season = CTsSeason::summer, int detail = 1,
                   double density = 1) {
    return TsGrowPlant(CTsPlantDefinition::Named(name), season, detail, density);
}

void expect_sound(const CTsPlantShape& shape, const std::string& name) {
    EXPECT_FALSE(shape.parts.empty()) << name;
    for (const CTsPlantPart& part : shape.parts) {
        const std::size_t count = part.positions.size() / 3;
        ASSERT_EQ(part.positions.size(), part.normals.size()) << name;
        ASSERT_FALSE(part.triangles.empty()) << name;
        ASSERT_EQ(part.triangles.size() % 3, 0U) << name;
        ASSERT_LT(*std::max_element(part.triangles.begin(), part.triangles.end()), count) << name;
        for (std::size_t i = 0; i < part.normals.size(); i += 3) {
            ASSERT_NEAR(std::hypot(part.normals[i], part.normals[i + 1], part.normals[i + 2]), 1,
                        1e-4)
                << name;
            ASSERT_TRUE(
                std::isfinite(part.positions[i] + part.positions[i + 1] + part.positions[i + 2]))
                << name;
        }
    }
}

} // namespace

TEST(Plant, NamedOnesGrowSoundAndWithinTheirSizes) {
    ASSERT_GE(CTsPlantDefinition::Names().size(), 28U);
    for (const std::string& name : CTsPlantDefinition::Names()) {
        const CTsPlantDefinition plant = CTsPlantDefinition::Named(name);
        for (int season = 0; season < 4; ++season) {
            const CTsPlantShape shape = TsGrowPlant(plant, static_cast<CTsSeason>(season), 1);
            const std::string what = name + " in season " + std::to_string(season);
            expect_sound(shape, what);
            EXPECT_LT(shape.TriangleCount(), 60'000U) << what;
            const Bounds bounds = bounds_of(shape);
            EXPECT_LT(bounds.high, 1.08 * plant.m_Height) << what;
            const double corner = plant.m_Prune == 2 ? std::sqrt(2.0) : 1;
            EXPECT_LT(bounds.out, 0.5 * 1.2 * corner * plant.m_Diameter) << what;
            EXPECT_GT(bounds.low, -0.05 * plant.m_Height - 0.01) << what;
            if (season == (plant.m_Bloom == 1 ? 0 : 1)) {
                EXPECT_GT(bounds.high, 0.82 * plant.m_Height) << what;
                const bool stem = plant.m_Kind == CTsPlantKind::flower; // a single stem is narrow
                EXPECT_GT(bounds.out, (stem ? 0.25 : 0.4) * plant.m_Diameter) << what;
            }
        }
    }
}

TEST(Plant, EqualArgumentsGiveEqualShapes) {
    for (const char* name : {"oak", "spruce", "cypress", "rose", "tall grass", "daisy", "palm"}) {
        EXPECT_TRUE(same(grow(name), grow(name))) << name;
        CTsPlantDefinition other = CTsPlantDefinition::Named(name);
        ++other.m_Seed;
        EXPECT_FALSE(same(grow(name), TsGrowPlant(other, CTsSeason::summer))) << name;
    }
}

TEST(Plant, SeasonsDiffer) {
    const CTsPlantShape summer = grow("oak"), winter = grow("oak", CTsSeason::winter);
    EXPECT_EQ(area_of(winter, Look::leaf), 0) << "bare";
    EXPECT_GT(area_of(winter, Look::bark), area_of(summer, Look::bark)) << "twigs are seen";
    EXPECT_LT(area_of(grow("oak", CTsSeason::autumn), Look::leaf),
              0.8 * area_of(summer, Look::leaf));
    EXPECT_LT(area_of(grow("oak", CTsSeason::spring), Look::leaf), area_of(summer, Look::leaf));
    EXPECT_GT(area_of(grow("spruce", CTsSeason::winter), Look::leaf),
              0.8 * area_of(grow("spruce"), Look::leaf))
        << "evergreen";
    // Leaves change colour, branches stay where they are.
    const CTsPlantShape autumn = grow("oak", CTsSeason::autumn);
    EXPECT_EQ(autumn.parts.front().look, Look::bark);
    EXPECT_EQ(autumn.parts.front().positions, summer.parts.front().positions);
    const auto leaf_color = [](const CTsPlantShape& shape) {
        return std::find_if(shape.parts.begin(), shape.parts.end(),
                            [](const CTsPlantPart& part) { return part.look == Look::leaf; })
            ->color;
    };
    EXPECT_EQ(leaf_color(autumn), CTsPlantDefinition::Named("oak").m_LeafColor[2]);
    EXPECT_EQ(leaf_color(summer), CTsPlantDefinition::Named("oak").m_LeafColor[1]);
    // Blossoms only when it is their time.
    EXPECT_GT(area_of(grow("cherry", CTsSeason::spring), Look::flower), 1);
    EXPECT_EQ(area_of(grow("cherry"), Look::flower), 0);
    EXPECT_GT(area_of(grow("hydrangea"), Look::flower), 0);
    EXPECT_EQ(area_of(grow("tulip"), Look::flower), 0);
}

TEST(Plant, DetailAddsTrianglesAndKeepsTheFoliage) {
    const std::size_t least[] = {900, 60'000, 170'000, 450'000};
    for (const char* name : {"oak", "spruce", "cypress", "pine", "shrub", "box ball"}) {
        std::size_t before = 0;
        const double area = area_of(grow(name), Look::leaf);
        for (int detail = 0; detail < 4; ++detail) {
            const CTsPlantShape shape = grow(name, CTsSeason::summer, detail);
            expect_sound(shape, name);
            EXPECT_GT(shape.TriangleCount(), before) << name << detail;
            EXPECT_LE(shape.TriangleCount(), least[detail]) << name << detail;
            before = shape.TriangleCount();
            if (detail > 0) {
                EXPECT_NEAR(area_of(shape, Look::leaf) / area, 1, 0.25) << name << detail;
            }
        }
    }
    for (const char* name : {"lawn", "meadow", "tulip", "lavender", "palm", "fan palm", "fern"}) {
        std::size_t before = 0;
        for (int detail = 0; detail < 4; ++detail) {
            const std::size_t count = grow(name, CTsSeason::spring, detail).TriangleCount();
            EXPECT_GT(count, before) << name << detail;
            before = count;
        }
    }
}

TEST(Plant, TreesAreDense) {
    // Seen from the side, the leaves of a crown would cover it several times over.
    for (const char* name : {"oak", "maple", "beech", "lime", "spruce", "shrub"}) {
        const CTsPlantDefinition plant = CTsPlantDefinition::Named(name);
        const double seen = plant.m_Diameter * (plant.m_Height - plant.m_TrunkHeight);
        EXPECT_GT(area_of(grow(name), Look::leaf), 2 * seen) << name;
    }
}

TEST(Plant, DensityScalesFoliage) {
    for (const char* name : {"oak", "spruce", "rhododendron"}) {
        double before = -1;
        for (const double density : {0.0, 0.25, 0.5, 1.0, 1.8}) {
            const double area = area_of(grow(name, CTsSeason::summer, 1, density), Look::leaf);
            EXPECT_GT(area, before) << name << density;
            before = area;
        }
        CTsPlantDefinition thin = CTsPlantDefinition::Named(name);
        thin.m_FoliageDensity *= 0.5;
        EXPECT_NEAR(area_of(TsGrowPlant(thin, CTsSeason::summer), Look::leaf) /
                        area_of(grow(name, CTsSeason::summer, 1, 0.5), Look::leaf),
                    1, 1e-6)
            << "both factors are one";
    }
}

TEST(Plant, PrunedOnesKeepTheirForm) {
    CTsPlantDefinition plant = CTsPlantDefinition::Named("box ball");
    plant.m_Height = 2, plant.m_Diameter = 2;
    for (int prune = 1; prune <= 3; ++prune) {
        plant.m_Prune = prune;
        const CTsPlantShape shape = TsGrowPlant(plant, CTsSeason::summer);
        std::size_t outside = 0, corner = 0, total = 0;
        for (const CTsPlantPart& part : shape.parts) {
            for (std::size_t i = 0; i < part.positions.size(); i += 3) {
                const double x = part.positions[i], y = part.positions[i + 1];
                const double z = part.positions[i + 2], r = std::hypot(x, y);
                const double reach = prune == 1   ? std::hypot(r, z - 1)
                                     : prune == 2 ? std::max({std::abs(x), std::abs(y), z - 1})
                                                  : r + z / 2;
                outside += reach > 1.06 ? 1 : 0;
                corner += r > 1.1 && z > 1.5 ? 1 : 0;
                ++total;
            }
        }
        EXPECT_LT(static_cast<double>(outside), 0.01 * static_cast<double>(total)) << prune;
        EXPECT_EQ(corner > 0, prune == 2) << "only a box has corners: " << prune;
    }
}

TEST(Plant, OddDefinitionsGrowSomethingSound) {
    for (int kind = 0; kind < 6; ++kind) {
        for (int variant = 0; variant < 7; ++variant) {
            CTsPlantDefinition plant;
            plant.m_Kind = static_cast<CTsPlantKind>(kind);
            plant.m_Bloom = 15;
            switch (variant) {
            case 0:
                plant.m_Height = 0.005, plant.m_Diameter = 150, plant.m_TrunkHeight = 0;
                break;
            case 1:
                plant.m_Height = 150, plant.m_Diameter = 0.005;
                break;
            case 2:
                plant.m_TrunkHeight = plant.m_Height, plant.m_TrunkDiameter = 0;
                break;
            case 3:
                plant.m_LeafSize = 5, plant.m_Droop = 1;
                break;
            case 4:
                plant.m_LeafSize = 0.001, plant.m_LeafWidth = 0.005;
                break;
            case 5:
                plant.m_Height = std::nan(""), plant.m_LeafSize = -1, plant.m_TrunkHeight = 1e9;
                break;
            default:
                plant.m_BranchDensity = 0, plant.m_FoliageDensity = 0;
                break;
            }
            for (int prune = 0; prune < 4; prune += 2) {
                plant.m_Prune = prune;
                const std::string what = std::to_string(kind) + " " + std::to_string(variant);
                const CTsPlantShape shape =
                    TsGrowPlant(plant, CTsSeason::summer, prune == 0 ? 1 : 0);
                expect_sound(shape, what);
                EXPECT_LT(shape.TriangleCount(), 60'000U) << what;
            }
        }
    }
}

TEST(Plant, NamesAreFoundByTheirWords) {
    const auto named = [](const char* name) { return CTsPlantDefinition::Named(name); };
    EXPECT_EQ(named("OAK"), named("oak"));
    EXPECT_EQ(named("Rotbuche 12m").m_Kind, CTsPlantKind::broadleaf);
    EXPECT_EQ(named("Rotbuche 12m").m_Height, named("beech").m_Height);
    EXPECT_EQ(named("Rotbuche 12m").m_Name, "Rotbuche 12m");
    EXPECT_NE(named("Rotbuche 12m").m_Seed, named("Rotbuche 13m").m_Seed);
    EXPECT_EQ(named("fan palm").m_LeafWidth, named("Fan-Palm large").m_LeafWidth);
    EXPECT_EQ(named("box_ball").m_Prune, 1);
    EXPECT_EQ(named("Pinus sylvestris").m_Height, named("pine").m_Height);
    EXPECT_EQ(named("").m_Kind, CTsPlantKind::broadleaf);
    EXPECT_EQ(named("\xFF\x80zz").m_Kind, CTsPlantKind::broadleaf);
    std::set<std::string> names(CTsPlantDefinition::Names().begin(),
                                CTsPlantDefinition::Names().end());
    EXPECT_EQ(names.size(), CTsPlantDefinition::Names().size());
}
