// The look of the light and the dark theme.
#pragma once

#include <QProxyStyle>

namespace platform {

/// Fusion, with check marks and tabs that are seen well on dark grounds too.
class QtWindowStyle : public QProxyStyle {
public:
    QtWindowStyle();
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
};

} // namespace platform
