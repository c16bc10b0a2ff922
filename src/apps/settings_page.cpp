// Writes the manual's page of settings, see settings_page.h.
#include "apps/settings_page.h"

#include "apps/settings_table.h"
#include "omb/base/text.h"

#include <algorithm>

#include <fmt/format.h>

namespace apps {
namespace {

constexpr const char* kIntroduction = R"(# Settings

<!-- Made by `qorvane --settings-page`; change the program, not this page. -->

A setting is a named value that the program goes by: the size of a picture, the height of the sun,
the file that a dialog showed last. The first letter of a name tells its kind: `b` is on or off, `i`
a whole number, `r` a number, `s` a text, `p` a point, `c` a colour. This page lists all of them, by
group, with the values that they have when nobody has changed anything.

## Looking and changing

```
qorvane settings list sun              # what has "sun" in its name or title
qorvane settings list 'iks_res*'       # a pattern
qorvane settings get iks_resx          # one value
qorvane settings set iks_resx 1920 bks_sun_on yes
qorvane settings diff                  # what you have changed
qorvane settings reset iks_resx        # back to the factory value; without a name, everything
qorvane settings export office.dfl     # the render's settings in a file ...
qorvane settings import office.dfl     # ... and back
```

A value is checked before it is kept: on or off as `0`, `1`, `yes`, `no`, `on`, `off`, `true` or
`false`; a number with a point, whatever the language of the system; a point as `(x, y, z)` or
`x,y,z`; a colour as `#rrggbb`, `rgb(r,g,b)` or a number. `set` takes several at once, and keeps all
of them or none. `--json` with `list`, `get` and `diff` answers programs. `--user` with `export` and
`import`, in place of a file, means your own defaults file.

## For one render, for good, for a drawing

- For one render: `qorvane render house.dxf -D iks_plant_season=2`. Nothing is kept.
- For good: `qorvane settings set iks_plant_season 2`. Your profile keeps it.
- For a drawing: `qorvane render house.dxf -D iks_plant_season=2 --save` stores it in the drawing's
  file, and whoever renders the drawing gets it.

## Where a value comes from

Five places are asked; a later one wins:

1. the factory value (`default`),
2. the initialisation file `qorvane.ini` (`file`), for all kinds but `r` and `p`,
3. your profile, `profile.ini` (`profile`),
4. a defaults file that is named with `--defaults office.dfl` (`file`),
5. the drawing, with `--drawing house.dxf` (`drawing`).

The settings folder is `~/.config/qorvane`, below `XDG_CONFIG_HOME` when that is set; `QORVANE_HOME`
replaces both. The forms of these files are told in [profile.md](../formats/profile.md) and
[option-globals.md](../formats/option-globals.md). A defaults file that changes a setting puts
`iks_render_quality` to 0, which means custom. A drawing keeps whole numbers in 16 bits: from -32768
to 32767.

What the column *kept in* says:

| kept in | where a value is kept |
|---|---|
)";

std::string escaped(std::string_view text) { return omb::replace_all(text, "|", "\\|"); }

std::string code(std::string_view text) {
    return text.empty() ? "" : fmt::format("`{}`", escaped(text));
}

} // namespace

std::string settings_page() {
    preset_application_globals(0);
    preset_report_globals(0);
    const std::vector<Setting> settings = collect_settings();
    std::string text = kIntroduction;
    for (const SaveTypeRow& row : save_type_rows()) {
        if (std::ranges::any_of(
                settings, [&](const Setting& s) { return s.variable->save_type == row.type; })) {
            text += fmt::format("| {} | {} |\n", row.word, row.meaning);
        }
    }
    std::string_view group;
    for (const Setting& setting : settings) {
        if (setting.group != group) {
            group = setting.group;
            text += fmt::format("\n## {}\n\n| name | title | kind | default | kept in |\n"
                                "|---|---|---|---|---|\n",
                                group);
        }
        const cl_variable_base& variable = *setting.variable;
        text += fmt::format("| `{}` | {} | {} | {}{} | {} |\n", setting.row->name,
                            escaped(get_global_title(setting.row->name)),
                            kind_word(setting.row->name), code(variable.default_text()),
                            setting.row->zero_is_default ? ", also for 0" : "",
                            save_type_row(variable.save_type).word);
    }
    return text;
}

} // namespace apps
