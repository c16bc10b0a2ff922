// Opening windows in widgets, without a display: making the window and its controls, filling and
// showing it, and taking it away.
#include "platform/window/qt/qt_window_system.h"

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace {

using namespace platform;

constexpr ControlKind kinds[] = {
    ControlKind::label,       ControlKind::edit,      ControlKind::label,
    ControlKind::combo_box,   ControlKind::check_box, ControlKind::radio_button,
    ControlKind::push_button, ControlKind::edit,      ControlKind::spinner,
    ControlKind::slider,      ControlKind::surface,   ControlKind::picture_button,
    ControlKind::group_frame, ControlKind::label,     ControlKind::list_box};

void fill(Window& window, int count) {
    std::vector<ListRow> rows(10);
    for (ListRow& row : rows) {
        row.text = "A row";
    }
    for (int i = 0; i < count; ++i) {
        ControlSpec spec;
        spec.kind = kinds[static_cast<std::size_t>(i) % std::size(kinds)];
        spec.text = "&Text";
        spec.tool_tip = "What it does";
        spec.rect = {10 + i % 15 * 60, 10 + i / 15 * 30, 58, 24};
        window.add_control(spec)->set_rows(rows);
    }
}

/// Argument: the number of controls.
void open_window(benchmark::State& state) {
    QtWindowSystem system(make_qt_application());
    WindowSpec spec;
    spec.size = {1000, 800};
    for (auto _ : state) {
        const auto window = system.make_window(spec);
        fill(*window, static_cast<int>(state.range(0)));
        window->show();
        system.process_events();
    }
}
BENCHMARK(open_window)->Arg(30)->Arg(300)->Unit(benchmark::kMillisecond);

} // namespace

int main(int count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
