// How long the window's thread is away from its events while a real render keeps all cores busy:
//   window_frames PARAMETER_FILE [LIMIT_MS]
// A timer beats every 5 ms on the window's thread; the longest and the 99th percentile of the gaps
// between beats are told for each thing that a user does meanwhile. Ends with 1 when a gap was
// above the limit (50 ms). QT_QPA_PLATFORM chooses the display, `offscreen` when it is not set.
#include "KestraBatch/window/render_window.h"
#include "KestraBatch/window/session_picture.h"
#include "KestraBatch/window/window_program.h"
#include "omb/base/profile.h"
#include "omb/globals/catalogue.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QSlider>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <functional>
#include <string>
#include <vector>

using namespace KestraBatch;

namespace {

constexpr int beat_ms = 5;
constexpr double default_limit_ms = 50;

class Silent : public cl_batch_output {
public:
    void message(const std::string&) override {}
    void error(const std::string& text) override { fmt::print(stderr, "{}\n", text); }
    void status(const std::string&) override {}
};

/// Gaps between beats, by what went on meanwhile.
class Heart {
public:
    Heart() {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(beat_ms);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { beat(); });
        clock_.start();
        timer_.start();
    }
    void begin(const std::string& what) {
        beat();
        parts_.push_back({what, {}});
        fmt::print(stderr, "{} ...\n", what);
    }
    /// True when no gap was above the limit.
    bool report(double limit_ms) const {
        bool good = true;
        std::vector<double> all;
        const auto line = [](const std::string& what, std::vector<double> gaps) {
            std::sort(gaps.begin(), gaps.end());
            if (gaps.empty()) {
                return 0.0;
            }
            fmt::print("{:<34}{:>8}{:>10.1f}{:>10.1f}{:>10.1f}\n", what, gaps.size(),
                       gaps[gaps.size() / 2], gaps[gaps.size() * 99 / 100], gaps.back());
            return gaps.back();
        };
        fmt::print("{:<34}{:>8}{:>10}{:>10}{:>10}\n", "gaps of the window's thread, ms", "beats",
                   "median", "99 %", "longest");
        for (const Part& part : parts_) {
            good = line(part.what, part.gaps) <= limit_ms && good;
            all.insert(all.end(), part.gaps.begin(), part.gaps.end());
        }
        line("all", all);
        fmt::print("limit {} ms: {}\n", limit_ms, good ? "held" : "NOT HELD");
        return good;
    }

private:
    struct Part {
        std::string what;
        std::vector<double> gaps;
    };
    void beat() {
        const double gap = static_cast<double>(clock_.nsecsElapsed()) / 1e6;
        clock_.start();
        if (!parts_.empty()) {
            parts_.back().gaps.push_back(gap);
        }
    }

    QTimer timer_;
    QElapsedTimer clock_;
    std::vector<Part> parts_;
};

/// A user who does one thing after the other, an event every 16 ms as a mouse sends them.
class User {
public:
    User(RenderWindow& window, Heart& heart)
      : window_(window)
      , heart_(heart) {}

    void run() {
        heart_.begin("the render starts");
        run_until(20, [&] { return window_.model().has_picture(); });
        heart_.begin("passes arrive");
        const int pass = window_.model().status().pass;
        run_until(60, [&] { return window_.model().status().pass >= pass + 2; });
        drag_sliders();
        zoom_and_pan();
        choose_region();
        heart_.begin("pause and resume");
        for (int i = 0; i < 6; ++i) {
            window_.trigger(WindowCommand::pause);
            run_for(0.5);
        }
        heart_.begin("pages, menu, resizing");
        for (int i = 0; i < 24; ++i) {
            window_.tabs().setCurrentIndex(i % 4);
            window_.resize(1280 - 10 * i, 780 - 5 * i);
            run_for(0.06);
        }
        heart_.begin("the render is stopped");
        window_.trigger(WindowCommand::stop);
        run_until(20, [&] { return !window_.model().is_running(); });
        run_for(3); // the grain goes meanwhile
        save();
        heart_.begin("rendered again");
        window_.trigger(WindowCommand::again);
        run_until(20, [&] { return window_.model().has_picture(); });
        heart_.begin("closed, and saved before");
        bool closed = false;
        window_.on_closed = [&] { closed = true; };
        window_.close();
        run_until(60, [&] { return closed; });
        heart_.begin("end");
    }

private:
    static void run_for(double seconds) {
        run_until(seconds, [] { return false; });
    }
    static void run_until(double seconds, const std::function<bool()>& reached) {
        QElapsedTimer clock;
        clock.start();
        while (!reached() && static_cast<double>(clock.elapsed()) < seconds * 1000) {
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        }
    }
    static void event_passes() { run_for(0.016); }

