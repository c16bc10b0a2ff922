// Places of ground covers: density, distances, seams and slopes.
#include "toolkit/ts_plant.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {

using Places = std::vector<CTsCoverPlace>;

CTsPlant cover_of(double density) {
    CTsPlant cover;
    cover.m_IsCover = true;
    cover.m_CoverDensity = density;
    return cover;
}

Places scatter(const CTsPlant& cover, const CTsPoint& a, const CTsPoint& b, const CTsPoint& c,
               std::size_t most = 1'000'000) {
    return TsScatterCover(cover, a, b, c, 5, most);
}

Places both(Places first, const Places& second) {
    first.insert(first.end(), second.begin(), second.end());
    std::sort(first.begin(), first.end(), [](const CTsCoverPlace& a, const CTsCoverPlace& b) {
        return a.location.x != b.location.x ? a.location.x < b.location.x
                                            : a.location.y < b.location.y;
    });
    return first;
}

double nearest(const Places& places) {
    double least = 1e9;
    for (std::size_t i = 0; i < places.size(); ++i) {
        for (std::size_t j = i + 1; j < places.size(); ++j) {
            least = std::min(least, std::hypot(places[i].location.x - places[j].location.x,
                                               places[i].location.y - places[j].location.y));
        }
    }
    return least;
}

} // namespace

TEST(Cover, HasItsDensityAndKeepsDistance) {
    for (const double density : {0.5, 60.0, 400.0}) {
        const double side = std::sqrt(3000 / density);
        const CTsPoint a{1e3, -2e3, 1}, b{1e3 + side, -2e3, 1}, c{1e3, -2e3 + side, 1};
        const Places places = scatter(cover_of(density), a, b, c);
        EXPECT_NEAR(static_cast<double>(places.size()), 1500, 75) << density;
        EXPECT_GT(nearest(places), 0.15 / std::sqrt(density)) << density;
        for (const CTsCoverPlace& place : places) {
            EXPECT_NEAR(place.scale, 1, 0.35);
            EXPECT_EQ(place.location.z, 1);
        }
    }
}

TEST(Cover, HasNoRows) {
    // In a grid many distances to the next column are equal; here x modulo the spacing is even.
    const Places places = scatter(cover_of(60), {0, 0, 0}, {10, 0, 0}, {0, 10, 0});
    const double spacing = std::sqrt(2 / (std::sqrt(3.0) * 60));
    int bins[8] = {};
    for (const CTsCoverPlace& place : places) {
        const double x = 2 * place.location.x / spacing;
        ++bins[static_cast<int>(8 * (x - std::floor(x))) % 8];
    }
    const auto [least, most] = std::minmax_element(std::begin(bins), std::end(bins));
    EXPECT_GT(*least, 0.6 * *most);
    // Without spread it is a grid, and says so.
    CTsPlant grid = cover_of(60);
    grid.m_CoverSpread = 0;
    EXPECT_GT(nearest(scatter(grid, {0, 0, 0}, {5, 0, 0}, {0, 5, 0})), 0.99 * spacing);
}

TEST(Cover, NeighboursJoinWithoutSeams) {
    const CTsPlant cover = cover_of(100);
    const CTsPoint a{-3.3, 1.7, 0}, b{4.1, 1.1, 0}, c{5.2, 7.9, 0}, d{-2.8, 8.6, 0};
    const Places one = both(scatter(cover, a, b, c), scatter(cover, a, c, d));
    const Places other = both(scatter(cover, d, a, b), scatter(cover, b, c, d));
    ASSERT_EQ(one.size(), other.size());
    ASSERT_GT(one.size(), 4000U);
    for (std::size_t i = 0; i < one.size(); ++i) {
        EXPECT_EQ(one[i].location.x, other[i].location.x);
        EXPECT_EQ(one[i].rotation, other[i].rotation);
        EXPECT_EQ(one[i].scale, other[i].scale);
    }
    EXPECT_GT(nearest({one.begin(), one.begin() + 1000}), 1e-6) << "nothing is there twice";
    // Points on a common edge: a grid whose rows run along the faces' edges.
    CTsPlant grid = cover_of(2 / std::sqrt(3.0));
    grid.m_CoverSpread = 0;
    const auto count = [&](const CTsPoint& p, const CTsPoint& q, const CTsPoint& r) {
        return scatter(grid, p, q, r).size();
    };
    const std::size_t halves =
        count({0, 0, 0}, {8, 0, 0}, {8, 8, 0}) + count({0, 0, 0}, {8, 8, 0}, {0, 8, 0});
    const std::size_t turned =
        count({0, 0, 0}, {0, 8, 0}, {8, 8, 0}) + count({0, 0, 0}, {8, 8, 0}, {8, 0, 0});
    EXPECT_EQ(halves, turned) << "whichever way the faces turn";
    EXPECT_EQ(halves,
              count({0, 0, 0}, {8, 0, 0}, {0, 8, 0}) + count({8, 0, 0}, {8, 8, 0}, {0, 8, 0}));
}

TEST(Cover, LiesOnSlopesUpToItsLimit) {
    CTsPlant cover = cover_of(50);
    cover.m_CoverSlope = 45 * std::numbers::pi / 180;
    const auto slope = [&](double rise) {
        return scatter(cover, {0, 0, 0}, {6, 0, 0}, {0, 6, 6 * rise});
    };
    const Places gentle = slope(0.9);
    EXPECT_NEAR(static_cast<double>(gentle.size()), 900, 45) << "counted on the ground plan";
    for (const CTsCoverPlace& place : gentle) {
        EXPECT_NEAR(place.location.z, 0.9 * place.location.y, 1e-9);
    }
    EXPECT_TRUE(slope(1.1).empty());
    EXPECT_TRUE(scatter(cover, {0, 0, 0}, {1, 0, 0}, {0, 0, 1}).empty()) << "a wall";
}

TEST(Cover, HoldsItsLimitEvenly) {
    const Places few = scatter(cover_of(60), {0, 0, 0}, {1000, 0, 0}, {0, 1000, 0}, 500);
    EXPECT_LE(few.size(), 500U);
    EXPECT_GT(few.size(), 400U);
    EXPECT_TRUE(std::any_of(few.begin(), few.end(), [](const CTsCoverPlace& p) {
        return p.location.y > 700;
    })) << "wider apart, not cut off";
    EXPECT_LE(scatter(cover_of(1e5), {0, 0, 0}, {1e9, 1e-3, 0}, {1e9, 0, 0}, 10).size(), 100U);
    EXPECT_TRUE(scatter(cover_of(0), {0, 0, 0}, {1, 0, 0}, {0, 1, 0}).empty());
    EXPECT_TRUE(scatter(cover_of(60), {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 0).empty());
    EXPECT_TRUE(scatter(cover_of(60), {0, 0, 0}, {1, 1, 0}, {2, 2, 0}).empty());
    EXPECT_TRUE(scatter(cover_of(60), {0, 0, 0}, {std::nan(""), 0, 0}, {0, 1, 0}).empty());
}
