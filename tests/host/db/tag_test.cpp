// Tags in all forms: what is read, what is passed over and told, what is written.
#include "support.h"

#include "host/dxf/encoding.h"
#include "host/dxf/tag_writer.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <locale>

using namespace test_dxf;
using dxf::Form;
using dxf::Tag;
using dxf::TagReader;
using testing::ElementsAre;

namespace {

struct ReadResult {
    std::vector<std::string> tags; ///< "code=value"
    std::vector<TagReader::Fault> faults;
};

ReadResult read_tags(std::string_view bytes, Form form = Form::kAscii, char line_end = '\n') {
    ReadResult result;
    TagReader reader(bytes, form, line_end);
    reader.set_fault_sink(
        [&](TagReader::Fault what, const char*) { result.faults.push_back(what); });
    Tag tag;
    while (reader.next(tag)) {
        result.tags.push_back(std::to_string(tag.code) + "=" + std::string(tag.raw()));
    }
    return result;
}

struct AsciiCase {
    const char* what;
    std::string bytes;
    std::vector<std::string> tags;
    std::size_t faults;
};

class AsciiTags : public testing::TestWithParam<AsciiCase> {};

TEST_P(AsciiTags, AreReadAsTheyStand) {
    const ReadResult result = read_tags(GetParam().bytes);
    EXPECT_EQ(result.tags, GetParam().tags) << GetParam().what;
    EXPECT_EQ(result.faults.size(), GetParam().faults) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AsciiTags,
    testing::Values(AsciiCase{"line feeds", "  0\nLINE\n  8\n0\n", {"0=LINE", "8=0"}, 0},
                    AsciiCase{
                        "carriage returns", "  0\r\nLINE\r\n  8\r\n0\r\n", {"0=LINE", "8=0"}, 0},
                    AsciiCase{"no last line end", "0\nEOF", {"0=EOF"}, 0},
                    AsciiCase{"blanks and tabs about codes", "\t 8 \t\n name \n", {"8= name "}, 0},
                    AsciiCase{"empty values", "1\n\n2\n\n", {"1=", "2="}, 0},
                    AsciiCase{"negative code", " -4\n<AND\n", {"-4=<AND"}, 0},
                    AsciiCase{"comment", "999\nhello\n0\nEOF\n", {"999=hello", "0=EOF"}, 0},
                    AsciiCase{"code without value", "0\nLINE\n8\n", {"0=LINE"}, 1},
                    AsciiCase{"letters for a code", "0\nLINE\nabc\n8\n0\n", {"0=LINE", "8=0"}, 1},
                    AsciiCase{"code out of range", "0\nLINE\n99999\n8\n0\n", {"0=LINE", "8=0"}, 1},
                    AsciiCase{"real for a code", "1.5\n8\n0\n", {"8=0"}, 1},
                    AsciiCase{"blank lines between", "0\nLINE\n\n8\n0\n", {"0=LINE", "8=0"}, 1},
                    AsciiCase{"end-of-file mark", "0\nEOF\n\x1a", {"0=EOF"}, 0},
                    AsciiCase{"nothing", "", {}, 0}));

TEST(Tags, OldLineEndsAreCarriageReturnsAlone) {
    const std::string bytes = "  0\rSECTION\r  2\rHEADER\r";
    const dxf::FileForm form = dxf::detect_form(bytes);
    EXPECT_EQ(form.line_end, '\r');
    EXPECT_THAT(read_tags(bytes, form.form, form.line_end).tags,
                ElementsAre("0=SECTION", "2=HEADER"));
}

TEST(Tags, ByteOrderMarkIsNoTag) {
    EXPECT_EQ(dxf::detect_form("\xef\xbb\xbf  0\nSECTION\n").first_byte, 3u);
}

// ---- values ----

struct NumberCase {
    const char* text;
    bool good;
    double value;
};

TEST(Tags, NumbersAreReadOrRefused) {
    const NumberCase cases[] = {
        {"1.5", true, 1.5},   {" +2. ", true, 2},   {"-.5", true, -0.5},
        {"1e-3", true, 1e-3}, {"1E+05", true, 1e5}, {"7", true, 7},
        {"nan", false, 0},    {"inf", false, 0},    {"-1.#IND", false, 0},
        {"1,5", false, 0},    {"", false, 0},       {"12abc", false, 0},
        {"1e999", false, 0},  {"1e-999", true, 0},  {"500000.0000001", true, 500000.0000001}};
    for (const NumberCase& c : cases) {
        Tag tag;
        tag.code = 10;
        tag.data = c.text;
        tag.length = static_cast<std::uint32_t>(std::strlen(c.text));
        double value = 99;
        EXPECT_EQ(dxf::parse_real(tag, value), c.good) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
    }
}

TEST(Tags, WholeNumbersMayBeWrittenAsReals) {
    const std::pair<const char*, std::int64_t> cases[] = {
        {"  70", 70}, {"1.0", 1}, {"-3.9", -3}, {"9999999999", 9999999999LL}};
    for (const auto& [text, wanted] : cases) {
        Tag tag;
        tag.code = 70;
        tag.data = text;
        tag.length = static_cast<std::uint32_t>(std::strlen(text));
        std::int64_t value = 0;
        EXPECT_TRUE(dxf::parse_integer(tag, value)) << text;
        EXPECT_EQ(value, wanted);
    }
    std::uint64_t handle = 0;
    EXPECT_TRUE(dxf::parse_handle(" 1aF ", handle));
    EXPECT_EQ(handle, 0x1afu);
    EXPECT_FALSE(dxf::parse_handle("XYZ", handle));
    EXPECT_FALSE(dxf::parse_handle("11112222333344445", handle)) << "more than 64 bits";
}

// ---- writing ----

/// One value of every type through a form and back.
class EveryForm : public testing::TestWithParam<Form> {};

TEST_P(EveryForm, HoldsEveryTypeOfValue) {
    std::string bytes;
    dxf::WriteStyle style;
    style.form = GetParam();
    dxf::TagWriter writer(bytes, style);
    writer.raw(0, "POINT");
    writer.handle(5, 0xFFFFFFFF0);
    writer.real(10, -1.25e-7);
    writer.integer(70, -3);
    writer.integer(90, 123456789);
    writer.integer(160, 1LL << 40);
    writer.integer(290, 1);
    writer.chunk(310, std::string("\0\xff\n", 3));
    writer.raw(1001, "ACAD");
    writer.real(1040, 0.1);
    writer.integer(1071, -70000);
    const auto tags = plain_tags(
        (style.form == Form::kAscii ? std::string()
                                    : std::string("AutoCAD Binary DXF\r\n\x1a\0", 22)) +
        (style.form == Form::kAscii ? ""
                                    : std::string(style.form == Form::kBinary12 ? 1 : 2, '\0') +
                                          std::string("SECTION\0", 8)) +
        bytes);
    const std::size_t first = style.form == Form::kAscii ? 0 : 1;
    ASSERT_EQ(tags.size(), first + 11);
    const std::vector<PlainTag> wanted = {{0, "POINT"},        {5, "FFFFFFFF0"},
                                          {10, "", -1.25e-7},  {70, "", -3},
                                          {90, "", 123456789}, {160, "", 1099511627776.0},
                                          {290, "", 1},        {310, std::string("\0\xff\n", 3)},
                                          {1001, "ACAD"},      {1040, "", 0.1},
                                          {1071, "", -70000}};
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), tags.begin() + first));
}

