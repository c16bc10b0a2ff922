// Vertex sharing against the pairwise comparison, and small texts.
#include "omb_qorvane/material_name_table.h"
#include "omb_qorvane/mesh_builder.h"
#include "omb_qorvane/record_text.h"
#include "omb_qorvane/stream_transform.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

namespace {

/// Adds every vertex to a builder and to a plain list searched from its start.
void expect_same(const std::vector<cl_mesh_vert>& vertices) {
    cl_mesh_builder builder;
    std::vector<cl_mesh_vert> naive;
    for (const cl_mesh_vert& v : vertices) {
        std::size_t wanted = 0;
        while (wanted < naive.size() && !mesh_vert_equal(naive[wanted], v)) {
            ++wanted;
        }
        if (wanted == naive.size()) {
            naive.push_back(v);
        }
        ASSERT_EQ(builder.add_vertex(v.position, v.normal), static_cast<std::int32_t>(wanted));
    }
    EXPECT_EQ(builder.vertices().size(), naive.size());
}

TEST(VertexSharing, EqualsThePairwiseComparison) {
    std::mt19937 random(7);
    const auto number = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    // Spans about the tolerance, near zero and where the relative rule holds; the middle of the
    // range grows, so that the cells have to grow as well.
    for (const double middle : {0.0, 1.0, 100.0, 5e5, -3e7}) {
        std::vector<cl_mesh_vert> vertices;
        const double reach = std::max(1e-7, std::abs(middle) * 1e-8);
        for (int i = 0; i < 1500; ++i) {
            const double far = i % 3 == 0 ? middle : number(-1, 1) * middle;
            const auto near = [&] { return far + reach * number(-3, 3); };
            AcGeVector3d normal{0, 0, 1};
            normal.x += 1e-7 * number(-2, 2);
            vertices.push_back({{near(), near(), i % 2 == 0 ? far : near()}, normal});
        }
        expect_same(vertices);
    }
}

TEST(VertexSharing, ManyNormalsAtOnePointStayFast) {
    cl_mesh_builder fan;
    for (int i = 0; i < 100000; ++i) {
        fan.add_vertex({}, {std::cos(i * 6e-5), std::sin(i * 6e-5), 0});
    }
    EXPECT_EQ(fan.vertices().size(), 100000U);
    EXPECT_THROW(fan.vertex(100000), std::invalid_argument);
}

TEST(RecordText, TimeIsEnglishWhateverTheLocale) {
    setenv("TZ", "UTC", 1);
    EXPECT_EQ(stream_time_text(0), "Thursday, January 01, 1970, 12:00:00 AM");
    EXPECT_EQ(stream_time_text(1709219045), "Thursday, February 29, 2024, 03:04:05 PM");
}

TEST(StreamTransform, RotationAboutZOfAnyTransform) {
    const AcGeVector3d y{0, 1, 0};
    EXPECT_NEAR(rotation_about_z(AcGeMatrix3d::rotation(2, AcGeVector3d::kZAxis)), 2 * 180 / M_PI,
                1e-9);
    EXPECT_EQ(rotation_about_z(AcGeMatrix3d()), 0);
    // The X axis stands upright: the Y axis tells.
    EXPECT_EQ(rotation_about_z(AcGeMatrix3d::rotation(-M_PI / 2, y)), 0);
    AcGeMatrix3d flat;
    flat.entry = {{{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 1}}};
    EXPECT_EQ(rotation_about_z(flat), 0);
    EXPECT_EQ(cl_stream_transform::make(AcGeMatrix3d::rotation(M_PI / 3, AcGeVector3d::kZAxis), 1)
                  .rotation_line,
              "BROT;60\n");
}

TEST(MaterialNames, FirstOfEqualNamesAndNoneForEmpty) {
    cl_material_name_table table;
    table.reset(3);
    table.set(0, "a");
    table.set(1, "b");
    table.set(2, "a");
    EXPECT_EQ(table.index_of("a"), 10);
    EXPECT_EQ(table.index_of("b"), 11);
    EXPECT_EQ(table.index_of(""), 0); // the spare rows have no name either
    table.set(0, "c");
    EXPECT_EQ(table.index_of("a"), 12);
    EXPECT_EQ(table.index_of("x"), 0);
}

} // namespace
