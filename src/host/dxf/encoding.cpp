// Code pages through the C library's iconv.
#include "host/dxf/encoding.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <iconv.h>

namespace dxf {
namespace {

struct PageName {
    std::string_view file, iconv;
};
// Names in $DWGCODEPAGE beside the ANSI_nnnn ones, lower case.
constexpr PageName kPages[] = {
    {"ansi_874", "CP874"},       {"ansi_932", "CP932"},       {"ansi_936", "GBK"},
    {"ansi_949", "CP949"},       {"ansi_950", "BIG5"},        {"ansi_1361", "JOHAB"},
    {"dos437", "CP437"},         {"dos850", "CP850"},         {"dos852", "CP852"},
    {"dos855", "CP855"},         {"dos857", "CP857"},         {"dos860", "CP860"},
    {"dos861", "CP861"},         {"dos863", "CP863"},         {"dos864", "CP864"},
    {"dos865", "CP865"},         {"dos866", "CP866"},         {"dos869", "CP869"},
    {"dos932", "CP932"},         {"iso8859-1", "ISO-8859-1"}, {"iso8859-2", "ISO-8859-2"},
    {"iso8859-3", "ISO-8859-3"}, {"iso8859-4", "ISO-8859-4"}, {"iso8859-5", "ISO-8859-5"},
    {"iso8859-6", "ISO-8859-6"}, {"iso8859-7", "ISO-8859-7"}, {"iso8859-8", "ISO-8859-8"},
    {"iso8859-9", "ISO-8859-9"}, {"mac-roman", "MACINTOSH"},  {"macintosh", "MACINTOSH"},
    {"ksc5601", "CP949"},        {"johab", "JOHAB"},          {"big5", "BIG5"},
    {"gb2312", "GBK"},           {"utf-8", "UTF-8"},          {"utf8", "UTF-8"},
};
/// The pages that \M+nXXXX names, n from 1.
constexpr const char* kMultibytePages[] = {"CP932", "BIG5", "CP949", "JOHAB", "GBK"};
constexpr const char* kDefaultPage = "CP1252";
constexpr std::string_view kReplacement = "\xef\xbf\xbd";

std::string page_of(std::string_view name) {
    std::string lower;
    for (const char c : name) {
        if (c != ' ') {
            lower.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
        }
    }
    for (const PageName& page : kPages) {
        if (page.file == lower) {
            return std::string(page.iconv);
        }
    }
    constexpr std::string_view kAnsi = "ansi_125";
    if (lower.starts_with(kAnsi) && lower.size() == kAnsi.size() + 1 && lower.back() >= '0' &&
        lower.back() <= '8') {
        return "CP125" + lower.substr(lower.size() - 1);
    }
    return kDefaultPage;
}

class Converter {
public:
    Converter(const char* to, const char* from)
      : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (valid()) {
            iconv_close(handle_);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    // The standard has iconv_open answer with this value when it fails.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    bool valid() const { return handle_ != reinterpret_cast<iconv_t>(-1); }
    /// Converts as far as it goes; returns how many bytes were used.
    std::size_t convert(std::string_view in, std::string& out) {
        char* from = const_cast<char*>(in.data());
        std::size_t left = in.size();
        while (left > 0) {
            char buffer[256];
            char* to = buffer;
            std::size_t room = sizeof buffer;
            const std::size_t result = iconv(handle_, &from, &left, &to, &room);
            out.append(buffer, sizeof buffer - room);
            if (result == static_cast<std::size_t>(-1) && room == sizeof buffer) {
                break; // nothing came of it: a byte that the page lacks
            }
        }
        return in.size() - left;
    }

private:
    iconv_t handle_;
};

bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string convert_page(std::string_view bytes, const char* page) {
    Converter converter("UTF-8", page);
    if (!converter.valid()) {
        return std::string(bytes);
    }
    std::string out;
    while (!bytes.empty()) {
        bytes.remove_prefix(converter.convert(bytes, out));
        if (!bytes.empty()) {
            out += kReplacement;
            bytes.remove_prefix(1);
        }
    }
    return out;
}

void append_utf8(std::string& out, std::uint32_t c) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xc0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3f)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xe0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3f)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3f)));
    } else {
        out.push_back(static_cast<char>(0xf0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3f)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3f)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3f)));
    }
}

