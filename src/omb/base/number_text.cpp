// Nine significant digits by exact integer arithmetic: a double is m * 2^e, so m * 5^k fits in 128
// bits for k up to 27, and v * 10^k = (m * 5^k) * 2^(e + k) is known to the last bit.
#include "omb/base/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

namespace number_text {

namespace {

__extension__ using u128 = unsigned __int128;

constexpr int digits = 9;
constexpr std::uint32_t lowest = 100000000;   ///< smallest number of nine digits
constexpr std::uint32_t ceiling = 1000000000; ///< first number beyond them
constexpr int largest_power = 27;             ///< 5^27 < 2^63

constexpr auto powers_of_five = [] {
    std::array<std::uint64_t, largest_power + 1> table{};
    std::uint64_t value = 1;
    for (std::uint64_t& entry : table) {
        entry = value;
        value *= 5;
    }
    return table;
}();

constexpr auto digit_pairs = [] {
    std::array<char, 200> table{};
    for (std::size_t i = 0; i < 100; ++i) {
        table[2 * i] = static_cast<char>('0' + i / 10);
        table[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return table;
}();

void put_pair(char* out, std::uint32_t value) { std::memcpy(out, &digit_pairs[2 * value], 2); }

/// The nine digits of `value`, which lies below `ceiling`.
void put_nine(char* out, std::uint32_t value) {
    const std::uint32_t high = value / 10000;
    const std::uint32_t low = value % 10000;
    out[0] = static_cast<char>('0' + high / 10000);
    put_pair(out + 1, high % 10000 / 100);
    put_pair(out + 3, high % 100);
    put_pair(out + 5, low / 100);
    put_pair(out + 7, low % 100);
}

/// round(mantissa * 2^exponent * 10^k), half to even; `whole` is the part before rounding.
std::uint64_t scaled(std::uint64_t mantissa, int exponent, int k, std::uint64_t& whole) {
    const u128 product = static_cast<u128>(mantissa) * powers_of_five[static_cast<std::size_t>(k)];
    const int shift = -(exponent + k);
    if (shift <= 0) {
        whole = static_cast<std::uint64_t>(product << -shift);
        return whole;
    }
    if (shift > 126) {
        whole = 0;
        return 0;
    }
    whole = static_cast<std::uint64_t>(product >> shift);
    const u128 half = static_cast<u128>(1) << (shift - 1);
    const u128 rest = product & ((half << 1) - 1);
    const bool up = rest > half || (rest == half && (whole & 1) != 0);
    return whole + (up ? 1 : 0);
}

/// Decimal form: sign already written, `nine` digits of d.dddddddd * 10^power.
char* put_decimal(char* out, std::uint32_t nine, int power) {
    char text[16];
    put_nine(text, nine);
    int used = digits;
    while (used > 1 && text[used - 1] == '0') {
        --used;
    }
    if (power >= 0 && power < digits) {
        const int whole = power + 1;
        std::memcpy(out, text, static_cast<std::size_t>(digits));
        if (used <= whole) {
            return out + whole;
        }
        std::memmove(out + whole + 1, text + whole, static_cast<std::size_t>(digits - whole));
        out[whole] = '.';
        return out + used + 1;
    }
    if (power < 0 && power >= -4) {
        std::copy_n("0.0000", 6, out);
        std::memcpy(out + 1 - power, text, static_cast<std::size_t>(digits));
        return out + 1 - power + used;
    }
    *out++ = text[0];
    if (used > 1) {
        *out++ = '.';
        std::memcpy(out, text + 1, static_cast<std::size_t>(used - 1));
        out += used - 1;
    }
    *out++ = 'e';
    *out++ = power < 0 ? '-' : '+';
    put_pair(out, static_cast<std::uint32_t>(power < 0 ? -power : power));
    return out + 2;
}

char* put_special(char* out, std::uint64_t bits, double value) {
    const bool negative = (bits >> 63) != 0;
    const char* word = std::isnan(value) ? "nan" : "inf";
    if (negative) {
        *out++ = '-';
    }
    std::memcpy(out, word, 3);
    return out + 3;
}

char* put_slow(char* out, double value) {
    return std::to_chars(out, out + max_chars, value, std::chars_format::general, digits).ptr;
}

/// Whole numbers below `ceiling`, the commonest coordinates of all.
char* put_whole(char* out, std::uint32_t value) {
    return std::to_chars(out, out + max_chars, value).ptr;
}

} // namespace

char* write_g9(char* out, double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const double size = std::fabs(value);
    if (!(size < static_cast<double>(ceiling))) {
        return std::isfinite(value) ? put_slow(out, value) : put_special(out, bits, value);
    }
    if (size < 1e-18 && size != 0) {
        return put_slow(out, value);
    }
    if ((bits >> 63) != 0) {
        *out++ = '-';
    }
    const auto whole_value = static_cast<std::uint32_t>(size);
    if (static_cast<double>(whole_value) == size) {
        return put_whole(out, whole_value);
    }
    // From 1e-18 on every double is normal.
    const int biased = static_cast<int>((bits >> 52) & 0x7ff);
    const std::uint64_t mantissa = (bits & 0xfffffffffffffULL) | 0x10000000000000ULL;
    const int exponent = biased - 1075;
    // floor(log10) from the binary exponent (1233 / 4096 is just below log10(2)), at most 1 low.
    int power = ((biased - 1023) * 1233) >> 12;
    std::uint64_t whole = 0;
    std::uint64_t nine = scaled(mantissa, exponent, digits - 1 - power, whole);
    if (whole >= ceiling) {
        ++power;
        nine = scaled(mantissa, exponent, digits - 1 - power, whole);
    }
    if (nine >= ceiling) { // rounded up to the next power of ten
        nine = lowest;
        ++power;
    }
    return put_decimal(out, static_cast<std::uint32_t>(nine), power);
}

char* write_int(char* out, std::int32_t value) {
    return std::to_chars(out, out + max_chars, value).ptr;
}

char* write_hex(char* out, std::uint32_t value) {
    return std::to_chars(out, out + max_chars, value, 16).ptr;
}

char* write_u64(char* out, std::uint64_t value) {
    return std::to_chars(out, out + max_chars, value).ptr;
}

char* write_hex64(char* out, std::uint64_t value, bool upper_case) {
    char* end = std::to_chars(out, out + max_chars, value, 16).ptr;
    for (char* c = out; upper_case && c != end; ++c) {
        *c = *c >= 'a' ? static_cast<char>(*c - 'a' + 'A') : *c;
    }
    return end;
}

void append_g9(std::string& text, double value) {
    char buffer[max_chars];
    text.append(buffer, write_g9(buffer, value));
}

void append_int(std::string& text, std::int32_t value) {
    char buffer[max_chars];
    text.append(buffer, write_int(buffer, value));
}

void append_hex(std::string& text, std::uint32_t value) {
    char buffer[max_chars];
    text.append(buffer, write_hex(buffer, value));
}

void append_u64(std::string& text, std::uint64_t value) {
    char buffer[max_chars];
    text.append(buffer, write_u64(buffer, value));
}

} // namespace number_text
