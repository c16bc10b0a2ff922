// Levels, switches, lines, the log file, sections, and the boxes of a program without windows.
#include "omb/base/files.h"
#include "tests/omb/fixture.h"

#include <gmock/gmock.h>

using Trace = StoreTest;

namespace {

/// Counts how often it is formatted.
struct Counted {
    static inline int formatted = 0;
    operator fmt::string_view() const {
        ++formatted;
        return "counted";
    }
};

/// Counts how often an argument is evaluated.
int evaluations = 0;
std::string argument() {
    ++evaluations;
    return "a text";
}

constexpr const char* here = "/anywhere/src/omb/base/x.cpp";

} // namespace

TEST_F(Trace, NothingIsFormattedThatGoesNowhere) {
    trace_settings() = {};
    trace_settings().error_list = true;        // collects only what passes
    trace_settings().show_trace_time = true;   // adds to lines only
    trace_settings().show_trace_memory = true; // likewise
    Counted::formatted = evaluations = 0;
    for (const int level : {-1, 0, 1, 8, 9, 11}) {
        cl_trace note(here, 1, "f", level);
        note.out("%s", Counted());
        note.out_narrow("%s", Counted());
        EXPECT_EQ(note.formatted(), "") << level;
    }
    OMB_TRACE(0, "%s", argument());
    OMB_TRACE(8, "%s", argument());
    EXPECT_EQ(Counted::formatted, 0);
    EXPECT_EQ(evaluations, 0);
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(last_errors_text(), "No errors encountered.");

    OMB_TRACE(10, "%s", argument());
    EXPECT_EQ(evaluations, 1);
    cl_trace(here, 1, "f", 2).out("%s", Counted());
    EXPECT_EQ(Counted::formatted, 1);
}

TEST_F(Trace, EachOutputOpensTheFastPath) {
    std::vector<std::string> console;
    set_trace_console([&](int, const std::string& line) { console.push_back(line); });
    trace_settings() = {};
    trace_settings().show_traces_in_ruby = true;
    cl_trace(here, 1, "f").out("to the console");
    EXPECT_EQ(console, std::vector<std::string>{"omb/base/x.cpp(1): f():: to the console\n"});
    EXPECT_TRUE(lines.empty());
    trace_settings() = {};
    trace_settings().use_debug_file = true;
    ASSERT_TRUE(open_debug_file(path("log.txt")));
    cl_trace(here, 1, "f").out("to the file");
    EXPECT_EQ(get("log.txt"), "omb/base/x.cpp(1): f():: to the file\n") << "not after closing only";
    close_debug_file();
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(console.size(), 1u);
    set_trace_console({});
}

TEST_F(Trace, QuietUntilStarted) {
    set_trace_started(false);
    OMB_TRACE(10, "too early");
    OMB_TRACE(2, "too early");
    OMB_TRACE(5, "too early to throw");
    EXPECT_TRUE(lines.empty());
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(last_errors()[0], "");
}

TEST_F(Trace, LevelTenIsWrittenWhateverTheSwitchesSay) {
    trace_settings() = {};
    ASSERT_TRUE(open_debug_file(path("log.txt")));
    cl_trace(here, 1, "f", 10).out("always");
    close_debug_file();
    EXPECT_EQ(lines, std::vector<std::string>{"10|omb/base/x.cpp(1): f()::LOG:  always"});
    EXPECT_EQ(get("log.txt"), "omb/base/x.cpp(1): f()::LOG:  always\n");
}

TEST_F(Trace, LinesByLevel) {
    cl_trace(here, 12, "work", 1).out("%g and %d%%", 1.0 / 3, 5);
    cl_trace(here, 12, "", 0).out("%g %g", 1234567.0, 0.1);
    cl_trace("x.rbs", 0, nullptr, 0).out("100%%g");
    cl_trace(nullptr, 0, nullptr, 9).out("no log file is in use");
    const std::vector<std::string> expected = {
        "1|omb/base/x.cpp(12): work()::REPORT:  0.333333 and 5%",
        "0|omb/base/x.cpp(12):: 1.23457e+06 0.1", "0|x.rbs:: 100%g"};
    EXPECT_EQ(lines, expected);
    ASSERT_TRUE(open_debug_file(path("log.txt")));
    OMB_TRACE(9, "open, but not in use");
    EXPECT_EQ(lines.size(), 3u);
    trace_settings().use_debug_file = true;
    OMB_TRACE(9, "in use");
    close_debug_file();
    EXPECT_EQ(traced(9, ": in use"), 1);
    EXPECT_TRUE(get("log.txt").ends_with(": in use\n"));
}

TEST_F(Trace, ALineFeedIsAddedOnlyWhenThereIsNone) {
    std::string written;
    set_trace_sink([&](int, const std::string& line) { written += line; });
    trace_settings().use_debug_file = true;
    ASSERT_TRUE(open_debug_file(path("log.txt")));
    cl_trace("x", 0, "").out("without");
    cl_trace("x", 0, "").out("with\n");
    cl_trace("x", 0, "").out("two\n\n");
    close_debug_file();
    EXPECT_EQ(written, "x:: without\nx:: with\nx:: two\n\n");
    EXPECT_EQ(get("log.txt"), written);
}

