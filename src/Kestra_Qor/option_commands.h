// The commands that dialog files call to set options: dc_kestra_options_setup with a word, and
// dc_default_lighting with the name of a setting.
#pragma once

/// Enters them into the table of dialog commands; a second call changes nothing.
void add_option_commands();
/// Takes them out: a module that has entered them goes.
void remove_option_commands();
