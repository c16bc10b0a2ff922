// Reads a dialog from a file of the dialog language into a store.
#pragma once

#include "omb/dialog/dcl_actions.h"
#include "omb/dialog/dcl_data.h"
#include "omb/dialog/dcl_input_file.h"
#include "omb/dialog/dcl_scan.h"

#include <string>
#include <string_view>
#include <vector>

class cl_output_file;

/// A mistake in a dialog file, with its place.
struct cl_dcl_error {
    std::string file;
    int line = 0;   ///< from 1
    int column = 0; ///< from 1, in characters; 0 when it is not known
    std::string message;
    std::string source_line; ///< the text of that line; may be empty
};

struct cl_dcl_load_result {
    int status = -1; ///< 0 when the dialog was found and has no errors
    std::vector<cl_dcl_error> errors;
    std::string error_list;           ///< as the user sees it
    std::vector<std::string> dialogs; ///< names of the dialogs of the file and its includes
    std::string message;              ///< why it failed, as the user was told; "" when it did not
};

struct cl_dcl_load_options {
    bool every_dialog = false;     ///< reads all dialogs for their errors and keeps none
    bool with_includes = true;     ///< `#include` opens files
    bool with_common_file = true;  ///< reads the named controls that all applications share
    bool report = true;            ///< failures are told to the user
    cl_output_file* log = nullptr; ///< takes a copy of the errors; not owned
};

/// Reads `dialog_name` of application `appl` into `store`; `path` is a file, or "" to find it by
/// the names. Errors are traced, as told in docs/formats/dcl.md. An empty `dialog_name` reads the
/// whole file for its errors and finds nothing.
cl_dcl_load_result load_dcl_dialog(cl_dcl_data& store, const std::string& appl,
                                   const std::string& dialog_name, const std::string& path);
/// The same from a text in memory; `name` stands in messages.
cl_dcl_load_result load_dcl_text(cl_dcl_data& store, const std::string& dialog_name,
                                 std::string text, const std::string& name,
                                 const cl_dcl_load_options& options);
/// Takes every dialog of a file in turn; each mistake is told once, and nothing to the user. The
/// application is the file's name up to its first underscore. The status is 0 without errors.
cl_dcl_load_result check_dcl_file(const std::string& path);

/// One load. Only one is in progress at a time, except when a command of a dialog loads another.
class cl_dcl_loader : public dlg__scan {
public:
    static constexpr int most_errors = 10;
    static constexpr std::size_t deepest_include = 32;
    static constexpr int most_includes = 1000;

    cl_dcl_loader(cl_dcl_data& store, const cl_dcl_load_options& options);
    ~cl_dcl_loader() override;

    /// 0 on success, -1 on failure; the result has the particulars.
    int load_from_dcl(const std::string& appl, const std::string& dialog_name,
                      const std::string& path);
    int load_from_text(const std::string& dialog_name, std::string text, const std::string& name);
    /// Opens a file for scanning only.
    bool start_scan(cl_dcl_input_file file);
    cl_dcl_load_result take_result() { return std::move(result); }
    cl_dcl_actions& actions() { return statements; }

    int dlg_wrap() override;
    void dlg_error(const std::string& message) override;
    void dlg_fatal(const std::string& message) override { dlg_error(message); }
    /// "message: 'text'" with the token that was read last.
    void dlg_error_with_token(const std::string& message);
    /// A mistake in what a dialog means, which counts when that dialog is read.
    void dlg_error_of_dialog(const std::string& message);
    void forget_dialog_errors() { dialog_error_count = 0; } ///< another one begins
    void note_dialog(std::string_view name) { result.dialogs.emplace_back(name); }

protected:
    void dlg_include(std::string_view name) override;
    bool is_local_variable(std::string_view word) const override;

private:
    int load(cl_dcl_input_file file, const std::string& dialog_name);
    void parse(const std::string& dialog_name);
    int finish(const std::string& dialog_name, const std::string& file);
    int fail(int level, const std::string& message);
    bool enter(cl_dcl_input_file file);
    cl_dcl_input_file find_include(const std::string& name) const;
    bool read_common_file();
    void record(const std::string& message);
    void stop_at_too_many() const;

    cl_dcl_data& store;
    cl_dcl_load_options options;
    cl_dcl_load_result result;
    cl_dcl_actions statements;
    std::vector<cl_dcl_input_file> inputs;   ///< the main or common file, and what is included
    std::vector<cl_dcl_input_file> finished; ///< tokens may still view their text
    std::size_t bytes_read = 0;
    int include_count = 0;
    int error_count = 0;
    int dialog_error_count = 0; ///< of what the dialog means that is being read
    bool common_file_done = false;
    cl_dcl_loader* outer = nullptr; ///< whose load this one interrupts
};

/// The load in progress, or null.
cl_dcl_loader* current_dcl_loader();
