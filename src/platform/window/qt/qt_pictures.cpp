// Picture buttons and surfaces.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"
#include "platform/window/qt/qt_window_system.h"

#include <QAbstractButton>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace platform {

namespace {

constexpr int corner = 3, picture_margin = 2; ///< pixels

class QtPainter : public Painter {
public:
    QtPainter(QPainter& painter, const QWidget& widget)
      : painter_(painter)
      , widget_(widget) {}

    WindowSize size() const override { return {widget_.width(), widget_.height()}; }
    void fill(const WindowRect& rect, WindowColor color) override {
        painter_.fillRect(qt_rect(rect), qt_color(color));
    }
    void frame(const WindowRect& rect, WindowColor color) override {
        painter_.setPen(qt_color(color));
        painter_.setBrush(Qt::NoBrush);
        painter_.drawRect(qt_rect(rect).adjusted(0, 0, -1, -1));
    }
    void line(WindowPoint from, WindowPoint to, WindowColor color) override {
        painter_.setPen(qt_color(color));
        painter_.drawLine(from.x, from.y, to.x, to.y);
    }
    void text(const WindowRect& rect, std::string_view text, WindowColor color,
              TextAlign align) override {
        painter_.setPen(qt_color(color));
        painter_.save();
        painter_.setClipRect(qt_rect(rect), Qt::IntersectClip);
        painter_.drawText(qt_rect(rect), qt_align(align) | Qt::AlignVCenter | Qt::TextSingleLine,
                          qt_text(text));
        painter_.restore();
    }
    void picture(const WindowRect& rect, const WindowPicture& picture) override {
        const QImage image = image_view(picture);
        if (!image.isNull() && rect.width > 0 && rect.height > 0) {
            painter_.drawImage(
                qt_rect(rect).topLeft(),
                scaled_image(image, {rect.width, rect.height}, device_scale(painter_)));
        }
    }
    WindowColor text_color() const override { return role(QPalette::WindowText); }
    WindowColor background() const override { return role(QPalette::Window); }
    WindowColor highlight() const override { return role(QPalette::Highlight); }

private:
    WindowColor role(QPalette::ColorRole role) const {
        return color_of(widget_.palette().color(role));
    }

    QPainter& painter_;
    const QWidget& widget_;
};

QColor faded(QColor color, float alpha) {
    color.setAlphaF(alpha);
    return color;
}

void draw_focus_ring(QPainter& painter, const QWidget& widget) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(widget.palette().color(QPalette::Highlight), 1.5));
    painter.drawRoundedRect(QRectF(widget.rect()).adjusted(1, 1, -1, -1), corner, corner);
}

class SurfaceWidget : public QWidget {
public:
    using QWidget::QWidget;
    std::function<void(QPainter&)> on_paint;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        on_paint(painter);
        if (hasFocus() && (focusPolicy() & Qt::TabFocus) != 0) {
            draw_focus_ring(painter, *this);
        }
    }
};

/// What surfaces and picture buttons have in common: the mouse, the arrow keys.
class PointedControl : public QtControl {
public:
    using QtControl::QtControl;

protected:
    bool act(std::string_view action, std::string_view argument) override {
        constexpr std::string_view keys[] = {"LEFT", "UP", "RIGHT", "DOWN"};
        if (action == "double_click") {
            raise({ControlEventKind::double_clicked});
        } else if (action == "right_click") {
            raise({ControlEventKind::right_clicked});
        } else if (const auto* key = std::find(std::begin(keys), std::end(keys), argument);
                   action == "key" && key != std::end(keys)) {
            raise({ControlEventKind::arrow_key, static_cast<int>(key - std::begin(keys))});
        } else {
            return false;
        }
        return true;
    }
    bool key_pressed(const QKeyEvent& event) override {
        switch (event.key()) {
        case Qt::Key_Left:
        case Qt::Key_Up:
        case Qt::Key_Right:
        case Qt::Key_Down:
            return raise({ControlEventKind::arrow_key, event.key() - Qt::Key_Left});
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return spec_.tab_stop && click();
        default:
            return false;
        }
    }
    /// Of the mouse's events; whether it was one.
    bool mouse_used(const QEvent& event) {
        const bool is_double = event.type() == QEvent::MouseButtonDblClick;
        if (!is_double && event.type() != QEvent::MouseButtonRelease) {
            return false;
        }
        const auto& mouse = static_cast<const QMouseEvent&>(event);
        const QPoint at = mouse.position().toPoint();
        ControlEvent told{ControlEventKind::clicked, -1, -1, 0, {at.x(), at.y()}};
        const bool left = mouse.button() == Qt::LeftButton;
        if (is_double && left) {
            told.kind = ControlEventKind::double_clicked;
            was_double_ = true;
        } else {
            const bool ends_double = left && std::exchange(was_double_, false);
            const bool right = mouse.button() == Qt::RightButton;
            if (is_double || ends_double || !(left || right) || !widget()->rect().contains(at)) {
                return false;
            }
            told.kind = left ? ControlEventKind::clicked : ControlEventKind::right_clicked;
        }
        raise(told);
        return true;
    }

private:
    bool was_double_ = false; ///< the release to come belongs to a double click
};

