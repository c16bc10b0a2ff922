// Spinners, sliders, progress bars, dates and times.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"

#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QProgressBar>
#include <QSlider>
#include <QTimer>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace platform {

namespace {

constexpr int repeat_delay = 400, repeat_interval = 60; ///< milliseconds

QColor faded(QColor color, float alpha) {
    color.setAlphaF(alpha);
    return color;
}

/// Two arrows, one above the other, or side by side where they lie.
class SpinnerWidget : public QWidget {
public:
    explicit SpinnerWidget(QWidget* parent)
      : QWidget(parent) {
        setAttribute(Qt::WA_Hover);
        repeat_.callOnTimeout(this, [this] {
            repeat_.setInterval(repeat_interval);
            on_step(pressed_);
        });
    }
    std::function<void(int)> on_step;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor ink = palette().color(QPalette::ButtonText);
        const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.setPen(hasFocus() ? palette().color(QPalette::Highlight) : faded(ink, 0.3F));
        painter.setBrush(palette().color(QPalette::Button));
        painter.drawRoundedRect(frame, 2, 2);
        for (const int way : {1, -1}) {
            draw_half(painter, way, ink);
        }
        painter.setPen(faded(ink, 0.2F));
        const QRectF up = half(1);
        if (is_lying()) {
            painter.drawLine(up.topLeft() + QPointF(0, 2), up.bottomLeft() - QPointF(0, 2));
        } else {
            painter.drawLine(up.bottomLeft() + QPointF(2, 0), up.bottomRight() - QPointF(2, 0));
        }
    }
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() != Qt::LeftButton) {
            event->ignore();
            return;
        }
        pressed_ = half(1).contains(event->position()) ? 1 : -1;
        repeat_.start(repeat_delay);
        update();
        on_step(pressed_); // the widget may be gone now
    }
    void mouseReleaseEvent(QMouseEvent*) override {
        pressed_ = 0;
        repeat_.stop();
        update();
    }
    void hideEvent(QHideEvent*) override { repeat_.stop(); }
    void changeEvent(QEvent* event) override {
        if (event->type() == QEvent::EnabledChange && !isEnabled()) {
            pressed_ = 0;
            repeat_.stop();
        }
        QWidget::changeEvent(event);
    }

private:
    bool is_lying() const { return width() * 2 > height() * 3; }
    QRectF half(int way) const {
        const QRectF all(rect());
        if (is_lying()) {
            return way > 0 ? all.adjusted(all.width() / 2, 0, 0, 0)
                           : all.adjusted(0, 0, -all.width() / 2, 0);
        }
        return way > 0 ? all.adjusted(0, 0, 0, -all.height() / 2)
                       : all.adjusted(0, all.height() / 2, 0, 0);
    }
    void draw_half(QPainter& painter, int way, const QColor& ink) const {
        const QRectF room = half(way);
        const bool hot =
            isEnabled() && underMouse() && room.contains(mapFromGlobal(QCursor::pos()));
        painter.setPen(Qt::NoPen);
        if (pressed_ == way || hot) {
            painter.setBrush(
                faded(palette().color(QPalette::Highlight), pressed_ == way ? 0.45F : 0.18F));
            painter.drawRoundedRect(room.adjusted(1.5, 1.5, -1.5, -1.5), 1.5, 1.5);
        }
        const double size = std::clamp(std::min(room.width(), room.height()) * 0.28, 2.0, 4.5);
        const QPointF middle = room.center();
        const double tip = way > 0 ? -size * 0.6 : size * 0.6;
        painter.setBrush(isEnabled() ? ink : faded(ink, 0.35F));
        painter.drawPolygon(QPolygonF{QPointF(middle.x() - size, middle.y() - tip),
                                      QPointF(middle.x() + size, middle.y() - tip),
                                      QPointF(middle.x(), middle.y() + tip)});
    }

    QTimer repeat_;
    int pressed_ = 0; ///< 1 up, -1 down
};