INSTANTIATE_TEST_SUITE_P(Forms, EveryForm,
                         testing::Values(Form::kAscii, Form::kBinary12, Form::kBinary13));

TEST(Tags, BinaryFilesCutAnywhereEndWithoutReadingOn) {
    std::string bytes;
    dxf::WriteStyle style;
    style.form = Form::kBinary13;
    dxf::TagWriter writer(bytes, style);
    writer.raw(0, "LINE");
    writer.real(10, 1);
    writer.chunk(310, "abc");
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const std::string cut = bytes.substr(0, length); // exact allocation: a sanitizer watches
        const ReadResult result = read_tags(cut, Form::kBinary13);
        EXPECT_LE(result.faults.size(), 1u);
        EXPECT_LE(result.tags.size(), 2u);
    }
}

TEST(Tags, RealsComeBackExactlyWhateverTheLocale) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    for (const double value : {0.1, 1.0 / 3, 1e300, -5e-324, 123456789.123456789, 0.0, 1e15}) {
        std::string text;
        dxf::append_real(text, value);
        EXPECT_TRUE(text.find_first_of(".e") != std::string::npos) << text;
        Tag tag;
        tag.code = 40;
        tag.data = text.data();
        tag.length = static_cast<std::uint32_t>(text.size());
        double back = 0;
        EXPECT_TRUE(dxf::parse_real(tag, back)) << text;
        EXPECT_EQ(back, value);
    }
    std::locale::global(before);
}

