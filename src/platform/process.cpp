// Processes on POSIX systems.
#include "platform/process.h"

#include "platform/files.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace platform {

std::optional<StartedProcess> start_process(const std::filesystem::path& program,
                                            const std::vector<std::string>& arguments,
                                            const std::filesystem::path& working_folder,
                                            std::string& error) {
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

bool is_process_running(std::int64_t process_id) {
    if (process_id <= 0 || kill(static_cast<pid_t>(process_id), 0) != 0) {
        return false;
    }
    // A child that has ended but was not waited for is listed as a zombie.
    std::ifstream in("/proc/" + std::to_string(process_id) + "/stat");
    std::string line;
    std::getline(in, line);
    const std::size_t end = line.rfind(')');
    return end == std::string::npos || end + 2 >= line.size() || line[end + 2] != 'Z';
}

std::optional<int> wait_process(std::int64_t process_id, double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    for (;;) {
        int status = 0;
        const pid_t found = waitpid(static_cast<pid_t>(process_id), &status, WNOHANG);
        if (found == static_cast<pid_t>(process_id)) {
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        if (found < 0 && errno != EINTR) {
            return std::nullopt;
        }
        if (Clock::now() >= end) {
            return std::nullopt;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

bool close_process(std::int64_t process_id) {
    return process_id > 0 && kill(static_cast<pid_t>(process_id), SIGTERM) == 0;
}

bool interrupt_process(std::int64_t process_id) {
    return process_id > 0 && kill(static_cast<pid_t>(process_id), SIGINT) == 0;
}

std::int64_t own_process_id() { return getpid(); }

} // namespace platform
