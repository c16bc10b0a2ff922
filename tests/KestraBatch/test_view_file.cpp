// The view file: what it means, and every way in which it can be wrong.
#include "KestraBatch/view_file.h"

#include "tests/KestraBatch/batch_texts.h"

#include <gtest/gtest.h>

namespace {

using namespace KestraBatch;
using batch_test::good_view;
using batch_test::message_of;
using batch_test::with;

TEST(ViewFile, GivesEyeTargetAndField) {
    WarningList warnings;
    const ViewRecord view = parse_view(good_view, "v", warnings);
    EXPECT_EQ(view.name, "Current");
    EXPECT_EQ(view.eye.y, -10);
    EXPECT_EQ(view.target.z, 1);
    EXPECT_EQ(view.direction.y, 10);
    EXPECT_EQ(view.up.z, 0.001);
    EXPECT_EQ(view.view_scale, 0.001);
    EXPECT_EQ(view.field_width, 8) << "the semicolon behind the width is no part of it";
    EXPECT_EQ(view.field_height, 6);
    EXPECT_TRUE(warnings.items().empty());
}

TEST(ViewFile, DirectionComesFromThePointsWhenItsLineIsMissing) {
    WarningList warnings;
    const ViewRecord view = parse_view(with(good_view, "Dir;(0,10,-1)\n", ""), "v", warnings);
    EXPECT_EQ(view.direction.y, 10);
    EXPECT_EQ(view.direction.z, -1);
}

TEST(ViewFile, UnknownLinesAreWarnings) {
    WarningList warnings;
    parse_view("Lens;35\nplain words\n" + good_view, "v", warnings);
    ASSERT_EQ(warnings.items().size(), 2u);
    EXPECT_EQ(warnings.items()[0].text, "v(1): unknown key 'Lens'");
    EXPECT_EQ(warnings.items()[1].text, "v(2): no semicolon in it; the line is skipped");
}

TEST(ViewFile, DamageIsAnErrorWithItsLine) {
    struct Case {
        const char* from;
        const char* to;
        const char* message;
    };
    const Case cases[] = {
        {"Eye;(0,-10,2)", "Eye;(0,-10)",
         "v(6): Eye is no point '(x,y,z)' of finite numbers: '(0,-10)'"},
        {"Eye;(0,-10,2)", "Eye;(0,nan,2)",
         "v(6): Eye is no point '(x,y,z)' of finite numbers: '(0,nan,2)'"},
        {"Eye;(0,-10,2)", "Eye;(1e999,0,2)",
         "v(6): Eye is no point '(x,y,z)' of finite numbers: '(1e999,0,2)'"},
        {"Eye;(0,-10,2)\n", "", "v(21): no line 'Eye;' before the end"},
        {"view_scale;0.001", "view_scale;0", "v(13): view_scale must be above 0, not '0'"},
        {"view_scale;0.001\n", "", "v(21): no line 'view_scale;' before the end"},
        {"fieldHeight;6", "fieldHeight;six", "v(17): fieldHeight is no finite number: 'six'"},
        {"fieldHeight;6", "fieldHeight;6,5", "v(17): fieldHeight is no finite number: '6,5'"},
        {"fieldWidth;8;", "fieldWidth;-8;", "v(15): fieldWidth must be above 0, not '-8'"},
        {"END_CURRENT;\n", "", "v(21): the file ends without 'END_CURRENT;'"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(message_of([&] {
                      WarningList warnings;
                      parse_view(with(good_view, c.from, c.to), "v", warnings);
                  }),
                  c.message);
    }
}

} // namespace
