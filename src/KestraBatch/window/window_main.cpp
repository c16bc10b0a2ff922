// The module's entry: one QApplication, one window, until it is closed.
#include "KestraBatch/window/icons.h"
#include "KestraBatch/window/qt_window_port.h"
#include "KestraBatch/window/render_window.h"
#include "omb/base/trace.h"

#include <QApplication>
#include <QEventLoop>
#include <QMessageBox>
#include <QTimer>

#include <clocale>
#include <exception>

namespace KestraBatch {

namespace {

/// The port while the window runs, and the one before when it is gone.
class PortInUse {
public:
    PortInUse()
      : before_(set_window_port(std::make_unique<QtWindowPort>())) {}
    ~PortInUse() { set_window_port(std::move(before_)); }
    PortInUse(const PortInUse&) = delete;
    PortInUse& operator=(const PortInUse&) = delete;

private:
    std::unique_ptr<cl_window_port> before_;
};

/// A small window that says one thing, until it is read or the program is asked to end.
int show_notice(const WindowStart& start) {
    QMessageBox box(QMessageBox::Information, start.program_name, start.notice, QMessageBox::Close);
    box.setTextFormat(Qt::PlainText);
    box.setWindowIcon(make_icon(IconShape::program));
    int signal = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &box, [&] {
        signal = start.program->stop_asked();
        if (signal != 0) {
            box.close();
        }
    });
    timer.start(100);
    box.exec();
    return signal == 0 ? 0 : 128 + signal;
}

int show(const WindowStart& start) {
    int count = 1;
    std::string name = start.program_name;
    char* arguments[] = {name.data(), nullptr};
    QApplication application(count, arguments);
    // Numbers in files are read and written with a point, whatever the desktop's language.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setDesktopFileName("org.qorvane.Qorvane");
    const PortInUse port;
    if (start.picture == nullptr) {
        return show_notice(start);
    }
    RenderWindow window(*start.program, *start.picture, start.program_name, start.program_version);
    QEventLoop until_closed;
    window.on_closed = [&] { until_closed.quit(); };
    window.begin();
    until_closed.exec();
    return window.exit_code();
}

} // namespace

} // namespace KestraBatch

/// See WindowStart.
extern "C" [[gnu::visibility("default")]] int
run_batch_window(const KestraBatch::WindowStart* start) {
    using KestraBatch::WindowStart;
    if (start == nullptr || start->version != KestraBatch::window_port_version ||
        start->program == nullptr) {
        return -1;
    }
    try {
        return KestraBatch::show(*start);
    } catch (const std::exception& error) {
        OMB_TRACE(1, "The window ended with an error: %s", error.what());
        return -1;
    }
}
