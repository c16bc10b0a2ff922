// The green button: the code of the CAD program, and the start that belongs to it.
#include "host/rx/module.h"
#include "omb/base/files.h"
#include "omb/base/message_box.h"
#include "omb/base/text.h"
#include "omb/globals/catalogue.h"
#include "omb/globals/globals.h"
#include "omb_qorvane/driver.h"
#include "omb_qorvane/plant_module.h"
#include "omb_qorvane/the_app.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace {

constexpr const char* code_file = "C:\\devc_2005\\green_button.txt";
constexpr const char* last_code = "sks_last_green_button_code";
constexpr const char* defaults_global = "sks_green_button_defaults";

std::string code_form(const std::string& text) { return omb::to_upper(omb::trim(text)); }

/// A word that the code file and the last code may hold; BRICS is not among them.
bool is_remembered_word(const std::string& word) {
    const int code = green_button_code_of(word);
    return code >= GREEN_BUTTON_ASUNI && code <= GREEN_BUTTON_ZWCAD;
}

struct code_answer {
    std::string code, options;
};

/// Later lines win, or, with `first_wins`, the first word.
code_answer read_code_file(bool first_wins) {
    code_answer answer;
    cl_input_file file;
    if (!file.open(code_file)) {
        return answer;
    }
    std::string line;
    while (file.read_line(line)) {
        const std::string word = code_form(line);
        if (word.starts_with("OPT;")) {
            answer.options = word.substr(4);
        } else if (is_remembered_word(word) && !(first_wins && !answer.code.empty())) {
            answer.code = word;
        }
    }
    return answer;
}

std::string without_dfl(std::string name) {
    if (omb::ends_with_no_case(name, ".dfl")) {
        name.resize(name.size() - 4);
    }
    return name;
}

// Not of the catalogue: it loads itself, and lasts from one run of the host to the next.
std::string last_green_button_code() {
    find_global(last_code, SAVE_PROFILE, false);
    return get_global_string(last_code);
}

void keep_code(const std::string& code) { set_global_string(last_code, code, SAVE_PROFILE); }

void ask_delta_defaults() {
    preset_globals(0);
    std::string name = get_global_string(defaults_global);
    if (!name.empty()) {
        name = "Draft"; // whatever it was; kept
    }
    std::string answer;
    acedGetString(fmt::format("\nEnter DFL file name: [{}]", name), answer);
    set_global_string(defaults_global, without_dfl(answer.empty() ? name : answer));
}

std::string ask_for_code() {
    const std::string last = last_green_button_code();
    if (is_remembered_word(last)) {
        return last;
    }
    std::string answer;
    const int result = acedGetString("\nEnter Green Button Code: ", answer, 512);
    const std::string trimmed(omb::trim(answer));
    return result == RTNORM && !trimmed.empty() ? trimmed : last;
}

} // namespace

std::string loaded_plant_module() {
    const std::vector<std::string> loaded = acrxLoadedApps();
    for (const char* name : {"lands19x.arx", "lands18x.arx", "lands17x.arx"}) {
        if (std::find(loaded.begin(), loaded.end(), name) != loaded.end()) {
            return name;
        }
    }
    return {};
}

void green_button_command() {
    static constexpr const char* title = "Cannot Render view";
    if (!has_active_view()) {
        tell_no_view(title);
        return;
    }
    if (!has_something_to_render()) {
        do_message_box("Cannot Render.\n\nNo entities found to render in this view.", title);
        return;
    }
    std::string code = read_code_file(false).code;
    if (code.empty()) {
        code = ask_for_code();
    }
    code = code_form(code);
    const int number = green_button_code_of(code);
    if (number < 0) {
        do_message_box("Invalid Green Button Code entered: " + code, "OMB Green Button");
        return;
    }
    const start_kind kind = start_of_code(number);
    if (number == GREEN_BUTTON_DELTA) { // the others' code is kept behind their start
        keep_code(code);
        if (kind == start_kind::delta) {
            ask_delta_defaults();
        }
    }
    run_start(kind);
    if (number != GREEN_BUTTON_DELTA) {
        keep_code(code);
    }
}

start_kind start_of_code(int code) {
    static constexpr std::array<start_kind, 6> kinds{start_kind::plain, start_kind::asuni,
                                                     start_kind::delta, start_kind::gbcad,
                                                     start_kind::zwcad, start_kind::brics};
    const bool oem = code == GREEN_BUTTON_DELTA && get_global_bool("bqor_is_acad_oem");
    return oem ? start_kind::delta_oem : kinds.at(static_cast<std::size_t>(code));
}

int find_green_button_code() {
    std::string word = read_code_file(true).code;
    if (word.empty()) {
        word = code_form(ask_for_code());
    }
    const int code = green_button_code_of(word);
    if (code > 0) {
        theApp().omb_export.green_button_app = code;
    }
    return theApp().omb_export.green_button_app;
}

int run_green_button(std::string code, std::string defaults) {
    code = code_form(code);
    const int number = green_button_code_of(code);
    const std::string title =
        (number > 0 && number <= GREEN_BUTTON_DELTA ? green_button_info(number).program_name
                                                    : code) +
        " - Cannot Render";
    if (!has_active_view()) {
        tell_no_view(title);
        return -1;
    }
    if (!has_something_to_render()) {
        do_message_box("Cannot Render. No entities found to render in this view.", title);
        return -1;
    }
    if (number < 0) {
        do_message_box(code, "Unknown Green Button code");
        return 1;
    }
    if (number == GREEN_BUTTON_ASUNI && loaded_plant_module().empty()) {
        do_message_box("Could not find Asuni Module.", "qor Rendering Error");
        return 0;
    }
    if ((number == GREEN_BUTTON_DELTA || number == GREEN_BUTTON_ZWCAD) && !defaults.empty()) {
        preset_globals(0);
        set_global_string(defaults_global, without_dfl(std::move(defaults)));
    }
    if (adsw_acadMainWnd() == 0) {
        do_message_box(no_parent_window, title);
        return 0;
    }
    run_start(start_of_code(number));
    return 1;
}
