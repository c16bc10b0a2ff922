// Windows in widgets, without a display, for tests.
#pragma once

#include "platform/window/qt/qt_window_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace qt_test {

using namespace platform;

struct QtWindows : testing::Test {
    static void SetUpTestSuite() {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        shared = std::make_unique<QtWindowSystem>(make_qt_application());
    }
    static void TearDownTestSuite() { shared.reset(); }

    static WindowSpec window_spec(const std::string& name, Window* owner = nullptr,
                                  bool embedded = false) {
        WindowSpec spec;
        spec.name = name;
        spec.title = name;
        spec.size = {300, 200};
        spec.owner = owner;
        spec.embedded = embedded;
        return spec;
    }
    static ControlSpec control_spec(ControlKind kind, const std::string& name) {
        ControlSpec spec;
        spec.kind = kind;
        spec.name = name;
        spec.text = "&" + name;
        spec.rect = {10, 10, 120, 60};
        return spec;
    }
    /// Makes a control that writes its events down.
    Control* add(Window& window, const ControlSpec& spec) {
        Control* control = window.add_control(spec);
        control->on_event = [this](const ControlEvent& event) {
            events.push_back(event);
            return takes_events;
        };
        return control;
    }
    Control* add(Window& window, ControlKind kind, const std::string& name) {
        return add(window, control_spec(kind, name));
    }
    void listen(Window& window) {
        window.on_event = [this](const WindowEvent& event) { told.push_back(event.kind); };
    }
    std::vector<ControlEventKind> kinds() const {
        std::vector<ControlEventKind> seen;
        for (const ControlEvent& event : events) {
            seen.push_back(event.kind);
        }
        return seen;
    }

    static inline std::unique_ptr<QtWindowSystem> shared;
    QtWindowSystem& system = *shared;
    std::vector<ControlEvent> events;
    std::vector<WindowEventKind> told; ///< without resizing, moving and activating, see forget
    bool takes_events = true;
};

} // namespace qt_test
