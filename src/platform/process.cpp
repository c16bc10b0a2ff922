// Processes on POSIX systems.
#include "platform/process.h"

#include "platform/files.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <fstream>
#include <limits>
#include <mutex>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace platform {
namespace fs = std::filesystem;

namespace {

/// Children whose end nobody waits for; they stay listed as ended until they are collected.
class ForgottenChildren {
public:
    void add(pid_t child) {
        const std::lock_guard lock(mutex_);
        children_.push_back(child);
    }
    void collect() {
        const std::lock_guard lock(mutex_);
        std::erase_if(children_, [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
    }

private:
    std::mutex mutex_;
    std::vector<pid_t> children_;
};

ForgottenChildren& forgotten_children() {
    static ForgottenChildren children;
    return children;
}

/// The system's form of an id; 0 for one that cannot be. Negative ids, and 0 itself, would mean
/// groups of processes to the calls below.
pid_t pid_of(std::int64_t process_id) {
    const bool possible = process_id > 0 && process_id <= std::numeric_limits<pid_t>::max();
    return possible ? static_cast<pid_t>(process_id) : 0;
}

bool send_signal(std::int64_t process_id, int signal) {
    const pid_t pid = pid_of(process_id);
    return pid != 0 && kill(pid, signal) == 0;
}

} // namespace

void forget_process(std::int64_t process_id) {
    if (const pid_t pid = pid_of(process_id); pid != 0) {
        forgotten_children().add(pid);
        forgotten_children().collect();
    }
}

std::optional<StartedProcess> start_process(const std::filesystem::path& program,
                                            const std::vector<std::string>& arguments,
                                            const std::filesystem::path& working_folder,
                                            std::string& error) {
    forgotten_children().collect();
    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!working_folder.empty()) {
        posix_spawn_file_actions_addchdir_np(&actions, working_folder.c_str());
    }
    // The child begins with the default reaction to signals and in a process group of its own: the
    // interrupt key reaches it only through us.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t all;
    sigfillset(&all);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK |
                                              POSIX_SPAWN_SETPGROUP);
    pid_t pid = 0;
    const int status =
        posix_spawn(&pid, program.c_str(), &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        error = system_error_text(status);
        return std::nullopt;
    }
    return StartedProcess{pid, pid};
}

namespace {

/// The kernel keeps this much of a program's name.
constexpr std::size_t kKeptName = 15;

/// A longer name than the kernel keeps: the file name of the first word of the command line, when
/// it begins with what was kept.
std::string whole_name(const fs::path& folder, const std::string& kept) {
    if (kept.size() < kKeptName) {
        return kept;
    }
    std::ifstream in(folder / "cmdline", std::ios::binary);
    std::string word;
    std::getline(in, word, '\0');
    word.erase(0, word.rfind('/') + 1);
    return word.starts_with(kept) ? word : kept;
}

} // namespace

std::optional<ProcessInfo> process_info(std::int64_t process_id) {
    const pid_t pid = pid_of(process_id);
    if (pid == 0) {
        return std::nullopt;
    }
    const fs::path folder = fs::path("/proc") / std::to_string(pid);
    std::ifstream in(folder / "stat");
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    // "id (name) state parent ...": the name may hold anything, brackets and line ends too.
    const std::size_t begin = text.find('(');
    const std::size_t end = text.rfind(')');
    constexpr std::size_t to_state = 2, to_parent = 4;
    if (begin == text.npos || end == text.npos || end < begin || end + to_parent >= text.size()) {
        return std::nullopt;
    }
    // A child that has ended but was not waited for is still listed.
    if (const char state = text[end + to_state]; state == 'Z' || state == 'X' || state == 'x') {
        return std::nullopt;
    }
    ProcessInfo info{pid, 0, whole_name(folder, text.substr(begin + 1, end - begin - 1))};
    std::from_chars(text.data() + end + to_parent, text.data() + text.size(), info.parent_id);
    return info;
}

std::vector<ProcessInfo> process_snapshot() {
    std::vector<ProcessInfo> all;
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::int64_t id = 0;
        const auto read = std::from_chars(name.data(), name.data() + name.size(), id);
        if (read.ec != std::errc() || read.ptr != name.data() + name.size()) {
            continue;
        }
        if (auto info = process_info(id)) {
            all.push_back(std::move(*info));
        }
    }
    std::sort(all.begin(), all.end(), [](const ProcessInfo& a, const ProcessInfo& b) {
        return a.process_id < b.process_id;
    });
    return all;
}

bool is_process_running(std::int64_t process_id) { return process_info(process_id).has_value(); }

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPollInterval = std::chrono::milliseconds(5);

int status_of(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Looks once. `is_child` tells whether the process is one that we started and may wait for.
WaitOutcome look_for_end(pid_t pid, bool& is_child) {
    int status = 0;
    const pid_t found = waitpid(pid, &status, WNOHANG);
    is_child = found >= 0 || errno == EINTR;
    if (found == pid) {
        return {true, status_of(status)};
    }
    return {!is_child && !is_process_running(pid), std::nullopt};
}

} // namespace

std::optional<int> wait_process(std::int64_t process_id, double seconds) {
    const pid_t pid = pid_of(process_id);
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    for (bool is_child = pid != 0; is_child;) {
        const WaitOutcome outcome = look_for_end(pid, is_child);
        if (outcome.ended || Clock::now() >= end) {
            return outcome.status;
        }
        std::this_thread::sleep_for(kPollInterval);
    }
    return std::nullopt;
}

WaitOutcome wait_in_slices(std::int64_t process_id, double slice_seconds,
                           const std::function<bool(double seconds)>& go_on) {
    const pid_t pid = pid_of(process_id);
    if (pid == 0) {
        return {true, std::nullopt};
    }
    const auto start = Clock::now();
    const auto slice = std::chrono::duration<double>(std::max(slice_seconds, 0.001));
    for (int slices = 1;; ++slices) {
        while (Clock::now() < start + slices * slice) {
            bool is_child = false;
            const WaitOutcome outcome = look_for_end(pid, is_child);
            if (outcome.ended) {
                return outcome;
            }
            std::this_thread::sleep_for(std::min<Clock::duration>(
                kPollInterval, std::chrono::duration_cast<Clock::duration>(slice)));
        }
        const std::chrono::duration<double> passed = Clock::now() - start;
        if (go_on && !go_on(passed.count())) {
            return {};
        }
    }
}

bool close_process(std::int64_t process_id) { return send_signal(process_id, SIGTERM); }

bool interrupt_process(std::int64_t process_id) { return send_signal(process_id, SIGINT); }

std::int64_t own_process_id() { return getpid(); }

namespace {

bool is_program(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && access(path.c_str(), X_OK) == 0;
}

} // namespace

fs::path find_on_path(const std::string& name) {
    if (name.find('/') != name.npos) {
        return is_program(name) ? fs::path(name) : fs::path();
    }
    const std::string all = environment("PATH");
    for (std::size_t begin = 0; !name.empty() && begin <= all.size();) {
        const std::size_t end = std::min(all.find(':', begin), all.size());
        const fs::path folder = all.substr(begin, end - begin);
        // An empty or relative entry would search wherever the program happens to stand.
        if (folder.is_absolute() && is_program(folder / name)) {
            return folder / name;
        }
        begin = end + 1;
    }
    return {};
}

fs::path desktop_opener() { return find_on_path("xdg-open"); }

} // namespace platform
