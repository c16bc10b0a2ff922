#include "host/acis/part.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

namespace acis {

namespace {

template <class T>
T bytesAs(const char* data) {
    T value{};
    std::memcpy(&value, data, sizeof value);
    return value;
}
static_assert(std::endian::native == std::endian::little, "binary parts are little-endian");

std::string_view withoutPlus(std::string_view text) {
    return text.starts_with('+') ? text.substr(1) : text;
}

bool wholeOf(std::string_view text, std::int64_t& value) {
    text = withoutPlus(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

std::int64_t binaryInteger(const Token& token) {
    switch (token.length) {
    case 1:
        return static_cast<unsigned char>(*token.data);
    case 2:
        return bytesAs<std::int16_t>(token.data);
    case 4:
        return bytesAs<std::int32_t>(token.data);
    default:
        return bytesAs<std::int64_t>(token.data);
    }
}

struct BoolWord {
    std::string_view word;
    bool value;
};
/// The words by which the text form tells truth values, each with its binary meaning.
constexpr std::array kBoolWords{
    BoolWord{"forward", false},    BoolWord{"reversed", true}, BoolWord{"forward_v", false},
    BoolWord{"reverse_v", true},   BoolWord{"single", false},  BoolWord{"double", true},
    BoolWord{"out", false},        BoolWord{"in", true},       BoolWord{"I", false},
    BoolWord{"F", true},           BoolWord{"T", true},        BoolWord{"no_rotate", false},
    BoolWord{"rotate", true},      BoolWord{"shear", true},    BoolWord{"no_shear", false},
    BoolWord{"no_reflect", false}, BoolWord{"reflect", true},  BoolWord{"FALSE", false},
    BoolWord{"TRUE", true},
};

} // namespace

bool numberOf(const Token& token, double& value) {
    double found = 0;
    if (token.kind == Token::Kind::kInt) {
        found = static_cast<double>(binaryInteger(token));
    } else if (token.kind == Token::Kind::kReal) {
        found = token.length == 4 ? static_cast<double>(bytesAs<float>(token.data))
                                  : bytesAs<double>(token.data);
    } else if (token.kind == Token::Kind::kNumber) {
        const std::string_view text = withoutPlus(token.text());
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), found);
        if (error == std::errc::result_out_of_range && text.find("e-") != text.npos) {
            found = 0; // too small to tell from 0
        } else if (error != std::errc() || end != text.data() + text.size()) {
            return false;
        }
    } else {
        return false;
    }
    if (!std::isfinite(found)) {
        return false;
    }
    value = found;
    return true;
}

bool integerOf(const Token& token, std::int64_t& value) {
    if (token.kind == Token::Kind::kInt) {
        value = binaryInteger(token);
        return true;
    }
    return token.kind == Token::Kind::kNumber && wholeOf(token.text(), value);
}

const Record* Part::record(std::int64_t number) const {
    if (number < 0 || static_cast<std::uint64_t>(number) >= by_number_.size() ||
        by_number_[static_cast<std::size_t>(number)] == 0) {
        return nullptr;
    }
    return &records[by_number_[static_cast<std::size_t>(number)] - 1];
}

void Part::add(Record record, std::int64_t number, std::size_t limit) {
    if (number < 0 || static_cast<std::uint64_t>(number) >= limit) {
        return;
    }
    const auto place = static_cast<std::size_t>(number);
    if (place >= by_number_.size()) {
        by_number_.resize(std::max(place + 1, by_number_.size() * 2));
    }
    if (by_number_[place] != 0) {
        return;
    }
    record.number = static_cast<std::uint32_t>(number);
    records.push_back(record);
    by_number_[place] = static_cast<std::uint32_t>(records.size());
}

void Part::pairSubtypes(std::uint32_t begin) {
    std::vector<std::uint32_t> open;
    const auto end = static_cast<std::uint32_t>(tokens.size());
    const auto is_ref = [&](std::uint32_t at) {
        return at + 1 < end && tokens[at + 1].isName() && tokens[at + 1].text() == "ref";
    };
    for (std::uint32_t i = begin; i < end; ++i) {
        if (tokens[i].kind == Token::Kind::kOpen) {
            tokens[i].length = end;
            open.push_back(i);
            if (!is_ref(i)) {
                opened.push_back(i);
            }
        } else if (tokens[i].kind == Token::Kind::kClose && !open.empty()) {
            tokens[open.back()].length = i;
            if (!is_ref(open.back())) {
                closed.push_back(open.back());
            }
            open.pop_back();
        }
    }
    for (; !open.empty(); open.pop_back()) {
        if (!is_ref(open.back())) {
            closed.push_back(open.back());
        }
    }
}

const Record* Part::recordAt(std::uint32_t token) const {
    const auto found =
        std::upper_bound(records.begin(), records.end(), token,
                         [](std::uint32_t at, const Record& record) { return at < record.begin; });
    return found == records.begin() || token >= (found - 1)->end ? nullptr : &*(found - 1);
}

bool Cursor::take(double& value) {
    if (!more() || !numberOf(part_->tokens[at_], value)) {
        return false;
    }
    ++at_;
    return true;
}

bool Cursor::take(double* values, int count) {
    if (left() < static_cast<std::size_t>(count)) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        if (!numberOf(part_->tokens[at_ + static_cast<std::uint32_t>(i)], values[i])) {
            return false;
        }
    }
    at_ += static_cast<std::uint32_t>(count);
    return true;
}

bool Cursor::takeInteger(std::int64_t& value) {
    if (!more() || !integerOf(part_->tokens[at_], value)) {
        return false;
    }
    ++at_;
    return true;
}

bool Cursor::takeReference(std::int64_t& number) {
    if (!more()) {
        return false;
    }
    const Token& token = part_->tokens[at_];
    if (token.kind == Token::Kind::kRefBinary) {
        number = binaryInteger(token);
    } else if (token.kind != Token::Kind::kRefText || !wholeOf(token.text(), number)) {
        return false;
    }
    ++at_;
    return true;
}

bool Cursor::takeBool(bool& value) {
    if (!more()) {
        return false;
    }
    const Token& token = part_->tokens[at_];
    std::int64_t number = 0;
    if (token.kind == Token::Kind::kTrue || token.kind == Token::Kind::kFalse) {
        value = token.kind == Token::Kind::kTrue;
    } else if (token.isName()) {
        const auto* const found =
            std::find_if(kBoolWords.begin(), kBoolWords.end(),
                         [&](const BoolWord& word) { return word.word == token.text(); });
        if (found == kBoolWords.end()) {
            return false;
        }
        value = found->value;
    } else if (integerOf(token, number) && (number == 0 || number == 1)) {
        value = number == 1;
    } else {
        return false;
    }
    ++at_;
    return true;
}

bool Cursor::takeName(std::string_view& name) {
    if (!more() || !part_->tokens[at_].isName()) {
        return false;
    }
    name = part_->tokens[at_++].text();
    return true;
}

bool Cursor::takeWord(std::string_view word) {
    if (!more() || !part_->tokens[at_].isName() || part_->tokens[at_].text() != word) {
        return false;
    }
    ++at_;
    return true;
}

bool Cursor::takeSubtype(Cursor& inside) {
    if (!more() || part_->tokens[at_].kind != Token::Kind::kOpen) {
        return false;
    }
    const std::uint32_t close = std::min(part_->tokens[at_].length, end_);
    inside = Cursor(*part_, at_ + 1, std::max(close, at_ + 1));
    at_ = std::min(close + 1, end_);
    return true;
}

} // namespace acis
