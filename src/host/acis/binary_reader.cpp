#include "host/acis/part.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace acis {

namespace {

/// What follows a tag: so many bytes, or a count of so many bytes with the text behind it.
struct TagForm {
    std::uint8_t bytes = 0;
    std::uint8_t count_bytes = 0;
    Token::Kind kind = Token::Kind::kWord;
    std::uint8_t numbers = 0; ///< values of 8 bytes
    bool known = false;
    bool wide = false; ///< 8 bytes in parts with wide integers, else 4
};

enum : std::uint8_t { kTagName = 13, kTagPartOfName = 14, kTagEnd = 17, kTagLiteral = 18 };

/// The tags of binary parts.
constexpr std::array<TagForm, 24> kTags = [] {
    std::array<TagForm, 24> tags{};
    const auto fixed = [&](int tag, std::uint8_t bytes, Token::Kind kind, bool wide = false) {
        tags[tag] = {bytes, 0, kind, 0, true, wide};
    };
    const auto text = [&](int tag, std::uint8_t count_bytes, Token::Kind kind) {
        tags[tag] = {0, count_bytes, kind, 0, true, false};
    };
    const auto reals = [&](int tag, std::uint8_t numbers) {
        tags[tag] = {0, 0, Token::Kind::kReal, numbers, true, false};
    };
    fixed(0, 0, Token::Kind::kFalse);
    fixed(1, 0, Token::Kind::kTrue);
    fixed(2, 1, Token::Kind::kInt);
    fixed(3, 2, Token::Kind::kInt);
    fixed(4, 4, Token::Kind::kInt, true);
    fixed(5, 4, Token::Kind::kReal);
    fixed(6, 8, Token::Kind::kReal);
    text(7, 1, Token::Kind::kString);
    text(8, 2, Token::Kind::kString);
    text(9, 4, Token::Kind::kString);
    fixed(10, 0, Token::Kind::kTrue);
    fixed(11, 0, Token::Kind::kFalse);
    fixed(12, 4, Token::Kind::kRefBinary, true);
    text(kTagName, 1, Token::Kind::kWord);
    text(kTagPartOfName, 1, Token::Kind::kWord);
    fixed(15, 0, Token::Kind::kOpen);
    fixed(16, 0, Token::Kind::kClose);
    fixed(kTagEnd, 0, Token::Kind::kClose);
    text(kTagLiteral, 4, Token::Kind::kString);
    reals(19, 3);
    reals(20, 3);
    fixed(21, 4, Token::Kind::kInt, true);
    reals(22, 2);
    fixed(23, 8, Token::Kind::kInt);
    return tags;
}();

class BinaryScanner {
public:
    BinaryScanner(std::string_view data, bool wide)
      : data_(data)
      , wide_(wide) {}

    bool more() const { return at_ < data_.size(); }
    std::uint8_t tag() const { return static_cast<std::uint8_t>(data_[at_]); }
    std::uint32_t wideBytes() const { return wide_ ? 8 : 4; }

    /// Reads a value with its tag into `tokens`; false at unknown tags and at the data's end.
    bool value(std::vector<Token>& tokens) {
        const std::uint8_t number = tag();
        if (number >= kTags.size() || !kTags[number].known) {
            return false;
        }
        const TagForm& form = kTags[number];
        ++at_;
        if (form.numbers > 0) {
            return reals(form.numbers, tokens);
        }
        std::uint64_t length = form.wide ? wideBytes() : form.bytes;
        if (form.count_bytes > 0 && !count(form.count_bytes, length)) {
            return false;
        }
        if (length > data_.size() - at_) {
            return false;
        }
        tokens.push_back({data_.data() + at_, static_cast<std::uint32_t>(length), form.kind});
        at_ += length;
        return true;
    }

    /// A number of the heading, which has no tag.
    bool plainInteger(std::int64_t& value) {
        if (wideBytes() > data_.size() - at_) {
            return false;
        }
        const Token token{data_.data() + at_, wideBytes(), Token::Kind::kInt};
        at_ += wideBytes();
        return integerOf(token, value);
    }

private:
    bool reals(int count, std::vector<Token>& tokens) {
        if (data_.size() - at_ < 8U * static_cast<unsigned>(count)) {
            return false;
        }
        for (int i = 0; i < count; ++i, at_ += 8) {
            tokens.push_back({data_.data() + at_, 8, Token::Kind::kReal});
        }
        return true;
    }
    bool count(std::uint32_t bytes, std::uint64_t& length) {
        if (bytes > data_.size() - at_) {
            return false;
        }
        length = 0;
        for (std::uint32_t i = 0; i < bytes; ++i) {
            length |= std::uint64_t{static_cast<unsigned char>(data_[at_ + i])} << (8 * i);
        }
        at_ += bytes;
        return true;
    }

