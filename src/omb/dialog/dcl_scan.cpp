#include "omb/dialog/dcl_scan.h"

#include "omb/dialog/dcl_keywords.h"
#include "omb/dialog/dialog_command.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fmt/format.h>
#include <utility>

namespace {

constexpr int no_token = -1;

enum character_class : std::uint8_t {
    other_class,
    blank_class,
    feed_class,
    letter_class,
    digit_class,
    number_class ///< point and minus
};

constexpr auto classes = [] {
    std::array<character_class, 256> table{};
    for (std::size_t letter = 0; letter < 26; ++letter) {
        table['a' + letter] = letter_class;
        table['A' + letter] = letter_class;
    }
    for (int c = '0'; c <= '9'; ++c) {
        table[static_cast<std::size_t>(c)] = digit_class;
    }
    table['_'] = letter_class;
    table[' '] = table['\t'] = blank_class;
    table['\n'] = feed_class;
    table['.'] = table['-'] = number_class;
    return table;
}();

character_class class_of(char c) { return classes[static_cast<unsigned char>(c)]; }
bool is_blank(char c) { return class_of(c) == blank_class; }
bool is_digit(char c) { return class_of(c) == digit_class; }
bool is_letter(char c) { return class_of(c) == letter_class; }
bool is_word(char c) { return is_letter(c) || is_digit(c); }

template <typename Test>
const char* skip(const char* from, const char* end, Test test) {
    return std::find_if_not(from, end, test);
}

std::string_view between(const char* from, const char* to) {
    return {from, static_cast<std::size_t>(to - from)};
}

const char* find(const char* from, const char* end, char wanted) {
    const auto size = static_cast<std::size_t>(end - from);
    const void* found = size == 0 ? nullptr : std::memchr(from, wanted, size);
    return found != nullptr ? static_cast<const char*>(found) : end;
}

/// Length and code of the UTF-8 character at the front; a byte that is none stands for itself.
std::pair<int, int> decode(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const int first = byte(0);
    const int length = first < 0xC2   ? 1
                       : first < 0xE0 ? 2
                       : first < 0xF0 ? 3
                       : first < 0xF5 ? 4
                                      : 1;
    if (length == 1 || text.size() < static_cast<std::size_t>(length)) {
        return {1, first};
    }
    int code = first & (0x7F >> length);
    for (int i = 1; i < length; ++i) {
        const int next = byte(static_cast<std::size_t>(i));
        if ((next & 0xC0) != 0x80) {
            return {1, first};
        }
        code = code << 6 | (next & 0x3F);
    }
    return {length, code};
}

} // namespace

dlg__scan::dlg__scan(int buffer_size)
  : longest_token(static_cast<std::size_t>(std::max(buffer_size, 0))) {
    if (buffer_size < 20) {
        throw std::invalid_argument("Bad space for scanner!");
    }
}

int dlg__scan::dlg_input() { return next != end ? static_cast<unsigned char>(*next++) : -1; }

void dlg__scan::dlg_unput(int character) {
    if (next == begin || static_cast<unsigned char>(next[-1]) != character) {
        fail("Push-back buffer overflow");
    }
    --next;
    if (*next == '\n') {
        --line;
        const std::size_t feed = between(begin, next).rfind('\n');
        line_start = feed == std::string_view::npos ? begin : begin + feed + 1;
    }
}

dlg__scan::text_place dlg__scan::place() const {
    const auto offset = [this](const char* at) { return static_cast<std::size_t>(at - begin); };
    return {between(begin, end), offset(next), offset(line_start), offset(token_start), line};
}

void dlg__scan::go_on_at(const text_place& where) {
    begin = where.text.data() != nullptr ? where.text.data() : "";
    end = begin + where.text.size();
    next = begin + where.position;
    line_start = begin + where.line_start;
    token_start = token_end = next;
    line = where.line;
}

int dlg__scan::dlg_lex() {
    static constexpr int (dlg__scan::*rules[])() = {
        &dlg__scan::scan_initial, &dlg__scan::scan_comment, &dlg__scan::scan_line_comment,
        &dlg__scan::scan_string,  &dlg__scan::scan_quote,   &dlg__scan::scan_skipped};
    while (has_more()) {
        const auto rule = rules[state]; // by itself: GCC 12 guards the index wrongly in a call
        const int token = (this->*rule)();
        if (token != no_token) {
            dlg_print(token);
            return token;
        }
    }
    value = {};
    token_start = token_end = next;
    return 0;
}

bool dlg__scan::has_more() {
    while (next == end) {
        if (dlg_input() != -1) {
            --next;
            continue;
        }
        end_input();
        if (dlg_wrap() != 0) {
            return false;
        }
    }
    return true;
}

