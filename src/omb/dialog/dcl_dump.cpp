#include "omb/dialog/dcl_dump.h"

#include "omb/base/folders.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t most_tokens = 2'000'000;

cl_dcl_token_list scan(cl_dcl_input_file file, bool with_includes) {
    cl_dcl_token_list list;
    if (!file.is_open()) {
        list.message = file.error;
        return list;
    }
    list.readable = true;
    cl_dcl_data store;
    cl_dcl_load_options options;
    options.with_includes = with_includes;
    options.with_common_file = false;
    options.report = false;
    cl_dcl_loader loader(store, options);
    try {
        loader.start_scan(std::move(file));
        for (int code = loader.dlg_lex(); code != 0; code = loader.dlg_lex()) {
            const dlg_token_value& value = loader.take_value();
            list.tokens.push_back(
                {code, loader.line_number(), value.tag, value.number, std::string(value.text)});
            if (list.tokens.size() == most_tokens) {
                loader.dlg_error("Too many tokens");
                break;
            }
        }
    } catch (const std::runtime_error&) { // it is in the list of errors
    }
    list.errors = loader.take_result().errors;
    return list;
}

} // namespace

cl_dcl_token_list list_dcl_tokens(const std::string& path) {
    const std::string name = path_name(path);
    cl_dcl_input_file file;
    file.open_dcl_file(name.substr(0, std::min(name.find('_'), name.find('.'))), name, path, false);
    return scan(std::move(file), true);
}

cl_dcl_token_list list_dcl_tokens_of_text(const std::string& text) {
    cl_dcl_input_file file;
    file.open_text(text, "text");
    return scan(std::move(file), false);
}
