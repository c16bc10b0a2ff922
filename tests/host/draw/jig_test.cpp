// Jigs sampled from lines of text.
#include "tests/host/draw/drawing.h"
#include "tests/host/draw/line_port.h"

#include "host/db/curves.h"
#include "host/ed/document.h"
#include "host/ed/jig.h"

#include <deque>
#include <functional>
#include <limits>
#include <numbers>

using testing::HasSubstr;
using testing::Not;

namespace {

/// A line from a fixed start to the sampled point.
struct LineJig : AcEdJig {
    LineJig() {
        setUserInputControls(kAccept3dCoordinates | kNullResponseAccepted);
        setDispPrompt("\nEnd: ");
        setKeywordList("LOCATION,L XAXIS,X BOX,B");
    }
    DragStatus sampler() override { return sample(*this); }
    bool update() override {
        ++updates;
        line->setEndPoint(point);
        return true;
    }
    AcDbEntity* entity() const override { return line.get(); }
    std::unique_ptr<AcDbEntity> releaseEntity() override { return std::move(line); }
    using AcEdJig::acquireAngle;
    using AcEdJig::acquireDist;
    using AcEdJig::acquirePoint;
    using AcEdJig::acquireString;

    std::function<DragStatus(LineJig&)> sample = [](LineJig& jig) {
        return jig.acquirePoint(jig.point);
    };
    AcGePoint3d point;
    int updates = 0;
    std::unique_ptr<AcDbLine> line = std::make_unique<AcDbLine>();
};

struct Jigs : testing::Test {
    LinePort port;
    LineJig jig;
    Jigs() {
        acedReset();
        acedSetInputPort(&port);
    }
    ~Jigs() override { acedReset(); }
    int drag(const std::string& line) {
        port.lines = {line};
        port.output.clear();
        return jig.drag();
    }
    void expectPoint(const std::string& line, const AcGePoint3d& wanted) {
        EXPECT_EQ(drag(line), AcEdJig::kNormal) << line << port.output;
        EXPECT_THAT(jig.point, IsNear(wanted)) << line;
    }
};

TEST_F(Jigs, ADragTakesOneSample) {
    port.lines = {"1,2,3", "4,5,6"};
    EXPECT_EQ(jig.drag(), AcEdJig::kNormal);
    EXPECT_EQ(port.lines.size(), 1U);
    EXPECT_EQ(port.output, "\nEnd: ");
    EXPECT_EQ(jig.updates, 1);
    EXPECT_THAT(jig.line->endPoint(), IsNear(AcGePoint3d{1, 2, 3}));
    jig.sample = [](LineJig& own) {
        AcGePoint3d before = own.point;
        const auto status = own.acquirePoint(own.point);
        return status == AcEdJig::kNormal && own.point == before ? AcEdJig::kNoChange : status;
    };
    EXPECT_EQ(drag("1,2,3"), AcEdJig::kNormal) << "an unchanged sample is accepted too";
    EXPECT_EQ(jig.updates, 1);
}

TEST_F(Jigs, PointsInAllTheirForms) {
    expectPoint("1,2", {1, 2, 0});
    expectPoint(" 1.5 , -2e1 ,+3\r", {1.5, -20, 3});
    expectPoint("@1,1,1", {2.5, -19, 4});
    expectPoint("@", {2.5, -19, 4});
    expectPoint("2<90", {0, 2, 0});
    expectPoint("@3<0", {3, 2, 0});
    jig.sample = [](LineJig& own) { return own.acquirePoint(own.point, {100, 0, 0}); };
    expectPoint("@1,2,3", {101, 2, 3});
    jig.sample = [](LineJig& own) { return own.acquirePoint(own.point, own.point); };
    expectPoint("@1,2,3", {102, 4, 6});
    jig.sample = [](LineJig& own) { return own.acquirePoint(own.point); };
    jig.setUserInputControls(AcEdJig::kAccept3dCoordinates | AcEdJig::kDontUpdateLastPoint);
    expectPoint("7,7,7", {7, 7, 7});
    expectPoint("@1,0", {103, 4, 6});
}

TEST_F(Jigs, PointsAreTypedInTheUsersCoordinateSystem) {
    // X along world Y, Y along world Z, origin at 10,0,0.
    const AcGeMatrix3d ucs = AcGeMatrix3d::coordSystem({10, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0});
    ASSERT_EQ(acedSetCurrentUCS(ucs), Acad::eOk);
    expectPoint("1,2,3", {13, 1, 2});
    expectPoint("@0,0,1", {14, 1, 2});
    expectPoint("*1,2,3", {1, 2, 3});
    double angle = 0;
    jig.sample = [&](LineJig& own) { return own.acquireAngle(angle, {10, 0, 0}); };
    EXPECT_EQ(drag("*10,0,5"), AcEdJig::kNormal);
    EXPECT_NEAR(angle, std::numbers::pi / 2, 1e-12);
    AcGeMatrix3d bad;
    bad(0, 0) = 0;
    EXPECT_EQ(acedSetCurrentUCS(bad), Acad::eInvalidInput);
    bad(0, 0) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(acedSetCurrentUCS(bad), Acad::eInvalidInput);
    AcGeMatrix3d now;
    acedGetCurrentUCS(now);
    EXPECT_TRUE(now == ucs);
    acDocManager()->addDocument(std::make_unique<AcDbDatabase>());
    acedGetCurrentUCS(now);
    EXPECT_TRUE(now == AcGeMatrix3d()) << "another drawing begins with the world's";
}

TEST_F(Jigs, WhatIsNoAnswerIsToldAndAskedAgain) {
    for (const char* line : {"nonsense", "1", "1,2,3,4", "1,,2", "nan,0", "1,inf", "1,2x", ",", "<",
                             "@1", "1e999,0", "é,1"}) {
        jig.point = {9, 9, 9};
        port.lines = {line, "1,2"};
        port.output.clear();
        EXPECT_EQ(jig.drag(), AcEdJig::kNormal) << line;
        EXPECT_EQ(port.output, "\nEnd: \nRequires a point as x,y or x,y,z, or one of: LOCATION "
                               "XAXIS BOX.\nEnd: ")
            << line;
        EXPECT_THAT(jig.point, IsNear(AcGePoint3d{1, 2, 0}));
    }
    jig.setKeywordList("");
    jig.setUserInputControls(0);
    port.lines = {"", "1,2,3", "4,5"};
    port.output.clear();
    EXPECT_EQ(jig.drag(), AcEdJig::kNormal) << "neither Enter nor a z is an answer";
    EXPECT_THAT(port.output, HasSubstr("\nRequires a point as x,y."));
    EXPECT_THAT(jig.point, IsNear(AcGePoint3d{4, 5, 0}));
}

TEST_F(Jigs, KeywordsCountFromOneAndLeaveThePoint) {
    jig.point = {9, 9, 9};
    const std::pair<const char*, int> cases[] = {{"location", 1}, {"L", 1},    {"loc", 1}, {"x", 2},
                                                 {"XAXIS", 2},    {" bo ", 3}, {"_B", 3}};
    for (const auto& [line, result] : cases) {
        EXPECT_EQ(drag(line), result) << line;
    }
    EXPECT_EQ(drag("axis"), AcEdJig::kCancel) << "told, then the end of input";
    EXPECT_THAT(port.output, HasSubstr("one of: LOCATION XAXIS BOX."));
    EXPECT_EQ(jig.updates, 0);
    EXPECT_THAT(jig.point, IsNear(AcGePoint3d{9, 9, 9}));
    jig.setKeywordList("A1 A2 A3 A4 A5 A6 A7 A8 A9 B0 LType eXit Ende _C1 C2 C3 C4 C5 C6 C7 C8 C9 "
                       "D0 LType eXit End");
    EXPECT_EQ(drag("lt"), 11);
    EXPECT_EQ(drag("x"), 12);
    EXPECT_EQ(drag("_end"), 13);
}

TEST_F(Jigs, EnterEscapeAndTheEndOfInput) {
    EXPECT_EQ(drag(""), AcEdJig::kNull);
    EXPECT_EQ(drag("  "), AcEdJig::kNull);
    for (const char* line : {"^C", "\x1b", "\x03"}) {
        EXPECT_EQ(drag(line), AcEdJig::kCancel);
        EXPECT_EQ(port.output, "\nEnd: \n*Cancel*");
    }
    jig.setUserInputControls(AcEdJig::kDontEchoCancelForCtrlC);
    port.lines.clear();
    EXPECT_EQ(jig.drag(), AcEdJig::kCancel);
    EXPECT_THAT(port.output, Not(testing::EndsWith("\n*Cancel*")));
    port.lines = {"1,2"};
    acedSetUsrBrk(true);
    EXPECT_EQ(jig.drag(), AcEdJig::kCancel);
    acedSetUsrBrk(false);
    EXPECT_EQ(jig.updates, 0);
}

TEST_F(Jigs, WordsBehindACommandAreSamples) {
    acedPushInput({"x", "1,2,3", ""});
    EXPECT_EQ(jig.drag(), AcEdJig::kKW2);
    EXPECT_EQ(jig.drag(), AcEdJig::kNormal);
    EXPECT_EQ(jig.drag(), AcEdJig::kNull);
    EXPECT_EQ(port.output, "") << "words need no prompt";
}

TEST_F(Jigs, DistancesAndAngles) {
    double value = -1;
    jig.sample = [&](LineJig& own) { return own.acquireDist(value, {1, 1, 0}); };
    EXPECT_EQ(drag("2.5"), AcEdJig::kNormal);
    EXPECT_EQ(value, 2.5);
    EXPECT_EQ(drag("4,5"), AcEdJig::kNormal);
    EXPECT_DOUBLE_EQ(value, 5);
    EXPECT_EQ(drag("@0,0,7"), AcEdJig::kNormal);
    EXPECT_DOUBLE_EQ(value, 7);
    jig.setUserInputControls(AcEdJig::kNoZeroResponseAccepted |
                             AcEdJig::kNoNegativeResponseAccepted);
    port.lines = {"0", "-3", "1,1", "3"};
    EXPECT_EQ(jig.drag(), AcEdJig::kNormal);
    EXPECT_EQ(value, 3);
    EXPECT_TRUE(port.lines.empty());

    jig.setUserInputControls(0);
    jig.sample = [&](LineJig& own) { return own.acquireAngle(value, {1, 1, 0}); };
    EXPECT_EQ(drag("-90"), AcEdJig::kNormal);
    EXPECT_DOUBLE_EQ(value, -std::numbers::pi / 2);
    EXPECT_EQ(drag("1,0"), AcEdJig::kNormal);
    EXPECT_DOUBLE_EQ(value, 1.5 * std::numbers::pi);
    value = 8;
    EXPECT_EQ(drag("b"), AcEdJig::kKW3);
    EXPECT_EQ(value, 8) << "only a normal answer changes it";
}

TEST_F(Jigs, Texts) {
    std::string text = "before";
    jig.sample = [&](LineJig& own) { return own.acquireString(text); };
    EXPECT_EQ(drag(" two words "), AcEdJig::kNormal);
    EXPECT_EQ(text, "two words");
    EXPECT_EQ(drag(""), AcEdJig::kNull);
    EXPECT_EQ(text, "two words");
    jig.setUserInputControls(AcEdJig::kAnyBlankTerminatesInput);
    EXPECT_EQ(drag("two words"), AcEdJig::kNormal);
    EXPECT_EQ(text, "two");
    EXPECT_EQ(drag(""), AcEdJig::kNormal);
    EXPECT_EQ(text, "");
    jig.setUserInputControls(AcEdJig::kAcceptOtherInputString);
    jig.sample = [](LineJig& own) { return own.acquirePoint(own.point); };
    EXPECT_EQ(drag(" what else"), AcEdJig::kOther);
    EXPECT_EQ(jig.otherInput(), "what else");
}

TEST_F(Jigs, AppendGivesTheEntityToTheDrawing) {
    EXPECT_TRUE(jig.append().isNull()) << "no drawing";
    ASSERT_NE(jig.line, nullptr);
    AcDbDatabase* db = acDocManager()->addDocument(std::make_unique<AcDbDatabase>())->database();
    drag("1,2,3");
    const AcDbObjectId id = jig.append();
    const AcDbObjectPointer<AcDbLine> line(id);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->ownerId(), db->modelSpaceId());
    EXPECT_THAT(line->endPoint(), IsNear(AcGePoint3d{1, 2, 3}));
    EXPECT_EQ(jig.entity(), nullptr);
    EXPECT_TRUE(jig.append().isNull()) << "only once";
    AcEdJig bare;
    EXPECT_EQ(bare.entity(), nullptr);
    EXPECT_TRUE(bare.append().isNull());
}

} // namespace
