// The shapes, in a square of 24 units.
#include "KestraBatch/window/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace KestraBatch {

namespace {

void draw_pause(QPainter& p) {
    p.setBrush(p.pen().color());
    p.drawRoundedRect(QRectF(6, 5, 3.5, 14), 1, 1);
    p.drawRoundedRect(QRectF(14.5, 5, 3.5, 14), 1, 1);
}

void draw_resume(QPainter& p) {
    p.setBrush(p.pen().color());
    p.drawPolygon(QPolygonF({{7, 5}, {19, 12}, {7, 19}}));
}

void draw_stop(QPainter& p) {
    p.setBrush(p.pen().color());
    p.drawRoundedRect(QRectF(6, 6, 12, 12), 1.5, 1.5);
}

/// Three quarters of a circle with an arrow head at its upper right end.
void draw_turn(QPainter& p) {
    p.drawArc(QRectF(5, 5, 14, 14), 60 * 16, 285 * 16);
    p.setBrush(p.pen().color());
    p.drawPolygon(QPolygonF({{14.2, 3.0}, {20.0, 5.6}, {15.2, 9.4}}));
}

void draw_disk(QPainter& p) {
    p.drawPolygon(QPolygonF({{4, 4}, {16.5, 4}, {20, 7.5}, {20, 20}, {4, 20}}));
    p.drawRect(QRectF(8, 13.5, 8, 6.5));
    p.drawPolyline(QPolygonF({{8, 4}, {8, 8.5}, {14.5, 8.5}, {14.5, 4}}));
}

void draw_save_as(QPainter& p) {
    p.drawPolyline(QPolygonF({{11, 20}, {4, 20}, {4, 4}, {15, 4}, {18.5, 7.5}, {18.5, 10}}));
    p.drawPolyline(QPolygonF({{8, 4}, {8, 8.5}, {13.5, 8.5}, {13.5, 4}}));
    p.drawPolygon(QPolygonF({{13, 20.5}, {13.8, 17.2}, {19.2, 11.8}, {21.7, 14.3}, {16.3, 19.7}}));
}

void draw_copy(QPainter& p) {
    p.drawPolyline(QPolygonF({{5.5, 16}, {4, 16}, {4, 4}, {16, 4}, {16, 5.5}}));
    p.drawRect(QRectF(8, 8, 12, 12));
    p.drawPolyline(QPolygonF({{8, 18}, {12, 13.5}, {14.5, 16}, {16.5, 14}, {20, 18}}));
}

void draw_copy_name(QPainter& p) {
    p.drawPolyline(QPolygonF({{5.5, 16}, {4, 16}, {4, 4}, {16, 4}, {16, 5.5}}));
    p.drawRect(QRectF(8, 8, 12, 12));
    for (const double y : {11.5, 14.0, 16.5}) {
        p.drawLine(QPointF(10.7, y), QPointF(y > 16 ? 14.5 : 17.3, y));
    }
}

void draw_frame(QPainter& p) {
    QPen dashed = p.pen();
    dashed.setDashPattern({1.6, 1.5});
    dashed.setCapStyle(Qt::FlatCap);
    const QPen solid = p.pen();
    p.setPen(dashed);
    p.drawRect(QRectF(4, 6, 16, 12));
    p.setPen(solid);
}

void draw_region(QPainter& p) {
    draw_frame(p);
    p.setBrush(p.pen().color());
    for (const QPointF& corner : {QPointF(4, 6), QPointF(20, 18)}) {
        p.drawRect(QRectF(corner.x() - 1.2, corner.y() - 1.2, 2.4, 2.4));
    }
}

void draw_clear_region(QPainter& p) {
    draw_frame(p);
    p.drawLine(QPointF(9, 9), QPointF(15, 15));
    p.drawLine(QPointF(15, 9), QPointF(9, 15));
}

void draw_fit(QPainter& p) {
    for (const double sx : {-1.0, 1.0}) {
        for (const double sy : {-1.0, 1.0}) {
            const QPointF corner(12 + sx * 8, 12 + sy * 8);
            p.drawPolyline(
                QPolygonF({corner - QPointF(sx * 5, 0), corner, corner - QPointF(0, sy * 5)}));
        }
    }
    p.drawRect(QRectF(8.5, 9.5, 7, 5));
}

void draw_actual_size(QPainter& p) {
    p.drawPolyline(QPolygonF({{4.5, 8}, {7, 6}, {7, 18}}));
    p.drawPolyline(QPolygonF({{15.5, 8}, {18, 6}, {18, 18}}));
    p.setBrush(p.pen().color());
    p.drawEllipse(QPointF(11.7, 9.5), 0.7, 0.7);
    p.drawEllipse(QPointF(11.7, 14.5), 0.7, 0.7);
}

void draw_keep(QPainter& p) {
    p.drawPolyline(QPolygonF({{4, 12}, {4, 20}, {20, 20}, {20, 12}}));
    p.drawLine(QPointF(12, 3.5), QPointF(12, 15));
    p.drawPolyline(QPolygonF({{7.5, 10.5}, {12, 15}, {16.5, 10.5}}));
}

void draw_open(QPainter& p) {
    p.drawPolyline(
        QPolygonF({{4, 19}, {4, 5.5}, {9.5, 5.5}, {11.5, 8}, {18, 8}, {18, 11}, {7, 11}, {4, 19}}));
    p.drawPolyline(QPolygonF({{4, 19}, {18.5, 19}, {21.5, 11}, {18, 11}}));
}

void draw_warning(QPainter& p) {
    p.drawPolygon(QPolygonF({{12, 3.5}, {21.5, 20}, {2.5, 20}}));
    p.drawLine(QPointF(12, 9.5), QPointF(12, 14));
    p.drawPoint(QPointF(12, 17));
}

/// A lit house under a sun, in its own colours.
void draw_program(QPainter& p) {
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x2d, 0x4a, 0x6e));
    p.drawRoundedRect(QRectF(1, 1, 22, 22), 4, 4);
    p.setBrush(QColor(0xff, 0xc8, 0x4a));
    p.drawEllipse(QPointF(17, 7), 3, 3);
    p.setBrush(QColor(0xf4, 0xef, 0xe6));
    p.drawPolygon(QPolygonF({{4, 13}, {10, 8}, {16, 13}, {16, 20}, {4, 20}}));
    p.setBrush(QColor(0xe0, 0x7a, 0x3a));
    p.drawRect(QRectF(8.5, 14, 3, 6));
}

