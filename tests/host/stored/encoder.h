// Writes stored graphics, for the tests of their reader.
#pragma once

#include "host/ge/ge.h"

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace encode {

/// The bytes of one chunk's data.
class Data {
public:
    Data& u32(std::uint32_t value) { return little(value, 4); }
    Data& i32(std::int32_t value) { return u32(static_cast<std::uint32_t>(value)); }
    Data& u64(std::uint64_t value) { return little(value, 8); }
    Data& real(double value) { return u64(std::bit_cast<std::uint64_t>(value)); }
    Data& reals(std::initializer_list<double> values) {
        for (const double v : values) {
            real(v);
        }
        return *this;
    }
    Data& point(double x, double y, double z) { return reals({x, y, z}); }
    Data& points(const std::vector<AcGePoint3d>& list) {
        u32(static_cast<std::uint32_t>(list.size()));
        for (const AcGePoint3d& p : list) {
            point(p.x, p.y, p.z);
        }
        return *this;
    }
    Data& integers(std::initializer_list<std::int32_t> values) {
        for (const std::int32_t v : values) {
            i32(v);
        }
        return *this;
    }
    Data& matrix(const AcGeMatrix3d& m) {
        for (const auto& row : m.entry) {
            reals({row[0], row[1], row[2], row[3]});
        }
        return *this;
    }
    Data& text(const std::string& value) {
        bytes += value + '\0';
        return align();
    }
    Data& unicode(const std::u16string& value) {
        for (const char16_t c : value + u'\0') {
            little(c, 2);
        }
        return align();
    }
    std::string bytes;

private:
    Data& little(std::uint64_t value, int count) {
        for (int i = 0; i < count; ++i) {
            bytes += static_cast<char>(value >> (8 * i) & 0xff);
        }
        return *this;
    }
    Data& align() {
        bytes.resize((bytes.size() + 3) / 4 * 4);
        return *this;
    }
};

/// Chunks one after the other.
class Graphics {
public:
    Graphics& add(std::uint32_t type, const Data& data = {}) {
        chunks_ += Data().u32(static_cast<std::uint32_t>(data.bytes.size() + 8)).u32(type).bytes +
                   data.bytes;
        ++count_;
        return *this;
    }
    std::string bytes() const {
        return Data().u32(static_cast<std::uint32_t>(chunks_.size() + 8)).u32(count_).bytes +
               chunks_;
    }
    /// As a file has it: length and hexadecimal pieces.
    std::string tags(int length_code) const {
        static constexpr char kDigits[] = "0123456789ABCDEF";
        const std::string all = bytes();
        std::string text = std::to_string(length_code) + "\n" + std::to_string(all.size()) + "\n";
        for (std::size_t i = 0; i < all.size(); i += 100) {
            text += "310\n";
            for (const char c : all.substr(i, 100)) {
                text += kDigits[static_cast<unsigned char>(c) >> 4];
                text += kDigits[c & 15];
            }
            text += "\n";
        }
        return text;
    }

private:
    std::string chunks_;
    std::uint32_t count_ = 0;
};

/// Bits, the highest of a byte first.
class Bits {
public:
    Bits& bits(std::uint64_t value, int count) {
        for (int i = count - 1; i >= 0; --i, ++used_) {
            if (used_ % 8 == 0) {
                bytes += '\0';
            }
            bytes.back() = static_cast<char>(bytes.back() | (value >> i & 1) << (7 - used_ % 8));
        }
        return *this;
    }
    Bits& little(std::uint64_t value, int count) {
        for (int i = 0; i < count; ++i) {
            bits(value >> (8 * i) & 0xff, 8);
        }
        return *this;
    }
    Bits& bitShort(std::uint16_t value) { return bits(0, 2).little(value, 2); }
    Bits& bitLong(std::uint8_t value) { return bits(1, 2).bits(value, 8); }
    Bits& raw(double value) { return little(std::bit_cast<std::uint64_t>(value), 8); }
    Bits& bitDouble(double value) {
        return value == 0 ? bits(2, 2) : value == 1 ? bits(1, 2) : bits(0, 2).raw(value);
    }
    /// With the form that takes the fewest bytes against the number before.
    Bits& changed(double value, double before) {
        const auto now = std::bit_cast<std::uint64_t>(value);
        const std::uint64_t difference = now ^ std::bit_cast<std::uint64_t>(before);
        if (difference == 0) {
            return bits(0, 2);
        }
        if (difference >> 32 == 0) {
            return bits(1, 2).little(now, 4);
        }
        if (difference >> 48 == 0) {
            return bits(2, 2).little(now >> 32, 2).little(now, 4);
        }
        return bits(3, 2).raw(value);
    }
    std::string bytes;

private:
    std::size_t used_ = 0;
};

} // namespace encode
