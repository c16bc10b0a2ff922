// The error path: the last three errors, dialogs, mail to support, the error list file, boundaries.
#include "omb/base/files.h"
#include "tests/omb/fixture.h"

#include <gmock/gmock.h>
#include <new>

namespace {

constexpr const char* here = "/anywhere/src/omb/base/x.cpp";
constexpr const char* place = "     (Error occurred in omb/base/x.cpp line: 7)";

/// Keeps the dialogs; presses "More" and answers the questions as told.
class ErrorPort : public cl_window_port {
public:
    int message_box(const std::string& text, const std::string& title, unsigned,
                    cl_window_handle) override {
        boxes.push_back({text, title, 0});
        return message_box::id_ok;
    }
    bool error_dialog(const cl_error_dialog& dialog) override {
        dialogs.push_back(dialog);
        if (inside) {
            inside();
        }
        if (press_more) {
            dialog.on_more();
        }
        return can_show;
    }
    bool email_error_dialog(cl_email_error_dialog& dialog) override {
        if (answers.empty()) {
            return false;
        }
        dialog.answers = answers.front();
        answers.erase(answers.begin());
        return true;
    }

    std::vector<cl_error_dialog> dialogs;
    std::vector<Box> boxes;
    std::vector<std::array<std::string, 3>> answers;
    std::function<void()> inside;
    bool can_show = true, press_more = false;
};

class Errors : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        auto own = std::make_unique<ErrorPort>();
        port = own.get();
        set_window_port(std::move(own));
        set_version_data({"Kestra", "1.2.3", "abc", "Linux"});
    }
    void TearDown() override {
        set_version_data({});
        set_errors_quiet(false);
        set_mail_transport({});
        set_dialog_switches({}, {});
        set_dialog_command_description({});
        set_error_file("", "");
        StoreTest::TearDown();
    }
    static void fault(int level, const char* text) { cl_trace(here, 7, "f", level).out(text); }

    ErrorPort* port = nullptr;
};

} // namespace

TEST_F(Errors, TheLastThreeNewestFirst) {
    show_last_errors();
    EXPECT_EQ(port->boxes.at(0).text, "No errors encountered.");
    for (const char* text : {"one", "two", "three", "four"}) {
        fault(2, text);
    }
    show_last_errors();
    const std::string where = std::string("\n") + place;
    EXPECT_EQ(port->boxes.at(1).text, "four" + where + "\n\nthree" + where + "\n\ntwo" + where);
    EXPECT_EQ(last_errors(), (std::array<std::string, 3>{"four", "three", "two"}));
    EXPECT_EQ(port->dialogs.size(), 4u);
}

TEST_F(Errors, EveryErrorLevelArrivesAndNothingIsLogged) {
    trace_settings().use_debug_file = true;
    ASSERT_TRUE(open_debug_file(path("log.txt")));
    for (const int level : {2, 3, 6, 7, 8}) {
        fault(level, "fault");
    }
    close_debug_file();
    EXPECT_EQ(port->dialogs.size(), 5u);
    EXPECT_EQ(get("log.txt"), "");
    cl_trace kept(here, 7, "f", 2);
    kept.out("kept %d", 1);
    EXPECT_EQ(kept.formatted(), "kept 1");
}

TEST_F(Errors, DialogHoldsTitleVersionPlaceAndSource) {
    set_dialog_command_description(
        [] { return describe_dialog_command("main", "ok", "button", "dc_test", {}); });
    fault(3, "broken");
    ASSERT_EQ(port->dialogs.size(), 1u);
    const cl_error_dialog& dialog = port->dialogs[0];
    EXPECT_EQ(dialog.title, "Kestra - Error");
    EXPECT_EQ(dialog.text, "broken\n\n    (VER: 1.2.3 - abc - Linux)");
    EXPECT_EQ(dialog.location, std::string(place) + "    Current dialog: 'main' ('ok' button)\n"
                                                    "    command: dc_test()");
    EXPECT_EQ(dialog.source.file, here);
    EXPECT_EQ(dialog.source.line, 7);
    EXPECT_EQ(dialog.source.function, "f");
    EXPECT_EQ(make_error_dialog("", "", {}, "Warning").title, "Kestra - Warning");
    port->can_show = false;
    fault(3, "broken");
    EXPECT_EQ(port->boxes.at(0).text, "Cannot load error dialog. omb_common.rc2 is probably not "
                                      "included.\n\nbroken");
}

TEST_F(Errors, DebugOnlyAndQuietErrorsAreStoredOnly) {
    fault(4, "for developers");
    set_errors_quiet(true);
    fault(3, "quiet");
    EXPECT_TRUE(port->dialogs.empty());
    EXPECT_EQ(last_errors()[0], "quiet");
    EXPECT_EQ(last_errors()[1], "for developers\n*** This error only appears in DEBUG mode ***");
    EXPECT_THROW(fault(5, "quiet too"), cl_text_error);
}

