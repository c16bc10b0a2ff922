// Prompts and what answers them, selection sets, and the small facts of the editor.
#include "host/ed/document.h"
#include "host/ed/ed.h"
#include "host/ed/state.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

/// The next answer: a pending word, else a line from the port; none at the end of input or when
/// the user has asked to stop.
std::optional<std::string> nextAnswer(const std::string& prompt) {
    if (acedUsrBrk()) {
        return std::nullopt;
    }
    if (auto word = acedTakePendingInput()) {
        return word;
    }
    AcEdInputPort* port = ed::state().port;
    return port != nullptr ? port->readLine(prompt) : std::nullopt;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The first `count` characters of UTF-8 text.
std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    while (end < text.size()) {
        const bool starts = (static_cast<unsigned char>(text[end]) & 0xC0U) != 0x80U;
        if (starts && count-- == 0) {
            break;
        }
        ++end;
    }
    return text.substr(0, end);
}

bool isCapital(char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }

/// An answer (in capitals) means a keyword when it is the keyword's capitals, "X" for "eXit", or a
/// beginning of it that reaches their end. A keyword without capitals is typed in full.
bool meansKeyword(const std::string& answer, std::string_view keyword) {
    std::size_t begin = 0;
    while (begin < keyword.size() && !isCapital(keyword[begin])) {
        ++begin;
    }
    std::size_t end = begin;
    while (end < keyword.size() && isCapital(keyword[end])) {
        ++end;
    }
    const std::string whole = ed::upper(keyword);
    return (begin < end && answer == keyword.substr(begin, end - begin)) ||
           (answer.size() >= end && whole.compare(0, answer.size(), answer) == 0);
}

/// The keyword that an answer means, if any. Words behind one that begins with an underscore are
/// the global names of the words before it; they are the result.
std::optional<std::string> matchKeyword(const std::string& keywords, std::string_view answer) {
    std::vector<std::string> local;
    std::vector<std::string> global;
    for (std::size_t at = 0; at < keywords.size();) {
        const std::size_t end = std::min(keywords.find(' ', at), keywords.size());
        if (end > at) {
            std::string word = keywords.substr(at, end - at);
            const bool marked = word.front() == '_';
            (marked || !global.empty() ? global : local).push_back(word.substr(marked ? 1 : 0));
        }
        at = end + 1;
    }
    const bool by_global = !answer.empty() && answer.front() == '_';
    const std::string key = ed::upper(by_global ? answer.substr(1) : answer);
    const auto& words = by_global && !global.empty() ? global : local;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!key.empty() && meansKeyword(key, words[i])) {
            return i < global.size() ? global[i] : words[i];
        }
    }
    return std::nullopt;
}

} // namespace

AcEdInputPort* acedSetInputPort(AcEdInputPort* port) {
    return std::exchange(ed::state().port, port);
}

void acutPrintf(const std::string& text) {
    if (ed::state().port != nullptr) {
        ed::state().port->write(text);
    }
}

void acedAlert(const std::string& text) {
    if (ed::state().port != nullptr) {
        ed::state().port->alert(text);
    }
}

void acedPushInput(std::vector<std::string> words) {
    for (std::string& word : words) {
        ed::state().pending.push_back(std::move(word));
    }
}

std::optional<std::string> acedTakePendingInput() {
    auto& pending = ed::state().pending;
    if (pending.empty()) {
        return std::nullopt;
    }
    std::string word = std::move(pending.front());
    pending.pop_front();
    return word;
}

int acedGetString(const std::string& prompt, std::string& result, std::size_t max_length) {
    const auto answer = nextAnswer(prompt);
    if (!answer) {
        return RTCAN;
    }
    result = firstCharacters(*answer, max_length);
    return result.empty() ? RTNONE : RTNORM;
}

int acedGetInt(const std::string& prompt, int& result) {
    while (const auto answer = nextAnswer(prompt)) {
        std::string_view text = trimmed(*answer);
        if (text.empty()) {
            return RTNONE;
        }
        if (text.size() > 1 && text.front() == '+' && text[1] != '-') {
            text.remove_prefix(1);
        }
        int value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error == std::errc() && end == text.data() + text.size()) {
            result = value;
            return RTNORM;
        }
        acutPrintf("\nRequires an integer value.");
    }
    return RTCAN;
}

int acedGetKword(const std::string& keywords, const std::string& prompt, std::string& result) {
    while (const auto answer = nextAnswer(prompt)) {
        const std::string_view text = trimmed(*answer);
        if (text.empty()) {
            return RTNONE;
        }
        if (auto keyword = matchKeyword(keywords, text)) {
            result = std::move(*keyword);
            return RTNORM;
        }
        acutPrintf("\nInvalid option keyword.");
    }
    return RTCAN;
}

void acedPostCommandPrompt() { acutPrintf("\nCommand: "); }

AcDbObjectId AcEdSelectionSet::at(std::size_t index) const {
    return index < ids_.size() ? ids_[index] : AcDbObjectId::kNull;
}

int acedSSGet(const std::string& mode, AcEdSelectionSet& set) {
    set.ids().clear();
    AcDbDatabase* database = acdbCurDwg();
    if (ed::upper(mode) != "_A" || database == nullptr) {
        return RTERROR;
    }
    const AcDbObjectPointer<AcDbBlockTableRecord> space(database->modelSpaceId());
    if (space) {
        for (const AcDbObjectId id : space->entities()) {
            if (id.isValid() && !id.isErased()) {
                set.ids().push_back(id);
            }
        }
    }
    return set.length() > 0 ? RTNORM : RTERROR;
}

AcDbObjectId acedActiveViewportId() {
    const AcDbDatabase* database = acdbCurDwg();
    return database != nullptr ? database->activeViewportId() : AcDbObjectId::kNull;
}

std::uintptr_t adsw_acadMainWnd() { return ed::state().main_window; }
std::string acedMainWindowTitle() { return ed::state().main_window_title; }
void acedSetMainWindow(std::uintptr_t window, std::string title) {
    ed::state().main_window = window;
    ed::state().main_window_title = window != 0 ? std::move(title) : std::string();
}

bool acedUsrBrk() { return ed::state().break_asked.load(std::memory_order_relaxed); }
void acedSetUsrBrk(bool set) { ed::state().break_asked.store(set, std::memory_order_relaxed); }