class SpinnerControl : public QtControl {
public:
    SpinnerControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , arrows_(new SpinnerWidget(parent_widget())) {
        arrows_->setFocusPolicy(spec.tab_stop ? Qt::TabFocus : Qt::NoFocus);
        arrows_->on_step = [this](int way) { step(way); };
        take(arrows_);
    }
    bool step(int way) override {
        if (!arrows_->isEnabled()) {
            return false;
        }
        raise({ControlEventKind::stepped, -1, -1, way});
        return true;
    }

protected:
    bool act(std::string_view action, std::string_view argument) override {
        const std::vector<int> numbers = script_numbers(argument);
        return action == "step" && step(!numbers.empty() && numbers.front() < 0 ? -1 : 1);
    }
    bool key_pressed(const QKeyEvent& event) override {
        if (event.key() == Qt::Key_Up || event.key() == Qt::Key_Right) {
            return step(1);
        }
        return (event.key() == Qt::Key_Down || event.key() == Qt::Key_Left) && step(-1);
    }

private:
    SpinnerWidget* arrows_;
};

/// The slider counts places, the control values between two limits.
class SliderControl : public QtControl {
public:
    SliderControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , slider_(new QSlider(spec.vertical ? Qt::Vertical : Qt::Horizontal, parent_widget())) {
        if (spec.ticks > 0) {
            slider_->setTickPosition(QSlider::TicksBelow);
        }
        divide();
        take(slider_);
        connect(slider_, &QSlider::valueChanged, this, [this](int place) {
            if (quiet_ == 0) {
                value_ = least_ + (most_ - least_) * place / places_;
                raise({ControlEventKind::slider_moved});
            }
        });
        connect(slider_, &QSlider::sliderReleased, this,
                [this] { raise({ControlEventKind::slider_released}); });
    }
    double value() const override { return value_; }
    void set_value(double value) override {
        const Quiet quiet(quiet_);
        value_ = std::isfinite(value) ? std::max(least_, std::min(most_, value)) : least_;
        slider_->setValue(most_ > least_ ? static_cast<int>(std::lround((value_ - least_) *
                                                                        places_ / (most_ - least_)))
                                         : 0);
    }
    void set_range(double least, double most) override {
        least_ = least;
        most_ = std::max(least, most);
        divide();
    }

protected:
    bool act(std::string_view action, std::string_view argument) override {
        if (action == "release") {
            raise({ControlEventKind::slider_released});
            return true;
        }
        double value = 0;
        const auto [end, error] =
            std::from_chars(argument.data(), argument.data() + argument.size(), value);
        if (action != "slide" || error != std::errc()) {
            return false;
        }
        set_value(value);
        raise({ControlEventKind::slider_moved});
        return true;
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool was_taken = QtControl::eventFilter(watched, event);
        // A key that moves the slider also lets it go again.
        if (!was_taken && event->type() == QEvent::KeyRelease &&
            !static_cast<QKeyEvent*>(event)->isAutoRepeat() && is_moving_key(*event)) {
            raise({ControlEventKind::slider_released});
        }
        return was_taken;
    }

private:
    static bool is_moving_key(const QEvent& event) {
        const int key = static_cast<const QKeyEvent&>(event).key();
        return (key >= Qt::Key_Home && key <= Qt::Key_PageDown);
    }
    /// Whole numbers have a place each, where they are not too few or too many.
    void divide() {
        const Quiet quiet(quiet_);
        const double range = most_ - least_;
        const bool whole = range == std::floor(range) && least_ == std::floor(least_);
        places_ = whole && range >= 20 && range <= 10000 ? static_cast<int>(range) : 1000;
        slider_->setRange(0, places_);
        slider_->setSingleStep(std::max(1, places_ / 100));
        slider_->setPageStep(std::max(1, places_ / 10));
        if (spec_.ticks > 0) {
            slider_->setTickInterval(std::max(1, places_ / spec_.ticks));
        }
        set_value(value_);
    }

    QSlider* slider_;
    double value_ = 0, least_ = 0, most_ = 100;
    int places_ = 1000;
};

class ProgressControl : public QtControl {
public:
    ProgressControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , bar_(new QProgressBar(parent_widget())) {
        bar_->setRange(0, places);
        bar_->setOrientation(spec.vertical ? Qt::Vertical : Qt::Horizontal);
        bar_->setTextVisible(false);
        take(bar_);
        set_value(0);
    }
    double value() const override { return value_; }
    void set_value(double value) override {
        value_ = std::isfinite(value) ? std::max(least_, std::min(most_, value)) : least_;
        bar_->setValue(most_ > least_ ? static_cast<int>(std::lround((value_ - least_) * places /
                                                                     (most_ - least_)))
                                      : 0);
    }
    void set_range(double least, double most) override {
        least_ = least;
        most_ = std::max(least, most);
        set_value(value_);
    }

private:
    static constexpr int places = 1000;
    QProgressBar* bar_;
    double value_ = 0, least_ = 0, most_ = 100;
};

