// Trials of the profile on disk that need several processes, and that may run for longer:
//   profile_trials writers [PROGRAMS] [VALUES]   programs set different settings at the same time
//   profile_trials kills [COUNT]                 a writer is killed at a random moment
// Both end with 0, or tell what was lost and end with 1.
#include "omb/base/file_profile.h"
#include "omb/globals/globals.h"
#include "platform/process.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include <fmt/format.h>

namespace fs = std::filesystem;

namespace {

constexpr int names_of_kills = 50;

struct trial_folder {
    fs::path path =
        fs::temp_directory_path() / fmt::format("qorvane_profile_trials_{}", ::getpid());
    trial_folder() { fs::create_directories(path); }
    ~trial_folder() { fs::remove_all(path); }
    std::string profile() const { return (path / "profile.ini").string(); }
    std::string acknowledged() const { return (path / "acknowledged").string(); }
};

std::string value_name(int program, int number) {
    return fmt::format("iks_trial_{}_{}", program, number);
}

int fail(const std::string& text) {
    fmt::print(stderr, "{}\n", text);
    return 1;
}

/// Child: sets its own values, each with a write of its own.
int set_values(const std::string& path, int program, int count) {
    set_profile(std::make_unique<cl_file_profile>(
        path, [](const std::string& text) { fmt::print(stderr, "{}\n", text); }));
    for (int i = 0; i < count; ++i) {
        set_global_int(value_name(program, i), 1000 * program + i, SAVE_PROFILE);
    }
    set_profile(nullptr);
    return 0;
}

/// Child: counts for ever. Value i goes to name i modulo 50; what was stored is acknowledged.
int count_for_ever(const std::string& path, const std::string& acknowledged, int first) {
    std::FILE* const out = std::fopen(acknowledged.c_str(), "ab");
    set_profile(std::make_unique<cl_file_profile>(path));
    for (int i = first;; ++i) {
        set_global_int(value_name(0, i % names_of_kills), i, SAVE_PROFILE);
        std::fwrite(&i, sizeof(i), 1, out);
        std::fflush(out);
    }
}

std::int64_t start(const std::vector<std::string>& arguments) {
    std::string error;
    const auto child = platform::start_process("/proc/self/exe", arguments, {}, error);
    return child ? child->process_id : 0;
}

int run_writers(int programs, int values) {
    const trial_folder folder;
    std::vector<std::int64_t> children;
    for (int program = 1; program <= programs; ++program) {
        children.push_back(
            start({"set", folder.profile(), std::to_string(program), std::to_string(values)}));
    }
    for (const std::int64_t child : children) {
        if (platform::wait_process(child, 600) != 0) {
            return fail("a writer failed");
        }
    }
    const cl_file_profile result(folder.profile());
    int lost = 0;
    for (int program = 1; program <= programs; ++program) {
        for (int i = 0; i < values; ++i) {
            lost += result.read_int("Globals", value_name(program, i), -1) != 1000 * program + i;
        }
    }
    return lost == 0 ? 0 : fail(fmt::format("{} of {} values lost", lost, programs * values));
}

int last_acknowledged(const std::string& path) {
    int last = -1;
    if (std::FILE* const in = std::fopen(path.c_str(), "rb")) {
        while (std::fread(&last, sizeof(last), 1, in) == 1) {
        }
        std::fclose(in);
    }
    return last;
}

/// The next number, when the file holds just what stood there after `known` or one more was
/// stored; negative, after telling, when it does not.
int check_counted(const std::string& path, int known) {
    bool trouble = false;
    const cl_file_profile result(path, [&](const std::string&) { trouble = true; });
    int latest = -1;
    for (int k = 0; k < names_of_kills; ++k) {
        latest = std::max(latest, result.read_int("Globals", value_name(0, k), -1));
    }
    if (trouble || latest < known || latest > known + 1) {
        fmt::print(stderr, "the file holds {} after {} was stored\n", latest, known);
        return -1;
    }
    for (int k = 0; k < names_of_kills; ++k) {
        const int back = (latest - k) % names_of_kills;
        const int expected = latest - k < 0 ? -1 : latest - back;
        if (result.read_int("Globals", value_name(0, k), -1) != expected) {
            fmt::print(stderr, "name {} does not hold {}\n", k, expected);
            return -1;
        }
    }
    return latest + 1;
}

int run_kills(int count) {
    const trial_folder folder;
    std::mt19937 random(1);
    std::uniform_int_distribution<int> microseconds(0, 40000);
    int next = 0;
    for (int i = 0; i < count; ++i) {
        const std::int64_t child =
            start({"count", folder.profile(), folder.acknowledged(), std::to_string(next)});
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        kill(static_cast<pid_t>(child), SIGKILL);
        platform::wait_process(child, 10);
        // A value may be stored and its writer killed before it could say so.
        const int known = std::max(next - 1, last_acknowledged(folder.acknowledged()));
        const int after = check_counted(folder.profile(), known);
        if (after < 0) {
            return fail(fmt::format("after kill {}", i + 1));
        }
        next = after;
    }
    fmt::print("{} kills, {} values stored\n", count, next);
    // Kills that all come before the first write would prove nothing.
    return next > count / 4 ? 0 : fail("the writers hardly wrote");
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    const auto number = [&](std::size_t at, int otherwise) {
        return at < words.size() ? std::atoi(words[at].c_str()) : otherwise;
    };
    const std::string what = words.empty() ? "" : words[0];
    if (what == "writers") {
        return run_writers(number(1, 2), number(2, 1000));
    }
    if (what == "kills") {
        return run_kills(number(1, 200));
    }
    if (what == "set" && words.size() == 4) {
        return set_values(words[1], number(2, 1), number(3, 0));
    }
    if (what == "count" && words.size() == 4) {
        return count_for_ever(words[1], words[2], number(3, 0));
    }
    return fail("usage: profile_trials writers [PROGRAMS] [VALUES] | kills [COUNT]");
}