class SurfaceControl : public PointedControl {
public:
    SurfaceControl(QtWindow& window, const ControlSpec& spec)
      : PointedControl(window, spec)
      , surface_(new SurfaceWidget(parent_widget())) {
        surface_->setFocusPolicy(spec.tab_stop ? Qt::StrongFocus : Qt::NoFocus);
        surface_->on_paint = [this](QPainter& painter) { paint(painter); };
        take(surface_);
    }
    void set_text(std::string_view text) override {
        PointedControl::set_text(text);
        surface_->update();
    }
    bool click() override {
        raise({ControlEventKind::clicked});
        return true;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        return mouse_used(*event) || PointedControl::eventFilter(watched, event);
    }

private:
    void paint(QPainter& painter) {
        if (on_paint) {
            QtPainter port(painter, *surface_);
            const auto work = on_paint;
            window().system().handle([&] {
                work(port);
                return true;
            });
        }
    }

    SurfaceWidget* surface_;
};

class PictureWidget : public QAbstractButton {
public:
    explicit PictureWidget(QWidget* parent)
      : QAbstractButton(parent) {
        setAttribute(Qt::WA_Hover); // looks different beneath the mouse
        setFocusPolicy(Qt::StrongFocus);
    }
    SharedPicture picture;
    bool framed = true, stays_down = false;

    void forget_scaled() {
        scaled_ = {};
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        draw_ground(painter);
        const QRect room =
            rect().adjusted(picture_margin, picture_margin, -picture_margin, -picture_margin);
        const QImage image = picture ? image_view(*picture) : QImage();
        if (!image.isNull()) {
            draw_picture(painter, image, room);
        } else {
            painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled,
                                           QPalette::ButtonText));
            painter.drawText(room, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextWordWrap,
                             text());
        }
        if (hasFocus()) {
            draw_focus_ring(painter, *this);
        }
    }

private:
    void draw_ground(QPainter& painter) const {
        const bool down = isDown() || stays_down;
        const bool hot = underMouse() && isEnabled();
        if (!down && !hot) {
            return;
        }
        const QColor accent = palette().color(QPalette::Highlight);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(faded(accent, down ? 0.30F : 0.14F));
        painter.setPen(framed ? QPen(faded(accent, down ? 0.9F : 0.55F)) : QPen(Qt::NoPen));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
    }
    void draw_picture(QPainter& painter, const QImage& image, const QRect& room) {
        const QRect place = fit_picture(image.size(), room);
        const double scale = device_scale(painter);
        if (place.isEmpty()) {
            return;
        }
        if (scaled_.isNull() || scaled_.devicePixelRatio() != scale ||
            scaled_for_ != place.size()) {
            scaled_ = scaled_image(image, place.size(), scale);
            scaled_for_ = place.size();
        }
        painter.setOpacity(isEnabled() ? 1 : 0.35);
        painter.drawImage(place.topLeft(), scaled_);
        painter.setOpacity(1);
    }

    QImage scaled_; ///< for the last size and scale
    QSize scaled_for_;
};

class PictureControl : public PointedControl {
public:
    PictureControl(QtWindow& window, const ControlSpec& spec)
      : PointedControl(window, spec)
      , button_(new PictureWidget(parent_widget())) {
        button_->framed = spec.framed;
        button_->setText(qt_text(spec.text));
        if (!spec.tab_stop) {
            button_->setFocusPolicy(Qt::NoFocus);
        }
        take(button_);
    }
    void set_text(std::string_view text) override {
        PointedControl::set_text(text);
        button_->setText(qt_text(text));
    }
    void set_picture(SharedPicture picture) override {
        button_->picture = std::move(picture);
        button_->forget_scaled();
    }
    void set_pressed(bool pressed) override {
        button_->stays_down = pressed;
        button_->update();
    }
    bool click() override {
        raise({ControlEventKind::clicked});
        return true;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonRelease) {
            button_->setDown(false);
        }
        return mouse_used(*event) || PointedControl::eventFilter(watched, event);
    }

private:
    PictureWidget* button_;
};

} // namespace

std::unique_ptr<QtControl> make_picture_button(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<PictureControl>(window, spec);
}

std::unique_ptr<QtControl> make_surface(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<SurfaceControl>(window, spec);
}

} // namespace platform
