#include "apps/progress.h"

#include "platform/files.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace apps;

namespace {

TEST(Progress, LinesAreReadAsTheyCome) {
    ProgressEvent event;
    ASSERT_TRUE(parse_progress_line(
        R"({"event":"progress","phase":"render","done":0.25,"passes":20,"elapsed_s":3.5,"eta_s":9})",
        event));
    EXPECT_EQ(event.event, "progress");
    EXPECT_DOUBLE_EQ(event.done, 0.25);
    EXPECT_EQ(event.passes, 20);
    EXPECT_DOUBLE_EQ(event.eta_seconds, 9);
    ASSERT_TRUE(
        parse_progress_line(R"({"event":"end","exit_code":4,"outputs":["a.png",7]})", event));
    EXPECT_EQ(event.exit_code, 4);
    EXPECT_EQ(event.outputs, std::vector<std::string>{"a.png"});
    for (const char* bad : {"", "{", "[]", "{\"event\":3}", "rendering 10 %"}) {
        EXPECT_FALSE(parse_progress_line(bad, event)) << bad;
    }
}

TEST(Progress, TheChannelCutsLinesAndIsRemoved) {
    std::string path;
    {
        ProgressChannel channel;
        std::string error;
        ASSERT_TRUE(channel.open(error)) << error;
        path = platform::environment("QORVANE_PROGRESS");
        std::ofstream writer(path);
        writer << "one\ntw" << std::flush;
        std::vector<std::string> lines;
        const auto take = [&](const std::string& line) { lines.push_back(line); };
        channel.poll(1, take);
        EXPECT_EQ(lines, std::vector<std::string>{"one"});
        writer << "o\n" << std::flush;
        channel.poll(1, take);
        EXPECT_EQ(lines, (std::vector<std::string>{"one", "two"}));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(platform::environment("QORVANE_PROGRESS"), "");
}

TEST(Progress, ThePrinterCountsWarningsAndKeepsTheOutcome) {
    ProgressPrinter printer("none", true);
    printer.show(R"({"event":"warning","code":"no-faces","message":"nothing to see"})");
    printer.show(R"({"event":"warning","code":"x","message":"again"})");
    printer.show("no JSON at all");
    EXPECT_EQ(printer.exit_code(), -1);
    printer.show(R"({"event":"end","exit_code":0,"outputs":["/tmp/a.png"]})");
    EXPECT_EQ(printer.warnings(), 2);
    EXPECT_EQ(printer.exit_code(), 0);
    EXPECT_EQ(printer.outputs(), std::vector<std::string>{"/tmp/a.png"});
}

} // namespace
