// Prompts and what answers them, selection sets, and the small facts of the editor.
#include "host/ed/document.h"
#include "host/ed/ed.h"
#include "host/ed/point_text.h"
#include "host/ed/state.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace ed {

std::optional<std::string> next_answer(const std::string& prompt) {
    if (acedUsrBrk()) {
        return std::nullopt;
    }
    if (auto word = acedTakePendingInput()) {
        return word;
    }
    AcEdInputPort* port = state().port;
    return port != nullptr ? port->readLine(prompt) : std::nullopt;
}

bool is_cancel(std::string_view answer) {
    const std::string_view word = trimmed(answer);
    return word == "\x1b" || word == "\x03" || word == "^C" || word == "^c";
}

} // namespace ed

namespace {

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

/// A keyword, the shortest text that means it, and how much of its name does.
struct KeywordForm {
    std::string_view name, shortest;
    std::size_t least = 0;
};

KeywordForm formOf(std::string_view word) {
    if (const std::size_t comma = word.find(','); comma != std::string_view::npos) {
        const std::string_view name = word.substr(0, comma);
        const std::string_view shortest = word.substr(comma + 1);
        const bool begins = ed::upper(name).starts_with(ed::upper(shortest));
        return {name, shortest, begins ? shortest.size() : name.size()};
    }
    std::size_t begin = 0;
    while (begin < word.size() && !isCapital(word[begin])) {
        ++begin;
    }
    std::size_t end = begin;
    while (end < word.size() && isCapital(word[end])) {
        ++end;
    }
    return {word, word.substr(begin, end - begin), end};
}

/// An answer (in capitals) means a keyword when it is the shortest text for it, "X" for "eXit", or
/// a beginning of the name that holds that text. A keyword without capitals is typed in full.
bool meansKeyword(const std::string& answer, std::string_view word) {
    const KeywordForm form = formOf(word);
    return (!form.shortest.empty() && answer == ed::upper(form.shortest)) ||
           (answer.size() >= form.least &&
            ed::upper(form.name).compare(0, answer.size(), answer) == 0);
}

/// The words of a list, and the global names behind them if it has any.
struct KeywordList {
    explicit KeywordList(std::string_view keywords) {
        bool marked = false;
        for (std::size_t at = 0; at < keywords.size();) {
            const std::size_t end = std::min(keywords.find(' ', at), keywords.size());
            std::string_view word = keywords.substr(at, end - at);
            if (!word.empty() && word.front() == '_') {
                marked = true;
                word.remove_prefix(1);
            }
            if (!word.empty()) {
                (marked ? global : local).push_back(word);
            }
            at = end + 1;
        }
    }
    std::vector<std::string_view> local, global;
};

} // namespace

namespace ed {

std::optional<Keyword> match_keyword(std::string_view keywords, std::string_view answer) {
    const KeywordList list(keywords);
    const bool by_global = !answer.empty() && answer.front() == '_';
    const std::string key = upper(by_global ? answer.substr(1) : answer);
    const auto& words = by_global && !list.global.empty() ? list.global : list.local;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!key.empty() && meansKeyword(key, words[i])) {
            const auto& named = i < list.global.size() ? list.global : words;
            return Keyword{i, std::string(formOf(named[i]).name)};
        }
    }
    return std::nullopt;
}

std::string keyword_names(std::string_view keywords) {
    std::string names;
    for (const std::string_view word : KeywordList(keywords).local) {
        names += (names.empty() ? "" : " ") + std::string(formOf(word).name);
    }
    return names;
}

} // namespace ed

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
    const auto answer = ed::next_answer(prompt);
    if (!answer) {
        return RTCAN;
    }
    result = firstCharacters(*answer, max_length);
    return result.empty() ? RTNONE : RTNORM;
}

int acedGetInt(const std::string& prompt, int& result) {
    while (const auto answer = ed::next_answer(prompt)) {
        std::string_view text = ed::trimmed(*answer);
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
    while (const auto answer = ed::next_answer(prompt)) {
        const std::string_view text = ed::trimmed(*answer);
        if (text.empty()) {
            return RTNONE;
        }
        if (auto keyword = ed::match_keyword(keywords, text)) {
            result = std::move(keyword->name);
            return RTNORM;
        }
        acutPrintf("\nInvalid option keyword.");
    }
    return RTCAN;
}

void acedGetCurrentUCS(AcGeMatrix3d& matrix) { matrix = ed::state().ucs; }

Acad::ErrorStatus acedSetCurrentUCS(const AcGeMatrix3d& matrix) {
    for (const auto& row : matrix.entry) {
        for (const double value : row) {
            if (!std::isfinite(value)) {
                return Acad::eInvalidInput;
            }
        }
    }
    if (matrix.isSingular()) {
        return Acad::eInvalidInput;
    }
    ed::state().ucs = matrix;
    return Acad::eOk;
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
