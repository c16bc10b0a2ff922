// Windows: frames, modal loops, placing.
#include "platform/window/qt/qt_window.h"

#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window_system.h"

#include <QButtonGroup>
#include <QDialog>
#include <QEventLoop>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace platform {

namespace {

constexpr int cancel_result = 2;
constexpr int size_limit = 16384; ///< of windows and pictures of them, pixels

WindowSize bounded(WindowSize size, WindowSize least) {
    return {std::clamp(size.width, std::max(1, least.width), size_limit),
            std::clamp(size.height, std::max(1, least.height), size_limit)};
}

Qt::WindowFlags flags_of(const WindowSpec& spec) {
    Qt::WindowFlags flags = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                            Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    flags.setFlag(Qt::WindowMinimizeButtonHint, spec.minimizable);
    flags.setFlag(Qt::WindowMaximizeButtonHint, spec.resizable);
    flags.setFlag(Qt::WindowStaysOnTopHint, spec.on_top);
    return flags;
}

} // namespace

struct QtWindow::Modal {
    QEventLoop loop;
    bool ended = false;
    int result = cancel_result;
};

QtWindow::QtWindow(QtWindowSystem& system, const WindowSpec& spec)
  : system_(system)
  , spec_(spec) {
    spec_.size = bounded(spec_.size, {});
    make_frame();
    system_.add(*this);
}

QtWindow::~QtWindow() {
    system_.remove(*this);
    if (modal_) {
        modal_->ended = true;
        modal_->loop.quit();
    }
    for (QtWindow* window : system_.windows()) {
        // What an embedded window owns hangs on the window around it, too.
        if (window->owner() == this || window->frame()->parent() == frame_.get()) {
            window->leave(*this);
        }
    }
    frame_->removeEventFilter(this);
    controls_.clear();
    frame_.reset();
    system_.window_is_hidden();
}

void QtWindow::make_frame() {
    QWidget* around = owner() != nullptr ? owner()->frame() : nullptr;
    if (spec_.embedded) {
        frame_ = std::make_unique<QWidget>(around);
        frame_->hide(); // even when the owner is shown before it
    } else {
        frame_ = std::make_unique<QDialog>(around != nullptr ? around->window() : nullptr,
                                           flags_of(spec_));
    }
    frame_->setFont(qt_font(spec_.font));
    frame_->setWindowTitle(qt_text(spec_.title));
    frame_->setAcceptDrops(spec_.takes_drops);
    frame_->resize(spec_.size.width, spec_.size.height);
    keep_size();
    frame_->installEventFilter(this);
}

/// What the user cannot resize has one size only.
void QtWindow::keep_size() {
    if (spec_.embedded || spec_.resizable) {
        frame_->setMinimumSize(std::min(minimum_.width, size_limit),
                               std::min(minimum_.height, size_limit));
    } else {
        frame_->setFixedSize(spec_.size.width, spec_.size.height);
    }
}

/// Takes the frame out of that of a window that dies.
void QtWindow::leave(const QtWindow& dying) {
    if (owner() == &dying) {
        spec_.owner = nullptr;
    }
    const bool was_visible = visible_ && !spec_.embedded;
    const QPoint at = frame_->pos();
    frame_->setParent(nullptr, spec_.embedded ? Qt::Widget : flags_of(spec_));
    if (was_visible) {
        frame_->move(at);
        frame_->show();
    }
}

Control* QtWindow::add_control(const ControlSpec& spec) {
    std::unique_ptr<QtControl> control = make_qt_control(*this, spec);
    if (!control) {
        return nullptr;
    }
    link_to_newest(*control);
    controls_.push_back(std::move(control));
    return controls_.back().get();
}

/// Labels lead to the control behind them, and the arrow keys of a field to its spinner.
void QtWindow::link_to_newest(QtControl& control) {
    if (!controls_.empty()) {
        controls_.back()->next_was_made(control);
    }
    const ControlKind kind = control.spec().kind;
    if (kind == ControlKind::edit) {
        field_ = &control;
    } else if (kind == ControlKind::spinner && field_ != nullptr) {
        field_->next_was_made(control);
        field_ = nullptr;
    } else if (kind != ControlKind::slider) {
        field_ = nullptr;
    }
}

QButtonGroup* QtWindow::radio_group(bool begins) {
    if (begins || radios_ == nullptr) {
        radios_ = new QButtonGroup(frame_.get());
    }
    return radios_;
}

void QtWindow::show() {
    if (spec_.embedded && owner() == nullptr) {
        return; // there is nothing left that it could lie in
    }
    if (!visible_) {
        if (!placed_ && !spec_.embedded) {
            place_in_middle();
        }
        visible_ = true;
        frame_->show();
        if (spec_.embedded) {
            frame_->raise();
        }
    }
}

void QtWindow::hide() {
    if (visible_) {
        visible_ = false;
        frame_->hide();
        system_.window_is_hidden();
    }
}