/// A text's end ends its last line, with a comment or string in it. A block comment and a
/// conditional reach into the text behind it.
void dlg__scan::end_input() {
    if (state == LINE_COMMENT) {
        state = INITIAL;
    } else if (state == STRING) {
        end_unfinished("Unterminated quoted string - missing \"");
    } else if (state == QUOTE) {
        end_unfinished("Unterminated quote - missing '");
    }
}

std::string_view dlg__scan::token_text() const {
    return value.tag == dlg_token_value::text_tag ? value.text : between(token_start, token_end);
}

// --- services ------------------------------------------------------------------------------------

void dlg__scan::fail(const std::string& message) {
    dlg_fatal(message);
    throw dlg_scan_failure(message);
}

/// Goes to `to`; what lies between may hold line feeds.
void dlg__scan::consume(const char* to) {
    for (const char* feed = find(next, to, '\n'); feed != to; feed = find(feed + 1, to, '\n')) {
        ++line;
        line_start = feed + 1;
    }
    next = to;
}

const char* dlg__scan::line_end(const char* from) const { return find(from, end, '\n'); }

void dlg__scan::consume_line() {
    const char* feed = line_end(next);
    consume(feed == end ? end : feed + 1);
}

const char* dlg__scan::check_length(const char* to) {
    if (static_cast<std::size_t>(to - next) > longest_token) {
        fail("Token buffer overflow");
    }
    return to;
}

std::string_view dlg__scan::keep(std::string text) {
    return kept_texts.emplace_back(std::move(text));
}

int dlg__scan::text_token(int code, std::string_view text) {
    value = {dlg_token_value::text_tag, 0, text};
    token_end = next;
    return code;
}

int dlg__scan::number_token(int code, std::int32_t number) {
    value = {dlg_token_value::int_tag, number, {}};
    token_end = next;
    return code;
}

// --- normal text ---------------------------------------------------------------------------------

int dlg__scan::scan_initial() {
    while (next != end && (is_blank(*next) || *next == '\n')) {
        if (*next++ == '\n') {
            ++line;
            line_start = next;
        }
    }
    if (next == end) {
        return no_token;
    }
    token_start = next;
    switch (class_of(*next)) {
    case letter_class:
        return scan_word(next + 1);
    case digit_class:
    case number_class:
        return scan_number();
    default:
        break;
    }
    switch (*next) {
    case '"':
        return start_string();
    case '`':
        return start_quote();
    case '#':
        return scan_hash();
    case '/':
        if (end - next > 1 && (next[1] == '/' || next[1] == '*')) {
            state = next[1] == '*' ? COMMENT : LINE_COMMENT;
            next += 2;
            return no_token;
        }
        break;
    default:
        break;
    }
    return scan_any_character();
}

int dlg__scan::scan_any_character() {
    const auto [length, code] = decode(between(next, end));
    next += length;
    token_end = next;
    value = {};
    if (code == 0 || code > 255) { // codes above are those of tokens, and 0 is the end
        dlg_output(code);
        dlg_error("Unknown character");
        return no_token;
    }
    return code;
}

/// A word whose first characters are known to be some; `from` is behind them.
int dlg__scan::scan_word(const char* from) {
    const char* const start = next;
    next = check_length(skip(from, end, is_word));
    token_end = next;
    return look_up(between(start, next));
}

int dlg__scan::look_up(std::string_view word) {
    if (const int row = find_dcl_keyword(word); row >= 0) {
        const cl_dcl_keyword& keyword = dcl_keywords()[static_cast<std::size_t>(row)];
        const bool has_row = keyword.token != DCL_CONSTANT && keyword.token != DCL_VALUE_TABLE;
        return number_token(keyword.token, has_row ? row : keyword.constant);
    }
    if (const std::optional<std::int32_t> constant = find_dcl_constant(word)) {
        return number_token(DCL_CONSTANT, *constant);
    }
    if (find_dialog_command(word) != nullptr) {
        return text_token(DCL_COMMAND, word);
    }
    return text_token(is_local_variable(word) ? DCL_LOCAL_VARIABLE : DCL_STRING_CONSTANT, word);
}

/// What begins with a digit, a point or a minus.
int dlg__scan::scan_number() {
    const char* const digits = skip(next, end, [](char c) { return c == '-'; });
    const char* behind = check_length(skip(digits, end, is_digit));
    int code = behind != digits ? DCL_CONSTANT : no_token;
    if (end - behind > 1 && *behind == '.' && is_digit(behind[1])) {
        behind = skip(behind + 1, end, is_digit);
        code = DCL_DOUBLE_CONSTANT;
    } else if (end - next > 1 && *next == '.' && is_letter(next[1])) {
        behind = skip(next + 1, end, is_word);
        code = DCL_DOTTED_NAME;
    }
    if (code == no_token) {
        return scan_any_character();
    }
    const char* const start = next;
    next = check_length(behind);
    return text_token(code, between(start, next));
}