TEST_F(Errors, LevelFiveIsShownAndThrown) {
    cl_trace again(here, 7, "f", 5);
    for (int round = 0; round < 2; ++round) {
        try {
            again.out("beyond %s", "repair");
            FAIL() << "nothing was thrown";
        } catch (const cl_text_error& error) {
            EXPECT_EQ(error.what(),
                      std::string("Fatal Error encountered\n\rbeyond repair\n\r\n\r") + place);
        }
    }
    EXPECT_EQ(port->dialogs.size(), 2u);
    EXPECT_EQ(error_source().file, "Unknown");
}

TEST_F(Errors, TheSourceIsClearedAtTheEnd) {
    set_error_source({here, 7, "f"});
    EXPECT_EQ(error_source().line, 7);
    do_error_out("by hand");
    EXPECT_EQ(port->dialogs.at(0).location, place);
    EXPECT_EQ(error_source().file, "Unknown");
    EXPECT_EQ(error_source().line, 0);
    EXPECT_EQ(error_source().function, "");
    do_error_out("from nowhere");
    EXPECT_EQ(port->dialogs.at(1).location, "     (Error occurred in Unknown line: 0)");
    port->inside = [] { throw std::runtime_error("a bad port"); };
    EXPECT_THROW(fault(2, "fault"), std::runtime_error);
    EXPECT_EQ(error_source().file, "Unknown");
    EXPECT_FALSE(error_is_being_shown());
}

TEST_F(Errors, OtherDialogsAreShutMeanwhile) {
    std::string order;
    set_dialog_switches([&] { order += "off "; }, [&] { order += "on "; });
    port->inside = [&] {
        order += "shown ";
        fault(2, "inside the dialog");
    };
    fault(2, "fault");
    EXPECT_EQ(order, "off shown on ");
    EXPECT_EQ(last_errors()[0], "inside the dialog") << "stored, but not shown";
    EXPECT_EQ(port->dialogs.size(), 1u);
    order.clear();
    fault(4, "no dialog");
    EXPECT_EQ(order, "");
    port->inside = [] { throw std::runtime_error("a bad port"); };
    EXPECT_THROW(fault(2, "fault"), std::runtime_error);
    EXPECT_EQ(order, "off on ");
}

TEST_F(Errors, WithoutWindowsTheDialogIsPrinted) {
    std::string shown;
    set_message_sink(
        [&](const std::string& text, const std::string& title) { shown = title + ": " + text; });
    fault(2, "an error");
    EXPECT_EQ(shown, std::string("Kestra - Error: an error\n\n    (VER: 1.2.3 - abc - Linux)\n\n") +
                         place);
}

TEST_F(Errors, MailAsksUntilEachQuestionHasAnAnswer) {
    std::string subject, body;
    set_mail_transport([&](const std::string& s, const std::string& b) {
        subject = s, body = b;
        return true;
    });
    port->press_more = true;
    port->answers = {{"", "yes", "  "}, {"no", "yes", "sometimes"}};
    fault(2, "broken");
    ASSERT_EQ(port->boxes.size(), 1u);
    EXPECT_EQ(port->boxes[0].title, "Send Error Email to Support");
    EXPECT_EQ(port->boxes[0].text, "Please complete the following entries:\n\nIs model large?\n"
                                   "Does error occur in all models?\n");
    EXPECT_EQ(subject, "Kestra - Error");
    EXPECT_TRUE(body.starts_with(port->dialogs[0].text + "\n\n" + place));
    EXPECT_NE(body.find("Is model large?\nno\nDoes error occur all the time?\nyes\n"
                        "Does error occur in all models?\nsometimes\n"),
              body.npos);
    subject.clear();
    fault(2, "the user gives up");
    EXPECT_EQ(subject, "");
    EXPECT_EQ(port->boxes.size(), 1u);
}

TEST_F(Errors, MailThatCannotBeSentSaysWhereTheListLies) {
    port->press_more = true;
    fault(2, "broken");
    EXPECT_EQ(port->boxes.at(0).text, "Mail cannot be sent from here.\n\nNo error file saved");
    set_error_file(path("list.txt"), "Kestra");
    trace_settings().error_list = true;
    set_mail_transport([](const std::string&, const std::string&) { return false; });
    port->answers = {{"a", "b", "c"}};
    fault(2, "broken");
    EXPECT_EQ(port->boxes.at(1).text,
              "Mail cannot be sent from here.\n\nThe error list is in: " + path("list.txt"));
}

TEST_F(Errors, MailAddress) {
    EXPECT_EQ(mailto_address("help+1@example.org", "A & B", "l\xc3\xadne 1\nline 2\r\n100%"),
              "mailto:help%2B1@example.org?subject=A%20%26%20B&body=l%C3%ADne%201%0D%0Aline%202"
              "%0D%0A100%25");
}

// ---- the error list file ----

