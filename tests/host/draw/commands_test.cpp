// The command line: commands, prompts, selection, documents.
#include "tests/host/draw/drawing.h"
#include "tests/host/draw/line_port.h"

#include "host/db/curves.h"
#include "host/ed/document.h"
#include "host/ed/ed.h"

#include <stdexcept>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::vector<std::string> answers;

void askThree() {
    std::string text;
    for (int i = 0; i < 3; ++i) {
        answers.push_back(acedGetString("? ", text) == RTNORM ? text : "-");
    }
}
void runInner() {
    acedCommand("ask inner");
    askThree();
}
void fail() { throw std::runtime_error("the roof leaks"); }
void failOddly() { throw 7; } // NOLINT
void first() { answers.push_back("first"); }
void second() { answers.push_back("second"); }

struct Commands : testing::Test {
    LinePort port;
    Commands() {
        acedReset();
        answers.clear();
        acedSetInputPort(&port);
        acedRegCmds().addCommand("G", "ASK", "FRAGE", ACRX_CMD_MODAL, askThree);
    }
    ~Commands() override { acedReset(); }
};

TEST_F(Commands, NamesIgnoreCaseUnderscoreAndLanguage) {
    AcEdCommandStack& stack = acedRegCmds();
    EXPECT_FALSE(stack.addCommand("g", "ask", "x", 0, first)) << "the group has it";
    EXPECT_TRUE(stack.addCommand("H", "ask", "other", 0, second));
    for (const char* name : {"ask", "_ASK", "Ask", "'_ask"}) {
        ASSERT_NE(stack.lookup(name), nullptr) << name;
        EXPECT_EQ(stack.lookup(name)->group, "H") << "the last group wins";
    }
    EXPECT_EQ(stack.lookup("frage")->group, "G");
    EXPECT_EQ(stack.lookup("as"), nullptr);
    EXPECT_EQ(stack.lookup(""), nullptr);
    EXPECT_EQ(stack.lookup("_"), nullptr);
    EXPECT_TRUE(stack.removeGroup("h"));
    EXPECT_FALSE(stack.removeGroup("h"));
    EXPECT_EQ(stack.lookup("ask")->group, "G");
    EXPECT_FALSE(stack.addCommand("G", "", "", 0, first));
}

TEST_F(Commands, WordsAnswerPromptsBeforeThePortDoes) {
    port.lines = {"from port"};
    EXPECT_TRUE(acedCommand("ask one \"two words\""));
    EXPECT_THAT(answers, ElementsAre("one", "two words", "from port"));
    EXPECT_EQ(port.output, "? ") << "words need no prompt";
}

TEST_F(Commands, WordsLeftOverDoNotReachTheNextCommand) {
    EXPECT_TRUE(acedCommand("ask 1 2 3 4 5"));
    answers.clear();
    EXPECT_TRUE(acedCommand("ask"));
    EXPECT_THAT(answers, ElementsAre("-", "-", "-"));
}

TEST_F(Commands, ACommandWithinACommandHasItsOwnWords) {
    acedRegCmds().addCommand("G", "OUTER", "OUTER", 0, runInner);
    acedCommand("outer a b c");
    EXPECT_THAT(answers, ElementsAre("inner", "-", "-", "a", "b", "c"));
}

TEST_F(Commands, FailuresStopAtTheBoundary) {
    struct Follower : AcEditorReactor {
        std::string log;
        void commandWillStart(const std::string& name) override { log += "+" + name; }
        void commandEnded(const std::string& name) override { log += "-" + name; }
        void commandFailed(const std::string& name) override { log += "!" + name; }
    } follower;
    acedAddReactor(&follower);
    acedRegCmds().addCommand("G", "LEAK", "LEAK", 0, fail);
    acedRegCmds().addCommand("G", "ODD", "ODD", 0, failOddly);
    EXPECT_TRUE(acedCommand("leak"));
    EXPECT_THAT(port.output, HasSubstr("LEAK failed: the roof leaks"));
    EXPECT_TRUE(acedCommand("odd"));
    EXPECT_TRUE(acedCommand("_frage"));
    EXPECT_FALSE(acedCommand("nothing like it"));
    EXPECT_THAT(port.output, HasSubstr("Unknown command \"NOTHING\"."));
    EXPECT_FALSE(acedCommand("   "));
    EXPECT_EQ(follower.log, "+LEAK!LEAK+ODD!ODD+ASK-ASK");
    acedRemoveReactor(&follower);
    acedCommand("ask");
    EXPECT_EQ(follower.log, "+LEAK!LEAK+ODD!ODD+ASK-ASK");
}

TEST_F(Commands, StringsAreCutByCharactersAndEndWithTheInput) {
    std::string text;
    port.lines = {"Türen", ""};
    EXPECT_EQ(acedGetString("", text, 2), RTNORM);
    EXPECT_EQ(text, "Tü");
    EXPECT_EQ(acedGetString("", text), RTNONE);
    EXPECT_EQ(acedGetString("", text), RTCAN);
    acedSetInputPort(nullptr);
    EXPECT_EQ(acedGetString("", text), RTCAN);
}

