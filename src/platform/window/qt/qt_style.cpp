// Check marks, radio marks, tabs.
#include "platform/window/qt/qt_style.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleFactory>
#include <QStyleOption>

#include <algorithm>

namespace platform {

namespace {

constexpr double line_alpha = 0.26, mark_alpha = 0.5, disabled_opacity = 0.45;
constexpr int tab_corner = 3;

QColor faded(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

/// Pages lie a little above the window's ground.
QColor page_color(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    const bool is_dark = window.lightness() < 128;
    return is_dark ? window.lighter(118) : window.lighter(104);
}

struct Mark {
    QRectF rect;
    bool on = false, half = false;
};

/// The ground of a mark; `round` is a radio button's.
Mark draw_mark_ground(const QStyleOption& option, QPainter& painter, bool round) {
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool hot = enabled && option.state.testFlag(QStyle::State_MouseOver);
    Mark mark;
    mark.on = option.state.testFlag(QStyle::State_On);
    mark.half = option.state.testFlag(QStyle::State_NoChange);
    const double side = std::min({option.rect.width(), option.rect.height(), 16}) - 1;
    mark.rect = QRectF(0, 0, side, side);
    mark.rect.moveCenter(QRectF(option.rect).center());
    const QPalette& palette = option.palette;
    const QColor accent = palette.color(QPalette::Active, QPalette::Highlight);
    const bool filled = mark.on || mark.half;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(enabled ? 1 : disabled_opacity);
    painter.setBrush(filled ? accent : palette.color(QPalette::Base));
    QColor line = accent;
    if (option.state.testFlag(QStyle::State_Selected)) {
        line = palette.color(QPalette::HighlightedText); // the row has the accent's colour
    } else if (!filled && !hot) {
        line = faded(palette.color(QPalette::Active, QPalette::WindowText), mark_alpha);
    }
    painter.setPen(line);
    const double corner = round ? side / 2 : 2.5;
    painter.drawRoundedRect(mark.rect, corner, corner);
    return mark;
}

void draw_check(const QStyleOption& option, QPainter& painter) {
    painter.save();
    const Mark mark = draw_mark_ground(option, painter, false);
    const QRectF& rect = mark.rect;
    const auto at = [&rect](double x, double y) {
        return QPointF(rect.x() + x * rect.width(), rect.y() + y * rect.height());
    };
    painter.setBrush(Qt::NoBrush);
    painter.setPen(
        QPen(Qt::white, rect.width() * 0.14, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (mark.on) {
        painter.drawPolyline(QPolygonF{at(0.24, 0.52), at(0.43, 0.71), at(0.77, 0.31)});
    } else if (mark.half) {
        painter.drawLine(at(0.25, 0.5), at(0.75, 0.5));
    }
    painter.restore();
}

void draw_radio(const QStyleOption& option, QPainter& painter) {
    painter.save();
    const Mark mark = draw_mark_ground(option, painter, true);
    if (mark.on) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(mark.rect.center(), mark.rect.width() * 0.2, mark.rect.width() * 0.2);
    }
    painter.restore();
}

void draw_page_frame(const QStyleOption& option, QPainter& painter) {
    painter.save();
    painter.setPen(faded(option.palette.color(QPalette::WindowText), line_alpha));
    painter.setBrush(page_color(option.palette));
    painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter.restore();
}

/// The chosen tab opens into its page, below a line in the accent's colour.
void draw_tab(const QStyleOptionTab& tab, QPainter& painter) {
    const bool chosen = tab.state.testFlag(QStyle::State_Selected);
    const bool hot =
        tab.state.testFlag(QStyle::State_MouseOver) && tab.state.testFlag(QStyle::State_Enabled);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(tab.rect.adjusted(0, 0, 0, chosen ? 0 : -2));
    // The lower edge lies outside of the clip.
    const QRectF rect = QRectF(tab.rect).adjusted(0.5, chosen ? 0.5 : 2.5, -0.5, 6);
    painter.setPen(faded(tab.palette.color(QPalette::WindowText), chosen ? line_alpha : 0.14));
    const QColor ground = tab.palette.color(QPalette::Window);
    painter.setBrush(chosen ? page_color(tab.palette) : (hot ? page_color(tab.palette) : ground));
    painter.drawRoundedRect(rect, tab_corner, tab_corner);
    if (chosen) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(tab.palette.color(QPalette::Highlight));
        painter.drawRoundedRect(QRectF(tab.rect.x() + 1, tab.rect.y(), tab.rect.width() - 2, 2.5),
                                1, 1);
    }
    painter.restore();
}

} // namespace

QtWindowStyle::QtWindowStyle()
  : QProxyStyle(QStyleFactory::create("fusion")) {}

void QtWindowStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                  QPainter* painter, const QWidget* widget) const {
    switch (element) {
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        return draw_check(*option, *painter);
    case PE_IndicatorRadioButton:
        return draw_radio(*option, *painter);
    case PE_FrameTabWidget:
        return draw_page_frame(*option, *painter);
    default:
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void QtWindowStyle::drawControl(ControlElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    if (element == CE_TabBarTabShape && tab != nullptr && tab->shape == QTabBar::RoundedNorth) {
        draw_tab(*tab, *painter);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

} // namespace platform
