#include "host/acis/acis.h"
#include "host/acis/part.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace acis {

namespace {

/// No record is shorter, so that numbers of records stay below a part of the text's size.
constexpr std::size_t kLeastRecord = 4;

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

class Scanner {
public:
    explicit Scanner(std::string_view text)
      : text_(text) {}

    void skipSpace() {
        while (at_ < text_.size() && isSpace(text_[at_])) {
            ++at_;
        }
    }
    bool more() {
        skipSpace();
        return at_ < text_.size();
    }
    /// A brace, or what stands up to the next space or brace; not empty when there is more.
    std::string_view word() {
        skipSpace();
        const std::size_t begin = at_;
        if (at_ < text_.size() && (text_[at_] == '{' || text_[at_] == '}')) {
            return text_.substr(at_++, 1);
        }
        while (at_ < text_.size() && !isSpace(text_[at_]) && text_[at_] != '{' &&
               text_[at_] != '}' && (at_ == begin || !endsRecord())) {
            ++at_;
        }
        return text_.substr(begin, at_ - begin);
    }
    /// The next `count` characters behind one space.
    std::string_view counted(std::size_t count) {
        at_ += at_ < text_.size() ? 1 : 0;
        const std::string_view found = text_.substr(at_, count);
        at_ += found.size();
        return found;
    }
    std::string_view line() {
        const std::size_t end = std::min(text_.find('\n', at_), text_.size());
        const std::string_view found = text_.substr(at_, end - at_);
        at_ = std::min(end + 1, text_.size());
        return found;
    }
    std::size_t position() const { return at_; }
    void moveTo(std::size_t position) { at_ = position; }

private:
    /// A '#' with nothing behind it.
    bool endsRecord() const {
        return text_[at_] == '#' && (at_ + 1 == text_.size() || isSpace(text_[at_ + 1]));
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

bool startsNumber(std::string_view word) {
    std::size_t at = word[0] == '-' || word[0] == '+' ? 1 : 0;
    at += at < word.size() && word[at] == '.' ? 1 : 0;
    return at < word.size() && isDigit(word[at]);
}

/// The token of a word; "@n" takes the counted text that follows.
Token tokenOf(std::string_view word, Scanner& scanner) {
    Token token{word.data(), static_cast<std::uint32_t>(word.size()), Token::Kind::kWord};
    if (word == "{" || word == "}") {
        token.kind = word == "{" ? Token::Kind::kOpen : Token::Kind::kClose;
    } else if (word[0] == '$' && word.size() > 1) {
        token = {word.data() + 1, static_cast<std::uint32_t>(word.size() - 1),
                 Token::Kind::kRefText};
    } else if (word[0] == '@' && word.size() > 1 && isDigit(word[1])) {
        std::uint32_t count = 0;
        std::from_chars(word.data() + 1, word.data() + word.size(), count);
        const std::string_view text = scanner.counted(count);
        token = {text.data(), static_cast<std::uint32_t>(text.size()), Token::Kind::kString};
    } else if (startsNumber(word)) {
        token.kind = Token::Kind::kNumber;
    }
    return token;
}

/// "-12" ahead of a record's kind: its number.
bool recordNumber(std::string_view word, std::int64_t& number) {
    if (word.size() < 2 || word[0] != '-' || !isDigit(word[1])) {
        return false;
    }
    const auto [end, error] = std::from_chars(word.data() + 1, word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

/// Whether a line begins the records: a kind, and a reference behind it.
bool beginsRecords(std::string_view line) {
    Scanner scanner(line);
    if (!scanner.more()) {
        return false;
    }
    std::string_view word = scanner.word();
    std::int64_t number = 0;
    if (recordNumber(word, number) && scanner.more()) {
        word = scanner.word();
    }
    return isLetter(word[0]) && (!scanner.more() || scanner.word()[0] == '$');
}

/// The heading: the version, and up to four more lines that say nothing about the shape.
bool skipHeading(Scanner& scanner, Part& part) {
    if (!scanner.more()) {
        return false;
    }
    const std::string_view first = scanner.word();
    const auto [end, error] =
        std::from_chars(first.data(), first.data() + first.size(), part.version);
    if (error != std::errc() || part.version < 100) {
        return false;
    }
    scanner.line();
    for (int i = 0; i < 5; ++i) {
        const std::size_t before = scanner.position();
        if (beginsRecords(scanner.line())) {
            scanner.moveTo(before);
            return true;
        }
    }
    return true;
}

/// Whether a '#' that was just read ends its record. It does not within the texts of early
/// releases, which nothing tells from other values.
bool endedRecord(std::string_view text, std::size_t position) {
    constexpr std::size_t enough = 200;
    const std::string_view rest = text.substr(position, enough);
    const std::string_view line = rest.substr(0, rest.find_first_of("\r\n"));
    return line.find_first_not_of(" \t") == line.npos || beginsRecords(line);
}

void nameRecord(std::string_view name, Record& record) {
    record.leaf = name.substr(0, name.find('-'));
    const std::size_t last = name.rfind('-');
    record.base = last == name.npos ? name : name.substr(last + 1);
}

} // namespace

std::string descramble(std::string_view line) {
    std::string plain;
    plain.reserve(line.size());
    for (std::size_t i = 0; i < line.size(); ++i) {
        const auto code = static_cast<unsigned char>(line[i]);
        plain += code > ' ' && code < 127 ? static_cast<char>(159 - code) : line[i];
        // The caret begins an escape in drawings, so that it is followed by a blank of its own.
        if (line[i] == '^' && i + 1 < line.size() && line[i + 1] == ' ') {
            ++i;
        }
    }
    return plain;
}

std::string scramble(std::string_view line) {
    std::string hidden;
    hidden.reserve(line.size());
    for (const char c : line) {
        const auto code = static_cast<unsigned char>(c);
        hidden += code > ' ' && code < 127 ? static_cast<char>(159 - code) : c;
        if (hidden.back() == '^') {
            hidden += ' ';
        }
    }
    return hidden;
}

void tokenizeText(std::string_view text, Part& part) {
    Scanner scanner(text);
    while (scanner.more()) {
        const std::string_view word = scanner.word();
        part.tokens.push_back(tokenOf(word, scanner));
    }
}

bool readTextPart(std::string_view text, Part& part) {
    Scanner scanner(text);
    if (text.size() > std::numeric_limits<std::uint32_t>::max() || !skipHeading(scanner, part)) {
        return false;
    }
    std::int64_t next = 0;
    bool history = false;
    while (scanner.more()) {
        std::string_view word = scanner.word();
        std::int64_t number = next;
        if (recordNumber(word, number) && scanner.more()) {
            word = scanner.word();
        }
        if (word == "#") {
            continue;
        }
        if (word.starts_with("End-of-") || word.starts_with("Begin-of-")) {
            const bool section = word.find("-History-") != word.npos;
            if (!section) {
                break;
            }
            history = word[0] == 'B'; // old states of the part, with numbers of their own
            continue;
        }
        Record record;
        nameRecord(word, record);
        record.begin = static_cast<std::uint32_t>(part.tokens.size());
        while (scanner.more()) {
            word = scanner.word();
            if (word == "#" && endedRecord(text, scanner.position())) {
                break;
            }
            part.tokens.push_back(tokenOf(word, scanner));
        }
        record.end = static_cast<std::uint32_t>(part.tokens.size());
        if (history) {
            part.tokens.resize(record.begin);
            continue;
        }
        part.pairSubtypes(record.begin);
        part.add(record, number, text.size() / kLeastRecord);
        next = number + 1;
    }
    return !part.records.empty();
}

} // namespace acis