TEST_F(Commands, IntegersAreAskedForUntilTheyAreGood) {
    int number = 0;
    port.lines = {"12x", "3.5", "99999999999", "+-4", " -7 ", ""};
    EXPECT_EQ(acedGetInt("n: ", number), RTNORM);
    EXPECT_EQ(number, -7);
    EXPECT_THAT(port.output, HasSubstr("Requires an integer value."));
    EXPECT_EQ(acedGetInt("n: ", number), RTNONE);
    EXPECT_EQ(acedGetInt("n: ", number), RTCAN);
    acedPushInput({"+8"});
    EXPECT_EQ(acedGetInt("n: ", number), RTNORM);
    EXPECT_EQ(number, 8);
}

TEST_F(Commands, KeywordsByTheirCapitals) {
    const std::string keywords = "LType LAyer eXit Yes";
    const auto ask = [&](const char* answer) -> std::string {
        std::string result;
        port.lines = {answer};
        return acedGetKword(keywords, "", result) == RTNORM ? result : "-";
    };
    EXPECT_EQ(ask("lt"), "LType");
    EXPECT_EQ(ask("LTY"), "LType");
    EXPECT_EQ(ask("layer"), "LAyer");
    EXPECT_EQ(ask("x"), "eXit");
    EXPECT_EQ(ask("exit"), "eXit");
    EXPECT_EQ(ask("ex"), "eXit");
    EXPECT_EQ(ask("y"), "Yes");
    EXPECT_EQ(ask("_y"), "Yes");
    EXPECT_EQ(ask("l"), "-") << "shorter than the abbreviation";
    EXPECT_EQ(ask("ltypes"), "-") << "longer than the word";
    EXPECT_EQ(ask("e"), "-");
    std::string result;
    port.lines = {"_no", ""};
    EXPECT_EQ(acedGetKword("Ja Nein _Yes No", "", result), RTNORM);
    EXPECT_EQ(result, "No");
    EXPECT_EQ(acedGetKword("Ja Nein _Yes No", "", result), RTNONE);
    port.lines = {"j"};
    EXPECT_EQ(acedGetKword("Ja Nein _Yes No", "", result), RTNORM);
    EXPECT_EQ(result, "Yes");
}

TEST_F(Commands, ABreakCancelsPrompts) {
    std::string text;
    port.lines = {"later"};
    acedSetUsrBrk(true);
    EXPECT_EQ(acedGetString("", text), RTCAN);
    acedSetUsrBrk(false);
    EXPECT_EQ(acedGetString("", text), RTNORM);
}

TEST_F(Commands, SelectingAllTakesModelSpaceInOrder) {
    AcEdSelectionSet set;
    EXPECT_EQ(acedSSGet("_A", set), RTERROR) << "no drawing";
    AcDbDatabase* db = acDocManager()->addDocument(std::make_unique<AcDbDatabase>())->database();
    EXPECT_EQ(acedSSGet("_A", set), RTERROR) << "an empty one";
    std::vector<AcDbObjectId> ids(3);
    {
        AcDbObjectPointer<AcDbBlockTableRecord> model(db->modelSpaceId(), AcDb::kForWrite);
        for (AcDbObjectId& id : ids) {
            model->appendAcDbEntity(std::make_unique<AcDbLine>(), id);
        }
    }
    AcDbObjectPointer<AcDbLine>(ids[1], AcDb::kForWrite)->erase();
    EXPECT_EQ(acedSSGet("_a", set), RTNORM);
    EXPECT_THAT(set.ids(), ElementsAre(ids[0], ids[2]));
    EXPECT_EQ(set.at(1), ids[2]);
    EXPECT_TRUE(set.at(2).isNull());
    EXPECT_EQ(acedSSGet("_W", set), RTERROR);
    EXPECT_EQ(set.length(), 0U);
    EXPECT_EQ(acedActiveViewportId(), db->activeViewportId());
}

TEST_F(Commands, DocumentsComeAndGo) {
    struct Follower : AcApDocManagerReactor {
        std::string log;
        void documentCreated(AcApDocument*) override { log += "c"; }
        void documentBecameCurrent(AcApDocument* document) override {
            log += document != nullptr ? "b" : "0";
        }
        void documentToBeDestroyed(AcApDocument* document) override {
            EXPECT_NE(document->database(), nullptr);
            log += "d";
        }
    } follower;
    AcApDocManager* manager = acDocManager();
    manager->addReactor(&follower);
    AcApDocument* one = manager->addDocument(std::make_unique<AcDbDatabase>());
    AcApDocument* two = manager->addDocument(std::make_unique<AcDbDatabase>());
    EXPECT_EQ(manager->curDocument(), two);
    EXPECT_EQ(acdbCurDwg(), two->database());
    manager->closeDocument(two);
    EXPECT_EQ(manager->curDocument(), one);
    EXPECT_EQ(acdbCurDwg(), one->database());
    manager->closeAll();
    EXPECT_EQ(acdbCurDwg(), nullptr);
    EXPECT_EQ(follower.log, "cbcbdbd0");
    manager->removeReactor(&follower);
}

} // namespace
