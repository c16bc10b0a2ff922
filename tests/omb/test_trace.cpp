// Levels, switches, the error path and the boxes of a program without windows.
#include "omb/base/files.h"
#include "tests/omb/fixture.h"

using Trace = StoreTest;

TEST_F(Trace, QuietUntilStartedAndWithoutSwitches) {
    trace_settings() = {};
    cl_trace note("a.cpp", 1, "f", 0);
    note.out("not formatted %s", std::string("x"));
    EXPECT_EQ(note.formatted(), "") << "the fast path formats nothing";
    OMB_TRACE(10, "always");
    EXPECT_EQ(traced(10, "LOG:  always"), 1);
    set_trace_started(false);
    OMB_TRACE(10, "too early");
    OMB_TRACE(2, "too early");
    EXPECT_EQ(lines.size(), 1u);
    EXPECT_TRUE(boxes.empty());
}

TEST_F(Trace, LinesAndLabels) {
    cl_trace("/anywhere/src/omb/base/x.cpp", 12, "work", 1).out("%g and %d%%", 1.0 / 3, 5);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], "1|omb/base/x.cpp(12): work()::REPORT:  0.333333 and 5%");
    cl_trace("tools\\ruby\\start.rbs", 3, "", 0).out("100%%g");
    EXPECT_EQ(lines[1], "0|start.rbs(3):: 100%g");
    OMB_TRACE(9, "only with a log file");
    EXPECT_EQ(lines.size(), 2u);
    trace_settings().use_debug_file = true;
    ASSERT_TRUE(open_debug_file(path("log.txt")));
    OMB_TRACE(9, "logged");
    close_debug_file();
    EXPECT_TRUE(get("log.txt").ends_with("logged\n"));
}

TEST_F(Trace, TimeAndMemoryNotes) {
    trace_settings().show_trace_memory = true;
    trace_settings().show_trace_time = true;
    OMB_TRACE(0, "text");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("M)  (T: "), std::string::npos) << lines[0];
}

TEST_F(Trace, ErrorsAreStoredNewestFirst) {
    EXPECT_EQ(last_errors_text(), "No errors encountered.");
    for (int i = 1; i <= 4; ++i) {
        OMB_TRACE(2, "fault %d", i);
    }
    EXPECT_EQ(last_errors()[0], "fault 4");
    EXPECT_EQ(last_errors()[2], "fault 2");
    ASSERT_EQ(boxes.size(), 4u);
    show_last_errors();
    EXPECT_LT(boxes[4].text.find("fault 4"), boxes[4].text.find("fault 2"));
    EXPECT_NE(boxes[4].text.find("     (Error occurred in "), std::string::npos);
    set_errors_quiet(true);
    OMB_TRACE(3, "silent");
    set_errors_quiet(false);
    EXPECT_EQ(boxes.size(), 5u);
    EXPECT_EQ(last_errors()[0], "silent");
    OMB_TRACE(4, "for developers");
    EXPECT_EQ(boxes.size(), 5u);
    EXPECT_EQ(last_errors()[0], "for developers\n*** This error only appears in DEBUG mode ***");
}

TEST_F(Trace, LevelFiveThrows) {
    try {
        OMB_TRACE(5, "broken %s", "beyond repair");
        FAIL() << "nothing was thrown";
    } catch (const cl_text_error& error) {
        EXPECT_TRUE(std::string(error.what())
                        .starts_with("Fatal Error encountered\n\rbroken beyond repair\n\r\n\r"));
    }
    OMB_TRACE(0, "still works");
    EXPECT_EQ(traced(0, "still works"), 1);
}

TEST_F(Trace, ErrorListFile) {
    trace_settings().error_list = true;
    show_error_file(true);
    EXPECT_TRUE(boxes.empty());
    show_error_file(false);
    EXPECT_EQ(boxes.at(0).text, "No error file saved");
    put("error_file.txt", "of an older run\n");
    set_error_file(path("error_file.txt"), "Qorvane");
    OMB_TRACE(4, "first");
    OMB_TRACE(0, "second");
    const std::string text = get("error_file.txt");
    EXPECT_TRUE(text.starts_with("ERROR LIST: Qorvane: "));
    EXPECT_TRUE(text.ends_with("\nfirst\nsecond\n"));
    show_error_file(false);
    EXPECT_EQ(boxes.at(1).text, text);
    set_error_file("", "");
}

TEST_F(Trace, Sections) {
    {
        cl_do_trace outer("a.cpp", 1, "outer");
        { cl_do_trace inner("a.cpp", 2, "inner"); }
        EXPECT_EQ(open_trace_sections(),
                  "(START) a.cpp(1): outer():\n(START) a.cpp(2): inner(): (CLOSED)\n");
    }
    cl_do_trace next("a.cpp", 3, "next");
    EXPECT_EQ(open_trace_sections(), "(START) a.cpp(3): next():\n");
}

TEST_F(Trace, ABadFormatDoesNotCostTheMessage) {
    OMB_TRACE(0, "%d of %s", std::string("text"));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].ends_with("%d of %s"));
}

TEST_F(Trace, BoxesWithoutWindowsAnswerSafely) {
    std::vector<std::string> shown;
    set_message_sink([&](const std::string& text, const std::string& title) {
        shown.push_back(title + ": " + text);
    });
    EXPECT_EQ(do_message_box("overwrite?", "File", message_box::ok_cancel), message_box::id_cancel);
    EXPECT_EQ(do_message_box("sure?", "File", message_box::yes_no | message_box::icon_question),
              message_box::id_no);
    EXPECT_EQ(do_message_box("done", "File"), message_box::id_ok);
    EXPECT_EQ(do_message_box("?", "File", message_box::abort_retry_ignore), message_box::id_abort);
    OMB_TRACE(2, "an error");
    EXPECT_EQ(shown.size(), 5u);
    EXPECT_EQ(shown[0], "File: overwrite?");
    EXPECT_TRUE(shown[4].starts_with("Error: an error\n\n     (Error occurred in "));
}
