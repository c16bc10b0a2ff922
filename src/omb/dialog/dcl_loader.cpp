#include "omb/dialog/dcl_loader.h"

#include "omb/base/files.h"
#include "omb/base/folders.h"
#include "omb/base/trace.h"
#include "omb/dialog/dcl_parser.h"

#include <algorithm>
#include <utility>

namespace {

cl_dcl_loader* current_loader = nullptr;

constexpr const char* common_file_name = "comm_tvgn_common.dcl";
constexpr const char* too_many_errors = "Too many syntax errors in dialog";
constexpr std::size_t most_kept_errors = 1000; ///< of all dialogs of a file that is checked
constexpr std::size_t longest_source_line = 500;

/// Ends a load; its text is what the user reads.
class too_many_errors_thrown : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

int count_characters(std::string_view text) {
    return static_cast<int>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string application_of(const std::string& path) {
    const std::string name = path_name(path);
    return name.substr(0, std::min(name.find('_'), name.find('.')));
}

} // namespace

cl_dcl_loader* current_dcl_loader() { return current_loader; }

cl_dcl_loader::cl_dcl_loader(cl_dcl_data& store, const cl_dcl_load_options& options)
  : store(store)
  , options(options)
  , statements(*this)
  , outer(std::exchange(current_loader, this)) {
    common_file_done = !options.with_common_file;
}

cl_dcl_loader::~cl_dcl_loader() { current_loader = outer; }

// --- the load ------------------------------------------------------------------------------------

int cl_dcl_loader::load_from_dcl(const std::string& appl, const std::string& dialog_name,
                                 const std::string& path) {
    store.appl_name = appl;
    store.name = dialog_name;
    cl_dcl_input_file file;
    file.open_dcl_file(appl, dialog_name, path, options.report);
    if (!file.is_open()) {
        result.message = file.error;
        return -1;
    }
    file.name = path.empty() ? dialog_name : path;
    return load(std::move(file), dialog_name);
}

int cl_dcl_loader::load_from_text(const std::string& dialog_name, std::string text,
                                  const std::string& name) {
    store.name = dialog_name;
    cl_dcl_input_file file;
    file.open_text(std::move(text), name);
    return load(std::move(file), dialog_name);
}

bool cl_dcl_loader::start_scan(cl_dcl_input_file file) {
    statements.start_load(store, {});
    return enter(std::move(file));
}

int cl_dcl_loader::load(cl_dcl_input_file file, const std::string& dialog_name) {
    store.file_label = file.label;
    const std::string name = file.name, label = file.label;
    enter(std::move(file));
    try {
        parse(dialog_name);
        return finish(dialog_name, label.empty() ? name : label);
    } catch (const too_many_errors_thrown& error) {
        return fail(6, fmt::sprintf("Dialog Compile Error: %s: %s %s:\n    Dialog not compiled "
                                    "properly -  click More for error list\n\n%s",
                                    error.what(), dialog_name, name, result.error_list));
    } catch (const dlg_scan_failure&) { // it is in the error list
        return finish(dialog_name, label.empty() ? name : label);
    } catch (const std::exception& error) {
        return fail(2, fmt::sprintf("Failed to load dialog:  %s\n\n%s", dialog_name, error.what()));
    } catch (...) {
        return fail(2, fmt::sprintf("Failed to load dialog: %s - unknown error", dialog_name));
    }
}

void cl_dcl_loader::parse(const std::string& dialog_name) {
    if (options.every_dialog) {
        statements.start_check(store);
    } else {
        statements.start_load(store, dialog_name);
    }
    dlg_parse(*this);
}

int cl_dcl_loader::finish(const std::string& dialog_name, const std::string& file) {
    if (!result.errors.empty()) {
        return fail(6, fmt::sprintf("Dialog Compile Error %s: %s\n    Dialog not compiled properly "
                                    "-  click More for error list\n\n%s",
                                    dialog_name, file, result.error_list));
    }
    if (options.every_dialog) {
        return result.status = 0;
    }
    if (!store.found && !dialog_name.empty()) {
        return fail(2, fmt::sprintf("Dialog '%s' not loaded. Dialog was not found in DCL file: "
                                    "(%s).",
                                    dialog_name, file));
    }
    return result.status = store.found ? 0 : -1;
}

int cl_dcl_loader::fail(int level, const std::string& message) {
    result.message = message;
    if (options.report) {
        OMB_TRACE(level, "%s", message);
    }
    return result.status = -1;
}

// --- input ---------------------------------------------------------------------------------------

/// Goes on in `file`; what is being read is left for later.
bool cl_dcl_loader::enter(cl_dcl_input_file file) {
    bytes_read += file.text().size();
    if (bytes_read > cl_dcl_input_file::size_limit) {
        dlg_error(fmt::sprintf("More than %d MB of dialog text: %s",
                               static_cast<int>(cl_dcl_input_file::size_limit >> 20), file.name));
        return false;
    }
    if (!inputs.empty()) {
        const text_place here = place();
        inputs.back().line = here.line;
        inputs.back().position = here.position;
        inputs.back().line_start = here.line_start;
    }
    inputs.push_back(std::move(file));
    go_on_at({inputs.back().text()});
    return true;
}

/// Beside the file that includes it, or else among the application's dialogs.
cl_dcl_input_file cl_dcl_loader::find_include(const std::string& name) const {
    const cl_dcl_input_file& from = inputs.back();
    cl_dcl_input_file file;
    std::string beside = native_separators(name);
    beside += path_extension(beside).empty() ? ".dcl" : "";
    if (!from.path.empty()) {
        beside = join_path(path_folder(from.path), beside);
    }
    if (!from.path.empty() && file_exists(beside)) {
        file.open_dcl_file(from.appl, name, beside, options.report);
    } else {
        file.open_dcl_file(from.appl, name, {}, options.report);
    }
    file.name = name;
    return file;
}

void cl_dcl_loader::dlg_include(std::string_view name) {
    if (!options.with_includes) {
        return;
    }
    if (inputs.size() > deepest_include) {
        dlg_error(fmt::sprintf("Includes nest too deep or go in a circle: %s", std::string(name)));
        return;
    }
    if (++include_count > most_includes) {
        dlg_error(fmt::sprintf("Too many includes: %s", std::string(name)));
        return;
    }
    cl_dcl_input_file file = find_include(std::string(name));
    if (file.is_open()) {
        enter(std::move(file));
    }
}

int cl_dcl_loader::dlg_wrap() {
    if (inputs.size() > 1) {
        finished.push_back(std::move(inputs.back()));
        inputs.pop_back();
        const cl_dcl_input_file& below = inputs.back();
        go_on_at({below.text(), below.position, below.line_start, below.position, below.line});
        return 0;
    }
    if (common_file_done) {
        return 1;
    }
    common_file_done = true;
    return read_common_file() ? 0 : 1;
}

bool cl_dcl_loader::read_common_file() {
    if (!result.errors.empty()) {
        OMB_TRACE(1, "There were errors in the main dialog. Common controls are being skipped");
        return false;
    }
    cl_dcl_input_file file;
    file.open_dcl_file("comm", common_file_name, {}, options.report);
    if (!file.is_open()) {
        dlg_error(fmt::sprintf("***** Common control file: %s not found.", common_file_name));
        return false;
    }
    file.name = common_file_name;
    std::ranges::move(inputs, std::back_inserter(finished));
    inputs.clear();
    return enter(std::move(file));
}

bool cl_dcl_loader::is_local_variable(std::string_view word) const {
    return store.locals.find_local(word, false) != nullptr;
}

// --- errors --------------------------------------------------------------------------------------

void cl_dcl_loader::record(const std::string& message) {
    const text_place here = place();
    const std::string_view line = here.text.substr(here.line_start);
    cl_dcl_error& error = result.errors.emplace_back();
    error.file = inputs.empty() ? store.name : inputs.back().name;
    error.line = here.line;
    error.column = 1;
    if (here.token_start > here.line_start) {
        error.column += count_characters(line.substr(0, here.token_start - here.line_start));
    }
    error.message = message;
    error.source_line = line.substr(0, std::min(line.find('\n'), longest_source_line));

    OMB_TRACE(1, "*** DCL ERROR: %s(%d):\n    %s", error.file, error.line, message);
    result.error_list += fmt::sprintf("%s(%d):  %s\n\n", error.file, error.line, message);
    if (options.log != nullptr) {
        options.log->write_fmt("\nERROR in %s line: %d \n    %s\n", error.file, error.line,
                               message);
    }
}

void cl_dcl_loader::stop_at_too_many() const {
    const int counted = error_count + (options.every_dialog ? 0 : dialog_error_count);
    if (counted > most_errors || result.errors.size() >= most_kept_errors) {
        throw too_many_errors_thrown(too_many_errors);
    }
}

void cl_dcl_loader::dlg_error(const std::string& message) {
    record(message);
    ++error_count;
    stop_at_too_many();
}

void cl_dcl_loader::dlg_error_with_token(const std::string& message) {
    dlg_error(fmt::sprintf("%s: '%s'", message, std::string(token_text().substr(0, 200))));
}

/// Where all dialogs are checked, one with too many mistakes does not keep the next from its turn.
void cl_dcl_loader::dlg_error_of_dialog(const std::string& message) {
    if (!options.every_dialog || error_count + dialog_error_count <= most_errors) {
        record(message);
        ++dialog_error_count;
        stop_at_too_many();
    }
}

// --- services ------------------------------------------------------------------------------------

cl_dcl_load_result load_dcl_dialog(cl_dcl_data& store, const std::string& appl,
                                   const std::string& dialog_name, const std::string& path) {
    cl_dcl_loader loader(store, {});
    loader.load_from_dcl(appl, dialog_name, path);
    return loader.take_result();
}

cl_dcl_load_result load_dcl_text(cl_dcl_data& store, const std::string& dialog_name,
                                 std::string text, const std::string& name,
                                 const cl_dcl_load_options& options) {
    cl_dcl_loader loader(store, options);
    loader.load_from_text(dialog_name, std::move(text), name);
    return loader.take_result();
}

cl_dcl_load_result check_dcl_file(const std::string& path) {
    cl_dcl_data store;
    cl_dcl_load_options options;
    options.every_dialog = true;
    options.report = false;
    cl_dcl_loader loader(store, options);
    loader.load_from_dcl(application_of(path), {}, path);
    return loader.take_result();
}
