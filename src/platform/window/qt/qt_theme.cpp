// Light and dark.
#include "platform/window/qt/qt_style.h"
#include "platform/window/qt/qt_window_system.h"

#include <QStyle>
#include <QStyleFactory>

namespace platform {

namespace {

struct ThemeColors {
    QRgb window, text, base, alternate, button, highlight, highlighted_text, link, tip, faint;
};

constexpr ThemeColors light{0xfff3f4f6, 0xff1f2328, 0xffffffff, 0xfff6f7f9, 0xfff3f4f6,
                            0xff2f7bd6, 0xffffffff, 0xff1d63b8, 0xfffffff0, 0xff9aa0a8};
constexpr ThemeColors dark{0xff2b2d31, 0xffe4e6ea, 0xff1f2124, 0xff26282c, 0xff3a3d43,
                           0xff3b82d9, 0xffffffff, 0xff6fb0ff, 0xff3a3d43, 0xff7b8089};

QPalette palette_of(const ThemeColors& colors) {
    QPalette palette(QColor(colors.button), QColor(colors.window));
    const auto set = [&palette](QPalette::ColorRole role, QRgb color) {
        palette.setColor(role, QColor(color));
    };
    set(QPalette::WindowText, colors.text);
    set(QPalette::Text, colors.text);
    set(QPalette::ButtonText, colors.text);
    set(QPalette::Base, colors.base);
    set(QPalette::AlternateBase, colors.alternate);
    set(QPalette::Highlight, colors.highlight);
    set(QPalette::HighlightedText, colors.highlighted_text);
    set(QPalette::Link, colors.link);
    set(QPalette::LinkVisited, colors.link);
    set(QPalette::ToolTipBase, colors.tip);
    set(QPalette::ToolTipText, colors.text);
    set(QPalette::PlaceholderText, colors.faint);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(colors.faint));
    }
    palette.setColor(QPalette::Disabled, QPalette::Base, QColor(colors.window));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(colors.faint));
    return palette;
}

} // namespace

void QtWindowSystem::set_theme(WindowTheme theme) {
    const bool is_system = theme == WindowTheme::system;
    // Where the desktop has no style of its own, ours stays; and one style serves for both themes.
    const bool ours = !is_system || system_style_ == "fusion";
    if (ours != has_own_style_) {
        QApplication::setStyle(ours ? new QtWindowStyle : QStyleFactory::create(system_style_));
        has_own_style_ = ours;
    }
    QApplication::setPalette(is_system ? system_palette_
                                       : palette_of(theme == WindowTheme::dark ? dark : light));
}

} // namespace platform