    void drag_sliders() {
        heart_.begin("tone sliders dragged");
        auto* brightness = window_.tone_panel().row(0).findChild<QSlider*>();
        auto* gamma = window_.tone_panel().row(4).findChild<QSlider*>();
        for (int i = 0; i < 180; ++i) {
            QSlider* slider = i < 90 ? brightness : gamma;
            const int half = (slider->maximum() - slider->minimum()) / 2;
            slider->setValue(slider->minimum() + half + half * (i % 90 - 45) / 90);
            event_passes();
        }
        heart_.begin("channel sliders dragged");
        window_.tabs().setCurrentIndex(1);
        const auto channels = static_cast<int>(window_.model().channels().size());
        for (int i = 0; i < 180 && channels > 0; ++i) {
            auto* slider = window_.light_panel().row(i / 30 % channels).findChild<QSlider*>();
            slider->setValue(slider->maximum() * (i % 30) / 30);
            event_passes();
        }
        window_.tabs().setCurrentIndex(0);
    }
    void wheel(int delta) {
        PictureView& view = window_.view();
        const QPointF at(view.width() * 0.4, view.height() * 0.6);
        QWheelEvent event(at, view.mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
        event_passes();
    }
    void mouse(QEvent::Type type, QPointF at) {
        const bool held = type != QEvent::MouseButtonRelease;
        PictureView& view = window_.view();
        QMouseEvent event(type, at, view.mapToGlobal(at), Qt::LeftButton,
                          held ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&view, &event);
        event_passes();
    }
    void drag(QPointF from, QPointF to, int events) {
        mouse(QEvent::MouseButtonPress, from);
        for (int i = 1; i <= events; ++i) {
            mouse(QEvent::MouseMove, from + (to - from) * i / events);
        }
        mouse(QEvent::MouseButtonRelease, to);
    }
    void zoom_and_pan() {
        heart_.begin("zoomed with the wheel");
        for (int i = 0; i < 120; ++i) {
            wheel(i / 15 % 2 == 0 ? 120 : -120);
        }
        heart_.begin("panned at three zooms");
        for (const double zoom : {0.6, 1.0, 3.0}) {
            window_.view().set_zoom(zoom);
            drag({500, 300}, {200, 100}, 40);
            drag({200, 100}, {600, 400}, 40);
        }
        window_.trigger(WindowCommand::fit);
    }
    void choose_region() {
        heart_.begin("a region chosen");
        window_.trigger(WindowCommand::region);
        drag({200, 150}, {520, 400}, 60);
        run_for(1.5);
        window_.trigger(WindowCommand::clear_region);
        run_for(0.5);
    }
    void save() {
        heart_.begin("saved");
        window_.trigger(WindowCommand::save);
        run_until(60, [&] { return window_.model().is_saved(); });
    }

    RenderWindow& window_;
    Heart& heart_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        fmt::print(stderr, "usage: window_frames PARAMETER_FILE [LIMIT_MS]\n");
        return 2;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const double limit_ms =
        argc > 2 ? std::max(1.0, QString(argv[2]).toDouble()) : default_limit_ms;
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    const auto home = std::filesystem::temp_directory_path() / "window_frames_home";
    setenv("QORVANE_HOME", home.c_str(), 1);   // the user's profile stays as it is
    open_user_profile(profile_use::read_only); // as the batch program does
    preset_application_globals(0);
    const BatchRun run;
    Silent out;
    WindowProgram program(run, {});
    SessionPicture picture(argv[1], "window_frames", 0, out);
    RenderWindow window(program, picture, "Qorvane", "Qorvane");
    std::filesystem::create_directories(home);
    const auto saved = home / "window_frames.png";
    window.ask_save_name = [&] { return saved; };
    window.ask_at_closing = [](const CloseQuestion&) {
        return CloseAnswer{CloseAnswer::yes, false};
    };
    Heart heart;
    window.begin();
    window.resize(1280, 780);
    User(window, heart).run();
    const bool good = heart.report(limit_ms);
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
    return good ? 0 : 1;
}
