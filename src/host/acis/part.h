// A part as tokens and records: one model for text and binary, before anything is understood.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace acis {

/// One value of a record. Its bytes stay where the part was read from.
struct Token {
    enum class Kind : std::uint8_t {
        kWord,   ///< a bare word, or the name of a kind in a binary part
        kString, ///< counted text
        kNumber, ///< a number as text
        kInt,    ///< binary integers and enumerations, 1, 2, 4 or 8 bytes
        kReal,   ///< binary IEEE numbers, 4 or 8 bytes; a position is three of them
        kTrue,   ///< binary truth values
        kFalse,
        kRefText,   ///< the digits behind '$'
        kRefBinary, ///< 4 or 8 bytes
        kOpen,      ///< '{'; `length` is the index of its closing token
        kClose,
    };
    const char* data = nullptr;
    std::uint32_t length = 0;
    Kind kind = Kind::kWord;

    std::string_view text() const {
        return kind == Kind::kOpen ? std::string_view() : std::string_view(data, length);
    }
    bool isName() const { return kind == Kind::kWord || kind == Kind::kString; }
    bool isNumber() const {
        return kind == Kind::kNumber || kind == Kind::kInt || kind == Kind::kReal;
    }
};

/// A record: "plane-surface $-1 ... #". Its kind is given from the most special name to the most
/// general one.
struct Record {
    std::string_view leaf; ///< "plane"
    std::string_view base; ///< "surface"; the leaf again for kinds of one name
    std::uint32_t begin = 0, end = 0;
    std::uint32_t number = 0; ///< the one that references use
};

class Part {
public:
    int version = 0; ///< 105 for release 1.5, 700 for 7.0, 22300 for the modeller's 223
    std::vector<Token> tokens;
    std::vector<Record> records;
    /// The opening tokens of subtypes, in the orders of their beginnings and of their ends, without
    /// "ref".
    std::vector<std::uint32_t> opened, closed;

    /// The record that a reference means; null for none.
    const Record* record(std::int64_t number) const;
    /// Keeps a record under a number; one that is taken or at `limit` and above is not kept.
    void add(Record record, std::int64_t number, std::size_t limit);
    /// Joins opening and closing tokens from `begin` on. Those without a partner end with the
    /// record.
    void pairSubtypes(std::uint32_t begin);
    /// The record that holds a token; null when none does.
    const Record* recordAt(std::uint32_t token) const;

private:
    std::vector<std::uint32_t> by_number_; ///< place in `records` plus 1
};

/// Walks over the tokens of a record or subtype. Every `take` moves only when it succeeds.
class Cursor {
public:
    Cursor(const Part& part, std::uint32_t begin, std::uint32_t end)
      : part_(&part)
      , at_(begin)
      , end_(end) {}

    const Part& part() const { return *part_; }
    bool more() const { return at_ < end_; }
    std::uint32_t position() const { return at_; }
    std::uint32_t end() const { return end_; }
    std::size_t left() const { return end_ - at_; }
    const Token* peek(std::uint32_t ahead = 0) const {
        return ahead < end_ - at_ ? &part_->tokens[at_ + ahead] : nullptr;
    }
    void skip() { at_ += at_ < end_ ? 1 : 0; }
    void moveTo(std::uint32_t position) { at_ = position < end_ ? position : end_; }

    /// A finite number.
    bool take(double& value);
    bool take(double* values, int count);
    /// A whole number, written as one.
    bool takeInteger(std::int64_t& value);
    bool takeReference(std::int64_t& number);
    /// A truth value: a binary one, one of the words of the text form ("reversed", "F" ...), or 0
    /// and 1 of the earliest releases.
    bool takeBool(bool& value);
    bool takeName(std::string_view& name);
    /// Takes the word when it is next.
    bool takeWord(std::string_view word);
    /// Moves behind the subtype that is next and gives its inside.
    bool takeSubtype(Cursor& inside);

private:
    const Part* part_;
    std::uint32_t at_, end_;
};

bool numberOf(const Token& token, double& value);
bool integerOf(const Token& token, std::int64_t& value);

/// Reads the tokens; false when there is no part in the data.
bool readTextPart(std::string_view text, Part& part);
bool readBinaryPart(std::span<const std::uint8_t> data, Part& part);

/// Adds the tokens of text without records: words, numbers, references and subtypes.
void tokenizeText(std::string_view text, Part& part);

} // namespace acis
