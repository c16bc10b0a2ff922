// The window port in widgets.
#include "KestraBatch/window/qt_window_port.h"

#include "omb/base/error_dialog.h"
#include "omb/base/trace.h"
#include "platform/window/qt/qt_boxes.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QThread>
#include <QVBoxLayout>

#include <vector>

namespace KestraBatch {

namespace {

bool is_main_thread() { return qApp != nullptr && QThread::currentThread() == qApp->thread(); }

QString text_of(const std::string& text) { return QString::fromStdString(text); }

QWidget* parent_of(cl_window_handle handle) {
    return handle != nullptr ? static_cast<QWidget*>(handle) : QApplication::activeWindow();
}

/// Text above rows above buttons.
class FormBox : public QDialog {
public:
    FormBox(const QString& title, const QString& text)
      : QDialog(QApplication::activeWindow()) {
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
        connect(box, &QDialogButtonBox::accepted, this, [this] { accept(); });
        connect(box, &QDialogButtonBox::rejected, this, [this] { reject(); });
        column->addWidget(box);
    }
    void add(const QString& label, QWidget* field) {
        field->setAccessibleName(label);
        rows_->addRow(label, field);
    }

private:
    QFormLayout* rows_ = nullptr;
};

} // namespace

int QtWindowPort::message_box(const std::string& text, const std::string& title, unsigned type,
                              cl_window_handle parent) {
    if (!is_main_thread()) {
        OMB_TRACE(1, "%s: %s", title, text);
        return cl_headless_window_port::safe_answer(type);
    }
    platform::MessageQuestion question;
    question.title = title;
    question.text = text;
    question.type = type;
    return platform::show_message_box(question, parent_of(parent));
}

bool QtWindowPort::error_dialog(const cl_error_dialog& dialog) {
    if (!is_main_thread()) {
        return false;
    }
    platform::MessageQuestion question;
    question.title = dialog.title;
    question.text = dialog.text;
    question.detail = dialog.location;
    question.type = message_box::ok | message_box::icon_error;
    question.more_button = cl_error_dialog::more_button;
    question.on_more = dialog.on_more;
    platform::show_message_box(question, QApplication::activeWindow());
    return true;
}

bool QtWindowPort::email_error_dialog(cl_email_error_dialog& dialog) {
    if (!is_main_thread()) {
        return false;
    }
    std::vector<QLineEdit*> lines;
    // The caller asks again for what is left open.
    FormBox box(cl_email_error_dialog::title, text_of(cl_email_error_dialog::heading).trimmed());
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

} // namespace KestraBatch
