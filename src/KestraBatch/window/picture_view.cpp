// Painting and mouse work of the picture.
#include "KestraBatch/window/picture_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace KestraBatch {

namespace {

const QColor surround(0x38, 0x38, 0x3a);      ///< neutral, so that it does not tint the picture
const QColor surround_text(0xd8, 0xd8, 0xdc); ///< on it
const QColor region_color(0xff, 0xb0, 0x20);
constexpr double wheel_factor = 1.25;
constexpr int smallest_region = 8; ///< pixels; a smaller drag is a slip of the hand

} // namespace

PictureView::PictureView(QWidget* parent)
  : QWidget(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName("Picture");
    setAccessibleDescription("The picture. The wheel zooms, dragging moves it, arrow keys too.");
    update_cursor();
}

void PictureView::set_picture(const std::vector<QImage>& levels) {
    levels_ = levels;
    const bool none = levels_.empty();
    transform_.set_picture(none ? 0 : levels_.front().width(), none ? 0 : levels_.front().height());
    changed();
}

void PictureView::set_empty_text(const QString& text) {
    if (text != empty_text_) {
        empty_text_ = text;
        update();
    }
}

void PictureView::set_hint(const QString& text) {
    if (text != hint_) {
        hint_ = text;
        update();
    }
}

void PictureView::fit() {
    transform_.fit();
    changed();
}

void PictureView::set_zoom(double zoom) {
    transform_.set_zoom(zoom);
    changed();
}

void PictureView::zoom_step(int steps) {
    transform_.set_zoom(transform_.zoom() * std::pow(wheel_factor, steps));
    changed();
}

void PictureView::set_region_mode(bool on) {
    region_mode_ = on;
    dragging_ = false;
    update_cursor();
    update();
}

void PictureView::set_region(PictureRegion region) {
    region_ = region;
    update();
}

void PictureView::changed() {
    update_cursor();
    update();
    if (on_zoom) {
        on_zoom();
    }
}

void PictureView::update_cursor() {
    if (region_mode_) {
        setCursor(Qt::CrossCursor);
    } else if (dragging_) {
        setCursor(Qt::ClosedHandCursor);
    } else {
        const QSizeF size = levels_.empty() ? QSizeF() : levels_.front().size() * transform_.zoom();
        const bool larger = size.width() > width() * devicePixelRatioF() + 1 ||
                            size.height() > height() * devicePixelRatioF() + 1;
        setCursor(larger ? Qt::OpenHandCursor : Qt::ArrowCursor);
    }
}

void PictureView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), surround);
    if (levels_.empty()) {
        painter.setPen(surround_text);
        painter.drawText(rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap,
                         empty_text_);
    } else {
        painter.save();
        painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
        paint_picture(painter, event->rect());
        paint_region(painter);
        painter.restore();
    }
    paint_hint(painter);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

/// Only what is seen is drawn, from the smallest level that has enough pixels for it.
void PictureView::paint_picture(QPainter& painter, const QRect& exposed) {
    const double zoom = transform_.zoom();
    std::size_t level = 0;
    while (level + 1 < levels_.size() && zoom * std::pow(2.0, level + 1) <= 1.0001) {
        ++level;
    }
    const QImage& image = levels_[level];
    const double scale = zoom * std::pow(2.0, level);
    const double ratio = devicePixelRatioF();
    const QRectF seen(exposed.x() * ratio, exposed.y() * ratio, exposed.width() * ratio,
                      exposed.height() * ratio);
    const QRectF part =
        QRectF((seen.left() - transform_.left()) / scale, (seen.top() - transform_.top()) / scale,
               seen.width() / scale, seen.height() / scale);
    const QRect source = part.toAlignedRect().adjusted(-1, -1, 1, 1).intersected(image.rect());
    const QRectF target(transform_.left() + source.x() * scale,
                        transform_.top() + source.y() * scale, source.width() * scale,
                        source.height() * scale);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < 0.999);
    painter.drawImage(target, image, source);
}

QRectF PictureView::on_screen(const PictureRegion& region) const {
    const double zoom = transform_.zoom();
    return {transform_.left() + region.x * zoom, transform_.top() + region.y * zoom,
            region.width * zoom, region.height * zoom};
}

