// The CAD programs that the add-on serves, by code.
#include "omb_qorvane/omb_export.h"

#include <stdexcept>

namespace {
constexpr std::array<green_button_row, 6> rows{{
    {"", "QRAC", nullptr, "#;Tessara Qor Rendering parameters", "Qorvane for AutoCAD", "Qorvane"},
    {"ASUNI", "QRAC_ASUNI", "Asuni__GreenButton", "#;Dumibro Rendering parameters", "Dumibro",
     "Dumibro"},
    {"DELTA", "QRAC_DELTACADD", "DeltaCADD_GreenButton", "#;DeltaCADD Rendering parameters",
     "DeltaCADD", "DeltaCADD"},
    {"GBCAD", "QRAC_GBCAD", "GBCAD_GreenButton", "#;GBCAD Rendering parameters", "GBCAD", "GBCAD"},
    {"ZWCAD", "QRAC_ZWCAD", "ZWCAD_GreenButton", "#;ZWCAD Rendering parameters", "ZWCAD Render",
     "ZWCAD"},
    {"BRICS", "QRAC_BRICS", "BricsCAD_GreenButton", "#;BricsCAD Rendering parameters",
     "Qorvane for BricsCAD", "BRICS"},
}};
} // namespace

const green_button_row& green_button_info(int code) {
    if (code < 0 || static_cast<std::size_t>(code) >= rows.size()) {
        throw std::invalid_argument("green button code out of bounds");
    }
    return rows[static_cast<std::size_t>(code)];
}

int green_button_code_of(const std::string& word) {
    for (std::size_t code = 1; code < rows.size(); ++code) {
        if (word == rows[code].code_word) {
            return static_cast<int>(code);
        }
    }
    return -1;
}
