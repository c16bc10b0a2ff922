// Tone and light.
#include "KestraBatch/window/panels.h"

#include "KestraBatch/window/icons.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace KestraBatch {

namespace {

constexpr int space_between_rows = 14;

/// A column that scrolls when it does not fit, as the only content of `owner`.
QVBoxLayout* make_column(QWidget* owner) {
    auto* outer = new QVBoxLayout(owner);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* scroll = new QScrollArea(owner);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    outer->addWidget(scroll);
    auto* content = new QWidget(scroll);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(space_between_rows);
    scroll->setWidget(content);
    return column;
}

QPushButton* make_reset(const QString& tip, QWidget* parent) {
    auto* button = new QPushButton(make_icon(IconShape::reset), "Reset all", parent);
    button->setToolTip(tip);
    return button;
}

} // namespace

TonePanel::TonePanel(WindowModel& model, QWidget* parent)
  : QWidget(parent)
  , model_(model) {
    QVBoxLayout* column = make_column(this);
    for (int i = 0; i < tone_rows; ++i) {
        const ToneRow& row = tone_row(i);
        auto* widget = new ValueRow(row.label, row.tip, {row.lowest, row.highest, row.decimals, {}},
                                    false, this);
        widget->on_change = [this, i](double value, bool) {
            model_.set_tone_value(i, value);
            refresh();
            on_change();
        };
        widget->on_reset = [this, i] {
            model_.set_tone_value(i, model_.rendered_tone_value(i));
            refresh();
            on_change();
        };
        rows_[static_cast<std::size_t>(i)] = widget;
        column->addWidget(widget);
    }
    reset_ = make_reset("All five back to what was rendered", this);
    connect(reset_, &QPushButton::clicked, this, [this] {
        model_.reset_tone();
        refresh();
        on_change();
    });
    column->addWidget(reset_, 0, Qt::AlignRight);
    column->addStretch(1);
    refresh();
}

void TonePanel::refresh() {
    bool changed = false;
    for (int i = 0; i < tone_rows; ++i) {
        rows_[static_cast<std::size_t>(i)]->show_value(model_.tone_value(i), true,
                                                       model_.is_tone_changed(i));
        changed = changed || model_.is_tone_changed(i);
    }
    reset_->setEnabled(changed);
    setEnabled(model_.has_facts());
}

LightPanel::LightPanel(WindowModel& model, bool brighten, QWidget* parent)
  : QWidget(parent)
  , model_(model) {
    QVBoxLayout* column = make_column(this);
    note_ = new QLabel(this);
    note_->setWordWrap(true);
    column->addWidget(note_);
    list_ = new QVBoxLayout;
    list_->setSpacing(space_between_rows);
    column->addLayout(list_);
    brighten_ = new QCheckBox("Adjust exposure to the mix", this);
    brighten_->setChecked(brighten);
    brighten_->setToolTip("On: the picture stays well exposed whatever is switched off.\n"
                          "Off: it darkens and brightens as the room would.");
    connect(brighten_, &QCheckBox::toggled, this, [this] { on_change(); });
    column->addWidget(brighten_);
    reset_ = make_reset("All lights back to how they were rendered", this);
    connect(reset_, &QPushButton::clicked, this, [this] {
        model_.reset_channels();
        refresh();
        on_change();
    });
    column->addWidget(reset_, 0, Qt::AlignRight);
    column->addStretch(1);
    refresh();
}

bool LightPanel::brighten() const { return brighten_->isChecked(); }

void LightPanel::make_rows() {
    for (ValueRow* row : rows_) {
        row->hide();
        row->deleteLater(); // it may be the one that is calling
    }
    rows_.clear();
    names_.clear();
    QWidget* before = note_;
    for (const ChannelChoice& channel : model_.channels()) {
        const int i = static_cast<int>(rows_.size());
        const QString name = QString::fromStdString(channel.name);
        auto* widget = new ValueRow(name, "Strength of this light, 100 % is how it shines",
                                    {0, 200, 0, " %"}, true, this);
        widget->on_change = [this, i](double value, bool on) {
            model_.set_channel(i, value, on);
            refresh();
            on_change();
        };
        widget->on_reset = [this, i] {
            model_.reset_channel(i);
            refresh();
            on_change();
        };
        list_->addWidget(widget);
        setTabOrder(before, widget);
        before = widget;
        rows_.push_back(widget);
        names_.push_back(channel.name);
    }
}

void LightPanel::refresh() {
    const auto& channels = model_.channels();
    const bool same = std::equal(
        names_.begin(), names_.end(), channels.begin(), channels.end(),
        [](const std::string& name, const ChannelChoice& channel) { return name == channel.name; });
    if (!same) {
        make_rows();
    }
    bool changed = false;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool differs = model_.is_channel_changed(static_cast<int>(i));
        rows_[i]->show_value(channels[i].percent, channels[i].on, differs);
        changed = changed || differs;
    }
    reset_->setEnabled(changed);
    brighten_->setEnabled(!channels.empty());
    if (channels.empty()) {
        note_->setText("The light of this picture is not kept apart by channel.");
    } else if (model_.is_dark()) {
        note_->setText("All lights are off: the picture is black.");
    }
    note_->setVisible(channels.empty() || model_.is_dark());
}

} // namespace KestraBatch