/// The character at `at`, which moves behind it; a wrong byte gives itself plus 0x110000.
std::uint32_t next_char(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const int length = lead < 0x80   ? 1
                       : lead < 0xc2 ? 0
                       : lead < 0xe0 ? 2
                       : lead < 0xf0 ? 3
                       : lead < 0xf5 ? 4
                                     : 0;
    if (length == 0 || at + static_cast<std::size_t>(length) > text.size()) {
        ++at;
        return 0x110000U + lead;
    }
    std::uint32_t c = length == 1 ? lead : lead & (0x7fU >> length);
    for (int i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + static_cast<std::size_t>(i)]);
        if ((byte & 0xc0) != 0x80) {
            ++at;
            return 0x110000U + lead;
        }
        c = (c << 6) | (byte & 0x3fU);
    }
    const bool overlong = (length == 3 && c < 0x800) || (length == 4 && c < 0x10000);
    if (overlong || c > 0x10ffff || (c >= 0xd800 && c < 0xe000)) {
        ++at;
        return 0x110000U + lead;
    }
    at += static_cast<std::size_t>(length);
    return c;
}

/// Four hexadecimal digits at `at`; false when they are none.
bool four_digits(std::string_view text, std::size_t at, std::uint32_t& value) {
    if (at + 4 > text.size()) {
        return false;
    }
    value = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
        const int c = std::tolower(static_cast<unsigned char>(text[i]));
        if (!std::isxdigit(c)) {
            return false;
        }
        value = value * 16 + static_cast<std::uint32_t>(c <= '9' ? c - '0' : c - 'a' + 10);
    }
    return true;
}

/// Reads one escape at `at` (a back-slash) and appends its character. Returns its length, 0 when
/// it is none.
std::size_t read_escape(std::string_view text, std::size_t at, std::string& out) {
    std::uint32_t value = 0;
    if (text.substr(at, 3) == "\\U+" && four_digits(text, at + 3, value)) {
        std::uint32_t low = 0;
        const bool pair = value >= 0xd800 && value < 0xdc00 && text.substr(at + 7, 3) == "\\U+" &&
                          four_digits(text, at + 10, low) && low >= 0xdc00 && low < 0xe000;
        if (pair) {
            append_utf8(out, 0x10000 + ((value - 0xd800) << 10) + (low - 0xdc00));
            return 14;
        }
        if (value >= 0xd800 && value < 0xe000) {
            return 0;
        }
        append_utf8(out, value);
        return 7;
    }
    if (text.substr(at, 3) == "\\M+" && at + 3 < text.size() && text[at + 3] >= '1' &&
        text[at + 3] <= '5' && four_digits(text, at + 4, value)) {
        const std::string bytes =
            value > 0xff ? std::string{static_cast<char>(value >> 8), static_cast<char>(value)}
                         : std::string(1, static_cast<char>(value));
        out += convert_page(bytes, kMultibytePages[text[at + 3] - '1']);
        return 8;
    }
    return 0;
}

struct Caret {
    char letter, meaning;
};
/// What stands behind a caret for a character that a value's line cannot hold, and for itself.
constexpr Caret kCarets[] = {{'J', '\n'}, {'M', '\r'}, {'I', '\t'}, {' ', '^'}};

const Caret* find_caret(std::string_view text, std::size_t at) {
    const char next = at + 1 < text.size() ? text[at + 1] : '\0';
    const auto* found = std::ranges::find(kCarets, next, &Caret::letter);
    return found == std::end(kCarets) ? nullptr : found;
}

std::string resolve_escapes(std::string text) {
    if (text.find_first_of("\\^") == std::string::npos) {
        return text;
    }
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        if (const Caret* caret = text[i] == '^' ? find_caret(text, i) : nullptr) {
            out.push_back(caret->meaning);
            i += 2;
            continue;
        }
        const std::size_t used = text[i] == '\\' ? read_escape(text, i, out) : 0;
        if (used == 0) {
            out.push_back(text[i]);
        }
        i += used == 0 ? 1 : used;
    }
    return out;
}

void append_escape(std::string& out, std::uint32_t c) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    if (c >= 0x10000) {
        append_escape(out, 0xd800 + ((c - 0x10000) >> 10));
        c = 0xdc00 + ((c - 0x10000) & 0x3ff);
    }
    out += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4) {
        out.push_back(kDigits[(c >> shift) & 15]);
    }
}

