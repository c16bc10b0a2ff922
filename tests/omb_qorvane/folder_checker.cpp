// The reader of parameter files.
#include "stream_checker.h"

#include <algorithm>
#include <iterator>

namespace checker {
namespace {

/// What the first three lines say for one start.
struct start_words {
    std::string_view comment, application, calling_app;
};
constexpr start_words starts[] = {
    {"Tessara Qor", "Qorvane for AutoCAD", "QRAC"},
    {"Dumibro", "Dumibro", "QRAC_ASUNI"},
    {"DeltaCADD", "DeltaCADD", "QRAC_DELTACADD"},
    {"GBCAD", "GBCAD", "QRAC_GBCAD"},
    {"ZWCAD", "ZWCAD Render", "QRAC_ZWCAD"},
    {"BricsCAD", "Qorvane for BricsCAD", "QRAC_BRICS"},
};

constexpr const char* files_of_the_folder[] = {"BATCH_GEOM_FILE;.\\batch_file.txt",
                                               "VIEW_FILE;.\\qor_view.txt",
                                               "LIGHT_FOLDER;.\\QorBatch_Lights",
                                               "MATERIAL_FOLDER;.\\Materials",
                                               "GLOBALS_FILE;.\\option_globals.txt",
                                               "DOC_FILE;.\\qor_doc.xml",
                                               "PROPS_FILE;.\\qor_props.txt",
                                               "TS3MATS_FILE;.\\qor_ts3mats.txt",
                                               "RPC_FOLDER;.\\rpcs"};

class params_reader {
public:
    explicit params_reader(std::string_view text)
      : in_(text, faults_) {
        in_.context("the parameter file");
    }
    std::vector<std::string> read() {
        try {
            who();
            what();
            where();
            if (!in_.at_end()) {
                in_.skip();
                in_.require(false, "the parameter file has nothing behind its last key");
            }
        } catch (const lost_place&) { // noted; the order of the lines is the file's whole form
        }
        return std::move(faults_);
    }

private:
    std::string key(const std::string& name) { return in_.rest("*@KEY:" + name + ";"); }
    void literal(const std::string& key_and_value) { in_.exact("*@KEY:" + key_and_value); }

    void who() {
        const std::string comment = in_.rest("#;");
        const auto* const start =
            std::find_if(std::begin(starts), std::end(starts), [&](const start_words& row) {
                return comment == std::string(row.comment) + " Rendering parameters";
            });
        if (start == std::end(starts)) {
            in_.lose("the first line names no program");
        }
        in_.require(key("APPLICATION_NAME") == start->application,
                    "the first line and APPLICATION_NAME are of two programs");
        in_.require(key("CALLING_APP") == start->calling_app,
                    "the first line and CALLING_APP are of two programs");
        const std::string version = key("VERSION");
        in_.require(version == "GreenButton" ||
                        (version == "OEM" && start->calling_app == "QRAC_DELTACADD"),
                    "VERSION is GreenButton, or OEM for DeltaCADD");
    }
    void what() {
        in_.require(!key("APPLICATION_FOLDER").empty(), "no folder of the program");
        literal("MATERIAL_MAPS;.\\Materials\\qor_matl_map.csv");
        literal("VERSION_INFO;1.1");
        const std::string name = key("MODEL_NAME"), path = key("MODEL_PATH");
        const std::string file = path.substr(path.find_last_of("/\\") + 1);
        in_.require(name == (file.empty() ? "Untitled" : file),
                    "MODEL_NAME is not the file of MODEL_PATH");
        literal("UUID;UUID not set");
        for (const char* line : files_of_the_folder) {
            literal(line);
        }
    }
    void where() {
        in_.exact("#; Other Qor Batch settings;");
        literal("DBUNIT;1");
        const bool has_handle = in_.at("*@KEY:HWND;");
        if (has_handle) {
            in_.require(in_.integer("*@KEY:HWND;") != 0, "a window without handle has no HWND");
        }
        if (has_handle || in_.at("*@KEY:WTITLE;")) {
            key("WTITLE");
        }
        in_.exact("#;");
        in_.exact("#;");
        const std::string support = key("SupportFolder");
        in_.require(!support.empty() && support.back() != '\\',
                    "the first SupportFolder is there and ends in no backslash");
        while (in_.at("*@KEY:SupportFolder;")) {
            in_.require(!key("SupportFolder").empty(), "a SupportFolder without a folder");
        }
        in_.exact("#;");
        literal("GLOBAL;bks_qorvane_mode;0");
        literal("GLOBAL;bks_kestra_qor_mode;1");
    }

    std::vector<std::string> faults_;
    text_reader in_;
};

} // namespace

std::vector<std::string> check_params(std::string_view text,
                                      std::map<std::string, std::string>& values) {
    std::vector<std::string> ignored;
    for (text_reader lines(text, ignored); !lines.at_end(); lines.skip()) {
        const std::string line(lines.peek());
        const std::size_t semicolon = line.find(';');
        if (line.starts_with("*@KEY:") && semicolon != line.npos) {
            std::string& value = values[line.substr(6, semicolon - 6)];
            value += (value.empty() ? "" : "|") + line.substr(semicolon + 1);
        }
    }
    return params_reader(text).read();
}

} // namespace checker
