// What windows do with keys, closing, dropping, and played events.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"
#include "platform/window/qt/qt_window_system.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

namespace platform {

QtControl* QtWindow::find_control(std::string_view name) const {
    for (const auto& control : controls_) {
        if (control->spec().name == name) {
            return control.get();
        }
    }
    return nullptr;
}

bool QtWindow::takes_input() const {
    for (const QtWindow* window = this; window != nullptr; window = window->owner()) {
        if (!window->visible_ || !window->enabled_) {
            return false;
        }
        if (!window->spec_.embedded) {
            break;
        }
    }
    const QtWindow* top = system_.top_modal();
    const QtWindow* window = this;
    while (top != nullptr && window != nullptr && window != top) {
        window = window->owner(); // what the modal window has opened takes input too
    }
    return window != nullptr;
}

void QtWindow::tell(const WindowEvent& event) {
    if (on_event) {
        const auto handler = on_event;
        system_.handle([&] {
            handler(event);
            return true;
        });
    }
}

bool QtWindow::press_default() {
    for (const auto& control : controls_) {
        if (control->is_button(&ControlSpec::is_default)) {
            return control->click();
        }
    }
    if (spec_.embedded && owner() != nullptr) {
        return owner()->press_default();
    }
    tell({WindowEventKind::accepted});
    return true;
}

bool QtWindow::press_cancel() {
    for (const auto& control : controls_) {
        if (control->is_button(&ControlSpec::is_cancel)) {
            return control->click();
        }
    }
    if (spec_.embedded && owner() != nullptr) {
        return owner()->press_cancel();
    }
    tell({WindowEventKind::cancelled});
    return true;
}

bool QtWindow::turn_page(int amount) {
    for (const auto& control : controls_) {
        if (control->widget()->isVisible() && control->widget()->isEnabled() &&
            control->turn_page(amount)) {
            return true;
        }
    }
    return false;
}

/// Keys that no control has taken. An embedded window hands on to its owner what it has no use for.
bool QtWindow::key_pressed(const QKeyEvent& event) {
    const bool control_held = event.modifiers().testFlag(Qt::ControlModifier);
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (auto* button = qobject_cast<QPushButton*>(frame_->window()->focusWidget());
            button != nullptr && button->hasFocus()) {
            button->click();
        } else {
            press_default();
        }
        return true;
    case Qt::Key_Escape:
        press_cancel();
        return true;
    case Qt::Key_F1:
        if (spec_.embedded) {
            return false;
        }
        tell({WindowEventKind::help});
        return true;
    case Qt::Key_Tab:
    case Qt::Key_PageDown:
        return control_held && turn_page(1);
    case Qt::Key_Backtab:
    case Qt::Key_PageUp:
        return control_held && turn_page(-1);
    default:
        return false;
    }
}

bool QtWindow::dropped(QEvent& event) {
    auto& drop = static_cast<QDropEvent&>(event);
    if (!spec_.takes_drops || !drop.mimeData()->hasUrls()) {
        return false;
    }
    drop.acceptProposedAction();
    if (event.type() == QEvent::Drop) {
        WindowEvent told{WindowEventKind::dropped};
        for (const QUrl& url : drop.mimeData()->urls()) {
            if (url.isLocalFile()) {
                told.files.push_back(url.toLocalFile().toStdString());
            }
        }
        if (!told.files.empty()) {
            tell(told);
        }
    }
    return true;
}

bool QtWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched != frame_.get()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::KeyPress:
        return key_pressed(static_cast<const QKeyEvent&>(*event));
    case QEvent::Close:
        event->ignore(); // whether it closes is the owner's to say
        tell({WindowEventKind::cancelled});
        return true;
    case QEvent::Resize:
        resized();
        return false;
    case QEvent::Move:
        if (visible_ && !spec_.embedded) {
            tell({WindowEventKind::moved});
        }
        return false;
    case QEvent::WindowActivate:
        tell({WindowEventKind::activated});
        return false;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return dropped(*event);
    default:
        return false;
    }
}

bool QtWindow::play(std::string_view action, std::string_view argument) {
    if (!takes_input()) {
        return false;
    }
    QtWindowSystem& system = system_;
    bool done = true;
    const std::vector<int> numbers = script_numbers(argument);
    if (action == "enter") {
        done = press_default();
    } else if (action == "escape") {
        done = press_cancel();
    } else if (action == "resize" && spec_.resizable && numbers.size() >= 2) {
        set_client_size({numbers[0], numbers[1]});
    } else if (action == "move" && numbers.size() >= 2) {
        placed_ = true;
        frame_->move(numbers[0], numbers[1]);
    } else if (action == "drop" && spec_.takes_drops) {
        WindowEvent event{WindowEventKind::dropped};
        event.files = {std::string(argument)};
        tell(event);
    } else if (action == "help") {
        tell({WindowEventKind::help});
    } else if (action == "close") {
        tell({WindowEventKind::cancelled});
    } else {
        done = false;
    }
    system.settle(); // this window may be gone now
    return done;
}

} // namespace platform
