// Text of drawings: code pages of old files, escapes, and the folding of names.
#pragma once

#include <string>
#include <string_view>

namespace dxf {

/// The text encoding of one file. Files from AC1021 on are UTF-8; older ones name a code page.
class Encoding {
public:
    Encoding() = default;
    /// `version` is the number in $ACADVER (1009 for R12), `code_page` the value of $DWGCODEPAGE.
    Encoding(int version, std::string_view code_page);
    Encoding(const Encoding&) = delete;
    Encoding& operator=(const Encoding&) = delete;
    ~Encoding();

    void set(int version, std::string_view code_page);
    bool is_utf8() const { return utf8_; }
    /// File bytes to UTF-8, with \U+XXXX, \M+nXXXX and the carets ^J ^M ^I resolved. A byte that is
    /// none of the code page becomes U+FFFD.
    std::string decode(std::string_view bytes) const;
    /// UTF-8 to file bytes; characters that the code page lacks become \U+XXXX, line breaks ^J and
    /// ^M, and what looks like an escape is escaped itself: decode gives the text back.
    std::string encode(std::string_view text) const;

private:
    std::string to_utf8(std::string_view bytes) const;
    bool utf8_ = true;
    bool named_ = false; ///< the file named its code page
    std::string page_;   ///< iconv's name of it
};

bool is_valid_utf8(std::string_view text);
/// Lower case of Latin, Greek and Cyrillic letters; other characters as they stand.
std::string fold_name(std::string_view utf8);

} // namespace dxf
