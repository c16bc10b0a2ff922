// Values of the window system as the widget library has them.
#pragma once

#include "platform/window/event_script.h"
#include "platform/window/window_types.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QRect>
#include <QString>
#include <QWidget>

#include <string_view>
#include <vector>

namespace platform {

QString qt_text(std::string_view text);
/// Without the marks of mnemonics: "&Open && go" is "Open & go".
QString without_mnemonics(std::string_view text);
bool has_mnemonic(std::string_view text);
/// Never taken for hypertext.
QString qt_tool_tip(std::string_view text);
QColor qt_color(WindowColor color);
WindowColor color_of(const QColor& color);
QRect qt_rect(const WindowRect& rect);
WindowRect rect_of(const QRect& rect);
/// What is open in `font` is taken from `fallback`, and that left open there from the platform's
/// dialog font.
QFont qt_font(const WindowFont& font, const WindowFont& fallback = {});
Qt::Alignment qt_align(TextAlign align);
/// Shares the picture's memory: it must outlive the image. Null for a picture that holds less than
/// it says.
QImage image_view(const WindowPicture& picture);
WindowPicture picture_of(const QImage& image);
/// The largest size with the picture's shape in `room`, in its middle.
QRect fit_picture(QSize picture, const QRect& room);
/// Device pixels to a logical one of what is being painted on.
double device_scale(const QPainter& painter);
/// The picture for a rectangle of that many logical pixels: averaged when it shrinks.
QImage scaled_image(const QImage& image, QSize size, double scale);

/// While it lives, the count is one up: what the program sets raises no event.
class Quiet {
public:
    explicit Quiet(int& count)
      : count_(count) {
        ++count_;
    }
    ~Quiet() { --count_; }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    int& count_;
};

} // namespace platform