using DrawFunction = void (*)(QPainter&);

DrawFunction drawing_of(IconShape shape) {
    static constexpr DrawFunction drawings[] = {
        draw_pause, draw_resume,    draw_stop,   draw_turn,         draw_disk,   draw_save_as,
        draw_copy,  draw_copy_name, draw_region, draw_clear_region, draw_fit,    draw_actual_size,
        draw_keep,  draw_open,      draw_turn,   draw_warning,      draw_program};
    return drawings[static_cast<int>(shape)];
}

class DrawnIcon : public QIconEngine {
public:
    explicit DrawnIcon(IconShape shape)
      : shape_(shape) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette palette = QGuiApplication::palette();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        QColor color = palette.color(group, QPalette::WindowText);
        if (shape_ == IconShape::stop && mode != QIcon::Disabled) {
            color = palette.color(QPalette::Window).lightness() < 128 ? QColor(0xf2, 0x6d, 0x6d)
                                                                      : QColor(0xc0, 0x30, 0x30);
        }
        const double side = qMin(rect.width(), rect.height());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.center() + QPointF(0.5 - side / 2, 0.5 - side / 2));
        painter->scale(side / 24, side / 24);
        painter->setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        drawing_of(shape_)(*painter);
        painter->restore();
    }

    /// Not cached, so that another palette shows at once.
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return std::make_unique<DrawnIcon>(shape_).release(); }

private:
    IconShape shape_;
};

} // namespace

QIcon make_icon(IconShape shape) {
    return QIcon(std::make_unique<DrawnIcon>(shape).release()); // the icon owns its engine
}

} // namespace KestraBatch
