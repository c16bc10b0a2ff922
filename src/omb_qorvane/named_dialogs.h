// Dialogs that are opened by name. Whoever can show one registers it with the application object;
// it lives as long as that.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// Shows the dialog modally over a window (0: none): 1 confirmed, 2 cancelled.
using named_dialog = std::function<int(std::uintptr_t parent)>;

inline constexpr int dialog_confirmed = 1, dialog_cancelled = 2;

/// Takes the place of an earlier one; an empty function removes it.
void register_named_dialog(const std::string& name, named_dialog dialog);
bool has_named_dialog(const std::string& name);
/// Shows it. One that nobody has registered is told at the command line and counts as confirmed.
int run_named_dialog(const std::string& name, std::uintptr_t parent);