// ---- text ----

struct PageCase {
    const char* page;
    std::string bytes, utf8;
};

TEST(Encoding, OldCodePagesBothWays) {
    const PageCase cases[] = {{"ANSI_1252", "W\xe4nde", "Wände"},
                              {"ANSI_1250", "\x8ekola", "Žkola"},
                              {"ANSI_1251", "\xd1\xf2\xe5\xed\xe0", "Стена"},
                              {"ANSI_1253", "\xd4\xef\xdf\xf7\xef\xf2", "Τοίχος"},
                              {"ANSI_932", "\x95\xc7", "壁"},
                              {"ANSI_936", "\xc7\xbd\xb1\xda", "墙壁"},
                              {"ANSI_949", "\xba\xae", "벽"},
                              {"ANSI_950", "\xc0\xf0", "牆"},
                              {"ANSI_874", "\xbc\xb9\xd1\xa7", "ผนัง"},
                              {"dos850", "W\x84nde", "Wände"},
                              {"DOS437", "W\x84nde", "Wände"},
                              {"MAC-ROMAN", "W\x8ande", "Wände"},
                              {"no such page", "W\xe4nde", "Wände"}};
    for (const PageCase& c : cases) {
        const dxf::Encoding encoding(1015, c.page);
        EXPECT_EQ(encoding.decode(c.bytes), c.utf8) << c.page;
        EXPECT_EQ(encoding.encode(c.utf8), c.bytes) << c.page;
    }
}

TEST(Encoding, EscapesAreResolvedAndMadeWhereThePageLacksACharacter) {
    const dxf::Encoding old(1015, "ANSI_1252");
    EXPECT_EQ(old.decode("\\U+5899 a"), "墙 a");
    EXPECT_EQ(old.decode("\\U+d83d\\U+DE00"), "😀");
    EXPECT_EQ(old.decode("\\M+195C7"), "壁") << "a character of page 932";
    EXPECT_EQ(old.decode("\\U+12"), "\\U+12") << "no escape: left as it is";
    EXPECT_EQ(old.encode("a墙"), "a\\U+5899");
    EXPECT_EQ(old.decode(old.encode("😀")), "😀");
    EXPECT_EQ(old.encode("two\nlines"), "two^Jlines");
    EXPECT_EQ(old.decode("a^Jb^Mc^Id^ e^2^"), "a\nb\rc\td^e^2^");
    for (const char* text : {"^J", "^ ", "x^2", "\\U+00E4", "\\M+10041", "\r\n", "^^J\\", "^"}) {
        EXPECT_EQ(old.decode(old.encode(text)), text);
    }
}

TEST(Encoding, NewFilesAreUtf8AndWrongBytesAreTakenForTheCodePage) {
    const dxf::Encoding modern(1032, "ANSI_1252");
    EXPECT_EQ(modern.decode("墙"), "墙");
    EXPECT_EQ(modern.encode("墙"), "墙");
    EXPECT_EQ(modern.decode("W\xe4nde"), "Wände");
    const dxf::Encoding unnamed(1009, "");
    EXPECT_EQ(unnamed.decode("Wände"), "Wände") << "no code page was told, and this is UTF-8";
    EXPECT_EQ(unnamed.decode("W\xe4nde"), "Wände");
}

TEST(Encoding, NamesFoldWithoutCaseInThreeScripts) {
    EXPECT_EQ(dxf::fold_name("WÄNDE Ñ"), "wände ñ");
    EXPECT_EQ(dxf::fold_name("ŽŠŁÝŸ"), "žšłýÿ");
    EXPECT_EQ(dxf::fold_name("ΤΟΊΧΟΣ"), "τοίχοσ");
    EXPECT_EQ(dxf::fold_name("СТЕНА Ё"), "стена ё");
    EXPECT_EQ(dxf::fold_name("墙×÷ß"), "墙×÷ß");
    EXPECT_EQ(dxf::fold_name("bad\xff\xc3"), "bad\xff\xc3") << "wrong bytes stay";
}

} // namespace
