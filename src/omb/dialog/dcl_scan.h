// The scanner of the dialog language: characters in, tokens out. It also does what other languages
// leave to a preprocessor: comments, conditionals, includes, strings that go on in the next line.
// The rules are told in docs/formats/dcl.md.
#pragma once

#include <cstdint>
#include <deque>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// What a token brings along: a text, which lives as long as the scanner and its input, or a
/// number.
struct dlg_token_value {
    enum tags : int { none = 0, text_tag = 1, int_tag = 2 };
    int tag = none;
    std::int32_t number = 0;
    std::string_view text;
};

/// Ends a scan: a token that is too long, for instance.
class dlg_scan_failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Scans text that lies in memory, a file behind the other. A derived class says where the text
/// comes from, what is included, and who hears of errors.
class dlg__scan { // NOLINT(bugprone-reserved-identifier): the system's name for it
public:
    static constexpr int default_buffer_size = 500;

    /// `buffer_size` is the most characters that a token may have, strings and comments aside. One
    /// below 20 raises std::invalid_argument.
    explicit dlg__scan(int buffer_size = default_buffer_size);
    virtual ~dlg__scan() = default;
    dlg__scan(const dlg__scan&) = delete;
    dlg__scan& operator=(const dlg__scan&) = delete;

    /// The next character, or -1 at the end of the input. Comes to be called when the text that was
    /// laid out is used up; a derived class may lay out more first.
    virtual int dlg_input();
    /// At the end of an input: 0 when there is more to come, 1 when the scan is over.
    virtual int dlg_wrap() { return 1; }
    /// A mistake that the scan survives.
    virtual void dlg_error(const std::string& message) = 0;
    /// A character that no rule takes.
    virtual void dlg_output(int) {}
    /// A mistake that the scan does not survive: behind it dlg_scan_failure is thrown.
    virtual void dlg_fatal(const std::string&) {}
    /// Hears of each token; for tracing.
    virtual void dlg_print(int) {}

    /// The code of the next token, 0 at the end of all input. Throws dlg_scan_failure.
    int dlg_lex();
    /// The value of the token read last.
    const dlg_token_value& take_value() const { return value; }
    /// Returns the character that was read last to the input.
    void dlg_unput(int character);

    /// From 1: the line that the scan has reached.
    int line_number() const { return line; }
    /// The text of the token read last as messages show it: a string without its quotes.
    std::string_view token_text() const;
    /// A string of the token read last went on in the next line with nothing between the words.
    bool string_ran_on() const { return ran_on; }
    void clear_string_ran_on() { ran_on = false; }

protected:
    /// Places in the text that is being scanned.
    struct text_place {
        std::string_view text; ///< all of it
        std::size_t position = 0;
        std::size_t line_start = 0; ///< position of the current line
        std::size_t token_start = 0;
        int line = 1;
    };
    text_place place() const;
    /// Goes on at a place, of any text. What it views must stay as long as token values are used.
    void go_on_at(const text_place& where);

    /// `#include`: lays out another text, or does nothing.
    virtual void dlg_include(std::string_view) {}
    /// Whether a word is a variable of the dialog that is being read.
    virtual bool is_local_variable(std::string_view) const { return false; }

private:
    enum states { INITIAL, COMMENT, LINE_COMMENT, STRING, QUOTE, SKIP };

    int scan_initial();
    int scan_comment();
    int scan_line_comment();
    int scan_string();
    int scan_quote();
    int scan_skipped();

    int scan_word(const char* from);
    int scan_number();
    int scan_hash();
    int scan_any_character();
    int start_string();
    int start_quote();
    bool scan_directive(std::string_view word, const char* behind);
    void scan_include(const char* behind);
    void scan_define(const char* behind);
    void scan_ifdef(const char* behind);
    void end_conditional();

    const char* string_continuation(const char* quote);
    const char* quote_continuation(const char* quote);
    void add_to_string(std::string_view text);
    void note_join();
    void end_unfinished(const char* message);

    bool has_more();
    void end_input();
    void consume(const char* to); ///< counts line feeds
    void consume_line();          ///< and its line feed
    const char* check_length(const char* end);
    const char* line_end(const char* from) const;
    int text_token(int code, std::string_view text);
    int number_token(int code, std::int32_t number);
    int look_up(std::string_view word);
    std::string_view keep(std::string text);
    [[noreturn]] void fail(const std::string& message);

    const char* begin = ""; ///< of the text laid out
    const char* next = begin;
    const char* end = begin;
    const char* line_start = begin;
    const char* token_start = begin;
    const char* token_end = begin;
    std::size_t longest_token;
    int line = 1;
    states state = INITIAL;

    dlg_token_value value;
    std::string string_buffer;
    bool pending_join = false; ///< a continuation without a separator came last
    bool ran_on = false;
    std::string defined_words;
    std::vector<bool> conditionals;
    std::deque<std::string> kept_texts; ///< strings that are not in the input as they are
};