/// The calendar of a date that is not set begins in this month and not in the year 1.
class DateCalendar : public QCalendarWidget {
protected:
    void showEvent(QShowEvent* event) override {
        QCalendarWidget::showEvent(event);
        if (selectedDate() == minimumDate()) {
            showToday();
        }
    }
};

/// A date or a time of day; the half that is not shown is kept as it was set.
class DateControl : public QtControl {
public:
    DateControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , edit_(make(window.frame(), spec.kind)) {
        edit_->setReadOnly(spec.read_only);
        take(edit_);
        set_date_time({});
        connect(edit_, &QDateTimeEdit::dateTimeChanged, this, [this] {
            if (quiet_ == 0) {
                read();
                raise({ControlEventKind::changed});
            }
        });
    }
    DateTime date_time() const override { return value_; }
    void set_date_time(const DateTime& value) override {
        value_ = value;
        const Quiet quiet(quiet_);
        if (spec_.kind == ControlKind::time) {
            edit_->setTime(QTime(std::clamp(value.hour, 0, 23), std::clamp(value.minute, 0, 59),
                                 std::clamp(value.second, 0, 59)));
            return;
        }
        const QDate date(value.year, value.month, value.day);
        edit_->setDate(value.year != 0 && date.isValid() ? date : edit_->minimumDate());
    }
    void set_read_only(bool read_only) override {
        QtControl::set_read_only(read_only);
        edit_->setReadOnly(read_only);
    }

protected:
    bool act(std::string_view action, std::string_view argument) override {
        std::string digits(argument);
        std::replace(digits.begin(), digits.end(), '-', ' '); // else they read as signs
        const std::vector<int> numbers = script_numbers(digits);
        const bool is_date = spec_.kind == ControlKind::date;
        DateTime value = value_;
        if (action == "date" && is_date && numbers.size() >= 3) {
            value.year = numbers[0];
            value.month = numbers[1];
            value.day = numbers[2];
            if (!QDate::isValid(value.year, value.month, value.day)) {
                return false;
            }
        } else if (action == "time" && !is_date && numbers.size() >= 2) {
            value.hour = numbers[0];
            value.minute = numbers[1];
            value.second = numbers.size() > 2 ? numbers[2] : 0;
            if (!QTime::isValid(value.hour, value.minute, value.second)) {
                return false;
            }
        } else {
            return false;
        }
        set_date_time(value);
        raise({ControlEventKind::changed});
        return true;
    }

private:
    static QDateTimeEdit* make(QWidget* parent, ControlKind kind) {
        if (kind == ControlKind::time) {
            auto* edit = new QTimeEdit(parent);
            edit->setDisplayFormat("HH:mm:ss");
            return edit;
        }
        auto* edit = new QDateEdit(parent);
        edit->setDisplayFormat("yyyy-MM-dd");
        edit->setCalendarPopup(true);
        edit->setDateRange(QDate(1, 1, 1), QDate(9999, 12, 31));
        edit->setSpecialValueText(" ");            // not set
        edit->setCalendarWidget(new DateCalendar); // the edit owns it
        return edit;
    }
    void read() {
        if (spec_.kind == ControlKind::time) {
            const QTime time = edit_->time();
            value_.hour = time.hour();
            value_.minute = time.minute();
            value_.second = time.second();
            return;
        }
        const QDate date = edit_->date();
        value_.year = date == edit_->minimumDate() ? 0 : date.year();
        value_.month = date.month();
        value_.day = date.day();
    }

    QDateTimeEdit* edit_;
    DateTime value_;
};

} // namespace

std::unique_ptr<QtControl> make_spinner(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<SpinnerControl>(window, spec);
}

std::unique_ptr<QtControl> make_slider(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<SliderControl>(window, spec);
}

std::unique_ptr<QtControl> make_progress(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<ProgressControl>(window, spec);
}

std::unique_ptr<QtControl> make_date_or_time(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<DateControl>(window, spec);
}

} // namespace platform