    std::string_view data_;
    std::size_t at_ = 0;
    bool wide_;
};

/// The parts of a record's kind, the most special one first. False when no kind follows.
bool takeKind(BinaryScanner& scanner, std::vector<Token>& names) {
    names.clear();
    while (scanner.more()) {
        const std::uint8_t tag = scanner.tag();
        if ((tag != kTagName && tag != kTagPartOfName) || !scanner.value(names)) {
            return false;
        }
        if (tag == kTagName) {
            return true;
        }
    }
    return false;
}

/// Texts in a transform's place hold its values as text.
void expandLiterals(Part& part, std::uint32_t begin) {
    std::vector<Token> values(part.tokens.begin() + begin, part.tokens.end());
    part.tokens.resize(begin);
    for (const Token& token : values) {
        if (token.kind == Token::Kind::kString) {
            tokenizeText(token.text(), part);
        } else {
            part.tokens.push_back(token);
        }
    }
}

/// Reads the values up to the record's end; false when the data end or make no sense before.
bool takeValues(BinaryScanner& scanner, std::vector<Token>& tokens) {
    while (scanner.more()) {
        const bool last = scanner.tag() == kTagEnd;
        if (!scanner.value(tokens)) {
            return false;
        }
        if (last) {
            tokens.pop_back();
            return true;
        }
    }
    return false;
}

/// The heading behind the mark: four plain numbers, then values with tags up to the first kind.
bool skipHeading(BinaryScanner& scanner, Part& part) {
    std::int64_t version = 0;
    std::int64_t other = 0;
    if (!scanner.plainInteger(version) || !scanner.plainInteger(other) ||
        !scanner.plainInteger(other) || !scanner.plainInteger(other) || version < 100 ||
        version > 1'000'000) {
        return false;
    }
    part.version = static_cast<int>(version);
    std::vector<Token> ignored;
    while (scanner.more() && scanner.tag() != kTagName && scanner.tag() != kTagPartOfName) {
        if (!scanner.value(ignored)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool readBinaryPart(std::span<const std::uint8_t> data, Part& part) {
    constexpr std::size_t mark_length = 15;
    const std::string_view all(reinterpret_cast<const char*>(data.data()), data.size());
    if (all.size() < mark_length || all.size() > std::numeric_limits<std::uint32_t>::max() ||
        !(all.starts_with("ACIS BinaryFile") || all.starts_with("ASM BinaryFile4") ||
          all.starts_with("ASM BinaryFile8"))) {
        return false;
    }
    BinaryScanner scanner(all.substr(mark_length), all[mark_length - 1] == '8');
    if (!skipHeading(scanner, part)) {
        return false;
    }
    std::vector<Token> names;
    bool history = false;
    bool sound = true;
    std::int64_t next = 0;
    while (sound && takeKind(scanner, names)) {
        const bool mark = names.front().text() == "End" || names.front().text() == "Begin";
        if (mark) {
            const bool section = std::any_of(names.begin(), names.end(), [](const Token& name) {
                return name.text() == "History";
            });
            if (!section) {
                break;
            }
            history = names.front().text() == "Begin";
        }
        Record record{names.front().text(), names.back().text(),
                      static_cast<std::uint32_t>(part.tokens.size()), 0, 0};
        if (!mark ||
            (scanner.more() && scanner.tag() != kTagName && scanner.tag() != kTagPartOfName)) {
            sound = takeValues(scanner, part.tokens);
        }
        if (history || mark) {
            part.tokens.resize(record.begin);
            continue;
        }
        if (record.leaf == "transform") {
            expandLiterals(part, record.begin);
        }
        record.end = static_cast<std::uint32_t>(part.tokens.size());
        part.pairSubtypes(record.begin);
        part.add(record, next++, all.size());
    }
    return !part.records.empty();
}

} // namespace acis
