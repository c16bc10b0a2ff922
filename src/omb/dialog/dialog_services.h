// What the program lends to the dialog engine; each may be missing.
#pragma once

#include <functional>
#include <string>

struct cl_dialog_services {
    /// The language table: a text in the user's language; without one texts stay as they are.
    std::function<std::string(const std::string& text)> translate;
    /// The batch folder of the drawing that is worked on; "" when there is none. Without it the
    /// setting `sqor_batch_folder` counts.
    std::function<std::string()> batch_folder;
    /// The address of a topic's help page; "" when it has none. Without it the page is looked for
    /// in the folder "help" of the dialog's application.
    std::function<std::string(const std::string& application, const std::string& topic)> help_page;
    std::string update_page; ///< the web page that tells of new versions; "" none
};
cl_dialog_services& dialog_services();

/// The text through the language table.
std::string translated(const std::string& text);