TEST_F(Errors, ListIsMadeNewAtTheFirstErrorOfARun) {
    trace_settings() = {};
    trace_settings().error_list = true;
    put("error_file.txt", "of an older run\n");
    set_error_file(path("error_file.txt"), "Kestra");
    OMB_TRACE(0, "does not pass");
    show_error_file(true);
    EXPECT_TRUE(port->boxes.empty());
    show_error_file(false);
    EXPECT_EQ(port->boxes.at(0).text, "No error file saved");
    EXPECT_EQ(get("error_file.txt"), "of an older run\n");
    fault(4, "of use to developers, and none looks on");
    fault(3, "first\n\nof two lines\n");
    trace_settings().show_traces_in_release = true;
    OMB_TRACE(0, "passes");
    const std::string text = get("error_file.txt");
    EXPECT_THAT(text, testing::MatchesRegex("ERROR LIST: Kestra: [0-9]+-[0-9]+-[0-9]+\n"
                                            "first of two lines\npasses\n"));
    show_error_file(false);
    EXPECT_EQ(port->boxes.at(1).text, path("error_file.txt") + "\n\n" + text);
    trace_settings().error_list = false;
    fault(4, "not collected");
    EXPECT_EQ(get("error_file.txt"), text);
    std::filesystem::remove(path("error_file.txt"));
    show_error_file(false);
    EXPECT_EQ(port->boxes.at(2).text, "No error file saved");
}

TEST_F(Errors, ListOfAProgramLiesInTheSettingsFolderAndIsMadeLate) {
    ::setenv("QORVANE_HOME", path("home").c_str(), 1);
    start_trace_from_environment("Kestra");
    start_trace_from_environment("a module of it");
    EXPECT_FALSE(std::filesystem::exists(path("home"))) << "no folder before the first error";
    fault(4, "first");
    start_trace_from_environment("a module of it");
    fault(4, "second");
    EXPECT_EQ(error_file_name(), join_path(get_settings_folder(), "error_file.txt"));
    std::string text;
    ASSERT_TRUE(read_whole_file(error_file_name(), text));
    ::unsetenv("QORVANE_HOME");
    EXPECT_TRUE(text.starts_with("ERROR LIST: Kestra: "));
    EXPECT_TRUE(text.ends_with("\nfirst\nsecond\n"));
}

TEST_F(Errors, AListThatCannotBeWrittenIsDropped) {
    trace_settings().error_list = true;
    set_error_file(path("no folder/list.txt"), "Kestra");
    fault(2, "fault");
    EXPECT_EQ(error_file_name(), "");
    EXPECT_EQ(port->dialogs.size(), 1u) << "the error itself arrives";
    show_error_file(false);
    EXPECT_EQ(port->boxes.at(0).text, "No error file saved");
    if (std::filesystem::exists("/dev/full")) {
        set_error_file("/dev/full", "Kestra");
        fault(2, "fault");
        EXPECT_EQ(error_file_name(), "");
    }
}

TEST_F(Errors, AnErrorThatIsPrintedThroughTheTraceIsListedOnce) {
    trace_settings().error_list = true;
    set_error_file(path("list.txt"), "Kestra");
    set_window_port(nullptr);
    fault(2, "fault");
    const std::string text = get("list.txt");
    EXPECT_EQ(text.substr(text.find('\n') + 1), "fault\n");
    EXPECT_EQ(lines.size(), 2u) << "told as an error, printed as a log line";
}

// ---- boundaries ----

TEST_F(Errors, ABoundaryTurnsWhatItCatchesIntoALineAndAStatus) {
    std::string text;
    EXPECT_EQ(run_guarded(
                  "Here", -1, [] { return 3; }, &text),
              3);
    EXPECT_EQ(text, "");
    EXPECT_EQ(run_guarded(
                  "Here", -1, []() -> int { throw cl_text_error("a text"); }, &text),
              -1);
    EXPECT_EQ(text, "a text");
    EXPECT_EQ(traced(1, "REPORT:  Here: a text"), 1);
    EXPECT_EQ(run_guarded(
                  "Here", -2, []() -> int { throw std::bad_alloc(); }, &text),
              -2);
    EXPECT_EQ(text, "out of memory");
    EXPECT_EQ(run_guarded(
                  "Here", -3, []() -> int { throw 7; }, &text),
              -3);
    EXPECT_EQ(text, "Unknown Error");
    EXPECT_EQ(traced(1, "REPORT:  Here: Unknown Error"), 1);
}

TEST_F(Errors, OnlyATextErrorCrossesABoundary) {
    EXPECT_EQ(run_at_boundary("Here", [] { return 3; }), 3);
    EXPECT_NO_THROW(run_at_boundary("Here", [] {}));
    try {
        run_at_boundary("Here", [] { throw std::out_of_range("no such row"); });
        FAIL() << "nothing was thrown";
    } catch (const cl_text_error& error) {
        EXPECT_STREQ(error.what(), "no such row");
    }
    EXPECT_EQ(traced(1, "REPORT:  Here: no such row"), 1);
    EXPECT_THROW(run_at_boundary("Here", [] { throw 7; }), cl_text_error);
    EXPECT_THROW(run_at_boundary("Here", [] { fault(5, "fatal"); }), cl_text_error);
    EXPECT_EQ(traced(1, place), 1) << "one line for the fatal error";
}
