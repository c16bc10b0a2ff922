// Broken parts: whatever is left of them is sound, and nothing hangs or crashes.
#include "part_maker.h"

#include <gmock/gmock.h>

#include <chrono>
#include <random>

using namespace test_acis;
using testing::Contains;
using testing::Field;

namespace {

PartMaker someSolids(Release release) {
    PartMaker maker(release);
    maker.body({maker.lump({maker.shell(addBox(maker, {1, 2, 3}))}),
                maker.lump({maker.shell(addCylinder(maker, 1, 2))}),
                maker.lump({maker.shell(addCone(maker, 1, 2))})});
    return maker;
}

/// Reads and checks all that holds for any input.
brep::Body check(const std::string& bytes) {
    brep::Body body = readPart(bytes);
    const std::string fault = faultOf(body, false, 1e300);
    EXPECT_TRUE(fault.empty() || fault == "an open loop" ||
                fault.starts_with("an edge does not end"))
        << fault;
    for (const brep::Vertex& vertex : body.vertices) {
        EXPECT_TRUE(std::isfinite(vertex.point.x + vertex.point.y + vertex.point.z));
    }
    EXPECT_TRUE(countsOf(body).faces > 0 || !body.problems.empty());
    return body;
}

class Damaged : public testing::TestWithParam<Release> {};

INSTANTIATE_TEST_SUITE_P(All, Damaged,
                         testing::Values(Release{400, Form::kText}, Release{22300, Form::kText},
                                         Release{22300, Form::kBinary4},
                                         Release{23100, Form::kBinary8}),
                         [](const auto& param) { return nameOf(param.param); });

TEST_P(Damaged, CutAnywhere) {
    const std::string whole = someSolids(GetParam()).write();
    int most = 0;
    for (std::size_t length = 0; length <= whole.size(); length += 1 + length % 7) {
        most = std::max(most, countsOf(check(whole.substr(0, length))).faces);
    }
    EXPECT_EQ(countsOf(check(whole)).faces, 11);
    EXPECT_LE(most, 11);
}

TEST_P(Damaged, ChangedBytes) {
    const std::string whole = someSolids(GetParam()).write();
    std::mt19937 random(7); // NOLINT: the same bytes each time
    for (int i = 0; i < 1500; ++i) {
        std::string changed = whole;
        for (int n = 0; n < 1 + i % 4; ++n) {
            changed[random() % changed.size()] = static_cast<char>(random());
        }
        check(changed);
    }
}

TEST_P(Damaged, WrongReferences) {
    const PartMaker sound = someSolids(GetParam());
    for (int number = 0; number < sound.size(); number += 2) {
        const Values values = PartMaker(sound).record(number).values;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!std::holds_alternative<Ref>(values[i])) {
                continue;
            }
            for (const int wrong : {-7, number, 1, 33, 99999}) {
                PartMaker broken = sound;
                broken.record(number).values[i] = Ref{wrong};
                check(broken.write());
            }
        }
    }
}

/// The first `from` gives way to `to`.
std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return text.replace(at, from.size(), to);
}

TEST(DamagedTexts, OneFaceLess) {
    PartMaker maker({400, Form::kText});
    maker.solid(addBox(maker, {1, 1, 1}));
    const std::string text = maker.write();
    struct Case {
        const char *from, *to;
        int faces;
    };
    for (const Case& one :
         {Case{"plane-surface $-1", "plane-surface $-1 x", 5},
          Case{"plane-surface $-1", "hyper-surface $-1", 5},
          Case{"plane-surface $-1 ", "plane-surface $-1 nan ", 5},
          Case{"plane-surface $-1 ", "plane-surface $-1 1e999 ", 5},
          Case{"straight-curve $-1 ", "straight-curve $-1 I ", 4},
          Case{"point $-1 ", "point $-1 oh ", 3}, Case{"loop $-1", "lop $-1", 5}}) {
        const brep::Body body = check(replaced(text, one.from, one.to));
        EXPECT_EQ(countsOf(body).faces, one.faces) << one.from << " to " << one.to;
        EXPECT_THAT(body.problems, Contains(Field(&brep::Problem::code, "solid-face-missing")));
    }
}

