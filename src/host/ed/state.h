// What the command line remembers while the program runs. Only the sources of ed/ see it;
// acedReset puts it back to its start.
#pragma once

#include "host/ed/ed.h"

#include <atomic>
#include <string_view>

namespace ed {

struct State {
    AcEdInputPort* port = nullptr; ///< null: no input, output dropped
    std::deque<std::string> pending;
    std::vector<AcEditorReactor*> reactors;
    std::uintptr_t main_window = 0;
    std::string main_window_title;
    std::atomic<bool> break_asked{false}; ///< set from signal handlers too
};
State& state();

/// ASCII letters in capitals.
std::string upper(std::string_view text);

} // namespace ed
