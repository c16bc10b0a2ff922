// Characters to tokens: one table of texts and what becomes of them.
#include "../fixture.h"
#include "dcl_text.h"
#include "omb/base/application_files.h"

#include <algorithm>
#include <chrono>
#include <set>

using dcl_test::tokens;

namespace {

struct scan_case {
    std::string text, tokens;
};

void expect_all(const std::vector<scan_case>& cases) {
    for (const scan_case& one : cases) {
        EXPECT_EQ(tokens(one.text), one.tokens) << "text:\n" << one.text;
    }
}

class DialogScan : public StoreTest {};

TEST_F(DialogScan, numbers_points_and_signs) {
    expect_all({
        {".5 .a . .a.b", "double<.5> dotted<.a> . dotted<.a> dotted<.b>"},
        {"--1 - -2.5 --.5", "const<--1> - double<-2.5> double<--.5>"},
        {"1.5.2", "double<1.5> double<.2>"},
        {"1e3 1. 5.a +2", "const<1> str<e3> const<1> . const<5> dotted<.a> + const<2>"},
        {"-a -.a ---", "- str<a> - dotted<.a> - - -"},
        {"'a'", "' str<a> '"},
        {"3px", "const<3> str<px>"},
    });
}

TEST_F(DialogScan, words) {
    const auto row = [](const char* word) { return std::to_string(find_dcl_keyword(word)); };
    expect_all({
        {"value_table value_tablex", "table#0 str<value_tablex>"},
        {"true false TRUE", "const#1 const#0 str<TRUE>"},
        {"CM LAYERS_ONE Cm", "const#12 const#4 str<Cm>"},
        {"width label margx dialog row command",
         "dvar#" + row("width") + " string_var#" + row("label") + " ivar#" + row("margx") +
             " dialog#" + row("dialog") + " control#" + row("row") + " list#" + row("command")},
        {"dc_set_global_int rb_x dcx foo", "call<dc_set_global_int> call<rb_x> str<dcx> str<foo>"},
        {"#word # word ##a", "str<#word> # str<word> # str<#a>"},
        {"#width", "str<#width>"},
        {"\xC3\xA9 \xE9", "233 233"},
    });
    EXPECT_EQ(tokens("a \xE2\x82\xAC b"), "str<a> str<b> | 1: Unknown character");
    EXPECT_EQ(tokens(std::string("a\0b", 3)), "str<a> str<b> | 1: Unknown character");
    EXPECT_EQ(tokens("\xEF\xBB\xBFwidthx\r\n"), "str<widthx>");
}

TEST_F(DialogScan, keyword_table_keeps_its_aliases) {
    std::set<std::string_view> words;
    for (const cl_dcl_keyword& row : dcl_keywords()) {
        EXPECT_TRUE(words.insert(row.keyword).second) << row.keyword;
        EXPECT_EQ(&dcl_keywords()[static_cast<std::size_t>(find_dcl_keyword(row.keyword))], &row);
    }
    EXPECT_EQ(dcl_keywords().back().keyword, "value_table");
    const auto same = [](const char* a, const char* b) {
        return first_alias(find_dcl_keyword(a)) == first_alias(find_dcl_keyword(b));
    };
    EXPECT_TRUE(same("begin_radio", "begin_value") && same("sid", "id") &&
                same("global", "global_variable"));
    EXPECT_TRUE(same("skip_if_not_global3", "skip_if_not_global5"));
    EXPECT_TRUE(same("skip_if_not_debug", "skip_if_not_omb"));
    EXPECT_FALSE(same("skip_if_global3", "skip_if_global4"));
    EXPECT_FALSE(same("width", "height") || same("row", "column"));
    EXPECT_EQ(find_dcl_keyword("Width"), -1);
    EXPECT_EQ(find_dcl_keyword(""), -1);
}

TEST_F(DialogScan, comments) {
    expect_all({
        {"a /* b\n\"c\n*/ d // e\nf /", "str<a> str<d> str<f> /"},
        {"a /* b", "str<a>"},
        {"/**/ /***/ a", "str<a>"},
        {"\n/*\n\n*/\n\"x", " | 5: Unterminated quoted string - missing \""},
    });
}

TEST_F(DialogScan, strings) {
    expect_all({
        {R"("a\"b\n\tc" "" "x"y)", R"(str<a"b\n\tc> str<> str<x> str<y>)"},
        {R"("a\\"b)", " | 1: Unterminated quoted string - missing \""},
        {"\"abc\"\n\"def\"", "str<abcdef>"},
        {"\"abc\" \t\n \t\"def\" \n \"g\";", "str<abcdefg> ;"},
        {"\"abc\" // note \"x\"\n\"def\"", "str<abcdef>"},
        {"\"abc\" + // note\n\"def\"", "str<abcdef>"},
        {"\"abc\" +// note\n   \"def\"", "str<abcdef>"},
        {"\"abc\" +\n\"def\"", "str<abc> + str<def>"},
        {"\"abc\"\n\n\"def\"", "str<abc> str<def>"},
        {"\"abc\" \"def\"", "str<abc> str<def>"},
        {"\"abc\n\"def\"", "str<def> | 1: Unterminated quoted string - missing \""},
        {"`abc` `d`", "translated<`abc`> translated<`d`>"},
        {"`abc` \n `def`", "translated<`abcdef`>"},
        {"`abc` +\n`def`", "translated<`abcdef`>"},
        {"`abc` // x\n`def`", "translated<`abc`> translated<`def`>"},
        {"`abc\nx", "str<x> | 1: Unterminated quote - missing '"},
        {"`abc", " | 1: Unterminated quote - missing '"},
    });
    const cl_dcl_token_list list = list_dcl_tokens_of_text("\"a\"\n\"b\"\n/*\n*/ x");
    ASSERT_EQ(list.tokens.size(), 2U);
    EXPECT_EQ(list.tokens[0].line, 2);
    EXPECT_EQ(list.tokens[1].line, 4);
}

TEST_F(DialogScan, conditionals) {
    expect_all({
        {"#define A\n#ifdef A\n1\n#else\n2\n#endif\n3", "const<1> const<3>"},
        {"#ifdef A\n1\n#else\n2\n#endif\n3", "const<2> const<3>"},
        {"#define A\n#define B\n#ifdef A\n1\n#endif\n#ifdef B\n2\n#endif\n3", "const<3>"},
        {"#define A\n#ifdef  A\n1\n#endif\n3", "const<3>"},
        {"#define A\n#ifdef\tA\n1\n#endif\n3", "const<1> const<3>"},
        // A branch that is skipped ends at the first end, nested or not.
        {"#ifdef A\n1\n#ifdef B\n2\n#endif\n3\n#endif\n4",
         "const<3> const<4> | 7: Unexected endif"},
        // In a skipped branch nothing may stand between the word and the line's end.
        {"#ifdef A\n1\n#endif // A\n2\n#endif\n3", "const<3>"},
        {"#define A\n#ifdef A\n1\n#endif // A\n2", "const<1> const<2>"},
        {"#define A\n#ifdef A\n1 #else whatever \"\n2\n#endif", "const<1>"},
        {"#endif\n1", "const<1> | 1: Unexected endif"},
        {"#define\tA\n1", "const<1> | 1: #define line not properly formed: #define\tA"},
        {"# \t define A B\n#ifdef A\n1\n#endif\n", "str<B> const<1>"},
        {"#define;", "; | 1: #define line not properly formed: #define"},
    });
}

TEST_F(DialogScan, includes) {
    put("main.dcl", "1 #include \"sub\" 2\n#include\"gone\"3\n\"x\n");
    put("sub.dcl", "\n# include \"deep.dcl\"\n\"y\n4");
    put("deep.dcl", "#define A\n5 // no line end");
    cl_dcl_token_list list = list_dcl_tokens(path("main.dcl"));
    EXPECT_EQ(dcl_test::show(list), "const<1> const<5> const<4> const<2> const<3>"
                                    " | 3: Unterminated quoted string - missing \""
                                    " | 3: Unterminated quoted string - missing \"");
    EXPECT_EQ(list.errors.at(0).file, "sub");
    EXPECT_EQ(list.errors.at(1).file, path("main.dcl"));
    EXPECT_EQ(list.errors.at(1).column, 1);
    EXPECT_EQ(list.errors.at(1).source_line, "\"x");

    put("circle.dcl", "1 #include \"circle\"\n");
    list = list_dcl_tokens(path("circle.dcl"));
    ASSERT_EQ(list.errors.size(), 1U);
    EXPECT_EQ(list.errors[0].message, "Includes nest too deep or go in a circle: circle");
    EXPECT_EQ(list.tokens.size(), cl_dcl_loader::deepest_include + 1);

    put("wide.dcl", "#include \"wide\"\n#include \"wide\"\n");
    EXPECT_EQ(list_dcl_tokens(path("wide.dcl")).errors.back().message,
              "Includes nest too deep or go in a circle: wide");
    put("quote.dcl", "#include sub\n1\n#include \"sub\n2");
    EXPECT_EQ(dcl_test::show(list_dcl_tokens(path("quote.dcl"))),
              "const<1> const<2> | 1: #include line not properly formed: #include sub"
              " | 3: #include line not properly formed: #include \"sub");
    EXPECT_FALSE(list_dcl_tokens(path("none.dcl")).readable);
    EXPECT_FALSE(list_dcl_tokens(folder.string()).readable);
}

TEST_F(DialogScan, applications_files_are_found_in_any_case) {
    set_support_folder(folder.string());
    std::filesystem::create_directories(folder / "appl" / "test" / "DCL");
    put("appl/test/DCL/Test_Main.dcl", "1");
    put("appl/test/DCL/test_other.dcl", "2 #include \"test_main\"\n3");
    EXPECT_EQ(find_application_file("dcl", "test", "test_main.dcl"),
              path("appl/test/DCL/Test_Main.dcl"));
    EXPECT_EQ(find_application_file("dcl", "test", "none.dcl"), "");
    EXPECT_EQ(find_application_file("dcl", "test", "../DCL/Test_Main.dcl"), "");
    EXPECT_EQ(find_application_file("dcl", "..", "x"), "");
    EXPECT_EQ(find_application_file("dcl", "test", folder.string() + "/x"), "");
    EXPECT_EQ(find_application_file("dcl", "test", ""), "");
    put("test_own.dcl", "0 #include \"test_other\"\n4"); // not beside it: the application's
    EXPECT_EQ(dcl_test::show(list_dcl_tokens(path("test_own.dcl"))),
              "const<0> const<2> const<1> const<3> const<4>");
    set_support_folder({});
}

TEST_F(DialogScan, long_tokens) {
    const std::string word(500, 'w');
    EXPECT_EQ(tokens(word), "str<" + word + ">");
    for (const std::string& text :
         {word + "w", std::string(501, '1'), std::string(501, '-'), "#else" + word + "\n",
          "\"a\"" + std::string(600, ' ') + ";", "#include \"" + word + "\"", "." + word}) {
        EXPECT_EQ(tokens(text), " | 1: Token buffer overflow") << text.substr(0, 20);
    }
    // Strings and comments have no limit.
    const std::string content(10'000'000, 's');
    const auto start = std::chrono::steady_clock::now();
    const cl_dcl_token_list list = list_dcl_tokens_of_text(
        "\"" + content + "\" /*" + content + "*/ //" + content + "\n\"\\\"" + content + "\"");
    ASSERT_EQ(list.tokens.size(), 2U);
    EXPECT_EQ(list.tokens[0].text, content);
    EXPECT_EQ(list.tokens[1].text, "\"" + content);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(DialogScan, bad_use_of_the_scanner) {
    struct Text : dlg__scan {
        explicit Text(std::string_view text, int size = default_buffer_size)
          : dlg__scan(size) {
            go_on_at({text});
        }
        void dlg_error(const std::string&) override {}
        void dlg_fatal(const std::string& message) override { fatal = message; }
        std::string fatal;
    };
    EXPECT_THROW(Text("", 19), std::invalid_argument);
    Text scan("ab\ncd", 20);
    EXPECT_EQ(scan.dlg_lex(), DCL_STRING_CONSTANT);
    scan.dlg_unput('b');
    EXPECT_EQ(scan.dlg_lex(), DCL_STRING_CONSTANT);
    EXPECT_EQ(scan.token_text(), "b");
    EXPECT_EQ(scan.dlg_input(), '\n');
    EXPECT_EQ(scan.dlg_lex(), DCL_STRING_CONSTANT);
    EXPECT_EQ(scan.dlg_lex(), 0);
    EXPECT_EQ(scan.dlg_lex(), 0);
    for (const char c : {'d', 'c', '\n', 'b', 'a'}) {
        scan.dlg_unput(c);
    }
    EXPECT_THROW(scan.dlg_unput('x'), dlg_scan_failure);
    EXPECT_EQ(scan.fatal, "Push-back buffer overflow");
}

} // namespace