/// Text with escapes in place of what would not come back as it is: line breaks, carets and
/// back-slashes that look like the beginning of one. A zero byte becomes a blank.
std::string escape_controls(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view next = text.substr(i + 1, 2);
        if (text[i] == '\n' || text[i] == '\r') {
            out += text[i] == '\n' ? "^J" : "^M";
        } else if (text[i] == '^' && find_caret(text, i) != nullptr) {
            out += "^ ";
        } else if (text[i] == '\\' && (next == "U+" || next == "M+")) {
            append_escape(out, '\\');
        } else {
            out.push_back(text[i] == '\0' ? ' ' : text[i]);
        }
    }
    return out;
}

/// Simple lower case of one character, letters of the scripts that names in drawings are
/// written in.
std::uint32_t lower(std::uint32_t c) {
    if (c < 0x80) {
        return c >= 'A' && c <= 'Z' ? c + 32 : c;
    }
    if ((c >= 0xc0 && c <= 0xde && c != 0xd7) || (c >= 0x391 && c <= 0x3ab && c != 0x3a2) ||
        (c >= 0x410 && c <= 0x42f)) {
        return c + 32;
    }
    if (c >= 0x400 && c <= 0x40f) {
        return c + 80;
    }
    const bool odd_upper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17e);
    const bool even_upper =
        (c >= 0x100 && c <= 0x137 && c != 0x130) || (c >= 0x14a && c <= 0x177) ||
        (c >= 0x218 && c <= 0x21f) || (c >= 0x460 && c <= 0x481) || (c >= 0x48a && c <= 0x4bf) ||
        (c >= 0x4d0 && c <= 0x52f) || (c >= 0x1e00 && c <= 0x1e95) || (c >= 0x1ea0 && c <= 0x1eff);
    if (odd_upper) {
        return (c & 1) != 0 ? c + 1 : c;
    }
    if (even_upper) {
        return (c & 1) == 0 ? c + 1 : c;
    }
    switch (c) {
    case 0x178:
        return 0xff;
    case 0x386:
        return 0x3ac;
    case 0x388:
    case 0x389:
    case 0x38a:
        return c + 37;
    case 0x38c:
        return 0x3cc;
    case 0x38e:
    case 0x38f:
        return c + 63;
    default:
        return c;
    }
}

} // namespace

Encoding::Encoding(int version, std::string_view code_page) { set(version, code_page); }
Encoding::~Encoding() = default;

void Encoding::set(int version, std::string_view code_page) {
    named_ = !code_page.empty();
    page_ = page_of(code_page);
    utf8_ = version >= 1021 || page_ == "UTF-8";
}

/// Bytes that are no UTF-8 in a file that should be are taken for the file's code page; and a file
/// without any code page may well be UTF-8.
std::string Encoding::to_utf8(std::string_view bytes) const {
    if (is_ascii(bytes)) {
        return std::string(bytes);
    }
    if ((utf8_ || !named_) && is_valid_utf8(bytes)) {
        return std::string(bytes);
    }
    return convert_page(bytes, page_.empty() || page_ == "UTF-8" ? kDefaultPage : page_.c_str());
}

std::string Encoding::decode(std::string_view bytes) const {
    return resolve_escapes(to_utf8(bytes));
}

std::string Encoding::encode(std::string_view text) const {
    const std::string clean = escape_controls(text);
    if (utf8_ || is_ascii(clean)) {
        return clean;
    }
    Converter converter(page_.c_str(), "UTF-8");
    std::string out;
    for (std::size_t i = 0; i < clean.size();) {
        const std::size_t begin = i;
        const std::uint32_t c = next_char(clean, i);
        const std::string_view piece = std::string_view(clean).substr(begin, i - begin);
        if (c < 0x80) {
            out += piece;
        } else if (c >= 0x110000) {
            out.push_back('?');
        } else if (!converter.valid() || converter.convert(piece, out) != piece.size()) {
            append_escape(out, c);
        }
    }
    return out;
}

bool is_valid_utf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        if (next_char(text, i) >= 0x110000) {
            return false;
        }
    }
    return true;
}

std::string fold_name(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t begin = i;
        const std::uint32_t c = next_char(utf8, i);
        const std::uint32_t folded = c < 0x110000 ? lower(c) : c;
        if (folded == c) {
            out += utf8.substr(begin, i - begin);
        } else {
            append_utf8(out, folded);
        }
    }
    return out;
}

} // namespace dxf