// --- directives ----------------------------------------------------------------------------------

int dlg__scan::scan_hash() {
    const char* const word = skip(next + 1, end, is_blank);
    const char* const behind = skip(word, end, is_word);
    check_length(behind);
    if (scan_directive(between(next, behind), behind)) {
        return no_token;
    }
    return word == next + 1 && word != end && is_letter(*word) ? scan_word(word)
                                                               : scan_any_character();
}

/// `match` is the text from the hash on to the end of the word behind it.
bool dlg__scan::scan_directive(std::string_view match, const char* behind) {
    const std::string_view word =
        match.substr(std::min(match.find_first_not_of("# \t"), match.size()));
    if (word == "include") {
        scan_include(behind);
    } else if (word == "define") {
        scan_define(behind);
    } else if (match == "#ifdef" && behind != end && is_blank(*behind) &&
               skip(behind, end, is_blank) != end && is_word(*skip(behind, end, is_blank))) {
        scan_ifdef(behind);
    } else if (match.starts_with("#else")) {
        check_length(line_end(next));
        consume_line();
        state = SKIP;
    } else if (match.starts_with("#endif")) {
        check_length(line_end(next));
        end_conditional();
        consume_line();
    } else {
        return false;
    }
    return true;
}

void dlg__scan::scan_include(const char* behind) {
    const char* const quote = skip(behind, end, is_blank);
    const char* const feed = line_end(behind);
    const char* const closing = quote < feed ? find(quote + 1, feed, '"') : feed;
    const char* const match_end = check_length(closing == feed ? feed : closing + 1);
    token_end = match_end;
    value = {};
    if (quote == feed || *quote != '"' || closing == feed) {
        dlg_error(fmt::format("#include line not properly formed: {}", between(next, match_end)));
        next = match_end;
        return;
    }
    next = match_end;
    dlg_include(between(quote + 1, closing));
}

/// The word behind the last blank is what is defined; a tab is no blank.
void dlg__scan::scan_define(const char* behind) {
    const char* const word = skip(behind, end, is_blank);
    const char* const word_end = check_length(skip(word, end, is_word));
    const std::string_view match = between(next, word_end);
    const std::size_t blank = match.rfind(' ');
    token_end = word_end;
    value = {};
    if (blank == match.npos || word == behind || word == word_end) {
        dlg_error(fmt::format("#define line not properly formed: {}", match));
    } else {
        defined_words += defined_words.empty() ? "" : " ";
        defined_words += match.substr(blank + 1);
    }
    next = word_end;
}

/// Compared with all that is defined as one text: with two words defined no condition is true, and
/// neither is one with a second blank. Dialog files are written for that.
void dlg__scan::scan_ifdef(const char* behind) {
    const char* const word_end = check_length(skip(skip(behind, end, is_blank), end, is_word));
    const bool holds = between(behind + 1, word_end) == defined_words;
    conditionals.push_back(holds);
    state = holds ? INITIAL : SKIP;
    next = word_end;
}

void dlg__scan::end_conditional() {
    state = INITIAL;
    if (conditionals.empty()) {
        token_end = line_end(next);
        value = {};
        dlg_error("Unexected endif");
    } else {
        conditionals.pop_back();
    }
}

/// Drops all but an `#else` or `#endif` with nothing between it and its line's end.
int dlg__scan::scan_skipped() {
    for (const char* hash = find(next, end, '#'); hash != end; hash = find(hash + 1, end, '#')) {
        const std::string_view rest = between(hash, end);
        const bool is_else = rest.starts_with("#else");
        if (!is_else && !rest.starts_with("#endif")) {
            continue;
        }
        const char* const behind = hash + (is_else ? 5 : 6);
        if (behind != end && *behind != '\n') {
            continue;
        }
        consume(hash);
        token_start = hash;
        if (is_else) {
            state = INITIAL;
        } else {
            end_conditional();
        }
        consume_line();
        return no_token;
    }
    consume(end);
    return no_token;
}

// --- comments ------------------------------------------------------------------------------------

int dlg__scan::scan_comment() {
    for (const char* star = find(next, end, '*'); star != end; star = find(star + 1, end, '*')) {
        if (end - star > 1 && star[1] == '/') {
            consume(star + 2);
            state = INITIAL;
            return no_token;
        }
    }
    consume(end);
    return no_token;
}

int dlg__scan::scan_line_comment() {
    if (line_end(next) != end) {
        state = INITIAL;
    }
    consume_line();
    return no_token;
}

