// Dialogs by name, see named_dialogs.h.
#include "omb_qorvane/named_dialogs.h"

#include "omb_qorvane/the_app.h"

void register_named_dialog(const std::string& name, named_dialog dialog) {
    if (dialog) {
        theApp().named_dialogs[name] = std::move(dialog);
    } else {
        theApp().named_dialogs.erase(name);
    }
}

bool has_named_dialog(const std::string& name) { return theApp().named_dialogs.contains(name); }

int run_named_dialog(const std::string& name, std::uintptr_t parent) {
    const auto found = theApp().named_dialogs.find(name);
    if (found == theApp().named_dialogs.end()) {
        acutPrintf("\nThe dialog " + name +
                   " is not there yet; going on with the settings as they are.\n");
        return dialog_confirmed;
    }
    const named_dialog dialog = found->second; // a copy: it may register others
    return dialog(parent);
}
