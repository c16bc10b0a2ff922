// What the command line remembers while the program runs. Only the sources of ed/ see it;
// acedReset puts it back to its start.
#pragma once

#include "host/ed/ed.h"
#include "host/ge/ge.h"

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
    AcGeMatrix3d ucs;                     ///< the user's coordinate system to the world
    AcGePoint3d last_point;               ///< what "@" counts from, in the world
};
State& state();

/// The next answer: a pending word, else a line from the port; none at the end of input or when
/// the user has asked to stop.
std::optional<std::string> next_answer(const std::string& prompt);
/// Escape, and the ways in which a script writes the interrupt key: "^C", the control character.
bool is_cancel(std::string_view answer);

struct Keyword {
    std::size_t index = 0; ///< in the list, from 0
    std::string name;      ///< the global one where the list has them
};
/// The keyword that an answer means, if any. Keywords are parted by blanks. Capitals abbreviate
/// one ("eXit"), or the text behind its comma does ("XAXIS,X"). Words behind one that begins with
/// an underscore are the global names of the words before it.
std::optional<Keyword> match_keyword(std::string_view keywords, std::string_view answer);
/// The names in a list without their abbreviations, parted by blanks.
std::string keyword_names(std::string_view keywords);

/// ASCII letters in capitals.
std::string upper(std::string_view text);

} // namespace ed
