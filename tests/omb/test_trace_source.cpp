// The texts that a trace line is made of.
#include "omb/base/trace_source.h"

#include "omb/base/errors.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace trace_text;

TEST(TraceText, ShortFloatsGetSixDigitsAndEscapesStay) {
    EXPECT_EQ(six_digits("%g"), "%.6g");
    EXPECT_EQ(six_digits("%g%g, %g"), "%.6g%.6g, %.6g");
    EXPECT_EQ(six_digits("100%%g"), "100%%g");
    EXPECT_EQ(six_digits("%%%g %%%%g"), "%%%.6g %%%%g");
    EXPECT_EQ(six_digits("%9g %.3g %s %"), "%9g %.3g %s %");
    EXPECT_EQ(six_digits(""), "");
}

TEST(TraceText, LabelsByWhatIsKnown) {
    EXPECT_EQ(source_label({"/home/a/src/omb/base/x.cpp", 12, "work"}),
              "omb/base/x.cpp(12): work():");
    EXPECT_EQ(source_label({"/home/a/src/omb/base/x.cpp", 12, ""}), "omb/base/x.cpp(12):");
    EXPECT_EQ(source_label({"x.cpp", 0, ""}), "x.cpp:");
    EXPECT_EQ(source_label({}), "Unknown:");
}

TEST(TraceText, PathsAreCutUpToTheProductFolder) {
    EXPECT_EQ(product_path("src/omb/x.cpp"), "omb/x.cpp");
    EXPECT_EQ(product_path("../../src/omb/x.cpp"), "omb/x.cpp");
    EXPECT_EQ(product_path("/home/src/qorvane/src/omb/x.cpp"), "omb/x.cpp");
    EXPECT_EQ(product_path("C:\\work\\src\\omb\\x.cpp"), "omb\\x.cpp");
    EXPECT_EQ(product_path("/home/mysrc/x.cpp"), "/home/mysrc/x.cpp") << "part of a name";
    EXPECT_EQ(product_path("/a/src"), "/a/src") << "nothing would be left";
    EXPECT_EQ(product_path("/a/src/ruby/x.cpp"), "ruby/x.cpp") << "no script";
    EXPECT_EQ(product_path("C:\\appl\\ruby\\tools\\start.rbs"), "tools\\start.rbs");
    EXPECT_EQ(product_path("/a/src/ruby/START.RBS"), "START.RBS");
    EXPECT_EQ(product_path("/a/src/start.rbs"), "/a/src/start.rbs");
    EXPECT_EQ(product_path(""), "");
}

TEST(TraceText, NotesToTheLetter) {
    EXPECT_EQ(memory_note(3 * 1024 * 1024 + 512 * 1024), " (3.5M)");
    EXPECT_EQ(time_note("12:34:56", 0.5), " (T: 12:34:56:    0.50)");
    EXPECT_EQ(time_note("12:34:56", delay_seconds), " (T: 12:34:56:    2.00)");
    EXPECT_EQ(time_note("12:34:56", 12.5),
              " (T: 12:34:56:   12.50) (DELAY:   12.5 secs: 12:34:56)");
}

TEST(TraceText, NarrowTextIsUtf8OrWindows1252) {
    EXPECT_EQ(from_code_page("plain"), "plain");
    EXPECT_EQ(from_code_page("T\xc3\xbcr \xe2\x82\xac \xf0\x9f\x8f\xa0"),
              "T\xc3\xbcr \xe2\x82\xac \xf0\x9f\x8f\xa0");
    EXPECT_EQ(from_code_page("T\xfcr \x80 \xff"), "T\xc3\xbcr \xe2\x82\xac \xc3\xbf");
    EXPECT_EQ(from_code_page("\xc3\xbc\xfc"), "\xc3\xbc\xc3\xbc") << "both in one text";
    EXPECT_EQ(from_code_page("\xe2\x82"), "\xc3\xa2\xe2\x80\x9a") << "a character cut short";
    EXPECT_EQ(from_code_page("\xc0\xaf"), "\xc3\x80\xc2\xaf") << "an over-long form";
    EXPECT_EQ(from_code_page("\xed\xa0\x80"), "\xc3\xad\xc2\xa0\xe2\x82\xac") << "a surrogate";
}

TEST(TraceText, LastLinesOfAFile) {
    const auto path = std::filesystem::temp_directory_path() /
                      ("qorvane_lines_" + std::to_string(::getpid()) + ".txt");
    const auto last = [&](const std::string& content, int count) {
        std::ofstream(path, std::ios::binary) << content;
        std::string lines;
        EXPECT_TRUE(last_lines_of_file(path.string(), count, lines));
        return lines;
    };
    EXPECT_EQ(last("a\nb\nc\n", 2), "b\nc\n");
    EXPECT_EQ(last("a\nb\nc", 2), "b\nc");
    EXPECT_EQ(last("a\n\n\n", 2), "\n\n");
    EXPECT_EQ(last("a\nb\n", 2), "a\nb\n");
    EXPECT_EQ(last("\na\n", 1), "a\n");
    EXPECT_EQ(last("a", 40), "a");
    EXPECT_EQ(last("", 40), "");
    EXPECT_EQ(last(std::string(1 << 20, 'x') + "\nend\n", 1), "end\n");
    EXPECT_LT(last(std::string(1 << 20, 'x'), 1).size(), 1u << 19) << "one endless line";
    std::filesystem::remove(path);
    std::string lines;
    EXPECT_FALSE(last_lines_of_file(path.string(), 1, lines));
}

TEST(PlatformError, BothForms) {
    EXPECT_EQ(platform_error_text(ENOENT),
              "Error = 0x00000002 (2) \n\n     No such file or directory");
    EXPECT_EQ(platform_error_text(123456),
              "Unknown Error = 0x0001E240 (123456) - No message available.");
    EXPECT_EQ(platform_error_text(-2), "Unknown Error = 0xFFFFFFFE (-2) - No message available.");
}

TEST(DialogCommand, DescribesItself) {
    EXPECT_EQ(describe_dialog_command("main", "ok", "button", "dc_test", {}),
              "    Current dialog: 'main' ('ok' button)\n    command: dc_test()");
    const std::string arguments[] = {"a b", ""};
    EXPECT_EQ(describe_dialog_command("main", "ok", "button", "dc_test", arguments),
              "    Current dialog: 'main' ('ok' button)\n    command: dc_test(\"a b\", \"\")");
}
