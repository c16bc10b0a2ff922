// The command line of `qorvane`: one table of verbs and one of flags feed the parser, the help,
// the manual page and the shell completion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace apps {

enum Verb : std::uint8_t {
    kRender = 1,
    kExtract = 2,
    kRun = 4,
    kInspect = 8,
    kConvert = 16,
    kSettings = 32,
    kDialog = 64,
    kAllVerbs = 127
};

/// Any number of operands.
inline constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);

struct VerbRow {
    Verb verb;
    const char* name;
    const char* arguments; ///< operands as the help shows them
    const char* help;
    std::size_t least, most; ///< number of operands; of a verb with sub-verbs, the sub-verb counts
};

/// What the first operand of some verbs chooses.
struct SubVerbRow {
    Verb verb;
    const char* name;
    const char* arguments;
    const char* help;
    std::size_t least, most; ///< number of operands behind the sub-verb
    const char* flags;       ///< the verb's own flags that it takes, separated by blanks
};

/// What the command line asked for.
struct Options {
    Verb verb = kRender;
    std::vector<std::string> operands; ///< drawing, or input and output; a sub-verb comes first
    std::string output;
    int width = 0, height = 0; ///< 0 means the default
    int passes = 0;            ///< 0 means the default
    double time_seconds = 0;   ///< 0 means no limit
    std::vector<std::string> views;
    std::string preset; ///< empty: exterior, unless the drawing has settings of its own
    std::vector<std::string> materials;
    std::vector<std::pair<std::string, std::string>> globals; ///< -D NAME=VALUE, in order
    std::string facets; ///< what chords go by: drawing (also when empty) or camera
    std::string batch_folder;
    std::string script;
    std::string drawing;     ///< settings: a drawing whose stored settings count
    std::string defaults;    ///< settings: a defaults file whose values count
    std::string dialog_file; ///< dialog: where it is taken from; empty: found by its name
    std::string dialog_name; ///< dialog check: only this one
    std::string grab;        ///< dialog show: a picture of the window
    std::string theme;       ///< dialog show: light, dark, or empty for the desktop's
    int scale = 1;           ///< dialog show: device pixels to a pixel in the picture
    std::vector<std::pair<std::string, std::string>> settings; ///< --set NAME=VALUE, in order
    std::string log_file;
    std::string progress = "auto"; ///< auto, tty, ndjson, none
    int threads = 0;
    int verbosity = 0;
    bool save = false, json = false, quiet = false, force = false, ascii = false, binary = false;
    bool user = false; ///< settings: the user's own defaults file
    bool log = false;  ///< dialog show: the order of events
};

struct FlagRow {
    const char* names;   ///< "-o,--output"
    const char* metavar; ///< "IMAGE", or "" for a switch
    const char* help;
    unsigned verbs; ///< bit set of Verb
    /// Takes one occurrence; returns what is wrong with the value, or an empty text.
    std::string (*take)(Options& options, const std::string& value);
    const char* choices; ///< blank-separated values for completion, or ""
};

std::span<const VerbRow> verb_rows();
std::span<const SubVerbRow> sub_verb_rows();
std::span<const FlagRow> flag_rows();

struct ParseResult {
    Options options;
    std::string message; ///< help or version text, or what is wrong
    int exit_code = 0;
    bool proceed = false; ///< false: print the message and end with the exit code
};

/// Parses the words behind the program's name. Flags may stand in any order; `--` ends them.
ParseResult parse_command_line(const std::vector<std::string>& words);

std::string help_text();
std::string manual_page();     ///< troff for man(1)
std::string bash_completion(); ///< a completion script for bash

/// "10m", "90s", "1h30m", "45" (seconds); negative when it is no duration.
double parse_duration(const std::string& text);

} // namespace apps