// --- strings -------------------------------------------------------------------------------------

/// Most strings stand in the input as they are; the others are built up by scan_string.
int dlg__scan::start_string() {
    ran_on = false;
    ++next;
    const char* const stop =
        std::find_if(next, end, [](char c) { return c == '"' || c == '\\' || c == '\n'; });
    if (stop != end && *stop == '"' && string_continuation(stop) == nullptr) {
        const std::string_view text = between(next, stop);
        next = stop + 1;
        return text_token(DCL_STRING_CONSTANT, text);
    }
    string_buffer.clear();
    state = STRING;
    return no_token;
}

int dlg__scan::scan_string() {
    while (next != end) {
        const char* const stop =
            std::find_if(next, end, [](char c) { return c == '"' || c == '\\' || c == '\n'; });
        add_to_string(between(next, stop));
        next = stop;
        if (stop == end) {
            break;
        }
        if (*stop == '\n') {
            end_unfinished("Unterminated quoted string - missing \"");
            return no_token;
        }
        if (*stop == '\\') {
            const bool is_quote = end - stop > 1 && stop[1] == '"';
            add_to_string(is_quote ? "\"" : "\\");
            next += is_quote ? 2 : 1;
        } else if (const char* behind = string_continuation(stop)) {
            note_join();
            consume(behind);
        } else {
            ++next;
            state = INITIAL;
            pending_join = false;
            return text_token(DCL_STRING_CONSTANT, keep(std::exchange(string_buffer, {})));
        }
    }
    return no_token;
}

int dlg__scan::start_quote() {
    string_buffer.assign(1, '`');
    ++next;
    state = QUOTE;
    return no_token;
}

int dlg__scan::scan_quote() {
    while (next != end) {
        const char* const stop =
            std::find_if(next, end, [](char c) { return c == '`' || c == '\n'; });
        string_buffer += between(next, stop);
        next = stop;
        if (stop == end) {
            break;
        }
        if (*stop == '\n') {
            end_unfinished("Unterminated quote - missing '");
            return no_token;
        }
        if (const char* behind = quote_continuation(stop)) {
            consume(behind);
            continue;
        }
        ++next;
        state = INITIAL;
        string_buffer += '`';
        return text_token(DCL_STRING_CONSTANT_SINGLE, keep(std::exchange(string_buffer, {})));
    }
    return no_token;
}

/// Tells of a string without its end, which is dropped, and goes on in the next line.
void dlg__scan::end_unfinished(const char* message) {
    value = {dlg_token_value::text_tag, 0, keep(std::exchange(string_buffer, {}))};
    token_end = next;
    state = INITIAL;
    pending_join = false;
    dlg_error(message);
    if (next != end) {
        consume(next + 1);
    }
}

/// Where a string goes on that seems to end at `quote`: behind the opening quote of the next line.
/// A comment may stand between, and a plus ahead of it. Null when the string ends.
const char* dlg__scan::string_continuation(const char* quote) {
    const char* at = skip(quote + 1, end, is_blank);
    const bool has_plus = at != end && *at == '+';
    if (has_plus) {
        at = skip(at + 1, end, is_blank);
    }
    if (end - at > 1 && at[0] == '/' && at[1] == '/') {
        at = line_end(at);
    } else if (has_plus) {
        return nullptr;
    }
    if (static_cast<std::size_t>(at - quote) > longest_token) {
        fail("Token buffer overflow");
    }
    if (at == end || *at != '\n') {
        return nullptr;
    }
    at = skip(at + 1, end, is_blank);
    return at != end && *at == '"' ? at + 1 : nullptr;
}

/// The same for a translated string: blanks, a plus and the line feed.
const char* dlg__scan::quote_continuation(const char* quote) {
    const char* at = skip(quote + 1, end, is_blank);
    if (at != end && *at == '+') {
        at = skip(at + 1, end, is_blank);
    }
    if (static_cast<std::size_t>(at - quote) > longest_token) {
        fail("Token buffer overflow");
    }
    if (at == end || *at != '\n') {
        return nullptr;
    }
    at = skip(at + 1, end, is_blank);
    return at != end && *at == '`' ? at + 1 : nullptr;
}

/// At a continuation: does the text so far end in a word?
void dlg__scan::note_join() {
    const std::string_view text = string_buffer;
    pending_join = text.size() >= 2 && !is_blank(text.back()) && !text.ends_with("\\n");
}

void dlg__scan::add_to_string(std::string_view text) {
    if (text.empty()) {
        return;
    }
    if (std::exchange(pending_join, false)) {
        ran_on = ran_on || (!is_blank(text.front()) && text.front() != '\\');
    }
    string_buffer += text;
}
