// Buttons, group frames and labels.
#include "platform/window/qt/qt_control.h"
#include "platform/window/qt/qt_window.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>

namespace platform {

namespace {

/// Push buttons, check boxes and radio buttons.
class ButtonControl : public QtControl {
public:
    ButtonControl(QtWindow& window, const ControlSpec& spec, QAbstractButton* button)
      : QtControl(window, spec)
      , button_(button) {
        button->setText(qt_text(spec.text));
        take(button);
        connect(button, &QAbstractButton::clicked, this,
                [this] { raise({ControlEventKind::clicked}); });
    }
    void set_text(std::string_view text) override {
        QtControl::set_text(text);
        button_->setText(qt_text(text));
    }
    bool is_checked() const override { return button_->isChecked(); }
    void set_checked(bool checked) override {
        QButtonGroup* group = button_->group();
        const bool leaves_none = group != nullptr && !checked;
        if (leaves_none) {
            group->setExclusive(false); // else the last one cannot be taken away
        }
        button_->setChecked(checked);
        if (leaves_none) {
            group->setExclusive(true);
        }
    }
    void set_pressed(bool pressed) override { button_->setDown(pressed); }

protected:
    bool act(std::string_view action, std::string_view argument) override {
        const std::vector<int> numbers = script_numbers(argument);
        if (action != "check" || spec_.kind != ControlKind::check_box || numbers.empty()) {
            return false;
        }
        return button_->isChecked() == (numbers.front() > 0) || click();
    }

private:
    QAbstractButton* button_;
};

/// A line around its children, the title in it. Fusion and others leave the height of a line of
/// text between; layouts here count on less.
class GroupFrame : public QGroupBox {
public:
    using QGroupBox::QGroupBox;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QFontMetrics metrics = fontMetrics();
        const bool titled = !title().isEmpty();
        const int top = titled ? metrics.height() / 2 : 0;
        const QRect place(title_start, 0, metrics.size(Qt::TextShowMnemonic, title()).width(),
                          metrics.height());
        if (titled) {
            painter.setClipRegion(QRegion(rect()) - QRegion(place.adjusted(-3, 0, 3, 0)));
        }
        QColor line = palette().color(QPalette::WindowText);
        line.setAlphaF(0.24F);
        painter.setPen(line);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, top + 0.5, -0.5, -0.5), 3, 3);
        if (titled) {
            painter.setClipping(false);
            painter.setPen(palette().color(QPalette::WindowText));
            painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic,
                             title());
        }
    }

private:
    static constexpr int title_start = 9; ///< pixels
};

class GroupControl : public QtControl {
public:
    GroupControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , box_(new GroupFrame(parent_widget())) {
        box_->setTitle(qt_text(spec.text));
        box_->setFocusPolicy(Qt::NoFocus);
        box_->setAttribute(Qt::WA_TransparentForMouseEvents);
        take(box_);
        box_->lower();
    }
    void set_text(std::string_view text) override {
        QtControl::set_text(text);
        box_->setTitle(qt_text(text));
    }

private:
    GroupFrame* box_;
};

class LabelControl : public QtControl {
public:
    LabelControl(QtWindow& window, const ControlSpec& spec)
      : QtControl(window, spec)
      , label_(new QLabel(parent_widget())) {
        label_->setTextFormat(Qt::PlainText);
        take(label_);
        show_text();
    }
    void set_text(std::string_view text) override {
        QtControl::set_text(text);
        show_text();
    }
    void set_rect(const WindowRect& rect) override {
        QtControl::set_rect(rect);
        show_text();
    }
    void next_was_made(QtControl& next) override {
        if ((next.widget()->focusPolicy() & Qt::TabFocus) != 0) {
            label_->setBuddy(next.widget());
            show_text();
        }
    }

private:
    /// A label that leads nowhere shows the marks of mnemonics, so they are taken out. Only what
    /// has room for two lines wraps: a pixel too little must not take the end of a word away.
    void show_text() {
        const bool leads = label_->buddy() != nullptr && has_mnemonic(spec_.text);
        label_->setText(leads ? qt_text(spec_.text) : without_mnemonics(spec_.text));
        const bool wraps = spec_.rect.height >= 19 * label_->fontMetrics().height() / 10;
        label_->setWordWrap(wraps);
        const bool is_high = wraps || spec_.text.find('\n') != std::string::npos;
        label_->setAlignment(qt_align(spec_.align) | (is_high ? Qt::AlignTop : Qt::AlignVCenter));
    }

    QLabel* label_;
};

} // namespace

std::unique_ptr<QtControl> make_push_button(QtWindow& window, const ControlSpec& spec) {
    auto* button = new QPushButton(window.frame());
    button->setAutoDefault(false); // Enter goes by the window's rules
    button->setDefault(spec.is_default);
    return std::make_unique<ButtonControl>(window, spec, button);
}

std::unique_ptr<QtControl> make_check_box(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<ButtonControl>(window, spec, new QCheckBox(window.frame()));
}

std::unique_ptr<QtControl> make_radio_button(QtWindow& window, const ControlSpec& spec) {
    auto* button = new QRadioButton(window.frame());
    window.radio_group(spec.begins_group)->addButton(button);
    return std::make_unique<ButtonControl>(window, spec, button);
}

std::unique_ptr<QtControl> make_group_frame(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<GroupControl>(window, spec);
}

std::unique_ptr<QtControl> make_label(QtWindow& window, const ControlSpec& spec) {
    return std::make_unique<LabelControl>(window, spec);
}

} // namespace platform
