// The window port in widgets.
#include "KestraBatch/window/qt_window_port.h"

#include "omb/base/error_dialog.h"
#include "omb/base/form_dialog.h"
#include "omb/base/trace.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>
#include <QVBoxLayout>

#include <array>
#include <functional>
#include <vector>

namespace KestraBatch {

namespace {

struct ButtonRow {
    QMessageBox::StandardButton button;
    int id;
};

constexpr std::array<ButtonRow, 7> buttons{{{QMessageBox::Ok, message_box::id_ok},
                                            {QMessageBox::Cancel, message_box::id_cancel},
                                            {QMessageBox::Abort, message_box::id_abort},
                                            {QMessageBox::Retry, message_box::id_retry},
                                            {QMessageBox::Ignore, message_box::id_ignore},
                                            {QMessageBox::Yes, message_box::id_yes},
                                            {QMessageBox::No, message_box::id_no}}};

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

bool is_main_thread() { return qApp != nullptr && QThread::currentThread() == qApp->thread(); }

QString text_of(const std::string& text) { return QString::fromStdString(text); }

QWidget* parent_of(cl_window_handle handle) {
    return handle != nullptr ? static_cast<QWidget*>(handle) : QApplication::activeWindow();
}

/// A row's widget and how its value is read.
struct FormField {
    QWidget* widget = nullptr;
    std::function<std::string()> value;
};

FormField make_field(const cl_form_row& row, QWidget* parent) {
    if (row.kind == cl_form_row::yes_no) {
        auto* check = new QCheckBox(parent);
        check->setChecked(row.bool_value());
        return {check, [check] { return std::string(check->isChecked() ? "1" : "0"); }};
    }
    if (row.kind == cl_form_row::choice) {
        auto* box = new QComboBox(parent);
        for (const std::string& choice : row.choices) {
            box->addItem(text_of(choice));
        }
        box->setCurrentText(text_of(row.value));
        return {box, [box] { return box->currentText().toStdString(); }};
    }
    auto* line = new QLineEdit(text_of(row.value), parent);
    line->setMinimumWidth(180);
    if (row.minimum != row.maximum) {
        line->setToolTip(QString("%1 to %2").arg(row.minimum).arg(row.maximum));
    }
    return {line, [line] { return line->text().toStdString(); }};
}

/// Text above rows above buttons; `confirm` says whether it may be left with OK.
class FormBox : public QDialog {
public:
    FormBox(const QString& title, const QString& text, std::function<bool()> confirm)
      : QDialog(QApplication::activeWindow())
      , confirm_(std::move(confirm)) {
        setWindowTitle(title);
        auto* column = new QVBoxLayout(this);
        column->setSpacing(12);
        if (!text.isEmpty()) {
            auto* label = new QLabel(text, this);
            label->setWordWrap(true);
            label->setMinimumWidth(360);
            column->addWidget(label);
        }
        rows_ = new QFormLayout;
        column->addLayout(rows_);
        auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        connect(box, &QDialogButtonBox::accepted, this, [this] {
            if (confirm_()) {
                accept();
            }
        });
        connect(box, &QDialogButtonBox::rejected, this, [this] { reject(); });
        column->addWidget(box);
    }
    void add(const QString& label, QWidget* field) {
        field->setAccessibleName(label);
        rows_->addRow(label, field);
    }

private:
    QFormLayout* rows_ = nullptr;
    std::function<bool()> confirm_;
};

} // namespace

int QtWindowPort::message_box(const std::string& text, const std::string& title, unsigned type,
                              cl_window_handle parent) {
    if (!is_main_thread()) {
        OMB_TRACE(1, "%s: %s", title, text);
        return cl_headless_window_port::safe_answer(type);
    }
    const std::size_t set = type & 0xf, icon = (type >> 4) & 0xf;
    const auto shown =
        QMessageBox::StandardButtons(button_sets[set < button_sets.size() ? set : 0]);
    QMessageBox box(icons[icon < icons.size() ? icon : 0], text_of(title), text_of(text), shown,
                    parent_of(parent));
    box.setTextFormat(Qt::PlainText);
    if ((type & message_box::on_top) != 0) {
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
    }
    const int pressed = box.exec();
    for (const ButtonRow& row : buttons) {
        if (row.button == pressed) {
            return row.id;
        }
    }
    return cl_headless_window_port::safe_answer(type);
}

bool QtWindowPort::error_dialog(const cl_error_dialog& dialog) {
    if (!is_main_thread()) {
        return false;
    }
    QMessageBox box(QMessageBox::Critical, text_of(dialog.title), text_of(dialog.text),
                    QMessageBox::Close, QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(text_of(dialog.location));
    QPushButton* more = box.addButton(cl_error_dialog::more_button, QMessageBox::ActionRole);
    more->setEnabled(static_cast<bool>(dialog.on_more));
    box.setDefaultButton(QMessageBox::Close);
    box.exec();
    if (box.clickedButton() == more && dialog.on_more) {
        dialog.on_more();
    }
    return true;
}

bool QtWindowPort::email_error_dialog(cl_email_error_dialog& dialog) {
    if (!is_main_thread()) {
        return false;
    }
    std::vector<QLineEdit*> lines;
    FormBox box(cl_email_error_dialog::title, text_of(cl_email_error_dialog::heading).trimmed(),
                [] { return true; }); // the caller asks again for what is left open
    for (std::size_t i = 0; i < cl_email_error_dialog::questions.size(); ++i) {
        lines.push_back(new QLineEdit(text_of(dialog.answers[i]), &box));
        lines.back()->setMinimumWidth(220);
        box.add(QString(cl_email_error_dialog::questions[i]).trimmed(), lines.back());
    }
    if (box.exec() != QDialog::Accepted) {
        return false;
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
        dialog.answers[i] = lines[i]->text().toStdString();
    }
    return true;
}

bool QtWindowPort::form_dialog(cl_form_dialog& dialog) {
    if (!is_main_thread()) {
        return false;
    }
    std::vector<FormField> fields;
    FormBox box(text_of(dialog.title), text_of(dialog.text), [&] {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            dialog.rows[i].value = fields[i].value();
        }
        const std::string problem = dialog.problem();
        if (!problem.empty()) {
            QMessageBox::warning(QApplication::activeWindow(), text_of(dialog.title),
                                 text_of(problem));
        }
        return problem.empty();
    });
    for (const cl_form_row& row : dialog.rows) {
        fields.push_back(make_field(row, &box));
        box.add(text_of(row.label), fields.back().widget);
    }
    return box.exec() == QDialog::Accepted;
}

} // namespace KestraBatch