PictureRegion PictureView::dragged_region() const {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    transform_.nearest_pixel(press_.x(), press_.y(), x0, y0);
    transform_.nearest_pixel(last_.x(), last_.y(), x1, y1);
    return {std::min(x0, x1), std::min(y0, y1), std::abs(x1 - x0) + 1, std::abs(y1 - y0) + 1};
}

void PictureView::paint_region(QPainter& painter) {
    const bool drawing = region_mode_ && dragging_;
    const PictureRegion region = drawing ? dragged_region() : region_;
    if (region.width <= 0) {
        return;
    }
    const QRectF frame = on_screen(region);
    QPainterPath outside;
    outside.addRect(on_screen({0, 0, levels_.front().width(), levels_.front().height()}));
    QPainterPath inside;
    inside.addRect(frame);
    painter.fillPath(outside.subtracted(inside), QColor(0, 0, 0, 90));
    const double line = devicePixelRatioF();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 160), 3 * line));
    painter.drawRect(frame);
    painter.setPen(QPen(region_color, 1.4 * line));
    painter.drawRect(frame);
}

void PictureView::paint_hint(QPainter& painter) {
    if (hint_.isEmpty()) {
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect text = fontMetrics().boundingRect(rect().adjusted(32, 0, -32, 0),
                                                  Qt::AlignHCenter | Qt::TextWordWrap, hint_);
    const QRect box(width() / 2 - text.width() / 2 - 12, 14, text.width() + 24, text.height() + 12);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(20, 20, 22, 215));
    painter.drawRoundedRect(box, 6, 6);
    painter.setPen(QColor(0xf4, 0xf4, 0xf6));
    painter.drawText(box, Qt::AlignCenter | Qt::TextWordWrap, hint_);
}

void PictureView::resizeEvent(QResizeEvent*) {
    const double ratio = devicePixelRatioF();
    transform_.set_view(static_cast<int>(width() * ratio), static_cast<int>(height() * ratio));
    changed();
}

void PictureView::wheelEvent(QWheelEvent* event) {
    if (levels_.empty()) {
        return;
    }
    const QPointF at = event->position() * devicePixelRatioF();
    transform_.zoom_about(at.x(), at.y(), std::pow(wheel_factor, event->angleDelta().y() / 120.0));
    changed();
    event->accept();
}

void PictureView::mousePressEvent(QMouseEvent* event) {
    const bool drags = event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton;
    if (!drags || levels_.empty()) {
        return;
    }
    press_ = last_ = event->position() * devicePixelRatioF();
    dragging_ = true;
    update_cursor();
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position() * devicePixelRatioF();
    if (dragging_ && !region_mode_) {
        transform_.pan(at.x() - last_.x(), at.y() - last_.y());
    }
    last_ = at;
    if (dragging_) {
        update();
    }
    int column = -1, row = -1;
    transform_.pixel_at(at.x(), at.y(), column, row);
    if (on_pixel) {
        on_pixel(column, row);
    }
}

void PictureView::mouseReleaseEvent(QMouseEvent*) {
    if (!dragging_) {
        return;
    }
    const PictureRegion drawn = region_mode_ ? dragged_region() : PictureRegion{};
    dragging_ = false;
    update_cursor();
    update();
    if (drawn.width >= smallest_region && drawn.height >= smallest_region && on_region) {
        on_region(drawn);
    }
}

void PictureView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (region_mode_ || levels_.empty()) {
        return;
    }
    if (is_fitted()) {
        const QPointF at = event->position() * devicePixelRatioF();
        transform_.zoom_about(at.x(), at.y(), 1 / transform_.zoom());
    } else {
        transform_.fit();
    }
    changed();
}

void PictureView::leaveEvent(QEvent*) {
    if (on_pixel) {
        on_pixel(-1, -1);
    }
}

void PictureView::keyPressEvent(QKeyEvent* event) {
    constexpr double step = 60;
    switch (event->key()) {
    case Qt::Key_Left:
        transform_.pan(step, 0);
        break;
    case Qt::Key_Right:
        transform_.pan(-step, 0);
        break;
    case Qt::Key_Up:
        transform_.pan(0, step);
        break;
    case Qt::Key_Down:
        transform_.pan(0, -step);
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    update();
}

} // namespace KestraBatch
