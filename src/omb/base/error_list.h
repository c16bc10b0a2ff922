// The error list file, in which a program collects the texts that its trace lets pass, and the
// showing of text files that the trace writes.
#pragma once

#include <functional>
#include <string>
#include <string_view>

/// The list becomes error_file.txt in the settings folder. Nothing is made before the first text.
/// The first program of a process keeps the list.
void use_error_list(const std::string& program);
/// Sets another path instead; "" means no list, and that use_error_list may set one again.
void set_error_file(const std::string& path, const std::string& program);
/// The list's path; "" before the first text, and when the list could not be written and was
/// dropped.
const std::string& error_file_name();

/// Appends the text as one line: line ends inside become blanks. The file is made new, with its
/// head, at the first text of a run.
void add_to_error_list(std::string_view text);

/// Opens a text file for the user; false when it could not.
using text_file_opener = std::function<bool(const std::string& path)>;
/// Sets the opener of show_error_file and show_debug_file. Without one, or when it answers false, a
/// message box shows the path and the last 40 lines.
void set_text_file_opener(text_file_opener opener);

/// Shows the error list file of this run, or says that there is none unless `quiet`.
void show_error_file(bool quiet);
/// Shows the log file of this run, or says that there is none.
void show_debug_file();
