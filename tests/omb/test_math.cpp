// Points, tolerances, frames and matrices.
#include "omb/base/matrix.h"
#include "tests/omb/fixture.h"

#include <cmath>
#include <random>

using MathTest = StoreTest;

namespace {

void expect_near(const fpt& a, const fpt& b, double tolerance = 1e-12) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

} // namespace

TEST_F(MathTest, ToleranceIsRelativeForLargeNumbers) {
    EXPECT_TRUE(number_equal(0, 0.9e-7));
    EXPECT_FALSE(number_equal(0, 1.1e-7));
    EXPECT_FALSE(number_equal(1000000.0, 1000000.011));
    EXPECT_FALSE(number_equal(1000000.0, 1000000.01)) << "the bound itself";
    EXPECT_FALSE(fpt_equal({1000000.01, 0, 0}, {1000000.0, 0, 0}));
    EXPECT_TRUE(number_equal(1000000.0, 1000000.009));
    EXPECT_TRUE(number_equal(-1000000.009, -1000000.0));
    EXPECT_TRUE(number_equal(100, 105.1, 0.5)) << "a tenth of the tolerance, of the larger";
    EXPECT_FALSE(number_equal(100, 105.4, 0.5));
    EXPECT_FALSE(number_equal(0.05, -0.06)) << "small numbers have the absolute bound only";
    EXPECT_FALSE(fpt_equal({0, 0, 0}, {0, 0, 1e-6}));
    EXPECT_FALSE(number_equal(std::nan(""), std::nan("")));
}

TEST_F(MathTest, PointTexts) {
    EXPECT_EQ(parse_point("(1, 2,\t3)"), (fpt{1, 2, 3}));
    EXPECT_EQ(parse_point("(1,2,3"), (fpt{1, 2, 3})) << "the bracket's end is not asked for";
    EXPECT_EQ(parse_point("(1 ,2,3)"), fpt{});
    EXPECT_EQ(parse_point("(1,2)"), fpt{});
    EXPECT_EQ(parse_point("1,2,3"), fpt{});
    EXPECT_EQ(parse_point_loose("V(1, 2 ,3)"), (fpt{1, 2, 3}));
    EXPECT_EQ(parse_point_loose(" 1,2"), (fpt{1, 2, 0}));
    EXPECT_EQ(parse_point_loose("(-1e2,x,3)"), (fpt{-100, 0, 3}));
    EXPECT_EQ(parse_point_loose(""), fpt{});
}

TEST_F(MathTest, FramesFromVectors) {
    cl_matrix m;
    ASSERT_TRUE(m.create_from_vectors(fpt{1, 2, 3}, fpt{0, 5, 0}, fpt{-1, 7, 0}));
    expect_near(m.transform_vector({1, 0, 0}), {0, 1, 0});
    expect_near(m.transform_vector({0, 1, 0}), {-1, 0, 0});
    expect_near(m.transform_vector({0, 0, 1}), {0, 0, 1});
    expect_near(m.transform_point({2, 0, 0}), {1, 4, 3});
    cl_matrix inverse;
    ASSERT_TRUE(inverse.create_from_vectors_inverse(fpt{1, 2, 3}, fpt{0, 5, 0}, fpt{-1, 7, 0}));
    expect_near(inverse.transform_point(m.transform_point({7, -8, 9})), {7, -8, 9});
    // Axes stand in the columns of the frame and in the rows of its inverse; floats are widened.
    const fpt32 x{3, 0, 0}, y{1, 0, 2};
    ASSERT_TRUE(m.create_from_vectors(fpt32{1, 2, 3}, x, y));
    ASSERT_TRUE(inverse.create_from_vectors_inverse(fpt32{1, 2, 3}, x, y));
    const double axes[3][3] = {{1, 0, 0}, {0, 0, 1}, {0, -1, 0}};
    for (int axis = 0; axis < 3; ++axis) {
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(m.at(i, axis), axes[axis][i]);
            EXPECT_EQ(inverse.at(axis, i), axes[axis][i]);
        }
    }
    EXPECT_EQ(m.at(2, 3), 3);
    EXPECT_EQ(m.at(3, 3), 1);
}

