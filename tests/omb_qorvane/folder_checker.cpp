// The readers of parameter and view files.
#include "stream_checker.h"

#include <cmath>
#include <regex>

namespace checker {
namespace {

std::vector<std::string> lines_of(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return lines;
}

/// Compares line by line with patterns; one that ends in "*" may match any number of lines.
std::vector<std::string> compare(const std::vector<std::string>& lines,
                                 const std::vector<std::string>& patterns) {
    std::vector<std::string> faults;
    std::size_t at = 0;
    for (std::string pattern : patterns) {
        const bool many = pattern.starts_with("~");
        const std::regex form(many ? pattern.substr(1) : pattern);
        bool any = many;
        while (at < lines.size() && std::regex_match(lines[at], form)) {
            any = true;
            ++at;
            if (!many) {
                break;
            }
        }
        if (!any) {
            faults.push_back("line " + std::to_string(at + 1) + ": wanted " + pattern + ", found " +
                             (at < lines.size() ? lines[at] : "the end"));
            return faults;
        }
    }
    if (at < lines.size()) {
        faults.push_back("line " + std::to_string(at + 1) + ": too much: " + lines[at]);
    }
    return faults;
}

} // namespace

std::vector<std::string> check_params(std::string_view text,
                                      std::map<std::string, std::string>& values) {
    const std::vector<std::string> lines = lines_of(text);
    for (const std::string& line : lines) {
        const std::size_t semicolon = line.find(';');
        if (line.starts_with("*@KEY:") && semicolon != line.npos) {
            std::string& value = values[line.substr(6, semicolon - 6)];
            value += (value.empty() ? "" : "|") + line.substr(semicolon + 1);
        }
    }
    const auto key = [](const std::string& name, const std::string& value) {
        return "\\*@KEY:" + name + ";" + value;
    };
    return compare(lines,
                   {"#;(Tessara Qor|Dumibro|DeltaCADD|GBCAD|ZWCAD|BricsCAD) Rendering parameters",
                    key("APPLICATION_NAME",
                        "(Qorvane for (Auto|Brics)CAD|Dumibro|DeltaCADD|GBCAD|ZWCAD Render)"),
                    key("CALLING_APP", "QRAC(_(ASUNI|DELTACADD|GBCAD|ZWCAD|BRICS))?"),
                    key("VERSION", "(GreenButton|OEM)"),
                    key("APPLICATION_FOLDER", ".+"),
                    key("MATERIAL_MAPS", "\\.\\\\Materials\\\\qor_matl_map\\.csv"),
                    key("VERSION_INFO", "1\\.1"),
                    key("MODEL_NAME", ".+"),
                    key("MODEL_PATH", ".*"),
                    key("UUID", "UUID not set"),
                    key("BATCH_GEOM_FILE", "\\.\\\\batch_file\\.txt"),
                    key("VIEW_FILE", "\\.\\\\qor_view\\.txt"),
                    key("LIGHT_FOLDER", "\\.\\\\QorBatch_Lights"),
                    key("MATERIAL_FOLDER", "\\.\\\\Materials"),
                    key("GLOBALS_FILE", "\\.\\\\option_globals\\.txt"),
                    key("DOC_FILE", "\\.\\\\qor_doc\\.xml"),
                    key("PROPS_FILE", "\\.\\\\qor_props\\.txt"),
                    key("TS3MATS_FILE", "\\.\\\\qor_ts3mats\\.txt"),
                    key("RPC_FOLDER", "\\.\\\\rpcs"),
                    "#; Other Qor Batch settings;",
                    key("DBUNIT", "1"),
                    "~\\*@KEY:(HWND|WTITLE);.*",
                    "#;",
                    "#;",
                    key("SupportFolder", ".*[^\\\\]"),
                    "~\\*@KEY:SupportFolder;.+",
                    "#;",
                    key("GLOBAL", "bks_qorvane_mode;0"),
                    key("GLOBAL", "bks_kestra_qor_mode;1")});
}

std::vector<std::string> check_view(std::string_view text, std::map<std::string, double>& values) {
    const std::vector<std::string> lines = lines_of(text);
    std::vector<std::string> faults;
    static const std::regex number_line("([^;]+);(\\()?([-+.0-9e]+)[^;]*;?");
    for (const std::string& line : lines) {
        std::smatch match;
        if (std::regex_match(line, match, number_line)) {
            values.try_emplace(match[1], std::stod(match[3]));
        }
        static const std::regex digits("-?[0-9][-+.0-9e]*");
        const std::string tail = line.substr(std::min(line.size(), line.find(';')));
        for (std::sregex_iterator i(tail.begin(), tail.end(), digits), end; i != end; ++i) {
            if (!is_g9(i->str())) {
                faults.push_back("no %0.9g number: " + line);
            }
        }
    }
    const std::string n = "-?[0-9][-+.0-9e]*";
    const std::string triple = "\\(" + n + "," + n + "," + n + "\\)";
    std::vector<std::string> patterns{"#;Batch_ViewSettingsFile",
                                      "ViewName;Current",
                                      "",
                                      "IsAcad;1",
                                      "",
                                      "PixelWidth;0",
                                      "PixelHeight;0",
                                      "",
                                      "",
                                      "viewport: width = 0  height = 0",
                                      "",
                                      ""};
    const auto axes = [&](const std::string& name, const std::string& unit) {
        for (const char* axis : {"X", "Y", "Z"}) {
            patterns.push_back(name + axis + unit + ";" + n);
        }
        patterns.emplace_back();
    };
    patterns.push_back("Eye;" + triple);
    axes("Eye", "");
    patterns.push_back("Target;" + triple);
    axes("Target", "");
    axes("Eye", " \\(inches\\)");
    patterns.push_back("Dir;" + triple);
    axes("Dir", " \\(meters\\)");
    axes("Dir", " \\(inches\\)");
    for (const std::string& p :
         {"dir_len;" + n, std::string(), "m_Scale;" + n, "view_scale;" + n, std::string(),
          "fieldWidth;" + n + ";", std::string(), "fieldHeight;" + n}) {
        patterns.push_back(p);
    }
    axes("Dir", "");
    patterns.push_back("Up;" + triple);
    axes("Up", "");
    for (const char* key : {"m_d;1", "m_l;", "m_r;", "m_t;", "m_b;", "FOV;", "FOVW;"}) {
        patterns.push_back(key + (std::string(key) == "m_d;1" ? "" : n));
    }
    for (const std::string& p :
         {std::string(), std::string("CameraType;Perspective"), "OrthoHeight;" + n, std::string(),
          std::string(), std::string("Brightness;0"), std::string("Burn;0"),
          std::string("Saturation;1"), std::string("END_CURRENT;")}) {
        patterns.push_back(p);
    }
    const std::vector<std::string> more = compare(lines, patterns);
    faults.insert(faults.end(), more.begin(), more.end());
    return faults;
}

} // namespace checker
