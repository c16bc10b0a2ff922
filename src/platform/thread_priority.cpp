// Linux keeps a nice value for each thread, not for the process as POSIX has it.
#include "platform/thread_priority.h"

#include <sys/resource.h>
#include <unistd.h>

namespace platform {

namespace {

/// A tenth of the weight of an ordinary thread.
constexpr int background = 10;

id_t this_thread() { return static_cast<id_t>(gettid()); }

} // namespace

int giving_way() noexcept { return getpriority(PRIO_PROCESS, this_thread()); }

void give_way() noexcept {
    if (giving_way() < background) {
        setpriority(PRIO_PROCESS, this_thread(), background);
    }
}

} // namespace platform
