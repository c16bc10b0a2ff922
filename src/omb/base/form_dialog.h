// A modal form: a text, and rows to be filled in. What is shown is data; the window port
// (message_box.h) shows it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// One row. A value is text whatever its kind: numbers with a decimal point in any locale, "1" or
/// "0" for yes or no, the chosen one of `choices` as it stands.
struct cl_form_row {
    enum row_kind { text, whole_number, number, yes_no, choice };

    std::string label;
    row_kind kind = text;
    std::string value{};
    std::vector<std::string> choices{}; ///< of a choice
    double minimum = 0, maximum = 0;    ///< of a number, both included; equal: no bounds

    static cl_form_row whole(std::string label, int value, int minimum, int maximum);
    static cl_form_row real(std::string label, double value, double minimum, double maximum);

    int int_value() const;
    double double_value() const;
    bool bool_value() const { return value == "1"; }
    /// Why `value` cannot be taken, in words; "" when it can.
    std::string problem() const;
};

/// The form. The port does not confirm one whose rows have a problem: it tells the first and lets
/// the user go on.
struct cl_form_dialog {
    std::string title;
    std::string text; ///< above the rows, paragraphs with line feeds; may be empty
    std::vector<cl_form_row> rows;

    /// The first problem of the rows, with the row's label ahead; "" when there is none.
    std::string problem() const;
};

/// Shows it through the window port and fills in the values. True when the user confirmed it and
/// every value can be taken; otherwise the form is as it was.
bool do_form_dialog(cl_form_dialog& dialog);
