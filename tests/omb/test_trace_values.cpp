// The switches out of the settings store, and the log file that goes with them.
#include "omb/globals/trace_values.h"
#include "tests/omb/fixture.h"

namespace {

class TraceValues : public StoreTest {
protected:
    void SetUp() override {
        StoreTest::SetUp();
        ::setenv("QORVANE_HOME", path("home").c_str(), 1);
    }
    void TearDown() override {
        globals.clear();
        close_debug_file();
        trace_settings().use_debug_file = false;
        dc_set_trace_values(); // forgets a log file of its own
        ::unsetenv("QORVANE_HOME");
        ::unsetenv("QORVANE_LOG_FILE");
        StoreTest::TearDown();
    }
    std::string own_log() const { return join_path(get_state_folder(), "trace.log"); }
};

} // namespace

TEST_F(TraceValues, MissingSettingsAreOffAndNotMade) {
    trace_settings().show_trace_time = trace_settings().show_traces_in_ruby = true;
    dc_set_trace_values();
    EXPECT_EQ(globals.size(), 0u);
    EXPECT_FALSE(trace_settings().show_trace_time || trace_settings().show_traces_in_ruby ||
                 trace_settings().show_traces_in_release || trace_settings().use_debug_file);
    EXPECT_TRUE(lines.empty()) << "nothing is reported";
    EXPECT_FALSE(std::filesystem::exists(path("home")));
}

TEST_F(TraceValues, EachSettingHasItsSwitch) {
    const std::pair<const char*, bool trace_switches::*> rows[] = {
        {"bcomm_use_debug_file", &trace_switches::use_debug_file},
        {"bcomm_show_trace_time", &trace_switches::show_trace_time},
        {"bcomm_show_trace_memory", &trace_switches::show_trace_memory},
        {"bshow_traces_in_ruby", &trace_switches::show_traces_in_ruby},
        {"bcomm_show_traces_in_release", &trace_switches::show_traces_in_release},
    };
    for (const auto& [name, member] : rows) {
        globals.clear();
        set_global_bool(name, true);
        dc_set_trace_values();
        for (const auto& [other, other_member] : rows) {
            EXPECT_EQ(trace_settings().*other_member, member == other_member) << name << other;
        }
    }
}

TEST_F(TraceValues, OwnLogFileIsOpenedAndClosed) {
    trace_settings().error_list = true;
    set_global_bool("bcomm_use_debug_file", true);
    dc_set_trace_values();
    EXPECT_EQ(debug_file_name(), own_log());
    OMB_TRACE(0, "logged");
    dc_set_trace_values();
    OMB_TRACE(0, "logged too");
    set_global_bool("bcomm_use_debug_file", false);
    dc_set_trace_values();
    EXPECT_FALSE(debug_file_is_open());
    EXPECT_FALSE(trace_settings().use_debug_file);
    EXPECT_TRUE(trace_settings().error_list) << "no setting of the store";
    std::ifstream in(own_log());
    const std::string log{std::istreambuf_iterator<char>(in), {}};
    EXPECT_NE(log.find("logged\n"), log.npos);
    EXPECT_TRUE(log.ends_with("logged too\n"));
}

TEST_F(TraceValues, ALogFileInUseStaysInUse) {
    ::setenv("QORVANE_LOG_FILE", path("asked.log").c_str(), 1);
    start_trace_from_environment();
    dc_set_trace_values();
    EXPECT_TRUE(trace_settings().use_debug_file) << "the environment asked for it";
    EXPECT_TRUE(trace_settings().show_trace_time);
    set_global_bool("bcomm_use_debug_file", true);
    dc_set_trace_values();
    set_global_bool("bcomm_use_debug_file", false);
    dc_set_trace_values();
    EXPECT_EQ(debug_file_name(), path("asked.log"));
    EXPECT_TRUE(debug_file_is_open());
    EXPECT_FALSE(std::filesystem::exists(own_log()));
    set_error_file("", "");
}

TEST_F(TraceValues, ALogFileThatCannotBeOpenedLeavesTheSwitchOff) {
    put("home", "a file where the folder should be");
    set_global_bool("bcomm_use_debug_file", true);
    dc_set_trace_values();
    EXPECT_FALSE(trace_settings().use_debug_file);
}
