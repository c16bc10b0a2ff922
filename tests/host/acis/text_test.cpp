// The text form below the level of bodies, and scrambling.
#include "part_maker.h"

#include "host/acis/part.h"

#include <gmock/gmock.h>

using namespace test_acis;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(Descramble, Characters) {
    EXPECT_EQ(acis::descramble("hoo o n o "), "700 0 1 0 ");
    EXPECT_EQ(acis::descramble("=0;& {rn {n {rn {rn |"), "body $-1 $1 $-1 $-1 #");
    // A caret is escaped by a blank of its own; one more blank belongs to the text.
    EXPECT_EQ(acis::descramble("^ \\VL ]*63;:-"), "ACIS Builder");
    EXPECT_EQ(acis::descramble("^  ^ "), "A A");
    EXPECT_EQ(acis::descramble("^\\VL"), "ACIS");
    EXPECT_EQ(acis::descramble("\t\x7f\xe4"), "\t\x7f\xe4");
}

TEST(Descramble, TwiceIsTheSame) {
    std::string all;
    for (char c = '!'; c < 127 && c != '^'; ++c) {
        all += c;
    }
    EXPECT_EQ(acis::descramble(acis::descramble(all)), all);
}

std::vector<std::string> tokensOf(const std::string& text) {
    acis::Part part;
    acis::tokenizeText(text, part);
    std::vector<std::string> found;
    for (const acis::Token& token : part.tokens) {
        found.emplace_back(token.kind == acis::Token::Kind::kOpen ? "{" : token.text());
    }
    return found;
}

TEST(TextTokens, Kinds) {
    EXPECT_THAT(tokensOf("a{ref 1}b"), ElementsAre("a", "{", "ref", "1", "}", "b"));
    EXPECT_THAT(tokensOf("@5 a # b 7"), ElementsAre("a # b", "7"));
    EXPECT_THAT(tokensOf("@0  7 $-1 $12"), ElementsAre("", "7", "-1", "12"));
    EXPECT_THAT(tokensOf("@99 short"), ElementsAre("short"));
    EXPECT_THAT(tokensOf("I# # x#y"), ElementsAre("I", "#", "#", "x#y"));
}

TEST(TextTokens, Numbers) {
    acis::Part part;
    acis::tokenizeText("1e-010 +2.5 -.5 1e-999 1e999 -inf 12abc", part);
    std::vector<double> values;
    for (const acis::Token& token : part.tokens) {
        double value = -1000;
        acis::numberOf(token, value);
        values.push_back(value);
    }
    EXPECT_THAT(values, ElementsAre(1e-10, 2.5, -0.5, 0, -1000, -1000, -1000));
}

TEST(TextParts, HeadingsOfReleases) {
    const std::string records = "body $-1 $1 $-1 $-1 #\nlump $-1 $-1 $2 $0 #\n"
                                "shell $-1 $-1 $-1 $3 $-1 $1 #\n"
                                "face $-1 $-1 $-1 $2 $-1 $4 forward single #\n"
                                "sphere-surface $-1 0 0 0 1 1 0 0 0 0 1 forward_v I I I I #\n"
                                "End-of-ACIS-data\n";
    for (const char* heading :
         {"106 5 1 0\n", "400 5 1 0 \n4 a { } 4 ACIS 3 now\n1 1e-6 1e-10\n",
          "400 0 1 0\n1 1e-6 1e-10\n",
          "22800 5 1 0\n@4 Test @4 ACIS @3 now\n1 1e-6 1e-10\nT @4 ABCD\n", "\n  200 5 1 0\n"}) {
        const brep::Body body = acis::readText(heading + records);
        EXPECT_EQ(countsOf(body).faces, 1) << heading;
        EXPECT_THAT(body.problems, IsEmpty()) << heading;
    }
}

TEST(TextParts, NoneAtAll) {
    for (const char* text :
         {"", " ", "400", "x 1 2 3\n", "400 0 1 0\n", "{}{}", "#", "12 0 0 0\n"}) {
        const brep::Body body = acis::readText(text);
        ASSERT_EQ(body.problems.size(), 1U) << text;
        EXPECT_EQ(body.problems[0].code, "solid-unreadable");
    }
}

TEST(TextParts, NumbersOfRecordsNeedNotFollowEachOther) {
    const brep::Body body = acis::readText(
        "400 0 1 0\n-7 body $-1 $3 $-1 $-1 #\n-3 lump $-1 $-1 $4 $7 #\n"
        "shell $-1 $-1 $-1 $5 $-1 $3 #\nface $-1 $-1 $-1 $4 $-1 $2 forward single #\n"
        "-2 sphere-surface $-1 0 0 0 1 1 0 0 0 0 1 forward_v I I I I #\n");
    EXPECT_EQ(countsOf(body).faces, 1);
}

} // namespace
