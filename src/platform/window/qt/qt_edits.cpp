// Fields for text: edits, combo boxes, rich text, hypertext.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"
#include "platform/window/qt/qt_window_system.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBrowser>
#include <QUrl>

#include <algorithm>
#include <numeric>

namespace platform {

namespace {

bool is_enter(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

class LineControl : public QtControl {
public:
    LineControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , line_(new QLineEdit(parent_widget())) {
        line_->setText(qt_text(spec.text));
        line_->setCursorPosition(0);
        line_->setReadOnly(spec.read_only);
        line_->setFrame(spec.framed);
        line_->setAlignment(qt_align(spec.align) | Qt::AlignVCenter);
        if (spec.max_length > 0) {
            line_->setMaxLength(spec.max_length);
        }
        if (spec.password) {
            line_->setEchoMode(QLineEdit::Password);
        }
        line_->setAcceptDrops(!window.spec().takes_drops);
        take(line_);
        connect(line_, &QLineEdit::textEdited, this,
                [this] { raise({ControlEventKind::changed}); });
    }
    std::string text() const override { return line_->text().toStdString(); }
    void set_text(std::string_view text) override {
        const QString content = qt_text(text);
        if (content != line_->text()) {
            line_->setText(content);
            line_->setCursorPosition(0);
        }
    }
    void set_read_only(bool read_only) override {
        QtControl::set_read_only(read_only);
        line_->setReadOnly(read_only);
    }
    void set_focus() override {
        QtControl::set_focus();
        line_->selectAll();
    }
    void next_was_made(QtControl& next) override {
        if (next.spec().kind == ControlKind::spinner) {
            spinner_ = &next;
            next.widget()->setFocusPolicy(Qt::NoFocus); // it is reached from the field
        }
    }

protected:
    bool act(std::string_view action, std::string_view argument) override {
        if (action == "enter") {
            return handle_enter();
        }
        if (action != "type" || line_->isReadOnly()) {
            return false;
        }
        {
            const Quiet quiet(quiet_);
            line_->selectAll();
            line_->insert(qt_text(argument));
        }
        raise({ControlEventKind::changed});
        return true;
    }
    bool key_pressed(const QKeyEvent& event) override {
        if (is_enter(event)) {
            return raise({ControlEventKind::entered});
        }
        const bool is_arrow = event.key() == Qt::Key_Up || event.key() == Qt::Key_Down;
        return is_arrow && spinner_ && !line_->isReadOnly() &&
               spinner_->step(event.key() == Qt::Key_Up ? 1 : -1);
    }

private:
    QLineEdit* line_;
    QPointer<QtControl> spinner_;
};

/// An edit of several lines. Enter is a line break in it; with the control key it is Enter.
class LinesControl : public QtControl {
public:
    LinesControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , lines_(new QPlainTextEdit(parent_widget())) {
        lines_->setPlainText(qt_text(spec.text));
        lines_->setReadOnly(spec.read_only);
        lines_->setTabChangesFocus(true);
        lines_->document()->setDocumentMargin(3);
        if (!spec.framed) {
            lines_->setFrameShape(QFrame::NoFrame);
        }
        lines_->setAcceptDrops(!window.spec().takes_drops);
        take(lines_);
        connect(lines_, &QPlainTextEdit::textChanged, this, [this] {
            if (quiet_ == 0) {
                limit_length();
                raise({ControlEventKind::changed});
            }
        });
    }
    std::string text() const override { return lines_->toPlainText().toStdString(); }
    void set_text(std::string_view text) override {
        const Quiet quiet(quiet_);
        if (const QString content = qt_text(text); content != lines_->toPlainText()) {
            lines_->setPlainText(content);
        }
    }
    void set_read_only(bool read_only) override {
        QtControl::set_read_only(read_only);
        lines_->setReadOnly(read_only);
    }

protected:
    bool act(std::string_view action, std::string_view argument) override {
        if (action == "enter") {
            return handle_enter();
        }
        if (action != "type" || lines_->isReadOnly()) {
            return false;
        }
        set_text(argument);
        limit_length();
        raise({ControlEventKind::changed});
        return true;
    }
    bool key_pressed(const QKeyEvent& event) override {
        return is_enter(event) && event.modifiers().testFlag(Qt::ControlModifier) && handle_enter();
    }

private:
    void limit_length() {
        const QString content = lines_->toPlainText();
        if (spec_.max_length > 0 && content.size() > spec_.max_length) {
            const Quiet quiet(quiet_);
            lines_->setPlainText(content.left(spec_.max_length));
            lines_->moveCursor(QTextCursor::End);
        }
    }

    QPlainTextEdit* lines_;
};

/// Its list is as wide as its widest row.
class ComboWidget : public QComboBox {
public:
    using QComboBox::QComboBox;
    void showPopup() override {
        view()->setMinimumWidth(view()->sizeHintForColumn(0) +
                                view()->verticalScrollBar()->sizeHint().width());
        QComboBox::showPopup();
    }
};

class ComboControl : public QtControl {
public:
    ComboControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , box_(new ComboWidget(parent_widget())) {
        box_->setEditable(spec.editable);
        box_->setMaxVisibleItems(std::max(1, spec.drop_rows));
        box_->setFrame(spec.framed);
        if (spec.editable) {
            box_->setInsertPolicy(QComboBox::NoInsert);
            box_->setCompleter(nullptr); // what is typed stays as it is
            box_->setEditText(qt_text(spec.text));
            box_->lineEdit()->setCursorPosition(0);
            if (spec.max_length > 0) {
                box_->lineEdit()->setMaxLength(spec.max_length);
            }
            connect(box_->lineEdit(), &QLineEdit::textEdited, this,
                    [this] { raise({ControlEventKind::changed}); });
        }
        take(box_);
        connect(box_, &QComboBox::activated, this, [this](int place) {
            raise({ControlEventKind::changed, row_at(place)});
        });
    }
    std::string text() const override { return box_->currentText().toStdString(); }
    void set_text(std::string_view text) override {
        const QString content = qt_text(text);
        if (const int place = box_->findText(content, Qt::MatchExactly | Qt::MatchCaseSensitive);
            place >= 0) {
            box_->setCurrentIndex(place);
        }
        if (spec_.editable && box_->currentText() != content) {
            box_->setEditText(content);
        }
    }
    void set_rows(std::vector<ListRow> rows) override {
        const QString before = box_->currentText();
        std::vector<int> order(rows.size());
        std::iota(order.begin(), order.end(), 0);
        QStringList texts;
        for (const ListRow& row : rows) {
            texts << qt_text(row.text);
        }
        if (spec_.sorted) {
            std::stable_sort(order.begin(), order.end(), [&texts](int a, int b) {
                return texts[a].compare(texts[b], Qt::CaseInsensitive) < 0;
            });
        }
        places_.assign(rows.size(), 0);
        order_ = order;
        QStringList ordered;
        for (std::size_t place = 0; place < order.size(); ++place) {
            places_[static_cast<std::size_t>(order[place])] = static_cast<int>(place);
            ordered << texts[order[place]];
        }
        box_->clear();
        box_->addItems(ordered);
        box_->setCurrentIndex(-1);
        if (spec_.editable) {
            box_->setEditText(before);
        }
    }
    int row_count() const override { return static_cast<int>(order_.size()); }
    std::string row_text(int index) const override {
        return is_row(index) ? box_->itemText(place_of(index)).toStdString() : std::string();
    }
    std::vector<int> selection() const override {
        const int place = box_->currentIndex();
        if (place < 0 || box_->currentText() != box_->itemText(place)) {
            return {};
        }
        return {row_at(place)};
    }
    void select(const std::vector<int>& rows) override {
        const auto found =
            std::find_if(rows.begin(), rows.end(), [this](int row) { return is_row(row); });
        const QString before = box_->currentText();
        box_->setCurrentIndex(found == rows.end() ? -1 : place_of(*found));
        if (spec_.editable) {
            box_->setEditText(found == rows.end() ? before : box_->itemText(place_of(*found)));
            box_->lineEdit()->setCursorPosition(0);
        }
    }

protected:
    bool has_rows() const override { return true; }
    bool act(std::string_view action, std::string_view argument) override {
        if (action == "enter") {
            return handle_enter();
        }
        if (action == "type") {
            if (!spec_.editable || spec_.read_only) {
                return false;
            }
            {
                const Quiet quiet(quiet_);
                box_->lineEdit()->selectAll();
                box_->lineEdit()->insert(qt_text(argument));
            }
            raise({ControlEventKind::changed});
            return true;
        }
        const std::vector<int> rows = script_numbers(argument);
        const bool on_row = !rows.empty() && is_row(rows.front());
        if ((action == "select" || action == "click") && on_row) {
            select({rows.front()});
            raise({ControlEventKind::changed, rows.front()});
            return true;
        }
        return false;
    }
    bool key_pressed(const QKeyEvent& event) override {
        return is_enter(event) && raise({ControlEventKind::entered});
    }

private:
    bool is_row(int index) const { return index >= 0 && index < row_count(); }
    int place_of(int index) const { return places_[static_cast<std::size_t>(index)]; }
    int row_at(int place) const {
        return is_row(place) ? order_[static_cast<std::size_t>(place)] : -1;
    }

    ComboWidget* box_;
    std::vector<int> places_, order_; ///< row to place in the list, and back
};

class RichTextControl : public QtControl {
public:
    RichTextControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , edit_(new QTextEdit(parent_widget())) {
        edit_->setTabChangesFocus(true);
        edit_->setReadOnly(spec.read_only);
        if (!spec.framed) {
            edit_->setFrameShape(QFrame::NoFrame);
        }
        edit_->setAcceptDrops(!window.spec().takes_drops);
        RichTextControl::set_text(spec.text);
        take(edit_);
        connect(edit_, &QTextEdit::textChanged, this,
                [this] { raise({ControlEventKind::changed}); });
    }
    std::string text() const override { return edit_->toPlainText().toStdString(); }
    void set_text(std::string_view text) override {
        const Quiet quiet(quiet_);
        const QString content = qt_text(text);
        if (content.startsWith('<') && Qt::mightBeRichText(content)) {
            edit_->setHtml(content);
        } else {
            edit_->setPlainText(content);
        }
    }
    void set_read_only(bool read_only) override {
        QtControl::set_read_only(read_only);
        edit_->setReadOnly(read_only);
    }

protected:
    bool act(std::string_view action, std::string_view argument) override {
        if (action != "type" || edit_->isReadOnly()) {
            return false;
        }
        {
            const Quiet quiet(quiet_);
            edit_->setPlainText(qt_text(argument));
        }
        raise({ControlEventKind::changed});
        return true;
    }

private:
    QTextEdit* edit_;
};

/// Hypertext is shown as it is given; pictures and pages beside a local file are found. Nothing is
/// fetched from the network: links open in the desktop's programs.
class HtmlControl : public QtControl {
public:
    HtmlControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , browser_(new QTextBrowser(parent_widget())) {
        browser_->setOpenLinks(false);
        if (!spec.framed) {
            browser_->setFrameShape(QFrame::NoFrame);
        }
        HtmlControl::set_text(spec.text);
        take(browser_);
        connect(browser_, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) {
            if (link.isRelative() && link.path().isEmpty()) {
                browser_->scrollToAnchor(link.fragment());
            } else {
                this->window().system().open_address(link.toString().toStdString());
            }
        });
    }
    void set_text(std::string_view text) override {
        QtControl::set_text(text);
        if (text.substr(0, 5) == "file:") {
            browser_->setSource(QUrl(qt_text(text)));
        } else {
            browser_->setHtml(qt_text(text));
        }
    }

private:
    QTextBrowser* browser_;
};

} // namespace

std::unique_ptr<QtControl> make_edit(QtWindow& window, const ControlSpec& spec) {
    if (spec.multi_line) {
        return std::make_unique<LinesControl>(window, spec);
    }
    return std::make_unique<LineControl>(window, spec);
}

std::unique_ptr<QtControl> make_combo_box(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<ComboControl>(window, spec);
}

std::unique_ptr<QtControl> make_rich_text(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<RichTextControl>(window, spec);
}

std::unique_ptr<QtControl> make_html(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<HtmlControl>(window, spec);
}

} // namespace platform