TEST_F(Trace, NotesStandBetweenPrefixAndText) {
    trace_settings().show_trace_memory = true;
    trace_settings().show_trace_time = true;
    cl_trace("x", 0, "", 1).out("text");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_THAT(lines[0],
                testing::MatchesRegex("1.x::REPORT:  \\([0-9]+\\.[0-9]M\\)  "
                                      "\\(T: [0-9][0-9]:[0-9][0-9]:[0-9][0-9]: +[0-9]+\\.[0-9]+\\)"
                                      ".*text"));
}

TEST_F(Trace, NarrowTextIsConverted) {
    cl_trace("x", 0, "").out_narrow("T\xfcr %s %g", "\x80", 2.5);
    EXPECT_EQ(lines.at(0), "0|x:: T\xc3\xbcr \xe2\x82\xac 2.5");
}

TEST_F(Trace, AMessageInsideAMessageOfTheSameTraceIsDropped) {
    cl_trace note("x", 0, "");
    int calls = 0;
    set_trace_sink([&](int, const std::string&) {
        ++calls;
        note.out("inside");
        OMB_TRACE(0, "another trace inside the sink: not for ever");
    });
    note.out("outside");
    EXPECT_EQ(calls, 1);
    note.out("busy no more");
    EXPECT_EQ(calls, 2);
    set_trace_sink([](int, const std::string&) { throw std::runtime_error("a bad sink"); });
    EXPECT_NO_THROW(note.out("the trace never fails visibly"));
    set_trace_sink([&](int, const std::string&) { ++calls; });
    note.out("again");
    EXPECT_EQ(calls, 3);
}

TEST_F(Trace, ABadFormatDoesNotCostTheMessage) {
    OMB_TRACE(0, "%d of %s", std::string("text"));
    OMB_TRACE(0, "%s", static_cast<const char*>(nullptr));
    OMB_TRACE(0, "ends in %");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_TRUE(lines[0].ends_with(" %d of %s"));
    EXPECT_TRUE(lines[2].ends_with(" ends in %"));
}

TEST_F(Trace, DepthCountsLiveTraces) {
    const int before = trace_detail::current.depth;
    {
        const cl_trace outer("x", 0, "");
        const cl_trace inner("x", 0, "");
        EXPECT_EQ(trace_detail::current.depth, before + 2);
    }
    EXPECT_EQ(trace_detail::current.depth, before);
}

TEST_F(Trace, ALogFileThatCannotBeWrittenIsDropped) {
    EXPECT_FALSE(open_debug_file(path("no folder/log.txt")));
    EXPECT_EQ(debug_file_name(), "");
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "no device that is always full";
    }
    ASSERT_TRUE(open_debug_file("/dev/full"));
    trace_settings().use_debug_file = true;
    OMB_TRACE(0, "lost in the log, not here");
    EXPECT_FALSE(debug_file_is_open());
    EXPECT_FALSE(trace_settings().use_debug_file);
    EXPECT_EQ(traced(0, "lost in the log, not here"), 1);
    show_debug_file();
    EXPECT_EQ(boxes.at(0).text, "No log file saved. Please Check \"Write Traces to Log File\" on "
                                "the Support dialog, and run the process again to get");
}

TEST_F(Trace, TheLogFileIsShown) {
    ASSERT_TRUE(open_debug_file(path("log.txt")));
    for (int i = 0; i < 50; ++i) {
        cl_trace("x", 0, "", 10).out("line %d", i);
    }
    show_debug_file();
    close_debug_file();
    EXPECT_TRUE(boxes.at(0).text.starts_with(path("log.txt") + "\n\nx::LOG:  line 10\n"));
    EXPECT_TRUE(boxes.at(0).text.ends_with("line 49\n"));
    std::string opened;
    bool can_open = true;
    set_text_file_opener([&](const std::string& file) {
        opened = file;
        return can_open;
    });
    show_debug_file();
    EXPECT_EQ(opened, path("log.txt"));
    EXPECT_EQ(boxes.size(), 1u);
    can_open = false;
    show_debug_file();
    EXPECT_EQ(boxes.size(), 2u) << "the box stands in for an opener that fails";
    set_text_file_opener({});
}

TEST_F(Trace, Sections) {
    {
        const cl_do_trace outer("a.cpp", 1, "outer");
        { const cl_do_trace inner("a.cpp", 2, "inner"); }
        EXPECT_EQ(open_trace_sections(),
                  "(START) a.cpp(1): outer():\n(START) a.cpp(2): inner(): (CLOSED)\n");
        EXPECT_EQ(trace_section_depth(), 1u);
        const cl_do_trace second("a.cpp", 4, "second");
        EXPECT_EQ(trace_section_depth(), 2u);
        EXPECT_EQ(trace_entries().at(1).source.line, 4);
        EXPECT_EQ(trace_entries().at(1).text, "(START) a.cpp(4): second():");
    }
    EXPECT_EQ(trace_section_depth(), 0u);
    try {
        const cl_do_trace failing("a.cpp", 5, "failing");
        throw std::runtime_error("fault");
    } catch (const std::runtime_error&) {
        EXPECT_EQ(open_trace_sections(), "(START) a.cpp(5): failing(): (CLOSED)\n");
    }
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
    cl_email_error_dialog questions;
    EXPECT_FALSE(window_port().email_error_dialog(questions));
    EXPECT_EQ(shown.size(), 4u);
    EXPECT_EQ(shown[0], "File: overwrite?");
    set_window_port(nullptr);
    do_message_box("nobody sees it", "File");
    EXPECT_EQ(traced(10, "LOG:  File: nobody sees it"), 1);
}
