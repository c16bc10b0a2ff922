// The starts as lists of steps, and how they run.
#include "omb_qorvane/driver.h"

#include "omb_qorvane/start_steps.h"
#include "omb_qorvane/the_app.h"

#include <array>

namespace {

using namespace start_steps;

// Every start takes its code first: the folder that its steps work in belongs to the code. What a
// start forces goes into the drawing's settings, because the extraction resets the globals in its
// middle and reads those over them.
constexpr auto plain_steps = std::to_array<start_step>(
    {take_code, test_view, test_selection, reset_light_numbers, reset_lights_and_images,
     read_settings, pass_about_dialog, take_units, pass_start_dialog, save_settings, show_progress,
     extract});
constexpr auto asuni_steps = std::to_array<start_step>(
    {take_code, take_document, test_view, take_sun_from_host, reset_light_numbers,
     reset_lights_and_images, make_settings, read_settings, pass_asuni_dialog,
     write_drawing_settings, save_settings, append_own_settings, show_progress, extract});
constexpr auto delta_steps = std::to_array<start_step>(
    {take_code, take_document, reset_light_numbers, reset_lights_and_images, load_delta_defaults,
     take_background, save_settings, show_progress, extract});
constexpr auto delta_oem_steps =
    std::to_array<start_step>({take_code, take_document, reset_light_numbers,
                               reset_lights_and_images, show_progress, extract});
constexpr auto gbcad_steps = std::to_array<start_step>(
    {take_code, take_document, test_view, take_sun_from_host, reset_light_numbers,
     reset_lights_and_images, make_settings, read_settings, keep_about_switch, force_gbcad_globals,
     write_drawing_settings, save_settings, append_own_settings, show_progress, extract});
constexpr auto zwcad_steps = std::to_array<start_step>(
    {take_code, take_document, test_view, take_sun_from_host, reset_light_numbers,
     reset_lights_and_images, make_light_folder, preset_settings, take_units, pass_zwcad_dialog,
     write_drawing_settings, save_settings, print_saving, extract});
constexpr auto brics_steps = std::to_array<start_step>(
    {take_code, take_document, test_view, take_sun_from_host, reset_light_numbers,
     reset_lights_and_images, make_light_folder, preset_settings, read_drawing_settings,
     pass_brics_start_dialog, save_settings, print_saving, save_drawing_with_lights, extract});

struct start_row {
    int code;
    std::span<const start_step> steps;
};
/// By start_kind.
constexpr std::array<start_row, 7> starts{{{GREEN_BUTTON_NONE, plain_steps},
                                           {GREEN_BUTTON_ASUNI, asuni_steps},
                                           {GREEN_BUTTON_DELTA, delta_steps},
                                           {GREEN_BUTTON_DELTA, delta_oem_steps},
                                           {GREEN_BUTTON_GBCAD, gbcad_steps},
                                           {GREEN_BUTTON_ZWCAD, zwcad_steps},
                                           {GREEN_BUTTON_BRICS, brics_steps}}};

/// The progress dialog goes however a start ends.
struct progress_end {
    progress_end() = default;
    progress_end(const progress_end&) = delete;
    progress_end& operator=(const progress_end&) = delete;
    ~progress_end() { theApp().progress_dialog.reset(); }
};

const start_row& row_of(start_kind kind) { return starts.at(static_cast<std::size_t>(kind)); }

} // namespace

std::span<const start_step> steps_of(start_kind kind) { return row_of(kind).steps; }

int run_start(start_kind kind, int start_code, int mode) {
    const start_row& row = row_of(kind);
    const progress_end end;
    start_run run{green_button_info(row.code).program_name, row.code, start_code, mode,
                  adsw_acadMainWnd()};
    theApp().refresh_document();
    theApp().omb_export.last_error.clear();
    for (const start_step step : row.steps) {
        if (!step(run)) {
            return -1;
        }
    }
    theApp().progress_dialog.reset();
    if (run.result != -1) {
        acutPrintf("\nRendering Started.\n");
    }
    acedPostCommandPrompt();
    return run.result;
}
