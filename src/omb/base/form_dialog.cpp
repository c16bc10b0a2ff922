// Modal forms, see form_dialog.h.
#include "omb/base/form_dialog.h"

#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/base/trace.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>

namespace {

/// The whole text as a number of type `Number`; false for anything else.
template <class Number>
bool whole_text_is(std::string_view text, Number& value) {
    text = omb::trim(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

} // namespace

cl_form_row cl_form_row::whole(std::string label, int value, int minimum, int maximum) {
    return {std::move(label),
            whole_number,
            fmt::format("{}", value),
            {},
            static_cast<double>(minimum),
            static_cast<double>(maximum)};
}

cl_form_row cl_form_row::real(std::string label, double value, double minimum, double maximum) {
    return {std::move(label), number, fmt::format("{:.9g}", value), {}, minimum, maximum};
}

int cl_form_row::int_value() const {
    int result = 0;
    return whole_text_is(value, result) ? result : 0;
}

double cl_form_row::double_value() const {
    double result = 0;
    return whole_text_is(value, result) ? result : 0;
}

std::string cl_form_row::problem() const {
    double as_number = 0;
    if (kind == whole_number) {
        int whole = 0;
        if (!whole_text_is(value, whole)) {
            return "wants a whole number";
        }
        as_number = whole;
    } else if (kind == number && !whole_text_is(value, as_number)) {
        return "wants a number";
    }
    if (kind == choice && std::find(choices.begin(), choices.end(), value) == choices.end()) {
        return "is none of the choices";
    }
    const bool bounded = (kind == whole_number || kind == number) && minimum != maximum;
    if (bounded && !(as_number >= minimum && as_number <= maximum)) { // no number is out as well
        return fmt::format("lies outside {:.9g} to {:.9g}", minimum, maximum);
    }
    return {};
}

std::string cl_form_dialog::problem() const {
    for (const cl_form_row& row : rows) {
        if (std::string why = row.problem(); !why.empty()) {
            return row.label + ": " + why;
        }
    }
    return {};
}

bool do_form_dialog(cl_form_dialog& dialog) {
    cl_form_dialog filled = dialog;
    if (!window_port().form_dialog(filled)) {
        return false;
    }
    if (const std::string why = filled.problem(); !why.empty()) {
        OMB_TRACE(1, "%s: %s", dialog.title, why);
        return false;
    }
    dialog = std::move(filled);
    return true;
}
