// The scanner of the dialog language: any bytes come to an end, lines never run backwards, and a
// token has the value that its code calls for. Includes are not opened.
#include "omb/dialog/dcl_dump.h"
#include "omb/dialog/dcl_keywords.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool good) {
    if (!good) {
        std::abort();
    }
}

int value_tag(int code) {
    switch (code) {
    case DCL_COMMAND_VARIABLE:
    case DCL_CONTROL:
    case DCL_DIALOG:
    case DCL_INT_VARIABLE:
    case DCL_DOUBLE_VARIABLE:
    case DCL_STRING_VARIABLE:
    case DCL_VALUE_TABLE:
        return dlg_token_value::int_tag;
    default:
        return code < DCL_COMMAND ? dlg_token_value::none : dlg_token_value::text_tag;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const cl_dcl_token_list list = list_dcl_tokens_of_text(text);
    require(list.readable && list.tokens.size() <= size);
    int line = 1;
    for (const cl_dcl_token& token : list.tokens) {
        require(token.code > 0 && token.code <= DCL_DOTTED_NAME && token.line >= line);
        require(token.code == DCL_CONSTANT || token.tag == value_tag(token.code));
        require(token.text.size() <= size);
        line = token.line;
    }
    for (const cl_dcl_error& error : list.errors) {
        require(error.line >= 1 && error.column >= 1 && !error.message.empty());
    }
    return 0;
}
