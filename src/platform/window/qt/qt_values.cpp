// Conversions between the window system's values and the widget library's.
#include "platform/window/qt/qt_values.h"

#include <QApplication>
#include <QPainter>
#include <QTextDocument>

#include <algorithm>
#include <charconv>

namespace platform {

QString qt_text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString without_mnemonics(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && i + 1 < text.size()) {
            ++i;
        }
        plain += text[i];
    }
    return QString::fromStdString(plain);
}

bool has_mnemonic(std::string_view text) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == '&') {
            if (text[i + 1] != '&') {
                return true;
            }
            ++i;
        }
    }
    return false;
}

QString qt_tool_tip(std::string_view text) {
    QString tip = qt_text(text);
    return Qt::mightBeRichText(tip) ? tip.toHtmlEscaped() : tip;
}

QColor qt_color(WindowColor color) {
    return QColor(static_cast<int>(color & 0xff), static_cast<int>(color >> 8 & 0xff),
                  static_cast<int>(color >> 16 & 0xff));
}

WindowColor color_of(const QColor& color) {
    return static_cast<WindowColor>(color.red() | color.green() << 8 | color.blue() << 16);
}

QRect qt_rect(const WindowRect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

WindowRect rect_of(const QRect& rect) { return {rect.x(), rect.y(), rect.width(), rect.height()}; }

QFont qt_font(const WindowFont& font, const WindowFont& fallback) {
    QFont result = QApplication::font();
    const std::string& face = font.face.empty() ? fallback.face : font.face;
    const double points = font.points > 0 ? font.points : fallback.points;
    if (!face.empty()) {
        result.setFamily(QString::fromStdString(face));
    }
    if (points > 0) {
        result.setPointSizeF(points);
    }
    return result;
}

Qt::Alignment qt_align(TextAlign align) {
    constexpr Qt::AlignmentFlag flags[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    return flags[static_cast<std::size_t>(align)];
}

QImage image_view(const WindowPicture& picture) {
    const auto width = static_cast<std::size_t>(std::max(0, picture.width));
    const auto height = static_cast<std::size_t>(std::max(0, picture.height));
    if (width == 0 || height == 0 || picture.rgba.size() / 4 / width < height) {
        return {};
    }
    return {picture.rgba.data(), picture.width, picture.height, picture.width * 4,
            QImage::Format_RGBA8888};
}

WindowPicture picture_of(const QImage& image) {
    const QImage bytes = image.convertToFormat(QImage::Format_RGBA8888);
    WindowPicture picture{bytes.width(), bytes.height(), {}};
    const auto row = static_cast<std::size_t>(picture.width) * 4;
    for (int y = 0; y < picture.height; ++y) {
        const uchar* line = bytes.constScanLine(y);
        picture.rgba.insert(picture.rgba.end(), line, line + row);
    }
    return picture;
}

QRect fit_picture(QSize picture, const QRect& room) {
    QRect rect(QPoint(), picture.scaled(room.size(), Qt::KeepAspectRatio));
    rect.moveCenter(room.center());
    return rect;
}

double device_scale(const QPainter& painter) { return painter.deviceTransform().m11(); }

QImage scaled_image(const QImage& image, QSize size, double scale) {
    const QSize pixels = (QSizeF(size) * scale).toSize();
    QImage result = image.size() == pixels
                        ? image
                        : image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    result.setDevicePixelRatio(scale);
    return result;
}

} // namespace platform
