// Events, timers and measures of the window system in widgets.
#include "platform/window/qt/qt_window_system.h"

#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"

#include <QClipboard>
#include <QCursor>
#include <QDesktopServices>
#include <QFileInfo>
#include <QFontMetrics>
#include <QScreen>
#include <QStyle>
#include <QUrl>

#include <algorithm>
#include <clocale>
#include <utility>

namespace platform {

std::unique_ptr<QApplication> make_qt_application() {
    static int count = 1;
    static char name[] = "qorvane";
    static char* arguments[] = {name, nullptr};
    auto application = std::make_unique<QApplication>(count, arguments);
    // Numbers in files are read and written with a point, whatever the desktop's language.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setDesktopFileName("org.qorvane.Qorvane");
    return application;
}

QtWindowSystem::QtWindowSystem(std::unique_ptr<QApplication> application)
  : application_(std::move(application))
  , system_palette_(QApplication::palette())
  , system_style_(QApplication::style()->name()) {
    script_timer_.setSingleShot(true);
    later_timer_.setSingleShot(true);
    QObject::connect(&script_timer_, &QTimer::timeout, &script_timer_,
                     [this] { play_when_idle(); });
    QObject::connect(&later_timer_, &QTimer::timeout, &later_timer_, [this] { run_later(); });
    if (application_) {
        set_theme(WindowTheme::system);
    }
}

QtWindowSystem::~QtWindowSystem() {
    waiting_.clear();
    timers_.clear();
    if (!windows_.empty()) {
        static_cast<void>(application_.release()); // widgets without an application end the program
    }
}

std::unique_ptr<Window> QtWindowSystem::make_window(const WindowSpec& spec) {
    if (spec.embedded && spec.owner == nullptr) {
        return nullptr;
    }
    return std::make_unique<QtWindow>(*this, spec);
}

void QtWindowSystem::remove(QtWindow& window) {
    std::erase(windows_, &window);
    remove_modal(window);
}

void QtWindowSystem::remove_modal(QtWindow& window) { std::erase(modals_, &window); }

int QtWindowSystem::text_width(const WindowFont& font, std::string_view text) {
    return QFontMetrics(qt_font(font)).horizontalAdvance(qt_text(text));
}

WindowSize QtWindowSystem::base_unit(const WindowFont& font) {
    const QFontMetrics metrics(qt_font(font));
    const int letters = metrics.horizontalAdvance(
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
    return {std::max(1, (letters + 26) / 52), std::max(1, metrics.height())};
}

WindowRect QtWindowSystem::work_area(WindowPoint near) {
    const QScreen* screen = QGuiApplication::screenAt({near.x, near.y});
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    return screen != nullptr ? rect_of(screen->availableGeometry()) : WindowRect{0, 0, 1024, 768};
}

WindowPoint QtWindowSystem::cursor() {
    const QPoint at = QCursor::pos();
    return {at.x(), at.y()};
}

bool QtWindowSystem::open_address(const std::string& address) {
    const QString text = qt_text(address);
    if (scripted_) {
        return true; // a script opens no other program
    }
    return QDesktopServices::openUrl(QFileInfo::exists(text) ? QUrl::fromLocalFile(text)
                                                             : QUrl::fromUserInput(text));
}

std::string QtWindowSystem::clipboard_text() {
    return QGuiApplication::clipboard()->text().toStdString();
}

void QtWindowSystem::set_clipboard_text(std::string_view text) {
    QGuiApplication::clipboard()->setText(qt_text(text));
}

int QtWindowSystem::start_timer(int milliseconds, std::function<void()> work) {
    auto timer = std::make_unique<QTimer>();
    const int number = next_timer_++;
    auto is_running = std::make_shared<bool>(false);
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(),
                     [this, is_running, work = std::move(work)] {
                         if (std::exchange(*is_running, true)) {
                             return;
                         }
                         handle([&] {
                             work();
                             return true;
                         });
                         *is_running = false; // a timer that was stopped goes later, see stop_timer
                     });
    timer->start(std::max(1, milliseconds));
    timers_[number] = std::move(timer);
    return number;
}

void QtWindowSystem::stop_timer(int timer) {
    if (const auto found = timers_.find(timer); found != timers_.end()) {
        found->second->stop();
        found->second.release()->deleteLater(); // it may be the one that is calling
        timers_.erase(found);
    }
}

bool QtWindowSystem::handle(const std::function<bool()>& work) {
    bool taken = false;
    ++depth_;
    try {
        taken = work();
    } catch (...) {
        taken = true;
        keep_exception();
    }
    --depth_;
    if (depth_ == 0 && !waiting_.empty()) {
        later_timer_.start(0);
    }
    return taken;
}

void QtWindowSystem::later(std::function<void()> work) {
    waiting_.push_back(std::move(work));
    later_timer_.start(0);
}

void QtWindowSystem::run_later() {
    while (depth_ == 0 && !waiting_.empty()) {
        const auto work = std::move(waiting_.front());
        waiting_.pop_front();
        try {
            work();
        } catch (...) {
            keep_exception();
        }
    }
}

/// It comes out of the innermost loop, unless a call that began behind it handles events.
void QtWindowSystem::keep_exception() {
    thrown_ = std::current_exception();
    if (loops_.size() > playing_in_) {
        loops_.back()->quit();
    }
}

void QtWindowSystem::settle() {
    run_later();
    if (thrown_) {
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    }
}

void QtWindowSystem::run_loop(QEventLoop& loop) {
    loops_.push_back(&loop);
    arm_script();
    loop.exec();
    loops_.pop_back();
}

void QtWindowSystem::process_events() {
    const std::size_t before = std::exchange(playing_in_, loops_.size()); // no script line in here
    QCoreApplication::processEvents();
    playing_in_ = before;
    arm_script();
    settle();
}

bool QtWindowSystem::is_any_shown() const {
    return std::any_of(windows_.begin(), windows_.end(), [](const QtWindow* window) {
        return window->is_visible() && !window->spec().embedded;
    });
}

void QtWindowSystem::window_is_hidden() {
    if (until_closed_ != nullptr && !is_any_shown()) {
        until_closed_->quit();
    }
}

void QtWindowSystem::run_until_closed() {
    settle();
    while (is_any_shown()) {
        QEventLoop loop;
        QEventLoop* const before = std::exchange(until_closed_, &loop);
        run_loop(loop);
        until_closed_ = before;
        settle();
        if (scripted_ && script_.empty()) {
            return; // as without a display: the script was the user
        }
    }
}

} // namespace platform
