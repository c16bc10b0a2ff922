// Message boxes, file and colour boxes, menus.
#include "platform/window/qt/qt_boxes.h"

#include "platform/window/qt/qt_values.h"
#include "platform/window/qt/qt_window.h"
#include "platform/window/qt/qt_window_system.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>

#include <array>

namespace platform {

namespace {

struct ButtonRow {
    QMessageBox::StandardButton button;
    int id;
};

constexpr std::array<ButtonRow, 8> buttons{{{QMessageBox::Ok, 1},
                                            {QMessageBox::Close, 1},
                                            {QMessageBox::Cancel, 2},
                                            {QMessageBox::Abort, 3},
                                            {QMessageBox::Retry, 4},
                                            {QMessageBox::Ignore, 5},
                                            {QMessageBox::Yes, 6},
                                            {QMessageBox::No, 7}}};

/// By box type.
constexpr std::array<int, 6> button_sets{
    QMessageBox::Ok,
    QMessageBox::Ok | QMessageBox::Cancel,
    QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore,
    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
    QMessageBox::Yes | QMessageBox::No,
    QMessageBox::Retry | QMessageBox::Cancel,
};
/// By icon number, in steps of 0x10.
constexpr std::array<QMessageBox::Icon, 5> icons{QMessageBox::NoIcon, QMessageBox::Critical,
                                                 QMessageBox::Question, QMessageBox::Warning,
                                                 QMessageBox::Information};
constexpr unsigned stays_on_top = 0x1000;
constexpr int color_field = 16; ///< pixels

QString filter_of(const FileQuestion& question) {
    QString filter;
    if (!question.extensions.empty()) {
        QStringList patterns;
        for (const std::string& extension : question.extensions) {
            patterns << "*." + qt_text(extension);
        }
        const QString kind = question.kind.empty() ? QString("Files") : qt_text(question.kind);
        filter = kind + " (" + patterns.join(' ') + ");;";
    }
    return filter + "All files (*)";
}

QIcon color_icon(WindowColor color, double scale) {
    QPixmap pixmap((QSizeF(color_field, color_field) * scale).toSize());
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(QColor(0, 0, 0, 110));
    painter.setBrush(qt_color(color));
    painter.drawRect(QRectF(0.5, 0.5, color_field - 1, color_field - 1));
    return {pixmap};
}

QWidget* frame_of(Window* owner) {
    return owner != nullptr ? static_cast<QtWindow*>(owner)->frame()->window()
                            : QApplication::activeWindow();
}

int number_of(const std::string& text) {
    const std::vector<int> numbers = script_numbers(text);
    return numbers.empty() ? -1 : numbers.front();
}

} // namespace

int show_message_box(const MessageQuestion& question, QWidget* parent) {
    const std::size_t set = question.type & 0xf, icon = (question.type >> 4) & 0xf;
    int shown = button_sets[set < button_sets.size() ? set : 0];
    if (shown == QMessageBox::Ok && !question.more_button.empty()) {
        shown = QMessageBox::Close;
    }
    QMessageBox box(icons[icon < icons.size() ? icon : 0], qt_text(question.title),
                    qt_text(question.text), QMessageBox::StandardButtons(shown), parent);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(qt_text(question.detail));
    if ((question.type & stays_on_top) != 0) {
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
    }
    QPushButton* more = nullptr;
    if (!question.more_button.empty()) {
        more = box.addButton(qt_text(question.more_button), QMessageBox::ActionRole);
        more->setEnabled(static_cast<bool>(question.on_more));
        if (shown == QMessageBox::Close) {
            box.setDefaultButton(QMessageBox::Close);
        }
    }
    const int pressed = box.exec();
    if (more != nullptr && box.clickedButton() == more) {
        if (question.on_more) {
            question.on_more();
        }
        return safe_answer(question.type);
    }
    for (const ButtonRow& row : buttons) {
        if (row.button == pressed) {
            return row.id;
        }
    }
    return safe_answer(question.type);
}

std::optional<std::string> show_file_box(const FileQuestion& question, QWidget* parent) {
    const QString title = qt_text(question.title), start = qt_text(question.start);
    const QString filter = filter_of(question);
    QString path = question.mode == FileQuestion::open
                       ? QFileDialog::getOpenFileName(parent, title, start, filter)
                       : QFileDialog::getSaveFileName(parent, title, start, filter);
    if (path.isEmpty()) {
        return std::nullopt;
    }
    if (question.mode == FileQuestion::save && !question.extensions.empty() &&
        QFileInfo(path).suffix().isEmpty()) {
        path += '.' + qt_text(question.extensions.front());
    }
    return path.toStdString();
}

std::optional<std::string> show_folder_box(const std::string& title, const std::string& start,
                                           QWidget* parent) {
    const QString path = QFileDialog::getExistingDirectory(parent, qt_text(title), qt_text(start));
    return path.isEmpty() ? std::nullopt : std::optional(path.toStdString());
}

std::optional<WindowColor> show_color_box(const std::string& title, WindowColor color,
                                          QWidget* parent) {
    const QColor chosen = QColorDialog::getColor(qt_color(color), parent, qt_text(title));
    return chosen.isValid() ? std::optional(color_of(chosen)) : std::nullopt;
}

int show_menu(const std::vector<MenuRow>& rows, WindowPoint at, QWidget* parent) {
    QMenu menu(parent);
    const double scale = parent != nullptr ? parent->devicePixelRatioF() : 1;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const MenuRow& row = rows[i];
        if (row.text == "-") {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(qt_text(row.text));
        action->setData(static_cast<int>(i));
        action->setEnabled(row.enabled);
        action->setCheckable(row.checked);
        action->setChecked(row.checked);
        if (row.has_color) {
            action->setIcon(color_icon(row.color, scale));
            action->setIconVisibleInMenu(true);
        }
    }
    const QAction* chosen = menu.exec(QPoint(at.x, at.y));
    return chosen != nullptr ? chosen->data().toInt() : -1;
}

int QtWindowSystem::message_box(const MessageQuestion& question, Window* owner) {
    if (!scripted_) {
        return show_message_box(question, frame_of(owner));
    }
    const std::string answer = take_answer();
    if (answer == "more" && question.on_more) {
        question.on_more();
    }
    const int number = number_of(answer);
    return number > 0 ? number : safe_answer(question.type);
}

std::optional<std::string> QtWindowSystem::choose_file(const FileQuestion& question,
                                                       Window* owner) {
    if (!scripted_) {
        return show_file_box(question, frame_of(owner));
    }
    const std::string answer = take_answer();
    return answer.empty() ? std::nullopt : std::optional(answer);
}

std::optional<std::string> QtWindowSystem::choose_folder(const std::string& title,
                                                         const std::string& start, Window* owner) {
    if (!scripted_) {
        return show_folder_box(title, start, frame_of(owner));
    }
    const std::string answer = take_answer();
    return answer.empty() ? std::nullopt : std::optional(answer);
}

std::optional<WindowColor> QtWindowSystem::choose_color(const std::string& title, WindowColor color,
                                                        Window* owner) {
    if (!scripted_) {
        return show_color_box(title, color, frame_of(owner));
    }
    const std::string answer = take_answer();
    const QColor chosen(qt_text(answer));
    return answer.size() == 7 && chosen.isValid() ? std::optional(color_of(chosen)) : std::nullopt;
}

int QtWindowSystem::pop_up_menu(const std::vector<MenuRow>& rows, WindowPoint at, Window* owner) {
    if (!scripted_) {
        return show_menu(rows, at, frame_of(owner));
    }
    const std::string answer = take_answer();
    const int index = number_of(answer);
    return index >= 0 && index < static_cast<int>(rows.size()) &&
                   rows[static_cast<std::size_t>(index)].enabled
               ? index
               : -1;
}

} // namespace platform