int QtWindow::run_modal() {
    if (modal_ || spec_.embedded) {
        return cancel_result;
    }
    const auto modal = std::make_shared<Modal>();
    modal_ = modal;
    if (visible_) {
        hide(); // a window learns that it is modal when it is shown
    }
    frame_->setWindowModality(Qt::ApplicationModal);
    QtWindowSystem& system = system_;
    const QPointer<QtWindow> self(this);
    system.add_modal(*this);
    show();
    if (!modal->ended) {
        frame_->activateWindow();
        system.run_loop(modal->loop);
    }
    if (self) {
        self->modal_.reset();
        self->hide();
        self->frame_->setWindowModality(Qt::NonModal);
        system.remove_modal(*self);
    }
    system.settle();
    return modal->result;
}

void QtWindow::end_modal(int result) {
    if (modal_ && !modal_->ended) {
        modal_->ended = true;
        modal_->result = result;
        system_.remove_modal(*this);
        hide();
        modal_->loop.quit();
    }
}

void QtWindow::give_up() {
    const std::shared_ptr<Modal> modal = modal_;
    const QPointer<QtWindow> self(this);
    QtWindowSystem& system = system_;
    tell({WindowEventKind::cancelled});
    system.settle();
    if (self && modal && !modal->ended) {
        self->end_modal(cancel_result);
    }
}

void QtWindow::set_title(std::string_view title) {
    spec_.title = title;
    frame_->setWindowTitle(qt_text(title));
}

void QtWindow::place_in_middle() {
    const WindowPoint at = place();
    frame_->move(at.x, at.y);
}

WindowPoint QtWindow::place() const {
    if (placed_ || spec_.embedded || visible_) {
        return {frame_->x(), frame_->y()};
    }
    const QWidget* around = owner() != nullptr ? owner()->frame()->window() : nullptr;
    const WindowPoint middle =
        around != nullptr ? WindowPoint{around->x(), around->y()} : system_.cursor();
    const QRect screen = qt_rect(system_.work_area(middle));
    const QRect room = around != nullptr && around->isVisible() ? around->frameGeometry() : screen;
    QRect rect(QPoint(), frame_->size());
    rect.moveCenter(room.center());
    return {
        std::clamp(rect.x(), screen.x(), std::max(screen.x(), screen.right() - rect.width())),
        std::clamp(rect.y(), screen.y(), std::max(screen.y(), screen.bottom() - rect.height()))};
}

void QtWindow::set_place(WindowPoint place) {
    placed_ = true;
    frame_->move(place.x, place.y);
}

WindowSize QtWindow::client_size() const { return {frame_->width(), frame_->height()}; }

void QtWindow::set_client_size(WindowSize size) {
    size = bounded(size, minimum_);
    if (size == spec_.size) {
        return;
    }
    if (!spec_.embedded && !spec_.resizable) {
        frame_->setFixedSize(size.width, size.height);
    } else {
        frame_->resize(size.width, size.height);
    }
    resized();
}

/// Tells the new size once, whoever gave it.
void QtWindow::resized() {
    const WindowSize size = client_size();
    if (!(size == spec_.size)) {
        spec_.size = size;
        WindowEvent event{WindowEventKind::resized};
        event.size = size;
        tell(event);
    }
}

void QtWindow::set_minimum_size(WindowSize size) {
    minimum_ = {std::clamp(size.width, 0, size_limit), std::clamp(size.height, 0, size_limit)};
    if (spec_.resizable || spec_.embedded) {
        keep_size();
        resized();
    }
}

void QtWindow::set_enabled(bool enabled) {
    enabled_ = enabled;
    frame_->setEnabled(enabled);
}

void QtWindow::set_on_top(bool on_top) {
    if (spec_.on_top == on_top || spec_.embedded) {
        return;
    }
    spec_.on_top = on_top;
    const QPoint at = frame_->pos();
    frame_->setWindowFlag(Qt::WindowStaysOnTopHint, on_top); // hides it
    if (visible_) {
        frame_->move(at);
        frame_->show();
    }
}

void QtWindow::activate() {
    QWidget* top = frame_->window();
    if (top->isMinimized()) {
        top->showNormal();
    }
    top->raise();
    top->activateWindow();
}

bool QtWindow::is_active() const { return visible_ && frame_->window()->isActiveWindow(); }

WindowPicture QtWindow::grab(double scale) {
    const QSize size = frame_->size();
    if (!(scale > 0) || scale * std::max(size.width(), size.height()) > size_limit) {
        return {};
    }
    QImage image((QSizeF(size) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return {};
    }
    image.setDevicePixelRatio(scale);
    image.fill(frame_->palette().color(QPalette::Window)); // an embedded window has no ground
    frame_->render(&image);
    return picture_of(image);
}

} // namespace platform
