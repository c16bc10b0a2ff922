// One adjustable value.
#include "KestraBatch/window/icons.h"
#include "KestraBatch/window/panels.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>

#include <cmath>

namespace KestraBatch {

struct ValueRow::Parts {
    QWidget* name = nullptr;
    QCheckBox* check = nullptr; ///< the name of a value that can be switched off
    QLabel* mark = nullptr;
    QSlider* slider = nullptr;
    QDoubleSpinBox* field = nullptr;
    QToolButton* reset = nullptr;
};

ValueRow::ValueRow(const QString& name, const QString& tip, const Range& range, bool checkable,
                   QWidget* parent)
  : QWidget(parent)
  , range_(range)
  , parts_(std::make_unique<Parts>()) {
    make_parts(name, tip, checkable);
    connect_parts();
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(2);
    grid->addWidget(parts_->name, 0, 0);
    grid->addWidget(parts_->mark, 0, 1);
    grid->addWidget(parts_->field, 0, 3);
    grid->addWidget(parts_->reset, 0, 4);
    grid->addWidget(parts_->slider, 1, 0, 1, 5);
    grid->setColumnStretch(2, 1);
    setToolTip(tip);
}

ValueRow::~ValueRow() = default;

void ValueRow::make_parts(const QString& name, const QString& tip, bool checkable) {
    if (checkable) {
        parts_->check = new QCheckBox(name, this);
        parts_->check->setChecked(true);
        parts_->check->setToolTip("Switches this light on and off");
        parts_->name = parts_->check;
    } else {
        parts_->name = new QLabel(name, this);
    }
    parts_->mark = new QLabel(QString::fromUtf8("\u25cf"), this);
    parts_->mark->setForegroundRole(QPalette::Highlight);
    parts_->mark->setToolTip("Changed since the render");
    QSizePolicy keeps_place = parts_->mark->sizePolicy();
    keeps_place.setRetainSizeWhenHidden(true);
    parts_->mark->setSizePolicy(keeps_place);

    const double scale = std::pow(10.0, range_.decimals);
    parts_->slider = new QSlider(Qt::Horizontal, this);
    parts_->slider->setRange(static_cast<int>(std::lround(range_.lowest * scale)),
                             static_cast<int>(std::lround(range_.highest * scale)));
    parts_->slider->setPageStep((parts_->slider->maximum() - parts_->slider->minimum()) / 10);
    parts_->slider->setAccessibleName(name);
    parts_->slider->setAccessibleDescription(tip);
    parts_->slider->setToolTip(tip + "\nDouble click: back to the rendered value");
    parts_->slider->installEventFilter(this);
    parts_->name->installEventFilter(this);

    parts_->field = new QDoubleSpinBox(this);
    parts_->field->setDecimals(range_.decimals);
    parts_->field->setRange(range_.lowest, range_.highest);
    parts_->field->setSingleStep(range_.decimals > 0 ? 0.05 : 1);
    parts_->field->setSuffix(range_.suffix);
    parts_->field->setAlignment(Qt::AlignRight);
    parts_->field->setKeyboardTracking(false);
    parts_->field->setAccessibleName(name);
    parts_->field->setToolTip(tip);

    parts_->reset = new QToolButton(this);
    parts_->reset->setIcon(make_icon(IconShape::reset));
    parts_->reset->setAutoRaise(true);
    parts_->reset->setFocusPolicy(Qt::TabFocus);
    parts_->reset->setToolTip("Back to the rendered value");
    parts_->reset->setAccessibleName("Reset " + name);
}

void ValueRow::connect_parts() {
    connect(parts_->slider, &QSlider::valueChanged, this, [this](int value) {
        const QSignalBlocker quiet(parts_->field);
        parts_->field->setValue(value / std::pow(10.0, range_.decimals));
        report();
    });
    connect(parts_->field, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        const QSignalBlocker quiet(parts_->slider);
        parts_->slider->setValue(
            static_cast<int>(std::lround(value * std::pow(10.0, range_.decimals))));
        report();
    });
    connect(parts_->reset, &QToolButton::clicked, this, [this] {
        if (on_reset) {
            on_reset();
        }
    });
    if (parts_->check != nullptr) {
        connect(parts_->check, &QCheckBox::toggled, this, [this] { report(); });
    }
}

void ValueRow::report() {
    if (on_change) {
        on_change(value(), is_on());
    }
}

double ValueRow::value() const { return parts_->field->value(); }

bool ValueRow::is_on() const { return parts_->check == nullptr || parts_->check->isChecked(); }

void ValueRow::show_value(double value, bool on, bool changed) {
    const QSignalBlocker quiet_field(parts_->field), quiet_slider(parts_->slider);
    if (std::abs(parts_->field->value() - value) > 1e-9) {
        parts_->field->setValue(value);
    }
    parts_->slider->setValue(
        static_cast<int>(std::lround(value * std::pow(10.0, range_.decimals))));
    if (parts_->check != nullptr) {
        const QSignalBlocker quiet_check(parts_->check);
        parts_->check->setChecked(on);
    }
    parts_->slider->setEnabled(on);
    parts_->field->setEnabled(on);
    parts_->mark->setVisible(changed);
    parts_->reset->setEnabled(changed);
}

bool ValueRow::eventFilter(QObject* watched, QEvent* event) {
    const bool resets = event->type() == QEvent::MouseButtonDblClick &&
                        (watched == parts_->slider || parts_->check == nullptr);
    if (resets && on_reset) {
        on_reset();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace KestraBatch
