// What all controls in widgets share.
#include "platform/window/qt/qt_control.h"

#include "platform/window/qt/qt_window.h"
#include "platform/window/qt/qt_window_system.h"

#include <QAbstractButton>
#include <QMouseEvent>

#include <array>
#include <utility>

namespace platform {

namespace {

/// By kind.
constexpr std::array<ControlMaker, 21> makers = {
    make_push_button,  make_check_box, make_radio_button, make_group_frame, make_label,
    make_edit,         make_combo_box, make_list,         make_list,        make_spinner,
    make_slider,       make_tabs,      make_list,         make_thumbnails,  make_date_or_time,
    make_date_or_time, make_progress,  make_rich_text,    make_html,        make_picture_button,
    make_surface};
static_assert(makers.size() == static_cast<std::size_t>(ControlKind::surface) + 1);

/// Focus that only comes and goes with the window or a list that drops down is no news.
bool is_focus_moved(const QEvent& event) {
    const auto reason = static_cast<const QFocusEvent&>(event).reason();
    return reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason;
}

bool changes_by_wheel(ControlKind kind) {
    return kind == ControlKind::combo_box || kind == ControlKind::slider ||
           kind == ControlKind::date || kind == ControlKind::time;
}

} // namespace

std::unique_ptr<QtControl> make_qt_control(QtWindow& window, const ControlSpec& spec) {
    const auto kind = static_cast<std::size_t>(spec.kind);
    return kind < makers.size() ? makers[kind](window, spec) : nullptr;
}

QtControl::QtControl(QtWindow& window, const ControlSpec& spec)
  : spec_(spec)
  , window_(window) {}

QWidget* QtControl::parent_widget() const { return window_.frame(); }

void QtControl::take(QWidget* widget) {
    widget_ = widget;
    widget->setGeometry(qt_rect(spec_.rect));
    if (!(spec_.font == WindowFont())) {
        widget->setFont(qt_font(spec_.font, window_.spec().font));
    }
    apply_colors();
    if (!spec_.accessible_name.empty()) {
        widget->setAccessibleName(qt_text(spec_.accessible_name));
    }
    if (!spec_.tool_tip.empty()) {
        set_tool_tip(spec_.tool_tip);
    }
    if (!spec_.tab_stop && (widget->focusPolicy() & Qt::TabFocus) != 0) {
        widget->setFocusPolicy(static_cast<Qt::FocusPolicy>(widget->focusPolicy() & ~Qt::TabFocus));
    }
    if (!spec_.enabled) {
        widget->setEnabled(false);
    }
    if (!spec_.visible) {
        widget->hide();
    } else if (window_.frame()->isVisible()) {
        widget->show();
    }
    widget->setMouseTracking(true); // hovering is told
    widget->installEventFilter(this);
}

void QtControl::apply_colors() {
    if (!spec_.has_text_color && !spec_.has_background) {
        return;
    }
    QPalette palette = widget_->palette();
    if (spec_.has_text_color) {
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            palette.setColor(role, qt_color(spec_.text_color));
        }
    }
    if (spec_.has_background) {
        for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button}) {
            palette.setColor(role, qt_color(spec_.background));
        }
        widget_->setAutoFillBackground(true);
    }
    widget_->setPalette(palette);
}

void QtControl::set_visible(bool visible) {
    if (spec_.visible != visible) {
        spec_.visible = visible;
        const Quiet quiet(window_.focus_quiet);
        widget_->setVisible(visible);
    }
}

void QtControl::set_enabled(bool enabled) {
    if (spec_.enabled != enabled) {
        spec_.enabled = enabled;
        const Quiet quiet(window_.focus_quiet);
        widget_->setEnabled(enabled);
    }
}

void QtControl::set_rect(const WindowRect& rect) {
    spec_.rect = rect;
    widget_->setGeometry(qt_rect(rect));
}

void QtControl::set_tool_tip(std::string_view text) {
    spec_.tool_tip = text;
    widget_->setToolTip(qt_tool_tip(text));
}

bool QtControl::has_focus() const {
    return widget_->hasFocus() || widget_->window()->focusWidget() == widget_;
}

void QtControl::set_focus() {
    const Quiet quiet(window_.focus_quiet);
    widget_->setFocus(Qt::OtherFocusReason);
}

bool QtControl::raise(const ControlEvent& event) {
    if (quiet_ > 0 || !on_event) {
        return false;
    }
    const auto handler = on_event; // the control may die under it
    return window_.system().handle([&] { return handler(event); });
}

bool QtControl::click() {
    auto* button = qobject_cast<QAbstractButton*>(widget_);
    if (button == nullptr) {
        return false;
    }
    button->click();
    return true;
}

bool QtControl::is_button(bool ControlSpec::*flag) const {
    return spec_.kind == ControlKind::push_button && spec_.*flag && spec_.visible && spec_.enabled;
}

bool QtControl::handle_enter() {
    QtWindow& window = window_;
    return raise({ControlEventKind::entered}) || window.press_default();
}

bool QtControl::play(std::string_view action, std::string_view argument) {
    if (!spec_.visible || !spec_.enabled || !window_.takes_input()) {
        return false;
    }
    QtWindowSystem& system = window_.system();
    const bool done = play_now(action, argument);
    system.settle(); // this control may be gone now
    return done;
}

bool QtControl::play_now(std::string_view action, std::string_view argument) {
    if (action == "click" && !has_rows()) {
        return click();
    }
    if (action == "hover") {
        ControlEvent event{ControlEventKind::hovered};
        if (const std::vector<int> at = script_numbers(argument); at.size() >= 2) {
            event.at = {at[0], at[1]};
        }
        raise(event);
        return true;
    }
    if (action == "leave") {
        raise({ControlEventKind::left});
        return true;
    }
    if (action == "focus") {
        widget_->setFocus(Qt::TabFocusReason);
        return true;
    }
    return act(action, argument);
}

bool QtControl::act(std::string_view, std::string_view) { return false; }

bool QtControl::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        if (watched == widget_ && window_.focus_quiet == 0 && is_focus_moved(*event)) {
            raise({event->type() == QEvent::FocusIn ? ControlEventKind::focus_gained
                                                    : ControlEventKind::focus_lost});
        }
        return false;
    case QEvent::KeyPress:
        return key_pressed(static_cast<const QKeyEvent&>(*event));
    case QEvent::MouseMove: {
        const QPoint at = static_cast<const QMouseEvent*>(event)->position().toPoint();
        is_hovered_ = true;
        raise({ControlEventKind::hovered, -1, -1, 0, {at.x(), at.y()}});
        return false;
    }
    case QEvent::Leave:
        if (std::exchange(is_hovered_, false)) {
            raise({ControlEventKind::left});
        }
        return false;
    case QEvent::Wheel:
        // Scrolling past a field must not change it.
        if (changes_by_wheel(spec_.kind) && !widget_->hasFocus()) {
            event->ignore();
            return true;
        }
        return false;
    default:
        return false;
    }
}

} // namespace platform
