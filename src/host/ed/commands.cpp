// Commands: the stack of all modules, running one line, and who follows it.
#include "host/ed/ed.h"
#include "host/ed/state.h"

#include "host/ed/document.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>

namespace ed {

State& state() {
    static State only;
    return only;
}

std::string upper(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return result;
}

} // namespace ed

namespace {

std::string commandKey(std::string_view name) {
    while (!name.empty() && (name.front() == '_' || name.front() == '\'')) {
        name.remove_prefix(1);
    }
    return ed::upper(name);
}

/// Words of a command line: blanks part them, double quotes keep blanks in a word.
std::vector<std::string> splitWords(const std::string& line) {
    std::vector<std::string> words;
    std::string word;
    bool open = false;
    bool quoted = false;
    for (const char c : line) {
        if (c == '"') {
            quoted = !quoted;
            open = true;
        } else if (!quoted && (c == ' ' || c == '\t' || c == '\r' || c == '\n')) {
            if (open) {
                words.push_back(std::move(word));
                word.clear();
                open = false;
            }
        } else {
            word += c;
            open = true;
        }
    }
    if (open) {
        words.push_back(std::move(word));
    }
    return words;
}

template <class Call>
void tellReactors(const Call& call) {
    for (AcEditorReactor* reactor : std::vector(ed::state().reactors)) {
        call(*reactor);
    }
}

/// Gives the words to the command for as long as it runs, then restores those of its caller.
class PendingWords {
public:
    explicit PendingWords(std::deque<std::string> words)
      : outer_(std::move(words)) {
        std::swap(outer_, ed::state().pending);
    }
    ~PendingWords() { std::swap(outer_, ed::state().pending); }
    PendingWords(const PendingWords&) = delete;
    PendingWords& operator=(const PendingWords&) = delete;

private:
    std::deque<std::string> outer_;
};

/// Runs the function; none when it came back, otherwise what went wrong in words.
std::optional<std::string> runGuarded(AcRxFunctionPtr function) {
    try {
        function();
        return std::nullopt;
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return "an exception of an unknown kind";
    }
}

} // namespace

bool AcEdCommandStack::addCommand(const std::string& group, const std::string& global_name,
                                  const std::string& local_name, int flags,
                                  AcRxFunctionPtr function) {
    const std::string key = commandKey(global_name);
    if (key.empty() || function == nullptr) {
        return false;
    }
    const bool known =
        std::any_of(commands_.begin(), commands_.end(), [&](const AcEdCommand& command) {
            return ed::upper(command.group) == ed::upper(group) &&
                   commandKey(command.global_name) == key;
        });
    if (known) {
        return false;
    }
    commands_.push_back({group, global_name, local_name, flags, function});
    return true;
}

bool AcEdCommandStack::removeGroup(const std::string& group) {
    return std::erase_if(commands_, [&](const AcEdCommand& command) {
               return ed::upper(command.group) == ed::upper(group);
           }) > 0;
}

const AcEdCommand* AcEdCommandStack::lookup(const std::string& name) const {
    const std::string key = commandKey(name);
    const auto found =
        std::find_if(commands_.rbegin(), commands_.rend(), [&](const AcEdCommand& command) {
            return commandKey(command.global_name) == key || commandKey(command.local_name) == key;
        });
    return key.empty() || found == commands_.rend() ? nullptr : &*found;
}

AcEdCommandStack& acedRegCmds() {
    static AcEdCommandStack stack;
    return stack;
}

bool acedCommand(const std::string& line) {
    std::vector<std::string> words = splitWords(line);
    if (words.empty()) {
        return false;
    }
    const AcEdCommand* found = acedRegCmds().lookup(words.front());
    if (found == nullptr) {
        acutPrintf(fmt::format("\nUnknown command \"{}\".", ed::upper(words.front())));
        return false;
    }
    // A copy: the command may load or unload modules, and with them commands.
    const AcEdCommand command = *found;
    const PendingWords pending(std::deque<std::string>(words.begin() + 1, words.end()));
    tellReactors([&](AcEditorReactor& r) { r.commandWillStart(command.global_name); });
    if (const auto failure = runGuarded(command.function)) {
        acutPrintf(fmt::format("\nCommand {} failed: {}", command.global_name, *failure));
        tellReactors([&](AcEditorReactor& r) { r.commandFailed(command.global_name); });
    } else {
        tellReactors([&](AcEditorReactor& r) { r.commandEnded(command.global_name); });
    }
    return true;
}

void acedAddReactor(AcEditorReactor* reactor) { ed::state().reactors.push_back(reactor); }
void acedRemoveReactor(AcEditorReactor* reactor) { std::erase(ed::state().reactors, reactor); }

Acad::ErrorStatus acedSaveAs(AcDbDatabase& database, const std::filesystem::path& path,
                             std::string& error) {
    tellReactors([&](AcEditorReactor& r) { r.beginSave(&database, path.string()); });
    const Acad::ErrorStatus status = database.dxfOut(path, error);
    if (status == Acad::eOk) {
        database.setFilename(path.string());
        tellReactors([&](AcEditorReactor& r) { r.saveComplete(&database, path.string()); });
    }
    return status;
}

void acedReset() {
    ed::State& state = ed::state();
    state.port = nullptr;
    state.pending.clear();
    state.reactors.clear();
    state.break_asked = false;
    state.ucs = {};
    state.last_point = {};
    acedSetMainWindow(0, {});
    acedRegCmds() = AcEdCommandStack();
    acDocManager()->closeAll();
}