TEST(DamagedTexts, AbsurdCountsAndDepths) {
    const auto surface = [](const std::string& inside) {
        return "400 0 1 0\nbody $-1 $1 $-1 $-1 #\nlump $-1 $-1 $2 $0 #\n"
               "shell $-1 $-1 $-1 $3 $-1 $1 #\nface $-1 $-1 $-1 $2 $-1 $4 forward single #\n"
               "spline-surface $-1 forward { " +
               inside + " } I I I I #\n";
    };
    const std::string knots = "0 1 1 1 0 1 1 1 ";
    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "offsur spline forward { ";
    }
    std::string many;
    for (int i = 0; i < 100000; ++i) {
        many += "nubs 1 1 open open none none 2 2 ";
    }
    for (const std::string& inside : std::vector<std::string>{
             "exactsur full nubs 1 1 open open none none 9223372036854775807 2 " + knots,
             "exactsur full nubs 1 1 open open none none -2 2 " + knots,
             "exactsur full nubs 1000000 1 open open none none 2 2 " + knots,
             "exactsur full nubs 1 1 open open none none 2 2 0 1 0 1 0 1 1 1 0 0 0 0 0 0 0 0 0 0 0 "
             "0",
             "exactsur full nurbs 1 1 both open open none none 2 2 " + knots +
                 "0 0 0 0 1 1 1 1 2 2 2 0 3 3 3 0",
             std::string("ref 0"), std::string("ref -1"), std::string("ref 99999999999999999999"),
             deep, many, "@99999999999 x", std::string(200000, '{')}) {
        const auto begin = std::chrono::steady_clock::now();
        const brep::Body body = check(surface(inside));
        EXPECT_EQ(countsOf(body).faces, 0) << inside.substr(0, 80);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    }
}

TEST(DamagedTexts, FaceWithTooFewFields) {
    for (const char* fields : {"", "$1", "$-1 $1", "$1 $1 forward", "forward $1"}) {
        const brep::Body body = check(std::string("400 0 1 0\nface $-1 ") + fields +
                                      " #\nsphere-surface $-1 0 0 0 1 1 0 0 0 0 1 forward_v I #\n");
        EXPECT_EQ(countsOf(body).faces, 0) << fields;
    }
}

/// Ten thousand faces refer to one large surface, which is read once.
TEST(DamagedTexts, OneSurfaceForManyFaces) {
    constexpr int kFaces = 10000;
    constexpr int kPoints = 10000;
    std::string text = "400 0 1 0\nbody $-1 $1 $-1 $-1 #\nlump $-1 $-1 $2 $0 #\n"
                       "shell $-1 $-1 $-1 $4 $-1 $1 #\nspline-surface $-1 forward { exactsur full "
                       "nubs 1 1 open open none none " +
                       std::to_string(kPoints) + " 2 ";
    for (int i = 0; i < kPoints; ++i) {
        text += std::to_string(i) + " 1 ";
    }
    text += "0 1 1 1 ";
    for (int i = 0; i < 2 * kPoints; ++i) {
        text += std::to_string(i % kPoints) + " " + std::to_string(i / kPoints) + " 0 ";
    }
    text += "0 } I I I I #\n";
    for (int i = 0; i < kFaces; ++i) {
        const int face = 4 + 2 * i;
        text += "face $-1 $" + std::to_string(face + 2) + " $-1 $2 $-1 $" +
                std::to_string(face + 1) +
                " forward single #\nspline-surface $-1 forward { ref 0 } I I I I #\n";
    }
    const auto begin = std::chrono::steady_clock::now();
    const brep::Body body = check(text);
    EXPECT_EQ(countsOf(body).faces, kFaces);
    EXPECT_EQ(body.surfaces.size(), 1U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

/// Time grows with the size: a hundred thousand records are no more than a moment.
TEST(DamagedTexts, ManyRecordsAndReasons) {
    std::string text = "400 0 1 0\nbody $-1 $1 $-1 $-1 #\nlump $-1 $-1 $2 $0 #\n"
                       "shell $-1 $-1 $-1 $3 $-1 $1 #\n";
    constexpr int kFaces = 50000;
    for (int i = 0; i < kFaces; ++i) {
        const int face = 3 + 2 * i;
        text += "face $-1 $" + std::to_string(face + 2) + " $-1 $2 $-1 $" +
                std::to_string(face + 1) + " forward single #\nkind" + std::to_string(i) +
                "-surface $-1 #\n";
    }
    const auto begin = std::chrono::steady_clock::now();
    const brep::Body body = check(text);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    EXPECT_LT(body.problems.size(), 100U);
    int count = 0;
    for (const brep::Problem& problem : body.problems) {
        count += problem.count;
    }
    EXPECT_EQ(count, kFaces);
}

} // namespace