TEST_F(MathTest, FramesThatCannotBe) {
    cl_matrix m = cl_matrix::translation({1, 2, 3});
    const cl_matrix before = m;
    EXPECT_FALSE(m.create_from_vectors(fpt{}, fpt{}, fpt{}));
    EXPECT_EQ(traced(1, "Cannot create matrix: X vector was empty"), 1);
    EXPECT_FALSE(m.create_from_vectors(fpt{}, fpt{1, 0, 0}, fpt{}));
    EXPECT_EQ(traced(1, "Cannot create matrix: Y vector was empty"), 1);
    EXPECT_EQ(lines.size(), 2u) << "one fault, one message";
    EXPECT_FALSE(m.create_from_vectors(fpt{}, fpt{1, 0, 0}, fpt{-2, 0, 0}));
    EXPECT_EQ(traced(1, "Could not create normal - X and Y vectors are co-linear: (1, 0, 0) "
                        "(-2, 0, 0)"),
              1);
    EXPECT_FALSE(m.create_from_vectors_inverse(fpt{}, fpt{1, 0, 0}, fpt{2, 0, 0}));
    EXPECT_EQ(traced(1, "Could not create normal"), 1);
    EXPECT_EQ(m, before);
    EXPECT_FALSE(m.create_from_vectors(fpt{}, fpt{}, fpt{0, 1, 0}, 0));
    EXPECT_EQ(traced(0, "Cannot create matrix: X vector was empty"), 1) << "at the level asked for";
}

TEST_F(MathTest, InverseOfRandomTransforms) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> any(-3, 3);
    for (int i = 0; i < 1000; ++i) {
        cl_matrix m = cl_matrix::translation({any(random), any(random), any(random)}) *
                      cl_matrix::rotation_x(any(random)) * cl_matrix::rotation_y(any(random)) *
                      cl_matrix::scaling({any(random) + 4, -any(random) - 4, 2}) *
                      cl_matrix::rotation_z(any(random));
        cl_matrix inverse;
        ASSERT_TRUE(m.invert(inverse));
        const fpt p{any(random), any(random), any(random)};
        expect_near(inverse.transform_point(m.transform_point(p)), p, 1e-9);
        EXPECT_NEAR(m.determinant() * inverse.determinant(), 1, 1e-9);
        EXPECT_LT(m.determinant(), 0) << "one axis is mirrored";
    }
    cl_matrix flat = cl_matrix::scaling({1, 1, 0});
    cl_matrix untouched = cl_matrix::translation({1, 1, 1});
    EXPECT_FALSE(flat.invert(untouched));
    EXPECT_EQ(untouched, cl_matrix::translation({1, 1, 1}));
}

TEST_F(MathTest, TurningAboutANormal) {
    const double quarter = std::acos(-1) / 2;
    expect_near(rotz_around_normal({1, 0, 0}, quarter, {0, 0, 5}), {0, 1, 0});
    expect_near(rotz_around_normal({0, 3, 0}, quarter, {1, 0, 0}), {0, 0, 1});
    const fpt tilted = rotz_around_normal({1, 0, 1}, 2 * quarter, {0, 0, 1});
    expect_near(tilted, {-std::sqrt(0.5), 0, std::sqrt(0.5)});
    expect_near(rotz_around_normal({0, 0, -2}, quarter, {0, 0, 1}), {0, 0, -1});
    EXPECT_EQ(rotz_around_normal({0, 0, 2}, quarter, {0, 0, 1}), (fpt{0, 0, 2}));
    EXPECT_EQ(traced(1, "Cannot rotate vector around normal, pvec ~= pnormal."), 1);
    EXPECT_EQ(rotz_around_normal({1, 2, 3}, quarter, {0, 0, 0}), (fpt{1, 2, 3}));
    EXPECT_EQ(rotz_around_normal({1e-9, 0, 1}, quarter, {0, 0, 3}), (fpt{1e-9, 0, 1}))
        << "equal by the tolerance is parallel";
}

TEST_F(MathTest, MatrixTexts) {
    const cl_matrix m = cl_matrix::translation({1.5, -2, 1e6});
    EXPECT_EQ(m.to_text(), "\t1 0 0 1.5\n\t0 1 0 -2\n\t0 0 1 1e+06\n\t0 0 0 1");
    cl_matrix read;
    EXPECT_TRUE(read.from_text("[(1, 0, 0, 1.5), (0, 1, 0, -2), (0, 0, 1, 1e6), (0, 0, 0, 1)]"));
    EXPECT_TRUE(read.from_text(m.to_text()));
    EXPECT_EQ(read, m);
    EXPECT_FALSE(read.from_text("1 2 3"));
    EXPECT_EQ(read, m);
}

TEST_F(MathTest, UnitVectors) {
    fpt32 zero;
    EXPECT_FALSE(zero.make_unit());
    EXPECT_EQ(traced(1, "fpt32::make_unit: zero vector"), 1);
    fpt v{3, 0, 4};
    EXPECT_TRUE(v.make_unit());
    expect_near(v, {0.6, 0, 0.8});
}
